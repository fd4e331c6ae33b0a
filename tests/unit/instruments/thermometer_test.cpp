#include "tavro/Vz.Tavro.Thermometers.h"

#include "ArtworkProbe.h"
#include "RecolourByHand.h"
#include "tavro/runtime/Resources.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace Vz::Test {
namespace {

using TPart = TVZThermometer::TPart;
using TParts = TVZThermometer::TParts;
using TLength = TSVGBasicShape::TPart;

constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float Nan = std::numeric_limits<float>::quiet_NaN();
constexpr float Greatest = std::numeric_limits<float>::max();

struct TWarmth : TShown<TVZThermometer> {
    double Y(std::string_view id = "Mercury") { return Length(id, TLength::Y); }
    double Height(std::string_view id = "Mercury") { return Length(id, TLength::Height); }
    /// The numbers, which both scales show.
    std::string Labels() {
        EXPECT_EQ(Texts("textLeft"), Texts("textRight"));
        return Texts("textLeft");
    }
};

std::string Artwork() { return std::string(GetResource("ThermometerSVG")); }

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, text.npos) << from;
    return text.replace(at, from.size(), to);
}

// Scale and mercury

TEST(Thermometer, FreshOne) {
    TWarmth warmth;
    EXPECT_EQ(warmth->GetWidth(), 75);
    EXPECT_EQ(warmth->GetHeight(), 200);
    EXPECT_EQ(warmth->GetMin(), 0);
    EXPECT_EQ(warmth->GetMax(), 120);
    EXPECT_EQ(warmth->GetValue(), 0);
    EXPECT_EQ(warmth->GetLowest(), -10);  // round(10.5)
    EXPECT_EQ(warmth->GetHighest(), 132); // round(12)
    EXPECT_EQ(warmth->GetParts().GetMask(), 4095u);
    EXPECT_EQ(warmth->GetDecorationElementId(), "");
    EXPECT_EQ(warmth->GetDecorationPath(), nullptr);
    EXPECT_EQ(warmth.Labels(), "120 105 90 75 60 45 30 15 0");
    EXPECT_EQ(warmth->GetActiveSVGElement(), &warmth.Get("GlassPipette"));
}

TEST(Thermometer, ColumnRisesWithTheValue) {
    TWarmth warmth;
    EXPECT_NEAR(warmth.Height(), 51.056, 1e-3); // 725 * 10 / 142
    EXPECT_NEAR(warmth.Y(), 709.944, 1e-3);
    EXPECT_NEAR(warmth.Height("MercuryHighlight"), 50.704, 1e-3); // 720 * 10 / 142
    EXPECT_NEAR(warmth.Y("MercuryHighlight"), 709.296, 1e-3);
    TWatch watch(*warmth);
    warmth->SetValue(200);
    EXPECT_EQ(warmth->GetValue(), 132);
    EXPECT_EQ(warmth.Y(), 36);
    EXPECT_EQ(warmth.Height(), 725);
    EXPECT_EQ(warmth.Y("MercuryHighlight"), 40);
    EXPECT_EQ(warmth.Height("MercuryHighlight"), 720);
    EXPECT_EQ(watch.Changes, 1);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_EQ(watch.Notices, 1);
    warmth->SetValue(-40);
    EXPECT_EQ(warmth->GetValue(), -10);
    EXPECT_EQ(warmth.Y(), 761);
    EXPECT_EQ(warmth.Height(), 0);
    EXPECT_EQ(warmth.Y("MercuryHighlight"), 760);
    EXPECT_EQ(warmth.Height("MercuryHighlight"), 0);
    EXPECT_EQ(watch.Changes, 2);
}

TEST(Thermometer, SameValueDoesNothing) {
    TWarmth warmth;
    warmth->SetValue(50);
    TWatch watch(*warmth);
    warmth->SetValue(50);
    warmth->SetMax(120);
    warmth->SetMin(0);
    EXPECT_TRUE(watch.IsQuiet());
}

