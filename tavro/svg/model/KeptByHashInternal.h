#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>

namespace Vz {

/// Values that others hold, found by a number made of their content, so that equal ones are kept once. It
/// keeps none alive. Not to be used by two threads.
template <class T> class TKeptByHash {
public:
    /// One of that hash which `fits`; null where there is none.
    template <class F> std::shared_ptr<T> Find(std::uint64_t hash, F fits) const {
        const auto [first, last] = FEntries.equal_range(hash);
        for (auto entry = first; entry != last; ++entry)
            if (auto value = entry->second.lock(); value && fits(value)) return value;
        return nullptr;
    }
    /// Entries of values that are gone are taken out when there are many.
    void Add(std::uint64_t hash, const std::shared_ptr<T>& value) {
        if (FEntries.size() >= FMost) {
            std::erase_if(FEntries, [](const auto& entry) { return entry.second.expired(); });
            FMost = std::max<std::size_t>(64, 2 * FEntries.size());
        }
        FEntries.emplace(hash, value);
    }

private:
    std::unordered_multimap<std::uint64_t, std::weak_ptr<T>> FEntries;
    std::size_t FMost = 64;
};

/// Makes a number of some values.
class THash {
public:
    THash& Add(std::uint64_t value) {
        FValue = (FValue ^ value) * 0x9E3779B97F4A7C15u;
        FValue ^= FValue >> 32;
        return *this;
    }
    THash& Add(double value) { return Add(std::bit_cast<std::uint64_t>(value)); }
    std::uint64_t Get() const { return FValue; }

private:
    std::uint64_t FValue = 0;
};

} // namespace Vz
