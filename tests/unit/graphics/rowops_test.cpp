#include "tavro/graphics/raster/RowOpsInternal.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>
#include <random>

using namespace Vz;

namespace {

/// Random rows, and the same operation on copies of them by both implementations.
class RowOps : public testing::Test {
protected:
    static constexpr int Guard = 16;

    void SetUp() override {
        if (!VectorRowOps()) GTEST_SKIP() << "this machine has no vector instructions that we use";
    }

    int Number(int low, int high) { return std::uniform_int_distribution(low, high)(FRandom); }
    double Real(double low, double high) { return std::uniform_real_distribution(low, high)(FRandom); }
    std::uint32_t Bits() { return static_cast<std::uint32_t>(FRandom()); }

    /// Mostly pixels as they should be, some transparent, some opaque, some that are no premultiplied pixels.
    std::uint32_t Pixel() {
        switch (Number(0, 4)) {
        case 0:
            return 0;
        case 1:
            return Bits() | 0xFF000000u;
        case 2:
            return Bits();
        default:
            return Premultiply(Bits());
        }
    }

    std::vector<std::uint32_t> Pixels(int count) {
        std::vector<std::uint32_t> pixels(std::size_t(count) + Guard);
        const bool isPlain = Number(0, 3) == 0;
        const std::uint32_t plain = Pixel();
        for (std::uint32_t& pixel : pixels)
            pixel = isPlain ? plain : Pixel();
        return pixels;
    }

    std::vector<std::uint8_t> Coverage(int count) {
        std::vector<std::uint8_t> coverage(std::size_t(count) + Guard);
        const int kind = Number(0, 3);
        for (std::uint8_t& value : coverage)
            value = static_cast<std::uint8_t>(kind == 0 ? 0 : kind == 1 ? 255 : Number(0, 255));
        return coverage;
    }

    /// Steps of windings that go up and down.
    std::vector<std::int32_t> Steps(int count) {
        std::vector<std::int32_t> steps(std::size_t(count) + TCoverage::Margin);
        for (int i = 0; i < count; ++i)
            if (Number(0, 2) == 0)
                steps[std::size_t(i)] = Number(0, 9) ? Number(-2 * TCoverage::One, 2 * TCoverage::One)
                                                     : static_cast<std::int32_t>(Bits());
        return steps;
    }

    TSpread Spread() { return static_cast<TSpread>(Number(0, 2)); }

    TRampWalk Walk() {
        TRampWalk walk;
        const double scale = std::exp2(Number(-12, 4));
        walk.ToRamp = {Real(-scale, scale), Real(-scale, scale), Real(-scale, scale),
                       Real(-scale, scale), Real(-3, 3),         Real(-3, 3)};
        if (Number(0, 30) == 0) walk.ToRamp.E = std::numeric_limits<double>::quiet_NaN();
        if (Number(0, 30) == 0) walk.ToRamp.A = 1e300;
        walk.Spread = Spread();
        walk.Table = FRamp.Table();
        walk.IsOpaque = FRamp.IsOpaque();
        return walk;
    }

    /// Fills the same row twice and compares all that was touched.
    void ExpectSameFill(const std::function<void(const TRowOps&, const TFillJob&)>& fill) {
        const int count = Number(1, 90);
        const int room = count + Number(0, 12);
        const auto steps = Steps(count);
        const auto pixels = Pixels(room);
        const auto clip = Coverage(room);
        TFillJob job;
        job.Rule = Number(0, 1) ? TFillRule::EvenOdd : TFillRule::NonZero;
        job.Left = job.ClipLeft = Number(-50, 1000);
        job.Top = job.ClipTop = Number(-5, 5);
        job.Right = job.Left + room;
        job.Stride = job.ClipStride = room;
        job.Clip = Number(0, 1) ? clip.data() : nullptr;
        std::vector<std::int32_t> stepsAfter[2];
        std::vector<std::uint32_t> pixelsAfter[2];
        const TRowOps* ops[] = {&PortableRowOps(), VectorRowOps()};
        for (int i = 0; i < 2; ++i) {
            stepsAfter[i] = steps;
            pixelsAfter[i] = pixels;
            const TCoverageRow row{stepsAfter[i].data(), job.Left, job.Top, count};
            job.Rows = {&row, 1};
            job.Pixels = pixelsAfter[i].data();
            fill(*ops[i], job);
        }
        // Beyond the steps the winding may go on: nothing is said of what lies there, but beyond the room all
        // stays.
        pixelsAfter[0].erase(pixelsAfter[0].begin() + count, pixelsAfter[0].begin() + room);
        pixelsAfter[1].erase(pixelsAfter[1].begin() + count, pixelsAfter[1].begin() + room);
        ASSERT_EQ(stepsAfter[0], stepsAfter[1]);
        ASSERT_EQ(pixelsAfter[0], pixelsAfter[1]);
        for (const std::int32_t step : stepsAfter[0])
            ASSERT_EQ(step, 0);
    }

