#include "tavro/controls/ControlPtr.h"

#include "tavro/controls/Control.h"

namespace Vz {

void TControlPtr::Set(TControl* control) {
    if (control == FControl) return;
    if (FControl) {
        TControlPtr** link = &FControl->FLookers;
        while (*link != this)
            link = &(*link)->FNext;
        *link = FNext;
    }
    FControl = control;
    FNext = control ? control->FLookers : nullptr;
    if (control) control->FLookers = this;
}

} // namespace Vz
