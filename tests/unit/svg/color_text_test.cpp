#include "tavro/svg/css/ColorText.h"

#include <gtest/gtest.h>

namespace Vz {
namespace {

TEST(ColorText, ColorsAreRead) {
    struct TCase {
        const char* Text;
        TVZGPColor Color;
    };
    const TCase cases[] = {
        {"red", 0xFFFF0000},
        {"  GreeN ", 0xFF008000},
        {"lightgoldenrodyellow", 0xFFFAFAD2},
        {"aliceblue", 0xFFF0F8FF},
        {"yellowgreen", 0xFF9ACD32},
        {"rebeccapurple", 0xFF663399},
        {"transparent", 0x00000000},
        {"#f80", 0xFFFF8800},
        {"#f808", 0x88FF8800},
        {"#12aBcD", 0xFF12ABCD},
        {"#12abcd80", 0x8012ABCD},
        {"rgb(0, 128, 0)", 0xFF008000},
        {"RGB(0 128 0)", 0xFF008000},
        {"rgb( 0% , 50% , 100% )", 0xFF0080FF},
        {"rgb(-10%, 50%, 120%)", 0xFF0080FF},
        {"rgb(0.8, 127.5, 14.2)", 0xFF01800E},
        {"rgb(300, -5, 1e2)", 0xFFFF0064},
        {"rgba(0, 127, 0, 1)", 0xFF007F00},
        {"rgba(0, 127, 0, 2)", 0xFF007F00},
        {"rgba(0, 127, 0, -1)", 0x00007F00},
        {"rgba(0%, 50%, 0%, 0.5)", 0x80008000},
        {"rgba(0, 128, 0, 50%)", 0x80008000},
        {"rgb(0 50% 0 / 0.5)", 0x80008000}, // without commas they may mix
        {"rgb(1 2 3 / 50%)", 0x80010203},
        {"rgb(59.60784313725490196078431372549%,98.431372549019607843137254901961%,0%)", 0xFF98FB00},
        {"hsl(120, 100%, 25%)", 0xFF008000},
        {"hsl(0 100% 50%)", 0xFFFF0000},
        {"hsl(360, 100%, 50%)", 0xFFFF0000},
        {"hsl(-120, 100%, 50%)", 0xFF0000FF},
        {"hsl(0.5turn 100% 50%)", 0xFF00FFFF},
        {"hsl(480, 100%, 50%)", 0xFF00FF00},
        {"hsla(240deg, 100%, 50%, 0.5)", 0x800000FF},
        {"hsl(0, 0%, 50%)", 0xFF808080},
        {"hsl(60, 200%, 100%)", 0xFFFFFFFF},
    };
    for (const TCase& c : cases) {
        const auto color = ParseColor(c.Text);
        ASSERT_TRUE(color) << c.Text;
        EXPECT_EQ(*color, c.Color) << c.Text << std::hex << " is read as " << *color;
    }
}

TEST(ColorText, WhatIsNoColor) {
    for (const char* text : {"",
                             " ",
                             "#",
                             "#1",
                             "#12",
                             "#12345",
                             "#1234567",
                             "#123456789",
                             "#ggg",
                             "# fff",
                             "greenish",
                             "r",
                             "zzz",
                             "currentColor",
                             "none",
                             "rgb",
                             "rgb()",
                             "rgb(1,2)",
                             "rgb(1,,2,3)",
                             "rgb(1,2,3,4,5)",
                             "rgb(1,2,3",
                             "rgb(1,2,3,)",
                             "rgb (1,2,3)",
                             "rgb(1,2,3) x",
                             "rgb(a,b,c)",
                             "rgb(0, 50%, 0)",
                             "rgba(0, 50%, 0, 0.5)",
                             "rgb(10%, 20%, 30)",
                             "rgb(1,2,3/)",
                             "hsl(1,2)",
                             "hsl(10px,1%,1%)",
                             "cmyk(1,2,3)",
                             "rgb(1e39,0,0)",
                             "rgb(nan,0,0)",
                             "red blue"})
        EXPECT_FALSE(ParseColor(text)) << text;
    EXPECT_FALSE(ParseColor(std::string(1'000'000, 'r')));
    EXPECT_FALSE(ParseColor("rgb(" + std::string(1'000'000, '(')));
}

TEST(ColorText, TextsLeaveTheAlphaOut) {
    EXPECT_EQ(ColorText(0xFF12ABCD), "#12abcd");
    EXPECT_EQ(ColorText(0x00000001), "#000001");
    for (const TVZGPColor color : {0xFF000000u, 0xFFFFFFFFu, 0xFF010203u, 0xFFFEDCBAu})
        EXPECT_EQ(ParseColor(ColorText(color)), color);
}

} // namespace
} // namespace Vz
