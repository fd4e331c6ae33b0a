#include "tavro/instruments/ColorFunctions.h"

#include "InstrumentProbe.h"

#include <gtest/gtest.h>

#include <random>

namespace Vz::Test {
namespace {

TEST(ColorFunctions, PremultiplyLeavesHalfTransparentColorsAlone) {
    EXPECT_EQ(PremultiplyColor(0x80C80000), 0x80C80000u);
    EXPECT_EQ(PremultiplyColor(0x01FFFFFF), 0x01FFFFFFu);
    EXPECT_EQ(PremultiplyColor(0xFFC86432), 0xFFC86432u);
    EXPECT_EQ(PremultiplyColor(0x00C86432), 0u);
}

TEST(ColorFunctions, BurnTakesTheWholeProduct) {
    // Dc = 200, Sc = 100: m = (55/255)/255 * 255/100, and 255 - 65025 m = 114.75.
    EXPECT_EQ(BurnColor(0xFFC8C8C8, 0xFF646464), 0xFF737373u);
    // Dc = 100, Sc = 100: m = (155/255)/100, and 255 - 65025 m is below 0.
    EXPECT_EQ(BurnColor(0xFF646464, 0xFF646464), 0xFF000000u);
    // Dc = 255: m = 0, so the channel is Sa Da / 255 = 255; Dc = 254, Sc = 255: 255 - 65025/(255*255) = 254.
    EXPECT_EQ(BurnColor(0xFFFFFEFF, 0xFF64FF01), 0xFFFFFEFFu);
}

TEST(ColorFunctions, BurnByBlack) {
    // Sc = 0 and Dc = Da: 255 + 255 * 0. Sc = 0 and Dc != Da: Dc * (1 - 255/255).
    EXPECT_EQ(BurnColor(0xFFFF8000, 0xFF000000), 0xFFFF0000u);
    // Sa = 51 is f = 0.8: red 200 * 0.8 = 160; green equals Da = 128: 51*128/255 + 128*0.8 = 128; alpha
    // 128+51-25.6.
    EXPECT_EQ(BurnColor(0x80C88000, 0x33000000), 0x99A08000u);
    EXPECT_EQ(BurnColor(0x00FFFFFF, 0x00FFFFFF), 0u);
}

TEST(ColorFunctions, DodgeBranches) {
    // Sc = Sa: the sum, or the source alone over a channel of 0 (times 1 - Da/255 = 0).
    EXPECT_EQ(DodgeColor(0xFF500000, 0xFFFF00FF), 0xFFFF0000u);
    // Sc < Sa: m = min(1, 100/255 * 255/155) = 0.645..., times 255 is 164.5: 165 (164.516); Sc = 0: m =
    // 100/255.
    EXPECT_EQ(DodgeColor(0xFF646400, 0xFF640000), 0xFFA56400u);
    // Sc > Sa, which only a colour that was not premultiplied can have: D's own channel.
    EXPECT_EQ(RedOf(DodgeColor(0xFF123456, 0x80C80000)), 0x12);
    EXPECT_EQ(RedOf(DodgeColor(0x80C80000, 0x80C80000)), 200);
}

TEST(ColorFunctions, DestinationOfNoAlphaDoesNotDivideByZero) {
    EXPECT_EQ(DodgeColor(0x00FFFFFF, 0xFF000000), 0xFF000000u);
    EXPECT_EQ(AlphaOf(BurnColor(0x00FFFFFF, 0xFF808080)), 255);
}

TEST(ColorFunctions, OpaqueOverOpaqueIsOpaque) {
    std::mt19937 random(7);
    for (int i = 0; i < 5000; ++i) {
        const TVZGPColor d = random() | 0xFF000000u;
        const TVZGPColor s = random() | 0xFF000000u;
        ASSERT_EQ(AlphaOf(BurnColor(d, s)), 255);
        ASSERT_EQ(AlphaOf(DodgeColor(d, s)), 255);
    }
}

/// The formulas once more, one channel at a time and with every quantity written out.
struct TByHand {
    double Da, Sa, Dc, Sc, Own;
    static unsigned Held(double x) { return x < 0 ? 0u : x > 255 ? 255u : unsigned(std::lrint(x)); }
    static unsigned Byte(double x) { return unsigned(std::lrint(x)) & 0xFF; }

