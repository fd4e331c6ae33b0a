#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Vz {

/// Units of what a paint server, clip path, mask or marker says.
enum class TSVGUnits : std::uint8_t { UserSpaceOnUse, ObjectBoundingBox, StrokeWidth };
/// Reads the value of such an attribute; nothing where it is none of them.
std::optional<TSVGUnits> ParseUnits(std::string_view text);
std::string_view UnitsText(TSVGUnits units);

/// The id that an href attribute refers to; empty where it refers to nothing in the document.
std::string IdOfHref(std::string_view href);

} // namespace Vz
