#include "tavro/svg/text/LayoutInternal.h"

#include "tavro/runtime/Utf8.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/model/Shapes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace Vz {
namespace {

/// What a text may have; what is more is left out.
constexpr std::size_t MostCharacters = 1 << 16;
constexpr std::size_t MostNodes = 1 << 13;

constexpr double None = std::numeric_limits<double>::quiet_NaN();

/// The character at the place `i` of well-formed UTF-8; moves `i` behind it.
std::uint32_t ReadCode(std::string_view text, std::size_t& i) {
    const auto lead = static_cast<unsigned char>(text[i++]);
    if (lead < 0x80) return lead;
    const int following = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    std::uint32_t code = lead & (0x3Fu >> following);
    for (int k = 0; k < following; ++k)
        code = code << 6 | (static_cast<unsigned char>(text[i++]) & 0x3F);
    return code;
}

/// The text with U+FFFD in place of each byte that breaks UTF-8.
std::string Repaired(std::string_view text) {
    std::string result;
    for (std::size_t bad = 0; (bad = FindBadUtf8(text)) != text.npos;) {
        result += text.substr(0, bad);
        AppendUtf8(result, 0xFFFD);
        text.remove_prefix(bad + 1);
    }
    result += text;
    return result;
}

/// Walks over a text's tree and takes up nodes and characters.
class TTextCollector {
public:
    TTextCollector(TTextContent& content, const TLengthBasis& view)
        : FContent(content)
        , FView(view) {}

    void Add(const TSVGCustomText& element, const TComputedStyle& style, int parent);
    /// Takes away the blank that collapses at the end of the text.
    void TrimEnd();

private:
    bool AddRail(std::size_t node);
    std::shared_ptr<const TPathRuler> RulerOf(const TSVGShape& shape);
    void AddChildren(const TSVGCustomText& element, std::size_t node);
    void AddCharacters(const std::string& text, std::size_t node);
    void AddCharacter(std::uint32_t code, std::size_t node);

