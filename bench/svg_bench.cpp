// From an artwork's text to its picture: reading, cloning, first painting and frames in which one element
// turns. All is measured in turn in one run; the counters are medians, and ratios to the time that expat
// takes to read the text with empty handlers (E) or to a plain copy of the frame.

#include "Expat.h"
#include "Floor.h"
#include "Scene.h"
#include "Timing.h"

#include "tavro/VZSVGControl.h"
#include "tavro/controls/Form.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/graphics/raster/Device.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstring>
#include <optional>

namespace {

using namespace Vz;
using namespace Bench;

TRectF Square(int size) { return VZRect(0, 0, static_cast<float>(size), static_cast<float>(size)); }

/// Reading, cloning and first painting, in E.
void Load(benchmark::State& state) {
    const TArtwork& artwork = Artworks[state.range(0)];
    const std::string text = ReadArtwork(artwork);
    TSVGDocument prototype;
    prototype.LoadFromText(text);
    std::vector<double> expat, parse, clone, paint[3];
    constexpr int sizes[] = {200, 400, 1000};
    TVZGPBitmap bitmaps[3];
    for (int i = 0; i < 3; ++i)
        bitmaps[i].SetSize(static_cast<unsigned>(sizes[i]), static_cast<unsigned>(sizes[i]));
    for (auto _ : state) {
        expat.push_back(Timed([&] { ReadWithExpat(text); }));
        // Until there is a document to paint; that it goes again is another matter.
        std::optional<TSVGDocument> read, copy;
        parse.push_back(Timed([&] { read.emplace().LoadFromText(text); }));
        clone.push_back(Timed([&] { copy.emplace().AssignContent(prototype); }));
        for (int i = 0; i < 3; ++i)
            paint[i].push_back(Timed([&] {
                TRasterDevice device(bitmaps[i].GetPixels());
                TVZGPCanvas canvas(device);
                prototype.FitToRect(Square(sizes[i]));
                prototype.Draw(canvas, prototype.GetDrawMatrix(), Square(sizes[i]));
            }));
    }
    const double e = Median(expat);
    state.counters["E_us"] = e;
    state.counters["parse_E"] = Median(parse) / e;
    state.counters["clone_E"] = Median(clone) / e;
    state.counters["paint200_E"] = Median(paint[0]) / e;
    state.counters["paint400_E"] = Median(paint[1]) / e;
    state.counters["paint1000_E"] = Median(paint[2]) / e;
    state.SetLabel(artwork.File);
}
BENCHMARK(Load)->Arg(0)->Arg(1)->Iterations(60)->Unit(benchmark::kMillisecond);

/// One frame: the element turns, and the stale region, or all, is painted again. In L, which is one copy and
/// two blends of the stale region, and in plain copies of the frame.
void Frame(benchmark::State& state) {
    const int size = static_cast<int>(state.range(1));
    TScene scene(Artworks[state.range(0)], size);
    const TBitmap before(size), element(size), after(size), frame(size);
    const auto stale = scene.StaleRects();
    TTimes floor, copy, edit, part, whole;
    for (auto _ : state) {
        floor.Sweep([&](int i) {
            for (const TRect& rect : stale[static_cast<std::size_t>(i)])
                PaintFloor(frame, rect, {&before, &element, &after});
            benchmark::ClobberMemory();
        });
        copy.Sweep([&](int) {
            std::memcpy(frame.Pixels.Data, before.Pixels.Data, frame.Store.size() * sizeof frame.Store[0]);
            benchmark::ClobberMemory();
        });
        scene.Rewind();
        part.Sweep([&](int i) {
            scene.Turn(i);
            scene.Host.PaintStale();
        });
        whole.Sweep([&](int i) {
            scene.Turn(i);
            scene.Host.Paint();
        });
        edit.Sweep([&](int i) { scene.Turn(i); });
        scene.Host.PaintStale();
    }
    double area = 0;
    for (const auto& rects : stale)
        for (const TRect& rect : rects)
            area += double(rect.Width()) * rect.Height() / double(frame.Store.size()) / FramesPerSweep;
    const auto median = [](const TTimes& times) { return times.At(0.5); };
    state.counters["L_us"] = median(floor);
    state.counters["copy_us"] = median(copy);
    state.counters["edit_us"] = median(edit);
    state.counters["edit_part"] = median(edit) / median(part);
    state.counters["stale_us"] = median(part);
    state.counters["stale_L"] = median(part) / median(floor);
    state.counters["whole_us"] = median(whole);
    state.counters["whole_copies"] = median(whole) / median(copy);
    state.counters["stale_part"] = area;
    state.SetLabel(scene.Artwork.File);
}
BENCHMARK(Frame)->ArgsProduct({{0, 1}, {200, 400, 1000}})->Iterations(40)->Unit(benchmark::kMicrosecond);

/// Bytes that a document takes, in sizes of its text: bare, and after it was painted in parts once.
void Memory(benchmark::State& state) {
    const TArtwork& artwork = Artworks[state.range(0)];
    const std::string text = ReadArtwork(artwork);
    TSVGDocument prototype;
    prototype.LoadFromText(text);
    constexpr int count = 200;
    std::vector<std::unique_ptr<TSVGDocument>> documents;
    documents.reserve(count);
    const auto inUse = [] { return static_cast<double>(mallinfo2().uordblks); };
    TVZGPBitmap bitmap(200, 200);
    for (auto _ : state) {
        documents.clear();
        const double before = inUse();
        for (int i = 0; i < count; ++i) {
            documents.push_back(std::make_unique<TSVGDocument>());
            documents.back()->LoadFromText(text);
        }
        const double read = inUse();
        for (const auto& document : documents) {
            TVZGPCanvas& canvas = bitmap.GetCanvas();
            document->FitToRect(Square(200));
            document->DrawElement(canvas, document->GetDrawMatrix(),
                                  *document->Find<TSVGGraphicElement>(artwork.Moving));
        }
        const double painted = inUse();
        documents.clear();
        const double cleared = inUse();
        for (int i = 0; i < count; ++i) {
            documents.push_back(std::make_unique<TSVGDocument>());
            documents.back()->AssignContent(prototype);
        }
        const double size = static_cast<double>(text.size()) * count;
        state.counters["read_texts"] = (read - before) / size;
        state.counters["painted_texts"] = (painted - before) / size;
        state.counters["cloned_texts"] = (inUse() - cleared) / size;
    }
    state.SetLabel(artwork.File);
}
BENCHMARK(Memory)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);

