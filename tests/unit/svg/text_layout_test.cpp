#include "tavro/svg/text/Layout.h"

#include "tavro/svg/model/Document.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using namespace Vz;

// Of the tests' font, in em.
constexpr double Digit = 0.572;
constexpr double Blank = 0.26;
constexpr double Ascent = 1.069;
constexpr double Descent = 0.293;

/// A document with one text of id "t" in a font of 10 units, and its layout.
class TLaidOut {
public:
    explicit TLaidOut(const std::string& content) {
        FDocument.LoadFromText(
            "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 200 100\" font-size=\"10\">" + content +
            "</svg>");
        const auto* const text = FDocument.Find<TSVGCustomText>("t");
        const TComputedStyle style = text->GetComputedStyle();
        Layout = LayOutText(*text, style, BasisOf(style, 200, 100));
    }
    std::size_t Count() const { return Layout.Pieces.size(); }
    TRectD Bounds(std::size_t piece) const { return Layout.Pieces.at(piece).Outline.Bounds(); }
    const std::string& Owner(std::size_t piece) const { return Layout.Pieces.at(piece).Element->GetId(); }
    TVZGPColor Fill(std::size_t piece) const { return Layout.Pieces.at(piece).Style.Fill.Color; }

    TTextLayout Layout;

private:
    TSVGDocument FDocument;
};

TLaidOut Text(const std::string& attributes, const std::string& content) {
    return TLaidOut("<text id=\"t\" " + attributes + ">" + content + "</text>");
}

void ExpectRect(const TRectD& rect, const TRectD& expected, double tolerance = 1e-3) {
    EXPECT_NEAR(rect.Left, expected.Left, tolerance);
    EXPECT_NEAR(rect.Top, expected.Top, tolerance);
    EXPECT_NEAR(rect.Right, expected.Right, tolerance);
    EXPECT_NEAR(rect.Bottom, expected.Bottom, tolerance);
}

/// Two layouts that look the same, however their pieces are cut.
void ExpectSame(const TLaidOut& a, const TLaidOut& b, double tolerance = 1e-3) {
    TFigures all[2];
    for (const TTextPiece& piece : a.Layout.Pieces)
        all[0].Append(piece.Outline);
    for (const TTextPiece& piece : b.Layout.Pieces)
        all[1].Append(piece.Outline);
    ASSERT_EQ(all[0].Verbs, all[1].Verbs);
    ASSERT_FALSE(all[0].IsEmpty());
    for (std::size_t i = 0; i < all[0].Numbers.size(); ++i)
        ASSERT_NEAR(all[0].Numbers[i], all[1].Numbers[i], tolerance) << "number " << i;
}

double Width(const std::string& attributes, const std::string& content) {
    return Text(attributes, content).Layout.Box.Width();
}

// White space

TEST(TextLayout, CollapsesBlanksOverTheSeamsOfElements) {
    const double width = 30 * Digit + 20 * Blank;
    EXPECT_NEAR(Width("", " \n 1 \t<tspan> 2\n\n</tspan>  3  "), width, 1e-3);
    EXPECT_NEAR(Width("", "1<tspan> </tspan> <tspan> 2 3</tspan> "), width, 1e-3);
}

TEST(TextLayout, MakesALineEndABlank) { EXPECT_NEAR(Width("", "1\n2"), 20 * Digit + 10 * Blank, 1e-3); }

TEST(TextLayout, PreservesBlanksOnWish) {
    EXPECT_NEAR(Width("xml:space=\"preserve\"", " 1\n\t2 "), 20 * Digit + 40 * Blank, 1e-3);
    EXPECT_NEAR(Width("", "1<tspan xml:space=\"preserve\">   </tspan>2"), 20 * Digit + 30 * Blank, 1e-3);
}

TEST(TextLayout, ShowsNothingForBlanksOrNothing) {
    EXPECT_EQ(Text("", "  \n ").Count(), 0u);
    EXPECT_TRUE(Text("", "").Layout.Box.IsEmpty());
}

// Pieces and boxes

TEST(TextLayout, BoxIsTheUnionOfTheCells) {
    ExpectRect(Text("x=\"5\" y=\"20\"", "12").Layout.Box,
               {5, 20 - 10 * Ascent, 5 + 20 * Digit, 20 + 10 * Descent});
}

