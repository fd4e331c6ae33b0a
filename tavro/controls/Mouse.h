#pragma once

#include "tavro/runtime/Object.h"
#include "tavro/runtime/Set.h"

#include <cstdint>
#include <functional>

namespace Vz {

/// The button that a mouse event is about.
enum class TMouseButton : std::uint8_t { Left, Right, Middle };

/// What may be held down while a mouse event happens.
enum class TShiftKey : std::uint8_t { Shift, Alt, Ctrl, Left, Right, Middle, Double };
using TShiftState = TSet<TShiftKey>;

/// The key of the shift state that stands for a held button.
constexpr TShiftKey HeldKey(TMouseButton button) {
    return static_cast<TShiftKey>(static_cast<int>(TShiftKey::Left) + static_cast<int>(button));
}

/// A press or release. x and y are whole control pixels from the control's upper left corner; while a button
/// is held they may lie outside of the control.
using TMouseEvent =
    std::function<void(TObject& sender, TMouseButton button, TShiftState shift, int x, int y)>;
using TMouseMoveEvent = std::function<void(TObject& sender, TShiftState shift, int x, int y)>;
/// A turn of the wheel. `notches`: away from the user above 0; a part of one on fine wheels. A handler that
/// sets `isHandled` keeps the turn from the control's parent and from what scrolls around it.
using TMouseWheelEvent =
    std::function<void(TObject& sender, TShiftState shift, double notches, int x, int y, bool& isHandled)>;

/// The keys that a control may answer to.
enum class TKey : std::uint8_t { Left, Right, Up, Down, PageUp, PageDown, Home, End, Enter, Space, Escape };
/// A press of a key, or its repetition while it is held. `isHandled` as for the wheel.
using TKeyEvent = std::function<void(TObject& sender, TKey key, TShiftState shift, bool& isHandled)>;

} // namespace Vz
