#pragma once

#include "tavro/runtime/Rounding.h"
#include "tavro/runtime/Value.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

namespace Vz {

/// What of a compass turns: its needle, its face of numbers and marks, or the face together with the rose.
enum class TCompassMovablePart : std::uint8_t { cmpNeedle, cmpFace, cmpFaceNRose };

template <> struct EnumNames<TCompassMovablePart> {
    static constexpr std::string_view Name = "TCompassMovablePart";
    static constexpr std::string_view Members[] = {"cmpNeedle", "cmpFace", "cmpFaceNRose"};
};

/// The angle of a compass in whole degrees, minutes and seconds. TCompass is the class itself, which has
/// GetAngle and SetAngle for an angle in degrees; all of these set it, with all that SetAngle does.
template <class TCompass> class THeading {
public:
    /// Sets the angle to degrees + minutes / 60 + seconds / 3600; any numbers, negative ones too.
    void SetAngle(int degrees, int minutes, float seconds) {
        TurnTo(degrees + minutes / 60.0 + double{seconds} / 3600.0);
    }
    /// The whole degrees of the angle, cut toward zero. Default 0. Setting them keeps the fraction.
    int GetDegrees() const { return Cut(Angle()); }
    void SetDegrees(int value) { TurnTo(double{Angle()} - GetDegrees() + value); }
    /// The minutes in the fraction of the angle, cut toward zero: 30 at 10.5 degrees. Default 0. Any number.
    /// Setting them writes the degrees and GetSeconds() back along with them.
    int GetMinutes() const { return Cut((double{Angle()} - GetDegrees()) * 60); }
    void SetMinutes(int value) { SetAngle(GetDegrees(), value, GetSeconds()); }
    /// The angle less the number of minutes, times 60: the minutes go off the whole angle, not off its
    /// fraction, so that 10.5 degrees have -1170 seconds. Kept. Default 0. Any number; what is not finite is
    /// ignored. Setting them writes degrees and minutes back along with them.
    float GetSeconds() const { return (Angle() - static_cast<float>(GetMinutes())) * 60; }
    void SetSeconds(float value) { SetAngle(GetDegrees(), GetMinutes(), value); }

private:
    float Angle() const { return static_cast<const TCompass&>(*this).GetAngle(); }
    void TurnTo(double value) { static_cast<TCompass&>(*this).SetAngle(static_cast<float>(value)); }
    static int Cut(double value) {
        using TLimits = std::numeric_limits<int>;
        return static_cast<int>(std::clamp<std::int64_t>(Trunc(value), TLimits::min(), TLimits::max()));
    }
};

} // namespace Vz
