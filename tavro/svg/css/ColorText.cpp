#include "tavro/svg/css/ColorText.h"

#include "tavro/runtime/Rounding.h"

#include "tavro/svg/values/Scan.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace Vz {
namespace {

struct TNamedColor {
    std::string_view Name;
    TVZGPColor Color;
};

/// The named colours (SVG 1.1, 4.4; CSS Color 4, 6.1), in alphabetical order.
constexpr TNamedColor Names[] = {
    {"aliceblue", 0xFFF0F8FF},
    {"antiquewhite", 0xFFFAEBD7},
    {"aqua", 0xFF00FFFF},
    {"aquamarine", 0xFF7FFFD4},
    {"azure", 0xFFF0FFFF},
    {"beige", 0xFFF5F5DC},
    {"bisque", 0xFFFFE4C4},
    {"black", 0xFF000000},
    {"blanchedalmond", 0xFFFFEBCD},
    {"blue", 0xFF0000FF},
    {"blueviolet", 0xFF8A2BE2},
    {"brown", 0xFFA52A2A},
    {"burlywood", 0xFFDEB887},
    {"cadetblue", 0xFF5F9EA0},
    {"chartreuse", 0xFF7FFF00},
    {"chocolate", 0xFFD2691E},
    {"coral", 0xFFFF7F50},
    {"cornflowerblue", 0xFF6495ED},
    {"cornsilk", 0xFFFFF8DC},
    {"crimson", 0xFFDC143C},
    {"cyan", 0xFF00FFFF},
    {"darkblue", 0xFF00008B},
    {"darkcyan", 0xFF008B8B},
    {"darkgoldenrod", 0xFFB8860B},
    {"darkgray", 0xFFA9A9A9},
    {"darkgreen", 0xFF006400},
    {"darkgrey", 0xFFA9A9A9},
    {"darkkhaki", 0xFFBDB76B},
    {"darkmagenta", 0xFF8B008B},
    {"darkolivegreen", 0xFF556B2F},
    {"darkorange", 0xFFFF8C00},
    {"darkorchid", 0xFF9932CC},
    {"darkred", 0xFF8B0000},
    {"darksalmon", 0xFFE9967A},
    {"darkseagreen", 0xFF8FBC8F},
    {"darkslateblue", 0xFF483D8B},
    {"darkslategray", 0xFF2F4F4F},
    {"darkslategrey", 0xFF2F4F4F},
    {"darkturquoise", 0xFF00CED1},
    {"darkviolet", 0xFF9400D3},
    {"deeppink", 0xFFFF1493},
    {"deepskyblue", 0xFF00BFFF},
    {"dimgray", 0xFF696969},
    {"dimgrey", 0xFF696969},
    {"dodgerblue", 0xFF1E90FF},
    {"firebrick", 0xFFB22222},
    {"floralwhite", 0xFFFFFAF0},
    {"forestgreen", 0xFF228B22},
    {"fuchsia", 0xFFFF00FF},
    {"gainsboro", 0xFFDCDCDC},
    {"ghostwhite", 0xFFF8F8FF},
    {"gold", 0xFFFFD700},
    {"goldenrod", 0xFFDAA520},
    {"gray", 0xFF808080},
    {"green", 0xFF008000},
    {"greenyellow", 0xFFADFF2F},
    {"grey", 0xFF808080},
    {"honeydew", 0xFFF0FFF0},
    {"hotpink", 0xFFFF69B4},
    {"indianred", 0xFFCD5C5C},
    {"indigo", 0xFF4B0082},
    {"ivory", 0xFFFFFFF0},
    {"khaki", 0xFFF0E68C},
    {"lavender", 0xFFE6E6FA},
    {"lavenderblush", 0xFFFFF0F5},
    {"lawngreen", 0xFF7CFC00},
    {"lemonchiffon", 0xFFFFFACD},
    {"lightblue", 0xFFADD8E6},
    {"lightcoral", 0xFFF08080},
    {"lightcyan", 0xFFE0FFFF},
    {"lightgoldenrodyellow", 0xFFFAFAD2},
    {"lightgray", 0xFFD3D3D3},
    {"lightgreen", 0xFF90EE90},
    {"lightgrey", 0xFFD3D3D3},
    {"lightpink", 0xFFFFB6C1},
    {"lightsalmon", 0xFFFFA07A},
    {"lightseagreen", 0xFF20B2AA},
    {"lightskyblue", 0xFF87CEFA},
    {"lightslategray", 0xFF778899},
    {"lightslategrey", 0xFF778899},
    {"lightsteelblue", 0xFFB0C4DE},
    {"lightyellow", 0xFFFFFFE0},
    {"lime", 0xFF00FF00},
    {"limegreen", 0xFF32CD32},
    {"linen", 0xFFFAF0E6},
    {"magenta", 0xFFFF00FF},
    {"maroon", 0xFF800000},
    {"mediumaquamarine", 0xFF66CDAA},
    {"mediumblue", 0xFF0000CD},
    {"mediumorchid", 0xFFBA55D3},
    {"mediumpurple", 0xFF9370DB},
    {"mediumseagreen", 0xFF3CB371},
    {"mediumslateblue", 0xFF7B68EE},
    {"mediumspringgreen", 0xFF00FA9A},
    {"mediumturquoise", 0xFF48D1CC},
    {"mediumvioletred", 0xFFC71585},
    {"midnightblue", 0xFF191970},
    {"mintcream", 0xFFF5FFFA},
    {"mistyrose", 0xFFFFE4E1},
    {"moccasin", 0xFFFFE4B5},
    {"navajowhite", 0xFFFFDEAD},
    {"navy", 0xFF000080},
    {"oldlace", 0xFFFDF5E6},
    {"olive", 0xFF808000},
    {"olivedrab", 0xFF6B8E23},
    {"orange", 0xFFFFA500},
    {"orangered", 0xFFFF4500},
    {"orchid", 0xFFDA70D6},
    {"palegoldenrod", 0xFFEEE8AA},
    {"palegreen", 0xFF98FB98},
    {"paleturquoise", 0xFFAFEEEE},
    {"palevioletred", 0xFFDB7093},
    {"papayawhip", 0xFFFFEFD5},
    {"peachpuff", 0xFFFFDAB9},
    {"peru", 0xFFCD853F},
    {"pink", 0xFFFFC0CB},
    {"plum", 0xFFDDA0DD},
    {"powderblue", 0xFFB0E0E6},
    {"purple", 0xFF800080},
    {"rebeccapurple", 0xFF663399},
    {"red", 0xFFFF0000},
    {"rosybrown", 0xFFBC8F8F},
    {"royalblue", 0xFF4169E1},
    {"saddlebrown", 0xFF8B4513},
    {"salmon", 0xFFFA8072},
    {"sandybrown", 0xFFF4A460},
    {"seagreen", 0xFF2E8B57},
    {"seashell", 0xFFFFF5EE},
    {"sienna", 0xFFA0522D},
    {"silver", 0xFFC0C0C0},
    {"skyblue", 0xFF87CEEB},
    {"slateblue", 0xFF6A5ACD},
    {"slategray", 0xFF708090},
    {"slategrey", 0xFF708090},
    {"snow", 0xFFFFFAFA},
    {"springgreen", 0xFF00FF7F},
    {"steelblue", 0xFF4682B4},
    {"tan", 0xFFD2B48C},
    {"teal", 0xFF008080},
    {"thistle", 0xFFD8BFD8},
    {"tomato", 0xFFFF6347},
    {"transparent", 0x00000000},
    {"turquoise", 0xFF40E0D0},
    {"violet", 0xFFEE82EE},
    {"wheat", 0xFFF5DEB3},
    {"white", 0xFFFFFFFF},
    {"whitesmoke", 0xFFF5F5F5},
    {"yellow", 0xFFFFFF00},
    {"yellowgreen", 0xFF9ACD32},
};
static_assert(std::is_sorted(std::begin(Names), std::end(Names),
                             [](const TNamedColor& a, const TNamedColor& b) { return a.Name < b.Name; }));

std::optional<TVZGPColor> NamedColor(std::string_view text) {
    if (text.size() > 20) return std::nullopt;
    const std::string name = ToLowerText(text);
    const auto* found =
        std::lower_bound(std::begin(Names), std::end(Names), std::string_view(name),
                         [](const TNamedColor& row, std::string_view key) { return row.Name < key; });
    if (found == std::end(Names) || found->Name != name) return std::nullopt;
    return found->Color;
}

/// #rgb, #rgba, #rrggbb or #rrggbbaa, without the sign.
std::optional<TVZGPColor> HexColor(std::string_view digits) {
    const bool isShort = digits.size() == 3 || digits.size() == 4;
    if (!isShort && digits.size() != 6 && digits.size() != 8) return std::nullopt;
    const std::size_t step = isShort ? 1 : 2;
    std::array<unsigned, 4> parts{0, 0, 0, 255};
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const char c = ToLower(digits[i]);
        const bool isLetter = c >= 'a' && c <= 'f';
        if (!isLetter && !IsDigit(c)) return std::nullopt;
        const unsigned digit = static_cast<unsigned>(isLetter ? c - 'a' + 10 : c - '0');
        unsigned& part = parts[i / step];
        part = isShort ? digit * 17 : i % 2 == 0 ? digit * 16 : part + digit;
    }
    return MakeColor(parts[3], parts[0], parts[1], parts[2]);
}

