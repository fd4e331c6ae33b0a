#include "tavro/instruments/ColorFunctions.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

/// Rounded half to even and held in 0..255.
unsigned Clamped(double value) {
    return static_cast<unsigned>(std::clamp(std::nearbyint(value), 0.0, 255.0));
}

/// Rounded half to even and stored as a byte, whatever is above it.
unsigned Wrapped(double value) {
    return static_cast<unsigned>(static_cast<long long>(std::nearbyint(value))) & 255u;
}

/// Alpha of both results: the union of the two coverages.
unsigned UnionAlpha(double da, double sa) { return Clamped(sa + da - sa * da / 255); }

template <class F> TVZGPColor PerChannel(TVZGPColor dest, TVZGPColor source, F channel) {
    const TVZGPColor d = PremultiplyColor(dest);
    const TVZGPColor s = PremultiplyColor(source);
    const double da = AlphaOf(dest);
    const double sa = AlphaOf(source);
    return MakeColor(UnionAlpha(da, sa), channel(RedOf(d), RedOf(s), RedOf(dest)),
                     channel(GreenOf(d), GreenOf(s), GreenOf(dest)),
                     channel(BlueOf(d), BlueOf(s), BlueOf(dest)));
}

} // namespace

TVZGPColor PremultiplyColor(TVZGPColor color) { return AlphaOf(color) == 0 ? 0 : color; }

TVZGPColor BurnColor(TVZGPColor dest, TVZGPColor source) {
    const double da = AlphaOf(dest);
    const double sa = AlphaOf(source);
    const float rest = static_cast<float>(1 - sa / 255);
    return PerChannel(dest, source, [=](double dc, double sc, unsigned) {
        if (sc == 0) return dc == da ? Clamped(sa * da / 255 + dc * rest) : Wrapped(dc * rest);
        // The whole product Sa Da is taken times m, not its 255th part; this asymmetry is meant.
        const double m = std::min(1.0, (1 - dc / 255) / da * sa / sc);
        return Clamped(sa * da / 255 - sa * da * m);
    });
}

TVZGPColor DodgeColor(TVZGPColor dest, TVZGPColor source) {
    const double da = AlphaOf(dest);
    const double sa = AlphaOf(source);
    const float sourceRest = static_cast<float>(1 - sa / 255);
    const float destRest = static_cast<float>(1 - da / 255);
    return PerChannel(dest, source, [=](double dc, double sc, unsigned own) {
        if (sc == sa)
            return dc != 0 ? Clamped(sa * da / 255 + sc * destRest + dc * sourceRest)
                           : Wrapped(sc * destRest);
        if (sc < sa) {
            const double m = std::min(1.0, dc / da * sa / (sa - sc));
            return Wrapped(sa * da / 255 * m);
        }
        return own;
    });
}

TVZGPColor ScaleColor(TVZGPColor color, double factor) {
    return MakeColor(AlphaOf(color), Clamped(RedOf(color) * factor), Clamped(GreenOf(color) * factor),
                     Clamped(BlueOf(color) * factor));
}

} // namespace Vz
