// Times and days that clocks and calendars are given.

#include "GaugeProbe.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/FormFile.h"
#include "tavro/runtime/PropAccess.h"

#include <gtest/gtest.h>

namespace Vz::Test {
namespace {

constexpr double Near = 1e-3;
constexpr double MSec = 1.0 / (24 * 60 * 60 * 1000.0);

/// How far apart two directions are, in degrees.
double Between(double one, double other) { return std::abs(std::remainder(one - other, 360)); }

void ExpectHands(const TVZSVGControl& control, double little, double big, double thin) {
    EXPECT_LT(Between(PointsTo(control, "LittleHand"), little), Near);
    EXPECT_LT(Between(PointsTo(control, "BigHand"), big), Near);
    EXPECT_LT(Between(PointsTo(control, "ThinHand"), thin), Near);
}

/// What the clock's hands show of a time.
void ExpectClock(TVZCircularClock& clock, TDateTime time, double little, double big, double thin) {
    SCOPED_TRACE(time.Days);
    clock.SetTime(time);
    EXPECT_EQ(clock.GetTime().Days, time.Days);
    ExpectHands(clock, little, big, thin);
}

TEST(GaugeTime, ClockShowsTheTimeOfDayOfAnyDate) {
    const auto clock = TVZCircularClock::Create();
    ExpectClock(*clock, EncodeTime(12, 0, 0, 0), 0, 0, 0);
    ExpectClock(*clock, EncodeTime(23, 59, 59, 0), (11 + 59 / 60.0) / 12 * 360, (59 + 59 / 60.0) / 60 * 360,
                354);
    ExpectClock(*clock, EncodeTime(0, 0, 1, 0), 0, 0.1, 6); // seconds do not move the hours
    ExpectClock(*clock, EncodeTime(13, 15, 0, 0), 37.5, 90, 0);
    ExpectClock(*clock, EncodeDate(2024, 2, 29) + EncodeTime(18, 20, 30, 0).Days, 190, 123, 180);
    ExpectClock(*clock, EncodeDate(1, 1, 1), 0, 0, 0);
    ExpectClock(*clock, EncodeDate(9999, 12, 31) + 0.75, 180, 0, 0);
}

TEST(GaugeTime, FractionsBefore1899CountForwardAllTheSame) {
    const auto clock = TVZCircularClock::Create();
    ExpectClock(*clock, -1.25, 180, 0, 0); // 6 o'clock on 1899-12-29
    ExpectClock(*clock, -0.25, 180, 0, 0);
    ExpectClock(*clock, EncodeDateTime({1752, 9, 14}, {15, 30, 45, 0}), 105, 184.5, 270);
}

TEST(GaugeTime, MillisecondsAreRoundedAndThenIgnored) {
    const auto clock = TVZCircularClock::Create();
    ExpectClock(*clock, EncodeTime(15, 30, 45, 999), 105, 184.5, 270);
    // Less than half a millisecond before the second: it is the second.
    ExpectClock(*clock, EncodeTime(15, 30, 45, 0).Days - 0.4 * MSec, 105, 184.5, 270);
    ExpectClock(*clock, EncodeTime(15, 30, 45, 0).Days - 0.6 * MSec, 105, (30 + 44 / 60.0) / 60 * 360, 264);
    ExpectClock(*clock, 1 - 0.4 * MSec, 0, 0, 0); // the next midnight
    ExpectClock(*clock, 1 - 0.6 * MSec, (11 + 59 / 60.0) / 12 * 360, (59 + 59 / 60.0) / 60 * 360, 354);
}

TEST(GaugeTime, CalendarTakesTheDayThatMidnightBegins) {
    const auto calendar = TVZAnalogCalendar::Create();
    calendar->SetTime(EncodeDate(2026, 3, 1).Days - 0.4 * MSec);
    EXPECT_EQ(calendar->GetDayOfYear(), 60);
    EXPECT_LT(Between(PointsTo(*calendar, "LittleHand"), 1 / 31.0 * 360), Near);
    calendar->SetTime(EncodeDate(2026, 3, 1).Days - 0.6 * MSec);
    EXPECT_EQ(calendar->GetDayOfYear(), 59);
    EXPECT_LT(Between(PointsTo(*calendar, "LittleHand"), 28 / 31.0 * 360), Near);
}

TEST(GaugeTime, CalendarOfAnyYear) {
    const auto calendar = TVZAnalogCalendar::Create();
    struct TDay {
        TDate Date;
        int DayOfYear;
    };
    const TDay days[] = {
        {{1, 1, 1}, 1},        {{1752, 12, 31}, 366}, {{1899, 12, 29}, 363}, {{1899, 12, 30}, 364},
        {{1900, 3, 1}, 60},    {{1900, 12, 31}, 365}, {{2000, 2, 29}, 60},   {{2000, 12, 31}, 366},
        {{2024, 2, 29}, 60},   {{2024, 3, 1}, 61},    {{2026, 3, 1}, 60},    {{2026, 3, 15}, 74},
        {{9999, 12, 31}, 365},
    };
    for (const TDay& day : days) {
        SCOPED_TRACE(day.Date.Year * 10000 + day.Date.Month * 100 + day.Date.Day);
        calendar->SetTime(EncodeDate(day.Date));
        EXPECT_EQ(calendar->GetDayOfYear(), day.DayOfYear);
        const double month =
            day.Date.Day / 31.0; // of a month's length that belongs to the value, not to the time
        EXPECT_LT(Between(PointsTo(*calendar, "LittleHand"), month * 360), Near);
        EXPECT_LT(Between(PointsTo(*calendar, "BigHand"), (day.Date.Month - 1 + month) / 12 * 360), Near);
        // There and back by the number of the day.
        calendar->SetDayOfYear(static_cast<std::uint16_t>(day.DayOfYear == 1 ? 2 : 1));
        calendar->SetDayOfYear(static_cast<std::uint16_t>(day.DayOfYear));
        EXPECT_EQ(calendar->GetTime().Days, EncodeDate(day.Date).Days);
        calendar->SetDayOfYear(65535);
        EXPECT_EQ(DecodeDate(calendar->GetTime()), (TDate{day.Date.Year, 12, 31}));
        calendar->SetDayOfYear(0);
        EXPECT_EQ(DecodeDate(calendar->GetTime()), (TDate{day.Date.Year, 1, 1}));
    }
}

TEST(GaugeTime, CalendarsTimeOfDayGoesWithTheDayThatIsSet) {
    const auto calendar = TVZAnalogCalendar::Create();
    calendar->SetTime(EncodeDate(2026, 3, 15) + 0.5);
    TNotices notices(*calendar);
    calendar->SetDayOfYear(74); // the same day, but its midnight
    EXPECT_EQ(calendar->GetTime().Days, EncodeDate(2026, 3, 15).Days);
    EXPECT_EQ(notices.TakeChanges(), 1);
    calendar->SetDayOfYear(74);
    EXPECT_EQ(notices.TakeChanges(), 0);
    // Before 1899 the fraction counts forward; it must not take the day along.
    calendar->SetTime(EncodeDateTime({1752, 9, 14}, {18, 0, 0, 0}));
    calendar->SetDayOfYear(calendar->GetDayOfYear());
    EXPECT_EQ(calendar->GetTime().Days, EncodeDate(1752, 9, 14).Days);
}

TEST(GaugeTime, CalendarsThirdHandIsNotShown) {
    const auto calendar = TVZAnalogCalendar::Create();
    EXPECT_TRUE(IsShown(*calendar, "LittleHand"));
    EXPECT_TRUE(IsShown(*calendar, "BigHand"));
    EXPECT_FALSE(IsShown(*calendar, "ThinHand"));
    EXPECT_FALSE(calendar->IsHandsStored());
}

TEST(GaugeTime, WhatIsNoDateIsRefused) {
    const auto calendar = TVZAnalogCalendar::Create();
    calendar->SetTime(EncodeDate(2026, 3, 15));
    TNotices notices(*calendar);
    for (const double bad : {double{NotANumber}, double{Infinite}, -double{Infinite},
                             EncodeDate(1, 1, 1).Days - 1, EncodeDate(9999, 12, 31).Days + 1}) {
        calendar->SetTime(bad);
        EXPECT_EQ(calendar->GetDayOfYear(), 74) << bad;
    }
    EXPECT_EQ(notices.TakeChanges() + notices.TakeInvalidates(), 0);
    for (const char* const bad : {"2026-02-30", "24:00:00", "yesterday", "", "2026-13-01"})
        EXPECT_THROW(SetPropText(*calendar, "Time", bad), EVZError) << bad;
    EXPECT_THROW(SetPropText(*calendar, "DayOfYear", "65536"), EVZError);
    EXPECT_THROW(SetPropText(*calendar, "DayOfYear", "-1"), EVZError);
    EXPECT_EQ(calendar->GetDayOfYear(), 74);
}

TEST(GaugeTime, FormKeepsTheTimeToTheMillisecond) {
    RegisterComponentClasses();
    const auto clock = TVZCircularClock::Create();
    for (const TDateTime time : {EncodeDateTime({1752, 9, 14}, {15, 30, 45, 7}), EncodeTime(23, 59, 59, 999),
                                 EncodeDate(9999, 12, 31), EncodeDateTime({2024, 2, 29}, {0, 0, 0, 1})}) {
        clock->SetTime(time);
        const auto copy = ReadForm(WriteForm(*clock), "copy");
        EXPECT_EQ(dynamic_cast<TVZCircularClock&>(*copy).GetTime().Days, time.Days);
    }
    clock->SetTime(0);
    EXPECT_EQ(WriteForm(*clock), "object TVZCircularClock\nend\n");
}

} // namespace
} // namespace Vz::Test
