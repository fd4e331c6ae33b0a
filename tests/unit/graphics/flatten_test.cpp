#include "tavro/graphics/Figures.h"

#include "tavro/graphics/PathData.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <random>

namespace Vz {
namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

TFigures Read(std::string_view text) {
    TVZPathData path;
    path.SetPathString(text);
    return path.GetFigures();
}

TStrokeStyle Style(double width, TLineCap cap = TLineCap::Butt, TLineJoin join = TLineJoin::Miter) {
    TStrokeStyle style;
    style.Width = width;
    style.Cap = cap;
    style.Join = join;
    return style;
}

TStrokeStyle Dashed(double width, std::vector<double> dashes, double offset = 0,
                    TLineCap cap = TLineCap::Butt) {
    TStrokeStyle style = Style(width, cap);
    style.Dashes = std::move(dashes);
    style.DashOffset = offset;
    return style;
}

double Area(const TPolygons& polygons) {
    double sum = 0;
    for (std::size_t i = 0; i + 1 < polygons.Starts.size(); ++i)
        for (std::size_t k = polygons.Starts[i]; k < polygons.Starts[i + 1]; ++k) {
            const TPointD a = polygons.Points[k];
            const TPointD b = polygons.Points[k + 1 < polygons.Starts[i + 1] ? k + 1 : polygons.Starts[i]];
            sum += a.X * b.Y - b.X * a.Y;
        }
    return std::abs(sum / 2);
}

TPolygons Flattened(const TShape& shape, double scale = 1) {
    TPolygons polygons;
    Flatten(shape, scale, polygons);
    return polygons;
}

void ExpectBox(const TRectD& box, double left, double top, double right, double bottom, double slack = 1e-9) {
    EXPECT_NEAR(box.Left, left, slack);
    EXPECT_NEAR(box.Top, top, slack);
    EXPECT_NEAR(box.Right, right, slack);
    EXPECT_NEAR(box.Bottom, bottom, slack);
}

bool IsIn(const char* path, const TStrokeStyle& style, double x, double y) {
    const TFigures figures = Read(path);
    return Contains({&figures, &style}, {x, y}, 16);
}

TEST(FlatteningScale, IsThePowerAtOrAbove) {
    EXPECT_EQ(FlatteningScale({}), 1);
    EXPECT_EQ(FlatteningScale(TAffine::Scaling(2, 0.5)), 2);
    EXPECT_EQ(FlatteningScale(TAffine::Scaling(1.01, 1)), std::numbers::sqrt2);
    EXPECT_EQ(FlatteningScale(TAffine::Scaling(1.5, 1)), 2);
    EXPECT_EQ(FlatteningScale(TAffine::Scaling(0.3, 0.1)), std::numbers::sqrt2 / 4);
    EXPECT_EQ(FlatteningScale(TAffine::Scaling(0.25, 0)), 0.25);
}

TEST(FlatteningScale, StaysWhileAnElementTurns) {
    for (int i = 0; i < 3600; ++i)
        ASSERT_EQ(FlatteningScale(TAffine::Scaling(2, 2).Then(TAffine::Rotation(i * 0.00174533))), 2);
}

TEST(FlatteningScale, IsFiniteForAnyMatrix) {
    for (const double v : {0.0, NaN, Infinity, 1e300, -1e300, 1e-300}) {
        const double scale = FlatteningScale({v, 0, 0, v, 0, 0});
        EXPECT_TRUE(std::isfinite(scale) && scale > 0) << v;
    }
}

TEST(Flatten, CurvesStayWithinTheTolerance) {
    TFigures figures;
    figures.AddEllipse(0, 0, 100, 100);
    for (const double scale : {0.1, 1.0, 16.0}) {
        const TPolygons polygons = Flattened({&figures}, scale);
        ASSERT_EQ(polygons.Starts.size(), 2u);
        for (std::size_t i = 0; i < polygons.Points.size(); ++i) {
            const TPointD a = polygons.Points[i];
            const TPointD b = polygons.Points[(i + 1) % polygons.Points.size()];
            ASSERT_NEAR(std::hypot(a.X, a.Y), 100, 1e-9);
            ASSERT_GT(std::hypot((a.X + b.X) / 2, (a.Y + b.Y) / 2), 100 - 0.1 / scale);
        }
        ExpectBox(polygons.Bounds, -100, -100, 100, 100);
    }
    // Quadratic and cubic: area under y = 2 t (1 - t) 100 is 100 * 100 / 3, under the cubic 100 * 75 * 0.6.
    EXPECT_NEAR(Area(Flattened({&(figures = Read("M0 0Q50 100 100 0Z"))}, 100)), 10000.0 / 3, 0.5);
    EXPECT_NEAR(Area(Flattened({&(figures = Read("M0 0C0 100 100 100 100 0Z"))}, 100)), 6000, 1);
}

TEST(Flatten, IsTheSameEveryTime) {
    const TFigures figures = Read("M0 0C10 90 50-70 80 9A30 20 10 1 0 5 5Q7 8 9 1Z");
    const TStrokeStyle style = Dashed(3, {5, 2}, 1, TLineCap::Round);
    const TPolygons first = Flattened({&figures, &style}, 2), second = Flattened({&figures, &style}, 2);
    EXPECT_EQ(first.Points, second.Points);
    EXPECT_EQ(first.Starts, second.Starts);
}

TEST(Flatten, SubPathsBecomePolygons) {
    TFigures figures = Read("M0 0L10 0 10 10ZL-5 5-5 0M20 20L21 21M50 50");
    const TPolygons polygons = Flattened({&figures});
    ASSERT_EQ(polygons.Starts, (std::vector<std::uint32_t>{0, 3, 6}));
    EXPECT_EQ(polygons.Points[3], (TPointD{0, 0})); // after a close, on from the sub-path's start
}

TEST(Flatten, KeepsPolygonsForTheSameScale) {
    TFigures figures = Read("M0 0L10 0 10 10Z");
    TPolygonCache cache;
    TPolygons scratch;
    const TShape shape{&figures, nullptr, TFillRule::NonZero, &cache};
    const TPolygons& first = Flatten(shape, 2, scratch);
    EXPECT_EQ(&first, &cache.Polygons);
    EXPECT_EQ(cache.Scale, 2);
    figures = Read("M0 0L20 0 20 20Z");
    EXPECT_EQ(Flatten(shape, 2, scratch).Points[1], (TPointD{10, 0})); // nobody told it of the change
    EXPECT_EQ(Flatten(shape, 4, scratch).Points[1], (TPointD{20, 0}));
    cache.Clear();
    EXPECT_EQ(cache.Scale, 0);
    EXPECT_TRUE(cache.Polygons.Points.empty());
    EXPECT_TRUE(scratch.Points.empty());
}

TEST(Flatten, KeepsPolygonsOfAFewScales) {
    TFigures figures = Read("M0 0A5 5 0 0 1 10 0Z");
    TPolygonCache cache;
    TPolygons scratch;
    const TShape shape{&figures, nullptr, TFillRule::NonZero, &cache};
    const TPolygons* const fine = &Flatten(shape, 8, scratch);
    const TPolygons* const coarse = &Flatten(shape, 1, scratch);
    EXPECT_NE(fine, coarse);
    EXPECT_GT(fine->Points.size(), coarse->Points.size());
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(&Flatten(shape, 8, scratch), fine);
        EXPECT_EQ(&Flatten(shape, 1, scratch), coarse);
    }
    for (int scale = 2; scale < 2000; scale *= 2) { // more than are kept
        const TPolygons& polygons = Flatten(shape, scale, scratch);
        EXPECT_EQ(polygons.Points, Flattened({&figures}, scale).Points) << scale;
    }
}

