#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Vz {

/// Offset of the first byte that is not part of well-formed UTF-8 (RFC 3629: no surrogates, nothing above
/// U+10FFFF, shortest forms only), or npos where the whole text is well formed.
std::size_t FindBadUtf8(std::string_view text);

/// Appends the code point as UTF-8. Surrogates and what lies above U+10FFFF become U+FFFD.
void AppendUtf8(std::string& text, char32_t codePoint);

/// `text` in single quotes for a message of one line: control characters and broken bytes as question marks,
/// cut with three dots after 60 bytes.
std::string QuotedForMessage(std::string_view text);

} // namespace Vz
