#include "tavro/svg/model/Units.h"

#include "tavro/svg/values/Scan.h"

#include <algorithm>

namespace Vz {

namespace {

constexpr std::string_view UnitsNames[] = {"userSpaceOnUse", "objectBoundingBox", "strokeWidth"};

} // namespace

std::optional<TSVGUnits> ParseUnits(std::string_view text) {
    const auto at = std::ranges::find(UnitsNames, text);
    if (at == std::end(UnitsNames)) return {};
    return static_cast<TSVGUnits>(at - std::begin(UnitsNames));
}

std::string_view UnitsText(TSVGUnits units) { return UnitsNames[static_cast<int>(units)]; }

std::string IdOfHref(std::string_view href) {
    href = Trimmed(href);
    return std::string(href.starts_with('#') ? href.substr(1) : std::string_view());
}

} // namespace Vz
