#include "tavro/graphics/Figures.h"

#include "tavro/graphics/FiguresInternal.h"

#include <algorithm>
#include <numbers>

namespace Vz {
namespace {

constexpr double RadiansPerDegree = std::numbers::pi / 180;

/// Maps the ellipse of an Arc step: its axes are those of the mapped circle's matrix.
void MapArc(const TAffine& m, double* n) {
    if (m.IsTranslation()) return;
    const double rotation = n[2] * RadiansPerDegree;
    const double c = std::cos(rotation);
    const double s = std::sin(rotation);
    const double ux = n[0] * (m.A * c + m.C * s);
    const double uy = n[0] * (m.B * c + m.D * s);
    const double vx = n[1] * (m.C * c - m.A * s);
    const double vy = n[1] * (m.D * c - m.B * s);
    if (m.Determinant() < 0) n[4] = n[4] == 0 ? 1 : 0;

    const double shear = ux * uy + vx * vy;
    const double width = std::hypot(ux, vx);
    const double height = std::hypot(uy, vy);
    const double half = (width - height) * (width + height) / 2;
    const double round = 1e-13 * width * height;
    if (std::abs(shear) <= round) { // upright, or a circle
        n[0] = width;
        n[1] = std::abs(half) <= round ? width : height;
        n[2] = 0;
        return;
    }
    const double mean = (width * width + height * height) / 2;
    const double greater = std::sqrt(mean + std::hypot(half, shear));
    n[0] = greater;
    n[1] = std::abs(ux * vy - uy * vx) / greater;
    n[2] = std::atan2(shear, half) / 2 / RadiansPerDegree;
}

void MapPoints(const TAffine& m, double* numbers, int count) {
    for (int i = 0; i < count; i += 2) {
        const TPointD p = m(numbers[i], numbers[i + 1]);
        numbers[i] = p.X;
        numbers[i + 1] = p.Y;
    }
}

void MapSteps(const TAffine& matrix, const TVerb* first, const TVerb* last, double* numbers) {
    for (; first != last; ++first) {
        if (*first == TVerb::Arc) {
            MapArc(matrix, numbers);
            MapPoints(matrix, numbers + 5, 2);
        } else {
            MapPoints(matrix, numbers, NumberCount(*first));
        }
        numbers += NumberCount(*first);
    }
}

/// Takes up the curves' ends and the places where they turn back in x or y.
struct TBoundsSink {
    const TAffine& Matrix;
    TRectD& Box;

    void Include(TPointD p) { Box.Include(p.X, p.Y); }
    void Begin(TPointD p) { Include(Matrix(p)); }
    void Line(TPointD p) { Include(Matrix(p)); }
    void End(bool) {}

    void Quad(TPointD from, TPointD a, TPointD p) {
        // A quadratic curve is the cubic with its control points at two thirds.
        const auto third = [](TPointD end, TPointD control) {
            return TPointD{end.X + (control.X - end.X) * 2 / 3, end.Y + (control.Y - end.Y) * 2 / 3};
        };
        const TPointD m0 = Matrix(from), ma = Matrix(a), m1 = Matrix(p);
        Include(m1);
        if (Encloses(ma)) return;
        for (const double t :
             {Ratio(m0.X - ma.X, m0.X - 2 * ma.X + m1.X), Ratio(m0.Y - ma.Y, m0.Y - 2 * ma.Y + m1.Y)})
            IncludeCubic(m0, third(m0, ma), third(m1, ma), m1, t);
    }

    void Cubic(TPointD from, TPointD a, TPointD b, TPointD p) {
        const TPointD m0 = Matrix(from), ma = Matrix(a), mb = Matrix(b), m1 = Matrix(p);
        Include(m1);
        if (Encloses(ma) && Encloses(mb)) return;
        double roots[4];
        const double* end = Turns(m0.X, ma.X, mb.X, m1.X, roots);
        end = Turns(m0.Y, ma.Y, mb.Y, m1.Y, roots + (end - roots));
        for (const double* t = roots; t != end; ++t)
            IncludeCubic(m0, ma, mb, m1, *t);
    }

