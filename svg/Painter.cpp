#include "svg/PainterInternal.h"

#include <algorithm>
#include <cmath>

namespace Vz {

TAffine TransformOf(const TSVGGraphicElement& element, const TComputedStyle& style, double viewWidth,
                    double viewHeight) {
    return AboutOrigin(element.GetTransform(), style, viewWidth, viewHeight);
}

TAffine AboutOrigin(const TAffine& own, const TComputedStyle& style, double viewWidth, double viewHeight) {
    if (!style.TransformOrigin || style.TransformOrigin->size() < 2) return own;
    const TLengthBasis basis = BasisOf(style, viewWidth, viewHeight);
    const double x = (*style.TransformOrigin)[0].Resolve(TAxis::X, basis);
    const double y = (*style.TransformOrigin)[1].Resolve(TAxis::Y, basis);
    return TAffine::Translation(-x, -y).Then(own).Then(TAffine::Translation(x, y));
}

bool IsLayer(const TSVGGraphicElement& element, const TComputedStyle& style) {
    return element.GetOpacity() < 1 || style.ClipPath || style.Mask || style.Filter ||
           style.Blend != TKeyword::Normal || style.Isolation == TKeyword::Isolate;
}

bool TSVGPainter::Enter() { return ++FVisits <= MaxVisits; }

TPaintContext TSVGPainter::RootContext(const TAffine& matrix, TComputedStyle& style) const {
    TPaintContext root;
    const double width = FDocument.GetWidth();
    const double height = FDocument.GetHeight();
    const auto& box = FDocument.GetViewBox();
    root.ViewWidth = box ? box->Width : width;
    root.ViewHeight = box ? box->Height : height;
    style = ComputeStyle(TComputedStyle::Initial(), FDocument.GetStyle(), {root.ViewWidth, root.ViewHeight});
    style.RootFontSize = style.Text->Font.Size;
    root.Style = &style;
    root.Matrix = FDocument.GetTransform().Then(matrix);
    if (box)
        root.Matrix = ViewBoxMap(*box, FDocument.GetOwnAspectRatio().value_or(FDocument.GetViewAspectRatio()),
                                 width, height)
                          .Then(root.Matrix);
    root.Enabled = FDocument.GetEnabled();
    return root;
}

void TSVGPainter::Paint(TPaintPass pass, const TSVGGraphicElement* pivot, const TAffine& matrix) {
    if (!matrix.IsFinite() || !FDocument.GetVisible()) return;
    FPass = pass;
    FVisits = 0;
    FPath.clear();
    for (const TSVGElement* at = pivot; at && at != &FDocument; at = at->GetParent())
        FPath.push_back(at);
    std::reverse(FPath.begin(), FPath.end());
    TComputedStyle style;
    const TPaintContext root = RootContext(matrix, style);
    if (pass == TPaintPass::Whole)
        WithEffects(FindEffects(FDocument, style), FDocument, root,
                    [&](const TPaintContext& inner) { PaintChildren(FDocument, inner); });
    else if (!FPath.empty())
        PaintPath(FDocument, root, 0);
}

void TSVGPainter::PaintChildren(const TSVGElement& parent, const TPaintContext& context) {
    for (const auto& child : parent.Children())
        if (const auto* const element = dynamic_cast<const TSVGGraphicElement*>(child.get())) {
            PaintElement(*element, context);
            if (parent.GetTag() == TSVGTag::Switch && element->ConditionsHold()) return;
        }
}

/// Walks down to the pivot; on the way, and only there, paints what the pass wants of each level.
void TSVGPainter::PaintPath(const TSVGElement& parent, const TPaintContext& context, std::size_t level) {
    const TSVGElement* const next = FPath[level];
    const bool isSwitch = parent.GetTag() == TSVGTag::Switch;
    const auto visit = [&](const TSVGElement& child) {
        const auto* const element = dynamic_cast<const TSVGGraphicElement*>(&child);
        if (!element) return;
        if (&child != next || level + 1 == FPath.size()) return PaintElement(*element, context);
        if (!element->GetVisible() || !element->ConditionsHold() || element->GetTag() == TSVGTag::Defs)
            return;
        const TComputedStyle style =
            ComputeStyle(*context.Style, element->GetStyle(),
                         BasisOf(*context.Style, context.ViewWidth, context.ViewHeight));
        PaintPath(child, Inside(*element, context, style), level + 1);
    };
    const bool pivotHere = level + 1 == FPath.size();
    bool passed = false;
    for (const auto& child : parent.Children()) {
        const bool isNext = child.get() == next;
        const bool wanted = isNext                        ? !(pivotHere && FPass != TPaintPass::Element)
                            : FPass == TPaintPass::Before ? !passed
                                                          : FPass == TPaintPass::After && passed;
        const auto* const element = dynamic_cast<const TSVGGraphicElement*>(child.get());
        const bool taken = isSwitch && element && element->ConditionsHold();
        if (wanted) visit(*child);
        passed = passed || isNext;
        if (taken) return;
    }
}

TPaintContext TSVGPainter::Inside(const TSVGGraphicElement& element, const TPaintContext& context,
                                  const TComputedStyle& style) const {
    TPaintContext inner = context;
    inner.Style = &style;
    inner.Matrix = TransformOf(element, style, context.ViewWidth, context.ViewHeight).Then(context.Matrix);
    inner.Enabled = context.Enabled && element.GetEnabled();
    inner.Depth = context.Depth + 1;
    return inner;
}

void TSVGPainter::PaintElement(const TSVGGraphicElement& element, const TPaintContext& context) {
    const TSVGTag tag = element.GetTag();
    if (tag == TSVGTag::Defs || tag == TSVGTag::Symbol || dynamic_cast<const TSVGReferenced*>(&element))
        return;
    if (!element.GetVisible() || !element.ConditionsHold() || context.Depth > MaxDepth || !Enter()) return;
    if (FPass == TPaintPass::Element && !context.Referenced && PaintCompiled(element, context)) return;
    const TComputedStyle style = ComputeStyle(*context.Style, element.GetStyle(),
                                              BasisOf(*context.Style, context.ViewWidth, context.ViewHeight));
    const TPaintContext inner = Inside(element, context, style);
    if (!inner.Matrix.IsInvertible()) return;
    const TEffects effects = FindEffects(element, style);
    const auto* const shape = dynamic_cast<const TSVGShape*>(&element);
    const bool onlyOpacity = !effects.Clip && !effects.Mask &&
                             effects.NeedsLayer() == (effects.Opacity < 1) && !effects.IsEmpty &&
                             style.Blend == TKeyword::Normal && !style.Filter;
    if (shape && onlyOpacity) {
        // A shape that paints once carries its opacity in its paint.
        const bool markers = style.MarkerStart || style.MarkerMid || style.MarkerEnd;
        const bool both = style.Fill.Kind != TComputedPaint::TKind::None &&
                          style.Stroke.Kind != TComputedPaint::TKind::None;
        if (effects.Opacity == 1 || (!both && !markers)) {
            PaintList(element, context, style, inner.Matrix);
            return;
        }
    }
    WithEffects(effects, element, inner, [&](const TPaintContext& within) { PaintContent(element, within); });
}

void TSVGPainter::PaintContent(const TSVGGraphicElement& element, const TPaintContext& inner) {
    switch (element.GetTag()) {
    case TSVGTag::Use:
        return PaintUse(static_cast<const TSVGUse&>(element), inner);
    case TSVGTag::Image:
        return PaintImage(static_cast<const TSVGImage&>(element), inner);
    case TSVGTag::Svg: {
        const auto& view = static_cast<const TSVGViewElement&>(element);
        const TLengthBasis basis = BasisOf(*inner.Style, inner.ViewWidth, inner.ViewHeight);
        return PaintView(view, inner, view.GetWidthLength(), view.GetHeightLength(),
                         {view.GetX().Resolve(TAxis::X, basis), view.GetY().Resolve(TAxis::Y, basis)});
    }
    case TSVGTag::G:
    case TSVGTag::A:
    case TSVGTag::Switch:
        return PaintChildren(element, inner);
    default:
        break;
    }
    FCurrent = inner.Use ? inner.Use : &element;
    if (const auto* const shape = dynamic_cast<const TSVGShape*>(&element)) {
        PaintShape(*shape, MakeShapeList(*shape, inner, 1), inner);
    } else if (const auto* const text = dynamic_cast<const TSVGText*>(&element)) {
        PaintSteps(MakeTextList(*text, inner), inner.Matrix, false);
    }
}

void TSVGPainter::PaintSteps(const TDrawList& list, const TAffine& matrix, bool keep) {
    for (const TDrawStep& step : list.Steps)
        FDevice.Draw(step.Shape(keep), step.Paint, matrix);
}

void TSVGPainter::PaintShape(const TSVGShape& shape, const TDrawList& list, const TPaintContext& inner) {
    // The steps stand in their order already; markers go where paint-order names them (SVG 2, 13.8).
    const std::string_view order =
        inner.Style->PaintOrder ? std::string_view(*inner.Style->PaintOrder) : std::string_view();
    const std::size_t markers = order.find("markers");
    const auto isBefore = [&](const TDrawStep& step) {
        return markers != order.npos && order.find(step.IsStroke ? "stroke" : "fill") > markers;
    };
    bool painted = false;
    for (const TDrawStep& step : list.Steps) {
        if (!painted && isBefore(step)) {
            PaintMarkers(shape, inner);
            painted = true;
        }
        FDevice.Draw(step.Shape(false), step.Paint, inner.Matrix);
    }
    if (!painted) PaintMarkers(shape, inner);
}

/// Paints a shape without layers, and keeps what it needed where it belongs to the active element.
void TSVGPainter::PaintList(const TSVGGraphicElement& element, const TPaintContext& context,
                            const TComputedStyle& style, const TAffine& matrix) {
    TPaintContext inner = context;
    inner.Style = &style;
    inner.Matrix = matrix;
    inner.Enabled = context.Enabled && element.GetEnabled();
    FCurrent = inner.Use ? inner.Use : &element;
    const auto& shape = static_cast<const TSVGShape&>(element);
    TDrawList list = MakeShapeList(shape, inner, element.GetOpacity());
    const bool markers = style.MarkerStart || style.MarkerMid || style.MarkerEnd;
    if (FPass == TPaintPass::Element && !context.Referenced && list.IsStable && !markers) {
        auto& compiled = element.FCompiled;
        if (!compiled) compiled = std::make_unique<TSVGGraphicElement::TCompiled>();
        compiled->Epoch = FDocument.GetEpoch();
        compiled->Enabled = context.Enabled;
        compiled->Opacity = element.GetOpacity();
        compiled->Style = style;
        compiled->List = std::move(list);
        PaintSteps(compiled->List, matrix, true);
        return;
    }
    PaintShape(shape, list, inner);
}

/// Paints an element from what it kept; false where that is not the picture any more, or was never kept.
bool TSVGPainter::PaintCompiled(const TSVGGraphicElement& element, const TPaintContext& context) {
    const TSVGTag tag = element.GetTag();
    auto& compiled = element.FCompiled;
    const bool valid =
        compiled && compiled->Epoch == FDocument.GetEpoch() && compiled->Enabled == context.Enabled;
    if (tag == TSVGTag::G) {
        // A plain group keeps its style only.
        if (!valid) {
            if (!compiled) compiled = std::make_unique<TSVGGraphicElement::TCompiled>();
            compiled->Epoch = FDocument.GetEpoch();
            compiled->Enabled = context.Enabled;
            compiled->Style = ComputeStyle(*context.Style, element.GetStyle(),
                                           BasisOf(*context.Style, context.ViewWidth, context.ViewHeight));
        }
        if (IsLayer(element, compiled->Style)) return false;
        const TPaintContext inner = Inside(element, context, compiled->Style);
        if (inner.Matrix.IsInvertible()) PaintChildren(element, inner);
        return true;
    }
    if (!valid || compiled->Opacity != element.GetOpacity() || compiled->List.Steps.empty()) return false;
    FCurrent = &element;
    PaintSteps(
        compiled->List,
        TransformOf(element, compiled->Style, context.ViewWidth, context.ViewHeight).Then(context.Matrix),
        true);
    return true;
}

void TSVGPainter::PaintUse(const TSVGUse& use, const TPaintContext& inner) {
    const TSVGElement* const target = use.GetTarget();
    const auto* const drawn = dynamic_cast<const TSVGGraphicElement*>(target);
    const bool circular = !drawn || drawn == &FDocument || use.HasAncestor(drawn) ||
                          std::ranges::find(FActive, target) != FActive.end();
    if (circular || FActive.size() > 64) return;
    FActive.push_back(target);
    TPaintContext context = inner;
    context.Referenced = true;
    if (!context.Use) context.Use = &use;
    const TContextShape shape{&use, &inner};
    context.Context = &shape;
    const TLengthBasis basis = BasisOf(*inner.Style, inner.ViewWidth, inner.ViewHeight);
    const TPointD place{use.GetX().Resolve(TAxis::X, basis), use.GetY().Resolve(TAxis::Y, basis)};
    const bool isView = drawn->GetTag() == TSVGTag::Symbol || drawn->GetTag() == TSVGTag::Svg;
    context.Matrix = TAffine::Translation(place.X, place.Y).Then(inner.Matrix);
    if (!isView) {
        PaintElement(*drawn, context);
    } else if (drawn->GetVisible() && drawn->ConditionsHold() && Enter() && context.Depth < MaxDepth) {
        const auto& view = static_cast<const TSVGViewElement&>(*drawn);
        const bool symbol = drawn->GetTag() == TSVGTag::Symbol;
        const TComputedStyle style = ComputeStyle(*context.Style, view.GetStyle(), basis);
        const TPaintContext within = Inside(view, context, style);
        // The size on the use replaces that of the view (SVG 1.1, 5.6); a symbol without any fills its
        // viewport.
        const auto width = use.GetWidthLength() ? use.GetWidthLength()
                           : symbol             ? std::nullopt
                                                : view.GetWidthLength();
        const auto height = use.GetHeightLength() ? use.GetHeightLength()
                            : symbol              ? std::nullopt
                                                  : view.GetHeightLength();
        const TPointD own{symbol ? 0 : view.GetX().Resolve(TAxis::X, basis),
                          symbol ? 0 : view.GetY().Resolve(TAxis::Y, basis)};
        WithEffects(FindEffects(view, style), view, within,
                    [&](const TPaintContext& c) { PaintView(view, c, width, height, own); });
    }
    FActive.pop_back();
}

void TSVGPainter::PaintView(const TSVGViewElement& view, const TPaintContext& inner,
                            const std::optional<TSVGLength>& width, const std::optional<TSVGLength>& height,
                            TPointD place) {
    const TLengthBasis basis = BasisOf(*inner.Style, inner.ViewWidth, inner.ViewHeight);
    constexpr TSVGLength all{TSVGUnit::Percent, 100};
    const double w = width.value_or(all).Resolve(TAxis::X, basis);
    const double h = height.value_or(all).Resolve(TAxis::Y, basis);
    if (!(w > 0) || !(h > 0)) return;
    TPaintContext context = inner;
    context.Matrix = TAffine::Translation(place.X, place.Y).Then(inner.Matrix);
    const bool open = inner.Style->HasOverflow &&
                      (inner.Style->Overflow == TKeyword::Visible || inner.Style->Overflow == TKeyword::Auto);
    TFigures frame;
    if (!open) {
        frame.AddRect(0, 0, w, h);
        const TClipShape clip{{&frame}, context.Matrix};
        FDevice.PushClip({&clip, 1});
    }
    context.ViewWidth = w;
    context.ViewHeight = h;
    if (const auto& box = view.GetViewBox()) {
        context.Matrix = ViewBoxMap(*box, view.GetOwnAspectRatio().value_or(TSVGPreserveAspectRatio{}), w, h)
                             .Then(context.Matrix);
        context.ViewWidth = box->Width;
        context.ViewHeight = box->Height;
    }
    PaintChildren(view, context);
    if (!open) FDevice.PopClip();
}

void TSVGPainter::PaintImage(const TSVGImage& image, const TPaintContext& inner) {
    const auto bitmap = image.GetBitmap();
    const TSVGDocument* const embedded = image.GetEmbedded();
    if (inner.Style->Visibility != TKeyword::Visible || (!bitmap && !embedded)) return;
    const TLengthBasis basis = BasisOf(*inner.Style, inner.ViewWidth, inner.ViewHeight);
    const double natural[] = {bitmap ? bitmap->GetWidth() : double{embedded->GetWidth()},
                              bitmap ? bitmap->GetHeight() : double{embedded->GetHeight()}};
    const auto& width = image.GetWidthLength();
    const auto& height = image.GetHeightLength();
    // A size that is not given follows from the other one, or is the picture's (SVG 2, 8.8).
    double w = width ? width->Resolve(TAxis::X, basis) : natural[0];
    double h = height ? height->Resolve(TAxis::Y, basis) : natural[1];
    if (!width && height) w = h * natural[0] / natural[1];
    if (width && !height) h = w * natural[1] / natural[0];
    if (!(w > 0) || !(h > 0) || !(natural[0] > 0) || !(natural[1] > 0)) return;
    const TAffine place =
        TAffine::Translation(image.GetX().Resolve(TAxis::X, basis), image.GetY().Resolve(TAxis::Y, basis))
            .Then(inner.Matrix);
    const TSVGPreserveAspectRatio ratio = image.GetOwnAspectRatio().value_or(TSVGPreserveAspectRatio{});
    const TAffine map = ViewBoxMap({0, 0, natural[0], natural[1]}, ratio, w, h).Then(place);
    FCurrent = inner.Use ? inner.Use : &image;
    TFigures frame;
    frame.AddRect(0, 0, w, h);
    const TClipShape clip{{&frame}, place};
    FDevice.PushClip({&clip, 1});
    if (bitmap) {
        const TKeyword rendering = inner.Style->ImageRendering;
        const bool coarse = rendering == TKeyword::OptimizeSpeed || rendering == TKeyword::Pixelated ||
                            rendering == TKeyword::CrispEdgesCss;
        FDevice.DrawImage(bitmap->GetPixels(), map, 1,
                          coarse ? TInterpolation::Nearest : TInterpolation::Bilinear);
    } else {
        TSVGPainter(*embedded, FDevice).Paint(TPaintPass::Whole, nullptr, map);
    }
    FDevice.PopClip();
}

} // namespace Vz
