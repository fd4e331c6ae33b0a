#include "tavro/instruments/CircularGauge.h"

#include "GaugeProbe.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>

namespace Vz::Test {
namespace {

constexpr double Near = 1e-3;
constexpr std::string_view HandIds[] = {"BigHand", "LittleHand", "ThinHand"};

// Creation

TEST(CircularGauge, StartsAsATwelveHourDial) {
    const auto gauge = TBareGauge::Create();
    EXPECT_EQ(gauge->GetSVGResourceName(), "CircularGaugeSVG");
    EXPECT_EQ(gauge->GetMin(), 0);
    EXPECT_EQ(gauge->GetMax(), 12);
    EXPECT_EQ(gauge->GetValue(), 0);
    EXPECT_EQ(gauge->GetStartAngle(), 0);
    EXPECT_EQ(gauge->GetStopAngle(), 360);
    EXPECT_EQ(gauge->GetMajorMarkers(), 12);
    EXPECT_EQ(gauge->GetMinorMarkers(), 4);
    EXPECT_EQ(gauge->GetHands(), TVZCustomCircularGauge::AllHands);
    EXPECT_EQ(gauge->GetParts().GetMask(), 8191u);
    EXPECT_EQ(gauge->GetMajorMarker(), TMarker::gmLine);
    EXPECT_EQ(gauge->GetDecorationElementId(), "Decoration");
    EXPECT_EQ(gauge->GetBounds(), (TRect{0, 0, 200, 200}));
    EXPECT_EQ(gauge->GetActiveSVGElement(), &ElementOf(*gauge, "Hands"));
}

TEST(CircularGauge, TakesItsColoursFromTheArtwork) {
    const auto gauge = TBareGauge::Create();
    EXPECT_EQ(gauge->GetFrameColor(), 0xFFA9A9A9);
    EXPECT_EQ(gauge->GetBackfaceColor(), 0xFF000000);
    EXPECT_EQ(gauge->GetBoltColor(), 0xFFA9A9A9);
    EXPECT_EQ(gauge->GetKnobColor(), 0xFFA9A9A9);
    EXPECT_EQ(gauge->GetMajorMarkersColor(), 0xFFFFFFFF);
    EXPECT_EQ(gauge->GetMinorMarkersColor(), 0xFFFFFFFF);
    EXPECT_EQ(gauge->GetLabelsFillColor(), 0xFFFFFFFF);
    EXPECT_EQ(gauge->GetLabelsStrokeColor(), 0xFF000000);
    EXPECT_EQ(gauge->GetBigHandColor(), 0xFFFFFFFF);
    EXPECT_EQ(gauge->GetLittleHandColor(), 0xFFFFFFFF);
    EXPECT_EQ(gauge->GetThinHandColor(), 0xFF0000FF);
    EXPECT_EQ(gauge->GetDecorationFillColor(), 0xFF87CEEB);
    EXPECT_EQ(gauge->GetDecorationStrokeColor(), 0xFF000000);
}

TEST(CircularGauge, FreshHandsStandWhereTheValueSays) {
    const auto barometer = TVZCircularBarometer::Create();
    EXPECT_NEAR(PointsTo(*barometer, "BigHand"), 225, Near);
    const auto clock = TVZCircularClock::Create();
    for (const std::string_view hand : HandIds)
        EXPECT_NEAR(PointsTo(*clock, hand), 0, Near) << hand;
}

// Value and angle

TEST(CircularGauge, TurnsAllHandsToTheValue) {
    const auto gauge = TBareGauge::Create();
    for (const auto& [value, angle] : {std::pair{3.0f, 90.0}, {6.0f, 180.0}, {0.5f, 15.0}, {12.0f, 0.0}}) {
        gauge->SetValue(value);
        for (const std::string_view hand : HandIds)
            EXPECT_NEAR(std::remainder(PointsTo(*gauge, hand) - angle, 360), 0, Near) << value << ' ' << hand;
    }
}

TEST(CircularGauge, TurnsAboutTheKnobsCentre) {
    const auto gauge = TBareGauge::Create();
    for (const auto hidden : {false, true}) {
        gauge->SetParts(hidden ? TVZCustomCircularGauge::AllParts - TParts{TPart::gpKnob}
                               : TVZCustomCircularGauge::AllParts);
        gauge->SetValue(hidden ? 3 : 4);
        const TMatrix m = ElementOf(*gauge, "BigHand").GetMatrix();
        EXPECT_NEAR(100 * m.M11 + 100 * m.M21 + m.M31, 100, Near);
        EXPECT_NEAR(100 * m.M12 + 100 * m.M22 + m.M32, 100, Near);
    }
}

TEST(CircularGauge, FollowsTheKnobsCentreWhateverMovesIt) {
    const auto gauge = TBareGauge::Create();
    const auto other = TBareGauge::Create();
    auto& knob = ElementOf(*gauge, "Knob");
    auto& circle = dynamic_cast<TSVGBasicShape&>(knob.GetChild(0));
    auto& ring = dynamic_cast<TSVGPath&>(knob.GetChild(1));
    const std::vector<std::function<void()>> edits = {
        [&] {
            circle.SetLength(TSVGBasicShape::TPart::R, {TSVGUnit::Number, 70});
        },
        [&] {
            circle.SetLength(TSVGBasicShape::TPart::CX, {TSVGUnit::Number, 150});
        },
        [&] {
            circle.SetLength(TSVGBasicShape::TPart::CX, {TSVGUnit::Percent, 40});
        },
        [&] { circle.SetVisible(false); },
        [&] { ring.GetData().SetPathString("M0 0H40V30"); },
        [&] { ring.SetMatrix(CreateTranslateVZMatrix(-100, 3)); },
        [&] { circle.SetVisible(true); },
        [&] { ring.Remove(); },
        [&] { knob.SetMatrix(CreateTranslateVZMatrix(9, 9)); },
        [&] { knob.GetBrush().SetColor(0xFF00FF00); },
    };
    float value = 0;
    for (std::size_t i = 0; i < edits.size(); ++i) {
        edits[i]();
        for (int k = 0; k < 2; ++k) {
            gauge->SetValue(value += 0.4f);
            const TPointF at = VZCenterPoint(knob.GetBounds());
            const TMatrix m = ElementOf(*gauge, "ThinHand").GetMatrix();
            EXPECT_NEAR(at.X * m.M11 + at.Y * m.M21 + m.M31, at.X, Near) << i;
            EXPECT_NEAR(at.X * m.M12 + at.Y * m.M22 + m.M32, at.Y, Near) << i;
        }
    }
    other->SetValue(3);
    const TMatrix m = ElementOf(*other, "ThinHand").GetMatrix();
    EXPECT_NEAR(100 * m.M11 + 100 * m.M21 + m.M31, 100, Near) << "no other gauge takes part";
}

TEST(CircularGauge, ScaleMayCrossTwelveOClock) {
    const auto gauge = TBareGauge::Create();
    gauge->SetStartAngle(240);
    gauge->SetStopAngle(470);
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), 240, Near);
    gauge->SetValue(12);
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), 110, Near);
    gauge->SetValue(6);
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), 355, Near);
}

