// The widgets as a program sees them: properties, signals, pictures, input.

#include "VzAnalogCalendar.h"
#include "VzCircularAltimeter.h"
#include "VzCircularClock.h"
#include "VzCompass.h"
#include "VzCubeLight.h"
#include "VzRotaryDial.h"
#include "VzSVGControl.h"
#include "VzSpeedometer.h"
#include "VzTrafficLight.h"

#include "hosts/qt/WidgetList.h"
#include "tavro/VZSVGControl.h"
#include "tavro/Vz.Tavro.Clocks.h"
#include "tavro/Vz.Tavro.Speedometers.h"
#include "tavro/controls/Form.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/graphics/Bitmap.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Resources.h"

#include <QAccessible>
#include <QApplication>
#include <QFile>
#include <QImage>
#include <QMetaProperty>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using namespace Vz;

/// The widget's own pixels as the platform shows them.
QImage shown(QWidget& widget) {
    return widget.grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage imageOf(const TVZGPBitmap& bitmap) {
    const TPixels pixels = bitmap.GetPixels();
    return QImage(reinterpret_cast<const uchar*>(pixels.Data), pixels.Width, pixels.Height,
                  int(pixels.Stride * 4), QImage::Format_ARGB32_Premultiplied)
        .copy();
}

/// The opaque background that a widget is shown on.
constexpr QRgb Ground = 0xFF305070;

/// The component's picture, with what is transparent, as the core makes it.
QImage corePicture(TControl& control, double scale) { return imageOf(THeadlessHost(control, scale).Paint()); }

/// The same as Qt puts it on the ground.
QImage expected(TControl& control, double scale) {
    const QImage picture = corePicture(control, scale);
    QImage result(picture.size(), QImage::Format_ARGB32_Premultiplied);
    result.fill(QColor::fromRgba(Ground));
    QPainter(&result).drawImage(0, 0, picture);
    return result;
}

/// The widget's picture on a transparent surface of a scale.
QImage transparentPicture(QWidget& widget, double scale) {
    QImage surface(int(std::ceil(widget.width() * scale)), int(std::ceil(widget.height() * scale)),
                   QImage::Format_ARGB32_Premultiplied);
    surface.setDevicePixelRatio(scale);
    surface.fill(Qt::transparent);
    widget.render(&surface, {}, {}, QWidget::DrawChildren);
    surface.setDevicePixelRatio(1);
    return surface;
}

int worstDifference(const QImage& a, const QImage& b) {
    if (a.size() != b.size()) return 1000;
    int worst = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            for (int shift = 0; shift < 32; shift += 8) {
                const int difference = int(a.pixel(x, y) >> shift & 255) - int(b.pixel(x, y) >> shift & 255);
                worst = std::max(worst, std::abs(difference));
            }
    return worst;
}

/// A window of one colour on which the widgets stand.
class TGround : public QWidget {
public:
    TGround() {
        resize(320, 260);
        QPalette palette;
        palette.setColor(QPalette::Window, QColor::fromRgba(Ground));
        setPalette(palette);
        setAutoFillBackground(true);
    }
};

/// Counts what a signal brings.
template <class W, class... A> struct TSpy {
    TSpy(W& widget, void (W::*signal)(A...)) {
        QObject::connect(&widget, signal, [this](auto&&...) { ++Count; });
    }
    int Count = 0;
};

TEST(VzWidget, PropertiesReadAndWriteTheComponent) {
    VzSpeedometer widget;
    widget.setMaximum(200);
    widget.setValue(87.25);
    EXPECT_EQ(widget.value(), 87.25);
    EXPECT_EQ(widget.instrument().GetValue(), 87.25f);
    EXPECT_EQ(widget.instrument().GetMax(), 200.0f);
    widget.setFrameColor(QColor(1, 2, 3, 4));
    EXPECT_EQ(widget.instrument().GetFrameColor(), TVZGPColor{0x04010203});
    EXPECT_EQ(widget.frameColor(), QColor(1, 2, 3, 4));
    widget.setParts(VzSpeedometer::spFrame | VzSpeedometer::spNeedle);
    EXPECT_EQ(widget.instrument().GetParts().GetMask(), 1u | 1u << 7);
    widget.setDesign(VzSpeedometer::sdSimple);
    EXPECT_EQ(widget.instrument().GetDesign(), TSVGDesign::sdSimple);
    widget.setFormatStr(QStringLiteral("0 'km/h' \u00e4"));
    EXPECT_EQ(widget.instrument().GetFormatStr(), "0 'km/h' \xc3\xa4");
    EXPECT_EQ(widget.formatStr(), QStringLiteral("0 'km/h' \u00e4"));
}

TEST(VzWidget, SinglesAreShownByTheirShortestText) {
    VzSpeedometer widget;
    widget.setValue(0.1);
    EXPECT_EQ(widget.value(), 0.1);
}

TEST(VzWidget, TimesAreLocalAndListsAndFontsGoThrough) {
    VzCircularClock clock;
    const QDateTime time(QDate(2026, 3, 15), QTime(15, 30, 45, 250));
    clock.setTime(time);
    EXPECT_EQ(clock.time(), time);
    EXPECT_EQ(clock.instrument().GetTime().Days, EncodeDateTime({2026, 3, 15}, {15, 30, 45, 250}).Days);
    const QStringList labels{QStringLiteral("a"), QStringLiteral("\u00b5")};
    clock.setLabels(labels);
    EXPECT_EQ(clock.labels(), labels);
    QFont font;
    font.setFamilies({QStringLiteral("Noto Sans"), QStringLiteral("serif")});
    font.setBold(true);
    clock.setTextFont(font);
    EXPECT_EQ(clock.instrument().GetFont().GetFamily(), "'Noto Sans', serif");
    EXPECT_EQ(clock.instrument().GetFont().GetWeight(), 700);
    EXPECT_EQ(clock.instrument().GetFont().GetSize(), 0.0f)
        << "what the font leaves open stays the artwork's";
    EXPECT_EQ(clock.textFont().families(), font.families());
    font.setFamilies({QStringLiteral("A, B"), QStringLiteral("O'Neil"), QStringLiteral("\u00e4")});
    clock.setTextFont(font);
    EXPECT_EQ(clock.instrument().GetFont().GetFamily(), "'A, B', \"O'Neil\", \xc3\xa4");
    EXPECT_EQ(clock.textFont().families(), font.families());
    clock.setTime(QDateTime());
    EXPECT_EQ(clock.time(), time) << "an invalid time leaves it";
}

TEST(VzWidget, SignalsComeOncePerChange) {
    VzSpeedometer widget;
    TSpy values(widget, &VzSpeedometer::valueChanged);
    TSpy minimums(widget, &VzSpeedometer::minimumChanged);
    TSpy changes(widget, &VzSpeedometer::changed);
    widget.setValue(50);
    widget.setValue(50);
    EXPECT_EQ(values.Count, 1);
    EXPECT_EQ(changes.Count, 1);
    widget.setMaximum(-5);
    EXPECT_EQ(minimums.Count, 1) << "a maximum below the minimum moves that";
    EXPECT_EQ(values.Count, 2) << "and brings the value down";
}

TEST(VzWidget, ChangesOfTheComponentItselfAreNoticed) {
    VzSpeedometer widget;
    TSpy values(widget, &VzSpeedometer::valueChanged);
    TSpy changes(widget, &VzSpeedometer::changed);
    widget.instrument().SetValue(50);
    widget.instrument().SetValue(60);
    EXPECT_EQ(changes.Count, 2);
    EXPECT_EQ(values.Count, 0);
    QApplication::processEvents();
    EXPECT_EQ(values.Count, 1);
    EXPECT_EQ(widget.value(), 60);
}

TEST(VzWidget, AHandlerMaySetAnotherProperty) {
    VzSpeedometer widget;
    QObject::connect(&widget, &VzSpeedometer::valueChanged, &widget,
                     [&](double value) { widget.setEnableGradients(value < 10); });
    TSpy gradients(widget, &VzSpeedometer::enableGradientsChanged);
    widget.setValue(50);
    EXPECT_FALSE(widget.enableGradients());
    EXPECT_EQ(gradients.Count, 1);
}

TEST(VzWidget, ReceiversMayGoAwayWhereverTheyLie) {
    // Qt shares some hundred locks among all objects, by their places in memory: of so many receivers some
    // share the widget's.
    VzSpeedometer widget;
    int told = 0;
    QObject stays;
    QObject::connect(&widget, &VzSpeedometer::valueChanged, &stays, [&] { ++told; });
    std::vector<std::unique_ptr<QObject>> receivers;
    for (int i = 0; i < 5000; ++i) {
        receivers.push_back(std::make_unique<QObject>());
        QObject::connect(&widget, &VzSpeedometer::valueChanged, receivers.back().get(), [&] { ++told; });
    }
    widget.setValue(30);
    EXPECT_EQ(told, 5001);
    receivers.clear();
    widget.setValue(40);
    EXPECT_EQ(told, 5002);
}

TEST(VzWidget, WhatChangedWhileNobodyListenedIsNotTold) {
    VzSpeedometer widget;
    int told = 0;
    const auto listen = [&] {
        return QObject::connect(&widget, &VzSpeedometer::valueChanged, [&] { ++told; });
    };
    QObject::disconnect(listen());
    widget.setValue(30);
    const auto connection = listen();
    widget.setMaximum(300);
    EXPECT_EQ(told, 0);
    widget.setValue(50);
    EXPECT_EQ(told, 1);
    QObject::disconnect(connection);
}

TEST(VzWidget, ResetAndStoredFollowTheComponentsRules) {
    VzSpeedometer widget;
    EXPECT_FALSE(widget.isPropertyStored("maximum"));
    EXPECT_FALSE(widget.isPropertyStored("windowTitle"));
    widget.setMaximum(100);
    widget.setNeedleFillColor(Qt::red);
    EXPECT_TRUE(widget.isPropertyStored("maximum"));
    EXPECT_TRUE(widget.isPropertyStored("needleFillColor"));
    widget.resetMaximum();
    widget.resetNeedleFillColor();
    EXPECT_EQ(widget.maximum(), 240);
    EXPECT_EQ(widget.needleFillColor(), QColor(Qt::white));
    EXPECT_FALSE(widget.isPropertyStored("maximum"));
}

TEST(VzWidget, BadValuesLeaveThePropertyAsItWas) {
    VzSpeedometer widget;
    widget.setValue(20);
    widget.setValue(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(widget.value(), 20);
    widget.setFrameColor(QColor());
    EXPECT_EQ(widget.frameColor(), QColor::fromRgba(0xFF888A85));
    widget.setParts(VzSpeedometer::Parts(1 << 20));
    EXPECT_EQ(widget.parts(), VzSpeedometer::Parts(511));
    widget.setProperty("decorationPath", QStringLiteral("no path"));
    VzSVGControl control;
    control.setTransform(QStringLiteral("nonsense"));
    EXPECT_EQ(control.transform(), QStringLiteral("matrix(1 0 0 1 0 0)"));
}

TEST(VzWidget, NoPropertyHidesOneOfQWidget) {
    const QWidget* const widgets[] = {new VzSpeedometer, new VzCircularClock, new VzSVGControl,
                                      new VzAnalogCalendar};
    for (const QWidget* const widget : widgets) {
        const QMetaObject& meta = *widget->metaObject();
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
            const char* const name = meta.property(i).name();
            EXPECT_LT(QWidget::staticMetaObject.indexOfProperty(name), 0) << name;
            EXPECT_TRUE(meta.property(i).hasNotifySignal()) << name;
            EXPECT_TRUE(meta.property(i).isResettable()) << name;
        }
        delete widget;
    }
}

TEST(VzWidget, EveryRegisteredClassHasATypedWidget) {
    RegisterComponentClasses();
    QStringList expectedNames;
    for (const TClassEntry& entry : GetClasses())
        if (entry.Name != "TVZForm")
            expectedNames << QLatin1String("Vz") + QString::fromUtf8(entry.Name.substr(3));
    EXPECT_EQ(QStringLiteral(TAVRO_QT_WIDGETS).split(u' '), expectedNames);
}

TEST(VzWidget, SizesFollowEachOther) {
    VzSpeedometer widget;
    EXPECT_EQ(widget.sizeHint(), QSize(widget.instrument().GetWidth(), widget.instrument().GetHeight()));
    widget.show();
    widget.resize(123, 77);
    EXPECT_EQ(widget.instrument().GetBounds(), (TRect{0, 0, 123, 77}));
    widget.instrument().SetBounds(0, 0, 64, 48);
    EXPECT_EQ(widget.size(), QSize(64, 48));
}

TEST(VzWidget, EnabledIsFollowed) {
    VzSpeedometer widget;
    widget.setEnabled(false);
    EXPECT_FALSE(widget.instrument().GetEnabled());
    QWidget parent;
    VzSpeedometer child;
    child.setParent(&parent);
    parent.setEnabled(false);
    EXPECT_FALSE(child.instrument().GetEnabled());
}

// Pictures. The scale is the one that the program runs with.

TEST(VzWidgetPicture, EqualsTheCoresPixelForPixel) {
    TGround ground;
    const auto component = TVZSpeedometer::Create();
    VzSpeedometer widget;
    widget.setParent(&ground);
    const double scale = ground.devicePixelRatioF();
    for (const QPoint at : {QPoint(0, 0), QPoint(7, 5), QPoint(40, 13)}) {
        widget.setGeometry(at.x(), at.y(), 200, 200);
        widget.setValue(87);
        component->SetBounds(0, 0, 200, 200);
        component->SetValue(87);
        const QImage whole = expected(*component, scale);
        const QPoint corner(int(std::lround(at.x() * scale)), int(std::lround(at.y() * scale)));
        const QImage part = shown(ground).copy(QRect(corner, whole.size()));
        EXPECT_EQ(worstDifference(part, whole), 0) << "at " << at.x() << ',' << at.y() << ", scale " << scale;
    }
}

TEST(VzWidgetPicture, StaleRegionsGiveTheWholePicture) {
    TGround ground;
    const auto component = TVZSpeedometer::Create();
    VzSpeedometer widget;
    widget.setParent(&ground);
    widget.setGeometry(10, 10, 200, 200);
    ground.show();
    component->SetBounds(0, 0, 200, 200);
    const double scale = ground.devicePixelRatioF();
    for (const double value : {0.0, 3.0, 120.0, 121.0, 240.0, 60.0}) {
        widget.setValue(value);
        QApplication::processEvents();
    }
    component->SetValue(60);
    const QPoint corner(int(std::lround(10 * scale)), int(std::lround(10 * scale)));
    const QImage whole = expected(*component, scale);
    EXPECT_EQ(worstDifference(shown(ground).copy(QRect(corner, whole.size())), whole), 0);
}

TEST(VzWidgetPicture, AWindowThatMovesBetweenScalesIsExactOnEach) {
    VzSpeedometer widget;
    widget.resize(120, 120);
    const auto component = TVZSpeedometer::Create();
    component->SetBounds(0, 0, 120, 120);
    for (const double scale : {1.0, 2.0, 1.25, 1.5, 1.0})
        EXPECT_EQ(worstDifference(transparentPicture(widget, scale), corePicture(*component, scale)), 0)
            << "at scale " << scale;
}

/// On an opaque ground the core blends layer by layer and the widget once: a rounding apart.
TEST(VzWidgetPicture, OnAnOpaqueGroundItIsWithinARoundingOfTheCores) {
    TGround ground;
    VzSpeedometer widget;
    widget.setParent(&ground);
    widget.setGeometry(0, 0, 200, 200);
    const auto component = TVZSpeedometer::Create();
    component->SetBounds(0, 0, 200, 200);
    THeadlessHost host(*component, ground.devicePixelRatioF());
    host.SetBackground(Ground);
    const QImage whole = imageOf(host.Paint());
    EXPECT_LE(worstDifference(shown(ground).copy(whole.rect()), whole), 1);
}

#ifdef TAVRO_TOOL
TEST(VzWidgetPicture, OfEveryClassIsTheToolsPictureToTheLastPixel) {
    QTemporaryDir folder;
    const double scale = VzSpeedometer().devicePixelRatioF();
    for (const TVzWidgetClass& kind : vzWidgetClasses()) {
        const std::unique_ptr<VzWidget> widget(kind.Create(nullptr));
        const QString file = folder.filePath(QStringLiteral("tool.png"));
        QStringList words{QStringLiteral("render"),  QStringLiteral("TVZ") + QLatin1String(kind.Name).mid(2),
                          QStringLiteral("--size"),  QStringLiteral("160x140"),
                          QStringLiteral("--scale"), QString::number(scale),
                          QStringLiteral("-o"),      file};
        const auto set = [&](const char* name, const char* ours, const QVariant& value, const char* text) {
            if (widget->metaObject()->indexOfProperty(name) < 0) return;
            widget->setProperty(name, value);
            words << QStringLiteral("--set")
                  << QStringLiteral("%1=%2").arg(QLatin1String(ours), QLatin1String(text));
        };
        set("value", "Value", 87.5, "87.5");
        set("time", "Time", QDateTime(QDate(2026, 3, 15), QTime(10, 8, 36)), "2026-03-15T10:08:36");
        set("lightColor", "LightColor", QColor(0xFF, 0xD0, 0xA0), "0xFFFFD0A0");
        QProcess tool;
        tool.start(QStringLiteral(TAVRO_TOOL), words);
        ASSERT_TRUE(tool.waitForFinished() && tool.exitCode() == 0)
            << tool.readAllStandardError().constData();

        widget->resize(160, 140);
        QImage picture = transparentPicture(*widget, scale);
        const std::string png = EncodePng({reinterpret_cast<std::uint32_t*>(picture.bits()), picture.width(),
                                           picture.height(), picture.bytesPerLine() / 4});
        QFile drawn(file);
        ASSERT_TRUE(drawn.open(QIODevice::ReadOnly));
        EXPECT_EQ(QByteArray::fromStdString(png) == drawn.readAll(), true)
            << kind.Name << " at scale " << scale;
    }
}
#endif

/// Notes the regions of a widget's paint events.
class TPaintNotes : public QObject {
public:
    explicit TPaintNotes(QWidget& widget) { widget.installEventFilter(this); }
    QRegion Painted;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) Painted += static_cast<QPaintEvent*>(event)->region();
        return false;
    }
};

