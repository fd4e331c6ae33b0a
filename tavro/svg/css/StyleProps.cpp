#include "tavro/svg/css/StyleProps.h"

#include "tavro/svg/css/ColorText.h"
#include "tavro/svg/css/StyleValuesInternal.h"
#include "tavro/svg/css/SyntaxInternal.h"
#include "tavro/svg/values/NameTableInternal.h"
#include "tavro/svg/values/Scan.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <initializer_list>
#include <iterator>

namespace Vz {
namespace {

using P = TSVGStyleProperty;
using K = TKeyword;
constexpr auto PropertyCount = static_cast<std::size_t>(P::Count);

/// A set of keywords.
class TKeywords {
public:
    constexpr TKeywords() = default;
    constexpr TKeywords(std::initializer_list<TKeyword> words) {
        for (const TKeyword word : words)
            FBits[Index(word) / 64] |= Bit(word);
    }
    constexpr bool IsEmpty() const { return FBits == decltype(FBits){}; }
    constexpr bool Contains(TKeyword word) const { return FBits[Index(word) / 64] & Bit(word); }

private:
    static constexpr std::size_t Index(TKeyword word) { return static_cast<std::size_t>(word); }
    static constexpr std::uint64_t Bit(TKeyword word) { return std::uint64_t{1} << Index(word) % 64; }

