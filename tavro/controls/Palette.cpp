#include "tavro/controls/Palette.h"

#include <algorithm>
#include <vector>

namespace Vz {

namespace {

std::vector<TPaletteEntry>& Entries() {
    static std::vector<TPaletteEntry> entries;
    return entries;
}

} // namespace

void RegisterComponents(std::string_view page, std::initializer_list<std::string_view> classNames) {
    std::vector<TPaletteEntry>& entries = Entries();
    for (const std::string_view name : classNames) {
        const TPaletteEntry entry{page, name};
        if (std::find(entries.begin(), entries.end(), entry) == entries.end()) entries.push_back(entry);
    }
}

std::span<const TPaletteEntry> GetPalette() { return Entries(); }

} // namespace Vz