TEST(Thermometer, UpperEnd) {
    TWarmth warmth;
    warmth->SetValue(110);
    TWatch watch(*warmth);
    warmth->SetMax(100);
    EXPECT_EQ(warmth->GetHighest(), 110); // round(10)
    EXPECT_EQ(warmth->GetLowest(), -9);   // round(8.75)
    EXPECT_EQ(warmth->GetValue(), 100);
    EXPECT_EQ(warmth.Labels(), "100 87.5 75 62.5 50 37.5 25 12.5 0");
    EXPECT_NEAR(warmth.Height(), 725 * 109 / 119.0, 1e-9);
    EXPECT_EQ(watch.Changes, 0);
    EXPECT_EQ(watch.Invalidates, 2); // the mercury's and its own
    EXPECT_EQ(watch.Notices, 1);
    EXPECT_TRUE(warmth->AreBuffersStale());
    warmth->SetMax(-20); // below Min
    EXPECT_EQ(warmth->GetMin(), -21);
    EXPECT_EQ(warmth->GetValue(), -20);
    EXPECT_EQ(watch.Changes, 0);
}

TEST(Thermometer, LowerEnd) {
    TWarmth warmth;
    TWatch watch(*warmth);
    warmth->SetMin(500); // above Max
    EXPECT_EQ(warmth->GetMax(), 501);
    EXPECT_EQ(warmth->GetValue(), 500);
    EXPECT_EQ(warmth->GetLowest(), 500); // round(0.0875) and round(0.1)
    EXPECT_EQ(warmth->GetHighest(), 501);
    EXPECT_EQ(warmth.Height(), 0);
    EXPECT_EQ(watch.Changes, 0);
    EXPECT_TRUE(warmth->AreBuffersStale());
}

TEST(Thermometer, OverrunsRoundHalfToEven) {
    TWarmth warmth;
    warmth->SetMax(25); // 2.5 above
    EXPECT_EQ(warmth->GetHighest(), 27);
    warmth->SetMax(15); // 1.5
    EXPECT_EQ(warmth->GetHighest(), 17);
    EXPECT_EQ(warmth->GetLowest(), -1); // 1.3125
}

TEST(Thermometer, ColumnAgreesWithTheFormulaOnRandomScales) {
    std::mt19937 random(61);
    std::uniform_real_distribution<float> any(-2000, 2000);
    TWarmth warmth;
    for (int round = 0; round < 1000; ++round) {
        const float a = any(random), b = any(random);
        warmth->SetMin(std::min(a, b));
        warmth->SetMax(std::max(a, b));
        warmth->SetMin(std::min(a, b)); // the first one may have been pushed
        const float value = any(random) * 2;
        warmth->SetValue(value);
        const double span = warmth->GetMax() - warmth->GetMin();
        const double least = float(warmth->GetMin() - std::nearbyint(span * 0.0875));
        const double greatest = float(warmth->GetMax() + std::nearbyint(span * 0.1));
        const double held = std::min(std::max(double(value), least), greatest);
        ASSERT_EQ(warmth->GetValue(), float(held)) << round;
        const double level = (held - least) / (greatest - least);
        ASSERT_NEAR(warmth.Height(), 725 * level, 1e-3) << round;
        ASSERT_NEAR(warmth.Y() + warmth.Height(), 761, 1e-9) << round;
        ASSERT_NEAR(warmth.Height("MercuryHighlight"), 720 * level, 1e-3) << round;
    }
}

