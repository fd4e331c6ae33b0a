#pragma once

#include "tavro/runtime/Component.h"
#include "tavro/runtime/Props.h"

namespace Vz {

/// The row that every table of common properties begins with.
inline constexpr TProp NameProp =
    Prop<&TComponent::GetName, &TComponent::SetName, &TComponent::IsNameStored>("Name", "");

} // namespace Vz
