#include "tavro/graphics/PathRuler.h"

#include "tavro/graphics/PathData.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace {

using namespace Vz;

TPathRuler Ruler(std::string_view text) {
    TVZPathData data;
    data.SetPathString(text);
    return TPathRuler(data.GetFigures());
}

void ExpectPlace(const TPathPlace& place, TPointD point, TPointD direction, double tolerance = 1e-6) {
    EXPECT_NEAR(place.Point.X, point.X, tolerance);
    EXPECT_NEAR(place.Point.Y, point.Y, tolerance);
    EXPECT_NEAR(place.Direction.X, direction.X, tolerance);
    EXPECT_NEAR(place.Direction.Y, direction.Y, tolerance);
}

TEST(PathRuler, GoesAlongLinesAndCorners) {
    const TPathRuler ruler = Ruler("M10 10h30v40");
    EXPECT_DOUBLE_EQ(ruler.GetLength(), 70);
    EXPECT_FALSE(ruler.IsClosed());
    ExpectPlace(ruler.At(0), {10, 10}, {1, 0});
    ExpectPlace(ruler.At(12), {22, 10}, {1, 0});
    ExpectPlace(ruler.At(30), {40, 10}, {0, 1});
    ExpectPlace(ruler.At(45), {40, 25}, {0, 1});
}

TEST(PathRuler, StaysAtTheEnds) {
    const TPathRuler ruler = Ruler("M10 10h30v40");
    ExpectPlace(ruler.At(-5), {10, 10}, {1, 0});
    ExpectPlace(ruler.At(700), {40, 50}, {0, 1});
    ExpectPlace(ruler.At(std::numeric_limits<double>::quiet_NaN()), {10, 10}, {1, 0});
}

TEST(PathRuler, KnowsACircleTwiceRound) {
    // From 315 degrees (a clock's half past ten), clockwise.
    const double r = 50;
    const double d = r * std::numbers::sqrt2 / 2;
    std::string text = "M" + std::to_string(-d) + " " + std::to_string(-d);
    for (int i = 1; i <= 8; ++i)
        text += "A50 50 0 0 1 " + std::to_string(i % 4 == 1 || i % 4 == 2 ? d : -d) + " " +
                std::to_string(i % 4 == 2 || i % 4 == 3 ? d : -d);
    const TPathRuler ruler = Ruler(text);
    const double length = 4 * std::numbers::pi * r;
    EXPECT_NEAR(ruler.GetLength(), length, 1e-3);
    for (int i = 0; i < 30; ++i) {
        const double angle = (315 + i * 24) * std::numbers::pi / 180;
        ExpectPlace(ruler.At(i * length / 30), {r * std::sin(angle), -r * std::cos(angle)},
                    {std::cos(angle), std::sin(angle)}, 1e-4);
    }
}

TEST(PathRuler, MeasuresCurvesExactly) {
    // y = x^2 as a quadratic and as a cubic curve; its length is (2 sqrt(5) + asinh(2)) / 4.
    const double length = (2 * std::sqrt(5.0) + std::asinh(2.0)) / 4;
    for (const char* text :
         {"M0 0Q.5 0 1 1", "M0 0C.3333333333333333 0 .6666666666666666 .3333333333333333 1 1"}) {
        const TPathRuler ruler = Ruler(text);
        EXPECT_NEAR(ruler.GetLength(), length, 1e-8);
        const double half = (std::sqrt(2.0) + std::asinh(1.0)) / 4; // up to x = 0.5
        ExpectPlace(ruler.At(half), {0.5, 0.25}, {std::sqrt(0.5), std::sqrt(0.5)}, 1e-7);
    }
}

TEST(PathRuler, MeasuresAQuarterOfAnEllipse) {
    EXPECT_NEAR(Ruler("M3 0A3 2 0 0 1 0 2").GetLength(), 15.8654395892906 / 4, 1e-6);
}

TEST(PathRuler, FollowsACusp) {
    // The curve turns back on itself in its middle, where its speed is zero.
    const TPathRuler ruler = Ruler("M0 0C40 40 -20 40 20 0");
    ASSERT_GT(ruler.GetLength(), 50);
    double way = 0;
    TPointD last = ruler.At(0).Point;
    const double step = ruler.GetLength() / 2000;
    for (int i = 1; i <= 2000; ++i) {
        const TPathPlace place = ruler.At(i * step);
        way += std::hypot(place.Point.X - last.X, place.Point.Y - last.Y);
        EXPECT_NEAR(std::hypot(place.Direction.X, place.Direction.Y), 1, 1e-9);
        last = place.Point;
    }
    EXPECT_NEAR(way, ruler.GetLength(), ruler.GetLength() * 1e-4);
}

TEST(PathRuler, JumpsBetweenSubPathsWithoutLength) {
    const TPathRuler ruler = Ruler("M0 0h10M100 0v10");
    EXPECT_DOUBLE_EQ(ruler.GetLength(), 20);
    ExpectPlace(ruler.At(9), {9, 0}, {1, 0});
    ExpectPlace(ruler.At(11), {100, 1}, {0, 1});
}

TEST(PathRuler, IsClosedForOneClosedSubPathOnly) {
    EXPECT_TRUE(Ruler("M0 0h10v10z").IsClosed());
    EXPECT_NEAR(Ruler("M0 0h10v10z").GetLength(), 20 + 10 * std::numbers::sqrt2, 1e-12);
    EXPECT_FALSE(Ruler("M0 0h10v10L0 0").IsClosed());
    EXPECT_FALSE(Ruler("M0 0h10v10zM5 5h1v1z").IsClosed());
}

TEST(PathRuler, HasNoLengthWithoutExtent) {
    for (const char* text : {"", "M5 5", "M5 5L5 5", "M5 5C5 5 5 5 5 5z"})
        EXPECT_EQ(Ruler(text).GetLength(), 0) << text;
    ExpectPlace(TPathRuler(TFigures{}).At(3), {0, 0}, {1, 0});
}

} // namespace