    void Arc(const TArcCurve& curve, TPointD p) {
        Include(Matrix(p));
        const TArcCurve arc = Mapped(curve, Matrix);
        for (const double t : {std::atan2(arc.V.X, arc.U.X), std::atan2(arc.V.Y, arc.U.Y)})
            for (const double turn : {t, t + std::numbers::pi}) {
                const double way = std::remainder(turn - arc.Start, 2 * std::numbers::pi);
                const double ahead = arc.Sweep > 0 ? way + (way < 0) * 2 * std::numbers::pi
                                                   : -way + (way > 0) * 2 * std::numbers::pi;
                if (ahead < std::abs(arc.Sweep)) Include(arc.At(turn));
            }
    }

private:
    bool Encloses(TPointD p) const {
        return p.X >= Box.Left && p.X <= Box.Right && p.Y >= Box.Top && p.Y <= Box.Bottom;
    }
    static double Ratio(double a, double b) { return b == 0 ? -1 : a / b; }

    /// Where the cubic's derivative is zero.
    static double* Turns(double p0, double p1, double p2, double p3, double* roots) {
        const double a = p3 - p0 + 3 * (p1 - p2);
        const double b = 2 * (p0 - 2 * p1 + p2);
        const double c = p1 - p0;
        const double root = b * b - 4 * a * c;
        if (root < 0) return roots;
        // The form that does not subtract figures which are nearly alike.
        const double q = -(b + std::copysign(std::sqrt(root), b)) / 2;
        *roots++ = Ratio(q, a);
        *roots++ = Ratio(c, q);
        return roots;
    }

