#include "tavro/graphics/vector/CairoPaintInternal.h"

#include "tavro/graphics/FiguresInternal.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Vz {
namespace {

/// cairo's coordinates have 24 bits before the point; beyond this (in pixels) they are held at the end.
constexpr double CoordinateEndPx = 4e6;

/// Draws figures as a path of cairo's, arcs in pieces of a quarter turn at most.
struct TPathSink {
    cairo_t* Context;
    const TAffine& Matrix;

    TPointD Mapped(TPointD p) const {
        const TPointD q = Matrix(p);
        const auto held = [](double v) { return std::clamp(v, -CoordinateEndPx, CoordinateEndPx); };
        return {held(q.X), held(q.Y)};
    }
    void Begin(TPointD p) {
        const TPointD q = Mapped(p);
        cairo_move_to(Context, q.X, q.Y);
    }
    void Line(TPointD p) {
        const TPointD q = Mapped(p);
        cairo_line_to(Context, q.X, q.Y);
    }
    void Quad(TPointD from, TPointD a, TPointD p) {
        const auto third = [a](TPointD end) {
            return TPointD{end.X + (a.X - end.X) * 2 / 3, end.Y + (a.Y - end.Y) * 2 / 3};
        };
        Cubic(from, third(from), third(p), p);
    }
    void Cubic(TPointD, TPointD a, TPointD b, TPointD p) {
        const TPointD q1 = Mapped(a), q2 = Mapped(b), q3 = Mapped(p);
        cairo_curve_to(Context, q1.X, q1.Y, q2.X, q2.Y, q3.X, q3.Y);
    }
    void Arc(const TArcCurve& arc, TPointD end) {
        const int count = std::max(1, static_cast<int>(std::ceil(std::abs(arc.Sweep) / 1.5708)));
        const double step = arc.Sweep / count;
        const double reach = 4.0 / 3 * std::tan(step / 4);
        for (int i = 0; i < count; ++i) {
            const double t0 = arc.Start + i * step, t1 = t0 + step;
            const double c0 = std::cos(t0), s0 = std::sin(t0), c1 = std::cos(t1), s1 = std::sin(t1);
            Cubic({}, arc.At(c0 - reach * s0, s0 + reach * c0), arc.At(c1 + reach * s1, s1 - reach * c1),
                  i + 1 < count ? arc.At(c1, s1) : end);
        }
    }
    void End(bool isClosed) {
        if (isClosed) cairo_close_path(Context);
    }
};

void AddStop(cairo_pattern_t* pattern, double offset, const double* rgba) {
    cairo_pattern_add_color_stop_rgba(pattern, offset, rgba[0], rgba[1], rgba[2], rgba[3]);
}

void Unpack(TVZGPColor color, double opacity, double* rgba) {
    rgba[0] = RedOf(color) / 255.0;
    rgba[1] = GreenOf(color) / 255.0;
    rgba[2] = BlueOf(color) / 255.0;
    rgba[3] = AlphaOf(color) / 255.0 * opacity;
}

/// Adds the ramp's stops; where premultiplied colours are mixed and the alpha changes, with others between
/// them that follow the colours as they are written.
void AddStops(cairo_pattern_t* pattern, const TGradientRamp& ramp, TStopMix mix) {
    constexpr int between = 32;
    const TRampStop* previous = nullptr;
    double from[4] = {}, to[4] = {}, mixed[4] = {};
    for (const TRampStop& stop : ramp.Stops()) {
        Unpack(stop.Color, ramp.Opacity(), to);
        const bool isBent = previous != nullptr && mix == TStopMix::Premultiplied && from[3] != to[3];
        for (int i = 1; isBent && i < between; ++i) {
            const double part = double(i) / between;
            for (int k = 0; k < 4; ++k)
                mixed[k] = from[k] + (to[k] - from[k]) * part;
            AddStop(pattern, previous->Offset + (stop.Offset - previous->Offset) * part, mixed);
        }
        AddStop(pattern, stop.Offset, to);
        std::copy_n(to, 4, from);
        previous = &stop;
    }
}

TCairoPattern MakeRadial(const TPaint& paint) {
    // A focus on the rim is held a hair inside, as for pixels.
    constexpr double rimPart = 0.9999;
    const double focusRadius = std::max(paint.FocusRadius, 0.0);
    const double rim = paint.Radius - focusRadius;
    const TPointD axis{paint.Focus.X - paint.Center.X, paint.Focus.Y - paint.Center.Y};
    const double distance = std::hypot(axis.X, axis.Y);
    TPointD focus = paint.Focus;
    if (rim > 0 && distance > rimPart * rim && distance * rimPart <= rim) {
        const double part = rimPart * rim / distance;
        focus = {paint.Center.X + axis.X * part, paint.Center.Y + axis.Y * part};
    }
    return TCairoPattern(cairo_pattern_create_radial(focus.X, focus.Y, focusRadius, paint.Center.X,
                                                     paint.Center.Y, paint.Radius));
}

/// The gradient's pattern in paint units; null where it has no extent and shows its last colour alone.
TCairoPattern MakeGradient(const TPaint& paint) {
    if (paint.Kind == TPaint::TKind::Radial) return paint.Radius > 0 ? MakeRadial(paint) : nullptr;
    if (paint.Start == paint.End) return nullptr;
    return TCairoPattern(cairo_pattern_create_linear(paint.Start.X, paint.Start.Y, paint.End.X, paint.End.Y));
}

cairo_extend_t ExtendOf(TSpread spread) {
    constexpr cairo_extend_t extends[] = {CAIRO_EXTEND_PAD, CAIRO_EXTEND_REFLECT, CAIRO_EXTEND_REPEAT};
    return extends[static_cast<int>(spread)];
}

void SetSolid(cairo_t* context, TVZGPColor color, double opacity) {
    double rgba[4];
    Unpack(color, opacity, rgba);
    cairo_set_source_rgba(context, rgba[0], rgba[1], rgba[2], rgba[3]);
}

bool SetPattern(cairo_t* context, cairo_pattern_t* pattern, const TAffine& toDevice) {
    const cairo_matrix_t matrix = ToCairo(toDevice.Inverse());
    cairo_pattern_set_matrix(pattern, &matrix);
    if (cairo_pattern_status(pattern) != CAIRO_STATUS_SUCCESS) return false;
    cairo_set_source(context, pattern);
    return true;
}

} // namespace

