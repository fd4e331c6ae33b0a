#pragma once

#include "Request.h"

#include <span>
#include <string>
#include <string_view>

namespace Vz::Tool {

std::span<const TCommand> GetCommands();

/// The command of that name, or null.
const TCommand* FindCommand(std::string_view name);

/// `usage: tavro render SOURCE ...`, one line.
std::string UsageOf(const TCommand& command);

/// What `tavro --help` prints, and `tavro COMMAND --help`.
std::string Help();
std::string HelpOf(const TCommand& command);

} // namespace Vz::Tool
