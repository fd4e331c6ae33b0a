#include "tavro/graphics/raster/StateInternal.h"

#include "tavro/graphics/raster/BlendModesInternal.h"

#include <algorithm>
#include <array>

namespace Vz {

namespace {

/// States at rest. Devices nest where one picture is drawn in the course of another; more than these are not
/// kept.
struct TPool {
    static constexpr std::size_t Most = 4;
    std::array<TRasterState*, Most> States{};
    std::size_t Count = 0;
    ~TPool();
};

/// Set when the thread's pool is gone: devices may outlive it in the thread's last moments.
thread_local bool PoolGone = false;
thread_local TPool Pool;

TPool::~TPool() {
    PoolGone = true;
    for (std::size_t i = 0; i < Count; ++i)
        delete States[i];
}

// A state at rest keeps at most MostKept bytes, and gives them back when it has been used SpareUses times on
// end for less than a quarter of them.
constexpr std::size_t AlwaysKept = std::size_t{1} << 20;
constexpr std::size_t MostKept = std::size_t{1} << 26;
constexpr int SpareUses = 32;

template <class T> std::size_t Capacity(const std::vector<T>& v) { return v.capacity() * sizeof(T); }

} // namespace

TRasterState* TRasterState::Take(const TPixels& target, std::span<const TRect> region) {
    TRasterState* state = !PoolGone && Pool.Count > 0 ? Pool.States[--Pool.Count] : new TRasterState;
    state->SetUp(target, region);
    return state;
}

void TRasterState::GiveBack(TRasterState* state) {
    while (state->Surfaces.Depth() > 1) // a caller that gave up halfway
        state->EndSurface([](const TSurface&) {});
    if (state->Between.Layers && state->Between.Clears) state->ClearOnDemand(state->FClearPixel);
    state->ClearRest();
    state->Shrink();
    if (PoolGone || Pool.Count == TPool::Most)
        delete state;
    else
        Pool.States[Pool.Count++] = state;
}

void TRasterState::SetUp(const TPixels& target, std::span<const TRect> region) {
    Surfaces.Clear();
    Clips.Clear();
    Between.Layers = nullptr;
    FUncleared = 0;
    Target = target.Data ? target.Bounds() : TRect{};
    TSurface& surface = Surfaces.Push();
    surface.Box = Target;
    surface.Pixels = target;
    surface.Rects.clear();
    for (const TRect& rect : region)
        if (const TRect part = Intersection(rect, Target); !part.IsEmpty()) surface.Rects.push_back(part);
    surface.Drawn = {};
    PushClipBox(Target, nullptr);
    const std::size_t width = static_cast<std::size_t>(3 * std::max(Target.Right, 1)) + 2 * TCoverage::Margin;
    if (CoverageRow.size() < width) CoverageRow.resize(width);
    if (PixelRow.size() < width) PixelRow.resize(width);
}

// Clips.

void TRasterState::PushClipBox(const TRect& box, const TCoverageMap* map) {
    TClipLevel& level = Clips.Push();
    level.Box = box;
    level.Map = map;
    level.Active = {};
    level.First = level.End = 0;
    const std::vector<TRect>& rects = Surface().Rects;
    for (std::size_t i = 0; i < rects.size(); ++i) {
        const TRect open = Intersection(rects[i], box);
        if (open.IsEmpty()) continue;
        if (level.End == 0) level.First = i;
        level.End = i + 1;
        level.Active = Union(level.Active, open);
    }
}

void TRasterState::PushClip(std::span<const TClipShape> shapes) {
    const TRect active = ActiveBox();
    const TCoverageMap* outer = Clip().Map;
    const auto setShape = [this](const TClipShape& clip) {
        const TPolygons& polygons = Flatten(clip.Shape, FlatteningScale(clip.Matrix), Polygons);
        Coverage.SetShape(polygons, clip.Matrix);
    };
    TRect box;
    for (const TClipShape& clip : shapes) {
        if (!clip.Matrix.IsInvertible()) continue;
        setShape(clip);
        box = Union(box, Intersection(PixelBounds(Coverage.Bounds()), active));
    }
    if (shapes.size() == 1 && !box.IsEmpty())
        if (const TRect whole = Coverage.WholePixels(); !whole.IsEmpty()) {
            PushClipBox(Intersection(whole, active), outer);
            return;
        }
    PushClipBox(box, nullptr);
    if (box.IsEmpty()) return;
    TClipLevel& level = Clips.Top();
    level.Own.Box = box;
    level.Own.Values.assign(std::size_t(box.Width()) * std::size_t(box.Height()) + TCoverage::Margin, 0);
    level.Map = &level.Own;
    NoteUse(level.Own.Values.size());
    for (const TClipShape& clip : shapes) {
        if (!clip.Matrix.IsInvertible()) continue;
        if (shapes.size() > 1) setShape(clip);
        AddToClip(level.Own, clip.Shape.Stroke ? TFillRule::NonZero : clip.Shape.Rule);
    }
    if (!outer) return;
    for (int y = box.Top; y < box.Bottom; ++y)
        RowOps().MultiplyCoverage(level.Own.At(box.Left, y), outer->At(box.Left, y), box.Width());
}

/// Adds the coverage's shape to a map as if it were painted there.
void TRasterState::AddToClip(TCoverageMap& map, TFillRule rule) {
    Coverage.Begin(map.Box);
    for (auto rows = Coverage.Next(); !rows.empty(); rows = Coverage.Next())
        for (const TCoverageRow& row : rows) {
            const std::uint8_t* values = CoverageRow.data();
            RowOps().Resolve(row, rule, CoverageRow.data());
            std::uint8_t* out = map.At(row.X, row.Y);
            for (int i = 0; i < row.Count; ++i)
                out[i] = static_cast<std::uint8_t>(out[i] + MulDiv255(values[i], 255u - out[i]));
        }
}

// Surfaces.

TSurface& TRasterState::PushSurface(const TRect& box) {
    const TSurface& under = Surface();
    TSurface& layer = Surfaces.Push();
    layer.Box = box;
    layer.Drawn = {};
    layer.Opacity = 255;
    layer.Blend = TBlendMode::Normal;
    const std::size_t size = box.IsEmpty() ? 0 : std::size_t(box.Width()) * std::size_t(box.Height());
    if (layer.Store.size() < size) layer.Store.resize(size);
    NoteUse(size * sizeof(std::uint32_t));
    layer.Pixels = {layer.Store.data(), box.Width(), box.Height(), box.Width()};
    layer.Rects.clear();
    for (const TRect& rect : under.Rects)
        if (const TRect part = Intersection(rect, box); !part.IsEmpty()) layer.Rects.push_back(part);
    PushClipBox(box, nullptr);
    return layer;
}

/// Makes a layer's pixels transparent again.
void TRasterState::Forget(TSurface& layer) {
    const TRect& drawn = layer.Drawn;
    for (int y = drawn.Top; y < drawn.Bottom; ++y)
        std::fill_n(layer.At(drawn.Left, y), drawn.Width(), 0u);
}

/// Lays a layer (taken off the stack, its pixels still there) onto the surface in force.
void TRasterState::LayDown(const TSurface& layer) {
    const TRowOps& ops = RowOps();
    const TCoverageMap* map = Clip().Map;
    TSurface& under = Surface();
    under.Drawn = Union(under.Drawn, Intersection(layer.Drawn, Clip().Box));
    EachRow(layer.Drawn, [&](int y, int left, int right) {
        AboutToChange(y, left, right);
        const std::uint32_t* pixels = layer.At(left, y);
        std::uint32_t* row = under.At(left, y);
        const int count = right - left;
        const std::uint8_t* coverage = map ? map->At(left, y) : nullptr;
        if (layer.Blend != TBlendMode::Normal) {
            BlendRowInMode(layer.Blend, row, count, pixels, layer.Opacity, coverage);
        } else if (!map) {
            ops.BlendRow(row, count, pixels, layer.Opacity);
        } else {
            std::fill_n(CoverageRow.data(), count, static_cast<std::uint8_t>(layer.Opacity));
            ops.MultiplyCoverage(CoverageRow.data(), coverage, count);
            ops.BlendCovered(row, count, pixels, CoverageRow.data());
        }
    });
}

void TRasterState::ApplyMask(const TSurface& mask) {
    TSurface& under = Surface();
    const TRect box = Surfaces.Depth() > 1 ? under.Drawn : under.Box;
    for (const TRect& rect : under.Rects) {
        const TRect part = Intersection(rect, box);
        for (int y = part.Top; y < part.Bottom; ++y) {
            AboutToChange(y, part.Left, part.Right);
            MaskCoverage(mask.MaskKind, mask.At(part.Left, y), part.Width(), CoverageRow.data());
            std::uint32_t* row = under.At(part.Left, y);
            for (int i = 0; i < part.Width(); ++i)
                row[i] = ScalePixel(row[i], CoverageRow[static_cast<std::size_t>(i)]);
        }
    }
}

// Shapes.

void TRasterState::Fill(TFillRule rule, const TPaintSource& source) {
    TSurface& surface = Surface();
    const TRect shape = Intersection(PixelBounds(Coverage.Bounds()), Clip().Box);
    for (const TRect& rect : OpenRects()) {
        const TRect box = Intersection(rect, shape);
        if (box.IsEmpty()) continue;
        surface.Drawn = Union(surface.Drawn, box);
        Coverage.Begin(box);
        FMostUsed = std::max(FMostUsed, FLayerBytes + Coverage.UsedBytes());
        FillBox(box, rule, source);
    }
}

void TRasterState::FillBox(const TRect& box, TFillRule rule, const TPaintSource& source) {
    const TSurface& surface = Surface();
    TFillJob job;
    job.Rule = rule;
    job.Right = box.Right;
    job.Left = surface.Box.Left;
    job.Top = surface.Box.Top;
    job.Pixels = surface.Pixels.Data;
    job.Stride = surface.Pixels.Stride;
    if (const TCoverageMap* map = Clip().Map) {
        job.Clip = map->Values.data();
        job.ClipLeft = map->Box.Left;
        job.ClipTop = map->Box.Top;
        job.ClipStride = map->Box.Width();
    }
    while (!(job.Rows = Coverage.Next()).empty()) {
        AboutToChange(job.Rows);
        if (source.Fills())
            source.Fill(job);
        else
            FetchRows(job, source);
    }
}

/// Paints rows whose pixels are dear: only those that are covered are fetched.
void TRasterState::FetchRows(const TFillJob& job, const TPaintSource& source) {
    const TRowOps& ops = RowOps();
    const auto isCovered = [](std::uint8_t c) { return c != 0; };
    std::uint8_t* coverage = CoverageRow.data();
    for (const TCoverageRow& row : job.Rows) {
        ops.Resolve(row, job.Rule, coverage);
        if (job.Clip) ops.MultiplyCoverage(coverage, job.ClipOf(row), row.Count);
        const std::uint8_t* end = coverage + row.Count;
        for (const std::uint8_t* first = coverage; (first = std::find_if(first, end, isCovered)) != end;) {
            const std::uint8_t* last = std::find(first, end, 0);
            const int start = static_cast<int>(first - coverage);
            const int count = static_cast<int>(last - first);
            source.Fetch(row.X + start, row.Y, count, PixelRow.data(), Scratch);
            ops.BlendCovered(job.PixelsOf(row) + start, count, PixelRow.data(), first);
            first = last;
        }
    }
}

// Working memory.

std::size_t TRasterState::HeldBytes() const {
    std::size_t bytes =
        Coverage.HeldBytes() + Capacity(Polygons.Points) + Capacity(Scratch.Sums) + Capacity(Scratch.BoxSums);
    for (const auto& surface : Surfaces.Kept())
        bytes += Capacity(surface->Store);
    for (const auto& clip : Clips.Kept())
        bytes += Capacity(clip->Own.Values);
    return bytes;
}

/// Gives memory back after a picture that was much greater than those that follow it.
void TRasterState::Shrink() {
    const std::size_t held = HeldBytes();
    const bool isSpare = held > AlwaysKept && held / 4 > FMostUsed;
    FSpareUses = isSpare ? FSpareUses + 1 : 0;
    FMostUsed = 0;
    FLayerBytes = 0;
    if (held <= MostKept && FSpareUses < SpareUses) return;
    FSpareUses = 0;
    Coverage = {};
    Polygons = {};
    Scratch = {};
    Surfaces = {};
    Clips = {};
}

} // namespace Vz
