// The knobs: rotary switch and rotary dial.

#include "GaugeProbe.h"
#include "tavro/Vz.Tavro.Switches.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/FormFile.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Vz::Test {
namespace {

constexpr double Near = 1e-3;

void Click(TControl& knob, int x, int y, TMouseButton button = TMouseButton::Left) {
    THeadlessHost(knob).Click(x, y, button);
}

/// Clicks 80 pixels from the middle of a knob of 200 x 200, in the direction of an angle, in degrees.
void ClickAt(TControl& knob, double angleDeg) {
    const double radians = angleDeg * std::numbers::pi / 180;
    Click(knob, static_cast<int>(std::lround(100 + 80 * std::sin(radians))),
          static_cast<int>(std::lround(100 - 80 * std::cos(radians))));
}

bool Has(const TVZSVGControl& control, std::string_view id) {
    return control.GetDocument().FindElement(id) != nullptr;
}

const TProp& PropOf(const TPersistent& object, std::string_view name) {
    const auto table = object.GetPropTable();
    const auto row = std::ranges::find(table, name, &TProp::Name);
    if (row == table.end()) throw EInvalidOperation("there is no " + std::string(name));
    return *row;
}

// Both

template <class T> class Rotary : public testing::Test {};
using TKnobs = testing::Types<TVZRotarySwitch, TVZRotaryDial>;
TYPED_TEST_SUITE(Rotary, TKnobs);

TYPED_TEST(Rotary, TheKnobTakesTheHandsPlace) {
    const auto knob = TypeParam::Create();
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(Has(*knob, "BigHand"));
        EXPECT_FALSE(Has(*knob, "LittleHand"));
        EXPECT_FALSE(Has(*knob, "ThinHand"));
        EXPECT_TRUE(IsShown(*knob, "KnobSwitch"));
        EXPECT_EQ(knob->GetActiveSVGElement(), &ElementOf(*knob, "Hands"));
        knob->InitializeGauge();
    }
    EXPECT_TRUE(knob->GetHands().IsEmpty());
    EXPECT_FALSE(knob->IsHandsStored());
    EXPECT_EQ(FillOf(*knob, "KnobSwitch"), 0xFFA9A9A9u);
    knob->SetBigHandColor(0xFF336699);
    EXPECT_EQ(FillOf(*knob, "KnobSwitch"), 0xFF336699u);
    EXPECT_NO_THROW(knob->SetThinHandColor(0xFF112233));
    EXPECT_EQ(PropOf(*knob, "BigHandColor").Default, TValue(TColorValue{0xFFA9A9A9}));
}

TYPED_TEST(Rotary, KnobAndGlassAreLeftOut) {
    const auto knob = TypeParam::Create();
    EXPECT_EQ(knob->GetParts().GetMask(), 5119u);
    EXPECT_FALSE(IsShown(*knob, "Knob"));
    EXPECT_TRUE(IsShown(*knob, "GlassGroup")); // the design runs last and shows it
    knob->UpdateParts();
    EXPECT_FALSE(IsShown(*knob, "GlassGroup"));
}

TYPED_TEST(Rotary, FontAndSize) {
    const auto knob = TypeParam::Create();
    EXPECT_EQ(knob->GetFont().GetSize(), 8);
    EXPECT_EQ(knob->GetWidth(), 200);
    EXPECT_EQ(knob->GetHeight(), 200);
    EXPECT_EQ(knob->GetMinorMarkers(), 0);
    EXPECT_EQ(CountFigures(*knob, "SmallMarkers"), 0);
}

TYPED_TEST(Rotary, ATurnAllocatesNothing) {
    const auto knob = TypeParam::Create();
    THeadlessHost host(*knob);
    host.Paint();
    const auto run = [&] {
        for (int i = 0; i < 40; ++i) {
            knob->SetValue(static_cast<float>(i % 2));
            host.PaintStale();
        }
    };
    run();
    run();
    const std::size_t before = CountAllocations();
    run();
    EXPECT_EQ(CountAllocations(), before);
    EXPECT_FALSE(knob->AreBuffersStale());
}

