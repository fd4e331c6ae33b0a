#include "tavro/instruments/ScaleInstrument.h"

#include "tavro/instruments/Editing.h"

namespace Vz {

void TVZCustomScaleInstrument::SetMin(float value) {
    if (!FScale.MoveMin(value)) return;
    EditDocument([this] { ShowScale(); });
    MarkChanged();
}

void TVZCustomScaleInstrument::SetMax(float value) {
    if (!FScale.MoveMax(value)) return;
    EditDocument([this] { ShowScale(); });
    MarkChanged();
}

void TVZCustomScaleInstrument::SetValue(float value) {
    if (!FScale.MoveValue(value, GetLowest(), GetHighest())) return;
    ShowValue();
    DoOnChange();
}

} // namespace Vz
