#pragma once

#include "tavro/instruments/switches/RotaryInstrument.h"

namespace Vz {

/// A knob with eleven numbered positions, 0 to 10, from half past seven clockwise to half past four. A click
/// turns it to the nearest one; between the ends to the nearer end, to the first where both are as near.
///
/// A click sets the position's index, 0 first, as the value; so positions and numbers agree only while Min is
/// 0 and Max equals MajorMarkers.
class TVZRotaryDial : public TCreatable<TVZRotaryDial, TVZCustomRotaryInstrument> {
public:
    static constexpr std::string_view TypeName = "TVZRotaryDial";
    using TCreatable::TCreatable;

    /// Min as a whole number, rounded to the nearest, a half to the even one, held in 32 bits; published as
    /// Min. Default 0. Setting it is SetMin, with all that follows from that.
    std::int32_t GetMinPosition() const;
    void SetMinPosition(std::int32_t value) { SetMin(static_cast<float>(value)); }
    /// Max, likewise; published as Max. Default 10.
    std::int32_t GetMaxPosition() const;
    void SetMaxPosition(std::int32_t value) { SetMax(static_cast<float>(value)); }

    std::span<const TProp> GetPropTable() const override;

protected:
    void Construct() override;
    const TGaugeSetup& GetGaugeSetup() const override { return Setup; }

private:
    static constexpr TGaugeSetup Setup{
        .StartAngle = 225,
        .StopAngle = 495,
        .Max = 10,
        .MajorMarkers = 10,
        .MinorMarkers = 0,
        .Hands = {},
        .FontSize = 8,
        .ValueHandId = "KnobSwitch",
        .BigHandColor = 0xFFA9A9A9,
    };
};

} // namespace Vz
