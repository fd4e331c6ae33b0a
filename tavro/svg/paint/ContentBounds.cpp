#include "tavro/svg/paint/ContentBoundsInternal.h"

namespace Vz {

void TContentBounds::Add(const TRectD& box) {
    if (FMasks == 0) FBox.Include(FClips.empty() ? box : Intersection(FClips.back(), box));
}

void TContentBounds::Draw(const TShape& shape, const TPaint& paint, const TAffine& toDevice) {
    if (FMasks > 0 || (paint.Kind == TPaint::TKind::Solid && AlphaOf(paint.Color) == 0)) return;
    thread_local TPolygons scratch;
    TRectD box;
    for (const TPointD& p : Flatten(shape, FlatteningScale(toDevice), scratch).Points) {
        const TPointD at = toDevice(p);
        box.Include(at.X, at.Y);
    }
    Add(box);
}

void TContentBounds::DrawImage(const TPixels& image, const TAffine& toDevice, double, TInterpolation) {
    Add(toDevice(TRectD{0, 0, static_cast<double>(image.Width), static_cast<double>(image.Height)}));
}

void TContentBounds::PushClip(std::span<const TClipShape> shapes) {
    TRectD box;
    for (const TClipShape& clip : shapes)
        box.Include(clip.Shape.Figures->Bounds(clip.Matrix));
    FClips.push_back(FClips.empty() ? box : Intersection(FClips.back(), box));
}

TRect TContentBounds::GetClipBounds() const {
    constexpr int far = 1 << 30;
    return {-far, -far, far, far};
}

} // namespace Vz
