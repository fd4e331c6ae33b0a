#pragma once

#include <cstdint>

namespace Vz {

/// A colour as 0xAARRGGBB: alpha in the top byte, not premultiplied. 0xFFFFFFFF is opaque white.
using TVZGPColor = std::uint32_t;

/// The parts of a colour, each 0..255.
constexpr std::uint8_t AlphaOf(TVZGPColor color) { return static_cast<std::uint8_t>(color >> 24); }
constexpr std::uint8_t RedOf(TVZGPColor color) { return static_cast<std::uint8_t>(color >> 16); }
constexpr std::uint8_t GreenOf(TVZGPColor color) { return static_cast<std::uint8_t>(color >> 8); }
constexpr std::uint8_t BlueOf(TVZGPColor color) { return static_cast<std::uint8_t>(color); }

/// A colour from its parts; each counts modulo 256.
constexpr TVZGPColor MakeColor(unsigned alpha, unsigned red, unsigned green, unsigned blue) {
    return (alpha & 255u) << 24 | (red & 255u) << 16 | (green & 255u) << 8 | (blue & 255u);
}

/// The colour with another alpha, 0..255.
constexpr TVZGPColor WithAlpha(TVZGPColor color, unsigned alpha) {
    return (color & 0x00FFFFFFu) | (alpha & 255u) << 24;
}

/// The colour with its alpha multiplied by an opacity, clamped to 0..1 (not-a-number counts as 0); rounded to
/// nearest, a half to the even number.
TVZGPColor Faded(TVZGPColor color, double opacity);

/// The colour with its channels multiplied by its alpha, each rounded to nearest: the form pixels have.
constexpr std::uint32_t Premultiply(TVZGPColor color) {
    const unsigned a = AlphaOf(color);
    const auto times = [a](unsigned c) { return (c * a + 127) / 255; };
    return MakeColor(a, times(RedOf(color)), times(GreenOf(color)), times(BlueOf(color)));
}

/// What an element that is drawn disabled shows instead of the colour: its luma in grey (weights of ITU-R
/// BT.601), drawn half way towards middle grey, alpha unchanged.
constexpr TVZGPColor GreyOf(TVZGPColor color) {
    const unsigned luma = (RedOf(color) * 299u + GreenOf(color) * 587u + BlueOf(color) * 114u + 500u) / 1000u;
    const unsigned grey = (luma + 160u) / 2u;
    return MakeColor(AlphaOf(color), grey, grey, grey);
}
/// The same of a premultiplied pixel.
constexpr std::uint32_t GreyOfPremultiplied(std::uint32_t pixel) {
    const unsigned luma = RedOf(pixel) * 299u + GreenOf(pixel) * 587u + BlueOf(pixel) * 114u;
    const unsigned grey = (luma * 255u + AlphaOf(pixel) * 160000u + 255000u) / 510000u;
    return MakeColor(AlphaOf(pixel), grey, grey, grey);
}

} // namespace Vz
