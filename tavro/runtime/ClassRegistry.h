#pragma once

#include "tavro/runtime/Component.h"

#include <memory>
#include <span>
#include <string_view>

namespace Vz {

/// A component class that form files and tools can create by its name.
struct TClassEntry {
    std::string_view Name;
    std::unique_ptr<TComponent> (*Create)() = nullptr;
    TComponent& (*CreateOwned)(TComponent& owner) = nullptr;
};

/// Adds a class to the end of the list; nothing happens when the very same is there already. Raises
/// EComponentError when another class bears its name.
void RegisterClass(const TClassEntry& entry);

/// Adds the component class T, made by TCreatable.
template <class T> void RegisterClass() {
    RegisterClass({T::TypeName, [] { return std::unique_ptr<TComponent>(T::Create()); },
                   [](TComponent& owner) -> TComponent& { return T::Create(owner); }});
}

/// Takes a class out of the list; nothing happens when it is not there.
void UnregisterClass(std::string_view name);

/// The class of that name (exact case), or null. Valid until the list changes.
const TClassEntry* FindClass(std::string_view name);

/// The class of that name. Raises EClassNotFound, naming it, when there is none.
const TClassEntry& GetClass(std::string_view name);

/// All registered classes, in the order of their registration. Valid until the list changes.
std::span<const TClassEntry> GetClasses();

} // namespace Vz
