#pragma once

#include "tavro/graphics/Geometry.h"

#include <functional>

namespace Vz {

class TObject;
class TVZGPCanvas;

/// Raised before a document is drawn, and after; TSVGDocument says what the arguments are.
using TSVGDrawingEvent = std::function<void(TObject& sender, const TMatrix& matrix, TVZGPCanvas& canvas,
                                            const TRectF& rect, bool& handled)>;
using TSVGDrawnEvent =
    std::function<void(TObject& sender, const TMatrix& matrix, TVZGPCanvas& canvas, const TRectF& rect)>;

} // namespace Vz