TEST(VzWidgetPicture, OnlyWhatIsStaleIsPainted) {
    TGround ground;
    VzSpeedometer widget;
    widget.setParent(&ground);
    widget.setGeometry(0, 0, 200, 200);
    widget.setValue(100);
    ground.show();
    QApplication::processEvents();
    TPaintNotes notes(widget);
    widget.setValue(101);
    QApplication::processEvents();
    ASSERT_FALSE(notes.Painted.isEmpty());
    const QRect box = notes.Painted.boundingRect();
    EXPECT_LT(box.width() * box.height(), 200 * 200 / 2);
}

TEST(VzWidgetPicture, PaletteFontAndDirectionAreNotTheInstruments) {
    TGround ground;
    VzCircularClock widget;
    widget.setCaption(QStringLiteral("Caption"));
    widget.setParent(&ground);
    widget.setGeometry(10, 10, 200, 200);
    const QImage before = shown(ground);
    QPalette palette(Qt::green, Qt::red);
    widget.setPalette(palette);
    widget.setFont(QFont(QStringLiteral("serif"), 30, QFont::Black, true));
    widget.setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(worstDifference(shown(ground), before), 0);
    widget.setAutoFillBackground(true);
    EXPECT_EQ(shown(ground).pixelColor((ground.devicePixelRatioF() * QPointF(12, 12)).toPoint()),
              palette.color(QPalette::Window));
}

