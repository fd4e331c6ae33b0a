#pragma once

// Opens the altimeters: TVZCircularAltimeter.

#include "tavro/instruments/round/CircularAltimeter.h"
