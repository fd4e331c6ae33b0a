#pragma once

#include "tavro/graphics/Geometry.h"

#include <optional>
#include <string>
#include <string_view>

namespace Vz {

/// Reads a transform list (SVG 1.1, 7.6; CSS Transforms 1, 8): matrix, translate, scale, rotate, skewX,
/// skewY, with blanks or commas between them; lengths without unit or in absolute CSS units, angles in
/// degrees without unit or in deg, rad, grad, turn. An empty text and "none" are the identity. Nothing where
/// anything is wrong or a result is not finite.
std::optional<TAffine> ParseTransform(std::string_view text);
/// "matrix(a b c d e f)", each number as short as reads back to the same (single precision where it is exact
/// in it).
std::string TransformText(const TAffine& transform);

} // namespace Vz