TEST(Flatten, LeavesOutWhatCannotBeDrawn) {
    TFigures figures = Read("M0 0L10 0L1e10 5L10 10L1e300-1e300L0 10");
    figures.LineTo(NaN, 1);
    figures.CubicTo(1, 2, Infinity, 3, 4, 5);
    figures.ArcTo(NaN, NaN, NaN, false, false, 0, 5); // a line
    const TPolygons polygons = Flattened({&figures});
    EXPECT_EQ(polygons.Points, (std::vector<TPointD>{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 5}}));
    EXPECT_TRUE(Flattened({nullptr}).Points.empty());
    EXPECT_FALSE(Flattened({&figures}, NaN).Points.empty());
}

TEST(Flatten, PointsAreBoundedAtAnyScale) {
    const TFigures curve = Read("M0 0C1e9 0 0 1e9 1e9 1e9Z");
    EXPECT_LE(Flattened({&curve}, 1e30).Points.size(), 65537u);
    const TFigures arc = Read("M0 0A1e9 1e9 0 1 1 1 1Z");
    EXPECT_LE(Flattened({&arc}, 1e30).Points.size(), 65537u);
    const TStrokeStyle style = Style(1e9, TLineCap::Round, TLineJoin::Round);
    EXPECT_LE(Flattened({&curve, &style}, 1e30).Points.size(), 1'000'000u);
    TFigures many, corners;
    for (int i = 0; i < 100000; ++i) {
        many.MoveTo(i, 0);
        many.CubicTo(1e8, 5, -1e8, 7, i, 9);
    }
    EXPECT_LE(Flattened({&many}, 1e30).Points.size(), 2'500'000u);
    corners.MoveTo(0, 0);
    for (int i = 1; i < 20000; ++i)
        corners.LineTo(i, i % 2 * 1000);
    EXPECT_LE(Flattened({&corners, &style}, 1e30).Points.size(), 4'000'000u);
}

