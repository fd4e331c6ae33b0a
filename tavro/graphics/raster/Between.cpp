// Drawing between two kept pictures. The lower one is laid down where the drawing is about to reach, row by
// row; at the end the upper one is laid over just that, and both as one over the rest. What was to be cleared
// before is not touched twice: there the pictures are copied.

#include "tavro/graphics/raster/StateInternal.h"

#include <algorithm>
#include <utility>

namespace Vz {

namespace {

/// Lays columns of a picture over a row; `at` is the target's pixel of column `first`.
void LayRow(std::uint32_t* at, const TPixels& picture, int y, int first, int end) {
    if (first < end) RowOps().BlendRow(at, end - first, picture.Row(y) + first, 255);
}

/// Lays columns of the upper picture over a row.
void LayAfter(std::uint32_t* at, const TLayerPair& layers, int y, int first, int end) {
    for (const TLayerRun& run : layers.AfterRuns(y)) {
        const int from = std::max(first, run.First);
        LayRow(at + (from - first), layers.After(), y, from, std::min(end, run.End));
    }
}

} // namespace

void TRasterState::ClearOnDemand(std::uint32_t pixel) {
    FClearPixel = pixel;
    FUncleared = Surface().Rects.size();
    FIsUncleared.assign(FUncleared, 1);
}

void TRasterState::ClearRest() {
    TSurface& surface = Surface();
    for (std::size_t i = 0; FUncleared > 0; ++i) {
        if (!FIsUncleared[i]) continue;
        const TRect& rect = surface.Rects[i];
        for (int y = rect.Top; y < rect.Bottom; ++y)
            std::fill_n(surface.At(rect.Left, y), rect.Width(), FClearPixel);
        surface.Drawn = Union(surface.Drawn, rect);
        --FUncleared;
    }
}

/// Takes over the clearing of a box: clears the rest of the rectangles that meet the clip. False where not
/// all of them are still to be cleared; then they are cleared now.
bool TRasterState::TakeUncleared(const TRect& box) {
    if (FUncleared == 0 || Surfaces.Depth() > 1) return false;
    const TClipLevel& clip = Clip();
    const auto isOpen = [&](std::size_t i) { return !Intersection(Surface().Rects[i], clip.Box).IsEmpty(); };
    for (std::size_t i = clip.First; i < clip.End; ++i)
        if (isOpen(i) && !FIsUncleared[i]) {
            ClearRest();
            return false;
        }
    TSurface& surface = Surface();
    for (std::size_t i = clip.First; i < clip.End; ++i) {
        if (!isOpen(i)) continue;
        FIsUncleared[i] = 0;
        --FUncleared;
        const TRect& rect = surface.Rects[i];
        const TRect inside = Intersection(rect, box);
        surface.Drawn = Union(surface.Drawn, rect);
        if (inside == rect) continue;
        for (int y = rect.Top; y < rect.Bottom; ++y) {
            const bool isBeside = y < inside.Top || y >= inside.Bottom;
            const int left = isBeside ? rect.Right : inside.Left;
            const int right = isBeside ? rect.Right : inside.Right;
            std::fill_n(surface.At(rect.Left, y), left - rect.Left, FClearPixel);
            std::fill_n(surface.At(right, y), rect.Right - right, FClearPixel);
        }
    }
    return true;
}

/// Lays columns of a picture down that is the lowest.
void TRasterState::LayUnder(std::uint32_t* at, const TPixels& picture, int y, int first, int end) const {
    if (first >= end) return;
    if (Copies()) {
        std::copy(picture.Row(y) + first, picture.Row(y) + end, at);
        return;
    }
    if (Between.Clears) std::fill_n(at, end - first, FClearPixel);
    LayRow(at, picture, y, first, end);
}

/// Lays columns of both pictures as one over a row.
void TRasterState::LayBoth(std::uint32_t* at, int y, int first, int end) const {
    if (first >= end) return;
    const TLayerPair& layers = *Between.Layers;
    const TLayerRow& row = layers.Rows()[static_cast<std::size_t>(y)];
    if (!row.IsExact) {
        LayUnder(at, layers.Before(), y, first, end);
        LayAfter(at, layers, y, first, end);
        return;
    }
    const TPixels& both = layers.Both();
    if (Between.Clears) {
        LayUnder(at, both, y, first, end);
        return;
    }
    const auto lay = [&](int from, int to) { LayRow(at + (from - first), both, y, from, to); };
    const int begin = std::max(first, row.UsedFirst);
    end = std::min(end, row.UsedEnd);
    const int opaque = std::clamp(row.OpaqueFirst, begin, std::max(begin, end));
    const int opaqueEnd = std::clamp(row.OpaqueEnd, opaque, std::max(opaque, end));
    lay(begin, opaque);
    std::copy(both.Row(y) + opaque, both.Row(y) + opaqueEnd, at + (opaque - first));
    lay(opaqueEnd, end);
}

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
    Between.Clears = TakeUncleared(Between.Box);
    return true;
}

