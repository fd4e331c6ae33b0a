#include "tavro/graphics/PathRuler.h"
#include "tavro/svg/paint/PainterInternal.h"

#include <cmath>
#include <numbers>

namespace Vz {

namespace {

/// A vertex of a path with the directions in which the path arrives and leaves; a direction of no length is
/// unknown.
struct TVertex {
    TPointD At;
    TPointD In;
    TPointD Out;
};

TPointD Minus(TPointD a, TPointD b) { return {a.X - b.X, a.Y - b.Y}; }
bool IsNull(TPointD v) { return v.X == 0 && v.Y == 0; }
TPointD FirstOf(TPointD a, TPointD b, TPointD c) { return !IsNull(a) ? a : !IsNull(b) ? b : c; }

TPointD Unit(TPointD v) {
    const double length = std::hypot(v.X, v.Y);
    return length > 0 ? TPointD{v.X / length, v.Y / length} : TPointD{};
}

/// All vertices in order (SVG 1.1, 11.6.2).
std::vector<TVertex> VerticesOf(const TFigures& figures) {
    std::vector<TVertex> vertices;
    std::size_t start = 0;
    const double* n = figures.Numbers.data();
    for (const TVerb verb : figures.Verbs) {
        if (verb == TVerb::Move) {
            start = vertices.size();
            vertices.push_back({{n[0], n[1]}, {}, {}});
        } else if (!vertices.empty()) {
            TVertex& last = vertices.back();
            const TPointD from = last.At;
            TPointD to{};
            TPointD first{};
            TPointD final{};
            if (verb == TVerb::Close) {
                to = vertices[start].At;
                first = final = Minus(to, from);
            } else if (verb == TVerb::Cubic) {
                const TPointD c1{n[0], n[1]};
                const TPointD c2{n[2], n[3]};
                to = {n[4], n[5]};
                first = FirstOf(Minus(c1, from), Minus(c2, from), Minus(to, from));
                final = FirstOf(Minus(to, c2), Minus(to, c1), Minus(to, from));
            } else if (verb == TVerb::Quad) {
                const TPointD c{n[0], n[1]};
                to = {n[2], n[3]};
                first = FirstOf(Minus(c, from), Minus(to, from), {});
                final = FirstOf(Minus(to, c), Minus(to, from), {});
            } else if (verb == TVerb::Arc) {
                to = {n[5], n[6]};
                ArcDirections(from, n, first, final);
            } else {
                to = {n[0], n[1]};
                first = final = Minus(to, from);
            }
            last.Out = Unit(first);
            TVertex next{to, Unit(final), {}};
            if (verb == TVerb::Close) {
                next.Out = vertices[start].Out;
                vertices[start].In = Unit(final);
            }
            vertices.push_back(next);
        }
        n += NumberCount(verb);
    }
    return vertices;
}

double AngleAt(const TVertex& v) {
    if (IsNull(v.In) || IsNull(v.Out)) {
        const TPointD direction = IsNull(v.In) ? v.Out : v.In;
        return std::atan2(direction.Y, direction.X);
    }
    // The bisector; where the path turns back on itself, the one on the right of its arrival.
    const TPointD sum{v.In.X + v.Out.X, v.In.Y + v.Out.Y};
    constexpr double nothing = 1e-9;
    if (std::hypot(sum.X, sum.Y) > nothing) return std::atan2(sum.Y, sum.X);
    return std::atan2(std::abs(v.In.X), -std::abs(v.In.Y));
}

} // namespace

void TSVGPainter::PaintMarkers(const TSVGShape& shape, const TPaintContext& inner) {
    const TComputedStyle& style = *inner.Style;
    if (!style.MarkerStart && !style.MarkerMid && !style.MarkerEnd) return;
    const TFigures figures = shape.MakeFigures(BasisOf(style, inner.ViewWidth, inner.ViewHeight));
    const auto vertices = VerticesOf(figures);
    const TSVGMarker* const start = FindReferenced<TSVGMarker>(style.MarkerStart);
    const TSVGMarker* const mid = FindReferenced<TSVGMarker>(style.MarkerMid);
    const TSVGMarker* const end = FindReferenced<TSVGMarker>(style.MarkerEnd);
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const auto paint = [&](const TSVGMarker* marker, bool reverse) {
            if (!marker || !FWork.IsLeft()) return;
            const TFollow follow(*this, marker);
            if (!Enter()) return;
            const double turn = reverse && marker->GetOrientReverse() ? std::numbers::pi : 0;
            PaintMarker(*marker, shape, inner, vertices[i].At, AngleAt(vertices[i]) + turn);
        };
        if (i == 0) paint(start, true);
        if (i > 0 && i + 1 < vertices.size()) paint(mid, false);
        if (i + 1 == vertices.size()) paint(end, false);
    }
}

