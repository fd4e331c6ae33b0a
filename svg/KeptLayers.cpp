#include "svg/KeptLayers.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>

namespace Vz {

namespace {

/// All pictures that controls of this thread keep, by a number made of their pixels. Entries of pictures that
/// are gone, or were drawn anew, are taken out when there are many.
struct TKeptByHash {
    std::unordered_multimap<std::uint64_t, std::weak_ptr<TKeptLayers>> Entries;
    std::size_t Most = 64;

    void Add(std::uint64_t hash, const std::shared_ptr<TKeptLayers>& layers) {
        if (Entries.size() >= Most) {
            std::erase_if(Entries, [](const auto& entry) { return entry.second.expired(); });
            Most = std::max<std::size_t>(64, 2 * Entries.size());
        }
        Entries.emplace(hash, layers);
    }
};

thread_local TKeptByHash Kept;

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
    if (!layers || layers.use_count() > 1) return std::shared_ptr<TKeptLayers>(new TKeptLayers);
    layers->FCanBeFound = false;
    return layers;
}

std::shared_ptr<TKeptLayers> TKeptLayers::Share(std::shared_ptr<TKeptLayers> layers) {
    const std::uint64_t hash = Hash(layers->After.GetPixels(), Hash(layers->Before.GetPixels(), 0));
    const auto [first, last] = Kept.Entries.equal_range(hash);
    bool isNoted = false;
    for (auto entry = first; entry != last; ++entry) {
        const auto other = entry->second.lock();
        isNoted = isNoted || other == layers;
        if (other && other->FCanBeFound && other->IsEqual(*layers)) return other;
    }
    layers->FPair.Set(layers->Before.GetPixels(), layers->After.GetPixels());
    layers->FCanBeFound = true;
    if (!isNoted) Kept.Add(hash, layers);
    return layers;
}

} // namespace Vz
