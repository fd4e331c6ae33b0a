#include "tavro/graphics/PathRuler.h"
#include "tavro/graphics/raster/Device.h"
#include "tavro/svg/paint/PainterInternal.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

TPaint SolidPaint(TVZGPColor color) {
    TPaint paint;
    paint.Color = color;
    return paint;
}

/// Whether fill and stroke change places (SVG 2, 13.8): the first of both that is named paints first.
bool StrokeFirst(const std::string& order) {
    const std::size_t stroke = order.find("stroke");
    return stroke != order.npos && stroke < order.find("fill");
}

} // namespace

std::optional<TPaint> TSVGPainter::ResolvePaint(const TComputedPaint& paint, double opacity,
                                                const TRectD& box, const TComputedStyle& style,
                                                const TPaintContext& inner, bool& stable) {
    using T = TComputedPaint::TKind;
    const auto color = [&](TVZGPColor c) {
        return SolidPaint(Faded(inner.Enabled ? c : GreyOf(c), opacity));
    };
    switch (paint.Kind) {
    case T::None:
        return {};
    case T::Color:
        return color(paint.Color);
    case T::CurrentColor:
        return color(style.Color);
    case T::ContextFill:
    case T::ContextStroke:
        return ContextPaint(paint.Kind == T::ContextStroke, opacity, inner, stable);
    case T::Server:
        break;
    }
    const TSVGElement* const server = paint.Server ? FDocument.FindElement(*paint.Server) : nullptr;
    std::optional<TPaint> made;
    if (const auto* const gradient = dynamic_cast<const TSVGCustomGradient*>(server)) {
        made = gradient->MakePaint(box, BasisOf(style, inner.ViewWidth, inner.ViewHeight), opacity,
                                   inner.Enabled);
    } else if (server && server->GetTag() == TSVGTag::Pattern) {
        stable = false;
        made = MakePattern(static_cast<const TSVGPattern&>(*server), opacity, box, style, inner);
    }
    if (made) return made;
    if (paint.HasFallback) return color(paint.Color);
    return {};
}

std::optional<TPaint> TSVGPainter::ContextPaint(bool stroke, double opacity, const TPaintContext& inner,
                                                bool& stable) {
    stable = false;
    const TContextShape* const shape = inner.Context;
    if (!shape) return {};
    const TPaintContext& outer = *shape->Inner;
    const TComputedPaint& wanted = stroke ? outer.Style->Stroke : outer.Style->Fill;
    const TRectD box =
        wanted.Kind == TComputedPaint::TKind::Server ? ObjectBox(*shape->Element, outer) : TRectD{};
    auto paint = ResolvePaint(wanted, opacity, box, *outer.Style, outer, stable);
    if (paint && paint->Kind != TPaint::TKind::Solid)
        paint->Matrix = paint->Matrix.Then(outer.Matrix).Then(inner.Matrix.Inverse());
    return paint;
}

void TSVGPainter::AddSteps(TDrawList& list, const std::shared_ptr<const TFigures>& figures,
                           const TComputedStyle& style, const TPaintContext& inner, double opacity) {
    const auto fill =
        ResolvePaint(style.Fill, style.FillOpacity * opacity, list.Box, style, inner, list.IsStable);
    const auto stroke = style.StrokeWidth > 0 ? ResolvePaint(style.Stroke, style.StrokeOpacity * opacity,
                                                             list.Box, style, inner, list.IsStable)
                                              : std::nullopt;
    const bool strokeFirst = style.PaintOrder && StrokeFirst(*style.PaintOrder);
    const auto add = [&](bool isStroke) {
        const auto& paint = isStroke ? stroke : fill;
        if (!paint) return;
        TDrawStep step;
        step.Figures = figures;
        step.IsStroke = isStroke;
        step.Rule = style.FillRule;
        step.Paint = *paint;
        if (isStroke) {
            step.Stroke = {style.StrokeWidth, style.Cap, style.Join, style.MiterLimit, {}, style.DashOffset};
            if (style.Dashes) step.Stroke.Dashes = *style.Dashes;
        }
        list.Steps.push_back(std::move(step));
    };
    add(strokeFirst);
    add(!strokeFirst);
}

