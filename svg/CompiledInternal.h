#pragma once

#include "graphics/PaintDevice.h"
#include "svg/Element.h"

#include <vector>

namespace Vz {

/// One call of a paint device that an element makes.
struct TDrawStep {
    TFigures Own;                      ///< empty where the element's own path data is drawn
    std::shared_ptr<const TFigures> Figures; ///< null: Own
    bool IsStroke = false;
    TStrokeStyle Stroke;
    TFillRule Rule = TFillRule::NonZero;
    TPaint Paint;
    mutable TPolygonCache Cache;

    TShape Shape(bool keep) const {
        return {Figures ? Figures.get() : &Own, IsStroke ? &Stroke : nullptr, Rule, keep ? &Cache : nullptr};
    }
};

/// All that a shape or a text paints, ready for the device.
struct TDrawList {
    std::vector<TDrawStep> Steps;
    TRectD Box;           ///< what gradients refer to, in the element's units
    bool IsStable = true; ///< false: some paint depends on the device, so it is made anew each time
};

/// What an element keeps between two paintings while it is the active one or lies in it.
struct TSVGGraphicElement::TCompiled {
    std::uint64_t Epoch = 0;
    bool Enabled = true;
    TComputedStyle Style;
    bool HasList = false; ///< of a shape or text: List is its, made with this opacity
    double Opacity = 1;
    TDrawList List;
};

} // namespace Vz
