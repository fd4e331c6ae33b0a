#include "tavro/instruments/CircularGauge.h"
#include "tavro/instruments/DecorationPaths.h"
#include "tavro/instruments/Editing.h"
#include "tavro/instruments/InstrumentFont.h"
#include "tavro/runtime/Strings.h"

namespace Vz {

namespace {

using namespace Rows;
using TPart = TVZCustomCircularGauge::TPart;
using TParts = TVZCustomCircularGauge::TParts;

constexpr TColorRow Colors[] = {
    {"FrameColor",
     0xFFA9A9A9,
     FillOf("FrameColor"),
     {Fill("Frame"), Flat("FrameBevelUpper", Dodged), Flat("FrameBevelLower", Burned),
      Flat("BackfaceBevelLower", Dodged), Flat("BackfaceBevelUpper", Burned)}},
    {"BackfaceColor", 0xFF000000, FillOf("DialColor"), {Fill("DialColor")}},
    {"BoltColor", 0xFFA9A9A9, FillOf("Bolt"), {Fill("Bolt")}},
    {"KnobColor", 0xFFA9A9A9, FillOf("Knob"), {Fill("Knob")}},
    {"MajorMarkersColor", 0xFFFFFFFF, FillOf("BigMarkers"), {Fill("BigMarkers")}},
    {"MinorMarkersColor", 0xFFFFFFFF, FillOf("SmallMarkers"), {Fill("SmallMarkers")}},
    {"LabelsFillColor", 0xFFFFFFFF, FillOf("Labels"), {Fill("MeasurementLabels")}},
    {"LabelsStrokeColor", 0xFF000000, StrokeOf("Labels"), {Stroke("MeasurementLabels")}},
    {"BigHandColor", 0xFFFFFFFF}, // of whichever element shows the value
    {"LittleHandColor", 0xFFFFFFFF, FillOf("LittleHand"), {Fill("LittleHand")}},
    {"ThinHandColor", 0xFF0000FF, FillOf("ThinHand"), {Fill("ThinHand")}},
};

constexpr TPartRow PartElements[] = {
    {TPart::gpDecoration, "DecorationUse"},
    {TPart::gpFrame, "Frame"},
    {TParts{TPart::gpFrame, TPart::gpBolts}, "Bolts"},
    {TPart::gpBackface, "DialColor"},
    {TPart::gpBackface, "DialLight"},
    {TPart::gpBackface, "Backface"},
    {TPart::gpKnob, "Knob"},
    {TPart::gpHands, "Hands"},
    {TPart::gpLabels, "Labels"},
    {TParts{TPart::gpLabels, TPart::gpMeasurementLabels}, "MeasurementLabels"},
    {TParts{TPart::gpLabels, TPart::gpMainLabel}, "GaugeText"},
    {TParts{TPart::gpLabels, TPart::gpDetailLabel}, "GaugeDetailText"},
    {TPart::gpMajorMarkers, "BigMarkers"},
    {TPart::gpMinorMarkers, "SmallMarkers"},
    {TPart::gpGlass, "GlassGroup"}, // also governed by design and gradients: whichever ran last wins. Kept.
};

constexpr std::string_view DetailElements[] = {"Bolts", "GlassGroup"};

constexpr TGradientRow Gradients[] = {
    ShownInDetail("FrameBackfaceShadow"),
    ShownInDetail("DialLight"),
    ShownInDetail("GlassGroup"),
    ShownInDetail("KnobHighlight"),
    ShownInDetail("BoltShadow"),
    ShownInDetail("AttachmentFaceHighlight"),
    Switch("FrameBevelUpper", "linearGradient7738", "FrameColor", Dodged),
    Switch("FrameBevelLower", "linearGradient5799", "FrameColor", Burned),
    Switch("BackfaceBevelUpper", "linearGradient4348", "FrameColor", Burned),
    Switch("BackfaceBevelLower", "linearGradient4575", "FrameColor", Dodged),
};

constexpr TColorEdit LightEdits[] = {EveryStop("GradientDarken", Shadow),
                                     EveryStop("GradientLighten", Light)};

using K = TArtworkKind;
constexpr TArtworkRow Structure[] = {
    {"TextCircle", K::Path},
    {"DecorationUse", K::Graphic, "Dial"},
    {"Dial", K::Graphic},
    {"MarkersAndLabels", K::Graphic, "Dial"},
    {"Markers", K::Graphic, "MarkersAndLabels"},
    {"SmallMarkers", K::Group, "Markers"},
    {"BigMarkers", K::Group, "Markers"},
    {"Labels", K::Graphic, "MarkersAndLabels"},
    {"MeasurementLabels", K::Group, "Labels"},
    {"GaugeLabels", K::Graphic},
    {"GaugeText", K::Text},
    {"GaugeDetailText", K::Text},
    {"LittleHand", K::Graphic, "Hands"},
    {"BigHand", K::Graphic, "Hands"},
    {"ThinHand", K::Graphic, "Hands"},
    {"KnobSwitch", K::Graphic, "Hands"},
};

constexpr TInstrumentSetup Setup{
    .Artwork = "CircularGaugeSVG",
    .ActiveElement = "Hands",
    .Parts = TVZCustomCircularGauge::AllParts.GetMask(),
    .Colors = Colors,
    .PartElements = PartElements,
    .DetailElements = DetailElements,
    .Gradients = Gradients,
    .LightEdits = LightEdits,
    .Structure = Structure,
};

} // namespace

const TInstrumentSetup& TVZCustomCircularGauge::GetSetup() const { return Setup; }

void TVZCustomCircularGauge::ColorChanged(std::size_t index) {
    if (index == BigHand) SetElementFill(FValueHandId, GetBigHandColor());
}

void TVZCustomCircularGauge::DoUpdateDesign() {
    TVZCustomScaleInstrument::DoUpdateDesign();
    DoEnableGradients(GetEnableGradients());
}

void TVZCustomCircularGauge::UpdateDecoration() {
    const std::string_view own = GetGaugeDecorationPath(static_cast<int>(GetDecoration()));
    auto* const path = Find<TSVGPath>(FDecorationElementId);
    if (own.empty() || !path) return TVZCustomScaleInstrument::UpdateDecoration();
    EditDocument([&] { path->SetData(&PathOf(own)); });
    MarkChanged();
}

// Fonts and texts.

void TVZCustomCircularGauge::FontChanged(TObject& sender) {
    if (&sender == FFont.get()) DoUpdateFont();
    if (&sender == FCaptionFont.get()) DoUpdateCaptionFont();
}

void TVZCustomCircularGauge::SetCaption(std::string_view value) {
    Change(FCaption, std::string(value), [&] { SetElementText("GaugeText", value); });
}

void TVZCustomCircularGauge::SetDetailText(std::string_view value) {
    Change(FDetailText, std::string(value), [&] { SetElementText("GaugeDetailText", value); });
}

TSVGFont& TVZCustomCircularGauge::GetFont() const { return *FFont; }
void TVZCustomCircularGauge::SetFont(const TSVGFont& value) { FFont->Assign(value); }
TSVGFont& TVZCustomCircularGauge::GetCaptionFont() const { return *FCaptionFont; }
void TVZCustomCircularGauge::SetCaptionFont(const TSVGFont& value) { FCaptionFont->Assign(value); }
void TVZCustomCircularGauge::DoUpdateFont() { ApplyFont("Labels", *FFont); }
void TVZCustomCircularGauge::DoUpdateCaptionFont() { ApplyFont("GaugeLabels", *FCaptionFont); }

} // namespace Vz
