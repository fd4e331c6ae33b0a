#include "tavro/runtime/PropText.h"

#include "tavro/runtime/DecimalInternal.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Utf8.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace Vz {

namespace {

// Numbers

template <class T> std::string FiniteToText(T value) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-INF" : "INF";
    const TDecimal decimal = ShortestDecimal(value);
    const bool plain = decimal.Exponent > -5 && decimal.Exponent <= 15;
    return plain ? FixedText(decimal, '.') : ScientificText(decimal, '.', 'e');
}

[[noreturn]] void Fail(std::string_view text, const std::string& expected) {
    throw EConvertError(QuotedForMessage(text) + " is not " + expected);
}

[[noreturn]] void FailRange(std::string_view text, const std::string& range) {
    throw EConvertError(QuotedForMessage(text) + " lies outside " + range);
}

/// True when from_chars took the whole text.
bool IsWhole(std::string_view text, const std::from_chars_result& result) {
    return !text.empty() && result.ptr == text.data() + text.size() &&
           result.ec != std::errc::invalid_argument;
}

/// Of a number's text that no float can hold: true when that is because it lies too near to zero.
bool IsTooSmall(std::string_view text) {
    const std::size_t mark = std::min(text.find_first_of("eE"), text.size());
    const std::string_view mantissa = text.substr(0, mark);
    const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
    const auto first = static_cast<std::int64_t>(mantissa.find_first_of("123456789"));
    std::string_view exponentText = text.substr(std::min(mark + 1, text.size()));
    if (exponentText.starts_with('+')) exponentText.remove_prefix(1);
    std::int32_t exponent = 0;
    const auto result =
        std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
    if (result.ec == std::errc::result_out_of_range) return exponentText.front() == '-';
    return point - first + exponent < 0;
}

template <class T> std::optional<T> ReadFloat(std::string_view text) {
    T value{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    // from_chars knows words for what is not finite; a property has no use for them.
    const bool number = text.find_first_not_of("0123456789.eE+-") == std::string_view::npos;
    if (!number || !IsWhole(text, result)) return std::nullopt;
    if (result.ec != std::errc::result_out_of_range) return value;
    if (IsTooSmall(text)) return std::copysign(T{0}, text.front() == '-' ? T{-1} : T{1});
    FailRange(text, sizeof(T) == sizeof(float) ? "the range of a single" : "the range of a double");
}

TValue ReadInteger(const TValueType& type, std::string_view text) {
    std::int64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (!IsWhole(text, result)) Fail(text, "an integer");
    if (result.ec == std::errc::result_out_of_range || value < type.Min || value > type.Max)
        FailRange(text, std::to_string(type.Min) + ".." + std::to_string(type.Max));
    return TValue(std::in_place_type<std::int64_t>, value);
}

template <class T> TValue ReadNumber(std::string_view text) {
    if (const auto value = ReadFloat<T>(text)) return TValue(std::in_place_type<T>, *value);
    Fail(text, "a number");
}

TValue ReadBool(std::string_view text) {
    if (text != "true" && text != "false") Fail(text, "true or false");
    return TValue(std::in_place_type<bool>, text == "true");
}

// Colours, enumerations, sets

std::string ColorToText(std::uint32_t argb) {
    constexpr char Digits[] = "0123456789ABCDEF";
    std::string text = "0x";
    for (int shift = 28; shift >= 0; shift -= 4)
        text += Digits[(argb >> shift) & 15];
    return text;
}

TValue ReadColor(std::string_view text) {
    std::uint32_t argb = 0;
    const bool prefixed = text.size() == 10 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const std::string_view digits = prefixed ? text.substr(2) : std::string_view();
    if (!IsWhole(digits, std::from_chars(digits.data(), digits.data() + digits.size(), argb, 16)))
        Fail(text, "a colour (0xAARRGGBB)");
    return TValue(std::in_place_type<TColorValue>, TColorValue{argb});
}

std::string MemberName(const TEnumType& type, int ordinal) {
    const bool known = ordinal >= 0 && ordinal < static_cast<int>(type.Members.size());
    return known ? std::string(type.Members[static_cast<std::size_t>(ordinal)]) : std::to_string(ordinal);
}

int FindMember(const TEnumType& type, std::string_view name) {
    for (std::size_t i = 0; i < type.Members.size(); ++i)
        if (type.Members[i] == name) return static_cast<int>(i);
    std::string expected = "a member of " + std::string(type.Name) + " (";
    for (const std::string_view member : type.Members)
        expected.append(member).append(", ");
    expected.replace(expected.size() - 2, 2, ")");
    Fail(name, expected);
}

std::string SetToText(const TSetValue& set) {
    std::string text = "[";
    for (int i = 0; i < 32; ++i)
        if ((set.Mask >> i) & 1) text += (text.size() > 1 ? ", " : "") + MemberName(*set.Type, i);
    return text + "]";
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view Blank = " \t\r\n";
    const std::size_t first = text.find_first_not_of(Blank);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(Blank) - first + 1);
}

