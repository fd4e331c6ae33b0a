#include "hosts/qt/gallery/Inspector.h"

#include "hosts/qt/gallery/InstrumentCard.h"
#include "hosts/qt/gallery/PropertyRow.h"
#include <VzSVGControl.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMetaMethod>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int Inset = 16;
constexpr int TitleIndent = 11; // with the rows' names
constexpr int RefreshMs = 80;   // twelve times a second is as fast as figures are read

/// The groups, in their order, and what belongs to each: the first that fits.
enum Group { ValueGroup, LookGroup, ColorGroup, TextGroup, DrawingGroup, GroupCount };
constexpr const char* GroupTitles[GroupCount] = {
    QT_TRANSLATE_NOOP("Inspector", "VALUE AND SCALE"),
    QT_TRANSLATE_NOOP("Inspector", "LOOK AND BEHAVIOUR"),
    QT_TRANSLATE_NOOP("Inspector", "COLOURS"),
    QT_TRANSLATE_NOOP("Inspector", "TEXT, FONTS AND SHAPES"),
    QT_TRANSLATE_NOOP("Inspector", "DRAWING"),
};

Group groupOf(const QMetaProperty& property, const QByteArray& driven) {
    if (property.name() == driven) return ValueGroup;
    if (VzSVGControl::staticMetaObject.indexOfProperty(property.name()) >= 0) return DrawingGroup;
    if (property.isEnumType()) return LookGroup;
    switch (property.metaType().id()) {
    case QMetaType::QColor:
        return ColorGroup;
    case QMetaType::Bool:
        return LookGroup;
    case QMetaType::Double:
    case QMetaType::Int:
    case QMetaType::QDateTime:
        return ValueGroup;
    default:
        return TextGroup;
    }
}

QLabel* labelOf(const QString& text, const char* kind) {
    auto* const label = new QLabel(text);
    label->setObjectName(QLatin1String(kind));
    return label;
}

} // namespace

Inspector::Inspector(QWidget* parent)
    : QWidget(parent)
    , title(labelOf({}, "title"))
    , subtitle(labelOf({}, "muted"))
    , searchField(new QLineEdit)
    , exporting(new QPushButton(tr("Export")))
    , scroll(new QScrollArea) {
    setObjectName(QStringLiteral("inspector"));
    setAttribute(Qt::WA_StyledBackground);
    setAccessibleName(tr("Inspector"));
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    addHead(*column);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    column->addWidget(scroll, 1);
    refreshing.setSingleShot(true);
    refreshing.setInterval(RefreshMs);
    connect(&refreshing, &QTimer::timeout, this, &Inspector::refresh);
    setMinimumWidth(340);
}

void Inspector::addHead(QVBoxLayout& column) {
    auto* const head = new QVBoxLayout;
    head->setContentsMargins(Inset, Inset, Inset, 12);
    head->setSpacing(2);
    head->addWidget(title);
    head->addWidget(subtitle);
    head->addSpacing(10);

    auto* const row = new QHBoxLayout;
    row->setSpacing(6);
    const auto add = [&](QPushButton* button, const QString& tip) {
        button->setToolTip(tip);
        row->addWidget(button, 1);
        buttons.push_back(button);
    };
    auto* const cpp = new QPushButton(tr("Copy C++"));
    auto* const form = new QPushButton(tr("Copy form"));
    auto* const reset = new QPushButton(tr("Reset all"));
    add(cpp, tr("Lines of code that make this instrument as it is now"));
    add(form, tr("The instrument as a form file: only what differs from the defaults"));
    add(exporting, tr("A picture: PNG, SVG or PDF"));
    add(reset, tr("Give every property its default"));
    connect(cpp, &QPushButton::clicked, this, &Inspector::cppWanted);
    connect(form, &QPushButton::clicked, this, &Inspector::formWanted);
    connect(reset, &QPushButton::clicked, this, &Inspector::resetAll);
    head->addLayout(row);
    head->addSpacing(10);

    searchField->setPlaceholderText(tr("Find a property"));
    searchField->setAccessibleName(tr("Find a property"));
    searchField->setClearButtonEnabled(true);
    connect(searchField, &QLineEdit::textChanged, this, &Inspector::filter);
    head->addWidget(searchField);
    column.addLayout(head);
}

