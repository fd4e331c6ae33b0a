#include "tavro/graphics/Canvas.h"

#include "tavro/graphics/Bitmap.h"
#include "tavro/graphics/raster/Device.h"
#include "tavro/graphics/vector/Device.h"

#include <gtest/gtest.h>
#include <limits>

namespace Vz {
namespace {

std::uint32_t PixelAt(const TVZGPBitmap& bitmap, int x, int y) { return bitmap.GetPixels().Row(y)[x]; }

TEST(Canvas, MatricesAreChained) {
    TVZGPBitmap bitmap(10, 10);
    TRasterDevice device(bitmap.GetPixels());
    TVZGPCanvas window(device, TAffine::Scaling(2, 2));
    EXPECT_EQ(window.ToDevice(), TAffine::Scaling(2, 2));
    window.SetMatrix(CreateTranslateVZMatrix(3, 4));
    EXPECT_EQ(window.ToDevice()(0, 0), (TPointD{6, 8}));
    TVZGPCanvas canvas(window);
    EXPECT_TRUE(IsIdentityMatrix(canvas.GetMatrix()));
    EXPECT_EQ(&canvas.GetDevice(), &device);
    canvas.SetMatrix(CreateScaleVZMatrix(10, 10));
    EXPECT_EQ(canvas.ToDevice()(1, 1), (TPointD{26, 28}));
}

TEST(Canvas, InterpolationModesHaveTheirNumbers) {
    TVZGPBitmap bitmap(1, 1);
    TVZGPCanvas& canvas = bitmap.GetCanvas();
    EXPECT_EQ(canvas.GetInterpolation(), TInterpolation::Bilinear);
    using enum TInterpolation;
    const std::pair<int, TInterpolation> modes[] = {
        {0, Bilinear}, {1, Bilinear}, {2, Bicubic}, {3, Bilinear},  {4, Bicubic},
        {5, Nearest},  {6, Bilinear}, {7, Bicubic}, {-1, Bilinear}, {8, Bilinear}};
    for (const auto& [mode, interpolation] : modes) {
        canvas.SetInterpolationMode(5);
        canvas.SetInterpolationMode(mode);
        EXPECT_EQ(canvas.GetInterpolation(), interpolation) << mode;
    }
}

TEST(Canvas, ClearSetsABitmapsPixels) {
    TVZGPBitmap bitmap(3, 2);
    bitmap.GetCanvas().Clear(0x80FF0000);
    EXPECT_EQ(PixelAt(bitmap, 2, 1), 0x80800000u);
    bitmap.GetCanvas().Clear(0);
    EXPECT_EQ(PixelAt(bitmap, 0, 0), 0u);
    TVZGPCanvas(bitmap.GetCanvas()).Clear(0xFF00FF00);
    EXPECT_EQ(PixelAt(bitmap, 0, 0), 0xFF00FF00u);
}

TEST(Canvas, ClearLeavesOtherSurfacesAlone) {
    TVZGPBitmap bitmap(3, 2);
    TRasterDevice device(bitmap.GetPixels());
    TVZGPCanvas window(device);
    window.Clear(0xFF00FF00);
    EXPECT_EQ(PixelAt(bitmap, 0, 0), 0u);
    TVectorDevice vector(bitmap.GetPixels());
    TVZGPCanvas file(vector);
    file.Clear(0xFF00FF00);
    vector.Finish();
    EXPECT_EQ(PixelAt(bitmap, 0, 0), 0u);
}

TEST(Canvas, DrawImageFillsTheRectangle) {
    TVZGPBitmap image(2, 2), bitmap(10, 10);
    image.GetCanvas().Clear(0xFF0000FF);
    TVZGPCanvas& canvas = bitmap.GetCanvas();
    canvas.SetMatrix(CreateTranslateVZMatrix(1, 0));
    canvas.DrawImage(image, {1, 3, 5, 9}, 1);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 10; ++x)
            EXPECT_EQ(PixelAt(bitmap, x, y), x >= 2 && x < 6 && y >= 3 && y < 9 ? 0xFF0000FFu : 0u)
                << x << ", " << y;
}

TEST(Canvas, DrawImageAppliesTheOpacity) {
    TVZGPBitmap image(2, 2), bitmap(2, 2);
    image.GetCanvas().Clear(0xFFFFFFFF);
    bitmap.GetCanvas().DrawImage(image, {0, 0, 2, 2}, 0.5f);
    EXPECT_EQ(PixelAt(bitmap, 1, 1), 0x80808080u);
    bitmap.GetCanvas().DrawImage(image, {0, 0, 2, 2}, 0);
    EXPECT_EQ(PixelAt(bitmap, 1, 1), 0x80808080u);
}

TEST(Canvas, DrawImageOfNothingOrNowhere) {
    const float NaN = std::numeric_limits<float>::quiet_NaN();
    TVZGPBitmap none, image(2, 2), bitmap(2, 2);
    image.GetCanvas().Clear(0xFFFFFFFF);
    TVZGPCanvas& canvas = bitmap.GetCanvas();
    canvas.DrawImage(none, {0, 0, 2, 2}, 1);
    canvas.DrawImage(image, {0, 0, 0, 2}, 1);
    canvas.DrawImage(image, {NaN, 0, 2, 2}, 1);
    canvas.DrawImage(image, {0, 0, 2, 2}, NaN);
    canvas.SetMatrix({NaN, 0, 0, 0, 1, 0, 0, 0, 1});
    canvas.DrawImage(image, {0, 0, 2, 2}, 1);
    EXPECT_EQ(PixelAt(bitmap, 0, 0), 0u);
    EXPECT_EQ(PixelAt(bitmap, 1, 1), 0u);
}

} // namespace
} // namespace Vz
