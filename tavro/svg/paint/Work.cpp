#include "tavro/svg/paint/WorkInternal.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace Vz {

namespace {

double AreaOf(const TRect& box) {
    return box.IsEmpty() ? 0 : (double(box.Right) - box.Left) * (double(box.Bottom) - box.Top);
}

/// Nanoseconds for a pixel of the box around a shape.
double PixelCost(TPaint::TKind kind) {
    switch (kind) {
    case TPaint::TKind::Solid:
        return 0.6;
    case TPaint::TKind::Linear:
        return 2;
    case TPaint::TKind::Radial:
        return 5;
    case TPaint::TKind::Image:
        return 6;
    }
    return 0;
}

/// The length of the lines between all points that the steps name: not below that of the path. No line counts
/// for more than `longest`.
double LengthAtMost(const TFigures& figures, double longest = std::numeric_limits<double>::max()) {
    double length = 0;
    TPointD last{};
    const double* n = figures.Numbers.data();
    for (const TVerb verb : figures.Verbs) {
        const int count = NumberCount(verb);
        const bool isArc = verb == TVerb::Arc;
        if (isArc) length += std::min(7 * (std::abs(n[0]) + std::abs(n[1])), longest);
        for (int i = isArc ? 5 : 0; i + 1 < count; i += 2) {
            if (verb != TVerb::Move)
                length += std::min(std::hypot(n[i] - last.X, n[i + 1] - last.Y), longest);
            last = {n[i], n[i + 1]};
        }
        n += count;
    }
    return length;
}

/// How many dashes a stroke is cut into, about; more than half a million are not made.
double DashCount(const TFigures& figures, const TStrokeStyle& style) {
    if (style.Dashes.empty()) return 0;
    const double sum = std::accumulate(style.Dashes.begin(), style.Dashes.end(), 0.0);
    const double dashes = LengthAtMost(figures) / sum * double(style.Dashes.size()) / 2;
    constexpr double most = 1 << 19;
    return dashes <= most ? dashes : 0;
}

/// What the outlines of a shape take: each pixel that one runs through is computed on its own.
double CostOfEdges(const TShape& shape, const TAffine& toDevice, const TRect& clip) {
    constexpr double pixel = 8;
    constexpr double strokedPixel = 50; // two outlines, with joins between them
    const double scale = toDevice.MaxScale();
    if (!(scale > 0) || !std::isfinite(scale)) return 0;
    const double longest = (double(clip.Right) - clip.Left + double(clip.Bottom) - clip.Top) / scale;
    return (shape.Stroke ? strokedPixel : pixel) * scale * LengthAtMost(*shape.Figures, longest);
}

} // namespace

double TPaintWork::PixelsOf(const IPaintDevice& device) {
    const double area = AreaOf(device.GetClipBounds());
    constexpr double endless = 1e15;
    return area < endless ? area : 0;
}

double TPaintWork::CostOfDashes(const TShape& shape) {
    constexpr double dash = 40;
    return dash * DashCount(*shape.Figures, *shape.Stroke);
}

double TPaintWork::CostOf(const TShape& shape, const TPaint& paint, const TAffine& toDevice,
                          const IPaintDevice& device) {
    constexpr double call = 400;
    constexpr double number = 40;
    constexpr double strokedNumber = 150;
    const TFigures& figures = *shape.Figures;
    double cost = call + double(figures.Numbers.size()) * (shape.Stroke ? strokedNumber : number);
    if (PixelsOf(device) == 0) return cost;
    TRectD box = figures.Bounds(toDevice);
    if (box.IsEmpty()) return cost;
    const double reach = shape.Stroke ? shape.Stroke->Width / 2 * toDevice.MaxScale() : 0;
    box = {box.Left - reach, box.Top - reach, box.Right + reach, box.Bottom + reach};
    const TRect clip = device.GetClipBounds();
    const TRect shown = Intersection(PixelBounds(box), clip);
    if (shown.IsEmpty()) return cost;
    return cost + CostOfEdges(shape, toDevice, clip) + PixelCost(paint.Kind) * AreaOf(shown);
}

double TPaintWork::CostOfReading(const TPixels& image, const TAffine& toDevice, const IPaintDevice& device) {
    constexpr double pixel = 1;
    const TRectD box = toDevice(TRectD{0, 0, double(image.Width), double(image.Height)});
    const TRect shown = Intersection(PixelBounds(box), device.GetClipBounds());
    if (PixelsOf(device) == 0 || shown.IsEmpty()) return 0;
    const double part = AreaOf(shown) / std::max(box.Width() * box.Height(), 1.0);
    return pixel * image.Width * image.Height * std::min(part, 1.0);
}

} // namespace Vz
