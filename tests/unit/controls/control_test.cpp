#include "tavro/controls/Control.h"

#include "tavro/controls/ClipScope.h"
#include "tavro/controls/Form.h"
#include "tavro/controls/GraphicControl.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/controls/Palette.h"
#include "tavro/graphics/Canvas.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Props.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace Vz {
namespace {

/// A control that fills its bounds with a colour and writes down what happens to it.
class TPlate final : public TCreatable<TPlate, TVZCustomTransparentGraphicControl> {
public:
    static constexpr std::string_view TypeName = "TPlate";
    using TCreatable::TCreatable;

    TVZGPColor Color = 0xFF102030;
    std::vector<std::string> Notes;

    void Resize() override {
        TVZCustomTransparentGraphicControl::Resize();
        Notes.push_back("resize " + std::to_string(GetWidth()) + "x" + std::to_string(GetHeight()));
    }
    void EnabledChangedMessage() override { Notes.push_back(GetEnabled() ? "enabled" : "disabled"); }
    void MouseDown(TMouseButton button, TShiftState shift, int x, int y) override {
        TVZCustomTransparentGraphicControl::MouseDown(button, shift, x, y);
        Note("down", x, y);
    }
    void MouseMove(TShiftState shift, int x, int y) override {
        TVZCustomTransparentGraphicControl::MouseMove(shift, x, y);
        Note("move", x, y);
    }
    void MouseUp(TMouseButton button, TShiftState shift, int x, int y) override {
        TVZCustomTransparentGraphicControl::MouseUp(button, shift, x, y);
        Note("up", x, y);
    }
    void Click() override {
        TVZCustomTransparentGraphicControl::Click();
        Notes.push_back("click");
    }
    std::vector<std::string> Taken() { return std::exchange(Notes, {}); }

protected:
    void Construct() override {
        TVZCustomTransparentGraphicControl::Construct();
        SetBounds(0, 0, 20, 10);
        Notes.clear();
    }
    void DoPainting(TVZGPCanvas& canvas) override {
        Notes.push_back("painting");
        TVZCustomTransparentGraphicControl::DoPainting(canvas);
    }
    void DoPaint(TVZGPCanvas& canvas) override {
        Notes.push_back("paint");
        TFigures figures;
        figures.AddRect(-5, -5, GetWidth() + 10, GetHeight() + 10);
        TShape shape;
        shape.Figures = &figures;
        TPaint paint;
        paint.Color = Color;
        canvas.GetDevice().Draw(shape, paint, canvas.ToDevice());
    }
    void DoPainted(TVZGPCanvas& canvas) override {
        TVZCustomTransparentGraphicControl::DoPainted(canvas);
        Notes.push_back("painted");
    }

private:
    void Note(std::string what, int x, int y) {
        Notes.push_back(what + " " + std::to_string(x) + "," + std::to_string(y));
    }
};

using TNotes = std::vector<std::string>;

/// A form of 100 x 80 with plates on it.
class ControlTest : public testing::Test {
protected:
    ControlTest() { Form->SetBounds(0, 0, 100, 80); }

    TPlate& AddPlate(int left, int top, int width, int height, TControl* parent = nullptr) {
        TPlate& plate = TPlate::Create(*Form);
        plate.SetBounds(left, top, width, height);
        plate.SetParent(parent ? parent : Form.get());
        plate.Notes.clear();
        return plate;
    }
    std::vector<TRect> Stale() const {
        const auto rects = Host.GetStale().Rects();
        return {rects.begin(), rects.end()};
    }
    std::uint32_t PixelAt(int x, int y) const { return Host.GetPicture().GetPixels().Row(y)[x]; }

