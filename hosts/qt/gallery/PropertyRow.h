#pragma once

#include <QMetaProperty>
#include <QWidget>

#include <vector>

class PropertyEditor;
class QLabel;
class QToolButton;
class VzWidget;
struct ThemeColors;

/// One property of an instrument in the inspector: its name, bold and with a dot where the value differs from
/// the default, an editor, and a button that resets it.
class PropertyRow : public QWidget {
    Q_OBJECT
public:
    PropertyRow(VzWidget& instrument, const QMetaProperty& property, QWidget* parent);

    QByteArray name() const { return property.name(); }
    bool matches(const QString& words) const;
    bool differs() const { return isDifferent; }

    /// Shows the property's value of now; a row in which the user is at work only with `evenIfBusy`.
    void refresh(bool evenIfBusy);
    void setColors(const ThemeColors& colors);

    /// Sets the property as if the user had typed the value.
    void edit(const QVariant& value);
    void reset();
    /// All that takes the keyboard, from left to right and from top to bottom.
    std::vector<QWidget*> fields() const;

Q_SIGNALS:
    /// The user changed the property or reset it.
    void changed(const QByteArray& name, bool isReset);
    /// The property does not take the value; why.
    void refused(const QString& reason);

private:
    void mark(bool different);

    VzWidget& instrument;
    QMetaProperty property;
    QLabel* dot;
    QLabel* label;
    PropertyEditor* editor;
    QToolButton* resetButton;
    QVariant last;
    QString dotText;
    bool isDifferent = false;
};

/// The property's value; an enumeration's and a set's as an int.
QVariant plainValue(const VzWidget& instrument, const QMetaProperty& property);