TEST(Thermometer, EqualEndsAreHarmless) {
    TWarmth warmth;
    warmth->SetValue(60);
    const double height = warmth.Height();
    warmth->SetMax(60);
    warmth->SetMin(60); // equal to Max
    EXPECT_EQ(warmth->GetMin(), 60);
    EXPECT_EQ(warmth->GetMax(), 60);
    EXPECT_EQ(warmth.Labels(), "60 60 60 60 60 60 60 60 60");
    const double still = warmth.Height();
    EXPECT_NE(still, height); // where the upper end left it
    warmth->SetValue(5);
    EXPECT_EQ(warmth->GetValue(), 60);
    EXPECT_EQ(warmth.Height(), still);
    EXPECT_NO_THROW(warmth.Paint());
}

TEST(Thermometer, ValueBelowALowerRangeLeavesNoColumn) {
    TWarmth warmth;
    warmth->SetValue(-10);
    warmth->SetMax(100); // the range begins at -9, and a raised Min alone moves the value
    EXPECT_EQ(warmth->GetValue(), -10);
    EXPECT_EQ(warmth.Height(), 0);
    TSVGDocument copy;
    EXPECT_NO_THROW(copy.LoadFromText(warmth->GetDocument().WriteText()));
    EXPECT_TRUE(copy.GetDiagnostics().empty());
}

TEST(Thermometer, NumbersThatAreNone) {
    TWarmth warmth;
    warmth->SetValue(50);
    {
        TWatch watch(*warmth);
        for (const float number : {Nan, Infinity, -Infinity}) {
            warmth->SetMin(number);
            warmth->SetMax(number);
        }
        warmth->SetValue(Nan);
        EXPECT_TRUE(watch.IsQuiet());
    }
    warmth->SetValue(Infinity);
    EXPECT_EQ(warmth->GetValue(), 132);
    warmth->SetMax(Greatest);
    warmth->SetMin(-Greatest);
    warmth->SetValue(0);
    EXPECT_NEAR(warmth.Height(), 725 / 2.0, 1e-3);
    EXPECT_NO_THROW(warmth.Paint());
}

// Numbers

TEST(Thermometer, NumbersFollowThePicture) {
    TWarmth warmth;
    TWatch watch(*warmth);
    warmth->SetFormatStr("0.0");
    EXPECT_EQ(warmth.Labels(), "120.0 105.0 90.0 75.0 60.0 45.0 30.0 15.0 0.0");
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_EQ(watch.Notices, 1);
    EXPECT_THROW(warmth->SetFormatStr("0;0;0;0"), EConvertError);
    EXPECT_EQ(warmth->GetFormatStr(), "0.0");
}

TEST(Thermometer, LeftScaleDecidesHowManyNumbersThereAre) {
    TWarmth warmth;
    auto& left = warmth.Get("textLeft");
    while (left.GetChildCount() > 3)
        left.GetChild(left.GetChildCount() - 1).Remove();
    warmth->SetMin(20);
    EXPECT_EQ(warmth.Texts("textLeft"), "120 70 20");
    EXPECT_EQ(warmth.Texts("textRight"), "120 70 20 75 60 45 30 15 0");
    auto& right = warmth.Get("textRight");
    while (right.GetChildCount() > 2)
        right.GetChild(right.GetChildCount() - 1).Remove();
    EXPECT_THROW(warmth->SetMin(0), EArgumentOutOfRange);
    EXPECT_EQ(warmth.Texts("textLeft"), "120 70 20"); // all or nothing
}

TEST(Thermometer, NumberThatIsNoTextIsAFaultOfTheArtwork) {
    for (const char* id : {"textLeft", "textRight"}) {
        TWarmth warmth;
        warmth.Get(id).GetChild(4).Remove();
        warmth.Get(id).Add<TSVGPath>();
        const std::string before = warmth.Get("textLeft").GetChild(0).GetId();
        EXPECT_THROW(warmth->InitializeLabels(), EInvalidCast) << id;
    }
}

TEST(Thermometer, OneScaleAloneIsLeftAsItIs) {
    for (const auto& [gone, left] :
         {std::pair("textLeft", "textRight"), std::pair("textRight", "textLeft")}) {
        TWarmth warmth;
        warmth.Get(gone).Remove();
        warmth->SetMax(240);
        EXPECT_EQ(warmth.Texts(left), "120 105 90 75 60 45 30 15 0");
        EXPECT_EQ(warmth->GetHighest(), 264);
    }
}

