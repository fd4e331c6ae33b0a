#include "tavro/controls/Form.h"

namespace Vz {

void TVZForm::Construct() {
    TControl::Construct();
    SetBounds(0, 0, 640, 480);
}

} // namespace Vz
