#include "GaugeProbe.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/FormFile.h"
#include "tavro/runtime/PropAccess.h"

#include <gtest/gtest.h>

namespace Vz::Test {
namespace {

using TTexts = std::vector<std::string>;

/// The same figures as those of a path string.
bool IsPath(const TVZPathData& path, std::string_view text) {
    TVZPathData expected;
    expected.SetPathString(text);
    return path.GetFigures() == expected.GetFigures();
}

/// Where the first figure of a group of markers stands, in degrees.
double FirstAngle(const TVZSVGControl& control, std::string_view groupId, int figure) {
    const auto& data = dynamic_cast<TSVGPath&>(ElementOf(control, groupId).GetChild(0)).GetData();
    const auto& figures = data.GetFigures();
    const std::size_t numbers = figures.Numbers.size() / std::size_t(CountFigures(control, groupId));
    // The first two corners of a line lie on either side of its middle.
    const double* const n = figures.Numbers.data() + numbers * std::size_t(figure);
    const double x = (n[0] + n[2]) / 2 - 50;
    const double y = (n[1] + n[3]) / 2 - 50;
    return std::fmod(std::atan2(x, -y) * 180 / std::numbers::pi + 360, 360);
}

// Figures

TEST(GaugeMarkers, PartialScaleHasOneMoreThanItsIntervals) {
    const auto gauge = TVZCircularSpeedometer::Create();
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 11);
    EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 51);
    EXPECT_EQ(LabelTexts(*gauge).size(), 11u);
    for (int i = 0; i <= 10; ++i)
        EXPECT_NEAR(FirstAngle(*gauge, "BigMarkers", i), (240 + 23 * i) % 360, 0.01) << i;
    EXPECT_NEAR(FirstAngle(*gauge, "SmallMarkers", 1), 244.6, 0.01);
    EXPECT_EQ(ElementOf(*gauge, "BigMarkers").GetChildCount(), 1u);
}

TEST(GaugeMarkers, FullCircleDoublesNoFigure) {
    const auto gauge = TVZCircularClock::Create();
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 12);
    EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 60);
    EXPECT_EQ(LabelTexts(*gauge).size(), 12u);
    EXPECT_NEAR(FirstAngle(*gauge, "BigMarkers", 11), 330, 0.01);
}

TEST(GaugeMarkers, SignOfTheRemainderTellsAFullCircle) {
    const auto gauge = TBareGauge::Create();
    gauge->SetStartAngle(-90);
    gauge->SetStopAngle(270);
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 13);
    gauge->SetStartAngle(-450);
    gauge->SetStopAngle(-90);
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 12);
    gauge->SetStartAngle(90);
    gauge->SetStopAngle(450);
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 12);
    EXPECT_NEAR(FirstAngle(*gauge, "BigMarkers", 0), 90, 0.01);
}

TEST(GaugeMarkers, NegativeNumbersCountAsNone) {
    const auto gauge = TVZCircularSpeedometer::Create();
    gauge->SetMinorMarkers(-3);
    EXPECT_EQ(gauge->GetMinorMarkers(), 0);
    EXPECT_EQ(ElementOf(*gauge, "SmallMarkers").GetChildCount(), 0u);
    gauge->SetMajorMarkers(-1);
    EXPECT_EQ(gauge->GetMajorMarkers(), 0);
    EXPECT_EQ(ElementOf(*gauge, "BigMarkers").GetChildCount(), 0u);
    EXPECT_EQ(LabelTexts(*gauge), TTexts{"0"});
    TNotices notices(*gauge);
    gauge->SetMajorMarkers(-7);
    EXPECT_EQ(notices.TakeInvalidates(), 0);
}

TEST(GaugeMarkers, NoMarkersOnAFullCircleHaveNoLabels) {
    const auto gauge = TVZCircularAltimeter::Create();
    gauge->SetMajorMarkers(0);
    EXPECT_TRUE(LabelTexts(*gauge).empty());
}

