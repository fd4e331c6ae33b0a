#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace Vz {

/// `value` cut toward zero. NaN gives 0; what does not fit gives the nearest 64-bit integer.
inline std::int64_t Trunc(double value) {
    constexpr double Limit = 9223372036854775808.0; // 2^63, the first that does not fit
    if (std::isnan(value)) return 0;
    if (value >= Limit) return std::numeric_limits<std::int64_t>::max();
    if (value < -Limit) return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

/// `value` rounded to the nearest integer, a half to the even one: 0.5 gives 0, 1.5 and 2.5 give 2, -0.5
/// gives 0. NaN gives 0; what does not fit gives the nearest 64-bit integer. Independent of the rounding mode
/// in force.
inline std::int64_t RoundHalfEven(double value) {
    const double whole = std::trunc(value);
    const double rest =
        std::fabs(value - whole); // exact; NaN for an infinity, which the comparisons let pass
    const bool away = rest > 0.5 || (rest == 0.5 && std::fmod(whole, 2.0) != 0.0);
    return Trunc(away ? whole + std::copysign(1.0, value) : whole);
}

} // namespace Vz
