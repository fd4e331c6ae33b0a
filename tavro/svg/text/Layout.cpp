#include "tavro/svg/text/Layout.h"

#include "tavro/svg/text/LayoutInternal.h"

namespace Vz {
namespace {

TRectD BoxOf(const TTextContent& content, const TTextLines& lines) {
    TRectD box;
    for (const TTextGlyph& glyph : lines.Glyphs)
        if (glyph.Visible)
            box.Include(glyph.Place(CellOf(content.Nodes[glyph.Node], glyph, lines.IsVertical)));
    return box;
}

} // namespace

TTextLayout LayOutText(const TSVGCustomText& text, const TComputedStyle& style, const TLengthBasis& view) {
    TTextContent content = CollectText(text, style, view);
    RaiseNodes(content.Nodes, IsVerticalMode(style.Text->WritingMode));
    TTextLines lines = ShapeChunks(content);
    AdjustLengths(content, lines);
    PlaceChunks(content, lines);
    TTextLayout layout;
    layout.Box = BoxOf(content, lines);
    layout.Pieces = MakePieces(content, lines);
    return layout;
}

} // namespace Vz
