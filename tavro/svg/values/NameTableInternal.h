#pragma once

#include "tavro/svg/values/Scan.h"

#include <array>
#include <cstdint>

namespace Vz {

/// Finds the place of a name in a fixed list: made by the compiler, one look and one comparison a search. The
/// case of A to Z makes no difference for where a name stands.
template <std::size_t Count> class TNameTable {
public:
    /// `nameOf(i)` is the name at place i; no two names are equal.
    template <class F> explicit constexpr TNameTable(F nameOf) {
        for (std::size_t i = 0; i < Count; ++i) {
            std::size_t slot = SlotOf(nameOf(i));
            while (FPlaces[slot] != 0)
                slot = (slot + 1) % Slots;
            FPlaces[slot] = static_cast<std::uint8_t>(i + 1);
        }
    }
    /// The first place for which `isIt` holds among those where the name can stand; Count where there is
    /// none.
    template <class F> constexpr std::size_t Find(std::string_view name, F isIt) const {
        if (name.empty()) return Count;
        for (std::size_t slot = SlotOf(name); FPlaces[slot] != 0; slot = (slot + 1) % Slots)
            if (const std::size_t place = FPlaces[slot] - 1u; isIt(place)) return place;
        return Count;
    }

private:
    static constexpr std::size_t Slots = 512;
    static_assert(Count < 256 && Count * 2 < Slots);

    /// Length and four characters tell nearly all names apart.
    static constexpr std::size_t SlotOf(std::string_view name) {
        const auto letter = [name](std::size_t i) {
            return static_cast<std::size_t>(static_cast<unsigned char>(ToLower(name[i])));
        };
        const std::size_t last = name.size() - 1;
        return (name.size() * 97 + letter(0) * 31 + letter(last) * 17 + letter(last / 2) * 5 +
                letter(last * 3 / 4)) %
               Slots;
    }

    std::array<std::uint8_t, Slots> FPlaces{}; ///< each plus 1; 0: free
};

} // namespace Vz