/// A picture of a widget with the keyboard's focus.
QImage shownFocused(QWidget& window, QWidget& widget) {
    window.show();
    window.activateWindow();
    window.setAttribute(Qt::WA_KeyboardFocusChange); // as the Tab key does; a click shows no frame
    widget.setFocus();
    QApplication::processEvents();
    EXPECT_TRUE(widget.hasFocus());
    return shown(window);
}

TEST(VzWidgetPicture, TheFocusFrameIsShownAndFollowsThePalette) {
    TGround ground;
    VzSpeedometer widget;
    widget.setParent(&ground);
    widget.setGeometry(10, 10, 200, 200);
    widget.setFocusPolicy(Qt::StrongFocus);
    const QImage before = shown(ground);
    const QImage focused = shownFocused(ground, widget);
    EXPECT_GT(worstDifference(focused, before), 20);
    TPaintNotes notes(widget);
    QPalette palette = widget.palette();
    palette.setColor(QPalette::Highlight, Qt::magenta);
    widget.setPalette(palette);
    QApplication::processEvents();
    EXPECT_FALSE(notes.Painted.isEmpty());
    EXPECT_GT(worstDifference(shown(ground), focused), 20);
    widget.clearFocus();
    EXPECT_EQ(worstDifference(shown(ground), before), 0);
}

