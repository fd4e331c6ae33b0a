#include "tavro/runtime/Object.h"

#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Props.h"

namespace Vz {

void TPersistent::Assign(const TPersistent&) {
    throw EInvalidCast("an object of this class cannot be assigned");
}

std::span<const TProp> TPersistent::GetPropTable() const { return {}; }

std::span<const TProp> TPersistent::GetCommonProps() const { return {}; }

std::string TPersistent::ToText() const {
    throw EInvalidOperation("an object of this class has no text form");
}

void TPersistent::FromText(std::string_view) {
    throw EInvalidOperation("an object of this class has no text form");
}

} // namespace Vz
