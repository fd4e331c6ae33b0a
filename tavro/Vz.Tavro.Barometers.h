#pragma once

// Opens the barometers: TVZCircularBarometer.

#include "tavro/instruments/round/CircularBarometer.h"
