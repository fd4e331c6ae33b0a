#include "tavro/graphics/text/Outlines.h"

#include "tavro/runtime/Exceptions.h"

#include "tests/support/Environment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <malloc.h>
#include <numeric>
#include <thread>
#include <unistd.h>

namespace {

using namespace Vz;

const std::filesystem::path FontFolder = std::filesystem::path(Test::TestsFolder()) / "fonts";
constexpr double Digit = 0.572; // advance of each digit of the tests' font, in em
constexpr double NoGlyph = 0.6; // of the box for what it lacks

/// A file with a font configuration of its own, deleted afterwards. It and what fontconfig keeps of it stand
/// in a folder that has an empty folder `fonts`.
class TConfigurationFile {
public:
    explicit TConfigurationFile(const std::string& body)
        : FFolder(std::filesystem::temp_directory_path() / ("text-test-" + std::to_string(getpid()))) {
        std::filesystem::create_directories(FFolder / "fonts");
        std::ofstream(FFolder / "fonts.conf")
            << "<?xml version=\"1.0\"?>\n<fontconfig><cachedir>" << FFolder.string() << "</cachedir><dir>"
            << (FFolder / "fonts").string() << "</dir>" << body << "</fontconfig>\n";
    }
    ~TConfigurationFile() { std::filesystem::remove_all(FFolder); }
    std::string GetName() const { return (FFolder / "fonts.conf").string(); }

private:
    std::filesystem::path FFolder;
};

class TextTest : public testing::Test {
protected:
    void SetUp() override { SetFontConfiguration(""); } // the surroundings', which is that of the tests' font
};

std::vector<TCluster> Shape(std::string_view text, const TTextStyle& style,
                            TTextDirection direction = TTextDirection::LeftToRight) {
    const TTextSpan span{0, text.size(), &style};
    return ShapeText(text, {&span, 1}, direction);
}

std::vector<TCluster> Shape(std::string_view text, TTextDirection direction = TTextDirection::LeftToRight) {
    TTextStyle style;
    style.Size = 1000;
    return Shape(text, style, direction);
}

double GetWidth(const std::vector<TCluster>& clusters) {
    return std::accumulate(clusters.begin(), clusters.end(), 0.0,
                           [](double sum, const TCluster& cluster) { return sum + cluster.Advance; });
}

/// The clusters' bytes in visual order, as "begin-end".
std::string GetOrder(const std::vector<TCluster>& clusters) {
    std::string order;
    for (const TCluster& cluster : clusters)
        order +=
            (order.empty() ? "" : " ") + std::to_string(cluster.Begin) + "-" + std::to_string(cluster.End);
    return order;
}

/// True when the clusters cover each byte of the text exactly once.
bool CoversAll(const std::vector<TCluster>& clusters, std::size_t size) {
    std::vector<int> counts(size);
    for (const TCluster& cluster : clusters) {
        if (cluster.Begin >= cluster.End || cluster.End > size) return false;
        for (std::size_t i = cluster.Begin; i < cluster.End; ++i)
            ++counts[i];
    }
    return std::all_of(counts.begin(), counts.end(), [](int count) { return count == 1; });
}

void ExpectBox(const TFigures& figures, double left, double top, double right, double bottom,
               double tolerance) {
    const TRectD box = figures.Bounds();
    EXPECT_NEAR(box.Left, left, tolerance);
    EXPECT_NEAR(box.Top, top, tolerance);
    EXPECT_NEAR(box.Right, right, tolerance);
    EXPECT_NEAR(box.Bottom, bottom, tolerance);
}

TEST_F(TextTest, AdvancesAreTheFontsOwn) {
    for (double size : {0.001, 1.0, 12.3, 16.0, 1000.0}) {
        TTextStyle style;
        style.Size = size;
        const auto clusters = Shape("0123456789", style);
        ASSERT_EQ(clusters.size(), 10u);
        for (const TCluster& cluster : clusters)
            EXPECT_NEAR(cluster.Advance, Digit * size, 1e-12 * size);
    }
    const auto letters = Shape("oe \u0416\u03A9");
    const double advances[] = {605, 564, 260, 854, 782};
    ASSERT_EQ(letters.size(), std::size(advances));
    for (std::size_t i = 0; i < letters.size(); ++i)
        EXPECT_NEAR(letters[i].Advance, advances[i], 1e-9);
}

TEST_F(TextTest, OutlinesAreTheFontsOwn) {
    const auto clusters = Shape("H0 ");
    ASSERT_EQ(clusters.size(), 3u);
    TFigures h;
    const double points[][2] = {{643, 0},   {553, 0},    {553, -333}, {187, -333}, {187, 0},    {97, 0},
                                {97, -714}, {187, -714}, {187, -412}, {553, -412}, {553, -714}, {643, -714}};
    ExpectBox(clusters[0].Outline, 97, -714, 643, 0, 1e-9);
    for (const auto& point : points) {
        const auto& numbers = clusters[0].Outline.Numbers;
        bool isThere = false;
        for (std::size_t i = 0; i + 1 < numbers.size(); i += 2)
            isThere |= std::abs(numbers[i] - point[0]) < 1e-9 && std::abs(numbers[i + 1] - point[1]) < 1e-9;
        EXPECT_TRUE(isThere) << point[0] << ", " << point[1];
    }
    ASSERT_FALSE(clusters[0].Outline.IsEmpty());
    EXPECT_EQ(clusters[0].Outline.Verbs.front(), TVerb::Move);
    EXPECT_EQ(clusters[0].Outline.Verbs.back(), TVerb::Close);
    ExpectBox(clusters[1].Outline, 49, -725, 523, 10, 1e-9);
    EXPECT_TRUE(clusters[2].Outline.IsEmpty());
}

TEST_F(TextTest, OutlinesScaleExactly) {
    const auto large = Shape("8");
    for (double size : {0.125, 7.0, 4096.0}) {
        TTextStyle style;
        style.Size = size;
        const auto scaled = Shape("8", style);
        ASSERT_EQ(scaled[0].Outline.Verbs, large[0].Outline.Verbs);
        for (std::size_t i = 0; i < large[0].Outline.Numbers.size(); ++i)
            EXPECT_NEAR(scaled[0].Outline.Numbers[i], large[0].Outline.Numbers[i] * size / 1000,
                        1e-12 * size);
    }
}

TEST_F(TextTest, LettersKernUnlessForbidden) {
    TTextStyle style;
    style.Size = 1000;
    EXPECT_NEAR(GetWidth(Shape("AV", style)), 1239 - 40, 1e-9);
    EXPECT_NEAR(Shape("AV", style)[0].Advance, 599, 1e-9);
    style.Kerning = false;
    EXPECT_NEAR(GetWidth(Shape("AV", style)), 1239, 1e-9);
}

TEST_F(TextTest, LigaturesAreOneClusterUnlessForbidden) {
    TTextStyle style;
    EXPECT_EQ(GetOrder(Shape("afib", style)), "0-1 1-3 3-4");
    style.Ligatures = false;
    EXPECT_EQ(GetOrder(Shape("afib", style)), "0-1 1-2 2-3 3-4");
}

TEST_F(TextTest, LigaturesDoNotCrossSpans) {
    const TTextStyle style;
    const TTextSpan spans[] = {{0, 2, &style}, {2, 6, &style}};
    const auto clusters = ShapeText("afibfi", spans, TTextDirection::LeftToRight);
    EXPECT_EQ(GetOrder(clusters), "0-1 1-2 2-3 3-4 4-6");
    const std::size_t expected[] = {0, 0, 1, 1, 1};
    for (std::size_t i = 0; i < clusters.size(); ++i)
        EXPECT_EQ(clusters[i].Span, expected[i]) << i;
}

TEST_F(TextTest, SpansHaveTheirOwnStylesAndKernWhereTheyAreEqual) {
    TTextStyle small;
    small.Size = 100;
    TTextStyle great = small;
    great.Size = 1000;
    const TTextStyle copy = great;
    const TTextSpan spans[] = {{0, 1, &small}, {1, 2, &great}, {2, 3, &copy}};
    const auto clusters = ShapeText("0AV", spans, TTextDirection::LeftToRight);
    ASSERT_EQ(clusters.size(), 3u);
    const double advances[] = {57.2, 599, 600};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(clusters[i].Span, i);
        EXPECT_NEAR(clusters[i].Advance, advances[i], 1e-9);
    }
}