TEST(GaugeMarkers, ManyMarkersComeToAnEnd) {
    const auto gauge = TVZCircularSpeedometer::Create();
    gauge->SetMajorMarkers(10000);
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 10001);
    EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 50001);
    EXPECT_EQ(LabelTexts(*gauge).size(), 10001u);
    gauge->SetParts(TVZCustomCircularGauge::AllParts - TParts{TPart::gpMeasurementLabels});
    gauge->SetMajorMarkers(std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(gauge->GetMajorMarkers(), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), TVZCustomCircularGauge::MaxMarkerFigures + 1);
    EXPECT_EQ(LabelTexts(*gauge).size(), std::size_t{TVZCustomCircularGauge::MaxLabels});
    EXPECT_NEAR(FirstAngle(*gauge, "BigMarkers", TVZCustomCircularGauge::MaxMarkerFigures), 110, 1);
}

TEST(GaugeMarkers, AnyAnglesComeToAnEnd) {
    const auto gauge = TVZCircularSpeedometer::Create();
    gauge->SetStartAngle(std::numeric_limits<std::int32_t>::min());
    gauge->SetStopAngle(std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(gauge->GetStopAngle(), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(LabelTexts(*gauge).size(), 11u);
    THeadlessHost host(*gauge);
    host.Paint();
}

TEST(GaugeMarkers, MinorOnesStandUnderTheMajorOnes) {
    const auto gauge = TVZCircularSpeedometer::Create();
    for (int i = 0; i <= 50; ++i)
        EXPECT_NEAR(std::remainder(FirstAngle(*gauge, "SmallMarkers", i) - (240 + 4.6 * i), 360), 0, 0.01)
            << i;
    const auto clock = TVZCircularClock::Create();
    for (int i = 0; i < 60; ++i)
        EXPECT_NEAR(FirstAngle(*clock, "SmallMarkers", i), 6 * i, 0.01) << i;
}

TEST(GaugeMarkers, RunAnticlockwiseWithTheScale) {
    const auto gauge = TVZCircularSpeedometer::Create();
    gauge->SetStartAngle(90);
    gauge->SetStopAngle(-90);
    gauge->SetMajorMarkers(4);
    for (int i = 0; i <= 4; ++i)
        EXPECT_NEAR(std::remainder(FirstAngle(*gauge, "BigMarkers", i) - (90 - 45 * i), 360), 0, 0.01) << i;
    EXPECT_EQ(LabelTexts(*gauge), (TTexts{"0", "30", "60", "90", "120"}));
}

TEST(GaugeMarkers, MinorOnesNeedIntervals) {
    const auto gauge = TVZCircularSpeedometer::Create();
    gauge->SetMajorMarkers(0);
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 0);
    EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 1); // the one at the start, which is not a copy
    EXPECT_NEAR(FirstAngle(*gauge, "SmallMarkers", 0), 240, 0.01);
    gauge->SetMajorMarkers(1);
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 2);
    EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 6);
}

// Shapes