TEST(Flatten, TinyShapesAtHugeScaleKeepTheirForm) {
    const TFigures figures = Read("M0 0A1e-12 1e-12 0 0 1 2e-12 0Z");
    EXPECT_NEAR(Area(Flattened({&figures}, 0x1p40)) / 1e-24, std::numbers::pi / 2, 0.3);
    const TFigures line = Read("M0 0L1e-9 0");
    const TStrokeStyle style = Style(1e-10);
    EXPECT_NEAR(Area(Flattened({&line, &style}, 0x1p40)) / 1e-19, 1, 1e-6);
}

TEST(Stroke, CapsOfALine) {
    const TFigures line = Read("M0 0L100 0");
    ExpectBox(StrokeBounds(line, Style(10), {}), 0, -5, 100, 5);
    ExpectBox(StrokeBounds(line, Style(10, TLineCap::Square), {}), -5, -5, 105, 5);
    ExpectBox(StrokeBounds(line, Style(10, TLineCap::Round), {}), -5, -5, 105, 5, 0.05);
    EXPECT_TRUE(IsIn("M0 0L100 0", Style(10, TLineCap::Square), -4.9, -4.9));
    EXPECT_FALSE(IsIn("M0 0L100 0", Style(10, TLineCap::Round), -4.9, -4.9));
    EXPECT_TRUE(IsIn("M0 0L100 0", Style(10, TLineCap::Round), -3.5, -3.5));
    EXPECT_FALSE(IsIn("M0 0L100 0", Style(10), -0.1, 0));
}

TEST(Stroke, WidthThatPaintsNothing) {
    const TFigures line = Read("M0 0L100 0");
    for (const double width : {0.0, -1.0, NaN})
        EXPECT_TRUE(StrokeBounds(line, Style(width, TLineCap::Round), {}).IsEmpty());
    EXPECT_TRUE(StrokeBounds(line, Style(1), {NaN, 0, 0, 1, 0, 0}).IsEmpty());
}

TEST(Stroke, JoinsOfARightAngle) {
    const char* corner = "M0 0L100 0L100 100";
    EXPECT_TRUE(IsIn(corner, Style(10), 104.9, -4.9));
    EXPECT_FALSE(IsIn(corner, Style(10, TLineCap::Butt, TLineJoin::Round), 104.9, -4.9));
    EXPECT_TRUE(IsIn(corner, Style(10, TLineCap::Butt, TLineJoin::Round), 103.5, -3.5));
    EXPECT_FALSE(IsIn(corner, Style(10, TLineCap::Butt, TLineJoin::Bevel), 102.6, -2.6));
    EXPECT_TRUE(IsIn(corner, Style(10, TLineCap::Butt, TLineJoin::Bevel), 102.4, -2.4));
    ExpectBox(StrokeBounds(Read(corner), Style(10), {}), 0, -5, 105, 100);
}

TEST(Stroke, MiterLimitFallsBackToBevel) {
    // The miter's ratio is 1 / sin(half the angle): for a right angle the square root of 2.
    TStrokeStyle style = Style(10);
    style.MiterLimit = std::numbers::sqrt2 + 1e-6;
    EXPECT_TRUE(IsIn("M0 0L100 0L100 100", style, 104.9, -4.9));
    style.MiterLimit = std::numbers::sqrt2 - 1e-6;
    EXPECT_FALSE(IsIn("M0 0L100 0L100 100", style, 102.6, -2.6));
    EXPECT_TRUE(IsIn("M0 0L100 0L100 100", style, 102.4, -2.4));
    for (const double odd : {0.0, -3.0, NaN}) {
        style.MiterLimit = odd;
        EXPECT_FALSE(IsIn("M0 0L100 0L100 100", style, 104, -4));
    }
}