TEST(VzWidgetPicture, AFormWithInstrumentsIsOneWidget) {
    auto form = TVZForm::Create();
    form->SetBounds(0, 0, 200, 100);
    auto& speed = TVZSpeedometer::Create(*form);
    speed.SetParent(form.get());
    speed.SetBounds(100, 0, 100, 100);
    TVZForm* const seen = form.get();
    TGround ground;
    VzWidget widget(std::move(form));
    EXPECT_EQ(widget.sizeHint(), QSize(200, 100));
    widget.setParent(&ground);
    widget.move(0, 0);
    const QImage picture = shown(ground);
    const double scale = ground.devicePixelRatioF();
    EXPECT_EQ(picture.pixel(int(50 * scale), int(50 * scale)), Ground);
    EXPECT_NE(picture.pixel(int(150 * scale), int(50 * scale)), Ground);
    EXPECT_EQ(seen->GetControls().size(), 1u);
}

// The plain control's file.

/// The warnings while it lives.
struct TWarnings {
    TWarnings() { Previous = qInstallMessageHandler(Take), Texts.clear(); }
    ~TWarnings() { qInstallMessageHandler(Previous); }
    static void Take(QtMsgType, const QMessageLogContext&, const QString& text) { Texts << text; }
    static inline QStringList Texts;
    QtMessageHandler Previous;
};

