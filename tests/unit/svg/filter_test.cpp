#include "tavro/svg/filter/ListInternal.h"
#include "tavro/svg/filter/OpsInternal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace Vz {
namespace {

constexpr auto Srgb = TFilterColors::Srgb;
constexpr auto Linear = TFilterColors::Linear;
constexpr TFilterPixel Clear{};
constexpr TFilterPixel White{1, 1, 1, 1};
constexpr TFilterPixel Red{1, 0, 0, 1};
constexpr TFilterPixel HalfRed{0.5f, 0, 0, 0.5f};
constexpr TFilterPixel Blue{0, 0, 1, 1};

void ExpectPixel(const TFilterPixel& actual, const TFilterPixel& expected, const char* text = "",
                 float error = 1e-5f) {
    EXPECT_NEAR(actual.R, expected.R, error) << text;
    EXPECT_NEAR(actual.G, expected.G, error) << text;
    EXPECT_NEAR(actual.B, expected.B, error) << text;
    EXPECT_NEAR(actual.A, expected.A, error) << text;
}

/// A picture of one row that begins at (0, 0).
TFilterImage Row(const std::vector<TFilterPixel>& pixels, TFilterColors colors = Srgb) {
    TFilterImage image({0, 0, static_cast<int>(pixels.size()), 1}, colors);
    image.Pixels() = pixels;
    return image;
}

/// A picture of one row in white with these alphas.
TFilterImage AlphaRow(const std::vector<float>& alphas) {
    std::vector<TFilterPixel> pixels;
    for (const float a : alphas)
        pixels.push_back(White * a);
    return Row(pixels);
}

void ExpectAlphas(const TFilterImage& image, const std::vector<float>& expected, int left = 0) {
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(image.At(left + static_cast<int>(i), 0).A, expected[i], 1e-5f) << i;
}

TFilterPixel One(const TFilterImage& image) { return image.At(0, 0); }

constexpr TRect Single{0, 0, 1, 1};

// Pictures

TEST(FilterImage, SrgbIsTheCurveOfItsStandardAndBack) {
    EXPECT_NEAR(LinearOfSrgb(0.5f), 0.214041f, 1e-5);
    EXPECT_NEAR(LinearOfSrgb(0.04f), 0.04f / 12.92f, 1e-6);
    EXPECT_NEAR(SrgbOfLinear(0.214041f), 0.5f, 1e-5);
    EXPECT_EQ(LinearOfSrgb(-1), 0);
    EXPECT_EQ(SrgbOfLinear(2), 1);
    EXPECT_EQ(SrgbOfLinear(std::nanf("")), 0);
}

TEST(FilterImage, EveryDevicePixelSurvivesTheWayThroughLinearColours) {
    TVZGPBitmap before(256, 2), after(256, 2);
    for (unsigned i = 0; i < 256; ++i) {
        before.GetPixels().Row(0)[i] = MakeColor(255, i, 255 - i, i / 2);
        before.GetPixels().Row(1)[i] = Premultiply(MakeColor(i, 255, 99, 0));
    }
    const TFilterImage image = FilterImageOf(before.GetPixels(), -3, 7);
    EXPECT_EQ(image.Box(), (TRect{-3, 7, 253, 9}));
    WritePixels(InColors(image, Linear), after.GetPixels());
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 256; ++x)
            ASSERT_EQ(after.GetPixels().Row(y)[x], before.GetPixels().Row(y)[x]) << x << ' ' << y;
}

TEST(FilterImage, OutsideOfItsBoxItIsTransparent) {
    const TFilterImage image = Row({Red, Blue});
    ExpectPixel(image.At(-1, 0), Clear);
    ExpectPixel(image.At(1, 1), Clear);
    const TFilterImage part = Cropped(image, {1, -5, 9, 9});
    EXPECT_EQ(part.Box(), (TRect{1, 0, 2, 1}));
    ExpectPixel(part.At(1, 0), Blue);
    EXPECT_TRUE(Cropped(image, {5, 5, 6, 6}).IsEmpty());
}

