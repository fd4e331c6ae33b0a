#pragma once

#include "tavro/instruments/CircularGauge.h"

namespace Vz {

/// A round fuel gauge with one hand, in per cent of a full tank, labelled E at its lower end and F at its
/// upper one, whatever the scale.
class TVZCircularFuelGauge : public TCreatable<TVZCircularFuelGauge, TVZCustomCircularGauge> {
public:
    static constexpr std::string_view TypeName = "TVZCircularFuelGauge";
    using TCreatable::TCreatable;

    std::span<const TProp> GetPropTable() const override;

protected:
    const TGaugeSetup& GetGaugeSetup() const override { return Setup; }

private:
    static constexpr TGaugeSetup Setup{
        .Caption = "Fuel",
        .StartAngle = 260,
        .StopAngle = 460,
        .Max = 100,
        .MajorMarkers = 4,
        .MinorMarkers = 0,
        .Hands = {THand::ghBig},
        .Labels = "E\r\n\r\n\r\n\r\nF",
        .FontSize = 12,
        .Decoration = TDecoration::dcFuelTank,
    };
};

} // namespace Vz
