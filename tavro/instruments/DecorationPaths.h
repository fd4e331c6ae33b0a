#pragma once

#include <string_view>

namespace Vz {

/// Number of emblems in the catalogue, the two empty ones (none, custom) included.
inline constexpr int DecorationCount = 27;

/// SVG path data of a catalogue emblem, in a box of 100 by 100 units, origin at the upper left, y downwards.
/// `decoration` is its ordinal, 0 to DecorationCount - 1. Each emblem is one path, made for a fill, with
/// holes that stay open under both fill rules. The text is static and never freed. Empty for none (0), for
/// custom (1) and for any number outside the range; there is no error.
std::string_view GetDecorationPath(int decoration);

/// Published name of a catalogue emblem, such as "dcStar", by its ordinal, 0 to DecorationCount - 1.
/// Empty for a number outside the range; there is no error.
std::string_view GetDecorationName(int decoration);

/// SVG path data of the shape that the round gauges draw in place of the catalogue's emblem, in the same
/// frame. They have their own star (2), toothed ring (3) and globe (12); the star and the ring are centred on
/// (50, 50) and reach beyond the box, to about 64 and 75 units from the centre. The text is static and never
/// freed. Empty for every other number: the catalogue's emblem serves.
std::string_view GetGaugeDecorationPath(int decoration);

} // namespace Vz
