// Laws that hold for every reference case, whatever it should look like: its parts make the whole, its text
// reads back to the same picture, a copy draws the same, and both paint devices draw it alike.
//
// The folder of cases is TAVRO_SVG_SUITE; where there is none the program says so and ends with status 77.

#include "tavro/VZSVGControl.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/graphics/vector/Device.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>

namespace {

using namespace Vz;
namespace fs = std::filesystem;

const fs::path Suite = TAVRO_SVG_SUITE;
constexpr int Skipped = 77;

struct TCase {
    std::string Name;
    std::unique_ptr<TSVGDocument> Document;
    unsigned Width = 0;
    unsigned Height = 0;

    const TAffine& Matrix() const { return Document->GetDrawMatrix(); }
    TRectF Rect() const { return {0, 0, float(Width), float(Height)}; }
};

/// The size that a PNG file says it has; nothing where it is none.
std::optional<std::pair<unsigned, unsigned>> PngSize(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    unsigned char head[24];
    if (!file.read(reinterpret_cast<char*>(head), sizeof head)) return {};
    const auto number = [&](int at) {
        return unsigned(head[at]) << 24 | unsigned(head[at + 1]) << 16 | unsigned(head[at + 2]) << 8 |
               head[at + 3];
    };
    return std::pair{number(16), number(20)};
}

std::optional<TCase> LoadCase(const fs::path& svg) {
    TCase item;
    item.Name = svg.lexically_relative(Suite / "tests").replace_extension().generic_string();
    const auto size = PngSize(fs::path(svg).replace_extension(".png"));
    if (!size) return {};
    std::tie(item.Width, item.Height) = *size;
    item.Document = std::make_unique<TSVGDocument>();
    try {
        item.Document->LoadFromFile(svg.string());
    } catch (const EReadError&) {
        return {}; // some cases are meant to be no SVG
    }
    item.Document->FitToRect(item.Rect());
    return item;
}

/// Calls check for each case and fails with all that it returns, a line each.
void ForCases(const std::function<void(TCase& item, std::vector<std::string>& faults)>& check) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(Suite / "tests"))
        if (entry.path().extension() == ".svg") files.push_back(entry.path());
    std::ranges::sort(files);
    std::vector<std::string> faults;
    int count = 0;
    for (const fs::path& file : files) {
        auto item = LoadCase(file);
        if (!item) continue;
        ++count;
        check(*item, faults);
    }
    EXPECT_GT(count, 0);
    std::cout << count << " cases\n";
    for (const std::string& fault : faults)
        ADD_FAILURE() << fault;
}

using TBitmap = std::unique_ptr<TVZGPBitmap>;

TBitmap Blank(const TCase& item) { return std::make_unique<TVZGPBitmap>(item.Width, item.Height); }

TBitmap DrawnWhole(const TCase& item, const TSVGDocument& document) {
    TBitmap bitmap = Blank(item);
    document.Draw(bitmap->GetCanvas(), item.Matrix(), item.Rect());
    return bitmap;
}

int ChannelDifference(std::uint32_t a, std::uint32_t b) {
    int worst = 0;
    for (int shift = 0; shift < 32; shift += 8)
        worst = std::max(worst, std::abs(int(a >> shift & 255u) - int(b >> shift & 255u)));
    return worst;
}

int WorstDifference(const TVZGPBitmap& first, const TVZGPBitmap& second) {
    const TPixels a = first.GetPixels();
    const TPixels b = second.GetPixels();
    int worst = 0;
    for (int y = 0; y < a.Height; ++y) {
        if (std::memcmp(a.Row(y), b.Row(y), std::size_t(a.Width) * 4) == 0) continue;
        for (int x = 0; x < a.Width; ++x)
            worst = std::max(worst, ChannelDifference(a.Row(y)[x], b.Row(y)[x]));
    }
    return worst;
}

/// Calls visit for each element of the tree that can be drawn in parts.
void ForPivots(const TSVGDocument& document, const std::function<void(const TSVGGraphicElement&)>& visit) {
    const std::function<void(const TSVGElement&)> walk = [&](const TSVGElement& parent) {
        for (const auto& child : parent.Children()) {
            const auto* const element = dynamic_cast<const TSVGGraphicElement*>(child.get());
            if (element && document.CanDrawInParts(*element)) visit(*element);
            walk(*child);
        }
    };
    walk(document);
}

std::string NameOf(const TSVGElement& element) {
    std::string name;
    for (const TSVGElement* at = &element; at->GetParent(); at = at->GetParent()) {
        const auto& siblings = at->GetParent()->Children();
        const auto place = std::ranges::find(siblings, at, &std::unique_ptr<TSVGElement>::get);
        name =
            '/' + std::string(at->GetTagName()) + '[' + std::to_string(place - siblings.begin()) + ']' + name;
    }
    return name;
}

