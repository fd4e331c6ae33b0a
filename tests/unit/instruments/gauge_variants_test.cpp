#include "GaugeProbe.h"
#include "tavro/Vz.Tavro.Compass.h"
#include "tavro/Vz.Tavro.Switches.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/FormFile.h"
#include "tavro/runtime/PropAccess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace Vz::Test {
namespace {

constexpr double Near = 1e-3;

template <class T> class GaugeVariants : public testing::Test {};
using TVariants =
    testing::Types<TVZCircularAltimeter, TVZCircularBarometer, TVZCircularFuelGauge, TVZCircularSpeedometer,
                   TVZCircularClock, TVZAnalogCalendar, TVZCircularCompass, TVZRotarySwitch>;
TYPED_TEST_SUITE(GaugeVariants, TVariants);

TYPED_TEST(GaugeVariants, FreshIsWhatItDeclares) {
    const auto gauge = TypeParam::Create();
    for (const TProp& row : gauge->GetPropTable()) {
        if (!row.Get) continue;
        const bool hasDefault = row.Default.index() != 0;
        EXPECT_TRUE(!hasDefault || row.Get(*gauge) == row.Default) << row.Name;
        EXPECT_FALSE(IsPropStored(*gauge, row)) << row.Name;
    }
    EXPECT_FALSE(gauge->GetFont().GetPropTable()[1].Stored(gauge->GetFont()));
}

TYPED_TEST(GaugeVariants, FormKeepsWhatWasSet) {
    RegisterComponentClasses();
    const auto gauge = TypeParam::Create();
    gauge->SetMinorMarker(TMarker::gmCircle);
    TVZPathData path;
    path.SetPathString("M50 0L51 5 49 5Z");
    gauge->SetMajorMarkerPath(path);
    gauge->SetFormatStr("0.00");
    gauge->SetCaption("c");
    gauge->SetDetailText("");
    gauge->SetParts({TPart::gpHands, TPart::gpLabels, TPart::gpMeasurementLabels});
    gauge->GetFont().SetSize(0);
    gauge->SetLabels(TStrings{"one", "", "three"});
    gauge->SetThinHandColor(0xFF112233);
    gauge->SetDecoration(TDecoration::dcGlobe);
    const std::string form = WriteForm(*gauge);
    const auto copy = ReadForm(form, "copy");
    auto& read = dynamic_cast<TypeParam&>(*copy);
    for (const TProp& row : gauge->GetPropTable()) {
        if (!row.Get || row.Name == "Time" || row.Name == "DayOfYear") continue;
        EXPECT_TRUE(row.Get(*gauge) == row.Get(read)) << row.Name;
    }
    EXPECT_EQ(read.GetFont().GetSize(), 0);
    EXPECT_EQ(LabelTexts(read), LabelTexts(*gauge));
    EXPECT_EQ(WriteForm(read), form);
    EXPECT_EQ(read.GetDocument().WriteText().size(), gauge->GetDocument().WriteText().size());
}

/// Whatever scale was set, a form gives the same one back: its ends stand before the value.
template <class T> void ExpectScalesAreRead() {
    std::mt19937 random(11);
    std::uniform_int_distribution<int> number(-1500, 1500);
    RegisterComponentClasses();
    for (int i = 0; i < 60; ++i) {
        const auto gauge = T::Create();
        gauge->SetMin(float(number(random)));
        if (i % 4 != 0) gauge->SetMax(i % 4 == 1 ? gauge->GetMin() : float(number(random)));
        gauge->SetValue(float(number(random)));
        gauge->SetStartAngle(number(random));
        gauge->SetStopAngle(number(random));
        gauge->SetMajorMarkers(number(random) % 9);
        const std::string form = WriteForm(*gauge);
        const auto copy = ReadForm(form, "copy");
        const auto& read = dynamic_cast<const T&>(*copy);
        EXPECT_EQ(read.GetMin(), gauge->GetMin()) << form;
        EXPECT_EQ(read.GetMax(), gauge->GetMax()) << form;
        EXPECT_EQ(read.GetValue(), gauge->GetValue()) << form;
        EXPECT_EQ(LabelTexts(read), LabelTexts(*gauge)) << form;
        EXPECT_EQ(WriteForm(read), form);
        if (gauge->GetMin() == gauge->GetMax()) continue; // without a range the hand stays where it was
        EXPECT_NEAR(std::remainder(PointsTo(read, "BigHand") - PointsTo(*gauge, "BigHand"), 360), 0, Near)
            << form;
    }
}

TEST(GaugeScales, AreReadAsTheyWereSet) {
    ExpectScalesAreRead<TVZCircularBarometer>();
    ExpectScalesAreRead<TVZCircularFuelGauge>();
    ExpectScalesAreRead<TVZCircularSpeedometer>();
}

TEST(GaugeSizes, ClocksAndCalendarsDeclareThem) {
    const auto expect = [](const TPersistent& object, bool isPublished) {
        int found = 0;
        for (const TProp& row : object.GetPropTable())
            if (row.Name == "Width" || row.Name == "Height") {
                ++found;
                EXPECT_EQ(row.Default, TValue(std::int64_t{200})) << row.Name;
            }
        EXPECT_EQ(found, isPublished ? 2 : 0);
    };
    expect(*TVZCircularClock::Create(), true);
    expect(*TVZAnalogCalendar::Create(), true);
    expect(*TVZCircularAltimeter::Create(), false);
    expect(*TVZCircularBarometer::Create(), false);
}

// Altimeter

TEST(CircularAltimeter, StartsAtZeroFeet) {
    const auto gauge = TVZCircularAltimeter::Create();
    EXPECT_EQ(gauge->GetCaption(), "Altimeter");
    EXPECT_EQ(gauge->GetDetailText(), "Feet");
    EXPECT_EQ(gauge->GetMax(), std::numeric_limits<float>::max());
    EXPECT_EQ(gauge->GetMajorMarkers(), 10);
    EXPECT_EQ(gauge->GetMinorMarkers(), 4);
    EXPECT_EQ(LabelTexts(*gauge),
              (std::vector<std::string>{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"}));
}

TEST(CircularAltimeter, HandsCountDecades) {
    const auto gauge = TVZCircularAltimeter::Create();
    gauge->SetValue(12345.9f);
    EXPECT_NEAR(PointsTo(*gauge, "ThinHand"), 124.2, Near);
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), 84.42, Near);
    EXPECT_NEAR(PointsTo(*gauge, "LittleHand"), 44.442, Near);
    gauge->SetValue(1000000);
    EXPECT_NEAR(std::remainder(PointsTo(*gauge, "LittleHand"), 360), 0, Near);
    gauge->SetValue(1050000);
    EXPECT_NEAR(std::remainder(PointsTo(*gauge, "LittleHand"), 360), 0, Near);
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), 0, Near);
    gauge->SetValue(2000000);
    for (const char* const hand : {"BigHand", "LittleHand", "ThinHand"})
        EXPECT_NEAR(std::remainder(PointsTo(*gauge, hand), 360), 0, Near) << hand;
    gauge->SetValue(Infinite);
    EXPECT_EQ(gauge->GetValue(), std::numeric_limits<float>::max());
}

