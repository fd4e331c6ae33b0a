#include "tavro/Vz.Tavro.Batteries.h"

#include "ArtworkProbe.h"
#include "RecolourByHand.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/FormFile.h"
#include "tavro/runtime/Resources.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>

namespace Vz::Test {
namespace {

using TLength = TSVGBasicShape::TPart;

constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float Nan = std::numeric_limits<float>::quiet_NaN();
constexpr float Greatest = std::numeric_limits<float>::max();

/// What tells the two batteries apart.
template <class T> struct TFacts;
template <> struct TFacts<TVZBattery> {
    static constexpr const char* Level = "LevelGroup";
    static constexpr const char* Fill = "BottomGlowLevel";
    static constexpr float Top = 94, Height = 240;
    static constexpr int Width = 100;
    static constexpr const char* Resource = "BatterySVG";
};
template <> struct TFacts<TVZBatteryModern> {
    static constexpr const char* Level = "Level";
    static constexpr const char* Fill = "LevelColor";
    static constexpr float Top = 104, Height = 214;
    static constexpr int Width = 105;
    static constexpr const char* Resource = "BatteryModernSVG";
};

template <class T> struct TCell : TShown<T> {
    /// The level's box, under its own matrix.
    TRectF Box() { return this->Get(TFacts<T>::Level).GetBounds(); }
    void ExpectLevel(double share) {
        const double bottom = TFacts<T>::Top + TFacts<T>::Height;
        const TMatrix matrix = this->Get(TFacts<T>::Level).GetMatrix();
        EXPECT_NEAR(matrix.M22, share, 1e-6);
        EXPECT_NEAR(matrix.M32, bottom * (1 - share), 1e-3);
        EXPECT_EQ(matrix.M11, 1);
        EXPECT_EQ(matrix.M31, 0);
        if constexpr (std::is_same_v<T, TVZBatteryModern>) {
            EXPECT_NEAR(this->Length("LevelTop", TLength::Y), bottom - TFacts<T>::Height * share, 1e-3);
        }
    }
};

template <class T> class Batteries : public testing::Test {};
using TBothBatteries = testing::Types<TVZBattery, TVZBatteryModern>;
TYPED_TEST_SUITE(Batteries, TBothBatteries);

// Scale and level

TYPED_TEST(Batteries, FreshOne) {
    TCell<TypeParam> cell;
    EXPECT_EQ(cell->GetWidth(), TFacts<TypeParam>::Width);
    EXPECT_EQ(cell->GetHeight(), 200);
    EXPECT_EQ(cell->GetMin(), 0);
    EXPECT_EQ(cell->GetMax(), 100);
    EXPECT_EQ(cell->GetValue(), 0);
    EXPECT_EQ(cell->GetParts().GetMask(), 127u);
    EXPECT_EQ(cell->GetDecoration(), TDecoration::dcBolt);
    EXPECT_EQ(cell->GetDecorationElementId(), "Decoration");
    EXPECT_EQ(cell->GetDecorationFillColor(), 0xFFFFEF42u);
    EXPECT_EQ(cell->GetDecorationStrokeColor(), 0xFF6B0101u);
    EXPECT_EQ(cell->GetActiveSVGElement(), &cell.Get("LevelGroup"));
    cell.ExpectLevel(0);
}

TYPED_TEST(Batteries, LevelKeepsItsBottomEdge) {
    using TFact = TFacts<TypeParam>;
    TCell<TypeParam> cell;
    TWatch watch(*cell);
    cell->SetValue(150);
    EXPECT_EQ(cell->GetValue(), 100);
    cell.ExpectLevel(1);
    EXPECT_EQ(cell.Box().Top, TFact::Top);
    EXPECT_EQ(cell.Box().Height(), TFact::Height);
    cell->SetValue(50);
    cell.ExpectLevel(0.5);
    EXPECT_NEAR(cell.Box().Top, TFact::Top + TFact::Height / 2, 1e-3);
    EXPECT_NEAR(cell.Box().Bottom, TFact::Top + TFact::Height, 1e-3);
    EXPECT_EQ(watch.Changes, 2);
    EXPECT_EQ(watch.Invalidates, 2);
    EXPECT_EQ(watch.Notices, 2);
    cell->SetValue(-5);
    EXPECT_EQ(cell->GetValue(), 0);
    cell.ExpectLevel(0);
    EXPECT_EQ(watch.Changes, 3);
    EXPECT_NO_THROW(cell.Paint());
}

TYPED_TEST(Batteries, ColorDoesNotDependOnTheCharge) {
    TCell<TypeParam> cell;
    const TColors drawn = cell.Stops("GradientLevel");
    for (const float value : {100.0f, 10.0f, 0.0f}) {
        cell->SetValue(value);
        EXPECT_EQ(cell.Stops("GradientLevel"), drawn);
    }
}

TYPED_TEST(Batteries, EndsMoveEachOtherAndTheValue) {
    TCell<TypeParam> cell;
    THeadlessHost host(*cell);
    host.Paint();
    TWatch watch(*cell);
    cell->SetMax(-10); // below Min
    EXPECT_EQ(cell->GetMin(), -11);
    EXPECT_EQ(cell->GetMax(), -10);
    EXPECT_EQ(cell->GetValue(), -10);
    cell.ExpectLevel(1);
    EXPECT_EQ(watch.Invalidates, 1);
    cell->SetMin(30); // above Max
    EXPECT_EQ(cell->GetMax(), 31);
    EXPECT_EQ(cell->GetValue(), 30);
    cell.ExpectLevel(0);
    cell->SetMax(130);
    cell->SetValue(55);
    cell.ExpectLevel(0.25);
    cell->SetMax(50);
    EXPECT_EQ(cell->GetValue(), 50);
    cell.ExpectLevel(1);
    EXPECT_EQ(watch.Changes, 1);           // of SetValue
    EXPECT_FALSE(cell->AreBuffersStale()); // the level is in no cache
}

TYPED_TEST(Batteries, SameValueDoesNothing) {
    TCell<TypeParam> cell;
    cell->SetValue(50);
    TWatch watch(*cell);
    cell->SetValue(50);
    cell->SetMin(0);
    cell->SetMax(100);
    cell->SetFillColor(cell->GetFillColor());
    cell->SetTopColor(cell->GetTopColor());
    cell->SetParts(TypeParam::AllParts);
    EXPECT_TRUE(watch.IsQuiet());
    cell->SetValue(100);
    cell->SetValue(101); // compared before it is clamped: a change each time
    EXPECT_EQ(watch.Changes, 2);
}

TYPED_TEST(Batteries, EqualEndsAndNumbersThatAreNone) {
    TCell<TypeParam> cell;
    cell->SetValue(75);
    cell->SetMin(25);
    cell->SetMin(100); // equal to Max
    EXPECT_EQ(cell->GetMin(), 100);
    EXPECT_EQ(cell->GetMax(), 100);
    EXPECT_EQ(cell->GetValue(), 100);
    cell.ExpectLevel(2 / 3.0); // stays where it was
    cell->SetValue(7);
    EXPECT_EQ(cell->GetValue(), 100);
    cell.ExpectLevel(2 / 3.0);
    EXPECT_NO_THROW(cell.Paint());
    {
        TWatch watch(*cell);
        for (const float number : {Nan, Infinity, -Infinity}) {
            cell->SetMin(number);
            cell->SetMax(number);
        }
        cell->SetValue(Nan);
        EXPECT_TRUE(watch.IsQuiet());
    }
    cell->SetMax(Greatest);
    cell->SetMin(-Greatest);
    cell->SetValue(0);
    cell.ExpectLevel(0.5);
    cell->SetValue(Infinity);
    cell.ExpectLevel(1);
    EXPECT_NO_THROW(cell.Paint());
}

TYPED_TEST(Batteries, LevelComesFromTheArtwork) {
    TCell<TypeParam> cell;
    cell->SetValue(50);
    // A stroke does not count, and the matrix of the artwork stays behind the scaling.
    cell->LoadFromText("<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 100 200'><g id='LevelGroup'>"
                       "<g id='Level'><rect y='20' width='9' height='100' stroke='red' stroke-width='8'/></g>"
                       "</g></svg>");
    const TMatrix matrix = cell.Get(TFacts<TypeParam>::Level).GetMatrix();
    EXPECT_EQ(matrix.M22, 0.5f);
    EXPECT_EQ(matrix.M32, 60); // of the bottom edge 120
    EXPECT_EQ(cell->GetActiveSVGElement(), &cell.Get("LevelGroup"));
    cell->LoadFromText(
        "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 100 200'><g id='LevelGroup' "
        "transform='scale(2 1)'><g id='Level'><rect y='20' width='9' height='100'/></g></g></svg>");
    EXPECT_EQ(cell.Get("LevelGroup").GetMatrix().M11, 2);
}

TYPED_TEST(Batteries, MissingElementsArePassedOver) {
    TCell<TypeParam> cell;
    cell->LoadFromText("<svg xmlns='http://www.w3.org/2000/svg'/>");
    {
        TWatch watch(*cell);
        cell->UpdateLevel();
        EXPECT_TRUE(watch.IsQuiet());
        cell->SetValue(10);
        EXPECT_EQ(watch.Changes, 1);
        EXPECT_EQ(watch.Invalidates, 0);
    }
    cell->SetMax(20);
    for (const bool enable : {true, false}) {
        cell->SetEnableGradients(enable);
        for (const TProp& row : cell->GetPropTable())
            if (row.Type.Kind == TValueKind::Color) row.Set(*cell, TValue(TColorValue{enable ? 1u : 2u}));
    }
    cell->SetDesign(TSVGDesign::sdSimple);
    cell->SetParts({});
    EXPECT_NO_THROW(cell.Paint());
}

TYPED_TEST(Batteries, KeepsItsValuesInAnotherArtwork) {
    TCell<TypeParam> cell, whole;
    for (auto* one : {&cell, &whole}) {
        (*one)->SetMax(40);
        (*one)->SetValue(30);
        (*one)->SetFillColor(0xFF2040FF);
        (*one)->SetTopColor(0xFFA02020);
        (*one)->SetLightColor(0xFFFFC080);
        (*one)->SetDecoration(TDecoration::dcStar);
    }
    cell->LoadSVGResource(TFacts<TypeParam>::Resource);
    EXPECT_EQ(cell.Paint(), whole.Paint());
    cell.ExpectLevel(0.75);
}

TYPED_TEST(Batteries, EmblemOfTheUsersOwnIsStored) {
    RegisterComponentClasses();
    TCell<TypeParam> cell;
    TVZPathData path;
    path.SetPathString("M0 0L100 0 100 100Z");
    cell->SetDecorationPath(path);
    const auto copy = ReadForm(WriteForm(*cell));
    EXPECT_EQ(dynamic_cast<TypeParam&>(*copy).GetDecorationPath()->GetPathString(), path.GetPathString());
}

TYPED_TEST(Batteries, MovingTheLevelIsCheap) {
    TCell<TypeParam> cell;
    THeadlessHost host(*cell);
    host.Paint();
    const auto setAndPaint = [&] {
        for (int i = 0; i < 100; ++i) {
            cell->SetValue(float(i));
            host.PaintStale();
        }
    };
    for (int i = 0; i < 2; ++i) // everything grows to its size
        setAndPaint();
    const std::size_t before = CountAllocations();
    setAndPaint();
    // FIXME: the modern one's cap changes its shape and so is compiled anew for each frame, which takes
    // memory; a move does not.
    const std::size_t most = std::is_same_v<TypeParam, TVZBattery> ? 0 : 100 * 80;
    EXPECT_LE(CountAllocations() - before, most);
    EXPECT_FALSE(cell->AreBuffersStale());
    TCell<TypeParam> fresh;
    fresh->SetValue(99);
    EXPECT_EQ(cell.Paint(), fresh.Paint());
}

// Steps

template <class T> class TOrderlyCell final : public TCreatable<TOrderlyCell<T>, T> {
public:
    static constexpr std::string_view TypeName = "TOrderlyCell";
    using TCreatable<TOrderlyCell<T>, T>::TCreatable;
    TLog Log;

    void UpdateDecoration() override { Log.push_back("decoration"); }
    void DoUpdateParts() override { Log.push_back("parts"); }
    void DoUpdateDesign() override { Log.push_back("design"); }
    void UpdateLevel() override { Log.push_back("level"); }
};

TYPED_TEST(Batteries, InitializesInOrder) {
    const auto cell = TOrderlyCell<TypeParam>::Create();
    EXPECT_EQ(cell->Log, (TLog{"decoration", "parts", "design", "level"}));
    cell->Log.clear();
    cell->SetMax(7);
    cell->SetMin(-7);
    cell->SetValue(5);
    EXPECT_EQ(cell->Log, (TLog{"level", "level", "level"}));
}

// Parts and design

template <class T> struct TPartElement {
    typename T::TPart Part;
    const char* Element;
};
constexpr TPartElement<TVZBattery> PartsOf(const TVZBattery*, int i) {
    using TPart = TVZBattery::TPart;
    constexpr TPartElement<TVZBattery> rows[] = {
        {TPart::bpTop, "TopGroup"},       {TPart::bpConnector, "Connector"},
        {TPart::bpBottom, "BottomGroup"}, {TPart::bpDecoration, "Decoration"},
        {TPart::bpMarkers, "Markers"},    {TPart::bpLevel, "LevelGroup"},
        {TPart::bpGlass, "GlassGroup"},   {TPart::bpGlass, "GlassHighlightsGroup"},
        {TPart::bpGlass, "GlassEdge"},
    };
    return rows[i];
}
constexpr TPartElement<TVZBatteryModern> PartsOf(const TVZBatteryModern*, int i) {
    using TPart = TVZBatteryModern::TPart;
    constexpr TPartElement<TVZBatteryModern> rows[] = {
        {TPart::bmTop, "BatteryTopGroup"},  {TPart::bmConnector, "BatteryConnector"},
        {TPart::bmBottom, "BatteryBottom"}, {TPart::bmDecoration, "Decoration"},
        {TPart::bmLevel, "LevelGroup"},     {TPart::bmGlass, "Glass"},
        {TPart::bmShadow, "Shadow"},
    };
    return rows[i];
}
constexpr int PartCount(const TVZBattery*) { return 9; }
constexpr int PartCount(const TVZBatteryModern*) { return 7; }

TYPED_TEST(Batteries, PartsAreShown) {
    const TypeParam* const kind = nullptr;
    TCell<TypeParam> cell;
    for (int i = 0; i < PartCount(kind); ++i) {
        const auto part = PartsOf(kind, i).Part;
        cell->SetParts({part});
        for (int other = 0; other < PartCount(kind); ++other) {
            const auto row = PartsOf(kind, other);
            EXPECT_EQ(cell.IsVisible(row.Element), row.Part == part) << i << ' ' << row.Element;
        }
    }
    TWatch watch(*cell);
    cell->SetParts({});
    for (int i = 0; i < PartCount(kind); ++i)
        EXPECT_FALSE(cell.IsVisible(PartsOf(kind, i).Element));
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_EQ(watch.Notices, 1);
}

template <class T> void ExpectShown(TCell<T>& cell, std::initializer_list<const char*> ids, bool shown) {
    for (const char* id : ids)
        EXPECT_EQ(cell.IsVisible(id), shown) << id;
}

TEST(Battery, DesignGradientsAndPartsShowAndHide) {
    TCell<TVZBattery> cell;
    cell->SetDesign(TSVGDesign::sdSimple);
    ExpectShown(cell,
                {"GlassHighlightsGroup", "TopHighlights", "BottomHighlights", "BatteryTopBumpHighlight",
                 "LevelHighlights"},
                false);
    cell->SetParts({TVZBattery::TPart::bpGlass}); // last writer
    ExpectShown(cell, {"GlassHighlightsGroup"}, true);
    cell->InitializeGauge(); // parts, then design
    ExpectShown(cell, {"GlassHighlightsGroup"}, false);
    cell->SetDesign(TSVGDesign::sdDetailed);
    cell->SetEnableGradients(false);
    ExpectShown(
        cell,
        {"TopHighlights", "BottomHighlights", "LevelHighlights", "MarkersLevel", "GlassHighlightsGroup"},
        false);
    ExpectShown(cell, {"BatteryTopBumpHighlight"}, true);
    cell->SetDesign(TSVGDesign::sdSimple);
    cell->SetEnableGradients(true);
    ExpectShown(cell, {"TopHighlights", "BottomHighlights", "LevelHighlights", "GlassHighlightsGroup"},
                false);
    ExpectShown(cell, {"MarkersLevel"}, true);
}

TEST(BatteryModern, DesignGradientsAndPartsShowAndHide) {
    TCell<TVZBatteryModern> cell;
    cell->SetDesign(TSVGDesign::sdSimple);
    ExpectShown(cell, {"LevelHighlight", "Shadow", "BackfaceShine"}, false);
    ExpectShown(cell, {"RightShadow", "ThinLeftHighlight", "LeftHighlight"}, true);
    cell->SetParts({TVZBatteryModern::TPart::bmShadow}); // last writer
    ExpectShown(cell, {"Shadow"}, true);
    cell->InitializeGauge();
    ExpectShown(cell, {"Shadow"}, false);
    cell->SetDesign(TSVGDesign::sdDetailed);
    cell->SetEnableGradients(false);
    ExpectShown(cell, {"RightShadow", "ThinLeftHighlight", "BackfaceShine", "Shadow"}, false);
    ExpectShown(cell, {"LevelHighlight", "LeftHighlight"}, true);
    cell->SetEnableGradients(true);
    ExpectShown(cell, {"RightShadow", "ThinLeftHighlight", "BackfaceShine", "Shadow"}, true);
}

// Colours

TEST(Battery, ColorsAreTheArtworks) {
    TCell<TVZBattery> cell;
    EXPECT_EQ(cell->GetFillColor(), cell.Stops("GradientLevel").back());
    EXPECT_EQ(cell->GetTopColor(), cell.Stop("GradientTop", 0));
    EXPECT_EQ(cell->GetBottomColor(), cell.Stop("GradientBottom", 0));
    EXPECT_EQ(cell->GetMarkersFillColor(), cell.Fill("Markers"));
    EXPECT_EQ(cell->GetMarkersStrokeColor(), cell.Stroke("Markers"));
}

TEST(BatteryModern, ColorsAreTheArtworks) {
    TCell<TVZBatteryModern> cell;
    EXPECT_EQ(cell->GetBackfaceColor(), cell.Stop("GradientBackface", 2));
    EXPECT_EQ(cell->GetBandsColor(), cell.Fill("InnerRim"));
    EXPECT_EQ(cell->GetFillColor(), cell.Stop("GradientLevel", 2));
    EXPECT_EQ(cell->GetTopColor(), cell.Stops("GradientTop").back());
    EXPECT_EQ(cell->GetBottomColor(), cell.Stops("GradientBottom").back());
}

/// What a colour setter does to gradients, or to fills while gradients are off.
template <class T> struct TGradientColor {
    void (T::*Set)(TVZGPColor);
    std::vector<const char*> Gradients;
    std::function<TColors(TColors, TVZGPColor)> Recolour;
    std::vector<const char*> Flat;
    bool IsActive = false; ///< of the active element, which is in no cache
};

template <class T> void CheckGradientColors(const std::vector<TGradientColor<T>>& rows) {
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Gradients[0]);
        TCell<T> cell;
        std::vector<TColors> drawn;
        for (const char* id : row.Gradients)
            drawn.push_back(cell.Stops(id));
        THeadlessHost host(*cell);
        for (const TVZGPColor color : {0xFF2060A0u, 0x80F0C81Eu}) { // recolouring does not add up
            host.Paint();
            TWatch watch(*cell);
            (*cell.*row.Set)(color);
            for (std::size_t i = 0; i < drawn.size(); ++i)
                EXPECT_EQ(cell.Stops(row.Gradients[i]), row.Recolour(drawn[i], color));
            EXPECT_EQ(watch.Invalidates, 1);
            EXPECT_EQ(watch.Notices, 1);
            EXPECT_EQ(watch.Changes, 0);
            EXPECT_EQ(cell->AreBuffersStale(), !row.IsActive);
        }
        const TColors before = cell.Stops(row.Gradients[0]);
        cell->SetEnableGradients(false);
        host.Paint();
        (*cell.*row.Set)(0xFF00FF00);
        for (const char* id : row.Flat)
            EXPECT_EQ(cell.Fill(id), 0xFF00FF00u) << id;
        EXPECT_EQ(cell.Stops(row.Gradients[0]), before);
        EXPECT_EQ(cell->AreBuffersStale(), !row.IsActive);
    }
}