    unsigned Burn() const {
        const float f = float(1 - Sa / 255);
        if (Sc == 0 && Dc == Da) return Held(std::rint(Sa * Da / 255 + Dc * f));
        if (Sc == 0) return Byte(Dc * f);
        double m = ((1 - Dc / 255) / Da) * Sa / Sc;
        if (!(m < 1)) m = 1;
        return Held(std::rint(Sa * Da / 255 - Sa * Da * m));
    }
    unsigned Dodge() const {
        const float fs = float(1 - Sa / 255), fd = float(1 - Da / 255);
        if (Sc > Sa) return unsigned(Own);
        if (Sc == Sa) return Dc != 0 ? Held(std::rint(Sa * Da / 255 + Sc * fd + Dc * fs)) : Byte(Sc * fd);
        double m = (Dc / Da) * Sa / (Sa - Sc);
        if (!(m < 1)) m = 1;
        return Byte(Sa * Da / 255 * m);
    }
};

TVZGPColor ByHand(TVZGPColor d, TVZGPColor s, unsigned (TByHand::*channel)() const) {
    const double da = d >> 24, sa = s >> 24;
    TVZGPColor result = TByHand::Held(std::rint(da + sa - da * sa / 255));
    for (int shift = 16; shift >= 0; shift -= 8) {
        const double own = d >> shift & 0xFF;
        const TByHand c{da, sa, da == 0 ? 0 : own, sa == 0 ? 0.0 : double(s >> shift & 0xFF), own};
        result = result << 8 | (c.*channel)();
    }
    return result;
}

TEST(ColorFunctions, AgreeWithTheFormulasByHand) {
    std::mt19937 random(11);
    const auto color = [&] {
        TVZGPColor c = random();
        if (random() % 3 == 0) c |= 0xFF000000u;
        if (random() % 8 == 0) c &= 0x00FFFFFFu;
        if (random() % 4 == 0) c &= ~(0xFFu << 8 * (random() % 3));
        if (random() % 8 == 0) c = MakeColor(AlphaOf(c), AlphaOf(c), GreenOf(c), AlphaOf(c));
        return c;
    };
    for (int i = 0; i < 200000; ++i) {
        const TVZGPColor d = color(), s = color();
        ASSERT_EQ(BurnColor(d, s), ByHand(d, s, &TByHand::Burn)) << std::hex << d << ' ' << s;
        ASSERT_EQ(DodgeColor(d, s), ByHand(d, s, &TByHand::Dodge)) << std::hex << d << ' ' << s;
    }
}

TEST(ColorFunctions, ScaleRoundsHalfToEvenAndHolds) {
    EXPECT_EQ(ScaleColor(0x40050301, 0.5), 0x40020200u); // 2.5, 1.5, 0.5
    EXPECT_EQ(ScaleColor(0xFF806401, 2147483648.0), 0xFFFFFFFFu);
    EXPECT_EQ(ScaleColor(0xFF806400, -1), 0xFF000000u);
    EXPECT_EQ(ScaleColor(0x00FFFFFF, 0.5), 0x00808080u); // 127.5
}

TEST(ColorFunctions, ShadowIsTheHueOfTheLight) {
    const auto probe = TProbe::Create();
    EXPECT_EQ(probe->GetShadowColor(), 0xFF000000u);
    probe->SetLightColor(0x80FF0000);
    EXPECT_EQ(probe->GetShadowColor(), 0x80FF0000u);
    probe->SetLightColor(0xFF406080);
    EXPECT_EQ(probe->GetShadowColor(), 0xFF002040u);
}

} // namespace
} // namespace Vz::Test
