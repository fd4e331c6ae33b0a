#include "tavro/runtime/FormatFloat.h"

#include "tavro/runtime/Exceptions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

using namespace Vz;

namespace {

struct TCase {
    const char* Picture;
    double Value;
    const char* Text;
};

void Check(std::initializer_list<TCase> cases) {
    for (const TCase& one : cases)
        EXPECT_EQ(FormatFloat(one.Picture, one.Value), one.Text) << one.Picture << " of " << one.Value;
}

std::string MessageFor(const char* picture) {
    try {
        FormatFloat(picture, 1);
    } catch (const EConvertError& error) {
        return error.what();
    }
    return "nothing raised";
}

} // namespace

TEST(FormatFloat, DefaultPicture) {
    Check({{"0.#", 0, "0"},
           {"0.#", 16.6667, "16.7"},
           {"0.#", 33.3333, "33.3"},
           {"0.#", 40, "40"},
           {"0.#", 123.45, "123.5"},
           {"0.#", -123.45, "-123.5"},
           {"0.#", 0.04, "0"},
           {"0.#", 0.05, "0.1"},
           {"0.#", 1013.25, "1013.3"},
           {"0.#", 999.96, "1000"},
           {"0.#", 87.5, "87.5"}});
}

TEST(FormatFloat, HalvesGoAwayFromZeroBy18Digits) {
    Check({{"0.0", 0.25, "0.3"},
           {"0.0", -0.25, "-0.3"},
           {"0", 0.5, "1"},
           {"0", 1.5, "2"},
           {"0", 2.5, "3"},
           {"0", -2.5, "-3"},
           {"0.0", 0.15, "0.1"},  // binary 0.1499999999999999944
           {"0.0", 0.35, "0.3"},  // 0.3499999999999999778
           {"0.0", 0.45, "0.5"},  // 0.4500000000000000111
           {"0.0", 2.35f, "2.3"}, // 2.3499999046325684
           {"0", 0.49999999999999994, "0"},
           {"0.00", 1.005, "1.00"},
           {"#", 0.4, ""},
           {"#", 0.5, "1"}});
}

TEST(FormatFloat, PlacesBeforeAndBehindThePoint) {
    Check({{"0000", 12, "0012"},
           {"#0#0", 1, "001"},
           {"####", 12, "12"},
           {"##0.00#", 1.5, "1.50"},
           {"##0.00#", 1.2346, "1.235"},
           {"0.0#0", 1, "1.000"},
           {".00", 12.5, "12.50"},
           {".00", 0.5, ".50"},
           {"#.##", 0.5, ".5"},
           {"#.##", 0, ""},
           {"0.", 12, "12"},
           {"0.", 12.7, "13"},
           {"0", 123456, "123456"},
           {"0.000000", 0.000001, "0.000001"},
           {"0.0", 1e-300, "0.0"},
           {"000", -7, "-007"},
           {"0.00000000000000000000", 0.1, "0.10000000000000000600"},
           {"0", 123456789012345680.0, "123456789012345680"}});
}

TEST(FormatFloat, Grouping) {
    Check({{"#,##0.00", 1234567.891, "1,234,567.89"},
           {"#,##0", 999, "999"},
           {"#,##0", 1000, "1,000"},
           {",0", 1234567, "1,234,567"},
           {"0,", 1234567, "1,234,567"},
           {"0.0,", 12345.6, "12,345.6"},
           {"0000,", 12, "0,012"},
           {"#,##0", -1234, "-1,234"},
           {"#,", 0, ""}});
}

TEST(FormatFloat, LiteralsStandAmongTheDigits) {
    Check({{"0 km/h", 55.5, "56 km/h"},
           {"'0.#'0", 5, "0.#5"},
           {"\"it's \"0", 5, "it's 5"},
           {"'say \"'0'\"'", 5, "say \"5\""},
           {"0-0-0", 1234, "12-3-4"},
           {"(000) 000-0000", 8005551234, "(800) 555-1234"},
           {"0.0'm'", -2.5, "-2.5m"},
           {"a0b", -5, "-a5b"},
           {"''0", 5, "5"},
           {"'off'", 5, "off"},
           {"0°C", 21, "21°C"},
           {"#x", 0, "x"},
           {"0E", 5, "5E"},
           {"e0", 5, "e5"},
           {"0 E 0", 12, "1 E 2"}});
}

TEST(FormatFloat, Sections) {
    Check({{"0;(0)", 5, "5"},
           {"0;(0)", -5, "(5)"},
           {"0;(0)", 0, "0"},
           {"0;(0);'zero'", 0, "zero"},
           {"0;(0);'zero'", -0.0, "zero"},
           {"0;;'zero'", -5, "-5"},
           {"0.0;;", -5, "-5.0"},
           {"0.0;;", 0, "0.0"},
           {";(0)", 5.25, "5.25"},
           {";(0)", -5.25, "(5)"},
           {";;z", 0, "z"},
           {";;", -2.5, "-2.5"},
           {"0;-0.00;n", -0.125, "-0.13"},
           {"0;(0)';'", -5, "(5);"}});
}

TEST(FormatFloat, WhatRoundsToZeroIsZero) {
    Check({{"0.#", -0.04, "0"},
           {"0.0", -0.04, "0.0"},
           {"0.0", -0.05, "-0.1"},
           {"0;(0);'zero'", 0.4, "zero"},
           {"0;(0);'zero'", -0.4, "zero"},
           {"0;(0)", -0.4, "0"},
           {";0", -0.4, "0"}});
}

