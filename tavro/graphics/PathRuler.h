#pragma once

#include "tavro/graphics/Figures.h"

#include <vector>

namespace Vz {

/// A place on a path: a point and the direction in which the path runs there, of length 1.
struct TPathPlace {
    TPointD Point;
    TPointD Direction{1, 0};
};

/// Finds places on a path by their distance along it. Points and directions are those of the true curves, not
/// of chords; distances are exact to about a millionth of a curve's length. Sub-paths follow each other
/// without a gap: moves have no length, closing lines have.
class TPathRuler {
public:
    explicit TPathRuler(const TFigures& figures);

    /// The length of all sub-paths together, in the figures' units; 0 for figures without extent.
    double GetLength() const { return FLength; }
    /// True for a single sub-path that ends where it began, by a closing step.
    bool IsClosed() const { return FClosed; }
    /// The place at a distance from the beginning; below 0 the path's beginning, beyond its length its end.
    /// At a corner the direction is that of the part behind it.
    TPathPlace At(double distance) const;

private:
    friend class TRulerSink;
    /// A curve in its parameter t from 0 to 1: a polynomial of the third degree, or a piece of an ellipse.
    struct TCurve {
        TPointD C[4]; ///< powers of t; of an arc: centre, both axes
        double Start = 0;
        double Sweep = 0;
        bool IsArc = false;

        TPointD PointAt(double t) const;
        TPointD SpeedAt(double t) const;
        double LengthBetween(double t0, double t1) const;
    };
    /// A stretch of a curve that is short or even enough for its length to be integrated at once.
    struct TStretch {
        double Begin = 0; ///< distance from the path's beginning
        double Length = 0;
        double T0 = 0;
        double T1 = 1;
        std::size_t Curve = 0;
    };

    void Add(const TCurve& curve, int parts);
    void AddStretch(double t0, double t1, double length, int depth);
    TPointD DirectionAt(const TStretch& stretch, double t) const;

    std::vector<TCurve> FCurves;
    std::vector<TStretch> FStretches;
    double FLength = 0;
    bool FClosed = false;
};

/// The directions (not of unit length) in which an Arc step that starts at `from` leaves there and arrives at
/// its end. `numbers` are the step's seven. An arc that is a straight line gives that line's direction.
void ArcDirections(TPointD from, const double* numbers, TPointD& leaving, TPointD& arriving);

} // namespace Vz
