#pragma once

#include "tavro/graphics/PaintDevice.h"

namespace Vz {

/// Limits a paint device to a box of whole device pixels for as long as it lives.
class TClipScope {
public:
    TClipScope(IPaintDevice& device, const TRect& box);
    ~TClipScope();
    TClipScope(const TClipScope&) = delete;
    TClipScope& operator=(const TClipScope&) = delete;

    /// True when nothing can be painted; there is no need to try then.
    bool IsEmpty() const { return FIsEmpty; }

private:
    IPaintDevice& FDevice;
    bool FIsEmpty = false;
    bool FIsPushed = false;
};

/// The device pixels that a rectangle of canvas units touches. A few ten-thousandths of a pixel, the noise of
/// single precision, do not count.
TRect TouchedPixels(const TAffine& toDevice, const TRectD& rect);

} // namespace Vz
