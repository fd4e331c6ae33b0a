// The window's bar and menus.

#include "hosts/qt/VzWidget.h"
#include "hosts/qt/gallery/CppText.h"
#include "hosts/qt/gallery/GalleryWindow.h"
#include "hosts/qt/gallery/Inspector.h"
#include "runtime/FormFile.h"

#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int GroupGap = 18;

QToolButton* buttonOf(QAction* action) {
    auto* const button = new QToolButton;
    button->setDefaultAction(action);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setAccessibleName(action->text());
    return button;
}

const QString& formFilter() {
    static const QString text = QObject::tr("Form files (*.form);;All files (*)");
    return text;
}

} // namespace

struct GalleryWindow::Choice {
    QString text;
    QString tip;
    std::function<void()> run;
};

QActionGroup* GalleryWindow::addChoice(QHBoxLayout& bar, const QString& name, int chosen,
                                       std::initializer_list<Choice> choices) {
    auto* const group = new QActionGroup(this);
    auto* const row = new QHBoxLayout;
    row->setSpacing(4);
    for (const Choice& choice : choices) {
        QAction* const action = group->addAction(choice.text);
        action->setToolTip(choice.tip);
        action->setCheckable(true);
        connect(action, &QAction::triggered, this, [this, run = choice.run] { attempt(run); });
        QToolButton* const button = buttonOf(action);
        button->setAccessibleName(name + u' ' + choice.text);
        row->addWidget(button);
    }
    group->actions()[chosen]->setChecked(true);
    bar.addLayout(row);
    bar.addSpacing(GroupGap);
    return group;
}

void GalleryWindow::addSwitch(QHBoxLayout& bar, const QString& text, const QString& tip, bool isOn,
                              std::function<void(bool)> run) {
    auto* const action = new QAction(text, this);
    action->setToolTip(tip);
    action->setCheckable(true);
    action->setChecked(isOn);
    connect(action, &QAction::toggled, this, [this, run](bool value) { attempt([&] { run(value); }); });
    bar.addWidget(buttonOf(action));
    bar.addSpacing(4);
}

void GalleryWindow::addBar() {
    auto* const central = new QWidget;
    auto* const column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    auto* const frame = new QWidget;
    frame->setObjectName(QStringLiteral("bar"));
    frame->setAttribute(Qt::WA_StyledBackground);
    auto* const bar = new QHBoxLayout(frame);
    bar->setContentsMargins(16, 8, 16, 8);
    bar->setSpacing(0);

    search = new QLineEdit;
    search->setPlaceholderText(tr("Find an instrument"));
    search->setAccessibleName(tr("Find an instrument"));
    search->setClearButtonEnabled(true);
    search->setFixedWidth(190);
    connect(search, &QLineEdit::textChanged, this, &GalleryWindow::findCards);
    bar->addWidget(search);
    bar->addSpacing(GroupGap);

    backgrounds = addChoice(
        *bar, tr("Background"), 0,
        {{tr("Light"), tr("Light background"), [this] { setGround(Ground::Card), setTheme(Theme::Light); }},
         {tr("Dark"), tr("Dark background"), [this] { setGround(Ground::Card), setTheme(Theme::Dark); }},
         {tr("Clear"), tr("Chequers, which show what is transparent"),
          [this] { setGround(Ground::Checker); }}});
    addChoice(*bar, tr("Size"), 2,
              {{tr("48"), tr("48 pixels"), [this] { setInstrumentSize(48); }},
               {tr("100"), tr("100 pixels"), [this] { setInstrumentSize(100); }},
               {tr("200"), tr("200 pixels"), [this] { setInstrumentSize(200); }},
               {tr("400"), tr("400 pixels"), [this] { setInstrumentSize(400); }}});
    addSwitch(*bar, tr("Simple"), tr("The simple design for all instruments"), false,
              [this](bool isOn) { setSimpleDesign(isOn); });
    addSwitch(*bar, tr("Gradients"), tr("Gradients in all instruments"), true,
              [this](bool isOn) { setGradients(isOn); });
    addSwitch(*bar, tr("Enabled"), tr("All instruments enabled"), true,
              [this](bool isOn) { setInstrumentsEnabled(isOn); });
    bar->addStretch(1);

    figures = new QLabel;
    figures->setObjectName(QStringLiteral("muted"));
    figures->setToolTip(tr("Time spent in painting a frame of the window, and frames in a second"));
    bar->addWidget(figures);
    bar->addSpacing(12);
    moving = new QAction(this);
    moving->setShortcut(Qt::Key_F5);
    connect(moving, &QAction::triggered, this, [this] { setMoving(!isMoving()); });
    QToolButton* const button = buttonOf(moving);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->addWidget(button);

    column->addWidget(frame);
    found = new QLabel;
    found->setObjectName(QStringLiteral("muted"));
    found->setAlignment(Qt::AlignCenter);
    found->setContentsMargins(0, 24, 0, 24);
    column->addWidget(found);
    setCentralWidget(central);
}

