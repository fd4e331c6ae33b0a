#pragma once

#include "tavro/svg/values/Types.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Vz {

/// True for the blanks of CSS and SVG: space, tab, line feed, carriage return, form feed.
constexpr bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
/// The character in lower case; only A to Z have another one.
constexpr char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

/// True for what a name may hold: letters, digits, '-', '_' and every byte of a character beyond ASCII.
constexpr bool IsNameChar(char c) {
    return IsLetter(c) || IsDigit(c) || c == '-' || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}
/// The text without the blanks at its ends.
std::string_view Trimmed(std::string_view text);
/// True where the texts are equal but for the case of A to Z.
bool EqualsNoCase(std::string_view a, std::string_view b);
/// True where text begins with prefix, but for the case of A to Z.
bool StartsWithNoCase(std::string_view text, std::string_view prefix);
std::string ToLowerText(std::string_view text);

/// Reads a text from its front. Each step takes off what it read and leaves the text as it was where it
/// failed.
struct TScanner {
    /// A function as it stands: its name, and what lies between the brackets.
    struct TFunction {
        std::string_view Name;
        std::string_view Arguments;
    };

    /// What is still to be read.
    std::string_view Text;

    bool AtEnd() const { return Text.empty(); }
    /// The next character; '\0' at the end.
    char Peek() const { return Text.empty() ? '\0' : Text.front(); }
    /// Skips blanks; true where there were any.
    bool SkipBlanks();
    /// Skips blanks with at most one comma among them; true where there was the comma.
    bool SkipCommaBlanks();
    /// Takes the character where it comes next.
    bool Accept(char c);
    /// A number with optional sign, fraction and exponent, independent of the locale. ".5", "+.5" and "5."
    /// are taken; an "e" without digits behind it is left, so that units can follow. Nothing where there is
    /// no number, or where its value lies beyond single precision; a value too small for it counts as zero.
    std::optional<double> Number();
    /// A number with an optional unit of angles (deg, rad, grad, turn), in degrees; without unit it is in
    /// degrees.
    std::optional<double> Angle();
    /// A number with an optional unit.
    std::optional<TSVGLength> Length();
    /// Letters only, or a '%': what may follow a number as its unit; empty where none comes.
    std::string_view Unit();
    /// Letters, digits, '-', '_' and all beyond ASCII; empty where none comes. It does not begin with a
    /// digit.
    std::string_view Word();
    /// A name, an opening bracket without blanks before it unless blanksAllowed, and all up to its closing
    /// bracket; brackets within count, strings are passed over.
    std::optional<TFunction> Function(bool blanksAllowed = false);
    /// A text in single or double quotes, without them; escapes stay as they are.
    std::optional<std::string_view> Quoted();
};

/// The number that is the whole text but for blanks at its ends.
std::optional<double> ParseNumber(std::string_view text);
/// Appends the numbers of a list separated by blanks or single commas, at most limit of them. False where
/// something else stands in it; what was read before it has been appended.
bool ParseNumbers(std::string_view text, std::vector<double>& numbers, std::size_t limit = 10'000'000);
/// Likewise for lengths.
bool ParseLengthList(std::string_view text, std::vector<TSVGLength>& lengths, std::size_t limit = 10'000'000);
/// The shortest text that reads back to the same value: in single precision where single precision holds it
/// exactly, else in double. A value that is not finite gives "0".
std::string NumberText(double value);

} // namespace Vz
