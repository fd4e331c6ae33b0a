#include "tavro/svg/model/Document.h"

#include "DocumentScene.h"

#include <gtest/gtest.h>

namespace Vz::Test {
namespace {

/// The id of what lies at the point; "" where nothing does.
std::string Hit(const TSVGDocument& document, float x, float y) {
    const TSVGGraphicElement* const element = document.ElementAt({x, y});
    return element ? element->GetId() : std::string();
}

std::string Hit(std::string_view content, float x = 50, float y = 50) {
    return Hit(*LoadContent(content), x, y);
}

TEST(HitTest, FindsTheTopmostElement) {
    const auto document =
        LoadContent("<rect id='low' width='100' height='100'/><circle id='high' cx='50' cy='50' r='20'/>");
    EXPECT_EQ(Hit(*document, 50, 50), "high");
    EXPECT_EQ(Hit(*document, 5, 5), "low");
    EXPECT_EQ(Hit(*document, 36, 36), "high") << "just inside of the circle";
    EXPECT_EQ(Hit(*document, 35, 35), "low") << "just outside";
    EXPECT_EQ(Hit(*document, 101, 50), "");
    EXPECT_EQ(Hit(*document, -1, 50), "");
}

TEST(HitTest, FindsTheShapeNotItsGroup) {
    EXPECT_EQ(Hit("<g id='g'><rect id='r' width='100' height='100'/></g>"), "r");
}

TEST(HitTest, FindsTheUseThroughWhichAnElementIsDrawn) {
    const auto document = LoadContent(
        "<defs><g id='g'><rect id='r' width='20' height='20'/></g><use id='inner' href='#g'/></defs>"
        "<use id='outer' href='#inner' x='40' y='40'/>");
    EXPECT_EQ(Hit(*document, 50, 50), "outer") << "the outermost";
    EXPECT_EQ(Hit(*document, 10, 10), "");
}

TEST(HitTest, RespectsVisibility) {
    EXPECT_EQ(Hit("<rect id='a' width='100' height='100'/><rect id='b' width='100' height='100' "
                  "visibility='hidden'/>"),
              "a");
    EXPECT_EQ(Hit("<rect id='a' width='100' height='100'/><g display='none'><rect id='b' width='100' "
                  "height='100'/></g>"),
              "a");
    EXPECT_EQ(
        Hit("<rect id='a' width='100' height='100'/><rect id='b' width='100' height='100' opacity='0'/>"),
        "a");
    EXPECT_EQ(
        Hit("<rect id='a' width='100' height='100'/><rect id='b' width='100' height='100' opacity='.01'/>"),
        "b");
}

TEST(HitTest, CountsWhatIsPainted) {
    EXPECT_EQ(Hit("<rect id='a' width='100' height='100' fill='none'/>"), "");
    EXPECT_EQ(Hit("<rect id='a' width='100' height='100' fill='none' stroke='red' stroke-width='4'/>"), "");
    EXPECT_EQ(Hit("<rect id='a' width='100' height='100' fill='none' stroke='red' stroke-width='4'/>", 1, 50),
              "a");
    EXPECT_EQ(Hit("<rect id='a' width='100' height='100' fill-opacity='0'/>"), "");
    EXPECT_EQ(Hit("<path id='a' d='M0 0H100V100H0ZM20 20H80V80H20Z' fill-rule='evenodd'/>"), "");
    EXPECT_EQ(Hit("<path id='a' d='M0 0H100V100H0ZM20 20H80V80H20Z' fill-rule='evenodd'/>", 10, 10), "a");
}

TEST(HitTest, RespectsClips) {
    const std::string clip = "<clipPath id='c'><rect width='40' height='100'/></clipPath>";
    const auto document = LoadContent(clip + "<rect id='a' width='100' height='100'/><g clip-path='url(#c)'>"
                                             "<rect id='b' width='100' height='100'/></g>");
    EXPECT_EQ(Hit(*document, 20, 50), "b");
    EXPECT_EQ(Hit(*document, 60, 50), "a");
}

TEST(HitTest, RespectsTransformsAndTheViewBox) {
    const auto document = LoadContent("<rect id='a' width='2' height='2' transform='translate(8 0)'/>",
                                      "width='100' height='100' viewBox='0 0 10 10'");
    EXPECT_EQ(Hit(*document, 90, 10), "a") << "in pixels of the natural picture";
    EXPECT_EQ(Hit(*document, 10, 10), "");
}

TEST(HitTest, FindsTexts) {
    const auto document = LoadContent("<text id='t' x='10' y='80' font-size='80'>I</text>");
    bool hit = false;
    for (float x = 10; x < 50 && !hit; ++x)
        hit = Hit(*document, x, 50) == "t";
    EXPECT_TRUE(hit);
    EXPECT_EQ(Hit(*document, 80, 50), "");
}

TEST(HitTest, FindsImages) {
    EXPECT_EQ(Hit("<image id='i' width='60' height='60' href='data:image/svg+xml,%3Csvg "
                  "xmlns=\"http://www.w3.org/2000/svg\" "
                  "width=\"10\" height=\"10\"%3E%3Crect width=\"10\" height=\"10\"/%3E%3C/svg%3E'/>"),
              "i");
}

TEST(HitTest, IsNotMisledByMasksAndPatterns) {
    EXPECT_EQ(Hit("<mask id='m'><rect id='in' width='100' height='100' fill='white'/></mask>"
                  "<rect id='a' width='100' height='100' mask='url(#m)'/>"),
              "a");
    EXPECT_EQ(Hit("<pattern id='p' width='1' height='1'><rect id='in' width='9' height='9'/></pattern>"
                  "<rect id='a' width='100' height='100' fill='url(#p)'/>"),
              "a");
}

TEST(HitTest, FindsWhatAFilterPaintsOf) {
    EXPECT_EQ(
        Hit("<filter id='f'><feOffset/></filter><rect id='a' width='100' height='100' filter='url(#f)'/>"),
        "a");
}

TEST(HitTest, OfOddPointsFindsNothing) {
    const auto document = LoadContent("<rect id='a' width='100' height='100'/>");
    EXPECT_EQ(document->ElementAt({NoNumber, 0}), nullptr);
    EXPECT_EQ(document->ElementAt({Endless, Endless}), nullptr);
    EXPECT_EQ(document->ElementAt({1e38f, -1e38f}), nullptr);
}

TEST(HitTest, ChangesNothing) {
    const auto document = LoadContent("<g id='g' opacity='.5'><rect id='a' width='100' height='100'/></g>");
    const std::string text = document->WriteText();
    const std::uint64_t epoch = document->GetEpoch();
    TNotices notices(*document);
    document->ElementAt({50, 50});
    EXPECT_EQ(document->WriteText(), text);
    EXPECT_EQ(document->GetEpoch(), epoch);
    EXPECT_EQ(notices.Take(), 0u);
}

} // namespace
} // namespace Vz::Test
