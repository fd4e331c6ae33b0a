#include "tavro/graphics/raster/Device.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Vz;

namespace {

/// A frame with shapes of each paint, a clip, a layer, a mask and pictures.
class TFrame {
public:
    explicit TFrame(int size)
        : FSize(size)
        , FStore(std::size_t(size) * std::size_t(size))
        , FLayer(FStore) {
        const double s = size / 100.0;
        FFigures.MoveTo(10 * s, 10 * s);
        FFigures.LineTo(90 * s, 30 * s);
        FFigures.LineTo(50 * s, 90 * s);
        FFigures.Close();
        const TRampStop stops[] = {{0, 0xFF000000}, {1, 0x80FF0000}};
        FPaint.Ramp = std::make_shared<TGradientRamp>(stops, 1);
        FPaint.Start = {10 * s, 10 * s};
        FPaint.End = FPaint.Center = {70 * s, 50 * s};
        FPaint.Radius = 40 * s;
        FPaint.Focus = {60 * s, 50 * s};
        FShape.Figures = &FFigures;
        FShape.Cache = &FCache;
    }

    void Paint(double angle) {
        FRegion.Clear();
        FRegion.Add(TRect{0, 0, FSize / 2, FSize});
        FRegion.Add(TRect{FSize / 3, FSize / 4, FSize, FSize});
        TRasterDevice device(Pixels(FStore), FRegion);
        device.Copy(Pixels(FLayer), 0, 0);
        const TAffine matrix = TAffine::Rotation(angle).Then(TAffine::Translation(FSize / 10.0, 0));
        TClipShape clip{FShape, matrix};
        device.PushClip({&clip, 1});
        TLayerStyle style;
        style.Opacity = 0.5;
        device.PushLayer(style);
        for (const auto kind : {TPaint::TKind::Solid, TPaint::TKind::Linear, TPaint::TKind::Radial}) {
            FPaint.Kind = kind;
            device.Draw(FShape, FPaint, matrix);
        }
        device.PushMask(TMaskKind::LinearLuminance);
        device.Draw(FShape, FPaint, matrix);
        device.PopMask();
        device.PopLayer();
        device.PopClip();
        device.DrawImage(Pixels(FLayer), {}, 0.7, TInterpolation::Bilinear);
        device.DrawImage(Pixels(FLayer), {0.4, 0, 0, 0.4, 3, 4}, 1, TInterpolation::Bilinear);
    }
    const std::vector<std::uint32_t>& Picture() const { return FStore; }

private:
    TPixels Pixels(std::vector<std::uint32_t>& store) const { return {store.data(), FSize, FSize, FSize}; }

    int FSize;
    std::vector<std::uint32_t> FStore, FLayer;
    TFigures FFigures;
    TPolygonCache FCache;
    TShape FShape;
    TPaint FPaint;
    TRegion FRegion;
};

} // namespace

TEST(RasterAllocation, AFrameLikeTheOneBeforeNeedsNone) {
    TFrame frame(200);
    frame.Paint(0.1);
    frame.Paint(0.11);
    const std::size_t before = Vz::Test::CountAllocations();
    for (int i = 0; i < 50; ++i)
        frame.Paint(0.1);
    EXPECT_EQ(Vz::Test::CountAllocations() - before, 0u);
}

TEST(RasterAllocation, SmallAndGreatFramesInTurnNeedNone) {
    TFrame small(40);
    TFrame great(300);
    const auto both = [&] {
        for (int i = 0; i < 10; ++i)
            small.Paint(0.3);
        great.Paint(0.3);
    };
    both();
    const std::size_t before = Vz::Test::CountAllocations();
    for (int i = 0; i < 10; ++i)
        both();
    EXPECT_EQ(Vz::Test::CountAllocations() - before, 0u);
}

TEST(RasterAllocation, ManySmallFramesAfterAGreatOneGiveItsMemoryBack) {
    TFrame small(40);
    TFrame great(1000);
    great.Paint(0.2);
    const auto needsMemory = [&] {
        const std::size_t before = Vz::Test::CountAllocations();
        great.Paint(0.2);
        return Vz::Test::CountAllocations() > before;
    };
    EXPECT_FALSE(needsMemory());
    for (int i = 0; i < 100; ++i)
        small.Paint(0.2);
    EXPECT_TRUE(needsMemory());
}

TEST(RasterAllocation, ThreadsPaintEachForItself) {
    constexpr int count = 4;
    const auto painted = [](int i) {
        TFrame frame(60 + i);
        for (int k = 0; k < 20; ++k)
            frame.Paint(0.1 * k);
        return frame.Picture();
    };
    std::vector<std::uint32_t> pictures[count];
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back([&, i] { pictures[i] = painted(i); });
    for (std::thread& thread : threads)
        thread.join();
    for (int i = 0; i < count; ++i)
        EXPECT_TRUE(pictures[i] == painted(i)) << i << ": as painted by one thread";
}

TEST(RasterAllocation, ADeviceMayOutliveItsThread) {
    std::vector<std::uint32_t> store(100);
    std::unique_ptr<TRasterDevice> device;
    std::thread([&] { device = std::make_unique<TRasterDevice>(TPixels{store.data(), 10, 10, 10}); }).join();
    device->Clear(0xFFFFFFFF);
    device.reset();
    EXPECT_EQ(store[99], 0xFFFFFFFFu);
}
