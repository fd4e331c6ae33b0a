// The round gauge's steps: which run, in which order, with what.

#include "GaugeProbe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace Vz::Test {
namespace {

using TLog = std::vector<std::string>;

/// Angles as they are told, without digits that rounding leaves behind.
std::string Angle(float angleDeg) { return std::to_string(std::lround(angleDeg * 100)); }

/// A gauge that writes its steps down, and whose artwork can be given. The value turns the knob of a switch.
class TLoggedGauge final : public TCreatable<TLoggedGauge, TVZCustomCircularGauge> {
public:
    static constexpr std::string_view TypeName = "TLoggedGauge";
    using TCreatable::TCreatable;

    TLog Log;
    /// Loaded in place of the class's own artwork where it is not empty.
    static inline std::string Artwork;

    TLog TakeLog() { return std::exchange(Log, {}); }

    void LoadSVGResource(std::string_view name) override {
        Note("LoadSVGResource " + std::string(name));
        if (Artwork.empty())
            TVZCustomCircularGauge::LoadSVGResource(name);
        else
            LoadFromText(Artwork);
    }
    void LoadSVGProperties() override {
        Note("LoadSVGProperties " + FDecorationElementId + ' ' + std::to_string(int(GetMax())));
        TVZCustomCircularGauge::LoadSVGProperties();
    }
    void DoInitializeGauge() override {
        Note("DoInitializeGauge");
        TVZCustomCircularGauge::DoInitializeGauge();
    }
    void DoUpdateElement(std::string_view id, float angleDeg) override {
        Note(std::string(id) + ' ' + Angle(angleDeg));
        TVZCustomCircularGauge::DoUpdateElement(id, angleDeg);
    }
    void DoUpdateFont() override {
        Note("DoUpdateFont");
        TVZCustomCircularGauge::DoUpdateFont();
    }
    void DoUpdateCaptionFont() override {
        Note("DoUpdateCaptionFont");
        TVZCustomCircularGauge::DoUpdateCaptionFont();
    }
    void InitializeNumberLabels() override {
        Note("InitializeNumberLabels");
        TVZCustomCircularGauge::InitializeNumberLabels();
    }
    void InitializeLabels() override {
        Note("InitializeLabels");
        TVZCustomCircularGauge::InitializeLabels();
    }
    void InitializeMarkers() override {
        Note("InitializeMarkers");
        TVZCustomCircularGauge::InitializeMarkers();
    }
    void InitializeMarkerPaths() override {
        Note("InitializeMarkerPaths");
        TVZCustomCircularGauge::InitializeMarkerPaths();
    }
    void InitializeHands() override {
        Note("InitializeHands");
        TVZCustomCircularGauge::InitializeHands();
    }
    void UpdateHands() override {
        Note("UpdateHands");
        TVZCustomCircularGauge::UpdateHands();
    }
    void UpdateDecoration() override {
        Note("UpdateDecoration");
        TVZCustomCircularGauge::UpdateDecoration();
    }
    void DoUpdateParts() override {
        Note("DoUpdateParts");
        TVZCustomCircularGauge::DoUpdateParts();
    }
    void DoUpdateDesign() override {
        Note("DoUpdateDesign");
        TVZCustomCircularGauge::DoUpdateDesign();
    }

protected:
    const TGaugeSetup& GetGaugeSetup() const override { return Setup; }

private:
    void Note(std::string what) { Log.push_back(std::move(what)); }