TEST(CircularGauge, RunsAnticlockwiseWhereTheStopIsBelowTheStart) {
    const auto gauge = TBareGauge::Create();
    gauge->SetStartAngle(90);
    gauge->SetStopAngle(-90);
    gauge->SetValue(3);
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), 45, Near);
    gauge->SetValue(9);
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), 315, Near);
}

TEST(CircularGauge, ClampsTheValueAndTellsOfEachChange) {
    const auto gauge = TBareGauge::Create();
    TNotices notices(*gauge);
    gauge->SetValue(100);
    EXPECT_EQ(gauge->GetValue(), 12);
    EXPECT_EQ(notices.TakeChanges(), 1);
    EXPECT_EQ(notices.TakeInvalidates(), 1);
    gauge->SetValue(12);
    EXPECT_EQ(notices.TakeChanges(), 0);
    EXPECT_EQ(notices.TakeInvalidates(), 0);
    gauge->SetValue(-1);
    EXPECT_EQ(gauge->GetValue(), 0);
    gauge->SetValue(Infinite);
    EXPECT_EQ(gauge->GetValue(), 12);
    gauge->SetValue(-Infinite);
    EXPECT_EQ(gauge->GetValue(), 0);
    notices.TakeChanges();
    gauge->SetValue(NotANumber);
    EXPECT_EQ(gauge->GetValue(), 0);
    EXPECT_EQ(notices.TakeChanges(), 0);
}

