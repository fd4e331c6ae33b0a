#pragma once

#include "tavro/graphics/PaintDevice.h"
#include "tavro/graphics/raster/CoverageInternal.h"

#include <cmath>
#include <cstdint>

namespace Vz {

/// value * by / 255, rounded to nearest, for both in 0..255.
constexpr unsigned MulDiv255(unsigned value, unsigned by) {
    const unsigned t = value * by + 128;
    return (t + (t >> 8)) >> 8;
}

/// Every channel times by / 255, each rounded to nearest.
constexpr std::uint32_t ScalePixel(std::uint32_t pixel, unsigned by) {
    const auto pair = [by](std::uint32_t two) {
        const std::uint32_t t = two * by + 0x00800080u;
        return ((t + ((t >> 8) & 0x00FF00FFu)) >> 8) & 0x00FF00FFu;
    };
    return pair(pixel & 0x00FF00FFu) | pair((pixel >> 8) & 0x00FF00FFu) << 8;
}

/// Channel by channel sum, held at 255.
constexpr std::uint32_t AddPixels(std::uint32_t a, std::uint32_t b) {
    const auto pair = [](std::uint32_t x, std::uint32_t y) {
        const std::uint32_t sum = x + y;
        const std::uint32_t over = (sum >> 8) & 0x00010001u;
        return (sum | (over * 255u)) & 0x00FF00FFu;
    };
    return pair(a & 0x00FF00FFu, b & 0x00FF00FFu) | pair((a >> 8) & 0x00FF00FFu, (b >> 8) & 0x00FF00FFu) << 8;
}

/// A premultiplied pixel laid over another.
constexpr std::uint32_t PixelOver(std::uint32_t over, std::uint32_t under) {
    return AddPixels(over, ScalePixel(under, 255 - (over >> 24)));
}

/// Where a gradient's ramp is read: its place at the centre of a device pixel. A linear gradient's ramp runs
/// over the places' X 0..1, a radial one's over their distances 0..1 from (0, 0).
struct TRampWalk {
    TAffine ToRamp;
    TSpread Spread = TSpread::Pad;
    const std::uint32_t* Table = nullptr;
    bool IsOpaque = false;

    /// The place of column 0 in a row; each further column adds (ToRamp.A, ToRamp.B).
    TPointD FirstOfRow(int y) const { return ToRamp(0.5, y + 0.5); }
};

/// A radial gradient whose focus lies in its circle: place p, from the focus, has the t for which
/// |p - t Axis| = FocusRadius + t Growth (canvas 2D's radial gradient, the greater solution).
struct TFocalWalk {
    TRampWalk Walk;
    float AxisX = 0, AxisY = 0;
    float FocusRadius = 0, Growth = 1;
};

/// What stays the same along a row of a focal gradient: t^2 A - 2 t B + C = 0, A < 0, has B = p Axis + Offset
/// and C = p p - Inner. Each implementation takes the solution in the form that does not cancel.
struct TFocalTerms {
    explicit TFocalTerms(const TFocalWalk& w)
        : A(w.AxisX * w.AxisX + w.AxisY * w.AxisY - w.Growth * w.Growth)
        , Offset(w.FocusRadius * w.Growth)
        , Inner(w.FocusRadius * w.FocusRadius) {}
    float A, Offset, Inner;
};

/// The entry of the ramp at place t: the spread's rule, then the nearest entry. No number counts as 0.
template <class T> int RampEntry(T t, TSpread spread) {
    if (spread == TSpread::Repeat)
        t -= std::floor(t);
    else if (spread == TSpread::Reflect) {
        t *= T(0.5);
        t -= std::floor(t + T(0.5));
        t = std::abs(t) * 2;
    }
    constexpr T last = TGradientRamp::Size - 1;
    t = t * last + T(0.5);
    t = t > 0 ? t : 0;
    return static_cast<int>(t < last ? t : last);
}

/// The entry of a linear gradient's ramp. Only places that are brought into the ramp first need all of a
/// double.
inline int LinearEntry(double t, TSpread spread) {
    return spread == TSpread::Pad ? RampEntry(static_cast<float>(t), spread) : RampEntry(t, spread);
}

/// Rows of coverage about to be painted.
struct TFillJob {
    std::span<const TCoverageRow> Rows;
    TFillRule Rule = TFillRule::NonZero;
    int Right = 0;         ///< device column up to which pixels may be touched
    int Left = 0, Top = 0; ///< device place of the first of Pixels
    std::uint32_t* Pixels = nullptr;
    std::ptrdiff_t Stride = 0;
    const std::uint8_t* Clip = nullptr; ///< further coverage, readable as far as 8 behind its end; or null
    int ClipLeft = 0, ClipTop = 0;
    std::ptrdiff_t ClipStride = 0;

    std::uint32_t* PixelsOf(const TCoverageRow& row) const {
        return Pixels + (row.Y - Top) * Stride + (row.X - Left);
    }
    const std::uint8_t* ClipOf(const TCoverageRow& row) const {
        return Clip ? Clip + (row.Y - ClipTop) * ClipStride + (row.X - ClipLeft) : nullptr;
    }
};

/// Boxes of pixels side by side: each `Across` (at most 16) pixels wide and `Down` (at most 257) high.
struct TPixelBoxes {
    const std::uint32_t* Pixels = nullptr; ///< the first of the first box
    std::ptrdiff_t Stride = 0;
    int Across = 1, Down = 1;
};

/// The operations on rows of pixels, in one of several equal implementations: all give the same bytes.
struct TRowOps {
    const char* Name;
    // Lay a paint over rows through their coverage.
    void (*FillSolid)(const TFillJob& job, std::uint32_t pixel);
    void (*FillLinear)(const TFillJob& job, const TRampWalk& walk);
    void (*FillRadial)(const TFillJob& job, const TRampWalk& walk);
    void (*FillFocal)(const TFillJob& job, const TFocalWalk& walk);
    /// Adds an edge's part in the rows of a band.
    void (*Trace)(const TTraceEdge& edge, TTraceBand& band);
    /// A row's coverage as bytes. May write 8 bytes more than there are columns.
    void (*Resolve)(const TCoverageRow& row, TFillRule rule, std::uint8_t* coverage);
    /// coverage *= factor.
    void (*MultiplyCoverage)(std::uint8_t* coverage, const std::uint8_t* factor, int count);
    /// Lays pixels over the row, through coverage.
    void (*BlendCovered)(std::uint32_t* row, int count, const std::uint32_t* pixels,
                         const std::uint8_t* coverage);
    /// Lays pixels over the row, all times opacity / 255.
    void (*BlendRow)(std::uint32_t* row, int count, const std::uint32_t* pixels, unsigned opacity);
    /// The means of `count` boxes side by side. `sums` has room for 4 numbers a column of the boxes.
    void (*Average)(std::uint32_t* pixels, int count, const TPixelBoxes& boxes, std::uint16_t* sums);
};

/// The implementation for any machine.
const TRowOps& PortableRowOps();
/// The implementation with vector instructions; null where this machine has none.
const TRowOps* VectorRowOps();
/// The implementation in use: the vectorised one where there is one.
const TRowOps& RowOps();
/// For tests: use this implementation from now on; null for the default.
void UseRowOps(const TRowOps* ops);

} // namespace Vz
