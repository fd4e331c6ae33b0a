// A needle of three paths that moves between two cached layers: the time of a frame in L, the time of one copy and
// two vectorised blends of the stale rectangle, beside what cairo takes for the same. All three are measured in turn
// in one run; the counters are medians over the run.

#include "graphics/RasterDevice.h"

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstring>
#include <numbers>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {

using namespace Vz;

constexpr int FramesPerSweep = 54;
constexpr double ArtworkSize = 400;
constexpr double TurnPerFrame = 270.0 / FramesPerSweep / 180 * std::numbers::pi;

struct TBitmap {
    explicit TBitmap(int size)
        : Store(std::size_t(size) * std::size_t(size))
    {
        Pixels = {Store.data(), size, size, size};
    }
    std::vector<std::uint32_t> Store;
    TPixels Pixels;
};

double Now()
{
    using namespace std::chrono;
    return duration<double, std::micro>(steady_clock::now().time_since_epoch()).count();
}

double Median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + std::ptrdiff_t(values.size() / 2), values.end());
    return values[values.size() / 2];
}

// The floor.

#if defined(__x86_64__)
__attribute__((target("avx2"), always_inline)) inline __m256i PlainOver(__m256i over, __m256i under)
{
    const __m256i low = _mm256_set1_epi16(0x00FF);
    const __m256i half = _mm256_set1_epi16(128);
    const __m256i by257 = _mm256_set1_epi16(257);
    const __m256i alphas = _mm256_setr_epi8(3, -1, 3, -1, 7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15, -1, 3, -1, 3, -1,
                                            7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15, -1);
    const __m256i rest = _mm256_sub_epi16(low, _mm256_shuffle_epi8(over, alphas));
    __m256i even = _mm256_mullo_epi16(_mm256_and_si256(under, low), rest);
    __m256i odd = _mm256_mullo_epi16(_mm256_srli_epi16(under, 8), rest);
    even = _mm256_mulhi_epu16(_mm256_add_epi16(even, half), by257);
    odd = _mm256_mulhi_epu16(_mm256_add_epi16(odd, half), by257);
    return _mm256_add_epi8(over, _mm256_or_si256(even, _mm256_slli_epi16(odd, 8)));
}

/// Pixels over a row without looking at what they are.
__attribute__((target("avx2"))) void BlendPlain(std::uint32_t* row, const std::uint32_t* pixels, int count)
{
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m256i over = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels + i));
        const __m256i under = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(row + i));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(row + i), PlainOver(over, under));
    }
    if (i == count) return;
    const __m256i lanes = _mm256_cmpgt_epi32(_mm256_set1_epi32(count - i), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
    const __m256i over = _mm256_maskload_epi32(reinterpret_cast<const int*>(pixels + i), lanes);
    const __m256i under = _mm256_maskload_epi32(reinterpret_cast<const int*>(row + i), lanes);
    _mm256_maskstore_epi32(reinterpret_cast<int*>(row + i), lanes, PlainOver(over, under));
}
#else
void Over(std::uint32_t& row, std::uint32_t pixel)
{
    std::uint32_t sum = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const std::uint32_t t = (row >> shift & 255) * (255 - (pixel >> 24)) + 128;
        sum |= ((pixel >> shift & 255) + ((t + (t >> 8)) >> 8)) << shift;
    }
    row = sum;
}

void BlendPlain(std::uint32_t* row, const std::uint32_t* pixels, int count)
{
    for (int i = 0; i < count; ++i)
        Over(row[i], pixels[i]);
}
#endif

void PaintFloor(const TPixels& frame, const TPixels& before, const TPixels& element, const TPixels& after,
                const TRect& stale)
{
    const auto width = static_cast<std::size_t>(stale.Width());
    for (int y = stale.Top; y < stale.Bottom; ++y)
        std::memcpy(frame.Row(y) + stale.Left, before.Row(y) + stale.Left, width * 4);
    for (const TPixels& layer : {element, after})
        for (int y = stale.Top; y < stale.Bottom; ++y)
            BlendPlain(frame.Row(y) + stale.Left, layer.Row(y) + stale.Left, stale.Width());
}

// The scene.

/// A path, its paint, and the same as cairo has it.
struct TPart {
    TFigures Figures;
    TPolygonCache Cache;
    TPaint Paint;
    cairo_pattern_t* Pattern = nullptr;
    ~TPart() { cairo_pattern_destroy(Pattern); }
};

void SetStops(TPart& part, std::initializer_list<TRampStop> stops)
{
    part.Paint.Ramp = std::make_shared<TGradientRamp>(std::span(stops.begin(), stops.size()), 1);
    for (const TRampStop& s : stops)
        cairo_pattern_add_color_stop_rgba(part.Pattern, double(s.Offset), RedOf(s.Color) / 255.0,
                                          GreenOf(s.Color) / 255.0, BlueOf(s.Color) / 255.0,
                                          AlphaOf(s.Color) / 255.0);
}

/// A needle on a square of 400 units that turns about its middle.
struct TNeedle {
    TPart Shadow, Body, Cap;

