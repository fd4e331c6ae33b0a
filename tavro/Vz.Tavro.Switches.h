#pragma once

// Opens the knobs: TVZRotarySwitch, TVZRotaryDial.

#include "tavro/instruments/switches/RotaryDial.h"
#include "tavro/instruments/switches/RotarySwitch.h"
