#pragma once

#include "Request.h"
#include "Source.h"

namespace Vz::Tool {

/// Carries one edit out. Raises EConvertError and EPropertyError as SetPropText, EReadError for an artwork
/// that cannot be read, EInvalidOperation for an edit that the component does not know.
void Apply(const TEdit& edit, const TSource& source);

/// All edits of a request, in their order.
void ApplyEdits(const TRequest& request, const TSource& source);

} // namespace Vz::Tool
