#include "tavro/graphics/Canvas.h"

namespace Vz {

TVZGPCanvas::TVZGPCanvas(IPaintDevice& device, const TAffine& toDevice)
    : FDevice(&device)
    , FBase(toDevice) {}

TVZGPCanvas::TVZGPCanvas(TVZGPCanvas& window)
    : FDevice(window.FDevice)
    , FBase(window.ToDevice())
    , FIsOfBitmap(window.FIsOfBitmap) {}

void TVZGPCanvas::SetMatrix(const TMatrix& matrix) { FMatrix = matrix; }

void TVZGPCanvas::SetInterpolationMode(int mode) {
    constexpr TInterpolation kinds[] = {
        TInterpolation::Bilinear, // default
        TInterpolation::Bilinear, // low quality
        TInterpolation::Bicubic,  // high quality
        TInterpolation::Bilinear, // bilinear
        TInterpolation::Bicubic,  // bicubic
        TInterpolation::Nearest,  // nearest neighbour
        TInterpolation::Bilinear, // high quality bilinear
        TInterpolation::Bicubic,  // high quality bicubic
    };
    FInterpolation = kinds[mode >= 0 && mode < 8 ? mode : 0];
}

void TVZGPCanvas::DrawImage(const TVZGPBitmap& image, const TRectF& rect, float opacity) {
    const TPixels pixels = image.GetPixels();
    if (pixels.Width == 0 || pixels.Height == 0) return;
    const double sx = (double{rect.Right} - rect.Left) / pixels.Width;
    const double sy = (double{rect.Bottom} - rect.Top) / pixels.Height;
    const TAffine toRect{sx, 0, 0, sy, rect.Left, rect.Top};
    FDevice->DrawImage(pixels, toRect.Then(ToDevice()), opacity, FInterpolation);
}

TAffine TVZGPCanvas::ToDevice() const { return TAffine::FromMatrix(FMatrix).Then(FBase); }

} // namespace Vz
