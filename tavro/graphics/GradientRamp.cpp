#include "tavro/graphics/PaintDevice.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

/// Figures that are no numbers count as 0.
double Unit(double value) { return value > 0 ? std::min(value, 1.0) : 0.0; }

/// Writes entries begin..end-1 of a table: the colours from one stop to the next, their alpha times
/// `opacity`, premultiplied. Plain single precision in a loop that compilers vectorise.
void FillSegment(std::uint32_t* table, int begin, int end, const TRampStop& from, const TRampStop& to,
                 float opacity) {
    const float length = to.Offset - from.Offset;
    const float perEntry = length > 0 ? 1 / (length * (TGradientRamp::Size - 1)) : 0;
    const float before = length > 0 ? from.Offset / length : 0;
    const auto start = [&](auto part) { return static_cast<float>(part(from.Color)); };
    const auto rise = [&](auto part) { return static_cast<float>(part(to.Color)) - start(part); };
    const float a = start(AlphaOf), r = start(RedOf), g = start(GreenOf), b = start(BlueOf);
    const float da = rise(AlphaOf), dr = rise(RedOf), dg = rise(GreenOf), db = rise(BlueOf);
    for (int i = begin; i < end; ++i) {
        const float part = static_cast<float>(i) * perEntry - before;
        const float alpha = (a + da * part) * opacity;
        const float weight = alpha * (1 / 255.0F);
        const auto whole = [](float value) {
            return static_cast<std::uint32_t>(static_cast<std::int32_t>(value + 0.5F));
        };
        table[i] = whole(alpha) << 24 | whole((r + dr * part) * weight) << 16 |
                   whole((g + dg * part) * weight) << 8 | whole((b + db * part) * weight);
    }
}

} // namespace

TGradientRamp::TGradientRamp(std::span<const TRampStop> stops, double opacity)
    : FStops(stops.begin(), stops.end())
    , FOpacity(Unit(opacity))
    , FTable(Size)
    , FOpaque(true) {
    if (FStops.empty()) FStops.push_back({});
    float least = 0;
    for (TRampStop& stop : FStops) {
        stop.Offset = std::max(static_cast<float>(Unit(stop.Offset)), least);
        least = stop.Offset;
    }
    const float faded = static_cast<float>(FOpacity);
    int begin = 0;
    for (std::size_t next = 0; next <= FStops.size(); ++next) {
        const bool isLast = next == FStops.size();
        const int end = isLast ? Size : static_cast<int>(std::ceil(double(FStops[next].Offset) * (Size - 1)));
        const TRampStop& from = FStops[next == 0 ? 0 : next - 1];
        FillSegment(FTable.data(), begin, end, from, FStops[isLast ? next - 1 : next], faded);
        begin = std::max(begin, end);
    }
    // Of several stops at one end, the outermost is what a padding spread shows beyond it.
    FillSegment(FTable.data(), 0, 1, FStops.front(), FStops.front(), faded);
    FillSegment(FTable.data(), Size - 1, Size, FStops.back(), FStops.back(), faded);
    for (const std::uint32_t pixel : FTable)
        FOpaque = FOpaque && AlphaOf(pixel) == 255;
}

} // namespace Vz
