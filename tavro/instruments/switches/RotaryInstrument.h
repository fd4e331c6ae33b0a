#pragma once

#include "tavro/instruments/CircularGauge.h"

namespace Vz {

/// Base of the knobs: a round scale on which the value turns the knob "KnobSwitch" in place of the hands, and
/// a click turns it to the nearest major marker.
class TVZCustomRotaryInstrument : public TVZCustomCircularGauge {
public:
    using TVZCustomCircularGauge::TVZCustomCircularGauge;

    /// The inherited step; then takes the three hands out of the document and shows the knob.
    void DoInitializeGauge() override;
    /// Any button: raises OnMouseUp; then the marker nearest to the direction of the point, seen from the
    /// middle of the control, becomes the value. That is the marker's index, 0 first, held in Min..Max, also
    /// where the scale has other numbers. Kept.
    void MouseUp(TMouseButton button, TShiftState shift, int x, int y) override;
};

} // namespace Vz