// Font

TEST(Thermometer, FontIsCopiedAndOutlastsAnArtwork) {
    TWarmth warmth;
    TSVGFont font;
    font.SetSize(14);
    TWatch watch(*warmth);
    warmth->SetFont(font);
    EXPECT_NE(&warmth->GetFont(), &font);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_TRUE(warmth->AreBuffersStale());
    const auto size = [&] {
        return warmth.Get("Labels").GetStyle().Find(TSVGStyleProperty::FontSize)->Number;
    };
    EXPECT_EQ(size(), 14);
    const auto shown = warmth.Paint();
    warmth->LoadSVGResource("ThermometerSVG");
    EXPECT_EQ(size(), 14);
    EXPECT_EQ(warmth.Paint(), shown);
    // The initializing leaves the font as it is.
    TSVGFont other;
    other.SetSize(40);
    warmth.Get("Labels").SetFont(&other);
    warmth->InitializeGauge();
    EXPECT_EQ(size(), 40);
    warmth->SetFont(TSVGFont());
    TWarmth fresh;
    EXPECT_EQ(warmth.Paint(), fresh.Paint());
}

// Steps

class TOrderly final : public TCreatable<TOrderly, TVZThermometer> {
public:
    static constexpr std::string_view TypeName = "TOrderly";
    using TCreatable::TCreatable;
    TLog Log;

    void UpdateDecoration() override { Log.push_back("decoration"); }
    void DoUpdateParts() override { Log.push_back("parts"); }
    void DoUpdateDesign() override { Log.push_back("design"); }
    void InitializeLabels() override { Log.push_back("labels"); }
    void UpdateRange() override { Log.push_back("range"); }
    void UpdateMercury() override { Log.push_back("mercury"); }
};

TEST(Thermometer, InitializesInOrder) {
    const auto thermometer = TOrderly::Create();
    const TLog all{"decoration", "parts", "design", "labels", "range", "mercury"};
    EXPECT_EQ(thermometer->Log, all);
    thermometer->Log.clear();
    thermometer->SetMax(7);
    EXPECT_EQ(thermometer->Log, (TLog{"labels", "range", "mercury"}));
    thermometer->Log.clear();
    thermometer->SetValue(5);
    EXPECT_EQ(thermometer->Log, TLog{"mercury"});
    thermometer->Log.clear();
    thermometer->UpdateNumbers();
    EXPECT_EQ(thermometer->Log, TLog{"labels"});
}

// Parts and design

TEST(Thermometer, PartsAreShown) {
    const std::pair<TPart, const char*> rows[] = {
        {TPart::tpFrame, "Frame"},
        {TPart::tpBackface, "Backface"},
        {TPart::tpBackface, "FrameBevel"},
        {TPart::tpLeftMarkers, "MarkersLeftMajor"},
        {TPart::tpRightMarkers, "MarkersRightMajor"},
        {TPart::tpLeftLabels, "textLeft"},
        {TPart::tpRightLabels, "textRight"},
        {TPart::tpMercury, "MercuryGroup"},
        {TPart::tpPipette, "Pipette"},
        {TPart::tpGlass, "Glass"},
    };
    TWarmth warmth;
    for (const auto& [part, id] : rows) {
        warmth->SetParts(TParts{part});
        for (const auto& [other, otherId] : rows)
            EXPECT_EQ(warmth.IsVisible(otherId), part == other) << id << ' ' << otherId;
    }
    TWatch watch(*warmth);
    warmth->SetParts(TParts{TPart::tpDecoration});
    for (const auto& [part, id] : rows)
        EXPECT_FALSE(warmth.IsVisible(id)) << id;
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_TRUE(warmth->AreBuffersStale());
}