TEST(TextLayout, MakesOnePieceForEachStretchOfAnElement) {
    const TLaidOut text = Text("", "1<tspan id=\"a\" fill=\"red\">23</tspan>4<tspan id=\"b\"/>5");
    ASSERT_EQ(text.Count(), 3u);
    EXPECT_EQ(text.Owner(0), "t");
    EXPECT_EQ(text.Owner(1), "a");
    EXPECT_EQ(text.Owner(2), "t");
    EXPECT_EQ(text.Fill(1), 0xFFFF0000u);
    EXPECT_GT(text.Bounds(1).Left, 10 * Digit);
    EXPECT_LT(text.Bounds(1).Right, 30 * Digit);
    EXPECT_GT(text.Bounds(2).Left, 30 * Digit);
    EXPECT_EQ(Text("x=\"1 2 3 4\"", "1234").Count(), 1u);
}

TEST(TextLayout, LeavesOutWhatIsNotDisplayed) {
    ExpectSame(Text("x=\"1 30 60\"", "1<tspan display=\"none\">99<tspan>9</tspan></tspan>23"),
               Text("x=\"1 30 60\"", "123"));
    ExpectSame(Text("", "1<tspan requiredExtensions=\"http://example.org/none\">9</tspan>2"), Text("", "12"));
}

TEST(TextLayout, HiddenTextTakesItsSpace) {
    const TLaidOut text = Text("", "1<tspan visibility=\"hidden\">2</tspan>3");
    ASSERT_EQ(text.Count(), 3u);
    EXPECT_EQ(text.Layout.Pieces[1].Style.Visibility, TKeyword::Hidden);
    EXPECT_GT(text.Bounds(2).Left, 20 * Digit);
}

TEST(TextLayout, LinksBehaveAsSpans) {
    const TLaidOut text = Text("", "1<a id=\"link\" dx=\"7\">2</a>");
    ASSERT_EQ(text.Count(), 2u);
    EXPECT_EQ(text.Owner(1), "link");
}

TEST(TextLayout, ASizeOfZeroShowsNothing) {
    EXPECT_EQ(Text("font-size=\"0\"", "123").Count(), 0u);
    EXPECT_NEAR(Width("", "1<tspan font-size=\"0\">23</tspan>4"), 20 * Digit, 1e-3);
}

// Positions

TEST(TextLayout, ListsGoToOneCharacterEach) {
    ExpectSame(Text("x=\"10 50\" y=\"20 30 40\"", "1234"),
               TLaidOut("<text id=\"t\"><tspan x=\"10\" y=\"20\">1</tspan><tspan x=\"50\" y=\"30\">2</tspan>"
                        "<tspan y=\"40\">34</tspan></text>"));
}

TEST(TextLayout, InnerListsGoBeforeOuterOnes) {
    ExpectSame(Text("x=\"10 20 30 40\"", "1<tspan x=\"100\">23</tspan>4"),
               Text("x=\"10 100 30 40\"", "1234"));
    ExpectSame(Text("dx=\"1 2 3 4\"", "1<tspan dx=\"9\">23</tspan>4"), Text("dx=\"1 9 3 4\"", "1234"));
}

TEST(TextLayout, ShiftsAddUp) {
    ExpectSame(
        Text("dx=\"5 0 3\" dy=\"1 2\"", "123"),
        TLaidOut(
            "<text id=\"t\"><tspan x=\"5\" y=\"1\">1</tspan><tspan y=\"3\">2</tspan><tspan dx=\"3\">3</tspan>"
            "</text>"));
}

TEST(TextLayout, CountsCharactersAfterWhiteSpaceInCodePoints) {
    ExpectSame(Text("x=\"10 20 30\"", "  \n 1 &#xe9;"), Text("x=\"10 20 30\"", "1 \xC3\xA9"));
    // The mark belongs to its letter, but has a place in the list.
    ExpectSame(Text("x=\"10 70 30\"", "e&#x301;1"),
               TLaidOut("<text id=\"t\" x=\"10\">e&#x301;<tspan x=\"30\">1</tspan></text>"));
}

TEST(TextLayout, ResolvesPercentagesAndFontUnits) {
    ExpectSame(Text("x=\"10%\" y=\"10%\" dx=\"2em\"", "1"), Text("x=\"40\" y=\"10\"", "1"));
}

