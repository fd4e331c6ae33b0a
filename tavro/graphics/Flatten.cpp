#include "tavro/graphics/Figures.h"

#include "tavro/graphics/FiguresInternal.h"

#include <agg_math_stroke.h>

#include <algorithm>
#include <numbers>
#include <numeric>
#include <span>

namespace Vz {
namespace {

/// How far a chord may stay away from its curve, in device pixels.
constexpr double TolerancePx = 0.03;
/// Points nearer to each other than this count as one in a stroke, in device pixels: a closing line that only
/// makes up for rounding must not have a direction of its own.
constexpr double MergePx = 1.0 / 1024;
/// The most chords of one curve, and of all curves (or joins) of one shape together.
constexpr int CurveLimit = 1 << 13;
/// The most chords of a curve that only straighten the ends of a wide stroke.
constexpr double TurnChordLimit = 2048;
constexpr std::size_t ShapeLimit = std::size_t{1} << 21;
/// A pattern that gives a path more dashes than this is drawn as a solid line.
constexpr double DashLimit = 1 << 19;
constexpr double WidthLimit = CoordinateLimit;
constexpr double MiterLimitLimit = 1e5;
constexpr double LeastScale = 0x1p-40;
constexpr double GreatestScale = 0x1p40;

/// Some part of the limit of a shape for each of `count` curves.
int ShareOf(std::size_t count, int most) {
    return static_cast<int>(std::clamp<std::size_t>(ShapeLimit / std::max<std::size_t>(count, 1), 4,
                                                    static_cast<std::size_t>(most)));
}

/// The angle between two vectors, 0..pi.
double Turn(TPointD u, TPointD v) {
    return std::abs(std::atan2(u.X * v.Y - u.Y * v.X, u.X * v.X + u.Y * v.Y));
}
TPointD Minus(TPointD a, TPointD b) { return {a.X - b.X, a.Y - b.Y}; }
double Length(TPointD v) { return std::hypot(v.X, v.Y); }

/// How finely curves are cut up.
struct TFineness {
    double Tolerance = 0; ///< in units
    double TurnPerChord =
        0;                  ///< radians; 0: no matter. Of a stroke, the ends and dashes stand across a chord.
    int Limit = CurveLimit; ///< chords a curve

