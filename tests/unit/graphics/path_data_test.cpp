#include "tavro/graphics/PathData.h"

#include "tavro/graphics/NumberText.h"
#include "tavro/graphics/Transform.h"
#include "tavro/runtime/Exceptions.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <numbers>
#include <random>

namespace Vz {
namespace {

std::string Rewritten(std::string_view text) {
    TVZPathData path;
    path.SetPathString(text);
    return path.GetPathString();
}

struct TReading {
    const char* Text;
    const char* Written;
};

class PathReading : public testing::TestWithParam<TReading> {};

TEST_P(PathReading, GivesTheFigures) { EXPECT_EQ(Rewritten(GetParam().Text), GetParam().Written); }

constexpr TReading Readings[] = {
    {"", ""},
    {" \t\r\n\f ", ""},
    {"M10 20", "M10 20"},
    {"  M 10 , 20  ", "M10 20"},
    {"M10-20", "M10-20"},
    {"M1.5.5", "M1.5.5"},
    {"M1e3 1E-3", "M1000 .001"},
    {"M1e3.5", "M1000 .5"},
    {"M+1+2", "M1 2"},
    {"M1. .5", "M1 .5"},
    {"M-.5-.25", "M-.5-.25"},
    {"M-0 0", "M0 0"},
    {"m10 20", "M10 20"},
    // Further pairs of a moveto are linetos of the same kind.
    {"M1 2 3 4 5 6", "M1 2L3 4 5 6"},
    {"m1 2 3 4 5 6", "M1 2L4 6 9 12"},
    {"M0 0m1 2 3 4", "M0 0M1 2L4 6"},
    {"M1 2L3 4 5 6l1 1-1-1", "M1 2L3 4 5 6 6 7 5 6"},
    {"M1 2H5V6h1v-1", "M1 2L5 2 5 6 6 6 6 5"},
    {"M1 2H3 4 5", "M1 2L3 2 4 2 5 2"},
    {"M0 0C1 2 3 4 5 6c1 1 2 2 3 3", "M0 0C1 2 3 4 5 6 6 7 7 8 8 9"},
    // The reflected control point: 2 (5, 6) - (3, 4).
    {"M0 0C1 2 3 4 5 6S9 9 8 8", "M0 0C1 2 3 4 5 6 7 8 9 9 8 8"},
    {"M0 0C1 2 3 4 5 6s4 3 3 2", "M0 0C1 2 3 4 5 6 7 8 9 9 8 8"},
    {"M1 1S3 4 5 6", "M1 1C1 1 3 4 5 6"},
    {"M0 0Q1 2 3 4S5 5 6 6", "M0 0Q1 2 3 4C3 4 5 5 6 6"},
    {"M0 0Q1 2 3 4T5 5", "M0 0Q1 2 3 4 5 6 5 5"},
    {"M0 0Q1 2 3 4T5 5 6 6", "M0 0Q1 2 3 4 5 6 5 5 5 4 6 6"},
    {"M0 0q1 2 3 4t2 1", "M0 0Q1 2 3 4 5 6 5 5"},
    {"M1 1T5 5", "M1 1Q1 1 5 5"},
    {"M0 0C1 2 3 4 5 6T9 9", "M0 0C1 2 3 4 5 6Q5 6 9 9"},
    {"M0 0A1 2 30 0 1 5 6", "M0 0A1 2 30 0 1 5 6"},
    {"M0 0a1 1 0 0110 10", "M0 0A1 1 0 0 1 10 10"},
    {"M0 0a1 1 0 01.5.5", "M0 0A1 1 0 0 1 .5.5"},
    {"M0 0a1 1 0 1,0-5,5 1 1 0 00 1 1", "M0 0A1 1 0 1 0-5 5 1 1 0 0 0-4 6"},
    {"M1 1a-3 4 0 0 0 1 1", "M1 1A3 4 0 0 0 2 2"},
    {"M1 2L3 4Z", "M1 2L3 4Z"},
    {"M1 2L3 4zl1 1", "M1 2L3 4ZL2 3"},
    {"M1 2L3 4zm1 1l1 1", "M1 2L3 4ZM2 3L3 4"},
    {"M1 2L3 4Zz", "M1 2L3 4ZZ"},
    {"M5 5zM1 1z", "M5 5ZM1 1Z"},
    // Beyond double's range a step is left out, and what follows goes on from before it.
    {"M1 1L1e999 0L2 2", "M1 1L2 2"},
    {"M1 1l1e308 0 1e308 0 1 1", "M1 1L1e308 1 1e308 2"},
    {"M1e999 1L5 5L6 6", "M5 5L6 6"},
    {"M1e-999 0", "M0 0"},
};
INSTANTIATE_TEST_SUITE_P(Grammar, PathReading, testing::ValuesIn(Readings));

struct TFault {
    const char* Text;
    const char* Kept; ///< what a tolerant reading gives
    int Line;
    int Column;
};

class PathFault : public testing::TestWithParam<TFault> {};

TEST_P(PathFault, IsRaisedWithItsPlaceAndLeavesTheFigures) {
    const auto& [text, kept, line, column] = GetParam();
    TVZPathData path;
    path.SetPathString("M7 7L8 8");
    try {
        path.SetPathString(text);
        ADD_FAILURE() << "no fault found";
    } catch (const EConvertError& fault) {
        EXPECT_EQ(fault.GetPlace().Line, line);
        EXPECT_EQ(fault.GetPlace().Column, column) << fault.what();
    }
    EXPECT_EQ(path.GetPathString(), "M7 7L8 8");
    EXPECT_FALSE(path.SetPathStringTolerant(text));
    EXPECT_EQ(path.GetPathString(), kept);
}

constexpr TFault Faults[] = {
    {"L1 2", "", 1, 1},
    {"10 20", "", 1, 1},
    {"z", "", 1, 1},
    {"M", "", 1, 2},
    {"M1", "", 1, 3},
    {"M1,", "", 1, 4},
    {"M,1 2", "", 1, 2},
    {"M1,,2", "", 1, 4},
    {"M1 2,", "M1 2", 1, 6},
    {"M1 2 3", "M1 2", 1, 7},
    {"M1 2L3 4 5", "M1 2L3 4", 1, 11},
    {"M1 2,L3 4", "M1 2", 1, 6},
    {"M1 2\nL3 4\n x", "M1 2L3 4", 3, 2},
    {"M1 2\xC3\xA4", "M1 2", 1, 5},
    {"M1 2L\xC3\xA4 3", "M1 2", 1, 6},
    {"M1 2L3e 4", "M1 2", 1, 7},
    {"M1 2L3em 4", "M1 2", 1, 7},
    {"M1 2L- 4", "M1 2", 1, 6},
    {"M1 2L. 4", "M1 2", 1, 6},
    {"M1 2L0x10 4", "M1 2", 1, 7},
    {"M1 2Linf 4", "M1 2", 1, 6},
    {"M1 2Lnan 4", "M1 2", 1, 6},
    {"M1 2A1 1 0 2 0 3 4", "M1 2", 1, 12},
    {"M1 2A1 1 0 0 -1 3 4", "M1 2", 1, 14},
    {"M1 2z 3 4", "M1 2Z", 1, 7},
    {"M1 2z,", "M1 2Z", 1, 6},
    {"M1 2C3 4 5 6 7 8 9 10", "M1 2C3 4 5 6 7 8", 1, 22},
};
INSTANTIATE_TEST_SUITE_P(Grammar, PathFault, testing::ValuesIn(Faults));

TEST(PathData, TextWithoutFaultIsWholeInTolerantReading) {
    TVZPathData path;
    EXPECT_TRUE(path.SetPathStringTolerant("M1 2L3 4"));
    EXPECT_TRUE(path.SetPathStringTolerant(""));
    EXPECT_TRUE(path.GetFigures().IsEmpty());
}

TEST(PathData, ReadingStopsAtTheTextsEnd) {
    const std::string_view text("M1 23456", 5);
    EXPECT_EQ(Rewritten(text), "M1 23");
}

double AnyNumber(std::mt19937_64& random) {
    switch (random() % 4) {
    case 0:
        return static_cast<double>(static_cast<int>(random() % 2001)) - 1000;
    case 1:
        return (static_cast<double>(random() % 200001) - 100000) / 1000;
    case 2:
        return std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 200) - 150);
    default:
        break;
    }
    double value;
    do {
        value = std::bit_cast<double>(random());
    } while (!std::isfinite(value));
    return value;
}

