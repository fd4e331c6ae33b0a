// A frame in which only the needle turns: this library's control beside layers cached by hand over Qt's SVG
// renderer, the same artworks, sizes, angles and stale regions in turn in one run. Run it on one core
// (taskset). Even there Qt hands spans of about a hundred pixels to its pool of threads, which on one core
// only costs; but not from a thread of that pool. So Qt's frames are painted in such a thread, and once more
// outside of it. The counters are medians, and how many times faster the control is: `stale` and `whole`
// against the former, `handed` against the latter.
//
// What Qt's renderer (SVG Tiny 1.2) draws otherwise: no text along a path, so the round gauge has no labels,
// and the other texts in the default font, as it takes a list of families for one name. Both are below the
// needle, cached.

#include "Scene.h"
#include "Timing.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QThreadPool>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <stdexcept>

namespace {

using namespace Bench;

/// Where the moving element, which is a group, stands in the artwork's text: its first byte and the one after
/// it.
std::pair<std::size_t, std::size_t> FindGroup(const std::string& text, const std::string& id) {
    const std::size_t begin = text.find("<g id=\"" + id + "\"");
    if (begin == std::string::npos) throw std::runtime_error("The artwork has no group " + id);
    std::size_t end = begin;
    int depth = 0;
    do {
        end = text.find_first_of('<', end) + 1;
        if (text.compare(end, 2, "g ") == 0 || text.compare(end, 2, "g>") == 0) ++depth;
        if (text.compare(end, 3, "/g>") == 0) --depth;
    } while (depth > 0);
    return {begin, text.find('>', end) + 1};
}

/// An artwork on Qt's renderer: what is below and what is above the moving element drawn once, the element in
/// each frame.
class TQtLayers {
public:
    TQtLayers(const TArtwork& artwork, int size)
        : FCenter(size / 2.0)
        , FBefore(Transparent(size))
        , FAfter(Transparent(size))
        , FFrame(Transparent(size)) {
        const std::string text = ReadArtwork(artwork);
        const auto [begin, end] = FindGroup(text, artwork.Moving);
        const std::string_view defs = "</defs>";
        const std::string head = text.substr(0, text.find(defs) + defs.size());
        Draw(text.substr(0, begin) + "</svg>", FBefore);
        Draw(head + text.substr(end), FAfter);
        FMoving.load(QByteArray::fromStdString(head + text.substr(begin, end - begin) + "</svg>"));
        FId = QString::fromLatin1(artwork.Moving);
        const double scale = size / (2.0 * artwork.Center);
        const QRectF bounds = FMoving.boundsOnElement(FId);
        FBounds = {bounds.topLeft() * scale, bounds.size() * scale};
    }

    /// Paints the stale rectangle of a frame, or all.
    void Paint(const QRect& stale, double angleDeg) {
        QPainter painter(&FFrame);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawImage(stale.topLeft(), FBefore, stale);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.setClipRect(stale);
        painter.translate(FCenter, FCenter);
        painter.rotate(angleDeg);
        painter.translate(-FCenter, -FCenter);
        FMoving.render(&painter, FId, FBounds);
        painter.resetTransform();
        painter.drawImage(stale.topLeft(), FAfter, stale);
    }
    const QImage& Picture() const { return FFrame; }

private:
    static QImage Transparent(int size) {
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        return image;
    }
    static void Draw(const std::string& text, QImage& image) {
        QSvgRenderer renderer(QByteArray::fromStdString(text));
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        renderer.render(&painter);
    }