// Flood, offset

TEST(FilterFlood, IsPremultipliedAndInTheColoursOfThePrimitive) {
    ExpectPixel(One(Flooded(Single, 0x80FF0000, Srgb)), {128 / 255.0f, 0, 0, 128 / 255.0f});
    ExpectPixel(One(Flooded(Single, 0xFF808080, Linear)), {0.2158605f, 0.2158605f, 0.2158605f, 1});
}

TEST(FilterOffset, MovesByWholePixelsAsItIsAndInterpolatesParts) {
    const TFilterImage image = Row({Red});
    const TFilterImage whole = Moved(image, 2, -1, {-5, -5, 5, 5});
    ExpectPixel(whole.At(2, -1), Red);
    ExpectPixel(whole.At(0, 0), Clear);
    const TFilterImage half = Moved(image, -0.5, 0, {-5, -5, 5, 5});
    ExpectPixel(half.At(-1, 0), HalfRed);
    ExpectPixel(half.At(0, 0), HalfRed);
    const TFilterImage quarter = Moved(image, 1.25, 0.5, {0, 0, 5, 5});
    ExpectPixel(quarter.At(1, 0), Red * 0.375f);
    ExpectPixel(quarter.At(2, 1), Red * 0.125f);
    ExpectPixel(Moved(image, 1e30, 0, {0, 0, 5, 5}).At(0, 0), Clear);
}

// Blur

TEST(FilterBlur, SmallDeviationsAreAnExactGaussian) {
    const TFilterImage out = Blurred(Row({White}), 1, 0, {-4, 0, 5, 1}, {-4, 0, 5, 1});
    // exp(-x * x / 2) for -3..3 over its sum, 2.50593.
    ExpectAlphas(out, {0, 0.004433f, 0.054006f, 0.242036f, 0.399050f, 0.242036f, 0.054006f, 0.004433f, 0},
                 -4);
}

TEST(FilterBlur, LargerOnesAreThreeBoxes) {
    const TRect box{-7, 0, 8, 1};
    // Deviation 2.5: three boxes of 5. (1 2 3 4 5 4 3 2 1) summed by fives, over 125.
    ExpectAlphas(Blurred(Row({White}), 2.5, 0, box, box),
                 {0, 1 / 125.0f, 3 / 125.0f, 6 / 125.0f, 10 / 125.0f, 15 / 125.0f, 18 / 125.0f, 19 / 125.0f,
                  18 / 125.0f, 15 / 125.0f, 10 / 125.0f, 6 / 125.0f, 3 / 125.0f, 1 / 125.0f, 0},
                 -7);
    // Deviation 2: two boxes of 4, to the left and to the right, and one of 5. (1 2 3 4 3 2 1) by fives,
    // over 80.
    ExpectAlphas(Blurred(Row({White}), 2, 0, box, box),
                 {0, 0, 1 / 80.0f, 3 / 80.0f, 6 / 80.0f, 10 / 80.0f, 13 / 80.0f, 14 / 80.0f, 13 / 80.0f,
                  10 / 80.0f, 6 / 80.0f, 3 / 80.0f, 1 / 80.0f, 0, 0},
                 -7);
}

TEST(FilterBlur, EachBoxEndsAtTheLimit) {
    // A white line that fills its extent: of the first box 3/5 and 4/5 at its end, of the second 12/25,
    // 17/25, 22/25.
    const TFilterImage out =
        Blurred(AlphaRow(std::vector<float>(20, 1)), 2.5, 0, {0, 0, 20, 1}, {0, 0, 20, 1});
    EXPECT_NEAR(out.At(0, 0).A, (0.48 + 0.68 + 0.88) / 5, 1e-5);
    EXPECT_NEAR(out.At(10, 0).A, 1, 1e-5);
    EXPECT_NEAR(out.At(19, 0).A, (0.48 + 0.68 + 0.88) / 5, 1e-5);
}

