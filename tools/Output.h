#pragma once

#include <string>
#include <string_view>

namespace Vz::Tool {

/// Writes to standard output at once. Raises EWriteError when it takes no more.
void Print(std::string_view text);

/// Writes a whole file or nothing; `-` is standard output. Raises EWriteError.
void WriteOutput(const std::string& file, std::string_view bytes);

} // namespace Vz::Tool
