#include "tavro/graphics/Geometry.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <random>

namespace Vz {
namespace {

constexpr float Pi = std::numbers::pi_v<float>;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

TPointF Map(const TMatrix& m, float x, float y) {
    return {x * m.M11 + y * m.M21 + m.M31, x * m.M12 + y * m.M22 + m.M32};
}

void ExpectNear(TPointF p, float x, float y, float slack = 1e-5f) {
    EXPECT_NEAR(p.X, x, slack);
    EXPECT_NEAR(p.Y, y, slack);
}

TEST(Geometry, RotationTurnsClockwiseAboutTheCenter) {
    const TMatrix m = CreateRotationVZMatrix({10, 20}, Pi / 2);
    EXPECT_NEAR(m.M11, 0, 1e-6f);
    EXPECT_NEAR(m.M12, 1, 1e-6f);
    EXPECT_NEAR(m.M21, -1, 1e-6f);
    EXPECT_NEAR(m.M22, 0, 1e-6f);
    EXPECT_NEAR(m.M31, 30, 1e-5f);
    EXPECT_NEAR(m.M32, 10, 1e-5f);
    ExpectNear(Map(m, 10, 20), 10, 20);
    ExpectNear(Map(m, 11, 20), 10, 21); // from three o'clock to six
    ExpectNear(Map(CreateRotationVZMatrix({0, 0}, Pi / 6), 10, 0), 8.660254f, 5);
}

TEST(Geometry, RotationByZeroIsTheIdentity) {
    EXPECT_TRUE(IsIdentityMatrix(CreateRotationVZMatrix({3, 4}, 0)));
}

TEST(Geometry, RotationThereAndBackIsTheIdentity) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> angle(-10, 10), place(-500, 500);
    for (int i = 0; i < 200; ++i) {
        const TPointF center{place(random), place(random)};
        const float radians = angle(random);
        const TMatrix m = VZMatrixMultiply(CreateRotationVZMatrix(center, radians),
                                           CreateRotationVZMatrix(center, -radians));
        const TPointF p{place(random), place(random)};
        ExpectNear(Map(m, p.X, p.Y), p.X, p.Y, 2e-3f);
    }
}

TEST(Geometry, MultiplyAppliesTheFirstFirst) {
    const TMatrix scale = CreateScaleVZMatrix(2, 3), move = CreateTranslateVZMatrix(5, 7);
    ExpectNear(Map(VZMatrixMultiply(scale, move), 1, 1), 7, 10);
    ExpectNear(Map(VZMatrixMultiply(move, scale), 1, 1), 12, 24);
    EXPECT_EQ(VZMatrixMultiply(scale, TMatrix{}), scale);
    EXPECT_EQ(VZMatrixMultiply(TMatrix{}, move), move);
}

TEST(Geometry, TranslationStandsInTheThirdRow) {
    const TMatrix m = CreateTranslateVZMatrix(5, -7);
    EXPECT_EQ(m, (TMatrix{1, 0, 0, 0, 1, 0, 5, -7, 1}));
    EXPECT_EQ(CreateScaleVZMatrix(2, 3), (TMatrix{2, 0, 0, 0, 3, 0, 0, 0, 1}));
}

TEST(Geometry, IdentityIsExact) {
    TMatrix m;
    EXPECT_TRUE(IsIdentityMatrix(m));
    m.M32 = 1e-30f;
    EXPECT_FALSE(IsIdentityMatrix(m));
    m = {};
    m.M11 = std::nextafter(1.0f, 2.0f);
    EXPECT_FALSE(IsIdentityMatrix(m));
    m = {};
    m.M13 = 1;
    EXPECT_FALSE(IsIdentityMatrix(m));
}

TEST(Geometry, PointsAndRectangles) {
    EXPECT_EQ(VZPoint(1.5f, -2), (TPointF{1.5f, -2}));
    EXPECT_EQ(VZRect(TRect{1, 2, 30, 40}), (TRectF{1, 2, 30, 40}));
    EXPECT_EQ(VZRect(1, 2.5f, 3, 4), (TRectF{1, 2.5f, 3, 4}));
    EXPECT_EQ(VZCenterPoint(TRect{0, 0, 5, 8}), (TPointF{2.5f, 4}));
    EXPECT_EQ(VZCenterPoint(TRectF{-10, 10, 30, 20}), (TPointF{10, 15}));
}

TEST(Geometry, CenterRectMovesAndKeepsTheSize) {
    TRectF rect{0, 0, 10, 20};
    CenterRect(rect, {100, 100, 200, 300});
    EXPECT_EQ(rect, (TRectF{145, 190, 155, 210}));
    TRectF larger{0, 0, 300, 2};
    CenterRect(larger, {0, 0, 100, 100});
    EXPECT_EQ(larger, (TRectF{-100, 49, 200, 51}));
}

TEST(Geometry, ScaleSizeByMode) {
    using enum TSVGImageWrapMode;
    EXPECT_EQ(ScaleSize(200, 100, 50, 50, Fit, 1), (TSizeF{100, 100}));
    EXPECT_EQ(ScaleSize(200, 100, 50, 20, Fit, 1), (TSizeF{200, 80}));
    EXPECT_EQ(ScaleSize(200, 100, 400, 400, Fit, 0.5f), (TSizeF{50, 50}));
    EXPECT_EQ(ScaleSize(200, 100, 50, 50, Stretch, 1), (TSizeF{200, 100}));
    EXPECT_EQ(ScaleSize(200, 100, 50, 50, Stretch, 2), (TSizeF{400, 200}));
    EXPECT_EQ(ScaleSize(200, 100, 50, 60, Original, 2), (TSizeF{100, 120}));
    EXPECT_EQ(ScaleSize(200, 100, 0, 60, Fit, 1), (TSizeF{200, 100}));
}

TEST(Geometry, PixelRectangles) {
    EXPECT_EQ(Intersection(TRect{0, 0, 10, 10}, {5, 5, 20, 20}), (TRect{5, 5, 10, 10}));
    EXPECT_EQ(Intersection(TRect{0, 0, 10, 10}, {10, 0, 20, 10}), TRect{});
    EXPECT_EQ(Union(TRect{0, 0, 1, 1}, {5, 5, 6, 6}), (TRect{0, 0, 6, 6}));
    EXPECT_EQ(Union(TRect{7, 7, 7, 9}, {5, 5, 6, 6}), (TRect{5, 5, 6, 6}));
}

TEST(Geometry, PixelBoundsAreAroundAndBounded) {
    EXPECT_EQ(PixelBounds({0.1, -0.1, 1, 1.5}), (TRect{0, -1, 1, 2}));
    EXPECT_EQ(PixelBounds({}), TRect{});
    EXPECT_EQ(PixelBounds({0, 0, NaN, 1}), TRect{});
    EXPECT_EQ(PixelBounds({-1e300, -1e300, 1e300, 1e300}), (TRect{-(1 << 30), -(1 << 30), 1 << 30, 1 << 30}));
}

TEST(Geometry, DoubleRectanglesTakePointsUp) {
    TRectD box;
    EXPECT_TRUE(box.IsEmpty());
    box.Include(3, 4);
    EXPECT_FALSE(box.IsEmpty());
    EXPECT_EQ(box, (TRectD{3, 4, 3, 4}));
    box.Include(TRectD{});
    box.Include(-1, 9);
    EXPECT_EQ(box, (TRectD{-1, 4, 3, 9}));
    EXPECT_TRUE(Intersection(box, TRectD{5, 5, 6, 6}).IsEmpty());
    EXPECT_EQ(Intersection(box, TRectD{0, 0, 6, 6}), (TRectD{0, 4, 3, 6}));
}

TEST(Affine, ThenInverseAndOrder) {
    const TAffine m = TAffine::Scaling(2, 3).Then(TAffine::Translation(5, 7));
    EXPECT_EQ(m(1, 1), (TPointD{7, 10}));
    EXPECT_EQ(m.Inverse()(7, 10), (TPointD{1, 1}));
    const TPointD turned = TAffine::Rotation(std::numbers::pi / 2)(1, 0);
    EXPECT_NEAR(turned.X, 0, 1e-15);
    EXPECT_NEAR(turned.Y, 1, 1e-15);
    EXPECT_EQ(m(TRectD{0, 0, 1, 1}), (TRectD{5, 7, 7, 10}));
    EXPECT_EQ(TAffine::Scaling(-1, 1)(TRectD{1, 0, 2, 1}), (TRectD{-2, 0, -1, 1}));
}

TEST(Affine, Scales) {
    EXPECT_DOUBLE_EQ(TAffine::Scaling(3, -4).MaxScale(), 4);
    EXPECT_DOUBLE_EQ(TAffine::Scaling(9, 4).MeanScale(), 6);
    EXPECT_NEAR(TAffine::Rotation(0.7).MaxScale(), 1, 1e-15);
    // x' = x + y, y' = y: the golden ratio.
    EXPECT_NEAR((TAffine{1, 0, 1, 1, 0, 0}).MaxScale(), std::numbers::phi, 1e-15);
    EXPECT_DOUBLE_EQ((TAffine{1, 1, 1, 1, 0, 0}).MaxScale(), 2);
    EXPECT_DOUBLE_EQ(TAffine::Scaling(1e200, 1e200).MaxScale(), 1e200);
}

TEST(Affine, WhatCannotBeInverted) {
    EXPECT_FALSE(TAffine::Scaling(0, 1).IsInvertible());
    EXPECT_FALSE((TAffine{1, 2, 2, 4, 0, 0}).IsInvertible());
    EXPECT_FALSE((TAffine{NaN, 0, 0, 1, 0, 0}).IsInvertible());
    EXPECT_FALSE(TAffine::Scaling(1e-300, 1e-300).IsInvertible());
    EXPECT_EQ(TAffine::Scaling(0, 1).Inverse(), TAffine{});
}

TEST(Affine, ToMatrixHoldsAtTheEndsOfSinglePrecision) {
    const TMatrix m = TAffine{1e300, 0, 0, -1e300, 1, 2}.ToMatrix();
    EXPECT_EQ(m.M11, std::numeric_limits<float>::max());
    EXPECT_EQ(m.M22, -std::numeric_limits<float>::max());
    EXPECT_EQ(TAffine::FromMatrix({1, 2, 0, 3, 4, 0, 5, 6, 1}), (TAffine{1, 2, 3, 4, 5, 6}));
}

} // namespace
} // namespace Vz
