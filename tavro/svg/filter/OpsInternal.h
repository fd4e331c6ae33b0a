#pragma once

#include "tavro/graphics/PaintDevice.h"
#include "tavro/svg/filter/ImageInternal.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace Vz {

// The filter primitives (Filter Effects 1, section 9) on pixels. Each gives the pixels of `box`; lengths are
// in pixels. Two pictures that go into one are in the same colours.

/// A box in one colour.
TFilterImage Flooded(const TRect& box, TVZGPColor color, TFilterColors colors);
/// The picture moved; by parts of a pixel it is interpolated.
TFilterImage Moved(const TFilterImage& in, double dx, double dy, const TRect& box);
/// A Gaussian blur, by axis; a deviation of 0 or less leaves the axis as it is. From 2 pixels on three box
/// blurs stand for it, as the recommendation allows. They are steps of their own on pictures of the extent
/// `limit`: what one of them carries out of it is lost to the next one.
TFilterImage Blurred(const TFilterImage& in, double sigmaX, double sigmaY, const TRect& limit,
                     const TRect& box);
/// How far a blur of that deviation carries a pixel.
double BlurReach(double sigma);

struct TShadow {
    double Dx = 2, Dy = 2;
    double SigmaX = 2, SigmaY = 2;
    TVZGPColor Color = 0xFF000000;
};
/// The picture above its own shadow.
TFilterImage WithShadow(const TFilterImage& in, const TShadow& shadow, const TRect& limit, const TRect& box);

/// Four rows of five: the new red, green, blue and alpha of the old ones and 1.
using TColorMatrix = std::array<float, 20>;
TColorMatrix IdentityColors();
TColorMatrix SaturateColors(double amount);
TColorMatrix HueRotateColors(double angleDeg);
TColorMatrix LuminanceToAlphaColors();
TFilterImage Recoloured(const TFilterImage& in, const TColorMatrix& matrix, const TRect& box);

/// What feComponentTransfer does to one channel.
struct TTransfer {
    enum class TKind : std::uint8_t { Identity, Table, Discrete, Linear, Gamma };
    TKind Kind = TKind::Identity;
    std::vector<float> Values; ///< Table, Discrete
    float Slope = 1, Intercept = 0;
    float Amplitude = 1, Exponent = 1, Offset = 0;

    /// The new value of a channel's 0..1.
    float operator()(float value) const;
};
/// Red, green, blue, alpha.
using TTransfers = std::array<TTransfer, 4>;
TFilterImage Transferred(const TFilterImage& in, const TTransfers& transfers, const TRect& box);

enum class TCompositeOperator : std::uint8_t { Over, In, Out, Atop, Xor, Lighter, Arithmetic };
/// `in` laid onto `in2`; k1 to k4 count for Arithmetic.
TFilterImage Composed(TCompositeOperator op, const std::array<float, 4>& k, const TFilterImage& in,
                      const TFilterImage& in2, const TRect& box);
TFilterImage Blended(TBlendMode mode, const TFilterImage& in, const TFilterImage& in2, const TRect& box);

enum class TMorphology : std::uint8_t { Erode, Dilate };
/// The least or greatest of each channel in a window of so many pixels, by axis; where it has no middle one
/// more of them lies before the pixel than behind it. Less than 2 leaves the axis as it is.
TFilterImage Morphed(TMorphology op, const TFilterImage& in, int windowX, int windowY, const TRect& box);

enum class TEdgeMode : std::uint8_t { Duplicate, Wrap, None };
struct TConvolution {
    int OrderX = 3, OrderY = 3;
    int TargetX = 1, TargetY = 1;
    std::vector<float> Kernel; ///< OrderX * OrderY
    float Divisor = 1;         ///< not 0
    float Bias = 0;
    TEdgeMode Edge = TEdgeMode::Duplicate;
    bool PreserveAlpha = false;
};
/// `edge` is the input's extent, beyond which the edge mode says what stands there.
TFilterImage Convolved(const TFilterImage& in, const TConvolution& convolution, const TRect& edge,
                       const TRect& box);

struct TDisplacement {
    double XScale[2] = {0, 0};      ///< pixels in x and y that the x channel's 0..1 spans
    double YScale[2] = {0, 0};      ///< likewise of the y channel
    int XChannel = 3, YChannel = 3; ///< 0 red .. 3 alpha
};
TFilterImage Displaced(const TFilterImage& in, const TFilterImage& map, const TDisplacement& displacement,
                       const TRect& box);
/// Repeats what lies in `tile` in both directions.
TFilterImage Tiled(const TFilterImage& in, const TRectD& tile, const TRect& box);

struct TTurbulence {
    double FrequencyX = 0, FrequencyY = 0; ///< >= 0
    int Octaves = 1;
    double Seed = 0;
    bool IsFractal = false;
    bool Stitch = false;
    TRectD Tile; ///< what is stitched, in the units of the frequency
    /// Octaves beyond it change nothing that can be seen.
    static constexpr int MostOctaves = 10;
};
/// Perlin noise; `toUnits` maps pixels to the units of the frequency.
TFilterImage Turbulent(const TTurbulence& turbulence, const TAffine& toUnits, TFilterColors colors,
                       const TRect& box);

struct TLight {
    enum class TKind : std::uint8_t { Distant, Point, Spot };
    TKind Kind = TKind::Distant;
    double AzimuthDeg = 0, ElevationDeg = 0; ///< Distant
    std::array<double, 3> At{};              ///< Point, Spot
    std::array<double, 3> Target{};          ///< Spot
    double SpotExponent = 1;
    double ConeDeg = -1; ///< Spot: below 0: no cone
};
struct TLighting {
    bool IsSpecular = false;
    double SurfaceScale = 1;
    double Constant = 1;
    double Exponent = 1; ///< specular
    TVZGPColor Color = 0xFFFFFFFF;
    TLight Light;
};
TFilterImage Lit(const TFilterImage& in, const TLighting& lighting, TFilterColors colors, const TRect& box);

} // namespace Vz