TEST(FilterBlur, AnAxisWithoutDeviationStaysAsItIs) {
    TFilterImage cross({0, 0, 3, 3});
    cross.Row(1)[1] = White;
    const TRect box{-5, -5, 8, 8};
    const TFilterImage down = Blurred(cross, 0, 1, box, box);
    EXPECT_NEAR(down.At(1, 0).A, 0.242036f, 1e-5);
    ExpectPixel(down.At(0, 1), Clear);
    const TFilterImage none = Blurred(cross, 0, -1, box, box);
    ExpectPixel(none.At(1, 1), White);
}

TEST(FilterBlur, ADeviationBeyondThePictureSpreadsItEvenly) {
    const double sigma = 1000;
    const TFilterImage out = Blurred(AlphaRow({1, 0, 1, 0}), sigma, 0, {0, 0, 4, 1}, {0, 0, 4, 1});
    const double height = 2 / (sigma * std::sqrt(2 * std::numbers::pi));
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(out.At(i, 0).A, height, 1e-7);
    ExpectPixel(Blurred(Row({White}), 1e30, 1e30, Single, Single).At(0, 0), Clear);
}

TEST(FilterBlur, DeviationsBeyondFloatsBlurToNothingOrNotAtAll) {
    const TFilterImage line = AlphaRow({1, 0, 1, 0});
    const TRect box{0, 0, 4, 1};
    // The height of the curve is no float any more.
    for (const double sigma : {1e38, 1e45, 1e60, 1e300, std::numeric_limits<double>::infinity()})
        for (int i = 0; i < 4; ++i)
            EXPECT_NEAR(Blurred(line, sigma, 0, box, box).At(i, 0).A, 0, 1e-30) << sigma;
    // Neither is its square.
    for (const double sigma : {1e-30, 1e-200, std::numeric_limits<double>::denorm_min()})
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(Blurred(line, sigma, 0, box, box).At(i, 0).A, i % 2 ? 0 : 1) << sigma;
}

TEST(FilterShadow, LiesUnderThePictureInItsColour) {
    const TFilterImage out = WithShadow(Row({HalfRed}), {2, 0, 0, 0, 0xFF0000FF}, {0, 0, 4, 1}, {0, 0, 4, 1});
    ExpectPixel(out.At(0, 0), HalfRed);
    ExpectPixel(out.At(2, 0), Blue * 0.5f);
    const TFilterImage under = WithShadow(Row({HalfRed}), {0, 0, 0, 0, 0xFF0000FF}, Single, Single);
    ExpectPixel(One(under), {0.5f, 0, 0.25f, 0.75f});
}

// Colours

TEST(FilterColorMatrix, WorksOnColoursThatAreNotPremultiplied) {
    TColorMatrix swap = IdentityColors();
    std::swap_ranges(swap.begin(), swap.begin() + 5, swap.begin() + 10);
    ExpectPixel(One(Recoloured(Row({HalfRed}), swap, Single)), Blue * 0.5f);
    TColorMatrix constant{};
    constant[4] = 0.25f;
    constant[19] = 2;
    ExpectPixel(One(Recoloured(Row({Clear}), constant, Single)), {0.25f, 0, 0, 1});
    ExpectPixel(One(Recoloured(Row({{0.2f, 0.1f, 0.05f, 0.25f}}), IdentityColors(), Single)),
                {0.2f, 0.1f, 0.05f, 0.25f});
}

