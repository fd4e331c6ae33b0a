#include "tavro/graphics/raster/CoverageInternal.h"
#include "tavro/graphics/raster/RowOpsInternal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

namespace {

using namespace Vz;

TPolygons Polygons(std::initializer_list<std::vector<TPointD>> list) {
    TPolygons polygons;
    polygons.Starts.push_back(0);
    for (const auto& points : list) {
        polygons.Points.insert(polygons.Points.end(), points.begin(), points.end());
        polygons.Starts.push_back(static_cast<std::uint32_t>(polygons.Points.size()));
    }
    return polygons;
}

std::vector<TPointD> Box(double left, double top, double right, double bottom) {
    return {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
}

/// Coverage 0..255 of a box of pixels, row by row.
struct TPicture {
    TRect Box;
    std::vector<std::uint8_t> Values;
    int At(int x, int y) const { return Values[std::size_t((y - Box.Top) * Box.Width() + x - Box.Left)]; }
    long Sum() const {
        long sum = 0;
        for (const int v : Values)
            sum += v;
        return sum;
    }
};

TPicture Cover(const TPolygons& polygons, const TRect& box, TFillRule rule = TFillRule::NonZero,
               const TAffine& matrix = {}) {
    static TCoverage coverage; // kept, so that a row left unclean shows in the next case
    TPicture picture{box, std::vector<std::uint8_t>(std::size_t(box.Width()) * std::size_t(box.Height()))};
    std::vector<std::uint8_t> line(std::size_t(box.Width()) + 2 * TCoverage::Margin);
    coverage.SetShape(polygons, matrix);
    coverage.Begin(box);
    int last = box.Top - 1;
    for (auto rows = coverage.Next(); !rows.empty(); rows = coverage.Next())
        for (const TCoverageRow& row : rows) {
            EXPECT_GT(row.Y, last);
            last = row.Y;
            EXPECT_GE(row.X, box.Left);
            EXPECT_LE(row.X + row.Count, box.Right);
            RowOps().Resolve(row, rule, line.data());
            std::copy_n(line.begin(), row.Count,
                        picture.Values.begin() + (row.Y - box.Top) * box.Width() + row.X - box.Left);
        }
    return picture;
}

/// Star of `count` points on circles of changing radius, winding `turns` times.
std::vector<TPointD> Star(std::mt19937& random, int count, int turns, double cx, double cy, double radius) {
    std::uniform_real_distribution<double> part(0.2, 1);
    std::vector<TPointD> points;
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * std::numbers::pi * turns * i / count;
        const double r = radius * part(random);
        points.push_back({cx + r * std::cos(angle), cy + r * std::sin(angle)});
    }
    return points;
}

bool IsInside(const TPolygons& polygons, double x, double y, TFillRule rule) {
    int winding = 0;
    for (std::size_t i = 0; i + 1 < polygons.Starts.size(); ++i) {
        const std::uint32_t first = polygons.Starts[i];
        const std::uint32_t end = polygons.Starts[i + 1];
        for (std::uint32_t k = first; k < end; ++k) {
            const TPointD& a = polygons.Points[k];
            const TPointD& b = polygons.Points[k + 1 < end ? k + 1 : first];
            if ((a.Y <= y) == (b.Y <= y)) continue;
            if (a.X + (y - a.Y) * (b.X - a.X) / (b.Y - a.Y) < x) winding += a.Y < b.Y ? 1 : -1;
        }
    }
    return rule == TFillRule::NonZero ? winding != 0 : winding % 2 != 0;
}

/// Mean over count by count points a pixel, 0..255.
double Sampled(const TPolygons& polygons, int x, int y, int count, TFillRule rule) {
    int inside = 0;
    for (int j = 0; j < count; ++j)
        for (int i = 0; i < count; ++i)
            inside += IsInside(polygons, x + (i + 0.5) / count, y + (j + 0.5) / count, rule);
    return inside * 255.0 / (count * count);
}

} // namespace

TEST(Coverage, OfARectangleIsItsAreaInEachPixel) {
    const TPicture p = Cover(Polygons({Box(1.25, 1.5, 3.5, 3)}), {0, 0, 5, 4});
    EXPECT_EQ(p.At(0, 1), 0);
    EXPECT_EQ(p.At(1, 1), std::lround(0.75 * 0.5 * 255));
    EXPECT_EQ(p.At(2, 1), std::lround(0.5 * 255));
    EXPECT_EQ(p.At(3, 1), std::lround(0.25 * 255));
    EXPECT_EQ(p.At(1, 2), std::lround(0.75 * 255));
    EXPECT_EQ(p.At(2, 2), 255);
    EXPECT_EQ(p.At(3, 2), std::lround(0.5 * 255));
    EXPECT_EQ(p.At(4, 2), 0);
    EXPECT_EQ(p.At(2, 3), 0);
}

