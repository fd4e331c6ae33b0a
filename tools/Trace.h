#pragma once

#include "Request.h"
#include "Source.h"

namespace Vz::Tool {

/// Prints each edit as given and, indented under it, the events that it raised, in order; those of a
/// component inside the source with its name in front (`Speed.OnChange`). Prints as it goes, so that what an
/// edit did before it failed stands there.
void Trace(const TRequest& request, const TSource& source);

} // namespace Vz::Tool
