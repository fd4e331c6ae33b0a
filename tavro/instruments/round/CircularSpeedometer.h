#pragma once

#include "tavro/instruments/CircularGauge.h"

namespace Vz {

/// A round speedometer with one hand. Values have no unit of their own; the scale runs from Min to Max, 0 to
/// 120 to begin with, across twelve o'clock.
class TVZCircularSpeedometer : public TCreatable<TVZCircularSpeedometer, TVZCustomCircularGauge> {
public:
    static constexpr std::string_view TypeName = "TVZCircularSpeedometer";
    using TCreatable::TCreatable;

    std::span<const TProp> GetPropTable() const override;

protected:
    const TGaugeSetup& GetGaugeSetup() const override { return Setup; }

private:
    static constexpr TGaugeSetup Setup{
        .StartAngle = 240,
        .StopAngle = 470,
        .Max = 120,
        .MajorMarkers = 10,
        .Hands = {THand::ghBig},
        .Decoration = TDecoration::dcFuelTank, // as the fuel gauge. Kept.
    };
};

} // namespace Vz
