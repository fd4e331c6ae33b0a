#include "tavro/svg/values/Scan.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <random>

namespace Vz {
namespace {

struct TNumberCase {
    const char* Text;
    double Value;
    const char* Rest;
};

TEST(Scan, NumbersAreReadAsFarAsTheyGo) {
    const TNumberCase cases[] = {
        {"0", 0, ""},           {"+.5", 0.5, ""},     {"5.", 5, ""},      {"-.5", -0.5, ""},
        {"1e2", 100, ""},       {"1E+2x", 100, "x"},  {"1e-2", 0.01, ""}, {"1em", 1, "em"},
        {"1ex", 1, "ex"},       {"1e2em", 100, "em"}, {"1e", 1, "e"},     {"1e+", 1, "e+"},
        {"0.5.5", 0.5, ".5"},   {"1-2", 1, "-2"},     {"1e-999", 0, ""},  {"007", 7, ""},
        {"5..5", 5, ".5"},      {"1,5", 1, ",5"},     {"-0", 0, ""},      {"0e999", 0, ""},
        {"3.4e38", 3.4e38, ""},
    };
    for (const TNumberCase& c : cases) {
        TScanner scanner{c.Text};
        const auto value = scanner.Number();
        ASSERT_TRUE(value) << c.Text;
        EXPECT_EQ(*value, c.Value) << c.Text;
        EXPECT_EQ(scanner.Text, c.Rest) << c.Text;
        EXPECT_FALSE(std::signbit(*value) && *value == 0) << c.Text;
    }
}

TEST(Scan, WhatIsNoNumberIsLeft) {
    for (const char* text : {"", ".", "-", "+", "+-1", "e5", "inf", "-inf", "nan", "-nan", "infinity", "x1",
                             ".e1", "1e39", "-1e39", "1e999", "3.5e38"}) {
        TScanner scanner{text};
        EXPECT_FALSE(scanner.Number()) << text;
        EXPECT_EQ(scanner.Text, text);
    }
    EXPECT_FALSE(TScanner{std::string(400, '9')}.Number());
    const std::string tiny = "0." + std::string(500, '0') + "1";
    EXPECT_EQ(TScanner{tiny}.Number(), 0.0);
    EXPECT_EQ(ParseNumber(" 7 "), 7.0);
    EXPECT_FALSE(ParseNumber("0.5.5"));
    EXPECT_FALSE(ParseNumber("7 8"));
}

TEST(Scan, TheLocaleDoesNotCount) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    // Where the system lacks this locale the test still holds, though it then shows less.
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    EXPECT_EQ(ParseNumber("1.5"), 1.5);
    EXPECT_EQ(NumberText(1.5), "1.5");
    std::setlocale(LC_ALL, before.c_str());
}

TEST(Scan, AnglesAreInDegrees) {
    EXPECT_EQ(TScanner{"90"}.Angle(), 90.0);
    EXPECT_EQ(TScanner{"90DEG"}.Angle(), 90.0);
    EXPECT_EQ(TScanner{"0.25turn"}.Angle(), 90.0);
    EXPECT_DOUBLE_EQ(*TScanner{"100grad"}.Angle(), 90.0);
    EXPECT_NEAR(*TScanner{"3.14159265358979rad"}.Angle(), 180, 1e-9);
    TScanner wrong{"90px"};
    EXPECT_FALSE(wrong.Angle());
    EXPECT_EQ(wrong.Text, "90px");
    TScanner tight{"45-10"};
    EXPECT_EQ(tight.Angle(), 45.0);
    EXPECT_EQ(tight.Text, "-10");
}

TEST(Scan, CommasAndBlanks) {
    TScanner scanner{" \t, \n,x"};
    EXPECT_TRUE(scanner.SkipCommaBlanks());
    EXPECT_EQ(scanner.Text, ",x");
    EXPECT_FALSE(scanner.SkipBlanks());
    EXPECT_TRUE(scanner.Accept(','));
    EXPECT_FALSE(scanner.SkipCommaBlanks());
    EXPECT_EQ(scanner.Peek(), 'x');
    EXPECT_EQ(TScanner{}.Peek(), '\0');
}

TEST(Scan, WordsAndFunctions) {
    TScanner word{"text-before-edge x"};
    EXPECT_EQ(word.Word(), "text-before-edge");
    EXPECT_TRUE(TScanner{"1a"}.Word().empty());

    TScanner scanner{"f(a(b)\")\\\"\", c) rest"};
    const auto function = scanner.Function();
    ASSERT_TRUE(function);
    EXPECT_EQ(function->Name, "f");
    EXPECT_EQ(function->Arguments, "a(b)\")\\\"\", c");
    EXPECT_EQ(scanner.Text, " rest");

    EXPECT_FALSE(TScanner{"f (a)"}.Function());
    EXPECT_TRUE(TScanner{"f (a)"}.Function(true));
    for (const char* text : {"f(", "f((a)", "f(\\)", "(a)", "f", ""})
        EXPECT_FALSE(TScanner{text}.Function(true)) << text;
    EXPECT_EQ(TScanner{"'a\\'b'c"}.Quoted(), "a\\'b");
    EXPECT_FALSE(TScanner{"'a\nb'"}.Quoted());
    EXPECT_FALSE(TScanner{"'a\\"}.Quoted());
}

TEST(Scan, Lists) {
    std::vector<double> numbers;
    EXPECT_TRUE(ParseNumbers(" 1,2 3 ,4-5.5.5 ", numbers));
    EXPECT_EQ(numbers, (std::vector<double>{1, 2, 3, 4, -5.5, 0.5}));
    for (const char* text : {"1,,2", ",1", "1,", "1 x"}) {
        numbers.clear();
        EXPECT_FALSE(ParseNumbers(text, numbers)) << text;
        EXPECT_LE(numbers.size(), 1u) << text;
    }
    numbers.clear();
    EXPECT_TRUE(ParseNumbers("", numbers));
    EXPECT_FALSE(ParseNumbers("1 2 3", numbers, 2));
    EXPECT_EQ(numbers.size(), 2u);

    std::vector<TSVGLength> lengths;
    EXPECT_TRUE(ParseLengthList("1px 2%,3 4mm-5", lengths));
    ASSERT_EQ(lengths.size(), 5u);
    EXPECT_EQ(lengths[1], TSVGLength(TSVGUnit::Percent, 2));
    EXPECT_EQ(lengths[4], TSVGLength(TSVGUnit::Number, -5));
    EXPECT_FALSE(ParseLengthList("1px 2foo", lengths));
}

TEST(Scan, NumberTextIsTheShortest) {
    EXPECT_EQ(NumberText(0.0), "0");
    EXPECT_EQ(NumberText(-0.0), "0");
    EXPECT_EQ(NumberText(100), "100");
    EXPECT_EQ(NumberText(0.1), "0.1");
    EXPECT_EQ(NumberText(static_cast<double>(0.1f)), "0.1");
    EXPECT_EQ(NumberText(1.0 / 3), "0.3333333333333333");
    EXPECT_EQ(NumberText(std::nan("")), "0");
    EXPECT_EQ(NumberText(std::numeric_limits<double>::infinity()), "0");
}

TEST(Scan, NumberTextReadsBack) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> exponent(-30, 30);
    for (int i = 0; i < 20000; ++i) {
        const double value = std::exp(exponent(random)) * (i % 2 ? -1 : 1);
        const auto single = static_cast<float>(value);
        EXPECT_EQ(static_cast<float>(*ParseNumber(NumberText(single))), single);
        EXPECT_EQ(ParseNumber(NumberText(value)), value);
    }
}

} // namespace
} // namespace Vz
