#pragma once

#include "graphics/Color.h"

namespace Vz {

/// Premultiplied only where the colour is opaque (which leaves it as it is) or has alpha 0 (which gives 0);
/// any other alpha leaves the colour unmultiplied. This narrow test is meant: burning and dodging are defined
/// on these values.
TVZGPColor PremultiplyColor(TVZGPColor color);
/// The colour `dest` darkened by `source`.
TVZGPColor BurnColor(TVZGPColor dest, TVZGPColor source);
/// The colour `dest` lightened by `source`.
TVZGPColor DodgeColor(TVZGPColor dest, TVZGPColor source);
/// Each of red, green and blue times factor, rounded half to even and held in 0..255; the alpha stays.
TVZGPColor ScaleColor(TVZGPColor color, double factor);

} // namespace Vz
