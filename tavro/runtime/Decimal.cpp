#include "tavro/runtime/DecimalInternal.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace Vz {

namespace {

/// Takes apart `-d.ddde+xx`, as to_chars writes it.
TDecimal FromScientific(const char* at, const char* end) {
    TDecimal decimal;
    if (*at == '-') {
        decimal.Negative = true;
        ++at;
    }
    for (; at != end && *at != 'e'; ++at)
        if (*at != '.') decimal.Digits += *at;
    if (at != end) {
        ++at; // e
        if (*at == '+') ++at;
        std::from_chars(at, end, decimal.Exponent);
    }
    ++decimal.Exponent;
    decimal.Digits.erase(decimal.Digits.find_last_not_of('0') + 1);
    if (decimal.Digits.empty()) decimal.Exponent = 0;
    return decimal;
}

TDecimal FromWhole(std::int64_t value) {
    TDecimal decimal;
    decimal.Negative = value < 0;
    decimal.Digits = std::to_string(value < 0 ? -value : value);
    decimal.Exponent = static_cast<int>(decimal.Digits.size());
    decimal.Digits.erase(decimal.Digits.find_last_not_of('0') + 1);
    return decimal;
}

template <class... A> TDecimal Convert(A... arguments) {
    std::array<char, 128> text;
    const auto result = std::to_chars(text.data(), text.data() + text.size(), arguments...);
    return FromScientific(text.data(), result.ptr);
}

} // namespace

TDecimal ShortestDecimal(float value) { return Convert(value, std::chars_format::scientific); }
TDecimal ShortestDecimal(double value) { return Convert(value, std::chars_format::scientific); }
TDecimal RoundedDecimal(double value, int digits) {
    // Whole numbers, which scales are mostly numbered by, have no digits to be found out.
    constexpr double wholeLimit = 1e15;
    constexpr int wholeDigits = 15;
    if (digits >= wholeDigits && value != 0 && std::abs(value) < wholeLimit && std::trunc(value) == value)
        return FromWhole(static_cast<std::int64_t>(value));
    return Convert(value, std::chars_format::scientific, digits - 1);
}

void RoundDigits(TDecimal& decimal, int count) {
    std::string& digits = decimal.Digits;
    if (count >= static_cast<int>(digits.size())) return;
    const bool up = count >= 0 && digits[static_cast<std::size_t>(count)] >= '5';
    digits.erase(count < 0 ? 0 : static_cast<std::size_t>(count));
    if (up) {
        while (!digits.empty() && digits.back() == '9')
            digits.pop_back();
        if (digits.empty()) {
            digits = "1";
            ++decimal.Exponent;
        } else {
            ++digits.back();
        }
    }
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.empty()) decimal.Exponent = 0;
}

std::string FixedText(const TDecimal& decimal, char point) {
    std::string text = decimal.Negative ? "-" : "";
    const std::string& digits = decimal.Digits;
    const int size = static_cast<int>(digits.size());
    if (decimal.Exponent <= 0) {
        text += '0';
        if (size == 0) return text;
        text += point;
        return text.append(static_cast<std::size_t>(-decimal.Exponent), '0') + digits;
    }
    if (size <= decimal.Exponent)
        return (text + digits).append(static_cast<std::size_t>(decimal.Exponent - size), '0');
    const auto whole = static_cast<std::size_t>(decimal.Exponent);
    return text + digits.substr(0, whole) + point + digits.substr(whole);
}

std::string ScientificText(const TDecimal& decimal, char point, char exponentMark) {
    std::string text = decimal.Negative ? "-" : "";
    if (decimal.Digits.empty()) return text + '0';
    text += decimal.Digits.front();
    if (decimal.Digits.size() > 1) text += point + decimal.Digits.substr(1);
    return text + exponentMark + std::to_string(decimal.Exponent - 1);
}

} // namespace Vz
