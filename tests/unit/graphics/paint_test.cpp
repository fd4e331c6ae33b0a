#include "tavro/graphics/raster/Device.h"
#include "tavro/graphics/raster/PaintSourceInternal.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Vz;

namespace {

constexpr int Size = 64;

/// What a paint gives for a square of pixels that all lie in the shape.
struct TPainted {
    std::vector<std::uint32_t> Store = std::vector<std::uint32_t>(Size * Size);
    TPixels Pixels{Store.data(), Size, Size, Size};

    explicit TPainted(const TPaint& paint, const TAffine& matrix = {}) {
        TFigures figures;
        figures.MoveTo(-1000, -1000);
        figures.LineTo(1000, -1000);
        figures.LineTo(1000, 1000);
        figures.LineTo(-1000, 1000);
        figures.Close();
        TShape shape;
        shape.Figures = &figures;
        TRasterDevice(Pixels).Draw(shape, paint, matrix);
    }
    std::uint32_t At(int x, int y) const { return Store[std::size_t(y * Size + x)]; }
    int RedAt(int x, int y) const { return RedOf(At(x, y)); }
};

/// From black at 0 to red at 1, opaque: the red of a pixel is 255 t.
TPaint BlackToRed(TPaint::TKind kind) {
    const TRampStop stops[] = {{0, 0xFF000000}, {1, 0xFFFF0000}};
    TPaint paint;
    paint.Kind = kind;
    paint.Ramp = std::make_shared<TGradientRamp>(stops, 1);
    return paint;
}

double Spread(double t, TSpread spread) {
    if (spread == TSpread::Repeat) return t - std::floor(t);
    if (spread == TSpread::Reflect) return std::abs(t - 2 * std::round(t / 2));
    return std::clamp(t, 0.0, 1.0);
}

constexpr TSpread AllSpreads[] = {TSpread::Pad, TSpread::Reflect, TSpread::Repeat};

} // namespace

TEST(Ramp, InterpolatesBetweenStops) {
    const TRampStop stops[] = {
        {0.25f, 0xFF000000}, {0.5f, 0xFF0000FF}, {0.5f, 0x00FF0000}, {0.75f, 0xFFFF0000}};
    const TGradientRamp ramp(stops, 1);
    const auto at = [&ramp](double t) { return ramp.Table()[int(t * (TGradientRamp::Size - 1) + 0.5)]; };
    EXPECT_EQ(at(0), 0xFF000000u);
    EXPECT_EQ(at(0.2), 0xFF000000u);
    EXPECT_NEAR(BlueOf(at(0.375)), 128, 1);
    EXPECT_NEAR(BlueOf(at(0.498)), 253, 1);
    EXPECT_NEAR(AlphaOf(at(0.502)), 2, 1);
    EXPECT_NEAR(AlphaOf(at(0.625)), 128, 1);
    EXPECT_NEAR(RedOf(at(0.625)), 128, 1);
    EXPECT_EQ(at(1), 0xFFFF0000u);
    EXPECT_FALSE(ramp.IsOpaque());
}

TEST(Ramp, ShowsTheOutermostStopsAtItsEnds) {
    const TRampStop stops[] = {{0, 0xFFFF0000}, {0, 0xFF00FF00}, {1, 0xFF00FF00}, {1, 0xFF0000FF}};
    const TGradientRamp ramp(stops, 0.5);
    EXPECT_EQ(ramp.Table()[0], 0x80800000u);
    EXPECT_EQ(ramp.Table()[1], 0x80008000u);
    EXPECT_EQ(ramp.Table()[TGradientRamp::Size - 2], 0x80008000u);
    EXPECT_EQ(ramp.Table()[TGradientRamp::Size - 1], 0x80000080u);
    const TGradientRamp one(std::span(stops, 1), 1);
    EXPECT_TRUE(one.IsOpaque());
    EXPECT_EQ(one.Table()[500], 0xFFFF0000u);
}

