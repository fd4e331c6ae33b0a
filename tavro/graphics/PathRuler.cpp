#include "tavro/graphics/PathRuler.h"

#include "tavro/graphics/FiguresInternal.h"

#include <algorithm>
#include <cmath>

namespace Vz {
namespace {

TPointD operator+(TPointD a, TPointD b) { return {a.X + b.X, a.Y + b.Y}; }
TPointD operator-(TPointD a, TPointD b) { return {a.X - b.X, a.Y - b.Y}; }
TPointD operator*(double f, TPointD p) { return {f * p.X, f * p.Y}; }
double Norm(TPointD p) { return std::sqrt(p.X * p.X + p.Y * p.Y); } // coordinates are limited

/// How far the two halves' lengths may differ from the whole's, as a part of it.
constexpr double Tolerance = 1e-7;
constexpr int MaxHalvings = 12;

} // namespace

/// Takes a path's steps up as curves.
class TRulerSink {
public:
    explicit TRulerSink(TPathRuler& ruler)
        : FRuler(ruler) {}

    int Count = 0;
    bool IsClosed = false;

    void Begin(TPointD p) {
        FStart = FLast = p;
        ++Count;
    }
    void Line(TPointD p) {
        FRuler.Add({{FLast, p - FLast, {}, {}}}, 1);
        FLast = p;
    }
    void Quad(TPointD from, TPointD a, TPointD p) {
        FRuler.Add({{from, 2 * (a - from), from - 2 * a + p, {}}}, 2);
        FLast = p;
    }
    void Cubic(TPointD from, TPointD a, TPointD b, TPointD p) {
        FRuler.Add({{from, 3 * (a - from), 3 * (from - 2 * a + b), p - from + 3 * (a - b)}}, 2);
        FLast = p;
    }
    void Arc(const TArcCurve& arc, TPointD end) {
        FRuler.Add({{arc.Center, arc.U, arc.V, {}}, arc.Start, arc.Sweep, true}, 2);
        FLast = end;
    }
    void End(bool closed) {
        if (closed) Line(FStart);
        IsClosed = closed;
    }

private:
    TPathRuler& FRuler;
    TPointD FStart, FLast;
};

TPathRuler::TPathRuler(const TFigures& figures) {
    TRulerSink sink(*this);
    WalkFigures(figures, sink);
    FClosed = sink.IsClosed && sink.Count == 1;
}

TPointD TPathRuler::TCurve::PointAt(double t) const {
    if (!IsArc) return C[0] + t * (C[1] + t * (C[2] + t * C[3]));
    const double angle = Start + Sweep * t;
    return C[0] + std::cos(angle) * C[1] + std::sin(angle) * C[2];
}

TPointD TPathRuler::TCurve::SpeedAt(double t) const {
    if (!IsArc) return C[1] + t * (2 * C[2] + (3 * t) * C[3]);
    const double angle = Start + Sweep * t;
    return Sweep * (std::cos(angle) * C[2] - std::sin(angle) * C[1]);
}

/// By the rule of Gauss and Legendre with five points; a line exactly.
double TPathRuler::TCurve::LengthBetween(double t0, double t1) const {
    if (!IsArc && C[2] == TPointD{} && C[3] == TPointD{}) return Norm(C[1]) * (t1 - t0);
    constexpr double places[] = {0, 0.5384693101056831, 0.9061798459386640};
    constexpr double weights[] = {0.5688888888888889, 0.4786286704993665, 0.2369268850561891};
    const double middle = (t0 + t1) / 2;
    const double half = (t1 - t0) / 2;
    double sum = weights[0] * Norm(SpeedAt(middle));
    for (int i = 1; i < 3; ++i)
        sum += weights[i] *
               (Norm(SpeedAt(middle - half * places[i])) + Norm(SpeedAt(middle + half * places[i])));
    return sum * half;
}

void TPathRuler::Add(const TCurve& curve, int parts) {
    FCurves.push_back(curve);
    const std::size_t before = FStretches.size();
    for (int i = 0; i < parts; ++i) {
        const double t0 = static_cast<double>(i) / parts;
        const double t1 = static_cast<double>(i + 1) / parts;
        const double length = curve.LengthBetween(t0, t1);
        if (parts == 1)
            AddStretch(t0, t1, length, MaxHalvings);
        else
            AddStretch(t0, t1, length, 0);
    }
    if (FStretches.size() == before) FCurves.pop_back();
}

/// Halves a stretch until its halves' lengths make up the whole's.
void TPathRuler::AddStretch(double t0, double t1, double length, int depth) {
    const TCurve& curve = FCurves.back();
    if (depth < MaxHalvings) {
        const double middle = (t0 + t1) / 2;
        const double first = curve.LengthBetween(t0, middle);
        const double second = curve.LengthBetween(middle, t1);
        if (std::abs(first + second - length) > Tolerance * length) {
            AddStretch(t0, middle, first, depth + 1);
            AddStretch(middle, t1, second, depth + 1);
            return;
        }
    }
    if (!(length > 0) || !std::isfinite(length)) return;
    FStretches.push_back({FLength, length, t0, t1, FCurves.size() - 1});
    FLength += length;
}

TPathPlace TPathRuler::At(double distance) const {
    if (FStretches.empty()) return {};
    distance = distance > 0 ? std::min(distance, FLength) : 0;
    const auto behind = std::upper_bound(FStretches.begin(), FStretches.end(), distance,
                                         [](double d, const TStretch& s) { return d < s.Begin; });
    const TStretch& stretch = *std::prev(behind);
    const TCurve& curve = FCurves[stretch.Curve];
    const double wanted = std::clamp(distance - stretch.Begin, 0.0, stretch.Length);
    double low = stretch.T0;
    double high = stretch.T1;
    double t = low + (high - low) * (wanted / stretch.Length);
    for (int i = 0; i < 24; ++i) { // Newton's steps, held between the bounds found so far
        const double miss = curve.LengthBetween(stretch.T0, t) - wanted;
        if (std::abs(miss) <= 1e-9 * stretch.Length) break;
        (miss > 0 ? high : low) = t;
        const double next = t - miss / Norm(curve.SpeedAt(t));
        t = next > low && next < high ? next : (low + high) / 2;
    }
    return {curve.PointAt(t), DirectionAt(stretch, t)};
}

/// The curve's direction; where it stands still that of the way to a neighbouring point (SVG 1.1, F.5).
TPointD TPathRuler::DirectionAt(const TStretch& stretch, double t) const {
    const TCurve& curve = FCurves[stretch.Curve];
    TPointD speed = curve.SpeedAt(t);
    if (!(Norm(speed) > 1e-6 * stretch.Length / (stretch.T1 - stretch.T0))) {
        const double step = (stretch.T1 - stretch.T0) / 64;
        const double near = t + step <= stretch.T1 ? t : t - step;
        speed = curve.PointAt(near + step) - curve.PointAt(near);
    }
    const double norm = Norm(speed);
    return norm > 0 ? (1 / norm) * speed : TPointD{1, 0};
}

void ArcDirections(TPointD from, const double* numbers, TPointD& leaving, TPointD& arriving) {
    TArcCurve arc;
    if (!ToArcCurve(from, numbers, arc)) {
        leaving = arriving = {numbers[5] - from.X, numbers[6] - from.Y};
        return;
    }
    const auto direction = [&](double t) {
        const double c = std::cos(t) * arc.Sweep;
        const double s = std::sin(t) * arc.Sweep;
        return TPointD{arc.V.X * c - arc.U.X * s, arc.V.Y * c - arc.U.Y * s};
    };
    leaving = direction(arc.Start);
    arriving = direction(arc.Start + arc.Sweep);
}

} // namespace Vz
