#pragma once

#include "tavro/graphics/PaintDevice.h"
#include "tavro/svg/model/Element.h"

#include <thread>
#include <vector>

namespace Vz {

/// One call of a paint device that an element makes.
struct TDrawStep {
    TSharedValue<TFigures> Figures;
    bool IsStroke = false;
    TStrokeStyle Stroke;
    TFillRule Rule = TFillRule::NonZero;
    TPaint Paint;
    mutable TPolygonCache Cache; ///< follows from the others

    TShape Shape(bool keep) const {
        return {Figures.get(), IsStroke ? &Stroke : nullptr, Rule, keep ? &Cache : nullptr};
    }
    friend bool operator==(const TDrawStep& a, const TDrawStep& b) {
        return a.Figures == b.Figures && a.IsStroke == b.IsStroke && a.Stroke == b.Stroke &&
               a.Rule == b.Rule && a.Paint == b.Paint;
    }
};

/// All that a shape or a text paints, ready for the device.
struct TDrawList {
    std::vector<TDrawStep> Steps;
    TRectD Box;           ///< what gradients refer to, in the element's units
    bool IsStable = true; ///< false: some paint depends on the device, so it is made anew each time
    friend bool operator==(const TDrawList&, const TDrawList&) = default;
};

/// What an element keeps between two paintings while it is the active one or lies in it. Elements of any
/// documents for which it comes out equal keep it once, with its polygons: a wall of equal gauges draws its
/// needles from what is in the processor's nearest cache.
struct TSVGGraphicElement::TCompiled {
    std::shared_ptr<const TComputedStyle> Style; ///< of KeepStyle
    bool Enabled = true;
    bool HasList = false; ///< of a shape or text: List is its, made with this opacity
    double Opacity = 1;
    TDrawList List;
    /// Which painted it, and alone uses it: painting fills the steps' caches.
    std::thread::id Thread = std::this_thread::get_id();
    friend bool operator==(const TCompiled&, const TCompiled&) = default;

    /// The one of this value that elements of this thread keep.
    static std::shared_ptr<const TCompiled> Keep(TCompiled value);
    static std::shared_ptr<const TComputedStyle> KeepStyle(const TComputedStyle& style);
};

} // namespace Vz
