#pragma once

// The unit of the speedometers.

#include "instruments/meters/Speedometer.h"
#include "instruments/round/CircularSpeedometer.h"