void SetPath(cairo_t* context, const TFigures& figures, const TAffine& matrix) {
    cairo_new_path(context);
    WalkFigures(figures, TPathSink{context, matrix});
}

void SetPath(cairo_t* context, const TPolygons& polygons, const TAffine& matrix) {
    cairo_new_path(context);
    TPathSink sink{context, matrix};
    for (std::size_t i = 0; i + 1 < polygons.Starts.size(); ++i) {
        sink.Begin(polygons.Points[polygons.Starts[i]]);
        for (std::size_t k = polygons.Starts[i] + 1; k < polygons.Starts[i + 1]; ++k)
            sink.Line(polygons.Points[k]);
        sink.End(true);
    }
}

TCairoSurface MakeSurface(const TPixels& pixels) {
    return TCairoSurface(cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(pixels.Data), CAIRO_FORMAT_ARGB32, pixels.Width, pixels.Height,
        static_cast<int>(pixels.Stride * static_cast<std::ptrdiff_t>(sizeof(std::uint32_t)))));
}

TCairoSurface MakePicture(const TPixels& pixels, double opacity) {
    TCairoSurface picture(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, pixels.Width, pixels.Height));
    const TCairoSurface surface = MakeSurface(pixels);
    const TCairoContext context(cairo_create(picture.get()));
    cairo_set_source_surface(context.get(), surface.get(), 0, 0);
    cairo_paint_with_alpha(context.get(), opacity > 0 ? std::min(opacity, 1.0) : 0);
    return picture;
}

cairo_filter_t FilterOf(TInterpolation mode) {
    constexpr cairo_filter_t filters[] = {CAIRO_FILTER_NEAREST, CAIRO_FILTER_GOOD, CAIRO_FILTER_BEST};
    return filters[static_cast<int>(mode)];
}

