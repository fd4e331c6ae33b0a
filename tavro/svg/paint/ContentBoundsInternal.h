#pragma once

#include "tavro/graphics/PaintDevice.h"

#include <vector>

namespace Vz {

/// Paints nothing and finds the box around everything that would be painted, in device pixels. Filters are
/// not run on it: each adds the box that its result can have.
class TContentBounds final : public IPaintDevice {
public:
    const TRectD& Box() const { return FBox; }
    /// Takes up a box that is painted, as far as the clip in force lets it.
    void Add(const TRectD& box);

    void Draw(const TShape& shape, const TPaint& paint, const TAffine& toDevice) override;
    void DrawImage(const TPixels& image, const TAffine& toDevice, double opacity,
                   TInterpolation mode) override;
    void PushClip(std::span<const TClipShape> shapes) override;
    void PopClip() override { FClips.pop_back(); }
    void PushLayer(const TLayerStyle&) override {}
    void PopLayer() override {}
    void PushMask(TMaskKind) override { ++FMasks; }
    void PopMask() override { --FMasks; }
    TRect GetClipBounds() const override;
    bool IsVector() const override { return false; }

private:
    TRectD FBox;
    std::vector<TRectD> FClips;
    int FMasks = 0; ///< while above 0 a mask is drawn, and no picture
};

} // namespace Vz