TColors FromFirst(TColors stops, TVZGPColor color) { return WalkedByHand(std::move(stops), color, true); }
TColors FromLast(TColors stops, TVZGPColor color) { return WalkedByHand(std::move(stops), color, false); }
TColors AboutThird(TColors stops, TVZGPColor color) { return ShiftedByHand(std::move(stops), color, 2); }

TEST(Battery, GradientColors) {
    using T = TVZBattery;
    CheckGradientColors<T>({
        {&T::SetFillColor, {"GradientLevel"}, FromLast, {"BottomGlowLevel"}},
        {&T::SetTopColor, {"GradientTop", "GradientConnector"}, AboutThird, {"BatteryTop", "BatteryTopBump"}},
        {&T::SetBottomColor, {"GradientBottom"}, AboutThird, {"BatteryBottom"}},
    });
}

TEST(BatteryModern, GradientColors) {
    using T = TVZBatteryModern;
    CheckGradientColors<T>({
        {&T::SetBackfaceColor, {"GradientBackface"}, FromLast, {"Backface"}},
        {&T::SetFillColor, {"GradientLevel"}, FromFirst, {"LevelColor", "LevelTop"}, true},
        {&T::SetTopColor,
         {"GradientTop", "linearGradientConn"},
         FromFirst,
         {"BatteryTop", "BatteryConnector"}},
        {&T::SetBottomColor, {"GradientBottom"}, FromFirst, {"BatteryBottom"}},
    });
}

