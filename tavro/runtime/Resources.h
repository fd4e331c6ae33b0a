#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>

namespace Vz {

// Files that a program finds by name: those that the library embeds, its own artworks, and those that a
// program adds, which LoadSVGResource and an instrument's GetSVGResourceName then find as well. Every
// function may be called on any thread.

/// One file: its name without folder and ending ("SpeedometerSVG"), and its bytes, which live as long as the
/// program.
struct TResource {
    std::string_view Name;
    std::string_view Data;
};

/// All embedded files, in the order of their names' files. Written by the build (cmake/EmbedResources.cmake).
std::span<const TResource> GetResourceTable();

/// Files of more bytes than this are not added.
inline constexpr std::uint64_t MaxResourceSize = std::uint64_t{64} << 20;

/// Adds a copy of the bytes under a name of the program's choice (exact case). The bytes are not looked at:
/// an artwork that cannot be read is reported where it is loaded. A name is given once: nothing happens when
/// it has equal bytes already. Raises EInvalidOperation, naming it, when it has others (an embedded file's
/// name included), EArgumentOutOfRange for an empty name or more than MaxResourceSize bytes.
void AddResource(std::string_view name, std::string_view data);

/// Adds each SVG file of a folder (`*.svg`, in any case) by its name without the ending; folders in it are
/// left out. All or none: raises EReadError, naming it, for a folder or a file that cannot be read or is too
/// large, and EInvalidOperation as AddResource.
void AddResourceFolder(const std::filesystem::path& folder);

/// The bytes of the resource `name` (exact case), or nothing.
std::optional<std::string_view> FindResource(std::string_view name);

/// The bytes of the resource `name` (exact case). Raises EResNotFound, naming it, when there is none.
std::string_view GetResource(std::string_view name);

} // namespace Vz