/// A value of 0..1 as a byte.
unsigned ByteOf(double share) {
    return static_cast<unsigned>(RoundHalfEven(std::clamp(share, 0.0, 1.0) * 255));
}

/// A number, divided by whole, or a percentage, as a share of one.
std::optional<double> Share(TScanner& scanner, double whole) {
    const auto value = scanner.Number();
    if (!value) return std::nullopt;
    return scanner.Accept('%') ? *value / 100 : *value / whole;
}

std::optional<double> ByteShare(TScanner& scanner) { return Share(scanner, 255); }

/// True where some of the three parts before the alpha are percentages and some are not.
bool MixesPercentages(std::string_view arguments) {
    int parts = 0;
    int percentages = 0;
    while (parts < 3 && !arguments.empty()) {
        const std::size_t comma = std::min(arguments.find(','), arguments.size());
        percentages += Trimmed(arguments.substr(0, comma)).ends_with('%');
        ++parts;
        arguments.remove_prefix(std::min(comma + 1, arguments.size()));
    }
    return percentages > 0 && percentages < parts;
}
/// Saturation and lightness; without a sign they count in per cent too (CSS Color 4, 7).
std::optional<double> PercentShare(TScanner& scanner) { return Share(scanner, 100); }
std::optional<double> AlphaShare(TScanner& scanner) { return Share(scanner, 1); }

