#pragma once

#include "hosts/qt/gallery/FrameMeter.h"
#include "hosts/qt/gallery/InstrumentCard.h"

#include <QElapsedTimer>
#include <QMainWindow>
#include <QTimer>

#include <functional>
#include <memory>

class CardGrid;
class Inspector;
class QActionGroup;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QScrollArea;
class QToolButton;

/// The gallery: every instrument, live and in motion, with switches for all of them at once, and an inspector
/// for one.
class GalleryWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit GalleryWindow(QWidget* parent = nullptr);
    ~GalleryWindow() override;

    CardGrid& grid() const { return *cards; }
    Inspector& inspector() const { return *inspecting; }

    /// Puts every class of instrument on show.
    void showAll();
    /// Selects the first card of a class ("VzSpeedometer" or "TVZSpeedometer"); false where there is none.
    bool selectClass(const QString& className);
    InstrumentCard* selectedCard() const { return selected; }

    // The look of everything.
    void setTheme(Theme value);
    void setGround(Ground value);
    /// Side of the square that each instrument fills, in pixels.
    void setInstrumentSize(int side);
    void setSimpleDesign(bool value);
    void setGradients(bool value);
    void setInstrumentsEnabled(bool value);

    // Motion.
    bool isMoving() const { return ticking.isActive(); }
    void setMoving(bool value);
    /// Brings everything to a moment, in seconds from the beginning of the motion.
    void moveTo(double seconds);

    // Files. They raise what the library raises, and then nothing has changed.

    /// Shows the instruments of a form file in place of those that are there, in the sizes that they have
    /// there; the motion stops. Buttons for all instruments show what these have in common.
    void openForm(const QString& file);
    void saveForm(const QString& file) const;
    void saveSelected(const QString& file) const;
    void exportSelected(const QString& file) const;

    /// A picture of the window as it is now.
    QImage picture();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    struct Choice; ///< one of several buttons, of which one is down

    void addBar();
    void addMenus();
    QAction* addCommand(QMenu* menu, const QString& text, const QKeySequence& keys,
                        std::function<void()> run);
    QToolButton* addButton(QHBoxLayout& bar, QAction* action, const QString& accessibleName);
    QAction* addSwitch(QHBoxLayout& bar, const Choice& choice, std::function<void(bool)> run);
    QActionGroup* addChoice(QHBoxLayout& bar, const QString& name, std::initializer_list<Choice> choices);
    void showChoices();
    void followCards();
    void orderTabs();

    void setCards(std::vector<InstrumentCard*> value, QSize commonSize);
    InstrumentCard* newCard(VzWidget* instrument, const QString& name);
    void select(InstrumentCard* card);
    void setOnAll(const char* property, const QVariant& value);
    void findCards(const QString& text);
    void tick();
    void showFigures();
    void tell(const QString& text);
    /// Runs what may raise; shows the user why it did.
    void attempt(const std::function<void()>& action);

    struct FileQuestion;
    QString askFile(const FileQuestion& question);
    void askOpen();
    void askSave(const QString& suggestion, void (GalleryWindow::*save)(const QString&) const);
    void askExport();
    void copyText(const QString& text, const QString& what);

    CardGrid* cards;
    QScrollArea* scroll;
    Inspector* inspecting;
    QActionGroup* backgrounds = nullptr;
    QActionGroup* sizes = nullptr;
    QAction* simple = nullptr;
    QAction* gradients = nullptr;
    QAction* enabled = nullptr;
    QLineEdit* search = nullptr;
    std::vector<QToolButton*> buttons; ///< of the bar, from left to right
    QLabel* figures = nullptr;
    QLabel* found = nullptr;
    QAction* moving = nullptr;
    InstrumentCard* selected = nullptr;

    Theme theme = Theme::Light;
    Ground ground = Ground::Card;
    int side = 200; ///< of the instruments; 0: each as its form has it
    QString folder; ///< where the last file was

    QTimer ticking;
    QTimer figuring;
    QElapsedTimer clock;
    double moment = 0; ///< of the motion, in seconds
    FrameMeter meter;
};