TEST(Stroke, ClippedMiterEndsAtTheLimit) {
    // A spike to the right; the clip lies half the limit times the width from the corner: 20.
    const char* spike = "M0 10L100 0L0-10";
    TStrokeStyle style = Style(10, TLineCap::Butt, TLineJoin::MiterClip);
    EXPECT_NEAR(StrokeBounds(Read(spike), style, {}).Right, 120, 1e-9);
    style.Join = TLineJoin::Arcs;
    EXPECT_NEAR(StrokeBounds(Read(spike), style, {}).Right, 120, 1e-9);
    style.Join = TLineJoin::Miter;
    EXPECT_LT(StrokeBounds(Read(spike), style, {}).Right, 101);
    style.MiterLimit = 20; // the tip at 5 / sin(atan(0.1))
    EXPECT_NEAR(StrokeBounds(Read(spike), style, {}).Right, 100 + 5 / std::sin(std::atan(0.1)), 1e-9);
}

TEST(Stroke, LinesThatTurnBack) {
    const TFigures back = Read("M0 0L100 0L0 0");
    ExpectBox(StrokeBounds(back, Style(10), {}), 0, -5, 100, 5);
    ExpectBox(StrokeBounds(back, Style(10, TLineCap::Butt, TLineJoin::Bevel), {}), 0, -5, 100, 5);
    ExpectBox(StrokeBounds(back, Style(10, TLineCap::Butt, TLineJoin::Round), {}), 0, -5, 105, 5, 0.05);
    ExpectBox(StrokeBounds(Read("M0 0L100 0Z"), Style(10, TLineCap::Butt, TLineJoin::Round), {}), -5, -5, 105,
              5, 0.05);
}

TEST(Stroke, ClosedSubPathsAreJoined) {
    const char* square = "M0 0H100V100H0Z";
    EXPECT_TRUE(IsIn(square, Style(10), -4.9, -4.9));
    EXPECT_FALSE(IsIn("M0 0H100V100H0V0", Style(10), -4.9, -4.9));
    EXPECT_FALSE(IsIn(square, Style(10), 50, 50));
    EXPECT_TRUE(IsIn(square, Style(10), 4.9, 50));
    EXPECT_FALSE(IsIn(square, Style(10), 5.1, 50));
    // What closes up to rounding must not give the joint a direction of its own.
    const TFigures nearly = Read("M0 0H100V100H1e-13V1e-13Z");
    ExpectBox(StrokeBounds(nearly, Style(10), {}), -5, -5, 105, 105);
}

TEST(Stroke, SubPathsWithoutLengthAreDots) {
    for (const char* dot : {"M10 10h0", "M10 10z", "M10 10L10 10 10 10", "M10 10c0 0 0 0 0 0",
                            "M10 10a5 5 0 0 0 0 0", "M10 10l0 0z"}) {
        ExpectBox(StrokeBounds(Read(dot), Style(8, TLineCap::Square), {}), 6, 6, 14, 14);
        ExpectBox(StrokeBounds(Read(dot), Style(8, TLineCap::Round), {}), 6, 6, 14, 14, 0.05);
        EXPECT_TRUE(StrokeBounds(Read(dot), Style(8), {}).IsEmpty()) << dot;
        EXPECT_FALSE(IsIn(dot, Style(8, TLineCap::Round), 13.5, 13.5)) << dot;
    }
    EXPECT_TRUE(StrokeBounds(Read("M10 10M20 20"), Style(8, TLineCap::Round), {}).IsEmpty());
    ExpectBox(StrokeBounds(Read("M10 10h0"), Dashed(8, {2, 2}, 0, TLineCap::Square), {}), 6, 6, 14, 14);
}

TEST(Stroke, IsMadeInTheShapesUnits) {
    ExpectBox(StrokeBounds(Read("M0 0L0 100"), Style(10), TAffine::Scaling(3, 1)), -15, 0, 15, 100);
    ExpectBox(StrokeBounds(Read("M0 0L100 0"), Style(10), TAffine::Scaling(3, 1)), 0, -5, 300, 5);
}

