#include "tavro/graphics/raster/BlendModesInternal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

using namespace Vz;

namespace {

std::uint32_t Blend(TBlendMode mode, std::uint32_t under, std::uint32_t over, unsigned opacity = 255) {
    BlendRowInMode(mode, &under, 1, &over, opacity, nullptr);
    return under;
}

constexpr TBlendMode AllModes[] = {
    TBlendMode::Normal,    TBlendMode::Multiply,   TBlendMode::Screen,     TBlendMode::Overlay,
    TBlendMode::Darken,    TBlendMode::Lighten,    TBlendMode::ColorDodge, TBlendMode::ColorBurn,
    TBlendMode::HardLight, TBlendMode::SoftLight,  TBlendMode::Difference, TBlendMode::Exclusion,
    TBlendMode::Hue,       TBlendMode::Saturation, TBlendMode::Color,      TBlendMode::Luminosity,
};

testing::AssertionResult Near(std::uint32_t a, std::uint32_t b) {
    for (int shift = 0; shift < 32; shift += 8)
        if (std::abs(int(a >> shift & 255) - int(b >> shift & 255)) > 1)
            return testing::AssertionFailure() << std::hex << a << " is not near " << b;
    return testing::AssertionSuccess();
}

} // namespace

TEST(Blend, OfOpaqueColoursIsTheModesFormula) {
    // Backdrop 0.8, 0.4, 0.2 and source 0.6, 0.2, 1.0, the results worked out by hand.
    const std::uint32_t under = 0xFFCC6633;
    const std::uint32_t over = 0xFF9933FF;
    const struct {
        TBlendMode Mode;
        double Red, Green, Blue;
    } cases[] = {
        {TBlendMode::Normal, 0.6, 0.2, 1},
        {TBlendMode::Multiply, 0.48, 0.08, 0.2},
        {TBlendMode::Screen, 0.92, 0.52, 1},
        {TBlendMode::Overlay, 0.84, 0.16, 0.4},
        {TBlendMode::Darken, 0.6, 0.2, 0.2},
        {TBlendMode::Lighten, 0.8, 0.4, 1},
        {TBlendMode::ColorDodge, 1, 0.5, 1},
        {TBlendMode::ColorBurn, 2.0 / 3, 0, 0.2},
        {TBlendMode::HardLight, 0.84, 0.16, 1},
        {TBlendMode::SoftLight, 0.8 + 0.2 * (std::sqrt(0.8) - 0.8), 0.4 - 0.6 * 0.4 * 0.6,
         ((16 * 0.2 - 12) * 0.2 + 4) * 0.2},
        {TBlendMode::Difference, 0.2, 0.2, 0.8},
        {TBlendMode::Exclusion, 0.44, 0.44, 0.8},
    };
    for (const auto& c : cases) {
        const auto byte = [](double v) { return static_cast<unsigned>(v * 255 + 0.5); };
        EXPECT_TRUE(
            Near(Blend(c.Mode, under, over), MakeColor(255, byte(c.Red), byte(c.Green), byte(c.Blue))))
            << int(c.Mode);
    }
}

TEST(Blend, OfHueAndLuminosityKeepsWhatItPromises) {
    std::mt19937 random(8);
    const auto lum = [](std::uint32_t c) { return 0.3 * RedOf(c) + 0.59 * GreenOf(c) + 0.11 * BlueOf(c); };
    for (int i = 0; i < 2000; ++i) {
        const std::uint32_t under = static_cast<std::uint32_t>(random()) | 0xFF000000u;
        const std::uint32_t over = static_cast<std::uint32_t>(random()) | 0xFF000000u;
        for (const TBlendMode mode : {TBlendMode::Hue, TBlendMode::Saturation, TBlendMode::Color})
            ASSERT_NEAR(lum(Blend(mode, under, over)), lum(under), 1.5);
        ASSERT_NEAR(lum(Blend(TBlendMode::Luminosity, under, over)), lum(over), 1.5);
    }
    EXPECT_TRUE(Near(Blend(TBlendMode::Saturation, 0xFFCC6633, 0xFF808080), 0xFF7F7F7F));
    EXPECT_TRUE(Near(Blend(TBlendMode::Color, 0xFF808080, 0xFF808080), 0xFF808080));
}

