#include "tavro/runtime/Rounding.h"

#include <gtest/gtest.h>

#include <cfenv>

using namespace Vz;

TEST(Rounding, HalfGoesToTheEvenNumber) {
    const struct {
        double Value;
        std::int64_t Rounded;
    } cases[] = {
        {0, 0},
        {0.5, 0},
        {1.5, 2},
        {2.5, 2},
        {3.5, 4},
        {-0.5, 0},
        {-1.5, -2},
        {-2.5, -2},
        {0.4999999999999999, 0},
        {0.50000000000000011, 1},
        {8.75, 9},
        {10.0008, 10},
        {-8.75, -9},
        {4503599627370495.5, 4503599627370496},
        {9007199254740993.0, 9007199254740992},
    };
    for (const auto& one : cases)
        EXPECT_EQ(RoundHalfEven(one.Value), one.Rounded) << one.Value;
}

TEST(Rounding, DoesNotHeedTheRoundingMode) {
    std::fesetround(FE_UPWARD);
    const volatile double half = 2.5;
    const std::int64_t rounded = RoundHalfEven(half);
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(rounded, 2);
}

TEST(Rounding, TruncGoesTowardZero) {
    EXPECT_EQ(Trunc(1.9), 1);
    EXPECT_EQ(Trunc(-1.9), -1);
    EXPECT_EQ(Trunc(-0.5), 0);
    EXPECT_EQ(Trunc(3e9), 3000000000);
}

TEST(Rounding, WhatDoesNotFitStopsAtTheEnds) {
    constexpr auto Least = std::numeric_limits<std::int64_t>::min();
    constexpr auto Most = std::numeric_limits<std::int64_t>::max();
    constexpr double Infinity = std::numeric_limits<double>::infinity();
    for (const auto function : {&Trunc, &RoundHalfEven}) {
        EXPECT_EQ(function(std::nan("")), 0);
        EXPECT_EQ(function(Infinity), Most);
        EXPECT_EQ(function(-Infinity), Least);
        EXPECT_EQ(function(1e300), Most);
        EXPECT_EQ(function(-1e300), Least);
        EXPECT_EQ(function(9223372036854775808.0), Most);
        EXPECT_EQ(function(-9223372036854775808.0), Least);
        EXPECT_EQ(function(9223372036854774784.0), 9223372036854774784);
    }
}
