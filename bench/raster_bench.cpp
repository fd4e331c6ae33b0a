// A needle of three paths that moves between two cached layers: the time of a frame in L, the time of one
// copy and two vectorised blends of the stale rectangle, beside what cairo takes for the same. All three are
// measured in turn in one run; the counters are medians over the run.

#include "Floor.h"
#include "Timing.h"

#include "tavro/graphics/raster/Device.h"

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numbers>

namespace {

using namespace Vz;
using namespace Bench;

constexpr double ArtworkSize = 400;
constexpr double TurnPerFrame = 270.0 / FramesPerSweep / 180 * std::numbers::pi;

// The scene.

/// A path, its paint, and the same as cairo has it.
struct TPart {
    TFigures Figures;
    TPolygonCache Cache;
    TPaint Paint;
    cairo_pattern_t* Pattern = nullptr;
    ~TPart() { cairo_pattern_destroy(Pattern); }
};

void SetStops(TPart& part, std::initializer_list<TRampStop> stops) {
    part.Paint.Ramp = std::make_shared<TGradientRamp>(std::span(stops.begin(), stops.size()), 1);
    for (const TRampStop& s : stops)
        cairo_pattern_add_color_stop_rgba(part.Pattern, double(s.Offset), RedOf(s.Color) / 255.0,
                                          GreenOf(s.Color) / 255.0, BlueOf(s.Color) / 255.0,
                                          AlphaOf(s.Color) / 255.0);
}

/// A needle on a square of 400 units that turns about its middle.
struct TNeedle {
    TPart Shadow, Body, Cap;

    TNeedle() {
        Outline(Shadow.Figures, 2.5);
        Shadow.Paint.Color = 0x60000000;
        Shadow.Pattern = cairo_pattern_create_rgba(0, 0, 0, 0x60 / 255.0);
        Outline(Body.Figures, 0);
        Body.Paint.Kind = TPaint::TKind::Linear;
        Body.Paint.Start = {193, 0};
        Body.Paint.End = {207, 0};
        Body.Pattern = cairo_pattern_create_linear(193, 0, 207, 0);
        SetStops(Body, {{0, 0xFFFFFFFF}, {0.45f, 0xFFE0E0E0}, {0.5f, 0xFF909090}, {1, 0xFF505050}});
        Cap.Figures.MoveTo(199, 70);
        Cap.Figures.CubicTo(199.4, 66, 200.6, 66, 201, 70);
        Cap.Figures.LineTo(203, 190);
        Cap.Figures.CubicTo(203, 194, 197, 194, 197, 190);
        Cap.Figures.Close();
        Cap.Paint.Kind = TPaint::TKind::Radial;
        Cap.Paint.Center = Cap.Paint.Focus = {200, 190};
        Cap.Paint.Radius = 125;
        Cap.Pattern = cairo_pattern_create_radial(200, 190, 0, 200, 190, 125);
        SetStops(Cap, {{0, 0xFFFF2020}, {0.7f, 0xFFC00000}, {1, 0x80800000}});
    }

    std::array<TPart*, 3> Parts() { return {&Shadow, &Body, &Cap}; }

private:
    static void Outline(TFigures& f, double offset) {
        f.MoveTo(198.9 + offset, 52 + offset);
        f.LineTo(201.1 + offset, 52 + offset);
        f.LineTo(202.2 + offset, 62 + offset);
        f.LineTo(206.4 + offset, 196 + offset);
        f.LineTo(206.4 + offset, 210 + offset);
        f.LineTo(205 + offset, 238 + offset);
        f.LineTo(195 + offset, 238 + offset);
        f.LineTo(193.6 + offset, 210 + offset);
        f.LineTo(193.6 + offset, 196 + offset);
        f.LineTo(197.8 + offset, 62 + offset);
        f.Close();
    }
};

struct TScene {
    explicit TScene(int size)
        : Scale(size / ArtworkSize)
        , Before(size)
        , Element(size)
        , After(size)
        , Frame(size) {
        Disc(Before, 195, 0xFF304050);
        AfterUsed = Disc(After, 18, 0xFF202020);
        Disc(Element, 18, 0x80202020);
        for (int i = 0; i < FramesPerSweep; ++i)
            Stale.push_back(StaleAt(i));
    }

    TAffine MatrixAt(int frame) const {
        const double turn = -135.0 / 180 * std::numbers::pi + frame * TurnPerFrame;
        return TAffine::Translation(-200, -200)
            .Then(TAffine::Rotation(turn))
            .Then({Scale, 0, 0, Scale, 200 * Scale, 200 * Scale});
    }

    double Scale;
    TNeedle Needle;
    TBitmap Before, Element, After, Frame;
    TRect AfterUsed; ///< outside of it After is transparent
    std::vector<TRect> Stale;

private:
    /// Around the needle where it was and where it is.
    TRect StaleAt(int frame) {
        TRectD box;
        for (TPart* part : Needle.Parts())
            for (const int when : {frame - 1, frame})
                box.Include(part->Figures.Bounds(MatrixAt(when)));
        return Intersection(PixelBounds(box), Frame.Pixels.Bounds());
    }

