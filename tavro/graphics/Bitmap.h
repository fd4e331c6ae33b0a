#pragma once

#include "tavro/graphics/Color.h"
#include "tavro/graphics/Geometry.h"
#include "tavro/graphics/PixelStore.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace Vz {

class IPaintDevice;
class TVZGPCanvas;

/// Pixels that somebody else owns: 32 bits each, premultiplied, 0xAARRGGBB (blue first in memory on a
/// little-endian machine).
struct TPixels {
    std::uint32_t* Data = nullptr;
    int Width = 0;
    int Height = 0;
    std::ptrdiff_t Stride = 0; ///< from row to row, in pixels
    std::uint32_t* Row(int y) const { return Data + y * Stride; }
    TRect Bounds() const { return {0, 0, Width, Height}; }
};

/// A picture of premultiplied 32-bit pixels that can be drawn on and drawn.
class TVZGPBitmap {
public:
    /// The greatest width and height. SetSize raises EArgumentOutOfRange above it.
    static constexpr unsigned MaxExtent = 32767;

    TVZGPBitmap();
    TVZGPBitmap(unsigned width, unsigned height);
    ~TVZGPBitmap();
    TVZGPBitmap(const TVZGPBitmap&) = delete;
    TVZGPBitmap& operator=(const TVZGPBitmap&) = delete;

    /// Gives the bitmap a size in pixels; its pixels are then transparent. Memory is kept where it suffices.
    void SetSize(unsigned width, unsigned height);
    unsigned GetWidth() const { return FWidth; }
    unsigned GetHeight() const { return FHeight; }
    /// A canvas that draws on these pixels, made on the first call.
    TVZGPCanvas& GetCanvas();
    TPixels GetPixels() const;

private:
    unsigned FWidth = 0;
    unsigned FHeight = 0;
    TPixelStore FPixels;
    std::unique_ptr<IPaintDevice> FDevice;
    std::unique_ptr<TVZGPCanvas> FCanvas;
};

/// The pixels as a PNG file's bytes (not premultiplied, 8 bits a channel). Raises EWriteError on failure.
std::string EncodePng(const TPixels& pixels);
/// The most pixels that DecodePng takes, so that a few bytes cannot claim gigabytes.
inline constexpr std::uint64_t MaxPngPixels = std::uint64_t{1} << 25;
/// How many pixels a PNG file says that it has. Raises EReadError where its header is none, or exceeds
/// TVZGPBitmap::MaxExtent or MaxPngPixels.
std::uint64_t CountPngPixels(std::span<const char> bytes);
/// A PNG file's picture, of any kind (grey, palette, 16 bits a channel by their upper 8, interlaced). Raises
/// EReadError where the bytes are none or broken, or exceed TVZGPBitmap::MaxExtent or MaxPngPixels.
std::unique_ptr<TVZGPBitmap> DecodePng(std::span<const char> bytes);

} // namespace Vz
