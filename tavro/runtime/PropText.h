#pragma once

#include "tavro/runtime/Value.h"

#include <string>
#include <string_view>
#include <vector>

namespace Vz {

// Values as texts, as the command line, form files and hosts write and read them. No locale has a say in any
// of it.

/// The value's text:
///   integers in decimal; singles and doubles by the fewest digits that read back to the same number (`42`,
///   `-1.5`, `3.4028235e38`; with an exponent below 0.00001 and from 1e15 on); `true`, `false`; colours as
///   `0xAARRGGBB`, upper case; an enumeration's member by its name; sets as `[spFrame, spGlass]`, by ordinal;
///   texts as they are; date and time as DateTimeToText. No value gives an empty text.
/// What cannot be read back (CanReadBack) still has a text to look at: `NaN`, `INF`, `-INF`, a member's
/// ordinal.
std::string ValueToText(const TValue& value);

/// True when TextToValue reads the value's text back: the number is finite, the date in range, the members
/// have names, the text is well-formed UTF-8.
bool CanReadBack(const TValue& value);

/// Reads a text as a value of one of the plain kinds (Boolean to Text). Names and case are exact, blanks are
/// allowed inside a set only, numbers take no plus sign in front. Raises EConvertError quoting the text when
/// it cannot be read or lies outside the type's range. A value of kind Text is a view of `text`.
TValue TextToValue(const TValueType& type, std::string_view text);

std::string FloatToText(float value);
std::string FloatToText(double value);

/// `2026-03-15T15:30:45.250`: the milliseconds only where there are any, the time only where it is not
/// midnight, the date only where it is not 1899-12-30 (day 0); so `15:30:45`, and `00:00:00` for 0. A value
/// outside the years 1 to 9999 gives its number of days.
std::string DateTimeToText(TDateTime value);
/// Reads what DateTimeToText writes, a time without seconds (`15:30`), one to three digits of milliseconds,
/// and a plain number of days. Raises EConvertError quoting the text.
TDateTime TextToDateTime(std::string_view text);

/// The items joined by `\n` (a backslash and an n), a backslash in them doubled. A list of one empty item has
/// the same text as an empty list.
std::string ItemsToText(const std::vector<std::string>& items);
/// Reads what ItemsToText writes; an empty text is an empty list. Raises EConvertError for a backslash before
/// anything else, or at the end.
std::vector<std::string> TextToItems(std::string_view text);

} // namespace Vz