    TRect Disc(TBitmap& bitmap, double radius, TVZGPColor color) {
        TFigures figures;
        figures.AddEllipse(200, 200, radius, radius);
        TPaint paint;
        paint.Color = color;
        TShape shape;
        shape.Figures = &figures;
        TRasterDevice(bitmap.Pixels).Draw(shape, paint, TAffine::Scaling(Scale, Scale));
        return PixelBounds(figures.Bounds(TAffine::Scaling(Scale, Scale)));
    }
};

// The frame: its floor, by our device and by cairo.

void PaintFrame(TScene& scene, int frame, TRegion& region, bool whole) {
    const TAffine matrix = scene.MatrixAt(frame);
    region.Clear();
    region.Add(whole ? scene.Frame.Pixels.Bounds() : scene.Stale[std::size_t(frame)]);
    TRasterDevice device(scene.Frame.Pixels, region);
    device.Copy(scene.Before.Pixels, 0, 0);
    for (TPart* part : scene.Needle.Parts()) {
        TShape shape;
        shape.Figures = &part->Figures;
        shape.Cache = &part->Cache;
        device.Draw(shape, part->Paint, matrix);
    }
    const TRect& used = scene.AfterUsed;
    const TPixels& after = scene.After.Pixels;
    device.DrawImage({after.Row(used.Top) + used.Left, used.Width(), used.Height(), after.Stride},
                     TAffine::Translation(used.Left, used.Top), 1, TInterpolation::Bilinear);
}

cairo_surface_t* SurfaceOf(const TBitmap& bitmap) {
    return cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(bitmap.Pixels.Data),
                                               CAIRO_FORMAT_ARGB32, bitmap.Pixels.Width, bitmap.Pixels.Height,
                                               bitmap.Pixels.Width * 4);
}

struct TCairoSurfaces {
    explicit TCairoSurfaces(const TScene& scene)
        : Before(SurfaceOf(scene.Before))
        , After(SurfaceOf(scene.After))
        , Frame(SurfaceOf(scene.Frame)) {}
    ~TCairoSurfaces() {
        for (cairo_surface_t* surface : {Before, After, Frame})
            cairo_surface_destroy(surface);
    }
    cairo_surface_t *Before, *After, *Frame;
};

void AddPath(cairo_t* cr, const TFigures& figures) {
    const double* n = figures.Numbers.data();
    for (const TVerb verb : figures.Verbs) {
        switch (verb) {
        case TVerb::Move:
            cairo_move_to(cr, n[0], n[1]);
            break;
        case TVerb::Line:
            cairo_line_to(cr, n[0], n[1]);
            break;
        case TVerb::Cubic:
            cairo_curve_to(cr, n[0], n[1], n[2], n[3], n[4], n[5]);
            break;
        case TVerb::Close:
            cairo_close_path(cr);
            break;
        default:
            break;
        }
        n += NumberCount(verb);
    }
}

void PaintCairoFrame(TScene& scene, const TCairoSurfaces& surfaces, int frame, bool whole) {
    cairo_t* cr = cairo_create(surfaces.Frame);
    const TRect stale = scene.Stale[std::size_t(frame)];
    if (!whole) {
        cairo_rectangle(cr, stale.Left, stale.Top, stale.Width(), stale.Height());
        cairo_clip(cr);
    }
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(cr, surfaces.Before, 0, 0);
    cairo_paint(cr);
    cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
    cairo_save(cr);
    const TAffine m = scene.MatrixAt(frame);
    const cairo_matrix_t matrix{m.A, m.B, m.C, m.D, m.E, m.F};
    cairo_set_matrix(cr, &matrix);
    for (TPart* part : scene.Needle.Parts()) {
        AddPath(cr, part->Figures);
        cairo_set_source(cr, part->Pattern);
        cairo_fill(cr);
    }
    cairo_restore(cr);
    cairo_set_source_surface(cr, surfaces.After, 0, 0);
    cairo_paint(cr);
    cairo_destroy(cr);
}

struct TMeasured {
    TTimes Unit, Frame, Cairo;
};

void Report(benchmark::State& state, const TScene& scene, const TMeasured& measured, bool whole) {
    double part = 0;
    for (const TRect& stale : scene.Stale)
        part += double(stale.Width()) * stale.Height() / double(scene.Frame.Store.size()) / FramesPerSweep;
    const double unit = measured.Unit.At(0.5);
    const double frame = measured.Frame.At(0.5);
    state.counters["frame_us"] = frame;
    state.counters[whole ? "copy_us" : "L_us"] = unit;
    state.counters[whole ? "in_copies" : "in_L"] = frame / unit;
    state.counters[whole ? "cairo_in_copies" : "cairo_in_L"] = measured.Cairo.At(0.5) / unit;
    state.counters["spread"] = (measured.Frame.At(0.75) - measured.Frame.At(0.25)) / frame;
    state.counters["stale_part"] = part;
}

