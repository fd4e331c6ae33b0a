#include "tavro/svg/text/LayoutInternal.h"

#include <cmath>

namespace Vz {
namespace {

/// How far a base line lies above the alphabetic one, in the font of the node. Fonts seldom tell the hanging
/// and the mathematical one; they are taken as parts of the ascent.
double BaselineHeight(TKeyword baseline, const TFontMetrics& font) {
    switch (baseline) {
    case TKeyword::TextBeforeEdge:
    case TKeyword::BeforeEdge:
    case TKeyword::TextTop:
    case TKeyword::Top:
        return font.Ascent;
    case TKeyword::TextAfterEdge:
    case TKeyword::AfterEdge:
    case TKeyword::TextBottom:
    case TKeyword::Bottom:
    case TKeyword::Ideographic:
        return -font.Descent;
    case TKeyword::Middle:
        return font.XHeight / 2;
    case TKeyword::Central:
    case TKeyword::Center:
        return (font.Ascent - font.Descent) / 2;
    case TKeyword::Hanging:
        return font.Ascent * 0.8;
    case TKeyword::Mathematical:
        return font.Ascent * 0.5;
    default:
        return 0;
    }
}

/// baseline-shift of the node itself; per cent refer to the font's size.
double BaselineShift(const TTextNode& node) {
    const TStyleValue& shift = node.Style.BaselineShift;
    if (shift.Kind == TStyleValue::TKind::Keyword) {
        if (shift.Word == TKeyword::Sub) return -node.Metrics.SubscriptDrop;
        return shift.Word == TKeyword::Super ? node.Metrics.SuperscriptRise : 0;
    }
    if (shift.Kind == TStyleValue::TKind::Number) return shift.Number;
    if (shift.Kind != TStyleValue::TKind::Length) return 0;
    if (shift.Unit == TSVGUnit::Percent) return shift.Number / 100 * node.Font.Size;
    return shift.Length().Resolve(TAxis::Other, node.Basis);
}

bool IsAligned(const TTextNode& node) {
    const TKeyword word = node.Style.AlignmentBaseline;
    return word != TKeyword::Auto && word != TKeyword::Baseline;
}

} // namespace

/// Shifts add up from the text to the innermost element, and so does alignment to a parent; the dominant base
/// line is inherited as a word and applies once, where an element says no alignment of its own.
void RaiseNodes(std::vector<TTextNode>& nodes, bool isVertical) {
    std::vector<double> shifts(nodes.size());
    std::vector<TKeyword> dominant(nodes.size());
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        TTextNode& node = nodes[i];
        dominant[i] = node.Style.DominantBaseline;
        if (node.Parent >= 0) {
            const auto parent = static_cast<std::size_t>(node.Parent);
            const double shift = BaselineShift(node);
            shifts[i] = shifts[parent] + (std::isfinite(shift) ? shift : 0);
            if (dominant[i] == TKeyword::NoChange || dominant[i] == TKeyword::ResetSize)
                dominant[i] = dominant[parent];
        }
        const bool isAligned = !isVertical && IsAligned(node);
        if (isAligned) shifts[i] -= BaselineHeight(node.Style.AlignmentBaseline, node.Metrics);
        node.Raise = shifts[i];
        if (!isVertical && !isAligned) node.Raise -= BaselineHeight(dominant[i], node.Metrics);
    }
}

} // namespace Vz
