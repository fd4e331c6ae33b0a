#pragma once

#include "tavro/instruments/switches/RotaryInstrument.h"

namespace Vz {

/// A knob with two positions: Off, value 0, at nine o'clock, and On, value 1, at twelve o'clock. A click
/// turns it to the position that is nearer; one as far from both turns it off.
class TVZRotarySwitch : public TCreatable<TVZRotarySwitch, TVZCustomRotaryInstrument> {
public:
    static constexpr std::string_view TypeName = "TVZRotarySwitch";
    using TCreatable::TCreatable;

    /// True exactly when Value is 1. Default false. Setting it sets Value to 1 or 0, which raises OnChange
    /// where that is a change.
    bool GetChecked() const { return GetValue() == 1.0f; }
    void SetChecked(bool value) { SetValue(value ? 1.0f : 0.0f); }

    std::span<const TProp> GetPropTable() const override;

protected:
    const TGaugeSetup& GetGaugeSetup() const override { return Setup; }

private:
    static constexpr TGaugeSetup Setup{
        .StartAngle = 270,
        .StopAngle = 360,
        .Max = 1,
        .MajorMarkers = 1,
        .MinorMarkers = 0,
        .Hands = {},
        .Parts = AllParts - TParts{TPart::gpKnob, TPart::gpGlass},
        .Labels = "Off\r\nOn",
        .FontSize = 8,
        .ValueHandId = "KnobSwitch",
        .BigHandColor = 0xFFA9A9A9,
    };
};

} // namespace Vz
