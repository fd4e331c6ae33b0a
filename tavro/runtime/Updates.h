#pragma once

#include <utility>

namespace Vz {

/// Runs `edit` between `object.BeginUpdate()` and `object.EndUpdate()`. The end runs also when an exception
/// passes.
template <class T, class F> void InUpdate(T& object, F&& edit) {
    object.BeginUpdate();
    try {
        std::forward<F>(edit)();
    } catch (...) {
        object.EndUpdate();
        throw;
    }
    object.EndUpdate();
}

} // namespace Vz
