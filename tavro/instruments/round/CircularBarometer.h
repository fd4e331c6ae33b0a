#pragma once

#include "tavro/instruments/CircularGauge.h"

namespace Vz {

/// A round barometer with one hand, from 950 to 1,050 hectopascals over three quarters of a turn.
class TVZCircularBarometer : public TCreatable<TVZCircularBarometer, TVZCustomCircularGauge> {
public:
    static constexpr std::string_view TypeName = "TVZCircularBarometer";
    using TCreatable::TCreatable;

    std::span<const TProp> GetPropTable() const override;

protected:
    const TGaugeSetup& GetGaugeSetup() const override { return Setup; }

private:
    static constexpr TGaugeSetup Setup{
        .Caption = "Barometer",
        .DetailText = "hPa",
        .StartAngle = 225,
        .StopAngle = 495,
        .Min = 950,
        .Max = 1050,
        .Value = 950,
        .MajorMarkers = 10,
        .Hands = {THand::ghBig},
        .FontSize = 8,
    };
};

} // namespace Vz