TEST(CircularGauge, ValueLeavesTheCachesAlone) {
    const auto gauge = TVZCircularSpeedometer::Create();
    gauge->SetBuffered(false);
    gauge->SetBuffered(true);
    gauge->SetBuffered(false); // leaves the caches marked as good
    ASSERT_FALSE(gauge->AreBuffersStale());
    gauge->SetValue(50);
    EXPECT_FALSE(gauge->AreBuffersStale());
    gauge->SetMax(200);
    EXPECT_TRUE(gauge->AreBuffersStale());
}

TEST(CircularGauge, ValueAsksForNoMemory) {
    const auto gauge = TVZCircularSpeedometer::Create();
    gauge->SetValue(10);
    const std::size_t before = CountAllocations();
    for (int i = 0; i < 100; ++i)
        gauge->SetValue(static_cast<float>(i % 50));
    EXPECT_EQ(CountAllocations(), before);
}

// Ends of the scale

TEST(CircularGauge, EndsPushEachOtherAndTheValue) {
    const auto gauge = TVZCircularSpeedometer::Create();
    gauge->SetValue(100);
    TNotices notices(*gauge);
    gauge->SetMax(-10);
    EXPECT_EQ(gauge->GetMin(), -11);
    EXPECT_EQ(gauge->GetMax(), -10);
    EXPECT_EQ(gauge->GetValue(), -10);
    gauge->SetMin(50);
    EXPECT_EQ(gauge->GetMin(), 50);
    EXPECT_EQ(gauge->GetMax(), 51);
    EXPECT_EQ(gauge->GetValue(), 50);
    EXPECT_EQ(notices.TakeChanges(), 0);
    EXPECT_GT(notices.TakeInvalidates(), 0);
    gauge->SetMin(50);
    gauge->SetMax(51);
    EXPECT_EQ(notices.TakeInvalidates(), 0);
}

TEST(CircularGauge, IgnoresEndsThatAreNotFinite) {
    const auto gauge = TVZCircularSpeedometer::Create();
    for (const float bad : {NotANumber, Infinite, -Infinite}) {
        gauge->SetMin(bad);
        gauge->SetMax(bad);
        EXPECT_EQ(gauge->GetMin(), 0);
        EXPECT_EQ(gauge->GetMax(), 120);
    }
}

TEST(CircularGauge, EqualEndsLeaveTheHandsWhereTheyAre) {
    const auto gauge = TVZCircularSpeedometer::Create();
    gauge->SetValue(60);
    const double before = PointsTo(*gauge, "BigHand");
    gauge->SetMax(0);
    EXPECT_EQ(gauge->GetMin(), gauge->GetMax());
    EXPECT_EQ(gauge->GetValue(), 0);
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), before, Near);
    EXPECT_EQ(LabelTexts(*gauge), std::vector<std::string>(11, "0"));
    gauge->SetMax(100);
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), 240, Near);
}

TEST(CircularGauge, StoresWhatDiffersFromItsStart) {
    const auto gauge = TVZCircularBarometer::Create();
    EXPECT_FALSE(gauge->IsMinStored() || gauge->IsMaxStored() || gauge->IsDefaultValue() ||
                 gauge->IsHandsStored());
    gauge->SetMin(900);
    EXPECT_TRUE(gauge->IsMinStored());
    EXPECT_FALSE(gauge->IsDefaultValue());
    gauge->SetMax(1100);
    EXPECT_TRUE(gauge->IsMaxStored());
    gauge->SetValue(1013);
    EXPECT_TRUE(gauge->IsDefaultValue());
    gauge->SetHands({});
    EXPECT_TRUE(gauge->IsHandsStored());
    gauge->SetMax(1050);
    gauge->SetValue(950);
    EXPECT_FALSE(gauge->IsMaxStored() || gauge->IsDefaultValue());
}

// Hands

