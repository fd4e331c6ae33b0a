#include "graphics/CoverageInternal.h"

#include <algorithm>
#include <cmath>

namespace Vz {

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

/// The row that a piece is added to. Columns are shifted by TCoverage::Shift.
struct TRowSteps {
    std::int32_t* Steps; ///< that of the box's first column
    int& First;          ///< columns touched so far
    int& Last;
    int& Sum; ///< the winding behind the last
    int BoxLeft, BoxRight;

    void Add(const TPiece& piece) const;
    void AddWide(const TPiece& piece) const;
};

inline void TRowSteps::Add(const TPiece& piece) const {
    const auto [left, right, height, rate, sign] = piece;
    if (left >= BoxRight) return;
    Sum += height * sign;
    if (right <= BoxLeft) {
        Steps[0] += height * sign;
        First = 0;
        Last = std::max(Last, 0);
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
    First = std::min(First, place);
    Last = std::max(Last, place + 2);
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
    First = std::min(First, std::max(column - 1 - BoxLeft, 0));
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
    Last = std::max(Last, column + 1 - BoxLeft);
}

} // namespace

void TBandSpans::Clear(int rows, int width) {
    std::fill_n(First.begin(), rows, width);
    std::fill_n(Last.begin(), rows, -1);
    std::fill_n(Sum.begin(), rows, 0);
}

void TraceRow(const TTraceJob& job, int row) {
    const auto at = [&job](double y) { return job.X0 + (y - job.Y0) * job.Slope; };
    const double y = std::max(double(job.Top + row), job.Begin);
    const double nextY = std::min(job.Top + row + 1.0, job.End);
    const double x = at(y);
    const double nextX = at(nextY);
    const int height = static_cast<int>((nextY - y) * TCoverage::One);
    const auto i = static_cast<std::size_t>(row);
    TRowSteps{job.Steps + row * job.Stride,
              job.Spans->First[i],
              job.Spans->Last[i],
              job.Spans->Sum[i],
              job.BoxLeft,
              job.BoxRight}
        .Add({std::min(x, nextX), std::max(x, nextX), height, job.Rate, job.Sign});
}

void TraceRows(const TTraceJob& job) {
    const int end = static_cast<int>(std::ceil(job.End)) - job.Top;
    for (int row = static_cast<int>(job.Begin - job.Top); row < end; ++row)
        TraceRow(job, row);
}

} // namespace Vz