    int Chords(double byDistance, double turn) const {
        const double byTurn = TurnPerChord > 0 ? std::min(turn / TurnPerChord, TurnChordLimit) : 0;
        return static_cast<int>(std::ceil(std::clamp(std::max(byDistance, byTurn), 1.0, double(Limit))));
    }
};

/// Cuts curves into chords for `TOut`, which has Begin(p), Add(p, isSmooth) and End(isClosed).
template <class TOut> struct TCurveCutter {
    TFineness Fine;
    TOut& Out;

    void Begin(TPointD p) { Out.Begin(p); }
    void Line(TPointD p) { Out.Add(p, false); }
    void End(bool isClosed) { Out.End(isClosed); }

    // The counts of chords for an even step of the parameter: G. Wang, "The subdivision method for finding
    // the intersection between two Bezier curves or surfaces", 1984.
    void Quad(TPointD p0, TPointD p1, TPointD p2) {
        const TPointD a{p0.X - 2 * p1.X + p2.X, p0.Y - 2 * p1.Y + p2.Y};
        const TPointD b{2 * (p1.X - p0.X), 2 * (p1.Y - p0.Y)};
        const double turn = Fine.TurnPerChord > 0 ? Turn(Minus(p1, p0), Minus(p2, p1)) : 0;
        const int count = Fine.Chords(std::sqrt(Length(a) / (4 * Fine.Tolerance)), turn);
        for (int i = 1; i < count; ++i) {
            const double t = double(i) / count;
            Out.Add({(a.X * t + b.X) * t + p0.X, (a.Y * t + b.Y) * t + p0.Y}, true);
        }
        Out.Add(p2, false);
    }

    void Cubic(TPointD p0, TPointD p1, TPointD p2, TPointD p3) {
        const TPointD d1{p0.X - 2 * p1.X + p2.X, p0.Y - 2 * p1.Y + p2.Y};
        const TPointD d2{p1.X - 2 * p2.X + p3.X, p1.Y - 2 * p2.Y + p3.Y};
        double turn = 0;
        if (Fine.TurnPerChord > 0)
            turn = Turn(Minus(p1, p0), Minus(p2, p1)) + Turn(Minus(p2, p1), Minus(p3, p2));
        const int count =
            Fine.Chords(std::sqrt(0.75 * std::max(Length(d1), Length(d2)) / Fine.Tolerance), turn);
        const TPointD a{d2.X - d1.X, d2.Y - d1.Y};
        const TPointD b{3 * d1.X, 3 * d1.Y};
        const TPointD c{3 * (p1.X - p0.X), 3 * (p1.Y - p0.Y)};
        for (int i = 1; i < count; ++i) {
            const double t = double(i) / count;
            Out.Add({((a.X * t + b.X) * t + c.X) * t + p0.X, ((a.Y * t + b.Y) * t + c.Y) * t + p0.Y}, true);
        }
        Out.Add(p3, false);
    }

    void Arc(const TArcCurve& arc, TPointD end) {
        const double u = Length(arc.U);
        const double v = Length(arc.V);
        const double radius = std::max(u, v);
        const double chord = 2 * std::acos(std::clamp(1 - Fine.Tolerance / radius, 0.7, 1 - 1e-12));
        const double sweep = std::abs(arc.Sweep);
        const int count = Fine.Chords(sweep / chord, sweep * std::min(4.0, radius / std::min(u, v)));
        const double step = arc.Sweep / count;
        const double cosStep = std::cos(step);
        const double sinStep = std::sin(step);
        double c = std::cos(arc.Start);
        double s = std::sin(arc.Start);
        for (int i = 1; i < count; ++i) {
            const double next = c * cosStep - s * sinStep;
            s = s * cosStep + c * sinStep;
            c = next;
            Out.Add(arc.At(c, s), true);
        }
        Out.Add(end, false);
    }
};

/// Collects what is filled.
struct TFillOut {
    TPolygons& Polygons;

    void Begin(TPointD p) { Polygons.Points.push_back(p); }
    void Add(TPointD p, bool) {
        if (Polygons.Points.back() != p) Polygons.Points.push_back(p);
    }
    void End(bool) {
        if (Polygons.Points.size() - Polygons.Starts.back() < 3)
            Polygons.Points.resize(Polygons.Starts.back());
        else
            Polygons.Starts.push_back(static_cast<std::uint32_t>(Polygons.Points.size()));
    }
};

/// A corner of what is stroked; `dist` is the way to the next one.
struct TVertex : agg::vertex_dist {
    bool IsSmooth = false; ///< amid a curve: joined round whatever the style says

    TVertex() = default;
    TVertex(TPointD p, bool isSmooth)
        : agg::vertex_dist(p.X, p.Y)
        , IsSmooth(isSmooth) {
        dist = 0;
    }
    TPointD Point() const { return {x, y}; }
};

double Distance(const TVertex& a, const TVertex& b) { return Length(Minus(a.Point(), b.Point())); }

/// A sub-path as corners with distances.
struct TLine {
    std::vector<TVertex> Vertices;
    double Merge = 0;

    void Clear() { Vertices.clear(); }
    /// Adds a corner that is not the last one over again.
    void Add(const TVertex& vertex) {
        if (!Vertices.empty()) {
            TVertex& last = Vertices.back();
            last.dist = Distance(last, vertex);
            if (last.dist <= Merge) {
                last.IsSmooth &= vertex.IsSmooth;
                return;
            }
        }
        Vertices.push_back(vertex);
    }
    /// Drops corners at the end that are the first one over again, and measures the closing line.
    void Close() {
        while (Vertices.size() > 1 && Distance(Vertices.back(), Vertices.front()) <= Merge)
            Vertices.pop_back();
        Vertices.back().dist = Distance(Vertices.back(), Vertices.front());
    }
};

/// Collects what is stroked, all sub-paths in one list.
struct TStrokeOut {
    struct TSubPath {
        std::size_t Begin;
        std::size_t End;
        bool IsClosed;
    };
    std::vector<TVertex> Vertices;
    std::vector<TSubPath> SubPaths;
    TLine Line;
    double Length = 0;