TEST(Blend, OverNothingIsTheSourceAndOfNothingTheBackdrop) {
    for (const TBlendMode mode : AllModes) {
        EXPECT_EQ(Blend(mode, 0, 0x80402010), 0x80402010u);
        EXPECT_EQ(Blend(mode, 0x80402010, 0), 0x80402010u);
        EXPECT_EQ(Blend(mode, 0x80402010, 0xFF336699, 0), 0x80402010u);
    }
}

TEST(Blend, OfHalfTransparentColoursMixesInProportion) {
    // Both half transparent: a quarter backdrop alone, a quarter source alone, a quarter blended.
    const std::uint32_t under = Premultiply(0x80CC6633);
    const std::uint32_t over = Premultiply(0x809933FF);
    const double a = 128 / 255.0;
    const auto expected = [a](double b, double s, double mixed) {
        return static_cast<unsigned>((a * (1 - a) * (b + s) + a * a * mixed) * 255 + 0.5);
    };
    const std::uint32_t result =
        MakeColor(static_cast<unsigned>((2 * a - a * a) * 255 + 0.5), expected(0.8, 0.6, 0.48),
                  expected(0.4, 0.2, 0.08), expected(0.2, 1, 0.2));
    EXPECT_TRUE(Near(Blend(TBlendMode::Multiply, under, over), result));
}

TEST(Blend, GivesPremultipliedPixels) {
    std::mt19937 random(2);
    for (int i = 0; i < 20000; ++i) {
        const std::uint32_t under = Premultiply(static_cast<std::uint32_t>(random()));
        const std::uint32_t over = Premultiply(static_cast<std::uint32_t>(random()));
        for (const TBlendMode mode : AllModes) {
            const std::uint32_t p = Blend(mode, under, over);
            ASSERT_LE(std::max({RedOf(p), GreenOf(p), BlueOf(p)}), AlphaOf(p));
        }
    }
}

TEST(Blend, GoesThroughCoverageAndOpacity) {
    const std::uint8_t coverage[] = {0, 128, 255};
    const std::uint32_t over[] = {0xFF336699, 0xFF336699, 0xFF336699};
    std::uint32_t row[] = {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF};
    BlendRowInMode(TBlendMode::Multiply, row, 3, over, 128, coverage);
    EXPECT_EQ(row[0], 0xFFFFFFFFu);
    EXPECT_TRUE(Near(row[1], 0xFFCCD8E5));
    EXPECT_TRUE(Near(row[2], 0xFF99B2CC));
}

TEST(Mask, IsAlphaOrLuminance) {
    const std::uint32_t pixels[] = {0xFFFFFFFF, 0xFFFF0000, 0xFF00FF00, 0xFF0000FF,
                                    0x80808080, 0xFF808080, 0};
    const int alpha[] = {255, 255, 255, 255, 128, 255, 0};
    const int luminance[] = {255, 54, 182, 18, 128, 128, 0};
    const int linear[] = {255, 54, 182, 18, 128, 55, 0};
    std::uint8_t out[7];
    MaskCoverage(TMaskKind::Alpha, pixels, 7, out);
    EXPECT_TRUE(std::equal(out, out + 7, alpha));
    MaskCoverage(TMaskKind::Luminance, pixels, 7, out);
    EXPECT_TRUE(std::equal(out, out + 7, luminance));
    MaskCoverage(TMaskKind::LinearLuminance, pixels, 7, out);
    EXPECT_TRUE(std::equal(out, out + 7, linear));
}
