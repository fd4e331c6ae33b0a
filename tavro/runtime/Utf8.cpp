#include "tavro/runtime/Utf8.h"

namespace Vz {

namespace {

/// Length of the well-formed sequence that `text` begins with, or 0. By table 3-7 of the Unicode standard.
std::size_t SequenceLength(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u; // 0 is no continuation byte
    };
    const unsigned first = byte(0);
    if (first < 0x80) return 1;
    if (first < 0xC2 || first > 0xF4) return 0;
    const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    const unsigned low = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const unsigned high = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    if (byte(1) < low || byte(1) > high) return 0;
    for (std::size_t i = 2; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80) return 0;
    return length;
}

} // namespace

std::size_t FindBadUtf8(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t length = SequenceLength(text.substr(at, 4));
        if (length == 0) return at;
        at += length;
    }
    return std::string_view::npos;
}

void AppendUtf8(std::string& text, char32_t codePoint) {
    if (codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint < 0xE000)) codePoint = 0xFFFD;
    const auto add = [&](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    const auto addRest = [&](int shift) { add(0x80 | ((codePoint >> shift) & 0x3F)); };
    if (codePoint < 0x80) {
        add(codePoint);
    } else if (codePoint < 0x800) {
        add(0xC0 | (codePoint >> 6));
        addRest(0);
    } else if (codePoint < 0x10000) {
        add(0xE0 | (codePoint >> 12));
        addRest(6);
        addRest(0);
    } else {
        add(0xF0 | (codePoint >> 18));
        addRest(12);
        addRest(6);
        addRest(0);
    }
}

std::string QuotedForMessage(std::string_view text) {
    constexpr std::size_t Longest = 60;
    std::string quoted = "'";
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = SequenceLength(text.substr(at, 4));
        if (at + length > Longest) return quoted + "...'";
        const bool plain = length > 1 || (length == 1 && text[at] >= ' ' && text[at] != '\x7F');
        quoted += plain ? text.substr(at, length) : std::string_view("?");
        at += length == 0 ? 1 : length;
    }
    return quoted + "'";
}

} // namespace Vz