TEST(GaugeMarkers, EachShapeHasItsPath) {
    constexpr std::string_view major[] = {
        "",
        "m 49.5,0 1,0 0,5 -1,0 z",
        "m 52,2.5 a 2,2 0 0 1 -2,2 2,2 0 0 1 -2,-2 2,2 0 0 1 2,-2 2,2 0 0 1 2,2 z",
        "m 50,0 1,2.5 -1,2.5 -1,-2.5 1,-2.5 z",
        "m 48,0 4,0 -2,5 -2,-5 z",
        "m 50,0 2,5 -4,0 2,-5 z",
        "m 50,0 2,2.5 -2,2.5 0,-5 z",
        "m 50,0 -2,2.5 2,2.5 0,-5 z",
    };
    constexpr std::string_view minor[] = {
        "",
        "m 49.75,0 0.5,0 0,3 -0.5,0 z",
        "m 51,2.5 a 1,1 0 0 1 -1,1 1,1 0 0 1 -1,-1 1,1 0 0 1 1,-1 1,1 0 0 1 1,1 z",
        "m 50,0 0.5,1.5 -0.5,1.5 -0.5,-1.5 0.5,-1.5 z",
        "m 49,0 2,0 -1,3 -1,-3 z",
        "m 50,0 1,3 -2,0 1,-3 z",
        "m 50,0 1,1.5 -1,1.5 0,-3 z",
        "m 50,0 -1,1.5 1,1.5 0,-3 z",
    };
    const auto gauge = TBareGauge::Create();
    for (int kind = 1; kind < 8; ++kind) {
        gauge->SetMajorMarker(static_cast<TMarker>(kind));
        gauge->SetMinorMarker(static_cast<TMarker>(kind));
        EXPECT_TRUE(IsPath(gauge->GetMajorMarkerPath(), major[kind])) << kind;
        EXPECT_TRUE(IsPath(gauge->GetMinorMarkerPath(), minor[kind])) << kind;
        EXPECT_EQ(gauge->GetMarkerData(static_cast<TMarker>(kind), false), major[kind]);
        EXPECT_EQ(gauge->GetMarkerData(static_cast<TMarker>(kind), true), minor[kind]);
        EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 12);
        EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 60);
    }
}

TEST(GaugeMarkers, CustomKeepsThePathAndAPathMakesItCustom) {
    const auto gauge = TBareGauge::Create();
    gauge->SetMajorMarker(TMarker::gmDiamond);
    gauge->SetMajorMarker(TMarker::gmCustom);
    EXPECT_TRUE(IsPath(gauge->GetMajorMarkerPath(), "m 50,0 1,2.5 -1,2.5 -1,-2.5 1,-2.5 z"));
    EXPECT_TRUE(gauge->IsMajorMarkerPathStored());
    TVZPathData own;
    own.SetPathString("M50 0 L52 4 L48 4 Z M50 6 L51 7 Z");
    EXPECT_FALSE(gauge->IsMinorMarkerPathStored());
    gauge->SetMinorMarkerPath(own);
    EXPECT_EQ(gauge->GetMinorMarker(), TMarker::gmCustom);
    EXPECT_TRUE(gauge->IsMinorMarkerPathStored());
    EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 120);
    gauge->InitializeGauge();
    EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 120);
    gauge->GetMinorMarkerPath().Clear();
    EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 0);
}

TEST(GaugeMarkers, EqualValuesDoNothing) {
    const auto gauge = TBareGauge::Create();
    TNotices notices(*gauge);
    gauge->SetMajorMarker(TMarker::gmLine);
    gauge->SetMajorMarkers(12);
    gauge->SetMinorMarkers(4);
    gauge->SetStartAngle(0);
    gauge->SetLabels(gauge->GetLabels());
    EXPECT_EQ(notices.TakeInvalidates(), 0);
}

// Labels

