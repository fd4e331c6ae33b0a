#include "tavro/svg/model/Document.h"

#include "DocumentScene.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Vz::Test {
namespace {

using testing::HasSubstr;
using testing::Not;

/// What stands between the brackets of the element with this id.
std::string Tag(const TSVGDocument& document, std::string_view id) {
    const std::string text = document.WriteText();
    const std::size_t at = text.find(" id=\"" + std::string(id) + "\"");
    if (at == text.npos) return {};
    const std::size_t begin = text.rfind('<', at);
    return text.substr(begin, text.find('>', at) - begin + 1);
}

TEST(Writer, WritesAnEmptyDocument) {
    EXPECT_EQ(TSVGDocument().WriteText(),
              "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\"/>\n");
}

TEST(Writer, WritesElementsInOrderWithTheirIds) {
    const auto document = LoadContent(
        "<title>t</title><g id='a'><rect id='b' width='1' height='2'/><path id='c' d='M0 0h9'/></g>",
        "width='30' height='2cm' viewBox='0 0 3 4'");
    EXPECT_EQ(
        document->WriteText(),
        "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" width=\"30\" "
        "height=\"2cm\" viewBox=\"0 0 3 4\">\n"
        "  <title>t</title>\n"
        "  <g id=\"a\">\n"
        "    <rect id=\"b\" width=\"1\" height=\"2\"/>\n"
        "    <path id=\"c\" d=\"M0 0L9 0\"/>\n"
        "  </g>\n"
        "</svg>\n");
}

TEST(Writer, WritesOneMatrixOrNone) {
    const auto document =
        LoadContent("<g id='a' transform='translate(1 2) rotate(90)'/><g id='b' transform='scale(1)'/>");
    EXPECT_THAT(Tag(*document, "a"), HasSubstr(" transform=\"matrix("));
    EXPECT_THAT(Tag(*document, "b"), Not(HasSubstr("transform")));
    auto* const b = document->Find<TSVGGraphicElement>("b");
    b->SetMatrix({2, 0, 0, 0, 3, 0, 4, 5, 1});
    EXPECT_EQ(Tag(*document, "b"), "<g id=\"b\" transform=\"matrix(2 0 0 3 4 5)\"/>");
    b->SetMatrix({});
    EXPECT_EQ(Tag(*document, "b"), "<g id=\"b\"/>");
}

TEST(Writer, WritesVisibilityAndOpacity) {
    const auto document =
        LoadContent("<g id='a' style='display:none;opacity:.5'/><g id='b' display='inline' opacity='1'/>");
    EXPECT_EQ(Tag(*document, "a"), "<g id=\"a\" display=\"none\" opacity=\"0.5\"/>");
    EXPECT_EQ(Tag(*document, "b"), "<g id=\"b\"/>");
    document->Find<TSVGGraphicElement>("a")->SetVisible(true);
    document->Find<TSVGGraphicElement>("b")->SetVisible(false);
    const auto again = LoadText(document->WriteText());
    EXPECT_TRUE(again->Find<TSVGGraphicElement>("a")->GetVisible());
    EXPECT_EQ(again->Find<TSVGGraphicElement>("a")->GetOpacity(), 0.5f);
    EXPECT_FALSE(again->Find<TSVGGraphicElement>("b")->GetVisible());
}

TEST(Writer, WritesStylesAsAttributes) {
    const auto document = LoadContent("<style>#a{stroke:#0f0}</style><g id='a' fill='red' "
                                      "style='stroke-width:2px;mix-blend-mode:multiply'/>");
    const std::string tag = Tag(*document, "a");
    EXPECT_THAT(tag, HasSubstr(" fill=\"#ff0000\""));
    EXPECT_THAT(tag, HasSubstr(" stroke=\"#00ff00\""));
    EXPECT_THAT(tag, HasSubstr(" stroke-width=\"2px\""));
    EXPECT_THAT(tag, HasSubstr(" style=\"mix-blend-mode:multiply\""));
    EXPECT_THAT(document->WriteText(), Not(HasSubstr("<style")));
}

TEST(Writer, EscapesWhatXmlNeeds) {
    const auto document = LoadContent("<text id='t'/>");
    auto* const text = document->Find<TSVGCustomText>("t");
    const std::string odd = "a<b>&\"'\t\n]]>\xC3\xA4 \xF0\x9F\x98\x80";
    text->SetText(odd);
    text->SetId("x\"<&>'\n y");
    const auto again = LoadText(document->WriteText());
    ASSERT_NE(again->FindElement("x\"<&>'\n y"), nullptr);
    EXPECT_EQ(again->Find<TSVGCustomText>("x\"<&>'\n y")->GetText(), odd);
    text->SetText("a\r\nb");
    EXPECT_EQ(LoadText(document->WriteText())->Find<TSVGCustomText>("x\"<&>'\n y")->GetText(), "a\r\nb");
}

TEST(Writer, LeavesOutWhatXmlCannotHold) {
    const auto document = LoadContent("<text id='t'/>");
    auto* const text = document->Find<TSVGCustomText>("t");
    text->SetText(std::string_view("a\0b\x01"
                                   "c\x1F",
                                   6));
    EXPECT_EQ(LoadText(document->WriteText())->Find<TSVGCustomText>("t")->GetText(), "abc");
    text->SetText("good\xFF"
                  "bad");
    EXPECT_EQ(LoadText(document->WriteText())->Find<TSVGCustomText>("t")->GetText(), "good");
}

TEST(Writer, WritesNoAttributeTwice) {
    const auto document = LoadContent("<filter id='f'><feFlood fill='freeze' "
                                      "style='fill:red;flood-color:lime' flood-opacity='.5'/></filter>"
                                      "<pattern id='p' x='1' y='2' width='3' height='4' viewBox='0 0 1 1' "
                                      "patternTransform='scale(2)' href='#q'/>"
                                      "<marker id='m' x='1' markerWidth='2' width='3' refX='center' "
                                      "orient='45deg' opacity='.5' style='opacity:.2'/>");
    const auto again = LoadText(document->WriteText());
    EXPECT_EQ(again->WriteText(), document->WriteText());
    EXPECT_THAT(Tag(*document, "m"), HasSubstr("markerWidth=\"2\""));
    EXPECT_THAT(Tag(*document, "m"), HasSubstr("orient=\"45\""));
}

TEST(Writer, KeepsBlanksOfTexts) {
    const auto document = LoadContent("<text xml:space='preserve' id='t'> a <tspan> b</tspan> </text>");
    const std::string text = document->WriteText();
    EXPECT_THAT(text, HasSubstr("xml:space=\"preserve\"> a <tspan> b</tspan> </text>"));
    EXPECT_EQ(LoadText(text)->WriteText(), text);
}

TEST(Writer, DoesNotWriteTheDisabledLook) {
    const auto document = LoadContent("<rect id='r' width='9' height='9' fill='red'/>");
    const std::string text = document->WriteText();
    document->FindElement("r")->SetEnabled(false);
    EXPECT_EQ(document->WriteText(), text);
}

// parse(write(x)) draws the same, and is written the same

class WriterRoundTrip : public testing::TestWithParam<const char*> {};

TEST_P(WriterRoundTrip, DrawsAndReadsTheSame) {
    const auto document = LoadContent(GetParam());
    const TDrawing drawing = Drawn(*document);
    EXPECT_FALSE(drawing.IsEmpty());
    EXPECT_TRUE(document->GetDiagnostics().empty());
    const std::string text = document->WriteText();
    const auto again = LoadText(text);
    EXPECT_EQ(again->WriteText(), text);
    EXPECT_TRUE(again->GetDiagnostics().empty()) << text;
    EXPECT_EQ(Drawn(*again), drawing) << text;
    TSVGDocument copy;
    copy.AssignContent(*document);
    EXPECT_EQ(copy.WriteText(), text);
    EXPECT_EQ(Drawn(copy), drawing);
}

INSTANTIATE_TEST_SUITE_P(
    Pictures, WriterRoundTrip,
    testing::Values(
        "<path d='M10 10 Q 30 0 40 40 T 80 40 A 20 10 30 0 1 50 80 S 10 90 20 60 z' fill='#8af' "
        "stroke='#123' stroke-width='3' "
        "stroke-linejoin='round' stroke-linecap='square' stroke-dasharray='5,2 1' stroke-dashoffset='2' "
        "pathLength='300'/>",
        "<g transform='rotate(33.3) skewX(7)' fill-rule='evenodd' opacity='.3'><path d='M10 10h60v20H10zM20 "
        "5h20v40H20z' "
        "fill='hsl(120 50% 40% / .7)'/></g>",
        "<rect x='1%' y='1mm' width='50%' height='3em' rx='auto' ry='4'/><circle cx='50' cy='60' r='10%' "
        "stroke='red' fill='none'/>"
        "<ellipse cx='70' cy='20' rx='20' ry='auto'/><line x2='90' y2='90' stroke='teal' "
        "stroke-miterlimit='2'/>",
        "<linearGradient id='a' x1='10%' spreadMethod='reflect' gradientTransform='rotate(20)'><stop "
        "offset='20%' "
        "stop-color='rgba(255,0,0,.5)'/><stop offset='1' stop-color='#00f' "
        "stop-opacity='.25'/></linearGradient>"
        "<radialGradient id='b' href='#a' cx='.3' fx='.4' fr='5%' gradientUnits='objectBoundingBox'/>"
        "<rect width='50' height='90' fill='url(#a)'/><rect x='50' width='50' height='90' fill='url(#b) red' "
        "stroke='url(#a)'/>",
        "<text x='5 20 30' y='30' rotate='10 20' font-size='20' font-weight='bold' fill='red' stroke='blue' "
        "stroke-width='.3'>abcd<tspan dx='2' dy='1em' letter-spacing='2' "
        "text-decoration='underline'>efg</tspan></text>",
        "<defs><path id='p' d='M5 80 C 30 20 70 20 95 80'/></defs><text font-size='12'><textPath "
        "xlink:href='#p' "
        "startOffset='10%' textLength='70' lengthAdjust='spacingAndGlyphs'>along a path</textPath></text>",
        "<symbol id='s' viewBox='0 0 20 10' preserveAspectRatio='xMinYMin slice'><circle r='10' cx='10' "
        "cy='5' fill='red'/></symbol>"
        "<use xlink:href='#s' x='10' y='10' width='40' height='40'/><use xlink:href='#s' x='60' width='20' "
        "height='50' "
        "transform='rotate(5)' style='transform-origin:60px 20px'/>",
        "<clipPath id='c' clipPathUnits='objectBoundingBox'><circle cx='.5' cy='.5' r='.5'/></clipPath><mask "
        "id='m' "
        "maskContentUnits='objectBoundingBox' mask-type='alpha'><rect width='1' height='.5' "
        "opacity='.5'/></mask>"
        "<rect width='60' height='60' clip-path='url(#c)' fill='red'/><rect x='60' width='40' height='60' "
        "mask='url(#m)'/>",
        "<pattern id='p' width='10' height='8' patternUnits='userSpaceOnUse' "
        "patternTransform='rotate(30)'><path d='M0 0h5v4z' "
        "fill='red'/></pattern><rect width='90' height='90' fill='url(#p)' stroke='url(#p)' "
        "stroke-width='9'/>",
        "<marker id='m' markerWidth='4' markerHeight='4' refX='2' refY='2' orient='auto-start-reverse' "
        "overflow='visible'>"
        "<path d='M0 0L4 2L0 4z' fill='context-stroke'/></marker><polyline points='10 10 50 50 90 10' "
        "fill='none' stroke='red' "
        "stroke-width='3' marker-start='url(#m)' marker-mid='url(#m)' marker-end='url(#m)' "
        "paint-order='markers stroke'/>",
        "<filter id='f' x='-20%' filterUnits='objectBoundingBox' "
        "primitiveUnits='userSpaceOnUse'><feGaussianBlur in='SourceAlpha' "
        "stdDeviation='2 1' result='b'/><feOffset dx='3'/><feMerge><feMergeNode in='b'/><feMergeNode "
        "in='SourceGraphic'/></feMerge>"
        "</filter><rect x='20' y='20' width='40' height='40' fill='red' filter='url(#f)'/>",
        "<switch><g systemLanguage='xx'/><g requiredExtensions='none'/><a href='http://example.org/'><svg "
        "x='10' y='10' width='50' "
        "height='20' viewBox='0 0 10 10' overflow='visible'><rect width='100%' height='10' "
        "fill='currentColor' color='red'/></svg></a></switch>",
        "<g style='mix-blend-mode:multiply;isolation:isolate'><rect width='60' height='60' "
        "fill='#f80'/><rect x='20' y='20' width='60' "
        "height='60' fill='#08f' style='mix-blend-mode:screen' shape-rendering='crispEdges' "
        "vector-effect='non-scaling-stroke'/></g>"));

constexpr const char* OnPaths = "<defs><path id='p' d='M0 20H90'/></defs>"
                                "<g id='all' font-size='10' fill='#ff0000'>"
                                "<text><textPath href='#p'>ab</textPath></text>"
                                "<text transform='translate(0 20)' fill='#0000ff'><textPath href='#p'>c"
                                "<tspan fill='#00ff00'>d</tspan></textPath></text></g>";

/// How often a piece stands in a text.
int Count(std::string_view text, std::string_view piece) {
    int count = 0;
    for (std::size_t at = text.find(piece); at != text.npos; at = text.find(piece, at + 1))
        ++count;
    return count;
}

TEST(Writer, TextOnAPathIsFollowedByItsOutlines) {
    const std::string text = LoadContent(OnPaths)->WriteText();
    EXPECT_THAT(text, HasSubstr("  <switch>\n    <g id=\"all\" requiredFeatures=\"http"));
    EXPECT_THAT(text, HasSubstr("<text transform=\"matrix(1 0 0 1 0 20)\" fill=\"#0000ff\"><textPath "));
    EXPECT_THAT(text, HasSubstr("    </g>\n    <g fill=\"#ff0000\" font-size=\"10\">\n      <path d=\"M"));
    EXPECT_EQ(Count(text, "<path "), 1 + 3); // the line, and the outlines in their three colours
    EXPECT_EQ(Count(text, " fill=\"#00ff00\"/>"), 1);
    EXPECT_EQ(Count(text, "<path transform=\"matrix(1 0 0 1 0 20)\" d=\""), 2);
    EXPECT_EQ(Count(text, "<switch>"), 1);
}

TEST(Writer, OutlinesAreThePictureOfTheText) {
    const auto document = LoadContent(OnPaths);
    const std::string text = document->WriteText();
    const std::size_t begin = text.find("<g id=\"all\"");
    const std::size_t end = text.find("</g>", begin);
    const auto outlines = LoadText(text.substr(0, begin) + text.substr(end + 4));
    const auto bounds = document->GetBounds();
    const auto alike = outlines->GetBounds();
    EXPECT_NEAR(alike.Right, bounds.Right, 1); // of the letters themselves, not of their advances
    EXPECT_GT(alike.Right, bounds.Left);
    const auto drawn = Drawn(*document);
    EXPECT_TRUE(Drawn(*LoadText(text)) == drawn);
    EXPECT_LE(GreatestDifference(Drawn(*outlines), drawn), 2);
}

TEST(Writer, OutlinesAreMadeAnew) {
    const auto document = LoadContent(OnPaths);
    const std::string text = document->WriteText();
    const auto again = LoadText(text);
    EXPECT_EQ(again->WriteText(), text);
    dynamic_cast<TSVGCustomText&>(again->FindElement("all")->GetChild(0).GetChild(0)).SetText("xyz");
    const std::string changed = again->WriteText();
    EXPECT_NE(changed, text);
    EXPECT_EQ(Count(changed, "<switch>"), 1);
    EXPECT_EQ(Count(changed, "<path "), 1 + 3);
}

TEST(Writer, OnlyWhatIsDrawnInPlaceHasOutlines) {
    const std::string line = "<path id='p' d='M0 20H90'/>";
    const std::string words = "<text><textPath href='#p'>ab</textPath></text>";
    for (const std::string& content :
         {"<g display='none'>" + words + "</g>", "<defs><g>" + words + "</g></defs>",
          "<clipPath id='c'>" + words + "</clipPath>", std::string("<text x='5' y='9'>ab</text>")})
        EXPECT_THAT(LoadContent((line + content).c_str())->WriteText(), Not(HasSubstr("<switch>")))
            << content;
    // Beside other things a text stands for itself.
    const std::string mixed =
        LoadContent((line + "<g><rect id='r'/>" + words + words + "</g>").c_str())->WriteText();
    EXPECT_EQ(Count(mixed, "<switch>"), 2);
    EXPECT_EQ(Count(mixed, "<path d="), 2);
}

} // namespace
} // namespace Vz::Test