    void IncludeCubic(TPointD p0, TPointD p1, TPointD p2, TPointD p3, double t) {
        if (!(t > 0 && t < 1)) return;
        const double s = 1 - t;
        const double w0 = s * s * s, w1 = 3 * s * s * t, w2 = 3 * s * t * t, w3 = t * t * t;
        Include(
            {w0 * p0.X + w1 * p1.X + w2 * p2.X + w3 * p3.X, w0 * p0.Y + w1 * p1.Y + w2 * p2.Y + w3 * p3.Y});
    }
};

} // namespace

bool ToArcCurve(TPointD from, const double* n, TArcCurve& arc) {
    const double rx = std::abs(n[0]);
    const double ry = std::abs(n[1]);
    const TPointD to{n[5], n[6]};
    constexpr double radiusLimit = 1000 * CoordinateLimit;
    if (!(rx > 0 && ry > 0 && rx <= radiusLimit && ry <= radiusLimit && std::isfinite(n[2]))) return false;

    const double rotation = std::fmod(n[2], 360) * RadiansPerDegree;
    const double c = std::cos(rotation);
    const double s = std::sin(rotation);
    const TPointD half{(from.X - to.X) / 2, (from.Y - to.Y) / 2};
    // The half chord where the ellipse is the unit circle.
    const TPointD unit{(c * half.X + s * half.Y) / rx, (c * half.Y - s * half.X) / ry};
    const double square = unit.X * unit.X + unit.Y * unit.Y;
    if (!std::isnormal(square)) return false;

    const double grow = std::max(1.0, std::sqrt(square));
    const TPointD start{unit.X / grow, unit.Y / grow};
    const bool isLeft = (n[3] != 0) != (n[4] != 0);
    const double away = square >= 1 ? 0 : std::sqrt((1 - square) / square) * (isLeft ? 1 : -1);
    const TPointD center{away * start.Y, -away * start.X};

    arc.U = {rx * grow * c, rx * grow * s};
    arc.V = {-ry * grow * s, ry * grow * c};
    arc.Center = {from.X - half.X, from.Y - half.Y};
    arc.Center = arc.At(center.X, center.Y);
    arc.Start = std::atan2(start.Y - center.Y, start.X - center.X);
    arc.Sweep = std::atan2(-start.Y - center.Y, -start.X - center.X) - arc.Start;
    if (n[4] != 0 && arc.Sweep < 0) arc.Sweep += 2 * std::numbers::pi;
    if (n[4] == 0 && arc.Sweep > 0) arc.Sweep -= 2 * std::numbers::pi;
    return true;
}

TArcCurve Mapped(const TArcCurve& arc, const TAffine& m) {
    const auto vector = [&m](TPointD v) { return TPointD{m.A * v.X + m.C * v.Y, m.B * v.X + m.D * v.Y}; };
    return {m(arc.Center), vector(arc.U), vector(arc.V), arc.Start, arc.Sweep};
}

void TFigures::Clear() {
    Verbs.clear();
    Numbers.clear();
}

void TFigures::MoveTo(double x, double y) {
    Verbs.push_back(TVerb::Move);
    Numbers.insert(Numbers.end(), {x, y});
}

void TFigures::LineTo(double x, double y) {
    Verbs.push_back(TVerb::Line);
    Numbers.insert(Numbers.end(), {x, y});
}

void TFigures::QuadTo(double x1, double y1, double x, double y) {
    Verbs.push_back(TVerb::Quad);
    Numbers.insert(Numbers.end(), {x1, y1, x, y});
}

void TFigures::CubicTo(double x1, double y1, double x2, double y2, double x, double y) {
    Verbs.push_back(TVerb::Cubic);
    Numbers.insert(Numbers.end(), {x1, y1, x2, y2, x, y});
}

void TFigures::ArcTo(double rx, double ry, double rotationDeg, bool largeArc, bool sweep, double x,
                     double y) {
    Verbs.push_back(TVerb::Arc);
    Numbers.insert(Numbers.end(), {rx, ry, rotationDeg, largeArc ? 1.0 : 0.0, sweep ? 1.0 : 0.0, x, y});
}

void TFigures::Close() { Verbs.push_back(TVerb::Close); }

void TFigures::AddRect(double x, double y, double width, double height, double rx, double ry) {
    if (!(width > 0 && height > 0)) return;
    const double right = x + width;
    const double bottom = y + height;
    if (!(rx > 0 && ry > 0)) {
        MoveTo(x, y);
        LineTo(right, y);
        LineTo(right, bottom);
        LineTo(x, bottom);
        Close();
        return;
    }
    rx = std::min(rx, width / 2);
    ry = std::min(ry, height / 2);
    MoveTo(x + rx, y);
    LineTo(right - rx, y);
    ArcTo(rx, ry, 0, false, true, right, y + ry);
    LineTo(right, bottom - ry);
    ArcTo(rx, ry, 0, false, true, right - rx, bottom);
    LineTo(x + rx, bottom);
    ArcTo(rx, ry, 0, false, true, x, bottom - ry);
    LineTo(x, y + ry);
    ArcTo(rx, ry, 0, false, true, x + rx, y);
    Close();
}

void TFigures::AddEllipse(double cx, double cy, double rx, double ry) {
    if (!(rx > 0 && ry > 0)) return;
    MoveTo(cx + rx, cy);
    ArcTo(rx, ry, 0, false, true, cx, cy + ry);
    ArcTo(rx, ry, 0, false, true, cx - rx, cy);
    ArcTo(rx, ry, 0, false, true, cx, cy - ry);
    ArcTo(rx, ry, 0, false, true, cx + rx, cy);
    Close();
}

void TFigures::Append(const TFigures& other) { Append(other, {}); }

void TFigures::Append(const TFigures& other, const TAffine& matrix) {
    // The other may be this one, so nothing but indices outlives the growth.
    const std::size_t verbs = Verbs.size(), moreVerbs = other.Verbs.size();
    const std::size_t numbers = Numbers.size(), moreNumbers = other.Numbers.size();
    Verbs.resize(verbs + moreVerbs);
    Numbers.resize(numbers + moreNumbers);
    std::copy_n(other.Verbs.begin(), moreVerbs, Verbs.begin() + static_cast<std::ptrdiff_t>(verbs));
    std::copy_n(other.Numbers.begin(), moreNumbers, Numbers.begin() + static_cast<std::ptrdiff_t>(numbers));
    if (matrix != TAffine{})
        MapSteps(matrix, Verbs.data() + verbs, Verbs.data() + Verbs.size(), Numbers.data() + numbers);
}

void TFigures::Transform(const TAffine& matrix) {
    MapSteps(matrix, Verbs.data(), Verbs.data() + Verbs.size(), Numbers.data());
}

TRectD TFigures::Bounds(const TAffine& matrix) const {
    TRectD box;
    if (!matrix.IsFinite()) return box;
    WalkFigures(*this, TBoundsSink{matrix, box});
    if (!box.IsEmpty()) return box;
    const double* numbers = Numbers.data();
    for (const TVerb verb : Verbs) {
        if (verb == TVerb::Move && IsDrawable(verb, numbers)) {
            const TPointD p = matrix(numbers[0], numbers[1]);
            box.Include(p.X, p.Y);
        }
        numbers += NumberCount(verb);
    }
    return box;
}

} // namespace Vz