TEST(CircularAltimeter, LabelsAreTheMarkersIndexes) {
    const auto gauge = TVZCircularAltimeter::Create();
    gauge->SetFormatStr("0.0");
    EXPECT_EQ(LabelTexts(*gauge)[9], "9.0");
    gauge->SetMajorMarkers(4);
    gauge->SetStopAngle(180);
    gauge->SetMin(1000);
    EXPECT_EQ(LabelTexts(*gauge), (std::vector<std::string>{"0.0", "1.0", "2.0", "3.0", "4.0"}));
}

TEST(CircularAltimeter, FractionsDoNotMoveTheHands) {
    const auto gauge = TVZCircularAltimeter::Create();
    gauge->SetValue(999.99f);
    EXPECT_NEAR(PointsTo(*gauge, "ThinHand"), 999 * 0.36, Near);
    gauge->SetMin(-2000);
    gauge->SetValue(-1.9f); // towards zero
    EXPECT_NEAR(PointsTo(*gauge, "ThinHand"), 360 - 0.36, Near);
    gauge->SetValue(999999);
    EXPECT_NEAR(PointsTo(*gauge, "LittleHand"), 99999 * 0.0036, Near);
}

// Barometer, fuel gauge, speedometer

TEST(CircularBarometer, StartsAtItsLowerEnd) {
    const auto gauge = TVZCircularBarometer::Create();
    EXPECT_EQ(gauge->GetStartAngle(), 225);
    EXPECT_EQ(gauge->GetStopAngle(), 495);
    EXPECT_EQ(gauge->GetMin(), 950);
    EXPECT_EQ(gauge->GetMax(), 1050);
    EXPECT_EQ(gauge->GetValue(), 950);
    EXPECT_EQ(gauge->GetFont().GetSize(), 8);
    EXPECT_TRUE(IsShown(*gauge, "BigHand"));
    EXPECT_FALSE(IsShown(*gauge, "LittleHand"));
    EXPECT_FALSE(IsShown(*gauge, "ThinHand"));
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 11);
    EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 51);
    gauge->SetValue(1000);
    EXPECT_NEAR(std::remainder(PointsTo(*gauge, "BigHand"), 360), 0, Near);
}

TEST(CircularFuelGauge, RunsFromEmptyToFull) {
    const auto gauge = TVZCircularFuelGauge::Create();
    EXPECT_EQ(gauge->GetCaption(), "Fuel");
    EXPECT_EQ(gauge->GetDetailText(), "");
    EXPECT_EQ(gauge->GetDecoration(), TDecoration::dcFuelTank);
    EXPECT_EQ(gauge->GetFont().GetSize(), 12);
    EXPECT_EQ(gauge->GetDefaultLabels(), "E\r\n\r\n\r\n\r\nF");
    EXPECT_EQ(LabelTexts(*gauge), (std::vector<std::string>{"E", "", "", "", "F"}));
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 5);
    EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 0);
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), 260, Near);
    gauge->SetValue(100);
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), 100, Near);
    gauge->SetMax(200);
    EXPECT_EQ(LabelTexts(*gauge)[4], "F");
}

