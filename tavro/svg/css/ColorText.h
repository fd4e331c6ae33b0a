#pragma once

#include "tavro/graphics/Color.h"

#include <optional>
#include <string>
#include <string_view>

namespace Vz {

/// Reads a CSS colour: a name (SVG 1.1, 4.4), #rgb, #rgba, #rrggbb, #rrggbbaa, rgb(), rgba(), hsl(), hsla()
/// in comma and blank syntax, "transparent". Nothing where the text is none. "currentColor" is not read here.
std::optional<TVZGPColor> ParseColor(std::string_view text);
/// #rrggbb, the alpha left out.
std::string ColorText(TVZGPColor color);

} // namespace Vz
