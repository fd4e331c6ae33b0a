#pragma once

#include "tavro/graphics/PaintDevice.h"

namespace Vz {

/// Lays `pixels`, their alpha times coverage (null: full) and opacity / 255, onto the row in a blend mode.
void BlendRowInMode(TBlendMode mode, std::uint32_t* row, int count, const std::uint32_t* pixels,
                    unsigned opacity, const std::uint8_t* coverage);

/// What a mask's premultiplied pixels let through, 0..255 (SVG 1.1, 14.4; CSS Masking 1, 7.10.1).
void MaskCoverage(TMaskKind kind, const std::uint32_t* pixels, int count, std::uint8_t* coverage);

} // namespace Vz