TEST(TextLayout, TheLastRotationRepeats) {
    ExpectSame(Text("x=\"10 30 50\" rotate=\"15 40\"", "123"),
               Text("x=\"10 30 50\" rotate=\"15 40 40\"", "123"));
    ExpectSame(Text("rotate=\"15 40 5\"", "1<tspan rotate=\"90\">23</tspan>4"),
               Text("rotate=\"15 90 90 5\"", "1234"));
}

TEST(TextLayout, RotatesAboutTheGlyphsOrigin) {
    const TRectD flat = Text("", "1").Bounds(0);
    const TRectD turned = Text("x=\"50\" y=\"50\" rotate=\"90\"", "1").Bounds(0);
    ExpectRect(turned, {50 - flat.Bottom, 50 + flat.Left, 50 - flat.Top, 50 + flat.Right});
}

TEST(TextLayout, DropsWhatIsNotFinite) {
    const TLaidOut text =
        Text("x=\"1e308\" dx=\"1e308 1e308\" font-size=\"1e300\" letter-spacing=\"1e308\"", "123");
    for (const TTextPiece& piece : text.Layout.Pieces)
        for (const double number : piece.Outline.Numbers)
            EXPECT_TRUE(std::isfinite(number));
}

// Anchors and spacing

TEST(TextLayout, AnchorsEachChunk) {
    ExpectSame(
        Text("x=\"50 100\" text-anchor=\"middle\"", "123"),
        Text("x=\"" + std::to_string(50 - 5 * Digit) + " " + std::to_string(100 - 10 * Digit) + "\"", "123"));
    ExpectSame(Text("x=\"50\" text-anchor=\"end\"", "123"),
               Text("x=\"" + std::to_string(50 - 30 * Digit) + "\"", "123"));
}

TEST(TextLayout, AnchorsWithShiftsInside) {
    ExpectSame(Text("x=\"50\" text-anchor=\"end\" dx=\"4 6\"", "12"),
               Text("x=\"" + std::to_string(54 - 20 * Digit - 6) + "\" dx=\"0 6\"", "12"));
}

TEST(TextLayout, DirectionTurnsTheAnchorRound) {
    ExpectSame(Text("x=\"50\" direction=\"rtl\"", "12"), Text("x=\"50\" text-anchor=\"end\"", "12"));
    ExpectSame(Text("x=\"50\" direction=\"rtl\" text-anchor=\"end\"", "12"), Text("x=\"50\"", "12"));
}

TEST(TextLayout, AnchoringLeavesOutTheLastLetterSpacing) {
    EXPECT_NEAR(Text("x=\"50\" text-anchor=\"end\" letter-spacing=\"4\"", "12").Layout.Box.Right, 50, 1e-3);
    EXPECT_NEAR(Text("x=\"50\" text-anchor=\"end\" letter-spacing=\"4\"", "12").Layout.Box.Left,
                46 - 20 * Digit, 1e-3);
}

TEST(TextLayout, SpacesLettersAndWords) {
    EXPECT_NEAR(Width("letter-spacing=\"2\"", "123"), 30 * Digit + 4, 1e-3);
    EXPECT_NEAR(Width("letter-spacing=\"-3\"", "123"), 30 * Digit - 6, 1e-3);
    EXPECT_NEAR(Width("word-spacing=\"5\"", "1 2 3"), 30 * Digit + 20 * Blank + 10, 1e-3);
    EXPECT_NEAR(Width("letter-spacing=\"1em\" word-spacing=\"5\"", "1 2"), 20 * Digit + 10 * Blank + 25,
                1e-3);
}

TEST(TextLayout, OverridesTheOrderOnWish) {
    ExpectSame(Text("x=\"10\"", "<tspan unicode-bidi=\"bidi-override\" direction=\"rtl\">12</tspan>"),
               Text("x=\"10\"", "21"));
    ExpectSame(Text("x=\"10\"", "1<tspan direction=\"rtl\">23</tspan>"), Text("x=\"10\"", "123"));
}

TEST(TextLayout, TextLengthSpaces) {
    ExpectSame(Text("textLength=\"60\"", "123"),
               Text("letter-spacing=\"" + std::to_string((60 - 30 * Digit) / 2) + "\"", "123"));
    EXPECT_NEAR(Width("textLength=\"60\"", "1 2<tspan dx=\"5\">3</tspan>"), 60, 1e-3);
    EXPECT_NEAR(Width("textLength=\"60\"", "1"), 10 * Digit, 1e-3); // nothing to part
}

