// The gallery by mouse and keyboard: its dialogs, the order of the Tab key, names for assistive technology,
// keys, and what its buttons show.

#include "hosts/qt/gallery/CardGrid.h"
#include "tests/unit/qt/Gallery.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QClipboard>
#include <QDropEvent>
#include <QFileDialog>
#include <QImage>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <functional>
#include <set>

namespace {

/// Answers the dialogs that a command opens, one step each, and closes those that come beyond.
class TAnswers : public QObject {
public:
    using TStep = std::function<void(QDialog&)>;
    explicit TAnswers(std::vector<TStep> steps)
        : Steps(std::move(steps)) {
        connect(&Looking, &QTimer::timeout, this, [this] { look(); });
        Looking.start(5);
    }
    size_t Seen = 0;
    QStringList Texts; ///< of the message boxes

private:
    void look() {
        auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog || dialog == Last || !dialog->isVisible()) return;
        Last = dialog;
        if (const auto* const box = qobject_cast<QMessageBox*>(dialog)) Texts << box->text();
        if (Seen < Steps.size())
            Steps[Seen++](*dialog);
        else
            dialog->reject();
    }

    std::vector<TStep> Steps;
    QTimer Looking;
    QPointer<QDialog> Last;
};

/// Types a name into a dialog for files.
TAnswers::TStep choosing(const QString& name, const QString& filter = {}) {
    return [=](QDialog& dialog) {
        auto& files = dynamic_cast<QFileDialog&>(dialog);
        if (!filter.isEmpty()) {
            files.selectNameFilter(filter);
            Q_EMIT files.filterSelected(filter);
        }
        files.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(name);
        static_cast<QDialog&>(files).accept();
    };
}
void close(QDialog& dialog) { dialog.accept(); }

class GalleryUse : public Gallery {
protected:
    GalleryUse() {
        QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        window.activateWindow();
        QApplication::processEvents();
    }
    QAction& action(const char* text) {
        for (QAction* each : actions())
            if (each->text().remove(u'&') == QLatin1String(text)) return *each;
        throw std::runtime_error(text);
    }
    /// Of all menus, with those below.
    std::vector<QAction*> actions() {
        std::vector<QAction*> found;
        for (QMenu* menu : window.menuBar()->findChildren<QMenu*>())
            for (QAction* each : menu->actions())
                if (!each->isSeparator() && !each->menu()) found.push_back(each);
        return found;
    }
    QToolButton& button(const char* name) {
        for (auto* each : window.findChildren<QToolButton*>())
            if (each->text() == QLatin1String(name)) return *each;
        throw std::runtime_error(name);
    }
    QString saved(const char* text, const char* name) {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return file.fileName();
    }
};

// Dialogs.

TEST_F(GalleryUse, SavesAndOpensThroughDialogs) {
    {
        TAnswers answers({choosing(path("all"))});
        action("Save all as form...").trigger();
        EXPECT_EQ(answers.Seen, 1u);
        EXPECT_TRUE(answers.Texts.isEmpty());
    }
    EXPECT_TRUE(content(path("all.form")).startsWith("object Gallery: TVZForm")) << "with its ending";
    EXPECT_TRUE(window.statusBar()->currentMessage().contains(path("all.form")));
    {
        TAnswers answers({choosing(path("one.form"))});
        window.selectClass(QStringLiteral("VzCircularClock"));
        action("Save selected as form...").trigger();
    }
    {
        TAnswers answers({choosing(path("one.form"))});
        action("Open form...").trigger();
        EXPECT_TRUE(answers.Texts.isEmpty());
    }
    ASSERT_EQ(window.grid().cards().size(), 1u);
    EXPECT_STREQ(instrument().metaObject()->className(), "VzCircularClock");
    EXPECT_TRUE(window.windowTitle().contains(QStringLiteral("one.form")));
    action("Show all instruments").trigger();
    EXPECT_GT(window.grid().cards().size(), 1u);
    EXPECT_FALSE(window.windowTitle().contains(QStringLiteral("one.form")));
}

