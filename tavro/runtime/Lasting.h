#pragma once

#include <memory>
#include <vector>

namespace Vz {

/// Makes what a pointer holds live as long as the program: nobody counts any more who holds it, so that
/// copies of the pointer touch nothing but themselves. Its use_count is 0 from here on.
template <class T> void MakeLasting(std::shared_ptr<T>& pointer) {
    if (pointer.use_count() == 0) return;
    using TOwners = std::vector<std::shared_ptr<const void>>;
    static TOwners& owners = *std::make_unique<TOwners>().release(); // outlives all who hold it
    owners.push_back(pointer);
    pointer = std::shared_ptr<T>(std::shared_ptr<void>(), pointer.get());
}

} // namespace Vz