TEST(FilterColorMatrix, NamedMatrices) {
    ExpectPixel(One(Recoloured(Row({Red}), SaturateColors(0), Single)), {0.213f, 0.213f, 0.213f, 1});
    ExpectPixel(One(Recoloured(Row({Red}), SaturateColors(1), Single)), Red);
    ExpectPixel(One(Recoloured(Row({Red}), HueRotateColors(0), Single)), Red);
    // At 90 degrees: 0.213 - 0.213, 0.213 + 0.143, 0.213 - 0.787.
    ExpectPixel(One(Recoloured(Row({Red}), HueRotateColors(90), Single)), {0, 0.356f, 0, 1});
    ExpectPixel(One(Recoloured(Row({Red}), LuminanceToAlphaColors(), Single)), {0, 0, 0, 0.2125f});
}

TEST(FilterTransfer, EachFunction) {
    using K = TTransfer::TKind;
    const TTransfer table{K::Table, {0, 1, 0}};
    EXPECT_FLOAT_EQ(table(0.25f), 0.5f);
    EXPECT_FLOAT_EQ(table(0.5f), 1);
    EXPECT_FLOAT_EQ(table(1), 0);
    const TTransfer discrete{K::Discrete, {0.2f, 0.8f}};
    EXPECT_FLOAT_EQ(discrete(0.49f), 0.2f);
    EXPECT_FLOAT_EQ(discrete(0.5f), 0.8f);
    EXPECT_FLOAT_EQ(discrete(1), 0.8f);
    const TTransfer linear{K::Linear, {}, 2, -0.5f};
    EXPECT_FLOAT_EQ(linear(0.5f), 0.5f);
    EXPECT_FLOAT_EQ(linear(0.1f), 0);
    EXPECT_FLOAT_EQ(linear(1), 1);
    const TTransfer gamma{K::Gamma, {}, 1, 0, 2, 2, 0.1f};
    EXPECT_FLOAT_EQ(gamma(0.5f), 0.6f);
    EXPECT_FLOAT_EQ((TTransfer{K::Table, {}}(0.3f)), 0.3f);
    EXPECT_FLOAT_EQ((TTransfer{K::Gamma, {}, 1, 0, 1, -1}(0)), 1); // infinite, held at 1
}

TEST(FilterTransfer, AlphaOfNothing) {
    TTransfers transfers;
    transfers[3] = {TTransfer::TKind::Linear, {}, 1, 0.5f};
    const TFilterImage out = Transferred(Row({HalfRed}), transfers, {0, 0, 2, 1});
    ExpectPixel(out.At(0, 0), Red);
    ExpectPixel(out.At(1, 0), {0, 0, 0, 0.5f});
}

TEST(FilterComposite, EachOperator) {
    struct TCase {
        TCompositeOperator Operator;
        TFilterPixel Expected;
    };
    const TFilterPixel a{0.5f, 0, 0, 0.5f};
    const TFilterPixel b{0, 0, 0.25f, 0.25f};
    const TCase cases[] = {
        {TCompositeOperator::Over, {0.5f, 0, 0.125f, 0.625f}},
        {TCompositeOperator::In, {0.125f, 0, 0, 0.125f}},
        {TCompositeOperator::Out, {0.375f, 0, 0, 0.375f}},
        {TCompositeOperator::Atop, {0.125f, 0, 0.125f, 0.25f}},
        {TCompositeOperator::Xor, {0.375f, 0, 0.125f, 0.5f}},
        {TCompositeOperator::Lighter, {0.5f, 0, 0.25f, 0.75f}},
    };
    for (const TCase& c : cases)
        ExpectPixel(One(Composed(c.Operator, {}, Row({a}), Row({b}), Single)), c.Expected);
    // 1 a b + 0.5 a + 2 b + 0.1, alpha 0.125 + 0.25 + 0.5 + 0.1.
    ExpectPixel(One(Composed(TCompositeOperator::Arithmetic, {1, 0.5f, 2, 0.1f}, Row({a}), Row({b}), Single)),
                {0.35f, 0.1f, 0.6f, 0.975f});
    ExpectPixel(One(Composed(TCompositeOperator::Arithmetic, {0, 0, 0, 9}, Row({a}), Row({b}), Single)),
                White);
}