    TNeedle()
    {
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
    static void Outline(TFigures& f, double offset)
    {
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
        , Frame(size)
    {
        Disc(Before, 195, 0xFF304050);
        Disc(After, 18, 0xFF202020);
        Disc(Element, 18, 0x80202020);
        for (int i = 0; i < FramesPerSweep; ++i)
            Stale.push_back(StaleAt(i));
    }

    TAffine MatrixAt(int frame) const
    {
        const double turn = -135.0 / 180 * std::numbers::pi + frame * TurnPerFrame;
        return TAffine::Translation(-200, -200)
            .Then(TAffine::Rotation(turn))
            .Then({Scale, 0, 0, Scale, 200 * Scale, 200 * Scale});
    }

    double Scale;
    TNeedle Needle;
    TBitmap Before, Element, After, Frame;
    std::vector<TRect> Stale;

private:
    /// Around the needle where it was and where it is.
    TRect StaleAt(int frame)
    {
        TRectD box;
        for (TPart* part : Needle.Parts())
            for (const int when : {frame - 1, frame})
                box.Include(part->Figures.Bounds(MatrixAt(when)));
        return Intersection(PixelBounds(box), Frame.Pixels.Bounds());
    }

    void Disc(TBitmap& bitmap, double radius, TVZGPColor color)
    {
        TFigures figures;
        figures.AddEllipse(200, 200, radius, radius);
        TPaint paint;
        paint.Color = color;
        TShape shape;
        shape.Figures = &figures;
        TRasterDevice(bitmap.Pixels).Draw(shape, paint, TAffine::Scaling(Scale, Scale));
    }
};

// The frame by our device and by cairo.

void PaintFrame(TScene& scene, int frame, TRegion& region, bool whole)
{
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
    device.DrawImage(scene.After.Pixels, {}, 1, TInterpolation::Bilinear);
}

cairo_surface_t* SurfaceOf(const TBitmap& bitmap)
{
    return cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(bitmap.Pixels.Data),
                                               CAIRO_FORMAT_ARGB32, bitmap.Pixels.Width, bitmap.Pixels.Height,
                                               bitmap.Pixels.Width * 4);
}

struct TCairoSurfaces {
    explicit TCairoSurfaces(const TScene& scene)
        : Before(SurfaceOf(scene.Before))
        , After(SurfaceOf(scene.After))
        , Frame(SurfaceOf(scene.Frame))
    {
    }
    ~TCairoSurfaces()
    {
        for (cairo_surface_t* surface : {Before, After, Frame})
            cairo_surface_destroy(surface);
    }
    cairo_surface_t *Before, *After, *Frame;
};

void AddPath(cairo_t* cr, const TFigures& figures)
{
    const double* n = figures.Numbers.data();
    for (const TVerb verb : figures.Verbs) {
        switch (verb) {
        case TVerb::Move: cairo_move_to(cr, n[0], n[1]); break;
        case TVerb::Line: cairo_line_to(cr, n[0], n[1]); break;
        case TVerb::Cubic: cairo_curve_to(cr, n[0], n[1], n[2], n[3], n[4], n[5]); break;
        case TVerb::Close: cairo_close_path(cr); break;
        default: break;
        }
        n += NumberCount(verb);
    }
}

void PaintCairoFrame(TScene& scene, const TCairoSurfaces& surfaces, int frame, bool whole)
{
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

template <class TAction> double TimeSweep(TAction&& action)
{
    const double start = Now();
    for (int frame = 0; frame < FramesPerSweep; ++frame)
        action(frame);
    return (Now() - start) / FramesPerSweep;
}

/// Microseconds a frame, sweep by sweep.
struct TTimes {
    std::vector<double> Floor, Copy, Frame, Cairo;
};

void Report(benchmark::State& state, const TScene& scene, const TTimes& times, bool whole)
{
    double part = 0;
    for (const TRect& stale : scene.Stale)
        part += double(stale.Width()) * stale.Height() / double(scene.Frame.Store.size()) / FramesPerSweep;
    const double unit = whole ? Median(times.Copy) : Median(times.Floor);
    std::vector<double> spread = times.Frame;
    std::sort(spread.begin(), spread.end());
    state.counters["frame_us"] = Median(times.Frame);
    state.counters[whole ? "copy_us" : "L_us"] = unit;
    state.counters[whole ? "in_copies" : "in_L"] = Median(times.Frame) / unit;
    state.counters[whole ? "cairo_in_copies" : "cairo_in_L"] = Median(times.Cairo) / unit;
    state.counters["spread"] = (spread[spread.size() * 3 / 4] - spread[spread.size() / 4]) / Median(times.Frame);
    state.counters["stale_part"] = part;
}

void Needle(benchmark::State& state, bool whole)
{
    TScene scene(static_cast<int>(state.range(0)));
    const TCairoSurfaces surfaces(scene);
    TRegion region;
    TTimes times;
    for (auto _ : state) {
        times.Floor.push_back(TimeSweep([&](int i) {
            PaintFloor(scene.Frame.Pixels, scene.Before.Pixels, scene.Element.Pixels, scene.After.Pixels,
                       scene.Stale[std::size_t(i)]);
        }));
        times.Copy.push_back(TimeSweep([&](int) {
            std::memcpy(scene.Frame.Pixels.Data, scene.Before.Pixels.Data, scene.Frame.Store.size() * 4);
            benchmark::ClobberMemory();
        }));
        times.Frame.push_back(TimeSweep([&](int i) { PaintFrame(scene, i, region, whole); }));
        times.Cairo.push_back(TimeSweep([&](int i) { PaintCairoFrame(scene, surfaces, i, whole); }));
        state.SetIterationTime(times.Frame.back() * 1e-6);
    }
    Report(state, scene, times, whole);
}

void NeedleInStaleRectangle(benchmark::State& state) { Needle(state, false); }
void NeedleInWholeFrame(benchmark::State& state) { Needle(state, true); }

BENCHMARK(NeedleInStaleRectangle)->Arg(200)->Arg(400)->Arg(1000)->UseManualTime()->Iterations(60);
BENCHMARK(NeedleInWholeFrame)->Arg(200)->Arg(400)->Arg(1000)->UseManualTime()->Iterations(40);

} // namespace

BENCHMARK_MAIN();
