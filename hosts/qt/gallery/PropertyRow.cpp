#include "hosts/qt/gallery/PropertyRow.h"

#include "hosts/qt/PropVariant.h"
#include "hosts/qt/VzWidget.h"
#include "hosts/qt/gallery/CardGrid.h"
#include "hosts/qt/gallery/InstrumentCard.h"
#include "hosts/qt/gallery/PropertyEditor.h"
#include "hosts/qt/gallery/Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace {

constexpr int DotWidth = 10;
constexpr int NameWidth = 126;

} // namespace

QVariant plainValue(const VzWidget& instrument, const QMetaProperty& property) {
    const QByteArray path = instrument.componentProperty(property.name());
    return propToVariant(Vz::ResolveProp(instrument.component(), path.toStdString()));
}

PropertyRow::PropertyRow(VzWidget& shown, const QMetaProperty& its, QWidget* parent)
    : QWidget(parent)
    , instrument(shown)
    , property(its)
    , dot(new QLabel(this))
    , label(new QLabel(propertyWords(its.name()), this))
    , editor(makePropertyEditor(its, this))
    , resetButton(new QToolButton(this)) {
    const QString words = label->text();
    const QString tip =
        QStringLiteral("%1: %2").arg(QLatin1String(its.name()), QLatin1String(its.typeName()));
    label->setToolTip(tip);
    label->setWordWrap(true);
    label->setFixedWidth(NameWidth);
    label->setBuddy(editor);
    dot->setFixedWidth(DotWidth);
    editor->setSpokenName(words, tip);
    resetButton->setObjectName(QStringLiteral("flat"));
    resetButton->setToolTip(tr("Reset %1").arg(words));
    resetButton->setAccessibleName(tr("Reset %1").arg(words));

    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 3, 0, 3);
    row->setSpacing(4);
    const bool isTall = property.isFlagType() || property.metaType().id() == QMetaType::QStringList;
    const Qt::Alignment place = isTall ? Qt::AlignTop : Qt::AlignVCenter;
    row->addWidget(dot, 0, place);
    row->addWidget(label, 0, place);
    if (isTall) label->setContentsMargins(0, 3, 0, 0);
    row->addWidget(editor, 1);
    row->addWidget(resetButton, 0, place);

    connect(editor, &PropertyEditor::edited, this, &PropertyRow::edit);
    connect(resetButton, &QToolButton::clicked, this, &PropertyRow::reset);
    mark(false);
    refresh(true);
}

bool PropertyRow::matches(const QString& words) const {
    return holdsWords(label->text() + u' ' + QLatin1String(property.name()), words);
}

void PropertyRow::setColors(const ThemeColors& colors) {
    resetButton->setIcon(signIcon(Sign::Reset, colors));
    dotText = QStringLiteral("<span style='color:%1'>\u25CF</span>").arg(colors.accent.name());
    mark(isDifferent);
}

void PropertyRow::refresh(bool evenIfBusy) {
    const QVariant now = plainValue(instrument, property);
    const bool different = instrument.isPropertyStored(property.name());
    if (different != isDifferent) mark(different);
    if (!evenIfBusy && (now == last || editor->isBusy())) return;
    last = now;
    editor->setValue(now);
}

void PropertyRow::mark(bool different) {
    isDifferent = different;
    QFont font = label->font();
    font.setBold(different);
    label->setFont(font);
    dot->setText(different ? dotText : QString());
    resetButton->setEnabled(different);
}

std::vector<QWidget*> PropertyRow::fields() const {
    std::vector<QWidget*> found = editor->fields();
    found.push_back(resetButton);
    return found;
}

void PropertyRow::edit(const QVariant& value) {
    try {
        const QByteArray path = instrument.componentProperty(property.name());
        propFromVariant(Vz::ResolveProp(instrument.component(), path.toStdString()), value);
    } catch (const std::exception& error) {
        Q_EMIT refused(QString::fromUtf8(error.what()));
    }
    refresh(true);
    Q_EMIT changed(name(), false);
}

void PropertyRow::reset() {
    property.reset(&instrument);
    refresh(true);
    Q_EMIT changed(name(), true);
}
