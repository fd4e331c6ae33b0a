#include "tavro/svg/model/Element.h"

#include "DocumentScene.h"

#include <gtest/gtest.h>

namespace Vz::Test {
namespace {

TRectF BoundsOf(std::string_view content, const TMatrix& matrix = {}, std::string_view id = "e") {
    const auto document = LoadContent(content);
    return document->Find<TSVGGraphicElement>(id)->GetBounds(matrix);
}

void ExpectNear(const TRectF& actual, const TRectF& expected, float tolerance = 1e-3f) {
    EXPECT_NEAR(actual.Left, expected.Left, tolerance);
    EXPECT_NEAR(actual.Top, expected.Top, tolerance);
    EXPECT_NEAR(actual.Right, expected.Right, tolerance);
    EXPECT_NEAR(actual.Bottom, expected.Bottom, tolerance);
}

TEST(Bounds, SurroundTheFill) {
    EXPECT_EQ(BoundsOf("<rect id='e' x='10' y='20' width='30' height='40' stroke='red' stroke-width='9'/>"),
              (TRectF{10, 20, 40, 60}))
        << "not the stroke";
    ExpectNear(BoundsOf("<circle id='e' cx='50' cy='40' r='10'/>"), {40, 30, 60, 50});
    ExpectNear(BoundsOf("<path id='e' d='M0 0C0 40 100 40 100 0'/>"),
               {0, 0, 100, 30}); // the curve, not its handles
    ExpectNear(BoundsOf("<path id='e' d='M0 10A10 10 0 0 1 20 10'/>"), {0, 0, 20, 10});
    EXPECT_EQ(BoundsOf("<line id='e' x1='5' y1='6' x2='7' y2='6'/>"), (TRectF{5, 6, 7, 6}));
    EXPECT_EQ(BoundsOf("<polygon id='e' points='1 2 3 9 5 4'/>"), (TRectF{1, 2, 5, 9}));
    EXPECT_EQ(BoundsOf("<rect id='e' width='9' height='9' fill='none' visibility='hidden'/>"),
              (TRectF{0, 0, 9, 9}));
}

TEST(Bounds, OfNothingAreZero) {
    EXPECT_EQ(BoundsOf("<g id='e'/>"), (TRectF{}));
    EXPECT_EQ(BoundsOf("<path id='e'/>"), (TRectF{}));
    EXPECT_EQ(BoundsOf("<g id='e'><rect x='5' display='none' width='9' height='9'/></g>"), (TRectF{}));
    EXPECT_EQ(BoundsOf("<g id='e'><clipPath><rect width='9' height='9'/></clipPath><defs><rect width='9' "
                       "height='9'/></defs></g>"),
              (TRectF{}));
}

TEST(Bounds, AreUnderTheMatrix) {
    const std::string_view rect = "<rect id='e' x='10' y='20' width='30' height='40'/>";
    ExpectNear(BoundsOf(rect, CreateScaleVZMatrix(2, 3)), {20, 60, 80, 180});
    ExpectNear(BoundsOf(rect, CreateTranslateVZMatrix(5, -5)), {15, 15, 45, 55});
    ExpectNear(BoundsOf(rect, CreateRotationVZMatrix({0, 0}, 1.5707963f)), {-60, 10, -20, 40});
}

TEST(Bounds, IncludeTheOwnTransform) {
    ExpectNear(BoundsOf("<rect id='e' width='10' height='20' transform='translate(5 6)'/>"), {5, 6, 15, 26});
    ExpectNear(BoundsOf("<rect id='e' width='10' height='20' transform='translate(5 6)'/>",
                        CreateScaleVZMatrix(2, 2)),
               {10, 12, 30, 52});
    ExpectNear(
        BoundsOf("<g transform='scale(7)'><rect id='e' width='10' height='20' transform='rotate(90)'/></g>"),
        {-20, 0, 0, 10}); // the parent's does not count
    ExpectNear(BoundsOf("<circle id='e' r='10' transform='rotate(45)'/>"), {-10, -10, 10, 10});
}

TEST(Bounds, TakeAllBelowIn) {
    ExpectNear(BoundsOf("<g id='e' transform='scale(2)'><rect x='1' y='1' width='2' height='2'/><g "
                        "transform='translate(10)'>"
                        "<circle r='1'/></g><g display='none'><rect width='99' height='99'/></g></g>"),
               {2, -2, 22, 6});
    ExpectNear(
        BoundsOf("<switch id='e'><rect systemLanguage='fr' width='9' height='9'/><rect width='5' height='5'/>"
                 "<rect width='99' height='99'/></switch>"),
        {0, 0, 5, 5});
    EXPECT_EQ(BoundsOf("<switch id='e'><rect display='none' width='9' height='9'/><rect width='5' "
                       "height='5'/></switch>"),
              (TRectF{}))
        << "the first is chosen, as in the picture";
}

TEST(Bounds, FollowReferences) {
    ExpectNear(BoundsOf("<defs><rect id='r' x='1' width='10' height='10'/></defs><use id='e' href='#r' x='5' "
                        "y='6' transform='scale(2)'/>"),
               {12, 12, 32, 32});
    ExpectNear(BoundsOf("<symbol id='s' viewBox='0 0 10 10'><rect width='5' height='10'/></symbol>"
                        "<use id='e' href='#s' x='10' width='20' height='20'/>"),
               {10, 0, 20, 20});
    EXPECT_EQ(BoundsOf("<g id='e'><use href='#e'/></g>"), (TRectF{}));
}

TEST(Bounds, TakeRelativeLengths) {
    ExpectNear(BoundsOf("<g font-size='10'><rect id='e' x='10%' width='2em' height='25%'/></g>"),
               {10, 0, 30, 25});
}

TEST(Bounds, OfTextSurroundItsGlyphs) {
    const TRectF box = BoundsOf("<text id='e' x='10' y='50' font-size='20'>HH</text>");
    EXPECT_NEAR(box.Left, 10, 2);
    EXPECT_GT(box.Right, 30);
    EXPECT_LT(box.Right, 50);
    EXPECT_LT(box.Top, 40);
    EXPECT_GE(box.Bottom, 50);
    EXPECT_EQ(BoundsOf("<text id='e' x='10' y='50'/>"), (TRectF{}));
}

TEST(Bounds, OfTheDocumentAreInItsUnits) {
    const auto document = LoadContent("<rect x='1' y='2' width='3' height='4'/>",
                                      "width='100' height='100' viewBox='0 0 10 10'");
    ExpectNear(document->GetBounds(), {1, 2, 4, 6});
}

TEST(Bounds, UnderAMatrixThatIsNotFiniteDoNoHarm) {
    const auto document = LoadContent("<rect id='e' width='30' height='40'/>");
    const auto& element = *document->Find<TSVGGraphicElement>("e");
    for (const float number : {NoNumber, Endless})
        EXPECT_EQ(element.GetBounds({number, 0, 0, 0, 1, 0, 0, 0, 1}), (TRectF{})) << number;
    ExpectNear(element.GetBounds(), {0, 0, 30, 40});
}

} // namespace
} // namespace Vz::Test
