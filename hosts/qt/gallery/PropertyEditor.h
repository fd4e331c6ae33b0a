#pragma once

#include <QVariant>
#include <QWidget>

#include <vector>

class QMetaProperty;

/// Shows the value of one property and lets the user change it.
class PropertyEditor : public QWidget {
    Q_OBJECT
public:
    using QWidget::QWidget;

    /// Shows a value; nothing is emitted.
    virtual void setValue(const QVariant& value) = 0;
    /// What assistive technology says of it; what the fields are called where there are several follows from
    /// that.
    virtual void setSpokenName(const QString& name, const QString& description);
    /// All that takes the keyboard, from left to right and from top to bottom.
    virtual std::vector<QWidget*> fields() const { return {focusProxy()}; }
    /// True while the user is at work in it.
    bool isBusy() const;

Q_SIGNALS:
    /// The user wants this value. An enumeration's and a set's is an int.
    void edited(const QVariant& value);
};

/// The editor for the property's type: numbers, switches, colours with transparency, enumerations, sets,
/// texts, lists, fonts, dates with times. What it shows at first is unset.
PropertyEditor* makePropertyEditor(const QMetaProperty& property, QWidget* parent);