TDrawList TSVGPainter::MakeShapeList(const TSVGShape& shape, const TPaintContext& inner, double opacity) {
    TDrawList list;
    const TComputedStyle& style = *inner.Style;
    if (style.Visibility != TKeyword::Visible) return list;
    const auto* const path = shape.GetTag() == TSVGTag::Path ? static_cast<const TSVGPath*>(&shape) : nullptr;
    const std::shared_ptr<const TFigures> figures =
        path ? path->GetData().ShareFigures()
             : std::make_shared<const TFigures>(
                   shape.MakeFigures(BasisOf(style, inner.ViewWidth, inner.ViewHeight)));
    if (!figures || figures->IsEmpty()) return list;
    const bool needsBox = style.Fill.Kind == TComputedPaint::TKind::Server ||
                          style.Stroke.Kind == TComputedPaint::TKind::Server;
    if (needsBox) list.Box = figures->Bounds();
    if (!(shape.GetPathLength() > 0) || !style.Dashes) {
        AddSteps(list, figures, style, inner, opacity);
        return list;
    }
    // Dashes count in the author's path length.
    TComputedStyle scaled = style;
    const double factor = TPathRuler(*figures).GetLength() / shape.GetPathLength();
    auto dashes = std::make_shared<std::vector<double>>(*style.Dashes);
    for (double& dash : *dashes)
        dash *= factor;
    scaled.Dashes = std::move(dashes);
    scaled.DashOffset *= factor;
    AddSteps(list, figures, scaled, inner, opacity);
    return list;
}

TDrawList TSVGPainter::MakeTextList(const TSVGCustomText& text, const TPaintContext& inner) {
    TDrawList list;
    TTextLayout layout =
        LayOutText(text, *inner.Style, BasisOf(*inner.Style, inner.ViewWidth, inner.ViewHeight));
    list.Box = layout.Box;
    for (TTextPiece& piece : layout.Pieces)
        if (piece.Style.Visibility == TKeyword::Visible && !piece.Outline.IsEmpty())
            AddSteps(list, std::make_shared<const TFigures>(std::move(piece.Outline)), piece.Style, inner, 1);
    return list;
}

