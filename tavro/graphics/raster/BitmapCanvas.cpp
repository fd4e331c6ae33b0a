#include "tavro/graphics/Canvas.h"
#include "tavro/graphics/raster/Device.h"
#include "tavro/runtime/Exceptions.h"

#include <string>

namespace Vz {

// What bitmaps and canvases have to do with the raster device, which the rest of graphics does not know.

void TVZGPBitmap::SetSize(unsigned width, unsigned height) {
    if (width > MaxExtent || height > MaxExtent)
        throw EArgumentOutOfRange("a bitmap of " + std::to_string(width) + " by " + std::to_string(height) +
                                  " pixels is too large");
    FPixels.Assign(std::size_t{width} * height);
    FWidth = width;
    FHeight = height;
    if (FCanvas == nullptr) return;
    // A canvas that was handed out stays valid and draws on the new pixels.
    FDevice = std::make_unique<TRasterDevice>(GetPixels());
    FCanvas->FDevice = FDevice.get();
    FCanvas->FMatrix = {};
}

TVZGPCanvas& TVZGPBitmap::GetCanvas() {
    if (FCanvas == nullptr) {
        FDevice = std::make_unique<TRasterDevice>(GetPixels());
        FCanvas = std::make_unique<TVZGPCanvas>(*FDevice);
        FCanvas->FIsOfBitmap = true;
    }
    return *FCanvas;
}

void TVZGPCanvas::Clear(TVZGPColor color) {
    if (!FIsOfBitmap) return;
    if (auto* const device = dynamic_cast<TRasterDevice*>(FDevice)) device->Clear(color);
}

} // namespace Vz
