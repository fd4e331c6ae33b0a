#include "tavro/svg/css/SyntaxInternal.h"

#include "tavro/runtime/Utf8.h"
#include "tavro/svg/values/Scan.h"

#include <algorithm>
#include <cstdint>

namespace Vz {
namespace {

/// Behind the string that begins at `at`. One that is not closed ends with its line (CSS 2.1, 4.2).
std::size_t StringEnd(std::string_view css, std::size_t at) {
    const char quote = css[at];
    for (std::size_t i = at + 1; i < css.size(); ++i) {
        if (css[i] == '\\')
            ++i;
        else if (css[i] == quote)
            return i + 1;
        else if (css[i] == '\n')
            return i;
    }
    return css.size();
}

/// Behind the unquoted url( ... ) that begins at `at`; `at` where there is none.
std::size_t UrlEnd(std::string_view css, std::size_t at) {
    constexpr std::string_view Start = "url(";
    if (ToLower(css[at]) != 'u' || !StartsWithNoCase(css.substr(at), Start)) return at;
    if (at > 0 && IsNameChar(css[at - 1])) return at;
    std::size_t i = at + Start.size();
    while (i < css.size() && IsBlank(css[i]))
        ++i;
    if (i < css.size() && (css[i] == '"' || css[i] == '\'')) return at;
    for (; i < css.size() && css[i] != ')'; ++i)
        if (css[i] == '\\') ++i;
    return std::min(i + 1, css.size());
}

/// Behind the next piece that must not be looked into: a string, an escape, an unquoted url; else one
/// character.
std::size_t PieceEnd(std::string_view css, std::size_t at) {
    const char c = css[at];
    if (c == '"' || c == '\'') return StringEnd(css, at);
    if (c == '\\') return std::min(at + 2, css.size());
    const std::size_t url = UrlEnd(css, at);
    return url > at ? url : at + 1;
}

int HexDigit(char c) {
    if (IsDigit(c)) return c - '0';
    const char lower = ToLower(c);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// Behind the escape whose backslash stands at `at`: up to six hexadecimal figures with one blank, or one
/// character.
std::size_t EscapeEnd(std::string_view css, std::size_t at) {
    std::size_t i = at + 1;
    while (i < css.size() && i < at + 7 && HexDigit(css[i]) >= 0)
        ++i;
    if (i == at + 1) return std::min(at + 2, css.size());
    return i < css.size() && IsBlank(css[i]) ? i + 1 : i;
}

/// Appends the character of an escape, without its backslash.
void AppendEscape(std::string& text, std::string_view escape) {
    if (escape.empty() || HexDigit(escape.front()) < 0) {
        if (escape != "\n") text += escape;
        return;
    }
    std::uint32_t code = 0;
    for (const char c : escape)
        if (HexDigit(c) >= 0) code = code * 16 + static_cast<std::uint32_t>(HexDigit(c));
    AppendUtf8(text, code == 0 ? 0xFFFDu : code);
}

} // namespace

std::string_view WithoutComments(std::string_view css, std::string& storage) {
    if (css.find("/*") == std::string_view::npos) return css;
    storage.clear();
    for (std::size_t i = 0; i < css.size();) {
        if (css.substr(i, 2) != "/*") {
            const std::size_t end = PieceEnd(css, i);
            storage += css.substr(i, end - i);
            i = end;
            continue;
        }
        const std::size_t end = css.find("*/", i + 2);
        i = end == std::string_view::npos ? css.size() : end + 2;
        // Two names stay two names.
        if (!storage.empty() && IsNameChar(storage.back()) && i < css.size() && IsNameChar(css[i]))
            storage += ' ';
    }
    return storage;
}

std::size_t FindTopLevel(std::string_view css, std::string_view stops, std::size_t from) {
    std::string closers;
    for (std::size_t i = from; i < css.size(); i = PieceEnd(css, i)) {
        const char c = css[i];
        if (closers.empty() && stops.find(c) != std::string_view::npos) return i;
        if (c == '(')
            closers += ')';
        else if (c == '[')
            closers += ']';
        else if (c == '{')
            closers += '}';
        else if (!closers.empty() && c == closers.back())
            closers.pop_back();
    }
    return css.size();
}

std::size_t NameEnd(std::string_view css) {
    std::size_t i = 0;
    while (i < css.size() && (IsNameChar(css[i]) || css[i] == '\\'))
        i = css[i] == '\\' ? EscapeEnd(css, i) : i + 1;
    return i;
}

std::string Unescaped(std::string_view css) {
    std::string text;
    for (std::size_t i = 0; i < css.size();) {
        if (css[i] != '\\') {
            text += css[i++];
            continue;
        }
        const std::size_t end = EscapeEnd(css, i);
        AppendEscape(text, css.substr(i + 1, end - i - 1));
        i = end;
    }
    return text;
}

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '\n')
            quoted += "\\a ";
        else if (c == '"' || c == '\\')
            quoted.append(1, '\\') += c;
        else
            quoted += c;
    }
    return quoted + '"';
}

bool ParseUrlContent(std::string_view inside, std::string& address) {
    TScanner scanner{Trimmed(inside)};
    const char first = scanner.Peek();
    if (first == '"' || first == '\'') {
        const auto content = scanner.Quoted();
        if (!content || !scanner.AtEnd()) return false;
        address = Unescaped(*content);
        return true;
    }
    if (scanner.Text.find_first_of(" \t\r\n\f\"'") != std::string_view::npos) return false;
    address = Unescaped(scanner.Text);
    return true;
}

} // namespace Vz