/// Lays the lower picture down for columns [left, right) of a row of the box.
void TRasterState::LayBefore(int y, int left, int right) const {
    const TSurface& surface = Surfaces.Top();
    // All rectangles that were open at the beginning: a clip of the drawing's own may leave out some.
    for (std::size_t i = Between.FirstRect; i < Between.EndRect; ++i) {
        const TRect& rect = surface.Rects[i];
        const int first = std::max(left, rect.Left);
        const int end = std::min(right, rect.Right);
        if (y >= rect.Top && y < rect.Bottom && first < end)
            LayUnder(surface.At(first, y), Between.Layers->Before(), y - Between.Y, first - Between.X,
                     end - Between.X);
    }
}

/// Makes sure that the lower picture lies in columns [left, right) of a row of the box, and some beside them:
/// what is drawn next may reach a little further.
void TRasterState::Reach(int y, int left, int right) {
    constexpr int grain = 16;
    const TRect& box = Between.Box;
    TBetween::TReach& reached = Between.Reached[static_cast<std::size_t>(y - box.Top)];
    left = std::max((left - 1) & -grain, box.Left);
    right = std::min((right + grain) & -grain, box.Right);
    if (left >= right) return;
    if (reached.IsEmpty()) {
        LayBefore(y, left, right);
        reached = {left, right};
        return;
    }
    if (left < reached.Left) LayBefore(y, left, std::exchange(reached.Left, left));
    if (right > reached.Right) LayBefore(y, std::exchange(reached.Right, right), right);
}

/// Copies rows of the merged picture down from row y of `part` as long as they are unreached. Gives the first
/// that is not done.
int TRasterState::CopyUnreached(const TRect& part, int y) const {
    const TPixels& both = Between.Layers->Both();
    const TSurface& surface = Surfaces.Top();
    int count = 1;
    while (y + count < part.Bottom && IsUnreached(y + count))
        ++count;
    const std::uint32_t* from = both.Row(y - Between.Y) + (part.Left - Between.X);
    std::uint32_t* to = surface.At(part.Left, y);
    if (part.Width() == both.Stride && both.Stride == surface.Pixels.Stride) {
        std::copy_n(from, count * both.Stride, to);
        return y + count;
    }
    for (int i = 0; i < count; ++i, from += both.Stride, to += surface.Pixels.Stride)
        std::copy_n(from, part.Width(), to);
    return y + count;
}

/// Lays down what is missing of columns [left, right) of a row when the drawing is done.
void TRasterState::FinishRow(int y, int left, int right) const {
    const TBetween::TReach& reached = ReachedIn(y);
    const int first = std::clamp(reached.Left, left, right);
    const int end = std::clamp(reached.Right, first, right);
    std::uint32_t* const at = Surfaces.Top().At(left, y);
    const int row = y - Between.Y;
    if (Copies() && Between.RowOf(y).IsExact) {
        const std::uint32_t* const both = Between.Layers->Both().Row(row) - Between.X;
        std::copy(both + left, both + first, at);
        std::copy(both + end, both + right, at + (end - left));
    } else {
        LayBoth(at, row, left - Between.X, first - Between.X);
        LayBoth(at + (end - left), row, end - Between.X, right - Between.X);
    }
    LayAfter(at + (first - left), *Between.Layers, row, first - Between.X, end - Between.X);
}

/// False where the drawing between these pictures was not begun here.
bool TRasterState::EndBetween(const TLayerPair& layers) {
    if (Between.Layers != &layers || Between.Depth != Surfaces.Depth()) return false;
    const TRect open = Intersection(Between.Box, Clip().Box);
    for (const TRect& rect : OpenRects()) {
        const TRect part = Intersection(rect, open);
        if (part.IsEmpty()) continue;
        for (int y = part.Top; y < part.Bottom; ++y) {
            if (Copies() && IsUnreached(y) && (y = CopyUnreached(part, y)) == part.Bottom) break;
            FinishRow(y, part.Left, part.Right);
        }
    }
    Surface().Drawn = Union(Surface().Drawn, Between.Box);
    Between.Layers = nullptr;
    return true;
}

} // namespace Vz
