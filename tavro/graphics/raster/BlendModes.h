#pragma once

#include "tavro/graphics/PaintDevice.h"

#include <array>

namespace Vz {

/// What a blend mode makes of the colour `over` on the colour `under`, both opaque: red, green and blue, 0..1
/// (CSS Compositing and Blending 1, 10). How alpha mixes the result with both is left to the caller.
std::array<float, 3> BlendColors(TBlendMode mode, const std::array<float, 3>& under,
                                 const std::array<float, 3>& over);

} // namespace Vz
