#include "tavro/svg/paint/PainterInternal.h"

#include <algorithm>

namespace Vz {

namespace {

constexpr int MostNested = 600;

/// Adds up boxes of fills over a tree, references followed.
class TBoxFinder {
public:
    explicit TBoxFinder(TPaintWork& work)
        : FWork(work) {}

    TRectD Box;

    void Add(const TSVGGraphicElement& element, const TComputedStyle& parentStyle, const TAffine& matrix,
             double viewWidth, double viewHeight, bool ownTransform) {
        const TSVGTag tag = element.GetTag();
        if (tag == TSVGTag::Defs || tag == TSVGTag::Symbol || FDepth >= MostNested || !FWork.IsLeft()) return;
        FWork.Add(tag == TSVGTag::Text ? TPaintWork::TextVisit : TPaintWork::BoxVisit);
        ++FDepth;
        const TComputedStyle style =
            ComputeStyle(parentStyle, element.GetStyle(), BasisOf(parentStyle, viewWidth, viewHeight));
        const TAffine inner =
            ownTransform ? TransformOf(element, style, viewWidth, viewHeight).Then(matrix) : matrix;
        const TLengthBasis basis = BasisOf(style, viewWidth, viewHeight);
        if (const auto* const path = dynamic_cast<const TSVGPath*>(&element))
            Box.Include(path->GetData().GetFigures().Bounds(inner));
        else if (const auto* const shape = dynamic_cast<const TSVGShape*>(&element))
            Box.Include(shape->MakeFigures(basis).Bounds(inner));
        else if (const auto* const text = dynamic_cast<const TSVGText*>(&element))
            Box.Include(inner(LayOutText(*text, style, basis).Box));
        else if (tag == TSVGTag::Use)
            AddUse(static_cast<const TSVGUse&>(element), style, inner, basis);
        else if (tag == TSVGTag::Image)
            AddArea(static_cast<const TSVGViewElement&>(element), inner, basis);
        else if (tag == TSVGTag::Svg)
            AddView(static_cast<const TSVGViewElement&>(element), nullptr, style, inner, basis);
        else
            AddChildren(element, style, inner, viewWidth, viewHeight);
        --FDepth;
    }

    void AddChildren(const TSVGElement& parent, const TComputedStyle& style, const TAffine& matrix,
                     double viewWidth, double viewHeight) {
        for (const auto& child : parent.Children()) {
            const auto* const element = child->AsGraphic();
            if (!element || !element->ConditionsHold()) continue;
            if (element->IsDisplayed() && !IsReferencedTag(element->GetTag()))
                Add(*element, style, matrix, viewWidth, viewHeight, true);
            if (parent.GetTag() == TSVGTag::Switch) break;
        }
    }

private:
    void AddArea(const TSVGViewElement& view, const TAffine& matrix, const TLengthBasis& basis) {
        TRectD area;
        const double x = view.GetX().Resolve(TAxis::X, basis);
        const double y = view.GetY().Resolve(TAxis::Y, basis);
        area.Include(x, y);
        if (view.GetWidthLength() && view.GetHeightLength())
            area.Include(x + view.GetWidthLength()->Resolve(TAxis::X, basis),
                         y + view.GetHeightLength()->Resolve(TAxis::Y, basis));
        Box.Include(matrix(area));
    }

    /// A view in its own place, or drawn by a use, of which the size goes before its own (SVG 1.1, 5.6).
    void AddView(const TSVGViewElement& view, const TSVGUse* use, const TComputedStyle& style,
                 const TAffine& matrix, const TLengthBasis& basis) {
        constexpr TSVGLength all{TSVGUnit::Percent, 100};
        const bool isSymbol = view.GetTag() == TSVGTag::Symbol;
        const auto size = [&](auto get, TAxis axis) {
            const std::optional<TSVGLength> none;
            const auto& given = use ? (use->*get)() : none;
            const auto& own = isSymbol ? none : (view.*get)();
            return (given ? *given : own.value_or(all)).Resolve(axis, basis);
        };
        const double w = size(&TSVGViewElement::GetWidthLength, TAxis::X);
        const double h = size(&TSVGViewElement::GetHeightLength, TAxis::Y);
        if (!(w > 0) || !(h > 0)) return;
        TAffine inner = matrix;
        if (!isSymbol)
            inner = TAffine::Translation(view.GetX().Resolve(TAxis::X, basis),
                                         view.GetY().Resolve(TAxis::Y, basis))
                        .Then(matrix);
        const auto& box = view.GetViewBox();
        if (box)
            inner = ViewBoxMap(*box, view.GetOwnAspectRatio().value_or(TSVGPreserveAspectRatio{}), w, h)
                        .Then(inner);
        AddChildren(view, style, inner, box ? box->Width : w, box ? box->Height : h);
    }

    void AddUse(const TSVGUse& use, const TComputedStyle& style, const TAffine& matrix,
                const TLengthBasis& basis) {
        const auto* const target = dynamic_cast<const TSVGGraphicElement*>(use.GetTarget());
        if (!target || !target->IsDisplayed() || !target->ConditionsHold() || use.HasAncestor(target) ||
            std::ranges::find(FActive, target) != FActive.end())
            return;
        FActive.push_back(target);
        const TAffine inner =
            TAffine::Translation(use.GetX().Resolve(TAxis::X, basis), use.GetY().Resolve(TAxis::Y, basis))
                .Then(matrix);
        if (target->GetTag() == TSVGTag::Symbol || target->GetTag() == TSVGTag::Svg) {
            const auto& view = static_cast<const TSVGViewElement&>(*target);
            const TComputedStyle own = ComputeStyle(style, view.GetStyle(), basis);
            const TAffine placed = TransformOf(view, own, basis.ViewWidth, basis.ViewHeight).Then(inner);
            AddView(view, &use, own, placed, basis);
        } else {
            Add(*target, style, inner, basis.ViewWidth, basis.ViewHeight, true);
        }
        FActive.pop_back();
    }

    TPaintWork& FWork;
    std::vector<const TSVGElement*> FActive;
    int FDepth = 0;
};

} // namespace

TRectD FillBounds(const TSVGGraphicElement& element, const TComputedStyle& style, const TAffine& matrix,
                  double viewWidth, double viewHeight, bool ownTransform, TPaintWork& work) {
    TBoxFinder finder(work);
    if (&element == &element.GetDocument())
        finder.AddChildren(element, style, matrix, viewWidth, viewHeight);
    else
        finder.Add(element, style, matrix, viewWidth, viewHeight, ownTransform);
    return finder.Box;
}

TRectF TSVGGraphicElement::GetBounds(const TMatrix& matrix) const {
    const TSVGDocument& document = GetDocument();
    TContentBounds nothing;
    TPaintWork work(nothing);
    const auto& view = document.GetViewBox();
    const TComputedStyle style = GetParent() ? GetParent()->GetComputedStyle() : TComputedStyle::Initial();
    const TRectD box = FillBounds(*this, style, TAffine::FromMatrix(matrix),
                                  view ? view->Width : double{document.GetWidth()},
                                  view ? view->Height : double{document.GetHeight()}, true, work);
    if (box.IsEmpty()) return {};
    return {static_cast<float>(box.Left), static_cast<float>(box.Top), static_cast<float>(box.Right),
            static_cast<float>(box.Bottom)};
}

} // namespace Vz