TEST(TextLayout, TextLengthStretches) {
    const std::string twice = std::to_string(60 * Digit);
    TLaidOut expected = Text("", "123");
    expected.Layout.Pieces.at(0).Outline.Transform(TAffine::Scaling(2, 1));
    ExpectSame(Text("textLength=\"" + twice + "\" lengthAdjust=\"spacingAndGlyphs\"", "123"), expected);
    EXPECT_EQ(Text("textLength=\"0\" lengthAdjust=\"spacingAndGlyphs\"", "123").Layout.Box.Width(), 0);
}

TEST(TextLayout, AnInnerLengthIsOnePieceOfTheOuterOne) {
    const TLaidOut text = Text("textLength=\"100\"", "1<tspan textLength=\"40\">23</tspan>4");
    EXPECT_NEAR(text.Layout.Box.Width(), 100, 1e-3);
    // The inner piece keeps its length: 40 from the left edge of the 2 to the right edge of the 3.
    const TLaidOut inner = Text("textLength=\"40\"", "23");
    EXPECT_NEAR(text.Bounds(1).Width(), inner.Bounds(0).Width(), 1e-3);
}

TEST(TextLayout, AnchorsTheAdjustedLength) {
    ExpectRect(Text("x=\"100\" textLength=\"60\" text-anchor=\"middle\"", "123").Layout.Box,
               {70, -10 * Ascent, 130, 10 * Descent});
}

// Base lines

TEST(TextLayout, ShiftsAddUpThroughNestedElements) {
    const auto top = [](const std::string& content) {
        const TLaidOut text = Text("", content);
        return text.Bounds(text.Count() - 1).Bottom;
    };
    const double flat = top("1");
    EXPECT_NEAR(top("<tspan baseline-shift=\"3\">1</tspan>"), flat - 3, 1e-3);
    EXPECT_NEAR(top("<tspan baseline-shift=\"20%\">1</tspan>"), flat - 2, 1e-3);
    EXPECT_NEAR(top("<tspan baseline-shift=\"3\">1<tspan baseline-shift=\"-1\">1</tspan></tspan>"), flat - 2,
                1e-3);
    EXPECT_NEAR(top("<tspan baseline-shift=\"super\">1</tspan>"), flat - 3.5, 1e-3);
    EXPECT_NEAR(top("<tspan baseline-shift=\"sub\">1</tspan>"), flat + 0.75, 1e-3);
}

TEST(TextLayout, ATextItselfIsNotShifted) { ExpectSame(Text("baseline-shift=\"5\"", "1"), Text("", "1")); }

TEST(TextLayout, AlignsToBaseLines) {
    const double flat = Text("", "1").Bounds(0).Bottom;
    const auto bottom = [](const std::string& word) {
        return Text("dominant-baseline=\"" + word + "\"", "1").Bounds(0).Bottom;
    };
    EXPECT_NEAR(bottom("text-before-edge"), flat + 10 * Ascent, 1e-3);
    EXPECT_NEAR(bottom("text-after-edge"), flat - 10 * Descent, 1e-3);
    EXPECT_NEAR(bottom("central"), flat + 5 * (Ascent - Descent), 1e-3);
    EXPECT_NEAR(bottom("middle"), flat + 5 * 0.536, 1e-3);
    EXPECT_NEAR(bottom("alphabetic"), flat, 1e-3);
    ExpectSame(Text("dominant-baseline=\"middle\"", "1<tspan dominant-baseline=\"no-change\">2</tspan>"),
               Text("dominant-baseline=\"middle\"", "12"));
    const TLaidOut aligned =
        Text("dominant-baseline=\"middle\"", "<tspan alignment-baseline=\"hanging\">1</tspan>");
    EXPECT_NEAR(aligned.Bounds(0).Bottom, flat + 8 * Ascent, 1e-3);
}

// Decorations

