#pragma once

#include "tavro/svg/model/Element.h"

#include <memory>
#include <string_view>

namespace Vz {

/// A new element of the given name for the place below `parent`; null where the model does not know the name,
/// or the element has no place there.
std::unique_ptr<TSVGElement> MakeElement(std::string_view name, TSVGElement& parent);

} // namespace Vz