QAction* GalleryWindow::addCommand(QMenu* menu, const QString& text, const QKeySequence& keys,
                                   std::function<void()> run) {
    QAction* const action = menu->addAction(text);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, [this, run = std::move(run)] { attempt(run); });
    return action;
}

void GalleryWindow::addMenus() {
    const auto copyCpp = [this] {
        if (selected) copyText(cppText(selected->instrument()), tr("The C++ lines"));
    };
    const auto copyForm = [this] {
        if (!selected) return;
        const std::string text = Vz::WriteForm(selected->instrument().component());
        copyText(QString::fromStdString(text), tr("The form"));
    };
    const auto focusOn = [](QLineEdit& field) {
        field.setFocus(Qt::ShortcutFocusReason);
        field.selectAll();
    };

    QMenu* const file = menuBar()->addMenu(tr("&File"));
    addCommand(file, tr("&Open form..."), QKeySequence::Open, [this] { askOpen(); });
    addCommand(file, tr("&Save all as form..."), QKeySequence::Save,
               [this] { askSave(tr("gallery"), &GalleryWindow::saveForm); });
    addCommand(file, tr("Save &selected as form..."), QKeySequence(QStringLiteral("Ctrl+Shift+S")),
               [this] { askSave(selected ? selected->name() : QString(), &GalleryWindow::saveSelected); });
    addCommand(file, tr("&Export picture..."), QKeySequence(QStringLiteral("Ctrl+E")),
               [this] { askExport(); });
    file->addSeparator();
    addCommand(file, tr("Show &all instruments"), QKeySequence(QStringLiteral("Ctrl+Shift+A")),
               [this] { showAll(); });
    file->addSeparator();
    addCommand(file, tr("&Quit"), QKeySequence::Quit, [this] { close(); });

    QMenu* const edit = menuBar()->addMenu(tr("&Edit"));
    addCommand(edit, tr("Copy as &C++"), QKeySequence(QStringLiteral("Ctrl+Shift+C")), copyCpp);
    addCommand(edit, tr("Copy as &form"), QKeySequence(QStringLiteral("Ctrl+Shift+X")), copyForm);
    addCommand(edit, tr("&Reset all properties"), QKeySequence(QStringLiteral("Ctrl+R")),
               [this] { inspecting->resetAll(); });
    edit->addSeparator();
    addCommand(edit, tr("Find an &instrument"), QKeySequence::Find, [this, focusOn] { focusOn(*search); });
    addCommand(edit, tr("Find a &property"), QKeySequence(QStringLiteral("Ctrl+Shift+F")),
               [this, focusOn] { focusOn(inspecting->search()); });

    QMenu* const view = menuBar()->addMenu(tr("&View"));
    view->addAction(moving);
    connect(inspecting, &Inspector::cppWanted, this, [this, copyCpp] { attempt(copyCpp); });
    connect(inspecting, &Inspector::formWanted, this, [this, copyForm] { attempt(copyForm); });
    connect(&inspecting->exportButton(), &QPushButton::clicked, this,
            [this] { attempt([this] { askExport(); }); });
}

void GalleryWindow::copyText(const QString& text, const QString& what) {
    QApplication::clipboard()->setText(text);
    tell(tr("%1 of %2 are in the clipboard").arg(what, selected->name()));
}

void GalleryWindow::askOpen() {
    const QString file = QFileDialog::getOpenFileName(this, tr("Open a form"), QString(), formFilter());
    if (!file.isEmpty()) openForm(file);
}

void GalleryWindow::askSave(const QString& suggestion, void (GalleryWindow::*save)(const QString&) const) {
    const QString file = QFileDialog::getSaveFileName(
        this, tr("Save a form"), suggestion.simplified().remove(u' ') + QStringLiteral(".form"),
        formFilter());
    if (file.isEmpty()) return;
    (this->*save)(file);
    tell(tr("Saved as %1").arg(file));
}

void GalleryWindow::askExport() {
    if (!selected) return;
    const QString file = QFileDialog::getSaveFileName(this, tr("Export a picture"),
                                                      selected->name().remove(u' ') + QStringLiteral(".png"),
                                                      tr("Pictures (*.png *.svg *.pdf)"));
    if (file.isEmpty()) return;
    exportSelected(file);
    tell(tr("Saved as %1").arg(file));
}
