#include "tavro/graphics/raster/Device.h"
#include "tavro/graphics/raster/LayerPair.h"
#include "tavro/graphics/raster/RowOpsInternal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>

namespace {

using namespace Vz;

struct TBitmap {
    TPixels Pixels;
    std::vector<std::uint32_t> Store;
    TBitmap(int width, int height, std::uint32_t color = 0)
        : Store(std::size_t(width) * std::size_t(height), color) {
        Pixels = {Store.data(), width, height, width};
    }
    std::uint32_t At(int x, int y) const { return Pixels.Row(y)[x]; }
};

TFigures Rect(double x, double y, double width, double height) {
    TFigures figures;
    figures.MoveTo(x, y);
    figures.LineTo(x + width, y);
    figures.LineTo(x + width, y + height);
    figures.LineTo(x, y + height);
    figures.Close();
    return figures;
}

TPaint Solid(TVZGPColor color) {
    TPaint paint;
    paint.Color = color;
    return paint;
}

void Fill(IPaintDevice& device, const TFigures& figures, const TPaint& paint, const TAffine& matrix = {}) {
    TShape shape;
    shape.Figures = &figures;
    device.Draw(shape, paint, matrix);
}

void ClipTo(IPaintDevice& device, const TFigures& figures, const TAffine& matrix = {}) {
    TClipShape clip;
    clip.Shape.Figures = &figures;
    clip.Matrix = matrix;
    device.PushClip({&clip, 1});
}

/// Every channel differs by at most `slack`.
testing::AssertionResult Near(std::uint32_t a, std::uint32_t b, int slack) {
    for (int shift = 0; shift < 32; shift += 8)
        if (std::abs(int(a >> shift & 255) - int(b >> shift & 255)) > slack)
            return testing::AssertionFailure() << std::hex << a << " is not near " << b;
    return testing::AssertionSuccess();
}

} // namespace

TEST(Raster, FillsPixelsByTheirCoverage) {
    TBitmap bitmap(6, 4, 0xFFFFFFFF);
    TRasterDevice device(bitmap.Pixels);
    Fill(device, Rect(1, 1, 2.5, 2), Solid(0xFF000000));
    EXPECT_EQ(bitmap.At(0, 1), 0xFFFFFFFF);
    EXPECT_EQ(bitmap.At(1, 1), 0xFF000000);
    EXPECT_EQ(bitmap.At(2, 2), 0xFF000000);
    EXPECT_EQ(bitmap.At(3, 2), 0xFF7F7F7F);
    EXPECT_EQ(bitmap.At(4, 2), 0xFFFFFFFF);
    EXPECT_EQ(bitmap.At(1, 3), 0xFFFFFFFF);
}

TEST(Raster, LaysColoursOverEachOther) {
    TBitmap bitmap(1, 1);
    TRasterDevice device(bitmap.Pixels);
    Fill(device, Rect(0, 0, 1, 1), Solid(0x80FF0000));
    EXPECT_EQ(bitmap.At(0, 0), 0x80800000);
    Fill(device, Rect(0, 0, 1, 1), Solid(0x400000FF));
    EXPECT_TRUE(Near(bitmap.At(0, 0), 0xA0600040, 1));
    Fill(device, Rect(0, 0, 1, 1), Solid(0xFF00FF00));
    EXPECT_EQ(bitmap.At(0, 0), 0xFF00FF00);
}

TEST(Raster, PaintsNothingFromWhatIsNotFiniteOrFlat) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    TBitmap bitmap(8, 8);
    TRasterDevice device(bitmap.Pixels);
    TBitmap image(2, 2, 0xFFFFFFFF);
    for (const TAffine& bad : {TAffine{nan, 0, 0, 1, 0, 0}, TAffine{1, 0, 0, 1, infinite, 0},
                               TAffine{0, 0, 0, 0, 0, 0}, TAffine{1, 1, 1, 1, 0, 0}}) {
        Fill(device, Rect(0, 0, 8, 8), Solid(0xFF112233), bad);
        device.DrawImage(image.Pixels, bad, 1, TInterpolation::Bilinear);
    }
    Fill(device, Rect(0, nan, 8, 8), Solid(0xFF112233));
    device.DrawImage(image.Pixels, {}, nan, TInterpolation::Bilinear);
    device.DrawImage({}, {}, 1, TInterpolation::Bilinear);
    for (const std::uint32_t pixel : bitmap.Store)
        EXPECT_EQ(pixel, 0u);
}

