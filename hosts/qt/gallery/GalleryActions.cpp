// The window's bar and menus.

#include "hosts/qt/VzWidget.h"
#include "hosts/qt/gallery/CppText.h"
#include "hosts/qt/gallery/GalleryWindow.h"
#include "hosts/qt/gallery/Inspector.h"
#include "tavro/runtime/FormFile.h"

#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QDir>
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

const QStringList& formFilters() {
    static const QStringList filters{QObject::tr("Form files (*.form)"), QObject::tr("All files (*)")};
    return filters;
}

/// The ending that a filter such as "PNG (*.png)" stands for; empty for that of all files.
QString endingOf(const QString& filter) {
    return filter.contains(u"*.") ? filter.section(QStringLiteral("*."), 1).remove(u')') : QString();
}

} // namespace

struct GalleryWindow::Choice {
    QString text; ///< in the menu
    QString shortText;
    QString tip;
    QKeySequence keys;
    std::function<void()> run = {};
    QVariant data = {};
};

QToolButton* GalleryWindow::addButton(QHBoxLayout& bar, QAction* action, const QString& accessibleName) {
    auto* const button = new QToolButton;
    button->setDefaultAction(action);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setAccessibleName(accessibleName);
    bar.addWidget(button);
    buttons.push_back(button);
    return button;
}

QActionGroup* GalleryWindow::addChoice(QHBoxLayout& bar, const QString& name,
                                       std::initializer_list<Choice> choices) {
    auto* const group = new QActionGroup(this);
    auto* const row = new QHBoxLayout;
    row->setSpacing(4);
    for (const Choice& choice : choices) {
        QAction* const action = group->addAction(choice.text);
        action->setIconText(choice.shortText);
        action->setToolTip(choice.tip);
        action->setShortcut(choice.keys);
        action->setData(choice.data);
        action->setCheckable(true);
        connect(action, &QAction::triggered, this, [this, run = choice.run] { attempt(run); });
        addButton(*row, action, name + u' ' + QString(choice.text).remove(u'&'));
    }
    bar.addLayout(row);
    bar.addSpacing(GroupGap);
    return group;
}