TEST(TextLayout, DrawsLinesInTheStyleOfWhoDeclaresThem) {
    const TLaidOut text = Text("text-decoration=\"underline line-through\" fill=\"red\"",
                               "<tspan id=\"s\" fill=\"blue\">12</tspan>");
    ASSERT_EQ(text.Count(), 3u);
    EXPECT_EQ(text.Owner(0), "t");
    EXPECT_EQ(text.Fill(0), 0xFFFF0000u);
    EXPECT_EQ(text.Fill(1), 0xFF0000FFu);
    EXPECT_EQ(text.Fill(2), 0xFFFF0000u);
    ExpectRect(text.Bounds(0), {0, 0.75, 20 * Digit, 1.25});
    ExpectRect(text.Bounds(2), {0, -3.47, 20 * Digit, -2.97});
}

TEST(TextLayout, OverlinesLieOnTheAscent) {
    const TLaidOut text = Text("text-decoration=\"overline\"", "1 2");
    ASSERT_EQ(text.Count(), 2u);
    ExpectRect(text.Bounds(0), {0, -10 * Ascent - 0.25, 20 * Digit + 10 * Blank, -10 * Ascent + 0.25});
}

TEST(TextLayout, DecorationOutsideOfTheTextCounts) {
    const TLaidOut text("<g text-decoration=\"underline\"><text id=\"t\">1</text></g>");
    ASSERT_EQ(text.Count(), 2u);
    EXPECT_EQ(text.Owner(0), "t");
}

TEST(TextLayout, LinesFollowTurnedGlyphs) {
    const TLaidOut text = Text("text-decoration=\"underline\" rotate=\"90\"", "12");
    ASSERT_EQ(text.Count(), 2u);
    EXPECT_NEAR(text.Bounds(0).Left, -1.25, 1e-3);
    EXPECT_NEAR(text.Bounds(0).Right, 10 * Digit - 0.75, 1e-3);
    EXPECT_NEAR(text.Bounds(0).Bottom, 10 * Digit, 1e-3);
}

TEST(TextLayout, LinesGoOnThroughSpacingButNotToAnotherChunk) {
    ExpectRect(Text("text-decoration=\"underline\" letter-spacing=\"5\"", "12").Bounds(0),
               {0, 0.75, 5 + 20 * Digit, 1.25});
    const TLaidOut two = Text("text-decoration=\"underline\" x=\"0 50\"", "12");
    EXPECT_EQ(two.Layout.Pieces[0].Outline.Verbs.size(), 2 * 5u);
}

// Text on a path

const std::string Line = "<defs><path id=\"p\" d=\"M20 50H120\"/></defs>";

TLaidOut OnPath(const std::string& path, const std::string& attributes, const std::string& content,
                const std::string& text = {}) {
    return TLaidOut(path + "<text id=\"t\" " + text + "><textPath href=\"#p\" " + attributes + ">" + content +
                    "</textPath></text>");
}

TEST(TextLayout, RunsAlongAStraightPathAsOnALine) {
    ExpectSame(OnPath(Line, "", "123"), Text("x=\"20\" y=\"50\"", "123"));
    ExpectSame(OnPath(Line, "startOffset=\"10\"", "123"), Text("x=\"30\" y=\"50\"", "123"));
    ExpectSame(OnPath(Line, "startOffset=\"25%\"", "123"), Text("x=\"45\" y=\"50\"", "123"));
    ExpectSame(OnPath(Line, "startOffset=\"50%\" text-anchor=\"middle\"", "123"),
               Text("x=\"70\" y=\"50\" text-anchor=\"middle\"", "123"));
    ExpectSame(OnPath(Line, "startOffset=\"100%\" text-anchor=\"end\"", "123"),
               Text("x=\"120\" y=\"50\" text-anchor=\"end\"", "123"));
}

TEST(TextLayout, ShiftsAlongAndAcrossThePath) {
    const std::string down = "<path id=\"p\" d=\"M50 0V90\"/>";
    const TLaidOut text = OnPath(down, "", "<tspan dx=\"10\" dy=\"4\">1</tspan>");
    const TRectD flat = Text("", "1").Bounds(0);
    ExpectRect(text.Bounds(0), {46 - flat.Bottom, 10 + flat.Left, 46 - flat.Top, 10 + flat.Right});
}

