// Hostile documents: each gives an error or a bounded picture, with bounded work and memory. Every one is
// read and drawn in a process of its own, which counts what it does.

#include "DocumentScene.h"
#include "tavro/graphics/raster/Device.h"
#include "tavro/runtime/Utf8.h"
#include "tavro/svg/model/PictureInternal.h"
#include "tavro/svg/paint/PainterInternal.h"
#include "tests/support/Allocations.h"
#include "tests/support/Sanitized.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <functional>

namespace Vz::Test {
namespace {

/// What a process may have of memory, and ask for in all.
constexpr std::size_t Megabytes = 1024;
constexpr std::size_t MostAsked = std::size_t{3} << 30;
/// What filters may take, in the painting's figures.
constexpr double MostFilterCost = 1.5e9;
/// What a byte of text may draw by itself, in the painting's figures.
constexpr double MostPerByte = 10000;
/// Only a process that hangs takes so many seconds.
constexpr unsigned HangSeconds = 1200;

/// What a child process reports. Work is in the painting's figures.
struct TReport {
    double Followed = 0; ///< through references
    double Direct = 0;
    double Bound = 0; ///< of what is reached through references
    double Filters = 0;
    double Held = 0;           ///< pixels
    std::size_t Asked = 0;     ///< bytes of memory, all added up
    std::uint64_t Decoded = 0; ///< pixels of the document's PNG pictures
    bool Raised = false;       ///< EReadError
    bool Ended = false;
    char Reason[100] = "";
};

std::uint64_t DecodedPixels(const TSVGElement& element, std::vector<const TVZGPBitmap*>& seen) {
    std::uint64_t count = 0;
    if (const auto* const image = dynamic_cast<const TSVGImage*>(&element))
        if (const auto bitmap = image->GetBitmap(); bitmap && !std::ranges::count(seen, bitmap.get())) {
            seen.push_back(bitmap.get());
            count += std::uint64_t{bitmap->GetWidth()} * bitmap->GetHeight();
        }
    for (const auto& child : element.Children())
        count += DecodedPixels(*child, seen);
    return count;
}

void Draw(const TSVGDocument& document, TVZGPBitmap& bitmap, TReport& report) {
    TRasterDevice device(bitmap.GetPixels());
    TPaintWork work(device);
    work.CountDirect();
    TSVGPainter(document, device, work).Paint(TPaintPass::Whole, nullptr, document.GetDrawMatrix());
    report.Followed = work.Spent();
    report.Direct = work.Direct();
    report.Bound = work.Bound();
    report.Filters = work.FilterCost;
    report.Held = work.GreatestHeld();
}

void Exercise(const std::string& text, unsigned width, unsigned height, TReport& report) {
    const std::size_t before = CountAllocatedBytes();
    TSVGDocument document;
    try {
        document.LoadFromText(text);
        TVZGPBitmap bitmap(width, height);
        document.FitToRect({0, 0, float(width), float(height)});
        Draw(document, bitmap, report);
    } catch (const EReadError& error) {
        report.Raised = true;
        std::strncpy(report.Reason, error.what(), sizeof report.Reason - 1);
    }
    document.GetBounds();
    document.ElementAt({50, 50});
    document.WriteText();
    std::vector<const TVZGPBitmap*> seen;
    report.Decoded = DecodedPixels(document, seen);
    report.Asked = CountAllocatedBytes() - before;
    report.Ended = true;
}

void LimitMemory() {
    if (IsSanitized) return;
    const rlimit limit{rlim_t{Megabytes} << 20, rlim_t{Megabytes} << 20};
    setrlimit(RLIMIT_AS, &limit);
}

/// Reads and draws the document in a child process.
TReport RunChild(const std::string& text, unsigned width, unsigned height) {
    int ends[2];
    if (pipe(ends) != 0) {
        ADD_FAILURE() << "no pipe";
        return {};
    }
    const pid_t child = fork();
    if (child == 0) {
        LimitMemory();
        alarm(HangSeconds);
        TReport report;
        // Whatever goes wrong, the child ends here: it must not go on with the other tests.
        try {
            Exercise(text, width, height, report);
        } catch (const std::exception& error) {
            std::strncpy(report.Reason, error.what(), sizeof report.Reason - 1);
        }
        const bool written = write(ends[1], &report, sizeof report) == sizeof report;
        _exit(written ? 0 : 1);
    }
    close(ends[1]);
    TReport report;
    if (read(ends[0], &report, sizeof report) != sizeof report) report.Ended = false;
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(report.Ended) << "signal " << (WIFSIGNALED(status) ? WTERMSIG(status) : 0) << ", "
                              << report.Reason;
    return report;
}

/// Runs the document in a child process and checks what it took.
TReport Try(const std::string& text, unsigned width = 200, unsigned height = 200) {
    const TReport report = RunChild(text, width, height);
    // The last thing that is drawn may go beyond the bound, but a text is what bounds one thing.
    const double byItself = MostPerByte * double(text.size());
    EXPECT_LE(report.Followed, 1.1 * report.Bound + byItself);
    EXPECT_LE(report.Direct, TPaintWork::Most + TPaintWork::MostPerPixel * width * height + byItself);
    EXPECT_LE(report.Filters, MostFilterCost);
    EXPECT_LE(report.Held, TPaintWork::MostHeld);
    EXPECT_LE(report.Asked, IsSanitized ? 4 * MostAsked : MostAsked);
    EXPECT_LE(report.Decoded, MostPicturePixels);
    if (std::getenv("TAVRO_SHOW_COSTS"))
        std::printf(
            "    %8zu B: followed %.3f of %.3f, direct %.3f, filters %.3f, held %.3f, asked %zu MiB %s\n",
            text.size(), report.Followed * 1e-9, report.Bound * 1e-9, report.Direct * 1e-9,
            report.Filters * 1e-9, report.Held / TPaintWork::MostHeld, report.Asked >> 20, report.Reason);
    return report;
}

std::string Repeated(std::string_view text, int count) {
    std::string all;
    all.reserve(text.size() * std::size_t(count));
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

/// Calls piece(i) for 0 to count - 1.
template <class F> std::string Listed(int count, F piece) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += piece(i);
    return all;
}

std::string N(int number) { return std::to_string(number); }

constexpr int Many = 30000;
constexpr std::string_view Rect = "<rect width='100' height='100' fill='red'/>";

// XML

TEST(Robustness, EntityBombIsRefused) {
    std::string entities = "<!ENTITY e0 'lollollollol'>";
    for (int i = 1; i < 12; ++i)
        entities += "<!ENTITY e" + N(i) + " '" + Repeated("&e" + N(i - 1) + ";", 10) + "'>";
    EXPECT_TRUE(Try("<!DOCTYPE svg [" + entities + "]><svg><text>&e11;</text></svg>").Raised);
    EXPECT_TRUE(Try("<!DOCTYPE svg [" + entities + "]><svg><g id='&e11;'/></svg>").Raised);
}

TEST(Robustness, QuadraticEntityBombIsBounded) {
    const std::string big(200000, 'a');
    Try("<!DOCTYPE svg [<!ENTITY e '" + big + "'>]><svg><text>" + Repeated("&e;", 3000) + "</text></svg>");
    Try("<!DOCTYPE svg [<!ENTITY e '" + big + "'>]><svg>" + Repeated("<g id='&e;'/>", 3000) + "</svg>");
}

TEST(Robustness, EntitiesOfElementsAreBounded) {
    std::string entities = "<!ENTITY e0 '<g><g/></g>'>";
    for (int i = 1; i < 9; ++i)
        entities += "<!ENTITY e" + N(i) + " '" + Repeated("&e" + N(i - 1) + ";", 10) + "'>";
    Try("<!DOCTYPE svg [" + entities + "]><svg>&e8;</svg>");
}

TEST(Robustness, EntityCycleIsRefused) {
    EXPECT_TRUE(Try("<!DOCTYPE svg [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><svg>&a;</svg>").Raised);
}

TEST(Robustness, ExternalEntitiesAreNotRead) {
    const auto document =
        LoadText("<!DOCTYPE svg PUBLIC 'p' 'file:///none.dtd' [<!ENTITY f SYSTEM 'file:///etc/passwd'>]>"
                 "<svg><text id='t'>a&f;b</text></svg>");
    EXPECT_EQ(document->Find<TSVGCustomText>("t")->GetText(), "ab");
}

TEST(Robustness, DeepGroups) {
    Try(SvgText(Repeated("<g>", 100000) + std::string(Rect) + Repeated("</g>", 100000)));
}

TEST(Robustness, DeepLayers) {
    for (const char* open :
         {"<g opacity='.9'>", "<g style='isolation:isolate'>", "<g clip-path='url(#c)'>",
          "<g mask='url(#m)'>", "<g filter='url(#f)'>", "<svg>", "<a transform='rotate(1)'>"}) {
        SCOPED_TRACE(open);
        const std::string close = "</" + std::string(open + 1).substr(0, open[1] == 's' ? 3 : 1) + ">";
        Try(SvgText("<clipPath id='c'><circle r='100'/></clipPath><mask id='m'><rect width='100' "
                    "height='100' fill='#fff'/></mask>"
                    "<filter id='f'><feGaussianBlur stdDeviation='1'/></filter>" +
                    Repeated(open, 500) + std::string(Rect) + Repeated(close, 500)));
    }
}

TEST(Robustness, DeepLayersOnALargePicture) {
    Try(SvgText(Repeated("<g opacity='.9'>", 500) + std::string(Rect) + Repeated("</g>", 500)), 2000, 2000);
}

TEST(Robustness, DeepTexts) {
    Try(SvgText("<text y='50'>" + Repeated("<tspan>", 100000) + "a" + Repeated("</tspan>", 100000) +
                "</text>"));
    Try(SvgText("<text y='50'>" + Repeated("<tspan dy='1'>a", 500) + Repeated("</tspan>", 500) + "</text>"));
}

TEST(Robustness, ManyNamespaces) {
    Try("<svg xmlns='http://www.w3.org/2000/svg'>" +
        Listed(Many, [](int i) { return "<g xmlns:p" + N(i) + "='u'>"; }) + Repeated("</g>", Many) +
        "</svg>");
    Try("<svg xmlns='http://www.w3.org/2000/svg' " +
        Listed(20000, [](int i) { return "xmlns:p" + N(i) + "='u' "; }) + ">" +
        Repeated("<g q:a='1'/>", Many) + "</svg>");
}

TEST(Robustness, ManyAttributes) {
    Try("<svg><g " + Listed(Many, [](int i) { return "a" + N(i) + "='1' "; }) + "/></svg>");
}

TEST(Robustness, ManyEqualIds) {
    Try(SvgText(Repeated("<g id='a'/>", Many)));
    const auto document = LoadContent(Repeated("<g/>", 1000) + Repeated("<g id='a'/>", 20000));
    document->LoadFromText(SvgText("<g/>"));
    EXPECT_EQ(document->FindElement("a"), nullptr);
}

TEST(Robustness, LongTexts) {
    Try(SvgText("<text y='50'>" + Repeated("line of text\n", 400000) + "</text>"));
    Try(SvgText("<text y='50'>" + Repeated("a<tspan>b</tspan>", Many) + "</text>"));
    Try(SvgText(Repeated("<text y='50'>abc</text>", 15000)));
}

TEST(Robustness, LongTextOnAPath) {
    Try(SvgText("<path id='p' d='M0 50 C 30 0 60 0 100 50'/><text><textPath href='#p'>" +
                Repeated("word ", 200000) + "</textPath></text>"));
}

TEST(Robustness, ReferencesToTextsThatReferToTexts) {
    Try(SvgText("<defs><text id='t0'>aaaaaaaaaa</text>" +
                Listed(30,
                       [](int i) {
                           return "<text id='t" + N(i + 1) + "'>" +
                                  Repeated("<tref xlink:href='#t" + N(i) + "'/>", 10) + "</text>";
                       }) +
                "</defs><text y='50'><tref xlink:href='#t30'/></text>"));
}

// Cycles

class RobustnessOfCycles : public testing::TestWithParam<const char*> {};

TEST_P(RobustnessOfCycles, Ends) { EXPECT_FALSE(Try(SvgText(GetParam())).Raised); }

INSTANTIATE_TEST_SUITE_P(
    References, RobustnessOfCycles,
    testing::Values(
        "<use id='u' href='#u'/>", "<use id='a' href='#b'/><use id='b' href='#c'/><use id='c' href='#a'/>",
        "<g id='g'><use href='#g'/><g><use href='#g'/></g></g>",
        "<symbol id='s'><use href='#s'/></symbol><use href='#s'/>",
        "<g id='a'><use href='#b'/></g><g id='b'><use href='#a'/></g>",
        "<linearGradient id='a' href='#b'/><linearGradient id='b' href='#a'/><rect width='9' height='9' "
        "fill='url(#a)' stroke='url(#b)'/>",
        "<pattern id='p' width='9' height='9' patternUnits='userSpaceOnUse'><rect width='9' height='9' "
        "fill='url(#p)'/></pattern>"
        "<rect width='90' height='90' fill='url(#p)'/>",
        "<pattern id='p' href='#q'/><pattern id='q' href='#p'/><rect width='90' height='90' fill='url(#p)'/>",
        "<pattern id='p' width='9' height='9' patternUnits='userSpaceOnUse'><g fill='url(#q)'><rect "
        "width='9' height='9'/></g></pattern>"
        "<pattern id='q' width='9' height='9' patternUnits='userSpaceOnUse'><rect width='9' height='9' "
        "stroke='url(#p)'/></pattern>"
        "<rect width='90' height='90' fill='url(#p)'/>",
        "<clipPath id='c' clip-path='url(#c)'><rect width='50' height='50'/></clipPath><rect width='90' "
        "height='90' clip-path='url(#c)'/>",
        "<clipPath id='c'><rect width='50' height='50' clip-path='url(#d)'/></clipPath><clipPath id='d' "
        "clip-path='url(#c)'>"
        "<use href='#r'/></clipPath><rect id='r' width='90' height='90' clip-path='url(#c)'/>",
        "<mask id='m' mask='url(#m)'><rect width='50' height='50' mask='url(#m)'/></mask><rect width='90' "
        "height='90' mask='url(#m)'/>",
        "<mask id='m'><g mask='url(#n)'><rect width='9' height='9'/></g></mask><mask id='n'><g "
        "mask='url(#m)'><rect width='9' height='9'/>"
        "</g></mask><rect width='90' height='90' mask='url(#m)'/>",
        "<marker id='m' markerWidth='9' markerHeight='9'><path d='M0 0L5 5L9 0' marker-start='url(#m)' "
        "marker-mid='url(#m)'/></marker>"
        "<path d='M10 10L50 50L90 10' marker-start='url(#m)' marker-mid='url(#m)' marker-end='url(#m)'/>",
        "<marker id='m' fill='url(#p)'><path d='M0 0L5 5L9 0'/></marker><pattern id='p' width='9' height='9' "
        "patternUnits='userSpaceOnUse'>"
        "<path d='M0 0L5 5L9 0' marker-start='url(#m)'/></pattern><path d='M10 10L50 50' "
        "marker-start='url(#m)' fill='url(#p)'/>",
        "<filter id='f' filter='url(#f)' href='#f'><feImage href='#r'/></filter><rect id='r' width='50' "
        "height='50' filter='url(#f)'/>",
        "<filter id='f'><feImage href='#g'/></filter><g id='g'><rect width='50' height='50' "
        "filter='url(#f)'/><use href='#g'/></g>",
        "<mask id='m'><rect width='50' height='50' filter='url(#f)' fill='url(#p)'/></mask><pattern id='p' "
        "width='9' height='9' "
        "patternUnits='userSpaceOnUse'><rect width='9' height='9' mask='url(#m)'/></pattern><filter "
        "id='f'><feImage href='#r'/></filter>"
        "<rect id='r' width='50' height='50' mask='url(#m)'/>",
        "<style>@import url(#s);#s{fill:inherit}</style><g id='s' "
        "style='fill:inherit;stroke:inherit;clip-path:inherit;mask:inherit'/>",
        "<text id='t'><textPath href='#t'>a</textPath></text><text id='u'><textPath "
        "href='#v'>a</textPath></text><use id='v' href='#u'/>",
        "<text id='t'><tref href='#t'/>a</text><text id='a'><tref href='#b'/></text><text id='b'><tref "
        "href='#a'/></text>",
        "<svg id='s'><use href='#s'/></svg><switch id='w'><use href='#w'/></switch><a id='l'><use "
        "href='#l'/></a>",
        "<clipPath id='c'><text><textPath href='#r'>a</textPath></text></clipPath><path id='r' d='M0 0H9' "
        "clip-path='url(#c)'/>"
        "<use fill='context-fill' stroke='context-stroke' href='#w'/><use id='w' href='#r' "
        "fill='context-stroke' stroke='context-fill'/>"));

TEST(Robustness, LongChainsOfReferences) {
    const int count = 20000;
    Try(SvgText(Listed(count, [](int i) { return "<use id='u" + N(i) + "' href='#u" + N(i + 1) + "'/>"; }) +
                "<rect id='u20000' width='9' height='9'/>"));
    Try(SvgText(
        Listed(count,
               [](int i) { return "<linearGradient id='u" + N(i) + "' href='#u" + N(i + 1) + "'/>"; }) +
        "<rect width='9' height='9' fill='url(#u0)'/>"));
    Try(SvgText(Listed(2000,
                       [](int i) {
                           return "<clipPath id='u" + N(i) + "' clip-path='url(#u" + N(i + 1) +
                                  ")'><rect width='99' height='99'/></clipPath>";
                       }) +
                "<rect width='99' height='99' clip-path='url(#u0)'/>"));
    Try(SvgText(Listed(2000,
                       [](int i) {
                           return "<mask id='u" + N(i) + "' mask='url(#u" + N(i + 1) +
                                  ")'><rect width='99' height='99' fill='#fff'/></mask>";
                       }) +
                "<rect width='99' height='99' mask='url(#u0)'/>"));
}

// Trees that unfold

std::string UseTree(int levels, int width, std::string_view leaf) {
    return "<defs><g id='u0'>" + std::string(leaf) + "</g>" +
           Listed(levels,
                  [&](int i) {
                      return "<g id='u" + N(i + 1) + "'>" +
                             Repeated("<use xlink:href='#u" + N(i) + "'/>", width) + "</g>";
                  }) +
           "</defs><use xlink:href='#u" + N(levels) + "'/>";
}

TEST(Robustness, UsesThatUnfold) {
    Try(SvgText(UseTree(30, 10, "<rect width='3' height='3'/>")));
    Try(SvgText(UseTree(8, 10, Rect)), 1000, 1000);
    Try(SvgText(UseTree(8, 10, "<text y='50'>abc</text>")));
    Try(SvgText(UseTree(8, 10, "<rect width='100' height='100' fill='url(#g)' opacity='.5' stroke='red'/>") +
                "<linearGradient id='g'><stop/><stop offset='1'/></linearGradient>"));
}

TEST(Robustness, UsesThatUnfoldBehindBoxes) {
    const std::string tree = UseTree(30, 10, "<rect width='3' height='3'/>");
    Try(SvgText("<clipPath id='c' clipPathUnits='objectBoundingBox'><rect width='1' "
                "height='1'/></clipPath><g clip-path='url(#c)'>" +
                tree + "</g>"));
    Try(SvgText("<filter id='f'><feOffset/></filter><g filter='url(#f)'>" + tree + "</g>"));
    Try(SvgText(
        tree +
        "<clipPath id='c'><use xlink:href='#u30'/></clipPath><mask id='m'><use xlink:href='#u30'/></mask>"
        "<rect width='99' height='99' clip-path='url(#c)' mask='url(#m)'/>"));
}

TEST(Robustness, BoxesOfBoxes) {
    const std::string shapes = Repeated("<path d='M0 0L9 9V0z'/>", 20000);
    Try(SvgText("<mask id='m'><rect width='99' height='99' fill='#fff'/></mask>" +
                Repeated("<g mask='url(#m)'>", 300) + shapes + Repeated("</g>", 300)));
    Try(SvgText("<clipPath id='c' clipPathUnits='objectBoundingBox'><rect width='1' height='1'/></clipPath>" +
                Repeated("<g clip-path='url(#c)'>", 300) + shapes + Repeated("</g>", 300)));
}

TEST(Robustness, ServersThatUnfold) {
    const auto tree = [](std::string_view open, std::string_view close, std::string_view property) {
        return Listed(12,
                      [&](int i) {
                          const std::string inner = "<rect width='99' height='99' " + std::string(property) +
                                                    "='url(#s" + N(i) + ")'/>";
                          return "<" + std::string(open) + " id='s" + N(i + 1) + "'>" + Repeated(inner, 10) +
                                 "</" + std::string(close) + ">";
                      }) +
               "<rect width='99' height='99' " + std::string(property) + "='url(#s12)'/>";
    };
    Try(SvgText(tree("pattern width='50' height='50' patternUnits='userSpaceOnUse'", "pattern", "fill")));
    Try(SvgText(tree("mask", "mask", "mask")));
    Try(SvgText(tree("clipPath", "clipPath", "clip-path")));
    Try(SvgText(Listed(12,
                       [](int i) {
                           return "<marker id='s" + N(i + 1) + "'><path d='M0 0H1V1' marker-start='url(#s" +
                                  N(i) + ")' marker-mid='url(#s" + N(i) + ")' marker-end='url(#s" + N(i) +
                                  ")'/></marker>";
                       }) +
                "<path d='M0 0H1V1' marker-mid='url(#s12)'/>"));
}

TEST(Robustness, ImagesInImages) {
    std::string inner = SvgText(UseTree(8, 10, Rect));
    for (int i = 0; i < 6; ++i) {
        std::string escaped;
        for (const char c : inner)
            escaped += c == '<'    ? std::string("%3C")
                       : c == '\'' ? std::string("%27")
                       : c == '%'  ? std::string("%25")
                       : c == '#'  ? std::string("%23")
                       : c == '&'  ? std::string("%26")
                                   : std::string(1, c);
        inner = SvgText(UseTree(
            4, 10, "<image width='99' height='99' xlink:href='data:image/svg+xml," + escaped + "'/>"));
        if (i == 5) Try(inner);
    }
}

TEST(Robustness, ImagesOfManyPixels) {
    // A PNG that claims 30000 by 30000 pixels.
    Try(SvgText("<image width='99' height='99' href='data:image/png;base64,"
                "iVBORw0KGgoAAAANSUhEUgAAdTAAAHUwCAYAAAAAAAAAAAAAAElFTkSuQmCC'/>"));
}

/// A PNG file of white pixels of one bit each, as a data URI; the last rows are in the given shade.
std::string WhitePngUri(unsigned extent, unsigned shade) {
    TVZGPBitmap bitmap(extent, extent);
    const TPixels pixels = bitmap.GetPixels();
    for (int y = 0; y < pixels.Height; ++y)
        std::fill_n(pixels.Row(y), pixels.Width, y < 9 ? 0xFF000000u + shade : 0xFFFFFFFFu);
    std::string uri = "data:image/png,";
    for (const char c : EncodePng(pixels)) {
        constexpr char digits[] = "0123456789abcdef";
        uri += {'%', digits[static_cast<unsigned char>(c) >> 4], digits[static_cast<unsigned char>(c) & 15]};
    }
    return uri;
}

std::string ImageElement(const std::string& uri) {
    return "<image width='99' height='99' href='" + uri + "'/>";
}

TEST(Robustness, EqualPicturesAreDecodedOnce) {
    const std::string uri = WhitePngUri(4000, 0);
    const TReport report = Try(SvgText(Repeated(ImageElement(uri), 200)));
    EXPECT_EQ(report.Decoded, 16'000'000u);
    const auto document = LoadContent("<g>" + Repeated(ImageElement(uri), 3) + "</g>");
    const TSVGElement& group = document->GetChild(0);
    const auto bitmapOf = [&](std::size_t i) {
        return dynamic_cast<TSVGImage&>(group.GetChild(i)).GetBitmap();
    };
    EXPECT_EQ(bitmapOf(0), bitmapOf(2));
    TSVGDocument copy;
    copy.AssignContent(*document);
    EXPECT_EQ(dynamic_cast<TSVGImage&>(copy.GetChild(0).GetChild(1)).GetBitmap(), bitmapOf(0));
}

TEST(Robustness, PixelsOfPicturesAreBounded) {
    std::string all;
    for (unsigned i = 0; i < 6; ++i)
        all += ImageElement(WhitePngUri(3000, i));
    EXPECT_EQ(Try(SvgText(all)).Decoded, 27'000'000u) << "three of nine million fit";
    const auto document = LoadContent(all);
    ASSERT_EQ(document->GetDiagnostics().size(), 3u);
    EXPECT_NE(document->GetDiagnostics()[0].Text.find("pixels of pictures"), std::string::npos);
    // What an element gives up is there for another one.
    auto& first = dynamic_cast<TSVGImage&>(document->GetChild(0));
    auto& last = dynamic_cast<TSVGImage&>(document->GetChild(5));
    const std::string uri = WhitePngUri(3000, 9);
    last.ReadAttribute("href", uri);
    EXPECT_EQ(last.GetBitmap(), nullptr);
    first.ReadAttribute("href", "");
    last.ReadAttribute("href", uri);
    EXPECT_NE(last.GetBitmap(), nullptr);
    // A picture that is given up while the text is being read was decoded, too.
    std::string twice;
    for (unsigned i = 0; i < 6; ++i)
        twice += "<image width='9' height='9' href='" + WhitePngUri(3000, i) + "' xlink:href=''/>";
    EXPECT_GE(LoadContent(twice)->GetDiagnostics().size(), 3u);
    // Those of embedded documents count with the others.
    std::string inner;
    for (const char c : SvgText(all)) {
        constexpr char digits[] = "0123456789abcdef";
        inner +=
            {'%', digits[static_cast<unsigned char>(c) >> 4], digits[static_cast<unsigned char>(c) & 15]};
    }
    const auto outer = LoadContent(ImageElement("data:image/svg+xml," + inner) + ImageElement(uri));
    EXPECT_EQ(dynamic_cast<TSVGImage&>(outer->GetChild(1)).GetBitmap(), nullptr);
}

TEST(Robustness, PicturesThatFiltersShowAreDecodedOnce) {
    const std::string uri = WhitePngUri(2000, 0);
    Try(SvgText("<filter id='f'>" + Repeated("<feImage href='" + uri + "'/>", 20) + "</filter>" +
                Repeated("<rect width='99' height='99' filter='url(#f)'/>", 20)));
}

TEST(Robustness, WhatFiltersShowCounts) {
    const std::string_view groups[] = {
        "<path d='M10 10h80v80z' stroke='red'/>",
        "<g opacity='.5'><circle cx='50' cy='50' r='40' stroke='red'/><circle r='9'/></g>",
        "<text y='50'>abcdefghijklmnopqrst</text>",
    };
    std::vector<std::string> contents{
        "<path fill='none' stroke='red' stroke-linejoin='round' stroke-width='50' d='M0 0" +
            Repeated("L99 0L0 99", 40000) + "'/>",
        "<path d='M0 0" + Repeated("L99 0L0 99", 40000) + "'/>"};
    for (const std::string_view group : groups)
        contents.push_back(Repeated(group, 5000));
    for (const std::string& content : contents) {
        SCOPED_TRACE(content.substr(0, 60));
        const TReport report = Try(SvgText("<defs><g id='g'>" + content + "</g></defs><filter id='f'>" +
                                           Repeated("<feImage href='#g'/>", 20) +
                                           "</filter><rect width='99' height='99' filter='url(#f)'/>"));
        EXPECT_GE(report.Followed, 1e8) << "twenty times a heavy group";
    }
}

TEST(Robustness, LongTextsOfManyScripts) {
    constexpr char32_t first[] = {'A', 0x391, 0x410, 0x5D0, 0x621, 0x905, 0xE01, 0x3041, 0x4E00, 0xAC00};
    std::string text;
    for (std::uint32_t i = 0; i < 65536; ++i)
        AppendUtf8(text, first[i * 7 % 10] + i * 11 % 25);
    for (const std::string style : {"", "stroke='red'", "letter-spacing='1' text-decoration='underline'",
                                    "font-size='1000'", "rotate='10 20 30'"}) {
        SCOPED_TRACE(style);
        EXPECT_LE(Try(SvgText("<text y='50' " + style + ">" + text + "</text>")).Asked,
                  std::size_t{900} << 20);
    }
}

// Paths, strokes, markers

TEST(Robustness, TenMegabytePaths) {
    Try(SvgText("<path d='M0 0" +
                Listed(700000,
                       [](int i) {
                           return "L" + N(i % 1000 * 7919 % 100) + " " + N(i % 1000 * 104729 % 100) + ".5 ";
                       }) +
                "'/>"));
    Try(SvgText("<path fill='none' stroke='red' d='M0 0" + Repeated("c1 2 3 4 .5 .6", 150000) + "'/>"));
    Try(SvgText("<path d='" + std::string(10 << 20, 'M') + "'/>"));
    Try(SvgText("<polyline points='" + Repeated("1,2 ", 1000000) + "'/>"));
    Try(SvgText("<path fill='none' stroke='red' stroke-linejoin='round' stroke-width='50' d='M0 0" +
                Repeated("L99 0L0 99", 40000) + "'/>"));
}

TEST(Robustness, ManyShapes) {
    Try(SvgText(Repeated("<path d='M10 10h80v80z' stroke='red'/>", 30000)));
    Try(SvgText(
        Repeated("<g opacity='.5'><circle cx='50' cy='50' r='40' stroke='red'/><circle r='9'/></g>", 5000)));
}

TEST(Robustness, ManyShapesWithServers) {
    Try(SvgText("<linearGradient id='g'>" +
                Listed(Many, [](int i) { return "<stop offset='" + N(i % 2) + "'/>"; }) +
                "</linearGradient>" + Repeated("<rect width='9' height='9' fill='url(#g)'/>", 7500)));
    Try(SvgText("<pattern id='p' width='100' height='100' patternUnits='userSpaceOnUse' "
                "patternTransform='scale(100)'>" +
                std::string(Rect) + "</pattern>" +
                Repeated("<rect width='99' height='99' fill='url(#p)'/>", 250)));
    Try(SvgText("<filter id='f'><feGaussianBlur stdDeviation='9'/></filter>" +
                Repeated("<rect width='99' height='99' filter='url(#f)'/>", 300)));
    Try(SvgText("<mask id='m'><rect width='99' height='99' fill='#fff'/></mask>" +
                Repeated("<rect width='99' height='99' mask='url(#m)'/>", 1000)));
    Try(SvgText("<clipPath id='c'><circle r='99'/></clipPath>" +
                Repeated("<rect width='99' height='99' clip-path='url(#c)'/>", 2500)));
}

TEST(Robustness, ManyMarkers) {
    Try(SvgText("<marker id='m' orient='auto'><path d='M0 0H3V3z'/></marker><path fill='none' "
                "marker-mid='url(#m)' d='M0 0" +
                Repeated("l1 1l-1-1", 500000) + "'/>"));
    Try(SvgText("<marker id='m' orient='auto' opacity='.5'><text>abc</text></marker><polyline fill='none' "
                "marker-mid='url(#m)' points='" +
                Repeated("1,1 50,50 ", 20000) + "'/>"));
}

TEST(Robustness, HugeDashArrays) {
    Try(SvgText("<path fill='none' stroke='red' d='M0 50H100' stroke-dasharray='" + Repeated("1 ", 2000000) +
                "'/>"));
    Try(SvgText("<path fill='none' stroke='red' d='M0 50H1e9' stroke-dasharray='.001'/>"));
    Try(SvgText("<circle r='1e6' fill='none' stroke='red' stroke-width='9' stroke-dasharray='1e-30 1e-30' "
                "stroke-linecap='round'/>"));
    Try(SvgText(
        "<path fill='none' stroke='red' d='M0 50H100' stroke-dasharray='1' stroke-dashoffset='1e38'/>"));
    Try(SvgText("<path fill='none' stroke='red' d='M0 50H100' stroke-dasharray='1' pathLength='1e-30'/>"));
    Try(SvgText(Repeated("<path fill='none' stroke='red' d='M0 50H100000' stroke-dasharray='.3'/>", 30)));
    const TReport many = Try(
        SvgText(Repeated("<path fill='none' stroke='red' d='M0 50H100000' stroke-dasharray='.3'/>", 3000)));
    EXPECT_GE(many.Followed, many.Bound) << "many dashes of few letters count, and the rest is left out";
}

// Numbers

TEST(Robustness, GiganticNumbersEverywhere) {
    for (const char* number : {"1e308", "-1e308", "3e38", "-3e38", "1e-308", "1e-45",
                               "99999999999999999999999999999999999999999", "1e999999999", "NaN", "inf"}) {
        SCOPED_TRACE(number);
        std::string content =
            "<linearGradient id='l' x1='#' x2='#%' y1='1' gradientUnits='userSpaceOnUse' "
            "gradientTransform='scale(#)'><stop offset='#'/>"
            "<stop offset='1'/></linearGradient><radialGradient id='r' cx='#' fx='#' r='#' "
            "fr='#'><stop/><stop offset='1'/></radialGradient>"
            "<pattern id='p' width='#' height='#' x='#' viewBox='# # # #' "
            "patternTransform='translate(#)'><rect width='#' height='#'/></pattern>"
            "<marker id='m' markerWidth='#' markerHeight='#' refX='#' orient='#'><rect width='#' "
            "height='9'/></marker>"
            "<clipPath id='c'><circle cx='#' r='#'/></clipPath><mask id='k' x='#' width='#' height='#'><rect "
            "width='#' height='9'/></mask>"
            "<filter id='f' x='#' width='#' height='#'><feGaussianBlur stdDeviation='#'/><feOffset "
            "dx='#'/><feMorphology radius='#'/>"
            "<feConvolveMatrix order='#' kernelMatrix='#'/><feTurbulence baseFrequency='#' "
            "numOctaves='#'/></filter>"
            "<rect x='#' y='#' width='#' height='#' rx='#' fill='url(#l)' stroke='url(#r)' stroke-width='#'/>"
            "<rect width='90' height='90' rx='#' fill='url(#r)' stroke='url(#p)' stroke-width='#' "
            "stroke-dasharray='#' stroke-dashoffset='#' "
            "stroke-miterlimit='#' opacity='#' fill-opacity='#'/><circle r='#' fill='url(#p)'/><ellipse "
            "rx='#' ry='1'/>"
            "<path d='M# #L# 0A# # # 0 1 # #C# # # # # #Q0 # # 0z' marker-start='url(#m)' stroke='red' "
            "pathLength='#'/>"
            "<path d='M0 0L90 90A# # # 0 1 50 50' marker-mid='url(#m)' stroke='red' stroke-width='#'/>"
            "<g transform='translate(#) rotate(#) scale(#) skewX(#) matrix(# # # # # #)'><rect width='9' "
            "height='9' stroke='red'/></g>"
            "<rect width='90' height='90' clip-path='url(#c)'/><rect width='90' height='90' mask='url(#k)'/>"
            "<rect width='90' height='90' filter='url(#f)'/><text x='#' y='#' dx='#' rotate='#' "
            "textLength='#' font-size='#' "
            "letter-spacing='#' word-spacing='#' font-weight='#'>a b</text><text y='50' textLength='#' "
            "letter-spacing='#em'>a b</text>"
            "<path id='t' d='M0 0H#'/><text><textPath href='#t' startOffset='#'>a b</textPath></text><use "
            "href='#t' x='#' width='#'/>"
            "<svg x='#' width='#' height='#' viewBox='# 0 # #'><rect width='#' height='#%'/></svg>"
            "<g style='transform-origin:# #;baseline-shift:#;transform:rotate(#)'><rect width='9' "
            "height='9'/></g>";
        std::string filled;
        for (std::size_t i = 0; i < content.size(); ++i) {
            const bool isReference = content[i] == '#' && (content.compare(i - 4, 4, "url(") == 0 ||
                                                           content.compare(i - 6, 6, "href='") == 0);
            filled += content[i] == '#' && !isReference ? std::string(number) : std::string(1, content[i]);
        }
        Try(SvgText(filled));
        Try(SvgText(filled, "width='" + std::string(number) + "' height='9' viewBox='0 0 " + number + " " +
                                number + "'"));
    }
}

TEST(Robustness, SizesOfAllKinds) {
    for (const char* size : {"0", "1", "1e-30", "100000", "1e30", "100000%"})
        for (const char* box :
             {"", "viewBox='0 0 100 100'", "viewBox='0 0 1e-20 1e20'", "viewBox='-1e30 -1e30 1e30 1e30'"}) {
            SCOPED_TRACE(std::string(size) + " " + box);
            Try(SvgText(Rect, "width='" + std::string(size) + "' height='" + size + "' " + box));
        }
}

TEST(Robustness, LargePictures) {
    Try(SvgText("<g opacity='.5'><circle cx='50' cy='50' r='50'/></g>"), 5000, 5000);
    Try(SvgText("<mask id='m'><rect width='99' height='99' fill='#fff'/></mask><rect width='99' height='99' "
                "mask='url(#m)'/>"),
        5000, 5000);
    Try(SvgText("<filter id='f'><feGaussianBlur stdDeviation='5'/></filter><rect width='99' height='99' "
                "filter='url(#f)'/>"),
        4000, 4000);
    Try(SvgText("<pattern id='p' width='1' height='1'>" + std::string(Rect) +
                "</pattern><rect width='99' height='99' fill='url(#p)'/>"),
        5000, 5000);
    Try(SvgText(Rect), 32767, 10);
}

TEST(Robustness, DegenerateTransforms) {
    for (const char* transform : {"scale(0)", "scale(1e-30)", "scale(1e30)", "matrix(1 1 1 1 0 0)",
                                  "skewX(90)", "matrix(1e30 0 0 1e-30 0 0)", "rotate(1e30)",
                                  "translate(1e38 -1e38)", "matrix(1 1 1 1.0000001 0 0)"}) {
        SCOPED_TRACE(transform);
        const std::string by = std::string("transform='") + transform + "' ";
        Try(SvgText("<g " + by +
                    "><path d='M10 10C90 10 10 90 90 90' stroke='red' stroke-width='9' "
                    "stroke-dasharray='1'/><text y='50'>abc</text></g>"
                    "<linearGradient id='g' gradientTransform='" +
                    transform +
                    "'><stop/><stop offset='1'/></linearGradient>"
                    "<pattern id='p' width='5' height='5' patternUnits='userSpaceOnUse' patternTransform='" +
                    transform + "'>" + std::string(Rect) + "</pattern><clipPath id='c' " + by + ">" +
                    std::string(Rect) +
                    "</clipPath><rect width='99' height='99' fill='url(#g)' stroke='url(#p)' "
                    "stroke-width='9'/><g clip-path='url(#c)'>" +
                    std::string(Rect) + "</g><mask id='m'><rect " + by +
                    "width='9' height='9' fill='#fff'/></mask><g mask='url(#m)'>" + std::string(Rect) +
                    "</g>"));
    }
}

// Style sheets

TEST(Robustness, ManyRulesTimesManyElements) {
    Try(SvgText("<style>" + Listed(Many, [](int i) { return "g rect.c" + N(i) + "{fill:red}"; }) +
                "</style><g>" + Listed(Many, [](int i) { return "<rect class='c" + N(i) + "'/>"; }) +
                "</g>"));
    Try(SvgText("<style>" + Repeated("g g g g rect{fill:red}", Many) + "</style><g>" +
                Repeated("<rect/>", Many) + "</g>"));
    Try(SvgText("<style>" + Repeated("rect + rect + rect ~ rect{fill:red} * * *{fill:lime}", 10000) +
                "</style>" + Repeated("<rect/>", 20000)));
    Try(SvgText("<style>" + Repeated(".a{fill:red}", 20000) + "</style>" +
                Repeated("<rect class='" + Repeated("a ", 100) + "'/>", 5000)));
    Try(SvgText("<style>" + Repeated("*[", 500000) + "</style>" + std::string(Rect)));
    Try(SvgText("<style>" + Repeated("{", 500000) + "</style><style>" + Repeated("(", 500000) +
                "</style><style>" + Repeated("/*", 500000) + "</style>" + std::string(Rect)));
    Try(SvgText("<rect style='" + Repeated("fill:red;", 500000) + "' width='9' height='9'/>"));
}

TEST(Robustness, ManyInheritedStyles) {
    Try(SvgText(
        Repeated("<g style='font-size:1.5em;stroke-width:2em;letter-spacing:2em' font-family='a,b,c'>", 500) +
        "<text y='50'>abc</text>" + Repeated("</g>", 500)));
}

// What code builds

TEST(Robustness, DeepTreesOfCode) {
    TSVGDocument document;
    document.BeginUpdate();
    TSVGElement* at = &document;
    for (int i = 0; i < 3000; ++i)
        at = &at->Add<TSVGGroup>();
    at->Add<TSVGPath>().GetData().SetPathString("M0 0H50V50z");
    document.EndUpdate();
    Drawn(document);
    document.WriteText();
    document.GetChild(0).CloneBeside();
    EXPECT_EQ(document.GetChildCount(), 2u);
}

} // namespace
} // namespace Vz::Test
