#pragma once

#include "tavro/graphics/Geometry.h"

#include <span>
#include <vector>

namespace Vz {

/// A set of pixels as disjoint rectangles, ordered by top and then left. A region of more than MaxRects
/// rectangles becomes its bounding box.
class TRegion {
public:
    static constexpr std::size_t MaxRects = 2048;

    TRegion() = default;
    explicit TRegion(const TRect& rect) { Add(rect); }

    bool IsEmpty() const { return FRects.empty(); }
    std::span<const TRect> Rects() const { return FRects; }
    TRect Bounds() const;
    bool Contains(std::int32_t x, std::int32_t y) const;
    bool Intersects(const TRect& rect) const;
    void Add(const TRect& rect);
    void Add(const TRegion& region);
    void Intersect(const TRect& rect);
    void Offset(std::int32_t dx, std::int32_t dy);
    void Clear() { FRects.clear(); }

private:
    std::vector<TRect> FRects;
};

} // namespace Vz
