#include "tavro/svg/filter/ListInternal.h"

#include "tavro/svg/css/ColorText.h"
#include "tavro/svg/css/SyntaxInternal.h"
#include "tavro/svg/values/Scan.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

/// A function's only argument as a number or a percentage; 1 where it is absent, nothing where it is in
/// error.
std::optional<double> AmountOf(std::string_view text) {
    TScanner scanner{Trimmed(text)};
    if (scanner.AtEnd()) return 1;
    const auto value = scanner.Number();
    const bool percent = scanner.Accept('%');
    if (!value || *value < 0 || !scanner.AtEnd()) return {};
    return percent ? *value / 100 : *value;
}

/// A length in user units; percentages are none.
std::optional<double> LengthOf(std::string_view text, const TLengthBasis& basis) {
    TSVGLength length;
    if (!length.Parse(text) || length.GetUnit() == TSVGUnit::Percent) return {};
    return length.Resolve(TAxis::Other, basis);
}

// The colour functions as matrices (Filter Effects 1, 13).

/// Red, green and blue each times a factor plus a constant.
TColorMatrix ScaledColors(double factor, double constant) {
    TColorMatrix m = IdentityColors();
    for (const std::size_t i : {0u, 6u, 12u})
        m[i] = static_cast<float>(factor);
    for (const std::size_t i : {4u, 9u, 14u})
        m[i] = static_cast<float>(constant);
    return m;
}

TColorMatrix Brightness(double amount) { return ScaledColors(amount, 0); }
TColorMatrix Contrast(double amount) { return ScaledColors(amount, 0.5 - 0.5 * amount); }
TColorMatrix Grayscale(double amount) {
    static constexpr double luma[] = {0.2126, 0.7152, 0.0722};
    TColorMatrix m = IdentityColors();
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t i = 0; i < 3; ++i)
            m[row * 5 + i] = static_cast<float>(luma[i] * amount + (row == i ? 1 - amount : 0));
    return m;
}
TColorMatrix Invert(double amount) { return ScaledColors(1 - 2 * amount, amount); }
TColorMatrix Opacity(double amount) {
    TColorMatrix m = IdentityColors();
    m[18] = static_cast<float>(amount);
    return m;
}
TColorMatrix Sepia(double amount) {
    static constexpr double full[3][3] = {
        {0.393, 0.769, 0.189}, {0.349, 0.686, 0.168}, {0.272, 0.534, 0.131}};
    TColorMatrix m = IdentityColors();
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t i = 0; i < 3; ++i)
            m[row * 5 + i] = static_cast<float>(full[row][i] * amount + (row == i ? 1 - amount : 0));
    return m;
}

struct TColorFunction {
    std::string_view Name;
    TColorMatrix (*Matrix)(double amount);
    bool HasMost; ///< amounts above 1 count as 1
};
constexpr TColorFunction ColorFunctions[] = {
    {"brightness", Brightness, false},
    {"contrast", Contrast, false},
    {"grayscale", Grayscale, true},
    {"invert", Invert, true},
    {"opacity", Opacity, true},
    {"saturate", SaturateColors, false},
    {"sepia", Sepia, true},
};

bool ReadColors(const TColorFunction& function, std::string_view arguments, TFilterItem& item) {
    const auto amount = AmountOf(arguments);
    if (!amount) return false;
    item.Kind = TFilterItem::TKind::Colors;
    item.Matrix = function.Matrix(function.HasMost ? std::min(*amount, 1.0) : *amount);
    return true;
}

bool ReadHueRotate(std::string_view arguments, TFilterItem& item) {
    TScanner scanner{Trimmed(arguments)};
    double angle = 0;
    if (!scanner.AtEnd()) {
        // Only 0 may stand without a unit.
        const bool bare = ParseNumber(arguments).has_value();
        const auto read = scanner.Angle();
        if (!read || !scanner.AtEnd() || (bare && *read != 0)) return false;
        angle = *read;
    }
    item.Kind = TFilterItem::TKind::Colors;
    item.Matrix = HueRotateColors(angle);
    return true;
}

bool ReadBlur(std::string_view arguments, const TLengthBasis& basis, TFilterItem& item) {
    item.Kind = TFilterItem::TKind::Blur;
    if (Trimmed(arguments).empty()) return true;
    const auto sigma = LengthOf(Trimmed(arguments), basis);
    item.Sigma = sigma.value_or(-1);
    return item.Sigma >= 0;
}

/// Two or three lengths in a row, a colour before or behind them.
bool ReadShadow(std::string_view arguments, const TComputedStyle& style, const TLengthBasis& basis,
                TFilterItem& item) {
    item.Kind = TFilterItem::TKind::Shadow;
    item.Color = style.Color;
    double* const lengths[] = {&item.Dx, &item.Dy, &item.Sigma};
    std::size_t count = 0;
    bool colored = false;
    bool closed = false; // lengths, and a colour behind them: nothing more may follow
    for (std::string_view rest = Trimmed(arguments); !rest.empty();) {
        const std::size_t end = FindTopLevel(rest, " \t\n\r\f");
        const std::string_view word = rest.substr(0, end);
        rest = Trimmed(rest.substr(std::min(end, rest.size())));
        if (closed) return false;
        if (const auto length = LengthOf(word, basis)) {
            if (count == std::size(lengths)) return false;
            *lengths[count++] = *length;
            continue;
        }
        const auto color = EqualsNoCase(word, "currentColor") ? style.Color : ParseColor(word);
        if (!color || colored) return false;
        item.Color = *color;
        colored = true;
        closed = count > 0;
    }
    return count >= 2 && item.Sigma >= 0;
}

bool ReadItem(const TScanner::TFunction& function, const TComputedStyle& style, const TLengthBasis& basis,
              TFilterItem& item) {
    if (EqualsNoCase(function.Name, "url")) {
        std::string address;
        if (!ParseUrlContent(function.Arguments, address) || !address.starts_with('#')) return false;
        item.Id = address.substr(1);
        return true;
    }
    if (EqualsNoCase(function.Name, "blur")) return ReadBlur(function.Arguments, basis, item);
    if (EqualsNoCase(function.Name, "drop-shadow")) return ReadShadow(function.Arguments, style, basis, item);
    if (EqualsNoCase(function.Name, "hue-rotate")) return ReadHueRotate(function.Arguments, item);
    const auto at = std::ranges::find_if(
        ColorFunctions, [&](const TColorFunction& row) { return EqualsNoCase(row.Name, function.Name); });
    return at != std::end(ColorFunctions) && ReadColors(*at, function.Arguments, item);
}

} // namespace

std::optional<std::vector<TFilterItem>> ParseFilterList(std::string_view text, const TComputedStyle& style,
                                                        const TLengthBasis& basis) {
    std::vector<TFilterItem> items;
    TScanner scanner{Trimmed(text)};
    while (!scanner.AtEnd()) {
        const auto function = scanner.Function();
        TFilterItem item;
        if (!function || !ReadItem(*function, style, basis, item)) return {};
        items.push_back(std::move(item));
        scanner.SkipBlanks();
    }
    return items;
}

} // namespace Vz