TEST(Battery, MarkersColors) {
    TCell<TVZBattery> cell;
    THeadlessHost host(*cell);
    for (const bool enable : {true, false}) {
        cell->SetEnableGradients(enable);
        host.Paint();
        TWatch watch(*cell);
        cell->SetMarkersFillColor(enable ? 0xFF123456 : 0xFF654321);
        EXPECT_TRUE(cell->AreBuffersStale());
        host.Paint();
        cell->SetMarkersStrokeColor(enable ? 0xFFABCDEF : 0xFFFEDCBA);
        EXPECT_TRUE(cell->AreBuffersStale());
        EXPECT_EQ(cell.Fill("Markers"), enable ? 0xFF123456u : 0xFF654321u);
        EXPECT_EQ(cell.Stroke("Markers"), enable ? 0xFFABCDEFu : 0xFFFEDCBAu);
        EXPECT_EQ(watch.Invalidates, 2);
        EXPECT_EQ(watch.Notices, 2);
    }
    cell->SetMarkersStrokeColor(0);
    EXPECT_EQ(cell.Get("Markers").GetPen().GetKind(), TVZGPBrushKind::None);
}

TEST(Battery, MarkersStrokeLeavesTheStyle) {
    TCell<TVZBattery> cell;
    cell->LoadFromText(
        "<svg xmlns='http://www.w3.org/2000/svg'><linearGradient id='g'/>"
        "<rect id='Markers' style='stroke:url(#g)'/><rect id='Other' style='stroke:url(#g)'/></svg>");
    cell->SetMarkersStrokeColor(0xFF00FF00);
    EXPECT_EQ(cell.Get("Markers").GetPen().GetKind(), TVZGPBrushKind::Solid);
    EXPECT_EQ(cell.Stroke("Markers"), 0xFF00FF00u);
    EXPECT_EQ(cell.Get("Markers").GetPen().GetURI(), "g");
}