    void Begin(TPointD p) {
        Line.Clear();
        Line.Add({p, false});
    }
    void Add(TPointD p, bool isSmooth) { Line.Add({p, isSmooth}); }
    void End(bool isClosed) {
        if (isClosed)
            Line.Close();
        else
            Line.Vertices.back().dist = 0;
        const std::size_t begin = Vertices.size();
        Vertices.insert(Vertices.end(), Line.Vertices.begin(), Line.Vertices.end());
        SubPaths.push_back({begin, Vertices.size(), isClosed});
        for (const TVertex& vertex : Line.Vertices)
            Length += vertex.dist;
    }
    std::span<const TVertex> Of(const TSubPath& subPath) const {
        return std::span(Vertices).subspan(subPath.Begin, subPath.End - subPath.Begin);
    }
    void Reset(double merge) {
        Vertices.clear();
        SubPaths.clear();
        Line.Merge = merge;
        Length = 0;
    }
};

/// Where AGG's joins and caps put their points.
struct TOutline {
    struct value_type {
        double X, Y;
        value_type(double x, double y)
            : X(x)
            , Y(y) {}
    };
    TPolygons& Polygons;

    void remove_all() {}
    void add(const value_type& p) { Polygons.Points.push_back({p.X, p.Y}); }
    void Finish() {
        if (Polygons.Points.size() - Polygons.Starts.back() < 3)
            Polygons.Points.resize(Polygons.Starts.back());
        else
            Polygons.Starts.push_back(static_cast<std::uint32_t>(Polygons.Points.size()));
    }
};

/// Where SVG asks for a bevel beyond the miter limit, AGG reverts; where it asks for a clipped miter, AGG's
/// own way. Arcs are drawn as clipped miters.
agg::line_join_e JoinOf(TLineJoin join) {
    switch (join) {
    case TLineJoin::Miter:
        return agg::miter_join_revert;
    case TLineJoin::Round:
        return agg::round_join;
    case TLineJoin::Bevel:
        return agg::bevel_join;
    case TLineJoin::MiterClip:
    case TLineJoin::Arcs:
        break;
    }
    return agg::miter_join;
}

agg::line_cap_e CapOf(TLineCap cap) {
    switch (cap) {
    case TLineCap::Round:
        return agg::round_cap;
    case TLineCap::Square:
        return agg::square_cap;
    case TLineCap::Butt:
        break;
    }
    return agg::butt_cap;
}

/// Draws round lines their outlines.
class TStroker {
public:
    TStroker(const TStrokeStyle& style, double width, double scale, std::size_t joins, TPolygons& polygons)
        : FOutline{polygons}
        , FJoin(JoinOf(style.Join))
        , FHasDots(style.Cap != TLineCap::Butt) {
        FMath.line_cap(CapOf(style.Cap));
        FMath.inner_join(agg::inner_jag);
        FMath.miter_limit(style.MiterLimit >= 1 ? std::min(style.MiterLimit, MiterLimitLimit) : 1);
        FMath.width(width);
        // AGG lets an arc's chords stray by 0.125 / scale, and bends by half the width / 1024 / scale.
        const double fine = std::max(0.125, width / 2048) / TolerancePx * scale;
        const double stepLimit = 2 * std::numbers::pi / ShareOf(joins, CurveLimit / 4);
        FMath.approximation_scale(std::min(fine, 2 / (width * stepLimit * stepLimit)));
    }

    /// The cap's picture of a line without length; `direction` is a unit vector.
    void Dot(TPointD p, TPointD direction) {
        if (!FHasDots) return;
        const TVertex middle(p, false);
        FMath.calc_cap(FOutline, middle, {p.X + direction.X, p.Y + direction.Y}, 1);
        FMath.calc_cap(FOutline, middle, {p.X - direction.X, p.Y - direction.Y}, 1);
        FOutline.Finish();
    }