TEST(FilterBlend, MixesByBothAlphas) {
    const TFilterPixel over{0.4f, 0, 0, 0.5f};      // 0.8 red, half covered
    const TFilterPixel under{0.25f, 0, 0.5f, 0.5f}; // 0.5 red and full blue, half covered
    // A quarter each: over alone, under alone, and the product of both.
    ExpectPixel(One(Blended(TBlendMode::Multiply, Row({over}), Row({under}), Single)),
                {0.2f + 0.125f + 0.25f * 0.4f, 0, 0.25f, 0.75f});
    ExpectPixel(One(Blended(TBlendMode::Normal, Row({over}), Row({under}), Single)),
                {0.525f, 0, 0.25f, 0.75f});
    ExpectPixel(One(Blended(TBlendMode::Screen, Row({over}), Row({Clear}), Single)), over);
    ExpectPixel(One(Blended(TBlendMode::Difference, Row({White}), Row({Red}), Single)), {0, 1, 1, 1});
}

// Neighbourhoods

TEST(FilterMorphology, WindowsOfOddAndEvenWidth) {
    const TFilterImage line = AlphaRow({0, 1, 1, 1, 1, 0.5f, 0});
    const TRect box{0, 0, 7, 1};
    ExpectAlphas(Morphed(TMorphology::Erode, line, 3, 0, box), {0, 0, 1, 1, 0.5f, 0, 0});
    ExpectAlphas(Morphed(TMorphology::Dilate, line, 3, 0, box), {1, 1, 1, 1, 1, 1, 0.5f});
    // Two pixels: the one before and the own one.
    ExpectAlphas(Morphed(TMorphology::Erode, line, 2, 0, box), {0, 0, 1, 1, 1, 0.5f, 0});
    ExpectAlphas(Morphed(TMorphology::Dilate, line, 2, 0, box), {0, 1, 1, 1, 1, 1, 0.5f});
    ExpectAlphas(Morphed(TMorphology::Erode, line, 1, 0, box), {0, 1, 1, 1, 1, 0.5f, 0});
    ExpectAlphas(Morphed(TMorphology::Erode, line, 0, 3, box), {0, 0, 0, 0, 0, 0, 0});
    ExpectAlphas(Morphed(TMorphology::Dilate, line, 1000000, 1000000, box), {1, 1, 1, 1, 1, 1, 1});
}

TConvolution LineKernel(std::vector<float> weights, int target, TEdgeMode edge) {
    TConvolution c;
    c.OrderX = static_cast<int>(weights.size());
    c.OrderY = 1;
    c.TargetX = target;
    c.TargetY = 0;
    c.Kernel = std::move(weights);
    c.Edge = edge;
    return c;
}

TEST(FilterConvolution, TheKernelIsTurnedAndTheEdgesContinue) {
    const TFilterImage line = AlphaRow({0.1f, 0.2f, 0.4f});
    const TRect box{0, 0, 3, 1};
    // The first weight of a turned kernel meets the pixel behind.
    ExpectAlphas(Convolved(line, LineKernel({1, 0, 0}, 1, TEdgeMode::None), box, box), {0.2f, 0.4f, 0});
    ExpectAlphas(Convolved(line, LineKernel({1, 0, 0}, 1, TEdgeMode::Duplicate), box, box),
                 {0.2f, 0.4f, 0.4f});
    ExpectAlphas(Convolved(line, LineKernel({1, 0, 0}, 1, TEdgeMode::Wrap), box, box), {0.2f, 0.4f, 0.1f});
    ExpectAlphas(Convolved(line, LineKernel({0, 0, 1}, 0, TEdgeMode::None), box, box), {0.1f, 0.2f, 0.4f});
}