TEST(Ramp, BearsAnything) {
    const TRampStop stops[] = {{NAN, 0xFFFF0000}, {0.7f, 0xFF00FF00}, {0.2f, 0xFF0000FF}, {7, 0xFFFFFFFF}};
    const TGradientRamp ramp(stops, NAN);
    EXPECT_EQ(ramp.Opacity(), 0);
    for (int i = 0; i < TGradientRamp::Size; ++i)
        EXPECT_EQ(ramp.Table()[i], 0u);
    EXPECT_EQ(TGradientRamp({}, 1).Table()[5], 0u);
}

TEST(LinearPaint, RunsFromStartToEnd) {
    for (const TSpread spread : AllSpreads) {
        TPaint paint = BlackToRed(TPaint::TKind::Linear);
        paint.Start = {10, 12};
        paint.End = {30, 22};
        paint.Spread = spread;
        const TPainted painted(paint);
        for (int y = 0; y < Size; y += 7)
            for (int x = 0; x < Size; ++x) {
                const double t = ((x + 0.5 - 10) * 20 + (y + 0.5 - 12) * 10) / 500;
                if (std::abs(t - std::round(t)) < 0.02) continue; // where a repeated ramp jumps
                ASSERT_NEAR(painted.RedAt(x, y), 255 * Spread(t, spread), 1) << x << " " << y;
            }
    }
}

TEST(LinearPaint, FollowsItsMatrixAndTheShapes) {
    TPaint paint = BlackToRed(TPaint::TKind::Linear);
    paint.Start = {0, 0};
    paint.End = {1, 0};
    paint.Matrix = TAffine::Scaling(20, 5);
    const TPainted painted(paint, TAffine::Translation(10, 0).Then(TAffine::Scaling(2, 1)));
    for (int x = 0; x < Size; ++x)
        EXPECT_NEAR(painted.RedAt(x, 9), 255 * std::clamp((x + 0.5 - 20) / 40, 0.0, 1.0), 1);
}

TEST(LinearPaint, WithoutLengthIsItsLastColour) {
    TPaint paint = BlackToRed(TPaint::TKind::Linear);
    paint.Start = paint.End = {10, 10};
    EXPECT_EQ(TPainted(paint).At(30, 30), 0xFFFF0000u);
    paint.Kind = TPaint::TKind::Radial;
    EXPECT_EQ(TPainted(paint).At(30, 30), 0xFFFF0000u);
}

TEST(LinearPaint, ThatCannotBePaintedPaintsNothing) {
    TPaint paint = BlackToRed(TPaint::TKind::Linear);
    paint.End = {10, 0};
    paint.Matrix = {0, 0, 0, 0, 0, 0};
    EXPECT_EQ(TPainted(paint).At(30, 30), 0u);
    paint.Matrix = {NAN, 0, 0, 1, 0, 0};
    EXPECT_EQ(TPainted(paint).At(30, 30), 0u);
    paint.Matrix = {};
    paint.Ramp = nullptr;
    EXPECT_EQ(TPainted(paint).At(30, 30), 0u);
    paint.Kind = TPaint::TKind::Image;
    EXPECT_EQ(TPainted(paint).At(30, 30), 0u);
}

TEST(RadialPaint, RunsFromCentreToRim) {
    for (const TSpread spread : AllSpreads) {
        TPaint paint = BlackToRed(TPaint::TKind::Radial);
        paint.Center = paint.Focus = {30, 25};
        paint.Radius = 16;
        paint.Spread = spread;
        const TPainted painted(paint);
        for (int y = 0; y < Size; y += 3)
            for (int x = 0; x < Size; ++x) {
                const double t = std::hypot(x + 0.5 - 30, y + 0.5 - 25) / 16;
                if (std::abs(t - std::round(t)) < 0.02) continue;
                ASSERT_NEAR(painted.RedAt(x, y), 255 * Spread(t, spread), 1) << x << " " << y;
            }
    }
}

