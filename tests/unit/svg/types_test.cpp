#include "tavro/svg/values/Types.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Vz {
namespace {

TSVGLength Length(std::string_view text) {
    TSVGLength length;
    EXPECT_TRUE(length.Parse(text)) << text;
    return length;
}

TEST(Length, EveryUnitIsReadSizedAndWritten) {
    struct TCase {
        const char* Text;
        TSVGUnit Unit;
        double Resolved;
    };
    const TLengthBasis basis{300, 400, 20, 10, 8};
    const TCase cases[] = {
        {"2", TSVGUnit::Number, 2},     {"2px", TSVGUnit::Px, 2},     {"2in", TSVGUnit::In, 192},
        {"3pt", TSVGUnit::Pt, 4},       {"2pc", TSVGUnit::Pc, 32},    {"2.54cm", TSVGUnit::Cm, 96},
        {"25.4mm", TSVGUnit::Mm, 96},   {"101.6Q", TSVGUnit::Q, 96},  {"2em", TSVGUnit::Em, 40},
        {"2ex", TSVGUnit::Ex, 16},      {"2ch", TSVGUnit::Ch, 20},    {"2rem", TSVGUnit::Rem, 20},
        {"10vw", TSVGUnit::Vw, 30},     {"10vh", TSVGUnit::Vh, 40},   {"10vmin", TSVGUnit::Vmin, 30},
        {"10vmax", TSVGUnit::Vmax, 40}, {"1e1em", TSVGUnit::Em, 200},
    };
    for (const TCase& c : cases) {
        const TSVGLength length = Length(c.Text);
        EXPECT_EQ(length.GetUnit(), c.Unit) << c.Text;
        EXPECT_NEAR(length.Resolve(TAxis::X, basis), c.Resolved, 1e-9) << c.Text;
        EXPECT_EQ(Length(length.ToText()), length) << c.Text;
    }
    EXPECT_EQ(Length("1EM").GetUnit(), TSVGUnit::Em);
    EXPECT_EQ(Length(" 1q ").ToText(), "1Q");
}

TEST(Length, PercentagesFollowTheAxis) {
    const TSVGLength half = Length("50%");
    const TLengthBasis basis{300, 400};
    EXPECT_DOUBLE_EQ(half.Resolve(TAxis::X, basis), 150);
    EXPECT_DOUBLE_EQ(half.Resolve(TAxis::Y, basis), 200);
    // 500 / sqrt(2) is the normalised diagonal.
    EXPECT_DOUBLE_EQ(half.Resolve(TAxis::Other, basis), 250 / std::sqrt(2.0));
    EXPECT_EQ(half.ToText(), "50%");
}

TEST(Length, ExIsHalfAnEmWithoutAnXHeight) {
    EXPECT_DOUBLE_EQ(Length("1ex").Resolve(TAxis::X, {100, 100, 24}), 12);
}

TEST(Length, WhatIsNoneLeavesItAsItWas) {
    TSVGLength length(TSVGUnit::Mm, 3);
    for (const char* text :
         {"", " ", "px", "1 px", "1foo", "1e39", "nan", "inf", "0.5.5", "1%%", "1px 2px", "--1"})
        EXPECT_FALSE(length.Parse(text)) << text;
    EXPECT_EQ(length, TSVGLength(TSVGUnit::Mm, 3));
}

TEST(Length, SetAsUnitRefusesWhatIsNotFinite) {
    TSVGLength length;
    length.SetAsUnit(TSVGUnit::Cm, 0.1f);
    EXPECT_EQ(length.GetUnit(), TSVGUnit::Cm);
    EXPECT_EQ(static_cast<float>(length.GetValue()), 0.1f);
    EXPECT_EQ(length.ToText(), "0.1cm");
    length.SetAsUnit(TSVGUnit::Px, std::numeric_limits<float>::quiet_NaN());
    length.SetAsUnit(TSVGUnit::Px, std::numeric_limits<float>::infinity());
    EXPECT_EQ(length.GetUnit(), TSVGUnit::Cm);
}

TEST(PreserveAspectRatio, TextsReadBack) {
    const TSVGPreserveAspectRatio initial;
    EXPECT_EQ(initial.GetAlign(), TSVGAlign::XMidYMid);
    EXPECT_FALSE(initial.GetSlice());
    for (int align = 0; align <= static_cast<int>(TSVGAlign::XMaxYMax); ++align)
        for (const bool slice : {false, true}) {
            TSVGPreserveAspectRatio ratio;
            ratio.SetAlign(static_cast<TSVGAlign>(align));
            ratio.SetSlice(slice);
            TSVGPreserveAspectRatio read;
            ASSERT_TRUE(read.Parse(ratio.ToText()));
            EXPECT_EQ(read, ratio) << ratio.ToText();
        }
}

TEST(PreserveAspectRatio, Forms) {
    TSVGPreserveAspectRatio ratio;
    EXPECT_TRUE(ratio.Parse("  xMinYMax   slice "));
    EXPECT_EQ(ratio.GetAlign(), TSVGAlign::XMinYMax);
    EXPECT_TRUE(ratio.GetSlice());
    EXPECT_TRUE(ratio.Parse("defer none meet"));
    EXPECT_EQ(ratio.GetAlign(), TSVGAlign::None);
    EXPECT_FALSE(ratio.GetSlice());
    ratio.SetAlign(TSVGAlign::XMaxYMid);
    for (const char* text :
         {"", "xMid", "slice", "xMidYMid fill", "xMidYMid meet x", "xMidYMid,slice", "defer"})
        EXPECT_FALSE(ratio.Parse(text)) << text;
    EXPECT_EQ(ratio.GetAlign(), TSVGAlign::XMaxYMid);
}

} // namespace
} // namespace Vz