TEST(Stroke, DashesLieWhereTheyShould) {
    const auto at = [](const TStrokeStyle& style, double x) { return IsIn("M0 0H100", style, x, 0); };
    const TStrokeStyle plain = Dashed(10, {10, 5});
    for (const double on : {0.1, 9.9, 15.1, 24.9, 30.1, 90.1, 99.9})
        EXPECT_TRUE(at(plain, on)) << on;
    for (const double off : {10.1, 14.9, 25.1, 29.9, 89.9})
        EXPECT_FALSE(at(plain, off)) << off;
    const TStrokeStyle later = Dashed(10, {10, 5}, 12);
    EXPECT_FALSE(at(later, 2.9));
    EXPECT_TRUE(at(later, 3.1));
    const TStrokeStyle earlier = Dashed(10, {10, 5}, -3);
    EXPECT_FALSE(at(earlier, 2.9));
    EXPECT_TRUE(at(earlier, 3.1));
    EXPECT_TRUE(at(Dashed(10, {10, 5}, 15e6), 9.9));
    EXPECT_FALSE(at(Dashed(10, {10, 5}, 15e6), 10.1));
    EXPECT_TRUE(at(Dashed(10, {10, 5, 1, 4}), 15.5));
    EXPECT_FALSE(at(Dashed(10, {10, 5, 1, 4}), 16.5));
    EXPECT_FALSE(at(Dashed(10, {0, 5}), 0.1));
    EXPECT_TRUE(at(Dashed(10, {5, 0}), 4.999));
    // Each sub-path begins the pattern anew.
    EXPECT_TRUE(IsIn("M0 0H12M0 50H20", plain, 1, 50));
}

TEST(Stroke, DashesRunRoundCornersAndCurves) {
    EXPECT_TRUE(IsIn("M0 0H10V10", Dashed(4, {15, 100}), 11.9, -1.9));
    EXPECT_TRUE(IsIn("M0 0H10V10", Dashed(4, {15, 100}), 10, 4.9));
    EXPECT_FALSE(IsIn("M0 0H10V10", Dashed(4, {15, 100}), 10, 5.1));
    // A quarter of a circle's length is a dash: it ends at six o'clock.
    const char* circle = "M100 0A100 100 0 0 1-100 0A100 100 0 0 1 100 0Z";
    const double quarter = 50 * std::numbers::pi;
    const auto at = [&](double angleDeg) {
        const double radians = angleDeg * std::numbers::pi / 180;
        return IsIn(circle, Dashed(4, {quarter, quarter}), 100 * std::cos(radians), 100 * std::sin(radians));
    };
    EXPECT_TRUE(at(89.9));
    EXPECT_FALSE(at(90.1));
    EXPECT_FALSE(at(179.9));
    EXPECT_TRUE(at(180.1));
}

TEST(Stroke, DashWithoutLengthIsADotAlongTheLine) {
    const TStrokeStyle dots = Dashed(10, {0, 20}, 0, TLineCap::Round);
    for (const double x : {-4.9, 4.9, 15.1, 24.9, 35.1})
        EXPECT_TRUE(IsIn("M0 0H50", dots, x, 0)) << x;
    for (const double x : {5.1, 14.9, 25.1})
        EXPECT_FALSE(IsIn("M0 0H50", dots, x, 0)) << x;
    // A square dot stands as the line does: here its corner looks up.
    const TStrokeStyle squares = Dashed(10, {0, 1000}, -50, TLineCap::Square);
    EXPECT_TRUE(IsIn("M0 0L100 100", squares, 35.4, 35.4 - 6.9));
    EXPECT_FALSE(IsIn("M0 0L100 100", squares, 35.4 + 4.5, 35.4 + 4.5));
}

TEST(Stroke, FirstAndLastDashOfAClosedSubPathAreOne) {
    const char* square = "M0 0H100V100H0Z"; // 400 long
    // On at both ends: the corner at the start is joined.
    EXPECT_TRUE(IsIn(square, Dashed(10, {50, 50}, 25), -4.9, -4.9));
    EXPECT_FALSE(IsIn("M0 0H100V100H0V0", Dashed(10, {50, 50}, 25), -4.9, -4.9));
    // Off at the end: the first dash is there all the same, with a butt.
    EXPECT_TRUE(IsIn(square, Dashed(10, {50, 50}), 25, 0));
    EXPECT_FALSE(IsIn(square, Dashed(10, {50, 50}), -4.9, -4.9));
    EXPECT_FALSE(IsIn(square, Dashed(10, {50, 50}), 0, 25));
    // One dash all round.
    EXPECT_TRUE(IsIn(square, Dashed(10, {1000, 50}), -4.9, -4.9));
}

