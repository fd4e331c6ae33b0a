#pragma once

// Opens everything: all instruments, the SVG control, hosts, picture files, PDF and SVG output, form files,
// properties by name, resources, the list of classes.

#include "tavro/VZSVGControl.h"
#include "tavro/VZSVGGraphics.h"
#include "tavro/Vz.Tavro.Altimeters.h"
#include "tavro/Vz.Tavro.Barometers.h"
#include "tavro/Vz.Tavro.Batteries.h"
#include "tavro/Vz.Tavro.Clocks.h"
#include "tavro/Vz.Tavro.Compass.h"
#include "tavro/Vz.Tavro.FuelGauges.h"
#include "tavro/Vz.Tavro.Instruments.h"
#include "tavro/Vz.Tavro.Lights.h"
#include "tavro/Vz.Tavro.Speedometers.h"
#include "tavro/Vz.Tavro.Switches.h"
#include "tavro/Vz.Tavro.Thermometers.h"
#include "tavro/controls/Form.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/controls/Picture.h"
#include "tavro/graphics/vector/Device.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/AtomicFile.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/FormFile.h"
#include "tavro/runtime/PropAccess.h"
#include "tavro/runtime/PropText.h"
#include "tavro/runtime/Resources.h"
