#pragma once

// Opens the batteries: TVZBattery, TVZBatteryModern.

#include "tavro/instruments/meters/Battery.h"
#include "tavro/instruments/meters/BatteryModern.h"