TEST(Thermometer, MinorMarkersNeedTheMajorOnes) {
    TWarmth warmth;
    warmth->SetParts(TVZThermometer::AllParts - TParts{TPart::tpLeftMarkers});
    EXPECT_FALSE(warmth.IsVisible("MarkersLeftMajor"));
    EXPECT_FALSE(warmth.IsVisible("MarkersLeftMinor"));
    EXPECT_TRUE(warmth.IsVisible("MarkersRightMinor"));
    warmth->SetParts(TVZThermometer::AllParts - TParts{TPart::tpRightMarkers, TPart::tpLeftMinorMarkers});
    EXPECT_TRUE(warmth.IsVisible("MarkersLeftMajor"));
    EXPECT_FALSE(warmth.IsVisible("MarkersLeftMinor"));
    EXPECT_FALSE(warmth.IsVisible("MarkersRightMinor"));
}

TEST(Thermometer, WhatRanLastDecidesWhatIsShown) {
    const char* const both[] = {"Frame", "Glass", "FrameBevel"};
    TWarmth warmth;
    warmth->SetDesign(TSVGDesign::sdSimple);
    for (const char* id : {"Frame", "Glass", "FrameBevel", "MercuryHighlight", "BulbHighlight"})
        EXPECT_FALSE(warmth.IsVisible(id)) << id;
    warmth->SetParts(TParts{TPart::tpFrame, TPart::tpBackface, TPart::tpGlass});
    for (const char* id : both)
        EXPECT_TRUE(warmth.IsVisible(id)) << id;
    warmth->InitializeGauge(); // parts, then design
    for (const char* id : both)
        EXPECT_FALSE(warmth.IsVisible(id)) << id;
    warmth->SetDesign(TSVGDesign::sdDetailed);
    warmth->SetParts({});
    warmth->SetEnableGradients(false);
    warmth->SetEnableGradients(true);
    EXPECT_TRUE(warmth.IsVisible("Glass"));
    EXPECT_FALSE(warmth.IsVisible("Frame"));
}

// Colours

TEST(Thermometer, ColorsAreTheArtworks) {
    TWarmth warmth;
    EXPECT_EQ(warmth->GetFrameColor(), warmth.Stop("linearGradientFrame", 0));
    EXPECT_EQ(warmth->GetMercuryColor(), warmth.Stop("linearGradientMercury", 0));
    EXPECT_EQ(warmth->GetBackfaceColor(), warmth.Stop("GradientBackface", 0));
    EXPECT_EQ(warmth->GetMarkersColor(), warmth.Fill("Markers"));
    EXPECT_EQ(warmth->GetLabelsFillColor(), warmth.Fill("Labels"));
    EXPECT_EQ(warmth->GetLabelsStrokeColor(), warmth.Stroke("Labels"));
}

TEST(Thermometer, FrameColorShadesTheBevel) {
    TWarmth warmth;
    const TColors drawn = warmth.Stops("linearGradientFrame");
    TWatch watch(*warmth);
    warmth->SetFrameColor(0xC060A0FF);
    EXPECT_EQ(warmth.Stops("linearGradientFrame"), WalkedByHand(drawn, 0xC060A0FF, true));
    EXPECT_EQ(warmth.Stop("linearGradientFrameBevel", 0), 0xC000207Fu);
    EXPECT_EQ(warmth.Stop("linearGradientFrameBevel", 1), 0xFFFFFFFFu);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_EQ(watch.Notices, 1);
    EXPECT_TRUE(warmth->AreBuffersStale());
    warmth->SetLightColor(0xFFFFC080);
    warmth->SetFrameColor(0xFF808080);
    EXPECT_EQ(warmth.Stop("linearGradientFrameBevel", 0), 0xFF000000u);
    EXPECT_EQ(warmth.Stop("linearGradientFrameBevel", 1), 0xFFFFC080u);
    warmth->SetEnableGradients(false);
    warmth->SetFrameColor(0xFF00FF00);
    EXPECT_EQ(warmth.Fill("frameRect"), 0xFF00FF00u);
    EXPECT_EQ(warmth.Stop("linearGradientFrameBevel", 0), 0xFF000000u);
}