TEST(Parts, OnOneCanvasAreTheWhole) {
    int pivots = 0;
    ForCases([&](TCase& item, std::vector<std::string>& faults) {
        const TBitmap whole = DrawnWhole(item, *item.Document);
        ForPivots(*item.Document, [&](const TSVGGraphicElement& pivot) {
            ++pivots;
            const TBitmap parts = Blank(item);
            item.Document->DrawBefore(parts->GetCanvas(), item.Matrix(), pivot);
            item.Document->DrawElement(parts->GetCanvas(), item.Matrix(), pivot);
            item.Document->DrawAfter(parts->GetCanvas(), item.Matrix(), pivot);
            if (const int worst = WorstDifference(*whole, *parts))
                faults.push_back(item.Name + NameOf(pivot) + ": differs by " + std::to_string(worst));
            // What the element kept from its first drawing draws the same again.
            const TBitmap again = Blank(item);
            item.Document->DrawBefore(again->GetCanvas(), item.Matrix(), pivot);
            item.Document->DrawElement(again->GetCanvas(), item.Matrix(), pivot);
            item.Document->DrawAfter(again->GetCanvas(), item.Matrix(), pivot);
            if (const int worst = WorstDifference(*parts, *again))
                faults.push_back(item.Name + NameOf(pivot) + ": differs when drawn again by " +
                                 std::to_string(worst));
        });
    });
    EXPECT_GT(pivots, 0);
    std::cout << pivots << " elements\n";
}

TEST(Parts, ThroughTwoBitmapsAreTheWholeWithinRounding) {
    constexpr int limit = 2;
    ForCases([&](TCase& item, std::vector<std::string>& faults) {
        const TBitmap whole = DrawnWhole(item, *item.Document);
        ForPivots(*item.Document, [&](const TSVGGraphicElement& pivot) {
            const TBitmap before = Blank(item);
            const TBitmap after = Blank(item);
            item.Document->DrawBefore(before->GetCanvas(), item.Matrix(), pivot);
            item.Document->DrawAfter(after->GetCanvas(), item.Matrix(), pivot);
            const TBitmap parts = Blank(item);
            parts->GetCanvas().DrawImage(*before, item.Rect(), 1);
            item.Document->DrawElement(parts->GetCanvas(), item.Matrix(), pivot);
            parts->GetCanvas().DrawImage(*after, item.Rect(), 1);
            if (const int worst = WorstDifference(*whole, *parts); worst > limit)
                faults.push_back(item.Name + NameOf(pivot) + ": differs by " + std::to_string(worst));
        });
    });
}

/// Calls visit for each group that is painted with others as one, so that it cannot be drawn on its own.
void ForGroupsInLayers(const TSVGDocument& document,
                       const std::function<void(const TSVGGraphicElement&)>& visit) {
    const std::function<void(const TSVGElement&)> walk = [&](const TSVGElement& parent) {
        for (const auto& child : parent.Children()) {
            const auto* const element = dynamic_cast<const TSVGGraphicElement*>(child.get());
            if (element && element->GetTag() == TSVGTag::G && !document.CanDrawInParts(*element))
                visit(*element);
            walk(*child);
        }
    };
    walk(document);
}

/// The picture of a control in which the element is active.
TBitmap Painted(TVZSVGControl& control, THeadlessHost& host, const TSVGGraphicElement& active,
                bool isBuffered) {
    control.SetActiveSVGElement(const_cast<TSVGGraphicElement*>(&active));
    control.SetBuffered(isBuffered);
    const TVZGPBitmap& shown = host.Paint();
    TBitmap copy = std::make_unique<TVZGPBitmap>(shown.GetWidth(), shown.GetHeight());
    for (int y = 0; y < int(shown.GetHeight()); ++y)
        std::memcpy(copy->GetPixels().Row(y), shown.GetPixels().Row(y), std::size_t(shown.GetWidth()) * 4);
    return copy;
}

/// The control with its two caches against the same control without.
TEST(Control, BufferedIsTheWholeWithinRounding) {
    constexpr int limit = 2;
    int cached = 0;
    int inLayers = 0;
    ForCases([&](TCase& item, std::vector<std::string>& faults) {
        const auto control = TVZSVGControl::Create();
        control->LoadFromText(item.Document->WriteText());
        control->SetBounds(0, 0, int(item.Width), int(item.Height));
        THeadlessHost host(*control, 1);
        ForPivots(control->GetDocument(), [&](const TSVGGraphicElement& pivot) {
            const TBitmap whole = Painted(*control, host, pivot, false);
            const int worst = WorstDifference(*whole, *Painted(*control, host, pivot, true));
            cached += control->GetBeforeBuffer() && !control->AreBuffersStale();
            if (worst > limit)
                faults.push_back(item.Name + NameOf(pivot) + ": differs by " + std::to_string(worst));
        });
        ForGroupsInLayers(control->GetDocument(), [&](const TSVGGraphicElement& group) {
            ++inLayers;
            const TBitmap whole = Painted(*control, host, group, false);
            if (const int worst = WorstDifference(*whole, *Painted(*control, host, group, true)))
                faults.push_back(item.Name + NameOf(group) + ": unbuffered, differs by " +
                                 std::to_string(worst));
        });
    });
    EXPECT_GT(cached, 0);
    EXPECT_GT(inLayers, 0);
    std::cout << cached << " elements between caches, " << inLayers << " groups in layers\n";
}