TEST_F(GalleryUse, ExportsWithTheEndingOfTheFilter) {
    const std::pair<const char*, const char*> kinds[] = {
        {"PNG (*.png)", "a.png"}, {"SVG (*.svg)", "a.svg"}, {"PDF (*.pdf)", "a.pdf"}};
    for (const auto& [filter, name] : kinds) {
        TAnswers answers({choosing(path("a"), QLatin1String(filter))});
        window.inspector().exportButton().click();
        EXPECT_TRUE(answers.Texts.isEmpty()) << name;
        EXPECT_GT(content(path(name)).size(), 500) << name;
    }
    EXPECT_FALSE(QFile::exists(path("a")));
}

TEST_F(GalleryUse, TellsWhatCouldNotBeReadOrWritten) {
    const QString bad = saved("object A: TVZSpeedometer\n  Max = fast\nend\n", "bad.form");
    const size_t count = window.grid().cards().size();
    const std::tuple<const char*, QString, QString> commands[] = {
        {"Open form...", bad, QStringLiteral("bad.form:2:")},
        {"Save all as form...", bad + QStringLiteral("/x.form"), QStringLiteral("x.form")},
        {"Save selected as form...", path("none/x.form"), QStringLiteral("x.form")},
        {"Export picture...", path("none/x.png"), QStringLiteral("x.png")},
        {"Export picture...", path("x.gif"), QStringLiteral(".png, .svg or .pdf")},
    };
    for (const auto& [command, file, reason] : commands) {
        TAnswers answers({choosing(file), close});
        action(command).trigger();
        EXPECT_EQ(answers.Seen, 2u) << command;
        EXPECT_TRUE(answers.Texts.join(u' ').contains(reason))
            << command << qPrintable(answers.Texts.join(u' '));
    }
    EXPECT_EQ(window.grid().cards().size(), count);
    EXPECT_FALSE(QFile::exists(path("x.gif")));
}

TEST_F(GalleryUse, AClosedDialogChangesNothing) {
    const InstrumentCard* const card = window.selectedCard();
    for (const char* command : {"Open form...", "Save all as form...", "Export picture..."}) {
        TAnswers answers({[](QDialog& dialog) { dialog.reject(); }});
        action(command).trigger();
        EXPECT_EQ(answers.Seen, 1u) << command;
    }
    EXPECT_EQ(window.selectedCard(), card);
    EXPECT_EQ(window.statusBar()->currentMessage(), QString());
}

TEST_F(GalleryUse, AFormThatIsDroppedIsOpened) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(saved("object Fast: TVZSpeedometer\n  Max = 90\nend\n", "a.form"))});
    QDragEnterEvent enter({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &drop);
    ASSERT_EQ(window.grid().cards().size(), 1u);
    EXPECT_EQ(instrument().property("maximum").toDouble(), 90);
}

// What the buttons show.

TEST_F(GalleryUse, AFormSetsTheButtonsToWhatItHas) {
    window.openForm(saved("object A: TVZSpeedometer\n  Width = 100\n  Height = 100\n  Design = sdSimple\n"
                          "  EnableGradients = false\n  Enabled = false\nend\n",
                          "a.form"));
    for (const char* name : {"100", "Simple"})
        EXPECT_TRUE(button(name).isChecked()) << name;
    for (const char* name : {"48", "200", "400", "Gradients", "Enabled"})
        EXPECT_FALSE(button(name).isChecked()) << name;
    EXPECT_EQ(instrument().size(), QSize(100, 100));

    window.openForm(saved("object F: TVZForm\n"
                          "  object A: TVZSpeedometer\n    Width = 300\n    Height = 150\n  end\n"
                          "  object B: TVZCircularClock\n    Design = sdSimple\n  end\nend\n",
                          "b.form"));
    for (const char* name : {"48", "100", "200", "400", "Simple"})
        EXPECT_FALSE(button(name).isChecked()) << name;
    for (const char* name : {"Gradients", "Enabled"})
        EXPECT_TRUE(button(name).isChecked()) << name;
    EXPECT_EQ(instrument().size(), QSize(300, 150));
    window.saveForm(path("again.form"));
    EXPECT_TRUE(content(path("again.form")).contains("Width = 300")) << "sizes are kept";

    button("48").click();
    EXPECT_EQ(instrument().size(), QSize(48, 48));
    window.showAll();
    EXPECT_TRUE(button("48").isChecked());
    EXPECT_FALSE(button("Simple").isChecked());
}

