#include "tavro/graphics/raster/BlendModesInternal.h"

#include "tavro/graphics/raster/BlendModes.h"
#include "tavro/graphics/raster/RowOpsInternal.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Vz {

namespace {

/// Red, green and blue, each 0..1, not premultiplied.
using TRgb = std::array<float, 3>;

// CSS Compositing and Blending 1, section 10.1: what the source colour s makes of the backdrop's b.

float Multiply(float b, float s) { return b * s; }
float Screen(float b, float s) { return b + s - b * s; }
float HardLight(float b, float s) { return s <= 0.5f ? Multiply(b, 2 * s) : Screen(b, 2 * s - 1); }
float Overlay(float b, float s) { return HardLight(s, b); }
float Darken(float b, float s) { return std::min(b, s); }
float Lighten(float b, float s) { return std::max(b, s); }

float ColorDodge(float b, float s) {
    if (b == 0) return 0;
    return s >= 1 ? 1 : std::min(1.0f, b / (1 - s));
}

float ColorBurn(float b, float s) {
    if (b >= 1) return 1;
    return s <= 0 ? 0 : 1 - std::min(1.0f, (1 - b) / s);
}

float SoftLight(float b, float s) {
    if (s <= 0.5f) return b - (1 - 2 * s) * b * (1 - b);
    const float d = b <= 0.25f ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
    return b + (2 * s - 1) * (d - b);
}

float Difference(float b, float s) { return std::abs(b - s); }
float Exclusion(float b, float s) { return b + s - 2 * b * s; }

using TChannelBlend = float (*)(float, float);
/// By TBlendMode, from Multiply to Exclusion.
constexpr TChannelBlend ChannelBlends[] = {Multiply,  Screen,    Overlay,   Darken,     Lighten,  ColorDodge,
                                           ColorBurn, HardLight, SoftLight, Difference, Exclusion};

// Section 10.2: hue, saturation and luminosity.

float Lum(const TRgb& c) { return 0.3f * c[0] + 0.59f * c[1] + 0.11f * c[2]; }
float Sat(const TRgb& c) { return std::max({c[0], c[1], c[2]}) - std::min({c[0], c[1], c[2]}); }

TRgb WithLum(TRgb c, float lum) {
    const float shift = lum - Lum(c);
    for (float& v : c)
        v += shift;
    const float l = Lum(c);
    const float least = std::min({c[0], c[1], c[2]});
    const float most = std::max({c[0], c[1], c[2]});
    for (float& v : c) {
        if (least < 0) v = l + (v - l) * l / (l - least);
        if (most > 1) v = l + (v - l) * (1 - l) / (most - l);
    }
    return c;
}

TRgb WithSat(TRgb c, float sat) {
    const float least = std::min({c[0], c[1], c[2]});
    const float range = Sat(c);
    for (float& v : c)
        v = range > 0 ? (v - least) * sat / range : 0;
    return c;
}

TRgb Blended(TBlendMode mode, const TRgb& b, const TRgb& s) {
    switch (mode) {
    case TBlendMode::Normal:
        return s;
    case TBlendMode::Hue:
        return WithLum(WithSat(s, Sat(b)), Lum(b));
    case TBlendMode::Saturation:
        return WithLum(WithSat(b, Sat(s)), Lum(b));
    case TBlendMode::Color:
        return WithLum(s, Lum(b));
    case TBlendMode::Luminosity:
        return WithLum(b, Lum(s));
    default:
        break;
    }
    const TChannelBlend blend =
        ChannelBlends[static_cast<int>(mode) - static_cast<int>(TBlendMode::Multiply)];
    return {blend(b[0], s[0]), blend(b[1], s[1]), blend(b[2], s[2])};
}

TRgb ColorOf(std::uint32_t pixel) {
    const float alpha = AlphaOf(pixel);
    if (alpha == 0) return {};
    const auto part = [alpha](unsigned v) { return std::min(v / alpha, 1.0f); };
    return {part(RedOf(pixel)), part(GreenOf(pixel)), part(BlueOf(pixel))};
}

std::uint32_t BlendPixel(TBlendMode mode, std::uint32_t under, std::uint32_t over) {
    const float sourceAlpha = AlphaOf(over) / 255.0f;
    const float backAlpha = AlphaOf(under) / 255.0f;
    const TRgb source = ColorOf(over);
    const TRgb back = ColorOf(under);
    const TRgb mixed = Blended(mode, back, source);
    const float alpha = sourceAlpha + backAlpha - sourceAlpha * backAlpha;
    const auto channel = [&](int i) {
        const float value = sourceAlpha * (1 - backAlpha) * source[i] +
                            backAlpha * (1 - sourceAlpha) * back[i] + sourceAlpha * backAlpha * mixed[i];
        return static_cast<unsigned>(std::clamp(value, 0.0f, alpha) * 255 + 0.5f);
    };
    return MakeColor(static_cast<unsigned>(alpha * 255 + 0.5f), channel(0), channel(1), channel(2));
}

/// An sRGB channel 0..1 as the light it stands for (IEC 61966-2-1).
double LinearLight(double v) { return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); }

std::array<float, 256> MakeLightTable() {
    std::array<float, 256> table{};
    for (int i = 0; i < 256; ++i)
        table[i] = static_cast<float>(LinearLight(i / 255.0) * 255);
    return table;
}

float Luminance(float red, float green, float blue) {
    return 0.2125f * red + 0.7154f * green + 0.0721f * blue;
}

float LinearLuminance(std::uint32_t pixel) {
    static const std::array<float, 256> light = MakeLightTable();
    const unsigned alpha = AlphaOf(pixel);
    if (alpha == 0) return 0;
    const auto channel = [alpha](unsigned v) { return light[std::min((v * 255 + alpha / 2) / alpha, 255u)]; };
    return Luminance(channel(RedOf(pixel)), channel(GreenOf(pixel)), channel(BlueOf(pixel))) *
           static_cast<float>(alpha) / 255.0f;
}

} // namespace

std::array<float, 3> BlendColors(TBlendMode mode, const std::array<float, 3>& under,
                                 const std::array<float, 3>& over) {
    return Blended(mode, under, over);
}

void BlendRowInMode(TBlendMode mode, std::uint32_t* row, int count, const std::uint32_t* pixels,
                    unsigned opacity, const std::uint8_t* coverage) {
    for (int i = 0; i < count; ++i) {
        std::uint32_t over = pixels[i];
        if (AlphaOf(over) == 0) continue;
        if (opacity < 255) over = ScalePixel(over, opacity);
        if (coverage) over = ScalePixel(over, coverage[i]);
        row[i] = AlphaOf(row[i]) == 0 ? over : BlendPixel(mode, row[i], over);
    }
}

void MaskCoverage(TMaskKind kind, const std::uint32_t* pixels, int count, std::uint8_t* coverage) {
    for (int i = 0; i < count; ++i) {
        const std::uint32_t pixel = pixels[i];
        float value = AlphaOf(pixel);
        if (kind == TMaskKind::Luminance)
            value = Luminance(RedOf(pixel), GreenOf(pixel), BlueOf(pixel));
        else if (kind == TMaskKind::LinearLuminance)
            value = LinearLuminance(pixel);
        coverage[i] = static_cast<std::uint8_t>(std::min(value + 0.5f, 255.0f));
    }
}

} // namespace Vz