TEST(Raster, ChangesOnlyTheRegion) {
    TBitmap bitmap(10, 10);
    TRegion region(TRect{1, 1, 3, 3});
    region.Add(TRect{5, 5, 20, 7});
    {
        TRasterDevice device(bitmap.Pixels, region);
        EXPECT_EQ(device.GetClipBounds(), (TRect{1, 1, 10, 7}));
        Fill(device, Rect(-5, -5, 50, 50), Solid(0xFFFFFFFF));
    }
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 10; ++x)
            EXPECT_EQ(bitmap.At(x, y), region.Contains(x, y) ? 0xFFFFFFFFu : 0u) << x << " " << y;
}

TEST(Raster, ClearsAndCopiesTheRegion) {
    TBitmap bitmap(6, 6, 0x11111111);
    TBitmap image(3, 3);
    for (int i = 0; i < 9; ++i)
        image.Store[std::size_t(i)] = 0xFF000000u + unsigned(i);
    TRasterDevice device(bitmap.Pixels, TRegion(TRect{1, 1, 5, 5}));
    device.Clear(0x80FFFFFF);
    EXPECT_EQ(bitmap.At(0, 0), 0x11111111u);
    EXPECT_EQ(bitmap.At(1, 1), 0x80808080u);
    EXPECT_EQ(bitmap.At(4, 4), 0x80808080u);
    EXPECT_EQ(bitmap.At(5, 4), 0x11111111u);
    device.Copy(image.Pixels, 3, 0);
    EXPECT_EQ(bitmap.At(3, 1), 0xFF000003u);
    EXPECT_EQ(bitmap.At(4, 2), 0xFF000007u);
    EXPECT_EQ(bitmap.At(5, 2), 0x11111111u);
    EXPECT_EQ(bitmap.At(2, 2), 0u);
    EXPECT_EQ(bitmap.At(4, 3), 0u);
    device.Copy(image.Pixels, -1, 3);
    EXPECT_EQ(bitmap.At(1, 3), 0xFF000002u);
    EXPECT_EQ(bitmap.At(2, 3), 0u);
    EXPECT_EQ(bitmap.At(1, 1), 0u);
}

TEST(Raster, CopiesWholePictures) {
    TBitmap image(5, 4);
    for (std::size_t i = 0; i < image.Store.size(); ++i)
        image.Store[i] = 0xFF000000u + unsigned(i);
    TBitmap bitmap(5, 4, 0x11111111);
    TRasterDevice(bitmap.Pixels).Copy(image.Pixels, 0, 0);
    EXPECT_EQ(bitmap.Store, image.Store);
    TRasterDevice(bitmap.Pixels, TRegion(TRect{0, 1, 5, 3})).Copy(image.Pixels, 0, 1);
    EXPECT_EQ(bitmap.At(4, 0), 0xFF000004u);
    EXPECT_EQ(bitmap.At(0, 1), 0xFF000000u);
    EXPECT_EQ(bitmap.At(4, 2), 0xFF000009u);
    EXPECT_EQ(bitmap.At(0, 3), 0xFF00000Fu);
}

TEST(Raster, ClearsAndCopiesIntoLayers) {
    TBitmap image(2, 2, 0xFF00FF00);
    TBitmap bitmap(4, 4, 0xFF000000);
    TRasterDevice device(bitmap.Pixels);
    for (int i = 0; i < 2; ++i) {
        device.PushLayer({});
        if (i == 0) device.Copy(image.Pixels, 1, 1);
        device.PopLayer();
        EXPECT_EQ(bitmap.At(1, 1), 0xFF00FF00u);
        EXPECT_EQ(bitmap.At(3, 3), 0xFF000000u);
        bitmap.Pixels.Row(3)[3] = 0xFF000000u;
    }
    device.PushLayer({});
    device.Clear(0xFFFF0000);
    device.PopLayer();
    EXPECT_EQ(bitmap.At(3, 3), 0xFFFF0000u);
    std::fill(bitmap.Store.begin(), bitmap.Store.end(), 0u);
    device.PushLayer({});
    device.PopLayer();
    EXPECT_EQ(bitmap.At(3, 3), 0u);
}