    /// At least one corner; a single one is a dot.
    void Open(std::span<const TVertex> line, TPointD direction) {
        if (line.size() < 2) return Dot(line[0].Point(), direction);
        const std::size_t last = line.size() - 1;
        FMath.calc_cap(FOutline, line[0], line[1], line[0].dist);
        for (std::size_t i = 1; i < last; ++i)
            Forth(line[i - 1], line[i], line[i + 1]);
        FMath.calc_cap(FOutline, line[last], line[last - 1], line[last - 1].dist);
        for (std::size_t i = last - 1; i > 0; --i)
            Back(line[i - 1], line[i], line[i + 1]);
        FOutline.Finish();
    }

    /// Two outlines, outer and inner, that run against each other.
    void Closed(std::span<const TVertex> line) {
        if (line.size() < 2) return Dot(line[0].Point(), {1, 0});
        const std::size_t count = line.size();
        const auto next = [count](std::size_t i) { return i + 1 < count ? i + 1 : 0; };
        const auto previous = [count](std::size_t i) { return i > 0 ? i - 1 : count - 1; };
        for (std::size_t i = 0; i < count; ++i)
            Forth(line[previous(i)], line[i], line[next(i)]);
        FOutline.Finish();
        for (std::size_t i = count; i-- > 0;)
            Back(line[previous(i)], line[i], line[next(i)]);
        FOutline.Finish();
    }

private:
    void Forth(const TVertex& previous, const TVertex& here, const TVertex& next) {
        FMath.line_join(here.IsSmooth ? agg::round_join : FJoin);
        FMath.calc_join(FOutline, previous, here, next, previous.dist, here.dist);
    }
    void Back(const TVertex& previous, const TVertex& here, const TVertex& next) {
        FMath.line_join(here.IsSmooth ? agg::round_join : FJoin);
        FMath.calc_join(FOutline, next, here, previous, here.dist, previous.dist);
    }

    TOutline FOutline;
    agg::math_stroke<TOutline> FMath;
    agg::line_join_e FJoin;
    bool FHasDots;
};

/// Cuts sub-paths into dashes (SVG 2, 13.5.6). Where a closed one begins and ends within a dash, these are
/// one.
class TDasher {
public:
    TDasher(const TStrokeStyle& style, double sum, double merge, TStroker& stroker)
        : FDashes(style.Dashes)
        , FStroker(stroker) {
        FPiece.Merge = FFirst.Merge = merge;
        double phase = std::isfinite(style.DashOffset) ? std::fmod(style.DashOffset, sum) : 0;
        if (phase < 0) phase += sum;
        // A dash without length that begins here is one to be drawn.
        while (FStartIndex + 1 < FDashes.size() && phase >= FDashes[FStartIndex] &&
               (phase > 0 || FStartIndex % 2 != 0))
            phase -= FDashes[FStartIndex++];
        FStartRest = std::max(0.0, FDashes[FStartIndex] - phase);
    }

    void Cut(std::span<const TVertex> line, bool isClosed) {
        FIndex = FStartIndex;
        FRest = FStartRest;
        FIsFirst = isClosed && IsOn();
        FFirst.Clear();
        FPiece.Clear();
        const std::size_t segments = isClosed ? line.size() : line.size() - 1;
        if (IsOn()) FPiece.Add(line[0]);
        for (std::size_t i = 0; i < segments; ++i)
            CutSegment(line[i], line[i + 1 < line.size() ? i + 1 : 0]);
        if (IsOn())
            FinishLast(line, isClosed);
        else if (!FFirst.Vertices.empty())
            FStroker.Open(FFirst.Vertices, FFirstDirection);
    }

private:
    bool IsOn() const { return FIndex % 2 == 0; }

    void CutSegment(const TVertex& from, const TVertex& to) {
        FDirection = {(to.x - from.x) / from.dist, (to.y - from.y) / from.dist};
        double done = 0;
        while (from.dist - done >= FRest) {
            done += FRest;
            const TVertex cut({from.x + FDirection.X * done, from.y + FDirection.Y * done}, true);
            if (IsOn()) {
                FPiece.Add(cut);
                FinishPiece();
            }
            FIndex = FIndex + 1 < FDashes.size() ? FIndex + 1 : 0;
            FRest = FDashes[FIndex];
            if (IsOn()) FPiece.Add(cut);
        }
        FRest -= from.dist - done;
        if (IsOn()) FPiece.Add(to);
    }