TEST_F(GalleryUse, TheButtonsShowWhatAProgramSets) {
    window.setTheme(Theme::Dark);
    EXPECT_TRUE(button("Dark").isChecked());
    window.setGround(Ground::Checker);
    EXPECT_TRUE(button("Chequers").isChecked());
    EXPECT_FALSE(button("Dark").isChecked());
    window.setInstrumentSize(400);
    EXPECT_TRUE(button("400").isChecked());
    window.setInstrumentSize(123);
    EXPECT_FALSE(button("400").isChecked());
    window.setSimpleDesign(true);
    EXPECT_TRUE(button("Simple").isChecked());
    window.setInstrumentsEnabled(false);
    EXPECT_FALSE(button("Enabled").isChecked());
}

TEST_F(GalleryUse, TheWindowFitsOnASmallScreen) {
    EXPECT_LE(window.minimumSizeHint().width(), 1024);
    EXPECT_LE(window.minimumSizeHint().height(), 700);
    window.resize(1024, 700);
    QApplication::processEvents();
    EXPECT_EQ(window.size(), QSize(1024, 700));
    for (const auto* each : window.findChildren<QToolButton*>()) {
        if (!each->isVisible() || each->window() != &window) continue;
        const int right = each->mapTo(&window, QPoint(each->width(), 0)).x();
        EXPECT_LE(right, window.width()) << qPrintable(each->text());
        EXPECT_GE(each->width(), each->minimumSizeHint().width()) << qPrintable(each->text());
    }
}

// The keyboard.

/// Where the Tab key stops, from the field for finding an instrument on.
std::vector<QWidget*> tabStops(GalleryWindow& window) {
    std::vector<QWidget*> stops;
    QWidget* const first = window.findChild<QLineEdit*>();
    first->setFocus();
    do {
        stops.push_back(QApplication::focusWidget());
        QTest::keyClick(&window, Qt::Key_Tab);
    } while (QApplication::focusWidget() != first && stops.size() < 1000);
    return stops;
}

TEST_F(GalleryUse, TheTabKeyGoesThroughAllFromTopToBottom) {
    for (const char* name : {"VzSpeedometer", "VzCircularClock"}) {
        window.selectClass(QLatin1String(name));
        window.inspector().resetAll();
        const std::vector<QWidget*> stops = tabStops(window);
        const std::set<QWidget*> unique(stops.begin(), stops.end());
        EXPECT_EQ(unique.size(), stops.size()) << "no stop twice";
        int cards = 0;
        int bar = 0;
        QPoint last;
        for (const QWidget* stop : stops) {
            const QPoint at = stop->mapTo(&window, QPoint(0, 0));
            cards += window.grid().isAncestorOf(stop);
            if (!window.inspector().isAncestorOf(stop)) {
                bar += !window.grid().isAncestorOf(stop);
                continue;
            }
            const bool isBeside = std::abs(at.y() - last.y()) < 24;
            EXPECT_TRUE(isBeside ? at.x() > last.x() || at.y() > last.y() : at.y() > last.y())
                << qPrintable(stop->accessibleName());
            last = at;
        }
        EXPECT_EQ(bar, 12) << "the search, eleven buttons";
        EXPECT_EQ(cards, 1) << "one stop; arrow keys go from card to card";
        EXPECT_TRUE(window.grid().isAncestorOf(stops[12]));
        // Every field that is enabled is a stop.
        for (QWidget* field : window.inspector().fields())
            EXPECT_EQ(unique.count(field), field->isEnabled() ? 1u : 0u)
                << qPrintable(field->accessibleName());
    }
}