cairo_operator_t OperatorOf(TBlendMode blend) {
    constexpr cairo_operator_t operators[] = {
        CAIRO_OPERATOR_OVER,           CAIRO_OPERATOR_MULTIPLY,       CAIRO_OPERATOR_SCREEN,
        CAIRO_OPERATOR_OVERLAY,        CAIRO_OPERATOR_DARKEN,         CAIRO_OPERATOR_LIGHTEN,
        CAIRO_OPERATOR_COLOR_DODGE,    CAIRO_OPERATOR_COLOR_BURN,     CAIRO_OPERATOR_HARD_LIGHT,
        CAIRO_OPERATOR_SOFT_LIGHT,     CAIRO_OPERATOR_DIFFERENCE,     CAIRO_OPERATOR_EXCLUSION,
        CAIRO_OPERATOR_HSL_HUE,        CAIRO_OPERATOR_HSL_SATURATION, CAIRO_OPERATOR_HSL_COLOR,
        CAIRO_OPERATOR_HSL_LUMINOSITY,
    };
    static_assert(std::size(operators) == static_cast<std::size_t>(TBlendMode::Luminosity) + 1);
    return operators[static_cast<int>(blend)];
}

bool SetSource(cairo_t* context, const TPaint& paint, const TAffine& toDevice, TStopMix mix) {
    if (paint.Kind == TPaint::TKind::Solid) {
        SetSolid(context, paint.Color, 1);
        return AlphaOf(paint.Color) != 0;
    }
    const TAffine map = paint.Matrix.Then(toDevice);
    if (!map.IsInvertible()) return false;
    if (paint.Kind == TPaint::TKind::Image) {
        if (!paint.Image || paint.Image->GetWidth() == 0 || paint.Image->GetHeight() == 0) return false;
        const TCairoSurface surface = MakePicture(paint.Image->GetPixels(), paint.Opacity);
        const TCairoPattern pattern(cairo_pattern_create_for_surface(surface.get()));
        cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_REPEAT);
        cairo_pattern_set_filter(pattern.get(), FilterOf(paint.Interpolation));
        return SetPattern(context, pattern.get(), map);
    }
    if (!paint.Ramp) return false;
    const TCairoPattern pattern = MakeGradient(paint);
    if (!pattern) {
        SetSolid(context, paint.Ramp->Stops().back().Color, paint.Ramp->Opacity());
        return true;
    }
    AddStops(pattern.get(), *paint.Ramp, mix);
    cairo_pattern_set_extend(pattern.get(), ExtendOf(paint.Spread));
    return SetPattern(context, pattern.get(), map);
}

bool SetStroke(cairo_t* context, const TStrokeStyle& style) {
    // cairo leaves square dots out and knows no clipped miters.
    if (style.Cap == TLineCap::Square || style.Join == TLineJoin::MiterClip || style.Join == TLineJoin::Arcs)
        return false;
    const auto& dashes = style.Dashes;
    const double sum = std::accumulate(dashes.begin(), dashes.end(), 0.0);
    const bool isGood = std::all_of(dashes.begin(), dashes.end(), [](double dash) { return dash >= 0; });
    const bool isDashed = isGood && sum > 0 && std::isfinite(sum) && dashes.size() % 2 == 0;
    // It paints dashes without length at corners, and joins those without gaps.
    if (isDashed && std::find(dashes.begin(), dashes.end(), 0.0) != dashes.end()) return false;
    const double offset = isDashed && std::isfinite(style.DashOffset) ? std::fmod(style.DashOffset, sum) : 0;
    cairo_set_dash(context, dashes.data(), isDashed ? static_cast<int>(dashes.size()) : 0, offset);
    cairo_set_line_width(context, std::min(style.Width, CoordinateLimit));
    cairo_set_miter_limit(context, style.MiterLimit >= 1 ? style.MiterLimit : 1);
    cairo_set_line_cap(context, style.Cap == TLineCap::Round ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
    cairo_set_line_join(context, style.Join == TLineJoin::Round   ? CAIRO_LINE_JOIN_ROUND
                                 : style.Join == TLineJoin::Bevel ? CAIRO_LINE_JOIN_BEVEL
                                                                  : CAIRO_LINE_JOIN_MITER);
    return true;
}

} // namespace Vz
