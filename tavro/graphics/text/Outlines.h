#pragma once

#include "tavro/graphics/Figures.h"
#include "tavro/graphics/text/TextStyle.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Vz {

enum class TTextDirection : std::uint8_t { LeftToRight, RightToLeft };

/// A stretch of the text in one style.
struct TTextSpan {
    std::size_t Begin = 0; ///< byte offsets into the text, UTF-8
    std::size_t End = 0;
    const TTextStyle* Style = nullptr;
};

/// The least piece of text that cannot be set apart, with its outline.
struct TCluster {
    std::size_t Begin = 0; ///< byte offsets into the text
    std::size_t End = 0;
    std::size_t Span = 0; ///< index of the span that it belongs to
    double Advance = 0;   ///< along the line
    bool RightToLeft = false;
    bool Connected = false; ///< joined to its neighbours by its script (Arabic and the like)
    TFigures Outline;       ///< y down, origin on the base line at the left of the advance
};

/// Metrics of the font that a style chooses first, in the text's units; all positive unless said.
struct TFontMetrics {
    double Ascent = 0;
    double Descent = 0;
    double XHeight = 0;
    double CapHeight = 0;
    double UnderlinePosition = 0; ///< of the line's middle, below the base line positive
    double UnderlineThickness = 0;
    double StrikePosition = 0; ///< of the line's middle, above the base line positive
    double StrikeThickness = 0;
    double SubscriptDrop = 0;   ///< of a subscript's base line, below the base line positive
    double SuperscriptRise = 0; ///< of a superscript's base line, above the base line positive
};

/// The most numbers that the outlines of one text have: 64 MB. Glyphs beyond stay without an outline.
inline constexpr std::size_t MostTextNumbers = std::size_t{1} << 23;

/// Shapes one line of text: bidirectional order, fonts with fallback, glyphs. The clusters come in visual
/// order from left to right. Control characters and line ends count as blanks. Broken UTF-8 is shown as
/// U+FFFD. A character that no font has is shown by the box that stands for such in the first font. The spans
/// do not overlap (the first counts where they do) and may lie beyond the text's end. Bytes that no span
/// covers take part in the order but are left out. A size that is not finite or not above 0 gives empty
/// outlines and advances of 0; one beyond 1e9 counts as 1e9. Neighbouring spans in the same style kern and
/// join over the seam, but no ligature is made of letters of two spans. Can be called from any thread.
std::vector<TCluster> ShapeText(std::string_view text, std::span<const TTextSpan> spans,
                                TTextDirection direction);

/// All 0 for a size that is not finite or not above 0.
TFontMetrics GetFontMetrics(const TTextStyle& style);

/// Names a font configuration file to be used instead of the system's from now on (tests do); empty: the
/// system's, which FONTCONFIG_FILE may name. Raises EReadError, and all stays as it was, where the file
/// cannot be used. Without any font in the configuration text is blank, half an em a character.
void SetFontConfiguration(const std::string& file);

} // namespace Vz