TEST(Coverage, OfATriangleIsItsAreaInEachPixel) {
    // Hypotenuse from (0,0) to (4,2): in row 0 the areas right of it below the line are these.
    const TPicture p = Cover(Polygons({{{0, 0}, {4, 2}, {0, 2}}}), {0, 0, 4, 2});
    const double areas[2][4] = {{0.75, 0.25, 0, 0}, {1, 1, 0.75, 0.25}};
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(p.At(x, y), std::lround(areas[y][x] * 255)) << x << " " << y;
}

TEST(Coverage, OfAHairlineIsInProportion) {
    const TPicture upright = Cover(Polygons({Box(2.45, 0, 2.55, 4)}), {0, 0, 6, 4});
    for (int y = 0; y < 4; ++y)
        EXPECT_EQ(upright.At(2, y), std::lround(0.1 * 255));
    const TPicture flat = Cover(Polygons({Box(0, 1.98, 6, 2.02)}), {0, 0, 6, 4});
    EXPECT_EQ(flat.At(3, 1), std::lround(0.02 * 255));
    EXPECT_EQ(flat.At(3, 2), std::lround(0.02 * 255));
}

TEST(Coverage, NeighboursInOneShapeLeaveNoSeam) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> place(2, 18);
    for (int i = 0; i < 200; ++i) {
        // A square cut by a random line from its upper to its lower side.
        const double a = place(random);
        const double b = place(random);
        const TPicture p =
            Cover(Polygons({{{0, 0}, {a, 0}, {b, 20}, {0, 20}}, {{a, 0}, {20, 0}, {20, 20}, {b, 20}}}),
                  {0, 0, 20, 20});
        EXPECT_EQ(p.Sum(), 400 * 255);
    }
}

TEST(Coverage, FollowsTheFillRule) {
    const TPolygons twice = Polygons({Box(0, 0, 8, 8), Box(2, 2, 6, 6)});
    EXPECT_EQ(Cover(twice, {0, 0, 8, 8}, TFillRule::NonZero).At(4, 4), 255);
    EXPECT_EQ(Cover(twice, {0, 0, 8, 8}, TFillRule::EvenOdd).At(4, 4), 0);
    EXPECT_EQ(Cover(twice, {0, 0, 8, 8}, TFillRule::EvenOdd).At(1, 4), 255);
    std::vector<TPointD> hole = Box(2, 2, 6, 6);
    std::swap(hole[1], hole[3]);
    EXPECT_EQ(Cover(Polygons({Box(0, 0, 8, 8), hole}), {0, 0, 8, 8}).At(4, 4), 0);
}

TEST(Coverage, IsWithinTheErrorOfFineSampling) {
    std::mt19937 random(11);
    double squares = 0;
    long count = 0;
    for (int i = 0; i < 12; ++i) {
        const TPolygons star = Polygons({Star(random, 9, 1, 20, 20, 18)});
        const TPicture p = Cover(star, {0, 0, 40, 40});
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < 40; ++x) {
                const double error = p.At(x, y) - Sampled(star, x, y, 16, TFillRule::NonZero);
                squares += error * error;
                ++count;
            }
    }
    EXPECT_LT(std::sqrt(squares / double(count)), 0.6);
}

TEST(Coverage, SumsUpToTheArea) {
    std::mt19937 random(3);
    for (int i = 0; i < 50; ++i) {
        const std::vector<TPointD> points = Star(random, 60, 1, 40, 40, 38);
        double area = 0;
        for (std::size_t k = 0; k < points.size(); ++k) {
            const TPointD& a = points[k];
            const TPointD& b = points[(k + 1) % points.size()];
            area += (a.X * b.Y - b.X * a.Y) / 2;
        }
        const TPicture p = Cover(Polygons({points}), {0, 0, 80, 80});
        EXPECT_NEAR(double(p.Sum()) / 255, area, 0.5);
    }
}

