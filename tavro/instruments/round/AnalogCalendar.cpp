#include "tavro/instruments/round/AnalogCalendar.h"

#include "tavro/instruments/CircularGaugePublish.h"
#include "tavro/instruments/Editing.h"

#include <algorithm>

namespace Vz {

std::span<const TProp> TVZAnalogCalendar::GetPropTable() const {
    using T = TVZAnalogCalendar;
    static constexpr auto Rows = PublishGauge<Setup>(Publish(
        std::array{
            Main(Prop<&T::GetTime, &T::SetTime, &T::IsTimeStored>("Time"), TQuantity::Date),
            Prop<&T::GetDayOfYear, &T::SetDayOfYear, &T::IsDayOfYearStored>("DayOfYear"),
        },
        SizeProps<200, 200>()));
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

void TVZAnalogCalendar::Construct() {
    TCreatable::Construct();
    SetDefaultTime(Now());
}

std::uint16_t TVZAnalogCalendar::GetDayOfYear() const {
    return static_cast<std::uint16_t>(DayOfTheYear(GetTime()));
}

void TVZAnalogCalendar::SetDayOfYear(std::uint16_t value) {
    const int year = DecodeDate(GetTime()).Year;
    const int day = std::clamp<int>(value, 1, DaysInYear(year));
    SetTime(EncodeDate(year, 1, 1) + (day - 1));
}

int TVZAnalogCalendar::GetDaysInMonth() const {
    // Of the value taken as a date, not of the time; so it is 31 while nobody sets a value. Kept.
    const TDateTime date(GetValue());
    if (!IsValidDateTime(date)) return 31;
    const TDate day = DecodeDate(date);
    return DaysInMonth(day.Year, day.Month);
}

void TVZAnalogCalendar::UpdateTime() {
    const TDate date = DecodeDate(GetTime());
    const double month = double(date.Day) / GetDaysInMonth();
    EditDocument([&] {
        DoUpdateElement("LittleHand", static_cast<float>(month * 360));
        DoUpdateElement("BigHand", static_cast<float>((date.Month - 1 + month) / 12 * 360));
    });
    Invalidate();
}

void TVZAnalogCalendar::InitializeMarkers() {
    if (IsUpdating()) return;
    EditDocument([this] {
        BuildMarkers("SmallMarkers", GetMinorMarkerPath(), GetMinorMarkers() > 0, GetDaysInMonth());
        BuildMarkers("BigMarkers", GetMajorMarkerPath(), GetMajorMarkers() > 0, GetMajorMarkers());
    });
}

} // namespace Vz