TEST(GaugeLabels, AreTheScalesNumbers) {
    const auto gauge = TVZCircularBarometer::Create();
    const TTexts expected{"950", "960", "970", "980", "990", "1000", "1010", "1020", "1030", "1040", "1050"};
    EXPECT_EQ(LabelTexts(*gauge), expected);
    EXPECT_EQ(gauge->GetLabels().GetItems(), expected);
    gauge->SetFormatStr("0.0 hPa");
    EXPECT_EQ(LabelTexts(*gauge)[1], "960.0 hPa");
    EXPECT_THROW(gauge->SetFormatStr("'open"), EConvertError);
    EXPECT_EQ(LabelTexts(*gauge)[1], "960.0 hPa");
    const auto bare = TBareGauge::Create();
    EXPECT_EQ(LabelTexts(*bare), (TTexts{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11"}));
}

TEST(GaugeLabels, StandAtTheirMarkers) {
    const auto gauge = TVZCircularClock::Create();
    EXPECT_NEAR(LabelOffsetPercent(*gauge, 0), 6.25, 1e-6);
    EXPECT_NEAR(LabelOffsetPercent(*gauge, 3), 6.25 + 12.5, 1e-6);
    EXPECT_NEAR(LabelOffsetPercent(*gauge, 11), 6.25 + 50 * 330 / 360.0, 1e-6);
    const auto speed = TVZCircularSpeedometer::Create();
    EXPECT_NEAR(LabelOffsetPercent(*speed, 0), 6.25 + 50 * 240 / 360.0, 1e-4);
    EXPECT_NEAR(LabelOffsetPercent(*speed, 10), 6.25 + 50 * 110 / 360.0, 1e-4);
    const auto& text =
        dynamic_cast<TSVGTextPath&>(ElementOf(*speed, "MeasurementLabels").GetChild(0).GetChild(0));
    EXPECT_EQ(text.GetReference(), "TextCircle");
}

/// Where the middle of a label's box lies, in degrees about the centre of the label circle.
double LabelDirection(const TVZSVGControl& control, std::size_t index) {
    const TSVGElement& text = ElementOf(control, "MeasurementLabels").GetChild(index);
    const TPointF middle = VZCenterPoint(dynamic_cast<const TSVGGraphicElement&>(text).GetBounds());
    return std::atan2(middle.X - 50, 50 - middle.Y) * 180 / std::numbers::pi;
}

TEST(GaugeLabels, AreCentredAtTheirMarkersAllRound) {
    const auto expect = [](const TVZCustomCircularGauge& gauge) {
        const double step = double(gauge.GetStopAngle() - gauge.GetStartAngle()) / gauge.GetMajorMarkers();
        const TTexts texts = LabelTexts(gauge);
        for (std::size_t i = 0; i < texts.size(); ++i) {
            if (texts[i].empty()) continue;
            const double angle = gauge.GetStartAngle() + step * double(i);
            EXPECT_LT(std::abs(std::remainder(LabelDirection(gauge, i) - angle, 360)), 1.5) << texts[i];
        }
    };
    expect(*TVZCircularClock::Create());
    expect(*TVZAnalogCalendar::Create());
    expect(*TVZCircularAltimeter::Create());
    expect(*TVZCircularBarometer::Create());
    expect(*TVZCircularSpeedometer::Create());
    expect(*TVZCircularFuelGauge::Create());
    // Close before twelve o'clock a text runs on into the second turn.
    const auto gauge = TVZCircularClock::Create();
    gauge->SetStartAngle(350);
    gauge->SetStopAngle(710);
    gauge->SetLabels(TStrings{"wide text"});
    EXPECT_NEAR(LabelDirection(*gauge, 0), -10, 1.5);
}

TEST(GaugeLabels, AnglesBeyondATurnAreTakenTowardsZero) {
    const auto gauge = TBareGauge::Create();
    gauge->SetMajorMarkers(1);
    for (const auto& [angle, turn] : {std::pair{360, 0.0},
                                      {359, 359 / 360.0},
                                      {725, 5 / 360.0},
                                      {-30, -30 / 360.0},
                                      {-360, 0.0},
                                      {-450, -0.25}}) {
        gauge->SetStopAngle(angle + 90);
        gauge->SetStartAngle(angle);
        EXPECT_NEAR(LabelOffsetPercent(*gauge, 0), 6.25 + 50 * turn, 1e-6) << angle;
    }
}

TEST(GaugeLabels, ListMayBeShorterOrLongerThanTheMarkers) {
    const auto gauge = TVZCircularClock::Create();
    gauge->SetLabels(TStrings{"a", "b"});
    EXPECT_EQ(LabelTexts(*gauge), (TTexts{"a", "b", "", "", "", "", "", "", "", "", "", ""}));
    gauge->SetMajorMarkers(1);
    EXPECT_EQ(LabelTexts(*gauge), TTexts{"a"});
    EXPECT_EQ(gauge->GetLabels().GetCount(), 2);
    gauge->GetLabels().SetItem(0, "<&\"");
    EXPECT_EQ(LabelTexts(*gauge), TTexts{"<&\""});
}

TEST(GaugeLabels, NumbersAreNotTheUsers) {
    const auto gauge = TVZCircularBarometer::Create();
    EXPECT_FALSE(gauge->IsLabelsStored());
    gauge->SetMax(1100);
    EXPECT_FALSE(gauge->IsLabelsStored());
    gauge->SetLabels(TStrings{"low", "high"});
    EXPECT_TRUE(gauge->IsLabelsStored());
    gauge->InitializeGauge();
    EXPECT_EQ(LabelTexts(*gauge)[1], "high");
    gauge->SetMax(1050);
    EXPECT_FALSE(gauge->IsLabelsStored());
    EXPECT_EQ(LabelTexts(*gauge)[1], "960");
}

TEST(GaugeLabels, AListEqualToTheNumbersIsNotTheUsers) {
    const auto gauge = TVZCircularSpeedometer::Create();
    const TTexts numbers = gauge->GetLabels().GetItems();
    gauge->SetLabels(TStrings{"low", "high"});
    gauge->GetLabels().SetItems(numbers);
    EXPECT_FALSE(gauge->IsLabelsStored());
}

TEST(GaugeLabels, ResetGivesTheNumbersOfTheScaleAsItIs) {
    const auto gauge = TVZCircularSpeedometer::Create();
    gauge->SetMax(200);
    gauge->SetLabels(TStrings{"low", "high"});
    gauge->ResetLabels();
    EXPECT_FALSE(gauge->IsLabelsStored());
    EXPECT_EQ(gauge->GetLabels().GetItem(10), "200");
    EXPECT_EQ(LabelTexts(*gauge).back(), "200");
    const auto fuel = TVZCircularFuelGauge::Create();
    fuel->SetLabels(TStrings{"empty"});
    fuel->ResetLabels();
    EXPECT_FALSE(fuel->IsLabelsStored());
    EXPECT_EQ(fuel->GetLabels().GetItem(0), "E");
}

TEST(GaugeMarkers, ResettingAPathBringsTheLinesBack) {
    const auto gauge = TVZCircularSpeedometer::Create();
    TVZPathData square;
    square.SetPathString("M45 0H55V10H45Z");
    gauge->SetMajorMarkerPath(square);
    gauge->SetMinorMarkerPath(square);
    gauge->ResetMajorMarkerPath();
    EXPECT_EQ(gauge->GetMajorMarker(), TVZCustomCircularGauge::TMarker::gmLine);
    EXPECT_TRUE(IsPath(gauge->GetMajorMarkerPath(), "m 49.5,0 1,0 0,5 -1,0 z"));
    EXPECT_TRUE(gauge->IsMinorMarkerPathStored());
    gauge->SetMajorMarker(TVZCustomCircularGauge::TMarker::gmDiamond);
    gauge->ResetMajorMarkerPath();
    EXPECT_EQ(gauge->GetMajorMarker(), TVZCustomCircularGauge::TMarker::gmDiamond) << "no path of the user's";
}

TEST(GaugeLabels, FixedListsAreStoredWhereTheyDiffer) {
    const auto gauge = TVZCircularFuelGauge::Create();
    EXPECT_FALSE(gauge->IsLabelsStored());
    gauge->SetLabels(TStrings{"empty"});
    EXPECT_TRUE(gauge->IsLabelsStored());
    gauge->SetMax(50);
    EXPECT_EQ(LabelTexts(*gauge)[0], "empty");
    gauge->GetLabels().SetText(gauge->GetDefaultLabels());
    EXPECT_FALSE(gauge->IsLabelsStored());
}

TEST(GaugeLabels, BatchAndSingleEditsGiveTheSame) {
    for (const bool labelsLast : {false, true}) {
        const auto edit = [&](TVZCircularBarometer& gauge) {
            if (!labelsLast) gauge.SetLabels(TStrings{"x"});
            gauge.SetMax(2000);
            if (labelsLast) gauge.SetLabels(TStrings{"x"});
        };
        const auto single = TVZCircularBarometer::Create();
        edit(*single);
        const auto batch = TVZCircularBarometer::Create();
        batch->BeginUpdate();
        edit(*batch);
        batch->EndUpdate();
        EXPECT_EQ(LabelTexts(*single), LabelTexts(*batch));
        EXPECT_EQ(LabelTexts(*batch)[0], labelsLast ? "x" : "950");
    }
}

// The nearest marker

TEST(GaugeMarkers, FindsTheNearest) {
    const auto gauge = TBareGauge::Create();
    EXPECT_EQ(gauge->GetClosestMajorMarker(0), 0);
    EXPECT_EQ(gauge->GetClosestMajorMarker(31), 1);
    EXPECT_EQ(gauge->GetClosestMajorMarker(350), 12);
    EXPECT_EQ(gauge->GetClosestMajorMarker(15), 0); // half-way: the even one
    EXPECT_EQ(gauge->GetClosestMajorMarker(45), 2);
    EXPECT_EQ(gauge->GetClosestMajorMarker(75), 2);
}

TEST(GaugeMarkers, GapBeyondTheScaleBelongsToTheNearerEnd) {
    const auto gauge = TBareGauge::Create();
    gauge->SetStartAngle(225);
    gauge->SetStopAngle(495);
    gauge->SetMajorMarkers(10);
    EXPECT_EQ(gauge->GetClosestMajorMarker(0), 5);
    EXPECT_EQ(gauge->GetClosestMajorMarker(225), 0);
    EXPECT_EQ(gauge->GetClosestMajorMarker(130), 10);
    EXPECT_EQ(gauge->GetClosestMajorMarker(140), 10);
    EXPECT_EQ(gauge->GetClosestMajorMarker(200), 0);
    EXPECT_EQ(gauge->GetClosestMajorMarker(180), 0); // as far from both
    gauge->SetStartAngle(270);
    gauge->SetStopAngle(360);
    gauge->SetMajorMarkers(1);
    EXPECT_EQ(gauge->GetClosestMajorMarker(270), 0);
    EXPECT_EQ(gauge->GetClosestMajorMarker(0), 1);
    EXPECT_EQ(gauge->GetClosestMajorMarker(135), 0);
}

TEST(GaugeMarkers, DistancesToTheEndsAreOneSided) {
    const auto gauge = TBareGauge::Create();
    gauge->SetStartAngle(10);
    gauge->SetStopAngle(100);
    gauge->SetMajorMarkers(9);
    // 15 degrees before the start, but counted the long way round: 705 against 615 degrees.
    EXPECT_EQ(gauge->GetClosestMajorMarker(355), 9);
    EXPECT_EQ(gauge->GetClosestMajorMarker(0),
              0); // taken a turn further on, beyond the scale; the start is near
    EXPECT_EQ(gauge->GetClosestMajorMarker(150), 9);
    EXPECT_EQ(gauge->GetClosestMajorMarker(55), 4); // half-way: the even one
}

TEST(GaugeMarkers, NearestIsHarmlessWithoutMarkers) {
    const auto gauge = TBareGauge::Create();
    gauge->SetMajorMarkers(0);
    EXPECT_EQ(gauge->GetClosestMajorMarker(90), 0);
    gauge->SetMajorMarkers(4);
    EXPECT_EQ(gauge->GetClosestMajorMarker(NotANumber), 0);
    gauge->SetStopAngle(0);
    gauge->GetClosestMajorMarker(90);
    gauge->GetClosestMajorMarker(0);
}

} // namespace
} // namespace Vz::Test
