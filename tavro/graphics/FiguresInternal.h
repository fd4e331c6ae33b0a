#pragma once

#include "tavro/graphics/Figures.h"

#include <cmath>

namespace Vz {

/// A piece of an ellipse: Center + U cos t + V sin t for t from Start over Sweep radians.
struct TArcCurve {
    TPointD Center, U, V;
    double Start = 0;
    double Sweep = 0;

    TPointD At(double t) const { return At(std::cos(t), std::sin(t)); }
    TPointD At(double c, double s) const {
        return {Center.X + U.X * c + V.X * s, Center.Y + U.Y * c + V.Y * s};
    }
};

/// The curve of an Arc step (its seven numbers) that starts at `from`, with radii that are too small scaled
/// up (SVG 1.1, F.6). False where the step is a straight line: a radius of zero or beyond all measure, no
/// distance.
bool ToArcCurve(TPointD from, const double* numbers, TArcCurve& arc);

/// The arc under a matrix.
TArcCurve Mapped(const TArcCurve& arc, const TAffine& matrix);

/// Coordinates beyond this (in units) are not drawn.
inline constexpr double CoordinateLimit = 1e9;

inline bool IsDrawable(TPointD p) {
    return std::abs(p.X) <= CoordinateLimit && std::abs(p.Y) <= CoordinateLimit;
}

/// True for a step that can be drawn; false for NaN, too. Of an arc only the end counts.
inline bool IsDrawable(TVerb verb, const double* numbers) {
    if (verb == TVerb::Arc) return IsDrawable({numbers[5], numbers[6]});
    for (int i = 0; i < NumberCount(verb); ++i)
        if (!(std::abs(numbers[i]) <= CoordinateLimit)) return false;
    return true;
}

/// Walks over the sub-paths, with every step's start resolved: Begin(p) at the first drawing step, then
/// Line(p), Quad(from, a, p), Cubic(from, a, b, p), Arc(curve, p), at last End(isClosed). Lone moves and
/// steps that cannot be drawn are left out; what follows a Close begins where that sub-path began.
template <class TSink> class TFiguresWalk {
public:
    TFiguresWalk(const TFigures& figures, TSink& sink)
        : FSink(sink) {
        const double* numbers = figures.Numbers.data();
        for (const TVerb verb : figures.Verbs) {
            if (IsDrawable(verb, numbers)) Step(verb, numbers);
            numbers += NumberCount(verb);
        }
        if (FIsOpen) FSink.End(false);
    }

private:
    void Step(TVerb verb, const double* n) {
        if (verb == TVerb::Move) {
            if (FIsOpen) FSink.End(false);
            FIsOpen = false;
            FStart = FCurrent = {n[0], n[1]};
            return;
        }
        if (!FIsOpen) FSink.Begin(FStart = FCurrent);
        FIsOpen = verb != TVerb::Close;
        if (FIsOpen) {
            const TPointD end{n[NumberCount(verb) - 2], n[NumberCount(verb) - 1]};
            Draw(verb, n, end);
            FCurrent = end;
        } else {
            FSink.End(true);
            FCurrent = FStart;
        }
    }

    void Draw(TVerb verb, const double* n, TPointD end) {
        TArcCurve arc;
        if (verb == TVerb::Quad)
            FSink.Quad(FCurrent, TPointD{n[0], n[1]}, end);
        else if (verb == TVerb::Cubic)
            FSink.Cubic(FCurrent, TPointD{n[0], n[1]}, TPointD{n[2], n[3]}, end);
        else if (verb == TVerb::Arc && ToArcCurve(FCurrent, n, arc))
            FSink.Arc(arc, end);
        else
            FSink.Line(end);
    }

    TSink& FSink;
    TPointD FStart, FCurrent;
    bool FIsOpen = false;
};

template <class TSink> void WalkFigures(const TFigures& figures, TSink&& sink) {
    TFiguresWalk<std::remove_reference_t<TSink>>(figures, sink);
}

} // namespace Vz