TFigures AnyFigures(std::mt19937_64& random) {
    TFigures figures;
    const auto n = [&random] { return AnyNumber(random); };
    figures.MoveTo(n(), n());
    for (auto steps = random() % 12; steps > 0; --steps)
        switch (random() % 6) {
        case 0:
            figures.MoveTo(n(), n());
            break;
        case 1:
            figures.LineTo(n(), n());
            break;
        case 2:
            figures.QuadTo(n(), n(), n(), n());
            break;
        case 3:
            figures.CubicTo(n(), n(), n(), n(), n(), n());
            break;
        case 4:
            figures.ArcTo(std::abs(n()), std::abs(n()), n(), random() & 1, random() & 1, n(), n());
            break;
        default:
            figures.Close();
        }
    return figures;
}

TEST(PathData, WhatIsWrittenReadsBackTheSame) {
    std::mt19937_64 random(42);
    for (int i = 0; i < 3000; ++i) {
        TVZPathData path, back;
        path.SetFigures(AnyFigures(random));
        back.SetPathString(path.GetPathString());
        ASSERT_EQ(back.GetFigures(), path.GetFigures()) << path.GetPathString();
        ASSERT_EQ(back.GetPathString(), path.GetPathString());
    }
}

TEST(PathData, FiguresThatAreNotFiniteAreNotWritten) {
    TVZPathData path;
    TFigures figures;
    figures.MoveTo(1, 2);
    figures.LineTo(std::numeric_limits<double>::quiet_NaN(), 1);
    figures.LineTo(3, std::numeric_limits<double>::infinity());
    figures.LineTo(5, 6);
    path.SetFigures(figures);
    EXPECT_EQ(path.GetPathString(), "M1 2L5 6");
}

