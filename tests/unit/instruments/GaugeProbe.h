#pragma once

#include "tavro/VZSVGControl.h"
#include "tavro/Vz.Tavro.Altimeters.h"
#include "tavro/Vz.Tavro.Barometers.h"
#include "tavro/Vz.Tavro.Clocks.h"
#include "tavro/Vz.Tavro.FuelGauges.h"
#include "tavro/Vz.Tavro.Speedometers.h"
#include "tavro/instruments/CircularGaugePublish.h"
#include "tavro/instruments/Editing.h"
#include "tavro/runtime/Strings.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

namespace Vz::Test {

inline constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();
inline constexpr float Infinite = std::numeric_limits<float>::infinity();

/// The base as it is: a twelve-hour dial of numbers. It offers what is protected.
class TBareGauge final : public TCreatable<TBareGauge, TVZCustomCircularGauge> {
public:
    static constexpr std::string_view TypeName = "TBareGauge";
    using TCreatable::TCreatable;
    using TVZCustomCircularGauge::GetActiveElementId;
    using TVZCustomCircularGauge::GetValueAngle;

protected:
    const TGaugeSetup& GetGaugeSetup() const override { return Setup; }

private:
    static constexpr TGaugeSetup Setup{};
};

using THand = TVZCustomCircularGauge::THand;
using TMarker = TVZCustomCircularGauge::TMarker;
using TPart = TVZCustomCircularGauge::TPart;
using TParts = TVZCustomCircularGauge::TParts;

/// Counts the notices of a component.
struct TNotices {
    explicit TNotices(TVZSVGCustomInstrument& instrument) {
        instrument.SetOnChange([this](TObject&) { ++Changes; });
        instrument.SetOnInvalidate([this](TObject&) { ++Invalidates; });
    }
    int TakeChanges() { return std::exchange(Changes, 0); }
    int TakeInvalidates() { return std::exchange(Invalidates, 0); }
    int Changes = 0;
    int Invalidates = 0;
};

inline TSVGGraphicElement& ElementOf(const TVZSVGControl& control, std::string_view id) {
    auto* const element = control.GetDocument().Find<TSVGGraphicElement>(id);
    if (!element) throw EInvalidOperation("there is no " + std::string(id));
    return *element;
}

inline bool IsShown(const TVZSVGControl& control, std::string_view id) {
    return ElementOf(control, id).GetVisible();
}

inline TVZGPColor FillOf(const TVZSVGControl& control, std::string_view id) {
    return ElementOf(control, id).GetBrush().GetColor();
}

inline double FontSizeOf(const TVZSVGControl& control, std::string_view id) {
    return ElementOf(control, id).GetComputedStyle().Text->Font.Size;
}

/// Where a hand points, in degrees from 0 up to 360, read back from its matrix; a hand at rest points to nine
/// o'clock.
inline double PointsTo(const TVZSVGControl& control, std::string_view id) {
    const TMatrix m = ElementOf(control, id).GetMatrix();
    const double turned = std::atan2(double(m.M12), double(m.M11)) * 180 / std::numbers::pi;
    return std::fmod(turned - 90 + 720, 360);
}

/// How many figures a group of markers shows.
inline int CountFigures(const TVZSVGControl& control, std::string_view groupId) {
    int count = 0;
    for (const auto& child : ElementOf(control, groupId).Children())
        for (const TVerb verb : dynamic_cast<TSVGPath&>(*child).GetData().GetFigures().Verbs)
            count += verb == TVerb::Move;
    return count;
}

/// The texts that are shown as labels.
inline std::vector<std::string> LabelTexts(const TVZSVGControl& control) {
    std::vector<std::string> texts;
    for (const auto& child : ElementOf(control, "MeasurementLabels").Children())
        texts.push_back(dynamic_cast<TSVGText&>(*child).GetText());
    return texts;
}

/// Where a label begins on the label circle, in per cent of its length.
inline double LabelOffsetPercent(const TVZSVGControl& control, std::size_t index) {
    TSVGElement& text = ElementOf(control, "MeasurementLabels").GetChild(index);
    const auto& line = dynamic_cast<TSVGTextPath&>(text.GetChild(0));
    return line.GetStartOffset().GetValue();
}

} // namespace Vz::Test