TEST_F(TextTest, OddSpansAreTakenAsTheyCome) {
    TTextStyle style;
    const TTextSpan gap[] = {{1, 2, &style}, {3, 100, &style}, {50, 60, &style}};
    EXPECT_EQ(GetOrder(ShapeText("01234", gap, TTextDirection::LeftToRight)), "1-2 3-4 4-5");
    const TTextSpan overlap[] = {{0, 3, &style}, {1, 5, &style}};
    const auto clusters = ShapeText("01234", overlap, TTextDirection::LeftToRight);
    ASSERT_EQ(clusters.size(), 5u);
    EXPECT_EQ(clusters[2].Span, 0u);
    EXPECT_EQ(clusters[3].Span, 1u);
    const TTextSpan unstyled[] = {{0, 5, nullptr}};
    EXPECT_NEAR(GetWidth(ShapeText("01234", unstyled, TTextDirection::LeftToRight)), 5 * Digit * 16, 1e-9);
    const TTextSpan backwards[] = {{4, 1, &style}};
    EXPECT_TRUE(ShapeText("01234", backwards, TTextDirection::LeftToRight).empty());
    EXPECT_TRUE(ShapeText("01234", {}, TTextDirection::LeftToRight).empty());
    EXPECT_TRUE(ShapeText("", gap, TTextDirection::LeftToRight).empty());
}