TEST(Stroke, PatternsThatCannotBeDrawnAreSolid) {
    for (const auto& dashes :
         {std::vector<double>{NaN, 5}, {-1, 5}, {Infinity, 5}, {0, 0}, {5}, {1e-9, 1e-9}, {1e308, 1e308}})
        EXPECT_TRUE(IsIn("M0 0H100", Dashed(10, dashes), 70.5, 0)) << dashes[0];
    EXPECT_TRUE(IsIn("M0 0H100", Dashed(10, {10, 5}, NaN), 9.9, 0));
    const TFigures line = Read("M0 0H1e9");
    const TStrokeStyle fine = Dashed(1, {1, 1});
    EXPECT_EQ(Flattened({&line, &fine}).Points.size(), 4u);
}

double DistanceTo(const std::vector<TPointD>& line, TPointD p) {
    double least = Infinity;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        const TPointD d{line[i + 1].X - line[i].X, line[i + 1].Y - line[i].Y};
        const double square = d.X * d.X + d.Y * d.Y;
        const double t = std::clamp(((p.X - line[i].X) * d.X + (p.Y - line[i].Y) * d.Y) / square, 0.0, 1.0);
        least = std::min(least, std::hypot(line[i].X + t * d.X - p.X, line[i].Y + t * d.Y - p.Y));
    }
    return least;
}

TEST(Stroke, RoundStrokesAreAllThatIsNear) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> any(0, 60);
    for (int i = 0; i < 60; ++i) {
        std::vector<TPointD> line;
        TFigures figures;
        for (int k = 0; k < 7; ++k) {
            line.push_back({any(random), any(random)});
            k == 0 ? figures.MoveTo(line[0].X, line[0].Y) : figures.LineTo(line.back().X, line.back().Y);
        }
        if (i % 2 == 0) {
            figures.Close();
            line.push_back(line[0]);
        }
        const double half = 1 + i % 25;
        const TStrokeStyle style = Style(2 * half, TLineCap::Round, TLineJoin::Round);
        TPolygonCache cache;
        for (int k = 0; k < 400; ++k) {
            const TPointD p{any(random) * 2 - 30, any(random) * 2 - 30};
            const double distance = DistanceTo(line, p);
            if (std::abs(distance - half) < 0.1) continue;
            ASSERT_EQ(Contains({&figures, &style, TFillRule::NonZero, &cache}, p, 1), distance < half)
                << "line " << i << " at " << p.X << ", " << p.Y << ", distance " << distance << " of "
                << half;
        }
    }
}

TEST(Stroke, CurvesAreSmoothWhateverTheJoin) {
    // On the outside of a circle every join would show as a corner.
    TFigures circle;
    circle.AddEllipse(0, 0, 20, 20);
    for (const TLineJoin join : {TLineJoin::Miter, TLineJoin::Bevel, TLineJoin::Round}) {
        const TStrokeStyle style = Style(30, TLineCap::Butt, join);
        const TPolygons polygons = Flattened({&circle, &style});
        double least = Infinity, greatest = 0;
        for (std::size_t k = 0; k < polygons.Starts[1]; ++k) {
            const double radius = std::hypot(polygons.Points[k].X, polygons.Points[k].Y);
            least = std::min(least, radius);
            greatest = std::max(greatest, radius);
        }
        EXPECT_NEAR(greatest, 35, 0.1);
        EXPECT_NEAR(least, 35, 0.1);
    }
}

TEST(Stroke, EndsOfCurvesStandAcross) {
    // A wide ring's half: its ends lie on the axis, half the width to each side.
    const TFigures half = Read("M-100 0A100 100 0 0 1 100 0");
    const TRectD box = StrokeBounds(half, Style(60), {});
    ExpectBox(box, -130, -130, 130, 0, 0.25);
}

TEST(Contains, FollowsTheRule) {
    const TFigures rings = Read("M0 0H100V100H0ZM25 25H75V75H25Z");
    EXPECT_TRUE(Contains({&rings}, {50, 50}, 1));
    EXPECT_FALSE(Contains({&rings, nullptr, TFillRule::EvenOdd}, {50, 50}, 1));
    EXPECT_TRUE(Contains({&rings, nullptr, TFillRule::EvenOdd}, {10, 50}, 1));
    const TFigures hole = Read("M0 0H100V100H0ZM25 25V75H75V25Z");
    EXPECT_FALSE(Contains({&hole}, {50, 50}, 1));
    EXPECT_FALSE(Contains({&hole}, {101, 50}, 1));
    EXPECT_FALSE(Contains({&hole}, {NaN, 50}, 1));
    const TFigures open = Read("M0 0L10 0L10 10");
    EXPECT_TRUE(Contains({&open}, {7, 3}, 1));
    EXPECT_FALSE(Contains({&open}, {3, 7}, 1));
}

} // namespace
} // namespace Vz
