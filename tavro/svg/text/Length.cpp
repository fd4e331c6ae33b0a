#include "tavro/svg/text/LayoutInternal.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Vz {
namespace {

/// Makes elements as long as they ask to be, inner ones first; to an outer one an inner one is a single
/// piece.
class TLengthAdjuster {
public:
    TLengthAdjuster(const TTextContent& content, TTextLines& lines);
    void Adjust(const TTextNode& node);

private:
    using TOrder = std::vector<std::size_t>;

    TTextGlyph& Glyph(std::size_t place) { return FLines.Glyphs[FOrder[place]]; }
    double LengthOf(const TTextNode& node, std::size_t first, std::size_t end);
    void Space(std::size_t first, std::size_t end, double missing);
    void Stretch(std::size_t first, std::size_t end, double missing);

    const TTextContent& FContent;
    TTextLines& FLines;
    TOrder FOrder; ///< indices of the glyphs in the order of the text
    TOrder FPiece; ///< one a place in FOrder: the first place of the piece that it belongs to
};

TLengthAdjuster::TLengthAdjuster(const TTextContent& content, TTextLines& lines)
    : FContent(content)
    , FLines(lines)
    , FOrder(lines.Glyphs.size())
    , FPiece(lines.Glyphs.size()) {
    std::iota(FOrder.begin(), FOrder.end(), 0);
    std::iota(FPiece.begin(), FPiece.end(), 0);
    const auto character = [&](std::size_t glyph) { return FLines.Glyphs[glyph].Character; };
    std::ranges::stable_sort(FOrder, {}, character);
}

void TLengthAdjuster::Adjust(const TTextNode& node) {
    const auto character = [&](std::size_t glyph) { return FLines.Glyphs[glyph].Character; };
    const auto from = std::ranges::lower_bound(FOrder, node.Begin, {}, character);
    const auto to = std::ranges::lower_bound(FOrder, node.End, {}, character);
    const auto first = static_cast<std::size_t>(from - FOrder.begin());
    const auto end = static_cast<std::size_t>(to - FOrder.begin());
    if (first == end) return;
    const TAxis axis = FLines.IsVertical ? TAxis::Y : TAxis::X;
    const double missing =
        node.Element->GetTextLength()->Resolve(axis, node.Basis) - LengthOf(node, first, end);
    if (!std::isfinite(missing)) return;
    if (node.Element->GetAdjustGlyphs())
        Stretch(first, end, missing);
    else
        Space(first, end, missing);
    std::fill(FPiece.begin() + static_cast<std::ptrdiff_t>(first),
              FPiece.begin() + static_cast<std::ptrdiff_t>(end), first);
}

/// Advances, gaps between the glyphs, and the shifts that the lists ask for behind the first character.
double TLengthAdjuster::LengthOf(const TTextNode& node, std::size_t first, std::size_t end) {
    double length = -Glyph(end - 1).Gap;
    for (std::size_t i = first; i < end; ++i)
        length += Glyph(i).Advance + Glyph(i).Gap;
    for (std::size_t i = node.Begin + 1; i < node.End; ++i) {
        const TTextCharacter& character = FContent.Characters[i];
        length += FLines.IsVertical ? character.DY : character.DX;
    }
    return length;
}

/// lengthAdjust="spacing". The last piece gets a gap like the others, which parts it from what follows (SVG
/// 2, 11.5).
void TLengthAdjuster::Space(std::size_t first, std::size_t end, double missing) {
    const auto endsPiece = [&](std::size_t i) { return i + 1 == end || FPiece[i] != FPiece[i + 1]; };
    std::size_t pieces = 0;
    for (std::size_t i = first; i < end; ++i)
        pieces += endsPiece(i);
    if (pieces < 2) return;
    for (std::size_t i = first; i < end; ++i)
        if (endsPiece(i)) Glyph(i).Gap += missing / static_cast<double>(pieces - 1);
}

/// lengthAdjust="spacingAndGlyphs".
void TLengthAdjuster::Stretch(std::size_t first, std::size_t end, double missing) {
    const auto isFree = [&](std::size_t i) {
        return FPiece[i] == i && (i + 1 == end || FPiece[i + 1] != FPiece[i]);
    };
    double length = isFree(end - 1) ? -Glyph(end - 1).Gap : 0;
    for (std::size_t i = first; i < end; ++i)
        if (isFree(i)) length += Glyph(i).Advance + Glyph(i).Gap;
    const double factor = (length + missing) / length;
    if (!(length > 0) || !(factor >= 0) || !std::isfinite(factor)) return;
    for (std::size_t i = first; i < end; ++i) {
        if (!isFree(i)) continue;
        Glyph(i).Advance *= factor;
        Glyph(i).Gap *= factor;
        Glyph(i).Stretch *= factor;
    }
}

} // namespace

void AdjustLengths(const TTextContent& content, TTextLines& lines) {
    const auto isAdjusted = [](const TTextNode& node) { return node.Element->GetTextLength().has_value(); };
    if (std::ranges::none_of(content.Nodes, isAdjusted)) return;
    TLengthAdjuster adjuster(content, lines);
    for (auto node = content.Nodes.rbegin(); node != content.Nodes.rend(); ++node)
        if (isAdjusted(*node)) adjuster.Adjust(*node);
}

} // namespace Vz