    void FinishPiece() {
        if (FIsFirst) {
            std::swap(FFirst.Vertices, FPiece.Vertices);
            FFirstDirection = FDirection;
        } else {
            FStroker.Open(FPiece.Vertices, FDirection);
        }
        FIsFirst = false;
        FPiece.Clear();
    }

    void FinishLast(std::span<const TVertex> line, bool isClosed) {
        if (FIsFirst) return FStroker.Closed(line);
        for (const TVertex& vertex : FFirst.Vertices)
            FPiece.Add(vertex);
        // A dash that would begin at the very end of an open line is none.
        if (FPiece.Vertices.size() > 1 || isClosed) FStroker.Open(FPiece.Vertices, FDirection);
    }

    std::span<const double> FDashes;
    TStroker& FStroker;
    std::size_t FStartIndex = 0, FIndex = 0;
    double FStartRest = 0, FRest = 0;
    TPointD FDirection, FFirstDirection;
    TLine FPiece, FFirst;
    bool FIsFirst = false;
};

/// The sum of a pattern that can be drawn, else 0.
double DashSum(const std::vector<double>& dashes) {
    if (dashes.size() % 2 != 0) return 0;
    for (const double dash : dashes)
        if (!(dash >= 0)) return 0;
    const double sum = std::accumulate(dashes.begin(), dashes.end(), 0.0);
    return std::isfinite(sum) ? sum : 0;
}

std::size_t CurveCount(const TFigures& figures) {
    return static_cast<std::size_t>(std::count_if(figures.Verbs.begin(), figures.Verbs.end(), [](TVerb verb) {
        return verb == TVerb::Quad || verb == TVerb::Cubic || verb == TVerb::Arc;
    }));
}

void FlattenFill(const TFigures& figures, double scale, TPolygons& polygons) {
    TFillOut out{polygons};
    const TFineness fineness{TolerancePx / scale, 0, ShareOf(CurveCount(figures), CurveLimit)};
    WalkFigures(figures, TCurveCutter<TFillOut>{fineness, out});
}

void FlattenStroke(const TFigures& figures, const TStrokeStyle& style, double scale, TPolygons& polygons) {
    if (!(style.Width > 0)) return;
    const double width = std::min(style.Width, WidthLimit);
    static thread_local TStrokeOut out;
    out.Reset(MergePx / scale);
    // A corner of a cap stands off by half the width times half a chord's turn: a fifth of a pixel at most.
    const TFineness fineness{TolerancePx / scale, 0.8 / (width * scale),
                             ShareOf(CurveCount(figures), CurveLimit)};
    WalkFigures(figures, TCurveCutter<TStrokeOut>{fineness, out});

    const double sum = DashSum(style.Dashes);
    const double dashes = sum > 0 ? out.Length / sum * static_cast<double>(style.Dashes.size()) / 2 : 0;
    const bool isDashed = sum > 0 && dashes <= DashLimit;
    const std::size_t cuts = isDashed ? 2 * static_cast<std::size_t>(dashes) : 0;
    TStroker stroker(style, width, scale, out.Vertices.size() + cuts, polygons);
    if (isDashed) {
        TDasher dasher(style, sum, out.Line.Merge, stroker);
        for (const auto& subPath : out.SubPaths)
            if (subPath.End - subPath.Begin > 1)
                dasher.Cut(out.Of(subPath), subPath.IsClosed);
            else
                stroker.Dot(out.Vertices[subPath.Begin].Point(), {1, 0});
    } else {
        for (const auto& subPath : out.SubPaths)
            if (subPath.IsClosed)
                stroker.Closed(out.Of(subPath));
            else
                stroker.Open(out.Of(subPath), {1, 0});
    }
    constexpr std::size_t kept = 1 << 16;
    if (out.Vertices.capacity() > kept) out = {};
}

void FlattenInto(TPolygons& polygons, const TShape& shape, double scale) {
    polygons.Points.clear();
    polygons.Starts.assign(1, 0);
    polygons.Bounds = {};
    if (shape.Figures == nullptr) return;
    if (shape.Stroke != nullptr)
        FlattenStroke(*shape.Figures, *shape.Stroke, scale, polygons);
    else
        FlattenFill(*shape.Figures, scale, polygons);
    if (polygons.Points.empty()) return;
    TRectD box{polygons.Points[0].X, polygons.Points[0].Y, polygons.Points[0].X, polygons.Points[0].Y};
    for (const TPointD& p : polygons.Points) {
        box.Left = std::min(box.Left, p.X);
        box.Top = std::min(box.Top, p.Y);
        box.Right = std::max(box.Right, p.X);
        box.Bottom = std::max(box.Bottom, p.Y);
    }
    polygons.Bounds = box;
}

} // namespace

void TPolygonCache::Clear() {
    Scale = 0;
    Polygons.Points.clear();
    Polygons.Starts.clear();
    Polygons.Bounds = {};
    Next = nullptr;
}

double FlatteningScale(const TAffine& toDevice) {
    const double stretch = toDevice.MaxScale();
    if (std::isnan(stretch)) return 1;
    const double clamped = std::clamp(stretch, LeastScale, GreatestScale);
    // What rounding adds to a turn's stretch must not lead to the next step.
    const int halves = static_cast<int>(std::ceil(2 * std::log2(clamped) - 1e-6));
    const int whole = halves >> 1;
    return std::ldexp((halves & 1) != 0 ? std::numbers::sqrt2 : 1, whole);
}

namespace {

/// Where polygons of the scale are, or are to be, kept.
TPolygonCache& PlaceFor(TPolygonCache& first, double scale) {
    constexpr int most = 4;
    TPolygonCache* place = &first;
    for (int i = 1; i < most && place->Scale != 0 && place->Scale != scale; ++i) {
        if (!place->Next) place->Next = std::make_unique<TPolygonCache>();
        place = place->Next.get();
    }
    return *place;
}

} // namespace

const TPolygons& Flatten(const TShape& shape, double scale, TPolygons& scratch) {
    scale = scale > 0 ? std::clamp(scale, LeastScale, GreatestScale) : 1;
    if (shape.Cache == nullptr) {
        FlattenInto(scratch, shape, scale);
        return scratch;
    }
    TPolygonCache& cache = PlaceFor(*shape.Cache, scale);
    if (cache.Scale == scale) return cache.Polygons;
    // By way of a work piece, so that what is kept takes no more memory than it needs.
    static thread_local TPolygons work;
    FlattenInto(work, shape, scale);
    cache.Scale = 0;
    cache.Polygons = work;
    cache.Scale = scale;
    constexpr std::size_t kept = 1 << 16;
    if (work.Points.capacity() > kept) work = {};
    return cache.Polygons;
}

TRectD StrokeBounds(const TFigures& figures, const TStrokeStyle& style, const TAffine& matrix) {
    TRectD box;
    if (!matrix.IsFinite()) return box;
    TPolygons polygons;
    Flatten({&figures, &style, TFillRule::NonZero, nullptr}, FlatteningScale(matrix), polygons);
    for (const TPointD& point : polygons.Points) {
        const TPointD p = matrix(point);
        box.Include(p.X, p.Y);
    }
    return box;
}

bool Contains(const TShape& shape, TPointD point, double scale) {
    static thread_local TPolygons scratch;
    const TPolygons& polygons = Flatten(shape, scale, scratch);
    const TRectD& box = polygons.Bounds;
    if (!(point.X >= box.Left && point.X <= box.Right && point.Y >= box.Top && point.Y <= box.Bottom))
        return false;

    int winding = 0;
    for (std::size_t i = 0; i + 1 < polygons.Starts.size(); ++i) {
        TPointD from = polygons.Points[polygons.Starts[i + 1] - 1];
        for (std::size_t k = polygons.Starts[i]; k < polygons.Starts[i + 1]; ++k) {
            const TPointD to = polygons.Points[k];
            if ((from.Y <= point.Y) != (to.Y <= point.Y)) {
                const double side =
                    (to.X - from.X) * (point.Y - from.Y) - (point.X - from.X) * (to.Y - from.Y);
                if ((side > 0) == (to.Y > from.Y)) winding += to.Y > from.Y ? 1 : -1;
            }
            from = to;
        }
    }
    return shape.Stroke == nullptr && shape.Rule == TFillRule::EvenOdd ? winding % 2 != 0 : winding != 0;
}

} // namespace Vz
