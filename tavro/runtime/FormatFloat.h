#pragma once

#include <string>
#include <string_view>

namespace Vz {

/// The characters by which a picture's marks are shown.
struct TFormatSettings {
    char DecimalSeparator = '.';
    char ThousandSeparator = ',';
};

/// Point and comma as in the United States; what instruments use whatever the user's locale is.
inline constexpr TFormatSettings UsFormatSettings{};

/// `value` as the picture `format` shows it.
///
/// A picture has up to three sections separated by semicolons: for positive numbers, negative numbers, and
/// zero. One that is missing or empty is the first one's, before which a negative number gets a minus. In a
/// section
///   0          is a digit's place, which shows 0 where the number has no digit,
///   #          is a digit's place, which shows nothing then,
///   .          is the decimal point's place; it is shown only when a digit follows,
///   ,          anywhere: groups of three digits before the point are separated,
///   E+ E- e+ e- and one to four zeros: scientific, with at least so many digits in the exponent; + shows its
///   sign
///              always, - only where it is negative. As many digits stand before the point as there are
///              places,
///   'x' "x"    is text shown as it stands; so is every other character.
/// Between the leftmost 0 and the point, and between the point and the rightmost 0, a digit is always shown.
/// Digits for which there are no places before the point are shown at the first place.
///
/// Rounding: the number's 18 most significant decimal digits are rounded to the places after the point
/// (scientific: to all places), a half away from zero; 123.45 in `0.#` is `123.5`, and 0.15, which in binary
/// is a little less, `0.1`. What rounds to zero is shown as zero: by the third section, without a minus.
///
/// Where the first section is empty and would be used, and from 1e18 on where the section is not scientific,
/// the number is shown with up to 15 significant digits and no picture: `0.00001`, `1E-6`, `123456789012345`,
/// `1E15`. Numbers that are not finite give `NaN`, `INF`, `-INF`.
///
/// Raises EConvertError, with the picture and the character where it goes wrong, whatever the value: a quote
/// that is not closed, a fourth section; in one section a second decimal point, a second exponent, an
/// exponent without zeros, with more than four or without a digit's place before it, a digit's place or point
/// behind it.
std::string FormatFloat(std::string_view format, double value,
                        const TFormatSettings& settings = UsFormatSettings);

} // namespace Vz
