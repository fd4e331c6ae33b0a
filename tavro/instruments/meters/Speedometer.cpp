#include "tavro/instruments/meters/Speedometer.h"

#include "tavro/instruments/InstrumentProps.h"
#include "tavro/runtime/Rounding.h"

#include <cmath>

namespace Vz {

namespace {

using TSelf = TVZSpeedometer;
using TPart = TSelf::TPart;

/// Of the scale's span, how far the needle goes beyond each end.
constexpr double Overrun = 0.04167;
/// The needle's sweep and its angle at the lower end of its range, in degrees. The arc is a little off the
/// centre: it ends at +100.15. Kept.
constexpr double SweepDeg = 200.2;
constexpr double StartDeg = -100.05;

constexpr TPartRow<TPart> PartElements[] = {
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

/// What only the detailed design shows.
constexpr std::string_view DetailElements[] = {
    "BackfaceHighlight", "InnerFrame", "NeedleHighlight", "Glass", "NeedleShadow",
};

constexpr TArtworkRow Contract[] = {
    {"linearGradientFrame", TArtworkKind::Stops},
    {"linearGradientBackface", TArtworkKind::Stops},
    {"linearGradientBackfaceHighlight", TArtworkKind::Stops},
    {"GradientKnob", TArtworkKind::Stops},
    {"radialGradientKnob", TArtworkKind::Gradient},
    {"GradientDecoration", TArtworkKind::Stops},
    {"linearGradientShine", TArtworkKind::Stops},
    {"linearGradientDecorationFill", TArtworkKind::Gradient},
    {"linearGradientDecorationStroke", TArtworkKind::Gradient},
    {"Frame", TArtworkKind::Graphic},
    {"InnerFrame", TArtworkKind::Graphic},
    {"OuterFrame", TArtworkKind::Graphic},
    {"Backface", TArtworkKind::Graphic},
    {"BackfaceFlat", TArtworkKind::Graphic},
    {"BackfaceHighlight", TArtworkKind::Graphic},
    {"MarkersMajor", TArtworkKind::Graphic},
    {"MarkersMinor", TArtworkKind::Graphic},
    {"Decoration", TArtworkKind::Path},
    {"Labels", TArtworkKind::Texts},
    {"speed0", TArtworkKind::Text, "Labels"},
    {"speed40", TArtworkKind::Text, "Labels"},
    {"speed80", TArtworkKind::Text, "Labels"},
    {"speed120", TArtworkKind::Text, "Labels"},
    {"speed160", TArtworkKind::Text, "Labels"},
    {"speed200", TArtworkKind::Text, "Labels"},
    {"speed240", TArtworkKind::Text, "Labels"},
    {"NeedleGroup", TArtworkKind::Graphic},
    {"Needle", TArtworkKind::Graphic, "NeedleGroup"},
    {"NeedleShadow", TArtworkKind::Graphic, "NeedleGroup"},
    {"NeedleHighlight", TArtworkKind::Graphic, "NeedleGroup"},
    {"KnobGroup", TArtworkKind::Graphic},
    {"KnobShadow", TArtworkKind::Graphic, "KnobGroup"},
    {"Knob", TArtworkKind::Graphic, "KnobGroup"},
    {"Glass", TArtworkKind::Graphic},
};

} // namespace

std::span<const TProp> TVZSpeedometer::GetPropTable() const {
    using T = TVZSpeedometer;
    static constexpr auto Rows = Publish(
        {
            Prop<&T::GetMin, &T::SetMin, &T::IsMinStored>("Min", 0.0f),
            Prop<&T::GetMax, &T::SetMax, &T::IsMaxStored>("Max", 240.0f),
            Prop<&T::GetValue, &T::SetValue, &T::IsValueStored>("Value", 0.0f),
            Prop<&T::GetParts, &T::SetParts>("Parts", AllParts),
            ObjectProp<&T::GetFont, &T::SetFont>("Font"),
            Prop<&T::GetFrameColor, &T::SetFrameColor>("FrameColor", 0xFF888A85),
            Prop<&T::GetBackfaceColor, &T::SetBackfaceColor>("BackfaceColor", 0xFF555753),
            Prop<&T::GetMarkersFillColor, &T::SetMarkersFillColor>("MarkersFillColor", 0xFFFFFFFF),
            Prop<&T::GetMarkersStrokeColor, &T::SetMarkersStrokeColor>("MarkersStrokeColor", 0xFF000000),
            Prop<&T::GetLabelsFillColor, &T::SetLabelsFillColor>("LabelsFillColor", 0xFFFFFFFF),
            Prop<&T::GetLabelsStrokeColor, &T::SetLabelsStrokeColor>("LabelsStrokeColor", 0xFF000000),
            Prop<&T::GetKnobFillColor, &T::SetKnobFillColor>("KnobFillColor", 0xFFFFFFFF),
            Prop<&T::GetKnobStrokeColor, &T::SetKnobStrokeColor>("KnobStrokeColor", 0xFF000000),
            Prop<&T::GetNeedleFillColor, &T::SetNeedleFillColor>("NeedleFillColor", 0xFFFFFFFF),
            Prop<&T::GetNeedleStrokeColor, &T::SetNeedleStrokeColor>("NeedleStrokeColor", 0xFF000000),
        },
        {"Decoration", "Design", "EnableGradients", "FormatStr", "LightColor", "DecorationFillColor",
         "DecorationStrokeColor", "DecorationPath", "Buffered", "Quality", "OnChange", "OnDrawing",
         "OnDrawn"},
        {TDecoration::dcFuelTank, 0xFFF06400, 0xFF000000});
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

std::span<const TArtworkRow> TVZSpeedometer::GetArtworkContract() const { return Contract; }

// Creation.

void TVZSpeedometer::Construct() {
    FDecorationElementId = "Decoration";
    TVZSVGCustomInstrument::Construct();
    FDecoration = TDecoration::dcFuelTank;
    FFont = std::make_unique<TSVGFont>();
    FFont->OnChange = [this](TObject&) { FontChanged(); };
}

void TVZSpeedometer::LoadSVGProperties() {
    TVZSVGCustomInstrument::LoadSVGProperties();
    using P = TColorPlace;
    const TColorRow rows[] = {
        {"linearGradientFrame", P::FirstStop, &FFrameColor, true},
        {"linearGradientBackface", P::FirstStop, &FBackfaceColor, true},
        {"linearGradientBackfaceHighlight", P::FirstStop, nullptr, true},
        {"Needle", P::Fill, &FNeedleFillColor},
        {"Needle", P::Stroke, &FNeedleStrokeColor},
        {"Labels", P::Fill, &FLabelsFillColor},
        {"Labels", P::Stroke, &FLabelsStrokeColor},
        {"MarkersMajor", P::Fill, &FMarkersFillColor},
        {"MarkersMajor", P::Stroke, &FMarkersStrokeColor},
        {"GradientKnob", P::FirstStop, &FKnobFillColor, true},
        {"Knob", P::Stroke, &FKnobStrokeColor},
        {"GradientDecoration", P::FirstStop, nullptr, true},
        {"linearGradientShine", P::FirstStop, nullptr, true},
    };
    ReadColors(rows);
}

void TVZSpeedometer::DoInitializeGauge() {
    InitializeSpeedometer();
    UpdateNeedle();
    FontChanged();
    TVZSVGCustomInstrument::DoInitializeGauge();
}

// Scale and needle.

void TVZSpeedometer::SetMax(float value) {
    if (FScale.MoveMax(value)) ScaleChanged();
}

void TVZSpeedometer::SetMin(float value) {
    if (FScale.MoveMin(value)) ScaleChanged();
}

void TVZSpeedometer::SetValue(float value) {
    if (!FScale.MoveValue(value, FNeedleMin, FNeedleMax)) return;
    UpdateNeedle();
    DoOnChange();
}

void TVZSpeedometer::ScaleChanged() {
    EditDocument([this] {
        InitializeSpeedometer();
        UpdateNeedle();
    });
    MarkChanged();
}

void TVZSpeedometer::InitializeSpeedometer() {
    InitializeLabels();
    const float span = FScale.Max - FScale.Min; // in single precision, which is meant
    const auto overrun = static_cast<double>(RoundHalfEven(double{span} * Overrun));
    FNeedleMax = static_cast<float>(FScale.Max + overrun);
    FNeedleMin = static_cast<float>(FScale.Min - overrun);
}

void TVZSpeedometer::InitializeLabels() { WriteScale("Labels", FScale.Min, FScale.Max); }

void TVZSpeedometer::UpdateNumbers() { InitializeLabels(); }

void TVZSpeedometer::UpdateNeedle() {
    const double range = double(FNeedleMax) - FNeedleMin;
    const double angleDeg = (double(FScale.Value) - FNeedleMin) / range * SweepDeg + StartDeg;
    if (TurnElement("NeedleGroup", "Knob", angleDeg)) Invalidate();
}

// Look.

void TVZSpeedometer::SetParts(TParts value) {
    if (Store(FParts, value)) UpdateParts();
}

void TVZSpeedometer::SetFont(const TSVGFont& value) { FFont->Assign(value); }

void TVZSpeedometer::FontChanged() { ApplyFont("Labels", *FFont); }

void TVZSpeedometer::DoUpdateParts() {
    TVZSVGCustomInstrument::DoUpdateParts();
    ShowParts(PartElements, FParts);
}

void TVZSpeedometer::DoUpdateDesign() {
    for (const std::string_view id : DetailElements)
        ShowElement(id, GetDesign() == TSVGDesign::sdDetailed);
}

void TVZSpeedometer::DoUpdateLight() {
    RecolourGradient("linearGradientShine", GetLightColor());
    SetElementFill("NeedleShadow", GetShadowColor());
}

void TVZSpeedometer::DoEnableGradients(bool enable) {
    const TGradientRow rows[] = {
        {"BackfaceFlat", "linearGradientBackface", FBackfaceColor},
        {"BackfaceHighlight", "linearGradientBackfaceHighlight", FBackfaceColor},
        {"OuterFrame", "linearGradientFrame", FFrameColor},
        {"Knob", "radialGradientKnob", FKnobFillColor},
        {FDecorationElementId, "linearGradientDecorationFill", GetDecorationFillColor()},
        {FDecorationElementId, "linearGradientDecorationStroke", GetDecorationStrokeColor(), false},
    };
    SwitchGradients(rows, enable);
}

void TVZSpeedometer::UpdateDecorationFill() {
    // In the detailed design the gradient takes the colour, also while gradients are off. Kept.
    if (GetDesign() == TSVGDesign::sdSimple) return TVZSVGCustomInstrument::UpdateDecorationFill();
    RecolourGradient("GradientDecoration", GetDecorationFillColor());
    MarkChanged();
}

// Colours.

void TVZSpeedometer::SetFrameColor(TVZGPColor value) {
    Change(FFrameColor, value, [&] { Recolour({"linearGradientFrame"}, "OuterFrame", value); });
}

void TVZSpeedometer::SetBackfaceColor(TVZGPColor value) {
    Change(FBackfaceColor, value, [&] {
        Recolour({"linearGradientBackfaceHighlight", "linearGradientBackface"}, "BackfaceFlat", value);
    });
}

void TVZSpeedometer::SetKnobFillColor(TVZGPColor value) {
    Change(FKnobFillColor, value, [&] { Recolour({"GradientKnob"}, "Knob", value); });
}

void TVZSpeedometer::SetKnobStrokeColor(TVZGPColor value) {
    Change(FKnobStrokeColor, value, [&] { SetElementStroke("Knob", value); });
}

void TVZSpeedometer::SetLabelsFillColor(TVZGPColor value) {
    Change(FLabelsFillColor, value, [&] { SetElementFill("Labels", value); });
}

void TVZSpeedometer::SetLabelsStrokeColor(TVZGPColor value) {
    Change(FLabelsStrokeColor, value, [&] { SetElementStroke("Labels", value); });
}

void TVZSpeedometer::SetMarkersFillColor(TVZGPColor value) {
    Change(FMarkersFillColor, value, [&] {
        SetElementFill("MarkersMajor", value);
        SetElementFill("MarkersMinor", value);
    });
}

void TVZSpeedometer::SetMarkersStrokeColor(TVZGPColor value) {
    Change(FMarkersStrokeColor, value, [&] {
        SetElementStroke("MarkersMajor", value);
        SetElementStroke("MarkersMinor", value);
    });
}

void TVZSpeedometer::SetNeedleFillColor(TVZGPColor value) {
    const auto edits = [&] {
        SetElementFill("Needle", value);
        if (GetDesign() == TSVGDesign::sdDetailed) SetElementFill("NeedleHighlight", ScaleColor(value, 0.5));
    };
    Change(FNeedleFillColor, value, edits, TReach::ActiveElement);
}

void TVZSpeedometer::SetNeedleStrokeColor(TVZGPColor value) {
    Change(
        FNeedleStrokeColor, value, [&] { SetElementStroke("Needle", value); }, TReach::ActiveElement);
}

} // namespace Vz