void Needle(benchmark::State& state, bool whole) {
    TScene scene(static_cast<int>(state.range(0)));
    const TCairoSurfaces surfaces(scene);
    TRegion region;
    TMeasured measured;
    for (auto _ : state) {
        measured.Unit.Sweep([&](int i) {
            if (whole)
                std::memcpy(scene.Frame.Pixels.Data, scene.Before.Pixels.Data, scene.Frame.Store.size() * 4);
            else
                PaintFloor(scene.Frame, scene.Stale[std::size_t(i)],
                           {&scene.Before, &scene.Element, &scene.After});
            benchmark::ClobberMemory();
        });
        measured.Frame.Sweep([&](int i) { PaintFrame(scene, i, region, whole); });
        measured.Cairo.Sweep([&](int i) { PaintCairoFrame(scene, surfaces, i, whole); });
    }
    Report(state, scene, measured, whole);
}

// The error of edges.

bool IsInside(const std::vector<TPointD>& points, double x, double y) {
    int winding = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const TPointD& a = points[i];
        const TPointD& b = points[(i + 1) % points.size()];
        if ((a.Y <= y) == (b.Y <= y)) continue;
        if (a.X + (y - a.Y) * (b.X - a.X) / (b.Y - a.Y) < x) winding += a.Y < b.Y ? 1 : -1;
    }
    return winding != 0;
}

/// 0..255 by 16 by 16 samples.
double SampledCoverage(const std::vector<TPointD>& points, int x, int y) {
    int inside = 0;
    for (int j = 0; j < 16; ++j)
        for (int i = 0; i < 16; ++i)
            inside += IsInside(points, x + (i + 0.5) / 16, y + (j + 0.5) / 16);
    return inside * 255.0 / 256;
}

/// Adds the squared errors of the needle's outline, white in a frame, over the pixels that it covers in part.
struct TEdgeError {
    double Squares = 0;
    long Count = 0;
    void Add(const TPixels& pixels, const TRect& box, const std::vector<TPointD>& points) {
        for (int y = box.Top; y < box.Bottom; ++y)
            for (int x = box.Left; x < box.Right; ++x) {
                const double exact = SampledCoverage(points, x, y);
                if (exact <= 0 || exact >= 255) continue;
                const double error = double(AlphaOf(pixels.Row(y)[x])) - exact;
                Squares += error * error;
                ++Count;
            }
    }
    double Rms() const { return std::sqrt(Squares / double(Count)); }
};

/// Not a time: the root mean square error (0..255) against 16 by 16 samples of the pixels on the needle's
/// edges.
void EdgeError(benchmark::State& state) {
    TScene scene(static_cast<int>(state.range(0)));
    TPart& part = scene.Needle.Body;
    TEdgeError ours, cairos;
    for (auto _ : state) {
        for (int frame = 0; frame < FramesPerSweep; frame += 6) {
            const TAffine matrix = scene.MatrixAt(frame);
            std::vector<TPointD> points;
            for (std::size_t i = 0; i < part.Figures.Numbers.size(); i += 2)
                points.push_back(matrix(part.Figures.Numbers[i], part.Figures.Numbers[i + 1]));
            const TRect box = scene.Stale[std::size_t(frame)];
            TPaint white;
            white.Color = 0xFFFFFFFF;
            TShape shape;
            shape.Figures = &part.Figures;
            std::fill(scene.Frame.Store.begin(), scene.Frame.Store.end(), 0u);
            TRasterDevice(scene.Frame.Pixels).Draw(shape, white, matrix);
            ours.Add(scene.Frame.Pixels, box, points);
            std::fill(scene.Frame.Store.begin(), scene.Frame.Store.end(), 0u);
            const TCairoSurfaces surfaces(scene);
            cairo_t* cr = cairo_create(surfaces.Frame);
            for (const TPointD& p : points)
                cairo_line_to(cr, p.X, p.Y);
            cairo_set_source_rgb(cr, 1, 1, 1);
            cairo_fill(cr);
            cairo_destroy(cr);
            cairos.Add(scene.Frame.Pixels, box, points);
        }
    }
    state.counters["rms"] = ours.Rms();
    state.counters["cairo_rms"] = cairos.Rms();
}

void NeedleInStaleRectangle(benchmark::State& state) { Needle(state, false); }
void NeedleInWholeFrame(benchmark::State& state) { Needle(state, true); }

BENCHMARK(EdgeError)->Arg(200)->Arg(400)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(NeedleInStaleRectangle)->Arg(200)->Arg(400)->Arg(1000)->Iterations(60);
BENCHMARK(NeedleInWholeFrame)->Arg(200)->Arg(400)->Arg(1000)->Iterations(40);

} // namespace

BENCHMARK_MAIN();
