#include "tavro/svg/values/TransformText.h"

#include "tavro/svg/values/Scan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace Vz {
namespace {

void ExpectNear(const std::optional<TAffine>& actual, const TAffine& expected, const char* text) {
    ASSERT_TRUE(actual) << text;
    EXPECT_NEAR(actual->A, expected.A, 1e-12) << text;
    EXPECT_NEAR(actual->B, expected.B, 1e-12) << text;
    EXPECT_NEAR(actual->C, expected.C, 1e-12) << text;
    EXPECT_NEAR(actual->D, expected.D, 1e-12) << text;
    EXPECT_NEAR(actual->E, expected.E, 1e-12) << text;
    EXPECT_NEAR(actual->F, expected.F, 1e-12) << text;
}

TEST(TransformText, EachFunction) {
    struct TCase {
        const char* Text;
        TAffine Expected;
    };
    const double h = std::sqrt(0.5);
    const TCase cases[] = {
        {"", {}},
        {" none ", {}},
        {"matrix(1 2 3 4 5 6)", {1, 2, 3, 4, 5, 6}},
        {"  matrix  (  1,2 , 3 4 5,6  )   ", {1, 2, 3, 4, 5, 6}},
        {"translate(3)", {1, 0, 0, 1, 3, 0}},
        {"translate(10-20)", {1, 0, 0, 1, 10, -20}},
        {"translate(1in, 10px)", {1, 0, 0, 1, 96, 10}},
        {"scale(2)", {2, 0, 0, 2, 0, 0}},
        {"scale(2 3)", {2, 0, 0, 3, 0, 0}},
        {"rotate(45)", {h, h, -h, h, 0, 0}},
        {"rotate(90 10 20)", {0, 1, -1, 0, 30, 10}},
        {"rotate(100grad)", {0, 1, -1, 0, 0, 0}},
        {"rotate(0.5turn)", {-1, 0, 0, -1, 0, 0}},
        {"rotate(-270deg)", {0, 1, -1, 0, 0, 0}},
        {"skewX(45)", {1, 0, 1, 1, 0, 0}},
        {"SKEWY(45)", {1, 1, 0, 1, 0, 0}},
        // The last function is the first to act on a point.
        {"translate(10 0) scale(2)", {2, 0, 0, 2, 10, 0}},
        {"scale(2)translate(10 0)", {2, 0, 0, 2, 20, 0}},
        {"scale(2) , translate(10 0)", {2, 0, 0, 2, 20, 0}},
    };
    for (const TCase& c : cases)
        ExpectNear(ParseTransform(c.Text), c.Expected, c.Text);
}

TEST(TransformText, QuarterTurnsAreExact) {
    EXPECT_EQ(ParseTransform("rotate(90)"), (TAffine{0, 1, -1, 0, 0, 0}));
    EXPECT_EQ(ParseTransform("rotate(-90)"), (TAffine{0, -1, 1, 0, 0, 0}));
    EXPECT_EQ(ParseTransform("rotate(180)"), (TAffine{-1, 0, 0, -1, 0, 0}));
    EXPECT_EQ(ParseTransform("rotate(360)"), TAffine{});
    EXPECT_EQ(ParseTransform("rotate(-360)"), TAffine{});
}

TEST(TransformText, FaultsGiveNothing) {
    for (const char* text : {"qwe",
                             "translate",
                             "translate(",
                             "translate()",
                             "translate(1 2 3)",
                             "translate(1,,2)",
                             "translate(,1)",
                             "translate(1,)",
                             "translate(1em)",
                             "translate(10%)",
                             "matrix(1 2 3 4 5)",
                             "matrix(1 2 3 4 5 6 7)",
                             "scale(2px)",
                             "rotate(1 2)",
                             "rotate(1 2 3 4)",
                             "rotate(45px)",
                             "skewX(1 2)",
                             "scale(2) x",
                             "scale(2),",
                             ", scale(2)",
                             "scale(1e39)",
                             "scale(nan)",
                             "translate(1) none",
                             "scale(2)) "})
        EXPECT_FALSE(ParseTransform(text)) << text;
    std::string large;
    for (int i = 0; i < 20; ++i)
        large += "scale(1e38)";
    EXPECT_FALSE(ParseTransform(large));
}

TEST(TransformText, ATextIsShortAndReadsBack) {
    EXPECT_EQ(TransformText({}), "matrix(1 0 0 1 0 0)");
    const TAffine turn = TAffine::FromMatrix(CreateRotationVZMatrix({0, 0}, 0.78539816f));
    EXPECT_EQ(TransformText(turn), "matrix(0.70710677 0.70710677 -0.70710677 0.70710677 0 0)");

    std::mt19937 random(11);
    std::uniform_real_distribution<float> figure(-1000, 1000);
    for (int i = 0; i < 2000; ++i) {
        const TMatrix matrix{figure(random), figure(random), 0, figure(random), figure(random), 0,
                             figure(random), figure(random), 1};
        const auto read = ParseTransform(TransformText(TAffine::FromMatrix(matrix)));
        ASSERT_TRUE(read);
        EXPECT_EQ(read->ToMatrix(), matrix);
    }
}

TEST(TransformText, LongListsTakeLinearTime) {
    std::string text;
    for (int i = 0; i < 200000; ++i)
        text += "rotate(1)";
    EXPECT_TRUE(ParseTransform(text));
    EXPECT_FALSE(ParseTransform(std::string(1'000'000, '(')));
    EXPECT_FALSE(ParseTransform("f" + std::string(1'000'000, '(')));
}

} // namespace
} // namespace Vz
