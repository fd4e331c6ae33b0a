#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Vz {

/// CSS text with its comments taken out; those of strings and of unquoted urls are none. `storage` holds the
/// result where there were any.
std::string_view WithoutComments(std::string_view css, std::string& storage);

/// Where the first of the characters `stops` stands from `from` on, outside of strings, brackets of any kind
/// and unquoted urls; the text's size where there is none.
std::size_t FindTopLevel(std::string_view css, std::string_view stops, std::size_t from = 0);

/// Behind the name that css begins with, its escapes included; 0 where none does.
std::size_t NameEnd(std::string_view css);

/// The text with its escapes resolved (CSS 2.1, 4.1.3): hexadecimal figures as UTF-8, other characters as
/// they are.
std::string Unescaped(std::string_view css);

/// The text in double quotes, with escapes where a string needs them.
std::string Quoted(std::string_view text);

/// Takes a string or an unquoted address from the inside of url(...), escapes resolved; false where it is
/// neither.
bool ParseUrlContent(std::string_view inside, std::string& address);

} // namespace Vz
