#include "tavro/svg/model/Document.h"

#include "DocumentScene.h"
#include "tavro/graphics/vector/Device.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Vz::Test {
namespace {

constexpr std::uint32_t Red = 0xFFFF0000;
constexpr std::uint32_t Blue = 0xFF0000FF;
constexpr std::uint32_t Lime = 0xFF00FF00;

std::uint32_t Middle(std::string_view content) { return Drawn(*LoadContent(content)).At(50, 50); }

// Fill and stroke

TEST(Painter, PaintsInDocumentOrder) {
    EXPECT_EQ(
        Middle("<rect width='100' height='100' fill='red'/><rect width='100' height='100' fill='blue'/>"),
        Blue);
    EXPECT_EQ(Middle("<rect width='100' height='100' fill='red'/>"), Red);
    EXPECT_EQ(Middle("<rect width='100' height='100'/>"), 0xFF000000u);
}

TEST(Painter, FillsByTheRule) {
    const std::string d = " d='M10 10H90V90H10ZM30 30H70V70H30Z' fill='red'/>";
    EXPECT_EQ(Middle("<path" + d), Red);
    EXPECT_EQ(Middle("<path fill-rule='evenodd'" + d), 0u);
    EXPECT_EQ(Middle("<g style='fill-rule:evenodd'><path" + d + "</g>"), 0u);
}

TEST(Painter, StrokesOverTheFill) {
    const std::string shape =
        "<rect x='50' y='0' width='40' height='100' fill='red' stroke='blue' stroke-width='10'";
    EXPECT_EQ(Drawn(*LoadContent(shape + "/>")).At(52, 50), Blue);
    EXPECT_EQ(Drawn(*LoadContent(shape + "/>")).At(47, 50), Blue);
    EXPECT_EQ(Drawn(*LoadContent(shape + " style='paint-order:stroke'/>")).At(52, 50), Red);
    EXPECT_EQ(Drawn(*LoadContent(shape + " style='paint-order:stroke'/>")).At(47, 50), Blue);
}

TEST(Painter, MixesOpacities) {
    EXPECT_EQ(Middle("<rect width='100' height='100' fill='red' fill-opacity='.5'/>"), 0x80800000u);
    EXPECT_EQ(Middle("<rect width='100' height='100' fill='red' opacity='.5' fill-opacity='.5'/>"),
              0x40400000u);
    EXPECT_EQ(Middle("<rect width='100' height='100' fill='none' stroke='red' stroke-width='200' "
                     "stroke-opacity='.5'/>"),
              0x80800000u);
    EXPECT_EQ(Middle("<rect width='100' height='100' opacity='0'/>"), 0u);
}

TEST(Painter, LaysAGroupDownAsOne) {
    // Inside of the group the upper one hides the lower one.
    const std::uint32_t one = Middle("<g opacity='.5'><rect width='100' height='100' fill='red'/>"
                                     "<rect width='100' height='100' fill='blue'/></g>");
    EXPECT_EQ(one, 0x80000080u);
    const std::uint32_t shape = Middle(
        "<rect x='50' width='40' height='100' fill='red' stroke='blue' stroke-width='20' opacity='.5'/>");
    EXPECT_EQ(shape, 0x80000080u) << "fill and stroke of one shape, too";
}

TEST(Painter, PaintsTheDocumentsOwnOpacity) {
    const auto document = LoadContent(
        "<rect width='100' height='100' fill='red'/><rect width='100' height='100' fill='blue'/>");
    document->SetOpacity(0.5f);
    EXPECT_EQ(Drawn(*document).At(50, 50), 0x80000080u);
    document->SetOpacity(0);
    EXPECT_TRUE(Drawn(*document).IsEmpty());
    document->SetOpacity(1);
    EXPECT_EQ(Drawn(*document).At(50, 50), Blue);
    document->SetVisible(false);
    EXPECT_TRUE(Drawn(*document).IsEmpty());
}

TEST(Painter, AppliesTransformsInnermostFirst) {
    const auto document = LoadContent(
        "<g transform='translate(50 0)'><g transform='scale(2)'><rect x='5' y='5' width='10' height='10' "
        "fill='red' transform='rotate(90 5 5)'/></g></g>");
    // Turned about (5, 5) the square covers -5..5 by 5..15; twice that and 50 to the right: 40..60 by 10..30.
    const TDrawing drawing = Drawn(*document);
    EXPECT_EQ(drawing.At(41, 11), Red);
    EXPECT_EQ(drawing.At(59, 29), Red);
    EXPECT_EQ(drawing.At(39, 20), 0u);
    EXPECT_EQ(drawing.At(61, 20), 0u);
}

TEST(Painter, TurnsClockwise) {
    const auto document = LoadContent("<rect id='r' x='45' y='0' width='10' height='20' fill='red'/>");
    document->Find<TSVGGraphicElement>("r")->SetMatrix(CreateRotationVZMatrix({50, 50}, 1.5707963f));
    EXPECT_EQ(Drawn(*document).At(90, 50), Red) << "from twelve to three o'clock";
    EXPECT_EQ(Drawn(*document).At(50, 10), 0u);
}

TEST(Painter, HidesByVisibility) {
    EXPECT_EQ(Middle("<rect width='100' height='100' visibility='hidden'/>"), 0u);
    EXPECT_EQ(Middle("<g visibility='hidden'><rect width='100' height='100' fill='red'/><rect width='100' "
                     "height='100' fill='lime' "
                     "visibility='visible'/></g>"),
              Lime);
}

TEST(Painter, SkipsFlatTransforms) {
    EXPECT_EQ(Middle("<g transform='scale(0)'><rect width='100' height='100' stroke='red'/></g>"), 0u);
    EXPECT_EQ(Middle("<rect width='100' height='100' stroke='red' transform='matrix(1 1 1 1 0 0)'/>"), 0u);
}

// Clips, masks, patterns, markers

TEST(Painter, Clips) {
    const auto document = LoadContent("<clipPath id='c'><rect width='50' height='100'/></clipPath>"
                                      "<rect width='100' height='100' fill='red' clip-path='url(#c)'/>");
    EXPECT_EQ(Drawn(*document).At(25, 50), Red);
    EXPECT_EQ(Drawn(*document).At(75, 50), 0u);
    EXPECT_EQ(Middle("<clipPath id='c'/><rect width='100' height='100' clip-path='url(#c)'/>"), 0u)
        << "an empty one hides all";
    EXPECT_EQ(Middle("<rect width='100' height='100' fill='red' clip-path='url(#absent)'/>"), Red);
}

TEST(Painter, Masks) {
    const auto document = LoadContent(
        "<mask id='m'><rect width='50' height='100' fill='white'/><rect x='50' width='50' height='100' "
        "fill='white' fill-opacity='.5'/></mask><rect width='100' height='100' fill='red' mask='url(#m)'/>");
    EXPECT_EQ(Drawn(*document).At(25, 50), Red);
    EXPECT_NEAR(AlphaOf(Drawn(*document).At(75, 50)), 128, 1);
}

TEST(Painter, RepeatsPatterns) {
    const auto document = LoadContent(
        "<pattern id='p' width='20' height='20' patternUnits='userSpaceOnUse'><rect width='10' height='20' "
        "fill='red'/></pattern><rect width='100' height='100' fill='url(#p)'/>");
    for (const int tile : {0, 2, 4}) {
        EXPECT_EQ(Drawn(*document).At(tile * 20 + 5, 50), Red);
        EXPECT_EQ(Drawn(*document).At(tile * 20 + 15, 50), 0u);
    }
}

TEST(Painter, PutsMarkersOnVertices) {
    const auto document = LoadContent(
        "<marker id='m' markerWidth='10' markerHeight='10' refX='5' refY='5' markerUnits='userSpaceOnUse'>"
        "<rect width='10' height='10' fill='red'/></marker><path d='M20 50H50H80' fill='none' "
        "marker-start='url(#m)' marker-end='url(#m)'/>");
    const TDrawing drawing = Drawn(*document);
    EXPECT_EQ(drawing.At(16, 46), Red);
    EXPECT_EQ(drawing.At(84, 54), Red);
    EXPECT_EQ(drawing.At(50, 50), 0u);
}

// Disabled look

TEST(Painter, GreysSolidsOfADisabledElement) {
    const auto document = LoadContent("<g id='g'><rect width='50' height='100' fill='red'/></g>"
                                      "<rect x='50' width='50' height='100' fill='red'/>");
    document->FindElement("g")->SetEnabled(false);
    // (76 + 160) / 2: the luma of red, half way to the grey of disabled things.
    EXPECT_EQ(GreyOf(Red), 0xFF767676u);
    EXPECT_EQ(Drawn(*document).At(25, 50), 0xFF767676u);
    EXPECT_EQ(Drawn(*document).At(75, 50), Red);
    document->FindElement("g")->SetEnabled(true);
    EXPECT_EQ(Drawn(*document).At(25, 50), Red);
    document->SetEnabled(false);
    EXPECT_EQ(Drawn(*document).At(75, 50), 0xFF767676u) << "the whole document";
}

TEST(Painter, GreysGradientsPatternsStrokesAndUses) {
    const auto document = LoadContent(
        "<linearGradient id='l'><stop stop-color='red'/><stop offset='1' stop-color='red'/></linearGradient>"
        "<pattern id='p' width='1' height='1'><rect width='100' height='100' fill='red'/></pattern>"
        "<rect id='a' width='20' height='100' fill='url(#l)'/><rect x='20' width='20' height='100' "
        "fill='url(#p)'/>"
        "<path d='M50 0V100' stroke='red' stroke-width='20'/><use href='#a' x='60'/>");
    document->SetEnabled(false);
    const TDrawing drawing = Drawn(*document);
    for (const int x : {10, 30, 50, 70})
        EXPECT_EQ(drawing.At(x, 50), 0xFF767676u) << x;
}

TEST(Painter, KeepsAlphaWhenDisabled) {
    const auto document = LoadContent("<rect width='100' height='100' fill='red' fill-opacity='.5'/>");
    document->SetEnabled(false);
    EXPECT_EQ(AlphaOf(Drawn(*document).At(50, 50)), 0x80);
}

// Parts

constexpr std::string_view Stack =
    "<rect id='low' width='100' height='100' fill='red'/><g id='outer'><rect id='in' width='60' height='100' "
    "fill='lime'/><g id='pivot'><circle cx='50' cy='50' r='30' fill='blue'/></g><rect id='over' x='50' "
    "width='10' height='100' fill='#ff0' fill-opacity='.5'/></g><rect id='top' y='90' width='100' "
    "height='10'/>";

TEST(Painter, DrawsBeforeElementAndAfter) {
    const auto document = LoadContent(Stack);
    const auto& pivot = *document->Find<TSVGGraphicElement>("pivot");
    const auto part = [&](auto draw) {
        TVZGPBitmap bitmap(100, 100);
        (document.get()->*draw)(bitmap.GetCanvas(), TAffine{}, pivot);
        return DrawingOf(bitmap);
    };
    const TDrawing before = part(&TSVGDocument::DrawBefore);
    const TDrawing element = part(&TSVGDocument::DrawElement);
    const TDrawing after = part(&TSVGDocument::DrawAfter);
    EXPECT_EQ(before.At(40, 50), Lime);
    EXPECT_EQ(before.At(80, 50), Red);
    EXPECT_EQ(element.At(40, 50), Blue);
    EXPECT_EQ(element.At(10, 50), 0u);
    EXPECT_EQ(after.At(40, 50), 0u);
    EXPECT_EQ(after.At(55, 50), 0x80808000u);
    EXPECT_EQ(after.At(55, 95), 0xFF000000u);
    TVZGPBitmap all(100, 100);
    document->DrawBefore(all.GetCanvas(), {}, pivot);
    document->DrawElement(all.GetCanvas(), {}, pivot);
    document->DrawAfter(all.GetCanvas(), {}, pivot);
    EXPECT_EQ(DrawingOf(all), Drawn(*document));
    EXPECT_TRUE(document->CanDrawInParts(pivot));
}

TEST(Painter, SaysWhereThePartsAreNotTheWhole) {
    const auto can = [](std::string_view around, std::string_view id = "r") {
        const auto document = LoadContent(around);
        return document->CanDrawInParts(*document->Find<TSVGGraphicElement>(id));
    };
    EXPECT_TRUE(can("<g><a><switch><rect id='r'/></switch></a></g>"));
    EXPECT_TRUE(can("<g><rect id='r' opacity='.5' clip-path='url(#c)'/></g>"))
        << "its own layer does no harm";
    EXPECT_FALSE(can("<g opacity='.5'><rect id='r'/></g>"));
    EXPECT_FALSE(can("<g clip-path='url(#c)'><g><rect id='r'/></g></g>"));
    EXPECT_FALSE(can("<g mask='url(#c)'><rect id='r'/></g>"));
    EXPECT_FALSE(can("<g style='mix-blend-mode:multiply'><rect id='r'/></g>"));
    EXPECT_TRUE(can("<g mask='none' style='mix-blend-mode:normal;isolation:auto'><rect id='r'/></g>"));
    EXPECT_FALSE(can("<rect id='r'/><rect style='mix-blend-mode:multiply'/>"))
        << "blends with what was cached apart";
    EXPECT_TRUE(can("<g id='r' style='mix-blend-mode:screen'><rect style='mix-blend-mode:multiply'/></g>"));
    EXPECT_FALSE(can("<defs><rect id='r'/></defs>"));
    EXPECT_FALSE(can("<pattern><rect id='r'/></pattern>"));
    const auto document = LoadContent("<rect id='r'/>");
    document->SetOpacity(0.9f);
    EXPECT_FALSE(document->CanDrawInParts(*document->Find<TSVGGraphicElement>("r")));
    EXPECT_FALSE(document->CanDrawInParts(*document)) << "the document itself";
}

TEST(Painter, ShowsChangesOfTheElementAtOnce) {
    const auto document = LoadContent(Stack);
    auto& pivot = *document->Find<TSVGGraphicElement>("pivot");
    const auto drawn = [&] {
        TVZGPBitmap bitmap(100, 100);
        document->DrawElement(bitmap.GetCanvas(), {}, pivot);
        return DrawingOf(bitmap);
    };
    EXPECT_EQ(drawn().At(50, 50), Blue);
    EXPECT_EQ(drawn(), drawn());
    auto& circle = static_cast<TSVGBasicShape&>(pivot.GetChild(0));
    circle.GetBrush().SetColor(Lime);
    EXPECT_EQ(drawn().At(50, 50), Lime);
    pivot.SetMatrix(CreateTranslateVZMatrix(40, 0));
    EXPECT_EQ(drawn().At(50, 50), 0u);
    EXPECT_EQ(drawn().At(90, 50), Lime);
    circle.SetLength(TSVGBasicShape::TPart::R, {TSVGUnit::Number, 50});
    EXPECT_EQ(drawn().At(50, 50), Lime);
    pivot.SetOpacity(0.5f);
    EXPECT_EQ(drawn().At(50, 50), 0x80008000u);
    circle.SetOpacity(0.5f);
    EXPECT_EQ(drawn().At(50, 50), 0x40004000u);
    pivot.SetOpacity(1);
    EXPECT_EQ(drawn().At(50, 50), 0x80008000u);
    circle.SetVisible(false);
    EXPECT_TRUE(drawn().IsEmpty());
    circle.SetVisible(true);
    pivot.SetEnabled(false);
    EXPECT_EQ(drawn().At(50, 50), Premultiply(WithAlpha(GreyOf(Lime), 128)));
    pivot.SetEnabled(true);
    circle.Remove();
    EXPECT_TRUE(drawn().IsEmpty());
}

TEST(Painter, ShowsChangesOfPathDataAndGradientsAtOnce) {
    const auto document = LoadContent("<linearGradient id='l'><stop stop-color='red'/></linearGradient>"
                                      "<g id='pivot'><path id='p' d='M0 0H60V60H0Z' fill='url(#l)'/></g>");
    const auto& pivot = *document->Find<TSVGGraphicElement>("pivot");
    const auto drawn = [&] {
        TVZGPBitmap bitmap(100, 100);
        document->DrawElement(bitmap.GetCanvas(), {}, pivot);
        return DrawingOf(bitmap);
    };
    EXPECT_EQ(drawn().At(50, 50), Red);
    document->Find<TSVGCustomGradient>("l")->GetStop(0).GetStopBrush().SetColor(Blue);
    EXPECT_EQ(drawn().At(50, 50), Blue);
    document->Find<TSVGPath>("p")->GetData().SetPathString("M0 0H10V10H0Z");
    EXPECT_EQ(drawn().At(50, 50), 0u);
    EXPECT_EQ(drawn().At(5, 5), Blue);
    document->Find<TSVGPath>("p")->GetData().ApplyMatrix(CreateScaleVZMatrix(8, 8));
    EXPECT_EQ(drawn().At(50, 50), Blue);
    document->FindElement("l")->Remove();
    EXPECT_TRUE(drawn().IsEmpty());
}

TEST(Painter, DrawsTheElementAtAnyScale) {
    const auto document = LoadContent("<g id='pivot'><circle cx='50' cy='50' r='40' fill='red'/></g>");
    const auto& pivot = *document->Find<TSVGGraphicElement>("pivot");
    for (const double scale : {0.1, 1.0, 3.0, 0.1, 20.0}) {
        TVZGPBitmap bitmap(100, 100);
        const TAffine matrix = TAffine::Scaling(scale, scale);
        document->DrawElement(bitmap.GetCanvas(), matrix, pivot);
        EXPECT_EQ(DrawingOf(bitmap), Drawn(*document, 100, 100, matrix))
            << "what it kept is for another scale: " << scale;
    }
}

TEST(Painter, KnowsThePixelsOfAnElement) {
    const auto document =
        LoadContent("<g id='g'><rect x='10' y='20' width='30' height='40' stroke='red' stroke-width='4'/></g>"
                    "<g id='none'/>");
    const TRectD box =
        document->GetDrawBounds(TAffine::Scaling(2, 2), *document->Find<TSVGGraphicElement>("g"));
    EXPECT_NEAR(box.Left, 16, 0.01);
    EXPECT_NEAR(box.Top, 36, 0.01);
    EXPECT_NEAR(box.Right, 84, 0.01);
    EXPECT_NEAR(box.Bottom, 124, 0.01);
    EXPECT_TRUE(document->GetDrawBounds({}, *document->Find<TSVGGraphicElement>("none")).IsEmpty());
}

TEST(Painter, TheBoundsOfAFilteredElementRunNoFilter) {
    const auto document =
        LoadContent("<filter id='f'><feGaussianBlur stdDeviation='2'/><feOffset dx='1'/></filter>"
                    "<path id='needle' d='M20 20H80V30H20Z' filter='url(#f)'/>");
    auto& needle = *document->Find<TSVGGraphicElement>("needle");
    for (const double angle : {0.0, 0.5}) {
        needle.SetTransform(TAffine::Rotation(angle));
        const TAffine matrix = TAffine::Scaling(20, 20);
        const std::size_t before = CountAllocatedBytes();
        const TRectD box = document->GetDrawBounds(matrix, needle);
        // Its pixels are 1440 by 240, in single precision 5 megabytes for each step.
        EXPECT_LT(CountAllocatedBytes() - before, 100'000u);
        EXPECT_GT(box.Width(), 1400 * std::cos(angle));

        // All that is painted lies in the box.
        TVZGPBitmap bitmap(2000, 2000);
        document->DrawElement(bitmap.GetCanvas(), matrix, needle);
        const TRect inside = PixelBounds(box);
        const TPixels pixels = bitmap.GetPixels();
        int outside = 0;
        int painted = 0;
        for (int y = 0; y < pixels.Height; ++y)
            for (int x = 0; x < pixels.Width; ++x) {
                if (pixels.Row(y)[x] == 0) continue;
                ++painted;
                outside += x < inside.Left || x >= inside.Right || y < inside.Top || y >= inside.Bottom;
            }
        EXPECT_GT(painted, 100'000);
        EXPECT_EQ(outside, 0);
    }
}

TEST(Painter, DrawsNothingOfAnotherDocument) {
    const auto document = LoadContent(Stack);
    const auto other = LoadContent(Stack);
    const auto& pivot = *other->Find<TSVGGraphicElement>("pivot");
    EXPECT_FALSE(document->CanDrawInParts(pivot));
    TVZGPBitmap bitmap(100, 100);
    document->DrawElement(bitmap.GetCanvas(), {}, pivot);
    document->DrawBefore(bitmap.GetCanvas(), {}, pivot);
    EXPECT_TRUE(DrawingOf(bitmap).IsEmpty());
}

TEST(Painter, AShapeInAGradientIsInNoPicture) {
    const auto document =
        LoadContent("<linearGradient><rect id='pivot' width='50' height='50'/></linearGradient>"
                    "<rect x='60' width='9' height='9' fill='red'/>");
    const auto& pivot = *document->Find<TSVGGraphicElement>("pivot");
    EXPECT_TRUE(document->GetDrawBounds({}, pivot).IsEmpty());
    TVZGPBitmap bitmap(100, 100);
    document->DrawElement(bitmap.GetCanvas(), {}, pivot);
    EXPECT_TRUE(DrawingOf(bitmap).IsEmpty());
    document->DrawBefore(bitmap.GetCanvas(), {}, pivot);
    document->DrawAfter(bitmap.GetCanvas(), {}, pivot);
    EXPECT_EQ(DrawingOf(bitmap), Drawn(*document));
}

TEST(Painter, DrawsThroughTheCanvasTransform) {
    const auto document = LoadContent("<rect width='10' height='10' fill='red'/>");
    TVZGPBitmap bitmap(100, 100);
    bitmap.GetCanvas().SetMatrix({2, 0, 0, 0, 2, 0, 30, 0, 1});
    document->Draw(bitmap.GetCanvas(), TAffine::Translation(10, 20), {0, 0, 100, 100});
    EXPECT_EQ(DrawingOf(bitmap).At(51, 41), Red);
    EXPECT_EQ(DrawingOf(bitmap).At(69, 59), Red);
    EXPECT_EQ(DrawingOf(bitmap).At(49, 41), 0u);
}

TEST(Painter, DrawsWithAnyMatrix) {
    const auto document = LoadContent(Stack);
    const double none = NoNumber;
    const double endless = Endless;
    for (const TAffine& matrix :
         {TAffine{none, 0, 0, 1, 0, 0}, TAffine{1, 0, 0, 1, endless, 0}, TAffine{0, 0, 0, 0, 0, 0},
          TAffine{1e300, 0, 0, 1e300, 0, 0}, TAffine{1e-300, 0, 0, 1e-300, 0, 0}})
        EXPECT_TRUE(Drawn(*document, 50, 50, matrix).IsEmpty()) << matrix.A << ' ' << matrix.E;
    EXPECT_EQ(Drawn(*document, 50, 50, {1e6, 0, 0, 1e6, 0, 0}).At(25, 25), Lime) << "a corner, enlarged";
}

} // namespace
} // namespace Vz::Test
