#pragma once

// Opens the thermometers: TVZThermometer.

#include "tavro/instruments/meters/Thermometer.h"
