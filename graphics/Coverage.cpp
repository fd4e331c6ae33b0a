#include "graphics/CoverageInternal.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

/// Device columns are shifted by this, so that all that can lie in a box is positive and truncation rounds
/// down.
constexpr double Shift = 1 << 18;
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
    std::fill_n(FSpans.begin(), FBottom - FTop, TColumnSpan{FBox.Width(), -1, 0});
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
        const TColumnSpan& span = FSpans[static_cast<std::size_t>(y - FTop)];
        if (span.Last < 0) continue;
        // Where the windings do not end, the side that ends them lies to the right of the box.
        const int end = span.Sum != 0 ? width : std::min(span.Last + 1, width);
        std::fill_n(steps + width, 3, 0);
        FRows[count++] = {steps + span.First, FBox.Left + span.First, y, end - span.First};
    }
    return {FRows.data(), count};
}

namespace {

// Heights with 32 binary places more: sums of them are exact, wherever they begin.
constexpr double Fine = 4294967296.0;
constexpr std::int64_t FineHalf = std::int64_t{1} << 31;

/// The height of a piece from its left end to the first column's border, to be rounded by taking off the
/// places.
std::int64_t FirstHeight(double left, double border, int height, double rate) {
    return static_cast<std::int64_t>(std::min((border - left) * rate, double(height)) * Fine) + FineHalf;
}

/// How much of the height beside a piece passes to the next column: what the piece leaves to its left, by its
/// middle's place in the column.
int Passed(int height, double middle) { return static_cast<int>(height * middle + 0.5); }

/// The part of an edge in one row: from column Left to Right, covering Height of the row.
struct TPiece {
    double Left, Right;
    int Height;
    double Rate; ///< the height that falls on a column's width
    int Sign;
};

/// The row that a piece is added to. Columns are shifted by Shift.
struct TRowSteps {
    std::int32_t* Steps; ///< that of the box's first column
    TColumnSpan& Span;
    int BoxLeft, BoxRight;

    void Add(const TPiece& piece) const;
    void AddWide(const TPiece& piece) const;
};

inline void TRowSteps::Add(const TPiece& piece) const {
    const auto [left, right, height, rate, sign] = piece;
    if (left >= BoxRight) return;
    Span.Sum += height * sign;
    if (right <= BoxLeft) {
        Steps[0] += height * sign;
        Span.First = 0;
        Span.Last = std::max(Span.Last, 0);
        return;
    }
    const int column = static_cast<int>(std::max<double>(left, BoxLeft));
    if (left < BoxLeft || right > std::min(column + 2, BoxRight)) {
        AddWide(piece);
        return;
    }
    // In one column or two, without asking which: the second's part may be nothing.
    const double border = column + 1;
    const int first = static_cast<int>(FirstHeight(left, border, height, rate) >> 32);
    const int second = height - first;
    const int passed = Passed(first, (left + std::min(right, border)) / 2 - column);
    const int passedOn = Passed(second, std::max(right - border, 0.0) / 2);
    const int place = column - BoxLeft;
    Steps[place] += sign * (first - passed);
    Steps[place + 1] += sign * (passed + second - passedOn);
    Steps[place + 2] += sign * passedOn;
    Span.First = std::min(Span.First, place);
    Span.Last = std::max(Span.Last, place + 2);
}

/// The same for a piece that crosses several columns or sticks out of the box.
void TRowSteps::AddWide(const TPiece& piece) const {
    const auto [left, right, height, rate, sign] = piece;
    std::int32_t* steps = Steps - BoxLeft;
    const double border = std::floor(left) + 1;
    const double lastColumn = std::ceil(right) - 1;
    std::int64_t sum = FirstHeight(left, border, height, rate);
    const std::int64_t step = lastColumn > border ? static_cast<std::int64_t>(rate * Fine) : 0;
    int column = BoxLeft;
    int before = 0;
    int passed = 0;
    if (left < BoxLeft) {
        sum += static_cast<std::int64_t>(BoxLeft - border) * step;
        passed = before = std::min(static_cast<int>(sum >> 32), height);
    } else {
        column = static_cast<int>(left);
        before = static_cast<int>(sum >> 32);
        passed = Passed(before, (left + border) / 2 - column);
        steps[column] += sign * (before - passed);
        ++column;
    }
    Span.First = std::min(Span.First, std::max(column - 1 - BoxLeft, 0));
    const int last = lastColumn < BoxRight ? static_cast<int>(lastColumn) : BoxRight;
    for (; column < last; ++column) {
        sum += step;
        const int after = std::min(static_cast<int>(sum >> 32), height);
        const int part = after - before;
        const int half = (part + 1) / 2;
        steps[column] += sign * (passed + part - half);
        passed = half;
        before = after;
    }
    const int rest = height - before;
    const int passedOn = Passed(rest, std::clamp(right - column, 0.0, 1.0) / 2);
    steps[column] += sign * (passed + rest - passedOn);
    steps[column + 1] += sign * passedOn;
    Span.Last = std::max(Span.Last, column + 1 - BoxLeft);
}

} // namespace

/// Adds an edge's part in each row of the band.
void TCoverage::Trace(const TEdge& edge) {
    const auto [x0, y0, y1, slope, sign, next] = edge;
    const double rate = One / std::abs(slope);
    const double end = std::min(y1, double(FBottom));
    const int boxLeft = FBox.Left + static_cast<int>(Shift);
    const int boxRight = FBox.Right + static_cast<int>(Shift);
    double y = std::max(y0, double(FTop));
    double x = x0 + (y - y0) * slope;
    int row = static_cast<int>(y - FTop);
    std::int32_t* steps = FSteps.data() + std::ptrdiff_t{row} * FStride;
    for (TColumnSpan* span = FSpans.data() + row; y < end; ++span, ++row, steps += FStride) {
        const double nextY = std::min(FTop + row + 1.0, end);
        const double nextX = x0 + (nextY - y0) * slope;
        const int height = static_cast<int>((nextY - y) * One);
        TRowSteps{steps, *span, boxLeft, boxRight}.Add(
            {std::min(x, nextX), std::max(x, nextX), height, rate, sign});
        y = nextY;
        x = nextX;
    }
}

std::size_t TCoverage::UsedBytes() const { return Bytes(FPoints) + Bytes(FEdges) + Bytes(FActive); }

std::size_t TCoverage::HeldBytes() const { return Capacity(FPoints) + Capacity(FEdges) + Capacity(FActive); }

} // namespace Vz
