#include "tavro/svg/paint/PainterInternal.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

constexpr std::size_t MostNested = 24;

TBlendMode BlendOf(TKeyword word) {
    switch (word) {
    case TKeyword::Multiply:
        return TBlendMode::Multiply;
    case TKeyword::Screen:
        return TBlendMode::Screen;
    case TKeyword::Overlay:
        return TBlendMode::Overlay;
    case TKeyword::Darken:
        return TBlendMode::Darken;
    case TKeyword::Lighten:
        return TBlendMode::Lighten;
    case TKeyword::ColorDodge:
        return TBlendMode::ColorDodge;
    case TKeyword::ColorBurn:
        return TBlendMode::ColorBurn;
    case TKeyword::HardLight:
        return TBlendMode::HardLight;
    case TKeyword::SoftLight:
        return TBlendMode::SoftLight;
    case TKeyword::Difference:
        return TBlendMode::Difference;
    case TKeyword::Exclusion:
        return TBlendMode::Exclusion;
    case TKeyword::Hue:
        return TBlendMode::Hue;
    case TKeyword::Saturation:
        return TBlendMode::Saturation;
    case TKeyword::Color:
        return TBlendMode::Color;
    case TKeyword::Luminosity:
        return TBlendMode::Luminosity;
    default:
        return TBlendMode::Normal;
    }
}

bool IsBoxUsable(const TRectD& box) { return !box.IsEmpty() && box.Width() > 0 && box.Height() > 0; }

TAffine BoxMap(const TRectD& box) { return {box.Width(), 0, 0, box.Height(), box.Left, box.Top}; }

bool IsClippable(TSVGTag tag) {
    switch (tag) {
    case TSVGTag::Path:
    case TSVGTag::Rect:
    case TSVGTag::Circle:
    case TSVGTag::Ellipse:
    case TSVGTag::Line:
    case TSVGTag::Polyline:
    case TSVGTag::Polygon:
    case TSVGTag::Text:
    case TSVGTag::Use:
        return true;
    default:
        return false;
    }
}

/// A style that paints solid black and nothing else, in the shape of the given one.
TComputedStyle Silhouette(TComputedStyle style) {
    style.Fill = {TComputedPaint::TKind::Color};
    style.Stroke = {};
    style.FillOpacity = 1;
    style.FillRule = style.ClipRule;
    style.MarkerStart = style.MarkerMid = style.MarkerEnd = nullptr;
    style.PaintOrder = style.Filter = nullptr;
    return style;
}

} // namespace

bool TSVGPainter::TEffects::IsPlain() const { return Opacity == 1 && IsFade(); }

bool TSVGPainter::TEffects::IsFade() const {
    return !IsEmpty && !Clip && !Mask && !Style->Filter && Style->Blend == TKeyword::Normal &&
           Style->Isolation != TKeyword::Isolate;
}

bool TSVGPainter::TEffects::NeedsLayer() const {
    return Opacity < 1 || Mask ||
           (Style && (Style->Blend != TKeyword::Normal || Style->Isolation == TKeyword::Isolate));
}

const TSVGElement* TSVGPainter::FindReferenced(const std::shared_ptr<const std::string>& id,
                                               TSVGTag tag) const {
    const TSVGElement* const element = id ? FDocument.FindElement(*id) : nullptr;
    // What leads back to itself counts as absent.
    const bool usable =
        element && element->GetTag() == tag && FActive.size() <= MostNested && !IsFollowed(element);
    return usable ? element : nullptr;
}

TSVGPainter::TEffects TSVGPainter::FindEffects(const TSVGGraphicElement& element,
                                               const TComputedStyle& style) const {
    TEffects effects;
    effects.Opacity = element.GetOpacity();
    effects.Style = &style;
    effects.Clip = FindReferenced<TSVGClipPath>(style.ClipPath);
    effects.Mask = FindReferenced<TSVGMask>(style.Mask);
    effects.IsEmpty = effects.Opacity <= 0 || FActive.size() > MostNested;
    return effects;
}

TRectD TSVGPainter::ObjectBox(const TSVGGraphicElement& element, const TPaintContext& inner) {
    return FillBounds(element, *inner.Style, {}, inner.ViewWidth, inner.ViewHeight, false, FWork);
}

