#include "tavro/controls/HeadlessHost.h"

#include "tavro/graphics/Canvas.h"
#include "tavro/graphics/raster/Device.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/PropText.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

double Checked(double scale) {
    if (!(scale > 0 && scale <= THeadlessHost::MaxScale))
        throw EArgumentOutOfRange("the scale " + FloatToText(scale) + " is not above 0 up to " +
                                  FloatToText(THeadlessHost::MaxScale));
    return scale;
}

/// The pixels that an extent takes; what is there takes one at least.
unsigned DeviceExtent(int extent, double scale) {
    const double pixels = std::max(std::ceil(extent * scale - 1e-6), extent > 0 ? 1.0 : 0.0);
    if (pixels > TVZGPBitmap::MaxExtent)
        throw EArgumentOutOfRange("a picture of " + FloatToText(pixels) + " pixels is too large");
    return static_cast<unsigned>(pixels);
}

} // namespace

THeadlessHost::THeadlessHost(TControl& root, double scale)
    : FRoot(&root)
    , FScale(Checked(scale)) {
    root.SetHost(this);
    MakeAllStale();
}

THeadlessHost::~THeadlessHost() {
    if (FRoot && FRoot->GetHost() == this) FRoot->SetHost(nullptr);
}

void THeadlessHost::SetScale(double scale) {
    if (Checked(scale) == FScale) return;
    FScale = scale;
    MakeAllStale();
}

void THeadlessHost::SetBackground(TVZGPColor color) {
    if (color == FBackground) return;
    FBackground = color;
    MakeAllStale();
}

void THeadlessHost::MakeAllStale() {
    FStale.Clear();
    if (FRoot) FStale.Add(FRoot->GetClientRect());
}

void THeadlessHost::RegionStale(std::span<const TRect> rects) {
    for (const TRect& rect : rects)
        FStale.Add(rect);
}

void THeadlessHost::SizeWanted(int, int) { MakeAllStale(); }

const TVZGPBitmap& THeadlessHost::Paint() {
    MakeAllStale();
    return PaintStale();
}

const TVZGPBitmap& THeadlessHost::PaintStale() {
    if (!FRoot) return FPicture;
    const unsigned width = DeviceExtent(FRoot->GetWidth(), FScale);
    const unsigned height = DeviceExtent(FRoot->GetHeight(), FScale);
    if (FPicture.GetWidth() != width || FPicture.GetHeight() != height) {
        FPicture.SetSize(width, height);
        MakeAllStale();
    }
    PaintDevicePixels();
    return FPicture;
}

void THeadlessHost::PaintDevicePixels() {
    const TAffine toDevice = TAffine::Scaling(FScale, FScale);
    FDeviceStale.Clear();
    for (const TRect& rect : FStale.Rects())
        FDeviceStale.Add(PixelBounds(
            toDevice(TRectD{double(rect.Left), double(rect.Top), double(rect.Right), double(rect.Bottom)})));
    FDeviceStale.Intersect(FPicture.GetPixels().Bounds());
    // Before the painting: what becomes stale in its course is for the next one.
    FStale.Clear();
    if (FDeviceStale.IsEmpty()) return;
    TRasterDevice device(FPicture.GetPixels(), FDeviceStale);
    device.ClearOnDemand(FBackground);
    TVZGPCanvas canvas(device, toDevice);
    FRoot->PaintTo(canvas);
}

void THeadlessHost::Click(int x, int y, TMouseButton button, TShiftState shift) {
    if (FRoot) FRoot->HandleMouseDown(button, shift, x, y);
    if (FRoot) FRoot->HandleMouseUp(button, shift, x, y);
}

} // namespace Vz