    std::unique_ptr<TVZForm> Form = TVZForm::Create();
    THeadlessHost Host{*Form};
};

using TRects = std::vector<TRect>;

// Bounds

TEST_F(ControlTest, HasNoPlaceAndIsVisibleAndEnabledAtFirst) {
    const auto plate = TPlate::Create();
    EXPECT_EQ(plate->GetBounds(), (TRect{0, 0, 20, 10}));
    EXPECT_EQ(plate->GetParent(), nullptr);
    EXPECT_TRUE(plate->GetVisible());
    EXPECT_TRUE(plate->GetEnabled());
    EXPECT_EQ(plate->GetCursor(), TCursor::Default);
}

TEST_F(ControlTest, BoundsAreClampedToTheirRange) {
    const auto plate = TPlate::Create();
    constexpr int greatest = std::numeric_limits<int>::max();
    plate->SetBounds(greatest, std::numeric_limits<int>::min(), greatest, -5);
    EXPECT_EQ(plate->GetLeft(), TControl::MaxExtent);
    EXPECT_EQ(plate->GetTop(), -TControl::MaxExtent);
    EXPECT_EQ(plate->GetWidth(), TControl::MaxExtent);
    EXPECT_EQ(plate->GetHeight(), 0);
}

TEST_F(ControlTest, ResizeFollowsAChangeOfSizeOnly) {
    const auto plate = TPlate::Create();
    int events = 0;
    plate->SetOnResize([&](TObject&) { ++events; });
    plate->SetLeft(7);
    plate->SetTop(8);
    plate->SetWidth(20);
    EXPECT_TRUE(plate->Notes.empty());
    plate->SetWidth(21);
    plate->SetHeight(30);
    EXPECT_EQ(plate->Notes, (TNotes{"resize 21x10", "resize 21x30"}));
    EXPECT_EQ(events, 2);
}

TEST_F(ControlTest, SizeIsStoredWhenItIsNotWhatTheClassGave) {
    const auto plate = TPlate::Create();
    EXPECT_FALSE(plate->IsWidthStored());
    EXPECT_FALSE(plate->IsHeightStored());
    plate->SetWidth(19);
    EXPECT_TRUE(plate->IsWidthStored());
    EXPECT_FALSE(plate->IsHeightStored());
}

// Invalidation

TEST_F(ControlTest, MovingAControlMakesOldAndNewPlaceStale) {
    TPlate& plate = AddPlate(10, 10, 20, 10);
    Host.Paint();
    plate.SetLeft(50);
    EXPECT_EQ(Stale(), (TRects{{10, 10, 30, 20}, {50, 10, 70, 20}}));
}

TEST_F(ControlTest, PartsOutsideOfTheParentsAreLeftOut) {
    TPlate& outer = AddPlate(80, 60, 40, 40);
    TPlate& inner = AddPlate(-5, 10, 20, 50, &outer);
    Host.Paint();
    inner.InvalidateRect({-100, -100, 100, 100});
    EXPECT_EQ(Stale(), (TRects{{80, 70, 95, 80}}));
    Host.Paint();
    inner.InvalidateRect({0, 0, 5, 50}); // left of its parent
    EXPECT_TRUE(Stale().empty());
}

TEST_F(ControlTest, RegionsKeepTheirHoles) {
    TPlate& plate = AddPlate(10, 10, 40, 40);
    Host.Paint();
    TRegion region;
    region.Add({0, 0, 5, 5});
    region.Add({20, 20, 25, 25});
    plate.InvalidateRegion(region);
    EXPECT_EQ(Stale(), (TRects{{10, 10, 15, 15}, {30, 30, 35, 35}}));
}

TEST_F(ControlTest, HiddenControlsAreNotReported) {
    TPlate& outer = AddPlate(10, 10, 40, 40);
    TPlate& inner = AddPlate(0, 0, 5, 5, &outer);
    Host.Paint();
    outer.SetVisible(false);
    EXPECT_EQ(Stale(), (TRects{{10, 10, 50, 50}}));
    Host.Paint();
    inner.Invalidate();
    inner.SetLeft(9);
    EXPECT_TRUE(Stale().empty());
    outer.SetVisible(true);
    EXPECT_EQ(Stale(), (TRects{{10, 10, 50, 50}}));
}

TEST_F(ControlTest, EachCallOfInvalidateRaisesItsEvent) {
    TPlate& plate = AddPlate(10, 10, 5, 5);
    int calls = 0;
    plate.SetOnInvalidate([&](TObject& sender) {
        EXPECT_EQ(&sender, &plate);
        ++calls;
    });
    plate.Invalidate();
    plate.SetVisible(false); // by itself no call
    plate.Invalidate();
    EXPECT_EQ(calls, 2);
}

TEST_F(ControlTest, RootTellsItsHostOfANewSize) {
    Host.Paint();
    Form->SetBounds(3, 4, 50, 40);
    const TVZGPBitmap& picture = Host.PaintStale();
    EXPECT_EQ(picture.GetWidth(), 50u);
    EXPECT_EQ(picture.GetHeight(), 40u);
}

// Family

TEST_F(ControlTest, ChildrenStandInTheOrderOfPainting) {
    TPlate& a = AddPlate(0, 0, 5, 5);
    TPlate& b = AddPlate(0, 0, 5, 5);
    TPlate& c = AddPlate(0, 0, 5, 5);
    a.BringToFront();
    EXPECT_EQ(Form->GetControls(), (std::vector<TControl*>{&b, &c, &a}));
    a.SendToBack();
    EXPECT_EQ(Form->GetControls(), (std::vector<TControl*>{&a, &b, &c}));
    EXPECT_EQ(Form->GetChildComponents(), (std::vector<TComponent*>{&a, &b, &c}));
}

TEST_F(ControlTest, AControlCannotStandInsideOfItself) {
    TPlate& outer = AddPlate(0, 0, 50, 50);
    TPlate& inner = AddPlate(0, 0, 5, 5, &outer);
    EXPECT_THROW(outer.SetParent(&inner), EInvalidOperation);
    EXPECT_THROW(outer.SetParent(&outer), EInvalidOperation);
    EXPECT_EQ(outer.GetParent(), Form.get());
}

TEST_F(ControlTest, ReparentingMakesBothPlacesStale) {
    TPlate& outer = AddPlate(50, 40, 40, 30);
    TPlate& inner = AddPlate(0, 0, 5, 5);
    Host.Paint();
    inner.SetParent(&outer);
    EXPECT_EQ(Stale(), (TRects{{0, 0, 5, 5}, {50, 40, 55, 45}}));
    EXPECT_EQ(outer.GetControls(), (std::vector<TControl*>{&inner}));
    inner.SetParent(nullptr);
    EXPECT_TRUE(outer.GetControls().empty());
}

TEST_F(ControlTest, FormFileParentsBecomeParents) {
    TPlate& plate = TPlate::Create(*Form);
    plate.SetParentComponent(*Form);
    EXPECT_EQ(plate.GetParent(), Form.get());
}

TEST_F(ControlTest, ParentAndChildMayGoInAnyOrder) {
    TPlate& child = AddPlate(0, 0, 50, 50);
    {
        const auto parent = TPlate::Create();
        parent->SetBounds(0, 0, 60, 60);
        parent->SetParent(Form.get());
        child.SetParent(parent.get());
        Host.Paint();
    }
    EXPECT_EQ(child.GetParent(), nullptr);
    EXPECT_TRUE(Form->GetControls().empty());
    EXPECT_EQ(Stale(), (TRects{{0, 0, 60, 60}}));

    const auto parent = TPlate::Create();
    {
        const auto orphan = TPlate::Create();
        orphan->SetParent(parent.get());
    }
    EXPECT_TRUE(parent->GetControls().empty());
}

TEST_F(ControlTest, OwnerGoesWithAllItsChildrenAndTheHostStays) {
    AddPlate(0, 0, 5, 5, &AddPlate(0, 0, 50, 50)).Color = 0xFF00FF00;
    EXPECT_EQ(Host.Paint().GetPixels().Row(1)[1], 0xFF00FF00u);
    Form.reset();
    Host.Click(1, 1);
    EXPECT_EQ(Host.Paint().GetPixels().Row(1)[1], 0xFF00FF00u) << "as last painted";
}

TEST_F(ControlTest, PointersToAControlBecomeNull) {
    auto plate = TPlate::Create();
    TControlPtr first(plate.get());
    TControlPtr second(plate.get());
    const TControlPtr third(plate.get());
    second.Set(Form.get());
    first.Set(first.Get());
    plate.reset();
    EXPECT_EQ(first.Get(), nullptr);
    EXPECT_EQ(second.Get(), Form.get());
    EXPECT_EQ(third.Get(), nullptr);
}

// Painting

TEST_F(ControlTest, PaintsInThreeStepsWithEvents) {
    TPlate& plate = AddPlate(0, 0, 5, 5);
    plate.SetOnPainting([&](TObject&, TVZGPCanvas&) { plate.Notes.push_back("OnPainting"); });
    plate.SetOnPainted([&](TObject&, TVZGPCanvas&) { plate.Notes.push_back("OnPainted"); });
    Host.Paint();
    EXPECT_EQ(plate.Notes, (TNotes{"painting", "OnPainting", "paint", "OnPainted", "painted"}));
}

TEST_F(ControlTest, ChildrenArePaintedInOrderWithinTheirBounds) {
    AddPlate(10, 10, 40, 40).Color = 0xFF0000FF;
    TPlate& upper = AddPlate(20, 20, 40, 40);
    upper.Color = 0xFF00FF00;
    AddPlate(30, 30, 100, 100, &upper).Color = 0xFFFF0000;
    Host.Paint();
    EXPECT_EQ(PixelAt(9, 15), 0u);
    EXPECT_EQ(PixelAt(10, 10), 0xFF0000FFu);
    EXPECT_EQ(PixelAt(20, 20), 0xFF00FF00u);
    EXPECT_EQ(PixelAt(50, 50), 0xFFFF0000u);
    EXPECT_EQ(PixelAt(59, 59), 0xFFFF0000u);
    EXPECT_EQ(PixelAt(60, 59), 0u);
    upper.SetVisible(false);
    Host.PaintStale();
    EXPECT_EQ(PixelAt(20, 20), 0xFF0000FFu);
    EXPECT_EQ(PixelAt(59, 59), 0u);
}

TEST_F(ControlTest, PaintsAtAnyScaleToWholePixels) {
    AddPlate(10, 10, 10, 10).Color = 0xFF0000FF;
    Host.SetScale(1.25); // 12.5 .. 25
    EXPECT_EQ(Host.Paint().GetWidth(), 125u);
    EXPECT_EQ(PixelAt(11, 20), 0u);
    EXPECT_EQ(PixelAt(12, 20), 0xFF0000FFu);
    EXPECT_EQ(PixelAt(24, 20), 0xFF0000FFu);
    EXPECT_EQ(PixelAt(25, 20), 0u);
}

TEST_F(ControlTest, StalePaintingTouchesTheRegionOnly) {
    TPlate& plate = AddPlate(0, 0, 40, 40);
    Host.SetBackground(0xFFFFFFFF);
    Host.Paint();
    plate.Color = 0xFF00FF00;
    plate.InvalidateRect({10, 10, 20, 20});
    Host.PaintStale();
    EXPECT_EQ(PixelAt(9, 10), 0xFF102030u);
    EXPECT_EQ(PixelAt(10, 10), 0xFF00FF00u);
    EXPECT_EQ(PixelAt(19, 19), 0xFF00FF00u);
    EXPECT_EQ(PixelAt(20, 19), 0xFF102030u);
    EXPECT_EQ(PixelAt(50, 50), 0xFFFFFFFFu);
}

TEST_F(ControlTest, HostRefusesScalesThatAreNone) {
    for (const double scale : {0.0, -1.0, 1025.0, std::numeric_limits<double>::quiet_NaN(),
                               std::numeric_limits<double>::infinity()})
        EXPECT_THROW(Host.SetScale(scale), EArgumentOutOfRange) << scale;
    EXPECT_EQ(Host.GetScale(), 1);
    try {
        Host.SetScale(2000.5);
    } catch (const EArgumentOutOfRange& error) {
        EXPECT_STREQ(error.what(), "the scale 2000.5 is not above 0 up to 1024");
    }
    Form->SetWidth(TControl::MaxExtent);
    EXPECT_THROW(Host.Paint(), EArgumentOutOfRange);
}

TEST_F(ControlTest, WhatHasAnExtentTakesAPixelAtLeast) {
    Host.SetScale(1e-9);
    EXPECT_EQ(Host.Paint().GetWidth(), 1u);
    EXPECT_EQ(Host.GetPicture().GetHeight(), 1u);
    Form->SetWidth(0);
    EXPECT_EQ(Host.Paint().GetWidth(), 0u);
}

TEST(ClipScope, TouchedPixelsIgnoreTheNoiseOfSinglePrecision) {
    EXPECT_EQ(TouchedPixels({}, {0.1, 0.9, 1.1, 2}), (TRect{0, 0, 2, 2}));
    EXPECT_EQ(TouchedPixels({}, {-0.00001, 0.99999, 10.00001, 20}), (TRect{0, 1, 10, 20}));
    EXPECT_EQ(TouchedPixels(TAffine::Scaling(2, 2), {1, 1, 2, 2}), (TRect{2, 2, 4, 4}));
}

// Mouse

TEST_F(ControlTest, MouseGoesToTheTopmostChildInItsOwnPixels) {
    TPlate& lower = AddPlate(10, 10, 40, 40);
    TPlate& upper = AddPlate(20, 20, 40, 40);
    Host.Click(25, 26);
    EXPECT_EQ(upper.Taken(), (TNotes{"down 5,6", "click", "up 5,6"}));
    Host.Click(15, 16);
    EXPECT_EQ(lower.Taken(), (TNotes{"down 5,6", "click", "up 5,6"}));
    Form->HandleMouseMove({}, 59, 59);
    EXPECT_EQ(upper.Taken(), (TNotes{"move 39,39"}));
    Form->HandleMouseMove({}, 60, 59);
    EXPECT_TRUE(upper.Notes.empty());
}

TEST_F(ControlTest, MouseReachesNestedControls) {
    TPlate& outer = AddPlate(10, 10, 40, 40);
    TPlate& inner = AddPlate(5, 5, 50, 50, &outer);
    Form->HandleMouseMove({}, 20, 21);
    EXPECT_EQ(inner.Taken(), (TNotes{"move 5,6"}));
    Form->HandleMouseMove({}, 50, 50); // in the inner one's bounds, out of the outer one's
    EXPECT_TRUE(inner.Notes.empty());
    EXPECT_TRUE(outer.Notes.empty());
}

TEST_F(ControlTest, HiddenAndDisabledControlsGetNoMouse) {
    TPlate& lower = AddPlate(0, 0, 40, 40);
    TPlate& upper = AddPlate(0, 0, 40, 40);
    upper.SetEnabled(false);
    EXPECT_EQ(upper.Taken(), (TNotes{"disabled"}));
    Host.Click(1, 1);
    EXPECT_EQ(upper.Taken(), TNotes{});
    EXPECT_EQ(lower.Taken().size(), 3u);
    lower.SetVisible(false);
    Host.Click(1, 1);
    EXPECT_EQ(lower.Taken(), TNotes{});
    upper.SetEnabled(true);
    upper.Notes.clear();
    Form->SetEnabled(false);
    Host.Click(1, 1);
    EXPECT_EQ(upper.Taken(), TNotes{});
}

TEST_F(ControlTest, PressedControlKeepsTheMouseUntilAllButtonsAreUp) {
    TPlate& a = AddPlate(0, 0, 20, 20);
    TPlate& b = AddPlate(20, 0, 20, 20);
    Form->HandleMouseDown(TMouseButton::Left, {}, 5, 5);
    Form->HandleMouseMove({}, 25, 5);
    Form->HandleMouseDown(TMouseButton::Right, {}, 25, 5);
    Form->HandleMouseUp(TMouseButton::Left, {}, 25, 5); // outside of it: no click
    Form->HandleMouseMove({}, -300, 5);
    Form->HandleMouseUp(TMouseButton::Right, {}, 5, 5);
    EXPECT_EQ(a.Taken(), (TNotes{"down 5,5", "move 25,5", "down 25,5", "up 25,5", "move -300,5", "up 5,5"}));
    EXPECT_TRUE(b.Notes.empty());
    Form->HandleMouseMove({}, 25, 5);
    EXPECT_EQ(b.Taken(), (TNotes{"move 5,5"}));
}

TEST_F(ControlTest, PressBesideAllControlsStaysWithTheForm) {
    TPlate& plate = AddPlate(0, 0, 20, 20);
    std::vector<int> xs;
    Form->SetOnMouseUp([&](TObject&, TMouseButton, TShiftState, int x, int) { xs.push_back(x); });
    Form->HandleMouseDown(TMouseButton::Left, {}, 50, 5);
    Form->HandleMouseUp(TMouseButton::Left, {}, 5, 5);
    EXPECT_EQ(xs, (std::vector<int>{5}));
    EXPECT_TRUE(plate.Notes.empty());
}

TEST_F(ControlTest, WheelGoesToTheControlAtThePointAndThenToItsParents) {
    TPlate& plate = AddPlate(10, 10, 40, 40);
    TNotes notes;
    const auto note = [&](std::string name, bool takesIt) {
        return [&notes, name, takesIt](TObject&, TShiftState, double notches, int x, int y, bool& isHandled) {
            notes.push_back(name + ' ' + std::to_string(int(notches * 10)) + " at " + std::to_string(x) +
                            ',' + std::to_string(y));
            isHandled = takesIt;
        };
    };
    Form->SetOnMouseWheel(note("form", true));
    EXPECT_TRUE(Form->HandleMouseWheel({}, 0.5, 15, 16));
    EXPECT_EQ(std::exchange(notes, {}), (TNotes{"form 5 at 15,16"}));
    plate.SetOnMouseWheel(note("plate", false));
    EXPECT_TRUE(Form->HandleMouseWheel({}, -1, 15, 16));
    EXPECT_EQ(std::exchange(notes, {}), (TNotes{"plate -10 at 5,6", "form -10 at 15,16"}));
    plate.SetOnMouseWheel(note("plate", true));
    EXPECT_TRUE(Form->HandleMouseWheel({}, 1, 15, 16));
    EXPECT_EQ(std::exchange(notes, {}), (TNotes{"plate 10 at 5,6"}));
    EXPECT_FALSE(Form->HandleMouseWheel({}, 0, 15, 16));
    EXPECT_FALSE(Form->HandleMouseWheel({}, std::numeric_limits<double>::quiet_NaN(), 15, 16));
    EXPECT_FALSE(Form->HandleMouseWheel({}, 1, -1, 16));
    EXPECT_TRUE(notes.empty());
}

TEST_F(ControlTest, KeysGoToTheControlThatWasPressedLast) {
    TPlate& plate = AddPlate(10, 10, 40, 40);
    TNotes notes;
    const auto note = [&](std::string name, bool takesIt) {
        return [&notes, name, takesIt](TObject&, TKey key, TShiftState, bool& isHandled) {
            notes.push_back(name + ' ' + std::to_string(int(key)));
            isHandled = takesIt;
        };
    };
    EXPECT_FALSE(Form->HandleKeyDown(TKey::Up, {}));
    EXPECT_FALSE(Form->TakesKeys());
    Form->SetOnKeyDown(note("form", true));
    plate.SetOnKeyDown(note("plate", false));
    EXPECT_TRUE(plate.TakesKeys());
    EXPECT_TRUE(Form->HandleKeyDown(TKey::Up, {}));
    EXPECT_EQ(std::exchange(notes, {}), (TNotes{"form 2"})) << "nothing was pressed yet";
    Host.Click(15, 15);
    EXPECT_TRUE(Form->HandleKeyDown(TKey::Left, {}));
    EXPECT_EQ(std::exchange(notes, {}), (TNotes{"plate 0", "form 0"}));
    plate.SetEnabled(false);
    EXPECT_TRUE(Form->HandleKeyDown(TKey::Left, {}));
    EXPECT_EQ(std::exchange(notes, {}), (TNotes{"form 0"}));
}

TEST_F(ControlTest, LostReleaseDoesNotHoldTheMouse) {
    TPlate& a = AddPlate(0, 0, 20, 20);
    TPlate& b = AddPlate(20, 0, 20, 20);
    Form->HandleMouseDown(TMouseButton::Left, {}, 5, 5);
    a.Notes.clear();
    Host.Click(25, 5);
    EXPECT_TRUE(a.Notes.empty());
    EXPECT_EQ(b.Taken(), (TNotes{"down 5,5", "click", "up 5,5"}));
}

TEST_F(ControlTest, ClicksAreOfTheLeftButton) {
    TPlate& plate = AddPlate(0, 0, 20, 20);
    Host.Click(1, 2, TMouseButton::Right);
    EXPECT_EQ(plate.Taken(), (TNotes{"down 1,2", "up 1,2"}));
    Host.Click(1, 2, TMouseButton::Middle);
    EXPECT_EQ(plate.Taken(), (TNotes{"down 1,2", "up 1,2"}));
}

TEST_F(ControlTest, EventsTellButtonAndShiftState) {
    TPlate& plate = AddPlate(0, 0, 20, 20);
    std::vector<std::string> events;
    const auto note = [&](std::string name) {
        return
            [&events, &plate, name](TObject& sender, TMouseButton button, TShiftState shift, int x, int y) {
                EXPECT_EQ(&sender, &plate);
                EXPECT_EQ(button, TMouseButton::Right);
                EXPECT_TRUE(shift.Contains(TShiftKey::Ctrl));
                EXPECT_EQ(shift.Contains(TShiftKey::Right), name == "down");
                EXPECT_FALSE(shift.Contains(TShiftKey::Left));
                EXPECT_EQ(x, 3);
                EXPECT_EQ(y, 4);
                events.push_back(name);
            };
    };
    plate.SetOnMouseDown(note("down"));
    plate.SetOnMouseUp(note("up"));
    Host.Click(3, 4, TMouseButton::Right, {TShiftKey::Ctrl});
    EXPECT_EQ(events, (TNotes{"down", "up"}));
}

TEST_F(ControlTest, ControlThatIsDestroyedOrTakenAwayWhilePressedIsForgotten) {
    auto plate = TPlate::Create();
    plate->SetBounds(0, 0, 20, 20);
    plate->SetParent(Form.get());
    Form->HandleMouseDown(TMouseButton::Left, {}, 5, 5);
    plate->Notes.clear();
    plate->SetParent(nullptr);
    Form->HandleMouseMove({}, 5, 5);
    EXPECT_TRUE(plate->Notes.empty());
    Form->HandleMouseUp(TMouseButton::Left, {}, 5, 5);

    plate->SetParent(Form.get());
    Form->HandleMouseDown(TMouseButton::Left, {}, 5, 5);
    plate.reset();
    Form->HandleMouseMove({}, 5, 5);
    Form->HandleMouseUp(TMouseButton::Left, {}, 5, 5);
}

TEST_F(ControlTest, FarPointsDoNotOverflow) {
    TPlate& plate = AddPlate(20 - TControl::MaxExtent, 0, TControl::MaxExtent, 20);
    Form->HandleMouseDown(TMouseButton::Left, {}, 5, 5);
    plate.Notes.clear();
    constexpr int farthest = std::numeric_limits<int>::max();
    Form->HandleMouseMove({}, farthest, -farthest);
    EXPECT_EQ(plate.Taken(), (TNotes{"move 2147483647,-2147483647"}));
}

TEST_F(ControlTest, PointerIsThatOfTheControlUnderTheMouseOrItsParents) {
    TPlate& outer = AddPlate(0, 0, 40, 40);
    TPlate& inner = AddPlate(0, 0, 20, 20, &outer);
    outer.SetCursor(TCursor::Hand);
    Form->HandleMouseMove({}, 5, 5);
    EXPECT_EQ(Host.GetCursor(), TCursor::Hand);
    inner.SetCursor(TCursor::Cross);
    EXPECT_EQ(Host.GetCursor(), TCursor::Cross);
    Form->HandleMouseMove({}, 60, 5);
    EXPECT_EQ(Host.GetCursor(), TCursor::Default);
}

// Tables

TNotes NamesOf(std::span<const TProp> rows) {
    TNotes names;
    for (const TProp& row : rows)
        names.emplace_back(row.Name);
    return names;
}

TEST_F(ControlTest, CommonPropertiesAndEvents) {
    const auto plate = TPlate::Create();
    EXPECT_EQ(NamesOf(plate->GetCommonProps()),
              (TNotes{"Name", "Left", "Top", "Width", "Height", "Enabled", "Visible"}));
    EXPECT_EQ(NamesOf(plate->GetCommonEvents()),
              (TNotes{"OnMouseDown", "OnMouseMove", "OnMouseUp", "OnMouseWheel", "OnKeyDown", "OnClick",
                      "OnResize", "Invalidate", "OnPainting", "OnPainted"}));
    std::vector<std::string_view> raised;
    for (const TProp& row : plate->GetCommonEvents())
        row.Attach(*plate, [&raised, name = row.Name] { raised.push_back(name); });
    plate->HandleMouseDown(TMouseButton::Left, {}, 1, 1);
    plate->HandleMouseMove({}, 1, 1);
    plate->HandleMouseUp(TMouseButton::Left, {}, 1, 1);
    plate->SetWidth(33);
    plate->Invalidate();
    EXPECT_EQ(raised, (std::vector<std::string_view>{"OnMouseDown", "OnMouseMove", "OnClick", "OnMouseUp",
                                                     "OnResize", "Invalidate"}));
}

TEST(Form, HasASizeOfItsOwn) {
    const auto form = TVZForm::Create();
    EXPECT_EQ(form->ClassName(), "TVZForm");
    EXPECT_EQ(form->GetBounds(), (TRect{0, 0, 640, 480}));
    EXPECT_FALSE(form->IsWidthStored());
}

TEST(Palette, KeepsEachEntryOnce) {
    const std::size_t before = GetPalette().size();
    RegisterComponents("Test page", {"TFirst", "TSecond"});
    RegisterComponents("Test page", {"TFirst"});
    ASSERT_EQ(GetPalette().size(), before + 2);
    EXPECT_EQ(GetPalette()[before], (TPaletteEntry{"Test page", "TFirst"}));
    EXPECT_EQ(GetPalette()[before + 1], (TPaletteEntry{"Test page", "TSecond"}));
}

} // namespace
} // namespace Vz
