#include "tavro/graphics/raster/CoverageInternal.h"

#include "tavro/graphics/raster/RowOpsInternal.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

/// Mapped points are held within this; beyond it a double no longer tells subpixels apart.
constexpr double Farthest = 3e10;

bool IsNear(const TPointD& p) { return std::abs(p.X) <= Farthest && std::abs(p.Y) <= Farthest; }

double Held(double v) { return std::clamp(v, -Farthest, Farthest); }

/// The nearest multiple of 1 / One of what is held. Sides that meet in a point then cover whole numbers that
/// sum up to nothing.
double Snapped(double y) {
    constexpr double magic = 0x1.8p52; // sums with it have no places behind the point
    return (y * TCoverage::One + magic - magic) / TCoverage::One;
}

template <class T> std::size_t Bytes(const std::vector<T>& v) { return v.size() * sizeof(T); }
template <class T> std::size_t Capacity(const std::vector<T>& v) { return v.capacity() * sizeof(T); }

} // namespace

void TCoverage::SetShape(const TPolygons& polygons, const TAffine& toDevice) {
    FPoints.clear();
    FStarts.assign(1, 0);
    for (std::size_t i = 0; i + 1 < polygons.Starts.size(); ++i) {
        const std::size_t start = FPoints.size();
        bool isFinite = true;
        for (std::uint32_t k = polygons.Starts[i]; isFinite && k < polygons.Starts[i + 1]; ++k) {
            TPointD p = toDevice(polygons.Points[k]);
            if (!IsNear(p)) {
                isFinite = std::isfinite(p.X) && std::isfinite(p.Y);
                if (!isFinite) break;
                p = {Held(p.X), Held(p.Y)};
            }
            FPoints.push_back({p.X, Snapped(p.Y)});
        }
        if (!isFinite || FPoints.size() - start < 3) {
            FPoints.resize(start);
            continue;
        }
        FStarts.push_back(static_cast<std::uint32_t>(FPoints.size()));
    }
    FBounds = {};
    if (FPoints.empty()) return;
    FBounds = {FPoints[0].X, FPoints[0].Y, FPoints[0].X, FPoints[0].Y};
    for (const TPointD& p : FPoints) {
        FBounds.Left = std::min(FBounds.Left, p.X);
        FBounds.Right = std::max(FBounds.Right, p.X);
        FBounds.Top = std::min(FBounds.Top, p.Y);
        FBounds.Bottom = std::max(FBounds.Bottom, p.Y);
    }
}

TRect TCoverage::WholePixels() const {
    if (FStarts.size() != 2 || FPoints.size() < 4 || FPoints.size() > 5) return {};
    if (FPoints.size() == 5 && FPoints.front() != FPoints.back()) return {};
    const auto isCorner = [this](const TPointD& p) {
        return (p.X == FBounds.Left || p.X == FBounds.Right) && (p.Y == FBounds.Top || p.Y == FBounds.Bottom);
    };
    for (std::size_t i = 0; i < 4; ++i) {
        const TPointD& p = FPoints[i];
        const TPointD& next = FPoints[(i + 1) % 4];
        if (!isCorner(p) || (p.X == next.X) == (p.Y == next.Y)) return {};
    }
    // What is missing or too much within this rounds away in coverage of 8 bits.
    constexpr double slack = 1.0 / 1024;
    const TRectD& b = FBounds;
    const TRectD whole{std::round(b.Left), std::round(b.Top), std::round(b.Right), std::round(b.Bottom)};
    const bool near = std::abs(whole.Left - b.Left) < slack && std::abs(whole.Top - b.Top) < slack &&
                      std::abs(whole.Right - b.Right) < slack && std::abs(whole.Bottom - b.Bottom) < slack;
    return near ? PixelBounds(whole) : TRect{};
}