TEST(FormatFloat, Scientific) {
    Check({{"0.00E+00", 12345, "1.23E+04"},
           {"0.00E+00", 0.00012345, "1.23E-04"},
           {"0.00E-00", 12345, "1.23E04"},
           {"0.00e-0", 0.012, "1.20e-2"},
           {"0.###e+0", 1500, "1.5e+3"},
           {"##0.0E+0", 12345, "123.5E+2"},
           {"00.0E-0", 5, "50.0E-1"},
           {".00E+0", 1500, ".15E+4"},
           {"0E+0", 9.6, "1E+1"},
           {"0E+0000", 1e100, "1E+0100"},
           {"0E+0", 1e-300, "1E-300"},
           {"0.0E+0", 0, "0.0E+0"},
           {"0.0E+0 'm'", -12, "-1.2E+1 m"},
           {"0.0E+0;(0.0E+0)", -12, "(1.2E+1)"},
           {"0.00E+0", 1.7976931348623157e308, "1.80E+308"},
           {"0.0E+0", 5e-324, "4.9E-324"}});
}

TEST(FormatFloat, GeneralForm) {
    Check({{"", 0, "0"},
           {"", -0.0, "0"},
           {"", 0.1, "0.1"},
           {"", -1.5, "-1.5"},
           {"", 1.0 / 3, "0.333333333333333"},
           {"", 2.0 / 3, "0.666666666666667"},
           {"", 123456789012345, "123456789012345"},
           {"", 1e15, "1E15"},
           {"", 999999999999999.9, "1E15"},
           {"", 1234567890123456, "1.23456789012346E15"},
           {"", 0.00001, "0.00001"},
           {"", 0.000001, "1E-6"},
           {"", 1.25e-7, "1.25E-7"},
           {"0", 1e17, "100000000000000000"},
           {"0", 1e18, "1E18"},
           {"#,##0.00", -1.5e20, "-1.5E20"},
           {"0 km", 1e300, "1E300"}});
}

TEST(FormatFloat, NumbersThatAreNotFinite) {
    constexpr double Infinity = std::numeric_limits<double>::infinity();
    for (const char* picture : {"", "0.#", "0.0E+0", "x;y;z"}) {
        EXPECT_EQ(FormatFloat(picture, std::nan("")), "NaN");
        EXPECT_EQ(FormatFloat(picture, Infinity), "INF");
        EXPECT_EQ(FormatFloat(picture, -Infinity), "-INF");
    }
}

TEST(FormatFloat, SettingsGiveTheSeparators) {
    const TFormatSettings german{',', '.'};
    EXPECT_EQ(FormatFloat("#,##0.00", 1234.5, german), "1.234,50");
    EXPECT_EQ(FormatFloat("", 0.5, german), "0,5");
    EXPECT_EQ(FormatFloat("0.0E+0", 15, german), "1,5E+1");
}

TEST(FormatFloat, PicturesThatCannotBeUsedAreRefusedWithTheirPlace) {
    EXPECT_EQ(MessageFor("'abc"), "number picture ''abc': quote that is not closed at character 1");
    EXPECT_EQ(MessageFor("0\"x"), "number picture '0\"x': quote that is not closed at character 2");
    EXPECT_EQ(MessageFor("0;0;0;0"), "number picture '0;0;0;0': fourth section at character 6");
    EXPECT_EQ(MessageFor("0.0.0"), "number picture '0.0.0': second decimal point at character 4");
    EXPECT_EQ(MessageFor("0;0..0"), "number picture '0;0..0': second decimal point at character 5");
    EXPECT_EQ(MessageFor("0E+"), "number picture '0E+': exponent without a zero at character 2");
    EXPECT_EQ(MessageFor("0e-x"), "number picture '0e-x': exponent without a zero at character 2");
    EXPECT_EQ(MessageFor("0E+00000"),
              "number picture '0E+00000': exponent of more than four zeros at character 2");
    EXPECT_EQ(MessageFor("E+0"), "number picture 'E+0': exponent before any digit at character 1");
    EXPECT_EQ(MessageFor("0E+0E+0"), "number picture '0E+0E+0': second exponent at character 5");
    EXPECT_EQ(MessageFor("0E+0.0"),
              "number picture '0E+0.0': decimal point behind the exponent at character 5");
    EXPECT_EQ(MessageFor("0E+0#"), "number picture '0E+0#': digit behind the exponent at character 5");
    EXPECT_THROW(FormatFloat("0;'", 5), EConvertError) << "a section that the value does not use";
    EXPECT_THROW(FormatFloat("0.0.0", std::nan("")), EConvertError);
    EXPECT_EQ(MessageFor("0.0;0.0;0.0"), "nothing raised");
}

TEST(FormatFloat, EnoughPlacesReadBack) {
    std::mt19937_64 random(9);
    std::uniform_real_distribution<double> any(-1e6, 1e6);
    for (int i = 0; i < 20000; ++i) {
        const double value = any(random);
        ASSERT_EQ(std::strtod(FormatFloat("0.00000000000000000E+0", value).c_str(), nullptr), value);
        ASSERT_NEAR(std::strtod(FormatFloat("0.###", value).c_str(), nullptr), value, 0.0005000001);
        ASSERT_NEAR(std::strtod(FormatFloat("", value).c_str(), nullptr), value, std::fabs(value) * 6e-15);
    }
}