QAction* GalleryWindow::addSwitch(QHBoxLayout& bar, const Choice& choice, std::function<void(bool)> run) {
    auto* const action = new QAction(choice.text, this);
    action->setIconText(choice.shortText);
    action->setToolTip(choice.tip);
    action->setShortcut(choice.keys);
    action->setCheckable(true);
    connect(action, &QAction::triggered, this, [this, run](bool value) { attempt([&] { run(value); }); });
    addButton(bar, action, choice.shortText);
    return action;
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
    search->setMinimumWidth(120);
    search->setMaximumWidth(240);
    connect(search, &QLineEdit::textChanged, this, &GalleryWindow::findCards);
    bar->addWidget(search, 1);
    bar->addSpacing(GroupGap);

    const auto keys = [](const char* text) { return QKeySequence(QLatin1String(text)); };
    backgrounds = addChoice(*bar, tr("Background"),
                            {{tr("&Light"), tr("Light"), tr("Light background"), keys("Ctrl+Shift+L"),
                              [this] { setGround(Ground::Card), setTheme(Theme::Light); }},
                             {tr("&Dark"), tr("Dark"), tr("Dark background"), keys("Ctrl+Shift+D"),
                              [this] { setGround(Ground::Card), setTheme(Theme::Dark); }},
                             {tr("&Chequers"), tr("Chequers"), tr("Chequers, which show what is transparent"),
                              keys("Ctrl+Shift+K"), [this] { setGround(Ground::Checker); }}});
    const auto size = [&](int px, const char* shortcut) {
        const QString words = tr("%1 pixels").arg(px);
        return Choice{
            words, QString::number(px), words, keys(shortcut), [this, px] { setInstrumentSize(px); }, px};
    };
    sizes = addChoice(*bar, tr("Size"),
                      {size(48, "Ctrl+1"), size(100, "Ctrl+2"), size(200, "Ctrl+3"), size(400, "Ctrl+4")});
    auto* const switches = new QHBoxLayout;
    switches->setSpacing(4);
    bar->addLayout(switches);
    simple = addSwitch(
        *switches, {tr("&Simple"), tr("Simple"), tr("The simple design for all instruments"), keys("Ctrl+D")},
        [this](bool isOn) { setSimpleDesign(isOn); });
    gradients = addSwitch(
        *switches, {tr("&Gradients"), tr("Gradients"), tr("Gradients in all instruments"), keys("Ctrl+G")},
        [this](bool isOn) { setGradients(isOn); });
    enabled = addSwitch(*switches,
                        {tr("&Enabled"), tr("Enabled"), tr("All instruments enabled"), keys("Ctrl+Shift+E")},
                        [this](bool isOn) { setInstrumentsEnabled(isOn); });
    bar->addSpacing(GroupGap);
    bar->addStretch(1);

    moving = new QAction(this);
    moving->setShortcut(Qt::Key_F5);
    connect(moving, &QAction::triggered, this, [this] { setMoving(!isMoving()); });
    addButton(*bar, moving, {})->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    figures = new QLabel;
    figures->setObjectName(QStringLiteral("muted"));
    figures->setContentsMargins(0, 0, 12, 0);
    figures->setToolTip(tr("Time spent in painting a frame of the window, and frames in a second"));

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
    addCommand(file, tr("&Quit"), QKeySequence(QStringLiteral("Ctrl+Q")), [this] { close(); });

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
    view->addMenu(tr("&Background"))->addActions(backgrounds->actions());
    view->addMenu(tr("S&ize"))->addActions(sizes->actions());
    view->addSeparator();
    view->addActions({simple, gradients, enabled});
    view->addSeparator();
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

struct GalleryWindow::FileQuestion {
    QString title;
    QFileDialog::AcceptMode mode;
    QString suggestion;
    QStringList filters;
};

/// A file's name, or an empty one when the user thought better of it. One to save gets the ending of the
/// filter where the user gave it none.
QString GalleryWindow::askFile(const FileQuestion& question) {
    QFileDialog dialog(this, question.title, folder);
    dialog.setAcceptMode(question.mode);
    const bool isSaving = question.mode == QFileDialog::AcceptSave;
    dialog.setFileMode(isSaving ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setNameFilters(question.filters);
    if (isSaving) {
        dialog.setDefaultSuffix(endingOf(question.filters.front()));
        connect(&dialog, &QFileDialog::filterSelected, &dialog,
                [&dialog](const QString& filter) { dialog.setDefaultSuffix(endingOf(filter)); });
        dialog.selectFile(question.suggestion);
    }
    if (dialog.exec() != QDialog::Accepted) return {};
    folder = dialog.directory().absolutePath();
    return dialog.selectedFiles().value(0);
}

void GalleryWindow::askOpen() {
    const QString file = askFile({tr("Open a form"), QFileDialog::AcceptOpen, {}, formFilters()});
    if (!file.isEmpty()) openForm(file);
}

void GalleryWindow::askSave(const QString& suggestion, void (GalleryWindow::*save)(const QString&) const) {
    const QString name = suggestion.simplified().remove(u' ');
    const QString file = askFile({tr("Save a form"), QFileDialog::AcceptSave, name, formFilters()});
    if (file.isEmpty()) return;
    (this->*save)(file);
    tell(tr("Saved as %1").arg(file));
}

void GalleryWindow::askExport() {
    if (!selected) return;
    const QString file = askFile({tr("Export a picture"),
                                  QFileDialog::AcceptSave,
                                  selected->name().remove(u' '),
                                  {tr("PNG (*.png)"), tr("SVG (*.svg)"), tr("PDF (*.pdf)")}});
    if (file.isEmpty()) return;
    exportSelected(file);
    tell(tr("Saved as %1").arg(file));
}