QString picturePath() { return QStringLiteral(TAVRO_QT_TESTS_DIR "/forms/picture.svg"); }

QColor middle(QWidget& widget) {
    const QImage image = shown(widget);
    return image.pixelColor(image.width() / 2, image.height() / 2);
}

TEST(VzSVGControlSource, ShowsAFileOrAResource) {
    TWarnings warnings;
    VzSVGControl control;
    TSpy changes(static_cast<VzPictureWidget&>(control), &VzPictureWidget::sourceChanged);
    EXPECT_FALSE(control.isPropertyStored("source"));
    control.setSource(picturePath());
    EXPECT_TRUE(control.isSourceLoaded());
    EXPECT_TRUE(control.isPropertyStored("source"));
    EXPECT_EQ(middle(control), QColor(Qt::red));
    control.setProperty("source", QStringLiteral(":/tests/picture.svg"));
    EXPECT_EQ(middle(control), QColor(Qt::red));
    control.setSource(QStringLiteral("qrc:/tests/picture.svg"));
    EXPECT_TRUE(control.isSourceLoaded());
    EXPECT_EQ(changes.Count, 3);
    control.resetSource();
    EXPECT_EQ(changes.Count, 4);
    EXPECT_FALSE(control.isSourceLoaded());
    EXPECT_NE(middle(control), QColor(Qt::red)) << "the picture went with its name";
    EXPECT_TRUE(TWarnings::Texts.isEmpty()) << qPrintable(TWarnings::Texts.join(u' '));
}

