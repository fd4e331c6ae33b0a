#include "tavro/svg/paint/PainterInternal.h"

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

namespace {

bool HasMarkers(const TComputedStyle& style) {
    return style.MarkerStart || style.MarkerMid || style.MarkerEnd;
}

} // namespace

bool TSVGPainter::IsFollowed(const TSVGElement* element) const {
    return std::ranges::find(FActive, element) != FActive.end();
}

bool IsLayer(const TSVGGraphicElement& element, const TComputedStyle& style) {
    return element.GetOpacity() < 1 || style.ClipPath || style.Mask || style.Filter ||
           style.Blend != TKeyword::Normal || style.Isolation == TKeyword::Isolate;
}

bool TSVGPainter::Enter() {
    if (!FWork.IsFollowing()) return true;
    FWork.Add(TPaintWork::Visit);
    return FWork.IsLeft();
}

TPaintContext TSVGPainter::RootContext(const TAffine& matrix) const {
    TPaintContext root;
    const double width = FDocument.GetWidth();
    const double height = FDocument.GetHeight();
    const auto& box = FDocument.GetViewBox();
    root.ViewWidth = box ? box->Width : width;
    root.ViewHeight = box ? box->Height : height;
    root.Style = &TComputedStyle::Initial();
    root.Matrix = FDocument.GetTransform().Then(matrix);
    if (box) root.Matrix = ViewBoxMap(*box, FDocument.GetViewAspectRatio(), width, height).Then(root.Matrix);
    root.Enabled = FEnabled && FDocument.GetEnabled();
    return root;
}

/// The element's style: computed into `scratch`, or, on the way to the active element and inside of it, kept.
const TComputedStyle& TSVGPainter::StyleOf(const TSVGGraphicElement& element, const TPaintContext& context,
                                           TComputedStyle& scratch) const {
    const auto compute = [&](TComputedStyle& style) {
        style = ComputeStyle(*context.Style, element.GetStyle(),
                             BasisOf(*context.Style, context.ViewWidth, context.ViewHeight));
        if (&element == &FDocument) style.RootFontSize = style.Text->Font.Size;
    };
    if (!Keeps(context)) {
        compute(scratch);
        return scratch;
    }
    using TCompiled = TSVGGraphicElement::TCompiled;
    auto& kept = element.FCompiled;
    if (!kept || element.FCompiledEpoch != FDocument.GetEpoch() || kept->Enabled != context.Enabled ||
        kept->Thread != FThread) {
        compute(scratch);
        kept = TCompiled::Keep({TCompiled::KeepStyle(scratch), context.Enabled});
        element.FCompiledEpoch = FDocument.GetEpoch();
    }
    return *kept->Style;
}

void TSVGPainter::Paint(TPaintPass pass, const TSVGGraphicElement* pivot, const TAffine& matrix) {
    if (!matrix.IsFinite() || !FDocument.IsDisplayed()) return;
    FPass = pass;
    FPivot = pivot;
    TPaintContext root = RootContext(matrix);
    TComputedStyle scratch;
    root.Style = &StyleOf(FDocument, root, scratch);
    if (pass == TPaintPass::Whole)
        WithEffects(FindEffects(FDocument, *root.Style), FDocument, root,
                    [&](const TPaintContext& inner) { PaintChildren(FDocument, inner); });
    else if (pivot && pivot->HasAncestor(&FDocument))
        PaintPath(FDocument, root);
}

void TSVGPainter::PaintChildren(const TSVGElement& parent, const TPaintContext& context) {
    for (const auto& child : parent.Children())
        if (const auto* const element = child->AsGraphic()) {
            PaintElement(*element, context);
            if (parent.GetTag() == TSVGTag::Switch && element->ConditionsHold()) return;
        }
}

/// Walks down to the pivot; on the way, and only there, paints what the pass wants of each level.
void TSVGPainter::PaintPath(const TSVGElement& parent, const TPaintContext& context) {
    const TSVGElement* next = FPivot;
    while (next->GetParent() != &parent)
        next = next->GetParent();
    const bool isSwitch = parent.GetTag() == TSVGTag::Switch;
    bool passed = false;
    for (const auto& child : parent.Children()) {
        const bool isNext = child.get() == next;
        if (!isNext && !isSwitch && FPass == TPaintPass::Element) continue;
        const auto* const element = child->AsGraphic();
        if (isNext && next != FPivot) {
            if (element) StepDown(*element, context); // what stands in a gradient is in no picture
        } else if (element && (isNext ? FPass == TPaintPass::Element
                                      : FPass == (passed ? TPaintPass::After : TPaintPass::Before)))
            PaintElement(*element, context);
        passed = passed || isNext;
        if (isSwitch && element && element->ConditionsHold()) return;
    }
}

