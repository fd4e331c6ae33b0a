#pragma once

#include <functional>
#include <utility>

namespace Vz {

class TObject;

/// Handler of an event that carries nothing but the object that raised it. Empty by default: nobody listens.
/// Handlers run at once, on the thread of the change (the user interface's).
using TNotifyEvent = std::function<void(TObject& sender)>;

/// Calls `event` with `args` where a handler is set. Works on a copy, so that a handler may replace itself
/// while it runs; the copy of a handler that captures no more than two pointers allocates nothing.
template <class... P, class... A> void Raise(const std::function<void(P...)>& event, A&&... args) {
    if (!event) return;
    const auto handler = event;
    handler(std::forward<A>(args)...);
}

} // namespace Vz