TEST_F(TextTest, MarksBelongToTheirBase) {
    const auto composed = Shape("\u00E9");
    const auto combined = Shape("e\u0301 ");
    EXPECT_EQ(GetOrder(combined), "0-3 3-4");
    EXPECT_NEAR(combined[0].Advance, composed[0].Advance, 1e-9);
    const auto stacked = Shape("o\u0323\u0304 ");
    EXPECT_EQ(GetOrder(stacked), "0-5 5-6");
    EXPECT_NEAR(stacked[0].Advance, 605, 1e-9);
    // Above the letter and below it.
    EXPECT_LT(stacked[0].Outline.Bounds().Top, -600);
    EXPECT_GT(stacked[0].Outline.Bounds().Bottom, 50);
    // Even where the font lacks the mark.
    EXPECT_EQ(GetOrder(Shape("e\u0488x")), "0-3 3-4");
}

TEST_F(TextTest, CountlessMarksAreOneCluster) {
    std::string text = "a";
    for (int i = 0; i < 10'000; ++i)
        text += "\u0301";
    const auto clusters = Shape(text);
    ASSERT_EQ(clusters.size(), 1u);
    EXPECT_EQ(clusters[0].End, text.size());
}

TEST_F(TextTest, RightToLeftLettersComeInVisualOrder) {
    const std::string hebrew = "\u05D0\u05D1\u05D2";
    const auto alone = Shape(hebrew);
    EXPECT_EQ(GetOrder(alone), "4-6 2-4 0-2");
    for (const TCluster& cluster : alone) {
        EXPECT_TRUE(cluster.RightToLeft);
        EXPECT_FALSE(cluster.Connected);
        EXPECT_NEAR(cluster.Advance, NoGlyph * 1000, 1e-9);
    }
    EXPECT_EQ(GetOrder(Shape("a " + hebrew + " 12 b")), "0-1 1-2 9-10 10-11 8-9 6-8 4-6 2-4 11-12 12-13");
    EXPECT_EQ(GetOrder(Shape("a " + hebrew + " 12 b", TTextDirection::RightToLeft)),
              "12-13 11-12 9-10 10-11 8-9 6-8 4-6 2-4 1-2 0-1");
    EXPECT_EQ(GetOrder(Shape("12.", TTextDirection::RightToLeft)), "2-3 0-1 1-2");
    EXPECT_EQ(GetOrder(Shape("\u202Eab\u202C")), "0-3 4-5 3-4 5-8");
}

TEST_F(TextTest, BracketsAreMirrored) {
    const auto plain = Shape("(");
    const auto closing = Shape(")");
    const auto mirrored = Shape("(\u05D0", TTextDirection::RightToLeft);
    ASSERT_EQ(mirrored.size(), 2u);
    EXPECT_EQ(mirrored[1].Begin, 0u);
    EXPECT_EQ(mirrored[1].Outline, closing[0].Outline);
    EXPECT_NE(mirrored[1].Outline, plain[0].Outline);
}

TEST_F(TextTest, SpansKeepTheirStylesInReorderedText) {
    TTextStyle small;
    small.Size = 10;
    TTextStyle great;
    great.Size = 100;
    const TTextSpan spans[] = {{0, 2, &small}, {2, 4, &great}, {4, 6, &small}};
    const auto clusters = ShapeText("\u05D0\u05D1\u05D2", spans, TTextDirection::LeftToRight);
    EXPECT_EQ(GetOrder(clusters), "4-6 2-4 0-2");
    ASSERT_EQ(clusters.size(), 3u);
    EXPECT_EQ(clusters[0].Span, 2u);
    EXPECT_NEAR(clusters[1].Advance, NoGlyph * 100, 1e-9);
    EXPECT_NEAR(clusters[2].Advance, NoGlyph * 10, 1e-9);
}

TEST_F(TextTest, WhatNoFontHasIsABox) {
    for (const char* text : {"\U0001F600", "\u0633", "\u65E5"}) {
        const auto clusters = Shape(text);
        ASSERT_EQ(clusters.size(), 1u);
        EXPECT_NEAR(clusters[0].Advance, NoGlyph * 1000, 1e-9);
        EXPECT_FALSE(clusters[0].Outline.IsEmpty());
    }
}

TEST_F(TextTest, CursiveScriptsAreConnected) {
    // seen lam blank a mongolian-a alef, where only the Arabic and the Mongolian letters join their
    // neighbours
    const std::string text = "\u0633\u0644 a\u1820\u05D0";
    const std::vector<std::size_t> connected = {0, 2, 6};
    const auto clusters = Shape(text);
    ASSERT_EQ(clusters.size(), 6u);
    for (const TCluster& cluster : clusters) {
        const bool isExpected =
            std::find(connected.begin(), connected.end(), cluster.Begin) != connected.end();
        EXPECT_EQ(cluster.Connected, isExpected) << cluster.Begin;
    }
}

TEST_F(TextTest, ControlCharactersAreBlanks) {
    for (const std::string& text :
         {std::string("\t"), std::string("\n"), std::string("\r"), std::string(1, '\0'), std::string("\x7F"),
          std::string("\u0085"), std::string("\u2028"), std::string("\u2029"), std::string("\x1B")}) {
        const auto clusters = Shape("0" + text + "1");
        ASSERT_EQ(clusters.size(), 3u);
        EXPECT_NEAR(clusters[1].Advance, 260, 1e-9);
        EXPECT_TRUE(clusters[1].Outline.IsEmpty());
        EXPECT_EQ(clusters[2].Begin, 1 + text.size());
    }
    // No line end begins a new paragraph.
    EXPECT_EQ(GetOrder(Shape("\u05D0\n\u05D1")), "3-5 2-3 0-2");
}

TEST_F(TextTest, BrokenUtf8IsReplaced) {
    const auto replacement = Shape("\uFFFD");
    const struct {
        std::string Text;
        std::string Order;
    } cases[] = {
        {"a\xFF"
         "b",
         "0-1 1-2 2-3"},
        {"\x80\x80", "0-1 1-2"},
        {"\xE2\x82", "0-2"},
        {"\xE2\x82z", "0-2 2-3"},
        {"\xF0\x9F\x98z", "0-3 3-4"},
        {"\xED\xA0\x80", "0-1 1-2 2-3"},
        {"\xC0\xAF", "0-1 1-2"},
        {"\xF4\x90\x80\x80", "0-1 1-2 2-3 3-4"},
        {"\xE0\x80\x80", "0-1 1-2 2-3"},
    };
    for (const auto& one : cases) {
        const auto clusters = Shape(one.Text);
        EXPECT_EQ(GetOrder(clusters), one.Order) << testing::PrintToString(one.Text);
        const TCluster& broken = clusters[one.Text[0] == 'a' ? 1 : 0];
        EXPECT_EQ(broken.Outline, replacement[0].Outline);
        EXPECT_NEAR(broken.Advance, 1000, 1e-9);
    }
}

TEST_F(TextTest, ASpanMayBeginInsideACharacter) {
    TTextStyle style;
    const TTextSpan spans[] = {{0, 1, &style}, {1, 3, &style}};
    const auto clusters = ShapeText("\u00E9"
                                    "0",
                                    spans, TTextDirection::LeftToRight);
    EXPECT_EQ(GetOrder(clusters), "0-2 2-3");
    EXPECT_EQ(clusters[0].Span, 0u);
    EXPECT_EQ(clusters[1].Span, 1u);
}

TEST_F(TextTest, SmallCapitalsAreTheFontsOwn) {
    TTextStyle style;
    style.Size = 1000;
    const auto plain = Shape("a0", style);
    style.SmallCaps = true;
    const auto capitals = Shape("a0", style);
    ASSERT_EQ(capitals.size(), 2u);
    EXPECT_NE(capitals[0].Outline, plain[0].Outline);
    ExpectBox(capitals[0].Outline, 0, -574, 528, 0, 1e-9);
    EXPECT_EQ(capitals[1].Outline, plain[1].Outline);
}

TEST_F(TextTest, ASlantIsMadeUpWhereNoFaceHasIt) {
    TTextStyle style;
    style.Size = 1000;
    const auto upright = Shape("H", style);
    for (TFontSlant slant : {TFontSlant::Italic, TFontSlant::Oblique}) {
        style.Slant = slant;
        const auto slanted = Shape("H", style);
        EXPECT_NEAR(slanted[0].Advance, upright[0].Advance, 1e-9);
        // The top, 714 high, moves to the right by a fifth of the height; the foot stays.
        ExpectBox(slanted[0].Outline, 97, -714, 643 + 0.2 * 714, 0, 1e-6);
    }
}

TEST_F(TextTest, ABoldIsMadeUpWhereNoFaceHasIt) {
    TTextStyle style;
    style.Size = 1000;
    const auto plain = Shape("H\u0301 ", style);
    style.Weight = 500;
    EXPECT_EQ(Shape("H", style)[0].Outline, Shape("H")[0].Outline);
    style.Weight = 700;
    const auto bold = Shape("H ", style);
    const double growth = 1000.0 / 24;
    EXPECT_NEAR(bold[0].Advance, plain[0].Advance + growth, 1e-6);
    EXPECT_NEAR(bold[1].Advance, 260 + growth, 1e-6);
    EXPECT_NEAR(bold[0].Outline.Bounds().Width(), 643 - 97 + growth, 1);
    EXPECT_NEAR(bold[0].Outline.Bounds().Height(), 714 + growth, 1);
    EXPECT_NEAR(bold[0].Outline.Bounds().Bottom, 0, 0.1);
}

TEST_F(TextTest, FamilyListsLeadToTheFontThatIsThere) {
    const auto expected = Shape("A0");
    for (const char* family :
         {"Noto Sans", "'Noto Sans'", "\"No Such, Font\", serif", "sans-serif", "cursive, fantasy", "", ",,",
          "'unclosed", "No\\74o Sans", "\\", "\xFF\xFE", "monospace\0"}) {
        TTextStyle style;
        style.Size = 1000;
        style.Family = family;
        EXPECT_EQ(Shape("A0", style)[0].Outline, expected[0].Outline) << family;
    }
}

TEST_F(TextTest, OddStylesAreHarmless) {
    TTextStyle style;
    style.Size = 1000;
    for (int weight :
         {std::numeric_limits<int>::min(), -1, 0, 1, 350, 1000, std::numeric_limits<int>::max()}) {
        style.Weight = weight;
        EXPECT_FALSE(Shape("8", style)[0].Outline.IsEmpty()) << weight;
    }
    style = {};
    for (double stretch : {0.0, -5.0, 50.0, 90.0, 1e300, std::numeric_limits<double>::quiet_NaN(),
                           std::numeric_limits<double>::infinity()}) {
        style.Stretch = stretch;
        EXPECT_NEAR(Shape("8", style)[0].Advance, Digit * 16, 1e-9) << stretch;
    }
    style = {};
    for (const char* language : {"tr", "zh-Hant-HK", "x", "-", "\xFF", "no such language at all, is there"}) {
        style.Language = language;
        EXPECT_NEAR(Shape("8", style)[0].Advance, Digit * 16, 1e-9) << language;
    }
}

TEST_F(TextTest, SizesThatAreNoneGiveNothing) {
    for (double size : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(),
                        std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()}) {
        TTextStyle style;
        style.Size = size;
        const auto clusters = Shape("8e\u0301", style);
        EXPECT_EQ(GetOrder(clusters), "0-1 1-4");
        for (const TCluster& cluster : clusters) {
            EXPECT_EQ(cluster.Advance, 0);
            EXPECT_TRUE(cluster.Outline.IsEmpty());
        }
        EXPECT_EQ(GetFontMetrics(style).Ascent, 0);
    }
}