/// One level of the way to the pivot.
void TSVGPainter::StepDown(const TSVGGraphicElement& element, const TPaintContext& context) {
    if (!element.IsDisplayed() || !element.ConditionsHold() || element.GetTag() == TSVGTag::Defs) return;
    TComputedStyle scratch;
    PaintPath(element, Inside(element, context, StyleOf(element, context, scratch)));
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
    if (tag == TSVGTag::Defs || tag == TSVGTag::Symbol || IsReferencedTag(tag)) return;
    if (!element.IsDisplayed() || !element.ConditionsHold() || context.Depth > MaxDepth || !Enter()) return;
    TComputedStyle scratch;
    const TComputedStyle& style = StyleOf(element, context, scratch);
    const TPaintContext inner = Inside(element, context, style);
    if (!inner.Matrix.IsInvertible()) return;
    const TEffects effects = FindEffects(element, style);
    if (effects.IsPlain()) {
        PaintContent(element, inner, 1);
    } else if (effects.IsFade() && PaintsOnce(element, style)) {
        PaintContent(element, inner, effects.Opacity);
    } else {
        WithEffects(effects, element, inner,
                    [&](const TPaintContext& within) { PaintContent(element, within, 1); });
    }
}

/// True for a shape that paints once: it can carry its opacity in its paint.
bool TSVGPainter::PaintsOnce(const TSVGGraphicElement& element, const TComputedStyle& style) {
    using T = TComputedPaint::TKind;
    return IsShapeTag(element.GetTag()) && !HasMarkers(style) &&
           (style.Fill.Kind == T::None || style.Stroke.Kind == T::None);
}

void TSVGPainter::PaintContent(const TSVGGraphicElement& element, const TPaintContext& inner,
                               double opacity) {
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
    if (IsShapeTag(element.GetTag()) || element.GetTag() == TSVGTag::Text)
        PaintDrawable(element, inner, opacity);
}

/// Paints a shape or a text, and keeps what it needed where it belongs to the active element.
void TSVGPainter::PaintDrawable(const TSVGGraphicElement& element, const TPaintContext& inner,
                                double opacity) {
    FCurrent = inner.Use ? inner.Use : &element;
    const bool isText = element.GetTag() == TSVGTag::Text;
    if (isText && FWork.IsFollowing()) FWork.Add(TPaintWork::TextVisit);
    const auto make = [&] {
        return isText ? MakeTextList(static_cast<const TSVGText&>(element), inner)
                      : MakeShapeList(static_cast<const TSVGShape&>(element), inner, opacity);
    };
    const bool markers = !isText && HasMarkers(*inner.Style);
    auto& kept = element.FCompiled;
    const bool keeps = Keeps(inner) && !markers;
    if (!keeps || !kept->HasList || kept->Opacity != opacity) {
        TDrawList list = make();
        if (markers) return PaintShape(static_cast<const TSVGShape&>(element), list, inner);
        if (!keeps || !list.IsStable) return PaintSteps(list, inner.Matrix, false);
        kept =
            TSVGGraphicElement::TCompiled::Keep({kept->Style, kept->Enabled, true, opacity, std::move(list)});
    }
    PaintSteps(kept->List, inner.Matrix, true);
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

void TSVGPainter::PaintUse(const TSVGUse& use, const TPaintContext& inner) {
    const TSVGElement* const target = use.GetTarget();
    const auto* const drawn = dynamic_cast<const TSVGGraphicElement*>(target);
    const bool circular = !drawn || drawn == &FDocument || use.HasAncestor(drawn) || IsFollowed(target);
    if (circular || FActive.size() > 64) return;
    const TFollow follow(*this, target);
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
    } else if (drawn->IsDisplayed() && drawn->ConditionsHold() && Enter() && context.Depth < MaxDepth) {
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
    const TPaintWork::THold hold(FWork, open ? 0 : FDevice.Pixels() * HeldByClip);
    if (!hold.Fits()) return;
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

namespace {

/// Gives the pixels the colours that an element shows which is drawn disabled (see GreyOf).
void MakeGrey(const TPixels& from, const TPixels& to) {
    for (int y = 0; y < from.Height; ++y)
        std::transform(from.Row(y), from.Row(y) + from.Width, to.Row(y), GreyOfPremultiplied);
}

} // namespace

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
    if (bitmap && !FWork.Take(TPaintWork::CostOfReading(bitmap->GetPixels(), map, FDevice))) return;
    FDevice.PushClip({&clip, 1});
    if (bitmap) {
        const TKeyword rendering = inner.Style->ImageRendering;
        const bool coarse = rendering == TKeyword::OptimizeSpeed || rendering == TKeyword::Pixelated ||
                            rendering == TKeyword::CrispEdgesCss;
        const auto mode = coarse ? TInterpolation::Nearest : TInterpolation::Bilinear;
        // Where only the box is asked for no pixel counts.
        if (inner.Enabled || FDevice.Pixels() == 0) {
            FDevice.DrawImage(bitmap->GetPixels(), map, 1, mode);
        } else {
            TVZGPBitmap grey(bitmap->GetWidth(), bitmap->GetHeight());
            MakeGrey(bitmap->GetPixels(), grey.GetPixels());
            FDevice.DrawImage(grey.GetPixels(), map, 1, mode);
        }
    } else {
        const TFollow follow(*this, &image);
        TSVGPainter painter(*embedded, FDevice.Target(), FWork);
        painter.FEnabled = inner.Enabled;
        painter.Paint(TPaintPass::Whole, nullptr, map);
    }
    FDevice.PopClip();
}

} // namespace Vz