    static constexpr TRampStop Stops[] = {
        {0, 0xFF103050}, {0.3f, 0xFFFFFFFF}, {0.3f, 0x80FF0000}, {1, 0xFF00FF00}};
    TGradientRamp FRamp{Stops, 1};
    std::mt19937 FRandom{12345};
};

constexpr int Rounds = 3000;

} // namespace

TEST_F(RowOps, FillSolidAlike) {
    for (int i = 0; i < Rounds; ++i) {
        const std::uint32_t pixel = Pixel();
        ExpectSameFill([pixel](const TRowOps& ops, const TFillJob& job) { ops.FillSolid(job, pixel); });
    }
}

TEST_F(RowOps, FillLinearAlike) {
    for (int i = 0; i < Rounds; ++i) {
        const TRampWalk walk = Walk();
        ExpectSameFill([&walk](const TRowOps& ops, const TFillJob& job) { ops.FillLinear(job, walk); });
    }
}

TEST_F(RowOps, FillRadialAlike) {
    for (int i = 0; i < Rounds; ++i) {
        const TRampWalk walk = Walk();
        ExpectSameFill([&walk](const TRowOps& ops, const TFillJob& job) { ops.FillRadial(job, walk); });
    }
}

TEST_F(RowOps, FillFocalAlike) {
    for (int i = 0; i < Rounds; ++i) {
        TFocalWalk focal{Walk(), float(Real(-0.7, 0.7)), float(Real(-0.7, 0.7)), 0, 1};
        if (Number(0, 1)) {
            focal.FocusRadius = float(Real(0, 0.01));
            focal.Growth = 1 - focal.FocusRadius;
        }
        ExpectSameFill([&focal](const TRowOps& ops, const TFillJob& job) { ops.FillFocal(job, focal); });
    }
}

TEST_F(RowOps, ResolveAlike) {
    for (int i = 0; i < Rounds; ++i) {
        const int count = Number(1, 90);
        const auto rule = Number(0, 1) ? TFillRule::EvenOdd : TFillRule::NonZero;
        auto steps = Steps(count);
        auto same = steps;
        std::vector<std::uint8_t> a(std::size_t(count) + Guard);
        std::vector<std::uint8_t> b(std::size_t(count) + Guard);
        PortableRowOps().Resolve({steps.data(), 0, 0, count}, rule, a.data());
        VectorRowOps()->Resolve({same.data(), 0, 0, count}, rule, b.data());
        a.resize(std::size_t(count));
        b.resize(std::size_t(count));
        ASSERT_EQ(a, b);
        ASSERT_EQ(steps, same);
    }
}

TEST_F(RowOps, MultiplyCoverageAlike) {
    for (int i = 0; i < Rounds; ++i) {
        const int count = Number(0, 90);
        auto a = Coverage(count);
        auto b = a;
        const auto factor = Coverage(count);
        PortableRowOps().MultiplyCoverage(a.data(), factor.data(), count);
        VectorRowOps()->MultiplyCoverage(b.data(), factor.data(), count);
        ASSERT_EQ(a, b);
    }
}

TEST_F(RowOps, BlendAlike) {
    for (int i = 0; i < Rounds; ++i) {
        const int count = Number(0, 90);
        const auto pixels = Pixels(count);
        const auto coverage = Coverage(count);
        auto a = Pixels(count);
        auto b = a;
        PortableRowOps().BlendCovered(a.data(), count, pixels.data(), coverage.data());
        VectorRowOps()->BlendCovered(b.data(), count, pixels.data(), coverage.data());
        ASSERT_EQ(a, b);
        const unsigned opacity = Number(0, 1) ? 255u : unsigned(Number(0, 255));
        PortableRowOps().BlendRow(a.data(), count, pixels.data(), opacity);
        VectorRowOps()->BlendRow(b.data(), count, pixels.data(), opacity);
        ASSERT_EQ(a, b);
    }
}