TYPED_TEST(Rotary, EventFirstThenTheTurn) {
    const auto knob = TypeParam::Create();
    std::string log;
    knob->SetOnMouseUp([&](TObject&, TMouseButton, TShiftState, int, int) {
        log += "up " + std::to_string(int(knob->GetValue()));
    });
    knob->SetOnChange([&](TObject&) { log += ", changed"; });
    ClickAt(*knob, 0);
    EXPECT_EQ(log, "up 0, changed");
    log.clear();
    ClickAt(*knob, 0); // it is there
    EXPECT_EQ(log, (std::is_same_v<TypeParam, TVZRotarySwitch> ? "up 1" : "up 5"));
}

TYPED_TEST(Rotary, AHandlerMayDestroyIt) {
    auto knob = TypeParam::Create();
    knob->SetOnMouseUp([&](TObject&, TMouseButton, TShiftState, int, int) { knob.reset(); });
    knob->HandleMouseDown(TMouseButton::Left, {}, 100, 20);
    knob->HandleMouseUp(TMouseButton::Left, {}, 100, 20);
    EXPECT_EQ(knob, nullptr);
}

TYPED_TEST(Rotary, ClicksOfAnyKind) {
    const auto knob = TypeParam::Create();
    for (const TMouseButton button : {TMouseButton::Right, TMouseButton::Middle, TMouseButton::Left}) {
        knob->SetValue(0);
        Click(*knob, 100, 20, button);
        EXPECT_GT(knob->GetValue(), 0);
    }
    for (const auto& [x, y] : {std::pair{100, 100}, {0, 0}, {199, 199}})
        EXPECT_NO_THROW(Click(*knob, x, y));
    knob->SetMajorMarkers(0);
    Click(*knob, 180, 20);
    EXPECT_EQ(knob->GetValue(), 0);
    knob->SetStopAngle(knob->GetStartAngle());
    knob->SetMajorMarkers(3);
    EXPECT_NO_THROW(Click(*knob, 180, 20));
    knob->SetEnabled(false);
    knob->SetValue(1);
    Click(*knob, 20, 100);
    EXPECT_EQ(knob->GetValue(), 1);
}

/// One whose knob does not follow clicks.
class TStillSwitch final : public TCreatable<TStillSwitch, TVZRotarySwitch> {
public:
    static constexpr std::string_view TypeName = "TStillSwitch";
    using TCreatable::TCreatable;

protected:
    void Construct() override {
        TCreatable::Construct();
        FInteraction = false;
    }
};

TEST(Rotary, WithoutInteractionOnlyTheEvent) {
    const auto knob = TStillSwitch::Create();
    int ups = 0;
    knob->SetOnMouseUp([&](TObject&, TMouseButton, TShiftState, int, int) { ++ups; });
    ClickAt(*knob, 0);
    EXPECT_EQ(ups, 1);
    EXPECT_EQ(knob->GetValue(), 0);
}

// Switch

TEST(RotarySwitch, FreshOne) {
    const auto knob = TVZRotarySwitch::Create();
    EXPECT_EQ(knob->GetMin(), 0);
    EXPECT_EQ(knob->GetMax(), 1);
    EXPECT_EQ(knob->GetStartAngle(), 270);
    EXPECT_EQ(knob->GetStopAngle(), 360);
    EXPECT_EQ(knob->GetMajorMarkers(), 1);
    EXPECT_EQ(CountFigures(*knob, "BigMarkers"), 2);
    EXPECT_EQ(knob->GetDefaultLabels(), "Off\r\nOn");
    EXPECT_EQ(LabelTexts(*knob), (std::vector<std::string>{"Off", "On"}));
    EXPECT_FALSE(knob->GetChecked());
    EXPECT_NEAR(PointsTo(*knob, "KnobSwitch"), 270, Near);
    EXPECT_TRUE(PropOf(*knob, "Checked").Main != TQuantity::None);
    EXPECT_TRUE(PropOf(*knob, "Value").Main == TQuantity::None);
    EXPECT_THROW(PropOf(*knob, "Max"), EInvalidOperation);
    EXPECT_EQ(PropOf(*knob, "Parts").Default, PropOf(*knob, "Parts").Get(*knob));
}

