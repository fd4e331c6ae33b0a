#include "tavro/runtime/DateTime.h"

#include "tavro/runtime/Exceptions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <random>

using namespace Vz;

TEST(DateTime, KnownDays) {
    const struct {
        int Year, Month, Day;
        double Days;
    } cases[] = {
        {1899, 12, 30, 0},       {1899, 12, 31, 1},    {1900, 1, 1, 2},        {1970, 1, 1, 25569},
        {2000, 1, 1, 36526},     {2026, 3, 15, 46096}, {1899, 12, 29, -1},     {1, 1, 1, -693593},
        {9999, 12, 31, 2958465}, {2000, 2, 29, 36585}, {1600, 2, 29, -109512},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(EncodeDate(one.Year, one.Month, one.Day).Days, one.Days);
        EXPECT_EQ(DecodeDate(one.Days), (TDate{one.Year, one.Month, one.Day}));
    }
}

TEST(DateTime, EveryDayDecodesToTheNextOne) {
    // Two whole rounds of the calendar's 400 years from its beginning, one up to its end.
    for (const TDate& first : {TDate{1, 1, 1}, TDate{9600, 1, 1}}) {
        TDate expected = first;
        int day = static_cast<int>(EncodeDate(first).Days);
        for (const int end = std::min(day + 2 * 146097, 2958466); day < end; ++day) {
            ASSERT_EQ(DecodeDate(day), expected) << day;
            ASSERT_EQ(EncodeDate(expected).Days, day);
            if (++expected.Day <= DaysInMonth(expected.Year, expected.Month)) continue;
            expected.Day = 1;
            if (++expected.Month > 12) expected = {expected.Year + 1, 1, 1};
        }
        EXPECT_EQ(expected.Year, first.Year == 1 ? 801 : 10000);
    }
}

TEST(DateTime, FractionCountsForwardInNegativeNumbersToo) {
    EXPECT_EQ(DecodeDate(-1.25), (TDate{1899, 12, 29}));
    EXPECT_EQ(DecodeTime(-1.25), (TTimeOfDay{6, 0, 0, 0}));
    EXPECT_EQ(DecodeTime(-0.25), (TTimeOfDay{6, 0, 0, 0}));
    EXPECT_EQ(EncodeDateTime({1899, 12, 29}, {6, 0, 0, 0}).Days, -1.25);
    EXPECT_EQ(EncodeDateTime({1899, 12, 30}, {6, 0, 0, 0}).Days, 0.25);
    EXPECT_EQ(EncodeDateTime({1899, 12, 31}, {6, 0, 0, 0}).Days, 1.25);
}

TEST(DateTime, MillisecondsAreRounded) {
    constexpr double MSec = 1.0 / 86400000;
    EXPECT_EQ(DecodeTime(0.4 * MSec), (TTimeOfDay{0, 0, 0, 0}));
    EXPECT_EQ(DecodeTime(0.6 * MSec), (TTimeOfDay{0, 0, 0, 1}));
    EXPECT_EQ(DecodeTime(1 - 0.4 * MSec), (TTimeOfDay{0, 0, 0, 0}));
    EXPECT_EQ(DecodeDate(1 - 0.4 * MSec), (TDate{1899, 12, 31}));
    EXPECT_EQ(DecodeDate(-2 - (1 - 0.4 * MSec)), (TDate{1899, 12, 29}));
    EXPECT_EQ(DecodeTime(1 - 0.6 * MSec), (TTimeOfDay{23, 59, 59, 999}));
}

TEST(DateTime, EveryMillisecondReadsBack) {
    std::mt19937 random(7);
    for (int i = 0; i < 20000; ++i) {
        const auto at = [&](unsigned count) { return static_cast<int>(random() % count); };
        const TTimeOfDay time{at(24), at(60), at(60), at(1000)};
        const TDate date = DecodeDate(at(3652059) - 693593);
        const TDateTime value = EncodeDateTime(date, time);
        ASSERT_EQ(DecodeTime(value), time);
        ASSERT_EQ(DecodeDate(value), date);
    }
}

TEST(DateTime, PartsOutOfRangeAreRefused) {
    EXPECT_THROW(EncodeDate(2023, 2, 29), EConvertError);
    EXPECT_THROW(EncodeDate(1900, 2, 29), EConvertError);
    EXPECT_THROW(EncodeDate(2024, 13, 1), EConvertError);
    EXPECT_THROW(EncodeDate(2024, 0, 1), EConvertError);
    EXPECT_THROW(EncodeDate(2024, 4, 31), EConvertError);
    EXPECT_THROW(EncodeDate(2024, 4, 0), EConvertError);
    EXPECT_THROW(EncodeDate(0, 1, 1), EConvertError);
    EXPECT_THROW(EncodeDate(10000, 1, 1), EConvertError);
    EXPECT_THROW(EncodeTime(24, 0, 0, 0), EConvertError);
    EXPECT_THROW(EncodeTime(0, 60, 0, 0), EConvertError);
    EXPECT_THROW(EncodeTime(0, 0, 60, 0), EConvertError);
    EXPECT_THROW(EncodeTime(0, 0, 0, 1000), EConvertError);
    EXPECT_THROW(EncodeTime(-1, 0, 0, 0), EConvertError);
}

TEST(DateTime, ValuesOutsideTheCalendarAreRefused) {
    for (const double bad :
         {-693594.0, 2958466.0, 2958465.9999999998, 1e300, -1e300, std::nan(""), HUGE_VAL}) {
        EXPECT_FALSE(IsValidDateTime(bad)) << bad;
        EXPECT_THROW(DecodeDate(bad), EConvertError) << bad;
        EXPECT_THROW(DecodeTime(bad), EConvertError) << bad;
        EXPECT_THROW(DayOfTheYear(bad), EConvertError) << bad;
    }
    EXPECT_TRUE(IsValidDateTime(-693593.99));
    EXPECT_TRUE(IsValidDateTime(2958465.99));
}

TEST(DateTime, MonthsAndYears) {
    EXPECT_EQ(DaysInMonth(2024, 2), 29);
    EXPECT_EQ(DaysInMonth(2100, 2), 28);
    EXPECT_EQ(DaysInMonth(2000, 2), 29);
    EXPECT_EQ(DaysInMonth(2023, 12), 31);
    EXPECT_EQ(DaysInYear(2024), 366);
    EXPECT_EQ(DaysInYear(1900), 365);
    EXPECT_THROW(DaysInMonth(2024, 13), EConvertError);
    EXPECT_THROW(DaysInYear(0), EConvertError);
    EXPECT_EQ(DayOfTheYear(EncodeDate(2024, 1, 1)), 1);
    EXPECT_EQ(DayOfTheYear(EncodeDate(2024, 12, 31)), 366);
    EXPECT_EQ(DayOfTheYear(EncodeDate(2023, 12, 31)), 365);
    EXPECT_EQ(DayOfTheYear(EncodeDate(2023, 3, 1)), 60);
}

TEST(DateTime, NowIsTheLocalTime) {
    const std::time_t before = std::time(nullptr);
    const TDateTime now = Now();
    std::tm local{};
    localtime_r(&before, &local);
    const TDateTime expected = EncodeDateTime({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday},
                                              {local.tm_hour, local.tm_min, std::min(local.tm_sec, 59), 0});
    EXPECT_GE(now.Days, expected.Days);
    EXPECT_LT(now.Days - expected.Days, 30.0 / 86400);
}