TEST_F(TextTest, HugeSizesStayFinite) {
    TTextStyle style;
    style.Size = 1e9;
    EXPECT_NEAR(Shape("8", style)[0].Advance, Digit * 1e9, 1e-3);
    style.Size = std::numeric_limits<double>::max();
    EXPECT_NEAR(Shape("8", style)[0].Advance, Digit * 1e9, 1e-3);
    EXPECT_NEAR(GetFontMetrics(style).Ascent, 1.069e9, 1);
    style.Size = std::numeric_limits<double>::denorm_min();
    EXPECT_TRUE(std::isfinite(Shape("8", style)[0].Advance));
}

TEST_F(TextTest, MetricsAreTheFontsOwn) {
    TTextStyle style;
    style.Size = 1000;
    const TFontMetrics metrics = GetFontMetrics(style);
    EXPECT_NEAR(metrics.Ascent, 1069, 1e-9);
    EXPECT_NEAR(metrics.Descent, 293, 1e-9);
    EXPECT_NEAR(metrics.XHeight, 536, 1e-9);
    EXPECT_NEAR(metrics.CapHeight, 714, 1e-9);
    // The tables give the upper edges: -100 and 322; both lines are 50 thick.
    EXPECT_NEAR(metrics.UnderlinePosition, 125, 1e-9);
    EXPECT_NEAR(metrics.UnderlineThickness, 50, 1e-9);
    EXPECT_NEAR(metrics.StrikePosition, 297, 1e-9);
    EXPECT_NEAR(metrics.StrikeThickness, 50, 1e-9);
    style.Size = 10;
    EXPECT_NEAR(GetFontMetrics(style).Ascent, 10.69, 1e-12);
}