TEST(CircularGauge, ShowsTheHandsOfTheSetAndTurnsAll) {
    const auto gauge = TBareGauge::Create();
    gauge->SetHands({THand::ghLittle});
    EXPECT_FALSE(IsShown(*gauge, "BigHand"));
    EXPECT_TRUE(IsShown(*gauge, "LittleHand"));
    EXPECT_FALSE(IsShown(*gauge, "ThinHand"));
    TNotices notices(*gauge);
    gauge->SetHands({THand::ghLittle});
    EXPECT_EQ(notices.TakeInvalidates(), 0);
    gauge->SetHands({});
    EXPECT_EQ(notices.TakeInvalidates(), 1);
    gauge->SetValue(3);
    for (const std::string_view hand : HandIds) {
        EXPECT_FALSE(IsShown(*gauge, hand));
        EXPECT_NEAR(PointsTo(*gauge, hand), 90, Near);
    }
}

TEST(CircularGauge, PassesOverMissingElements) {
    const auto gauge = TVZCircularSpeedometer::Create();
    gauge->LoadFromText(
        "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'><g id='BigHand'/></svg>");
    gauge->SetValue(50);
    gauge->SetMax(200);
    gauge->SetStartAngle(10);
    gauge->SetFrameColor(0xFF123456);
    gauge->SetParts({});
    gauge->SetCaption("x");
    gauge->SetLightColor(0xFFFF0000);
    EXPECT_EQ(gauge->GetValue(), 50);
    EXPECT_TRUE(IsIdentityMatrix(ElementOf(*gauge, "BigHand").GetMatrix())); // there is no knob to turn about
}

// Time

TEST(CircularGauge, TimeTurnsTheHands) {
    const auto gauge = TVZCircularClock::Create();
    TNotices notices(*gauge);
    gauge->SetTime(EncodeTime(15, 30, 45, 999));
    EXPECT_EQ(notices.TakeChanges(), 1);
    EXPECT_NEAR(PointsTo(*gauge, "LittleHand"), 105, Near);
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), 184.5, Near);
    EXPECT_NEAR(PointsTo(*gauge, "ThinHand"), 270, Near);
    gauge->SetTime(gauge->GetTime());
    EXPECT_EQ(notices.TakeChanges(), 0);
}

TEST(CircularGauge, IgnoresWhatIsNoTime) {
    const auto gauge = TVZCircularClock::Create();
    gauge->SetTime(0.5);
    TNotices notices(*gauge);
    for (const double bad : {double{NotANumber}, double{Infinite}, -double{Infinite}, 1e300, -1e300}) {
        gauge->SetTime(bad);
        EXPECT_EQ(gauge->GetTime().Days, 0.5);
    }
    EXPECT_EQ(notices.TakeChanges(), 0);
}

// Batches and other artworks

TEST(CircularGauge, BatchBringsEverythingIntoLineAtItsEnd) {
    const auto gauge = TVZCircularSpeedometer::Create();
    gauge->BeginUpdate();
    gauge->SetMajorMarkers(4);
    gauge->SetMax(200);
    EXPECT_EQ(LabelTexts(*gauge).size(), 11u);
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 11);
    gauge->EndUpdate();
    EXPECT_EQ(LabelTexts(*gauge), (std::vector<std::string>{"0", "50", "100", "150", "200"}));
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 5);
}

TEST(CircularGauge, AnotherArtworkTakesEverythingOver) {
    const auto gauge = TVZCircularSpeedometer::Create();
    gauge->SetValue(60);
    gauge->SetFrameColor(0xFF204060);
    gauge->GetCaptionFont().SetSize(5);
    gauge->SetCaption("Speed");
    gauge->LoadSVGResource("CircularGaugeSVG");
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), 355, Near);
    EXPECT_EQ(FillOf(*gauge, "Frame"), 0xFF204060);
    EXPECT_EQ(gauge->GetFrameColor(), 0xFF204060);
    EXPECT_EQ(gauge->GetDocument().Find<TSVGText>("GaugeText")->GetText(), "Speed");
    EXPECT_EQ(FontSizeOf(*gauge, "GaugeLabels"), 5);
    EXPECT_EQ(LabelTexts(*gauge).size(), 11u);
    EXPECT_EQ(gauge->GetActiveSVGElement(), &ElementOf(*gauge, "Hands"));
}

} // namespace
} // namespace Vz::Test
