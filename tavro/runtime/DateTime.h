#pragma once

#include <cstdint>

namespace Vz {

/// A date and time of day: days since 1899-12-30, the time of day in the fraction (0.25 is 6 o'clock).
/// Converts from and to its number of days. In a negative number the fraction counts forward all the same, by
/// its absolute value: -1.25 is 6 o'clock on 1899-12-29. No time zone.
struct TDateTime {
    double Days = 0;

    constexpr TDateTime() = default;
    constexpr TDateTime(double days)
        : Days(days) {}
    constexpr operator double() const { return Days; }
};

/// A day of the Gregorian calendar, taken to hold for all times. Year 1..9999, Month 1..12, Day 1..31.
struct TDate {
    int Year = 1899;
    int Month = 12;
    int Day = 30;

    bool operator==(const TDate&) const = default;
};

/// A time of day. Hour 0..23, Minute and Second 0..59, MSec 0..999 (milliseconds).
struct TTimeOfDay {
    int Hour = 0;
    int Minute = 0;
    int Second = 0;
    int MSec = 0;

    bool operator==(const TTimeOfDay&) const = default;
};

/// The day as a date and time at midnight. Raises EConvertError for a day that the calendar does not have.
TDateTime EncodeDate(const TDate& date);
TDateTime EncodeDate(int year, int month, int day);

/// The time of day as a fraction of a day, 0 up to but not 1. Raises EConvertError for a part out of its
/// range.
TDateTime EncodeTime(const TTimeOfDay& time);
TDateTime EncodeTime(int hour, int minute, int second, int mSec);

/// Both together, the sign convention of negative days observed. Raises EConvertError as the two above.
TDateTime EncodeDateTime(const TDate& date, const TTimeOfDay& time);

/// Day and time of day, of the value rounded to whole milliseconds (a half to the even one); so the last half
/// millisecond of a day belongs to the next. Raises EConvertError for NaN and outside 0001-01-01..9999-12-31.
TDate DecodeDate(TDateTime value);
TTimeOfDay DecodeTime(TDateTime value);

/// True when DecodeDate and DecodeTime take the value.
bool IsValidDateTime(TDateTime value);

/// Gregorian leap year; any year.
bool IsLeapYear(int year);

/// 28..31. Raises EConvertError for a month outside 1..12 or a year outside 1..9999.
int DaysInMonth(int year, int month);

/// 365 or 366. Raises EConvertError for a year outside 1..9999.
int DaysInYear(int year);

/// Number of the day in its year, 1 for 1 January, up to 366. Raises EConvertError as DecodeDate.
int DayOfTheYear(TDateTime value);

/// The present local date and time, to the millisecond.
TDateTime Now();

} // namespace Vz
