#pragma once

#include "tavro/runtime/Lasting.h"

#include <memory>
#include <utility>

namespace Vz {

/// A value that copies share until one of them is edited. It takes no memory before its first edit.
template <class T> class TCopyOnWrite {
public:
    TCopyOnWrite() = default;
    explicit TCopyOnWrite(T value)
        : FValue(value == T{} ? nullptr : std::make_shared<T>(std::move(value))) {}
    const T& operator*() const {
        static const T none{};
        return FValue ? *FValue : none;
    }
    const T* operator->() const { return &**this; }
    /// The value itself, for whoever tells values apart by where they are; null where it is T{}.
    std::shared_ptr<const T> Share() const { return FValue; }
    T& Edit() {
        if (!IsSoleHolder(FValue)) FValue = std::make_shared<T>(**this);
        return *FValue;
    }
    /// The value, if it is not T{}, lives from here on as long as the program (see Lasting.h).
    void MakeLasting() { Vz::MakeLasting(FValue); }

private:
    std::shared_ptr<T> FValue;
};

} // namespace Vz