TEST(Raster, ClipsByShapes) {
    TBitmap bitmap(8, 4);
    TRasterDevice device(bitmap.Pixels);
    ClipTo(device, Rect(1, 1, 4.5, 2));
    EXPECT_EQ(device.GetClipBounds(), (TRect{1, 1, 6, 3}));
    ClipTo(device, Rect(2, 0, 6, 4));
    EXPECT_EQ(device.GetClipBounds(), (TRect{2, 1, 6, 3}));
    Fill(device, Rect(0, 0, 8, 8), Solid(0xFFFFFFFF));
    device.PopClip();
    device.PopClip();
    EXPECT_EQ(device.GetClipBounds(), (TRect{0, 0, 8, 4}));
    EXPECT_EQ(bitmap.At(1, 1), 0u);
    EXPECT_EQ(bitmap.At(2, 1), 0xFFFFFFFFu);
    EXPECT_EQ(bitmap.At(5, 2), 0x80808080u);
    EXPECT_EQ(bitmap.At(6, 2), 0u);
    EXPECT_EQ(bitmap.At(3, 0), 0u);
    EXPECT_EQ(bitmap.At(3, 3), 0u);
}

TEST(Raster, ClipsByTheUnionOfShapes) {
    TBitmap bitmap(8, 2);
    TRasterDevice device(bitmap.Pixels);
    const TFigures left = Rect(0, 0, 2.5, 2);
    const TFigures right = Rect(4, 0, 2, 2);
    TClipShape shapes[2];
    shapes[0].Shape.Figures = &left;
    shapes[1].Shape.Figures = &right;
    shapes[1].Matrix = TAffine::Translation(1, 0);
    device.PushClip(shapes);
    Fill(device, Rect(0, 0, 8, 8), Solid(0xFFFFFFFF));
    device.PopClip();
    const std::uint32_t expected[] = {0xFFFFFFFF, 0xFFFFFFFF, 0x80808080, 0, 0, 0xFFFFFFFF, 0xFFFFFFFF, 0};
    for (int x = 0; x < 8; ++x)
        EXPECT_EQ(bitmap.At(x, 1), expected[x]) << x;
}

TEST(Raster, ClipOfNothingHidesAll) {
    TBitmap bitmap(4, 4);
    TRasterDevice device(bitmap.Pixels);
    device.PushClip({});
    EXPECT_TRUE(device.GetClipBounds().IsEmpty());
    Fill(device, Rect(0, 0, 8, 8), Solid(0xFFFFFFFF));
    device.PushLayer({});
    Fill(device, Rect(0, 0, 8, 8), Solid(0xFFFFFFFF));
    device.PopLayer();
    device.PopClip();
    EXPECT_EQ(bitmap.At(1, 1), 0u);
}

TEST(Raster, LaysALayerDownAsOne) {
    TBitmap bitmap(4, 1, 0xFF000000);
    TRasterDevice device(bitmap.Pixels);
    TLayerStyle style;
    style.Opacity = 0.5;
    device.PushLayer(style);
    Fill(device, Rect(0, 0, 3, 1), Solid(0xFFFF0000));
    Fill(device, Rect(1, 0, 3, 1), Solid(0xFF00FF00));
    device.PopLayer();
    EXPECT_TRUE(Near(bitmap.At(0, 0), 0xFF800000, 1));
    EXPECT_TRUE(Near(bitmap.At(1, 0), 0xFF008000, 1));
    EXPECT_TRUE(Near(bitmap.At(3, 0), 0xFF008000, 1));
}

