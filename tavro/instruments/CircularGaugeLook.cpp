#include "tavro/instruments/CircularGauge.h"
#include "tavro/instruments/DecorationPaths.h"

namespace Vz {

namespace {

using TSelf = TVZCustomCircularGauge;
using TPart = TSelf::TPart;
using TParts = TSelf::TParts;

/// The grey that bevels are dodged and burnt with.
constexpr TVZGPColor BevelGrey = 0xFF808080;

/// What an element needs beside its parts.
enum class TNeeds : std::uint8_t {
    Nothing,
    Detail, ///< the detailed design
    Light,  ///< the detailed design with gradients
};

struct TShownRow {
    std::string_view Element;
    TParts Parts; ///< all of them
    TNeeds Needs = TNeeds::Nothing;
};

constexpr TShownRow ShownElements[] = {
    {"DecorationUse", {TPart::gpDecoration}},
    {"Frame", {TPart::gpFrame}},
    {"Bolts", {TPart::gpFrame, TPart::gpBolts}, TNeeds::Detail},
    {"DialColor", {TPart::gpBackface}},
    {"DialLight", {TPart::gpBackface}, TNeeds::Light},
    {"Backface", {TPart::gpBackface}},
    {"Knob", {TPart::gpKnob}},
    {"Hands", {TPart::gpHands}},
    {"Labels", {TPart::gpLabels}},
    {"MeasurementLabels", {TPart::gpLabels, TPart::gpMeasurementLabels}},
    {"GaugeText", {TPart::gpLabels, TPart::gpMainLabel}},
    {"GaugeDetailText", {TPart::gpLabels, TPart::gpDetailLabel}},
    {"BigMarkers", {TPart::gpMajorMarkers}},
    {"SmallMarkers", {TPart::gpMinorMarkers}},
    {"GlassGroup", {TPart::gpGlass}, TNeeds::Light},
    {"FrameBackfaceShadow", {}, TNeeds::Light},
    {"KnobHighlight", {}, TNeeds::Light},
    {"BoltShadow", {}, TNeeds::Light},
    {"AttachmentFaceHighlight", {}, TNeeds::Light},
};

constexpr TArtworkRow Contract[] = {
    {"GradientLighten", TArtworkKind::Stops},
    {"GradientDarken", TArtworkKind::Stops},
    {"linearGradient7738", TArtworkKind::Gradient},
    {"linearGradient5799", TArtworkKind::Gradient},
    {"linearGradient4348", TArtworkKind::Gradient},
    {"linearGradient4575", TArtworkKind::Gradient},
    {"TextCircle", TArtworkKind::Path},
    {"Decoration", TArtworkKind::Path},
    {"DecorationUse", TArtworkKind::Graphic, "Dial"},
    {"Backface", TArtworkKind::Graphic},
    {"DialColor", TArtworkKind::Graphic},
    {"DialLight", TArtworkKind::Graphic},
    {"FrameBackfaceShadow", TArtworkKind::Graphic},
    {"Dial", TArtworkKind::Graphic},
    {"MarkersAndLabels", TArtworkKind::Graphic, "Dial"},
    {"Markers", TArtworkKind::Graphic, "MarkersAndLabels"},
    {"SmallMarkers", TArtworkKind::Graphic, "Markers"},
    {"BigMarkers", TArtworkKind::Graphic, "Markers"},
    {"Labels", TArtworkKind::Graphic, "MarkersAndLabels"},
    {"MeasurementLabels", TArtworkKind::Graphic, "Labels"},
    {"GaugeLabels", TArtworkKind::Graphic},
    {"GaugeText", TArtworkKind::Text},
    {"GaugeDetailText", TArtworkKind::Text},
    {"Frame", TArtworkKind::Graphic},
    {"FrameColor", TArtworkKind::Graphic},
    {"AttachmentFaceHighlight", TArtworkKind::Graphic},
    {"FrameBevelUpper", TArtworkKind::Graphic},
    {"FrameBevelLower", TArtworkKind::Graphic},
    {"BackfaceBevelUpper", TArtworkKind::Graphic},
    {"BackfaceBevelLower", TArtworkKind::Graphic},
    {"Bolts", TArtworkKind::Graphic},
    {"Bolt", TArtworkKind::Graphic},
    {"BoltShadow", TArtworkKind::Graphic},
    {"Hands", TArtworkKind::Graphic},
    {"LittleHand", TArtworkKind::Graphic, "Hands"},
    {"BigHand", TArtworkKind::Graphic, "Hands"},
    {"ThinHand", TArtworkKind::Graphic, "Hands"},
    {"KnobSwitch", TArtworkKind::Graphic, "Hands"},
    {"Knob", TArtworkKind::Graphic},
    {"KnobHighlight", TArtworkKind::Graphic},
    {"GlassGroup", TArtworkKind::Graphic},
};

} // namespace

std::span<const TArtworkRow> TVZCustomCircularGauge::GetArtworkContract() const { return Contract; }

// Parts, design, gradients and light. Each of these steps shows what all of them together allow, so that the
// order in which properties are set does not count.

void TVZCustomCircularGauge::SetParts(TParts value) {
    if (Store(FParts, value)) UpdateParts();
}

void TVZCustomCircularGauge::ShowElements(bool gradients) {
    const bool isDetailed = GetDesign() == TSVGDesign::sdDetailed;
    for (const TShownRow& row : ShownElements) {
        const bool hasParts = (row.Parts - FParts).IsEmpty();
        const bool hasLook =
            row.Needs == TNeeds::Nothing || (isDetailed && (row.Needs == TNeeds::Detail || gradients));
        ShowElement(row.Element, hasParts && hasLook);
    }
}

void TVZCustomCircularGauge::SwitchBevels(bool gradients) {
    const TVZGPColor light = DodgeColor(FFrameColor, BevelGrey);
    const TVZGPColor dark = BurnColor(FFrameColor, BevelGrey);
    const TGradientRow rows[] = {
        {"FrameBevelUpper", "linearGradient7738", light},
        {"FrameBevelLower", "linearGradient5799", dark},
        {"BackfaceBevelUpper", "linearGradient4348", dark},
        {"BackfaceBevelLower", "linearGradient4575", light},
    };
    SwitchGradients(rows, gradients);
}

void TVZCustomCircularGauge::DoUpdateParts() {
    TVZSVGCustomInstrument::DoUpdateParts();
    ShowElements(GetEnableGradients());
}

void TVZCustomCircularGauge::DoUpdateDesign() { DoEnableGradients(GetEnableGradients()); }

void TVZCustomCircularGauge::DoEnableGradients(bool enable) {
    ShowElements(enable);
    SwitchBevels(enable);
}

void TVZCustomCircularGauge::DoUpdateLight() {
    TintStops("GradientDarken", GetShadowColor());
    TintStops("GradientLighten", GetLightColor());
}

void TVZCustomCircularGauge::TintStops(std::string_view gradientId, TVZGPColor color) {
    auto* const gradient = Find<TSVGCustomGradient>(gradientId);
    if (!gradient) return;
    for (std::size_t i = 0; i < gradient->GetStopCount(); ++i) {
        TSVGBrush brush = gradient->GetStop(i).GetStopBrush();
        // Light and shade are what the stops' opacities make of the colour; with its alpha they would be flat
        // discs.
        brush.SetColor(WithAlpha(color, AlphaOf(brush.GetColor())));
    }
}

void TVZCustomCircularGauge::UpdateDecoration() {
    const std::string_view own = GetGaugeDecorationPath(static_cast<int>(GetDecoration()));
    auto* const path = Find<TSVGPath>(FDecorationElementId);
    if (own.empty() || !path) return TVZSVGCustomInstrument::UpdateDecoration();
    EditDocument([&] { path->SetData(&PathOf(own)); });
    MarkChanged();
}

// Texts and colours.

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

bool TVZCustomCircularGauge::IsCaptionStored() const { return FCaption != GetSetup().Caption; }
bool TVZCustomCircularGauge::IsDetailTextStored() const { return FDetailText != GetSetup().DetailText; }

void TVZCustomCircularGauge::SetFill(TVZGPColor& field, std::string_view elementId, TVZGPColor value) {
    Change(field, value, [&] { SetElementFill(elementId, value); });
}

void TVZCustomCircularGauge::SetFrameColor(TVZGPColor value) {
    Change(FFrameColor, value, [&] {
        SetElementFill("Frame", value);
        if (!GetEnableGradients()) SwitchBevels(false);
    });
}

void TVZCustomCircularGauge::SetLabelsStrokeColor(TVZGPColor value) {
    Change(FLabelsStrokeColor, value, [&] { SetElementStroke("MeasurementLabels", value); });
}

} // namespace Vz
