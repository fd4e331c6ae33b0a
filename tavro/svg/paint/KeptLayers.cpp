#include "tavro/svg/paint/KeptLayers.h"

#include "tavro/runtime/Lasting.h"
#include "tavro/svg/model/KeptByHashInternal.h"

#include <algorithm>
#include <cstring>

namespace Vz {

namespace {

/// All pictures that controls of this thread keep, by a number made of their pixels.
thread_local TKeptByHash<TKeptLayers> Kept;

/// Four sums at a time, each of every fourth pair of pixels, as FNV makes it of bytes.
std::uint64_t Hash(const TPixels& pixels, std::uint64_t seed) {
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15u;
    constexpr int step = 8;
    std::uint64_t sums[4] = {seed, seed + 1, seed + 2, seed + 3};
    for (int y = 0; y < pixels.Height; ++y) {
        const std::uint32_t* const row = pixels.Row(y);
        int x = 0;
        for (; x + step <= pixels.Width; x += step) {
            std::uint64_t pairs[4];
            std::memcpy(pairs, row + x, sizeof pairs);
            for (int i = 0; i < 4; ++i)
                sums[i] = (sums[i] ^ pairs[i]) * factor;
        }
        for (; x < pixels.Width; ++x)
            sums[x & 3] = (sums[x & 3] ^ row[x]) * factor;
    }
    return ((sums[0] * factor ^ sums[1]) * factor ^ sums[2]) * factor ^ sums[3];
}

bool AreEqual(const TPixels& a, const TPixels& b) {
    if (a.Width != b.Width || a.Height != b.Height) return false;
    for (int y = 0; y < a.Height; ++y)
        if (!std::equal(a.Row(y), a.Row(y) + a.Width, b.Row(y))) return false;
    return true;
}

} // namespace

bool TKeptLayers::IsEqual(const TKeptLayers& other) const {
    return AreEqual(Before.GetPixels(), other.Before.GetPixels()) &&
           AreEqual(After.GetPixels(), other.After.GetPixels());
}

std::shared_ptr<TKeptLayers> TKeptLayers::Renew(std::shared_ptr<TKeptLayers> layers) {
    // Not make_shared: pictures that are gone must not hold memory for as long as they have an entry.
    if (!layers || layers->FThread != std::this_thread::get_id() || !IsSoleHolder(layers))
        return std::shared_ptr<TKeptLayers>(new TKeptLayers);
    layers->FCanBeFound = false;
    return layers;
}

std::shared_ptr<TKeptLayers> TKeptLayers::Share(std::shared_ptr<TKeptLayers> layers) {
    const std::uint64_t hash = Hash(layers->After.GetPixels(), Hash(layers->Before.GetPixels(), 0));
    bool isNoted = false;
    const auto same = Kept.Find(hash, [&](const std::shared_ptr<TKeptLayers>& other) {
        isNoted = isNoted || other == layers;
        return other->FCanBeFound && other->IsEqual(*layers);
    });
    if (same) return same;
    layers->FPair.Set(layers->Before.GetPixels(), layers->After.GetPixels());
    layers->FCanBeFound = true;
    if (!isNoted) Kept.Add(hash, layers);
    return layers;
}

} // namespace Vz