void TSVGPainter::WithEffects(const TEffects& effects, const TSVGGraphicElement& element,
                              const TPaintContext& inner,
                              const std::function<void(const TPaintContext&)>& paint) {
    if (effects.IsEmpty) return;
    bool clipped = false;
    bool clipMasks = false;
    TComputedStyle clipStyle;
    TPaintContext clipContext;
    std::vector<TClipShape> shapes;
    std::list<TFigures> figures;
    if (effects.Clip) {
        clipContext = ClipContext(*effects.Clip, element, inner, clipStyle);
        if (!clipContext.Matrix.IsInvertible()) return;
        const TFollow follow(*this, effects.Clip);
        clipMasks = FindReferenced<TSVGClipPath>(clipStyle.ClipPath) ||
                    !CollectClip(*effects.Clip, clipContext, shapes, figures, 0);
        if (!clipMasks && shapes.empty()) return;
        clipped = !clipMasks;
    }
    const bool layered = effects.NeedsLayer() || clipMasks;
    const double held = layered + (clipped ? HeldByClip : 0);
    const TPaintWork::THold hold(FWork, held > 0 ? held * FDevice.Pixels() : 0);
    if (!hold.Fits()) return;
    if (clipped) FDevice.PushClip(shapes);
    if (layered) {
        TLayerStyle layer;
        layer.Opacity = effects.Opacity;
        layer.Blend = BlendOf(effects.Style->Blend);
        FDevice.PushLayer(layer);
    }
    if (effects.Style->Filter)
        PaintFiltered(element, inner, paint);
    else
        paint(inner);
    if (effects.Mask) PaintMask(*effects.Mask, element, inner);
    if (clipMasks) {
        FDevice.PushMask(TMaskKind::Alpha);
        PaintClip(*effects.Clip, clipContext);
        FDevice.PopMask();
    }
    if (layered) FDevice.PopLayer();
    if (clipped) FDevice.PopClip();
}

TPaintContext TSVGPainter::ClipContext(const TSVGClipPath& clip, const TSVGGraphicElement& element,
                                       const TPaintContext& inner, TComputedStyle& style) {
    style = clip.GetComputedStyle();
    TPaintContext context = inner;
    context.Style = &style;
    context.Referenced = true;
    context.Enabled = true;
    ++context.Depth;
    TAffine units;
    if (clip.GetUnits() == TSVGUnits::ObjectBoundingBox) {
        const TRectD box = ObjectBox(element, inner);
        units = IsBoxUsable(box) ? BoxMap(box) : TAffine{0, 0, 0, 0, 0, 0};
    }
    context.Matrix =
        units.Then(TransformOf(clip, style, inner.ViewWidth, inner.ViewHeight)).Then(inner.Matrix);
    return context;
}

/// Gathers the shapes of a clip path (SVG 1.1, 14.3.5); false where they are not plain shapes, but clipped
/// themselves.
bool TSVGPainter::CollectClip(const TSVGElement& parent, const TPaintContext& context,
                              std::vector<TClipShape>& shapes, std::list<TFigures>& figures, int depth) {
    const bool isUse = parent.GetTag() == TSVGTag::Use;
    const auto take = [&](const TSVGElement* child) {
        const auto* const element = dynamic_cast<const TSVGGraphicElement*>(child);
        if (!element || !IsClippable(element->GetTag()) || !element->IsDisplayed() ||
            !element->ConditionsHold() || !Enter())
            return true;
        if (isUse && element->GetTag() == TSVGTag::Use) return true;
        const TComputedStyle style =
            ComputeStyle(*context.Style, element->GetStyle(),
                         BasisOf(*context.Style, context.ViewWidth, context.ViewHeight));
        if (style.ClipPath) return false;
        const TPaintContext inner = Inside(*element, context, style);
        if (element->GetTag() == TSVGTag::Use) {
            const auto& use = static_cast<const TSVGUse&>(*element);
            const TLengthBasis basis = BasisOf(style, inner.ViewWidth, inner.ViewHeight);
            TPaintContext moved = inner;
            moved.Matrix =
                TAffine::Translation(use.GetX().Resolve(TAxis::X, basis), use.GetY().Resolve(TAxis::Y, basis))
                    .Then(inner.Matrix);
            return depth > 4 || CollectClip(use, moved, shapes, figures, depth + 1);
        }
        if (style.Visibility != TKeyword::Visible || !inner.Matrix.IsFinite()) return true;
        const TLengthBasis basis = BasisOf(style, inner.ViewWidth, inner.ViewHeight);
        const TFillRule rule = style.ClipRule;
        if (const auto* const shape = dynamic_cast<const TSVGShape*>(element)) {
            figures.push_back(shape->MakeFigures(basis));
            shapes.push_back({{&figures.back(), nullptr, rule}, inner.Matrix});
        } else if (const auto* const text = dynamic_cast<const TSVGText*>(element)) {
            for (TTextPiece& piece : LayOutText(*text, style, basis).Pieces) {
                if (piece.Style.Visibility != TKeyword::Visible) continue;
                figures.push_back(std::move(piece.Outline));
                shapes.push_back({{&figures.back(), nullptr, TFillRule::NonZero}, inner.Matrix});
            }
        }
        return true;
    };
    if (isUse) return take(static_cast<const TSVGUse&>(parent).GetTarget());
    for (const auto& child : parent.Children())
        if (!take(child.get())) return false;
    return true;
}