TEST(FilterConvolution, DivisorBiasAndAlpha) {
    TConvolution c = LineKernel({1, 1}, 0, TEdgeMode::None);
    c.Divisor = 4;
    c.Bias = 0.5f;
    const TRect box{0, 0, 2, 1};
    // (0.2 + 0.4) / 4 + 0.5 * 0.2, 0.4 / 4 + 0.5 * 0.4
    ExpectAlphas(Convolved(AlphaRow({0.2f, 0.4f}), c, box, box), {0.25f, 0.3f});
    TConvolution keep = LineKernel({1, 1}, 0, TEdgeMode::Duplicate);
    keep.Divisor = 2;
    keep.PreserveAlpha = true;
    const TFilterImage out = Convolved(Row({HalfRed, Blue}), keep, box, box);
    ExpectPixel(out.At(0, 0), {0.25f, 0, 0.25f, 0.5f});
    ExpectPixel(out.At(1, 0), Blue);
}

TEST(FilterDisplacement, TheMapSaysFromWhere) {
    const TFilterImage line = Row({Red, Blue, White});
    TDisplacement d;
    d.XScale[0] = 2;
    d.XChannel = 0;
    const TFilterImage map = Row({{1, 0, 0, 1}, {0.5f, 0, 0, 1}, {0, 0, 0, 1}});
    const TFilterImage out = Displaced(line, map, d, {0, 0, 3, 1});
    ExpectPixel(out.At(0, 0), Blue);
    ExpectPixel(out.At(1, 0), Blue);
    ExpectPixel(out.At(2, 0), Blue);
    d.XScale[0] = 1e30;
    ExpectPixel(Displaced(line, map, d, {0, 0, 3, 1}).At(0, 0), Clear);
}

TEST(FilterTile, RepeatsTheTileInBothDirections) {
    TFilterImage image({2, 3, 4, 4});
    image.Row(3)[0] = Red;
    image.Row(3)[1] = Blue;
    const TFilterImage out = Tiled(image, {2, 3, 4, 4}, {-3, -3, 6, 6});
    for (const int y : {-3, 0, 5}) {
        ExpectPixel(out.At(-2, y), Red);
        ExpectPixel(out.At(-1, y), Blue);
        ExpectPixel(out.At(0, y), Red);
    }
    ExpectPixel(Tiled(image, {2, 3, 2, 4}, {0, 0, 9, 9}).At(2, 3), Clear);
}

// Noise: numbers of another, step by step computation of the published procedure.

TEST(FilterTurbulence, KnownNumbers) {
    TTurbulence t;
    t.FrequencyX = t.FrequencyY = 1;
    t.IsFractal = true;
    const auto at = [&](double x, double y) {
        return Unpremultiplied(One(Turbulent(t, TAffine::Translation(x, y), Srgb, Single)));
    };
    ExpectPixel(at(0.25, 0.5),
                {(1 + 0.136145f) / 2, (1 - 0.212027f) / 2, (1 + 0.013961f) / 2, (1 - 0.066834f) / 2});
    ExpectPixel(at(10.3, 7.7),
                {(1 + 0.022315f) / 2, (1 + 0.357872f) / 2, (1 + 0.409764f) / 2, (1 + 0.195953f) / 2});
    t.Seed = 5;
    t.IsFractal = false;
    t.Octaves = 2;
    ExpectPixel(at(0.25, 0.5), {0.420309f, 0.381097f, 0.130066f, 0.192092f});
    ExpectPixel(at(10.3, 7.7), {0.603274f, 0.240532f, 0.112006f, 0.515804f});
}

TEST(FilterTurbulence, NothingAtTheLatticeAndEqualEdgesWhereStitched) {
    TTurbulence t;
    t.FrequencyX = t.FrequencyY = 0.1;
    t.Octaves = 3;
    ExpectPixel(One(Turbulent(t, TAffine::Translation(20, 70), Srgb, Single)), Clear);
    t.Stitch = true;
    t.Tile = {0, 0, 37, 21};
    for (const double y : {1.0, 4.5, 13.0}) {
        const auto at = [&](double x) { return One(Turbulent(t, TAffine::Translation(x, y), Srgb, Single)); };
        ExpectPixel(at(37 - 1e-9), at(0), "", 1e-4f);
    }
}