void TSVGPainter::PaintMarker(const TSVGMarker& marker, const TSVGShape& bearer, const TPaintContext& inner,
                              TPointD at, double angleRad) {
    const TComputedStyle& shapeStyle = *inner.Style;
    TComputedStyle style = marker.GetComputedStyle();
    const TLengthBasis basis = BasisOf(style, inner.ViewWidth, inner.ViewHeight);
    constexpr TSVGLength three{TSVGUnit::Number, 3};
    const double width = marker.GetWidthLength().value_or(three).Resolve(TAxis::X, basis);
    const double height = marker.GetHeightLength().value_or(three).Resolve(TAxis::Y, basis);
    if (!(width > 0) || !(height > 0)) return;
    const bool byStroke = marker.GetUnits().value_or(TSVGUnits::StrokeWidth) == TSVGUnits::StrokeWidth;
    const double scale = byStroke ? shapeStyle.StrokeWidth : 1;
    const double angle = marker.GetOrient() ? *marker.GetOrient() * std::numbers::pi / 180 : angleRad;

    TAffine view;
    TPaintContext context = inner;
    const auto& viewBox = marker.GetViewBox();
    if (viewBox) {
        view = ViewBoxMap(*viewBox, marker.GetOwnAspectRatio().value_or(TSVGPreserveAspectRatio{}), width,
                          height);
        context.ViewWidth = viewBox->Width;
        context.ViewHeight = viewBox->Height;
    } else {
        context.ViewWidth = width;
        context.ViewHeight = height;
    }
    const TLengthBasis within = BasisOf(style, context.ViewWidth, context.ViewHeight);
    const TPointD origin = view(viewBox && marker.GetRefX().GetUnit() == TSVGUnit::Percent
                                    ? viewBox->X + marker.GetRefX().Resolve(TAxis::X, within)
                                    : marker.GetRefX().Resolve(TAxis::X, within),
                                viewBox && marker.GetRefY().GetUnit() == TSVGUnit::Percent
                                    ? viewBox->Y + marker.GetRefY().Resolve(TAxis::Y, within)
                                    : marker.GetRefY().Resolve(TAxis::Y, within));
    const TAffine place = TAffine::Translation(-origin.X, -origin.Y)
                              .Then(TAffine::Scaling(scale, scale))
                              .Then(TAffine::Rotation(angle))
                              .Then(TAffine::Translation(at.X, at.Y))
                              .Then(inner.Matrix);
    if (!place.IsInvertible()) return;
    const TContextShape shape{&bearer, &inner};
    context.Style = &style;
    context.Matrix = view.Then(place);
    context.Referenced = true;
    context.Context = &shape;
    ++context.Depth;
    const TPaintWork::THold hold(FWork, FDevice.Pixels());
    if (!hold.Fits()) return;
    TFigures frame;
    const bool clipped =
        !style.HasOverflow || (style.Overflow != TKeyword::Visible && style.Overflow != TKeyword::Auto);
    if (clipped) {
        frame.AddRect(0, 0, width, height);
        const TClipShape clip{{&frame}, place};
        FDevice.PushClip({&clip, 1});
    }
    const double opacity = marker.GetOpacity();
    if (opacity < 1) {
        TLayerStyle layer;
        layer.Opacity = opacity;
        FDevice.PushLayer(layer);
    }
    PaintChildren(marker, context);
    if (opacity < 1) FDevice.PopLayer();
    if (clipped) FDevice.PopClip();
}

} // namespace Vz
