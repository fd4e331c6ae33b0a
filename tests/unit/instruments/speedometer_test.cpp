#include "instruments/meters/Vz.Tavro.Speedometers.h"

#include "Allocations.h"
#include "InstrumentProbe.h"
#include "controls/HeadlessHost.h"
#include "package/Package.h"
#include "runtime/FormFile.h"
#include "runtime/PropAccess.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

namespace Vz::Test {
namespace {

using TPart = TVZSpeedometer::TPart;
using TParts = TVZSpeedometer::TParts;

constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float Nan = std::numeric_limits<float>::quiet_NaN();
constexpr float Greatest = std::numeric_limits<float>::max();

struct TSpeed {
    std::unique_ptr<TVZSpeedometer> Meter = TVZSpeedometer::Create();
    TVZSpeedometer* operator->() { return Meter.get(); }
    TVZSpeedometer& operator*() { return *Meter; }

    template <class T = TSVGGraphicElement> T& Get(std::string_view id) {
        return *Meter->GetDocument().Find<T>(id);
    }
    TVZGPColor Fill(std::string_view id) { return Get(id).GetBrush().GetColor(); }
    TVZGPColor Stroke(std::string_view id) { return Get(id).GetPen().GetColor(); }
    TVZGPColor Stop(std::string_view id, std::size_t index) {
        return Get<TSVGCustomGradient>(id).GetStop(index).GetStopBrush().GetColor();
    }
    double Angle() {
        const TMatrix m = Get("NeedleGroup").GetMatrix();
        return std::atan2(m.M12, m.M11) * 57.29577951308232;
    }
    std::string Labels() {
        std::string all;
        for (const auto& child : Meter->GetDocument().FindElement("Labels")->Children())
            all += (all.empty() ? "" : " ") + dynamic_cast<TSVGCustomText&>(*child).GetText();
        return all;
    }
    std::vector<std::uint32_t> Paint() {
        THeadlessHost host(*Meter);
        const TPixels pixels = host.Paint().GetPixels();
        std::vector<std::uint32_t> copy;
        for (int y = 0; y < pixels.Height; ++y)
            copy.insert(copy.end(), pixels.Row(y), pixels.Row(y) + pixels.Width);
        return copy;
    }
};

// Scale and needle

TEST(Speedometer, FreshOne) {
    TSpeed speed;
    EXPECT_EQ(speed->GetMin(), 0);
    EXPECT_EQ(speed->GetMax(), 240);
    EXPECT_EQ(speed->GetValue(), 0);
    EXPECT_EQ(speed->GetNeedleMin(), -10);
    EXPECT_EQ(speed->GetNeedleMax(), 250);
    EXPECT_EQ(speed->GetParts().GetMask(), 511u);
    EXPECT_EQ(speed->GetDecoration(), TDecoration::dcFuelTank);
    EXPECT_EQ(speed->GetDecorationElementId(), "Decoration");
    EXPECT_EQ(speed.Labels(), "0 40 80 120 160 200 240");
    EXPECT_NEAR(speed.Angle(), -92.35, 1e-4);
    EXPECT_EQ(speed->GetActiveSVGElement(), &speed.Get("NeedleGroup"));
    EXPECT_EQ(speed->GetSVGResourceName(), "SpeedometerSVG");
}

TEST(Speedometer, NeedleRunsBeyondBothEnds) {
    TSpeed speed;
    TWatch watch(*speed);
    speed->SetValue(300);
    EXPECT_EQ(speed->GetValue(), 250);
    EXPECT_NEAR(speed.Angle(), 100.15, 1e-4);
    speed->SetValue(-50);
    EXPECT_EQ(speed->GetValue(), -10);
    EXPECT_NEAR(speed.Angle(), -100.05, 1e-4);
    speed->SetValue(240);
    EXPECT_NEAR(speed.Angle(), 92.45, 1e-4);
    speed->SetValue(120); // the middle of the range is a little off the drawn needle
    EXPECT_NEAR(speed.Angle(), 0.05, 1e-4);
    EXPECT_EQ(watch.Changes, 4);
    EXPECT_EQ(watch.Invalidates, 4);
}

TEST(Speedometer, NeedleTurnsAboutTheKnob) {
    TSpeed speed;
    const TPointF centre = VZCenterPoint(speed.Get("Knob").GetBounds());
    EXPECT_EQ(centre, (TPointF{200, 200}));
    for (const float value : {-10.0f, 33.0f, 250.0f}) {
        speed->SetValue(value);
        const TPointD still = speed.Get("NeedleGroup").GetTransform()(TPointD{200, 200});
        EXPECT_NEAR(still.X, 200, 1e-3);
        EXPECT_NEAR(still.Y, 200, 1e-3);
    }
}

TEST(Speedometer, SameValueDoesNothing) {
    TSpeed speed;
    speed->SetValue(50);
    TWatch watch(*speed);
    speed->SetValue(50);
    speed->SetMax(240);
    speed->SetMin(0);
    EXPECT_TRUE(watch.IsQuiet());
    speed->SetValue(250);
    EXPECT_EQ(watch.Changes, 1);
    speed->SetValue(300); // compared before it is clamped: a change each time
    EXPECT_EQ(watch.Changes, 2);
}

TEST(Speedometer, UpperEnd) {
    TSpeed speed;
    speed->SetValue(180);
    TWatch watch(*speed);
    speed->SetMax(100);
    EXPECT_EQ(speed->GetNeedleMin(), -4); // round(4.167)
    EXPECT_EQ(speed->GetNeedleMax(), 104);
    EXPECT_EQ(speed->GetValue(), 100);
    EXPECT_EQ(speed.Labels(), "0 16.7 33.3 50 66.7 83.3 100");
    EXPECT_EQ(watch.Changes, 0);
    EXPECT_EQ(watch.Invalidates, 2); // the needle's and its own
    EXPECT_TRUE(speed->AreBuffersStale());
    speed->SetMax(-20); // below Min
    EXPECT_EQ(speed->GetMin(), -21);
    EXPECT_EQ(speed->GetMax(), -20);
    EXPECT_EQ(speed->GetValue(), -20);
    EXPECT_EQ(watch.Changes, 0);
}

TEST(Speedometer, LowerEnd) {
    TSpeed speed;
    TWatch watch(*speed);
    speed->SetMin(500); // above Max
    EXPECT_EQ(speed->GetMax(), 501);
    EXPECT_EQ(speed->GetValue(), 500);
    EXPECT_EQ(speed->GetNeedleMin(), 500); // round(0.04167) = 0
    EXPECT_EQ(speed->GetNeedleMax(), 501);
    EXPECT_NEAR(speed.Angle(), -100.05, 1e-4);
    EXPECT_EQ(watch.Changes, 0);
}

TEST(Speedometer, OverrunRoundsHalfToEven) {
    TSpeed speed;
    speed->SetMax(50000); // 2083.5
    EXPECT_EQ(speed->GetNeedleMin(), -2084);
    speed->SetMax(150000); // 6250.5
    EXPECT_EQ(speed->GetNeedleMin(), -6250);
    EXPECT_EQ(speed->GetNeedleMax(), 156250);
}

TEST(Speedometer, EqualEndsAreHarmless) {
    TSpeed speed;
    speed->SetValue(120);
    speed->SetMax(0); // equal to Min
    EXPECT_EQ(speed->GetMin(), 0);
    EXPECT_EQ(speed->GetMax(), 0);
    EXPECT_EQ(speed->GetValue(), 0);
    EXPECT_NEAR(speed.Angle(), 0.05, 1e-4); // stays where it was
    EXPECT_EQ(speed.Labels(), "0 0 0 0 0 0 0");
    speed->SetValue(5);
    EXPECT_EQ(speed->GetValue(), 0);
    EXPECT_NO_THROW(speed.Paint());
    speed->SetMax(100);
    EXPECT_NEAR(speed.Angle(), 4.0 / 108 * 200.2 - 100.05, 1e-4);
}

TEST(Speedometer, NumbersThatAreNone) {
    TSpeed speed;
    speed->SetValue(50);
    {
        TWatch watch(*speed);
        for (const float number : {Nan, Infinity, -Infinity}) {
            speed->SetMin(number);
            speed->SetMax(number);
        }
        speed->SetValue(Nan);
        EXPECT_TRUE(watch.IsQuiet());
    }
    EXPECT_EQ(speed->GetValue(), 50);
    speed->SetValue(Infinity);
    EXPECT_EQ(speed->GetValue(), 250);
    speed->SetValue(-Infinity);
    EXPECT_EQ(speed->GetValue(), -10);
    speed->SetMax(Greatest);
    speed->SetMin(-Greatest);
    speed->SetValue(0);
    EXPECT_NO_THROW(speed.Paint());
    EXPECT_TRUE(std::isfinite(speed.Angle()));
}

TEST(Speedometer, NumbersFollowThePicture) {
    TSpeed speed;
    TWatch watch(*speed);
    speed->SetFormatStr("0.00");
    EXPECT_EQ(speed.Labels(), "0.00 40.00 80.00 120.00 160.00 200.00 240.00");
    EXPECT_EQ(watch.Invalidates, 1);
    speed->SetMin(-120);
    EXPECT_EQ(speed.Labels(), "-120.00 -60.00 0.00 60.00 120.00 180.00 240.00");
    EXPECT_THROW(speed->SetFormatStr("0;0;0;0"), EConvertError);
    EXPECT_EQ(speed->GetFormatStr(), "0.00");
    EXPECT_NO_THROW(speed->SetFormatStr(std::string(10000, 'x')));
}

TEST(Speedometer, LabelThatIsNoTextIsAFaultOfTheArtwork) {
    TSpeed speed;
    speed->GetDocument().FindElement("Labels")->Add<TSVGPath>();
    EXPECT_THROW(speed->InitializeLabels(), EInvalidCast);
    EXPECT_THROW(speed->SetMax(7), EInvalidCast);
}

// Parts and design

TEST(Speedometer, EachPartShowsItsElement) {
    const std::pair<TPart, const char*> rows[] = {
        {TPart::spFrame, "Frame"},
        {TPart::spBackface, "Backface"},
        {TPart::spDecoration, "Decoration"},
        {TPart::spMajorMarkers, "MarkersMajor"},
        {TPart::spMinorMarkers, "MarkersMinor"},
        {TPart::spKnob, "KnobGroup"},
        {TPart::spLabels, "Labels"},
        {TPart::spNeedle, "NeedleGroup"},
        {TPart::spGlass, "Glass"},
    };
    TSpeed speed;
    for (const auto& [part, id] : rows) {
        speed->SetParts(TParts{part});
        for (const auto& [other, otherId] : rows)
            EXPECT_EQ(speed.Get(otherId).GetVisible(), part == other) << id << ' ' << otherId;
    }
    speed->SetParts({});
    for (const auto& [part, id] : rows)
        EXPECT_FALSE(speed.Get(id).GetVisible());
    TWatch watch(*speed);
    speed->SetParts({});
    EXPECT_TRUE(watch.IsQuiet());
    speed->SetParts(TVZSpeedometer::AllParts);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_EQ(watch.Notices, 1);
}

TEST(Speedometer, SimpleDesignHidesTheDetail) {
    TSpeed speed;
    speed->SetDesign(TSVGDesign::sdSimple);
    for (const char* id : {"BackfaceHighlight", "InnerFrame", "NeedleHighlight", "Glass", "NeedleShadow"})
        EXPECT_FALSE(speed.Get(id).GetVisible()) << id;
    // The glass is a part as well: whichever ran last wins.
    speed->SetParts(TParts{TPart::spGlass});
    EXPECT_TRUE(speed.Get("Glass").GetVisible());
    speed->InitializeGauge(); // parts, then design
    EXPECT_FALSE(speed.Get("Glass").GetVisible());
    speed->SetDesign(TSVGDesign::sdDetailed);
    for (const char* id : {"BackfaceHighlight", "InnerFrame", "NeedleHighlight", "Glass", "NeedleShadow"})
        EXPECT_TRUE(speed.Get(id).GetVisible()) << id;
}

// Colours

TEST(Speedometer, ColorsAreTheArtworks) {
    TSpeed speed;
    EXPECT_EQ(speed->GetFrameColor(), speed.Stop("linearGradientFrame", 0));
    EXPECT_EQ(speed->GetBackfaceColor(), speed.Stop("linearGradientBackface", 0));
    EXPECT_EQ(speed->GetNeedleFillColor(), speed.Fill("Needle"));
    EXPECT_EQ(speed->GetNeedleStrokeColor(), speed.Stroke("Needle"));
    EXPECT_EQ(speed->GetLabelsFillColor(), speed.Fill("Labels"));
    EXPECT_EQ(speed->GetLabelsStrokeColor(), speed.Stroke("Labels"));
    EXPECT_EQ(speed->GetMarkersFillColor(), speed.Fill("MarkersMajor"));
    EXPECT_EQ(speed->GetMarkersStrokeColor(), speed.Stroke("MarkersMajor"));
    EXPECT_EQ(speed->GetKnobFillColor(), speed.Stop("GradientKnob", 0));
    EXPECT_EQ(speed->GetKnobStrokeColor(), speed.Stroke("Knob"));
    EXPECT_EQ(speed->GetDecorationFillColor(), 0xFFF06400u);
    EXPECT_EQ(speed->GetDecorationStrokeColor(), 0xFF000000u);
}

using TColorSetter = void (TVZSpeedometer::*)(TVZGPColor);

TEST(Speedometer, GradientColors) {
    const struct {
        TColorSetter Set;
        std::vector<const char*> Gradients;
        const char* Flat;
    } rows[] = {
        {&TVZSpeedometer::SetFrameColor, {"linearGradientFrame"}, "OuterFrame"},
        {&TVZSpeedometer::SetBackfaceColor,
         {"linearGradientBackfaceHighlight", "linearGradientBackface"},
         "BackfaceFlat"},
        {&TVZSpeedometer::SetKnobFillColor, {"GradientKnob"}, "Knob"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Flat);
        TSpeed speed;
        THeadlessHost host(*speed);
        host.Paint();
        std::vector<TVZGPColor> last;
        for (const char* id : row.Gradients) {
            const auto& gradient = speed.Get<TSVGCustomGradient>(id);
            last.push_back(speed.Stop(id, gradient.GetStopCount() - 1));
        }
        TWatch watch(*speed);
        (*speed.*row.Set)(0xFF2060A0);
        EXPECT_EQ(watch.Invalidates, 1);
        EXPECT_TRUE(speed->AreBuffersStale());
        EXPECT_EQ(speed.Get(row.Flat).GetBrush().GetKind(), TVZGPBrushKind::URI);
        for (std::size_t i = 0; i < row.Gradients.size(); ++i) {
            const auto& gradient = speed.Get<TSVGCustomGradient>(row.Gradients[i]);
            EXPECT_EQ(speed.Stop(row.Gradients[i], 0), 0xFF2060A0u);
            EXPECT_NE(speed.Stop(row.Gradients[i], gradient.GetStopCount() - 1), last[i]); // shaded too
        }
        // Recolouring starts from the artwork's stops: over another colour it gives the same.
        TSpeed other;
        (*other.*row.Set)(0xFFFF00FF);
        (*other.*row.Set)(0xFF2060A0);
        EXPECT_EQ(other.Paint(), speed.Paint());
        // With gradients off the flat element takes the colour, and the gradient stays.
        speed->SetEnableGradients(false);
        (*speed.*row.Set)(0xFF00FF00);
        EXPECT_EQ(speed.Fill(row.Flat), 0xFF00FF00u);
        EXPECT_EQ(speed.Stop(row.Gradients[0], 0), 0xFF2060A0u);
    }
}

TEST(Speedometer, PlainColors) {
    const struct {
        TColorSetter Set;
        std::vector<const char*> Elements;
        bool IsStroke;
        bool IsActive; ///< of the active element, which is in no cache
    } rows[] = {
        {&TVZSpeedometer::SetKnobStrokeColor, {"Knob"}, true, false},
        {&TVZSpeedometer::SetLabelsFillColor, {"Labels"}, false, false},
        {&TVZSpeedometer::SetLabelsStrokeColor, {"Labels"}, true, false},
        {&TVZSpeedometer::SetMarkersFillColor, {"MarkersMajor", "MarkersMinor"}, false, false},
        {&TVZSpeedometer::SetMarkersStrokeColor, {"MarkersMajor", "MarkersMinor"}, true, false},
        {&TVZSpeedometer::SetNeedleFillColor, {"Needle"}, false, true},
        {&TVZSpeedometer::SetNeedleStrokeColor, {"Needle"}, true, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Elements[0]);
        TSpeed speed;
        THeadlessHost host(*speed);
        host.Paint();
        TWatch watch(*speed);
        (*speed.*row.Set)(0xC0123456);
        EXPECT_EQ(watch.Invalidates, 1);
        EXPECT_EQ(watch.Notices, 1);
        EXPECT_EQ(watch.Changes, 0);
        EXPECT_EQ(speed->AreBuffersStale(), !row.IsActive);
        for (const char* id : row.Elements)
            EXPECT_EQ(row.IsStroke ? speed.Stroke(id) : speed.Fill(id), 0xC0123456u);
        if (!row.IsStroke) continue;
        (*speed.*row.Set)(0);
        for (const char* id : row.Elements)
            EXPECT_EQ(speed.Get(id).GetPen().GetKind(), TVZGPBrushKind::None);
    }
}

TEST(Speedometer, NeedlesRidgeTakesHalfTheBrightness) {
    TSpeed speed;
    speed->SetNeedleFillColor(0x80FF0305);
    EXPECT_EQ(speed.Fill("NeedleHighlight"), 0x80800202u); // 127.5, 1.5, 2.5
    speed->SetDesign(TSVGDesign::sdSimple);
    speed->SetNeedleFillColor(0xFF00FF00);
    EXPECT_EQ(speed.Fill("NeedleHighlight"), 0x80800202u);
    EXPECT_EQ(speed.Fill("Needle"), 0xFF00FF00u);
}

TEST(Speedometer, NeedleColorShowsThroughTheCaches) {
    TSpeed cached, fresh;
    THeadlessHost host(*cached);
    host.Paint();
    cached->SetNeedleFillColor(0xFFFF0000);
    cached->SetNeedleStrokeColor(0xFF0000FF);
    fresh->SetNeedleFillColor(0xFFFF0000);
    fresh->SetNeedleStrokeColor(0xFF0000FF);
    const TPixels shown = host.PaintStale().GetPixels();
    const auto expected = fresh.Paint();
    for (int y = 0; y < shown.Height; ++y)
        ASSERT_TRUE(std::equal(shown.Row(y), shown.Row(y) + shown.Width, expected.begin() + y * shown.Width))
            << y;
}

TEST(Speedometer, GradientsAreSwitched) {
    const struct {
        const char* Element;
        const char* Gradient;
        bool IsStroke;
        TVZGPColor Color;
    } rows[] = {
        {"BackfaceFlat", "linearGradientBackface", false, 0xFF555753},
        {"BackfaceHighlight", "linearGradientBackfaceHighlight", false, 0xFF555753},
        {"OuterFrame", "linearGradientFrame", false, 0xFF888A85},
        {"Knob", "radialGradientKnob", false, 0xFFFFFFFF},
        {"Decoration", "linearGradientDecorationFill", false, 0xFFF06400},
        {"Decoration", "linearGradientDecorationStroke", true, 0xFF000000},
    };
    TSpeed speed;
    const auto before = speed.Paint();
    for (const bool enable : {false, true}) {
        TWatch watch(*speed);
        speed->SetEnableGradients(enable);
        EXPECT_EQ(watch.Invalidates, 1);
        for (const auto& row : rows) {
            SCOPED_TRACE(row.Gradient);
            TSVGGraphicElement& element = speed.Get(row.Element);
            const TSVGBrush brush = row.IsStroke ? element.GetPen() : element.GetBrush();
            EXPECT_EQ(brush.GetKind(), enable ? TVZGPBrushKind::URI : TVZGPBrushKind::Solid);
            EXPECT_EQ(brush.GetURI(), enable ? row.Gradient : "");
            if (enable) continue;
            EXPECT_EQ(brush.GetColor(), row.Color);
        }
    }
    EXPECT_EQ(speed.Paint(), before);
}

TEST(Speedometer, LightTintsShineAndShadow) {
    TSpeed speed;
    EXPECT_EQ(speed.Fill("NeedleShadow"), 0xFF000000u);
    speed->SetLightColor(0xFFFFC080);
    EXPECT_EQ(speed.Stop("linearGradientShine", 0), 0xFFFFC080u);
    EXPECT_EQ(speed.Fill("NeedleShadow"), 0xFF7F4000u);
    speed->SetLightColor(0xFF0000FF);
    EXPECT_EQ(speed.Stop("linearGradientShine", 0), 0xFF0000FFu);
    EXPECT_EQ(speed.Fill("NeedleShadow"), 0xFF0000FFu);
}

TEST(Speedometer, EmblemsFillDependsOnTheDesign) {
    TSpeed speed;
    TWatch watch(*speed);
    speed->SetDecorationFillColor(0xFF0080FF);
    EXPECT_EQ(speed.Stop("GradientDecoration", 0), 0xFF0080FFu);
    EXPECT_EQ(speed.Get("Decoration").GetBrush().GetKind(), TVZGPBrushKind::URI);
    EXPECT_EQ(watch.Invalidates, 1);
    speed->SetDesign(TSVGDesign::sdSimple);
    speed->SetDecorationFillColor(0xFF00FF00);
    EXPECT_EQ(speed.Stop("GradientDecoration", 0), 0xFF0080FFu);
    EXPECT_EQ(speed.Get("Decoration").GetBrush().GetKind(), TVZGPBrushKind::Solid);
    EXPECT_EQ(speed.Fill("Decoration"), 0xFF00FF00u);
}

// Font

TEST(Speedometer, FontIsCopied) {
    TSpeed speed;
    TSVGFont font;
    font.SetSize(14);
    TWatch watch(*speed);
    speed->SetFont(font);
    EXPECT_NE(&speed->GetFont(), &font);
    EXPECT_EQ(speed->GetFont().GetSize(), 14);
    EXPECT_EQ(speed.Get("Labels").GetStyle().Find(TSVGStyleProperty::FontSize)->Length.GetValue(), 14);
    EXPECT_EQ(watch.Invalidates, 1);
    speed->SetFont(font);
    EXPECT_EQ(watch.Invalidates, 1);
    speed->GetFont().SetWeight(300);
    EXPECT_EQ(watch.Invalidates, 2);
    speed->SetFont(TSVGFont());
    TSpeed fresh;
    EXPECT_EQ(speed.Paint(), fresh.Paint());
}

// Streams

TEST(Speedometer, StoresWhatDiffers) {
    RegisterComponentClasses();
    TSpeed speed;
    EXPECT_EQ(WriteForm(*speed), "object TVZSpeedometer\nend\n");
    speed->SetMin(10);
    speed->SetValue(0); // its default, but reading Min alone would pull it up
    EXPECT_TRUE(speed->IsValueStored());
    speed->SetFrameColor(0xFF112233);
    const auto copy = ReadForm(WriteForm(*speed));
    auto& read = dynamic_cast<TVZSpeedometer&>(*copy);
    EXPECT_EQ(read.GetMin(), 10);
    EXPECT_EQ(read.GetValue(), 0);
    EXPECT_EQ(read.GetFrameColor(), 0xFF112233u);
}

TEST(Speedometer, EmblemOfTheUsersOwnIsStored) {
    RegisterComponentClasses();
    TSpeed speed;
    TVZPathData path;
    path.SetPathString("M0 0L100 0 100 100Z");
    speed->SetDecorationPath(path);
    const auto copy = ReadForm(WriteForm(*speed));
    auto& read = dynamic_cast<TVZSpeedometer&>(*copy);
    EXPECT_EQ(read.GetDecoration(), TDecoration::dcCustom);
    EXPECT_EQ(read.GetDecorationPath()->GetPathString(), path.GetPathString());
    // A form that fails leaves it, too.
    EXPECT_THROW(ReadFormInto(*speed, "object TVZSpeedometer\n DecorationPath = 'M1 1L2 2'\n Max = x\nend\n"),
                 EConvertError);
    EXPECT_EQ(speed->GetDecorationPath()->GetPathString(), path.GetPathString());
}

// Another artwork

TEST(Speedometer, KeepsItsValuesInAnotherArtwork) {
    TSpeed speed, whole;
    for (TSpeed* one : {&speed, &whole}) {
        (*one)->SetMax(100);
        (*one)->SetValue(60);
        (*one)->SetFrameColor(0xFFA02020);
        (*one)->SetLabelsFillColor(0xFFFFFF00);
        (*one)->SetLightColor(0xFFFFC080);
        (*one)->GetFont().SetSize(20);
        (*one)->SetParts(TVZSpeedometer::AllParts - TParts{TPart::spMinorMarkers});
        (*one)->SetDecorationFillColor(0xFF00FF00);
    }
    speed->LoadSVGResource("SpeedometerSVG");
    EXPECT_EQ(speed->GetActiveSVGElement(), &speed.Get("NeedleGroup"));
    EXPECT_EQ(speed.Paint(), whole.Paint());
    std::istringstream bare("<svg xmlns='http://www.w3.org/2000/svg'/>");
    speed->LoadFromStream(bare); // every element is missing
    speed->SetValue(10);
    speed->SetMax(20);
    speed->SetFrameColor(1);
    speed->SetNeedleFillColor(1);
    speed->SetEnableGradients(false);
    speed->SetLightColor(0xFF102030);
    speed->SetDesign(TSVGDesign::sdSimple);
    speed->SetDecoration(TDecoration::dcBolt);
    speed->GetFont().SetSize(3);
    EXPECT_NO_THROW(speed.Paint());
}

// Frames

TEST(Speedometer, MovingTheNeedleIsCheap) {
    TSpeed speed;
    THeadlessHost host(*speed);
    host.Paint();
    int changes = 0;
    speed->SetOnChange([&](TObject&) { ++changes; });
    const auto setOnly = [&] {
        for (int i = 0; i < 1000; ++i)
            speed->SetValue(float(i % 240) + 0.5f);
    };
    const auto setAndPaint = [&] {
        for (int i = 0; i < 240; ++i) {
            speed->SetValue(float(i));
            host.PaintStale();
        }
    };
    for (int i = 0; i < 2; ++i) { // everything grows to its size
        setOnly();
        setAndPaint();
    }
    const std::uint64_t epoch = speed->GetDocument().GetEpoch();
    const std::size_t before = CountAllocations();
    changes = 0;
    setOnly();
    EXPECT_EQ(CountAllocations(), before);
    EXPECT_EQ(changes, 1000);
    setAndPaint();
    EXPECT_EQ(CountAllocations(), before);
    // Nothing but a place changed: no style, path, paint or text was dropped, and the caches held.
    EXPECT_EQ(speed->GetDocument().GetEpoch(), epoch);
    EXPECT_FALSE(speed->AreBuffersStale());
}

} // namespace
} // namespace Vz::Test