TValue ReadSet(const TEnumType& type, std::string_view text) {
    if (text.size() < 2 || text.front() != '[' || text.back() != ']') Fail(text, "a set ([one, two])");
    TSetValue set{&type, 0};
    std::string_view rest = Trimmed(text.substr(1, text.size() - 2));
    while (!rest.empty()) {
        const std::size_t comma = rest.find(',');
        set.Mask |= std::uint32_t{1} << FindMember(type, Trimmed(rest.substr(0, comma)));
        if (comma == std::string_view::npos) break;
        rest = Trimmed(rest.substr(comma + 1));
        if (rest.empty()) Fail(text, "a set ([one, two])");
    }
    return TValue(std::in_place_type<TSetValue>, set);
}

// Date and time

std::string Padded(int number, int width) {
    std::string text = std::to_string(number);
    return std::string(static_cast<std::size_t>(std::max(0, width - static_cast<int>(text.size()))), '0') +
           text;
}

/// Takes between `least` and `most` digits off the front of `text`; counts them, -1 where there are too few.
int TakeDigits(std::string_view& text, int least, int most, int& number) {
    int count = 0;
    number = 0;
    while (count < most && !text.empty() && text.front() >= '0' && text.front() <= '9') {
        number = number * 10 + (text.front() - '0');
        text.remove_prefix(1);
        ++count;
    }
    return count < least ? -1 : count;
}

bool TakeChar(std::string_view& text, char c) {
    if (text.empty() || text.front() != c) return false;
    text.remove_prefix(1);
    return true;
}

bool TakeDate(std::string_view& text, TDate& date) {
    return TakeDigits(text, 4, 4, date.Year) > 0 && TakeChar(text, '-') &&
           TakeDigits(text, 2, 2, date.Month) > 0 && TakeChar(text, '-') &&
           TakeDigits(text, 2, 2, date.Day) > 0;
}

bool TakeTime(std::string_view& text, TTimeOfDay& time) {
    if (TakeDigits(text, 2, 2, time.Hour) < 0 || !TakeChar(text, ':') ||
        TakeDigits(text, 2, 2, time.Minute) < 0)
        return false;
    if (!TakeChar(text, ':')) return true;
    if (TakeDigits(text, 2, 2, time.Second) < 0) return false;
    if (!TakeChar(text, '.')) return true;
    const int digits = TakeDigits(text, 1, 3, time.MSec);
    for (int i = digits; i > 0 && i < 3; ++i)
        time.MSec *= 10;
    return digits > 0;
}

} // namespace

std::string FloatToText(float value) { return FiniteToText(value); }
std::string FloatToText(double value) { return FiniteToText(value); }

std::string DateTimeToText(TDateTime value) {
    if (!IsValidDateTime(value)) return FloatToText(value.Days);
    const TDate date = DecodeDate(value);
    const TTimeOfDay time = DecodeTime(value);
    const bool hasDate = date != TDate{};
    std::string text;
    if (hasDate) text = Padded(date.Year, 4) + '-' + Padded(date.Month, 2) + '-' + Padded(date.Day, 2);
    if (hasDate && time == TTimeOfDay{}) return text;
    if (hasDate) text += 'T';
    text += Padded(time.Hour, 2) + ':' + Padded(time.Minute, 2) + ':' + Padded(time.Second, 2);
    return time.MSec == 0 ? text : text + '.' + Padded(time.MSec, 3);
}

