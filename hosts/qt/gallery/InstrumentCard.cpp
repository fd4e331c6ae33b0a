#include "hosts/qt/gallery/InstrumentCard.h"

#include "hosts/qt/VzWidget.h"

#include <QKeyEvent>
#include <QLabel>
#include <QMetaProperty>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int Margin = 14;
constexpr int Gap = 10; // between instrument and name
constexpr int NameHeight = 20;
constexpr int LeastWidth = 148; // the names' room
constexpr int CheckerSize = 10;

/// `name` cut before each capital that begins a word.
QStringList wordsOf(const QString& name) {
    QStringList words(QString{});
    for (qsizetype i = 0; i < name.size(); ++i) {
        const bool isCapital = name[i].isUpper();
        const bool endsRun =
            i > 0 && (name[i - 1].isLower() || (i + 1 < name.size() && name[i + 1].isLower()));
        if (isCapital && endsRun) words << QString();
        words.back() += name[i];
    }
    return words;
}

} // namespace

QString classWords(const char* className) {
    const QString name = QString::fromLatin1(className);
    return wordsOf(name.startsWith(u"Vz") ? name.mid(2) : name).join(u' ');
}

QString propertyWords(const char* propertyName) {
    QString words = wordsOf(QString::fromLatin1(propertyName)).join(u' ').toLower();
    if (!words.isEmpty()) words[0] = words[0].toUpper();
    return words;
}

InstrumentCard::InstrumentCard(VzWidget* instrument, const QString& name, QWidget* parent)
    : QWidget(parent)
    , shown(instrument)
    , label(new QLabel(name, this))
    , searched(name + u' ' + QLatin1String(instrument->metaObject()->className()))
    , motion(motionOf(*instrument)) {
    setAttribute(Qt::WA_OpaquePaintEvent); // nothing beneath needs to be painted for a needle's move
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(name);
    shown->setParent(this);
    shown->setAccessibleName(name);
    label->setAlignment(Qt::AlignCenter);
    label->setObjectName(QStringLiteral("caption"));
    label->setToolTip(QLatin1String(instrument->metaObject()->className()));
    connect(shown, &VzWidget::clicked, this, &InstrumentCard::picked);
}

QString InstrumentCard::name() const { return label->text(); }

void InstrumentCard::setInstrumentSize(QSize value) {
    size = value;
    updateGeometry();
    placeChildren();
}

void InstrumentCard::setGround(Ground value) {
    ground = value;
    update();
}

void InstrumentCard::setTheme(Theme value) {
    theme = value;
    update();
}

void InstrumentCard::setSelected(bool value) {
    selected = value;
    update();
}

void InstrumentCard::moveTo(double seconds) {
    if (!held && motion.valueAt) shown->setProperty(motion.property.constData(), motion.valueAt(seconds));
}

QSize InstrumentCard::sizeHint() const {
    return {std::max(size.width() + 2 * Margin, LeastWidth), size.height() + 2 * Margin + Gap + NameHeight};
}

void InstrumentCard::placeChildren() {
    const int nameTop = height() - Margin - NameHeight;
    const int room = nameTop - Gap - Margin;
    shown->setGeometry(
        QRect(QPoint((width() - size.width()) / 2, Margin + (room - size.height()) / 2), size));
    label->setGeometry(4, nameTop, width() - 8, NameHeight);
}

void InstrumentCard::resizeEvent(QResizeEvent*) { placeChildren(); }

void InstrumentCard::paintEvent(QPaintEvent* event) {
    const ThemeColors& colors = themeColors(theme);
    QPainter painter(this);
    // The move of a needle stays within the instrument.
    if (ground == Ground::Card && shown->geometry().contains(event->rect())) {
        painter.fillRect(event->rect(), colors.card);
        return;
    }
    painter.fillRect(event->rect(), colors.ground);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isMarked = selected || hasFocus();
    const double pen = isMarked ? 2 : 1;
    painter.setPen(QPen(isMarked ? colors.accent : colors.border, pen,
                        hasFocus() && !selected ? Qt::DashLine : Qt::SolidLine));
    painter.setBrush(colors.card);
    painter.drawRoundedRect(QRectF(rect()).adjusted(pen / 2, pen / 2, -pen / 2, -pen / 2), 8, 8);
    if (ground == Ground::Card) return;
    const QRect area = shown->geometry();
    painter.setClipRect(area);
    painter.fillRect(area, colors.checkerLight);
    for (int y = 0; y < area.height(); y += CheckerSize)
        for (int x = (y / CheckerSize % 2) * CheckerSize; x < area.width(); x += 2 * CheckerSize)
            painter.fillRect(area.x() + x, area.y() + y, CheckerSize, CheckerSize, colors.checkerDark);
}

void InstrumentCard::mousePressEvent(QMouseEvent*) { Q_EMIT picked(); }

void InstrumentCard::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Q_EMIT picked();
        return;
    default:
        QWidget::keyPressEvent(event); // the arrow keys are the grid's
    }
}