TEST(RadialPaint, RunsFromTheFocus) {
    for (const double distance : {0.3, 0.8, 0.97})
        for (const double focusRadius : {0.0, 4.0}) {
            TPaint paint = BlackToRed(TPaint::TKind::Radial);
            paint.Center = {32, 32};
            paint.Radius = 28;
            paint.FocusRadius = focusRadius;
            paint.Focus = {32 + (28 - focusRadius) * distance * 0.6,
                           32 + (28 - focusRadius) * distance * 0.8};
            const TPainted painted(paint);
            for (int step = 1; step < 20; ++step)
                for (int turn = 0; turn < 24; ++turn) {
                    // A place on the circle of t, and the t of the pixel's centre nearest to it.
                    const double t = step / 20.0;
                    const double r = focusRadius + t * (28 - focusRadius);
                    const double cx = paint.Focus.X + t * (32 - paint.Focus.X);
                    const double cy = paint.Focus.Y + t * (32 - paint.Focus.Y);
                    const int x = int(cx + r * std::cos(turn * 0.2618));
                    const int y = int(cy + r * std::sin(turn * 0.2618));
                    double low = 0;
                    double high = 1.5;
                    for (int i = 0; i < 40; ++i) {
                        const double middle = (low + high) / 2;
                        const double dx = x + 0.5 - (paint.Focus.X + middle * (32 - paint.Focus.X));
                        const double dy = y + 0.5 - (paint.Focus.Y + middle * (32 - paint.Focus.Y));
                        const bool inside = std::hypot(dx, dy) < focusRadius + middle * (28 - focusRadius);
                        (inside ? high : low) = middle;
                    }
                    ASSERT_NEAR(painted.RedAt(x, y), 255 * std::min(low, 1.0), 2)
                        << distance << " " << x << " " << y;
                }
        }
}

TEST(RadialPaint, WithItsFocusOnTheRimShowsTheLastColourBehindIt) {
    TPaint paint = BlackToRed(TPaint::TKind::Radial);
    paint.Center = {32, 32};
    paint.Radius = 20;
    paint.Focus = {52, 32};
    const TPainted painted(paint);
    EXPECT_EQ(painted.At(60, 32), 0xFFFF0000u);
    EXPECT_EQ(painted.At(5, 5), 0xFFFF0000u);
    EXPECT_NEAR(painted.RedAt(31, 32), 255 * 20.5 / 40, 3);
}

TEST(RadialPaint, WithItsFocusOutsidePaintsACone) {
    TPaint paint = BlackToRed(TPaint::TKind::Radial);
    paint.Center = {44, 32};
    paint.Radius = 10;
    paint.Focus = {10, 32};
    const TPainted painted(paint);
    EXPECT_EQ(painted.At(10, 5), 0u);
    EXPECT_EQ(painted.At(4, 32), 0u);
    EXPECT_EQ(painted.At(60, 32), 0xFFFF0000u);
    // On the axis the greatest circle that touches a place from behind: x = 10 + 34 t - 10 t.
    EXPECT_NEAR(painted.RedAt(21, 32), 255 * 11.5 / 24, 3);
}

TEST(ImagePaint, RepeatsItsTile) {
    auto tile = std::make_shared<TVZGPBitmap>(3u, 2u);
    for (int i = 0; i < 6; ++i)
        tile->GetPixels().Data[i] = 0xFF000000u + unsigned(i) * 40;
    TPaint paint;
    paint.Kind = TPaint::TKind::Image;
    paint.Image = tile;
    paint.Matrix = TAffine::Translation(-4, 5);
    for (const TInterpolation mode :
         {TInterpolation::Nearest, TInterpolation::Bilinear, TInterpolation::Bicubic}) {
        paint.Interpolation = mode;
        const TPainted painted(paint);
        for (int y = 0; y < Size; ++y)
            for (int x = 0; x < Size; ++x)
                ASSERT_EQ(painted.At(x, y), 0xFF000000u + unsigned((x + 4) % 3 + (y + 1) % 2 * 3) * 40);
    }
    paint.Opacity = 0.5;
    EXPECT_EQ(AlphaOf(TPainted(paint).At(9, 9)), 128);
    paint.Opacity = 1;
    paint.Interpolation = TInterpolation::Nearest;
    paint.Matrix = TAffine::Scaling(4, 4);
    const TPainted large(paint);
    EXPECT_EQ(large.At(7, 3), 0xFF000000u + 40);
    EXPECT_EQ(large.At(8, 4), 0xFF000000u + 200);
    EXPECT_EQ(large.At(12, 8), 0xFF000000u);
}

