#pragma once

#include "tavro/graphics/Geometry.h"

#include <cstdint>
#include <span>

namespace Vz {

/// Shape of the mouse pointer over a control. Default leaves it to the host.
enum class TCursor : std::uint8_t { Default, Arrow, Hand, Cross };

/// What a root control asks of the window, widget or test that shows it. All calls come on the thread of the
/// change; none may throw. The host in turn calls TControl's PaintTo, SetBounds and mouse functions.
class IControlHost {
public:
    virtual ~IControlHost() = default;

    /// These pixels of the root control (its own units, from its upper left corner) no longer show what it
    /// would paint. The rectangles may overlap. Whatever is reported before the next painting adds up.
    virtual void RegionStale(std::span<const TRect> rects) = 0;
    /// The root control took another size, in control pixels. By default nothing follows.
    virtual void SizeWanted(int width, int height) {}
    /// The control under the mouse wants another pointer. By default nothing follows.
    virtual void CursorWanted(TCursor cursor) {}
};

} // namespace Vz
