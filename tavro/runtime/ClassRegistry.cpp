#include "tavro/runtime/ClassRegistry.h"

#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Utf8.h"

#include <algorithm>
#include <string>
#include <vector>

namespace Vz {

namespace {

std::vector<TClassEntry>& Classes() {
    static std::vector<TClassEntry> classes;
    return classes;
}

} // namespace

void RegisterClass(const TClassEntry& entry) {
    if (const TClassEntry* known = FindClass(entry.Name)) {
        if (known->Create == entry.Create && known->CreateOwned == entry.CreateOwned) return;
        throw EComponentError("another class named \"" + std::string(entry.Name) + "\" is registered");
    }
    Classes().push_back(entry);
}

void UnregisterClass(std::string_view name) {
    std::erase_if(Classes(), [&](const TClassEntry& entry) { return entry.Name == name; });
}

const TClassEntry* FindClass(std::string_view name) {
    const auto& classes = Classes();
    const auto found = std::find_if(classes.begin(), classes.end(),
                                    [&](const TClassEntry& entry) { return entry.Name == name; });
    return found == classes.end() ? nullptr : &*found;
}

const TClassEntry& GetClass(std::string_view name) {
    if (const TClassEntry* entry = FindClass(name)) return *entry;
    throw EClassNotFound("there is no component class " + QuotedForMessage(name));
}

std::span<const TClassEntry> GetClasses() { return Classes(); }

} // namespace Vz