TEST(CircularSpeedometer, CrossesTwelveOClock) {
    const auto gauge = TVZCircularSpeedometer::Create();
    EXPECT_EQ(gauge->GetCaption(), "");
    EXPECT_EQ(gauge->GetDecoration(), TDecoration::dcFuelTank);
    EXPECT_EQ(gauge->GetMax(), 120);
    EXPECT_EQ(LabelTexts(*gauge)[10], "120");
    EXPECT_EQ(LabelTexts(*gauge)[1], "12");
    gauge->SetValue(60);
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), 355, Near);
}

// Clock

TEST(CircularClock, KeepsItsNumerals) {
    const auto gauge = TVZCircularClock::Create();
    EXPECT_EQ(LabelTexts(*gauge), (std::vector<std::string>{"XII", "I", "II", "III", "IV", "V", "VI", "VII",
                                                            "VIII", "IX", "X", "XI"}));
    EXPECT_EQ(gauge->GetTime().Days, 0);
    gauge->SetFormatStr("0.00");
    gauge->SetMax(24);
    EXPECT_EQ(LabelTexts(*gauge)[1], "I");
    EXPECT_FALSE(gauge->IsTimeStored());
    gauge->SetTime(0.25);
    EXPECT_TRUE(gauge->IsTimeStored());
}

// Calendar

TEST(AnalogCalendar, ShowsTodayAtFirst) {
    const double before = Now().Days;
    const auto gauge = TVZAnalogCalendar::Create();
    EXPECT_GE(gauge->GetTime().Days, before);
    EXPECT_LE(gauge->GetTime().Days, Now().Days);
    EXPECT_EQ(gauge->GetParts().GetMask(), 8159u);
    EXPECT_FALSE(IsShown(*gauge, "SmallMarkers"));
    EXPECT_EQ(LabelTexts(*gauge)[11], "Dec");
    EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 31);
    EXPECT_EQ(CountFigures(*gauge, "BigMarkers"), 12);
}

TEST(AnalogCalendar, HandsShowMonthAndDay) {
    const auto gauge = TVZAnalogCalendar::Create();
    gauge->SetTime(EncodeDate(2026, 3, 15) + 0.7);
    EXPECT_NEAR(PointsTo(*gauge, "LittleHand"), 15 / 31.0 * 360, Near);
    EXPECT_NEAR(PointsTo(*gauge, "BigHand"), (2 + 15 / 31.0) / 12 * 360, Near);
}

TEST(AnalogCalendar, MonthsLengthIsThatOfTheValueAsADate) {
    const auto gauge = TVZAnalogCalendar::Create();
    gauge->SetMax(1000);
    gauge->SetValue(static_cast<float>(EncodeDate(1900, 2, 10).Days));
    gauge->SetTime(EncodeDate(2026, 3, 14));
    EXPECT_NEAR(PointsTo(*gauge, "LittleHand"), 180, Near);
    gauge->InitializeGauge();
    EXPECT_EQ(CountFigures(*gauge, "SmallMarkers"), 28);
    gauge->SetMax(std::numeric_limits<float>::max());
    gauge->SetValue(Infinite);
    gauge->SetTime(EncodeDate(2026, 3, 31));
    EXPECT_NEAR(std::remainder(PointsTo(*gauge, "LittleHand"), 360), 0, Near);
}

TEST(AnalogCalendar, DayOfYearKeepsTheYear) {
    const auto gauge = TVZAnalogCalendar::Create();
    gauge->SetTime(EncodeDate(2026, 3, 15) + 0.5);
    EXPECT_EQ(gauge->GetDayOfYear(), 74);
    TNotices notices(*gauge);
    gauge->SetDayOfYear(400);
    EXPECT_EQ(gauge->GetTime().Days, EncodeDate(2026, 12, 31).Days);
    EXPECT_EQ(notices.TakeChanges(), 1);
    gauge->SetDayOfYear(0);
    EXPECT_EQ(gauge->GetTime().Days, EncodeDate(2026, 1, 1).Days);
    EXPECT_EQ(notices.TakeChanges(), 1);
    gauge->SetDayOfYear(1);
    EXPECT_EQ(notices.TakeChanges(), 0);
    gauge->SetTime(EncodeDate(2024, 6, 1));
    gauge->SetDayOfYear(366);
    EXPECT_EQ(gauge->GetTime().Days, EncodeDate(2024, 12, 31).Days);
    EXPECT_FALSE(gauge->IsDayOfYearStored());
}

} // namespace
} // namespace Vz::Test
