#pragma once

#include "tavro/graphics/PaintDevice.h"
#include "tavro/graphics/raster/ImageSamplerInternal.h"
#include "tavro/graphics/raster/RowOpsInternal.h"

namespace Vz {

/// A paint made ready for one shape on the device: gives the premultiplied pixels of any part of any row.
class TPaintSource {
public:
    /// False where the paint has nothing to paint.
    bool Prepare(const TPaint& paint, const TAffine& toDevice);
    /// A picture, its edge pixels carried on outwards.
    bool PrepareImage(const TPixels& image, const TAffine& toDevice, double opacity, TInterpolation mode);

    /// True where Fill does it; else the rows' pixels are to be fetched and laid down through the coverage.
    bool Fills() const { return FKind <= TKind::Focal; }
    void Fill(const TFillJob& job) const;
    void Fetch(int x, int y, int count, std::uint32_t* pixels, TSampleScratch& scratch) const;

private:
    enum class TKind : std::uint8_t { Solid, Linear, Radial, Focal, Cone, Image };

    bool SetSolid(std::uint32_t pixel);
    bool SetLinear(const TPaint& paint, const TAffine& toPaint);
    bool SetRadial(const TPaint& paint, const TAffine& toPaint);
    std::uint32_t ConePixel(const TPointD& place) const;

    TKind FKind = TKind::Solid;
    std::uint32_t FPixel = 0;
    TRampWalk FWalk;
    TPointD FAxis; ///< Focal, Cone: from focus to centre, in radii
    double FFocusRadius = 0;
    TImageSampler FSampler;
    unsigned FOpacity = 255;
};

/// An opacity 0..1 as 0..255, to nearest; no number counts as 0.
unsigned OpacityByte(double opacity);

} // namespace Vz