TEST(Thermometer, BackfaceAndMercuryColors) {
    TWarmth warmth;
    const TColors drawn = warmth.Stops("linearGradientMercury");
    for (const TVZGPColor color : {0xFF4080FFu, 0x80C81E0Au}) {
        warmth->SetMercuryColor(color);
        EXPECT_EQ(warmth.Stops("linearGradientMercury"), WalkedByHand(drawn, color, true));
        EXPECT_TRUE(warmth->AreBuffersStale());
        warmth->SetBackfaceColor(color);
        EXPECT_EQ(warmth.Stops("GradientBackface"), TColors(2, color)); // no shading, its own alpha
    }
    warmth->SetEnableGradients(false);
    warmth->SetMercuryColor(0xFF00FF00);
    warmth->SetBackfaceColor(0xFF0000FF);
    EXPECT_EQ(warmth.Fill("Mercury"), 0xFF00FF00u);
    EXPECT_EQ(warmth.Fill("Bulb"), 0xFF00FF00u);
    EXPECT_EQ(warmth.Fill("Backface"), 0xFF0000FFu);
    EXPECT_EQ(warmth.Stop("linearGradientMercury", 0), 0x80C81E0Au);
}

TEST(Thermometer, MarkersColorIsAFillThatIsWrittenToTheStroke) {
    TWarmth warmth;
    const TVZGPColor fill = warmth.Fill("Markers");
    TWatch watch(*warmth);
    warmth->SetMarkersColor(0xFF2060A0);
    EXPECT_EQ(warmth.Stroke("Markers"), 0xFF2060A0u);
    EXPECT_EQ(warmth.Fill("Markers"), fill);
    EXPECT_EQ(watch.Invalidates, 1);
    warmth->SetMarkersColor(0);
    EXPECT_EQ(warmth.Get("Markers").GetPen().GetKind(), TVZGPBrushKind::None);
    warmth->SetLabelsStrokeColor(0xFFFF0000);
    EXPECT_EQ(warmth.Stroke("Labels"), 0xFFFF0000u);
    warmth->SetLabelsStrokeColor(0);
    EXPECT_EQ(warmth.Get("Labels").GetPen().GetKind(), TVZGPBrushKind::None);
    warmth->SetLabelsFillColor(0xFF00FF00);
    EXPECT_EQ(warmth.Fill("Labels"), 0xFF00FF00u);
    EXPECT_EQ(watch.Changes, 0);
}

TEST(Thermometer, GradientsAreSwitched) {
    const struct {
        const char* Element;
        const char* Gradient;
        TVZGPColor Color;
    } rows[] = {
        {"Backface", "GradientBackface", 0xFFFFF1FF},
        {"Mercury", "linearGradientMercury", 0xFFFF0000},
        {"Bulb", "linearGradientMercury", 0xFFFF0000},
        {"frameRect", "linearGradientFrame", 0xFFD3D7CF},
        {"FrameBevel", "linearGradientFrameBevel", 0xFF7F4000}, // the light's shadow
    };
    TWarmth warmth;
    warmth->SetLightColor(0xFFFFC080);
    const auto before = warmth.Paint();
    for (const bool enable : {false, true}) {
        TWatch watch(*warmth);
        warmth->SetEnableGradients(enable);
        EXPECT_EQ(watch.Invalidates, 1);
        for (const auto& row : rows) {
            SCOPED_TRACE(row.Element);
            const TSVGBrush brush = warmth.Get(row.Element).GetBrush();
            EXPECT_EQ(brush.GetKind(), enable ? TVZGPBrushKind::URI : TVZGPBrushKind::Solid);
            EXPECT_EQ(brush.GetURI(), enable ? row.Gradient : "");
            if (enable) continue;
            EXPECT_EQ(brush.GetColor(), row.Color);
        }
        for (const char* id : {"MercuryHighlight", "BulbHighlight", "Glass"})
            EXPECT_EQ(warmth.IsVisible(id), enable) << id;
    }
    EXPECT_EQ(warmth.Paint(), before);
    warmth->SetDesign(TSVGDesign::sdSimple);
    warmth->SetEnableGradients(false);
    warmth->SetEnableGradients(true);
    for (const char* id : {"MercuryHighlight", "BulbHighlight", "Glass"})
        EXPECT_FALSE(warmth.IsVisible(id)) << id;
}

