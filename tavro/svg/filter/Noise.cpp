#include "tavro/svg/filter/OpsInternal.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Vz {

namespace {

// The noise of Filter Effects 1, 9.21: its numbers decide how every pixel looks.
constexpr int LatticeSize = 256;
/// Added to places, so that they are above 0.
constexpr double Shift = 4096;

/// The generator of Park and Miller: a linear congruence modulo 2^31 - 1.
class TRandom {
public:
    explicit TRandom(double seed) {
        // Rounded towards zero; what is not positive is mapped to what is.
        FState = static_cast<std::int64_t>(std::clamp(seed, -2e9, 2e9));
        if (FState <= 0) FState = -(FState % (Modulus - 1)) + 1;
        FState = std::min(FState, Modulus - 1);
    }
    int Next() {
        FState = FState * 16807 % Modulus;
        return static_cast<int>(FState);
    }

private:
    static constexpr std::int64_t Modulus = 2147483647;
    std::int64_t FState;
};

/// One value of each channel.
using TChannels = std::array<float, 4>;

/// What stitching makes of lattice lines: from `Wrap` on the lines `Size` before are taken.
struct TStitch {
    int WidthX = 0, WidthY = 0;
    int WrapX = 0, WrapY = 0;
};

class TNoise {
public:
    explicit TNoise(double seed);
    /// The noise of all channels at a place that was shifted.
    TChannels At(double x, double y, const TStitch* stitch) const;

private:
    /// A vector for each channel.
    struct TGradient {
        TChannels X, Y;
    };

    std::array<int, 2 * LatticeSize + 2> FSelector{};
    std::array<TGradient, 2 * LatticeSize + 2> FGradients{};
};

TNoise::TNoise(double seed) {
    TRandom random(seed);
    for (std::size_t channel = 0; channel < 4; ++channel)
        for (int i = 0; i < LatticeSize; ++i) {
            FSelector[i] = i;
            const double x = random.Next() % (2 * LatticeSize) - LatticeSize;
            const double y = random.Next() % (2 * LatticeSize) - LatticeSize;
            const double length = std::hypot(x, y);
            FGradients[i].X[channel] = static_cast<float>(length > 0 ? x / length : 0);
            FGradients[i].Y[channel] = static_cast<float>(length > 0 ? y / length : 0);
        }
    for (int i = LatticeSize - 1; i > 0; --i)
        std::swap(FSelector[i], FSelector[random.Next() % LatticeSize]);
    for (int i = 0; i < LatticeSize + 2; ++i) {
        FSelector[LatticeSize + i] = FSelector[i];
        FGradients[LatticeSize + i] = FGradients[i];
    }
}

/// The lattice lines before and behind a place, and the way from the first one to it.
struct TLines {
    int First, Second;
    float Way;

