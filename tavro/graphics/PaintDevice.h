#pragma once

#include "tavro/graphics/Bitmap.h"
#include "tavro/graphics/Color.h"
#include "tavro/graphics/Figures.h"

#include <memory>
#include <span>
#include <vector>

namespace Vz {

class TLayerPair;

enum class TSpread : std::uint8_t { Pad, Reflect, Repeat };

/// A stop of a gradient. Offsets are 0..1 and do not fall from stop to stop.
struct TRampStop {
    float Offset = 0;
    TVZGPColor Color = 0; ///< not premultiplied
    friend bool operator==(const TRampStop&, const TRampStop&) = default;
};

/// The colours of a gradient along 0..1, made once and shared by the paints that use them. Colours are
/// interpolated as they are written, that is not premultiplied, in sRGB (SVG 1.1, 13.2.4).
class TGradientRamp {
public:
    static constexpr int Size = 1024;

    /// At least one stop. `opacity` (0..1) scales every alpha.
    TGradientRamp(std::span<const TRampStop> stops, double opacity);
    std::span<const TRampStop> Stops() const { return FStops; }
    double Opacity() const { return FOpacity; }
    /// Size premultiplied colours; entry i is the colour at i / (Size - 1).
    const std::uint32_t* Table() const { return FTable.data(); }
    bool IsOpaque() const { return FOpaque; }

private:
    std::vector<TRampStop> FStops;
    double FOpacity;
    std::vector<std::uint32_t> FTable;
    bool FOpaque;
};

enum class TInterpolation : std::uint8_t { Nearest, Bilinear, Bicubic };

/// What colours a shape.
struct TPaint {
    enum class TKind : std::uint8_t { Solid, Linear, Radial, Image };

    TKind Kind = TKind::Solid;
    TVZGPColor Color = 0xFF000000;      ///< Solid: not premultiplied, opacity included
    TPointD Start, End;                 ///< Linear: where the ramp begins and ends, in paint units
    TPointD Center, Focus;              ///< Radial, in paint units
    double Radius = 0, FocusRadius = 0; ///< Radial: ramp runs from the circle FocusRadius about Focus to this
    TSpread Spread = TSpread::Pad;
    TAffine Matrix; ///< gradients: paint units -> units of the shape; Image: pixels -> shape
    std::shared_ptr<const TGradientRamp> Ramp; ///< Linear, Radial
    std::shared_ptr<const TVZGPBitmap> Image;  ///< Image: repeated in both directions (a pattern's tile)
    TInterpolation Interpolation = TInterpolation::Bilinear; ///< Image
    double Opacity = 1; ///< Image only; the others have it in Color or Ramp
    /// Ramps and images count by being the same, not by what they hold.
    friend bool operator==(const TPaint&, const TPaint&) = default;
};

/// How a layer is laid onto what is under it (CSS Compositing and Blending 1).
enum class TBlendMode : std::uint8_t {
    Normal,
    Multiply,
    Screen,
    Overlay,
    Darken,
    Lighten,
    ColorDodge,
    ColorBurn,
    HardLight,
    SoftLight,
    Difference,
    Exclusion,
    Hue,
    Saturation,
    Color,
    Luminosity,
};

enum class TMaskKind : std::uint8_t { Alpha, Luminance, LinearLuminance };

/// What is drawn into a layer is laid onto the picture as one.
struct TLayerStyle {
    double Opacity = 1; ///< 0..1
    TBlendMode Blend = TBlendMode::Normal;
    /// Device pixels that the layer is limited to; null: no limit but the clip in force.
    const TRect* Bounds = nullptr;
};

/// One shape of a clip.
struct TClipShape {
    TShape Shape;
    TAffine Matrix;
};

/// Where shapes are painted. All matrices map to device pixels. Everything that is not finite or not
/// invertible where it must be paints nothing. Calls of Push and Pop are paired by the caller.
class IPaintDevice {
public:
    virtual ~IPaintDevice() = default;

    /// Paints a shape; `toDevice` maps the shape's units.
    virtual void Draw(const TShape& shape, const TPaint& paint, const TAffine& toDevice) = 0;
    /// Draws a picture; `toDevice` maps its pixels. Outside of the picture nothing is drawn. Where the map is
    /// a translation by whole pixels the picture is blended as it is, else it is resampled.
    virtual void DrawImage(const TPixels& image, const TAffine& toDevice, double opacity,
                           TInterpolation mode) = 0;
    /// Limits what follows to the union of the shapes, anti-aliased, within the clip in force.
    virtual void PushClip(std::span<const TClipShape> shapes) = 0;
    virtual void PopClip() = 0;
    virtual void PushLayer(const TLayerStyle& style) = 0;
    virtual void PopLayer() = 0;
    /// Between these calls a mask is drawn; at PopMask the layer in force is multiplied by it. What lies
    /// outside of the mask's drawing becomes transparent.
    virtual void PushMask(TMaskKind kind) = 0;
    virtual void PopMask() = 0;
    /// What is drawn between these calls comes to lie between the two pictures, of which pixel (0, 0) lies at
    /// (x, y). Both calls get the same arguments, with the same clip in force.
    virtual void BeginBetween(const TLayerPair& layers, int x, int y);
    virtual void EndBetween(const TLayerPair& layers, int x, int y);
    /// Device pixels that can change now: the clip's box. Whoever draws may skip what lies outside.
    virtual TRect GetClipBounds() const = 0;
    /// True when shapes stay curves (a file) and pixels are not what counts.
    virtual bool IsVector() const = 0;
};

} // namespace Vz