TEST(VzSVGControlSource, ABadFileIsToldOfAndLeavesThePicture) {
    QTemporaryDir folder;
    QFile broken(folder.filePath(QStringLiteral("broken.svg")));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("<svg xmlns='http://www.w3.org/2000/svg'>\n<rect></svg>");
    broken.close();
    VzSVGControl control;
    control.setSource(picturePath());
    TWarnings warnings;
    for (const QString& name : {QStringLiteral("none.svg"), folder.path(), broken.fileName(),
                                QStringLiteral(":/tests/none.svg"), QStringLiteral("/dev/zero")}) {
        TWarnings::Texts.clear();
        control.setSource(name);
        ASSERT_EQ(TWarnings::Texts.size(), 1) << qPrintable(name);
        EXPECT_TRUE(TWarnings::Texts[0].startsWith(QStringLiteral("VzSVGControl: source: ") + name))
            << qPrintable(TWarnings::Texts[0]);
        EXPECT_FALSE(control.isSourceLoaded());
        EXPECT_EQ(control.source(), name) << "a form keeps what it named";
        EXPECT_EQ(middle(control), QColor(Qt::red));
    }
    EXPECT_FALSE(control.isSourceLoaded());
}

TEST(VzSVGControlSource, AFileThatComesLaterIsReadWhenTheWidgetIsShown) {
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("later.svg"));
    VzSVGControl control;
    {
        TWarnings warnings;
        control.setSource(name);
    }
    ASSERT_TRUE(QFile::copy(picturePath(), name));
    EXPECT_FALSE(control.isSourceLoaded());
    control.show();
    EXPECT_TRUE(control.isSourceLoaded());
    EXPECT_EQ(middle(control), QColor(Qt::red));
}

/// The class's own artwork of a speedometer with an element added in front.
QByteArray markedArtwork() {
    std::string svg(GetResource("SpeedometerSVG"));
    svg.insert(svg.rfind("</svg>"), "<rect id='Mark' width='100%' height='100%' fill='red'/>");
    return QByteArray::fromStdString(svg);
}

bool isMarked(const VzSpeedometer& speed) { return speed.instrument().GetDocument().FindElement("Mark"); }

