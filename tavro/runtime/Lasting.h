#pragma once

#include <memory>
#include <mutex>
#include <vector>

namespace Vz {

/// Makes what a pointer holds live as long as the program: nobody counts any more who holds it, so that
/// copies of the pointer touch nothing but themselves. Its use_count is 0 from here on, and what it holds is
/// not to be changed: any thread may read it.
template <class T> void MakeLasting(std::shared_ptr<T>& pointer) {
    if (pointer.use_count() == 0) return;
    struct TOwners {
        std::mutex Mutex;
        std::vector<std::shared_ptr<const void>> Kept;
    };
    static TOwners& owners = *std::make_unique<TOwners>().release(); // outlives all who hold it
    const std::lock_guard lock(owners.Mutex);
    owners.Kept.push_back(pointer);
    pointer = std::shared_ptr<T>(std::shared_ptr<void>(), pointer.get());
}

/// True when nobody else holds what the pointer holds, so that its holder may change it. Whatever another
/// thread did with it before it let go is then done.
template <class T> bool IsSoleHolder(const std::shared_ptr<T>& pointer) {
    if (pointer.use_count() != 1) return false;
    // use_count orders nothing between threads. A further holder that comes and goes does.
    const std::shared_ptr<T> further(pointer);
    return true;
}

} // namespace Vz
