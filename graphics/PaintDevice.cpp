#include "graphics/PaintDevice.h"

#include "graphics/LayerPair.h"

namespace Vz {

namespace {

void LayDown(IPaintDevice& device, const TPixels& all, const TRect& used, int x, int y) {
    if (used.IsEmpty()) return;
    const TPixels part{all.Row(used.Top) + used.Left, used.Width(), used.Height(), all.Stride};
    device.DrawImage(part, TAffine::Translation(x + used.Left, y + used.Top), 1, TInterpolation::Nearest);
}

} // namespace

void IPaintDevice::BeginBetween(const TLayerPair& layers, int x, int y) {
    LayDown(*this, layers.Before(), layers.BeforeUsed(), x, y);
}

void IPaintDevice::EndBetween(const TLayerPair& layers, int x, int y) {
    LayDown(*this, layers.After(), layers.AfterUsed(), x, y);
}

} // namespace Vz
