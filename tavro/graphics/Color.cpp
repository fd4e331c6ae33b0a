#include "tavro/graphics/Color.h"

#include "tavro/runtime/Rounding.h"

namespace Vz {

TVZGPColor Faded(TVZGPColor color, double opacity) {
    opacity = opacity > 0 ? opacity < 1 ? opacity : 1 : 0;
    return WithAlpha(color, static_cast<unsigned>(RoundHalfEven(AlphaOf(color) * opacity)));
}

} // namespace Vz