TEST(Thermometer, LightTintsWhatShines) {
    const char* const gradients[] = {"linearGradientGlassHighlight", "linearGradientGlassHighlightLeft",
                                     "linearGradientMercuryHighlight", "linearGradientBulbHighlight"};
    TWarmth warmth;
    std::vector<TColors> drawn;
    for (const char* id : gradients)
        drawn.push_back(warmth.Stops(id));
    const TVZGPColor shade = warmth.Stop("linearGradientFrameBevel", 0);
    warmth->SetLightColor(0x80FFC080);
    for (std::size_t g = 0; g < std::size(gradients); ++g)
        for (std::size_t i = 0; i < drawn[g].size(); ++i) // glass stays glass
            EXPECT_EQ(warmth.Stop(gradients[g], i), WithAlpha(0xFFC080, AlphaOf(drawn[g][i])))
                << gradients[g];
    EXPECT_EQ(warmth.Stop("linearGradientFrameBevel", 0), shade);
    EXPECT_EQ(warmth.Stop("linearGradientFrameBevel", 1), 0xFFFFC080u);
}

/// What shines stays as transparent as the artwork has it.
TEST(Thermometer, WhiteLightGivesTheFirstPictureBack) {
    TWarmth warmth;
    const auto fresh = warmth.Paint();
    warmth->SetLightColor(0xFFFFC080);
    EXPECT_NE(warmth.Paint(), fresh);
    warmth->SetLightColor(0xFFFFFFFF);
    EXPECT_EQ(warmth.Paint(), fresh);
}

// Another artwork

TEST(Thermometer, GeometryComesFromTheArtwork) {
    TWarmth warmth;
    warmth->SetValue(132);
    std::string text =
        Replaced(Artwork(), R"(y="36" width="16" height="725")", R"(y="35.5" width="16" height="724.5")");
    warmth->LoadFromText(text);
    EXPECT_EQ(warmth.Y(), 36); // a half to the even number
    EXPECT_EQ(warmth.Height(), 724);
    text = Replaced(Artwork(), R"(y="36" width="16" height="725")", R"(y="10%" width="16" height="50%")");
    warmth->LoadFromText(text); // of 912
    EXPECT_EQ(warmth.Y(), 91);
    EXPECT_EQ(warmth.Height(), 456);
    EXPECT_EQ(warmth->GetActiveSVGElement(), &warmth.Get("GlassPipette"));
}

TEST(Thermometer, KeepsItsValuesInAnotherArtwork) {
    TWarmth warmth, whole;
    for (TWarmth* one : {&warmth, &whole}) {
        (*one)->SetMax(40);
        (*one)->SetMin(-20);
        (*one)->SetValue(21.5f);
        (*one)->SetFrameColor(0xFFA02020);
        (*one)->SetMercuryColor(0xFF2040FF);
        (*one)->SetLightColor(0xFFFFC080);
        (*one)->GetFont().SetSize(20);
        (*one)->SetParts(TVZThermometer::AllParts - TParts{TPart::tpLeftMinorMarkers});
    }
    warmth->LoadSVGResource("ThermometerSVG");
    EXPECT_EQ(warmth.Paint(), whole.Paint());
}