    std::array<std::uint64_t, (static_cast<std::size_t>(TKeyword::Count) + 63) / 64> FBits{};
};

enum class TFrom : bool { Self, Parent };      ///< where an element that does not set it has it from
enum class TPlace : bool { Style, Attribute }; ///< where it may stand; a style always

/// One property: all that reading and writing it must know.
struct TRow {
    P Property;
    std::string_view Name;
    TFrom From;
    TPlace Place;
    std::string_view Initial;
    TKeywords Words;
    TValueParser Parse = nullptr; ///< values other than words; null: there are none
};

constexpr auto Self = TFrom::Self;
constexpr auto Parent = TFrom::Parent;
constexpr auto Attr = TPlace::Attribute;
constexpr auto Style = TPlace::Style;

constexpr TKeywords Baselines{K::Auto,    K::Baseline,     K::BeforeEdge,    K::TextBeforeEdge, K::Middle,
                              K::Central, K::AfterEdge,    K::TextAfterEdge, K::Ideographic,    K::Alphabetic,
                              K::Hanging, K::Mathematical, K::TextTop,       K::TextBottom,     K::Top,
                              K::Center,  K::Bottom};
constexpr TKeywords DominantBaselines{K::Auto,        K::UseScript,  K::NoChange,      K::ResetSize,
                                      K::Ideographic, K::Alphabetic, K::Hanging,       K::Mathematical,
                                      K::Central,     K::Middle,     K::TextAfterEdge, K::TextBeforeEdge,
                                      K::TextTop,     K::TextBottom};
constexpr TKeywords Displays{K::None,
                             K::Inline,
                             K::Block,
                             K::ListItem,
                             K::RunIn,
                             K::Compact,
                             K::Marker,
                             K::Table,
                             K::InlineTable,
                             K::TableRowGroup,
                             K::TableHeaderGroup,
                             K::TableFooterGroup,
                             K::TableRow,
                             K::TableColumnGroup,
                             K::TableColumn,
                             K::TableCell,
                             K::TableCaption,
                             K::Contents,
                             K::Flex,
                             K::InlineFlex,
                             K::Grid,
                             K::InlineGrid,
                             K::InlineBlock,
                             K::FlowRoot};
constexpr TKeywords Sizes{K::XxSmall, K::XSmall,  K::Small,    K::Medium,  K::Large,
                          K::XLarge,  K::XxLarge, K::XxxLarge, K::Smaller, K::Larger};
constexpr TKeywords Stretches{K::Normal,         K::Wider,         K::Narrower,      K::UltraCondensed,
                              K::ExtraCondensed, K::Condensed,     K::SemiCondensed, K::SemiExpanded,
                              K::Expanded,       K::ExtraExpanded, K::UltraExpanded};
constexpr TKeywords Capitals{K::Normal,        K::SmallCaps, K::AllSmallCaps, K::PetiteCaps,
                             K::AllPetiteCaps, K::Unicase,   K::TitlingCaps};
constexpr TKeywords PointerEvents{K::Auto,    K::VisiblePainted, K::VisibleFill, K::VisibleStroke,
                                  K::Visible, K::Painted,        K::Fill,        K::Stroke,
                                  K::All,     K::BoundingBox,    K::None};
constexpr TKeywords WritingModes{K::LrTb,       K::RlTb,       K::TbRl,         K::Lr,
                                 K::Rl,         K::Tb,         K::HorizontalTb, K::VerticalRl,
                                 K::VerticalLr, K::SidewaysRl, K::SidewaysLr};
constexpr TKeywords Blends{K::Normal,     K::Multiply,   K::Screen,    K::Overlay,    K::Darken,
                           K::Lighten,    K::ColorDodge, K::ColorBurn, K::HardLight,  K::SoftLight,
                           K::Difference, K::Exclusion,  K::Hue,       K::Saturation, K::Color,
                           K::Luminosity, K::PlusLighter};
constexpr TKeywords FillRules{K::NonZero, K::EvenOdd};
constexpr TKeywords ColorSpaces{K::Auto, K::Srgb, K::LinearRgb};

/// By TSVGStyleProperty. Sources: SVG 1.1 property index; SVG 2, CSS Fonts 4, CSS Text 3, CSS Writing Modes
/// 4, CSS Masking 1, Compositing 1, CSS Transforms 1 for what came later.
// clang-format off
constexpr TRow Rows[] = {
    {P::AlignmentBaseline, "alignment-baseline", Self, Attr, "auto", Baselines},
    {P::BaselineShift, "baseline-shift", Self, Attr, "baseline", {K::Baseline, K::Sub, K::Super}, ParseLengthValue},
    {P::Clip, "clip", Self, Attr, "auto", {K::Auto}, ParseClipValue},
    {P::ClipPath, "clip-path", Self, Attr, "none", {}, ParseReferenceValue},
    {P::ClipRule, "clip-rule", Parent, Attr, "nonzero", FillRules},
    {P::Color, "color", Parent, Attr, "black", {}, ParseColorValue},
    {P::ColorInterpolation, "color-interpolation", Parent, Attr, "sRGB", ColorSpaces},
    {P::ColorInterpolationFilters, "color-interpolation-filters", Parent, Attr, "linearRGB", ColorSpaces},
    {P::ColorRendering, "color-rendering", Parent, Attr, "auto", {K::Auto, K::OptimizeSpeed, K::OptimizeQuality}},
    {P::Cursor, "cursor", Parent, Attr, "auto", {K::Auto}, ParseTextValue},
    {P::Direction, "direction", Parent, Attr, "ltr", {K::Ltr, K::Rtl}},
    {P::Display, "display", Self, Attr, "inline", Displays},
    {P::DominantBaseline, "dominant-baseline", Parent, Attr, "auto", DominantBaselines},
    {P::EnableBackground, "enable-background", Self, Attr, "accumulate", {K::Accumulate}, ParseBackgroundValue},
    {P::Fill, "fill", Parent, Attr, "black", {}, ParsePaintValue},
    {P::FillOpacity, "fill-opacity", Parent, Attr, "1", {}, ParseOpacityValue},
    {P::FillRule, "fill-rule", Parent, Attr, "nonzero", FillRules},
    {P::Filter, "filter", Self, Attr, "none", {}, ParseFilterValue},
    {P::FloodColor, "flood-color", Self, Attr, "black", {}, ParseColorValue},
    {P::FloodOpacity, "flood-opacity", Self, Attr, "1", {}, ParseOpacityValue},
    {P::FontFamily, "font-family", Parent, Attr, "serif", {}, ParseTextValue},
    {P::FontSize, "font-size", Parent, Attr, "medium", Sizes, ParseSizeValue},
    {P::FontSizeAdjust, "font-size-adjust", Parent, Attr, "none", {K::None}, ParseFactorValue},
    {P::FontStretch, "font-stretch", Parent, Attr, "normal", Stretches, ParseStretchValue},
    {P::FontStyle, "font-style", Parent, Attr, "normal", {K::Normal, K::Italic, K::Oblique}, ParseObliqueValue},
    {P::FontVariant, "font-variant", Parent, Attr, "normal", Capitals},
    {P::FontWeight, "font-weight", Parent, Attr, "normal", {K::Normal, K::Bold, K::Bolder, K::Lighter}, ParseWeightValue},
    {P::ImageRendering, "image-rendering", Parent, Attr, "auto",
     {K::Auto, K::OptimizeSpeed, K::OptimizeQuality, K::Smooth, K::HighQuality, K::CrispEdgesCss, K::Pixelated}},
    {P::LetterSpacing, "letter-spacing", Parent, Attr, "normal", {K::Normal}, ParseLengthValue},
    {P::LightingColor, "lighting-color", Self, Attr, "white", {}, ParseColorValue},
    {P::MarkerEnd, "marker-end", Parent, Attr, "none", {}, ParseReferenceValue},
    {P::MarkerMid, "marker-mid", Parent, Attr, "none", {}, ParseReferenceValue},
    {P::MarkerStart, "marker-start", Parent, Attr, "none", {}, ParseReferenceValue},
    {P::Mask, "mask", Self, Attr, "none", {}, ParseReferenceValue},
    {P::Opacity, "opacity", Self, Attr, "1", {}, ParseOpacityValue},
    {P::Overflow, "overflow", Self, Attr, "visible", {K::Visible, K::Hidden, K::Scroll, K::Auto, K::Clip}},
    {P::PointerEvents, "pointer-events", Parent, Attr, "auto", PointerEvents},
    {P::ShapeRendering, "shape-rendering", Parent, Attr, "auto",
     {K::Auto, K::OptimizeSpeed, K::CrispEdges, K::GeometricPrecision}},
    {P::StopColor, "stop-color", Self, Attr, "black", {}, ParseColorValue},
    {P::StopOpacity, "stop-opacity", Self, Attr, "1", {}, ParseOpacityValue},
    {P::Stroke, "stroke", Parent, Attr, "none", {}, ParsePaintValue},
    {P::StrokeDashArray, "stroke-dasharray", Parent, Attr, "none", {K::None}, ParseDashesValue},
    {P::StrokeDashOffset, "stroke-dashoffset", Parent, Attr, "0", {}, ParseLengthValue},
    {P::StrokeLineCap, "stroke-linecap", Parent, Attr, "butt", {K::Butt, K::Round, K::Square}},
    {P::StrokeLineJoin, "stroke-linejoin", Parent, Attr, "miter",
     {K::Miter, K::Round, K::Bevel, K::MiterClip, K::Arcs}},
    {P::StrokeMiterLimit, "stroke-miterlimit", Parent, Attr, "4", {}, ParseMiterLimitValue},
    {P::StrokeOpacity, "stroke-opacity", Parent, Attr, "1", {}, ParseOpacityValue},
    {P::StrokeWidth, "stroke-width", Parent, Attr, "1", {}, ParseSizeValue},
    {P::TextAnchor, "text-anchor", Parent, Attr, "start", {K::Start, K::Middle, K::End}},
    {P::TextDecoration, "text-decoration", Self, Attr, "none", {K::None}, ParseDecorationValue},
    {P::TextRendering, "text-rendering", Parent, Attr, "auto",
     {K::Auto, K::OptimizeSpeed, K::OptimizeLegibility, K::GeometricPrecision}},
    {P::UnicodeBidi, "unicode-bidi", Self, Attr, "normal",
     {K::Normal, K::Embed, K::BidiOverride, K::Isolate, K::IsolateOverride, K::Plaintext}},
    {P::Visibility, "visibility", Parent, Attr, "visible", {K::Visible, K::Hidden, K::Collapse}},
    {P::WordSpacing, "word-spacing", Parent, Attr, "normal", {K::Normal}, ParseLengthValue},
    {P::WritingMode, "writing-mode", Parent, Attr, "lr-tb", WritingModes},
    {P::FontKerning, "font-kerning", Parent, Style, "auto", {K::Auto, K::Normal, K::None}},
    {P::Isolation, "isolation", Self, Style, "auto", {K::Auto, K::Isolate}},
    {P::Kerning, "kerning", Parent, Attr, "auto", {K::Auto}, ParseLengthValue},
    {P::LineHeight, "line-height", Parent, Style, "normal", {K::Normal}, ParseLineHeightValue},
    {P::MaskType, "mask-type", Self, Attr, "luminance", {K::Luminance, K::Alpha}},
    {P::MixBlendMode, "mix-blend-mode", Self, Style, "normal", Blends},
    {P::PaintOrder, "paint-order", Parent, Attr, "normal", {K::Normal}, ParsePaintOrderValue},
    {P::TransformOrigin, "transform-origin", Self, Attr, "0 0", {}, ParseOriginValue},
    {P::VectorEffect, "vector-effect", Self, Attr, "none",
     {K::None, K::NonScalingStroke, K::NonScalingSize, K::NonRotation, K::FixedPosition}},
    {P::GlyphOrientationVertical, "glyph-orientation-vertical", Parent, Attr, "auto", {K::Auto}, ParseAngleValue},
    {P::TextOrientation, "text-orientation", Parent, Style, "mixed",
     {K::Mixed, K::Upright, K::Sideways, K::SidewaysRight}},
    {P::FontVariationSettings, "font-variation-settings", Parent, Style, "normal", {K::Normal}, ParseVariationsValue},
    {P::WhiteSpace, "white-space", Parent, Attr, "normal",
     {K::Normal, K::Pre, K::NoWrap, K::PreWrap, K::PreLine, K::BreakSpaces}},
};
// clang-format on

constexpr bool RowsStandByProperty() {
    for (std::size_t i = 0; i < std::size(Rows); ++i)
        if (static_cast<std::size_t>(Rows[i].Property) != i) return false;
    return std::size(Rows) == PropertyCount;
}
static_assert(RowsStandByProperty());

constexpr TNameTable<PropertyCount> ByName([](std::size_t place) { return Rows[place].Name; });

constexpr const TRow& RowOf(P property) {
    assert(property < P::Count);
    return Rows[static_cast<std::size_t>(property)];
}

/// A text without strings, brackets and commas may have its escapes resolved as a whole; others do it by
/// part, or keep them.
bool IsEscapedWord(std::string_view text) {
    return text.find('\\') != std::string_view::npos && text.find_first_of("\"'(,") == std::string_view::npos;
}

/// #rrggbb, with the alpha behind it where the colour is not opaque.
std::string FullColorText(TVZGPColor color) {
    std::string text = ColorText(color);
    if (AlphaOf(color) == 255) return text;
    // The alpha's two figures are those that blue would have.
    return text + ColorText(AlphaOf(color)).substr(5);
}

std::string FallbackText(const TStyleValue& value) {
    switch (value.Fallback) {
    case TStyleValue::TFallback::None:
        return " none";
    case TStyleValue::TFallback::CurrentColor:
        return " currentColor";
    case TStyleValue::TFallback::Color:
        return " " + FullColorText(value.Color);
    default:
        return {};
    }
}

} // namespace

bool TStyleValue::operator==(const TStyleValue& other) const {
    return Kind == other.Kind && Word == other.Word && Fallback == other.Fallback && Color == other.Color &&
           HasOwnAlpha == other.HasOwnAlpha && Number == other.Number && Unit == other.Unit &&
           (Text == other.Text || (Text && other.Text && *Text == *other.Text));
}

std::string_view GetStylePropertyName(TSVGStyleProperty property) {
    return property < P::Count ? RowOf(property).Name : std::string_view{};
}

std::optional<TSVGStyleProperty> FindStyleProperty(std::string_view name) {
    const std::size_t place = ByName.Find(name, [name](std::size_t i) { return Rows[i].Name == name; });
    return place < PropertyCount ? std::optional(static_cast<P>(place)) : std::nullopt;
}

bool IsInherited(TSVGStyleProperty property) { return RowOf(property).From == TFrom::Parent; }

bool IsPresentationAttribute(TSVGStyleProperty property) {
    return RowOf(property).Place == TPlace::Attribute;
}

std::optional<TStyleValue> ParseStyleValue(TSVGStyleProperty property, std::string_view text) {
    const TRow& row = RowOf(property);
    text = Trimmed(text);
    std::string unescaped;
    if (row.Parse != ParseTextValue && IsEscapedWord(text)) {
        text = unescaped = Unescaped(text);
        if (Trimmed(text).size() != text.size()) return std::nullopt;
    }
    if (text.empty()) return std::nullopt;
    if (EqualsNoCase(text, "inherit")) return TStyleValue{};
    // The words that every property takes (CSS Cascade 4, 7.3).
    const bool isUnset = EqualsNoCase(text, "unset") || EqualsNoCase(text, "revert");
    if (isUnset && row.From == TFrom::Parent) return TStyleValue{};
    if (isUnset || EqualsNoCase(text, "initial")) return ParseStyleValue(property, row.Initial);

    if (!row.Words.IsEmpty())
        if (const auto word = FindKeyword(text); word && row.Words.Contains(*word))
            return TStyleValue{TStyleValue::TKind::Keyword, *word};
    return row.Parse ? row.Parse(text) : std::nullopt;
}

std::string StyleValueText(TSVGStyleProperty property, const TStyleValue& value) {
    using TKind = TStyleValue::TKind;
    switch (value.Kind) {
    case TKind::Inherit:
        return "inherit";
    case TKind::Keyword:
        return std::string(GetKeywordName(value.Word));
    case TKind::Number:
        return NumberText(value.Number) + (property == P::FontStretch ? "%" : "");
    case TKind::Length:
        return value.Length().ToText();
    case TKind::Color:
        return FullColorText(value.Color);
    case TKind::CurrentColor:
        return "currentColor";
    case TKind::NoPaint:
        return "none";
    case TKind::Url:
        return UrlText(value.Text ? *value.Text : std::string()) + FallbackText(value);
    case TKind::ContextFill:
        return "context-fill";
    case TKind::ContextStroke:
        return "context-stroke";
    case TKind::Text:
    case TKind::Lengths:
        return value.Text ? *value.Text : std::string();
    }
    return {};
}

} // namespace Vz
