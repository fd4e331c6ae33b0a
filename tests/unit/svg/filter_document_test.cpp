#include "tavro/graphics/raster/Device.h"
#include "tavro/graphics/vector/Device.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/paint/PainterInternal.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

namespace Vz {
namespace {

/// A document of 40 by 40 around the given content, drawn on pixels of its size.
struct TScene {
    TSVGDocument Document;
    TVZGPBitmap Bitmap{40, 40};

    explicit TScene(const std::string& content) {
        Document.LoadFromText(
            R"(<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" )"
            R"(width="40" height="40">)" +
            content + "</svg>");
        TRasterDevice device(Bitmap.GetPixels());
        Draw(device);
    }
    void Draw(IPaintDevice& device, const TAffine& matrix = {}) {
        TVZGPCanvas canvas(device);
        Document.Draw(canvas, matrix, {0, 0, 40, 40});
    }
    std::uint32_t At(int x, int y) { return Bitmap.GetPixels().Row(y)[x]; }
};

constexpr std::uint32_t Red = 0xFFFF0000;
constexpr std::uint32_t Lime = 0xFF00FF00;
constexpr std::uint32_t Blue = 0xFF0000FF;

/// A red square from 10 to 30 that goes through a filter of these attributes and primitives.
std::string Square(const std::string& primitives, const std::string& attributes = "",
                   const std::string& own = "") {
    return "<filter id='f' " + attributes + ">" + primitives +
           "</filter><rect x='10' y='10' width='20' height='20' fill='red' filter='url(#f)' " + own + "/>";
}

TEST(Filter, RegionIsATenthMoreThanTheBoxUnlessItSaysOtherwise) {
    TScene scene(Square("<feFlood flood-color='lime'/>"));
    EXPECT_EQ(scene.At(8, 8), Lime);
    EXPECT_EQ(scene.At(31, 31), Lime);
    EXPECT_EQ(scene.At(7, 20), 0u);
    EXPECT_EQ(scene.At(32, 20), 0u);
    TScene user(Square("<feFlood flood-color='lime'/>",
                       "filterUnits='userSpaceOnUse' x='1' y='2' width='10%' height='5'"));
    EXPECT_EQ(user.At(1, 2), Lime);
    EXPECT_EQ(user.At(4, 6), Lime);
    EXPECT_EQ(user.At(5, 6), 0u);
    EXPECT_EQ(user.At(20, 20), 0u);
}

TEST(Filter, WithoutExtentOrPrimitivesNothingIsPainted) {
    for (const char* const attributes : {"width='0'", "height='-1'"})
        EXPECT_EQ(TScene(Square("<feOffset/>", attributes)).At(20, 20), 0u) << attributes;
    EXPECT_EQ(TScene(Square("")).At(20, 20), 0u);
    EXPECT_EQ(
        TScene(
            "<filter id='f'><feFlood/></filter><line x2='40' y1='20' y2='20' stroke='red' filter='url(#f)'/>")
            .At(20, 20),
        0u);
}

TEST(Filter, ReferencesToNoFilterArePassedOver) {
    EXPECT_EQ(TScene("<rect width='40' height='40' fill='red' filter='url(#none)'/>").At(20, 20), Red);
    EXPECT_EQ(TScene("<g id='g'/><rect width='40' height='40' fill='red' filter='url(#g)'/>").At(20, 20),
              Red);
    EXPECT_EQ(TScene("<rect width='40' height='40' fill='red' filter='url(#none) invert(1)'/>").At(20, 20),
              0xFF00FFFFu);
    EXPECT_EQ(TScene("<rect width='40' height='40' fill='red' filter='invert(1) blur(-1)'/>").At(20, 20),
              Red);
}

TEST(Filter, NamesOfResults) {
    const std::string floods =
        "<feFlood flood-color='lime' result='a'/><feFlood flood-color='blue' result='b'/>"
        "<feFlood flood-color='black'/>";
    EXPECT_EQ(TScene(Square(floods + "<feOffset in='a'/>")).At(20, 20), Lime);
    EXPECT_EQ(TScene(Square(floods + "<feOffset in='b'/>")).At(20, 20), Blue);
    EXPECT_EQ(TScene(Square(floods + "<feOffset in='SourceGraphic'/>")).At(20, 20), Red);
    EXPECT_EQ(TScene(Square(floods + "<feOffset in='SourceAlpha'/>")).At(20, 20), 0xFF000000);
    EXPECT_EQ(TScene(Square(floods + "<feOffset in='unknown'/>")).At(20, 20), 0xFF000000);
    EXPECT_EQ(
        TScene(Square("<feOffset in='a'/><feFlood flood-color='lime' result='a'/><feOffset/>")).At(20, 20),
        Lime);
    EXPECT_EQ(TScene(Square("<feOffset in='later'/>")).At(20, 20), Red);
    EXPECT_EQ(TScene(Square("<feFoo/><feMerge><feMergeNode in='SourceGraphic'/></feMerge>")).At(20, 20), Red);
    EXPECT_EQ(TScene(Square("<feMerge/>")).At(20, 20), 0u);
}

TEST(Filter, PaintsAsInput) {
    const std::string own = "stroke='blue'";
    EXPECT_EQ(TScene(Square("<feOffset in='FillPaint'/>", "", own)).At(8, 8), Red);
    EXPECT_EQ(TScene(Square("<feOffset in='StrokePaint'/>", "", own)).At(20, 20), Blue);
}

TEST(Filter, Subregions) {
    TScene scene(Square("<feFlood flood-color='lime' x='12' y='13' width='4' height='5'/>"));
    EXPECT_EQ(scene.At(12, 13), Lime);
    EXPECT_EQ(scene.At(15, 17), Lime);
    EXPECT_EQ(scene.At(16, 17), 0u);
    EXPECT_EQ(scene.At(11, 13), 0u);
    TScene box(
        Square("<feFlood flood-color='lime' x='0.5' width='25%'/>", "primitiveUnits='objectBoundingBox'"));
    EXPECT_EQ(box.At(20, 9), Lime);
    EXPECT_EQ(box.At(24, 31), Lime);
    EXPECT_EQ(box.At(19, 20), 0u);
    EXPECT_EQ(box.At(25, 20), 0u);
    // What takes an input has its subregion.
    TScene taken(
        Square("<feFlood flood-color='lime' x='12' y='12' width='4' height='4'/><feOffset dx='2'/>"));
    EXPECT_EQ(taken.At(13, 14), 0u);
    EXPECT_EQ(taken.At(14, 14), Lime);
    EXPECT_EQ(taken.At(16, 14), 0u);
    EXPECT_EQ(TScene(Square("<feFlood width='0'/>")).At(20, 20), 0u);
}

TEST(Filter, ColoursAreLinearUnlessSrgbIsAskedFor) {
    const std::string half =
        "<feComponentTransfer%><feFuncR type='linear' slope='0.5'/></feComponentTransfer>";
    const auto with = [&](const std::string& attribute) {
        std::string text = half;
        return Square(text.replace(text.find('%'), 1, attribute));
    };
    EXPECT_EQ(TScene(with("")).At(20, 20), 0xFFBC0000u); // sRGB of 0.5 is 188 of 255
    EXPECT_EQ(TScene(with(" color-interpolation-filters='sRGB'")).At(20, 20), 0xFF800000u);
}

TEST(Filter, ImagesOfElementsStandAtTheSubregion) {
    TScene scene("<defs><rect id='r' width='5' height='5' fill='lime'/></defs>" +
                 Square("<feImage xlink:href='#r' x='12' y='14'/>"));
    EXPECT_EQ(scene.At(12, 14), Lime);
    EXPECT_EQ(scene.At(16, 18), Lime);
    EXPECT_EQ(scene.At(17, 18), 0u);
    TScene picture(Square("<feImage x='10' y='10' width='20' height='20' xlink:href=\"data:image/svg+xml,"
                          "&lt;svg xmlns='http://www.w3.org/2000/svg' width='1' height='1'>"
                          "&lt;rect width='1' height='1' fill='blue'/>&lt;/svg>\"/>"));
    EXPECT_EQ(picture.At(20, 20), Blue);
    EXPECT_EQ(TScene(Square("<feImage xlink:href='file.png'/>")).At(20, 20), 0u);
}

TEST(Filter, CirclesEnd) {
    EXPECT_EQ(TScene("<filter id='f'><feImage xlink:href='#r'/></filter>"
                     "<rect id='r' x='10' y='10' width='20' height='20' fill='red' filter='url(#f)'/>")
                  .At(25, 25),
              Red);
    std::string chain;
    for (int i = 0; i < 20; ++i) {
        const std::string n = std::to_string(i);
        const std::string next = std::to_string((i + 1) % 20);
        const std::string rect = "<rect width='9' height='9' filter='url(#f" + next + ")'/>";
        chain += "<filter id='f" + n + "'><feImage xlink:href='#g" + n + "'/></filter><g id='g" + n + "'>" +
                 rect + rect + "</g>";
    }
    TScene scene(chain);
    EXPECT_EQ(scene.At(39, 39), 0u);
}

TEST(Filter, AStaleRegionGetsTheSamePixels) {
    for (const char* const transform : {"", "rotate(20 20 20)", "scale(0.9 1.1)"}) {
        TScene scene(Square("<feDropShadow dx='2.3' dy='1.7' stdDeviation='2.1' flood-color='blue'/>", "",
                            std::string("transform='") + transform + "'"));
        TVZGPBitmap part(40, 40);
        TRegion region;
        region.Add({9, 13, 31, 27});
        TRasterDevice device(part.GetPixels(), region);
        scene.Draw(device);
        for (int y = 13; y < 27; ++y)
            for (int x = 9; x < 31; ++x)
                ASSERT_EQ(part.GetPixels().Row(y)[x], scene.At(x, y)) << transform << ' ' << x << ' ' << y;
        EXPECT_EQ(part.GetPixels().Row(12)[20], 0u);
    }
}

TEST(Filter, TurnedElementsStaySharpAndKeepTheirAxes) {
    // A quarter turn: the shadow to the right of the element's own axes falls down.
    TScene shadow("<rect x='10' y='10' width='10' height='10' fill='red' transform='rotate(90 15 15)' "
                  "filter='drop-shadow(8px 0 lime)'/>");
    EXPECT_EQ(shadow.At(15, 12), Red);
    EXPECT_EQ(shadow.At(15, 25), Lime);
    EXPECT_EQ(shadow.At(25, 15), 0u);
    // A blur along one axis follows the element, too.
    TScene blur("<filter id='f' x='-1' width='3'><feGaussianBlur stdDeviation='3 0'/></filter>"
                "<rect x='10' y='10' width='20' height='20' fill='red' transform='rotate(90 20 20)' "
                "filter='url(#f)'/>");
    EXPECT_GT(AlphaOf(blur.At(20, 6)), 10);
    EXPECT_EQ(blur.At(6, 20), 0u);
    EXPECT_EQ(blur.At(20, 20), Red);
}

TEST(Filter, BoundsAreThoseOfTheResult) {
    TScene scene(
        "<filter id='f' filterUnits='userSpaceOnUse' x='3' y='4' width='20' height='30'><feFlood/></filter>"
        "<rect id='r' x='10' y='10' width='5' height='5' filter='url(#f)'/>");
    const auto* const rect = scene.Document.Find<TSVGGraphicElement>("r");
    EXPECT_EQ(scene.Document.GetDrawBounds({}, *rect), (TRectD{3, 4, 23, 34}));
}

TEST(Filter, DisabledContentIsGrey) {
    TScene scene(Square("<feFlood flood-color='lime'/>"));
    scene.Document.SetEnabled(false);
    TRasterDevice device(scene.Bitmap.GetPixels());
    device.Clear(0);
    scene.Draw(device);
    EXPECT_EQ(scene.At(20, 20), GreyOf(Lime));
}

TEST(Filter, FilesGetAPicture) {
    TScene scene(Square("<feGaussianBlur stdDeviation='1'/>"));
    TVectorDevice device(TVectorDevice::TFormat::Svg, 40, 40);
    scene.Draw(device);
    EXPECT_NE(device.Finish().find("<image"), std::string::npos);
}

/// Inputs that a careless program computes for hours, or not at all.
TEST(Filter, ExtremesTakeBoundedWork) {
    const std::string huge =
        "filterUnits='userSpaceOnUse' x='-50000' y='-50000' width='100000' height='100000'";
    const std::pair<std::string, std::string> cases[] = {
        {huge, "<feTurbulence baseFrequency='0.05' numOctaves='1000'/>"},
        {huge, "<feFlood/><feGaussianBlur stdDeviation='500'/>"},
        {huge, "<feGaussianBlur stdDeviation='1e9'/>"},
        {"", "<feGaussianBlur stdDeviation='1e9'/>"},
        {huge, "<feMorphology operator='dilate' radius='1e9'/>"},
        {huge, "<feTurbulence baseFrequency='1e30 0'/><feDisplacementMap in='SourceGraphic' scale='1e30'/>"},
        {huge,
         "<feSpecularLighting surfaceScale='1e30' specularExponent='1e9'><feSpotLight x='1e30' z='-1e30'/>"
         "</feSpecularLighting>"},
        {huge, "<feFlood x='0' y='0' width='1e-20' height='1e-20'/><feTile/>"},
        {"filterUnits='userSpaceOnUse' x='-1e38' y='-1e38' width='3e38' height='3e38'",
         "<feOffset dx='3e38' dy='-3e38'/><feFlood x='3e38' width='3e38'/><feGaussianBlur "
         "stdDeviation='3e38'/>"},
    };
    for (const auto& [attributes, primitives] : cases) {
        SCOPED_TRACE(primitives);
        TScene scene(Square(primitives, attributes));
        TRasterDevice device(scene.Bitmap.GetPixels());
        TPaintWork work(device);
        const std::size_t before = Vz::Test::CountAllocatedBytes();
        TSVGPainter(scene.Document, device, work).Paint(TPaintPass::Whole, nullptr, {});
        // In the painting's figures: nanoseconds, about. A filter's pictures are computed coarser beyond.
        EXPECT_LE(work.FilterCost, 0.51e9);
        EXPECT_LE(Vz::Test::CountAllocatedBytes() - before, std::size_t{4} << 30);
    }
}

TEST(Filter, ALargeRegionDoesNotCoarsenWhatIsSmall) {
    const std::string huge =
        "filterUnits='userSpaceOnUse' x='-50000' y='-50000' width='100000' height='100000'";
    TScene scene(Square("<feOffset dx='1'/>", huge));
    EXPECT_EQ(scene.At(10, 20), 0u);
    EXPECT_EQ(scene.At(11, 10), Red);
    EXPECT_EQ(scene.At(30, 29), Red);
    EXPECT_EQ(scene.At(31, 20), 0u);
}

} // namespace
} // namespace Vz
