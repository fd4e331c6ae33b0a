#include "tests/support/PictureCompare.h"

#include <algorithm>
#include <cstdlib>

namespace Vz::Test {

namespace {

int WorstChannel(std::uint32_t a, std::uint32_t b) {
    int worst = 0;
    for (int shift = 0; shift < 32; shift += 8)
        worst = std::max(worst, std::abs(int(a >> shift & 255) - int(b >> shift & 255)));
    return worst;
}

} // namespace

std::string TDifference::ToText() const {
    if (!HasSameSize) return "another size";
    return std::to_string(Count) + " pixels differ, the worst by " + std::to_string(Worst) + " at " +
           std::to_string(X) + "," + std::to_string(Y);
}

TDifference Compare(const TPixels& expected, const TPixels& actual, int limit) {
    TDifference difference;
    difference.HasSameSize = expected.Width == actual.Width && expected.Height == actual.Height;
    if (!difference.HasSameSize) return difference;
    for (int y = 0; y < expected.Height; ++y)
        for (int x = 0; x < expected.Width; ++x) {
            const int worst = WorstChannel(expected.Row(y)[x], actual.Row(y)[x]);
            difference.Count += worst > limit;
            if (worst > difference.Worst) {
                difference.Worst = worst;
                difference.X = x;
                difference.Y = y;
            }
        }
    return difference;
}

std::unique_ptr<TVZGPBitmap> DifferencePicture(const TPixels& expected, const TPixels& actual, int limit) {
    const int width = std::min(expected.Width, actual.Width);
    const int height = std::min(expected.Height, actual.Height);
    auto picture = std::make_unique<TVZGPBitmap>(unsigned(width), unsigned(height));
    const TPixels pixels = picture->GetPixels();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::uint32_t color = expected.Row(y)[x];
            const unsigned faint = 255 - AlphaOf(color) / 8;
            pixels.Row(y)[x] = WorstChannel(color, actual.Row(y)[x]) > limit
                                   ? 0xFFFF0000
                                   : MakeColor(255, faint, faint, faint);
        }
    return picture;
}

} // namespace Vz::Test
