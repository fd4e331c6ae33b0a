#include "tavro/svg/text/LayoutInternal.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace Vz {
namespace {

constexpr int Undeclared = -1;

struct TLineRow {
    TTextLineKind Kind;
    std::string_view Word; ///< in text-decoration
    bool IsAbove;          ///< painted above the glyphs, not below them (SVG 1.1, 10.12)
};

constexpr TLineRow LineRows[] = {
    {TTextLineKind::Underline, "underline", false},
    {TTextLineKind::Overline, "overline", false},
    {TTextLineKind::LineThrough, "line-through", true},
};

/// The node that declares each kind of line for a node, or Undeclared.
using TDeclarers = std::array<int, std::size(LineRows)>;

bool HasWord(std::string_view list, std::string_view word) {
    for (std::size_t end = 0; !list.empty(); list.remove_prefix(std::min(end + 1, list.size()))) {
        end = std::min(list.find_first_of(" \t\r\n"), list.size());
        if (list.substr(0, end) == word) return true;
    }
    return false;
}

/// What is declared outside of the text counts as declared by the text.
bool IsDeclaredAround(const TSVGElement& text, std::string_view word) {
    for (const TSVGElement* outer = text.GetParent(); outer; outer = outer->GetParent())
        if (const TStyleValue* value = outer->GetStyle().Find(TSVGStyleProperty::TextDecoration);
            value && value->Text && HasWord(*value->Text, word))
            return true;
    return false;
}

std::vector<TDeclarers> FindDeclarers(const std::vector<TTextNode>& nodes) {
    std::vector<TDeclarers> result(nodes.size());
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const TTextNode& node = nodes[i];
        for (std::size_t row = 0; row < std::size(LineRows); ++row) {
            const std::string_view word = LineRows[row].Word;
            const bool isDeclared =
                (node.Style.TextDecoration && HasWord(*node.Style.TextDecoration, word)) ||
                (i == 0 && IsDeclaredAround(*node.Element, word));
            const int outer = i == 0 ? Undeclared : result[static_cast<std::size_t>(node.Parent)][row];
            result[i][row] = isDeclared ? static_cast<int>(i) : outer;
        }
    }
    return result;
}

/// Gathers the glyphs of each stretch of an element's characters into one piece.
class TPieceMaker {
public:
    TPieceMaker(const TTextContent& content, TTextLines& lines)
        : FContent(content)
        , FLines(lines)
        , FDeclarers(FindDeclarers(content.Nodes)) {}

    std::vector<TTextPiece> Run();

private:
    std::vector<std::size_t> FindStretches() const;
    void AddStretch(std::span<const std::size_t> glyphs);
    void AddLines(std::span<const std::size_t> glyphs, bool areAbove);
    void AddPiece(std::size_t node, TFigures outline, TKeyword visibility);

    const TTextContent& FContent;
    TTextLines& FLines;
    std::vector<TDeclarers> FDeclarers;
    std::vector<TTextPiece> FPieces;
};

/// The number of each character's stretch: a new one begins where the element changes.
std::vector<std::size_t> TPieceMaker::FindStretches() const {
    const auto& characters = FContent.Characters;
    std::vector<std::size_t> stretches(characters.size());
    for (std::size_t i = 1; i < characters.size(); ++i)
        stretches[i] = stretches[i - 1] + (characters[i].Node != characters[i - 1].Node);
    return stretches;
}

std::vector<TTextPiece> TPieceMaker::Run() {
    const std::vector<std::size_t> stretches = FindStretches();
    const auto stretch = [&](std::size_t glyph) { return stretches[FLines.Glyphs[glyph].Character]; };
    std::vector<std::size_t> order(FLines.Glyphs.size());
    std::iota(order.begin(), order.end(), 0);
    std::ranges::stable_sort(order, {}, stretch);
    for (std::size_t i = 0, next = 0; i < order.size(); i = next) {
        for (next = i + 1; next < order.size() && stretch(order[next]) == stretch(order[i]);)
            ++next;
        AddStretch(std::span(order).subspan(i, next - i));
    }
    return std::move(FPieces);
}

void TPieceMaker::AddStretch(std::span<const std::size_t> glyphs) {
    const std::size_t node = FLines.Glyphs[glyphs.front()].Node;
    AddLines(glyphs, false);
    TFigures outline;
    std::size_t verbs = 0;
    std::size_t numbers = 0;
    for (const std::size_t i : glyphs) {
        verbs += FLines.Glyphs[i].Outline.Verbs.size();
        numbers += FLines.Glyphs[i].Outline.Numbers.size();
    }
    outline.Verbs.reserve(verbs);
    outline.Numbers.reserve(numbers);
    for (const std::size_t i : glyphs) {
        TTextGlyph& glyph = FLines.Glyphs[i];
        if (glyph.Visible)
            outline.Append(glyph.Outline, TAffine::Scaling(glyph.Stretch, 1).Then(glyph.Place));
        glyph.Outline = {};
    }
    AddPiece(node, std::move(outline), FContent.Nodes[node].Style.Visibility);
    AddLines(glyphs, true);
}

void TPieceMaker::AddLines(std::span<const std::size_t> glyphs, bool areAbove) {
    const std::size_t node = FLines.Glyphs[glyphs.front()].Node;
    for (std::size_t row = 0; row < std::size(LineRows); ++row) {
        const int declarer = FDeclarers[node][row];
        if (declarer == Undeclared || LineRows[row].IsAbove != areAbove) continue;
        const auto by = static_cast<std::size_t>(declarer);
        TFigures figures;
        AppendDecoration(FContent, FLines, glyphs, LineRows[row].Kind, figures);
        AddPiece(by, std::move(figures), FContent.Nodes[node].Style.Visibility);
    }
}

void TPieceMaker::AddPiece(std::size_t node, TFigures outline, TKeyword visibility) {
    if (outline.IsEmpty()) return;
    TTextPiece& piece = FPieces.emplace_back();
    piece.Style = FContent.Nodes[node].Style;
    piece.Style.Visibility = visibility;
    piece.Style.FillRule = TFillRule::NonZero; // glyphs are drawn so that their parts may overlap
    piece.Element = FContent.Nodes[node].Element;
    piece.Outline = std::move(outline);
}

} // namespace

std::vector<TTextPiece> MakePieces(const TTextContent& content, TTextLines& lines) {
    return TPieceMaker(content, lines).Run();
}

} // namespace Vz
