#include "tavro/svg/values/Scan.h"

#include "tavro/graphics/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <numbers>

namespace Vz {
namespace {

constexpr double SingleMax = std::numeric_limits<float>::max();

template <class T>
bool ParseList(std::string_view text, std::vector<T>& items, std::size_t limit,
               std::optional<T> (TScanner::*read)()) {
    TScanner scanner{Trimmed(text)};
    for (std::size_t count = 0; !scanner.AtEnd(); ++count) {
        if (count == limit) return false;
        const auto item = (scanner.*read)();
        if (!item) return false;
        items.push_back(*item);
        if (scanner.SkipCommaBlanks() && scanner.AtEnd()) return false;
    }
    return true;
}

} // namespace

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && StartsWithNoCase(a, b);
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(),
                      [](char a, char b) { return ToLower(a) == ToLower(b); });
}

std::string ToLowerText(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), ToLower);
    return lower;
}

bool TScanner::SkipBlanks() {
    const std::size_t before = Text.size();
    while (!Text.empty() && IsBlank(Text.front()))
        Text.remove_prefix(1);
    return Text.size() != before;
}

bool TScanner::SkipCommaBlanks() {
    SkipBlanks();
    const bool comma = Accept(',');
    if (comma) SkipBlanks();
    return comma;
}

bool TScanner::Accept(char c) {
    if (Text.empty() || Text.front() != c) return false;
    Text.remove_prefix(1);
    return true;
}

std::optional<double> TScanner::Number() {
    double value = 0;
    const char* const end = ScanNumber(Text.data(), Text.data() + Text.size(), value);
    const auto length = static_cast<std::size_t>(end - Text.data());
    if (length == 0 || !(std::fabs(value) <= SingleMax)) return std::nullopt;
    Text.remove_prefix(length);
    return value == 0 ? 0 : value; // no negative zero
}

std::optional<double> TScanner::Angle() {
    struct TUnit {
        std::string_view Name;
        double Degrees;
    };
    static constexpr TUnit Units[] = {
        {"", 1}, {"deg", 1}, {"rad", 180 / std::numbers::pi}, {"grad", 0.9}, {"turn", 360},
    };
    TScanner rest{Text};
    const auto value = rest.Number();
    if (!value) return std::nullopt;
    const std::string_view unit = rest.Unit();
    for (const TUnit& row : Units) {
        if (!EqualsNoCase(unit, row.Name)) continue;
        const double degrees = *value * row.Degrees;
        if (std::fabs(degrees) > SingleMax) return std::nullopt;
        Text = rest.Text;
        return degrees;
    }
    return std::nullopt;
}

std::optional<TSVGLength> TScanner::Length() {
    TScanner rest{Text};
    if (!rest.Number()) return std::nullopt;
    rest.Unit();
    TSVGLength length;
    if (!length.Parse(Text.substr(0, Text.size() - rest.Text.size()))) return std::nullopt;
    Text = rest.Text;
    return length;
}

std::string_view TScanner::Unit() {
    std::size_t length = Peek() == '%' ? 1 : 0;
    while (Peek() != '%' && length < Text.size() && IsLetter(Text[length]))
        ++length;
    const std::string_view unit = Text.substr(0, length);
    Text.remove_prefix(length);
    return unit;
}

std::string_view TScanner::Word() {
    if (Text.empty() || IsDigit(Text.front())) return {};
    std::size_t length = 0;
    while (length < Text.size() && IsNameChar(Text[length]))
        ++length;
    const std::string_view word = Text.substr(0, length);
    Text.remove_prefix(length);
    return word;
}

std::optional<TScanner::TFunction> TScanner::Function(bool blanksAllowed) {
    TScanner rest{Text};
    const std::string_view name = rest.Word();
    if (blanksAllowed) rest.SkipBlanks();
    if (name.empty() || !rest.Accept('(')) return std::nullopt;

    const std::string_view inside = rest.Text;
    for (int depth = 1; !rest.AtEnd();) {
        const char c = rest.Peek();
        if ((c == '"' || c == '\'') && rest.Quoted()) continue;
        rest.Text.remove_prefix(1);
        if (c == '\\' && !rest.AtEnd()) rest.Text.remove_prefix(1);
        if (c == '(') ++depth;
        if (c == ')' && --depth == 0) {
            Text = rest.Text;
            return TFunction{name, inside.substr(0, inside.size() - rest.Text.size() - 1)};
        }
    }
    return std::nullopt;
}

std::optional<std::string_view> TScanner::Quoted() {
    const char quote = Peek();
    if (quote != '"' && quote != '\'') return std::nullopt;
    for (std::size_t i = 1; i < Text.size(); ++i) {
        if (Text[i] == '\\')
            ++i;
        else if (Text[i] == '\n')
            return std::nullopt;
        else if (Text[i] == quote) {
            const std::string_view inside = Text.substr(1, i - 1);
            Text.remove_prefix(i + 1);
            return inside;
        }
    }
    return std::nullopt;
}

std::optional<double> ParseNumber(std::string_view text) {
    TScanner scanner{Trimmed(text)};
    const auto value = scanner.Number();
    return scanner.AtEnd() ? value : std::nullopt;
}

bool ParseNumbers(std::string_view text, std::vector<double>& numbers, std::size_t limit) {
    return ParseList(text, numbers, limit, &TScanner::Number);
}

bool ParseLengthList(std::string_view text, std::vector<TSVGLength>& lengths, std::size_t limit) {
    return ParseList(text, lengths, limit, &TScanner::Length);
}

std::string NumberText(double value) {
    if (!std::isfinite(value) || value == 0) return "0";
    char text[40];
    const bool isSingle =
        std::fabs(value) <= SingleMax && static_cast<double>(static_cast<float>(value)) == value;
    const auto result = isSingle ? std::to_chars(text, text + sizeof text, static_cast<float>(value))
                                 : std::to_chars(text, text + sizeof text, value);
    return {text, result.ptr};
}

} // namespace Vz
