#include "tavro/graphics/raster/CoverageTraceInternal.h"

#include <cmath>

namespace Vz {

void TTraceBand::Clear() {
    const int rows = Bottom - Top;
    std::fill_n(First.begin(), rows, Width);
    std::fill_n(Last.begin(), rows, -1);
    std::fill_n(Sum.begin(), rows, 0);
}

void TraceWidePiece(const TTracePiece& piece, std::int64_t column, std::int64_t count, int sign,
                    std::int32_t* steps, int width) {
    const TWideStart start = StartWide(piece, -column, count);
    std::int64_t k = start.Column;
    float before = start.Height;
    int passed = start.Passed;
    if (k > 0) AddWinding(steps[0], sign * (static_cast<int>(before) - passed));
    for (const std::int64_t end = std::min(count, width - column); k < end; ++k) {
        const float after = k + 1 < count ? piece.HeightAt(static_cast<float>(k + 1)) : piece.Height;
        const float here = after - before;
        const int passedOn = piece.Passed(static_cast<float>(k), here);
        AddWinding(steps[column + k], sign * (passed + static_cast<int>(here) - passedOn));
        passed = passedOn;
        before = after;
    }
    if (column + k < width) AddWinding(steps[column + k], sign * passed);
}

void TraceEdge(const TTraceEdge& edge, TTraceBand& band) {
    const double begin = std::max(edge.Y0, double(band.Top));
    const double end = std::ceil(std::min(edge.Y1, double(band.Bottom)));
    for (int row = static_cast<int>(std::floor(begin)); row < end; ++row)
        TraceRow(edge, band, row, TraceWidePiece);
}

} // namespace Vz
