#pragma once

#include "tavro/runtime/Component.h"

#include <string>

namespace Vz::Tool {

/// The published properties of a fresh component's class in declaration order, those of an owned object
/// behind it as `Font.Size`: a tab-separated line each, with name, type, declared default, `stored` or `-`,
/// value.
std::string DescribeAsLines(TComponent& fresh);

/// The same as a JSON array of objects: "name", "type", "default" (null where none is declared), "stored",
/// "value" (null where there is none), and "members" for enumerations and sets.
std::string DescribeAsJson(TComponent& fresh);

} // namespace Vz::Tool
