// The gallery as a visitor uses it, on the platform without a display.

#include "hosts/qt/VzWidget.h"
#include "hosts/qt/WidgetList.h"
#include "hosts/qt/gallery/CardGrid.h"
#include "hosts/qt/gallery/CppText.h"
#include "hosts/qt/gallery/GalleryWindow.h"
#include "hosts/qt/gallery/Inspector.h"
#include "hosts/qt/gallery/PropertyRow.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/Exceptions.h"
#include "tests/unit/qt/Gallery.h"

#include <QApplication>
#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QMetaProperty>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <set>

namespace {

/// Only a program that hangs lets an event wait so long.
constexpr int HangMs = 600000;

size_t colorsIn(const QImage& image) {
    std::set<QRgb> colors;
    for (int y = 0; y < image.height(); y += 2)
        for (int x = 0; x < image.width(); x += 2)
            colors.insert(image.pixel(x, y));
    return colors.size();
}

TEST_F(Gallery, ShowsEveryWidgetClass) {
    EXPECT_EQ(window.grid().cards().size(), vzWidgetClasses().size());
    for (const TVzWidgetClass& kind : vzWidgetClasses()) {
        EXPECT_TRUE(window.selectClass(QLatin1String(kind.Name))) << kind.Name;
        const QMetaObject& meta = *instrument().metaObject();
        EXPECT_EQ(int(window.inspector().rows().size()), meta.propertyCount() - meta.propertyOffset());
    }
    EXPECT_FALSE(window.selectClass(QStringLiteral("VzNothing")));
}

TEST_F(Gallery, PicturesAreTheSameAtTheSameMoment) {
    window.moveTo(10);
    const QImage first = window.picture();
    EXPECT_GT(colorsIn(first), 200u) << "not blank";
    window.moveTo(14);
    EXPECT_NE(window.picture(), first) << "instruments move";
    window.moveTo(10);
    EXPECT_EQ(window.picture(), first);
}

TEST_F(Gallery, MovesByItself) {
    const double before =
        (window.selectClass(QStringLiteral("VzSpeedometer")), instrument().property("value").toDouble());
    window.setMoving(true);
    QElapsedTimer clock;
    clock.start();
    while (instrument().property("value").toDouble() == before && clock.elapsed() < HangMs)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    EXPECT_NE(instrument().property("value").toDouble(), before);
}

TEST_F(Gallery, MotionStaysInTheRange) {
    for (double second = 0; second < 200; second += 0.7) {
        window.moveTo(second);
        for (const InstrumentCard* card : window.grid().cards()) {
            const VzWidget& widget = card->instrument();
            if (widget.metaObject()->indexOfProperty("maximum") < 0) continue;
            const double value = widget.property("value").toDouble();
            ASSERT_GE(value, widget.property("minimum").toDouble());
            ASSERT_LE(value, widget.property("maximum").toDouble());
        }
    }
}

TEST_F(Gallery, EditorsChangeAndResetTheInstrument) {
    window.selectClass(QStringLiteral("VzSpeedometer"));
    auto* const box = row("maximum").findChild<QDoubleSpinBox*>();
    box->setValue(180);
    EXPECT_EQ(instrument().property("maximum").toDouble(), 180);
    EXPECT_TRUE(row("maximum").differs());
    row("maximum").reset();
    EXPECT_EQ(box->value(), 240);
    EXPECT_FALSE(row("maximum").differs());

    row("parts").findChildren<QCheckBox*>().front()->setChecked(false);
    EXPECT_EQ(instrument().property("parts").toInt(), 510);
    row("frameColor").findChild<QLineEdit*>()->setText(QStringLiteral("#80102030"));
    Q_EMIT row("frameColor").findChild<QLineEdit*>()->editingFinished();
    EXPECT_EQ(instrument().property("frameColor").value<QColor>(), QColor(0x10, 0x20, 0x30, 0x80));
    EXPECT_TRUE(row("frameColor").differs());
    window.inspector().resetAll();
    EXPECT_EQ(instrument().property("parts").toInt(), 511);
    for (const PropertyRow* each : window.inspector().rows())
        EXPECT_FALSE(each->differs()) << each->name().constData();
}

TEST_F(Gallery, EditorsFollowTheInstrument) {
    window.selectClass(QStringLiteral("VzSpeedometer"));
    instrument().setProperty("maximum", 99.5);
    QElapsedTimer clock;
    clock.start();
    while (!row("maximum").differs() && clock.elapsed() < HangMs)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    EXPECT_EQ(row("maximum").findChild<QDoubleSpinBox*>()->value(), 99.5);
}

TEST_F(Gallery, RefusedValuesAreToldOfAndNotKept) {
    window.selectClass(QStringLiteral("VzSpeedometer"));
    QString told;
    QObject::connect(&window.inspector(), &Inspector::message, &window,
                     [&](const QString& text) { told = text; });
    const QString before = instrument().property("decorationPath").toString();
    row("decorationPath").edit(QStringLiteral("no path"));
    EXPECT_FALSE(told.isEmpty());
    EXPECT_EQ(instrument().property("decorationPath").toString(), before);
}

TEST_F(Gallery, AnEditedValueIsHeldUntilItIsReset) {
    window.selectClass(QStringLiteral("VzSpeedometer"));
    row("value").edit(33);
    window.moveTo(20);
    EXPECT_EQ(instrument().property("value").toDouble(), 33);
    row("value").reset();
    window.moveTo(20);
    EXPECT_NE(instrument().property("value").toDouble(), 33);
}

TEST_F(Gallery, SearchFindsPropertiesAndInstruments) {
    window.selectClass(QStringLiteral("VzSpeedometer"));
    window.inspector().search().setText(QStringLiteral("needle color"));
    EXPECT_TRUE(row("needleFillColor").isVisible());
    EXPECT_FALSE(row("frameColor").isVisible());
    EXPECT_EQ(window.grid().filter(QStringLiteral("circular clock")), 1);
    EXPECT_EQ(window.grid().filter(QStringLiteral("nothing like it")), 0);
}

TEST_F(Gallery, SwitchesReachAllInstruments) {
    window.setSimpleDesign(true);
    window.setGradients(false);
    window.setInstrumentSize(100);
    window.setInstrumentsEnabled(false);
    window.setGround(Ground::Checker);
    window.setTheme(Theme::Dark);
    EXPECT_GT(colorsIn(window.picture()), 50u);
    for (const InstrumentCard* card : window.grid().cards()) {
        const VzWidget& widget = card->instrument();
        EXPECT_EQ(widget.size(), QSize(100, 100));
        EXPECT_FALSE(widget.isEnabled());
        const bool hasDesign = widget.metaObject()->indexOfProperty("design") >= 0;
        EXPECT_TRUE(!hasDesign || widget.property("design").toInt() == 1);
        EXPECT_FALSE(widget.property("enableGradients").toBool());
    }
}

TEST_F(Gallery, FormsComeBackAsTheyWereSaved) {
    window.selectClass(QStringLiteral("VzSpeedometer"));
    row("maximum").edit(123);
    window.moveTo(9);
    const size_t count = window.grid().cards().size();
    window.saveForm(path("all.form"));
    window.showAll();
    window.openForm(path("all.form"));
    ASSERT_EQ(window.grid().cards().size(), count);
    ASSERT_TRUE(window.selectClass(QStringLiteral("VzSpeedometer")));
    EXPECT_EQ(instrument().property("maximum").toDouble(), 123);
    EXPECT_EQ(window.selectedCard()->name(), QStringLiteral("Speedometer1"));
    EXPECT_FALSE(window.isMoving());
    window.saveForm(path("again.form"));
    EXPECT_EQ(content(path("again.form")), content(path("all.form")));

    window.saveSelected(path("one.form"));
    window.openForm(path("one.form"));
    ASSERT_EQ(window.grid().cards().size(), 1u);
    EXPECT_EQ(instrument().property("maximum").toDouble(), 123);
    QApplication::processEvents();
}

TEST_F(Gallery, ABadFormChangesNothing) {
    const InstrumentCard* const selected = window.selectedCard();
    QFile file(path("bad.form"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("object A: TVZForm\n  object B: TVZSpeedometer\n    Max = fast\n  end\nend\n");
    file.close();
    try {
        window.openForm(path("bad.form"));
        FAIL() << "it was taken";
    } catch (const Vz::EVZError& error) {
        EXPECT_NE(std::string(error.what()).find("bad.form:3:"), std::string::npos) << error.what();
    }
    EXPECT_EQ(window.selectedCard(), selected);
    EXPECT_THROW(window.openForm(path("none.form")), Vz::EReadError);
    EXPECT_EQ(window.grid().cards().size(), vzWidgetClasses().size());
}

TEST_F(Gallery, ExportsPictures) {
    window.selectClass(QStringLiteral("VzSpeedometer"));
    window.exportSelected(path("a.png"));
    window.exportSelected(path("a.svg"));
    window.exportSelected(path("a.pdf"));
    EXPECT_EQ(QImage(path("a.png")).size(), instrument().size());
    EXPECT_TRUE(content(path("a.svg")).contains("id=\"NeedleGroup\"")) << "the live document";
    EXPECT_TRUE(content(path("a.pdf")).startsWith("%PDF"));
    EXPECT_THROW(window.exportSelected(path("a.txt")), Vz::EWriteError);
    instrument().setProperty("value", 200);
    EXPECT_GT(colorsIn(window.picture()), 200u) << "the widget still shows it";
}

TEST_F(Gallery, CppTextNamesWhatDiffers) {
    window.selectClass(QStringLiteral("VzSpeedometer"));
    window.inspector().resetAll();
    EXPECT_EQ(cppText(instrument()), QStringLiteral("#include \"VzSpeedometer.h\"\n\n"
                                                    "auto* speedometer = new VzSpeedometer(this);\n"));
    instrument().setProperty("maximum", 120.5);
    instrument().setProperty("frameColor", QColor(1, 2, 3));
    row("parts").edit(1 | 128);
    row("formatStr").edit(QStringLiteral("0'\"'\u00B0"));
    const QString text = cppText(instrument());
    EXPECT_TRUE(text.endsWith(
        QStringLiteral("speedometer->setMaximum(120.5);\n"
                       "speedometer->setParts(VzSpeedometer::spFrame | VzSpeedometer::spNeedle);\n"
                       "speedometer->setFrameColor(QColor(1, 2, 3));\n"
                       "speedometer->setFormatStr(QStringLiteral(\"0'\\\"'\\u00b0\"));\n")))
        << text.toStdString();
}

} // namespace