TEST(VzInstrumentArtwork, TakesThePlaceOfTheClasssOwnAndGoesAgain) {
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("marked.svg")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(markedArtwork());
    file.close();
    TWarnings warnings;
    VzSpeedometer speed;
    speed.setValue(80);
    TSpy changes(static_cast<VzInstrumentWidget&>(speed), &VzInstrumentWidget::artworkChanged);
    EXPECT_TRUE(speed.artwork().isEmpty());
    EXPECT_FALSE(speed.isPropertyStored("artwork"));
    EXPECT_FALSE(speed.isArtworkLoaded());
    speed.setProperty("artwork", file.fileName());
    EXPECT_TRUE(isMarked(speed));
    EXPECT_TRUE(speed.isArtworkLoaded());
    EXPECT_TRUE(speed.isPropertyStored("artwork"));
    EXPECT_EQ(speed.value(), 80);
    EXPECT_EQ(middle(speed), QColor(Qt::red));
    EXPECT_EQ(changes.Count, 1);
    speed.setArtwork(file.fileName());
    EXPECT_EQ(changes.Count, 1) << "an equal name";
    speed.resetArtwork();
    EXPECT_FALSE(isMarked(speed));
    EXPECT_NE(middle(speed), QColor(Qt::red));
    EXPECT_FALSE(speed.isPropertyStored("artwork"));
    EXPECT_EQ(changes.Count, 2);
    EXPECT_TRUE(TWarnings::Texts.isEmpty()) << qPrintable(TWarnings::Texts.join(u' '));
}

TEST(VzInstrumentArtwork, ResourceOfTheProgramIsFoundByItsName) {
    AddResource("MarkedDial", markedArtwork().toStdString());
    TWarnings warnings;
    VzSpeedometer speed;
    speed.setArtwork(QStringLiteral("MarkedDial"));
    EXPECT_TRUE(isMarked(speed));
    VzSVGControl control;
    control.setSource(QStringLiteral("MarkedDial"));
    EXPECT_TRUE(control.isSourceLoaded());
    EXPECT_TRUE(TWarnings::Texts.isEmpty());
}

TEST(VzInstrumentArtwork, ABadFileIsToldOfAndLeavesTheArtwork) {
    VzSpeedometer speed;
    const QImage before = shown(speed);
    TWarnings warnings;
    speed.setArtwork(QStringLiteral("none.svg"));
    ASSERT_EQ(TWarnings::Texts.size(), 1);
    EXPECT_EQ(TWarnings::Texts[0], QStringLiteral("VzSpeedometer: artwork: none.svg: there is no such file"));
    EXPECT_EQ(speed.artwork(), QStringLiteral("none.svg")) << "a form keeps what it named";
    EXPECT_FALSE(speed.isArtworkLoaded());
    EXPECT_EQ(shown(speed), before);
}

// Input.

void sendMouse(QWidget& widget, QEvent::Type type, QPointF at, Qt::MouseButton button,
               Qt::KeyboardModifiers modifiers = {}) {
    QMouseEvent event(type, at, widget.mapToGlobal(at), button,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : button, modifiers);
    QApplication::sendEvent(&widget, &event);
}

TEST(VzWidgetInput, MouseReachesTheComponent) {
    VzSpeedometer widget;
    std::vector<std::string> notes;
    widget.instrument().SetOnMouseDown([&](TObject&, TMouseButton button, TShiftState shift, int x, int y) {
        notes.push_back("down " + std::to_string(int(button)) +
                        (shift.Contains(TShiftKey::Ctrl) ? " ctrl " : " ") + std::to_string(x) + ',' +
                        std::to_string(y));
    });
    TSpy clicks(static_cast<VzWidget&>(widget), &VzWidget::clicked);
    sendMouse(widget, QEvent::MouseButtonPress, {10.6, 20}, Qt::LeftButton, Qt::ControlModifier);
    sendMouse(widget, QEvent::MouseButtonRelease, {10, 20}, Qt::LeftButton);
    EXPECT_EQ(notes, (std::vector<std::string>{"down 0 ctrl 10,20"}));
    EXPECT_EQ(clicks.Count, 1);
    sendMouse(widget, QEvent::MouseButtonPress, {10, 20}, Qt::RightButton);
    EXPECT_EQ(notes.size(), 2u);
}

