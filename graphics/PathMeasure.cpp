#include "graphics/PathMeasure.h"

#include "graphics/FiguresInternal.h"

#include <cmath>

namespace Vz {

namespace {

/// Adds up the lengths of the steps; curves by the chords of their flattened form.
class TLengthSink {
public:
    double Length = 0;

    void Begin(TPointD p) { FStart = FLast = p; }
    void Line(TPointD p) {
        Length += std::hypot(p.X - FLast.X, p.Y - FLast.Y);
        FLast = p;
    }
    void Quad(TPointD from, TPointD a, TPointD p) {
        Curve([&](double t) {
            const double u = 1 - t;
            return TPointD{u * u * from.X + 2 * u * t * a.X + t * t * p.X,
                           u * u * from.Y + 2 * u * t * a.Y + t * t * p.Y};
        });
    }
    void Cubic(TPointD from, TPointD a, TPointD b, TPointD p) {
        Curve([&](double t) {
            const double u = 1 - t;
            const double c[] = {u * u * u, 3 * u * u * t, 3 * u * t * t, t * t * t};
            return TPointD{c[0] * from.X + c[1] * a.X + c[2] * b.X + c[3] * p.X,
                           c[0] * from.Y + c[1] * a.Y + c[2] * b.Y + c[3] * p.Y};
        });
    }
    void Arc(const TArcCurve& arc, TPointD) {
        Curve([&](double t) { return arc.At(arc.Start + arc.Sweep * t); });
    }
    void End(bool closed) {
        if (closed) Line(FStart);
    }

private:
    template <class F> void Curve(F at) {
        constexpr int pieces = 128;
        for (int i = 1; i <= pieces; ++i)
            Line(at(static_cast<double>(i) / pieces));
    }

    TPointD FStart, FLast;
};

} // namespace

double PathLength(const TFigures& figures) {
    TLengthSink sink;
    WalkFigures(figures, sink);
    return sink.Length;
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
