#include "tavro/instruments/switches/RotaryInstrument.h"

#include "tavro/controls/ControlPtr.h"
#include "tavro/instruments/Editing.h"

#include <cmath>
#include <numbers>

namespace Vz {

void TVZCustomRotaryInstrument::DoInitializeGauge() {
    TVZCustomCircularGauge::DoInitializeGauge();
    for (const std::string_view id : {"LittleHand", "ThinHand", "BigHand"})
        if (auto* const hand = Find<TSVGGraphicElement>(id)) hand->Remove();
    ShowElement("KnobSwitch", true);
}

void TVZCustomRotaryInstrument::MouseUp(TMouseButton button, TShiftState shift, int x, int y) {
    const TControlPtr self(this); // a handler may destroy the knob
    TVZCustomCircularGauge::MouseUp(button, shift, x, y);
    if (!self || !FInteraction) return;
    // Degrees from three o'clock clockwise, -180 to 180; then from twelve o'clock, 0 up to 360.
    const double radians = std::atan2(y - GetHeight() / 2.0, x - GetWidth() / 2.0);
    const auto fromThreeDeg = static_cast<float>(radians * 180 / std::numbers::pi);
    const float angleDeg = fromThreeDeg >= -90 ? fromThreeDeg + 90 : fromThreeDeg + 360 + 90;
    SetValue(static_cast<float>(GetClosestMajorMarker(angleDeg)));
}

} // namespace Vz
