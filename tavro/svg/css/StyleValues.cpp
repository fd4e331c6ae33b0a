#include "tavro/svg/css/StyleValuesInternal.h"

#include "tavro/svg/css/ColorText.h"
#include "tavro/svg/css/SyntaxInternal.h"
#include "tavro/svg/values/Scan.h"

#include <algorithm>
#include <array>
#include <span>

namespace Vz {
namespace {

using TKind = TStyleValue::TKind;
using TMaybe = std::optional<TStyleValue>;

constexpr std::string_view Blanks = " \t\r\n\f";

TStyleValue NumberValue(double number) {
    TStyleValue value{TKind::Number};
    value.Number = number;
    return value;
}

TStyleValue TextValue(TKind kind, std::string text) {
    TStyleValue value{kind};
    value.Text = std::make_shared<const std::string>(std::move(text));
    return value;
}

TStyleValue ListValue(const std::vector<TSVGLength>& list) {
    std::string text;
    for (const TSVGLength& length : list) {
        if (!text.empty()) text += ' ';
        text += length.ToText();
    }
    return TextValue(TKind::Lengths, std::move(text));
}

/// A number, or where allowed a percentage as its hundredth.
std::optional<double> NumberOrPercent(std::string_view text) {
    TScanner scanner{text};
    const auto number = scanner.Number();
    const bool percent = number && scanner.Accept('%');
    if (!number || !scanner.AtEnd()) return std::nullopt;
    return percent ? *number / 100 : *number;
}

/// True where the text can stand in a declaration and ends nothing but itself: strings and brackets closed,
/// no semicolon, no comment.
bool IsOneValue(std::string_view text) {
    std::string withoutComments;
    if (WithoutComments(text, withoutComments).size() != text.size()) return false;
    return FindTopLevel(std::string(text) + ";", ";{}!") == text.size();
}

/// The id of "#id"; another document's address as it stands, with its "#", which no id has.
std::string ReferenceOf(const std::string& address) {
    if (address.starts_with('#')) return address.substr(1);
    return address.find('#') == std::string::npos ? address + '#' : address;
}

/// Takes url(...) from the front.
std::optional<std::string> ReadUrl(TScanner& scanner) {
    if (!StartsWithNoCase(scanner.Text, "url(")) return std::nullopt;
    const std::string_view before = scanner.Text;
    const auto function = scanner.Function();
    std::string address;
    if (function && ParseUrlContent(function->Arguments, address) && !address.empty())
        return ReferenceOf(address);
    scanner.Text = before;
    return std::nullopt;
}

/// A colour; an icc-color() behind it is passed over (SVG 1.1, 12.3.2).
std::optional<TVZGPColor> ReadColor(std::string_view text) {
    if (text.find_first_of(Blanks) == std::string_view::npos) return ParseColor(text);
    const std::size_t end = FindTopLevel(text, Blanks);
    TScanner rest{Trimmed(text.substr(end))};
    if (!rest.AtEnd()) {
        const auto profile = rest.Function();
        if (!profile || !EqualsNoCase(profile->Name, "icc-color") || !rest.AtEnd()) return std::nullopt;
    }
    return ParseColor(text.substr(0, end));
}

/// The parts of a text between blanks and commas, at most `Most` of them; nothing where there are more.
template <std::size_t Most> struct TWords {
    std::array<std::string_view, Most> Word;
    std::size_t Count = 0;
};
template <std::size_t Most> std::optional<TWords<Most>> SplitWords(std::string_view text) {
    TWords<Most> words;
    while (!text.empty()) {
        if (words.Count == Most) return std::nullopt;
        const std::size_t end = FindTopLevel(text, Blanks);
        words.Word[words.Count++] = text.substr(0, end);
        text = Trimmed(text.substr(end));
    }
    return words;
}

/// The places of words in a list, each once; nothing where a word is not in it or comes twice.
template <std::size_t Most>
std::optional<std::vector<std::size_t>> PlacesOf(std::string_view text,
                                                 const std::array<std::string_view, Most>& list) {
    const auto words = SplitWords<Most>(text);
    if (!words) return std::nullopt;
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < words->Count; ++i) {
        const auto* found = std::find_if(list.begin(), list.end(), [&](std::string_view name) {
            return EqualsNoCase(words->Word[i], name);
        });
        const auto place = static_cast<std::size_t>(found - list.begin());
        if (place == Most || std::find(places.begin(), places.end(), place) != places.end())
            return std::nullopt;
        places.push_back(place);
    }
    return places;
}

template <std::size_t Most>
std::string Joined(const std::vector<std::size_t>& places, const std::array<std::string_view, Most>& list) {
    std::string text;
    for (const std::size_t place : places) {
        if (!text.empty()) text += ' ';
        text += list[place];
    }
    return text;
}

/// The words of transform-origin: the axis that each lies on (0 x, 1 y, 2 either), and its place in per cent.
struct TSide {
    std::string_view Name;
    int Axis;
    double Percent;
};
constexpr TSide Sides[] = {
    {"left", 0, 0}, {"right", 0, 100}, {"top", 1, 0}, {"bottom", 1, 100}, {"center", 2, 50}};

/// One part of a transform origin.
struct TOriginPart {
    TSVGLength Length;
    int Axis = 3; ///< as of TSide; 3: a length, which counts by its place
};

std::optional<TOriginPart> ReadOriginPart(std::string_view word) {
    for (const TSide& side : Sides)
        if (EqualsNoCase(word, side.Name)) return TOriginPart{{TSVGUnit::Percent, side.Percent}, side.Axis};
    TOriginPart part;
    if (!part.Length.Parse(word)) return std::nullopt;
    return part;
}

bool IsFilterFunction(std::string_view name) {
    constexpr std::string_view Names[] = {"blur",       "brightness", "contrast", "drop-shadow", "grayscale",
                                          "hue-rotate", "invert",     "opacity",  "saturate",    "sepia"};
    return std::any_of(std::begin(Names), std::end(Names),
                       [&](std::string_view known) { return EqualsNoCase(name, known); });
}

} // namespace

