#pragma once

#include <initializer_list>
#include <span>
#include <string_view>

namespace Vz {

/// A component class that a form designer offers, and the page of its palette.
struct TPaletteEntry {
    std::string_view Page;
    std::string_view ClassName;

    bool operator==(const TPaletteEntry&) const = default;
};

/// Offers component classes on a page, behind what is there; what is there already stays once. The texts are
/// literals: they are looked at for as long as the program runs.
void RegisterComponents(std::string_view page, std::initializer_list<std::string_view> classNames);

/// All that is offered, in the order of registration.
std::span<const TPaletteEntry> GetPalette();

} // namespace Vz
