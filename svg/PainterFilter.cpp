#include "svg/PainterInternal.h"

namespace Vz {

void TSVGPainter::PaintFiltered(const TSVGGraphicElement&, const TPaintContext& inner,
                                const std::function<void(const TPaintContext&)>& paint)
{
    paint(inner);
}

} // namespace Vz