TMaybe ParseLengthValue(std::string_view text) {
    TSVGLength length;
    if (!length.Parse(text)) return std::nullopt;
    TStyleValue value{TKind::Length};
    value.SetLength(length);
    return value;
}

TMaybe ParseSizeValue(std::string_view text) {
    const auto value = ParseLengthValue(text);
    return value && value->Number >= 0 ? value : std::nullopt;
}

TMaybe ParseFactorValue(std::string_view text) {
    const auto number = ParseNumber(text);
    if (!number || *number < 0) return std::nullopt;
    return NumberValue(*number);
}

TMaybe ParseOpacityValue(std::string_view text) {
    const auto number = NumberOrPercent(text);
    if (!number) return std::nullopt;
    return NumberValue(std::clamp(*number, 0.0, 1.0));
}

TMaybe ParseMiterLimitValue(std::string_view text) {
    const auto number = ParseNumber(text);
    if (!number || *number < 1) return std::nullopt;
    return NumberValue(*number);
}

TMaybe ParseWeightValue(std::string_view text) {
    const auto number = ParseNumber(text);
    if (!number || *number < 1 || *number > 1000) return std::nullopt;
    return NumberValue(*number);
}

TMaybe ParseStretchValue(std::string_view text) {
    const auto size = ParseSizeValue(text);
    if (!size || size->Unit != TSVGUnit::Percent) return std::nullopt;
    return NumberValue(size->Number);
}

TMaybe ParseAngleValue(std::string_view text) {
    TScanner scanner{text};
    const auto degrees = scanner.Angle();
    if (!degrees || !scanner.AtEnd()) return std::nullopt;
    return NumberValue(*degrees);
}

TMaybe ParseObliqueValue(std::string_view text) {
    TScanner scanner{text};
    if (!EqualsNoCase(scanner.Word(), "oblique") || !scanner.SkipBlanks() || !ParseAngleValue(scanner.Text))
        return std::nullopt;
    return TStyleValue{TKind::Keyword, TKeyword::Oblique};
}

TMaybe ParseLineHeightValue(std::string_view text) {
    const auto factor = ParseFactorValue(text);
    return factor ? factor : ParseSizeValue(text);
}

TMaybe ParseColorValue(std::string_view text) {
    if (EqualsNoCase(text, "currentColor")) return TStyleValue{TKind::CurrentColor};
    const auto color = ReadColor(text);
    if (!color) return std::nullopt;
    TStyleValue value{TKind::Color};
    value.Color = *color;
    return value;
}

TMaybe ParsePaintValue(std::string_view text) {
    if (EqualsNoCase(text, "none")) return TStyleValue{TKind::NoPaint};
    if (EqualsNoCase(text, "context-fill")) return TStyleValue{TKind::ContextFill};
    if (EqualsNoCase(text, "context-stroke")) return TStyleValue{TKind::ContextStroke};

    TScanner scanner{text};
    auto reference = ReadUrl(scanner);
    if (!reference) return ParseColorValue(text);
    TStyleValue value = TextValue(TKind::Url, std::move(*reference));
    const std::string_view fallback = Trimmed(scanner.Text);
    if (fallback.empty()) return value;
    if (EqualsNoCase(fallback, "none")) {
        value.Fallback = TStyleValue::TFallback::None;
        return value;
    }
    const auto color = ParseColorValue(fallback);
    if (!color) return std::nullopt;
    value.Color = color->Color;
    value.Fallback =
        color->Kind == TKind::Color ? TStyleValue::TFallback::Color : TStyleValue::TFallback::CurrentColor;
    return value;
}