TEST(WrittenText, DrawsTheSameAndIsWrittenTheSame) {
    ForCases([](TCase& item, std::vector<std::string>& faults) {
        const std::string text = item.Document->WriteText();
        TSVGDocument again;
        try {
            again.LoadFromText(text, item.Name);
        } catch (const EReadError& error) {
            faults.push_back(std::string("cannot be read again: ") + error.what());
            return;
        }
        if (again.WriteText() != text) faults.push_back(item.Name + ": is written otherwise");
        if (const int worst = WorstDifference(*DrawnWhole(item, *item.Document), *DrawnWhole(item, again)))
            faults.push_back(item.Name + ": differs by " + std::to_string(worst));
    });
}

TEST(Copy, DrawsTheSame) {
    ForCases([](TCase& item, std::vector<std::string>& faults) {
        TSVGDocument copy;
        copy.AssignContent(*item.Document);
        if (const int worst = WorstDifference(*DrawnWhole(item, *item.Document), *DrawnWhole(item, copy)))
            faults.push_back(item.Name + ": differs by " + std::to_string(worst));
    });
}

/// The reference cases' own measure of two pictures.
struct TMeasure {
    double Differ = 0; ///< share of pixels that differ by more than 32
    double Struct = 0; ///< share that differs by more than 64 from all within a pixel in the other picture
    double Mean = 0;   ///< mean difference of a channel
    bool Passes() const { return Differ <= 0.01 && Struct <= 0.0005 && Mean <= 1.0; }
};

int NearestDifference(const TPixels& a, const TPixels& b, int x, int y) {
    int best = 255;
    for (int v = std::max(y - 1, 0); v <= std::min(y + 1, b.Height - 1); ++v)
        for (int u = std::max(x - 1, 0); u <= std::min(x + 1, b.Width - 1); ++u)
            best = std::min(best, ChannelDifference(a.Row(y)[x], b.Row(v)[u]));
    return best;
}

TMeasure MeasureOf(const TPixels& a, const TPixels& b) {
    TMeasure measure;
    for (int y = 0; y < a.Height; ++y)
        for (int x = 0; x < a.Width; ++x) {
            const std::uint32_t p = a.Row(y)[x];
            const std::uint32_t q = b.Row(y)[x];
            if (p == q) continue;
            for (int shift = 0; shift < 32; shift += 8)
                measure.Mean += std::abs(int(p >> shift & 255u) - int(q >> shift & 255u)) / 4.0;
            const int worst = ChannelDifference(p, q);
            if (worst > 32) ++measure.Differ;
            if (worst > 64 && (NearestDifference(a, b, x, y) > 64 || NearestDifference(b, a, x, y) > 64))
                ++measure.Struct;
        }
    const double pixels = double(a.Width) * a.Height;
    measure.Differ /= pixels;
    measure.Struct /= pixels;
    measure.Mean /= pixels;
    return measure;
}

/// Cases in which cairo's picture is known to be another one, and why.
constexpr std::pair<std::string_view, std::string_view> Exceptions[] = {
    {"painting/stroke/control-points-clamping-1", "cairo rounds the outside of a curve's sharpest bend"},
    {"painting/marker/no-stroke-on-target",
     "cairo cuts a pixel once where a clip and a shape share an edge within it"},
};

TEST(Devices, DrawAlike) {
    ForCases([](TCase& item, std::vector<std::string>& faults) {
        if (std::ranges::find(Exceptions, item.Name, &std::pair<std::string_view, std::string_view>::first) !=
            std::end(Exceptions))
            return;
        const TBitmap raster = DrawnWhole(item, *item.Document);
        const TBitmap vector = Blank(item);
        TVectorDevice device(vector->GetPixels());
        TVZGPCanvas canvas(device);
        item.Document->Draw(canvas, item.Matrix(), item.Rect());
        device.Finish();
        const TMeasure measure = MeasureOf(raster->GetPixels(), vector->GetPixels());
        if (measure.Passes()) return;
        char text[100];
        std::snprintf(text, sizeof text, ": differ %.2f %%, struct %.3f %%, mean %.2f", measure.Differ * 100,
                      measure.Struct * 100, measure.Mean);
        faults.push_back(item.Name + text);
    });
}

} // namespace

int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    if (!fs::is_directory(Suite / "tests")) {
        std::cout << "SKIPPED: there are no reference cases in " << Suite << '\n';
        return Skipped;
    }
    setenv("FONTCONFIG_FILE", (Suite / "fonts.conf").c_str(), 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("LANGUAGE", "en", 1);
    return RUN_ALL_TESTS();
}