void TCoverage::Begin(const TRect& box) {
    FBox = Intersection(box, PixelBounds(FBounds));
    FEdges.clear();
    FActive.clear();
    FBandIndex = FBandCount = 0;
    if (FBox.IsEmpty()) return;
    const int stride = FBox.Width() + Margin;
    FBandHeight = std::clamp(BandSteps / stride, 1, std::min(MaxBand, FBox.Height()));
    FBandCount = (FBox.Height() - 1) / FBandHeight + 1;
    const std::size_t steps = static_cast<std::size_t>(stride) * static_cast<std::size_t>(FBandHeight);
    if (FSteps.size() < steps) FSteps.resize(steps); // all zero whenever no band is open
    if (FBandCount > 1) FFirstInBand.assign(static_cast<std::size_t>(FBandCount), -1);
    FTrace = RowOps().Trace;
    FBand.Left = FBox.Left;
    FBand.Width = FBox.Width();
    FBand.Steps = FSteps.data();
    FBand.Stride = stride;
    OpenBand(0);
    for (std::size_t i = 0; i + 1 < FStarts.size(); ++i) {
        const TPointD* last = &FPoints[FStarts[i + 1] - 1];
        for (std::uint32_t k = FStarts[i]; k < FStarts[i + 1]; ++k) {
            AddEdge(*last, FPoints[k]);
            last = &FPoints[k];
        }
    }
}

void TCoverage::AddEdge(const TPointD& from, const TPointD& to) {
    if (from.Y == to.Y) return;
    const bool down = from.Y < to.Y;
    const TPointD& upper = down ? from : to;
    const TPointD& lower = down ? to : from;
    if (lower.Y <= FBox.Top || upper.Y >= FBox.Bottom || std::min(from.X, to.X) >= FBox.Right) return;
    // Bounded, so that it can be multiplied with nothing.
    constexpr float mostRate = 1e30F;
    TEdge edge;
    edge.X0 = upper.X;
    edge.Y0 = upper.Y;
    edge.Y1 = lower.Y;
    edge.Slope = (lower.X - upper.X) / (lower.Y - upper.Y);
    edge.Rate = std::min(One / std::abs(static_cast<float>(edge.Slope)), mostRate);
    edge.Sign = down ? 1 : -1;
    if (FBandCount == 1) {
        FTrace(edge, FBand);
        return;
    }
    const int row = static_cast<int>(std::max(upper.Y - FBox.Top, 0.0));
    std::int32_t& head = FFirstInBand[static_cast<std::size_t>(row / FBandHeight)];
    edge.NextInBand = head;
    head = static_cast<std::int32_t>(FEdges.size());
    FEdges.push_back(edge);
}

std::span<const TCoverageRow> TCoverage::Next() {
    for (; FBandIndex < FBandCount;) {
        if (FBandCount > 1) TraceBand(FBandIndex);
        const std::span<const TCoverageRow> rows = CloseBand();
        if (++FBandIndex < FBandCount) OpenBand(FBandIndex);
        if (!rows.empty()) return rows;
    }
    return {};
}

void TCoverage::OpenBand(int band) {
    FBand.Top = FBox.Top + band * FBandHeight;
    FBand.Bottom = std::min(FBand.Top + FBandHeight, FBox.Bottom);
    FBand.Clear();
}

void TCoverage::TraceBand(int band) {
    for (std::int32_t i = FFirstInBand[static_cast<std::size_t>(band)]; i >= 0;) {
        FActive.push_back(i);
        i = FEdges[static_cast<std::size_t>(i)].NextInBand;
    }
    std::erase_if(FActive, [this](std::int32_t i) {
        const TEdge& edge = FEdges[static_cast<std::size_t>(i)];
        FTrace(edge, FBand);
        return edge.Y1 <= FBand.Bottom;
    });
}

std::span<const TCoverageRow> TCoverage::CloseBand() {
    const int width = FBand.Width;
    std::size_t count = 0;
    std::int32_t* steps = FBand.Steps;
    for (int y = FBand.Top; y < FBand.Bottom; ++y, steps += FBand.Stride) {
        const auto row = static_cast<std::size_t>(y - FBand.Top);
        const int first = FBand.First[row];
        const int last = FBand.Last[row];
        if (last < 0) continue;
        // Where the windings do not end, the side that ends them lies to the right of the box.
        const int end = FBand.Sum[row] != 0 ? width : std::min(last + 1, width);
        std::fill_n(steps + width, SpillColumns, 0);
        FRows[count++] = {steps + first, FBox.Left + first, y, end - first};
    }
    return {FRows.data(), count};
}

std::size_t TCoverage::UsedBytes() const { return Bytes(FPoints) + Bytes(FEdges) + Bytes(FActive); }

std::size_t TCoverage::HeldBytes() const { return Capacity(FPoints) + Capacity(FEdges) + Capacity(FActive); }

} // namespace Vz
