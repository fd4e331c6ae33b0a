#include "tavro/instruments/CircularGauge.h"

#include <cmath>

namespace Vz {

// Creation.

void TVZCustomCircularGauge::Construct() {
    const TGaugeSetup& setup = GetSetup();
    FValueHandId = setup.ValueHandId;
    if (FDecorationElementId.empty()) FDecorationElementId = "Decoration";
    FScale = {setup.Min, setup.Max, setup.Value};
    TVZSVGCustomInstrument::Construct();
    FStartAngle = setup.StartAngle;
    FStopAngle = setup.StopAngle;
    FHands = setup.Hands;
    FMajor.Count = setup.MajorMarkers;
    FMinor.Count = setup.MinorMarkers;
    FParts = setup.Parts;
    FDecoration = setup.Decoration;
    FCaption = setup.Caption;
    FDetailText = setup.DetailText;
    FFont->SetDefaultSize(setup.FontSize);
    FLabels->SetText(GetDefaultLabels());

    for (TInstrumentFont* const font : {FFont.get(), FCaptionFont.get()})
        font->OnChange = [this](TObject& sender) { FontChanged(sender); };
    FLabels->SetOnChange([this](TObject&) {
        if (FIsRebuilding) return;
        FLabelsAreUsers = !GetSetup().Labels.empty() || FLabels->GetItems() != MakeNumbers();
        LabelsChanged();
    });
    for (TMarkers* const markers : {&FMajor, &FMinor})
        markers->Path->OnChange = [this](TObject&) { MarkersChanged(); };
}

void TVZCustomCircularGauge::LoadSVGProperties() {
    TVZSVGCustomInstrument::LoadSVGProperties();
    using P = TColorPlace;
    const TColorRow rows[] = {
        {"FrameColor", P::Fill, &FFrameColor},
        {"DialColor", P::Fill, &FBackfaceColor},
        {"BigMarkers", P::Fill, &FMajorMarkersColor},
        {"SmallMarkers", P::Fill, &FMinorMarkersColor},
        {"Bolt", P::Fill, &FBoltColor},
        {"Knob", P::Fill, &FKnobColor},
        {"Labels", P::Fill, &FLabelsFillColor},
        {"Labels", P::Stroke, &FLabelsStrokeColor},
        {FValueHandId, P::Fill, &FBigHandColor},
        {"LittleHand", P::Fill, &FLittleHandColor},
        {"ThinHand", P::Fill, &FThinHandColor},
    };
    ReadColors(rows);
}

void TVZCustomCircularGauge::DoInitializeGauge() {
    SetElementText("GaugeText", FCaption);
    SetElementText("GaugeDetailText", FDetailText);
    InitializeMarkerPaths();
    InitializeMarkers();
    // A list that was set outlives an update batch; all else that renumbers is a change of the scale.
    if (FLabelsAreUsers)
        InitializeLabels();
    else
        InitializeNumberLabels();
    InitializeHands();
    DoUpdateFont();
    SetElementFill(FValueHandId, FBigHandColor);
    TVZSVGCustomInstrument::DoInitializeGauge();
    DoUpdateCaptionFont();
    ShowPosition();
}

// Scale and hands.

void TVZCustomCircularGauge::SetMin(float value) {
    if (FScale.MoveMin(value)) ScaleChanged();
}

void TVZCustomCircularGauge::SetMax(float value) {
    if (FScale.MoveMax(value)) ScaleChanged();
}

void TVZCustomCircularGauge::SetValue(float value) {
    if (!FScale.MoveValue(value, FScale.Min, FScale.Max)) return;
    UpdateHands();
    DoOnChange();
}

void TVZCustomCircularGauge::SetStartAngle(std::int32_t value) {
    if (Store(FStartAngle, value)) AnglesChanged();
}

void TVZCustomCircularGauge::SetStopAngle(std::int32_t value) {
    if (Store(FStopAngle, value)) AnglesChanged();
}

void TVZCustomCircularGauge::ScaleChanged() {
    EditDocument([this] {
        InitializeNumberLabels();
        UpdateHands();
    });
    MarkChanged();
}

void TVZCustomCircularGauge::AnglesChanged() {
    EditDocument([this] {
        InitializeMarkers();
        InitializeNumberLabels();
        UpdateHands();
    });
    MarkChanged();
}

void TVZCustomCircularGauge::SetHands(THands value) {
    if (!Store(FHands, value)) return;
    EditDocument([this] { InitializeHands(); });
    Invalidate();
}

void TVZCustomCircularGauge::SetTime(TDateTime value) {
    if (value.Days == FTime.Days || !IsValidDateTime(value)) return;
    FTime = value;
    UpdateTime();
    DoOnChange();
}

bool TVZCustomCircularGauge::IsMinStored() const { return FScale.Min != GetSetup().Min; }
bool TVZCustomCircularGauge::IsMaxStored() const { return FScale.Max != GetSetup().Max; }
bool TVZCustomCircularGauge::IsDefaultValue() const { return FScale.Value != GetSetup().Value; }
bool TVZCustomCircularGauge::IsHandsStored() const { return FHands != GetSetup().Hands; }

float TVZCustomCircularGauge::GetValueAngle() const {
    const double part = (double(FScale.Value) - FScale.Min) / (double(FScale.Max) - FScale.Min);
    return static_cast<float>(FStartAngle + GetSpan() * part);
}

void TVZCustomCircularGauge::DoUpdateElement(std::string_view elementId, float angleDeg) {
    TurnElement(elementId, "Knob", angleDeg + 90.0f);
}

void TVZCustomCircularGauge::InitializeHands() {
    ShowElement("BigHand", FHands.Contains(THand::ghBig));
    ShowElement("LittleHand", FHands.Contains(THand::ghLittle));
    ShowElement("ThinHand", FHands.Contains(THand::ghThin));
}

void TVZCustomCircularGauge::UpdateHands() {
    const float angleDeg = GetValueAngle();
    EditDocument([&] {
        DoUpdateElement(FValueHandId, angleDeg);
        DoUpdateElement("LittleHand", angleDeg);
        DoUpdateElement("ThinHand", angleDeg);
    });
    Invalidate();
}

void TVZCustomCircularGauge::UpdateTime() {
    const TTimeOfDay time = DecodeTime(FTime);
    EditDocument([&] {
        DoUpdateElement("LittleHand", static_cast<float>((time.Hour % 12 + time.Minute / 60.0) / 12 * 360));
        DoUpdateElement("BigHand", static_cast<float>((time.Minute + time.Second / 60.0) / 60 * 360));
        DoUpdateElement("ThinHand", static_cast<float>(time.Second / 60.0 * 360));
    });
    Invalidate();
}

void TVZCustomCircularGauge::ShowPosition() { GetSetup().ShowsTime ? UpdateTime() : UpdateHands(); }

} // namespace Vz
