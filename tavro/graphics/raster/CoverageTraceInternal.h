#pragma once

#include "tavro/graphics/raster/CoverageInternal.h"

#include <algorithm>
#include <cstdint>

namespace Vz {

/// Adds to a winding, in 1 / TCoverage::One. It runs over at 2^32, which are 65536 turns.
inline void AddWinding(std::int32_t& to, std::int32_t change) {
    to = static_cast<std::int32_t>(static_cast<std::uint32_t>(to) + static_cast<std::uint32_t>(change));
}

/// A side's part in one row: from Left to Right, in columns from the one on that Left lies in. Where columns
/// meet there are borders, border 1 behind the first column.
struct TTracePiece {
    /// Pieces that end before this border touch three columns at most.
    static constexpr int Narrow = 3;

    float Left, Right;
    float Height; ///< in 1 / TCoverage::One, a whole number
    float Rate;   ///< the height that falls on a column's width

    /// The whole part of numbers that are not negative.
    static float Whole(float v) { return static_cast<float>(static_cast<int>(v)); }
    /// The height from the left end to a border before the last column's end.
    float HeightAt(float border) const { return Whole(std::min((border - Left) * Rate, Height) + 0.5F); }
    /// How much of the height in a column passes to the next one: what the piece leaves to its left, by its
    /// middle's place in the column.
    int Passed(float column, float height) const {
        const float begin = std::max(Left - column, 0.0F);
        const float end = std::min(std::max(Right - column, 0.0F), 1.0F);
        return static_cast<int>(height * ((begin + end) * 0.5F) + 0.5F);
    }
};

/// Where the columns of a piece begin that lie in the box. What lies to the left of them counts for the box's
/// first column.
struct TWideStart {
    std::int64_t Column = 0; ///< counted from the piece's first
    float Height = 0;        ///< of the columns before
    int Passed = 0;          ///< from the column before
};

inline TWideStart StartWide(const TTracePiece& piece, std::int64_t hidden, std::int64_t count) {
    if (hidden <= 0) return {};
    const auto heightAt = [&](std::int64_t border) {
        return border < count ? piece.HeightAt(static_cast<float>(border)) : piece.Height;
    };
    const float height = heightAt(hidden);
    const float before = hidden > 1 ? heightAt(hidden - 1) : 0;
    return {hidden, height, piece.Passed(static_cast<float>(hidden - 1), height - before)};
}

/// Adds a piece that crosses several columns or sticks out of the box to a row: `count` columns from `column`
/// on, of which at least one lies in the box.
void TraceWidePiece(const TTracePiece& piece, std::int64_t column, std::int64_t count, int sign,
                    std::int32_t* steps, int width);

/// Adds an edge's part in one row of a band, to be called for rows that it touches. All implementations do
/// this arithmetic; whole numbers below 2^24 are exact in it. `traceWide` does what TraceWidePiece does.
template <class TTraceWide>
inline void TraceRow(const TTraceEdge& edge, TTraceBand& band, int row, const TTraceWide& traceWide) {
    const auto below = [](auto v) { // floor, without a call
        const auto whole = static_cast<std::int64_t>(v);
        return whole - (static_cast<decltype(v)>(whole) > v ? 1 : 0);
    };
    const double y = std::max(double(row), edge.Y0);
    const double nextY = std::min(row + 1.0, edge.Y1);
    const double x = edge.X0 + (y - edge.Y0) * edge.Slope;
    std::int64_t column = below(x);
    const auto from = static_cast<float>(x - static_cast<double>(column));
    const auto part = static_cast<float>(nextY - y);
    const float run = part * static_cast<float>(edge.Slope);
    const float left = from + std::min(run, 0.0F);
    const float right = from + std::max(run, 0.0F);
    const std::int64_t shift = below(left);
    column += shift - band.Left;
    if (column >= band.Width) return;

    const TTracePiece piece{left - static_cast<float>(shift), right - static_cast<float>(shift),
                            part * TCoverage::One, edge.Rate};
    const auto i = static_cast<std::size_t>(row - band.Top);
    std::int32_t* const steps = band.Steps + static_cast<std::ptrdiff_t>(i) * band.Stride;
    const int height = static_cast<int>(piece.Height);
    const int sign = edge.Sign;
    AddWinding(band.Sum[i], height * sign);
    const std::int64_t count = std::max(-below(-piece.Right), std::int64_t{1}); // of columns
    if (column >= 0 && piece.Right <= TTracePiece::Narrow) {
        const int place = static_cast<int>(column);
        const float first = piece.HeightAt(1);
        const float firstTwo = piece.HeightAt(2);
        const float second = firstTwo - first;
        const float third = piece.Height - firstTwo;
        const int passed = piece.Passed(0, first);
        const int passedOn = piece.Passed(1, second);
        const int passedOut = piece.Passed(2, third);
        AddWinding(steps[place], sign * (static_cast<int>(first) - passed));
        AddWinding(steps[place + 1], sign * (passed + static_cast<int>(second) - passedOn));
        AddWinding(steps[place + 2], sign * (passedOn + static_cast<int>(third) - passedOut));
        AddWinding(steps[place + 3], sign * passedOut);
        band.First[i] = std::min(band.First[i], place);
        band.Last[i] = std::max(band.Last[i], place + static_cast<int>(count));
        return;
    }
    std::int64_t last = 0;
    if (column + count <= 0)
        AddWinding(steps[0], height * sign);
    else {
        const std::int64_t most = std::max<std::int64_t>(count, TTracePiece::Narrow);
        traceWide(piece, column, most, sign, steps, band.Width);
        last = std::min<std::int64_t>(column + most, band.Width);
    }
    band.First[i] = std::min(band.First[i], static_cast<int>(std::max<std::int64_t>(column, 0)));
    band.Last[i] = std::max(band.Last[i], static_cast<int>(last));
}

} // namespace Vz
