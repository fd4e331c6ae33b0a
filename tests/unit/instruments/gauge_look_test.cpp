#include "GaugeProbe.h"
#include "tavro/controls/HeadlessHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace Vz::Test {
namespace {

constexpr TParts AllParts = TVZCustomCircularGauge::AllParts;

constexpr int PictureSize = 200;

std::vector<std::uint32_t> Painted(TVZCustomCircularGauge& gauge) {
    gauge.SetBounds(0, 0, PictureSize, PictureSize);
    THeadlessHost host(gauge);
    const TPixels pixels = host.Paint().GetPixels();
    return {pixels.Data, pixels.Data + PictureSize * PictureSize};
}

/// Between which distances from the dial's middle two pictures differ, in pixels; empty where they are equal.
struct TRing {
    double From = PictureSize;
    double To = 0;
    bool IsEmpty() const { return From > To; }
};

TRing DifferenceOf(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b) {
    TRing ring;
    for (int i = 0; i < PictureSize * PictureSize; ++i) {
        if (a[std::size_t(i)] == b[std::size_t(i)]) continue;
        const double distance = std::hypot(i % PictureSize + 0.5 - 100, i / PictureSize + 0.5 - 100);
        ring.From = std::min(ring.From, distance);
        ring.To = std::max(ring.To, distance);
    }
    return ring;
}

constexpr std::string_view LitElements[] = {
    "FrameBackfaceShadow", "DialLight",  "GlassGroup",
    "KnobHighlight",       "BoltShadow", "AttachmentFaceHighlight",
};

struct TBevel {
    std::string_view Element;
    std::string_view Gradient;
    bool IsLight;
};
constexpr TBevel Bevels[] = {
    {"FrameBevelUpper", "linearGradient7738", true},
    {"FrameBevelLower", "linearGradient5799", false},
    {"BackfaceBevelUpper", "linearGradient4348", false},
    {"BackfaceBevelLower", "linearGradient4575", true},
};

TVZGPColor FlatBevel(const TBevel& bevel, TVZGPColor frame) {
    return bevel.IsLight ? DodgeColor(frame, 0xFF808080) : BurnColor(frame, 0xFF808080);
}

// The artwork

TEST(GaugeLook, EverythingIsConcentric) {
    const auto gauge = TBareGauge::Create();
    const TPointF knob = VZCenterPoint(ElementOf(*gauge, "Knob").GetBounds());
    const TPointF dial = VZCenterPoint(ElementOf(*gauge, "DialColor").GetBounds());
    EXPECT_NEAR(knob.X, 100, 1e-4);
    EXPECT_NEAR(knob.Y, 100, 1e-4);
    EXPECT_NEAR(dial.X, 100, 1e-4);
    EXPECT_NEAR(dial.Y, 100, 1e-4);
    for (const char* const box : {"Markers", "Labels", "DecorationUse"}) {
        const TPointD middle = ElementOf(*gauge, box).GetTransform()(TPointD{50, 50});
        EXPECT_NEAR(middle.X, 100, 1e-9) << box;
        EXPECT_NEAR(middle.Y, 100, 1e-9) << box;
    }
    const TRectF circle = ElementOf(*gauge, "TextCircle").GetBounds();
    EXPECT_NEAR(circle.Left, 0, 0.01);
    EXPECT_NEAR(circle.Top, 0, 0.01);
    EXPECT_NEAR(circle.Right, 100, 0.01);
    EXPECT_NEAR(circle.Bottom, 100, 0.01);
}

// Parts

TEST(GaugeLook, EachPartIsSeenWhereItBelongs) {
    const auto gauge = TBareGauge::Create();
    gauge->SetDecoration(TDecoration::dcStar);
    gauge->SetCaption("caption");
    gauge->SetDetailText("detail");
    const auto whole = Painted(*gauge);
    struct TCase {
        TPart Part;
        double From, To; ///< pixels from the middle
    };
    const TCase cases[] = {
        {TPart::gpDecoration, 0, 60},    {TPart::gpFrame, 70, 105},
        {TPart::gpBolts, 70, 105},       {TPart::gpBackface, 0, 90},
        {TPart::gpKnob, 0, 20},          {TPart::gpHands, 0, 80},
        {TPart::gpLabels, 20, 80},       {TPart::gpMeasurementLabels, 40, 80},
        {TPart::gpMainLabel, 10, 60},    {TPart::gpDetailLabel, 10, 60},
        {TPart::gpMajorMarkers, 60, 90}, {TPart::gpMinorMarkers, 60, 90},
        {TPart::gpGlass, 0, 90},
    };
    for (const auto& [part, from, to] : cases) {
        gauge->SetParts(AllParts - TParts{part});
        const TRing ring = DifferenceOf(Painted(*gauge), whole);
        EXPECT_FALSE(ring.IsEmpty()) << int(part);
        EXPECT_GE(ring.From, from) << int(part);
        EXPECT_LE(ring.To, to) << int(part);
        gauge->SetParts(AllParts);
        EXPECT_EQ(Painted(*gauge), whole) << int(part);
    }
    gauge->SetParts({});
    EXPECT_TRUE(std::ranges::all_of(Painted(*gauge), [](std::uint32_t pixel) { return pixel == 0; }));
}

TEST(GaugeLook, PartsOfAPartGoWithIt) {
    const auto gauge = TBareGauge::Create();
    gauge->SetCaption("caption");
    gauge->SetDetailText("detail");
    const auto without = [&](TParts parts) {
        gauge->SetParts(AllParts - parts);
        return Painted(*gauge);
    };
    EXPECT_EQ(without({TPart::gpFrame}), without({TPart::gpFrame, TPart::gpBolts}));
    EXPECT_EQ(without({TPart::gpLabels}), without({TPart::gpLabels, TPart::gpMeasurementLabels,
                                                   TPart::gpMainLabel, TPart::gpDetailLabel}));
}

TEST(GaugeLook, LastWriterDecides) {
    const auto gauge = TBareGauge::Create();
    gauge->SetParts(AllParts - TParts{TPart::gpGlass, TPart::gpBolts});
    EXPECT_FALSE(IsShown(*gauge, "GlassGroup") || IsShown(*gauge, "Bolts"));
    gauge->UpdateDesign(); // shows both exactly when the design is detailed
    EXPECT_TRUE(IsShown(*gauge, "GlassGroup") && IsShown(*gauge, "Bolts"));
    gauge->UpdateParts();
    EXPECT_FALSE(IsShown(*gauge, "GlassGroup") || IsShown(*gauge, "Bolts"));
    gauge->UpdateGradients(); // its elements, exactly when gradients are on and the design is detailed
    EXPECT_TRUE(IsShown(*gauge, "GlassGroup"));
    EXPECT_FALSE(IsShown(*gauge, "Bolts"));

    gauge->SetParts({TPart::gpHands});
    EXPECT_FALSE(IsShown(*gauge, "DialLight"));
    gauge->UpdateGradients();
    EXPECT_TRUE(IsShown(*gauge, "DialLight"));
    gauge->SetDesign(TSVGDesign::sdSimple);
    EXPECT_FALSE(IsShown(*gauge, "DialLight") || IsShown(*gauge, "GlassGroup") || IsShown(*gauge, "Bolts"));
    gauge->SetParts(AllParts);
    EXPECT_TRUE(IsShown(*gauge, "DialLight") && IsShown(*gauge, "GlassGroup") && IsShown(*gauge, "Bolts"));
    EXPECT_FALSE(IsShown(*gauge, "KnobHighlight")); // no part of its own
}

TEST(GaugeLook, ABatchEndsWithTheDesign) {
    const auto gauge = TBareGauge::Create();
    gauge->BeginUpdate();
    gauge->SetParts(AllParts - TParts{TPart::gpGlass});
    EXPECT_FALSE(IsShown(*gauge, "GlassGroup"));
    gauge->EndUpdate();
    EXPECT_TRUE(IsShown(*gauge, "GlassGroup"));
}

// Design, gradients and light

TEST(GaugeLook, SimpleDesignLeavesTheDetailAway) {
    const auto gauge = TBareGauge::Create();
    EXPECT_TRUE(IsShown(*gauge, "Bolts"));
    gauge->SetDesign(TSVGDesign::sdSimple);
    EXPECT_FALSE(IsShown(*gauge, "Bolts"));
    gauge->SetEnableGradients(false);
    gauge->SetEnableGradients(true);
    for (const std::string_view id : LitElements)
        EXPECT_FALSE(IsShown(*gauge, id)) << id;
    for (const TBevel& bevel : Bevels)
        EXPECT_EQ(ElementOf(*gauge, bevel.Element).GetBrush().GetURI(), bevel.Gradient);
    gauge->SetDesign(TSVGDesign::sdDetailed);
    for (const std::string_view id : LitElements)
        EXPECT_TRUE(IsShown(*gauge, id)) << id;
}

TEST(GaugeLook, WithoutGradientsBevelsAreFlat) {
    const auto gauge = TBareGauge::Create();
    gauge->SetEnableGradients(false);
    for (const std::string_view id : LitElements)
        EXPECT_FALSE(IsShown(*gauge, id)) << id;
    EXPECT_TRUE(IsShown(*gauge, "Bolts"));
    gauge->SetFrameColor(0xFF204060);
    for (const TBevel& bevel : Bevels) {
        TSVGBrush brush = ElementOf(*gauge, bevel.Element).GetBrush();
        EXPECT_EQ(brush.GetKind(), TVZGPBrushKind::Solid) << bevel.Element;
        EXPECT_EQ(brush.GetColor(), FlatBevel(bevel, 0xFF204060)) << bevel.Element;
    }
    gauge->SetEnableGradients(true);
    for (const TBevel& bevel : Bevels) {
        TSVGBrush brush = ElementOf(*gauge, bevel.Element).GetBrush();
        EXPECT_EQ(brush.GetKind(), TVZGPBrushKind::URI) << bevel.Element;
        EXPECT_EQ(brush.GetURI(), bevel.Gradient);
    }
}

TEST(GaugeLook, FrameColourLeavesGradientBevelsAlone) {
    const auto gauge = TBareGauge::Create();
    gauge->SetFrameColor(0xFF204060);
    EXPECT_EQ(FillOf(*gauge, "Frame"), 0xFF204060);
    for (const TBevel& bevel : Bevels)
        EXPECT_EQ(ElementOf(*gauge, bevel.Element).GetBrush().GetKind(), TVZGPBrushKind::URI);
}

TEST(GaugeLook, LightTintsTheStopsAndKeepsTheirOpacity) {
    const auto gauge = TBareGauge::Create();
    const auto stops = [&](std::string_view id) {
        std::vector<TVZGPColor> colors;
        auto* const gradient = gauge->GetDocument().Find<TSVGCustomGradient>(id);
        for (std::size_t i = 0; i < gradient->GetStopCount(); ++i)
            colors.push_back(gradient->GetStop(i).GetStopColor());
        return colors;
    };
    const auto light = stops("GradientLighten");
    const auto dark = stops("GradientDarken");
    ASSERT_GT(light.size(), 1u);
    gauge->SetLightColor(0xFFFFC040);
    for (std::size_t i = 0; i < light.size(); ++i)
        EXPECT_EQ(stops("GradientLighten")[i], WithAlpha(0xFFFFC040, AlphaOf(light[i])));
    for (std::size_t i = 0; i < dark.size(); ++i)
        EXPECT_EQ(stops("GradientDarken")[i], WithAlpha(0xFFBF8000, AlphaOf(dark[i])));
    gauge->SetLightColor(0xFFFFFFFF);
    EXPECT_EQ(stops("GradientLighten"), light);
    EXPECT_EQ(stops("GradientDarken"), dark);
}

// Colours

struct TColorCase {
    std::string_view Element;
    TVZGPColor (TVZCustomCircularGauge::*Get)() const;
    void (TVZCustomCircularGauge::*Set)(TVZGPColor);
};
using G = TVZCustomCircularGauge;
constexpr TColorCase ColorCases[] = {
    {"Frame", &G::GetFrameColor, &G::SetFrameColor},
    {"DialColor", &G::GetBackfaceColor, &G::SetBackfaceColor},
    {"Bolt", &G::GetBoltColor, &G::SetBoltColor},
    {"Knob", &G::GetKnobColor, &G::SetKnobColor},
    {"BigMarkers", &G::GetMajorMarkersColor, &G::SetMajorMarkersColor},
    {"SmallMarkers", &G::GetMinorMarkersColor, &G::SetMinorMarkersColor},
    {"MeasurementLabels", &G::GetLabelsFillColor, &G::SetLabelsFillColor},
    {"BigHand", &G::GetBigHandColor, &G::SetBigHandColor},
    {"LittleHand", &G::GetLittleHandColor, &G::SetLittleHandColor},
    {"ThinHand", &G::GetThinHandColor, &G::SetThinHandColor},
};

TEST(GaugeLook, ColoursFillTheirElements) {
    const auto gauge = TBareGauge::Create();
    TNotices notices(*gauge);
    TVZGPColor color = 0xFF102030;
    for (const TColorCase& row : ColorCases) {
        color += 0x00010101;
        (gauge.get()->*row.Set)(color);
        EXPECT_EQ((gauge.get()->*row.Get)(), color);
        EXPECT_EQ(FillOf(*gauge, row.Element), color) << row.Element;
        EXPECT_TRUE(gauge->AreBuffersStale());
        EXPECT_EQ(notices.TakeInvalidates(), 1) << row.Element;
        (gauge.get()->*row.Set)(color);
        EXPECT_EQ(notices.TakeInvalidates(), 0) << row.Element;
    }
    EXPECT_EQ(notices.TakeChanges(), 0);
}

TEST(GaugeLook, LabelStrokeIsSwitchedOffByNothing) {
    const auto gauge = TBareGauge::Create();
    gauge->SetLabelsStrokeColor(0xFF00FF00);
    EXPECT_EQ(ElementOf(*gauge, "MeasurementLabels").GetPen().GetColor(), 0xFF00FF00);
    gauge->SetLabelsStrokeColor(0);
    EXPECT_EQ(ElementOf(*gauge, "MeasurementLabels").GetPen().GetKind(), TVZGPBrushKind::None);
    gauge->SetLabelsStrokeColor(0xFF0000FF);
    EXPECT_EQ(ElementOf(*gauge, "MeasurementLabels").GetPen().GetKind(), TVZGPBrushKind::Solid);
}

// Fonts and texts

TEST(GaugeLook, FontsReachTheirGroups) {
    const auto gauge = TBareGauge::Create();
    const double before = FontSizeOf(*gauge, "Labels");
    const double captionBefore = FontSizeOf(*gauge, "GaugeLabels");
    TNotices notices(*gauge);
    gauge->GetFont().SetSize(6.5f);
    EXPECT_EQ(notices.TakeInvalidates(), 1);
    EXPECT_EQ(FontSizeOf(*gauge, "Labels"), 6.5);
    EXPECT_EQ(FontSizeOf(*gauge, "GaugeLabels"), captionBefore);
    TSVGFont font;
    font.SetSize(3);
    gauge->SetCaptionFont(font);
    EXPECT_EQ(FontSizeOf(*gauge, "GaugeLabels"), 3);
    gauge->SetFont(TSVGFont());
    EXPECT_EQ(FontSizeOf(*gauge, "Labels"), before);
    notices.TakeInvalidates();
    gauge->SetFont(TSVGFont());
    EXPECT_EQ(notices.TakeInvalidates(), 0);
}

TEST(GaugeLook, TextsAreShown) {
    const auto gauge = TVZCircularBarometer::Create();
    const auto text = [&](std::string_view id) { return gauge->GetDocument().Find<TSVGText>(id)->GetText(); };
    EXPECT_EQ(text("GaugeText"), "Barometer");
    EXPECT_EQ(text("GaugeDetailText"), "hPa");
    EXPECT_FALSE(gauge->IsCaptionStored() || gauge->IsDetailTextStored());
    TNotices notices(*gauge);
    gauge->SetCaption("Luftdruck <&>");
    gauge->SetDetailText("");
    EXPECT_EQ(notices.TakeInvalidates(), 2);
    EXPECT_EQ(text("GaugeText"), "Luftdruck <&>");
    EXPECT_EQ(text("GaugeDetailText"), "");
    EXPECT_TRUE(gauge->IsCaptionStored() && gauge->IsDetailTextStored());
    gauge->SetCaption("Luftdruck <&>");
    EXPECT_EQ(notices.TakeInvalidates(), 0);
    gauge->SetCaption(std::string(10000, 'x'));
    EXPECT_EQ(text("GaugeText").size(), 10000u);
}

// Decoration

TEST(GaugeLook, HasShapesOfItsOwnForThreeEmblems) {
    const auto gauge = TBareGauge::Create();
    for (int i = 0; i < DecorationCount; ++i) {
        gauge->SetDecoration(static_cast<TDecoration>(i));
        const std::string_view own = GetGaugeDecorationPath(i);
        EXPECT_EQ(own.empty(), i != 2 && i != 3 && i != 12) << i;
        TVZPathData expected;
        expected.SetPathString(own.empty() ? GetDecorationPath(i) : own);
        EXPECT_TRUE(gauge->GetDecorationPath()->GetFigures() == expected.GetFigures()) << i;
    }
}

TEST(GaugeLook, OwnStarIsEightPointed) {
    const auto gauge = TBareGauge::Create();
    gauge->SetDecoration(TDecoration::dcStar);
    TVZPathData star;
    star.SetPathString("M 49.839794,-12.239232 46.416284,43.516755 18.423291,19.379157 43.068155,46.717068 "
                       "-13.579729,50.065949 43.10033,53.696163 18.42559,81.063877 46.418582,56.926278 "
                       "49.842092,112.68227 53.537258,56.984985 81.364314,81.211089 56.780126,53.710161 "
                       "113.57969,50.065045 56.826089,46.701263 81.365233,19.230136 53.538176,43.456243 "
                       "49.843012,-12.24104 Z");
    EXPECT_TRUE(gauge->GetDecorationPath()->GetFigures() == star.GetFigures());
}

TEST(GaugeLook, EmblemsRepaintAlsoWithoutAnElement) {
    const auto gauge = TBareGauge::Create();
    gauge->LoadFromText("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
    TNotices notices(*gauge);
    for (const TDecoration kind : {TDecoration::dcStar, TDecoration::dcModern, TDecoration::dcGlobe,
                                   TDecoration::dcBolt, TDecoration::dcNone}) {
        gauge->SetDecoration(kind);
        EXPECT_EQ(notices.TakeInvalidates(), 1);
    }
}

} // namespace
} // namespace Vz::Test