TEST(Raster, LayersStartTransparentEachTime) {
    TBitmap bitmap(4, 4, 0xFF000000);
    TRasterDevice device(bitmap.Pixels);
    const TRect bounds{1, 1, 3, 3};
    for (int i = 0; i < 3; ++i) {
        TLayerStyle style;
        if (i == 1) style.Bounds = &bounds;
        device.PushLayer(style);
        if (i < 2) Fill(device, Rect(0, 0, 4, 4), Solid(i == 0 ? 0xFF0000FF : 0xFFFF0000));
        device.PopLayer();
    }
    EXPECT_EQ(bitmap.At(0, 0), 0xFF0000FFu);
    EXPECT_EQ(bitmap.At(1, 1), 0xFFFF0000u);
    EXPECT_EQ(bitmap.At(3, 3), 0xFF0000FFu);
}

TEST(Raster, MasksALayer) {
    struct TCase {
        TMaskKind Kind;
        TVZGPColor Color;
        unsigned Alpha;
    };
    // Luminance of the colour (in the last case of the light it stands for) times its alpha.
    const TCase cases[] = {{TMaskKind::Alpha, 0x80123456, 0x80},
                           {TMaskKind::Luminance, 0xFFFFFFFF, 255},
                           {TMaskKind::Luminance, 0xFF00FF00, 182},
                           {TMaskKind::Luminance, 0x80FF0000, 27},
                           {TMaskKind::LinearLuminance, 0xFF808080, 55}};
    for (const TCase& c : cases) {
        TBitmap bitmap(4, 2);
        TRasterDevice device(bitmap.Pixels);
        device.PushLayer({});
        Fill(device, Rect(0, 0, 4, 2), Solid(0xFFFFFFFF));
        device.PushMask(c.Kind);
        Fill(device, Rect(0, 0, 2, 2), Solid(c.Color));
        device.PopMask();
        device.PopLayer();
        EXPECT_TRUE(Near(bitmap.At(1, 1), c.Alpha * 0x01010101u, 1));
        EXPECT_EQ(bitmap.At(3, 1), 0u);
    }
}

TEST(Raster, AMaskIsNotClippedByTheClipInForce) {
    TBitmap bitmap(4, 1);
    TRasterDevice device(bitmap.Pixels);
    device.PushLayer({});
    Fill(device, Rect(0, 0, 4, 1), Solid(0xFFFFFFFF));
    ClipTo(device, Rect(0, 0, 1, 1));
    device.PushMask(TMaskKind::Alpha);
    Fill(device, Rect(0, 0, 3, 1), Solid(0xFFFFFFFF));
    device.PopMask();
    device.PopClip();
    device.PopLayer();
    EXPECT_EQ(bitmap.At(2, 0), 0xFFFFFFFFu);
    EXPECT_EQ(bitmap.At(3, 0), 0u);
}

TEST(Raster, DevicesNest) {
    TBitmap outer(4, 4);
    TBitmap inner(4, 4);
    TRasterDevice device(outer.Pixels);
    ClipTo(device, Rect(0, 0, 2.5, 4));
    {
        TRasterDevice other(inner.Pixels);
        Fill(other, Rect(0, 0, 4, 4), Solid(0xFFFFFFFF));
    }
    Fill(device, Rect(0, 0, 4, 4), Solid(0xFFFFFFFF));
    device.PopClip();
    EXPECT_EQ(inner.At(3, 3), 0xFFFFFFFFu);
    EXPECT_EQ(outer.At(2, 2), 0x80808080u);
    EXPECT_EQ(outer.At(3, 3), 0u);
}

TEST(Raster, ACallerMayLeaveThingsPushed) {
    TBitmap bitmap(4, 4);
    for (int i = 0; i < 3; ++i) {
        TRasterDevice device(bitmap.Pixels);
        ClipTo(device, Rect(0, 0, 2, 2));
        device.PushLayer({});
        Fill(device, Rect(0, 0, 4, 4), Solid(0xFFFFFFFF));
        device.PushMask(TMaskKind::Alpha);
    }
    EXPECT_EQ(bitmap.At(0, 0), 0u);
    TRasterDevice device(bitmap.Pixels);
    device.PushLayer({});
    device.PopLayer();
    EXPECT_EQ(bitmap.At(0, 0), 0u);
}

// Pictures painted in pieces.

namespace {

/// A picture of everything that a device can do, the same for the same seed.
class TScene {
public:
    explicit TScene(unsigned seed)
        : FRandom(seed) {
        FTile = std::make_shared<TVZGPBitmap>(7u, 5u);
        const TPixels pixels = FTile->GetPixels();
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 7; ++x)
                pixels.Row(y)[x] = Premultiply(static_cast<std::uint32_t>(FRandom()));
    }

