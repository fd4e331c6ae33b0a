#include "InstrumentProbe.h"
#include "RecolourByHand.h"

#include <gtest/gtest.h>

#include <random>

namespace Vz::Test {
namespace {

/// A gradient of its own in a document of its own.
struct TGradient {
    TSVGDocument Document;
    TSVGLinearGradient& Gradient = Document.Add<TSVGLinearGradient>();

    explicit TGradient(const TColors& colors) {
        for (const TVZGPColor color : colors)
            Gradient.Add<TSVGGradientStop>().GetStopBrush().SetColor(color);
    }
    TColors Colors() const {
        TColors colors;
        for (std::size_t i = 0; i < Gradient.GetStopCount(); ++i)
            colors.push_back(Gradient.GetStop(i).GetStopBrush().GetColor());
        return colors;
    }
};

TColors Walked(const TColors& stops, TVZGPColor color, bool forward) {
    TGradient gradient(stops);
    TVZSVGCustomInstrument::ChangeGradientColor(gradient.Gradient, color, forward);
    return gradient.Colors();
}

TColors Shifted(const TColors& stops, TVZGPColor color, int index) {
    TGradient gradient(stops);
    TVZSVGCustomInstrument::ChangeGradientColor(gradient.Gradient, color, index);
    return gradient.Colors();
}

TEST(GradientRecolour, NoStopsAndOneStop) {
    EXPECT_EQ(Walked({}, 0xFF112233, true), TColors{});
    EXPECT_EQ(Walked({}, 0xFF112233, false), TColors{});
    EXPECT_EQ(Shifted({}, 0xFF112233, 5), TColors{});
    EXPECT_EQ(Walked({0x80FFFFFF}, 0x40112233, true), TColors{0x40112233});
    EXPECT_EQ(Shifted({0x80FFFFFF}, 0x40112233, 5), TColors{0x40112233}); // the index does not count
}

TEST(GradientRecolour, StepsOfBrightnessCompound) {
    // 100 -> 50 is a half, 50 -> 75 one and a half: of 200 they make 100 and 150.
    EXPECT_EQ(Walked({0xFF646464, 0xFF323232, 0xFF4B4B4B}, 0xFFC80000, true),
              (TColors{0xFFC80000, 0xFF640000, 0xFF960000}));
}

TEST(GradientRecolour, BackwardsFromTheLastStop) {
    EXPECT_EQ(Walked({0xFF4B4B4B, 0xFF323232, 0xFF646464}, 0xFFC80000, false),
              (TColors{0xFF960000, 0xFF640000, 0xFFC80000}));
}

TEST(GradientRecolour, StopsOfTheFirstOnesColorTakeTheColorWithTheirAlpha) {
    EXPECT_EQ(Walked({0xFF646464, 0x80323232, 0x20646464}, 0xC0884422, true),
              (TColors{0xC0884422, 0x80442211, 0x20884422}));
}

TEST(GradientRecolour, GreatestChangeDecides) {
    // Only red falls to a half; the others stay. The factor is red's.
    EXPECT_EQ(Walked({0xFF646464, 0xFF326464}, 0xFF404040, true)[1], 0xFF202020u);
    // Red and green change alike (a half and a quarter): green is taken.
    EXPECT_EQ(Walked({0xFF648050, 0xFF548050 - 0x001000}, 0xFF808080, true)[1], 0xFF707070u);
    // Red and blue alike: blue. Green and blue alike: blue.
    EXPECT_EQ(Walked({0xFF204080, 0xFF104070}, 0xFF808080, true)[1], 0xFF707070u);
    EXPECT_EQ(Walked({0xFF802040, 0xFF801030}, 0xFF808080, true)[1], 0xFF606060u);
}

TEST(GradientRecolour, StepFromNothingSaturates) {
    // The step from black is huge: what is not 0 becomes 255, what is 0 stays.
    EXPECT_EQ(Walked({0xFF000000, 0xFF010101}, 0xFF400001, true), (TColors{0xFF400001, 0xFFFF00FF}));
    // A stop equal to its neighbour, but not to the first one, over a blue of 0: no change, and a huge step
    // as well.
    EXPECT_EQ(Walked({0xFF808000, 0xFF404000, 0xFF404000}, 0xFF202020, true),
              (TColors{0xFF202020, 0xFF101010, 0xFFFFFFFF}));
}

TEST(GradientRecolour, ShiftByOffsetFromAStop) {
    EXPECT_EQ(Shifted({0xFF101010, 0x80303030, 0xFFF0F0F0}, 0x11604020, 1),
              (TColors{0xFF402000, 0x80604020, 0xFFFFFFE0}));
    // A stop like the reference gets the colour exactly, with its own alpha.
    EXPECT_EQ(Shifted({0xFF303030, 0x80303030}, 0x11604020, 0), (TColors{0xFF604020, 0x80604020}));
}

TEST(GradientRecolour, StopThatThereIsNotRaisesBeforeAnyChange) {
    const TColors stops{0xFF101010, 0xFF202020};
    TGradient gradient(stops);
    for (const int index : {-1, 2, 1000}) {
        EXPECT_THROW(TVZSVGCustomInstrument::ChangeGradientColor(gradient.Gradient, 0xFFFFFFFF, index),
                     EArgumentOutOfRange);
        EXPECT_EQ(gradient.Colors(), stops);
    }
}

TEST(GradientRecolour, SavedColorsComeBack) {
    const TColors stops{0xFF102030, 0x00FFFFFF, 0x80405060};
    TGradient gradient(stops);
    TVZSVGCustomInstrument::SaveGradientColor(gradient.Gradient);
    TVZSVGCustomInstrument::ChangeGradientColor(gradient.Gradient, 0xFFFF0000, true);
    EXPECT_NE(gradient.Colors(), stops);
    TVZSVGCustomInstrument::RestoreGradientColor(gradient.Gradient);
    EXPECT_EQ(gradient.Colors(), stops);
}

TEST(GradientRecolour, DoesNotAddUp) {
    const auto probe = TProbe::Create();
    const auto last = [&] { return probe->Get<TSVGCustomGradient>("Shade").GetStop(1).GetStopColor(); };
    EXPECT_EQ(probe->GetFirstStop(), 0xFF808080u);
    EXPECT_EQ(probe->GetLastStop(), 0xFF404040u);
    for (const TVZGPColor color : {0xFFFF0000u, 0xFF000000u, 0xFF0000FFu})
        probe->RecolourGradient("Shade", color);
    EXPECT_EQ(last(), 0xFF000080u);
    probe->RecolourGradient("Borrowed", 0xFFFFFFFF); // stops of another: not touched
    EXPECT_EQ(last(), 0xFF000080u);
}

TEST(GradientRecolour, ElementsAreSwitchedToAGradientAndBack) {
    const auto probe = TProbe::Create();
    auto& face = probe->Get<TSVGGraphicElement>("Face");
    probe->DoEnableGradient("Face", "Shade", true, 0xFF00FF00, true);
    EXPECT_EQ(face.GetBrush().GetKind(), TVZGPBrushKind::URI);
    EXPECT_EQ(face.GetBrush().GetURI(), "Shade");
    EXPECT_EQ(face.GetPen().GetColor(), 0xFF445566u);
    probe->DoEnableGradient("Face", "Shade", false, 0x8000FF00, true);
    EXPECT_EQ(face.GetBrush().GetKind(), TVZGPBrushKind::Solid);
    EXPECT_EQ(face.GetBrush().GetURI(), "");
    EXPECT_EQ(face.GetBrush().GetColor(), 0x8000FF00u);
    probe->DoEnableGradient("Face", "Shade", true, 0, false);
    EXPECT_EQ(face.GetPen().GetURI(), "Shade");
    EXPECT_EQ(face.GetBrush().GetKind(), TVZGPBrushKind::Solid);
    probe->DoEnableGradient("Face", "Shade", false, 0xFF010203, false);
    EXPECT_EQ(face.GetPen().GetColor(), 0xFF010203u);
}

TEST(GradientRecolour, AgreesWithTheOtherRoadOnRandomGradients) {
    std::mt19937 random(2026);
    for (int round = 0; round < 20000; ++round) {
        TColors stops(random() % 8);
        for (std::size_t i = 0; i < stops.size(); ++i) {
            stops[i] = random();
            if (random() % 3 == 0) stops[i] &= ~(0xFFu << 8 * (random() % 3)); // a channel of 0
            if (random() % 4 == 0) stops[i] = MakeColor(random(), stops[i], stops[i], stops[i]);
            if (i > 0 && random() % 4 == 0) stops[i] = WithAlpha(stops[random() % i], random());
        }
        const TVZGPColor color = random();
        const bool forward = random() % 2 != 0;
        ASSERT_EQ(Walked(stops, color, forward), WalkedByHand(stops, color, forward)) << round;
        if (stops.empty()) continue;
        const int index = int(random() % stops.size());
        ASSERT_EQ(Shifted(stops, color, index), ShiftedByHand(stops, color, index)) << round;
    }
}

} // namespace
} // namespace Vz::Test
