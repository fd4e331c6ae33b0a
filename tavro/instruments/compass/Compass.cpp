#include "tavro/instruments/compass/Compass.h"

#include "tavro/graphics/Transform.h"
#include "tavro/instruments/Editing.h"
#include "tavro/instruments/Publish.h"
#include "tavro/instruments/compass/RosePaths.h"

#include <cmath>
#include <numbers>

namespace Vz {

namespace {

using namespace Rows;
using TPart = TVZCompass::TPart;

/// The needle is drawn so far clockwise of upright, in degrees.
constexpr double NeedleDrawnDeg = 18;

constexpr TTint Half = Scaled(0.5);
constexpr TTint Twice = Scaled(2);
constexpr TTint NeedleDark = Scaled(0.3);
constexpr TTint NeedleLight = Scaled(1.2);

constexpr TColorRow Colors[] = {
    {"FrameColor",
     0xFFD3D7CF,
     FirstStopOf("linearGradientFrame"),
     {Recolour("linearGradientFrame"), Flat("frameRect")}},
    {"BackfaceColor",
     0xFFF2F2F2,
     StopOf("linearGradientBackface", 1),
     {RecolourFromLast("linearGradientBackface"), Flat("BackfaceCircle")}},
    {"BackfaceLinesFillColor",
     0xFF000000,
     FillOf("BackfaceLines"),
     {FlatFill("BackfaceLines"), FlatFill("InnerCircle")}},
    {"BackfaceLinesStrokeColor",
     0xFFD3D7CF,
     StrokeOf("BackfaceLines"),
     {Stroke("BackfaceLines"), Stroke("InnerCircle")}},
    {"MarkersFillColor", 0xFF000000, FillOf("Markers"), {FlatFill("Markers")}},
    {"MarkersStrokeColor", 0xFF000000, StrokeOf("Markers"), {Stroke("Markers")}},
    {"NumbersFillColor", 0xFF2E3436, FillOf("Numbers"), {FlatFill("Numbers")}},
    {"NumbersStrokeColor", 0xFF000000, StrokeOf("Numbers"), {Stroke("Numbers")}},
    {"LabelsFillColor", 0xFF000000, FillOf("Labels"), {FlatFill("Labels")}},
    {"LabelsStrokeColor", 0xFF000000, StrokeOf("Labels"), {Stroke("Labels")}},
    {"NeedleHighColor",
     0xFFCC0000,
     FillOf("NeedleHigh"),
     {Fill("NeedleHigh"), Stroke("NeedleHigh", NeedleLight),
      Always(Stop("linearGradientNeedleHighShadow", 0, NeedleDark)),
      Always(Stop("linearGradientNeedleHighShadow", 1, NeedleLight))}},
    {"NeedleLowColor",
     0xFF3465A4,
     FillOf("NeedleLow"),
     {Fill("NeedleLow"), Stroke("NeedleLow", NeedleLight),
      Always(Stop("linearGradientNeedleLowShadow", 0, NeedleDark)),
      Always(Stop("linearGradientNeedleLowShadow", 1, NeedleLight))}},
    {"KnobFillColor",
     0xFF808080,
     FirstStopOf("linearGradientKnobHead"),
     {Stop("linearGradientKnobHead", 0), Stop("linearGradientKnobHead", 1, Twice),
      Stop("linearGradientKnobDriveUp", 0, Half), Stop("linearGradientKnobDriveUp", 1, Twice),
      Stop("linearGradientKnobDriveAcross", 0, Half), Stop("linearGradientKnobDriveAcross", 1, Twice),
      Stop("linearGradientKnobFrame", 0, Twice), Stop("linearGradientKnobFrame", 1), Flat("KnobHead")}},
    {"KnobStrokeColor", 0xFF000000, StrokeOf("Knob"), {Stroke("Knob")}},
};

constexpr TPartRow PartElements[] = {
    {TPart::cpFrame, "Frame"},
    {TPart::cpBackface, "Backface"},
    {TPart::cpBackfaceLines, "BackfaceLines"},
    {TPart::cpBackfaceLines, "InnerCircle"},
    {TPart::cpMarkers,
     "Markers"}, // as the numbers also governed by the design: whichever ran last wins. Kept.
    {TPart::cpNumbers, "Numbers"},
    {TPart::cpLabels, "Labels"},
    {TPart::cpRose, "Rose"},
    {TPart::cpNeedle, "Needle"},
    {TPart::cpNeedleShadow, "NeedleShadow"},
    {TPart::cpKnob, "Knob"},
};

constexpr std::string_view DetailElements[] = {
    "FrameOrnamentation",
    "ReflectionLow",
    "ReflectionHigh",
    "BackfaceShadow",
    "Numbers",
    "Markers",
    "NeedleHighShadow",
    "NeedleHighHighlight",
    "NeedleLowShadow",
    "NeedleLowHighlight",
    "ScrewDriveUp",
    "ScrewDriveAcross",
    "KnobFrame",
};

constexpr TGradientRow Gradients[] = {
    Switch("BackfaceCircle", "linearGradientBackface", "BackfaceColor"),
    Switch("ReflectionLow", "linearGradientReflectionLow", "LightColor"),
    Switch("ReflectionHigh", "linearGradientReflectionHigh", "LightColor"),
    Switch("frameRect", "linearGradientFrame", "FrameColor"),
    Shown("FrameOrnamentation"),
    Switch("KnobHead", "linearGradientKnobHead", "KnobFillColor"),
    Switch("ScrewDriveUp", "linearGradientKnobDriveUp", "KnobFillColor"),
    Switch("ScrewDriveAcross", "linearGradientKnobDriveAcross", "KnobFillColor"),
    Switch("KnobFrame", "linearGradientKnobFrame", "KnobFillColor"),
};

constexpr TColorEdit LightEdits[] = {Fill("BackfaceShadow", Shadow), Fill("NeedleShadow", Shadow)};

using K = TArtworkKind;
constexpr TArtworkRow Structure[] = {
    {"frameRect", K::Graphic, "Frame"},
    {"FrameOrnamentation", K::Graphic, "Frame"},
    {"BackfaceCircle", K::Graphic, "Frame"},
    {"ReflectionLow", K::Graphic, "Frame"},
    {"ReflectionHigh", K::Graphic, "Frame"},
    {"Rose", K::Path, "Backface"},
    {"BackfaceDetail", K::Graphic, "Backface"},
    {"Numbers", K::Graphic, "BackfaceDetail"},
    {"InnerCircle", K::Graphic, "BackfaceDetail"},
    {"BackfaceLines", K::Graphic, "BackfaceDetail"},
    {"Labels", K::Graphic, "BackfaceDetail"},
    {"NeedleShadow", K::Graphic, "Needle"},
    {"NeedleHigh", K::Graphic, "Needle"},
    {"NeedleLow", K::Graphic, "Needle"},
    {"NeedleHighShadow", K::Graphic, "Needle"},
    {"NeedleLowShadow", K::Graphic, "Needle"},
    {"NeedleHighHighlight", K::Graphic, "Needle"},
    {"NeedleLowHighlight", K::Graphic, "Needle"},
    {"KnobFrame", K::Graphic, "Knob"},
    {"KnobHead", K::Graphic, "Knob"},
    {"ScrewDriveUp", K::Graphic, "Knob"},
    {"ScrewDriveAcross", K::Graphic, "Knob"},
};

constexpr TInstrumentSetup Setup{
    .Artwork = "CompassMetallicSVG",
    .DecorationElement = "Rose",
    .Decoration = TDecoration::dcStar,
    .DecorationFill = 0xFFAFC6C5,
    .DecorationStroke = 0xFFAFC6C5,
    .Parts = TVZCompass::AllParts.GetMask(),
    .Colors = Colors,
    .PartElements = PartElements,
    .DetailElements = DetailElements,
    .Gradients = Gradients,
    .LightEdits = LightEdits,
    .Structure = Structure,
};

/// How a part turns: the element, the one about whose centre, and its angle at 0, in degrees.
struct TTurn {
    std::string_view Element;
    std::string_view Center;
    double ZeroDeg;
};
constexpr TTurn Turns[] = {
    {"Needle", "ScrewDriveUp", -NeedleDrawnDeg},
    {"BackfaceDetail", "InnerCircle", 0},
    {"Backface", "InnerCircle", 0},
};
const TTurn& TurnOf(TCompassMovablePart part) { return Turns[static_cast<int>(part)]; }

} // namespace

std::span<const TProp> TVZCompass::GetPropTable() const {
    using T = TVZCompass;
    constexpr void (T::*setAngle)(float) = &T::SetAngle;
    static constexpr auto Rows = Publish(
        std::array{Main(Prop<&T::GetAngle, setAngle>("Angle", 0), TQuantity::Heading),
                   Prop<&T::GetRotate, &T::SetRotate>("Rotate", TCompassMovablePart::cmpFaceNRose),
                   Prop<&T::GetParts, &T::SetParts>("Parts", AllParts)},
        ColorProps<Setup>(),
        Inherited<Setup>({"Decoration", "DecorationPath", "DecorationFillColor", "DecorationStrokeColor",
                          "Design", "EnableGradients", "LightColor", "FormatStr", "Buffered", "Stretch",
                          "Quality", "Opacity", "Transform", "OnChange", "OnDrawing", "OnDrawn"}));
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

const TInstrumentSetup& TVZCompass::GetSetup() const { return Setup; }
std::string_view TVZCompass::GetActiveElementId() const { return TurnOf(FRotate).Element; }

void TVZCompass::DoInitializeGauge() {
    TCreatable::DoInitializeGauge();
    UpdateNeedle();
}

void TVZCompass::UpdateDecoration() {
    const std::string_view own = GetRosePath(GetDecoration());
    auto* const rose = Find<TSVGPath>(GetDecorationElementId());
    if (own.empty() || !rose) return TCreatable::UpdateDecoration();
    EditDocument([&] { rose->SetData(&PathOf(own)); });
    MarkChanged();
}

// Angle.

void TVZCompass::SetAngle(float value) {
    if (value == FAngle || !std::isfinite(value)) return;
    // The angle until now is what is held against 360, not the new one. Kept.
    FAngle = value < 0 ? 0 : FAngle > 360 ? 360 : value;
    UpdateNeedle();
}

void TVZCompass::SetRotate(TCompassMovablePart value) {
    if (value == FRotate) return;
    const float angle = FAngle;
    SetAngle(0);
    FRotate = value;
    SetActiveSVGElement(Find<TSVGGraphicElement>(GetActiveElementId()));
    MarkBuffersStale();
    SetAngle(angle);
    Invalidate();
}

void TVZCompass::ReadGeometry() {
    TCreatable::ReadGeometry();
    Turn(TCompassMovablePart::cmpNeedle);
}

void TVZCompass::UpdateNeedle() {
    if (GetDocument().GetChildCount() == 0) return;
    Turn(FRotate);
    Invalidate();
}

void TVZCompass::Turn(TCompassMovablePart part) {
    const TTurn& turn = TurnOf(part);
    const double angleDeg = FAngle + turn.ZeroDeg;
    auto* const element = Find<TSVGGraphicElement>(turn.Element);
    if (!element || TurnElement(turn.Element, turn.Center, angleDeg)) return;
    const auto radians = static_cast<float>(angleDeg * std::numbers::pi / 180);
    EditDocument([&] { element->SetMatrix(CreateRotationVZMatrix(TPointF{}, radians)); });
}

} // namespace Vz
