// The generator of the library's own widgets.

#include "tavro/package/Package.h"

void RegisterWidgetClasses() { Vz::RegisterComponentClasses(); }
