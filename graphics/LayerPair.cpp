#include "graphics/LayerPair.h"

#include "graphics/RowOpsInternal.h"

#include <algorithm>

namespace Vz {

namespace {

bool IsOpaque(std::uint32_t pixel) { return pixel >> 24 == 255; }

/// The run of columns [first, end) with everything for which `holds` outside of it cut off at both ends.
template <class TTest> void Trim(const std::uint32_t* row, int& first, int& end, TTest holds) {
    while (first < end && holds(row[first]))
        ++first;
    while (end > first && holds(row[end - 1]))
        --end;
}

/// A box around the pixels that are not transparent.
TRect UsedPixels(const TPixels& pixels) {
    TRect used;
    for (int y = 0; y < pixels.Height; ++y) {
        int first = 0;
        int end = pixels.Width;
        Trim(pixels.Row(y), first, end, [](std::uint32_t pixel) { return pixel == 0; });
        used = Union(used, {first, y, end, y + 1});
    }
    return used;
}

/// The used columns of a row, and the longest run of opaque ones among them.
TLayerRow Describe(const std::uint32_t* row, int width) {
    TLayerRow found;
    found.UsedEnd = width;
    Trim(row, found.UsedFirst, found.UsedEnd, [](std::uint32_t pixel) { return pixel == 0; });
    const std::uint32_t* const end = row + found.UsedEnd;
    for (const std::uint32_t* at = row + found.UsedFirst; (at = std::find_if(at, end, IsOpaque)) != end;) {
        const std::uint32_t* const last = std::find_if_not(at, end, IsOpaque);
        if (last - at > found.OpaqueEnd - found.OpaqueFirst) {
            found.OpaqueFirst = static_cast<int>(at - row);
            found.OpaqueEnd = static_cast<int>(last - row);
        }
        at = last;
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
        if (y >= FAfterUsed.Top && y < FAfterUsed.Bottom)
            row.IsExact = MergesExactly(before.Row(y), after.Row(y), FAfterUsed.Left, FAfterUsed.Right);
    }
}

void TLayerPair::FindAfterRuns() {
    constexpr int leastGap = 32;
    const auto isUsed = [](std::uint32_t pixel) { return pixel != 0; };
    FAfterRuns.clear();
    FFirstRun.assign(1, 0);
    for (int y = 0; y < FAfter.Height; ++y) {
        const bool isIn = y >= FAfterUsed.Top && y < FAfterUsed.Bottom;
        const std::uint32_t* const row = FAfter.Row(y);
        const std::uint32_t* const end = row + (isIn ? FAfterUsed.Right : 0);
        for (const std::uint32_t* at = row; (at = std::find_if(at, end, isUsed)) < end;) {
            const std::uint32_t* const last = std::find(at, end, 0u);
            const int first = static_cast<int>(at - row);
            const bool isNear =
                FAfterRuns.size() > FFirstRun.back() && first - FAfterRuns.back().End < leastGap;
            if (!isNear) FAfterRuns.push_back({first, first});
            FAfterRuns.back().End = static_cast<int>(last - row);
            at = last;
        }
        FFirstRun.push_back(FAfterRuns.size());
    }
}

void TLayerPair::Merge() {
    const int width = FBefore.Width;
    const int height = FBefore.Height;
    FMerged.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    FBoth = {FMerged.data(), width, height, width};
    for (int y = 0; y < height; ++y) {
        std::copy_n(FBefore.Row(y), width, FBoth.Row(y));
        if (y >= FAfterUsed.Top && y < FAfterUsed.Bottom)
            RowOps().BlendRow(FBoth.Row(y) + FAfterUsed.Left, FAfterUsed.Width(),
                              FAfter.Row(y) + FAfterUsed.Left, 255);
    }
}

} // namespace Vz
