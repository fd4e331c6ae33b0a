#pragma once

// The unit of the altimeters.

#include "instruments/round/CircularAltimeter.h"
