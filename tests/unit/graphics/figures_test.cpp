#include "tavro/graphics/Figures.h"

#include "tavro/graphics/PathData.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <random>

namespace Vz {
namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

TFigures Read(std::string_view text) {
    TVZPathData path;
    path.SetPathString(text);
    return path.GetFigures();
}

std::string Write(const TFigures& figures) {
    TVZPathData path;
    path.SetFigures(figures);
    return path.GetPathString();
}

void ExpectBox(const TRectD& box, double left, double top, double right, double bottom,
               double slack = 1e-12) {
    EXPECT_NEAR(box.Left, left, slack);
    EXPECT_NEAR(box.Top, top, slack);
    EXPECT_NEAR(box.Right, right, slack);
    EXPECT_NEAR(box.Bottom, bottom, slack);
}

TEST(Figures, RectanglesRunAsInSvg) {
    TFigures figures;
    figures.AddRect(1, 2, 10, 20);
    EXPECT_EQ(Write(figures), "M1 2L11 2 11 22 1 22Z");
    figures.Clear();
    figures.AddRect(0, 0, 10, 20, 2, 3);
    EXPECT_EQ(Write(figures),
              "M2 0L8 0A2 3 0 0 1 10 3L10 17A2 3 0 0 1 8 20L2 20A2 3 0 0 1 0 17L0 3A2 3 0 0 1 2 0Z");
    figures.Clear();
    figures.AddRect(0, 0, 10, 20, 50, 50); // radii are held at half the sides
    EXPECT_EQ(figures.Numbers[0], 5);
    ExpectBox(figures.Bounds(), 0, 0, 10, 20);
    figures.Clear();
    figures.AddRect(0, 0, -1, 5);
    figures.AddRect(0, 0, 5, 0);
    figures.AddRect(0, 0, NaN, 5);
    figures.AddEllipse(0, 0, 0, 5);
    EXPECT_TRUE(figures.IsEmpty());
}

TEST(Figures, EllipseStartsAtThreeAndRunsClockwise) {
    TFigures figures;
    figures.AddEllipse(10, 20, 3, 4);
    EXPECT_EQ(Write(figures), "M13 20A3 4 0 0 1 10 24 3 4 0 0 1 7 20 3 4 0 0 1 10 16 3 4 0 0 1 13 20Z");
    ExpectBox(figures.Bounds(), 7, 16, 13, 24);
}

TEST(Figures, BoundsOfCurvesAreThoseOfTheCurves) {
    ExpectBox(Read("M0 0Q50 100 100 0").Bounds(), 0, 0, 100, 50);
    ExpectBox(Read("M0 0C0 100 100 100 100 0").Bounds(), 0, 0, 100, 75);
    // x(t) = 3 (1-t)^2 t (-100) + 3 (1-t) t^2 200 + 100 t^3, whose turns are the roots of -100 + 800 t - 800
    // t^2.
    const double root = std::numbers::sqrt2 / 4;
    const auto x = [](double t) {
        return -300 * (1 - t) * (1 - t) * t + 600 * (1 - t) * t * t + 100 * t * t * t;
    };
    ExpectBox(Read("M0 0C-100 0 200 0 100 0").Bounds(), x(0.5 - root), 0, x(0.5 + root), 0, 1e-9);
    ExpectBox(Read("M0 0L10 5").Bounds(), 0, 0, 10, 5);
}

TEST(Figures, BoundsOfArcs) {
    ExpectBox(Read("M-10 0A10 10 0 0 1 10 0").Bounds(), -10, -10, 10, 0);
    ExpectBox(Read("M-10 0A10 10 0 0 0 10 0").Bounds(), -10, 0, 10, 10);
    // Radii too small for the way grow alike: here to 10 and 20.
    ExpectBox(Read("M-10 0A1 2 0 0 1 10 0").Bounds(), -10, -20, 10, 0);
    // Without a radius, a line.
    ExpectBox(Read("M-10 0A0 20 0 0 1 10 5").Bounds(), -10, 0, 10, 5);
    // A turned ellipse: half width sqrt(a^2 cos^2 + b^2 sin^2).
    const double half = std::sqrt((400.0 + 100.0) / 2);
    const double c = 20 * std::numbers::sqrt2 / 2;
    TFigures turned;
    turned.MoveTo(c, c);
    turned.ArcTo(20, 10, 45, false, true, -c, -c);
    turned.ArcTo(20, 10, 45, false, true, c, c);
    ExpectBox(turned.Bounds(), -half, -half, half, half, 1e-9);
    ExpectBox(turned.Bounds(TAffine::Rotation(-std::numbers::pi / 4)), -20, -10, 20, 10, 1e-9);
}

TEST(Figures, LargeAndSweepChooseOneOfFourArcs) {
    // From (10, 0) to (0, 10) with radius 10: centres (0, 0) and (10, 10).
    ExpectBox(Read("M10 0A10 10 0 0 1 0 10").Bounds(), 0, 0, 10, 10, 1e-9);
    ExpectBox(Read("M10 0A10 10 0 0 0 0 10").Bounds(), 0, 0, 10, 10, 1e-9);
    ExpectBox(Read("M10 0A10 10 0 1 1 0 10").Bounds(), 0, 0, 20, 20, 1e-9);
    ExpectBox(Read("M10 0A10 10 0 1 0 0 10").Bounds(), -10, -10, 10, 10, 1e-9);
    const TFigures near = Read("M10 0A10 10 0 0 1 0 10Z");
    const TFigures far = Read("M10 0A10 10 0 0 0 0 10Z");
    EXPECT_TRUE(Contains({&near}, {6.5, 6.5}, 100));
    EXPECT_FALSE(Contains({&far}, {6.5, 6.5}, 100));
    EXPECT_TRUE(Contains({&far}, {3.5, 3.5}, 100));
}

TEST(Figures, BoundsAreTightUnderAnyMatrix) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> any(-50, 50), radius(1, 80);
    for (int i = 0; i < 300; ++i) {
        TFigures figures;
        figures.MoveTo(any(random), any(random));
        figures.CubicTo(any(random), any(random), any(random), any(random), any(random), any(random));
        figures.QuadTo(any(random), any(random), any(random), any(random));
        figures.ArcTo(radius(random), radius(random), any(random) * 4, i & 1, i & 2, any(random),
                      any(random));
        const TAffine m{any(random) / 20, any(random) / 20, any(random) / 20,
                        any(random) / 20, any(random),      any(random)};
        TFigures mapped = figures;
        mapped.Transform(m);
        TPolygons polygons;
        Flatten({&mapped}, 1000, polygons);
        const TRectD box = figures.Bounds(m);
        ExpectBox(box, polygons.Bounds.Left, polygons.Bounds.Top, polygons.Bounds.Right,
                  polygons.Bounds.Bottom, 1e-3);
        EXPECT_LE(box.Left, polygons.Bounds.Left + 1e-7);
        EXPECT_GE(box.Right, polygons.Bounds.Right - 1e-7);
    }
}

