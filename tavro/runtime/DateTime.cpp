#include "tavro/runtime/DateTime.h"

#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Rounding.h"

#include <chrono>
#include <cmath>
#include <ctime>
#include <string>

namespace Vz {

namespace {

constexpr int MSecsPerDay = 24 * 60 * 60 * 1000;
constexpr int FirstDay = -693593; // 0001-01-01
constexpr int LastDay = 2958465;  // 9999-12-31

constexpr int DaysBeforeMonth[2][13] = {
    {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365},
    {0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335, 366},
};

/// Days from 0001-01-01 to 1 January of `year`.
constexpr int DaysBeforeYear(int year) {
    const int y = year - 1;
    return y * 365 + y / 4 - y / 100 + y / 400;
}

struct TStamp {
    int Day;  ///< since 1899-12-30
    int MSec; ///< of that day
};

bool Split(TDateTime value, TStamp& stamp) {
    if (!(std::fabs(value.Days) < 4e6)) return false; // also NaN; keeps the integers small
    const double day = std::trunc(value.Days);
    stamp = {static_cast<int>(day),
             static_cast<int>(RoundHalfEven(std::fabs(value.Days - day) * MSecsPerDay))};
    if (stamp.MSec == MSecsPerDay) stamp = {stamp.Day + 1, 0};
    return stamp.Day >= FirstDay && stamp.Day <= LastDay;
}

TStamp Split(TDateTime value) {
    TStamp stamp{};
    if (Split(value, stamp)) return stamp;
    throw EConvertError("date outside the years 1 to 9999");
}

void CheckYear(int year) {
    if (year < 1 || year > 9999)
        throw EConvertError("year " + std::to_string(year) + " lies outside 1..9999");
}

/// Year and number of the day in it (from 0) of a day since 0001-01-01.
struct TYearDay {
    int Year;
    int Day;
};

TYearDay ToYearDay(int day) {
    // The average year errs by less than one year either way.
    int year = static_cast<int>(day / 365.2425) + 1;
    while (DaysBeforeYear(year) > day)
        --year;
    while (DaysBeforeYear(year + 1) <= day)
        ++year;
    return {year, day - DaysBeforeYear(year)};
}

std::tm LocalTime(std::time_t seconds) {
    std::tm local{};
#ifdef _WIN32
    localtime_s(&local, &seconds);
#else
    localtime_r(&seconds, &local);
#endif
    return local;
}

} // namespace

TDateTime EncodeDate(const TDate& date) { return EncodeDate(date.Year, date.Month, date.Day); }

TDateTime EncodeDate(int year, int month, int day) {
    if (day < 1 || day > DaysInMonth(year, month))
        throw EConvertError("day " + std::to_string(day) + " lies outside its month");
    return FirstDay + DaysBeforeYear(year) + DaysBeforeMonth[IsLeapYear(year)][month - 1] + day - 1;
}

TDateTime EncodeTime(const TTimeOfDay& time) {
    return EncodeTime(time.Hour, time.Minute, time.Second, time.MSec);
}

TDateTime EncodeTime(int hour, int minute, int second, int mSec) {
    const bool valid = hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60 &&
                       mSec >= 0 && mSec < 1000;
    if (!valid) throw EConvertError("not a time of day");
    return static_cast<double>(((hour * 60 + minute) * 60 + second) * 1000 + mSec) / MSecsPerDay;
}

TDateTime EncodeDateTime(const TDate& date, const TTimeOfDay& time) {
    const double day = EncodeDate(date);
    const double fraction = EncodeTime(time);
    return day < 0 ? day - fraction : day + fraction;
}

TDate DecodeDate(TDateTime value) {
    const TYearDay found = ToYearDay(Split(value).Day - FirstDay);
    const auto& before = DaysBeforeMonth[IsLeapYear(found.Year)];
    int month = 1;
    while (before[month] <= found.Day)
        ++month;
    return {found.Year, month, found.Day - before[month - 1] + 1};
}

TTimeOfDay DecodeTime(TDateTime value) {
    const int mSec = Split(value).MSec;
    return {mSec / 3600000, mSec / 60000 % 60, mSec / 1000 % 60, mSec % 1000};
}

bool IsValidDateTime(TDateTime value) {
    TStamp stamp{};
    return Split(value, stamp);
}

bool IsLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int DaysInMonth(int year, int month) {
    CheckYear(year);
    if (month < 1 || month > 12)
        throw EConvertError("month " + std::to_string(month) + " lies outside 1..12");
    const auto& before = DaysBeforeMonth[IsLeapYear(year)];
    return before[month] - before[month - 1];
}

int DaysInYear(int year) {
    CheckYear(year);
    return IsLeapYear(year) ? 366 : 365;
}

int DayOfTheYear(TDateTime value) { return ToYearDay(Split(value).Day - FirstDay).Day + 1; }

TDateTime Now() {
    using namespace std::chrono;
    const auto now = floor<milliseconds>(system_clock::now());
    const auto whole = floor<seconds>(now);
    const std::tm local = LocalTime(system_clock::to_time_t(whole));
    const int second = local.tm_sec < 60 ? local.tm_sec : 59; // a leap second has no number of its own
    return EncodeDateTime({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday},
                          {local.tm_hour, local.tm_min, second, static_cast<int>((now - whole).count())});
}

} // namespace Vz