TEST_F(TextTest, TheSameTextIsTheSameAgain) {
    TTextStyle style;
    const auto first = Shape("240", style);
    const auto second = Shape("240", style);
    ASSERT_EQ(first.size(), second.size());
    for (std::size_t i = 0; i < first.size(); ++i) {
        EXPECT_EQ(first[i].Outline, second[i].Outline);
        EXPECT_EQ(first[i].Advance, second[i].Advance);
    }
    // What is kept does not mix up texts, styles, spans or directions.
    style.Size = 32;
    EXPECT_NEAR(GetWidth(Shape("240", style)), 3 * Digit * 32, 1e-9);
    style.Weight = 700;
    EXPECT_NEAR(GetWidth(Shape("240", style)), 3 * (Digit + 1.0 / 24) * 32, 1e-4);
    EXPECT_EQ(GetOrder(Shape("12.", style, TTextDirection::RightToLeft)), "2-3 0-1 1-2");
    EXPECT_EQ(GetOrder(Shape("12.", style)), "0-1 1-2 2-3");
    const TTextSpan spans[] = {{0, 1, &style}, {1, 3, &style}};
    EXPECT_EQ(ShapeText("12.", spans, TTextDirection::LeftToRight)[1].Span, 1u);
}

TEST_F(TextTest, ManyDifferentTextsAndStylesStayRight) {
    TTextStyle style;
    for (int i = 0; i < 1'200; ++i) {
        style.Weight = 1 + i * 7 % 1000;
        const std::string text = std::to_string(i);
        const double growth = style.Weight >= 600 ? 1.0 / 24 : 0;
        ASSERT_NEAR(GetWidth(Shape(text, style)), static_cast<double>(text.size()) * (Digit + growth) * 16,
                    1e-3)
            << i;
    }
}

