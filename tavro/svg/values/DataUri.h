#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Vz {

/// The content of a "data:" URI (RFC 2397), from base 64 or per cent notation; nothing where the text is none
/// or broken. Gzip-compressed content is returned as it is.
std::optional<std::string> ReadDataUri(std::string_view uri);

} // namespace Vz