void Inspector::setTheme(Theme value) {
    theme = value;
    for (PropertyRow* row : all)
        row->setColors(themeColors(theme));
}

PropertyRow* Inspector::row(const QByteArray& name) const {
    const auto found = std::ranges::find_if(all, [&](const auto* row) { return row->name() == name; });
    return found == all.end() ? nullptr : *found;
}

void Inspector::setCard(InstrumentCard* value) {
    if (card == value && value) return;
    if (card) disconnect(&card->instrument(), nullptr, this, nullptr);
    card = value;
    title->setText(card ? card->name() : tr("No instrument"));
    subtitle->setText(card ? QLatin1String(card->instrument().metaObject()->className()) : QString());
    fill();
}

void Inspector::fill() {
    all.clear();
    sections.assign(GroupCount, {});
    auto* const rows = new QWidget;
    rows->setObjectName(QStringLiteral("inspectorRows"));
    auto* const column = new QVBoxLayout(rows);
    column->setContentsMargins(Inset - 8, 0, Inset - 6, Inset);
    column->setSpacing(0);
    for (Section& section : sections) {
        section.title = labelOf(tr(GroupTitles[&section - sections.data()]), "section");
        section.title->setContentsMargins(TitleIndent, 0, 0, 0);
        section.title->hide();
        column->addWidget(section.title);
    }
    nothing = labelOf(tr("No property of that name"), "muted");
    nothing->setAlignment(Qt::AlignCenter);
    nothing->setContentsMargins(0, 24, 0, 24);
    column->addWidget(nothing);
    column->addStretch(1);
    if (card) {
        const QMetaObject& meta = *card->instrument().metaObject();
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
            addRow(meta.property(i));
    }
    // The rows stand behind their sections' titles, in the order of the table.
    for (const Section& section : sections) {
        int at = column->indexOf(section.title);
        for (PropertyRow* row : section.rows)
            column->insertWidget(++at, row);
    }
    scroll->setWidget(rows);
    filter();
    Q_EMIT filled();
}

std::vector<QWidget*> Inspector::fields() const {
    std::vector<QWidget*> found(buttons.begin(), buttons.end());
    found.push_back(searchField);
    for (const Section& section : sections)
        for (const PropertyRow* row : section.rows)
            for (QWidget* field : row->fields())
                found.push_back(field);
    return found;
}

void Inspector::addRow(const QMetaProperty& property) {
    VzWidget& instrument = card->instrument();
    auto* const row = new PropertyRow(instrument, property, nullptr);
    row->setColors(themeColors(theme));
    connect(row, &PropertyRow::changed, this, &Inspector::rowChanged);
    connect(row, &PropertyRow::refused, this, &Inspector::message);
    sections[groupOf(property, card->drivenProperty())].rows.push_back(row);
    all.push_back(row);
    static const QMetaMethod slot = staticMetaObject.method(staticMetaObject.indexOfSlot("refreshSoon()"));
    connect(&instrument, property.notifySignal(), this, slot);
}

void Inspector::filter() {
    bool isAny = false;
    for (const Section& section : sections) {
        bool isShown = false;
        for (PropertyRow* row : section.rows) {
            const bool isFound = row->matches(searchField->text());
            row->setVisible(isFound);
            isShown |= isFound;
        }
        section.title->setVisible(isShown);
        isAny |= isShown;
    }
    nothing->setVisible(!isAny);
}

void Inspector::rowChanged(const QByteArray& name, bool isReset) {
    if (card && name == card->drivenProperty()) {
        card->setHeld(!isReset);
        if (!isReset)
            Q_EMIT message(
                tr("%1 is held where you put it; reset the property to let it move").arg(card->name()));
    }
    refreshSoon();
}

void Inspector::resetAll() {
    // Only what differs by then, as some properties set others: a path makes its shape a custom one. And
    // twice, as some hold each other in bounds, such as the ends of a scale.
    for (int pass = 0; pass < 2; ++pass)
        for (PropertyRow* row : all) {
            row->refresh(true);
            if (row->differs()) row->reset();
        }
}

void Inspector::refreshSoon() {
    if (!refreshing.isActive()) refreshing.start();
}

void Inspector::refresh() {
    if (!card || !isVisible()) return;
    for (PropertyRow* row : all)
        row->refresh(false);
}
