#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace Vz {

/// Writes `bytes` as the file's whole content, or leaves the file as it was and raises EWriteError naming it:
/// the bytes go to a new file beside it, which then takes its name (and its permissions). A symbolic link
/// stays one and its target is written. What exists and is no regular file (a device, a pipe) is written to
/// as it is.
void WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes);

/// The file's bytes. Raises EReadError naming it when it cannot be read or holds more than `maxBytes`.
std::string ReadWholeFile(const std::filesystem::path& path, std::uint64_t maxBytes);

} // namespace Vz
