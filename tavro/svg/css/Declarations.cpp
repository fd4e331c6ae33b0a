#include "tavro/svg/css/StyleProps.h"
#include "tavro/svg/css/SyntaxInternal.h"
#include "tavro/svg/values/Scan.h"
#include "tavro/svg/values/TransformText.h"

#include <array>

namespace Vz {
namespace {

using P = TSVGStyleProperty;

/// Where the declarations of one list go.
struct TTarget {
    std::vector<TDeclaration> Declarations;
    bool Important = false; ///< of the declaration that is being read

    void Add(P property, TStyleValue value) {
        Declarations.push_back({property, std::move(value), Important});
    }
};

/// Takes "!important" off the end; true where it stood there.
bool TakeImportant(std::string_view& value) {
    const std::size_t mark = FindTopLevel(value, "!");
    if (mark == value.size() || !EqualsNoCase(Trimmed(value.substr(mark + 1)), "important")) return false;
    value = Trimmed(value.substr(0, mark));
    return true;
}

bool AddParsed(TTarget& target, P property, std::string_view text) {
    auto value = ParseStyleValue(property, text);
    if (!value) return false;
    target.Add(property, std::move(*value));
    return true;
}

/// marker: one value for all three (SVG 1.1, 11.6.2).
bool AddMarker(TTarget& target, std::string_view text) {
    const auto value = ParseStyleValue(P::MarkerStart, text);
    if (!value) return false;
    for (const P property : {P::MarkerStart, P::MarkerMid, P::MarkerEnd})
        target.Add(property, *value);
    return true;
}

/// What the font shorthand sets besides size, line height and family, at first to their initial values
/// (CSS Fonts 4, 2.7). The first four may be named in it.
constexpr std::array<P, 7> FontExtras{
    P::FontStyle,      P::FontVariant, P::FontWeight,           P::FontStretch,
    P::FontSizeAdjust, P::FontKerning, P::FontVariationSettings};
constexpr std::size_t NamedExtras = 4;

struct TFontParts {
    std::array<std::optional<TStyleValue>, FontExtras.size()> Extras;
    std::optional<TStyleValue> Size;
    std::optional<TStyleValue> LineHeight;
    std::optional<TStyleValue> Family;
};

std::string_view TakeUntil(TScanner& scanner, std::string_view stops) {
    const std::size_t end = FindTopLevel(scanner.Text, stops);
    const std::string_view part = scanner.Text.substr(0, end);
    scanner.Text.remove_prefix(end);
    return part;
}

/// Style, variant, weight and stretch, in any order, each at most once; "normal" stands for any of them. A
/// number is a weight only where a size comes behind it.
void ReadFontExtras(TScanner& scanner, TFontParts& parts) {
    for (std::size_t count = 0; count < NamedExtras; ++count) {
        TScanner rest = scanner;
        const std::string_view word = TakeUntil(rest, " \t\r\n\f/");
        if (!rest.SkipBlanks()) return;
        if (!EqualsNoCase(word, "normal")) {
            TScanner next = rest;
            if (IsDigit(word.front()) && !ParseStyleValue(P::FontSize, TakeUntil(next, " \t\r\n\f/"))) return;
            std::size_t i = 0;
            std::optional<TStyleValue> value;
            for (; i < NamedExtras && !value; ++i)
                if (!parts.Extras[i]) value = ParseStyleValue(FontExtras[i], word);
            if (!value || value->Kind == TStyleValue::TKind::Inherit) return;
            parts.Extras[i - 1] = std::move(value);
        }
        scanner = rest;
    }
}

bool ReadFontParts(std::string_view text, TFontParts& parts) {
    TScanner scanner{text};
    ReadFontExtras(scanner, parts);
    parts.Size = ParseStyleValue(P::FontSize, TakeUntil(scanner, " \t\r\n\f/"));
    scanner.SkipBlanks();
    if (scanner.Accept('/')) {
        scanner.SkipBlanks();
        parts.LineHeight = ParseStyleValue(P::LineHeight, TakeUntil(scanner, " \t\r\n\f"));
        if (!parts.LineHeight) return false;
    }
    parts.Family = ParseStyleValue(P::FontFamily, scanner.Text);
    const auto isOwn = [](const auto& value) { return value && value->Kind != TStyleValue::TKind::Inherit; };
    return isOwn(parts.Size) && isOwn(parts.Family);
}

bool AddFont(TTarget& target, std::string_view text) {
    TFontParts parts;
    if (EqualsNoCase(text, "inherit") || EqualsNoCase(text, "unset")) {
        parts.Extras.fill(TStyleValue{});
        parts.Size = parts.LineHeight = parts.Family = TStyleValue{};
    } else if (!ReadFontParts(text, parts)) {
        return false;
    }
    const auto add = [&](P property, const std::optional<TStyleValue>& value) {
        target.Add(property, value ? *value : *ParseStyleValue(property, "initial"));
    };
    for (std::size_t i = 0; i < FontExtras.size(); ++i)
        add(FontExtras[i], parts.Extras[i]);
    add(P::FontSize, parts.Size);
    add(P::LineHeight, parts.LineHeight);
    add(P::FontFamily, parts.Family);
    return true;
}

/// Reads one declaration; false where it cannot be used.
bool AddDeclaration(TTarget& target, std::string_view text, std::string* transform) {
    const std::size_t colon = FindTopLevel(text, ":");
    if (colon == text.size()) return false;
    const std::string name = ToLowerText(Unescaped(Trimmed(text.substr(0, colon))));
    std::string_view value = Trimmed(text.substr(colon + 1));
    target.Important = TakeImportant(value);
    if (name == "font") return AddFont(target, value);
    if (name == "marker") return AddMarker(target, value);
    if (name == "transform") {
        if (value.empty() || !ParseTransform(value)) return false;
        if (transform) *transform = value;
        return true;
    }
    const auto property = FindStyleProperty(name);
    return property && AddParsed(target, *property, value);
}

} // namespace

std::vector<TDeclaration> ParseDeclarations(std::string_view text, std::vector<std::string>* refused,
                                            std::string* transform) {
    std::string storage;
    text = WithoutComments(text, storage);
    TTarget target;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = FindTopLevel(text, ";", at);
        const std::string_view declaration = Trimmed(text.substr(at, end - at));
        at = end + 1;
        if (!declaration.empty() && !AddDeclaration(target, declaration, transform) && refused)
            refused->emplace_back(declaration);
    }
    return std::move(target.Declarations);
}

} // namespace Vz
