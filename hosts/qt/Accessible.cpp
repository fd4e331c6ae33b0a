#include "hosts/qt/Accessible.h"

#include "hosts/qt/VzWidget.h"

#include "tavro/runtime/FormatFloat.h"
#include "tavro/runtime/PropAccess.h"
#include "tavro/runtime/Props.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QDateTime>
#include <QLocale>
#include <QMetaProperty>

#include <cmath>

namespace {

QVariant propertyOf(const QObject& object, const char* name) { return object.property(name); }

using Vz::TQuantity;

/// What the widget's main value tells.
TQuantity quantityOf(const VzWidget& widget) {
    const Vz::TProp* const row = Vz::FindMainProp(widget.component());
    return row ? row->Main : TQuantity::None;
}

bool isNumber(TQuantity quantity) { return quantity >= TQuantity::Value && quantity <= TQuantity::Position; }

/// The nearest of eight directions to degrees clockwise from north.
QString directionOf(double degrees) {
    static constexpr const char* names[] = {"north", "north-east", "east", "south-east",
                                            "south", "south-west", "west", "north-west"};
    const double turn = degrees / 360 - std::floor(degrees / 360);
    return QString::fromLatin1(names[std::lround(turn * 8) % 8]);
}

class TAccessibleVzWidget final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit TAccessibleVzWidget(VzWidget* widget)
        : QAccessibleWidget(widget, RoleOf(quantityOf(*widget)))
        , FShown(widget) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface && isNumber(quantityOf(*FShown)))
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Value) return ValueText();
        const QString own = QAccessibleWidget::text(kind);
        if (kind != QAccessible::Name || !own.isEmpty()) return own;
        const QString caption = propertyOf(*widget(), "caption").toString();
        return caption.isEmpty() ? ClassWords() : caption;
    }

    QVariant currentValue() const override { return MainProperty().read(widget()); }
    /// Does nothing where the user could not change the value either.
    void setCurrentValue(const QVariant& value) override {
        if (widget()->focusPolicy() != Qt::NoFocus) MainProperty().write(widget(), value);
    }
    QVariant maximumValue() const override { return propertyOf(*widget(), "maximum"); }
    QVariant minimumValue() const override { return propertyOf(*widget(), "minimum"); }
    QVariant minimumStepSize() const override { return {}; }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = widget()->focusPolicy() == Qt::NoFocus;
        if (quantityOf(*FShown) == TQuantity::Switch) {
            state.checkable = true;
            state.checked = currentValue().toBool();
        }
        return state;
    }

private:
    static QAccessible::Role RoleOf(TQuantity quantity) {
        switch (quantity) {
        case TQuantity::None:
            return QAccessible::Graphic;
        case TQuantity::Switch:
            return QAccessible::CheckBox;
        case TQuantity::Position:
            return QAccessible::Dial;
        case TQuantity::TimeOfDay:
        case TQuantity::Date:
            return QAccessible::Clock;
        default:
            return QAccessible::Indicator;
        }
    }

    QMetaProperty MainProperty() const { return widget()->metaObject()->userProperty(); }

    QString ValueText() const {
        const QVariant value = quantityOf(*FShown) == TQuantity::None ? QVariant() : currentValue();
        switch (quantityOf(*FShown)) {
        case TQuantity::None:
            return {};
        case TQuantity::TimeOfDay:
        case TQuantity::Date:
            return QLocale().toString(value.toDateTime(), QLocale::ShortFormat);
        case TQuantity::Heading:
            return QStringLiteral("%1 degrees, %2")
                .arg(std::lround(value.toDouble()))
                .arg(directionOf(value.toDouble()));
        case TQuantity::Switch:
            return value.toBool() ? QStringLiteral("on") : QStringLiteral("off");
        case TQuantity::Lamps:
            return LampWords(value.toInt());
        default:
            return NumberText(value.toDouble());
        }
    }

    QString NumberText(double value) const {
        try {
            const std::string picture = propertyOf(*widget(), "formatStr").toString().toStdString();
            return QString::fromStdString(Vz::FormatFloat(picture.empty() ? "0.#" : picture, value));
        } catch (const Vz::Exception&) { // a picture that cannot be used
            return QString::number(value);
        }
    }

    /// "ltRed" is "red"; all that are lit, or "off".
    QString LampWords(int lit) const {
        const QMetaEnum members = MainProperty().enumerator();
        QStringList words;
        for (int i = 0; i < members.keyCount(); ++i)
            if (lit & members.value(i)) words += QString::fromLatin1(members.key(i)).mid(2).toLower();
        return words.isEmpty() ? QStringLiteral("off") : words.join(QStringLiteral(", "));
    }

    /// "VzCircularClock" is "Circular Clock".
    QString ClassWords() const {
        QString words;
        for (const QChar letter : QString::fromLatin1(widget()->metaObject()->className()).mid(2)) {
            if (letter.isUpper() && !words.isEmpty() && words.back().isLower()) words += u' ';
            words += letter;
        }
        return words;
    }

    VzWidget* const FShown;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* const widget = qobject_cast<VzWidget*>(object);
    return widget ? new TAccessibleVzWidget(widget) : nullptr;
}

} // namespace

void installAccessibleFactory() {
    static const bool isInstalled = (QAccessible::installFactory(makeInterface), true);
    static_cast<void>(isInstalled);
}
