#pragma once

#include "tavro/svg/model/TextElements.h"

#include <vector>

namespace Vz {

/// A part of a text that is painted in one style.
struct TTextPiece {
    TComputedStyle Style;                 ///< fill, stroke and visibility of the element that it belongs to
    const TSVGElement* Element = nullptr; ///< that element
    TFigures Outline;                     ///< in the units of the text element
};

/// A text laid out: its parts in the order in which they are painted, and the box that gradients on it refer
/// to.
struct TTextLayout {
    std::vector<TTextPiece> Pieces;
    TRectD Box;
};

/// Lays out a text element (SVG 1.1, 10): white space, chunks, positions, anchors, bidirectional order,
/// spacing, text on paths, decorations. `style` is the element's computed style; `view` gives what
/// percentages refer to.
TTextLayout LayOutText(const TSVGCustomText& text, const TComputedStyle& style, const TLengthBasis& view);

} // namespace Vz
