#include "tavro/runtime/Resources.h"

#include "tavro/runtime/Exceptions.h"

#include <string>

namespace Vz {

std::optional<std::string_view> FindResource(std::string_view name) {
    for (const TResource& resource : GetResourceTable())
        if (resource.Name == name) return resource.Data;
    return std::nullopt;
}

std::string_view GetResource(std::string_view name) {
    if (const auto data = FindResource(name)) return *data;
    throw EResNotFound("resource \"" + std::string(name) + "\" not found");
}

} // namespace Vz
