#pragma once

#include "hosts/qt/gallery/Theme.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <vector>

class InstrumentCard;
class PropertyRow;
class QLabel;
class QLineEdit;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

/// All properties of one instrument, in groups, with editors that follow the instrument as it moves. Editing
/// the property that the motion drives holds the instrument; resetting it lets it go.
class Inspector : public QWidget {
    Q_OBJECT
public:
    explicit Inspector(QWidget* parent = nullptr);

    /// Null shows nothing.
    void setCard(InstrumentCard* card);
    void setTheme(Theme theme);
    /// The row of a property by its name in the widget, or null.
    PropertyRow* row(const QByteArray& name) const;
    const std::vector<PropertyRow*>& rows() const { return all; }
    QLineEdit& search() const { return *searchField; }
    QPushButton& exportButton() const { return *exporting; }
    /// Shows the values of now at once.
    void refresh();
    /// Every property gets its default.
    void resetAll();
    /// All that takes the keyboard, in the order in which it stands.
    std::vector<QWidget*> fields() const;

Q_SIGNALS:
    /// The rows are those of another instrument.
    void filled();
    void cppWanted();
    void formWanted();
    /// Something to tell the user.
    void message(const QString& text);

private:
    struct Section {
        QLabel* title;
        std::vector<PropertyRow*> rows;
    };

    void addHead(QVBoxLayout& column);
    void fill();
    void addRow(const QMetaProperty& property);
    void filter();
    void rowChanged(const QByteArray& name, bool isReset);

private Q_SLOTS:
    void refreshSoon();

private:
    QPointer<InstrumentCard> card;
    QLabel* title;
    QLabel* subtitle;
    QLineEdit* searchField;
    QPushButton* exporting;
    std::vector<QPushButton*> buttons;
    QScrollArea* scroll;
    QLabel* nothing = nullptr;
    std::vector<PropertyRow*> all;
    std::vector<Section> sections;
    QTimer refreshing;
    Theme theme = Theme::Light;
};
