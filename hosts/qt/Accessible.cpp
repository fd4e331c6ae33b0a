#include "hosts/qt/Accessible.h"

#include "hosts/qt/VzWidget.h"

#include "tavro/runtime/FormatFloat.h"
#include "tavro/runtime/Props.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QDateTime>
#include <QLocale>

namespace {

QVariant propertyOf(const QObject& object, const char* name) { return object.property(name); }
bool has(const QObject& object, const char* name) { return object.metaObject()->indexOfProperty(name) >= 0; }

class TAccessibleVzWidget final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit TAccessibleVzWidget(VzWidget* widget)
        : QAccessibleWidget(widget, RoleOf(*widget)) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface && has(*widget(), "value"))
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

    QVariant currentValue() const override { return propertyOf(*widget(), "value"); }
    /// Does nothing where the user could not change the value either.
    void setCurrentValue(const QVariant& value) override {
        if (widget()->focusPolicy() != Qt::NoFocus) widget()->setProperty("value", value);
    }
    QVariant maximumValue() const override { return propertyOf(*widget(), "maximum"); }
    QVariant minimumValue() const override { return propertyOf(*widget(), "minimum"); }
    QVariant minimumStepSize() const override { return {}; }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = widget()->focusPolicy() == Qt::NoFocus;
        return state;
    }

private:
    static QAccessible::Role RoleOf(const QObject& widget) {
        if (has(widget, "time")) return QAccessible::Clock;
        return has(widget, "value") ? QAccessible::Dial : QAccessible::Graphic;
    }

    QString ValueText() const {
        if (has(*widget(), "time"))
            return QLocale().toString(propertyOf(*widget(), "time").toDateTime(), QLocale::ShortFormat);
        if (!has(*widget(), "value")) return {};
        const double value = currentValue().toDouble();
        try {
            const std::string picture = propertyOf(*widget(), "formatStr").toString().toStdString();
            return QString::fromStdString(Vz::FormatFloat(picture.empty() ? "0.#" : picture, value));
        } catch (const Vz::Exception&) { // a picture that cannot be used
            return QString::number(value);
        }
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
