#pragma once

#include "tavro/graphics/PaintDevice.h"
#include "tavro/graphics/Region.h"

#include <memory>

namespace Vz {

struct TRasterState;

/// The paint device of pixels: exact-area coverage times a paint, through a clip, onto rows of premultiplied
/// pixels. What it paints in a pixel does not depend on the region it is limited to. In a frame like the one
/// before it allocates nothing: its working memory is kept by the thread.
class TRasterDevice final : public IPaintDevice {
public:
    explicit TRasterDevice(const TPixels& target);
    /// Only pixels of the region are changed.
    TRasterDevice(const TPixels& target, const TRegion& region);
    ~TRasterDevice() override;

    void Draw(const TShape& shape, const TPaint& paint, const TAffine& toDevice) override;
    void DrawImage(const TPixels& image, const TAffine& toDevice, double opacity,
                   TInterpolation mode) override;
    void PushClip(std::span<const TClipShape> shapes) override;
    void PopClip() override;
    void PushLayer(const TLayerStyle& style) override;
    void PopLayer() override;
    void PushMask(TMaskKind kind) override;
    void PopMask() override;
    void BeginBetween(const TLayerPair& layers, int x, int y) override;
    void EndBetween(const TLayerPair& layers, int x, int y) override;
    TRect GetClipBounds() const override;
    bool IsVector() const override { return false; }

    /// Sets every pixel of the region to a colour (not premultiplied), replacing what was there.
    void Clear(TVZGPColor color);
    /// The same, but as late as can be: pixels that kept pictures are about to be copied to are not touched
    /// twice. Done when the device goes, or before anything else is drawn.
    void ClearOnDemand(TVZGPColor color);
    /// Replaces the region's pixels by those of a picture whose pixel (0, 0) lies at (x, y); outside of it:
    /// transparent.
    void Copy(const TPixels& image, int x, int y);

private:
    struct TGiveBack {
        void operator()(TRasterState* state) const;
    };
    std::unique_ptr<TRasterState, TGiveBack> FState;
};

} // namespace Vz