TEST(Coverage, OfAPixelIsTheSameWithinAnyBox) {
    std::mt19937 random(7);
    const auto number = [&random](int low, int high) {
        return std::uniform_int_distribution(low, high)(random);
    };
    for (int i = 0; i < 400; ++i) {
        const double size = std::exp2(number(0, 9));
        TPolygons shape = Polygons({Star(random, number(3, 40), number(1, 5), 16.3, 15.7, size),
                                    Star(random, number(3, 10), 1, 10, 20, size / 3)});
        const auto rule = i % 2 ? TFillRule::EvenOdd : TFillRule::NonZero;
        const TRect whole{-8, -8, 40, 40};
        const TPicture all = Cover(shape, whole, rule);
        TRect part{number(-8, 38), number(-8, 38), 0, 0};
        part.Right = number(part.Left + 1, 40);
        part.Bottom = number(part.Top + 1, 40);
        const TPicture piece = Cover(shape, part, rule);
        for (int y = part.Top; y < part.Bottom; ++y)
            for (int x = part.Left; x < part.Right; ++x)
                ASSERT_EQ(piece.At(x, y), all.At(x, y)) << "case " << i << " at " << x << " " << y;
    }
}

TEST(Coverage, LeavesOutPolygonsThatAreNotFinite) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const TPicture p =
        Cover(Polygons({{{0, 0}, {nan, 4}, {4, 4}}, Box(5, 5, 6, 6), {{0, 0}, {infinite, 0}, {0, 9}}}),
              {0, 0, 8, 8});
    EXPECT_EQ(p.Sum(), 255);
    EXPECT_EQ(p.At(5, 5), 255);
}

TEST(Coverage, BearsFarCoordinates) {
    const TPolygons huge = Polygons({{{-1e9, -1e9}, {1e9, -1e9}, {1e9, 1e9}, {-1e9, 1e9}}});
    EXPECT_EQ(Cover(huge, {0, 0, 9, 9}).Sum(), 81 * 255);
    const TPolygons slope = Polygons({{{-1e9, 1e9 + 5}, {1e9, -1e9 + 5}, {1e9, 1e9}}});
    const TPicture p = Cover(slope, {0, 0, 10, 10});
    EXPECT_EQ(p.At(9, 9), 255);
    EXPECT_EQ(p.At(0, 0), 0);
    EXPECT_NEAR(p.At(2, 2), 128, 1);
    Cover(Polygons({{{-1e300, -1e300}, {1e300, 3}, {5, 1e300}}}), {0, 0, 10, 10});
    Cover(Polygons({{{-1e300, 2}, {1e300, 2.00001}, {5, 2.00002}}}), {0, 0, 10, 10});
    Cover(Polygons({Box(1, 1, 2, 2)}), {0, 0, 10, 10}, TFillRule::NonZero, {1e200, 0, 0, 1e200, 0, 0});
}

TEST(Coverage, OfNothingIsNothing) {
    EXPECT_EQ(Cover({}, {0, 0, 4, 4}).Sum(), 0);
    EXPECT_EQ(Cover(Polygons({{}, {{1, 1}}, {{1, 1}, {3, 3}}}), {0, 0, 4, 4}).Sum(), 0);
    EXPECT_EQ(Cover(Polygons({{{0, 0}, {4, 4}, {2, 2}}}), {0, 0, 4, 4}).Sum(), 0);
    EXPECT_EQ(Cover(Polygons({Box(0, 0, 4, 4)}), {8, 8, 12, 12}).Sum(), 0);
}

TEST(Coverage, BearsAMillionEdges) {
    std::mt19937 random(1);
    const TPicture p = Cover(Polygons({Star(random, 1000000, 1, 50, 50, 48)}), {0, 0, 100, 100});
    EXPECT_GT(p.At(50, 50), 250);
    EXPECT_EQ(p.At(0, 0), 0);
}

TEST(Coverage, KnowsARectangleOfWholePixels) {
    const auto whole = [](const TPolygons& polygons, const TAffine& matrix = {}) {
        TCoverage coverage;
        coverage.SetShape(polygons, matrix);
        return coverage.WholePixels();
    };
    EXPECT_EQ(whole(Polygons({Box(1, 2, 5, 9)})), (TRect{1, 2, 5, 9}));
    EXPECT_EQ(whole(Polygons({Box(1, 2, 5, 9)}), {0, 1, -1, 0, 20, 0}), (TRect{11, 1, 18, 5}));
    EXPECT_TRUE(whole(Polygons({Box(1, 2.5, 5, 9)})).IsEmpty());
    EXPECT_TRUE(whole(Polygons({Box(1, 2, 5, 9)}), TAffine::Rotation(0.1)).IsEmpty());
    EXPECT_TRUE(whole(Polygons({{{1, 2}, {5, 2}, {5, 9}}})).IsEmpty());
    EXPECT_TRUE(whole(Polygons({{{1, 2}, {5, 9}, {5, 2}, {1, 9}}})).IsEmpty());
    EXPECT_TRUE(whole(Polygons({Box(1, 2, 5, 9), Box(2, 3, 4, 4)})).IsEmpty());
}
