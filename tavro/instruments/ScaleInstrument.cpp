#include "tavro/instruments/ScaleInstrument.h"

#include "tavro/instruments/Editing.h"

namespace Vz {

void TVZCustomScaleInstrument::SetMin(float value) {
    if (FScale.MoveMin(value)) ScaleMoved();
}

void TVZCustomScaleInstrument::SetMax(float value) {
    if (FScale.MoveMax(value)) ScaleMoved();
}

void TVZCustomScaleInstrument::ScaleMoved() {
    EditDocument([this] { ShowScale(); });
    if (GetScaleReach() == TReach::Picture) MarkChanged();
}

TReach TVZCustomScaleInstrument::GetScaleReach() const { return TReach::Picture; }

void TVZCustomScaleInstrument::SetValue(float value) {
    if (!FScale.MoveValue(value, GetLowest(), GetHighest())) return;
    ShowValue();
    DoOnChange();
}

} // namespace Vz