TEST(PathData, ChangesAreToldOnceAndOnlyWhenTheyAre) {
    TVZPathData path;
    int count = 0;
    path.OnChange = [&](TObject& sender) {
        EXPECT_EQ(&sender, &path);
        ++count;
    };
    path.SetPathString("M1 2L3 4");
    EXPECT_EQ(count, 1);
    path.SetPathString("M 1,2 L 3,4");
    EXPECT_EQ(count, 1);
    path.ApplyMatrix(TMatrix{});
    EXPECT_EQ(count, 1);
    path.BeginUpdate();
    path.BeginUpdate();
    path.ApplyMatrix(CreateTranslateVZMatrix(1, 1));
    path.Clear();
    path.EndUpdate();
    EXPECT_EQ(count, 1);
    path.EndUpdate();
    EXPECT_EQ(count, 2);
    path.BeginUpdate();
    path.EndUpdate();
    path.Clear();
    EXPECT_EQ(count, 2);
    path.EndUpdate(); // one too many does no harm
    path.SetPathString("M1 1");
    EXPECT_EQ(count, 3);
}

TEST(PathData, ApplyMatrixMapsEveryPoint) {
    TVZPathData path;
    path.SetPathString("M1 2L3 4Q5 6 7 8C1 2 3 4 5 6Z");
    path.ApplyMatrix(VZMatrixMultiply(CreateScaleVZMatrix(2, 3), CreateTranslateVZMatrix(10, 20)));
    EXPECT_EQ(path.GetPathString(), "M12 26L16 32Q20 38 24 44C12 26 16 32 20 38Z");
    TMatrix broken;
    broken.M11 = std::numeric_limits<float>::quiet_NaN();
    path.ApplyMatrix(broken);
    EXPECT_EQ(path.GetPathString(), "M12 26L16 32Q20 38 24 44C12 26 16 32 20 38Z");
}