    double FCenter;
    QImage FBefore, FAfter, FFrame;
    QSvgRenderer FMoving;
    QString FId;
    QRectF FBounds;
};

/// Runs an action in a thread of Qt's pool, where Qt fills spans on the spot.
template <class TAction> void InPool(TAction action) {
    QThreadPool::globalInstance()->start(action);
    QThreadPool::globalInstance()->waitForDone();
}

/// A picture's channels, row by row.
std::vector<int> Channels(const uchar* pixels, int size, std::ptrdiff_t stride) {
    std::vector<int> channels;
    for (int y = 0; y < size; ++y)
        channels.insert(channels.end(), pixels + y * stride, pixels + y * stride + size * 4);
    return channels;
}

double SumOfDifferences(const std::vector<int>& one, const std::vector<int>& other) {
    return std::transform_reduce(one.begin(), one.end(), other.begin(), 0.0, std::plus(),
                                 [](int a, int b) { return std::abs(a - b); });
}

/// Whether both show the same: counts the mean difference of a channel, which the texts dominate, and how
/// much of what the turn changes in one picture it does not change alike in the other, where 1 were no needle
/// at all.
bool LookAlike(TScene& scene, TQtLayers& layers, benchmark::State& state) {
    const int size = layers.Picture().width();
    std::vector<int> ours[2], qts[2];
    for (int i = 0; i < 2; ++i) {
        const int frame = i * FramesPerSweep / 3;
        scene.Turn(frame);
        const TPixels pixels = scene.Host.Paint().GetPixels();
        ours[i] = Channels(reinterpret_cast<const uchar*>(pixels.Data), size, pixels.Stride * 4);
        layers.Paint(layers.Picture().rect(), TScene::AngleDeg(frame));
        qts[i] = Channels(layers.Picture().constBits(), size, layers.Picture().bytesPerLine());
    }
    const double mean = SumOfDifferences(ours[0], qts[0]) / double(ours[0].size());
    const double changed = SumOfDifferences(ours[0], ours[1]);
    for (std::vector<int>* pictures : {ours, qts})
        std::transform(pictures[1].begin(), pictures[1].end(), pictures[0].begin(), pictures[1].begin(),
                       std::minus());
    const double unlike = SumOfDifferences(ours[1], qts[1]) / changed;
    state.counters["mean_difference"] = mean;
    state.counters["needle_unlike"] = unlike;
    return mean < 4 && unlike < 0.2;
}

/// The one rectangle that a frame's stale region is.
std::vector<QRect> StaleRects(TScene& scene) {
    std::vector<QRect> stale;
    for (const auto& rects : scene.StaleRects()) {
        QRect& bounds = stale.emplace_back();
        for (const TRect& rect : rects)
            bounds |= QRect(rect.Left, rect.Top, rect.Width(), rect.Height());
    }
    return stale;
}

void Frame(benchmark::State& state) {
    const int size = static_cast<int>(state.range(1));
    TScene scene(Artworks[state.range(0)], size);
    TQtLayers layers(scene.Artwork, size);
    if (!LookAlike(scene, layers, state)) return state.SkipWithError("The pictures differ");
    const std::vector<QRect> stale = StaleRects(scene);
    const auto paintPart = [&](int i) { layers.Paint(stale[std::size_t(i)], TScene::AngleDeg(i)); };
    const auto paintWhole = [&](int i) { layers.Paint(layers.Picture().rect(), TScene::AngleDeg(i)); };
    TTimes part, whole, qtPart, qtWhole, handedPart, handedWhole;
    for (auto _ : state) {
        scene.Rewind();
        part.Sweep([&](int i) {
            scene.Turn(i);
            scene.Host.PaintStale();
        });
        InPool([&] { qtPart.Sweep(paintPart); });
        handedPart.Sweep(paintPart);
        whole.Sweep([&](int i) {
            scene.Turn(i);
            scene.Host.Paint();
        });
        InPool([&] { qtWhole.Sweep(paintWhole); });
        handedWhole.Sweep(paintWhole);
    }
    const auto median = [](const TTimes& times) { return times.At(0.5); };
    state.counters["stale_us"] = median(part);
    state.counters["stale_qt_us"] = median(qtPart);
    state.counters["stale_faster"] = median(qtPart) / median(part);
    state.counters["stale_handed_faster"] = median(handedPart) / median(part);
    state.counters["whole_us"] = median(whole);
    state.counters["whole_qt_us"] = median(qtWhole);
    state.counters["whole_faster"] = median(qtWhole) / median(whole);
    state.counters["whole_handed_faster"] = median(handedWhole) / median(whole);
    state.SetLabel(scene.Artwork.File);
}
BENCHMARK(Frame)->ArgsProduct({{0, 1}, {200, 400, 1000}})->Iterations(20)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int count, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(count, arguments);
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 1;
    benchmark::RunSpecifiedBenchmarks();
}
