#include "tavro/graphics/raster/LayerPair.h"

#include "tavro/graphics/raster/RowOpsInternal.h"

#include <algorithm>

namespace Vz {

namespace {

bool IsOpaque(std::uint32_t pixel) { return pixel >> 24 == 255; }

constexpr int Block = 16; ///< pixels that are looked at in one go

/// The first column from `first` on that is not transparent, else `end`.
int FirstUsed(const std::uint32_t* row, int first, int end) {
    for (; first + Block <= end; first += Block) {
        std::uint32_t any = 0;
        for (int i = 0; i < Block; ++i)
            any |= row[first + i];
        if (any != 0) break;
    }
    while (first < end && row[first] == 0)
        ++first;
    return first;
}

/// One behind the last column before `end` that is not transparent, else `first`.
int EndOfUsed(const std::uint32_t* row, int first, int end) {
    for (; end - Block >= first; end -= Block) {
        std::uint32_t any = 0;
        for (int i = 1; i <= Block; ++i)
            any |= row[end - i];
        if (any != 0) break;
    }
    while (end > first && row[end - 1] == 0)
        --end;
    return end;
}

/// The first column from `first` on that is not opaque, else `end`.
int EndOfOpaque(const std::uint32_t* row, int first, int end) {
    for (; first + Block <= end; first += Block) {
        std::uint32_t all = ~0u;
        for (int i = 0; i < Block; ++i)
            all &= row[first + i];
        if (!IsOpaque(all)) break;
    }
    while (first < end && IsOpaque(row[first]))
        ++first;
    return first;
}

/// A box around the pixels that are not transparent.
TRect UsedPixels(const TPixels& pixels) {
    TRect used;
    for (int y = 0; y < pixels.Height; ++y) {
        const int first = FirstUsed(pixels.Row(y), 0, pixels.Width);
        used = Union(used, {first, y, EndOfUsed(pixels.Row(y), first, pixels.Width), y + 1});
    }
    return used;
}

/// The used columns of a row, and the longest run of opaque ones among them.
TLayerRow Describe(const std::uint32_t* row, int width) {
    TLayerRow found;
    found.UsedFirst = FirstUsed(row, 0, width);
    found.UsedEnd = EndOfUsed(row, found.UsedFirst, width);
    for (int at = found.UsedFirst; at < found.UsedEnd;) {
        const int end = EndOfOpaque(row, at, found.UsedEnd);
        if (end - at > found.OpaqueEnd - found.OpaqueFirst) {
            found.OpaqueFirst = at;
            found.OpaqueEnd = end;
        }
        at = end + 1;
    }
    return found;
}

/// True where no pixel of the upper row meets one that is neither opaque nor transparent.
bool MergesExactly(const std::uint32_t* lower, const std::uint32_t* upper, int first, int end) {
    for (int x = first; x < end; ++x)
        if (upper[x] != 0 && lower[x] != 0 && !IsOpaque(lower[x])) return false;
    return true;
}

} // namespace

void TLayerPair::Set(const TPixels& before, const TPixels& after) {
    FBefore = FBoth = before;
    FAfter = after;
    FBeforeUsed = UsedPixels(before);
    FAfterUsed = UsedPixels(after);
    FRows.assign(static_cast<std::size_t>(before.Height), {});
    FindAfterRuns();
    if (!FAfterUsed.IsEmpty()) Merge();
    for (int y = 0; y < before.Height; ++y) {
        TLayerRow& row = FRows[static_cast<std::size_t>(y)];
        row = Describe(FBoth.Row(y), FBoth.Width);
        for (const TLayerRun& run : AfterRuns(y))
            row.IsExact = row.IsExact && MergesExactly(before.Row(y), after.Row(y), run.First, run.End);
    }
}

void TLayerPair::FindAfterRuns() {
    constexpr int leastGap = 32;
    FAfterRuns.clear();
    FFirstRun.assign(1, 0);
    for (int y = 0; y < FAfter.Height; ++y) {
        const bool isIn = y >= FAfterUsed.Top && y < FAfterUsed.Bottom;
        const std::uint32_t* const row = FAfter.Row(y);
        const int end = isIn ? FAfterUsed.Right : 0;
        for (int at = 0; (at = FirstUsed(row, at, end)) < end;) {
            const bool isNear = FAfterRuns.size() > FFirstRun.back() && at - FAfterRuns.back().End < leastGap;
            if (!isNear) FAfterRuns.push_back({at, at});
            while (at < end && row[at] != 0)
                ++at;
            FAfterRuns.back().End = at;
        }
        FFirstRun.push_back(FAfterRuns.size());
    }
}

void TLayerPair::Merge() {
    const int width = FBefore.Width;
    const int height = FBefore.Height;
    FMerged.Resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    FBoth = {FMerged.Data(), width, height, width};
    for (int y = 0; y < height; ++y) {
        std::copy_n(FBefore.Row(y), width, FBoth.Row(y));
        if (y >= FAfterUsed.Top && y < FAfterUsed.Bottom)
            RowOps().BlendRow(FBoth.Row(y) + FAfterUsed.Left, FAfterUsed.Width(),
                              FAfter.Row(y) + FAfterUsed.Left, 255);
    }
}

// What a paint device does that has no way of its own to draw between two layers.

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