TEST(FilterTurbulence, AnyNumbersEnd) {
    TTurbulence t;
    t.FrequencyX = 1e300;
    t.FrequencyY = 1e-300;
    t.Octaves = 1 << 30;
    t.Seed = -1e300;
    t.Stitch = true;
    t.Tile = {-1e30, 0, 1e30, 1e-30};
    const TFilterPixel p = One(Turbulent(t, TAffine::Scaling(1e30, 1e-30), Linear, Single));
    EXPECT_TRUE(p.A >= 0 && p.A <= 1);
}

// Light

TLighting DistantLight(double azimuthDeg, double elevationDeg) {
    TLighting l;
    l.Light.AzimuthDeg = azimuthDeg;
    l.Light.ElevationDeg = elevationDeg;
    return l;
}

TEST(FilterLighting, DiffuseOnFlatAndSlopingGround) {
    const TFilterImage flat = Flooded({0, 0, 5, 5}, 0xFFFFFFFF, Srgb);
    ExpectPixel(Lit(flat, DistantLight(0, 90), Srgb, {0, 0, 5, 5}).At(2, 2), White);
    ExpectPixel(Lit(flat, DistantLight(77, 30), Srgb, {0, 0, 5, 5}).At(0, 4), {0.5f, 0.5f, 0.5f, 1});
    TFilterImage ramp({0, 0, 5, 5});
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x)
            ramp.Row(y)[x] = White * (0.1f * static_cast<float>(x));
    // Over two pixels the height grows by 0.2 of the surface scale 5: normal (-1, 0, 1).
    TLighting light = DistantLight(180, 0);
    light.SurfaceScale = 5;
    const float expected = std::sqrt(0.5f);
    const TFilterImage lit = Lit(ramp, light, Srgb, {0, 0, 5, 5});
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x)
            ExpectPixel(lit.At(x, y), {expected, expected, expected, 1}, "edges and corners, too");
    light.Constant = 0.5;
    light.Color = 0xFF00FF00;
    ExpectPixel(Lit(ramp, light, Srgb, {0, 0, 5, 5}).At(2, 2), {0, expected / 2, 0, 1});
}

TEST(FilterLighting, SpecularHasTheAlphaOfItsBrightestPart) {
    const TFilterImage flat = Flooded({0, 0, 3, 3}, 0xFFFFFFFF, Srgb);
    TLighting light = DistantLight(0, 30);
    light.IsSpecular = true;
    light.Exponent = 2;
    light.Color = 0xFFFF0080;
    // Half way between the light and the eye the cosine is cos 30; its square is 0.75.
    ExpectPixel(Lit(flat, light, Srgb, {0, 0, 3, 3}).At(1, 1), {0.75f, 0, 0.75f * 128 / 255, 0.75f});
}

TEST(FilterLighting, PointsAndCones) {
    const TFilterImage flat({0, 0, 9, 1});
    TLighting light;
    light.Light.Kind = TLight::TKind::Point;
    light.Light.At = {0.5, 0.5, 4};
    // The light stands 4 above the first pixel; at the fourth next one it falls in at 45 degrees.
    const TFilterImage point = Lit(flat, light, Srgb, {0, 0, 9, 1});
    ExpectPixel(point.At(0, 0), White);
    EXPECT_NEAR(point.At(4, 0).R, std::sqrt(0.5), 1e-5);
    light.Light.Kind = TLight::TKind::Spot;
    light.Light.Target = {0.5, 0.5, 0};
    light.Light.SpotExponent = 2;
    const TFilterImage spot = Lit(flat, light, Srgb, {0, 0, 9, 1});
    EXPECT_NEAR(spot.At(4, 0).R, std::sqrt(0.5) * 0.5, 1e-5);
    light.Light.ConeDeg = 44;
    EXPECT_EQ(Lit(flat, light, Srgb, {0, 0, 9, 1}).At(4, 0).R, 0);
    EXPECT_GT(Lit(flat, light, Srgb, {0, 0, 9, 1}).At(3, 0).R, 0.4f);
}

