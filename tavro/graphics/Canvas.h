#pragma once

#include "tavro/graphics/PaintDevice.h"

#include <memory>

namespace Vz {

/// A drawing surface with a transform, over a paint device: what a host hands to a control, and what a bitmap
/// gives.
class TVZGPCanvas {
public:
    /// Draws on a device that the caller keeps alive; `toDevice` maps the canvas's units to device pixels.
    explicit TVZGPCanvas(IPaintDevice& device, const TAffine& toDevice = {});
    /// Draws on another canvas: its device, and on top of its transform.
    explicit TVZGPCanvas(TVZGPCanvas& window);

    /// Sets the transform from here on; default the identity. It is applied before the surface's own map to
    /// pixels.
    void SetMatrix(const TMatrix& matrix);
    const TMatrix& GetMatrix() const { return FMatrix; }
    /// How pictures are resampled, by the numbers of GDI+: 5 nearest neighbour; 0, 1, 3 and 6 bilinear; 2, 4
    /// and 7 bicubic. Default 0; others are taken as 0.
    void SetInterpolationMode(int mode);
    TInterpolation GetInterpolation() const { return FInterpolation; }
    /// Draws the picture stretched into rect; opacity 0..1.
    void DrawImage(const TVZGPBitmap& image, const TRectF& rect, float opacity);
    /// Sets all pixels to the colour (only for a canvas of a bitmap; else nothing happens).
    void Clear(TVZGPColor color);

    IPaintDevice& GetDevice() const { return *FDevice; }
    /// Canvas units -> device pixels: the transform, then the surface's own map.
    TAffine ToDevice() const;

private:
    friend class TVZGPBitmap;

    IPaintDevice* FDevice;
    TAffine FBase;
    TMatrix FMatrix;
    TInterpolation FInterpolation = TInterpolation::Bilinear;
    bool FIsOfBitmap = false;
};

} // namespace Vz
