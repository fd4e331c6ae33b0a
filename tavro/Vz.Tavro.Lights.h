#pragma once

// Opens the signal lights: TVZTrafficLight, TVZCubeLight.

#include "tavro/instruments/lights/CubeLight.h"
#include "tavro/instruments/lights/TrafficLight.h"