    static constexpr TGaugeSetup Setup{.MajorMarkers = 4, .MinorMarkers = 0, .ValueHandId = "KnobSwitch"};
};

/// Gives the gauges that are made while it lives another artwork.
struct TArtworkScope {
    explicit TArtworkScope(std::string svg) { TLoggedGauge::Artwork = std::move(svg); }
    ~TArtworkScope() { TLoggedGauge::Artwork.clear(); }
};

TLog Joined(std::initializer_list<TLog> logs) {
    TLog all;
    for (const TLog& log : logs)
        all.insert(all.end(), log.begin(), log.end());
    return all;
}

const TLog Hands0{"UpdateHands", "KnobSwitch 0", "LittleHand 0", "ThinHand 0"};
const TLog Numbers{"InitializeNumberLabels", "InitializeLabels"};

// Construction

TEST(GaugeSteps, ConstructionLoadsAndThenInitialises) {
    const auto gauge = TLoggedGauge::Create();
    const TLog expected = Joined({{"LoadSVGResource CircularGaugeSVG", "LoadSVGProperties Decoration 12",
                                   "DoInitializeGauge", "InitializeMarkerPaths", "InitializeMarkers"},
                                  Numbers,
                                  {"InitializeHands", "DoUpdateFont", "UpdateDecoration", "DoUpdateParts",
                                   "DoUpdateDesign", "DoUpdateCaptionFont"},
                                  Hands0});
    EXPECT_EQ(gauge->Log, expected);
}

TEST(GaugeSteps, ColoursAreReadFromTheArtwork) {
    const TArtworkScope artwork(R"svg(<svg xmlns="http://www.w3.org/2000/svg" width="100" height="100">
      <path id="Decoration" fill="#010203" stroke="#040506" d=""/>
      <circle id="DialColor" r="9" fill="#111111"/><circle id="FrameColor" r="9" fill="#222222"/>
      <circle id="Frame" r="9" fill="#ffffff"/><circle id="Bolt" r="9" fill="#333333"/>
      <g id="BigMarkers" fill="#444444"/><g id="SmallMarkers" fill="#555555"/>
      <g id="Labels" fill="#666666" stroke="#777777"><g id="MeasurementLabels" fill="#000001"/></g>
      <circle id="KnobSwitch" r="9" fill="#888888"/><circle id="BigHand" r="9" fill="#000002"/>
      <circle id="LittleHand" r="9" fill="#999999"/><circle id="ThinHand" r="9" fill="#aaaaaa"/>
      <circle id="Knob" r="9" fill="#bbbbbb" fill-opacity="0.5"/></svg>)svg");
    const auto gauge = TLoggedGauge::Create();
    EXPECT_EQ(gauge->GetDecorationFillColor(), 0xFF010203u);
    EXPECT_EQ(gauge->GetDecorationStrokeColor(), 0xFF040506u);
    EXPECT_EQ(gauge->GetBackfaceColor(), 0xFF111111u);
    EXPECT_EQ(gauge->GetFrameColor(), 0xFF222222u);
    EXPECT_EQ(gauge->GetBoltColor(), 0xFF333333u);
    EXPECT_EQ(gauge->GetMajorMarkersColor(), 0xFF444444u);
    EXPECT_EQ(gauge->GetMinorMarkersColor(), 0xFF555555u);
    EXPECT_EQ(gauge->GetLabelsFillColor(), 0xFF666666u);
    EXPECT_EQ(gauge->GetLabelsStrokeColor(), 0xFF777777u);
    EXPECT_EQ(gauge->GetBigHandColor(), 0xFF888888u); // of the hand that shows the value
    EXPECT_EQ(gauge->GetLittleHandColor(), 0xFF999999u);
    EXPECT_EQ(gauge->GetThinHandColor(), 0xFFAAAAAAu);
    EXPECT_EQ(gauge->GetKnobColor() & 0xFFFFFFu, 0xBBBBBBu);
    EXPECT_EQ(FillOf(*gauge, "BigHand"), 0xFF000002u);
    EXPECT_EQ(gauge->GetActiveSVGElement(), nullptr); // there is no group of hands
}

TEST(GaugeSteps, ColoursOfMissingElementsStayTheDefaults) {
    const TArtworkScope artwork(R"svg(<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9"/>)svg");
    const auto gauge = TLoggedGauge::Create();
    EXPECT_EQ(gauge->GetFrameColor(), 0xFFA9A9A9u);
    EXPECT_EQ(gauge->GetBackfaceColor(), 0xFF000000u);
    EXPECT_EQ(gauge->GetLabelsStrokeColor(), 0xFF000000u);
    EXPECT_EQ(gauge->GetThinHandColor(), 0xFF0000FFu);
    EXPECT_EQ(gauge->GetDecorationFillColor(), 0xFF87CEEBu);
    EXPECT_EQ(gauge->GetDecorationPath(), nullptr);
}

TEST(GaugeSteps, InitialisingPaintsTheValuesHand) {
    const auto gauge = TLoggedGauge::Create();
    gauge->SetBigHandColor(0xFF123456);
    EXPECT_EQ(FillOf(*gauge, "KnobSwitch"), 0xFF123456u);
    EXPECT_NE(FillOf(*gauge, "BigHand"), 0xFF123456u);
    ElementOf(*gauge, "KnobSwitch").GetBrush().SetColor(0xFF000000);
    gauge->InitializeGauge();
    EXPECT_EQ(FillOf(*gauge, "KnobSwitch"), 0xFF123456u);
}

// Setters

TEST(GaugeSteps, SettersRunTheirStepsInOrder) {
    const auto gauge = TLoggedGauge::Create();
    gauge->TakeLog();
    gauge->SetMax(24);
    EXPECT_EQ(gauge->TakeLog(), Joined({Numbers, Hands0}));
    gauge->SetMin(-24);
    EXPECT_EQ(gauge->TakeLog(),
              Joined({Numbers, {"UpdateHands", "KnobSwitch 18000", "LittleHand 18000", "ThinHand 18000"}}));
    gauge->SetMin(0);
    gauge->TakeLog();
    gauge->SetStartAngle(0);
    EXPECT_EQ(gauge->TakeLog(), TLog{});
    gauge->SetStopAngle(180);
    EXPECT_EQ(gauge->TakeLog(), Joined({{"InitializeMarkers"}, Numbers, Hands0}));
    gauge->SetStartAngle(-90);
    EXPECT_EQ(gauge->TakeLog(),
              Joined({{"InitializeMarkers"},
                      Numbers,
                      {"UpdateHands", "KnobSwitch -9000", "LittleHand -9000", "ThinHand -9000"}}));
    gauge->SetMajorMarkers(3);
    EXPECT_EQ(gauge->TakeLog(), Joined({{"InitializeMarkers"}, Numbers}));
    gauge->SetMinorMarkers(1);
    EXPECT_EQ(gauge->TakeLog(), TLog{"InitializeMarkers"});
    gauge->SetHands({});
    EXPECT_EQ(gauge->TakeLog(), TLog{"InitializeHands"});
    gauge->SetFormatStr("0");
    EXPECT_EQ(gauge->TakeLog(), Numbers);
    gauge->SetLabels(TStrings{"a"});
    EXPECT_EQ(gauge->TakeLog(), TLog{"InitializeLabels"});
    gauge->SetParts({});
    EXPECT_EQ(gauge->TakeLog(), TLog{"DoUpdateParts"});
    gauge->GetFont().SetSize(5);
    EXPECT_EQ(gauge->TakeLog(), TLog{"DoUpdateFont"});
    gauge->GetCaptionFont().SetSize(5);
    EXPECT_EQ(gauge->TakeLog(), TLog{"DoUpdateCaptionFont"});
}

TEST(GaugeSteps, ValueTurnsTheHandsBeforeItTells) {
    const auto gauge = TLoggedGauge::Create();
    gauge->TakeLog();
    gauge->SetOnChange([&](TObject&) { gauge->Log.push_back("OnChange"); });
    gauge->SetValue(3);
    EXPECT_EQ(gauge->TakeLog(),
              (TLog{"UpdateHands", "KnobSwitch 9000", "LittleHand 9000", "ThinHand 9000", "OnChange"}));
    // A time turns the hands of a clock, whichever shows the value.
    gauge->SetTime(EncodeTime(15, 30, 45, 0));
    EXPECT_EQ(gauge->TakeLog(), (TLog{"LittleHand 10500", "BigHand 18450", "ThinHand 27000", "OnChange"}));
}

TEST(GaugeSteps, MarkerShapesAndPathsRebuildTheMarkers) {
    const auto gauge = TLoggedGauge::Create();
    gauge->TakeLog();
    gauge->SetMajorMarker(TMarker::gmCircle);
    const TLog markers = gauge->TakeLog(); // the path tells of itself as well
    EXPECT_EQ(std::ranges::count(markers, "InitializeMarkers"), std::ptrdiff_t(markers.size()));
    EXPECT_FALSE(markers.empty());
    TVZPathData own;
    own.SetPathString("M50 0L52 4 48 4Z");
    gauge->SetMajorMarkerPath(own);
    EXPECT_EQ(gauge->TakeLog(), TLog{"InitializeMarkers"});
    EXPECT_EQ(gauge->GetMajorMarker(), TMarker::gmCustom);
    gauge->GetMinorMarkerPath().Clear();
    EXPECT_EQ(gauge->TakeLog(), TLog{"InitializeMarkers"});
    EXPECT_EQ(gauge->GetMinorMarker(), TMarker::gmLine);
}

TEST(GaugeSteps, HandsAndTimesLeaveTheCachesAlone) {
    const auto gauge = TLoggedGauge::Create();
    gauge->SetBuffered(false); // leaves the caches marked as good
    ASSERT_FALSE(gauge->AreBuffersStale());
    gauge->SetHands({THand::ghThin});
    gauge->SetTime(0.5);
    gauge->SetValue(4);
    EXPECT_FALSE(gauge->AreBuffersStale());
    gauge->SetMinorMarkers(2);
    EXPECT_TRUE(gauge->AreBuffersStale());
}

TEST(GaugeSteps, TurningReplacesTheTransform) {
    const auto gauge = TLoggedGauge::Create();
    auto& hand = ElementOf(*gauge, "ThinHand");
    hand.SetMatrix(CreateScaleVZMatrix(3, 5));
    gauge->DoUpdateElement("ThinHand", 30);
    const TMatrix expected = CreateRotationVZMatrix({100, 100}, float(120 * std::numbers::pi / 180));
    const TMatrix m = hand.GetMatrix();
    EXPECT_NEAR(m.M11, expected.M11, 1e-6);
    EXPECT_NEAR(m.M12, expected.M12, 1e-6);
    EXPECT_NEAR(m.M21, expected.M21, 1e-6);
    EXPECT_NEAR(m.M22, expected.M22, 1e-6);
    EXPECT_NEAR(m.M31, expected.M31, 1e-4);
    EXPECT_NEAR(m.M32, expected.M32, 1e-4);
}

// Batches

TEST(GaugeSteps, BatchLeavesMarkersAndLabelsToItsEnd) {
    const auto gauge = TLoggedGauge::Create();
    gauge->BeginUpdate();
    gauge->SetMajorMarkers(6);
    gauge->SetLabels(TStrings{"one"});
    gauge->SetMinorMarkers(2);
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 4);
    EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 0);
    EXPECT_EQ(LabelTexts(*gauge), (TLog{"0", "3", "6", "9"}));
    EXPECT_EQ(gauge->GetLabels().GetItems(), TLog{"one"});
    gauge->SetValue(3); // hands do not wait
    EXPECT_NEAR(PointsTo(*gauge, "LittleHand"), 90, 1e-3);
    gauge->EndUpdate();
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 6);
    EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 18);
    EXPECT_EQ(LabelTexts(*gauge), (TLog{"one", "", "", "", "", ""}));
}

TEST(GaugeSteps, BatchInitialisesOnceAtItsOutermostEnd) {
    const auto gauge = TLoggedGauge::Create();
    gauge->TakeLog();
    gauge->BeginUpdate();
    gauge->BeginUpdate();
    gauge->InitializeGauge();
    gauge->EndUpdate();
    EXPECT_EQ(gauge->TakeLog(), TLog{});
    gauge->EndUpdate();
    EXPECT_EQ(std::ranges::count(gauge->Log, "DoInitializeGauge"), 1);
}

} // namespace
} // namespace Vz::Test
