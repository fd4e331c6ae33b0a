#pragma once

// Opens the factory that repeats a path around a centre or along a step, TSVGGraphicsFactory.

#include "tavro/svg/GraphicsFactory.h"
