#include "hosts/qt/gallery/Theme.h"

#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>

namespace {

const ThemeColors Light{
    QColor(0xF3F4F6), QColor(0xFFFFFF), QColor(0xDDE0E5), QColor(0x1D2229),
    QColor(0x646C78), QColor(0x1F66D0), QColor(0xFFFFFF), QColor(0xE8EBF0),
    QColor(0xFFFFFF), QColor(0xDCDFE4), QColor(0xE8F0FC), QColor(0xB4BAC3),
};
const ThemeColors Dark{
    QColor(0x14161A), QColor(0x1D2025), QColor(0x343941), QColor(0xE7E9EC),
    QColor(0x98A0AB), QColor(0x6AA6FF), QColor(0x0D1420), QColor(0x2A2F37),
    QColor(0x3A3F47), QColor(0x2B2F36), QColor(0x1E2E47), QColor(0x5C646F),
};

/// %name% stands for a colour of the theme.
constexpr const char* Sheet = R"(
QMainWindow, QScrollArea, #cards, #inspectorRows { background: %ground%; }
QScrollArea { border: none; }
#bar { background: %card%; border-bottom: 1px solid %border%; }
#inspector { background: %card%; border-left: 1px solid %border%; }
#inspector QScrollArea, #inspectorRows { background: %card%; }
#title { font-size: 17px; font-weight: 600; }
#muted { color: %muted%; }
#section { color: %muted%; font-size: 11px; font-weight: 600; padding: 14px 0 4px 0; }
#caption { color: %muted%; font-size: 12px; }
QStatusBar { background: %card%; border-top: 1px solid %border%; color: %muted%; }
QStatusBar::item { border: none; }
QMenuBar { background: %card%; padding: 2px 8px; }
QMenuBar::item { padding: 4px 8px; border-radius: 4px; background: transparent; }
QMenuBar::item:selected { background: %hover%; }
QLineEdit, QPlainTextEdit {
    background: %card%; border: 1px solid %border%; border-radius: 5px; padding: 3px 7px;
    selection-background-color: %accent%; selection-color: %onAccent%;
}
QLineEdit:focus, QPlainTextEdit:focus { border-color: %accent%; }
QPushButton, #bar QToolButton {
    background: %card%; border: 1px solid %border%; border-radius: 5px; padding: 4px 10px; color: %text%;
}
QPushButton:hover, #bar QToolButton:hover { background: %hover%; }
QPushButton:focus, #bar QToolButton:focus { border-color: %accent%; }
#bar QToolButton:checked { background: %tint%; border-color: %accent%; color: %accent%; }
#bar QToolButton:checked:focus { border-color: %text%; }
QPushButton:disabled { color: %muted%; }
QToolButton#flat {
    background: transparent; border: 1px solid transparent; border-radius: 5px; padding: 3px;
}
QToolButton#flat:hover { background: %hover%; }
QToolButton#flat:focus { border-color: %accent%; }
QSplitter::handle { background: %border%; }
QScrollBar { background: transparent; }
QScrollBar:vertical { width: 12px; }
QScrollBar:horizontal { height: 12px; }
QScrollBar::handle { background: %idle%; border: 3px solid %ground%; border-radius: 6px; }
#inspector QScrollBar::handle, QAbstractItemView QScrollBar::handle { border-color: %card%; }
QScrollBar::handle:vertical { min-height: 32px; }
QScrollBar::handle:horizontal { min-width: 32px; }
QScrollBar::handle:hover { background: %muted%; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
QToolTip { background: %card%; color: %text%; border: 1px solid %border%; padding: 4px; }
)";

void drawReset(QPainter& painter) {
    QPainterPath arc;
    const QRectF circle(3.5, 3.5, 9, 9);
    arc.arcMoveTo(circle, 120);
    arc.arcTo(circle, 120, 290);
    painter.drawPath(arc);
    painter.drawPolyline(QPolygonF({{5.4, 0.9}, {5.6, 4.3}, {2.2, 4.6}}));
}

void drawSign(QPainter& painter, Sign sign) {
    switch (sign) {
    case Sign::Reset:
        return drawReset(painter);
    case Sign::Play:
        painter.setBrush(painter.pen().color());
        painter.drawPolygon(QPolygonF({{5, 3.5}, {12.5, 8}, {5, 12.5}}));
        return;
    case Sign::Pause:
        painter.setBrush(painter.pen().color());
        painter.drawRect(QRectF(4.2, 3.5, 2, 9));
        painter.drawRect(QRectF(9.8, 3.5, 2, 9));
        return;
    }
}

} // namespace

const ThemeColors& themeColors(Theme theme) { return theme == Theme::Dark ? Dark : Light; }

QPalette themePalette(Theme theme) {
    const ThemeColors& c = themeColors(theme);
    QPalette palette(c.text, c.card, c.hover, c.border, c.muted, c.text, c.onAccent, c.card, c.ground);
    palette.setColor(QPalette::Highlight, c.accent);
    palette.setColor(QPalette::HighlightedText, c.onAccent);
    palette.setColor(QPalette::Link, c.accent);
    palette.setColor(QPalette::PlaceholderText, c.muted);
    palette.setColor(QPalette::ToolTipBase, c.card);
    palette.setColor(QPalette::ToolTipText, c.text);
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, c.muted);
    return palette;
}

QString themeSheet(Theme theme) {
    const ThemeColors& c = themeColors(theme);
    QString sheet = QString::fromLatin1(Sheet);
    for (const auto& [name, color] :
         {std::pair("ground", c.ground), std::pair("card", c.card), std::pair("border", c.border),
          std::pair("text", c.text), std::pair("muted", c.muted), std::pair("accent", c.accent),
          std::pair("onAccent", c.onAccent), std::pair("tint", c.tint), std::pair("hover", c.hover),
          std::pair("idle", c.idle)})
        sheet.replace(u'%' + QLatin1String(name) + u'%', color.name());
    return sheet;
}

QIcon signIcon(Sign sign, const ThemeColors& colors) {
    QIcon icon;
    for (const auto& [mode, color] :
         {std::pair(QIcon::Normal, colors.text), std::pair(QIcon::Disabled, colors.idle)})
        for (const int scale : {1, 2}) {
            QPixmap pixmap(16 * scale, 16 * scale);
            pixmap.setDevicePixelRatio(scale);
            pixmap.fill(Qt::transparent);
            QPainter painter(&pixmap);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(QPen(color, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            drawSign(painter, sign);
            painter.end();
            icon.addPixmap(pixmap, mode);
        }
    return icon;
}
