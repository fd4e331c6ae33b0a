#pragma once

// The unit of the barometers.

#include "instruments/round/CircularBarometer.h"