TEST(Thermometer, ArtworkWithoutMercuryIsRefused) {
    TWarmth warmth;
    warmth->SetValue(60);
    warmth->SetFrameColor(0xFFA02020);
    warmth->SetEnabled(false);
    const auto shown = warmth.Paint();
    const std::string document = warmth->GetDocument().WriteText();
    for (const char* id : {"\"Mercury\"", "\"MercuryHighlight\""}) {
        try {
            warmth->LoadFromText(Replaced(Artwork(), id, "\"Other\""));
            FAIL() << id;
        } catch (const EReadError& error) {
            EXPECT_NE(std::string(error.what()).find(id), std::string::npos) << error.what();
        }
        EXPECT_THROW(warmth->LoadFromText(
                         Replaced(Artwork(), std::string("<rect id=") + id, std::string("<circle id=") + id)),
                     EInvalidCast);
        EXPECT_EQ(warmth->GetDocument().WriteText(), document);
        EXPECT_EQ(warmth->GetActiveSVGElement(), &warmth.Get("GlassPipette"));
        EXPECT_EQ(warmth.Paint(), shown);
    }
    warmth->SetFrameColor(0xFF2020A0); // from the saved stops
    TWarmth other;
    other->SetFrameColor(0xFF2020A0);
    EXPECT_EQ(warmth.Stops("linearGradientFrame"), other.Stops("linearGradientFrame"));
    warmth->SetValue(132);
    EXPECT_EQ(warmth.Height(), 725);
}

TEST(Thermometer, MissingElementsArePassedOver) {
    TWarmth warmth;
    warmth->LoadFromText("<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 9 99'>"
                         "<rect id='Mercury' y='9' width='9' height='80'/>"
                         "<rect id='MercuryHighlight' y='9' width='9' height='80'/></svg>");
    warmth->SetValue(10);
    warmth->SetMax(20);
    warmth->SetFrameColor(1);
    warmth->SetMercuryColor(1);
    warmth->SetEnableGradients(false);
    warmth->SetBackfaceColor(1);
    warmth->SetLightColor(0xFF102030);
    warmth->SetDesign(TSVGDesign::sdSimple);
    warmth->SetParts({});
    warmth->GetFont().SetSize(3);
    EXPECT_NO_THROW(warmth.Paint());
    EXPECT_NEAR(warmth.Height(), 80 * 12 / 24.0, 1e-9); // -2..22
}

TEST(Thermometer, MercuryThatWasTakenOutDoesNotMove) {
    TWarmth warmth;
    warmth.Get("MercuryHighlight").Remove();
    const double height = warmth.Height();
    EXPECT_THROW(warmth->SetValue(50), EReadError);
    EXPECT_EQ(warmth.Height(), height);
    warmth.Get("Mercury").Remove();
    TWatch watch(*warmth);
    warmth->UpdateMercury();
    EXPECT_TRUE(watch.IsQuiet());
}

// Frames

TEST(Thermometer, MovingTheMercuryIsCheap) {
    TWarmth warmth;
    THeadlessHost host(*warmth);
    host.Paint();
    const auto setAndPaint = [&] {
        for (int i = 0; i < 120; ++i) {
            warmth->SetValue(float(i));
            host.PaintStale();
        }
    };
    for (int i = 0; i < 2; ++i) // everything grows to its size
        setAndPaint();
    const std::size_t before = CountAllocations();
    setAndPaint();
    // FIXME: what changes its shape or paint is compiled anew for each frame, which takes memory; a move does
    // not.
    EXPECT_LE(CountAllocations() - before, 120u * 200);
    EXPECT_FALSE(warmth->AreBuffersStale());
    TWarmth fresh;
    fresh->SetValue(119);
    EXPECT_EQ(warmth.Paint(), fresh.Paint());
}

} // namespace
} // namespace Vz::Test
