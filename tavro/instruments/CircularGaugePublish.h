#pragma once

#include "tavro/instruments/CircularGauge.h"
#include "tavro/instruments/InstrumentFont.h"
#include "tavro/instruments/Publish.h"
#include "tavro/runtime/Strings.h"

namespace Vz {

/// The rows of a scale that the user sets. The ends stand before the value, so that a stream does not clamp
/// it.
template <class T, const TGaugeSetup& Setup, TQuantity Quantity = TQuantity::Value>
inline constexpr std::array GaugeScaleRows{
    Prop<&T::GetMin, &T::SetMin, &T::IsMinStored>("Min", Setup.Min),
    Prop<&T::GetMax, &T::SetMax, &T::IsMaxStored>("Max", Setup.Max),
    Main(Prop<&T::GetValue, &T::SetValue, &T::IsDefaultValue>("Value", Setup.Value), Quantity),
    Prop<&T::GetStartAngle, &T::SetStartAngle>("StartAngle", Setup.StartAngle),
    Prop<&T::GetStopAngle, &T::SetStopAngle>("StopAngle", Setup.StopAngle),
    Prop<&T::GetMajorMarkers, &T::SetMajorMarkers>("MajorMarkers", Setup.MajorMarkers),
    Prop<&T::GetMinorMarkers, &T::SetMinorMarkers>("MinorMarkers", Setup.MinorMarkers),
};

namespace Detail {

/// What every round instrument publishes of the gauge.
template <const TGaugeSetup& Setup, class T = TVZCustomCircularGauge>
inline constexpr std::array GaugeRows{
    Prop<&T::GetParts, &T::SetParts>("Parts", Setup.Parts),
    ObjectProp<&T::GetFont, &T::SetFont>("Font"),
    ObjectProp<&T::GetCaptionFont, &T::SetCaptionFont>("CaptionFont"),
    Prop<&T::GetCaption, &T::SetCaption, &T::IsCaptionStored>("Caption", Setup.Caption),
    Prop<&T::GetDetailText, &T::SetDetailText, &T::IsDetailTextStored>("DetailText", Setup.DetailText),
    Prop<&T::GetMajorMarker, &T::SetMajorMarker>("MajorMarker", T::TMarker::gmLine),
    Prop<&T::GetMinorMarker, &T::SetMinorMarker>("MinorMarker", T::TMarker::gmLine),
    ObjectProp<&T::GetMajorMarkerPath, &T::SetMajorMarkerPath, &T::IsMajorMarkerPathStored,
               &T::ResetMajorMarkerPath>("MajorMarkerPath"),
    ObjectProp<&T::GetMinorMarkerPath, &T::SetMinorMarkerPath, &T::IsMinorMarkerPathStored,
               &T::ResetMinorMarkerPath>("MinorMarkerPath"),
    Prop<&T::GetFrameColor, &T::SetFrameColor>("FrameColor", 0xFFA9A9A9),
    Prop<&T::GetBackfaceColor, &T::SetBackfaceColor>("BackfaceColor", 0xFF000000),
    Prop<&T::GetBoltColor, &T::SetBoltColor>("BoltColor", 0xFFA9A9A9),
    Prop<&T::GetKnobColor, &T::SetKnobColor>("KnobColor", 0xFFA9A9A9),
    Prop<&T::GetMajorMarkersColor, &T::SetMajorMarkersColor>("MajorMarkersColor", 0xFFFFFFFF),
    Prop<&T::GetMinorMarkersColor, &T::SetMinorMarkersColor>("MinorMarkersColor", 0xFFFFFFFF),
    Prop<&T::GetLabelsFillColor, &T::SetLabelsFillColor>("LabelsFillColor", 0xFFFFFFFF),
    Prop<&T::GetLabelsStrokeColor, &T::SetLabelsStrokeColor>("LabelsStrokeColor", 0xFF000000),
    Prop<&T::GetBigHandColor, &T::SetBigHandColor>("BigHandColor", Setup.BigHandColor),
    Prop<&T::GetLittleHandColor, &T::SetLittleHandColor>("LittleHandColor", 0xFFFFFFFF),
    Prop<&T::GetThinHandColor, &T::SetThinHandColor>("ThinHandColor", 0xFF0000FF),
};

/// What every round instrument publishes of its bases.
inline constexpr std::string_view GaugeInherited[] = {
    "Decoration",
    "DecorationPath",
    "DecorationFillColor",
    "DecorationStrokeColor",
    "Design",
    "EnableGradients",
    "LightColor",
    "FormatStr",
    "Buffered",
    "Stretch",
    "Quality",
    "Opacity",
    "Transform",
    "OnChange",
    "OnDrawing",
    "OnDrawn",
};

/// Behind all that numbers the labels anew, so that a stream keeps a list that was set.
inline constexpr TProp GaugeLabelsRow =
    ObjectProp<&TVZCustomCircularGauge::GetLabels, &TVZCustomCircularGauge::SetLabels,
               &TVZCustomCircularGauge::IsLabelsStored, &TVZCustomCircularGauge::ResetLabels>("Labels");

} // namespace Detail

/// The table of a round instrument: its own rows, then what all of them publish.
///     static constexpr auto Rows = PublishGauge<Setup>(std::array{Prop<...>("Time", TDateTime{}), ...});
template <const TGaugeSetup& Setup, std::size_t N>
constexpr auto PublishGauge(const std::array<TProp, N>& own) {
    constexpr auto& shared = Detail::GaugeRows<Setup>;
    std::array<TProp, std::size(Detail::GaugeInherited)> inherited{};
    for (std::size_t i = 0; i < inherited.size(); ++i)
        inherited[i] = Detail::InheritedRow(Detail::GaugeInherited[i], {.Decoration = Setup.Decoration});
    return Publish(own, shared, inherited, std::array{Detail::GaugeLabelsRow});
}

} // namespace Vz
