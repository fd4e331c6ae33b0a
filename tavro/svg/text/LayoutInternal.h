#pragma once

#include "tavro/graphics/PathRuler.h"
#include "tavro/graphics/text/Outlines.h"
#include "tavro/svg/text/Layout.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace Vz {

/// A path that a textPath runs along.
struct TTextRail {
    const TPathRuler& Path() const { return *Ruler; }

    std::shared_ptr<const TPathRuler> Ruler; ///< shared by all that run along the same path; not null
    double StartOffset = 0;                  ///< where the text begins, in user units along the path
};

/// An element of a text with what its characters have in common.
struct TTextNode {
    const TSVGCustomText* Element = nullptr;
    TComputedStyle Style;
    TTextStyle Font; ///< as it is shaped: without ligatures where letters are spaced
    TFontMetrics Metrics;
    TLengthBasis Basis;
    int Parent = -1;                       ///< index of the node around it; the root has none
    std::shared_ptr<const TTextRail> Rail; ///< of the textPath that it is, or is in; null: none
    std::size_t Begin = 0;                 ///< characters in it and below it
    std::size_t End = 0;
    double Raise = 0; ///< of its glyphs above the line, by baseline-shift and alignment
};

/// A character (a Unicode code point that remains after white space processing), with what the lists of
/// positions say of it (SVG 1.1, 10.4 and 10.5).
struct TTextCharacter {
    std::size_t Begin = 0; ///< byte in TTextContent::Text; it ends where the next one begins
    std::uint32_t Code = 0;
    std::uint32_t Node = 0;
    double X, Y; ///< absolute; NaN: none
    double DX = 0, DY = 0;
    double RotationDeg = 0;
};

/// What a text element shows, in the document's order.
struct TTextContent {
    std::vector<TTextNode> Nodes; ///< parents before their children
    std::vector<TTextCharacter> Characters;
    std::string Text; ///< of the characters, UTF-8

    std::string_view BytesOf(std::size_t character) const;
    bool HasPosition(std::size_t character) const;
};

TTextContent CollectText(const TSVGCustomText& text, const TComputedStyle& style, const TLengthBasis& view);

/// Fills in every node's Raise (SVG 1.1, 10.9.2). `isVertical`: alignment to the base lines does not apply.
void RaiseNodes(std::vector<TTextNode>& nodes, bool isVertical);

/// A cluster on its line. A line has a direction of its own: along it, and across it to the right of who
/// walks along it (downwards where it runs to the right).
struct TTextGlyph {
    TFigures Outline;          ///< origin on the line at the begin of the advance; along is x, across is y
    std::size_t Character = 0; ///< its first
    std::uint32_t Node = 0;
    std::uint32_t Chunk = 0;
    bool RightToLeft = false;
    bool Upright = false; ///< stands upright in a vertical line
    bool Visible = true;  ///< false: beyond the ends of its path
    double Advance = 0;   ///< along the line, stretched
    double Gap = 0;       ///< behind it: letter-spacing, word-spacing and what textLength asks for
    double Stretch = 1;   ///< of the outline along the line
    double Along = 0;     ///< where it begins on its line, or on its path
    double Across = 0;    ///< where its line lies there, before Raise
    TAffine Place;        ///< maps the stretched outline to user space
};

/// Characters that are aligned together: those from one absolute position to the next, or on one path
/// (SVG 1.1, 10.5).
struct TTextChunk {
    std::size_t Begin = 0; ///< characters
    std::size_t End = 0;
    std::size_t FirstGlyph = 0; ///< in visual order, left to right
    std::size_t GlyphEnd = 0;
};

/// A text as glyphs.
struct TTextLines {
    std::vector<TTextGlyph> Glyphs; ///< chunk by chunk
    std::vector<TTextChunk> Chunks;
    bool IsVertical = false;
};

/// Cuts the text into chunks and shapes them. Fills in the advances and the gaps that the style asks for.
TTextLines ShapeChunks(const TTextContent& content);
/// Applies textLength (SVG 1.1, 10.5): to gaps, or to advances and stretches.
void AdjustLengths(const TTextContent& content, TTextLines& lines);
/// Places all glyphs.
void PlaceChunks(const TTextContent& content, TTextLines& lines);
/// The cell of a placed glyph, ascent to descent times advance, before its Place.
TRectD CellOf(const TTextNode& node, const TTextGlyph& glyph, bool isVertical);

/// True for a writing mode in which lines run down.
bool IsVerticalMode(TKeyword writingMode);

/// The painted parts. Takes the glyphs' outlines.
std::vector<TTextPiece> MakePieces(const TTextContent& content, TTextLines& lines);

enum class TTextLineKind : std::uint8_t { Underline, Overline, LineThrough };
/// Appends a line of decoration along glyphs of one element, given by their indices in visual order. It
/// follows their base line, and is as thick as their font says.
void AppendDecoration(const TTextContent& content, const TTextLines& lines,
                      std::span<const std::size_t> glyphs, TTextLineKind kind, TFigures& figures);

} // namespace Vz
