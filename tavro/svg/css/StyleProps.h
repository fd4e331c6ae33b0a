#pragma once

#include "tavro/graphics/Color.h"
#include "tavro/svg/css/Keywords.h"
#include "tavro/svg/values/Types.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Vz {

/// The style properties of the model, by name in alphabetical order as far as SVG 1.1 has them. The numbers
/// are part of the interface (Fill is 14, Stroke is 40).
enum class TSVGStyleProperty : std::uint8_t {
    AlignmentBaseline,
    BaselineShift,
    Clip,
    ClipPath,
    ClipRule,
    Color,
    ColorInterpolation,
    ColorInterpolationFilters,
    ColorRendering,
    Cursor,
    Direction,
    Display,
    DominantBaseline,
    EnableBackground,
    Fill,
    FillOpacity,
    FillRule,
    Filter,
    FloodColor,
    FloodOpacity,
    FontFamily,
    FontSize,
    FontSizeAdjust,
    FontStretch,
    FontStyle,
    FontVariant,
    FontWeight,
    ImageRendering,
    LetterSpacing,
    LightingColor,
    MarkerEnd,
    MarkerMid,
    MarkerStart,
    Mask,
    Opacity,
    Overflow,
    PointerEvents,
    ShapeRendering,
    StopColor,
    StopOpacity,
    Stroke,
    StrokeDashArray,
    StrokeDashOffset,
    StrokeLineCap,
    StrokeLineJoin,
    StrokeMiterLimit,
    StrokeOpacity,
    StrokeWidth,
    TextAnchor,
    TextDecoration,
    TextRendering,
    UnicodeBidi,
    Visibility,
    WordSpacing,
    WritingMode,
    // From here on properties of SVG 2 and CSS.
    FontKerning,
    Isolation,
    Kerning,
    LineHeight,
    MaskType,
    MixBlendMode,
    PaintOrder,
    TransformOrigin,
    VectorEffect,
    GlyphOrientationVertical,
    TextOrientation,
    FontVariationSettings,
    WhiteSpace,
    Count,
};
static_assert(static_cast<int>(TSVGStyleProperty::Fill) == 14 &&
              static_cast<int>(TSVGStyleProperty::Stroke) == 40);

/// The value of one declaration.
struct TStyleValue {
    enum class TKind : std::uint8_t {
        Inherit,
        Keyword, ///< Word
        Number,  ///< Number
        Length,  ///< Number and Unit
        Color,   ///< Color
        CurrentColor,
        NoPaint, ///< "none" as a paint or a reference
        Url,     ///< Text: the id; fallback of a paint: Color where HasFallback, nothing where FallbackNone
        ContextFill,
        ContextStroke,
        Text,    ///< Text: as it stands (families, filter lists, sets of words)
        Lengths, ///< Text: lengths with their units, separated by blanks
    };
    enum class TFallback : std::uint8_t { Absent, None, Color, CurrentColor };

    TKind Kind = TKind::Inherit;
    TKeyword Word{};
    TFallback Fallback = TFallback::Absent;
    TSVGUnit Unit = TSVGUnit::Number;
    TVZGPColor Color = 0xFF000000;
    /// Color: its alpha stands in place of the opacity property of the paint, which waits for another paint.
    bool HasOwnAlpha = false;
    double Number = 0;
    std::shared_ptr<const std::string> Text{};

    TSVGLength Length() const { return {Unit, Number}; }
    void SetLength(const TSVGLength& length) {
        Number = length.GetValue();
        Unit = length.GetUnit();
    }
    bool operator==(const TStyleValue& other) const;
};

/// The property's name in SVG, such as "fill-rule".
std::string_view GetStylePropertyName(TSVGStyleProperty property);
/// The property of that name; nothing where there is none (shorthands are not properties, see
/// ParseShorthand).
std::optional<TSVGStyleProperty> FindStyleProperty(std::string_view name);
/// True where an element takes its parent's value unless it has its own.
bool IsInherited(TSVGStyleProperty property);
/// True where it may stand as an attribute of its own (SVG 1.1, 6.1), not only in a style.
bool IsPresentationAttribute(TSVGStyleProperty property);

/// Reads a value as CSS has it; nothing where the text is no value of the property.
std::optional<TStyleValue> ParseStyleValue(TSVGStyleProperty property, std::string_view text);
/// The text that ParseStyleValue reads back to the same value.
std::string StyleValueText(TSVGStyleProperty property, const TStyleValue& value);

/// One declaration "name: value", after shorthands were taken apart.
struct TDeclaration {
    TSVGStyleProperty Property{};
    TStyleValue Value;
    bool Important = false;
};

/// Reads a CSS declaration list ("fill:red; stroke-width: 2px !important"). What cannot be used is left out,
/// and each such declaration's text is handed to `refused` where given. "transform" is no style property of
/// the model: its last value is stored through `transform` where given. Shorthands: font, marker.
std::vector<TDeclaration> ParseDeclarations(std::string_view text,
                                            std::vector<std::string>* refused = nullptr,
                                            std::string* transform = nullptr);

} // namespace Vz
