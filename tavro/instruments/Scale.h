#pragma once

#include <cmath>

namespace Vz {

/// The ends of a linear scale and the value on it, in scale units, and how they move each other. Equal ends
/// are not prevented: one end may be set to the other.
struct TScale {
    float Min = 0;
    float Max = 100;
    float Value = 0;

    /// Moves the upper end; a lower end above it goes to one below it, a value above it comes down to it.
    /// False, and nothing happens, for the end as it is and for what is not finite.
    bool MoveMax(float value) {
        if (value == Max || !std::isfinite(value)) return false;
        if (Min > value) Min = value - 1;
        if (Value > value) Value = value;
        Max = value;
        return true;
    }
    /// The same for the lower end: an upper end below it goes to one above it, a value below it comes up to
    /// it.
    bool MoveMin(float value) {
        if (value == Min || !std::isfinite(value)) return false;
        if (value > Max) Max = value + 1;
        if (value > Value) Value = value;
        Min = value;
        return true;
    }
    /// Sets the value, held in the range given. False, and nothing happens, for the value as it is and for
    /// what is not a number. The comparison comes before the clamping: a value beyond the range is a change
    /// each time.
    bool MoveValue(float value, float least, float greatest) {
        if (value == Value || std::isnan(value)) return false;
        Value = least > value ? least : value > greatest ? greatest : value;
        return true;
    }
    /// False where reading the ends into a fresh object, whose value is `usual`, gives the value as well.
    bool IsValueStored(float usual) const { return Value != usual || Min > usual || Max < usual; }
};

} // namespace Vz
