#include "tavro/svg/filter/OpsInternal.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Vz {

namespace {

struct TVector {
    float X = 0, Y = 0, Z = 0;

    friend TVector operator-(const TVector& a, const TVector& b) { return {a.X - b.X, a.Y - b.Y, a.Z - b.Z}; }
    friend float Dot(const TVector& a, const TVector& b) { return a.X * b.X + a.Y * b.Y + a.Z * b.Z; }
    TVector Unit() const {
        const float length = std::sqrt(Dot(*this, *this));
        return length > 0 ? TVector{X / length, Y / length, Z / length} : *this;
    }
};

TVector VectorOf(const std::array<double, 3>& p) {
    return {static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2])};
}

/// The light that falls on a place.
struct TRay {
    TVector ToLight;    ///< unit
    float Strength = 1; ///< 0..1
};

/// A light source, ready to be asked (Filter Effects 1, 9.13.3).
class TLamp {
public:
    explicit TLamp(const TLight& light)
        : FLight(light)
        , FAt(VectorOf(light.At)) {
        const double azimuth = std::fmod(light.AzimuthDeg, 360) * std::numbers::pi / 180;
        const double elevation = std::fmod(light.ElevationDeg, 360) * std::numbers::pi / 180;
        FDistant = VectorOf({std::cos(azimuth) * std::cos(elevation), std::sin(azimuth) * std::cos(elevation),
                             std::sin(elevation)});
        FAxis = (VectorOf(light.Target) - FAt).Unit();
        FExponent = static_cast<float>(light.SpotExponent);
        if (light.ConeDeg >= 0)
            FLeastCosine =
                static_cast<float>(std::cos(std::min(light.ConeDeg, 180.0) * std::numbers::pi / 180));
    }
    TRay At(const TVector& place) const {
        if (FLight.Kind == TLight::TKind::Distant) return {FDistant, 1};
        TRay ray{(FAt - place).Unit(), 1};
        if (FLight.Kind == TLight::TKind::Spot) {
            const float cosine = -Dot(ray.ToLight, FAxis);
            ray.Strength = cosine <= 0 || cosine < FLeastCosine ? 0 : std::pow(cosine, FExponent);
        }
        return ray;
    }

private:
    const TLight& FLight;
    TVector FAt, FDistant, FAxis;
    float FExponent = 1;
    float FLeastCosine = 0;
};

/// Three rows of heights around a place: above, own, below; at the picture's edge a row is missing.
struct THeights {
    const float* Rows[3];

    /// The slope across in one row: a difference over two pixels, or twice that over one at an edge.
    static float Across(const float* row, int x, int last) {
        const float before = x > 0 ? row[x - 1] : row[x];
        const float behind = x < last ? row[x + 1] : row[x];
        return (behind - before) * (x > 0 && x < last ? 1.0f : 2.0f);
    }
    /// The surface's normal: the kernels of the table in Filter Effects 1, 9.13.2 are these slopes, the
    /// neighbours on both sides weighed half as much as the middle, and all weights together 1.
    TVector Normal(int x, int last, float scale) const {
        const float middle = 2;
        float slopeX = middle * Across(Rows[1], x, last);
        float weightX = middle;
        for (const float* row : {Rows[0], Rows[2]})
            if (row) {
                slopeX += Across(row, x, last);
                weightX += 1;
            }
        const float* const above = Rows[0] ? Rows[0] : Rows[1];
        const float* const below = Rows[2] ? Rows[2] : Rows[1];
        const float stretch = Rows[0] && Rows[2] ? 1.0f : 2.0f;
        float slopeY = 0;
        float weightY = 0;
        for (int i = std::max(x - 1, 0); i <= std::min(x + 1, last); ++i) {
            const float weight = i == x ? middle : 1;
            slopeY += weight * (below[i] - above[i]) * stretch;
            weightY += weight;
        }
        return TVector{-scale * slopeX / weightX, -scale * slopeY / weightY, 1}.Unit();
    }
};

} // namespace

TFilterImage Lit(const TFilterImage& in, const TLighting& lighting, TFilterColors colors, const TRect& box) {
    if (box.IsEmpty()) return TFilterImage(box, colors);
    const int width = box.Width();
    const int last = width - 1;
    std::vector<float> heights(static_cast<std::size_t>(width) * static_cast<std::size_t>(box.Height()));
    std::vector<TFilterPixel> scratch;
    const auto row = [&](int y) { return heights.data() + static_cast<std::ptrdiff_t>(y - box.Top) * width; };
    for (int y = box.Top; y < box.Bottom; ++y) {
        const TFilterPixel* const from = in.Span(y, box.Left, width, scratch);
        std::transform(from, from + width, row(y), [](const TFilterPixel& p) { return p.A; });
    }
    const TLamp lamp(lighting.Light);
    const TFilterPixel color = FilterPixelOf(lighting.Color | 0xFF000000, colors);
    const float scale = static_cast<float>(lighting.SurfaceScale);
    const float constant = static_cast<float>(lighting.Constant);
    const float exponent = static_cast<float>(lighting.Exponent);
    return MadeByRows(box, colors, [&](int y, TFilterPixel* to) {
        const THeights around{
            {y > box.Top ? row(y - 1) : nullptr, row(y), y < box.Bottom - 1 ? row(y + 1) : nullptr}};
        for (int i = 0; i < width; ++i) {
            const TVector normal = around.Normal(i, last, scale);
            const TVector place{static_cast<float>(box.Left + i) + 0.5f, static_cast<float>(y) + 0.5f,
                                scale * around.Rows[1][i]};
            const TRay ray = lamp.At(place);
            float value = 0;
            if (lighting.IsSpecular) {
                const TVector half = TVector{ray.ToLight.X, ray.ToLight.Y, ray.ToLight.Z + 1}.Unit();
                value = constant * std::pow(std::max(Dot(normal, half), 0.0f), exponent);
            } else {
                value = constant * std::max(Dot(normal, ray.ToLight), 0.0f);
            }
            value *= ray.Strength;
            const auto part = [value](float c) { return c * value > 0 ? std::min(c * value, 1.0f) : 0; };
            TFilterPixel p{part(color.R), part(color.G), part(color.B), 1};
            if (lighting.IsSpecular) p.A = std::max({p.R, p.G, p.B});
            to[i] = p;
        }
    });
}

} // namespace Vz