TEST(ImagePaint, OfATinyTileIsItsMean) {
    auto tile = std::make_shared<TVZGPBitmap>(8u, 8u);
    for (int i = 0; i < 64; ++i)
        tile->GetPixels().Data[i] = (i + i / 8) % 2 ? 0xFFFFFFFFu : 0xFF000000u;
    TPaint paint;
    paint.Kind = TPaint::TKind::Image;
    paint.Image = tile;
    paint.Matrix = TAffine::Scaling(0.25, 0.25);
    const TPainted painted(paint);
    for (int y = 0; y < Size; ++y)
        for (int x = 0; x < Size; ++x)
            ASSERT_NEAR(painted.RedAt(x, y), 128, 2);
}

namespace {

/// A picture drawn onto a square.
struct TDrawn {
    std::vector<std::uint32_t> Store = std::vector<std::uint32_t>(Size * Size);
    TPixels Pixels{Store.data(), Size, Size, Size};
    TDrawn(const TPixels& image, const TAffine& matrix, TInterpolation mode, double opacity = 1) {
        TRasterDevice(Pixels).DrawImage(image, matrix, opacity, mode);
    }
    std::uint32_t At(int x, int y) const { return Store[std::size_t(y * Size + x)]; }
};

/// A picture of `width` by `height` whose red is the function's value.
struct TPicture {
    std::vector<std::uint32_t> Store;
    TPixels Pixels;
    template <class TRed>
    TPicture(int width, int height, TRed&& red)
        : Store(std::size_t(width * height))
        , Pixels{Store.data(), width, height, width} {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                Pixels.Row(y)[x] = MakeColor(255, static_cast<unsigned>(red(x, y)), 0, 0);
    }
};

} // namespace

TEST(DrawImage, ByWholePixelsIsACopy) {
    const TPicture image(20, 20, [](int x, int y) { return (x * 37 + y * 91) % 256; });
    for (const TInterpolation mode :
         {TInterpolation::Nearest, TInterpolation::Bilinear, TInterpolation::Bicubic}) {
        const TDrawn drawn(image.Pixels, TAffine::Translation(-5, 50), mode);
        for (int y = 0; y < Size; ++y)
            for (int x = 0; x < Size; ++x)
                ASSERT_EQ(drawn.At(x, y), x < 15 && y >= 50 ? image.Pixels.Row(y - 50)[x + 5] : 0);
    }
    EXPECT_EQ(TDrawn(image.Pixels, {}, TInterpolation::Nearest, 0.5).At(0, 0), 0x80000000u);
}

TEST(DrawImage, EnlargesSmoothly) {
    const TPicture image(8, 8, [](int x, int) { return x * 30; });
    for (const TInterpolation mode : {TInterpolation::Bilinear, TInterpolation::Bicubic}) {
        const TDrawn drawn(image.Pixels, TAffine::Scaling(8, 8), mode);
        for (int x = 16; x < 48; ++x)
            ASSERT_NEAR(RedOf(drawn.At(x, 30)), ((x + 0.5) / 8 - 0.5) * 30, 1.2) << x;
        EXPECT_EQ(drawn.At(0, 0), 0xFF000000u);
    }
    const TDrawn blocks(image.Pixels, TAffine::Scaling(8, 8), TInterpolation::Nearest);
    for (int x = 0; x < Size; ++x)
        ASSERT_EQ(RedOf(blocks.At(x, 30)), x / 8 * 30);
}

