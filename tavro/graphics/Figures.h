#pragma once

#include "tavro/graphics/Geometry.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace Vz {

/// What a step of a path does; the comment gives its numbers in TFigures::Numbers.
enum class TVerb : std::uint8_t {
    Move,  ///< x y
    Line,  ///< x y
    Quad,  ///< x1 y1 x y
    Cubic, ///< x1 y1 x2 y2 x y
    Arc,   ///< rx ry rotationDeg largeArc(0/1) sweep(0/1) x y
    Close, ///< none
};

/// How many numbers a step of this kind has.
constexpr int NumberCount(TVerb verb) {
    constexpr int counts[] = {2, 2, 4, 6, 7, 0};
    return counts[static_cast<int>(verb)];
}

/// The steps of a path in absolute coordinates, as plain data. The first step is a Move.
struct TFigures {
    std::vector<TVerb> Verbs;
    std::vector<double> Numbers;

    bool IsEmpty() const { return Verbs.empty(); }
    void Clear();
    void MoveTo(double x, double y);
    void LineTo(double x, double y);
    void QuadTo(double x1, double y1, double x, double y);
    void CubicTo(double x1, double y1, double x2, double y2, double x, double y);
    void ArcTo(double rx, double ry, double rotationDeg, bool largeArc, bool sweep, double x, double y);
    void Close();
    /// A closed rectangle with corners rounded by rx and ry (0: sharp), in SVG's order of points
    /// (SVG 1.1, 9.2).
    void AddRect(double x, double y, double width, double height, double rx = 0, double ry = 0);
    /// A closed ellipse of four arcs that starts at three o'clock and runs clockwise (SVG 2, 10.4). Nothing
    /// where a radius is not above 0.
    void AddEllipse(double cx, double cy, double rx, double ry);
    void Append(const TFigures& other);
    void Append(const TFigures& other, const TAffine& matrix);
    /// Maps every step in place; an arc stays an arc of the mapped ellipse (a straight line where the map is
    /// flat).
    void Transform(const TAffine& matrix);
    /// The box around the curves themselves (not their control points), under the matrix. Lone Moves do not
    /// count unless nothing else is there.
    TRectD Bounds(const TAffine& matrix = {}) const;
    friend bool operator==(const TFigures&, const TFigures&) = default;
};

enum class TFillRule : std::uint8_t { NonZero, EvenOdd };
enum class TLineCap : std::uint8_t { Butt, Round, Square };
/// Miter becomes a bevel beyond the limit, MiterClip is cut off there. Arcs is drawn as MiterClip (FIXME: SVG
/// 2, 13.5.4).
enum class TLineJoin : std::uint8_t { Miter, MiterClip, Round, Bevel, Arcs };

/// How a path is stroked (SVG 1.1, 11.4). Lengths are in the path's own units. A sub-path without length is
/// painted as its caps, round or square. Dashes that are out of range, or more than half a million, count as
/// a solid line.
struct TStrokeStyle {
    double Width = 1; ///< >= 0; 0 paints nothing
    TLineCap Cap = TLineCap::Butt;
    TLineJoin Join = TLineJoin::Miter;
    double MiterLimit = 4;      ///< >= 1
    std::vector<double> Dashes; ///< empty: solid; else an even count of lengths >= 0 with a sum > 0
    double DashOffset = 0;
    friend bool operator==(const TStrokeStyle&, const TStrokeStyle&) = default;
};

/// Closed polygons in the units of the path they were made from: polygon i runs from Starts[i] to Starts[i +
/// 1].
struct TPolygons {
    std::vector<TPointD> Points;
    std::vector<std::uint32_t> Starts; ///< one more than there are polygons, the last is Points.size()
    TRectD Bounds;                     ///< around all points
};

/// A shape to be painted: figures, filled by a rule or stroked in a style. It looks at them and owns nothing.
struct TShape {
    const TFigures* Figures = nullptr;
    const TStrokeStyle* Stroke = nullptr; ///< null: the shape is the inside by Rule; else the stroke's area
    TFillRule Rule = TFillRule::NonZero;
    /// Where the flattened shape may be kept from one painting to the next; null keeps nothing.
    struct TPolygonCache* Cache = nullptr;
};

/// A shape flattened for one scale, or a few: who draws it may do so in several sizes by turns. Whoever
/// changes the figures or the style clears it.
struct TPolygonCache {
    double Scale = 0; ///< 0: nothing is kept
    TPolygons Polygons;
    std::unique_ptr<TPolygonCache> Next; ///< of another scale
    void Clear();
};

/// The scale that a shape is flattened for under this matrix: a power of the square root of two at or above
/// the matrix's greatest stretch, so that a turning element keeps its polygons and the same matrix always
/// gives the same ones.
double FlatteningScale(const TAffine& toDevice);

/// The shape's area as polygons, in its own units, no point farther than about a tenth of a device pixel from
/// the true outline where one unit is `scale` pixels. For a stroke the polygons are the stroke's outline
/// (fill them non-zero). Reads and fills shape.Cache where there is one; else the result lies in `scratch`.
/// Figures that are not finite, or beyond +-1e9 units, are left out.
const TPolygons& Flatten(const TShape& shape, double scale, TPolygons& scratch);

/// The box around a stroke of the figures under a matrix, exact to the flattening.
TRectD StrokeBounds(const TFigures& figures, const TStrokeStyle& style, const TAffine& matrix);
/// True when the point (in the shape's units) lies in the shape.
bool Contains(const TShape& shape, TPointD point, double scale);

} // namespace Vz
