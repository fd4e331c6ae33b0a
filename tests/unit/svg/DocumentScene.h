#pragma once

#include "tavro/svg/model/Document.h"
#include "tavro/svg/model/Gradients.h"
#include "tavro/svg/model/Shapes.h"
#include "tavro/svg/model/TextElements.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace Vz::Test {

inline constexpr float NoNumber = std::numeric_limits<float>::quiet_NaN();
inline constexpr float Endless = std::numeric_limits<float>::infinity();

/// A document with this content in an svg element of 100 by 100 pixels.
inline std::string SvgText(std::string_view content,
                           std::string_view attributes = "width='100' height='100'") {
    return "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' " +
           std::string(attributes) + ">" + std::string(content) + "</svg>";
}

inline std::unique_ptr<TSVGDocument> LoadText(std::string_view text) {
    auto document = std::make_unique<TSVGDocument>();
    document->LoadFromText(text);
    return document;
}

inline std::unique_ptr<TSVGDocument> LoadContent(std::string_view content,
                                                 std::string_view attributes = "width='100' height='100'") {
    return LoadText(SvgText(content, attributes));
}

/// What was drawn, premultiplied.
struct TDrawing {
    int Width = 0;
    std::vector<std::uint32_t> Pixels;

    std::uint32_t At(int x, int y) const { return Pixels.at(static_cast<std::size_t>(y * Width + x)); }
    bool IsEmpty() const {
        return std::ranges::all_of(Pixels, [](std::uint32_t p) { return p == 0; });
    }
    bool operator==(const TDrawing&) const = default;
};

inline TDrawing DrawingOf(const TVZGPBitmap& bitmap) {
    const TPixels pixels = bitmap.GetPixels();
    TDrawing drawing{pixels.Width, {}};
    for (int y = 0; y < pixels.Height; ++y)
        drawing.Pixels.insert(drawing.Pixels.end(), pixels.Row(y), pixels.Row(y) + pixels.Width);
    return drawing;
}

/// The whole document on transparent pixels; `matrix` maps its natural pixels to them.
inline TDrawing Drawn(const TSVGDocument& document, unsigned width = 100, unsigned height = 100,
                      const TAffine& matrix = {}) {
    TVZGPBitmap bitmap(width, height);
    document.Draw(bitmap.GetCanvas(), matrix, {0, 0, float(width), float(height)});
    return DrawingOf(bitmap);
}

/// The greatest difference of a channel, 0..255; 256 where the sizes differ.
inline int GreatestDifference(const TDrawing& a, const TDrawing& b) {
    if (a.Width != b.Width || a.Pixels.size() != b.Pixels.size()) return 256;
    int worst = 0;
    for (std::size_t i = 0; i < a.Pixels.size(); ++i)
        for (int shift = 0; shift < 32; shift += 8)
            worst = std::max(worst,
                             std::abs(int(a.Pixels[i] >> shift & 255u) - int(b.Pixels[i] >> shift & 255u)));
    return worst;
}

/// Collects what a document tells its listener.
struct TNotices {
    std::vector<TSVGChange> All;

    explicit TNotices(TSVGDocument& document) {
        document.OnChange = [this](const TSVGChange& change) { All.push_back(change); };
    }
    /// How many there were since the last call.
    std::size_t Take() {
        const std::size_t count = All.size();
        All.clear();
        return count;
    }
};

} // namespace Vz::Test