TEST(DrawImage, BicubicIsSharperThanBilinear) {
    const TPicture edge(8, 8, [](int x, int) { return x < 4 ? 60 : 200; });
    const TDrawn linear(edge.Pixels, TAffine::Scaling(8, 8), TInterpolation::Bilinear);
    const TDrawn cubic(edge.Pixels, TAffine::Scaling(8, 8), TInterpolation::Bicubic);
    EXPECT_LT(RedOf(cubic.At(24, 30)), RedOf(linear.At(24, 30)));
    EXPECT_LT(RedOf(cubic.At(26, 30)), 60); // the spline swings below before it rises
}

TEST(DrawImage, AveragesWhatItMakesSmaller) {
    for (const int factor : {2, 3, 4, 8}) {
        const int size = 16 * factor;
        const TPicture image(size, size, [](int x, int y) { return (x * 57 + y * 131 + x * y) % 256; });
        for (const TInterpolation mode : {TInterpolation::Bilinear, TInterpolation::Bicubic}) {
            const TDrawn drawn(image.Pixels, {1.0 / factor, 0, 0, 1.0 / factor, 3, 2}, mode);
            for (int y = 0; y < 16; ++y)
                for (int x = 0; x < 16; ++x) {
                    double sum = 0;
                    for (int j = 0; j < factor; ++j)
                        for (int i = 0; i < factor; ++i)
                            sum += RedOf(image.Pixels.Row(y * factor + j)[x * factor + i]);
                    ASSERT_NEAR(RedOf(drawn.At(x + 3, y + 2)), sum / (factor * factor), 0.51);
                    ASSERT_EQ(AlphaOf(drawn.At(x + 3, y + 2)), 255);
                }
            EXPECT_EQ(drawn.At(19, 10), 0u);
            EXPECT_EQ(drawn.At(2, 10), 0u);
        }
    }
}

TEST(DrawImage, AveragesAnyFactorAndMirror) {
    const TPicture ramp(100, 100, [](int x, int y) { return x + y; });
    for (const TAffine& matrix : {TAffine{0.37, 0, 0, 0.53, 4.2, 1.7}, TAffine{-0.37, 0, 0, 0.53, 50.2, 1.7},
                                  TAffine{0.3, 0.2, -0.2, 0.3, 25, 5}}) {
        const TDrawn drawn(ramp.Pixels, matrix, TInterpolation::Bilinear);
        const TAffine back = matrix.Inverse();
        int compared = 0;
        for (int y = 0; y < Size; ++y)
            for (int x = 0; x < Size; ++x) {
                const TPointD place = back(x + 0.5, y + 0.5);
                if (place.X < 4 || place.Y < 4 || place.X > 96 || place.Y > 96) continue;
                ASSERT_NEAR(RedOf(drawn.At(x, y)), place.X + place.Y - 1, 1.1) << x << " " << y;
                ++compared;
            }
        EXPECT_GT(compared, 500);
    }
}

TEST(DrawImage, HasSmoothEdges) {
    const TPicture white(10, 10, [](int, int) { return 255; });
    const TDrawn drawn(white.Pixels, TAffine::Translation(5.25, 5), TInterpolation::Bilinear);
    EXPECT_NEAR(AlphaOf(drawn.At(5, 8)), 191, 1);
    EXPECT_EQ(AlphaOf(drawn.At(6, 8)), 255);
    EXPECT_NEAR(AlphaOf(drawn.At(15, 8)), 64, 1);
    EXPECT_EQ(AlphaOf(drawn.At(16, 8)), 0);
}

TEST(DrawImage, OfOnePixelFillsItsPlace) {
    const TPicture dot(1, 1, [](int, int) { return 200; });
    for (const TInterpolation mode :
         {TInterpolation::Nearest, TInterpolation::Bilinear, TInterpolation::Bicubic})
        EXPECT_EQ(TDrawn(dot.Pixels, TAffine::Scaling(40, 40), mode).At(20, 35), 0xFFC80000u);
}
