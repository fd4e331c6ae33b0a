#pragma once

#include "tavro/graphics/Bitmap.h"

#include <span>
#include <vector>

namespace Vz {

/// What is known of a row of a picture, by columns.
struct TLayerRow {
    int UsedFirst = 0, UsedEnd = 0;     ///< the others are transparent
    int OpaqueFirst = 0, OpaqueEnd = 0; ///< these are opaque
    /// Laying the merged row down gives what laying down the lower one and then the upper one does. Not so
    /// where the upper one meets pixels that are neither opaque nor transparent: those round once more.
    bool IsExact = true;
};

/// Columns First .. End - 1 of a row.
struct TLayerRun {
    int First = 0, End = 0;
};

/// Two pictures of one size that are kept while what lies between them is drawn again and again, and both as
/// one, for the pixels that the drawing does not reach. Looks at the pictures and owns nothing but what it
/// makes of them.
class TLayerPair {
public:
    /// Takes two pictures of one size, to be called again after each of their changes.
    void Set(const TPixels& before, const TPixels& after);

    const TPixels& Before() const { return FBefore; }
    const TPixels& After() const { return FAfter; }
    /// The upper picture laid over the lower one.
    const TPixels& Both() const { return FBoth; }
    /// One a row, of the merged picture.
    std::span<const TLayerRow> Rows() const { return FRows; }
    /// What of a row of the upper picture is not transparent, but for short gaps.
    std::span<const TLayerRun> AfterRuns(int y) const {
        const auto row = static_cast<std::size_t>(y);
        return std::span(FAfterRuns).subspan(FFirstRun[row], FFirstRun[row + 1] - FFirstRun[row]);
    }
    /// The boxes around what is not transparent.
    const TRect& BeforeUsed() const { return FBeforeUsed; }
    const TRect& AfterUsed() const { return FAfterUsed; }

private:
    void Merge();
    void FindAfterRuns();

    TPixels FBefore, FAfter, FBoth;
    TRect FBeforeUsed, FAfterUsed;
    TPixelStore FMerged; ///< empty where the upper picture is
    std::vector<TLayerRow> FRows;
    std::vector<TLayerRun> FAfterRuns;  ///< from top to bottom
    std::vector<std::size_t> FFirstRun; ///< one a row, and one more
};

} // namespace Vz
