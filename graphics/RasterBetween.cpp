// Drawing between two kept pictures. The lower one is laid down where the drawing is about to reach, row by
// row; at the end the upper one is laid over just that, and both as one over the rest.

#include "graphics/RasterStateInternal.h"

#include <algorithm>

namespace Vz {

namespace {

/// Lays columns of a picture over a row; `at` is the target's pixel of column `first`.
void LayRow(std::uint32_t* at, const TPixels& picture, int y, int first, int end) {
    if (first < end) RowOps().BlendRow(at, end - first, picture.Row(y) + first, 255);
}

/// Lays columns of both pictures as one over a row.
void LayBoth(std::uint32_t* at, const TLayerPair& layers, int y, int first, int end) {
    if (first >= end) return;
    const TLayerRow& row = layers.Rows()[static_cast<std::size_t>(y)];
    if (!row.IsExact) {
        LayRow(at, layers.Before(), y, first, end);
        LayRow(at, layers.After(), y, first, end);
        return;
    }
    const TPixels& both = layers.Both();
    const auto lay = [&](int from, int to) { LayRow(at + (from - first), both, y, from, to); };
    const int begin = std::max(first, row.UsedFirst);
    end = std::min(end, row.UsedEnd);
    const int opaque = std::clamp(row.OpaqueFirst, begin, std::max(begin, end));
    const int opaqueEnd = std::clamp(row.OpaqueEnd, opaque, std::max(opaque, end));
    lay(begin, opaque);
    std::copy(both.Row(y) + opaque, both.Row(y) + opaqueEnd, at + (opaque - first));
    lay(opaqueEnd, end);
}

} // namespace

bool TRasterState::BeginBetween(const TLayerPair& layers, int x, int y) {
    if (Between.Layers || Clip().Map) return false;
    const TPixels& pixels = layers.Before();
    Between.Layers = &layers;
    Between.Depth = Surfaces.Depth();
    Between.FirstRect = Clip().First;
    Between.EndRect = Clip().End;
    Between.X = x;
    Between.Y = y;
    Between.Box = Intersection({x, y, x + pixels.Width, y + pixels.Height}, ActiveBox());
    Between.Reached.assign(static_cast<std::size_t>(Between.Box.Height()), {});
    return true;
}

/// Lays the lower picture down for columns [left, right) of a row, where they lie in the box.
void TRasterState::Reach(int y, int left, int right) {
    const TRect& box = Between.Box;
    left = std::max(left, box.Left);
    right = std::min(right, box.Right);
    if (y < box.Top || y >= box.Bottom || left >= right) return;
    TBetween::TReach& reached = Between.Reached[static_cast<std::size_t>(y - box.Top)];
    if (left >= reached.Left && right <= reached.Right) return;
    const TSurface& surface = Surfaces.Top();
    const auto lay = [&](int from, int to) {
        // All that were open at the beginning: a clip of the drawing's own may leave out some in between.
        for (std::size_t i = Between.FirstRect; i < Between.EndRect; ++i) {
            const TRect& rect = surface.Rects[i];
            const int first = std::max(from, rect.Left);
            const int end = std::min(to, rect.Right);
            if (y >= rect.Top && y < rect.Bottom && first < end)
                LayRow(surface.At(first, y), Between.Layers->Before(), y - Between.Y, first - Between.X,
                       end - Between.X);
        }
    };
    if (reached.Left >= reached.Right) {
        lay(left, right);
        reached = {left, right};
        return;
    }
    lay(left, reached.Left);
    lay(reached.Right, right);
    reached = {std::min(left, reached.Left), std::max(right, reached.Right)};
}

/// False where the drawing between these pictures was not begun here.
bool TRasterState::EndBetween(const TLayerPair& layers) {
    if (Between.Layers != &layers || Between.Depth != Surfaces.Depth()) return false;
    const TSurface& surface = Surface();
    EachRow(Between.Box, [&](int y, int left, int right) {
        const TBetween::TReach& reached = Between.Reached[static_cast<std::size_t>(y - Between.Box.Top)];
        const int first = std::clamp(reached.Left, left, right);
        const int end = std::clamp(reached.Right, first, right);
        const int row = y - Between.Y;
        LayBoth(surface.At(left, y), layers, row, left - Between.X, first - Between.X);
        LayRow(surface.At(first, y), layers.After(), row, first - Between.X, end - Between.X);
        LayBoth(surface.At(end, y), layers, row, end - Between.X, right - Between.X);
    });
    Surface().Drawn = Union(Surface().Drawn, Between.Box);
    Between.Layers = nullptr;
    return true;
}

} // namespace Vz
