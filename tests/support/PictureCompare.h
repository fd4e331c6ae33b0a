#pragma once

#include "tavro/graphics/Bitmap.h"

#include <memory>
#include <string>

namespace Vz::Test {

/// How two pictures differ.
struct TDifference {
    bool HasSameSize = true;
    int Count = 0; ///< pixels that differ by more than the limit
    int Worst = 0; ///< greatest difference of a channel, 0..255
    int X = 0;     ///< where it is
    int Y = 0;
    bool IsNone() const { return HasSameSize && Count == 0; }
    std::string ToText() const;
};

/// Compares premultiplied channels; a difference up to `limit` does not count.
TDifference Compare(const TPixels& expected, const TPixels& actual, int limit);

/// The pixels that differ by more than the limit, in red on a faint picture of the expected ones.
std::unique_ptr<TVZGPBitmap> DifferencePicture(const TPixels& expected, const TPixels& actual, int limit);

} // namespace Vz::Test
