#pragma once

#include "tavro/graphics/Figures.h"
#include "tavro/graphics/text/TextStyle.h"
#include "tavro/svg/css/Keywords.h"
#include "tavro/svg/css/StyleProps.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace Vz {

/// The style properties that an element sets itself, each with its value, ordered by property. Copies share
/// their content until one of them is edited.
class TSVGStyleSet {
public:
    struct TEntry {
        TSVGStyleProperty Property;
        TStyleValue Value;
        bool operator==(const TEntry&) const = default;
    };

    /// The element's own value; null where it sets none.
    const TStyleValue* Find(TSVGStyleProperty property) const;
    bool Contains(TSVGStyleProperty property) const { return Find(property) != nullptr; }
    void Put(TSVGStyleProperty property, TStyleValue value);
    /// True when there was one.
    bool Remove(TSVGStyleProperty property);
    bool IsEmpty() const { return FCount == 0; }
    std::span<const TEntry> Entries() const { return {FEntries.get(), FCount}; }
    bool operator==(const TSVGStyleSet& other) const;
    /// What it holds now lives from here on as long as the program (see Lasting.h).
    void MakeLasting();

private:
    TEntry* Place(TSVGStyleProperty property) const;
    TEntry TakeOrCopy(std::size_t index);

    std::shared_ptr<TEntry[]> FEntries; ///< as many as there are: most elements have one or two
    std::uint8_t FCount = 0;            ///< at most one of each property
};

/// A value that many hold, or none; equal where the values are.
template <class T> struct TSharedValue : std::shared_ptr<const T> {
    using std::shared_ptr<const T>::shared_ptr;
    TSharedValue(std::shared_ptr<const T> value)
        : std::shared_ptr<const T>(std::move(value)) {}
    friend bool operator==(const TSharedValue& a, const TSharedValue& b) {
        return a.get() == b.get() || (a && b && *a == *b);
    }
};

/// A computed fill or stroke.
struct TComputedPaint {
    enum class TKind : std::uint8_t { None, Color, CurrentColor, Server, ContextFill, ContextStroke };
    TKind Kind = TKind::None;
    bool HasFallback = false; ///< Server: paint Color where the reference fails; else nothing
    TVZGPColor Color = 0xFF000000;
    TSharedValue<std::string> Server; ///< id
    friend bool operator==(const TComputedPaint&, const TComputedPaint&) = default;
};

/// The inherited properties of text, shared by all elements that do not change them.
struct TComputedText {
    TTextStyle Font;          ///< letter spacing's wish for no ligatures not yet applied
    double LetterSpacing = 0; ///< user units
    double WordSpacing = 0;
    TKeyword Anchor = TKeyword::Start;
    TKeyword Direction = TKeyword::Ltr;
    TKeyword WritingMode = TKeyword::LrTb;
    bool PreserveSpace = false; ///< xml:space or white-space
    bool operator==(const TComputedText&) const = default;
};

/// All properties of an element after cascade and inheritance (SVG 1.1, 6).
struct TComputedStyle {
    // Inherited.
    TVZGPColor Color = 0xFF000000;
    TComputedPaint Fill{TComputedPaint::TKind::Color};
    TComputedPaint Stroke;
    double FillOpacity = 1;
    double StrokeOpacity = 1;
    double StrokeWidth = 1;
    double DashOffset = 0;
    double MiterLimit = 4;
    TSharedValue<std::vector<double>> Dashes; ///< null: solid
    TFillRule FillRule = TFillRule::NonZero;
    TFillRule ClipRule = TFillRule::NonZero;
    TLineCap Cap = TLineCap::Butt;
    TLineJoin Join = TLineJoin::Miter;
    TKeyword Visibility = TKeyword::Visible;
    TKeyword ImageRendering = TKeyword::Auto;
    TKeyword ShapeRendering = TKeyword::Auto;
    TKeyword ColorInterpolation = TKeyword::Srgb;
    TKeyword ColorInterpolationFilters = TKeyword::LinearRgb;
    TKeyword PointerEvents = TKeyword::Auto;
    TKeyword DominantBaseline = TKeyword::Auto;
    TSharedValue<std::string> PaintOrder;                        ///< null: normal
    TSharedValue<std::string> MarkerStart, MarkerMid, MarkerEnd; ///< ids; null: none
    TSharedValue<TComputedText> Text;
    double RootFontSize = 16;
    // Not inherited.
    TSharedValue<std::string> ClipPath, Mask, Filter; ///< ids, Filter: the whole value; null: none
    TVZGPColor StopColor = 0xFF000000;
    double StopOpacity = 1;
    TVZGPColor FloodColor = 0xFF000000;
    double FloodOpacity = 1;
    TVZGPColor LightingColor = 0xFFFFFFFF;
    TKeyword Overflow = TKeyword::Hidden;
    bool HasOverflow = false; ///< false: the element's own default holds
    TKeyword AlignmentBaseline = TKeyword::Auto;
    TKeyword MaskType = TKeyword::Luminance;
    TKeyword Blend = TKeyword::Normal;
    TKeyword Isolation = TKeyword::Auto;
    bool NonScalingStroke = false;
    TSharedValue<std::string> TextDecoration; ///< null: none
    TStyleValue BaselineShift{TStyleValue::TKind::Keyword, TKeyword::Baseline};
    TSharedValue<std::vector<TSVGLength>> TransformOrigin; ///< null: the origin

    /// The initial values (SVG 1.1, property index), the initial font of 16 px serif.
    static const TComputedStyle& Initial();
    friend bool operator==(const TComputedStyle&, const TComputedStyle&) = default;
};

/// The style of an element with the given own properties below a parent of this style. `view` gives what
/// percentages refer to; its font sizes are filled in here.
TComputedStyle ComputeStyle(const TComputedStyle& parent, const TSVGStyleSet& own, TLengthBasis view);

/// What lengths of an element of this style refer to.
TLengthBasis BasisOf(const TComputedStyle& style, double viewWidth, double viewHeight);

} // namespace Vz
