#include "tavro/svg/values/DataUri.h"

#include "tavro/svg/values/Scan.h"

#include <algorithm>

namespace Vz {

namespace {

int HexDigit(char c) {
    if (IsDigit(c)) return c - '0';
    const char lower = ToLower(c);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::string FromPercent(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escape =
            text[i] == '%' && i + 2 < text.size() && HexDigit(text[i + 1]) >= 0 && HexDigit(text[i + 2]) >= 0;
        if (escape) {
            bytes += static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2]));
            i += 2;
        } else {
            bytes += text[i];
        }
    }
    return bytes;
}

std::optional<std::string> FromBase64(std::string_view text) {
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    bytes.reserve(text.size() * 3 / 4);
    unsigned bits = 0;
    int count = 0;
    for (const char c : text) {
        if (IsBlank(c) || c == '=') continue;
        const std::size_t value = digits.find(c);
        if (value == digits.npos) return {};
        bits = bits << 6 | static_cast<unsigned>(value);
        if ((count += 6) >= 8) {
            count -= 8;
            bytes += static_cast<char>(bits >> count);
        }
    }
    return bytes;
}

} // namespace

std::optional<std::string> ReadDataUri(std::string_view uri) {
    uri = Trimmed(uri);
    const std::size_t comma = uri.find(',');
    if (!StartsWithNoCase(uri, "data:") || comma == uri.npos) return {};
    const std::string_view type = Trimmed(uri.substr(5, comma - 5));
    const std::string_view content = uri.substr(comma + 1);
    const bool base64 = type.size() >= 7 && EqualsNoCase(type.substr(type.size() - 7), ";base64");
    return base64 ? FromBase64(FromPercent(content)) : FromPercent(content);
}

} // namespace Vz