TEST(PathData, RepeatedTurnsGiveTwelveTicks) {
    TVZPathData ticks, tick;
    ticks.SetPathString("M100 10L100 20");
    tick.Assign(ticks);
    const TMatrix step = CreateRotationVZMatrix({100, 100}, static_cast<float>(std::numbers::pi / 6));
    for (int k = 1; k <= 11; ++k) {
        tick.ApplyMatrix(step);
        ticks.Append(tick);
        const auto& numbers = ticks.GetFigures().Numbers;
        const double angle = k * std::numbers::pi / 6;
        EXPECT_NEAR(numbers[numbers.size() - 4], 100 + 90 * std::sin(angle), 1e-4);
        EXPECT_NEAR(numbers[numbers.size() - 3], 100 - 90 * std::cos(angle), 1e-4);
    }
    EXPECT_EQ(ticks.GetFigures().Verbs.size(), 24u);
}

TEST(PathData, AppendToItself) {
    TVZPathData path;
    path.SetPathString("M1 2L3 4Z");
    path.Append(path);
    EXPECT_EQ(path.GetPathString(), "M1 2L3 4ZM1 2L3 4Z");
    path.Append(TVZPathData{});
    EXPECT_EQ(path.GetPathString(), "M1 2L3 4ZM1 2L3 4Z");
}

TEST(PathData, AssignTakesPathDataOnly) {
    TVZPathData path, other;
    other.SetPathString("M1 2");
    path.Assign(other);
    EXPECT_EQ(path.GetPathString(), "M1 2");
    path.Assign(path);
    EXPECT_EQ(path.GetPathString(), "M1 2");
    const TVZTransform transform;
    EXPECT_THROW(path.Assign(transform), EInvalidCast);
    EXPECT_EQ(path.ToText(), "M1 2");
    path.FromText("M3 4");
    EXPECT_EQ(path.ToText(), "M3 4");
}

TEST(PathData, TenMegabytesAreReadWithFewBytes) {
    std::string text = "M0 0";
    while (text.size() < 10'000'000)
        text += "c1.25-3.5 4e1,5,6 7";
    TVZPathData path;
    // Three points of 16 bytes for 19 letters, in memory that doubles; and the text itself.
    const std::size_t before = Vz::Test::CountAllocatedBytes();
    path.SetPathString(text);
    EXPECT_LT(Vz::Test::CountAllocatedBytes() - before, 20 * text.size());
    EXPECT_EQ(path.GetFigures().Verbs.size(), 1 + (text.size() - 4) / 19);
}

TEST(NumberText, AgreesWithTheLibrary) {
    std::mt19937_64 random(3);
    for (int i = 0; i < 20000; ++i) {
        const double value = AnyNumber(random);
        char text[64];
        const int length = std::snprintf(text, sizeof text, random() % 2 != 0 ? "%.17g" : "%.12e", value);
        double read = 0;
        ASSERT_EQ(ScanNumber(text, text + length, read), text + length);
        ASSERT_EQ(read, std::strtod(text, nullptr)) << text;
    }
}

TEST(NumberText, Ends) {
    const auto scan = [](std::string_view text, double& value) {
        return ScanNumber(text.data(), text.data() + text.size(), value) - text.data();
    };
    double value = 5;
    for (const char* none : {"", "-", "+", ".", "-.", "e5", "x", "--1", "+-1", "inf"})
        EXPECT_EQ(scan(none, value), 0) << none;
    EXPECT_EQ(value, 5);
    EXPECT_EQ(scan("1e400", value), 5);
    EXPECT_EQ(value, std::numeric_limits<double>::infinity());
    EXPECT_EQ(scan("-1e400", value), 6);
    EXPECT_EQ(value, -std::numeric_limits<double>::infinity());
    EXPECT_EQ(scan("1e-400", value), 6);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(scan("1e99999999999999999999", value), 22);
    EXPECT_EQ(value, std::numeric_limits<double>::infinity());
    const std::string zeros(500, '0');
    scan("1" + zeros, value);
    EXPECT_EQ(value, std::numeric_limits<double>::infinity());
    scan("0." + zeros + "1", value);
    EXPECT_EQ(value, 0);
    scan("0." + zeros + "1e501", value);
    EXPECT_EQ(value, 1);
    scan("12" + zeros + "e-500", value);
    EXPECT_EQ(value, 12);
}

} // namespace
} // namespace Vz