TEST_F(RowOps, TraceAlike) {
    constexpr int width = 40;
    constexpr int height = 50;
    constexpr int left = 1000;
    constexpr std::ptrdiff_t stride = width + TCoverage::Margin;
    const auto onGrid = [](double y) { return std::floor(y * TCoverage::One) / TCoverage::One; };
    for (int i = 0; i < Rounds * 4; ++i) {
        const double reach = Number(0, 3) ? 0 : Number(0, 3) ? 30 : 1e9;
        TTraceBand bands[2];
        TTraceBand& band = bands[0];
        band.Top = Number(-10, 10);
        band.Bottom = band.Top + height;
        band.Left = left;
        band.Width = width;
        band.Stride = stride;
        TTraceEdge edge;
        edge.X0 = left + Real(-reach, width + reach);
        edge.Y0 = onGrid(band.Top + Real(-20, height - 0.1));
        edge.Y1 = onGrid(edge.Y0 + std::max(Number(0, 2) ? Real(0, 70) : Real(0, 3), 1e-4));
        const double right = Number(0, 5) ? left + Real(-reach, width + reach) : edge.X0;
        edge.Slope = (right - edge.X0) / (edge.Y1 - edge.Y0);
        edge.Rate = std::min(TCoverage::One / std::abs(float(edge.Slope)), 1e30F);
        edge.Sign = Number(0, 1) ? 1 : -1;
        if (edge.Y1 <= band.Top) continue;
        const std::int32_t before = Number(0, 1) ? 3 : std::numeric_limits<std::int32_t>::max() - 9;
        std::vector<std::int32_t> steps[2];
        const TRowOps* ops[] = {&PortableRowOps(), VectorRowOps()};
        bands[1] = band;
        for (int k = 0; k < 2; ++k) {
            steps[k].assign(std::size_t(stride * height), before);
            bands[k].Steps = steps[k].data();
            bands[k].First.fill(width);
            bands[k].Last.fill(-1);
            bands[k].Sum.fill(0);
            ops[k]->Trace(edge, bands[k]);
        }
        ASSERT_EQ(steps[0], steps[1]) << edge.X0 << " " << edge.Slope;
        ASSERT_EQ(bands[0].First, bands[1].First);
        ASSERT_EQ(bands[0].Last, bands[1].Last);
        ASSERT_EQ(bands[0].Sum, bands[1].Sum);
    }
}

TEST_F(RowOps, AverageAlike) {
    for (int i = 0; i < Rounds; ++i) {
        TPixelBoxes boxes;
        boxes.Across = Number(1, 16);
        boxes.Down = Number(1, 16);
        const int count = Number(1, 20);
        boxes.Stride = count * boxes.Across + Number(0, 5);
        const auto pixels = Pixels(int(boxes.Stride) * boxes.Down);
        boxes.Pixels = pixels.data();
        std::vector<std::uint16_t> sums(std::size_t(count * boxes.Across * 4));
        std::vector<std::uint32_t> a(std::size_t(count), 1u);
        std::vector<std::uint32_t> b(std::size_t(count), 2u);
        PortableRowOps().Average(a.data(), count, boxes, sums.data());
        VectorRowOps()->Average(b.data(), count, boxes, sums.data());
        ASSERT_EQ(a, b);
    }
}

TEST(PixelArithmetic, RoundsToNearest) {
    for (unsigned a = 0; a < 256; ++a)
        for (unsigned b = 0; b < 256; ++b) {
            const auto exact = static_cast<unsigned>(a * b / 255.0 + 0.5);
            ASSERT_EQ(MulDiv255(a, b), exact);
            ASSERT_EQ(ScalePixel(a * 0x01010101u, b), exact * 0x01010101u);
        }
}

TEST(PixelArithmetic, SumsAreHeldAtFull) {
    EXPECT_EQ(AddPixels(0x01020304, 0x10203040), 0x11223344u);
    EXPECT_EQ(AddPixels(0xFF80FF80, 0x01800180), 0xFFFFFFFFu);
}
