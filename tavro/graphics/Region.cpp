#include "tavro/graphics/Region.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Vz {

namespace {

/// What a new rectangle has that others do not, under construction, without memory of its own.
struct TPieces {
    static constexpr std::size_t Most = 256;
    std::array<TRect, Most> Rects;
    std::size_t Count = 0;
    bool TooMany = false;

    void Add(const TRect& rect) {
        if (rect.IsEmpty()) return;
        TooMany = TooMany || Count == Most;
        if (!TooMany) Rects[Count++] = rect;
    }
    /// Adds what is left of `rect` when `hole` is taken out.
    void AddWithout(const TRect& rect, const TRect& hole) {
        const TRect both = Intersection(rect, hole);
        if (both.IsEmpty()) {
            Add(rect);
            return;
        }
        Add({rect.Left, rect.Top, rect.Right, both.Top});
        Add({rect.Left, both.Top, both.Left, both.Bottom});
        Add({both.Right, both.Top, rect.Right, both.Bottom});
        Add({rect.Left, both.Bottom, rect.Right, rect.Bottom});
    }
};

bool Encloses(const TRect& outer, const TRect& inner) {
    return outer.Left <= inner.Left && outer.Top <= inner.Top && outer.Right >= inner.Right &&
           outer.Bottom >= inner.Bottom;
}

/// True where the rectangles share pixels or sides.
bool Touches(const TRect& a, const TRect& b) {
    return a.Left <= b.Right && b.Left <= a.Right && a.Top <= b.Bottom && b.Top <= a.Bottom;
}

/// One rectangle of a and b where they make one together.
bool Join(TRect& a, const TRect& b) {
    const bool below = a.Left == b.Left && a.Right == b.Right && (a.Bottom == b.Top || b.Bottom == a.Top);
    const bool beside = a.Top == b.Top && a.Bottom == b.Bottom && (a.Right == b.Left || b.Right == a.Left);
    if (below || beside) a = Union(a, b);
    return below || beside;
}

bool IsBefore(const TRect& a, const TRect& b) { return a.Top != b.Top ? a.Top < b.Top : a.Left < b.Left; }

/// Adds a rectangle that meets no other, joined with those that make one with it.
void Insert(std::vector<TRect>& rects, TRect rect) {
    for (auto other = rects.begin(); other != rects.end();) {
        if (Join(rect, *other)) {
            rects.erase(other);
            other = rects.begin();
        } else
            ++other;
    }
    rects.insert(std::upper_bound(rects.begin(), rects.end(), rect, IsBefore), rect);
}

} // namespace

TRect TRegion::Bounds() const {
    TRect box;
    for (const TRect& rect : FRects)
        box = Union(box, rect);
    return box;
}

bool TRegion::Contains(std::int32_t x, std::int32_t y) const {
    return std::any_of(FRects.begin(), FRects.end(), [x, y](const TRect& r) {
        return x >= r.Left && x < r.Right && y >= r.Top && y < r.Bottom;
    });
}

bool TRegion::Intersects(const TRect& rect) const {
    return std::any_of(FRects.begin(), FRects.end(),
                       [&rect](const TRect& r) { return !Intersection(r, rect).IsEmpty(); });
}

void TRegion::Add(const TRect& rect) {
    if (rect.IsEmpty()) return;
    const bool isApart =
        std::none_of(FRects.begin(), FRects.end(), [&rect](const TRect& r) { return Touches(r, rect); });
    if (isApart && FRects.size() < MaxRects) { // as the regions of many controls are
        FRects.insert(std::upper_bound(FRects.begin(), FRects.end(), rect, IsBefore), rect);
        return;
    }
    std::erase_if(FRects, [&rect](const TRect& r) { return Encloses(rect, r); });
    TPieces pieces[2];
    TPieces* current = &pieces[0];
    TPieces* next = &pieces[1];
    current->Add(rect);
    for (const TRect& old : FRects) {
        if (Intersection(old, rect).IsEmpty()) continue;
        next->Count = 0;
        for (std::size_t i = 0; i < current->Count; ++i)
            next->AddWithout(current->Rects[i], old);
        std::swap(current, next);
    }
    if (pieces[0].TooMany || pieces[1].TooMany) {
        FRects.assign(1, Union(Bounds(), rect));
        return;
    }
    for (std::size_t i = 0; i < current->Count; ++i)
        Insert(FRects, current->Rects[i]);
    if (FRects.size() > MaxRects) FRects.assign(1, Bounds());
}

void TRegion::Add(const TRegion& region) {
    if (this == &region) return;
    for (const TRect& rect : region.FRects)
        Add(rect);
}

void TRegion::Intersect(const TRect& rect) {
    for (TRect& own : FRects)
        own = Intersection(own, rect);
    std::erase_if(FRects, [](const TRect& r) { return r.IsEmpty(); });
    std::sort(FRects.begin(), FRects.end(), IsBefore);
}

void TRegion::Offset(std::int32_t dx, std::int32_t dy) {
    for (TRect& rect : FRects)
        rect = {rect.Left + dx, rect.Top + dy, rect.Right + dx, rect.Bottom + dy};
}

} // namespace Vz
