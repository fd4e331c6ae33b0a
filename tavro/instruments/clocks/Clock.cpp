#include "tavro/instruments/clocks/Clock.h"

#include "tavro/instruments/Editing.h"
#include "tavro/instruments/Publish.h"

#include <array>
#include <numbers>

namespace Vz {

namespace {

using namespace Rows;
using TPart = TVZClock::TPart;

/// What turns each hand, as the artwork draws it, to twelve o'clock, in degrees.
constexpr double HourRestDeg = -225;
constexpr double MinuteRestDeg = -105;
constexpr double SecondRestDeg = 30;

constexpr TColorRow Colors[] = {
    {"FrameColor",
     0xFFF7F7F7,
     FirstStopOf("linearGradientFrame10to3"),
     {Stop("linearGradientFrame10to3", 0), Stop("linearGradientFrame10to3", 1, Scaled(0.88)),
      Stop("radialGradientFrame4to9", 0, Scaled(0.6)), Stop("radialGradientFrame4to9", 1, Scaled(0.27)),
      Stop("linearGradientBevel", 0, Scaled(0.337)), Stop("linearGradientBevel", 1, Fixed(0xFFFFFFFF)),
      // The switch of gradients leaves this one its gradient; the colour takes it away for good. Kept.
      WithoutGradients(FlatFill("FrameTop"))}},
    {"BackfaceColor",
     0xFF266080,
     FirstStopOf("radialGradientBackface"),
     {Stop("radialGradientBackface", 0, Scaled(0.5)), Stop("radialGradientBackface", 1),
      Stop("radialGradientGlassBottom", 0, PlusHalfLight), Stop("radialGradientGlassBottom", 1),
      Flat("BackfaceCircle")}},
    {"SecondHandFillColor",
     0xFF3CA1F6,
     FirstStopOf("linearGradientSecondHand"),
     {Stop("linearGradientSecondHand", 0), Stop("linearGradientSecondHand", 1, Lowered(40)),
      Flat("SecondHandNeedle")}},
    {"SecondHandStrokeColor", 0xFF000000, StrokeOf("SecondHandNeedle"), {Stroke("SecondHandNeedle")}},
    {"MinuteHandFillColor",
     0xFFF5F5F5,
     FirstStopOf("linearGradientMinuteHand"),
     {Stop("linearGradientMinuteHand", 0), Stop("linearGradientMinuteHand", 1, Lowered(40)),
      Flat("MinuteHandNeedle")}},
    {"MinuteHandStrokeColor", 0xFF000000, StrokeOf("MinuteHandNeedle"), {Stroke("MinuteHandNeedle")}},
    {"HourHandFillColor",
     0xFFF5F5F5,
     FirstStopOf("linearGradientHourHand"),
     {Stop("linearGradientHourHand", 0), Stop("linearGradientHourHand", 1, Lowered(40)),
      Flat("HourHandNeedle")}},
    {"HourHandStrokeColor", 0xFF000000, StrokeOf("HourHandNeedle"), {Stroke("HourHandNeedle")}},
    {"LabelsFillColor",
     0xFF000000,
     FirstStopOf("linearGradientDarkLabels"),
     {Stop("linearGradientLightLabels", 0, Scaled(0.815)), Stop("linearGradientLightLabels", 1),
      Stop("linearGradientDarkLabels", 0), Stop("linearGradientDarkLabels", 1, Scaled(0.38)),
      Flat("Labels4to9"), Flat("Labels10to3")}},
    {"LabelsStrokeColor", 0xFF000000, StrokeOf("Labels10to3"), {Stroke("Labels10to3"), Stroke("Labels4to9")}},
    {"KnobFillColor",
     0xFFF7F7F7,
     FirstStopOf("radialGradientKnob"),
     {Stop("radialGradientKnob", 0), Stop("radialGradientKnob", 1, Scaled(0.5)), Flat("Knob")}},
    {"KnobStrokeColor", 0xFF9C9C9C, StrokeOf("Knob"), {Stroke("Knob")}},
};

constexpr TPartRow PartElements[] = {
    {TPart::cpDecoration, "Decoration"},
    {TPart::cpFrame, "Frame"},
    {TPart::cpShadows, "FrameShadow"},
    {TPart::cpShadows, "SecondHandShadow"},
    {TPart::cpShadows, "MinuteHandShadow"},
    {TPart::cpShadows, "HourHandShadow"},
    {TPart::cpFrameDecoration, "FrameTwoTone"},
    {TPart::cpBackface, "Backface"},
    {TPart::cpLabels, "Labels"},
    {TPart::cpHourHand, "HourHand"},
    {TPart::cpMinuteHand, "MinuteHand"},
    {TPart::cpSecondHand, "SecondHand"},
    {TPart::cpGlass, "Glass"}, // also governed by the design: whichever ran last wins. Kept.
    {TPart::cpKnob, "Knob"},
};

constexpr std::string_view DetailElements[] = {
    "FrameInnerBevel", "FrameOuterBevel", "Frame4to9", "Frame10to3", "Glass",
};

constexpr TGradientRow Gradients[] = {
    Switch("BackfaceCircle", "radialGradientBackface", "BackfaceColor"),
    Switch("Labels4to9", "linearGradientLightLabels", "LabelsFillColor"),
    Switch("Labels10to3", "linearGradientDarkLabels", "LabelsFillColor"),
    Switch("Knob", "radialGradientKnob", "KnobFillColor"),
    Switch("SecondHandNeedle", "linearGradientSecondHand", "SecondHandFillColor"),
    Switch("MinuteHandNeedle", "linearGradientMinuteHand", "MinuteHandFillColor"),
    Switch("HourHandNeedle", "linearGradientHourHand", "HourHandFillColor"),
    Shown("TopRightShine"),
    Shown("BottomShine"),
    Switch("Frame10to3", "linearGradientFrame10to3", "FrameColor"),
    Switch("Frame4to9", "radialGradientFrame4to9", "FrameColor"),
    Switch("FrameOuterBevel", "linearGradientBevel", "LightColor"),
    Switch("FrameInnerBevel", "linearGradientBevel", "LightColor", Shadow),
};

constexpr TColorEdit LightEdits[] = {
    FlatFill("ClockHands", Shadow),
    EveryStop("radialGradientFrameShadow", Shadow),
    Stop("radialGradientGlassTopRight", 0, Light),
    Stop("radialGradientGlassTopRight", 1, Light),
};

using K = TArtworkKind;
constexpr TArtworkRow Structure[] = {
    {"Backface", K::Group},
    {"BackfaceCircle", K::Path, "Backface"},
    {"Labels", K::Group},
    {"Labels10to3", K::Path, "Labels"},
    {"Labels4to9", K::Path, "Labels"},
    {"Frame", K::Group},
    {"FrameShadow", K::Path, "Frame"},
    {"FrameTop", K::Path, "Frame"},
    {"FrameOuterBevel", K::Path, "Frame"},
    {"FrameInnerBevel", K::Path, "Frame"},
    {"FrameTwoTone", K::Group, "Frame"},
    {"Frame4to9", K::Path, "FrameTwoTone"},
    {"Frame10to3", K::Path, "FrameTwoTone"},
    {"ClockHands", K::Group},
    {"HourHand", K::Group, "ClockHands"},
    {"HourHandShadow", K::Path, "HourHand"},
    {"HourHandNeedle", K::Path, "HourHand"},
    {"MinuteHand", K::Group, "ClockHands"},
    {"MinuteHandShadow", K::Path, "MinuteHand"},
    {"MinuteHandNeedle", K::Path, "MinuteHand"},
    {"SecondHand", K::Group, "ClockHands"},
    {"SecondHandShadow", K::Path, "SecondHand"},
    {"SecondHandNeedle", K::Path, "SecondHand"},
    {"Knob", K::Path},
    {"Glass", K::Group},
    {"TopRightShine", K::Path, "Glass"},
    {"BottomShine", K::Path, "Glass"},
    {"radialGradientFrameShadow", K::Stops, {}, 2},
};

constexpr TInstrumentSetup Setup{
    .Artwork = "ClockLorvanSVG",
    .ActiveElement = "ClockHands",
    .DecorationFill = 0xFF000000,
    .Parts = TVZClock::AllParts.GetMask(),
    .Colors = Colors,
    .PartElements = PartElements,
    .DetailElements = DetailElements,
    .Gradients = Gradients,
    .LightEdits = LightEdits,
    .Structure = Structure,
};

} // namespace

std::span<const TProp> TVZClock::GetPropTable() const {
    using T = TVZClock;
    static constexpr auto Rows = Publish(
        std::array{
            Prop<&T::GetParts, &T::SetParts>("Parts", AllParts),
            Main(Prop<&T::GetTime, &T::SetTime>("Time", TDateTime{}), TQuantity::TimeOfDay),
        },
        ColorProps<Setup>(),
        Inherited<Setup>({"Decoration", "DecorationPath", "DecorationFillColor", "DecorationStrokeColor",
                          "Design", "EnableGradients", "LightColor", "OnChange", "Buffered", "Stretch",
                          "Quality", "Opacity", "Transform", "OnDrawing", "OnDrawn"}));
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

const TInstrumentSetup& TVZClock::GetSetup() const { return Setup; }

void TVZClock::Construct() {
    TCreatable::Construct();
    SetTime(Now());
}

void TVZClock::DoInitializeGauge() {
    TCreatable::DoInitializeGauge();
    UpdateTime();
}

// Time.

void TVZClock::SetTime(TDateTime value) {
    if (value.Days == FTime.Days || !IsValidDateTime(value)) return;
    FTime = value;
    UpdateTime();
    DoOnChange();
}

void TVZClock::UpdateTime() {
    const TTimeOfDay time = DecodeTime(FTime);
    const auto hours = static_cast<float>(time.Hour % 12 + time.Minute / 60.0);
    EditDocument([&] {
        TurnHand("HourHand", hours / 12.0 * 360 + HourRestDeg);
        TurnHand("MinuteHand", (time.Minute + time.Second / 60.0) / 60 * 360 + MinuteRestDeg);
        TurnHand("SecondHand", time.Second / 60.0 * 360 + SecondRestDeg);
    });
    Invalidate();
}

void TVZClock::TurnHand(std::string_view id, double angleDeg) {
    if (TurnElement(id, "Knob", angleDeg)) return;
    auto* const hand = Find<TSVGGraphicElement>(id);
    const double radians = angleDeg * std::numbers::pi / 180;
    if (hand) hand->SetMatrix(CreateRotationVZMatrix({}, static_cast<float>(radians)));
}

// Light.

void TVZClock::DoUpdateLight() {
    TCreatable::DoUpdateLight();
    // What the glass gathers is the dial's colour, lit; each stop keeps its own opacity.
    constexpr TColorEdit edits[] = {Stop("radialGradientGlassBottom", 0, PlusHalfLight),
                                    Stop("radialGradientGlassBottom", 1)};
    const auto* const gradient = Find<TSVGCustomGradient>("radialGradientGlassBottom");
    if (!gradient) return;
    for (const TColorEdit& edit : edits)
        if (edit.Index < gradient->GetStopCount()) {
            const TVZGPColor own = gradient->GetStop(edit.Index).GetStopColor();
            ApplyEdit(edit, WithAlpha(GetBackfaceColor(), AlphaOf(own)));
        }
}

} // namespace Vz
