#include "tavro/graphics/Bitmap.h"

#include "tavro/graphics/Canvas.h"
#include "tavro/runtime/Exceptions.h"

#include <algorithm>
#include <cairo.h>
#include <cstring>
#include <string_view>

namespace Vz {
namespace {

struct TSurfaceEnd {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using TSurface = std::unique_ptr<cairo_surface_t, TSurfaceEnd>;

cairo_status_t WriteBytes(void* text, const unsigned char* data, unsigned length) {
    try {
        static_cast<std::string*>(text)->append(reinterpret_cast<const char*>(data), length);
    } catch (const std::bad_alloc&) {
        return CAIRO_STATUS_NO_MEMORY;
    }
    return CAIRO_STATUS_SUCCESS;
}

cairo_status_t ReadBytes(void* rest, unsigned char* data, unsigned length) {
    auto& bytes = *static_cast<std::span<const char>*>(rest);
    if (bytes.size() < length) return CAIRO_STATUS_READ_ERROR;
    std::memcpy(data, bytes.data(), length);
    bytes = bytes.subspan(length);
    return CAIRO_STATUS_SUCCESS;
}

/// Width and height from a PNG file's header (PNG 1.2, 11.2.2), looked at before anything is allocated for
/// them.
TSizeF ReadPngSize(std::span<const char> bytes) {
    constexpr std::string_view signature = "\x89PNG\r\n\x1a\n";
    constexpr std::size_t headerEnd = 33;
    const std::string_view text(bytes.data(), bytes.size());
    if (text.size() < headerEnd || !text.starts_with(signature) || text.substr(12, 4) != "IHDR")
        throw EReadError("not a PNG picture");
    const auto number = [&text](std::size_t offset) {
        std::uint32_t value = 0;
        for (const char c : text.substr(offset, 4))
            value = value << 8 | static_cast<unsigned char>(c);
        return value;
    };
    const std::uint32_t width = number(16), height = number(20);
    if (width == 0 || height == 0 || width > TVZGPBitmap::MaxExtent || height > TVZGPBitmap::MaxExtent ||
        std::uint64_t{width} * height > MaxPngPixels)
        throw EReadError("a PNG picture of " + std::to_string(width) + " by " + std::to_string(height) +
                         " pixels is too large");
    return {static_cast<float>(width), static_cast<float>(height)};
}

void CopyPixels(cairo_surface_t* surface, TVZGPBitmap& bitmap) {
    cairo_surface_flush(surface);
    const bool isOpaque = cairo_image_surface_get_format(surface) == CAIRO_FORMAT_RGB24;
    const unsigned char* source = cairo_image_surface_get_data(surface);
    const TPixels target = bitmap.GetPixels();
    for (int y = 0; y < target.Height; ++y) {
        std::memcpy(target.Row(y), source, static_cast<std::size_t>(target.Width) * sizeof(std::uint32_t));
        source += cairo_image_surface_get_stride(surface);
        if (isOpaque)
            std::for_each_n(target.Row(y), target.Width, [](std::uint32_t& pixel) { pixel |= 0xFF000000u; });
    }
}

} // namespace

TVZGPBitmap::TVZGPBitmap() = default;
TVZGPBitmap::TVZGPBitmap(unsigned width, unsigned height) { SetSize(width, height); }
TVZGPBitmap::~TVZGPBitmap() = default;

TPixels TVZGPBitmap::GetPixels() const {
    return {FPixels.Data(), static_cast<int>(FWidth), static_cast<int>(FHeight),
            static_cast<std::ptrdiff_t>(FWidth)};
}

std::string EncodePng(const TPixels& pixels) {
    const TSurface surface(cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(pixels.Data), CAIRO_FORMAT_ARGB32, pixels.Width, pixels.Height,
        static_cast<int>(pixels.Stride * static_cast<std::ptrdiff_t>(sizeof(std::uint32_t)))));
    std::string bytes;
    const cairo_status_t status = cairo_surface_write_to_png_stream(surface.get(), WriteBytes, &bytes);
    if (status != CAIRO_STATUS_SUCCESS)
        throw EWriteError(std::string("a PNG picture cannot be written: ") + cairo_status_to_string(status));
    return bytes;
}

std::uint64_t CountPngPixels(std::span<const char> bytes) {
    const TSizeF size = ReadPngSize(bytes);
    return static_cast<std::uint64_t>(size.Width) * static_cast<std::uint64_t>(size.Height);
}

std::unique_ptr<TVZGPBitmap> DecodePng(std::span<const char> bytes) {
    const TSizeF size = ReadPngSize(bytes);
    const TSurface surface(cairo_image_surface_create_from_png_stream(ReadBytes, &bytes));
    const cairo_status_t status = cairo_surface_status(surface.get());
    if (status != CAIRO_STATUS_SUCCESS)
        throw EReadError(std::string("a PNG picture cannot be read: ") + cairo_status_to_string(status));
    auto bitmap =
        std::make_unique<TVZGPBitmap>(static_cast<unsigned>(size.Width), static_cast<unsigned>(size.Height));
    CopyPixels(surface.get(), *bitmap);
    return bitmap;
}

} // namespace Vz
