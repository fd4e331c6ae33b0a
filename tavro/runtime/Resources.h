#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace Vz {

/// One embedded file: its name without folder and ending ("SpeedometerSVG"), and its bytes, which live as
/// long as the program.
struct TResource {
    std::string_view Name;
    std::string_view Data;
};

/// All embedded files, in the order of their names' files. Written by the build (cmake/EmbedResources.cmake).
std::span<const TResource> GetResourceTable();

/// The bytes of the resource `name` (exact case), or nothing.
std::optional<std::string_view> FindResource(std::string_view name);

/// The bytes of the resource `name` (exact case). Raises EResNotFound, naming it, when there is none.
std::string_view GetResource(std::string_view name);

} // namespace Vz