TEST_F(GalleryUse, ArrowKeysTakeTheTabStopAlong) {
    auto* const first = window.grid().cards()[0];
    auto* const second = window.grid().cards()[1];
    first->setFocus();
    QTest::keyClick(first, Qt::Key_Right);
    EXPECT_TRUE(second->hasFocus());
    QTest::keyClick(second, Qt::Key_Return);
    EXPECT_EQ(window.selectedCard(), second);
    EXPECT_EQ(first->focusPolicy(), Qt::ClickFocus);
    QTest::keyClick(second, Qt::Key_Tab);
    EXPECT_TRUE(window.inspector().isAncestorOf(QApplication::focusWidget()));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_TRUE(second->hasFocus());
}

/// What assistive technology says first. A box of choices is named by its label, and by itself says the
/// choice.
QString spokenName(QWidget& widget) {
    QAccessibleInterface& seen = *QAccessible::queryAccessibleInterface(&widget);
    if (seen.role() != QAccessible::ComboBox) return seen.text(QAccessible::Name);
    const auto labels = seen.relations(QAccessible::Label);
    return labels.isEmpty() ? QString() : labels.front().first->text(QAccessible::Name);
}

TEST_F(GalleryUse, EverythingThatTakesTheKeyboardHasANameOfItsOwn) {
    for (const char* name : {"VzSpeedometer", "VzCircularClock"}) {
        window.selectClass(QLatin1String(name));
        instrument().setProperty("frameColor", QColor(1, 2, 3));
        window.inspector().refresh();
        std::set<QString> names;
        for (QWidget* stop : tabStops(window)) {
            const QString spoken = spokenName(*stop);
            EXPECT_FALSE(spoken.isEmpty()) << stop->metaObject()->className();
            EXPECT_FALSE(spoken.contains(u'&')) << qPrintable(spoken);
            EXPECT_TRUE(names.insert(spoken).second || window.grid().isAncestorOf(stop))
                << qPrintable(spoken) << " twice";
        }
        for (const char* wanted :
             {"Size 48 pixels", "Background Dark", "Gradients", "Find a property", "Frame color",
              "Frame color: choose", "Reset Frame color", "Design", "Decoration"})
            EXPECT_TRUE(names.count(QLatin1String(wanted))) << wanted;
    }
}

TEST_F(GalleryUse, KeysDoWhatTheMenusSay) {
    std::set<QString> keys;
    for (const QAction* each : actions()) {
        const QString text = each->shortcut().toString();
        EXPECT_FALSE(text.isEmpty()) << qPrintable(each->text());
        EXPECT_TRUE(keys.insert(text).second) << qPrintable(text) << " twice";
    }
    QTest::keyClick(&window, Qt::Key_4, Qt::ControlModifier);
    EXPECT_EQ(instrument().size(), QSize(400, 400));
    QTest::keyClick(&window, Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(button("Dark").isChecked());
    QTest::keyClick(&window, Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(instrument().property("design").toInt(), 1);
    QTest::keyClick(&window, Qt::Key_F5);
    EXPECT_TRUE(window.isMoving());
    QTest::keyClick(&window, Qt::Key_F5);
    EXPECT_FALSE(window.isMoving());
    QTest::keyClick(&window, Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(window.inspector().search().hasFocus());
    QTest::keyClick(&window, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith(QStringLiteral("#include")));
    QTest::keyClick(&window, Qt::Key_X, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith(QStringLiteral("object")));
    QTest::keyClick(&window, Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(instrument().property("design").toInt(), 0);
    QTest::keyClick(&window, Qt::Key_Q, Qt::ControlModifier);
    EXPECT_FALSE(window.isVisible());
}

} // namespace
