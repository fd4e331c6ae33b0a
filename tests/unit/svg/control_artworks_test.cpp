// The control with the instruments' own artworks: what the small dial shows must hold for them, too.

#include "tavro/VZSVGControl.h"

#include "ControlScene.h"
#include "tavro/runtime/Resources.h"

#include <gtest/gtest.h>

#include <random>

namespace Vz::Test {
namespace {

constexpr double Scales[] = {1, 1.25, 1.5, 2};

using TRandom = std::mt19937;

int Pick(TRandom& random, std::size_t count) { return int(random() % unsigned(count)); }
float Fraction(TRandom& random) { return float(random() % 1001) / 1000; }

/// A control with an artwork, on a host without a window.
struct TArtworkScene {
    std::unique_ptr<TVZSVGControl> Control = TVZSVGControl::Create();
    THeadlessHost Host;
    std::vector<TSVGGraphicElement*> Elements; ///< all that can stand between two caches, groups first

    TArtworkScene(std::string_view resource, double scale, int size)
        : Host(*Control, scale) {
        Control->LoadSVGResource(resource);
        Control->SetBounds(0, 0, size, size);
        Host.SetBackground(0x80336699);
        Collect(Control->GetDocument());
        std::stable_sort(Elements.begin(), Elements.end(), [](const auto* a, const auto* b) {
            return a->GetTag() == TSVGTag::G && b->GetTag() != TSVGTag::G;
        });
    }
    std::vector<std::uint32_t> Paint() { return CopyOf(Host.Paint()); }
    std::vector<std::uint32_t> PaintStale() { return CopyOf(Host.PaintStale()); }
    std::size_t GroupCount() const {
        return std::size_t(std::count_if(Elements.begin(), Elements.end(),
                                         [](const auto* e) { return e->GetTag() == TSVGTag::G; }));
    }
    void Turn(TSVGGraphicElement& element, float radians) {
        const TPointF center{Control->GetDocument().GetWidth() / 2, Control->GetDocument().GetHeight() / 2};
        element.SetMatrix(CreateRotationVZMatrix(center, radians));
    }

private:
    void Collect(const TSVGElement& parent) {
        for (const auto& child : parent.Children()) {
            auto* const element = dynamic_cast<TSVGGraphicElement*>(child.get());
            if (element && Control->GetDocument().CanDrawInParts(*element)) Elements.push_back(element);
            Collect(*child);
        }
    }
};

/// One edit of the active element, or of anything else, as an instrument might make it.
void EditOnce(TArtworkScene& scene, TRandom& random) {
    TVZSVGControl& control = *scene.Control;
    TSVGGraphicElement& element = *scene.Elements[std::size_t(Pick(random, scene.Elements.size()))];
    if (TSVGGraphicElement* const active = control.GetActiveSVGElement(); active && Pick(random, 3) > 0)
        switch (Pick(random, 6)) {
        case 0:
            return active->SetVisible(Pick(random, 4) > 0);
        case 1:
            return active->SetOpacity(Pick(random, 2) ? 1.0f : Fraction(random));
        case 2:
            return active->SetMatrix(CreateTranslateVZMatrix(40 * Fraction(random), 40 * Fraction(random)));
        default:
            return scene.Turn(*active, 6.3f * Fraction(random));
        }
    switch (Pick(random, 9)) {
    case 0:
        element.GetBrush().SetKind(TVZGPBrushKind::Solid);
        element.GetBrush().SetColor(unsigned(random()));
        return control.MarkBuffersStale();
    case 1:
        element.SetVisible(Pick(random, 4) > 0);
        return control.MarkBuffersStale();
    case 2:
        return control.SetOpacity(Pick(random, 2) ? 1.0f : Fraction(random));
    case 3:
        return control.SetQuality(Pick(random, 2) ? 1 : 1 + Pick(random, 8));
    case 4:
        return control.SetStretch(Pick(random, 2) == 0);
    case 5:
        return control.SetBuffered(Pick(random, 4) > 0);
    case 6:
        return control.SetEnabled(Pick(random, 3) > 0);
    case 7:
        return control.SetBounds(0, 0, 40 + Pick(random, 60), 40 + Pick(random, 60));
    default:
        return control.SetActiveSVGElement(&element);
    }
}

class Artworks : public testing::TestWithParam<std::string_view> {};

TEST_P(Artworks, StalePaintingEqualsFullPaintingByteForByte) {
    std::int64_t partial = 0;
    for (unsigned seed = 1; seed <= 4; ++seed) {
        const double scale = Scales[seed - 1];
        TRandom random(seed * 7919);
        TArtworkScene stale(GetParam(), scale, 80);
        TArtworkScene full(GetParam(), scale, 80);
        const auto first = std::size_t(Pick(random, stale.Elements.size()));
        stale.Control->SetActiveSVGElement(stale.Elements[first]);
        full.Control->SetActiveSVGElement(full.Elements[first]);
        for (int step = 0; step < 25; ++step) {
            const int edits = 1 + Pick(random, 3);
            for (int i = 0; i < edits; ++i) {
                TRandom same = random;
                EditOnce(stale, random);
                EditOnce(full, same);
                stale.Control->Invalidate();
                full.Control->Invalidate();
            }
            std::int64_t area = 0;
            for (const TRect& rect : stale.Host.GetStale().Rects())
                area += std::int64_t{rect.Width()} * rect.Height();
            partial += area < std::int64_t{stale.Control->GetWidth()} * stale.Control->GetHeight();
            ASSERT_EQ(WorstDifference(stale.PaintStale(), full.Paint()), 0)
                << "seed " << seed << ", step " << step << ", quality " << stale.Control->GetQuality()
                << ", opacity " << stale.Control->GetOpacity();
        }
    }
    EXPECT_GT(partial, 10); // else nothing was shown
}

/// How many channels differ by more than `limit`.
std::int64_t CountBeyond(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b,
                         int limit) {
    std::int64_t count = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        for (int shift = 0; shift < 32; shift += 8)
            count += std::abs(int(a[i] >> shift & 255u) - int(b[i] >> shift & 255u)) > limit;
    return count;
}

/// Each group in turn between the caches, turned away from its place. An artwork lays up to a dozen soft
/// shadows and lights onto one another. Each rounds to whole bytes, over other pixels in a cache than on the
/// surface, so that here and there a third step, and up to six, adds to the two of fewer layers.
/// FIXME: the compass lays some thirty of them around its card, and differs by up to 11 steps.
TEST_P(Artworks, BufferedPaintingEqualsUnbufferedWithinRounding) {
    std::int64_t channels = 0;
    std::int64_t beyond = 0;
    const bool isCompass = GetParam() == std::string_view("CompassMetallicSVG");
    for (const double scale : Scales) {
        TArtworkScene scene(GetParam(), scale, 90);
        scene.Host.SetBackground(0xFFFFFFFF);
        const std::size_t groups = scene.GroupCount();
        ASSERT_GT(groups, 0u);
        for (std::size_t i = 0; i < groups; ++i) {
            TSVGGraphicElement& group = *scene.Elements[i];
            scene.Turn(group, 0.4f);
            scene.Control->SetActiveSVGElement(&group);
            scene.Control->SetBounds(0, 0, i % 2 == 0 ? 61 : 90, 90);
            scene.Control->SetStretch(i % 2 == 0);
            scene.Control->SetBuffered(false);
            const auto whole = scene.Paint();
            scene.Control->SetBuffered(true);
            const auto parts = scene.Paint();
            EXPECT_LE(WorstDifference(whole, parts), isCompass ? 11 : 6) << group.GetId() << " at " << scale;
            channels += std::int64_t(whole.size()) * 4;
            beyond += CountBeyond(whole, parts, 2);
            group.SetMatrix({});
        }
    }
    EXPECT_LE(double(beyond), (isCompass ? 6e-3 : 2e-4) * double(channels));
}

TEST_P(Artworks, ReadBackAndClonesDrawTheSame) {
    TArtworkScene scene(GetParam(), 1, 200);
    const auto picture = scene.Paint();
    TSVGDocument& document = scene.Control->GetDocument();
    const std::string text = document.WriteText();
    scene.Control->LoadFromText(text);
    EXPECT_EQ(document.WriteText(), text);
    EXPECT_EQ(WorstDifference(scene.Paint(), picture), 0);
    TSVGDocument copy;
    copy.AssignContent(document);
    document.AssignContent(copy);
    scene.Control->Invalidate();
    EXPECT_EQ(WorstDifference(scene.Paint(), picture), 0);
    EXPECT_EQ(document.WriteText(), text);
}

std::vector<std::string_view> ArtworkNames() {
    std::vector<std::string_view> names;
    for (const TResource& resource : GetResourceTable())
        if (resource.Name.ends_with("SVG")) names.push_back(resource.Name);
    return names;
}

INSTANTIATE_TEST_SUITE_P(Resources, Artworks, testing::ValuesIn(ArtworkNames()),
                         [](const auto& test) { return std::string(test.param); });

} // namespace
} // namespace Vz::Test
