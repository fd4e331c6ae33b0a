#pragma once

#include "tavro/instruments/DecorationPaths.h"
#include "tavro/runtime/Value.h"

#include <cstdint>

namespace Vz {

/// The emblem that an instrument shows: none, a path of the user's own, or one of the catalogue.
enum class TDecoration : std::uint8_t {
    dcNone,
    dcCustom,
    dcStar,
    dcModern,
    dcDragon,
    dcAnchor,
    dcWheel,
    dcPlane,
    dcPlaneTop,
    dcJet,
    dcCar,
    dcSimpleBoat,
    dcGlobe,
    dcFuelTank,
    dcBolt,
    dcBiohazard,
    dcWifi,
    dcCloudy,
    dcSunny,
    dcStormy,
    dcRainy,
    dcSnowy,
    dcPartlyCloudy,
    dcWinter,
    dcSpring,
    dcSummer,
    dcAutumn,
};

template <> struct EnumNames<TDecoration> {
    static constexpr std::string_view Name = "TDecoration";
    static constexpr std::string_view Members[] = {
        "dcNone",  "dcCustom",       "dcStar",   "dcModern", "dcDragon",     "dcAnchor", "dcWheel",
        "dcPlane", "dcPlaneTop",     "dcJet",    "dcCar",    "dcSimpleBoat", "dcGlobe",  "dcFuelTank",
        "dcBolt",  "dcBiohazard",    "dcWifi",   "dcCloudy", "dcSunny",      "dcStormy", "dcRainy",
        "dcSnowy", "dcPartlyCloudy", "dcWinter", "dcSpring", "dcSummer",     "dcAutumn",
    };
};

} // namespace Vz
