#pragma once

#include <stdexcept>
#include <string>

namespace Vz::Tool {

/// The command line itself is wrong: an unknown command or option, a missing or malformed argument.
class TUsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A text as messages show it.
inline std::string Quoted(std::string_view text) { return '\'' + std::string(text) + '\''; }

} // namespace Vz::Tool
