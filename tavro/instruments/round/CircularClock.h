#pragma once

#include "tavro/instruments/CircularGauge.h"

namespace Vz {

/// A round clock with Roman numerals: the little hand shows the hours, the big one the minutes, the thin one
/// the seconds of Time, the date left aside. It has no timer; it shows the time that it is given, midnight to
/// begin with.
class TVZCircularClock : public TCreatable<TVZCircularClock, TVZCustomCircularGauge> {
public:
    static constexpr std::string_view TypeName = "TVZCircularClock";
    using TCreatable::TCreatable;

    std::span<const TProp> GetPropTable() const override;

protected:
    const TGaugeSetup& GetGaugeSetup() const override { return Setup; }

private:
    static constexpr TGaugeSetup Setup{
        .Labels = "XII\r\nI\r\nII\r\nIII\r\nIV\r\nV\r\nVI\r\nVII\r\nVIII\r\nIX\r\nX\r\nXI",
        .ShowsTime = true,
    };
};

} // namespace Vz