TEST(VzWidgetInput, WheelAndKeysReachTheComponentAndGoOnWhenItLeavesThem) {
    VzSpeedometer widget;
    const auto turn = [&](int delta) {
        QWheelEvent event({5, 5}, {5, 5}, {}, {0, delta}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&widget, &event);
        return event.isAccepted();
    };
    EXPECT_FALSE(turn(120));
    double turned = 0;
    widget.instrument().SetOnMouseWheel(
        [&](TObject&, TShiftState, double notches, int, int, bool& isHandled) {
            turned += notches;
            isHandled = true;
        });
    EXPECT_TRUE(turn(-60));
    EXPECT_EQ(turned, -0.5);
    const auto press = [&](Qt::Key key) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&widget, &event);
        return event.isAccepted();
    };
    EXPECT_FALSE(press(Qt::Key_Up));
    widget.instrument().SetOnKeyDown(
        [&](TObject&, TKey key, TShiftState, bool& isHandled) { isHandled = key == TKey::Up; });
    EXPECT_TRUE(press(Qt::Key_Up));
    EXPECT_FALSE(press(Qt::Key_Down));
    EXPECT_FALSE(press(Qt::Key_A));
}

TEST(VzWidgetInput, AHandlersExceptionDoesNotCrossTheEventLoop) {
    VzSpeedometer widget;
    widget.instrument().SetOnMouseDown(
        [](TObject&, TMouseButton, TShiftState, int, int) { throw EInvalidOperation("no"); });
    EXPECT_NO_THROW(sendMouse(widget, QEvent::MouseButtonPress, {10, 20}, Qt::LeftButton));
}

// Assistive technology.

TEST(VzWidgetAccessible, RoleNameValueAndRange) {
    VzSpeedometer widget;
    widget.setValue(87.26);
    QAccessibleInterface* const seen = QAccessible::queryAccessibleInterface(&widget);
    ASSERT_TRUE(seen);
    EXPECT_EQ(seen->role(), QAccessible::Indicator);
    EXPECT_EQ(seen->text(QAccessible::Name), QStringLiteral("Speedometer"));
    EXPECT_EQ(seen->text(QAccessible::Value), QStringLiteral("87.3"));
    ASSERT_TRUE(seen->valueInterface());
    EXPECT_EQ(seen->valueInterface()->currentValue().toDouble(), 87.26);
    EXPECT_EQ(seen->valueInterface()->maximumValue().toDouble(), 240);
    widget.setAccessibleName(QStringLiteral("Drive"));
    EXPECT_EQ(seen->text(QAccessible::Name), QStringLiteral("Drive"));
    VzCircularClock clock;
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&clock)->role(), QAccessible::Clock);
    EXPECT_FALSE(QAccessible::queryAccessibleInterface(&clock)->valueInterface());
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&clock)->text(QAccessible::Name),
              QStringLiteral("Circular Clock"));
    VzSVGControl picture;
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&picture)->role(), QAccessible::Graphic);
}

QString spoken(QWidget& widget) {
    return QAccessible::queryAccessibleInterface(&widget)->text(QAccessible::Value);
}

TEST(VzWidgetAccessible, WhatTheMainValueTells) {
    VzCompass compass;
    compass.setAngle(243.4);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&compass)->role(), QAccessible::Indicator);
    EXPECT_EQ(spoken(compass), QStringLiteral("243 degrees, south-west"));
    compass.setAngle(359);
    EXPECT_EQ(spoken(compass), QStringLiteral("359 degrees, north"));

    VzTrafficLight lights;
    EXPECT_EQ(spoken(lights), QStringLiteral("red"));
    lights.setLights(VzTrafficLight::ltYellow | VzTrafficLight::ltGreen);
    EXPECT_EQ(spoken(lights), QStringLiteral("yellow, green"));
    lights.setLights({});
    EXPECT_EQ(spoken(lights), QStringLiteral("off"));

    VzCubeLight cube;
    QAccessibleInterface& seen = *QAccessible::queryAccessibleInterface(&cube);
    EXPECT_EQ(seen.role(), QAccessible::CheckBox);
    EXPECT_TRUE(seen.state().checkable && seen.state().checked);
    cube.setChecked(false);
    EXPECT_FALSE(seen.state().checked);
    EXPECT_EQ(spoken(cube), QStringLiteral("off"));

    VzRotaryDial dial;
    dial.setValue(3);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&dial)->role(), QAccessible::Dial);
    EXPECT_EQ(spoken(dial), QStringLiteral("3"));
}

} // namespace
