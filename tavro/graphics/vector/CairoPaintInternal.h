#pragma once

#include "tavro/graphics/PaintDevice.h"

#include <cairo.h>
#include <memory>

namespace Vz {

struct TCairoEnd {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
};
using TCairoContext = std::unique_ptr<cairo_t, TCairoEnd>;
using TCairoSurface = std::unique_ptr<cairo_surface_t, TCairoEnd>;
using TCairoPattern = std::unique_ptr<cairo_pattern_t, TCairoEnd>;

inline cairo_matrix_t ToCairo(const TAffine& m) { return {m.A, m.B, m.C, m.D, m.E, m.F}; }

/// Replaces the context's path by the figures under a matrix, as curves.
void SetPath(cairo_t* context, const TFigures& figures, const TAffine& matrix);
/// Replaces the context's path by the polygons under a matrix.
void SetPath(cairo_t* context, const TPolygons& polygons, const TAffine& matrix);

/// A surface that draws on the pixels.
TCairoSurface MakeSurface(const TPixels& pixels);
/// A copy of the pixels, their opacity lowered: a file's pictures are written when it is finished, when the
/// pixels may be gone.
TCairoSurface MakePicture(const TPixels& pixels, double opacity);
cairo_filter_t FilterOf(TInterpolation mode);
/// The operator that lays a layer down in this way.
cairo_operator_t OperatorOf(TBlendMode blend);

/// How the surface at hand mixes the colours between two stops.
enum class TStopMix { Plain, Premultiplied };

/// Makes the paint the context's source; `toDevice` maps the painted shape's units. False where nothing is to
/// be painted.
bool SetSource(cairo_t* context, const TPaint& paint, const TAffine& toDevice, TStopMix mix);

/// Sets width, cap, join and dashes, in units. False where cairo has no such stroke.
bool SetStroke(cairo_t* context, const TStrokeStyle& style);

} // namespace Vz