TEST(TextLayout, AbsolutePositionsCountAlongThePathOnly) {
    ExpectSame(OnPath(Line, "", "123", "x=\"7\" y=\"99\""), Text("x=\"27\" y=\"50\"", "123"));
    ExpectSame(OnPath(Line, "", "1<tspan x=\"40\" y=\"9\">2</tspan>3"), Text("x=\"20 60\" y=\"50\"", "123"));
    ExpectSame(OnPath(Line, "x=\"7\" y=\"99\"", "123"),
               Text("x=\"20\" y=\"50\"", "123")); // has no such lists
}

TEST(TextLayout, GlyphsBeyondTheEndsAreNotDrawn) {
    const std::string path = "<path id=\"p\" d=\"M0 50h" + std::to_string(25 * Digit - 0.01) + "\"/>";
    ExpectSame(OnPath(path, "", "1234"), Text("y=\"50\"", "12")); // the middle of the 3 is beyond
    EXPECT_EQ(OnPath(path, "startOffset=\"9999\"", "1234").Count(), 0u);
    ExpectSame(OnPath(Line, "text-anchor=\"middle\"", "1234"), Text("x=\"20\" y=\"50\"", "34"));
}

TEST(TextLayout, ScalesOffsetsByThePathLength) {
    const std::string path = "<path id=\"p\" d=\"M20 50H120\" pathLength=\"10\"/>";
    ExpectSame(OnPath(path, "startOffset=\"4\"", "1"), Text("x=\"60\" y=\"50\"", "1"));
    ExpectSame(OnPath(path, "startOffset=\"40%\"", "1"), Text("x=\"60\" y=\"50\"", "1"));
}

TEST(TextLayout, ThePathsOwnTransformApplies) {
    const std::string path = "<g transform=\"scale(9)\"><path id=\"p\" d=\"M0 0H50\" "
                             "transform=\"translate(20 50) scale(2)\"/></g>";
    ExpectSame(OnPath(path, "startOffset=\"50%\"", "1"), Text("x=\"70\" y=\"50\"", "1"));
}

TEST(TextLayout, RunsAlongBasicShapes) {
    const std::string rect = "<rect id=\"p\" x=\"20\" y=\"50\" width=\"60\" height=\"30\"/>";
    ExpectSame(OnPath(rect, "", "123"), Text("x=\"20\" y=\"50\"", "123"));
}

TEST(TextLayout, APathThatIsNotThereShowsNothing) {
    EXPECT_EQ(TLaidOut("<text id=\"t\"><textPath href=\"#none\">123</textPath></text>").Count(), 0u);
    EXPECT_EQ(TLaidOut("<g id=\"p\"/><text id=\"t\"><textPath href=\"#p\">123</textPath></text>").Count(),
              0u);
    EXPECT_EQ(OnPath("<path id=\"p\" d=\"\"/>", "", "123").Count(), 0u);
    EXPECT_EQ(TLaidOut("<text id=\"t\">1<textPath href=\"#none\">23</textPath>4</text>").Count(), 1u);
}

TEST(TextLayout, WhatFollowsContinuesAtTheTextsEnd) {
    ExpectSame(TLaidOut(Line + "<text id=\"t\">1<textPath href=\"#p\">23</textPath>4</text>"),
               Text("", "1<tspan x=\"20\" y=\"50\">23</tspan>4"));
}

TEST(TextLayout, AClosedPathGoesOnBehindItsSeam) {
    const std::string square = "<path id=\"p\" d=\"M0 0H40V40H0z\"/>";
    const TLaidOut text = OnPath(square, "text-anchor=\"middle\"", "12", "letter-spacing=\"10\"");
    ASSERT_EQ(text.Count(), 1u);
    // The 1 stands before the seam, on the side that runs up; the 2 behind it, on the side that runs right.
    const TRectD box = text.Bounds(0);
    EXPECT_LT(box.Left, -5);
    EXPECT_GT(box.Bottom, 5);
    EXPECT_LT(box.Top, -5);
    EXPECT_GT(box.Right, 5);
    // From its start on, a text runs round once.
    EXPECT_EQ(OnPath(square, "", "1", "dx=\"161\"").Count(), 0u);
}

/// A circle about (100, 50), drawn twice round clockwise from the upper left.
std::string TwiceRound(double r) {
    const double d = r * std::numbers::sqrt2 / 2;
    const auto corner = [&](int i) { // 0 at the upper left, clockwise
        return std::to_string(i % 4 == 1 || i % 4 == 2 ? 100 + d : 100 - d) + " " +
               std::to_string(i % 4 >= 2 ? 50 + d : 50 - d);
    };
    std::string text = "<path id=\"p\" d=\"M" + corner(0);
    for (int i = 1; i <= 8; ++i)
        text += "A" + std::to_string(r) + " " + std::to_string(r) + " 0 0 1 " + corner(i);
    return text + "\"/>";
}

