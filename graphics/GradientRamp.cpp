#include "graphics/PaintDevice.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

/// Figures that are no numbers count as 0.
double Unit(double value) { return value > 0 ? std::min(value, 1.0) : 0.0; }

/// The colour between two stops at `part` 0..1 of the way, its alpha times `opacity`, premultiplied.
std::uint32_t Between(TVZGPColor a, TVZGPColor b, double part, double opacity) {
    const auto mix = [part](unsigned from, unsigned to) { return from + (double(to) - double(from)) * part; };
    const double alpha = mix(AlphaOf(a), AlphaOf(b)) * opacity;
    const auto channel = [alpha](double value) { return static_cast<unsigned>(value * alpha / 255 + 0.5); };
    return MakeColor(static_cast<unsigned>(alpha + 0.5), channel(mix(RedOf(a), RedOf(b))),
                     channel(mix(GreenOf(a), GreenOf(b))), channel(mix(BlueOf(a), BlueOf(b))));
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
    std::size_t next = 0; // the first stop behind t
    for (int i = 0; i < Size; ++i) {
        const double t = double(i) / (Size - 1);
        while (next < FStops.size() && FStops[next].Offset <= t)
            ++next;
        const TRampStop& from = FStops[next == 0 ? 0 : next - 1];
        const TRampStop& to = FStops[std::min(next, FStops.size() - 1)];
        const double length = double(to.Offset) - from.Offset;
        FTable[i] = Between(from.Color, to.Color, length > 0 ? (t - from.Offset) / length : 0, FOpacity);
    }
    // Of several stops at one end, the outermost is what a padding spread shows beyond it.
    const auto alone = [this](const TRampStop& stop) { return Between(stop.Color, stop.Color, 0, FOpacity); };
    FTable.front() = alone(FStops.front());
    FTable.back() = alone(FStops.back());
    for (const std::uint32_t pixel : FTable)
        FOpaque = FOpaque && AlphaOf(pixel) == 255;
}

} // namespace Vz