    TTextContent& FContent;
    TLengthBasis FView;
    std::map<const TSVGShape*, std::shared_ptr<const TPathRuler>> FRulers;
    bool FSwallowsBlanks = true; ///< a blank that collapses falls away here
    bool FEndCollapses = false;  ///< the last character is such a blank
};

void TTextCollector::Add(const TSVGCustomText& element, const TComputedStyle& style, int parent) {
    const std::size_t index = FContent.Nodes.size();
    TTextNode& node = FContent.Nodes.emplace_back();
    node.Element = &element;
    node.Style = style;
    node.Font = style.Text->Font;
    node.Font.Ligatures = node.Font.Ligatures && style.Text->LetterSpacing == 0;
    node.Metrics = GetFontMetrics(node.Font);
    node.Basis = BasisOf(style, FView.ViewWidth, FView.ViewHeight);
    node.Basis.XHeight = node.Metrics.XHeight;
    node.Parent = parent;
    if (parent >= 0) node.Rail = FContent.Nodes[static_cast<std::size_t>(parent)].Rail;
    node.Begin = node.End = FContent.Characters.size();
    const bool wasOnRail = node.Rail != nullptr;
    if (wasOnRail || AddRail(index)) AddChildren(element, index);
    FContent.Nodes[index].End = FContent.Characters.size();
    // What stands behind a textPath is a line of its own: its blanks do not collapse into those on the path.
    if (!wasOnRail && element.GetTag() == TSVGTag::TextPath) FSwallowsBlanks = FContent.Characters.empty();
}

/// Gives a textPath's node its path; false where the path cannot be found (SVG 1.1, 10.13.2: then the element
/// is not rendered). True for every other node.
bool TTextCollector::AddRail(std::size_t node) {
    TTextNode& made = FContent.Nodes[node];
    const auto* const textPath = dynamic_cast<const TSVGTextPath*>(made.Element);
    if (!textPath) return true;
    const auto* const shape =
        dynamic_cast<const TSVGShape*>(textPath->GetDocument().FindElement(textPath->GetReference()));
    if (!shape) return false;
    auto rail = std::make_shared<TTextRail>(TTextRail{RulerOf(*shape)});
    const double length = rail->Path().GetLength();
    const TSVGLength& start = textPath->GetStartOffset();
    if (start.GetUnit() == TSVGUnit::Percent) {
        rail->StartOffset = start.GetValue() / 100 * length;
    } else {
        rail->StartOffset = start.Resolve(TAxis::Other, made.Basis);
        if (shape->GetPathLength() > 0) rail->StartOffset *= length / shape->GetPathLength();
    }
    made.Rail = std::move(rail);
    return true;
}

/// Measures each path once a text. Its own transform applies (SVG 1.1, 10.13.2), those around it do not.
std::shared_ptr<const TPathRuler> TTextCollector::RulerOf(const TSVGShape& shape) {
    auto& ruler = FRulers[&shape];
    if (!ruler) {
        TFigures figures =
            shape.MakeFigures(BasisOf(shape.GetComputedStyle(), FView.ViewWidth, FView.ViewHeight));
        figures.Transform(shape.GetTransform());
        ruler = std::make_shared<const TPathRuler>(figures);
    }
    return ruler;
}

void TTextCollector::AddChildren(const TSVGCustomText& element, std::size_t node) {
    for (const auto& child : element.Children()) {
        if (const auto* const characters = dynamic_cast<const TSVGCharacters*>(child.get()))
            AddCharacters(characters->GetText(), node);
        else if (const auto* const inner = dynamic_cast<const TSVGCustomText*>(child.get());
                 inner && inner->IsDisplayed() && inner->ConditionsHold() &&
                 FContent.Nodes.size() < MostNodes)
            Add(*inner, ComputeStyle(FContent.Nodes[node].Style, inner->GetStyle(), FView),
                static_cast<int>(node));
    }
}

void TTextCollector::AddCharacters(const std::string& text, std::size_t node) {
    if (FindBadUtf8(text) != std::string::npos) {
        AddCharacters(Repaired(text), node);
        return;
    }
    for (std::size_t i = 0; i < text.size();)
        AddCharacter(ReadCode(text, i), node);
}

/// White space (SVG 2, 11.7.3): line ends and tabs are blanks. Unless they are preserved, a blank behind
/// another such blank and those at the text's begin fall away, over the seams of elements, too.
void TTextCollector::AddCharacter(std::uint32_t code, std::size_t node) {
    const bool isBlank = code == ' ' || code == '\t' || code == '\n' || code == '\r';
    const bool collapses = isBlank && !FContent.Nodes[node].Style.Text->PreserveSpace;
    if ((collapses && FSwallowsBlanks) || FContent.Characters.size() >= MostCharacters) return;
    FSwallowsBlanks = isBlank;
    FEndCollapses = collapses;
    TTextCharacter& made = FContent.Characters.emplace_back();
    made.Begin = FContent.Text.size();
    made.Code = isBlank ? ' ' : code;
    made.Node = static_cast<std::uint32_t>(node);
    made.X = made.Y = None;
    AppendUtf8(FContent.Text, made.Code);
}

void TTextCollector::TrimEnd() {
    auto& characters = FContent.Characters;
    if (!FEndCollapses) return;
    FContent.Text.resize(characters.back().Begin);
    characters.pop_back();
    for (TTextNode& node : FContent.Nodes) {
        node.Begin = std::min(node.Begin, characters.size());
        node.End = std::min(node.End, characters.size());
    }
}

using TCharacterField = double TTextCharacter::*;

/// Gives a node's characters what its own lists say; a list on an inner element goes before one on an outer
/// one.
void ApplyLists(TTextContent& content, const TTextNode& node) {
    constexpr std::pair<TCharacterField, TAxis> fields[] = {{&TTextCharacter::X, TAxis::X},
                                                            {&TTextCharacter::Y, TAxis::Y},
                                                            {&TTextCharacter::DX, TAxis::X},
                                                            {&TTextCharacter::DY, TAxis::Y}};
    const std::size_t count = node.End - node.Begin;
    const auto first = content.Characters.begin() + static_cast<std::ptrdiff_t>(node.Begin);
    for (int which = 0; which < 4; ++which) {
        const auto& [field, axis] = fields[which];
        const auto& lengths = node.Element->GetPositions(which);
        for (std::size_t i = 0; i < std::min(count, lengths.size()); ++i)
            if (const double value = lengths[i].Resolve(axis, node.Basis); std::isfinite(value))
                (*(first + static_cast<std::ptrdiff_t>(i))).*field = value;
    }
    const auto& angles = node.Element->GetRotations();
    for (std::size_t i = 0; !angles.empty() && i < count; ++i)
        (first + static_cast<std::ptrdiff_t>(i))->RotationDeg = angles[std::min(i, angles.size() - 1)];
}

} // namespace

std::string_view TTextContent::BytesOf(std::size_t character) const {
    const std::size_t begin = Characters[character].Begin;
    const std::size_t end = character + 1 < Characters.size() ? Characters[character + 1].Begin : Text.size();
    return std::string_view(Text).substr(begin, end - begin);
}

bool TTextContent::HasPosition(std::size_t character) const {
    return !std::isnan(Characters[character].X) || !std::isnan(Characters[character].Y);
}

TTextContent CollectText(const TSVGCustomText& text, const TComputedStyle& style, const TLengthBasis& view) {
    TTextContent content;
    TTextCollector collector(content, view);
    collector.Add(text, style, -1);
    collector.TrimEnd();
    for (const TTextNode& node : content.Nodes) // a textPath has no such lists (SVG 1.1, 10.13.2)
        if (node.Element->GetTag() != TSVGTag::TextPath) ApplyLists(content, node);
    return content;
}

} // namespace Vz