TEST(BatteryModern, BandsColor) {
    TCell<TVZBatteryModern> cell;
    for (const bool enable : {true, false}) {
        cell->SetEnableGradients(enable);
        cell->SetBandsColor(enable ? 0xFF123456 : 0xFF654321);
        EXPECT_EQ(cell.Fill("InnerRim"), enable ? 0xFF123456u : 0xFF654321u);
        EXPECT_TRUE(cell->AreBuffersStale());
    }
}

TEST(BatteryModern, CaseKeepsItsGradient) {
    TCell<TVZBatteryModern> cell;
    cell->SetEnableGradients(false);
    cell->SetBackfaceColor(0xFFFF0000);
    EXPECT_EQ(cell.Fill("Backface"), 0xFFFF0000u);
    EXPECT_EQ(cell.Get("Backface").GetBrush().GetKind(), TVZGPBrushKind::URI);
}

struct TSwitchedFill {
    const char* Element;
    const char* Gradient;
    TVZGPColor Color;
};

template <class T> void CheckSwitching(const std::vector<TSwitchedFill>& rows) {
    TCell<T> cell;
    cell->SetValue(60);
    const auto before = cell.Paint();
    for (const bool enable : {false, true}) {
        TWatch watch(*cell);
        cell->SetEnableGradients(enable);
        EXPECT_EQ(watch.Invalidates, 1);
        EXPECT_TRUE(cell->AreBuffersStale());
        for (const auto& row : rows) {
            SCOPED_TRACE(row.Element);
            const TSVGBrush brush = cell.Get(row.Element).GetBrush();
            EXPECT_EQ(brush.GetKind(), enable ? TVZGPBrushKind::URI : TVZGPBrushKind::Solid);
            EXPECT_EQ(brush.GetURI(), enable ? row.Gradient : "");
            if (enable) continue;
            EXPECT_EQ(brush.GetColor(), row.Color);
        }
    }
    EXPECT_EQ(cell.Paint(), before);
}

