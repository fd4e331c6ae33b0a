#pragma once

namespace Vz {

class TControl;

/// Looks at a control and becomes null when the control is destroyed.
class TControlPtr {
public:
    TControlPtr() = default;
    explicit TControlPtr(TControl* control) { Set(control); }
    TControlPtr(const TControlPtr&) = delete;
    TControlPtr& operator=(const TControlPtr&) = delete;
    ~TControlPtr() { Set(nullptr); }

    TControl* Get() const { return FControl; }
    explicit operator bool() const { return FControl != nullptr; }
    TControl* operator->() const { return FControl; }
    void Set(TControl* control);

private:
    friend class TControl;

    TControl* FControl = nullptr;
    TControlPtr* FNext = nullptr; ///< next that looks at the same control
};

} // namespace Vz