    TLines(double at, int size, int wrap, bool stitch) {
        const double floor = std::floor(at);
        Way = static_cast<float>(at - floor);
        auto line = static_cast<std::int64_t>(floor);
        std::int64_t next = line + 1;
        if (stitch) {
            if (line >= wrap) line -= size;
            if (next >= wrap) next -= size;
        }
        First = static_cast<int>(line & (LatticeSize - 1));
        Second = static_cast<int>(next & (LatticeSize - 1));
    }
};

TChannels TNoise::At(double x, double y, const TStitch* stitch) const {
    const TLines across(x, stitch ? stitch->WidthX : 0, stitch ? stitch->WrapX : 0, stitch);
    const TLines down(y, stitch ? stitch->WidthY : 0, stitch ? stitch->WrapY : 0, stitch);
    const int i = FSelector[across.First];
    const int j = FSelector[across.Second];
    const TGradient& g00 = FGradients[FSelector[i + down.First]];
    const TGradient& g10 = FGradients[FSelector[j + down.First]];
    const TGradient& g01 = FGradients[FSelector[i + down.Second]];
    const TGradient& g11 = FGradients[FSelector[j + down.Second]];
    const float rx = across.Way;
    const float ry = down.Way;
    const float sx = rx * rx * (3 - 2 * rx);
    const float sy = ry * ry * (3 - 2 * ry);
    TChannels result;
    for (std::size_t c = 0; c < 4; ++c) {
        const float u0 = rx * g00.X[c] + ry * g00.Y[c];
        const float v0 = (rx - 1) * g10.X[c] + ry * g10.Y[c];
        const float u1 = rx * g01.X[c] + (ry - 1) * g01.Y[c];
        const float v1 = (rx - 1) * g11.X[c] + (ry - 1) * g11.Y[c];
        const float upper = u0 + sx * (v0 - u0);
        const float lower = u1 + sx * (v1 - u1);
        result[c] = upper + sy * (lower - upper);
    }
    return result;
}

/// The frequency next to the given one at which a tile has a whole number of waves.
double StitchedFrequency(double frequency, double size) {
    if (!(frequency > 0) || !(size > 0)) return frequency;
    const double low = std::floor(size * frequency) / size;
    const double high = std::ceil(size * frequency) / size;
    return low > 0 && frequency / low < high / frequency ? low : high;
}

TStitch StitchOf(const TTurbulence& t, double frequencyX, double frequencyY) {
    const auto whole = [](double v) { return static_cast<int>(std::clamp(v, -1e6, 1e6)); };
    TStitch stitch;
    stitch.WidthX = whole(t.Tile.Width() * frequencyX + 0.5);
    stitch.WidthY = whole(t.Tile.Height() * frequencyY + 0.5);
    stitch.WrapX = whole(t.Tile.Left * frequencyX + Shift + stitch.WidthX);
    stitch.WrapY = whole(t.Tile.Top * frequencyY + Shift + stitch.WidthY);
    return stitch;
}

} // namespace

TFilterImage Turbulent(const TTurbulence& t, const TAffine& toUnits, TFilterColors colors, const TRect& box) {
    const bool stitched = t.Stitch && !t.Tile.IsEmpty();
    const double frequencyX = stitched ? StitchedFrequency(t.FrequencyX, t.Tile.Width()) : t.FrequencyX;
    const double frequencyY = stitched ? StitchedFrequency(t.FrequencyY, t.Tile.Height()) : t.FrequencyY;
    const TStitch first = stitched ? StitchOf(t, frequencyX, frequencyY) : TStitch{};
    const TNoise noise(t.Seed);
    const int octaves = std::min(t.Octaves, TTurbulence::MostOctaves);
    constexpr double far = 1e12;
    return MadeByRows(box, colors, [&](int row, TFilterPixel* to) {
        for (int i = 0; i < box.Width(); ++i) {
            const TPointD at = toUnits(box.Left + i, row);
            double x = std::clamp(at.X * frequencyX, -far, far);
            double y = std::clamp(at.Y * frequencyY, -far, far);
            TStitch stitch = first;
            TChannels sum{};
            float share = 1;
            for (int octave = 0; octave < octaves; ++octave) {
                const TChannels value = noise.At(x + Shift, y + Shift, stitched ? &stitch : nullptr);
                for (std::size_t c = 0; c < 4; ++c)
                    sum[c] += (t.IsFractal ? value[c] : std::abs(value[c])) * share;
                x *= 2;
                y *= 2;
                share /= 2;
                stitch.WidthX *= 2;
                stitch.WidthY *= 2;
                stitch.WrapX = 2 * stitch.WrapX - static_cast<int>(Shift);
                stitch.WrapY = 2 * stitch.WrapY - static_cast<int>(Shift);
            }
            if (t.IsFractal)
                for (float& v : sum)
                    v = (v + 1) / 2;
            const auto part = [](float v) { return v > 0 ? std::min(v, 1.0f) : 0; };
            to[i] = Premultiplied({part(sum[0]), part(sum[1]), part(sum[2]), part(sum[3])});
        }
    });
}

} // namespace Vz