TEST(RotarySwitch, LabelsAreNeverNumbers) {
    const auto knob = TVZRotarySwitch::Create();
    knob->SetFormatStr("0.00");
    knob->SetMax(5);
    knob->SetStartAngle(200);
    EXPECT_EQ(LabelTexts(*knob), (std::vector<std::string>{"Off", "On"}));
}

TEST(RotarySwitch, CheckedIsTheValueOne) {
    const auto knob = TVZRotarySwitch::Create();
    TNotices notices(*knob);
    knob->SetChecked(false);
    EXPECT_EQ(notices.TakeChanges() + notices.TakeInvalidates(), 0);
    knob->SetChecked(true);
    EXPECT_EQ(knob->GetValue(), 1);
    EXPECT_NEAR(std::remainder(PointsTo(*knob, "KnobSwitch"), 360), 0, Near);
    EXPECT_EQ(notices.TakeChanges(), 1);
    knob->SetChecked(true);
    EXPECT_EQ(notices.TakeChanges(), 0);
    knob->SetValue(0.5f);
    EXPECT_FALSE(knob->GetChecked());
    knob->SetValue(7);
    EXPECT_TRUE(knob->GetChecked());
    knob->SetMax(2);
    knob->SetValue(2);
    EXPECT_FALSE(knob->GetChecked());
    knob->SetValue(NotANumber);
    EXPECT_EQ(knob->GetValue(), 2);
}

TEST(RotarySwitch, ClicksTurnItToTheNearerEnd) {
    const auto knob = TVZRotarySwitch::Create();
    Click(*knob, 100, 20); // above: 90 degrees from Off, none from On
    EXPECT_TRUE(knob->GetChecked());
    Click(*knob, 20, 100); // left
    EXPECT_FALSE(knob->GetChecked());
    Click(*knob, 60, 20); // 333 degrees, within the scale
    EXPECT_TRUE(knob->GetChecked());
    Click(*knob, 170, 170); // 135 degrees from both
    EXPECT_FALSE(knob->GetChecked());
    Click(*knob, 180, 100); // right: 180 degrees from Off, 90 from On
    EXPECT_TRUE(knob->GetChecked());
    Click(*knob, 100, 180); // below: the other way round
    EXPECT_FALSE(knob->GetChecked());
}

TEST(RotarySwitch, DirectionsAreSeenFromItsMiddle) {
    const auto knob = TVZRotarySwitch::Create();
    knob->SetWidth(400);
    Click(*knob, 200, 20);
    EXPECT_TRUE(knob->GetChecked());
    Click(*knob, 120, 99);
    EXPECT_FALSE(knob->GetChecked());
}

// Dial

TEST(RotaryDial, FreshOne) {
    const auto dial = TVZRotaryDial::Create();
    EXPECT_EQ(dial->GetMin(), 0);
    EXPECT_EQ(dial->GetMax(), 10);
    EXPECT_EQ(dial->GetStartAngle(), 225);
    EXPECT_EQ(dial->GetStopAngle(), 495);
    EXPECT_EQ(dial->GetMajorMarkers(), 10);
    EXPECT_EQ(CountFigures(*dial, "BigMarkers"), 11);
    EXPECT_EQ(LabelTexts(*dial),
              (std::vector<std::string>{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}));
    EXPECT_NEAR(PointsTo(*dial, "KnobSwitch"), 225, Near);
    EXPECT_TRUE(PropOf(*dial, "Value").Main != TQuantity::None);
    EXPECT_THROW(PropOf(*dial, "MajorMarkers"), EInvalidOperation);
}

