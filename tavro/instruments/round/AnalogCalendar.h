#pragma once

#include "tavro/instruments/CircularGauge.h"

namespace Vz {

/// A round calendar: the big hand shows the month and how far it has gone, twelve to a turn, the little hand
/// the day of the month, a month to a turn. It has no timer; it shows the day of Time, to begin with that on
/// which it was made. The length of the month is that of the month in which Value lies, taken as a date: 31
/// days, while nobody sets a value, which is not published.
class TVZAnalogCalendar : public TCreatable<TVZAnalogCalendar, TVZCustomCircularGauge> {
public:
    static constexpr std::string_view TypeName = "TVZAnalogCalendar";
    using TCreatable::TCreatable;

    /// The day of Time in its year, 1 to 366. Setting it keeps the year, takes the time of day away and
    /// raises OnChange where Time changes by that; 0 gives the first day, one beyond the year's end the last.
    /// Never stored, Time is. No default.
    std::uint16_t GetDayOfYear() const;
    void SetDayOfYear(std::uint16_t value);
    bool IsDayOfYearStored() const { return false; }

    std::span<const TProp> GetPropTable() const override;
    /// Turns the little and the big hand; there is no third one.
    void UpdateTime() override;
    /// A major marker for each month, a minor one for each day of a month; the minor ones are not among the
    /// parts that are shown to begin with.
    void InitializeMarkers() override;

protected:
    void Construct() override;
    const TGaugeSetup& GetGaugeSetup() const override { return Setup; }

private:
    int GetDaysInMonth() const;

    static constexpr TGaugeSetup Setup{
        .Hands = {THand::ghBig, THand::ghLittle},
        .Parts = AllParts - TParts{TPart::gpMinorMarkers},
        .Labels = "Jan\r\nFeb\r\nMar\r\nApr\r\nMay\r\nJun\r\nJul\r\nAug\r\nSep\r\nOct\r\nNov\r\nDec",
        .ShowsTime = true,
    };
};

} // namespace Vz
