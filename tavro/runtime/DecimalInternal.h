#pragma once

#include <string>

namespace Vz {

/// A finite number as decimal digits: 0.DIGITS times ten to the Exponent, without zeros at either end of the
/// digits. Zero has no digits and the exponent 0.
struct TDecimal {
    bool Negative = false;
    std::string Digits;
    int Exponent = 0;
};

/// The fewest digits that read back to the same number.
TDecimal ShortestDecimal(float value);
TDecimal ShortestDecimal(double value);

/// The number correctly rounded to `digits` significant digits (1 or more).
TDecimal RoundedDecimal(double value, int digits);

/// Rounds to the first `count` digits, a half away from zero; to zero where count is negative. Keeps the
/// sign.
void RoundDigits(TDecimal& decimal, int count);

/// `0.05`, `-120`, `1.5`: without exponent. Zero gives `0`, with its sign.
std::string FixedText(const TDecimal& decimal, char point);

/// `1.5e-7`: one digit before the point, no plus sign, no leading zeros in the exponent.
std::string ScientificText(const TDecimal& decimal, char point, char exponentMark);

} // namespace Vz
