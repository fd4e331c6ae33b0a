#pragma once

#include "tavro/graphics/text/FontLibraryInternal.h"

namespace Vz {

/// A glyph in a cluster. Lengths are in em of the cluster's style, y down.
struct TPlacedGlyph {
    TFontFace* Face = nullptr;
    hb_codepoint_t Glyph = 0;
    double Scale = 1; ///< below 1 for a small capital made of a great one
    double X = 0;     ///< of its origin, from the cluster's
    double Y = 0;
};

/// A cluster before it has a size.
struct TShapedCluster {
    std::size_t Begin = 0; ///< byte offsets into the text
    std::size_t End = 0;
    std::size_t Span = 0;
    std::size_t FirstGlyph = 0;
    std::size_t GlyphCount = 0;
    double Advance = 0;
    bool RightToLeft = false;
    bool Connected = false;
    bool StartsWithMark = false;
};

/// A text shaped without regard to the sizes of its styles.
struct TShapedText {
    std::vector<TShapedCluster> Clusters; ///< in visual order
    std::vector<TPlacedGlyph> Glyphs;
};

/// Shapes as ShapeText does. Bytes that no span covers take part in the order of the text but are left out.
TShapedText ShapeSpans(TFontLibrary& library, std::string_view text, std::span<const TTextSpan> spans,
                       TTextDirection direction);

} // namespace Vz