TEST(TextLayout, LabelsStandAroundACircleThatIsDrawnTwice) {
    const auto label = [](double angleDeg) {
        const double offset = angleDeg / 360 * 50 + 6.25;
        return OnPath(TwiceRound(40),
                      "text-anchor=\"middle\" startOffset=\"" + std::to_string(offset) + "%\"", "120");
    };
    const TLaidOut first = label(0);
    ASSERT_EQ(first.Count(), 1u);
    // The middle letter stands upright at the top, its middle over the circle's.
    const TLaidOut upright = Text("x=\"100\" y=\"10\" text-anchor=\"middle\"", "120");
    EXPECT_NEAR((first.Layout.Box.Left + first.Layout.Box.Right) / 2, 100, 1e-3);
    EXPECT_NEAR(first.Layout.Box.Top, upright.Layout.Box.Top, 1e-3);
    for (int i = 1; i < 12; ++i) {
        const TLaidOut turned = label(i * 30);
        TLaidOut expected = label(0);
        const double angle = i * std::numbers::pi / 6;
        expected.Layout.Pieces.at(0).Outline.Transform(TAffine::Translation(-100, -50)
                                                           .Then(TAffine::Rotation(angle))
                                                           .Then(TAffine::Translation(100, 50)));
        ExpectSame(turned, expected, 2e-3);
    }
}

TEST(TextLayout, DecorationBendsWithThePath) {
    const TLaidOut text = OnPath(TwiceRound(40), "startOffset=\"6.25%\" text-anchor=\"middle\"", "120",
                                 "text-decoration=\"underline\"");
    ASSERT_EQ(text.Count(), 2u);
    // An underline lies between the radii 40 - 1.25 and 40 - 0.75 everywhere.
    const auto& line = text.Layout.Pieces[0].Outline;
    ASSERT_FALSE(line.Numbers.empty());
    for (std::size_t i = 0; i + 1 < line.Numbers.size(); i += 2) {
        const double radius = std::hypot(line.Numbers[i] - 100, line.Numbers[i + 1] - 50);
        EXPECT_TRUE(std::abs(radius - 38.75) < 1e-3 || std::abs(radius - 39.25) < 1e-3) << radius;
    }
}

// Vertical lines

TEST(TextLayout, TurnsLettersInVerticalLines) {
    const double middle = 5 * (Ascent - Descent);
    const TRectD flat = Text("", "12").Bounds(0);
    ExpectRect(Text("x=\"50\" y=\"20\" writing-mode=\"tb\"", "12").Bounds(0),
               {50 - middle - flat.Bottom, 20 + flat.Left, 50 - middle - flat.Top, 20 + flat.Right});
    ExpectSame(Text("x=\"50\" y=\"20\" writing-mode=\"vertical-rl\" text-anchor=\"middle\"", "12"),
               Text("x=\"50\" y=\"" + std::to_string(20 - 10 * Digit) + "\" writing-mode=\"tb\"", "12"));
}

TEST(TextLayout, SetsIdeographsUprightInSquares) {
    const TRectD box = Text("x=\"50\" y=\"20\" writing-mode=\"tb\"", "&#x65e5;&#x672c;").Layout.Box;
    ExpectRect(box, {45, 20, 55, 40});
}

TEST(TextLayout, TheWritingModeOfTheTextCounts) {
    ExpectSame(Text("", "<tspan writing-mode=\"tb\">12</tspan>"), Text("", "12"));
}

// Bounds

TEST(TextLayout, ManyCharactersStayOnePiece) {
    std::string content;
    std::string list;
    for (int i = 0; i < 20'000; ++i) {
        content += static_cast<char>('0' + i % 10);
        list += "1 ";
    }
    const TLaidOut text = Text("dx=\"" + list + "\"", content);
    EXPECT_EQ(text.Count(), 1u);
    EXPECT_NEAR(text.Layout.Box.Width(), 20'000 * 10 * Digit + 19'999, 1);
}

} // namespace