    void Paint(IPaintDevice& device, int depth = 0) {
        const int steps = Number(2, 5);
        for (int i = 0; i < steps; ++i)
            Step(device, depth, depth < 3 ? Number(0, 7) : Number(0, 3));
    }

private:
    int Number(int low, int high) { return std::uniform_int_distribution(low, high)(FRandom); }
    double Real(double low, double high) { return std::uniform_real_distribution(low, high)(FRandom); }

    void Step(IPaintDevice& device, int depth, int kind) {
        switch (kind) {
        case 0:
        case 1:
        case 2:
            Fill(device, Figures(), Paint(), Matrix());
            break;
        case 3:
            device.DrawImage(FTile->GetPixels(),
                             Number(0, 1) ? TAffine::Translation(Number(0, 60), Number(0, 60)) : Matrix(),
                             Real(0.2, 1), static_cast<TInterpolation>(Number(0, 2)));
            break;
        case 4:
            ClipTo(device, Number(0, 1) ? Figures() : Rect(Number(0, 40), Number(0, 40), 30, 20));
            Paint(device, depth + 1);
            device.PopClip();
            break;
        case 5:
        case 6:
            PaintLayer(device, depth);
            break;
        default: {
            const TFigures figures = Figures();
            TClipShape shapes[2];
            for (TClipShape& shape : shapes) {
                shape.Shape.Figures = &figures;
                shape.Matrix = Matrix();
            }
            device.PushClip(shapes);
            Paint(device, depth + 1);
            device.PopClip();
        }
        }
    }

    void PaintLayer(IPaintDevice& device, int depth) {
        TLayerStyle style;
        style.Opacity = Number(0, 1) ? 1 : Real(0, 1);
        style.Blend = Number(0, 1) ? TBlendMode::Normal : static_cast<TBlendMode>(Number(0, 15));
        const TRect bounds{Number(-10, 20), Number(-10, 20), Number(30, 90), Number(30, 90)};
        if (Number(0, 1)) style.Bounds = &bounds;
        device.PushLayer(style);
        Paint(device, depth + 1);
        if (Number(0, 1)) {
            device.PushMask(static_cast<TMaskKind>(Number(0, 2)));
            Paint(device, depth + 1);
            device.PopMask();
        }
        device.PopLayer();
    }

    TFigures Figures() {
        TFigures figures;
        figures.MoveTo(Real(-10, 80), Real(-10, 80));
        const int count = Number(2, 9);
        for (int i = 0; i < count; ++i)
            figures.LineTo(Real(-10, 80), Real(-10, 80));
        figures.Close();
        return figures;
    }

    TAffine Matrix() {
        const TAffine turn = TAffine::Rotation(Number(0, 1) ? 0 : Real(0, 6.3));
        const double scale = Real(0.2, 3);
        return turn.Then({scale, 0, 0, scale * Real(0.5, 1.5), Real(-10, 50), Real(-10, 50)});
    }

    TPaint Paint() {
        TPaint paint;
        paint.Kind = static_cast<TPaint::TKind>(Number(0, 3));
        paint.Color = static_cast<std::uint32_t>(FRandom());
        paint.Start = paint.Focus = {Real(0, 40), Real(0, 40)};
        paint.End = {Real(0, 40), Real(0, 40)};
        paint.Radius = Real(5, 40);
        if (Number(0, 1)) paint.Focus.X += paint.Radius * Real(0, 1.2);
        paint.Center = paint.Start;
        if (Number(0, 2) == 0) paint.FocusRadius = paint.Radius * Real(0, 0.5);
        paint.Spread = static_cast<TSpread>(Number(0, 2));
        paint.Matrix = Matrix();
        const TRampStop stops[] = {{0.1f, static_cast<std::uint32_t>(FRandom())},
                                   {0.5f, static_cast<std::uint32_t>(FRandom())},
                                   {0.9f, static_cast<std::uint32_t>(FRandom())}};
        paint.Ramp = std::make_shared<TGradientRamp>(stops, 1);
        paint.Image = FTile;
        paint.Interpolation = static_cast<TInterpolation>(Number(0, 2));
        paint.Opacity = Real(0.3, 1);
        return paint;
    }