TDateTime TextToDateTime(std::string_view text) {
    constexpr char Expected[] = "a date and time (2026-03-15T15:30:45)";
    TDate date;
    TTimeOfDay time;
    std::string_view rest = text;
    bool known = TakeDate(rest, date);
    if (known) {
        known = rest.empty() || (TakeChar(rest, 'T') && TakeTime(rest, time));
    } else {
        rest = text;
        date = {};
        known = TakeTime(rest, time);
    }
    try {
        if (known && rest.empty()) return EncodeDateTime(date, time);
    } catch (const EConvertError& error) {
        Fail(text, std::string(Expected) + ": " + error.GetReason());
    }
    const auto days = ReadFloat<double>(text);
    if (!days) Fail(text, Expected);
    if (!IsValidDateTime(*days)) FailRange(text, "the years 1 to 9999");
    return *days;
}

std::string ItemsToText(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items) {
        if (&item != &items.front()) text += "\\n";
        for (const char c : item)
            text += c == '\\' ? std::string("\\\\") : std::string(1, c);
    }
    return text;
}

std::vector<std::string> TextToItems(std::string_view text) {
    std::vector<std::string> items;
    if (text.empty()) return items;
    items.emplace_back();
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            items.back() += text[i];
            continue;
        }
        const char escaped = ++i < text.size() ? text[i] : '\0';
        if (escaped == 'n')
            items.emplace_back();
        else if (escaped == '\\')
            items.back() += '\\';
        else
            Fail(text, "a list of strings: a backslash is followed by n or another backslash");
    }
    return items;
}

std::string ValueToText(const TValue& value) {
    struct TWriter {
        std::string operator()(std::monostate) const { return {}; }
        std::string operator()(bool flag) const { return flag ? "true" : "false"; }
        std::string operator()(std::int64_t number) const { return std::to_string(number); }
        std::string operator()(float number) const { return FloatToText(number); }
        std::string operator()(double number) const { return FloatToText(number); }
        std::string operator()(TColorValue color) const { return ColorToText(color.Argb); }
        std::string operator()(TEnumValue member) const { return MemberName(*member.Type, member.Ordinal); }
        std::string operator()(TSetValue set) const { return SetToText(set); }
        std::string operator()(TDateTime time) const { return DateTimeToText(time); }
        std::string operator()(std::string_view text) const { return std::string(text); }
    };
    return std::visit(TWriter{}, value);
}

bool CanReadBack(const TValue& value) {
    struct TCheck {
        bool operator()(std::monostate) const { return false; }
        bool operator()(bool) const { return true; }
        bool operator()(std::int64_t) const { return true; }
        bool operator()(float number) const { return std::isfinite(number); }
        bool operator()(double number) const { return std::isfinite(number); }
        bool operator()(TColorValue) const { return true; }
        bool operator()(TEnumValue member) const {
            return member.Ordinal >= 0 && member.Ordinal < static_cast<int>(member.Type->Members.size());
        }
        bool operator()(TSetValue set) const {
            const std::size_t count = set.Type->Members.size();
            return count >= 32 || set.Mask >> count == 0;
        }
        bool operator()(TDateTime time) const { return IsValidDateTime(time); }
        bool operator()(std::string_view text) const { return FindBadUtf8(text) == std::string_view::npos; }
    };
    return std::visit(TCheck{}, value);
}

TValue TextToValue(const TValueType& type, std::string_view text) {
    switch (type.Kind) {
    case TValueKind::Boolean:
        return ReadBool(text);
    case TValueKind::Integer:
        return ReadInteger(type, text);
    case TValueKind::Single:
        return ReadNumber<float>(text);
    case TValueKind::Double:
        return ReadNumber<double>(text);
    case TValueKind::Color:
        return ReadColor(text);
    case TValueKind::Enumeration:
        return TValue(std::in_place_type<TEnumValue>,
                      TEnumValue{type.Members, FindMember(*type.Members, text)});
    case TValueKind::Set:
        return ReadSet(*type.Members, text);
    case TValueKind::DateTime:
        return TValue(std::in_place_type<TDateTime>, TextToDateTime(text));
    case TValueKind::Text:
        if (FindBadUtf8(text) != std::string_view::npos) Fail(text, "well-formed UTF-8");
        return TValue(std::in_place_type<std::string_view>, text);
    default:
        Fail(text, "a value that a property of this kind can have");
    }
}

} // namespace Vz