TEST(Battery, GradientsAreSwitched) {
    CheckSwitching<TVZBattery>({
        {"BatteryTop", "GradientBatteryTop", 0xFF666666},
        {"BatteryTopBump", "GradientConnector", 0xFF666666},
        {"BatteryBottom", "GradientBatteryBottom", 0xFF666666},
        {"BottomGlowLevel", "GradientLevel", 0xFF68BAF4},
    });
}

TEST(BatteryModern, GradientsAreSwitched) {
    CheckSwitching<TVZBatteryModern>({
        {"BatteryTop", "linearGradientTop", 0xFF000000},
        {"BatteryConnector", "linearGradientConn", 0xFF000000},
        {"BatteryBottom", "linearGradientBottom", 0xFF000000},
        {"LeftHighlight", "GradientLeftHighlight", 0xFFFFFFFF},
        {"LevelColor", "linearGradientLevel", 0xFF55D400},
        {"LevelTop", "linearGradientLevelTop", 0xFF55D400},
    });
}

/// Every stop has the colour, and the alpha that it was drawn with.
template <class T> void ExpectTinted(TCell<T>& cell, const char* gradient, TVZGPColor color) {
    TCell<T> fresh;
    const TColors drawn = fresh.Stops(gradient);
    for (std::size_t i = 0; i < drawn.size(); ++i)
        EXPECT_EQ(cell.Stop(gradient, i), WithAlpha(color, AlphaOf(drawn[i]))) << gradient << ' ' << i;
}