TMaybe ParseReferenceValue(std::string_view text) {
    if (EqualsNoCase(text, "none")) return TStyleValue{TKind::NoPaint};
    TScanner scanner{text};
    auto reference = ReadUrl(scanner);
    if (!reference || !scanner.AtEnd()) return std::nullopt;
    return TextValue(TKind::Url, std::move(*reference));
}

TMaybe ParseFilterValue(std::string_view text) {
    if (auto reference = ParseReferenceValue(text)) return reference;
    TScanner scanner{text};
    while (!scanner.AtEnd()) {
        if (!ReadUrl(scanner)) {
            const auto function = scanner.Function();
            if (!function || !IsFilterFunction(function->Name)) return std::nullopt;
        }
        scanner.SkipBlanks();
    }
    return ParseTextValue(text);
}

TMaybe ParseDashesValue(std::string_view text) {
    std::vector<TSVGLength> dashes;
    const auto isNegative = [](const TSVGLength& length) { return length.GetValue() < 0; };
    if (!ParseLengthList(text, dashes) || dashes.empty() ||
        std::any_of(dashes.begin(), dashes.end(), isNegative))
        return std::nullopt;
    return ListValue(dashes);
}

TMaybe ParseOriginValue(std::string_view text) {
    const auto words = SplitWords<3>(text);
    if (!words) return std::nullopt;
    constexpr TSVGLength Middle{TSVGUnit::Percent, 50};
    const auto first = ReadOriginPart(words->Word[0]);
    if (!first) return std::nullopt;
    if (words->Count == 1)
        return ListValue(first->Axis == 1 ? std::vector{Middle, first->Length}
                                          : std::vector{first->Length, Middle});

    const auto second = ReadOriginPart(words->Word[1]);
    if (!second) return std::nullopt;
    if (words->Count == 3) {
        // The place in depth has no effect on a plane, but must be one.
        TSVGLength depth;
        if (!depth.Parse(words->Word[2]) || depth.GetUnit() == TSVGUnit::Percent) return std::nullopt;
    }
    // Words may stand the other way round; "top 10px" and "10px left" are none (CSS Transforms 1, 4).
    const bool areSwapped = first->Axis == 1 || second->Axis == 0;
    if (!areSwapped) return ListValue({first->Length, second->Length});
    const bool canSwap = (first->Axis == 1 || first->Axis == 2) && (second->Axis == 0 || second->Axis == 2);
    if (!canSwap) return std::nullopt;
    return ListValue({second->Length, first->Length});
}

TMaybe ParseDecorationValue(std::string_view text) {
    static constexpr std::array<std::string_view, 4> Lines{"underline", "overline", "line-through", "blink"};
    auto places = PlacesOf(text, Lines);
    if (!places) return std::nullopt;
    std::sort(places->begin(), places->end());
    return TextValue(TKind::Text, Joined(*places, Lines));
}

TMaybe ParsePaintOrderValue(std::string_view text) {
    static constexpr std::array<std::string_view, 3> Parts{"fill", "stroke", "markers"};
    auto places = PlacesOf(text, Parts);
    if (!places) return std::nullopt;
    for (std::size_t part = 0; part < Parts.size(); ++part)
        if (std::find(places->begin(), places->end(), part) == places->end()) places->push_back(part);
    return TextValue(TKind::Text, Joined(*places, Parts));
}

TMaybe ParseVariationsValue(std::string_view text) {
    TScanner scanner{text};
    do {
        const auto axis = scanner.Quoted();
        if (!axis || axis->size() != 4) return std::nullopt;
        scanner.SkipBlanks();
        if (!scanner.Number()) return std::nullopt;
    } while (scanner.SkipCommaBlanks());
    if (!scanner.AtEnd()) return std::nullopt;
    return ParseTextValue(text);
}

TMaybe ParseClipValue(std::string_view text) {
    TScanner scanner{text};
    const auto shape = scanner.Function();
    if (!shape || !EqualsNoCase(shape->Name, "rect") || !scanner.AtEnd()) return std::nullopt;
    return ParseTextValue(text);
}

TMaybe ParseBackgroundValue(std::string_view text) {
    TScanner scanner{text};
    std::vector<double> area;
    if (!EqualsNoCase(scanner.Word(), "new") || !ParseNumbers(scanner.Text, area, 4)) return std::nullopt;
    return ParseTextValue(text);
}

TMaybe ParseTextValue(std::string_view text) {
    if (!IsOneValue(text)) return std::nullopt;
    return TextValue(TKind::Text, std::string(text));
}

std::string UrlText(std::string_view reference) {
    const bool isId = reference.starts_with('#') || reference.find('#') == std::string_view::npos;
    const std::string address = (isId ? "#" : "") + std::string(reference);
    const bool isPlain = std::none_of(address.begin(), address.end(), [](char c) {
        return static_cast<unsigned char>(c) <= ' ' || c == '"' || c == '\'' || c == '(' || c == ')' ||
               c == '\\';
    });
    return "url(" + (isPlain ? address : Quoted(address)) + ")";
}

} // namespace Vz
