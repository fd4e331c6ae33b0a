#include "graphics/CoverageInternal.h"

#include "graphics/RowOpsInternal.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

constexpr double Shift = TCoverage::Shift;
/// Mapped points are held within this; beyond it a double no longer tells subpixels apart.
constexpr double Farthest = 1e11;

double Held(double v) { return std::clamp(v, -Farthest, Farthest); }

/// The nearest multiple of 1 / One. Sides that meet in a point then cover whole numbers that sum up to
/// nothing.
double Snapped(double y) { return std::floor(y * TCoverage::One + 0.5) / TCoverage::One; }

template <class T> std::size_t Bytes(const std::vector<T>& v) { return v.size() * sizeof(T); }
template <class T> std::size_t Capacity(const std::vector<T>& v) { return v.capacity() * sizeof(T); }

} // namespace

void TCoverage::SetShape(const TPolygons& polygons, const TAffine& toDevice) {
    FPoints.clear();
    FStarts.assign(1, 0);
    FBounds = {};
    for (std::size_t i = 0; i + 1 < polygons.Starts.size(); ++i) {
        const std::size_t start = FPoints.size();
        bool finite = true;
        for (std::uint32_t k = polygons.Starts[i]; finite && k < polygons.Starts[i + 1]; ++k) {
            const TPointD p = toDevice(polygons.Points[k]);
            finite = std::isfinite(p.X) && std::isfinite(p.Y);
            if (finite) FPoints.push_back({Held(p.X) + Shift, Snapped(Held(p.Y))});
        }
        if (!finite || FPoints.size() - start < 3) {
            FPoints.resize(start);
            continue;
        }
        FStarts.push_back(static_cast<std::uint32_t>(FPoints.size()));
    }
    if (FPoints.empty()) return;
    FBounds = {FPoints[0].X, FPoints[0].Y, FPoints[0].X, FPoints[0].Y};
    for (const TPointD& p : FPoints) {
        FBounds.Left = std::min(FBounds.Left, p.X);
        FBounds.Right = std::max(FBounds.Right, p.X);
        FBounds.Top = std::min(FBounds.Top, p.Y);
        FBounds.Bottom = std::max(FBounds.Bottom, p.Y);
    }
    FBounds.Left -= Shift;
    FBounds.Right -= Shift;
}

TRect TCoverage::WholePixels() const {
    if (FStarts.size() != 2 || FPoints.size() < 4 || FPoints.size() > 5) return {};
    if (FPoints.size() == 5 && FPoints.front() != FPoints.back()) return {};
    const auto isCorner = [this](const TPointD& p) {
        return (p.X - Shift == FBounds.Left || p.X - Shift == FBounds.Right) &&
               (p.Y == FBounds.Top || p.Y == FBounds.Bottom);
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
    FBand = FBandCount = 0;
    if (FBox.IsEmpty()) return;
    FStride = FBox.Width() + Margin;
    FBandHeight = std::clamp(BandSteps / FStride, 1, std::min(MaxBand, FBox.Height()));
    FBandCount = (FBox.Height() - 1) / FBandHeight + 1;
    const std::size_t steps = static_cast<std::size_t>(FStride) * static_cast<std::size_t>(FBandHeight);
    if (FSteps.size() < steps) FSteps.resize(steps); // all zero whenever no band is open
    if (FBandCount > 1) FFirstInBand.assign(static_cast<std::size_t>(FBandCount), -1);
    FTrace = RowOps().Trace;
    OpenBand(0);
    for (std::size_t i = 0; i + 1 < FStarts.size(); ++i) {
        TPointD last = FPoints[FStarts[i + 1] - 1];
        for (std::uint32_t k = FStarts[i]; k < FStarts[i + 1]; ++k) {
            AddEdge(last, FPoints[k]);
            last = FPoints[k];
        }
    }
}

void TCoverage::AddEdge(const TPointD& from, const TPointD& to) {
    if (from.Y == to.Y) return;
    const bool down = from.Y < to.Y;
    const TPointD& upper = down ? from : to;
    const TPointD& lower = down ? to : from;
    if (lower.Y <= FBox.Top || upper.Y >= FBox.Bottom || std::min(from.X, to.X) >= FBox.Right + Shift) return;
    TEdge edge{upper.X, upper.Y, lower.Y, (lower.X - upper.X) / (lower.Y - upper.Y), down ? 1 : -1, -1};
    if (FBandCount == 1) {
        Trace(edge);
        return;
    }
    const int row = static_cast<int>(std::max(upper.Y - FBox.Top, 0.0));
    std::int32_t& head = FFirstInBand[static_cast<std::size_t>(row / FBandHeight)];
    edge.NextInBand = head;
    head = static_cast<std::int32_t>(FEdges.size());
    FEdges.push_back(edge);
}

std::span<const TCoverageRow> TCoverage::Next() {
    for (; FBand < FBandCount;) {
        if (FBandCount > 1) TraceBand(FBand);
        const std::span<const TCoverageRow> rows = CloseBand();
        if (++FBand < FBandCount) OpenBand(FBand);
        if (!rows.empty()) return rows;
    }
    return {};
}

void TCoverage::OpenBand(int band) {
    FTop = FBox.Top + band * FBandHeight;
    FBottom = std::min(FTop + FBandHeight, FBox.Bottom);
    FSpans.Clear(FBottom - FTop, FBox.Width());
}

void TCoverage::TraceBand(int band) {
    for (std::int32_t i = FFirstInBand[static_cast<std::size_t>(band)]; i >= 0;) {
        FActive.push_back(i);
        i = FEdges[static_cast<std::size_t>(i)].NextInBand;
    }
    std::erase_if(FActive, [this](std::int32_t i) {
        const TEdge& edge = FEdges[static_cast<std::size_t>(i)];
        Trace(edge);
        return edge.Y1 <= FBottom;
    });
}

std::span<const TCoverageRow> TCoverage::CloseBand() {
    const int width = FBox.Width();
    std::size_t count = 0;
    std::int32_t* steps = FSteps.data();
    for (int y = FTop; y < FBottom; ++y, steps += FStride) {
        const auto row = static_cast<std::size_t>(y - FTop);
        const int first = FSpans.First[row];
        const int last = FSpans.Last[row];
        if (last < 0) continue;
        // Where the windings do not end, the side that ends them lies to the right of the box.
        const int end = FSpans.Sum[row] != 0 ? width : std::min(last + 1, width);
        std::fill_n(steps + width, 3, 0);
        FRows[count++] = {steps + first, FBox.Left + first, y, end - first};
    }
    return {FRows.data(), count};
}

/// Adds an edge's part in each row of the band.
void TCoverage::Trace(const TEdge& edge) {
    TTraceJob job;
    job.X0 = edge.X0;
    job.Y0 = edge.Y0;
    job.Slope = edge.Slope;
    job.Rate = One / std::abs(edge.Slope);
    job.Begin = std::max(edge.Y0, double(FTop));
    job.End = std::min(edge.Y1, double(FBottom));
    job.Sign = edge.Sign;
    job.Top = FTop;
    job.BoxLeft = FBox.Left + static_cast<int>(Shift);
    job.BoxRight = FBox.Right + static_cast<int>(Shift);
    job.Steps = FSteps.data();
    job.Stride = FStride;
    job.Spans = &FSpans;
    FTrace(job);
}

std::size_t TCoverage::UsedBytes() const { return Bytes(FPoints) + Bytes(FEdges) + Bytes(FActive); }

std::size_t TCoverage::HeldBytes() const { return Capacity(FPoints) + Capacity(FEdges) + Capacity(FActive); }

} // namespace Vz