    std::mt19937 FRandom;
    std::shared_ptr<TVZGPBitmap> FTile;
};

TRegion RandomRegion(std::mt19937& random, int size) {
    const auto number = [&random](int low, int high) {
        return std::uniform_int_distribution(low, high)(random);
    };
    TRegion region;
    const int count = number(1, 5);
    for (int i = 0; i < count; ++i) {
        const int x = number(0, size - 1);
        const int y = number(0, size - 1);
        region.Add(TRect{x, y, x + number(1, size), y + number(1, size)});
    }
    return region;
}

} // namespace

TEST(Raster, APictureInPiecesEqualsTheWhole) {
    constexpr int size = 70;
    std::mt19937 random(99);
    for (unsigned seed = 0; seed < 300; ++seed) {
        TBitmap whole(size, size, 0x40102030);
        {
            TRasterDevice device(whole.Pixels);
            TScene(seed).Paint(device);
        }
        const TRegion region = RandomRegion(random, size);
        TBitmap piece(size, size, 0x40102030);
        {
            TRasterDevice device(piece.Pixels, region);
            TScene(seed).Paint(device);
        }
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x)
                ASSERT_EQ(piece.At(x, y), region.Contains(x, y) ? whole.At(x, y) : 0x40102030u)
                    << "scene " << seed << " at " << x << " " << y;
    }
}

TEST(Raster, APictureIsTheSameWithAndWithoutVectorInstructions) {
    if (!VectorRowOps()) GTEST_SKIP() << "this machine has no vector instructions that we use";
    constexpr int size = 70;
    for (unsigned seed = 1000; seed < 1200; ++seed) {
        TBitmap pictures[] = {TBitmap(size, size, 0xFF102030), TBitmap(size, size, 0xFF102030)};
        const TRowOps* ops[] = {VectorRowOps(), &PortableRowOps()};
        for (int i = 0; i < 2; ++i) {
            UseRowOps(ops[i]);
            TRasterDevice device(pictures[i].Pixels);
            TScene(seed).Paint(device);
        }
        UseRowOps(nullptr);
        ASSERT_EQ(pictures[0].Store, pictures[1].Store) << "scene " << seed;
    }
}

TEST(Raster, ADrawingBetweenPicturesEqualsAllThreeInTurn) {
    constexpr int size = 70;
    std::mt19937 random(7);
    const auto number = [&random](int low, int high) {
        return std::uniform_int_distribution(low, high)(random);
    };
    constexpr std::uint32_t grounds[] = {0, 0, 0xFF203040, 0x60101010};
    for (unsigned seed = 3000; seed < 3300; ++seed) {
        TBitmap before(size, size, grounds[number(0, 3)]);
        TScene(seed).Paint(*std::make_unique<TRasterDevice>(before.Pixels));
        TBitmap after(size, size);
        if (seed % 4) TScene(seed + 1).Paint(*std::make_unique<TRasterDevice>(after.Pixels));
        TLayerPair layers;
        layers.Set(before.Pixels, after.Pixels);
        const TRegion region = RandomRegion(random, size);
        const int x = number(-20, 20);
        const int y = number(-20, 20);
        const std::uint32_t ground = grounds[number(0, 3)];
        TBitmap turn(size, size, ground);
        {
            TRasterDevice device(turn.Pixels, region);
            const TAffine place = TAffine::Translation(x, y);
            device.DrawImage(before.Pixels, place, 1, TInterpolation::Nearest);
            TScene(seed + 2).Paint(device);
            device.DrawImage(after.Pixels, place, 1, TInterpolation::Nearest);
        }
        TBitmap between(size, size, ground);
        {
            TRasterDevice device(between.Pixels, region);
            device.BeginBetween(layers, x, y);
            TScene(seed + 2).Paint(device);
            device.EndBetween(layers, x, y);
        }
        ASSERT_EQ(between.Store, turn.Store) << "scene " << seed;
    }
}

