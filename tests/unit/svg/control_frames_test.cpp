#include "tavro/VZSVGControl.h"

#include "ControlScene.h"
#include "tavro/controls/Form.h"
#include "tavro/graphics/raster/Device.h"
#include "tavro/svg/model/Gradients.h"
#include "tavro/svg/model/Shapes.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace Vz::Test {
namespace {

constexpr double Scales[] = {1, 1.25, 1.5, 2};

std::vector<TRect> StaleOf(const TScene& scene) {
    const auto rects = scene.Host.GetStale().Rects();
    return {rects.begin(), rects.end()};
}

std::int64_t AreaOf(const std::vector<TRect>& rects) {
    std::int64_t area = 0;
    for (const TRect& rect : rects)
        area += std::int64_t{rect.Width()} * rect.Height();
    return area;
}

// The stale region

TEST(ControlFrames, TurnedNeedleMakesOldAndNewPlaceStale) {
    TScene scene(1, 200, 200);
    scene.Activate("NeedleGroup");
    scene.Paint();
    scene.TurnNeedle(90);
    scene.Control->Invalidate();
    // The needle reaches from (94, 28) to (106, 100) with its hub (86..114) and turns to the right.
    const TRect bounds = scene.Host.GetStale().Bounds();
    EXPECT_EQ(scene.Host.GetStale().Contains(100, 30), true);
    EXPECT_EQ(scene.Host.GetStale().Contains(170, 100), true);
    EXPECT_EQ(scene.Host.GetStale().Contains(160, 40), false);
    EXPECT_GE(bounds.Left, 84);
    EXPECT_GE(bounds.Top, 20);
    EXPECT_LE(bounds.Right, 180);
    EXPECT_LE(bounds.Bottom, 116);
    EXPECT_LT(AreaOf(StaleOf(scene)), 200 * 200 / 5);
}

TEST(ControlFrames, SeveralMovesBeforeAPaintingAddUp) {
    TScene scene(1, 200, 200);
    scene.Activate("NeedleGroup");
    scene.Paint();
    scene.TurnNeedle(90);
    scene.Control->Invalidate();
    scene.TurnNeedle(180);
    scene.Control->Invalidate();
    EXPECT_TRUE(scene.Host.GetStale().Contains(100, 30));
    EXPECT_TRUE(scene.Host.GetStale().Contains(100, 170));
    scene.PaintStale();
    scene.TurnNeedle(185);
    scene.Control->Invalidate();
    EXPECT_FALSE(scene.Host.GetStale().Contains(100, 30));
}

TEST(ControlFrames, MoveThatWasPaintedButNotReportedIsMadeUpFor) {
    TScene a(1.5);
    TScene b(1.5);
    for (TScene* scene : {&a, &b}) {
        scene->Activate("NeedleGroup");
        scene->Paint();
        scene->TurnNeedle(120); // nobody is told, but a part is painted
        scene->Control->InvalidateRect({0, 0, 60, 60});
        scene->PaintStale();
        scene->TurnNeedle(240);
        scene->Control->Invalidate();
    }
    EXPECT_EQ(a.PaintStale(), b.Paint());
}

TEST(ControlFrames, ChangeOfAllThatWasPaintedInPartIsMadeUpFor) {
    constexpr void (*edits[])(TScene&) = {
        [](TScene& s) {
            s.Get("Mark").GetBrush().SetColor(0xFFFF00FF);
            s.Control->MarkBuffersStale();
        },
        [](TScene& s) { s.Control->GetDocument().SetWidthLength(TSVGLength(TSVGUnit::Number, 80)); },
    };
    for (const auto edit : edits) {
        TScene a;
        TScene b;
        for (TScene* scene : {&a, &b}) {
            scene->Activate("NeedleGroup");
            scene->Paint();
            edit(*scene); // nobody is told, but a part is painted
            scene->Control->InvalidateRect({40, 40, 60, 60});
            scene->PaintStale();
            scene->Control->Invalidate();
        }
        EXPECT_EQ(a.PaintStale(), b.Paint());
    }
}

TEST(ControlFrames, PictureTakenAtAnotherScaleDoesNotConfuse) {
    TScene a;
    TScene b;
    for (TScene* scene : {&a, &b}) {
        scene->Activate("NeedleGroup");
        scene->Paint();
        scene->TurnNeedle(120);
        scene->Control->Invalidate();
        TVZGPBitmap picture(237, 237);
        TRasterDevice device(picture.GetPixels());
        TVZGPCanvas canvas(device, TAffine::Scaling(2.37, 2.37));
        scene->Control->PaintTo(canvas);
        scene->TurnNeedle(240);
        scene->Control->Invalidate();
    }
    EXPECT_EQ(a.PaintStale(), b.Paint());
}

TEST(ControlFrames, EverythingElseMakesTheWholeControlStale) {
    const std::pair<const char*, std::function<void(TScene&)>> edits[] = {
        {"stale mark", [](TScene& s) { s.Control->MarkBuffersStale(); }},
        {"active element", [](TScene& s) { s.Activate("Cap"); }},
        {"opacity", [](TScene& s) { s.Control->SetOpacity(0.5f); }},
        {"quality", [](TScene& s) { s.Control->SetQuality(2); }},
        {"stretch", [](TScene& s) { s.Control->SetStretch(true); }},
        {"unbuffered", [](TScene& s) { s.Control->SetBuffered(false); }},
        {"enabled", [](TScene& s) { s.Control->SetEnabled(false); }},
        {"transform", [](TScene& s) { s.Control->GetTransform().SetMatrix(CreateTranslateVZMatrix(1, 0)); }},
        {"natural size",
         [](TScene& s) { s.Control->GetDocument().SetWidthLength(TSVGLength(TSVGUnit::Number, 80)); }},
        {"document's opacity", [](TScene& s) { s.Control->GetDocument().SetOpacity(0.5f); }},
        {"painting handler", [](TScene& s) { s.Control->SetOnPainting([](TObject&, TVZGPCanvas&) {}); }},
        {"painted handler", [](TScene& s) { s.Control->SetOnPainted([](TObject&, TVZGPCanvas&) {}); }},
        {"drawn handler",
         [](TScene& s) {
             s.Control->SetOnDrawn([](TObject&, const TMatrix&, TVZGPCanvas&, const TRectF&) {});
         }},
    };
    for (const auto& [name, edit] : edits) {
        TScene scene(1, 120, 110);
        scene.Activate("NeedleGroup");
        scene.Paint();
        scene.Control->Invalidate();
        ASSERT_LT(AreaOf(StaleOf(scene)), 120 * 110 / 2) << name;
        scene.PaintStale();
        edit(scene);
        scene.Control->Invalidate();
        EXPECT_EQ(StaleOf(scene), (std::vector<TRect>{{0, 0, 120, 110}})) << name;
    }
}

TEST(ControlFrames, FilterOfEnlargedCachesIsReckonedWith) {
    TScene a;
    TScene b;
    for (TScene* scene : {&a, &b}) {
        scene->Control->LoadFromText(R"(<svg xmlns="http://www.w3.org/2000/svg" width="100" height="100">
            <rect id="Block" x="5" y="5" width="2" height="2"/><g id="Nothing"/></svg>)");
        scene->Activate("Block");
        scene->Control->SetQuality(2);
        scene->Control->GetTransform().SetMatrix(CreateScaleVZMatrix(8, 8));
        scene->Paint();
        scene->Get("Block").SetMatrix(CreateTranslateVZMatrix(3, 1));
        scene->Control->Invalidate();
    }
    EXPECT_LT(AreaOf(StaleOf(a)), 100 * 100);
    const auto picture = a.PaintStale();
    EXPECT_EQ(picture, b.Paint());
    b.Activate("Nothing"); // the block comes out of a cache
    EXPECT_EQ(picture, b.Paint());
}

TEST(ControlFrames, WayBackToTheCachesMakesTheWholeControlStale) {
    TScene scene;
    scene.Activate("NeedleGroup");
    scene.Paint();
    scene.Control->GetDocument().SetOpacity(0.5f); // painted unbuffered
    scene.Control->Invalidate();
    scene.PaintStale();
    scene.Control->GetDocument().SetOpacity(1);
    scene.Control->Invalidate();
    EXPECT_EQ(StaleOf(scene), (std::vector<TRect>{{0, 0, 100, 100}}));
}

// Equal pictures

using TRandom = std::mt19937;

int Pick(TRandom& random, int count) { return int(random() % unsigned(count)); }
float Fraction(TRandom& random) { return float(random() % 1001) / 1000; }

using TEdit = void (*)(TScene&, TRandom&);

constexpr TEdit NeedleEdits[] = {
    [](TScene& s, TRandom& r) { s.TurnNeedle(360 * Fraction(r)); },
    [](TScene& s, TRandom& r) { s.TurnNeedle(360 * Fraction(r)); },
    [](TScene& s, TRandom& r) {
        s.Get("NeedleGroup").SetMatrix(CreateTranslateVZMatrix(30 * Fraction(r) - 15, 90 * Fraction(r) - 45));
    },
    [](TScene& s, TRandom& r) { s.Get("Hub").GetBrush().SetColor(0xFF000000 | r()); },
    [](TScene& s, TRandom& r) { s.Get("NeedleGroup").SetVisible(Pick(r, 4) > 0); },
    [](TScene& s, TRandom& r) { s.Get("NeedleGroup").SetOpacity(Pick(r, 2) ? 1.0f : Fraction(r)); },
    [](TScene& s, TRandom& r) { s.Get("Needle").GetPen().SetWidth(0.5 + 3 * Fraction(r)); },
};

constexpr TEdit ControlEdits[] = {
    [](TScene& s, TRandom& r) {
        s.Get("Mark").GetBrush().SetColor(0xFF000000 | r());
        s.Control->MarkBuffersStale();
    },
    [](TScene& s, TRandom& r) {
        s.Get<TSVGCustomGradient>("FaceGradient").GetStop(1).GetStopBrush().SetColor(0xFF000000 | r());
        s.Control->MarkBuffersStale();
    },
    [](TScene& s, TRandom& r) { s.Control->SetOpacity(Pick(r, 2) ? 1.0f : Fraction(r)); },
    [](TScene& s, TRandom& r) { s.Control->SetQuality(1 + Pick(r, TVZSVGControl::MaxQuality)); },
    [](TScene& s, TRandom& r) { s.Control->SetQuality(1); },
    [](TScene& s, TRandom& r) { s.Control->SetStretch(Pick(r, 2) == 0); },
    [](TScene& s, TRandom& r) { s.Control->SetBuffered(Pick(r, 4) > 0); },
    [](TScene& s, TRandom& r) { s.Control->SetEnabled(Pick(r, 3) > 0); },
    [](TScene& s, TRandom& r) { s.Control->SetBounds(0, 0, 60 + Pick(r, 60), 60 + Pick(r, 60)); },
    [](TScene& s, TRandom& r) {
        constexpr std::string_view ids[] = {"NeedleGroup", "Needle", "Mark", "Emblem", "Glass"};
        s.Activate(ids[Pick(r, 5)]);
    },
    [](TScene& s, TRandom& r) { s.Activate("NeedleGroup"); },
    [](TScene& s, TRandom& r) {
        const float factor = Pick(r, 2) ? 1.0f : 0.5f + 5 * Fraction(r);
        const TMatrix turn = VZMatrixMultiply(CreateRotationVZMatrix({40, 40}, Fraction(r)),
                                              CreateScaleVZMatrix(factor, factor));
        const TMatrix move = CreateTranslateVZMatrix(20 * Fraction(r) - 10, 5);
        s.Control->GetTransform().SetMatrix(Pick(r, 3) == 0 ? turn : Pick(r, 2) == 0 ? move : TMatrix{});
    },
    [](TScene& s, TRandom&) { s.Control->GetTransform().SetMatrix({}); },
    [](TScene& s, TRandom& r) { s.Control->GetDocument().SetOpacity(Pick(r, 3) ? 1.0f : Fraction(r)); },
};

/// A few edits, each followed by the report that it asks for; the same for the same state of `random`.
void EditAtRandom(TScene& scene, TRandom& random) {
    for (int i = 1 + Pick(random, 3); i > 0; --i) {
        const bool onlyNeedle = Pick(random, 3) > 0;
        const TEdit edit = onlyNeedle ? NeedleEdits[Pick(random, int(std::size(NeedleEdits)))]
                                      : ControlEdits[Pick(random, int(std::size(ControlEdits)))];
        edit(scene, random);
        scene.Control->Invalidate();
    }
}

class StalePainting : public testing::TestWithParam<double> {};

TEST_P(StalePainting, EqualsFullPaintingByteForByte) {
    std::int64_t partial = 0;
    for (const unsigned seed : {20240607u, 1u, 3u, 5u}) {
        TRandom random(seed);
        TScene stale(GetParam());
        TScene full(GetParam());
        stale.Host.SetBackground(0x80336699);
        full.Host.SetBackground(0x80336699);
        for (int step = 0; step < 80; ++step) {
            TRandom same = random;
            EditAtRandom(stale, random);
            EditAtRandom(full, same);
            const std::int64_t area = AreaOf(StaleOf(stale));
            partial += area < std::int64_t{stale.Control->GetWidth()} * stale.Control->GetHeight();
            ASSERT_EQ(WorstDifference(stale.PaintStale(), full.Paint()), 0)
                << "seed " << seed << ", step " << step;
        }
    }
    EXPECT_GT(partial, 40); // else nothing was shown
}

INSTANTIATE_TEST_SUITE_P(Scales, StalePainting, testing::ValuesIn(Scales));

class BufferedPainting : public testing::TestWithParam<double> {};

/// Controls at places of every phase that the scale makes, each with an element of its own active.
TEST_P(BufferedPainting, EqualsUnbufferedPaintingWithinRounding) {
    const auto form = TVZForm::Create();
    form->SetBounds(0, 0, 420, 120);
    THeadlessHost host(*form, GetParam());
    std::vector<TVZSVGControl*> controls;
    for (const std::string_view id : {"NeedleGroup", "Face", "Ticks", "Emblem", "Veil", "Hub"}) {
        TVZSVGControl& control = TVZSVGControl::Create(*form);
        control.LoadFromText(DialSvg);
        control.SetBounds(int(controls.size()) * 67, int(controls.size()) % 4, 63, 60 + int(controls.size()));
        control.SetParent(form.get());
        control.SetActiveSVGElement(control.GetDocument().Find<TSVGGraphicElement>(id));
        controls.push_back(&control);
    }
    for (const bool stretch : {false, true})
        for (const bool isMoved : {false, true}) {
            for (TVZSVGControl* control : controls) {
                control->SetStretch(stretch);
                control->GetTransform().SetMatrix(isMoved ? TMatrix{1.3f, 0, 0, 0, 0.9f, 0, -7.3f, 2.6f, 1}
                                                          : TMatrix{});
                control->SetBuffered(false);
            }
            const auto whole = CopyOf(host.Paint());
            for (TVZSVGControl* control : controls)
                control->SetBuffered(true);
            const auto parts = CopyOf(host.Paint());
            EXPECT_LE(WorstDifference(whole, parts), 2) << stretch << isMoved;
            for (TVZSVGControl* control : controls)
                EXPECT_NE(control->GetBeforeBuffer(), nullptr);
        }
}

INSTANTIATE_TEST_SUITE_P(Scales, BufferedPainting, testing::ValuesIn(Scales));

TEST_P(BufferedPainting, EndsWithTheDrawRectWhateverLiesBeyond) {
    TScene scene(GetParam(), 91, 57);
    scene.Control->LoadFromText(
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="100" height="101"><rect id="A" x="-60" width="90" height="50"/>
           <rect id="B" x="30" y="-50" width="300" height="200" fill="#f00"/><circle cx="50" cy="90" r="40"/></svg>)");
    for (const std::string_view id : {"A", "B"}) {
        scene.Activate(id);
        scene.Control->SetBuffered(false);
        const auto whole = scene.Paint();
        scene.Control->SetBuffered(true);
        EXPECT_LE(WorstDifference(whole, scene.Paint()), 2);
    }
}

TEST(ControlFrames, NothingOfAnEarlierFrameShows) {
    for (const int quality : {1, 2, 3})
        for (const float opacity : {1.0f, 0.6f}) {
            TScene turned;
            TScene fresh;
            for (TScene* scene : {&turned, &fresh}) {
                scene->Activate("NeedleGroup");
                scene->Control->SetQuality(quality);
                scene->Control->SetOpacity(opacity);
            }
            for (const double angle : {0.0, 50.0, 65.0}) {
                turned.TurnNeedle(angle);
                turned.Paint();
            }
            fresh.TurnNeedle(65);
            EXPECT_EQ(turned.Paint(), fresh.Paint()) << quality << " " << opacity;
        }
}

TEST(ControlFrames, WhatEqualElementsShareIsNotMixedUp) {
    TScene scenes[4] = {TScene(), TScene(), TScene(2.5), TScene()};
    for (TScene& scene : scenes) {
        scene.Activate("NeedleGroup");
        scene.TurnNeedle(30);
        scene.Paint();
    }
    const std::vector<std::function<void(TScene&)>> edits = {
        [](TScene& s) { s.Get<TSVGGradientStop>("Stop").GetStopBrush().SetColor(0xFF00FF00); },
        [](TScene& s) { s.Get("Hub").GetBrush().SetColor(0xFF0000FF); },
        [](TScene& s) { s.Get("Hub").SetOpacity(0.5); },
        [](TScene& s) { s.Get("Needle").GetPen().SetWidth(4); },
        [](TScene& s) { s.Get<TSVGPath>("Needle").GetData().SetPathString("M40 50L50 5 60 50"); },
        [](TScene& s) { s.Get("NeedleGroup").SetEnabled(false); },
    };
    scenes[0].Get<TSVGCustomGradient>("NeedleGradient").GetStop(1).SetId("Stop");
    for (const auto& edit : edits) {
        const auto others = scenes[1].Paint();
        edit(scenes[0]);
        scenes[0].Control->Invalidate();
        const auto frame = scenes[0].PaintStale();
        EXPECT_GT(WorstDifference(frame, others), 20); // the edit shows
        EXPECT_EQ(scenes[1].Paint(), others);
        EXPECT_EQ(scenes[3].Paint(), others);
        scenes[2].Paint();
        scenes[0].Control->SetBuffered(false);
        EXPECT_LE(WorstDifference(scenes[0].Paint(), frame), 2);
        scenes[0].Control->SetBuffered(true);
        scenes[0].Paint();
    }
}

TEST(ControlFrames, ControlsThatMoveByWholePixelsKeepTheirCaches) {
    const auto form = TVZForm::Create();
    form->SetBounds(0, 0, 200, 120);
    THeadlessHost host(*form, 1.5);
    TVZSVGControl& control = TVZSVGControl::Create(*form);
    control.LoadFromText(DialSvg);
    control.SetBounds(2, 0, 100, 100);
    control.SetParent(form.get());
    control.SetActiveSVGElement(control.GetDocument().Find<TSVGGraphicElement>("NeedleGroup"));
    host.Paint();
    control.GetDocument().Find<TSVGGraphicElement>("Face")->SetVisible(false); // shows when they are rebuilt
    const auto hasFace = [&] {
        return host.GetPicture().GetPixels().Row(45)[3 * control.GetLeft() / 2 + 30] != 0;
    };
    control.SetLeft(4); // by 3 device pixels
    host.PaintStale();
    EXPECT_TRUE(hasFace());
    control.SetLeft(5); // by one and a half
    host.PaintStale();
    EXPECT_FALSE(hasFace());
}

// Allocations

/// Sets the needle to one angle after the other and paints what became stale; the count of allocations of the
/// last frames, which all are like some before them.
std::size_t AllocationsOfFrames(TScene& scene, bool whole) {
    const auto frame = [&](int step) {
        scene.TurnNeedle(step % 60 * 6);
        scene.Control->Invalidate();
        if (whole)
            scene.Host.Paint();
        else
            scene.Host.PaintStale();
    };
    for (int step = 0; step < 120; ++step)
        frame(step);
    const std::size_t before = CountAllocations();
    for (int step = 120; step < 240; ++step)
        frame(step);
    return CountAllocations() - before;
}

TEST(ControlFrames, AllocationsAreCounted) {
    const std::size_t before = CountAllocations();
    const auto number = std::make_unique<int>(7);
    EXPECT_EQ(CountAllocations() - before, 1u);
    EXPECT_EQ(*number, 7);
}

TEST(ControlFrames, FramesAllocateNothing) {
    for (const double scale : Scales)
        for (const bool whole : {false, true}) {
            TScene scene(scale, 200, 200);
            scene.Activate("NeedleGroup");
            EXPECT_EQ(AllocationsOfFrames(scene, whole), 0u) << scale << (whole ? " whole" : " stale");
        }
}

TEST(ControlFrames, FramesOfOpacityAndQualityAllocateNothing) {
    for (const int quality : {1, 2})
        for (const float opacity : {1.0f, 0.5f}) {
            TScene scene;
            scene.Activate("NeedleGroup");
            scene.Control->SetQuality(quality);
            scene.Control->SetOpacity(opacity);
            EXPECT_EQ(AllocationsOfFrames(scene, false), 0u) << quality << " " << opacity;
        }
}

} // namespace
} // namespace Vz::Test
