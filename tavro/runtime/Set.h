#pragma once

#include <cstdint>
#include <initializer_list>

namespace Vz {

/// A set of members of the enumeration E, whose ordinals lie in 0..31: one bit each, the member 0 the lowest.
template <class E> class TSet {
public:
    using TMember = E;

    constexpr TSet() = default;
    constexpr TSet(std::initializer_list<E> members) {
        for (const E member : members)
            Include(member);
    }
    /// The set whose bits are those of `mask`; 8191 is the set of the members 0..12.
    static constexpr TSet FromMask(std::uint32_t mask) {
        TSet set;
        set.FMask = mask;
        return set;
    }
    /// The set of the first member to `last`; UpTo of the last member is the full set.
    static constexpr TSet UpTo(E last) { return FromMask((Bit(last) - 1) | Bit(last)); }
    /// The set as bits, also those that no member has.
    constexpr std::uint32_t GetMask() const { return FMask; }

    constexpr bool Contains(E member) const { return (FMask & Bit(member)) != 0; }
    constexpr bool IsEmpty() const { return FMask == 0; }
    /// Adds the member, or takes it out; nothing happens when it is so already.
    constexpr void Include(E member) { FMask |= Bit(member); }
    constexpr void Exclude(E member) { FMask &= ~Bit(member); }

    /// Union, difference and intersection.
    constexpr TSet operator+(TSet other) const { return FromMask(FMask | other.FMask); }
    constexpr TSet operator-(TSet other) const { return FromMask(FMask & ~other.FMask); }
    constexpr TSet operator*(TSet other) const { return FromMask(FMask & other.FMask); }
    constexpr bool operator==(const TSet&) const = default;

private:
    static constexpr std::uint32_t Bit(E member) { return std::uint32_t{1} << static_cast<unsigned>(member); }

    std::uint32_t FMask = 0;
};

} // namespace Vz
