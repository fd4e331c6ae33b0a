#pragma once

#include "tavro/graphics/Color.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace Vz::Test {

// Recolouring by another road than the instruments': channels as bytes in memory, walking an index with a
// sign.

using TColors = std::vector<TVZGPColor>;

using TBytes = std::array<int, 4>; // blue, green, red, alpha

inline TBytes Split(TVZGPColor c) {
    return {int(c & 255), int(c >> 8 & 255), int(c >> 16 & 255), int(c >> 24)};
}
inline TVZGPColor Join(const TBytes& b) {
    return TVZGPColor(b[0]) | TVZGPColor(b[1]) << 8 | TVZGPColor(b[2]) << 16 | TVZGPColor(b[3]) << 24;
}
inline int Held(double x) { return x <= 0 ? 0 : x >= 255 ? 255 : int(std::lrint(x)); }

/// Which channel's step counts: 0 blue, 1 green, 2 red.
inline int Leading(const TBytes& from, const TBytes& to) {
    const int b = std::abs(to[0] - from[0]), g = std::abs(to[1] - from[1]), r = std::abs(to[2] - from[2]);
    if (r <= g) return g > b ? 1 : 0;
    return r <= b ? 0 : 2;
}

inline TColors WalkedByHand(TColors stops, TVZGPColor color, bool forward) {
    const int n = int(stops.size());
    if (n == 0) return stops;
    if (n == 1) return {color};
    const int step = forward ? 1 : -1;
    int i = forward ? 0 : n - 1;
    const TBytes reference = Split(stops[i]);
    TBytes previous = reference;
    TBytes next = Split(color);
    stops[i] = color;
    for (i += step; i >= 0 && i < n; i += step) {
        const TBytes own = Split(stops[i]);
        if (std::equal(own.begin(), own.begin() + 3, reference.begin())) {
            next = Split(color);
        } else {
            const int c = Leading(previous, own);
            const int d = own[c] - previous[c];
            float k = 2147483648.0f;
            if (previous[c] != 0)
                k = float((d > 0 ? 1 : d < 0 ? -1 : 0) * (std::abs(d) / double(previous[c])) + 1);
            for (int j = 0; j < 3; ++j)
                next[j] = Held(double(next[j]) * double(k));
        }
        next[3] = own[3];
        stops[i] = Join(next);
        previous = own;
    }
    return stops;
}

inline TColors ShiftedByHand(TColors stops, TVZGPColor color, int index) {
    if (stops.size() < 2) return TColors(stops.size(), color);
    const TBytes r = Split(stops[index]);
    for (TVZGPColor& stop : stops) {
        const TBytes c = Split(stop);
        TBytes made = Split(color);
        made[3] = c[3];
        for (int j = 0; j < 3; ++j)
            made[j] = Held(made[j] + c[j] - r[j]);
        stop = Join(made);
    }
    return stops;
}

} // namespace Vz::Test