/// Bytes that the program has taken and not given back. 0 where a sanitizer counts them itself.
std::size_t GetTakenBytes() { return mallinfo2().uordblks; }

TEST_F(TextTest, FamiliesThatAreNotThereAreForgotten) {
    TTextStyle style;
    const std::size_t before = GetTakenBytes();
    std::size_t most = before;
    for (int i = 0; i < 3'000; ++i) {
        style.Family = "Nowhere " + std::to_string(i);
        EXPECT_NEAR(GetWidth(Shape("240", style)), 3 * Digit * 16, 1e-9);
        most = std::max(most, GetTakenBytes());
    }
    EXPECT_LT(most - before, std::size_t{4} << 20); // 9 MB if they were kept, and 35 with the system's fonts
}

TEST_F(TextTest, LongNamesOfFamiliesAreNotKept) {
    TTextStyle style;
    const std::size_t before = GetTakenBytes();
    std::size_t most = before;
    for (int i = 0; i < 300; ++i) {
        style.Family = std::string(100'000, 'x') + std::to_string(i) + ", Noto Sans";
        EXPECT_NEAR(GetWidth(Shape("240", style)), 3 * Digit * 16, 1e-9);
        EXPECT_NEAR(GetFontMetrics(style).Ascent, 1.069 * 16, 1e-9);
        most = std::max(most, GetTakenBytes());
    }
    EXPECT_LT(most - before, std::size_t{10} << 20);
}

TEST_F(TextTest, LongTextsAreCoveredWhole) {
    const std::string pieces[] = {
        "The quick brown fox ",     "\u05D0\u05D1 (12) ", "e\u0301\u0323 ", "\U0001F600 ", "ffi ", "\xFF\x80",
        "\u0633\u0644\u0627\u0645 "};
    std::string text;
    for (std::size_t i = 0; text.size() < 10'000; ++i)
        text += pieces[i % std::size(pieces)];
    for (TTextDirection direction : {TTextDirection::LeftToRight, TTextDirection::RightToLeft}) {
        const auto clusters = Shape(text, direction);
        EXPECT_TRUE(CoversAll(clusters, text.size()));
    }
    EXPECT_NEAR(GetWidth(Shape(std::string(100'000, '7'))), 572e5, 1e-2);
}

TEST_F(TextTest, ManySpansAreCoveredWhole) {
    TTextStyle styles[2];
    styles[1].Weight = 700;
    std::vector<TTextSpan> spans;
    for (std::size_t i = 0; i < 10'000; ++i)
        spans.push_back({i, i + 1, &styles[i % 2]});
    const auto clusters = ShapeText(std::string(10'000, 'a'), spans, TTextDirection::LeftToRight);
    ASSERT_EQ(clusters.size(), spans.size());
    for (std::size_t i = 0; i < spans.size(); ++i)
        ASSERT_EQ(clusters[i].Span, i);
}

TEST_F(TextTest, WithoutAnyFontTextIsBlank) {
    const TConfigurationFile none("");
    SetFontConfiguration(none.GetName());
    TTextStyle style;
    style.Size = 10;
    const auto clusters = Shape("2e\u0301\u05D0\n\xFF", style);
    EXPECT_EQ(GetOrder(clusters), "0-1 1-4 4-6 6-7 7-8");
    for (const TCluster& cluster : clusters) {
        EXPECT_EQ(cluster.Advance, 5);
        EXPECT_TRUE(cluster.Outline.IsEmpty());
    }
    EXPECT_EQ(GetFontMetrics(style).Ascent, 8);
    SetUp();
    EXPECT_NEAR(GetWidth(Shape("2", style)), Digit * 10, 1e-9);
}

TEST_F(TextTest, AConfigurationThatCannotBeReadChangesNothing) {
    const TConfigurationFile broken("<dir>");
    EXPECT_THROW(SetFontConfiguration(broken.GetName()), EReadError);
    EXPECT_THROW(SetFontConfiguration("/no/such/file.conf"), EReadError);
    EXPECT_NEAR(GetWidth(Shape("2")), 572, 1e-9);
}

TEST_F(TextTest, AConfigurationOfOnesOwnCanBeUsed) {
    SetFontConfiguration(TConfigurationFile("").GetName());
    EXPECT_TRUE(Shape("2").front().Outline.IsEmpty());
    SetFontConfiguration(TConfigurationFile("<dir>" + FontFolder.string() + "</dir>").GetName());
    EXPECT_FALSE(Shape("2").front().Outline.IsEmpty());
    EXPECT_NEAR(GetWidth(Shape("2")), 572, 1e-9);
}

TEST_F(TextTest, ThreadsMayShapeAtOnce) {
    std::vector<std::thread> threads;
    std::vector<double> widths(4);
    for (std::size_t t = 0; t < widths.size(); ++t)
        threads.emplace_back([&widths, t] {
            for (int i = 0; i < 200; ++i)
                widths[t] += GetWidth(Shape(std::to_string(1000 + i)));
        });
    for (std::thread& thread : threads)
        thread.join();
    for (double width : widths)
        EXPECT_NEAR(width, 200 * 4 * 572, 1e-6);
}

} // namespace