// Lists of functions

std::optional<std::vector<TFilterItem>> Parse(std::string_view text) {
    TComputedStyle style = TComputedStyle::Initial();
    style.Color = 0xFF0000FF;
    TLengthBasis basis;
    basis.FontSize = 20;
    return ParseFilterList(text, style, basis);
}

TEST(FilterList, WhatCounts) {
    const auto items = Parse(" url(#a)  blur(2px) drop-shadow(1em 2 3px red) URL( '#b' ) ");
    ASSERT_TRUE(items);
    ASSERT_EQ(items->size(), 4u);
    EXPECT_EQ((*items)[0].Id, "a");
    EXPECT_EQ((*items)[1].Sigma, 2);
    EXPECT_EQ((*items)[2].Dx, 20);
    EXPECT_EQ((*items)[2].Sigma, 3);
    EXPECT_EQ((*items)[2].Color, 0xFFFF0000u);
    EXPECT_EQ((*items)[3].Id, "b");
    EXPECT_EQ(Parse("drop-shadow(1 2)")->front().Color, 0xFF0000FFu);
    EXPECT_EQ(Parse("drop-shadow(rgb(1, 2, 3) 1 2)")->front().Color, 0xFF010203u);
    EXPECT_EQ(Parse("blur()")->front().Sigma, 0);
}

TEST(FilterList, WhatIsInError) {
    for (const char* const text :
         {"blur(-1)", "blur(5%)", "blur(1 2)", "drop-shadow(1)", "drop-shadow(1, 2)", "drop-shadow(1 2 3 4)",
          "drop-shadow(1 2 -3)", "drop-shadow(1 red 2)", "drop-shadow(red 1 2 red)", "hue-rotate(5)",
          "hue-rotate(x)", "sepia(-1)", "opacity(1px)", "foo(1)", "blur(1", "blur(1), blur(2)",
          "url(b.svg#a)", "x"})
        EXPECT_FALSE(Parse(text)) << text;
}

TEST(FilterList, ColourFunctions) {
    struct TCase {
        const char* Text;
        TFilterPixel Expected;
    };
    const TFilterPixel before{0.4f, 0.2f, 0, 1};
    const TCase cases[] = {
        {"brightness(2)", {0.8f, 0.4f, 0, 1}},
        {"brightness(50%)", {0.2f, 0.1f, 0, 1}},
        {"contrast(2)", {0.3f, 0, 0, 1}}, // 0.8 - 0.5, 0.4 - 0.5
        {"invert()", {0.6f, 0.8f, 1, 1}},
        {"invert(0.5)", {0.5f, 0.5f, 0.5f, 1}},
        {"opacity(0.5)", {0.2f, 0.1f, 0, 0.5f}},
        {"opacity(3)", before},
        {"grayscale(2)", {0.22808f, 0.22808f, 0.22808f, 1}}, // 0.2126 * 0.4 + 0.7152 * 0.2
        {"sepia(1)", {0.311f, 0.2768f, 0.2156f, 1}},
        {"saturate(1)", before},
        {"hue-rotate(360deg)", before},
        {"hue-rotate(0)", before},
    };
    for (const TCase& c : cases) {
        const auto items = Parse(c.Text);
        ASSERT_TRUE(items) << c.Text;
        ExpectPixel(One(Recoloured(Row({before}), items->front().Matrix, Single)), c.Expected, c.Text);
    }
}

} // namespace
} // namespace Vz