std::optional<TPaint> TSVGPainter::MakePattern(const TSVGPattern& pattern, double opacity, const TRectD& box,
                                               const TComputedStyle& style, const TPaintContext& inner) {
    constexpr int mostTemplates = 32;
    const auto along = [&](auto get) -> decltype(get(pattern)) {
        const TSVGPattern* at = &pattern;
        for (int i = 0; at && i < mostTemplates; ++i, at = at->GetTemplate())
            if (auto found = get(*at)) return found;
        return {};
    };
    const TSVGPattern* const content =
        along([](const TSVGPattern& p) { return p.GetChildCount() ? &p : nullptr; });
    if (!content || IsFollowed(content) || FActive.size() > 16 || !FWork.IsLeft()) return {};
    using U = TSVGUnits;
    const U units = along([](const auto& p) { return p.GetUnits(); }).value_or(U::ObjectBoundingBox);
    const U contentUnits =
        along([](const auto& p) { return p.GetContentUnits(); }).value_or(U::UserSpaceOnUse);
    const auto viewBox = along([](const auto& p) { return p.GetViewBox(); });
    const bool needsBox = units == U::ObjectBoundingBox || (contentUnits == U::ObjectBoundingBox && !viewBox);
    if (needsBox && (box.IsEmpty() || box.Width() <= 0 || box.Height() <= 0)) return {};
    TLengthBasis basis = BasisOf(style, inner.ViewWidth, inner.ViewHeight);
    if (units == U::ObjectBoundingBox) basis.ViewWidth = basis.ViewHeight = 1;
    const TSVGLength zero;
    double x = along([](const auto& p) { return p.GetOwnX(); }).value_or(zero).Resolve(TAxis::X, basis);
    double y = along([](const auto& p) { return p.GetOwnY(); }).value_or(zero).Resolve(TAxis::Y, basis);
    double w =
        along([](const auto& p) { return p.GetWidthLength(); }).value_or(zero).Resolve(TAxis::X, basis);
    double h =
        along([](const auto& p) { return p.GetHeightLength(); }).value_or(zero).Resolve(TAxis::Y, basis);
    if (units == U::ObjectBoundingBox) {
        x = box.Left + x * box.Width();
        y = box.Top + y * box.Height();
        w *= box.Width();
        h *= box.Height();
    }
    const TComputedStyle own = pattern.GetComputedStyle();
    const TAffine transform =
        AboutOrigin(along([](const auto& p) { return p.GetPatternTransform(); }).value_or(TAffine{}), own,
                    inner.ViewWidth, inner.ViewHeight);
    if (!(w > 0) || !(h > 0) || !transform.IsInvertible() || !inner.Matrix.IsInvertible()) return {};

    // The tile has the resolution that it is shown in (twice that in a file), within bounds.
    const TAffine toDevice = transform.Then(inner.Matrix);
    const double detail = FDevice.IsVector() ? 2 : 1;
    constexpr double most = 4096;
    const double scaleX = std::hypot(toDevice.A, toDevice.B) * detail;
    const double scaleY = std::hypot(toDevice.C, toDevice.D) * detail;
    const int tileWidth = static_cast<int>(std::clamp(std::round(w * scaleX), 1.0, most));
    const int tileHeight = static_cast<int>(std::clamp(std::round(h * scaleY), 1.0, most));
    const TAffine toTile{tileWidth / w, 0, 0, tileHeight / h, 0, 0};

    if (FDevice.Pixels() == 0) return SolidPaint(Faded(0xFF000000, opacity)); // only asks what is painted
    const TFollow follow(*this, content);
    const double tilePixels = double(tileWidth) * tileHeight;
    const TPaintWork::THold hold(FWork, tilePixels);
    if (!hold.Fits()) return {};
    FWork.Add(TPaintWork::TilePixel * tilePixels);
    auto tile = std::make_shared<TVZGPBitmap>(tileWidth, tileHeight);
    TComputedStyle tileStyle = content->GetComputedStyle();
    TPaintContext context;
    context.Style = &tileStyle;
    context.Enabled = inner.Enabled;
    context.Referenced = true;
    context.Depth = inner.Depth + 1;
    context.ViewWidth = viewBox ? viewBox->Width : inner.ViewWidth;
    context.ViewHeight = viewBox ? viewBox->Height : inner.ViewHeight;
    if (viewBox) {
        const auto ratio = along([](const auto& p) { return p.GetOwnAspectRatio(); });
        context.Matrix = ViewBoxMap(*viewBox, ratio.value_or(TSVGPreserveAspectRatio{}), w, h).Then(toTile);
    } else {
        const TAffine origin = contentUnits == U::ObjectBoundingBox
                                   ? TAffine{box.Width(), 0, 0, box.Height(), box.Left - x, box.Top - y}
                                   : TAffine::Translation(-x, -y);
        context.Matrix = origin.Then(toTile);
    }
    TRasterDevice device(tile->GetPixels());
    TSVGPainter painter(FDocument, device, FWork);
    painter.FActive = FActive;
    painter.PaintChildren(*content, context);

    TPaint paint;
    paint.Kind = TPaint::TKind::Image;
    paint.Image = std::move(tile);
    paint.Opacity = opacity;
    paint.Matrix = toTile.Inverse().Then(TAffine::Translation(x, y)).Then(transform);
    return paint;
}

} // namespace Vz
