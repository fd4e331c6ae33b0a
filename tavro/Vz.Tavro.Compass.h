#pragma once

// Opens the compasses: TVZCompass, TVZCircularCompass.

#include "tavro/instruments/compass/Compass.h"
#include "tavro/instruments/round/CircularCompass.h"