TEST(Figures, MappedArcsAreTheArcsOfTheMappedEllipse) {
    std::mt19937 random(6);
    std::uniform_real_distribution<double> any(-50, 50), radius(1, 120);
    for (int i = 0; i < 300; ++i) {
        TFigures figures;
        figures.MoveTo(any(random), any(random));
        const double rx = radius(random);
        figures.ArcTo(rx, i % 5 == 0 ? rx : radius(random), any(random) * 4, i & 1, i & 2, any(random),
                      any(random));
        const TAffine m{any(random) / 10, any(random) / 10, any(random) / 10,
                        any(random) / 10, any(random),      any(random)};
        if (std::abs(m.Determinant()) < 0.5) continue;
        TFigures mapped = figures;
        mapped.Transform(m);
        // A convex arc is known by its boxes in all directions.
        for (int step = 0; step < 12; ++step) {
            const TAffine turn = TAffine::Rotation(step * std::numbers::pi / 24);
            const TRectD expected = figures.Bounds(m.Then(turn));
            const double slack = 1e-7 * (expected.Width() + expected.Height());
            ExpectBox(mapped.Bounds(turn), expected.Left, expected.Top, expected.Right, expected.Bottom,
                      slack);
        }
    }
}

TEST(Figures, MappedCirclesKeepPlainNumbers) {
    TFigures figures = Read("M10 0A10 10 0 0 1 0 10");
    figures.Transform(TAffine::Scaling(2, 2));
    EXPECT_EQ(Write(figures), "M20 0A20 20 0 0 1 0 20");
    figures.Transform(TAffine::Scaling(-1, 1));
    EXPECT_EQ(Write(figures), "M-20 0A20 20 0 0 0 0 20");
    figures.Transform(TAffine::Translation(1, 2));
    EXPECT_EQ(Write(figures), "M-19 2A20 20 0 0 0 1 22");
    figures = Read("M10 0A10 5 0 0 1 0 10");
    figures.Transform(TAffine::Scaling(2, 3));
    EXPECT_EQ(Write(figures), "M20 0A20 15 0 0 1 0 30");
    figures = Read("M10 0A10 10 30 0 1 0 10");
    figures.Transform(TAffine::Rotation(1));
    EXPECT_NEAR(figures.Numbers[2], 10, 1e-12);
    EXPECT_NEAR(figures.Numbers[3], 10, 1e-12);
    EXPECT_EQ(figures.Numbers[4], 0);
}

TEST(Figures, LoneMovesCountOnlyAlone) {
    ExpectBox(Read("M100 100M0 0L10 10M-50 -50").Bounds(), 0, 0, 10, 10);
    ExpectBox(Read("M100 100M-50 -50").Bounds(), -50, -50, 100, 100);
    EXPECT_TRUE(TFigures{}.Bounds().IsEmpty());
    EXPECT_TRUE(Read("M0 0L1 1").Bounds({NaN, 0, 0, 1, 0, 0}).IsEmpty());
}

TEST(Figures, WhatCannotBeDrawnHasNoBounds) {
    TFigures figures = Read("M0 0L10 10L1e300 5L5 20");
    ExpectBox(figures.Bounds(), 0, 0, 10, 20);
    figures.LineTo(NaN, 3);
    figures.CubicTo(NaN, 3, 1, 2, 3, 4);
    ExpectBox(figures.Bounds(), 0, 0, 10, 20);
    ExpectBox(Read("M0 0A1e300 1e300 0 0 1 10 5").Bounds(), 0, 0, 10, 5);
    ExpectBox(Read("M0 0A1e-300 1e-300 0 0 1 10 5").Bounds(), 0, 0, 10, 5);
}

TEST(Figures, AppendMapsAndTakesItself) {
    TFigures figures = Read("M1 2L3 4");
    figures.Append(figures, TAffine::Translation(10, 20));
    EXPECT_EQ(Write(figures), "M1 2L3 4M11 22L13 24");
    figures.Append(figures);
    EXPECT_EQ(Write(figures), "M1 2L3 4M11 22L13 24M1 2L3 4M11 22L13 24");
}

} // namespace
} // namespace Vz
