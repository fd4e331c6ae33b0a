#include "tavro/instruments/CircularGauge.h"

#include "tavro/instruments/Editing.h"
#include "tavro/instruments/InstrumentFont.h"
#include "tavro/runtime/Strings.h"

#include <cmath>

namespace Vz {

// Creation.

TVZCustomCircularGauge::TVZCustomCircularGauge(TCreateKey key)
    : TVZCustomScaleInstrument(key)
    , FMajor{.Path = std::make_unique<TVZPathData>()}
    , FMinor{.Path = std::make_unique<TVZPathData>()}
    , FLabels(std::make_unique<TStrings>())
    , FFont(std::make_unique<TInstrumentFont>())
    , FCaptionFont(std::make_unique<TInstrumentFont>()) {}

TVZCustomCircularGauge::~TVZCustomCircularGauge() = default;

void TVZCustomCircularGauge::Construct() {
    const TGaugeSetup& setup = GetGaugeSetup();
    if (FValueHandId.empty()) FValueHandId = setup.ValueHandId;
    SetDefaultScale({setup.Min, setup.Max, setup.Value});
    TVZCustomScaleInstrument::Construct();
    FStartAngle = setup.StartAngle;
    FStopAngle = setup.StopAngle;
    FHands = setup.Hands;
    FMajor.Count = setup.MajorMarkers;
    FMinor.Count = setup.MinorMarkers;
    TakeParts(setup.Parts.GetMask());
    FDecoration = setup.Decoration;
    FCaption = setup.Caption;
    FDetailText = setup.DetailText;
    FFont->SetDefaultSize(setup.FontSize);
    FLabels->SetText(GetDefaultLabels());
    RefreshDefaults();

    for (TInstrumentFont* const font : {FFont.get(), FCaptionFont.get()})
        font->OnChange = [this](TObject& sender) { FontChanged(sender); };
    FLabels->SetOnChange([this](TObject&) {
        if (FIsRebuilding) return;
        FLabelsAreUsers = !GetGaugeSetup().Labels.empty() || FLabels->GetItems() != MakeNumbers();
        LabelsChanged();
    });
    for (TMarkers* const markers : {&FMajor, &FMinor})
        markers->Path->OnChange = [this](TObject&) { MarkersChanged(); };
}

void TVZCustomCircularGauge::RefreshDefaults() {
    TVZCustomScaleInstrument::RefreshDefaults();
    FDefaultHands = FHands;
    FDefaultCaption = FCaption;
    FDefaultDetailText = FDetailText;
}

void TVZCustomCircularGauge::LoadSVGProperties() {
    TVZCustomScaleInstrument::LoadSVGProperties();
    if (auto* const hand = Find<TSVGGraphicElement>(FValueHandId))
        TakeColor(BigHand, hand->GetBrush().GetColor());
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
    SetElementFill(FValueHandId, GetBigHandColor());
    TVZCustomScaleInstrument::DoInitializeGauge();
    DoUpdateCaptionFont();
    ShowPosition();
}

// Scale and hands.

void TVZCustomCircularGauge::SetStartAngle(std::int32_t value) {
    if (Store(FStartAngle, value)) AnglesChanged();
}

void TVZCustomCircularGauge::SetStopAngle(std::int32_t value) {
    if (Store(FStopAngle, value)) AnglesChanged();
}

void TVZCustomCircularGauge::ShowScale() {
    InitializeNumberLabels();
    UpdateHands();
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

bool TVZCustomCircularGauge::IsDefaultValue() const { return GetValue() != GetDefaults().Value; }

float TVZCustomCircularGauge::GetValueAngle() const {
    const double part = (double(GetValue()) - GetMin()) / (double(GetMax()) - GetMin());
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

void TVZCustomCircularGauge::ShowPosition() { GetGaugeSetup().ShowsTime ? UpdateTime() : UpdateHands(); }

} // namespace Vz