/// Many controls, all moving: microseconds that one of them takes.
void Many(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    constexpr int size = 200;
    const std::string text = ReadArtwork(Artworks[0]);
    TSVGDocument prototype;
    prototype.LoadFromText(text);
    const auto form = TVZForm::Create();
    constexpr int columns = 25;
    form->SetBounds(0, 0, size * std::min(count, columns), size * ((count + columns - 1) / columns));
    std::vector<TVZSVGControl*> controls;
    std::vector<TSVGGraphicElement*> needles;
    for (int i = 0; i < count; ++i) {
        auto& control = TVZSVGControl::Create(*form);
        control.SetParent(form.get());
        control.GetDocument().AssignContent(prototype);
        control.SetBounds(size * (i % columns), size * (i / columns), size, size);
        needles.push_back(control.GetDocument().Find<TSVGGraphicElement>("NeedleGroup"));
        control.SetActiveSVGElement(needles.back());
        controls.push_back(&control);
    }
    THeadlessHost host(*form);
    host.Paint();
    float angle = 0;
    std::vector<double> each;
    for (auto _ : state) {
        angle += 0.01F;
        each.push_back(Timed([&] {
                           for (int i = 0; i < count; ++i) {
                               needles[static_cast<std::size_t>(i)]->SetMatrix(
                                   CreateRotationVZMatrix({200, 200}, angle));
                               controls[static_cast<std::size_t>(i)]->Invalidate();
                           }
                           host.PaintStale();
                       }) /
                       count);
    }
    state.counters["each_us"] = Median(each);
}
BENCHMARK(Many)->Arg(1)->Arg(16)->Arg(100)->Arg(1000)->Iterations(40)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