/// The arguments of rgb() or hsl(): three parts, then perhaps an alpha behind a comma, a slash or blanks.
struct TParts {
    std::array<double, 3> Value{};
    double Alpha = 1;
};
using TPartReader = std::optional<double> (*)(TScanner&);

std::optional<TParts> ReadParts(std::string_view arguments, const std::array<TPartReader, 3>& readers) {
    TScanner scanner{Trimmed(arguments)};
    TParts parts;
    for (std::size_t i = 0; i < readers.size(); ++i) {
        if (i > 0) scanner.SkipCommaBlanks();
        const auto value = readers[i](scanner);
        if (!value) return std::nullopt;
        parts.Value[i] = *value;
    }
    scanner.SkipBlanks();
    if (scanner.AtEnd()) return parts;
    if (scanner.Accept('/'))
        scanner.SkipBlanks();
    else
        scanner.SkipCommaBlanks();
    const auto alpha = AlphaShare(scanner);
    if (!alpha || !scanner.AtEnd()) return std::nullopt;
    parts.Alpha = *alpha;
    return parts;
}

std::optional<TVZGPColor> RgbColor(std::string_view arguments) {
    const auto parts = ReadParts(arguments, {ByteShare, ByteShare, ByteShare});
    // With commas all three are numbers or all three are percentages (CSS Color 4, 5.1).
    const bool hasCommas = arguments.find(',') != std::string_view::npos;
    if (!parts || (hasCommas && MixesPercentages(arguments))) return std::nullopt;
    const auto& [red, green, blue] = parts->Value;
    return MakeColor(ByteOf(parts->Alpha), ByteOf(red), ByteOf(green), ByteOf(blue));
}

std::optional<double> Hue(TScanner& scanner) { return scanner.Angle(); }

/// CSS Color 4, 7.1.
std::optional<TVZGPColor> HslColor(std::string_view arguments) {
    const auto parts = ReadParts(arguments, {Hue, PercentShare, PercentShare});
    if (!parts) return std::nullopt;
    const double hue = std::fmod(std::fmod(parts->Value[0], 360) + 360, 360);
    const double saturation = std::clamp(parts->Value[1], 0.0, 1.0);
    const double lightness = std::clamp(parts->Value[2], 0.0, 1.0);
    const double range = saturation * std::min(lightness, 1 - lightness);
    const auto channel = [&](double offset) {
        const double k = std::fmod(offset + hue / 30, 12);
        return ByteOf(lightness - range * std::max(-1.0, std::min({k - 3, 9 - k, 1.0})));
    };
    return MakeColor(ByteOf(parts->Alpha), channel(0), channel(8), channel(4));
}

} // namespace

std::optional<TVZGPColor> ParseColor(std::string_view text) {
    TScanner scanner{Trimmed(text)};
    if (scanner.Accept('#')) return HexColor(scanner.Text);
    const auto function = scanner.Function();
    if (!function) return NamedColor(scanner.Text);
    if (!scanner.AtEnd()) return std::nullopt;
    if (EqualsNoCase(function->Name, "rgb") || EqualsNoCase(function->Name, "rgba"))
        return RgbColor(function->Arguments);
    if (EqualsNoCase(function->Name, "hsl") || EqualsNoCase(function->Name, "hsla"))
        return HslColor(function->Arguments);
    return std::nullopt;
}

std::string ColorText(TVZGPColor color) {
    constexpr std::string_view Digits = "0123456789abcdef";
    std::string text = "#";
    for (int shift = 20; shift >= 0; shift -= 4)
        text += Digits[color >> shift & 15];
    return text;
}

} // namespace Vz
