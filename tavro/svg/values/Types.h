#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Vz {

/// What a brush or a pen paints with.
enum class TVZGPBrushKind : std::uint8_t {
    None = 0,  ///< paints nothing
    Solid = 1, ///< a colour
    URI = 2,   ///< a paint server (gradient or pattern) by reference, with the colour as fallback
};

/// Units of a length (SVG 1.1, 4.2; CSS Values 3).
enum class TSVGUnit : std::uint8_t {
    Number,
    Percent,
    Em,
    Ex,
    Px,
    Cm,
    Mm,
    In,
    Pt,
    Pc,
    Q,
    Ch,
    Rem,
    Vw,
    Vh,
    Vmin,
    Vmax
};

/// What relative lengths refer to.
struct TLengthBasis {
    double ViewWidth = 100; ///< of the nearest viewport, in user units
    double ViewHeight = 100;
    double FontSize = 16; ///< em of the element
    double RootFontSize = 16;
    double XHeight = 0; ///< 0: half an em
};

enum class TAxis : std::uint8_t { X, Y, Other };

/// A length with its unit. Pixels are user units, 96 to the inch.
class TSVGLength {
public:
    constexpr TSVGLength() = default;
    constexpr TSVGLength(TSVGUnit unit, double value)
        : FValue(value)
        , FUnit(unit) {}

    /// Sets the length with its unit; a value that is not finite is refused (nothing happens).
    void SetAsUnit(TSVGUnit unit, float value);
    TSVGUnit GetUnit() const { return FUnit; }
    double GetValue() const { return FValue; }
    /// True where it does not depend on a basis.
    bool IsAbsolute() const;
    /// In user units; percentages along an axis refer to the basis's view, others to its normalised diagonal
    /// (SVG 1.1, 7.10).
    double Resolve(TAxis axis, const TLengthBasis& basis) const;
    /// Reads a number with an optional unit; false (and the length as it was) where the text is none.
    bool Parse(std::string_view text);
    std::string ToText() const;
    friend bool operator==(const TSVGLength&, const TSVGLength&) = default;

private:
    double FValue = 0;
    TSVGUnit FUnit = TSVGUnit::Number;
};

/// Where a view box lies in its viewport when their aspect ratios differ (SVG 1.1, 7.8).
enum class TSVGAlign : std::uint8_t {
    None = 0, ///< stretched to fill
    XMinYMin,
    XMidYMin,
    XMaxYMin,
    XMinYMid,
    XMidYMid,
    XMaxYMid,
    XMinYMax,
    XMidYMax,
    XMaxYMax,
};

class TSVGPreserveAspectRatio {
public:
    TSVGAlign GetAlign() const { return FAlign; }
    void SetAlign(TSVGAlign align) { FAlign = align; }
    /// True: the viewport is covered and the rest cut off; false (default): all is shown.
    bool GetSlice() const { return FSlice; }
    void SetSlice(bool value) { FSlice = value; }
    bool Parse(std::string_view text);
    std::string ToText() const;
    friend bool operator==(const TSVGPreserveAspectRatio&, const TSVGPreserveAspectRatio&) = default;

private:
    TSVGAlign FAlign = TSVGAlign::XMidYMid;
    bool FSlice = false;
};

/// What a change of the document touched.
enum class TSVGChangeKind : std::uint8_t {
    Place,     ///< a transform, a visibility or an opacity
    Paint,     ///< a fill, a stroke, a stop or another style property
    Shape,     ///< path data, a geometry attribute or a text
    Structure, ///< elements added, removed or moved
};

} // namespace Vz