/// What shines stays as transparent as the artwork has it.
TYPED_TEST(Batteries, WhiteLightGivesTheFirstPictureBack) {
    TCell<TypeParam> cell;
    cell->SetValue(60);
    const auto fresh = cell.Paint();
    cell->SetLightColor(0xFFFFC080);
    EXPECT_NE(cell.Paint(), fresh);
    cell->SetLightColor(0xFFFFFFFF);
    EXPECT_EQ(cell.Paint(), fresh);
}

TEST(Battery, LightTintsWhatShines) {
    TCell<TVZBattery> cell;
    TWatch watch(*cell);
    cell->SetLightColor(0xFFFFC080);
    EXPECT_EQ(watch.Invalidates, 1);
    ExpectTinted(cell, "GradientHighlights", 0xFFFFC080);
    EXPECT_EQ(cell.Fill("BatteryTopBumpHighlight"), 0xFFFFC080u);
    EXPECT_EQ(cell.Fill("BatteryBottomToplight"), 0xFFFFC080u);
}

TEST(BatteryModern, LightTintsWhatShinesAndItsShadow) {
    TCell<TVZBatteryModern> cell;
    cell->SetLightColor(0xFFFFC080);
    for (const char* id : {"GradientLeftHighlight", "GradientThinHighlight"})
        ExpectTinted(cell, id, 0xFFFFC080);
    for (const char* id : {"GradientRightHighlight", "GradientShadow"})
        ExpectTinted(cell, id, 0xFF7F4000);
    for (const char* id : {"LevelHighlight", "LeftHighlight", "ThinLeftHighlight"})
        EXPECT_EQ(cell.Fill(id), 0xFFFFC080u) << id;
    EXPECT_EQ(cell.Fill("RightShadow"), 0xFF7F4000u);
}

} // namespace
} // namespace Vz::Test