TEST(RotaryDial, AFreshOneStoresItsParts) {
    RegisterComponentClasses();
    const auto dial = TVZRotaryDial::Create();
    EXPECT_EQ(PropOf(*dial, "Parts").Default, TValueTraits<TParts>::ToValue(TParts::FromMask(8191)));
    const std::string form = WriteForm(*dial);
    EXPECT_NE(form.find("Parts = [gpFrame, gpBackface, "), std::string::npos) << form;
    const auto copy = ReadForm(form);
    EXPECT_EQ(WriteForm(*copy), form);
    EXPECT_EQ(dynamic_cast<TVZRotaryDial&>(*copy).GetDocument().WriteText(), dial->GetDocument().WriteText());
}

TEST(RotaryDial, EndsArePublishedAsWholeNumbers) {
    const auto dial = TVZRotaryDial::Create();
    EXPECT_EQ(PropOf(*dial, "Min").Type.Kind, TValueKind::Integer);
    EXPECT_EQ(PropOf(*dial, "Max").Default, TValue(std::int64_t{10}));
    dial->SetMax(7.5f);
    EXPECT_EQ(dial->GetMaxPosition(), 8);
    dial->SetMax(6.5f);
    EXPECT_EQ(dial->GetMaxPosition(), 6);
    dial->SetMin(-1.4f);
    EXPECT_EQ(dial->GetMinPosition(), -1);
    dial->SetMinPosition(12); // above Max
    EXPECT_EQ(dial->GetMin(), 12);
    EXPECT_EQ(dial->GetMaxPosition(), 13);
    EXPECT_EQ(dial->GetValue(), 12);
    dial->SetMaxPosition(-3);
    EXPECT_EQ(dial->GetMinPosition(), -4);
    EXPECT_EQ(dial->GetValue(), -3);
    dial->SetMax(3e38f);
    EXPECT_EQ(dial->GetMaxPosition(), 2147483647);
    dial->SetMin(-3e38f);
    EXPECT_EQ(dial->GetMinPosition(), -2147483647 - 1);
}

TEST(RotaryDial, AClickTurnsItToTheNearestMark) {
    const auto dial = TVZRotaryDial::Create();
    ClickAt(*dial, 0);
    EXPECT_EQ(dial->GetValue(), 5);
    EXPECT_NEAR(std::remainder(PointsTo(*dial, "KnobSwitch"), 360), 0, Near);
    for (int i = 0; i <= 10; ++i) {
        ClickAt(*dial, 225 + 27 * i);
        EXPECT_EQ(dial->GetValue(), i);
    }
    ClickAt(*dial, 225 + 27 * 3 + 12); // less than half the way to the next
    EXPECT_EQ(dial->GetValue(), 3);
}

TEST(RotaryDial, BetweenTheEndsTheNearerOne) {
    const auto dial = TVZRotaryDial::Create();
    ClickAt(*dial, 160);
    EXPECT_EQ(dial->GetValue(), 10);
    ClickAt(*dial, 180); // 45 degrees from both
    EXPECT_EQ(dial->GetValue(), 0);
    ClickAt(*dial, 160);
    ClickAt(*dial, 200);
    EXPECT_EQ(dial->GetValue(), 0);
}

TEST(RotaryDial, AClickSetsTheIndex) {
    const auto dial = TVZRotaryDial::Create();
    dial->SetMaxPosition(20);
    ClickAt(*dial, 135); // the mark at the end, labelled 20
    EXPECT_EQ(dial->GetValue(), 10);
    dial->SetMinPosition(4);
    ClickAt(*dial, 225);
    EXPECT_EQ(dial->GetValue(), 4);
    dial->SetMaxPosition(6);
    ClickAt(*dial, 135);
    EXPECT_EQ(dial->GetValue(), 6);
}

} // namespace
} // namespace Vz::Test
