#include "tavro/graphics/raster/RowOpsInternal.h"

#include <algorithm>
#include <atomic>
#include <cstring>

namespace Vz {

namespace {

/// Pixels that are worked on at once: few enough to stay in the nearest cache, many enough for simple loops.
constexpr int BlockSize = 64;

unsigned CoverageOf(std::uint32_t winding, TFillRule rule) {
    constexpr std::uint32_t one = TCoverage::One;
    std::uint32_t area = winding >> 31 ? 0u - winding : winding;
    if (rule == TFillRule::EvenOdd) {
        area &= 2 * one - 1;
        area = area > one ? 2 * one - area : area;
    } else
        area = std::min(area, one);
    return (area * 255 + one / 2) / one;
}

/// Sums the steps up from `winding` on; returns the sum behind them.
std::uint32_t ResolveBlock(std::int32_t* steps, int count, TFillRule rule, std::uint32_t winding,
                           std::uint8_t* coverage) {
    for (int i = 0; i < count; ++i) {
        winding += static_cast<std::uint32_t>(steps[i]);
        steps[i] = 0;
        coverage[i] = static_cast<std::uint8_t>(CoverageOf(winding, rule));
    }
    return winding;
}

void Resolve(const TCoverageRow& row, TFillRule rule, std::uint8_t* coverage) {
    ResolveBlock(row.Steps, row.Count, rule, 0, coverage);
}

void MultiplyCoverage(std::uint8_t* coverage, const std::uint8_t* factor, int count) {
    for (int i = 0; i < count; ++i)
        coverage[i] = static_cast<std::uint8_t>(MulDiv255(coverage[i], factor[i]));
}

void BlendCovered(std::uint32_t* row, int count, const std::uint32_t* pixels, const std::uint8_t* coverage) {
    for (int i = 0; i < count; ++i)
        row[i] = PixelOver(ScalePixel(pixels[i], coverage[i]), row[i]);
}

void BlendRow(std::uint32_t* row, int count, const std::uint32_t* pixels, unsigned opacity) {
    for (int i = 0; i < count; ++i)
        row[i] = PixelOver(ScalePixel(pixels[i], opacity), row[i]);
}

/// Fills rows block by block; fetch(row, x, count, pixels) gives the paint's pixels.
template <class TFetch> void FillRows(const TFillJob& job, TFetch&& fetch) {
    std::uint8_t coverage[BlockSize];
    std::uint32_t pixels[BlockSize];
    for (const TCoverageRow& row : job.Rows) {
        std::uint32_t* target = job.PixelsOf(row);
        const std::uint8_t* clip = job.ClipOf(row);
        std::uint32_t winding = 0;
        for (int done = 0; done < row.Count; done += BlockSize) {
            const int count = std::min(row.Count - done, BlockSize);
            winding = ResolveBlock(row.Steps + done, count, job.Rule, winding, coverage);
            if (std::all_of(coverage, coverage + count, [](std::uint8_t c) { return c == 0; })) continue;
            if (clip) MultiplyCoverage(coverage, clip + done, count);
            fetch(row.Y, row.X + done, count, pixels);
            BlendCovered(target + done, count, pixels, coverage);
        }
    }
}

void FillSolid(const TFillJob& job, std::uint32_t pixel) {
    FillRows(job, [pixel](int, int, int count, std::uint32_t* pixels) { std::fill_n(pixels, count, pixel); });
}

void FillLinear(const TFillJob& job, const TRampWalk& walk) {
    FillRows(job, [&walk](int y, int x, int count, std::uint32_t* pixels) {
        const TPointD first = walk.FirstOfRow(y);
        for (int i = 0; i < count; ++i)
            pixels[i] = walk.Table[LinearEntry(first.X + (x + i) * walk.ToRamp.A, walk.Spread)];
    });
}

void FillRadial(const TFillJob& job, const TRampWalk& walk) {
    FillRows(job, [&walk](int y, int x, int count, std::uint32_t* pixels) {
        const TPointD first = walk.FirstOfRow(y);
        for (int i = 0; i < count; ++i) {
            const float px = static_cast<float>(first.X + (x + i) * walk.ToRamp.A);
            const float py = static_cast<float>(first.Y + (x + i) * walk.ToRamp.B);
            pixels[i] = walk.Table[RampEntry(std::sqrt(px * px + py * py), walk.Spread)];
        }
    });
}

void FillFocal(const TFillJob& job, const TFocalWalk& focal) {
    const TRampWalk& walk = focal.Walk;
    const TFocalTerms terms(focal);
    FillRows(job, [&](int y, int x, int count, std::uint32_t* pixels) {
        const TPointD first = walk.FirstOfRow(y);
        for (int i = 0; i < count; ++i) {
            const float px = static_cast<float>(first.X + (x + i) * walk.ToRamp.A);
            const float py = static_cast<float>(first.Y + (x + i) * walk.ToRamp.B);
            const float b = px * focal.AxisX + py * focal.AxisY + terms.Offset;
            const float c = px * px + py * py - terms.Inner;
            const float square = b * b - terms.A * c;
            const float sum = std::abs(b) + std::sqrt(square > 0 ? square : 0.0f);
            const float t = (b > 0 ? c : sum) / (b > 0 ? sum : -terms.A);
            pixels[i] = walk.Table[RampEntry(t, walk.Spread)];
        }
    });
}

void Average(std::uint32_t* pixels, int count, const TPixelBoxes& boxes, std::uint16_t* sums) {
    const int columns = count * boxes.Across;
    std::fill_n(sums, columns * 4, std::uint16_t{0});
    for (int y = 0; y < boxes.Down; ++y) {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(boxes.Pixels + y * boxes.Stride);
        for (int i = 0; i < columns * 4; ++i)
            sums[i] = static_cast<std::uint16_t>(sums[i] + bytes[i]);
    }
    const double factor = 1.0 / (boxes.Across * boxes.Down);
    for (int i = 0; i < count; ++i) {
        std::uint8_t channels[4];
        for (int k = 0; k < 4; ++k) {
            std::uint32_t sum = 0;
            for (int x = 0; x < boxes.Across; ++x)
                sum += sums[(i * boxes.Across + x) * 4 + k];
            channels[k] = static_cast<std::uint8_t>(sum * factor + 0.5);
        }
        std::memcpy(pixels + i, channels, sizeof channels);
    }
}

constexpr TRowOps Portable{"portable", FillSolid,        FillLinear,   FillRadial, FillFocal, TraceEdge,
                           Resolve,    MultiplyCoverage, BlendCovered, BlendRow,   Average};

std::atomic<const TRowOps*> Chosen{nullptr};

const TRowOps& BestRowOps() {
    const TRowOps* vector = VectorRowOps();
    return vector ? *vector : Portable;
}

} // namespace

const TRowOps& PortableRowOps() { return Portable; }

const TRowOps& RowOps() {
    if (const TRowOps* ops = Chosen.load(std::memory_order_relaxed)) return *ops;
    static const TRowOps& best = BestRowOps();
    return best;
}

void UseRowOps(const TRowOps* ops) { Chosen.store(ops, std::memory_order_relaxed); }

} // namespace Vz
