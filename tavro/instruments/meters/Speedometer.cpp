#include "tavro/instruments/meters/Speedometer.h"

#include "tavro/instruments/Editing.h"
#include "tavro/instruments/ScalePublish.h"
#include "tavro/runtime/Rounding.h"

namespace Vz {

namespace {

using namespace Rows;
using TPart = TVZSpeedometer::TPart;

/// Of the scale's span, how far the needle goes beyond each end.
constexpr double Overrun = 0.04167;
/// The needle's sweep and its angle at the lower end of its range, in degrees. The arc is a little off the
/// centre: it ends at +100.15. Kept.
constexpr double SweepDeg = 200.2;
constexpr double StartDeg = -100.05;

constexpr TColorRow Colors[] = {
    {"FrameColor",
     0xFF888A85,
     FirstStopOf("linearGradientFrame"),
     {Recolour("linearGradientFrame"), Flat("OuterFrame")}},
    {"BackfaceColor",
     0xFF555753,
     FirstStopOf("linearGradientBackface"),
     {Recolour("linearGradientBackfaceHighlight"), Recolour("linearGradientBackface"), Flat("BackfaceFlat")}},
    {"MarkersFillColor", 0xFFFFFFFF, FillOf("MarkersMajor"), {Fill("MarkersMajor"), Fill("MarkersMinor")}},
    {"MarkersStrokeColor",
     0xFF000000,
     StrokeOf("MarkersMajor"),
     {Stroke("MarkersMajor"), Stroke("MarkersMinor")}},
    {"LabelsFillColor", 0xFFFFFFFF, FillOf("Labels"), {Fill("Labels")}},
    {"LabelsStrokeColor", 0xFF000000, StrokeOf("Labels"), {Stroke("Labels")}},
    {"KnobFillColor", 0xFFFFFFFF, FirstStopOf("GradientKnob"), {Recolour("GradientKnob"), Flat("Knob")}},
    {"KnobStrokeColor", 0xFF000000, StrokeOf("Knob"), {Stroke("Knob")}},
    {"NeedleFillColor", 0xFFFFFFFF, FillOf("Needle"), {Fill("Needle")}, TReach::ActiveElement},
    {"NeedleStrokeColor", 0xFF000000, StrokeOf("Needle"), {Stroke("Needle")}, TReach::ActiveElement},
};

constexpr TPartRow PartElements[] = {
    {TPart::spDecoration, "Decoration"},
    {TPart::spFrame, "Frame"},
    {TPart::spBackface, "Backface"},
    {TPart::spNeedle, "NeedleGroup"},
    {TPart::spLabels, "Labels"},
    {TPart::spMajorMarkers, "MarkersMajor"},
    {TPart::spMinorMarkers, "MarkersMinor"},
    {TPart::spGlass, "Glass"}, // also governed by the design: whichever ran last wins. Kept.
    {TPart::spKnob, "KnobGroup"},
};

constexpr std::string_view DetailElements[] = {
    "BackfaceHighlight", "InnerFrame", "NeedleHighlight", "Glass", "NeedleShadow",
};

constexpr TGradientRow Gradients[] = {
    Switch("BackfaceFlat", "linearGradientBackface", "BackfaceColor"),
    Switch("BackfaceHighlight", "linearGradientBackfaceHighlight", "BackfaceColor"),
    Switch("OuterFrame", "linearGradientFrame", "FrameColor"),
    Switch("Knob", "radialGradientKnob", "KnobFillColor"),
    Switch("Decoration", "linearGradientDecorationFill", "DecorationFillColor"),
    SwitchStroke("Decoration", "linearGradientDecorationStroke", "DecorationStrokeColor"),
};

constexpr TColorEdit LightEdits[] = {Recolour("linearGradientShine"), Fill("NeedleShadow", Shadow)};

constexpr std::string_view SavedGradients[] = {"GradientDecoration"};

using K = TArtworkKind;
constexpr TArtworkRow Structure[] = {
    {"Labels", K::Texts},
    {"speed0", K::Text, "Labels"},
    {"speed40", K::Text, "Labels"},
    {"speed80", K::Text, "Labels"},
    {"speed120", K::Text, "Labels"},
    {"speed160", K::Text, "Labels"},
    {"speed200", K::Text, "Labels"},
    {"speed240", K::Text, "Labels"},
    {"Needle", K::Graphic, "NeedleGroup"},
    {"NeedleShadow", K::Graphic, "NeedleGroup"},
    {"NeedleHighlight", K::Graphic, "NeedleGroup"},
    {"KnobShadow", K::Graphic, "KnobGroup"},
    {"Knob", K::Graphic, "KnobGroup"},
};

constexpr TInstrumentSetup Setup{
    .Artwork = "SpeedometerSVG",
    .ActiveElement = "NeedleGroup",
    .Decoration = TDecoration::dcFuelTank,
    .DecorationFill = 0xFFF06400,
    .Parts = TVZSpeedometer::AllParts.GetMask(),
    .Colors = Colors,
    .PartElements = PartElements,
    .DetailElements = DetailElements,
    .Gradients = Gradients,
    .LightEdits = LightEdits,
    .SavedGradients = SavedGradients,
    .Structure = Structure,
};

constexpr TScale DefaultScale{0, 240, 0};

} // namespace

std::span<const TProp> TVZSpeedometer::GetPropTable() const {
    using T = TVZSpeedometer;
    static constexpr auto Rows =
        Publish(ScaleProps<DefaultScale, TQuantity::Speed>(),
                std::array{Prop<&T::GetParts, &T::SetParts>("Parts", AllParts),
                           ObjectProp<&T::GetFont, &T::SetFont>("Font")},
                ColorProps<Setup>(),
                Inherited<Setup>({"Decoration", "Design", "EnableGradients", "FormatStr", "LightColor",
                                  "DecorationFillColor", "DecorationStrokeColor", "DecorationPath",
                                  "Buffered", "Quality", "OnChange", "OnDrawing", "OnDrawn"}));
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

const TInstrumentSetup& TVZSpeedometer::GetSetup() const { return Setup; }

void TVZSpeedometer::Construct() {
    SetDefaultScale(DefaultScale);
    TCreatable::Construct();
}

void TVZSpeedometer::DoInitializeGauge() {
    ShowScale();
    FontChanged();
    TCreatable::DoInitializeGauge();
}

// Scale and needle.

void TVZSpeedometer::ShowScale() {
    InitializeSpeedometer();
    UpdateNeedle();
}

void TVZSpeedometer::InitializeSpeedometer() {
    InitializeLabels();
    const float span = GetMax() - GetMin(); // in single precision, which is meant
    const auto overrun = static_cast<double>(RoundHalfEven(double{span} * Overrun));
    FNeedleMax = static_cast<float>(GetMax() + overrun);
    FNeedleMin = static_cast<float>(GetMin() - overrun);
}

void TVZSpeedometer::InitializeLabels() { WriteScale("Labels", GetMin(), GetMax()); }

void TVZSpeedometer::UpdateNeedle() {
    const double range = double(FNeedleMax) - FNeedleMin;
    const double angleDeg = (double(GetValue()) - FNeedleMin) / range * SweepDeg + StartDeg;
    if (TurnElement("NeedleGroup", "Knob", angleDeg)) Invalidate();
}

// Colours.

void TVZSpeedometer::ColorChanged(std::size_t index) {
    if (index == NeedleFill && GetDesign() == TSVGDesign::sdDetailed)
        SetElementFill("NeedleHighlight", ScaleColor(GetNeedleFillColor(), 0.5));
}

void TVZSpeedometer::UpdateDecorationFill() {
    // In the detailed design the gradient takes the colour, also while gradients are off. Kept.
    if (GetDesign() == TSVGDesign::sdSimple) return TCreatable::UpdateDecorationFill();
    RecolourGradient("GradientDecoration", GetDecorationFillColor());
    MarkChanged();
}

} // namespace Vz
