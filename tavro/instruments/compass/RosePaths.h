#pragma once

#include "tavro/instruments/Decoration.h"

#include <string_view>

namespace Vz {

/// SVG path data of the rose that the compass draws in place of the catalogue's emblem, in the same frame of
/// 100 by 100 units: its own star, toothed ring and globe. They are centred on (50, 50); the points of star
/// and ring reach 76 units from there. The text is static and never freed. Empty for every other one: the
/// catalogue's emblem serves.
std::string_view GetRosePath(TDecoration decoration);

} // namespace Vz
