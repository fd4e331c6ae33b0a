#include "graphics/CoverageTraceInternal.h"

#include <cmath>

namespace Vz {

void TTraceBand::Clear() {
    const int rows = Bottom - Top;
    std::fill_n(First.begin(), rows, Width);
    std::fill_n(Last.begin(), rows, -1);
    std::fill_n(Sum.begin(), rows, 0);
}

int TraceWidePiece(const TTracePiece& piece, std::int64_t column, std::int64_t count, int sign,
                   std::int32_t* steps, int width) {
    const auto at = [](std::int64_t k) { return static_cast<float>(k); };
    const auto heightAt = [&](std::int64_t k) { return k < count ? piece.HeightAt(at(k)) : piece.Height; };
    const std::int64_t end = std::min(count, width - column);
    std::int64_t k = std::max(-column, std::int64_t{0});
    float before = 0;
    int passed = 0;
    const auto add = [&](std::int64_t next, auto passedOf) {
        const float after = heightAt(next);
        const float here = after - before;
        const int passedOn = passedOf(here);
        steps[column + next - 1] += sign * (passed + static_cast<int>(here) - passedOn);
        passed = passedOn;
        before = after;
    };
    if (k > 0) {
        before = heightAt(k);
        passed = piece.Passed(at(k - 1), before - (k > 1 ? heightAt(k - 1) : 0));
        steps[0] += sign * (static_cast<int>(before) - passed);
    }
    const auto anywhere = [&](float here) { return piece.Passed(at(k), here); };
    const auto amid = [](float here) { return static_cast<int>(here * 0.5F + 0.5F); };
    if (k == 0) add(++k, [&](float here) { return piece.Passed(0, here); });
    for (const std::int64_t last = std::min(end, count - 2); k < last;)
        add(++k, amid);
    for (; k < end; ++k)
        add(k + 1, anywhere);
    steps[column + end] += sign * passed;
    return static_cast<int>(column + end);
}

void TraceEdge(const TTraceEdge& edge, TTraceBand& band) {
    const double begin = std::max(edge.Y0, double(band.Top));
    const double end = std::ceil(std::min(edge.Y1, double(band.Bottom)));
    for (int row = static_cast<int>(std::floor(begin)); row < end; ++row)
        TraceRow(edge, band, row);
}

} // namespace Vz
