#include "tavro/svg/model/Containers.h"

#include "DocumentScene.h"
#include "tavro/svg/model/Image.h"

#include <gtest/gtest.h>

namespace Vz::Test {
namespace {

constexpr std::uint32_t Red = 0xFFFF0000;
constexpr std::uint32_t Blue = 0xFF0000FF;
constexpr std::uint32_t Lime = 0xFF00FF00;

// View boxes

TEST(ViewBox, IsReadWithBlanksOrCommas) {
    EXPECT_EQ(ParseViewBox("0 0 10 20"), (TSVGViewBox{0, 0, 10, 20}));
    EXPECT_EQ(ParseViewBox(" -1,-2.5 , 1e1,\n20 "), (TSVGViewBox{-1, -2.5, 10, 20}));
    for (const char* bad :
         {"", "0 0 10", "0 0 10 20 30", "0 0 0 20", "0 0 10 -20", "0 0 a 20", "0 0 10px 20"})
        EXPECT_FALSE(ParseViewBox(bad).has_value()) << bad;
}

TEST(ViewBox, IsMappedIntoItsArea) {
    TSVGPreserveAspectRatio ratio;
    EXPECT_EQ(ViewBoxMap({0, 0, 10, 20}, ratio, 100, 100), (TAffine{5, 0, 0, 5, 25, 0}));
    EXPECT_EQ(ViewBoxMap({10, 20, 10, 20}, ratio, 100, 100), (TAffine{5, 0, 0, 5, -25, -100}));
    ratio.SetSlice(true);
    EXPECT_EQ(ViewBoxMap({0, 0, 10, 20}, ratio, 100, 100), (TAffine{10, 0, 0, 10, 0, -50}));
    ratio.SetAlign(TSVGAlign::XMaxYMax);
    EXPECT_EQ(ViewBoxMap({0, 0, 10, 20}, ratio, 100, 100), (TAffine{10, 0, 0, 10, 0, -100}));
    ratio.SetAlign(TSVGAlign::None);
    EXPECT_EQ(ViewBoxMap({1, 2, 10, 20}, ratio, 100, 100), (TAffine{10, 0, 0, 5, -10, -10}));
}

// Groups

TEST(Group, OfDefinitionsIsNotDrawn) {
    EXPECT_TRUE(Drawn(*LoadContent("<defs><rect width='50' height='50'/></defs>")).IsEmpty());
    EXPECT_TRUE(Drawn(*LoadContent("<symbol><rect width='50' height='50'/></symbol>")).IsEmpty());
}

TEST(Group, MadeByCodeIsDrawn) {
    TSVGDocument document;
    auto& group = document.Add<TSVGGroup>();
    auto& path = group.Add<TSVGPath>();
    TVZPathData data;
    data.SetPathString("M0 0H50V50H0Z");
    path.SetData(&data);
    path.GetBrush().SetColor(Red);
    data.Clear();
    EXPECT_EQ(Drawn(document).At(25, 25), Red) << "the figures were copied";
    group.SetMatrix(CreateTranslateVZMatrix(50, 0));
    EXPECT_EQ(Drawn(document).At(25, 25), 0u);
    EXPECT_EQ(Drawn(document).At(75, 25), Red);
    path.SetData(nullptr);
    EXPECT_TRUE(Drawn(document).IsEmpty());
}

TEST(Switch, DrawsTheFirstThatFits) {
    const auto at = [](std::string_view content) {
        return Drawn(*LoadContent("<switch>" + std::string(content) + "</switch>")).At(25, 25);
    };
    const std::string red = "width='50' height='50' fill='red'/>";
    const std::string blue = "<rect width='50' height='50' fill='blue'/>";
    EXPECT_EQ(at("<rect " + red + blue), Red);
    EXPECT_EQ(at("<rect systemLanguage='fr' " + red + blue), Blue);
    EXPECT_EQ(at("<rect systemLanguage='fr, en-GB' " + red + blue), Red);
    EXPECT_EQ(at("<rect systemLanguage='' " + red + blue), Blue);
    EXPECT_EQ(at("<rect requiredExtensions='http://example.org/x' " + red + blue), Blue);
    EXPECT_EQ(at("<title>t</title><rect " + red + blue), Red);
    EXPECT_EQ(at("<rect display='none' " + red + blue), 0u) << "chosen, and not drawn";
}

TEST(Group, ConditionsCountOutsideOfASwitchToo) {
    EXPECT_TRUE(Drawn(*LoadContent("<g systemLanguage='fr'><rect width='9' height='9'/></g>")).IsEmpty());
}

// Use

TEST(Use, DrawsAnotherElementInItsPlace) {
    const auto document =
        LoadContent("<defs><rect id='r' width='10' height='10'/></defs>"
                    "<use id='u' xlink:href='#r' x='20' y='30' fill='red' transform='scale(2)'/>");
    TDrawing drawing = Drawn(*document);
    EXPECT_EQ(drawing.At(41, 61), Red);
    EXPECT_EQ(drawing.At(59, 79), Red);
    EXPECT_EQ(drawing.At(39, 61), 0u);
    auto* const use = document->Find<TSVGUse>("u");
    EXPECT_EQ(use->GetTarget(), document->FindElement("r"));
    use->SetReference("absent");
    EXPECT_EQ(use->GetTarget(), nullptr);
    EXPECT_TRUE(Drawn(*document).IsEmpty());
    use->SetReference("");
    EXPECT_TRUE(Drawn(*document).IsEmpty());
}

TEST(Use, FollowsEditsOfItsTarget) {
    const auto document =
        LoadContent("<defs><rect id='r' width='10' height='10' fill='red'/></defs><use href='#r'/>");
    document->Find<TSVGGraphicElement>("r")->GetBrush().SetColor(Blue);
    EXPECT_EQ(Drawn(*document).At(5, 5), Blue);
    document->FindElement("r")->Remove();
    EXPECT_TRUE(Drawn(*document).IsEmpty());
}

TEST(Use, FitsASymbolIntoItsSize) {
    const auto document = LoadContent(
        "<symbol id='s' viewBox='0 0 10 10'><rect x='-5' width='20' height='10' fill='red'/></symbol>"
        "<use href='#s' x='10' y='20' width='40' height='20'/>");
    const TDrawing drawing = Drawn(*document);
    EXPECT_EQ(drawing.At(11, 30), Red) << "the symbol's viewport is 40 wide, 20 on each side left over";
    EXPECT_EQ(drawing.At(49, 30), Red);
    EXPECT_EQ(drawing.At(9, 30), 0u) << "cut off";
    EXPECT_EQ(drawing.At(51, 30), 0u);
    EXPECT_EQ(drawing.At(30, 19), 0u);
    EXPECT_EQ(drawing.At(30, 41), 0u);
}

TEST(Use, LeavesCycles) {
    EXPECT_TRUE(Drawn(*LoadContent("<use id='u' href='#u'/>")).IsEmpty());
    EXPECT_TRUE(Drawn(*LoadContent("<use id='a' href='#b'/><use id='b' href='#a'/>")).IsEmpty());
    EXPECT_EQ(
        Drawn(*LoadContent("<g id='g'><rect width='9' height='9' fill='red'/><use href='#g' x='9'/></g>"))
            .At(12, 3),
        0u);
    EXPECT_TRUE(Drawn(*LoadContent("<use href='#root'/>", "id='root' width='100' height='100'")).IsEmpty());
}

// Nested documents

TEST(View, HasItsOwnViewport) {
    const auto document = LoadContent("<svg x='10' y='10' width='40' height='40' viewBox='0 0 4 4'>"
                                      "<rect width='50%' height='8' fill='red'/></svg>");
    const TDrawing drawing = Drawn(*document);
    EXPECT_EQ(drawing.At(11, 11), Red);
    EXPECT_EQ(drawing.At(29, 49), Red);
    EXPECT_EQ(drawing.At(31, 20), 0u) << "half of the view box";
    EXPECT_EQ(drawing.At(20, 51), 0u) << "cut off";
}

TEST(View, WithoutExtentIsNotDrawn) {
    EXPECT_TRUE(
        Drawn(*LoadContent("<svg width='0' height='9'><rect width='9' height='9'/></svg>")).IsEmpty());
}

// Images

/// Two pixels side by side, red and half transparent blue.
std::string PngUri() {
    TVZGPBitmap bitmap(2, 1);
    bitmap.GetPixels().Row(0)[0] = Red;
    bitmap.GetPixels().Row(0)[1] = 0x80000080;
    const std::string bytes = EncodePng(bitmap.GetPixels());
    std::string uri = "data:image/png,";
    constexpr char digits[] = "0123456789abcdef";
    for (const char c : bytes)
        uri += {'%', digits[static_cast<unsigned char>(c) >> 4], digits[static_cast<unsigned char>(c) & 15]};
    return uri;
}

TEST(Image, DrawsAPngFromADataUri) {
    const auto document = LoadContent("<image id='i' width='40' height='20' preserveAspectRatio='none' "
                                      "style='image-rendering:pixelated' href='" +
                                      PngUri() + "'/>");
    ASSERT_NE(document->Find<TSVGImage>("i")->GetBitmap(), nullptr);
    EXPECT_EQ(document->Find<TSVGImage>("i")->GetBitmap()->GetWidth(), 2u);
    const TDrawing drawing = Drawn(*document);
    EXPECT_EQ(drawing.At(5, 10), Red);
    EXPECT_EQ(drawing.At(35, 10), 0x80000080u);
    EXPECT_EQ(drawing.At(45, 10), 0u);
    EXPECT_EQ(Drawn(*LoadText(document->WriteText())), drawing) << "the data are written again";
}

TEST(Image, DrawsAnSvgFromADataUri) {
    const auto document =
        LoadContent("<image id='i' x='10' width='20' height='20' href='data:image/svg+xml;utf8,"
                    "%3Csvg xmlns=\"http://www.w3.org/2000/svg\" width=\"10\" height=\"10\"%3E"
                    "%3Crect width=\"5\" height=\"10\" fill=\"lime\"/%3E%3C/svg%3E'/>");
    ASSERT_NE(document->Find<TSVGImage>("i")->GetEmbedded(), nullptr);
    const TDrawing drawing = Drawn(*document);
    EXPECT_EQ(drawing.At(12, 10), Lime);
    EXPECT_EQ(drawing.At(25, 10), 0u);
}

TEST(Image, IsGreyInADisabledDocument) {
    const auto png = LoadContent("<image id='i' width='40' height='20' preserveAspectRatio='none' "
                                 "style='image-rendering:pixelated' href='" +
                                 PngUri() + "'/>");
    png->SetEnabled(false);
    EXPECT_EQ(Drawn(*png).At(5, 10), GreyOf(Red));
    // Half transparent blue: luma 29, half way to 160 is 94, halved by the alpha.
    EXPECT_EQ(Drawn(*png).At(35, 10), 0x802F2F2Fu);
    const auto svg = LoadContent("<g id='g'><image width='20' height='20' href='data:image/svg+xml;utf8,"
                                 "%3Csvg xmlns=\"http://www.w3.org/2000/svg\" width=\"10\" height=\"10\"%3E"
                                 "%3Crect width=\"10\" height=\"10\" fill=\"red\"/%3E%3C/svg%3E'/></g>");
    EXPECT_EQ(Drawn(*svg).At(10, 10), Red);
    svg->FindElement("g")->SetEnabled(false);
    EXPECT_EQ(Drawn(*svg).At(10, 10), GreyOf(Red));
}

TEST(Image, IsNeverAFile) {
    for (const char* href : {"picture.png", "file:///etc/passwd", "http://localhost/picture.png",
                             "data:image/png;base64,AAAA", "data:image/png;base64,!", "data:nothing", ""}) {
        const auto document =
            LoadContent("<image id='i' width='9' height='9' href='" + std::string(href) + "'/>");
        EXPECT_EQ(document->Find<TSVGImage>("i")->GetBitmap(), nullptr) << href;
        EXPECT_EQ(document->Find<TSVGImage>("i")->GetEmbedded(), nullptr) << href;
        EXPECT_EQ(document->GetDiagnostics().size(), 1u) << href;
        EXPECT_TRUE(Drawn(*document).IsEmpty()) << href;
    }
}

// Lengths of shapes

TEST(BasicShape, HasItsLengthsByName) {
    using TPart = TSVGBasicShape::TPart;
    const auto document = LoadContent("<rect id='r' x='1' y='2px' width='3cm' height='4%'/>");
    auto* const rect = document->Find<TSVGBasicShape>("r");
    EXPECT_EQ(rect->GetLength(TPart::Width), (TSVGLength{TSVGUnit::Cm, 3}));
    EXPECT_EQ(rect->GetLength(TPart::Height), (TSVGLength{TSVGUnit::Percent, 4}));
    EXPECT_LT(rect->GetLength(TPart::RX).GetValue(), 0) << "absent";
    TSVGLength length;
    length.SetAsUnit(TSVGUnit::Mm, 5);
    TNotices notices(*document);
    rect->SetLength(TPart::X, length);
    EXPECT_EQ(rect->GetLength(TPart::X), (TSVGLength{TSVGUnit::Mm, 5}));
    EXPECT_EQ(notices.Take(), 1u);
    rect->SetLength(TPart::X, length);
    rect->SetLength(TPart::CX, length);
    EXPECT_EQ(notices.Take(), 0u) << "the same, and one that a rectangle does not have";
}

TEST(BasicShape, DrawsEachKind) {
    EXPECT_EQ(Drawn(*LoadContent("<rect x='10' y='10' width='20' height='20' fill='red'/>")).At(11, 11), Red);
    EXPECT_EQ(
        Drawn(*LoadContent("<rect x='10' y='10' width='20' height='20' rx='8' fill='red'/>")).At(10, 10), 0u);
    EXPECT_EQ(Drawn(*LoadContent("<circle cx='50%' cy='50%' r='20' fill='red'/>")).At(50, 31), Red);
    EXPECT_EQ(Drawn(*LoadContent("<ellipse cx='50' cy='50' rx='20' ry='10' fill='red'/>")).At(50, 35), 0u);
    EXPECT_EQ(Drawn(*LoadContent("<ellipse cx='50' cy='50' ry='20' fill='red'/>")).At(31, 50), Red)
        << "rx as ry";
    EXPECT_EQ(Drawn(*LoadContent("<line x1='10' y1='50' x2='90' y2='50' stroke='red' stroke-width='4'/>"))
                  .At(50, 51),
              Red);
    EXPECT_EQ(Drawn(*LoadContent("<polyline points='10,10 90,10 90,90' fill='red'/>")).At(80, 20), Red);
    EXPECT_EQ(
        Drawn(*LoadContent("<polygon points='10 10 90 10 90 90' fill='none' stroke='red' stroke-width='4'/>"))
            .At(50, 50),
        Red)
        << "closed";
    EXPECT_TRUE(
        Drawn(*LoadContent(
                  "<rect width='-10' height='10'/><circle r='-1'/><rect width='0' height='10' stroke='red'/>"
                  "<polyline points='10 10' stroke='red'/>"))
            .IsEmpty());
}

TEST(Poly, DrawsUpToItsFirstFault) {
    const auto document = LoadContent("<polygon id='p' points='0 0 90 0 90 90 50 x 10'/>");
    EXPECT_EQ(static_cast<TSVGPoly*>(document->FindElement("p"))->GetPoints().size(), 3u);
    EXPECT_EQ(document->GetDiagnostics().size(), 1u);
}

} // namespace
} // namespace Vz::Test
