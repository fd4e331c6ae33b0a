#include "tavro/graphics/NumberText.h"

#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>

namespace Vz {
namespace {

constexpr double PowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                  1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// The digits of a number, as far as they can be had exactly.
struct TDecimal {
    std::uint64_t Digits = 0; ///< exact for the first 19 of them
    std::ptrdiff_t Count = 0; ///< digits seen, leading zeros included
    long Exponent = 0;        ///< of ten
};

const char* ScanDigits(const char* p, const char* last, TDecimal& decimal) {
    const char* const first = p;
    std::uint64_t digits = decimal.Digits;
    for (; p != last && IsDigit(*p); ++p)
        digits = digits * 10 + static_cast<std::uint64_t>(*p - '0');
    decimal.Digits = digits;
    decimal.Count += p - first;
    return p;
}

/// The exponent part, where one is complete; else stays ("1em" is the number 1).
const char* ScanExponent(const char* p, const char* last, TDecimal& decimal) {
    const char* q = p;
    if (q == last || (*q != 'e' && *q != 'E')) return p;
    ++q;
    const bool negative = q != last && *q == '-';
    if (q != last && (*q == '-' || *q == '+')) ++q;
    if (q == last || !IsDigit(*q)) return p;
    long exponent = 0;
    for (; q != last && IsDigit(*q); ++q)
        if (exponent < 100000) exponent = exponent * 10 + (*q - '0');
    decimal.Exponent += negative ? -exponent : exponent;
    return q;
}

/// How many digits there are from the first that is not zero.
long SignificantDigits(const char* first, const char* last) {
    long count = 0;
    for (; first != last && *first != 'e' && *first != 'E'; ++first)
        count += *first != '.' && (count > 0 || *first != '0');
    return count;
}

/// The library's slower way, for what does not fit the quick one.
double ReadExactly(const char* first, const char* last, const TDecimal& decimal) {
    double value = 0;
    if (std::from_chars(first, last, value).ec == std::errc::result_out_of_range)
        return decimal.Exponent + SignificantDigits(first, last) > 0 ? std::numeric_limits<double>::infinity()
                                                                     : 0;
    return value;
}

template <class T> void AppendShortest(std::string& text, T value) {
    if (value == 0) {
        text += '0';
        return;
    }
    char buffer[32];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    std::string_view digits(buffer, static_cast<std::size_t>(end - buffer));
    if (digits.front() == '-') {
        text += '-';
        digits.remove_prefix(1);
    }
    if (digits.starts_with("0.")) digits.remove_prefix(1);
    const std::size_t e = digits.find('e');
    text += digits.substr(0, e);
    if (e == std::string_view::npos) return;
    text += 'e';
    digits.remove_prefix(e + 1);
    if (digits.front() == '-') text += '-';
    digits.remove_prefix(1);
    while (digits.size() > 1 && digits.front() == '0')
        digits.remove_prefix(1);
    text += digits;
}

} // namespace

const char* ScanNumber(const char* first, const char* last, double& value) {
    const char* p = first;
    const bool negative = p != last && *p == '-';
    if (p != last && (*p == '-' || *p == '+')) ++p;
    const char* const unsignedPart = p;

    TDecimal decimal;
    p = ScanDigits(p, last, decimal);
    if (p != last && *p == '.') {
        const std::ptrdiff_t whole = decimal.Count;
        const char* const end = ScanDigits(p + 1, last, decimal);
        if (decimal.Count == 0) return first;
        decimal.Exponent = whole - decimal.Count;
        p = end;
    }
    if (decimal.Count == 0) return first;
    p = ScanExponent(p, last, decimal);

    // Both factors are exact, so that one operation rounds once (W. D. Clinger, "How to read floating point
    // numbers accurately", 1990).
    double result;
    const bool isExact = decimal.Count <= 19 && decimal.Digits <= std::uint64_t{1} << 53;
    if (isExact && decimal.Exponent >= -22 && decimal.Exponent <= 22) {
        result = static_cast<double>(static_cast<std::int64_t>(decimal.Digits));
        result = decimal.Exponent < 0 ? result / PowersOfTen[-decimal.Exponent]
                                      : result * PowersOfTen[decimal.Exponent];
    } else {
        result = ReadExactly(unsignedPart, p, decimal);
    }
    value = negative ? -result : result;
    return p;
}

void AppendNumber(std::string& text, double value) { AppendShortest(text, value); }
void AppendNumber(std::string& text, float value) { AppendShortest(text, value); }

} // namespace Vz
