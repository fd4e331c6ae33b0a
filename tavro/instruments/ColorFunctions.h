#pragma once

#include "tavro/graphics/Color.h"

namespace Vz {

/// A colour 0xAARRGGBB, premultiplied only where the colour is opaque (which leaves it as it is) or has alpha
/// 0 (which gives 0); any other alpha leaves the colour unmultiplied. This narrow test is meant: burning and
/// dodging are defined on these values.
TVZGPColor PremultiplyColor(TVZGPColor color);
/// The colour `dest` darkened by `source`: the colour burn of compositing over PremultiplyColor of both, by
/// channel, with alphas Da, Sa and channels Dc, Sc of 0..255. Sa Da / 255 - Sa Da m, held in 0..255, where
/// m = min(1, (1 - Dc / 255) / Da Sa / Sc); for Sc = 0, what remains of Dc beside the source, plus Sa Da /
/// 255 where Dc = Da. The whole product times m is meant: most channels burn to 0. Alpha: Sa + Da - Sa Da /
/// 255.
TVZGPColor BurnColor(TVZGPColor dest, TVZGPColor source);
/// The colour `dest` lightened by `source`, the colour dodge in the same terms: Sa Da / 255 m where
/// m = min(1, Dc / Da Sa / (Sa - Sc)); for Sc = Sa the sum of both that compositing gives, or the source
/// alone over Dc = 0; for Sc > Sa, which a colour that is not premultiplied can have, dest's own channel.
/// Alpha as in BurnColor.
TVZGPColor DodgeColor(TVZGPColor dest, TVZGPColor source);
/// Each of red, green and blue times factor, rounded half to even and held in 0..255; the alpha stays.
TVZGPColor ScaleColor(TVZGPColor color, double factor);

} // namespace Vz
