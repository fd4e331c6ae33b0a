#pragma once

// Opens the speedometers: TVZSpeedometer, TVZCircularSpeedometer.

#include "tavro/instruments/meters/Speedometer.h"
#include "tavro/instruments/round/CircularSpeedometer.h"