void TSVGPainter::PaintClip(const TSVGClipPath& clip, const TPaintContext& context) {
    const TFollow follow(*this, &clip);
    TPaint black;
    const auto paint = [&](const TPaintContext& inner, const TSVGElement& parent, auto&& self) -> void {
        const bool isUse = parent.GetTag() == TSVGTag::Use;
        const auto one = [&](const TSVGElement* child) {
            const auto* const element = dynamic_cast<const TSVGGraphicElement*>(child);
            if (!element || !IsClippable(element->GetTag()) || !element->IsDisplayed() ||
                !element->ConditionsHold() || !Enter() || (isUse && element->GetTag() == TSVGTag::Use))
                return;
            const TComputedStyle style = ComputeStyle(
                *inner.Style, element->GetStyle(), BasisOf(*inner.Style, inner.ViewWidth, inner.ViewHeight));
            const TComputedStyle silhouette = Silhouette(style);
            TPaintContext place = Inside(*element, inner, silhouette);
            if (!place.Matrix.IsInvertible()) return;
            TEffects effects;
            effects.Clip = FindReferenced<TSVGClipPath>(style.ClipPath);
            effects.Style = &silhouette;
            WithEffects(effects, *element, place, [&](const TPaintContext& within) {
                if (element->GetTag() == TSVGTag::Use) {
                    const auto& use = static_cast<const TSVGUse&>(*element);
                    const TLengthBasis basis = BasisOf(style, within.ViewWidth, within.ViewHeight);
                    TPaintContext moved = within;
                    moved.Matrix = TAffine::Translation(use.GetX().Resolve(TAxis::X, basis),
                                                        use.GetY().Resolve(TAxis::Y, basis))
                                       .Then(within.Matrix);
                    self(moved, use, self);
                } else if (const auto* const shape = dynamic_cast<const TSVGShape*>(element)) {
                    PaintSteps(MakeShapeList(*shape, within, 1), within.Matrix, false);
                } else if (const auto* const text = dynamic_cast<const TSVGText*>(element)) {
                    for (const TTextPiece& piece :
                         LayOutText(*text, style, BasisOf(style, within.ViewWidth, within.ViewHeight)).Pieces)
                        if (piece.Style.Visibility == TKeyword::Visible)
                            FDevice.Draw({&piece.Outline}, black, within.Matrix);
                }
            });
        };
        if (isUse)
            one(static_cast<const TSVGUse&>(parent).GetTarget());
        else
            for (const auto& child : parent.Children())
                one(child.get());
    };
    // A clip path that is clipped itself.
    TEffects own;
    own.Style = context.Style;
    own.Clip = FindReferenced<TSVGClipPath>(context.Style->ClipPath);
    WithEffects(own, clip, context, [&](const TPaintContext& inner) { paint(inner, clip, paint); });
}

void TSVGPainter::PaintMask(const TSVGMask& mask, const TSVGGraphicElement& element,
                            const TPaintContext& inner) {
    const TComputedStyle style = mask.GetComputedStyle();
    const TMaskKind kind = style.MaskType == TKeyword::Alpha                 ? TMaskKind::Alpha
                           : style.ColorInterpolation == TKeyword::LinearRgb ? TMaskKind::LinearLuminance
                                                                             : TMaskKind::Luminance;
    const TFollow follow(*this, &mask);
    const TPaintWork::THold hold(FWork, 2 * FDevice.Pixels());
    if (!hold.Fits()) return;
    FDevice.PushMask(kind);
    using U = TSVGUnits;
    const bool boxUnits = mask.GetUnits().value_or(U::ObjectBoundingBox) == U::ObjectBoundingBox;
    const bool boxContent = mask.GetContentUnits().value_or(U::UserSpaceOnUse) == U::ObjectBoundingBox;
    const TRectD box = boxUnits || boxContent ? ObjectBox(element, inner) : TRectD{};
    const bool usable = !(boxUnits || boxContent) || IsBoxUsable(box);
    TLengthBasis basis = BasisOf(style, inner.ViewWidth, inner.ViewHeight);
    if (boxUnits) basis.ViewWidth = basis.ViewHeight = 1;
    constexpr TSVGLength before{TSVGUnit::Percent, -10};
    constexpr TSVGLength extent{TSVGUnit::Percent, 120};
    const double x = mask.GetOwnX().value_or(before).Resolve(TAxis::X, basis);
    const double y = mask.GetOwnY().value_or(before).Resolve(TAxis::Y, basis);
    const double w = mask.GetWidthLength().value_or(extent).Resolve(TAxis::X, basis);
    const double h = mask.GetHeightLength().value_or(extent).Resolve(TAxis::Y, basis);
    if (usable && w > 0 && h > 0) {
        TFigures frame;
        frame.AddRect(x, y, w, h);
        const TClipShape clip{{&frame}, (boxUnits ? BoxMap(box) : TAffine{}).Then(inner.Matrix)};
        FDevice.PushClip({&clip, 1});
        TPaintContext context = inner;
        context.Style = &style;
        context.Referenced = true;
        context.Enabled = true;
        ++context.Depth;
        if (boxContent) context.Matrix = BoxMap(box).Then(inner.Matrix);
        // A mask on the mask refers to the same element.
        if (const TSVGMask* const outer = FindReferenced<TSVGMask>(style.Mask)) {
            FDevice.PushLayer({});
            PaintChildren(mask, context);
            PaintMask(*outer, element, inner);
            FDevice.PopLayer();
        } else {
            PaintChildren(mask, context);
        }
        FDevice.PopClip();
    }
    FDevice.PopMask();
}

} // namespace Vz
