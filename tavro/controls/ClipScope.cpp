#include "tavro/controls/ClipScope.h"

namespace Vz {

namespace {

TFigures UnitSquare() {
    TFigures figures;
    figures.AddRect(0, 0, 1, 1);
    return figures;
}

} // namespace

TClipScope::TClipScope(IPaintDevice& device, const TRect& box)
    : FDevice(device) {
    const TRect open = device.GetClipBounds();
    FIsEmpty = Intersection(open, box).IsEmpty();
    if (FIsEmpty || Intersection(open, box) == open) return;
    static const TFigures square = UnitSquare();
    TClipShape shape;
    shape.Shape.Figures = &square;
    shape.Matrix = {double(box.Width()), 0, 0, double(box.Height()), double(box.Left), double(box.Top)};
    device.PushClip({&shape, 1});
    FIsPushed = true;
}

TClipScope::~TClipScope() {
    if (FIsPushed) FDevice.PopClip();
}

TRect TouchedPixels(const TAffine& toDevice, const TRectD& rect) {
    constexpr double slack = 1.0 / 4096;
    const TRectD box = toDevice(rect);
    return PixelBounds({box.Left + slack, box.Top + slack, box.Right - slack, box.Bottom - slack});
}

} // namespace Vz
