#pragma once

// Opens the fuel gauges: TVZCircularFuelGauge.

#include "tavro/instruments/round/CircularFuelGauge.h"
