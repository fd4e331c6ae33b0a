#pragma once

// The unit of the fuel gauges.

#include "instruments/round/CircularFuelGauge.h"