TEST(Raster, ClearingOnDemandEqualsClearingAtOnce) {
    constexpr int size = 70;
    std::mt19937 random(11);
    const auto number = [&random](int low, int high) {
        return std::uniform_int_distribution(low, high)(random);
    };
    constexpr TVZGPColor colors[] = {0, 0, 0xFF405060, 0x80FF8000};
    TFigures box;
    box.AddRect(10, 12, 45, 48);
    for (unsigned seed = 4000; seed < 4300; ++seed) {
        TBitmap before(size, size);
        TScene(seed).Paint(*std::make_unique<TRasterDevice>(before.Pixels));
        TBitmap after(size, size);
        if (seed % 4) TScene(seed + 1).Paint(*std::make_unique<TRasterDevice>(after.Pixels));
        TLayerPair layers;
        layers.Set(before.Pixels, after.Pixels);
        const TRegion region = RandomRegion(random, size);
        const TVZGPColor color = colors[number(0, 3)];
        const int steps = number(0, 15);
        const int places[] = {number(-20, 20), number(-20, 20), number(-60, 60), number(-60, 60)};
        const auto paint = [&](TRasterDevice& device) {
            if (steps == 15) return; // nothing is drawn at all
            if (steps & 8) TScene(seed + 3).Paint(device);
            TClipShape clip;
            clip.Shape.Figures = &box;
            if (steps & 4) device.PushClip({&clip, 1});
            for (int i = 0; i <= (steps & 1); ++i) {
                device.BeginBetween(layers, places[2 * i], places[2 * i + 1]);
                TScene(seed + 2).Paint(device);
                device.EndBetween(layers, places[2 * i], places[2 * i + 1]);
            }
            if (steps & 4) device.PopClip();
            if (steps & 2) TScene(seed + 4).Paint(device);
        };
        TBitmap atOnce(size, size, 0xFF112233);
        {
            TRasterDevice device(atOnce.Pixels, region);
            device.Clear(color);
            paint(device);
        }
        TBitmap onDemand(size, size, 0xFF112233);
        {
            TRasterDevice device(onDemand.Pixels, region);
            device.ClearOnDemand(color);
            paint(device);
        }
        ASSERT_EQ(onDemand.Store, atOnce.Store) << "scene " << seed << ", steps " << steps;
    }
}

TEST(Raster, ADrawingThatIsGivenUpLeavesNoPixelUncleared) {
    TBitmap picture(8, 8, 0xFFABCDEF);
    TBitmap before(8, 8, 0xFF00FF00);
    TBitmap after(8, 8);
    TLayerPair layers;
    layers.Set(before.Pixels, after.Pixels);
    {
        TRasterDevice device(picture.Pixels);
        device.ClearOnDemand(0xFF000080);
        device.BeginBetween(layers, 0, 0);
    }
    EXPECT_EQ(picture.Store, std::vector<std::uint32_t>(64, 0xFF000080));
}

TEST(LayerPair, KnowsTheUsedRunsOfTheUpperPictureButForShortGaps) {
    TBitmap before(100, 3);
    TBitmap after(100, 3);
    for (const int x : {3, 4, 20, 60, 99})
        after.Pixels.Row(1)[x] = 0x80808080;
    TLayerPair layers;
    layers.Set(before.Pixels, after.Pixels);
    EXPECT_TRUE(layers.AfterRuns(0).empty());
    ASSERT_EQ(layers.AfterRuns(1).size(), 3u);
    const int runs[][2] = {{3, 21}, {60, 61}, {99, 100}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(layers.AfterRuns(1)[i].First, runs[i][0]);
        EXPECT_EQ(layers.AfterRuns(1)[i].End, runs[i][1]);
    }
    EXPECT_TRUE(layers.AfterRuns(2).empty());
}

TEST(Raster, EveryPixelStaysPremultiplied) {
    constexpr int size = 70;
    for (unsigned seed = 2000; seed < 2100; ++seed) {
        TBitmap bitmap(size, size);
        {
            TRasterDevice device(bitmap.Pixels);
            TScene(seed).Paint(device);
        }
        for (const std::uint32_t pixel : bitmap.Store)
            ASSERT_LE(std::max({RedOf(pixel), GreenOf(pixel), BlueOf(pixel)}), AlphaOf(pixel))
                << "scene " << seed;
    }
}
