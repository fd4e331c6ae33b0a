#pragma once

#include "tavro/graphics/Geometry.h"
#include "tavro/graphics/PathData.h"

namespace Vz {

class TSVGPath;

/// Repeats a figure round a centre or along a step. The k-th copy is k steps from the source, which stays as
/// it is. Angles are degrees, clockwise; offsets and centres are in the figure's units. A count of 0 or less
/// makes no copy, and neither do angles and offsets that are not finite.
class TSVGGraphicsFactory {
public:
    TSVGGraphicsFactory() = delete;

    /// Adds the copies to the path data, behind its figures; its owner is told once.
    static void Duplicate(TVZPathData* pathData, const TPointF& center, float angleDeg, int count);
    static void Duplicate(TVZPathData* pathData, float dx, float dy, int count);
    /// Adds the copies as elements of their own beside the path, each cloned from the one before and drawn
    /// after it. Raises EInvalidCast where a clone is no path, EInvalidOperation where the path stands in no
    /// tree.
    static void Duplicate(TSVGPath* path, const TPointF& center, float angleDeg, int count);
    static void Duplicate(TSVGPath* path, float dx, float dy, int count);
};

} // namespace Vz
