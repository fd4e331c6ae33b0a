#include "tavro/svg/filter/OpsInternal.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

/// The pixel between pixels whose place counts from the corner of the pixel (0, 0).
TFilterPixel Interpolated(const TFilterImage& in, double x, double y) {
    constexpr double far = 1e8;
    if (!(std::abs(x) < far && std::abs(y) < far)) return {};
    const double left = std::floor(x - 0.5);
    const double top = std::floor(y - 0.5);
    const float fx = static_cast<float>(x - 0.5 - left);
    const float fy = static_cast<float>(y - 0.5 - top);
    const int ix = static_cast<int>(left);
    const int iy = static_cast<int>(top);
    const TFilterPixel upper = in.At(ix, iy) * (1 - fx) + in.At(ix + 1, iy) * fx;
    const TFilterPixel lower = in.At(ix, iy + 1) * (1 - fx) + in.At(ix + 1, iy + 1) * fx;
    return upper * (1 - fy) + lower * fy;
}

/// A shift in whole pixels and what is left of it, which is none where it cannot be seen.
struct TShift {
    int Whole = 0;
    float Rest = 0;

    explicit TShift(double value) {
        constexpr double far = 1e8;
        constexpr double least = 1.0 / 64;
        const double held = std::isfinite(value) ? std::clamp(value, -far, far) : far;
        Whole = static_cast<int>(std::floor(held + least));
        Rest = static_cast<float>(held - Whole);
        if (Rest < least) Rest = 0;
    }
};

} // namespace

TFilterImage Moved(const TFilterImage& in, double dx, double dy, const TRect& box) {
    const TShift x(dx);
    const TShift y(dy);
    std::vector<TFilterPixel> scratch, scratch2;
    const int width = box.Width();
    return MadeByRows(box, in.Colors(), [&](int row, TFilterPixel* to) {
        const int left = box.Left - x.Whole;
        // One more pixel to the left and above, from which the rest of the shift comes.
        const TFilterPixel* const from = in.Span(row - y.Whole, left - 1, width + 1, scratch) + 1;
        if (x.Rest == 0 && y.Rest == 0) {
            std::copy_n(from, width, to);
            return;
        }
        const TFilterPixel* const above = in.Span(row - y.Whole - 1, left - 1, width + 1, scratch2) + 1;
        for (int i = 0; i < width; ++i)
            to[i] = (from[i] * (1 - x.Rest) + from[i - 1] * x.Rest) * (1 - y.Rest) +
                    (above[i] * (1 - x.Rest) + above[i - 1] * x.Rest) * y.Rest;
    });
}

// Morphology (Filter Effects 1, 9.17)

namespace {

TFilterPixel Least(const TFilterPixel& a, const TFilterPixel& b) {
    return {std::min(a.R, b.R), std::min(a.G, b.G), std::min(a.B, b.B), std::min(a.A, b.A)};
}
TFilterPixel Most(const TFilterPixel& a, const TFilterPixel& b) {
    return {std::max(a.R, b.R), std::max(a.G, b.G), std::max(a.B, b.B), std::max(a.A, b.A)};
}

/// The extreme in each window of so many pixels, in three steps a pixel whatever the window: within blocks of
/// the window's size the extremes up to each pixel and from it on are kept, and a window is the end of one
/// block and the beginning of the next (van Herk; Gil and Werman). The first pixel's window begins where
/// `line` does.
template <class F>
void WindowExtremes(const std::vector<TFilterPixel>& line, int window, F pick,
                    std::vector<TFilterPixel>& upTo, std::vector<TFilterPixel>& fromOn, TFilterPixel* out,
                    int count) {
    const int size = static_cast<int>(line.size());
    upTo.resize(line.size());
    fromOn.resize(line.size());
    for (int i = 0; i < size; ++i)
        upTo[i] = i % window == 0 ? line[i] : pick(upTo[i - 1], line[i]);
    for (int i = size - 1; i >= 0; --i)
        fromOn[i] = i == size - 1 || i % window == window - 1 ? line[i] : pick(fromOn[i + 1], line[i]);
    for (int i = 0; i < count; ++i)
        out[i] = pick(fromOn[i], upTo[i + window - 1]);
}

/// One axis, rows becoming columns.
TFilterImage MorphedAcross(TMorphology op, const TFilterImage& in, int size, int left, int right) {
    const TRect& box = in.Box();
    TFilterImage turned({box.Top, left, box.Bottom, right}, in.Colors());
    if (turned.IsEmpty()) return turned;
    const int count = right - left;
    // A greater window sees nothing more.
    const int most = 2 * (std::max(right, box.Right) - std::min(left, box.Left)) + 2;
    const int window = std::clamp(size, 1, most);
    const std::size_t step = static_cast<std::size_t>(box.Height());
    std::vector<TFilterPixel> line, scratch, upTo, fromOn, out(static_cast<std::size_t>(count));
    for (int y = box.Top; y < box.Bottom; ++y) {
        const TFilterPixel* const from = in.Span(y, left - window / 2, count + window - 1, scratch);
        line.assign(from, from + count + window - 1);
        if (op == TMorphology::Erode)
            WindowExtremes(line, window, Least, upTo, fromOn, out.data(), count);
        else
            WindowExtremes(line, window, Most, upTo, fromOn, out.data(), count);
        TFilterPixel* to = turned.Pixels().data() + (y - box.Top);
        for (int i = 0; i < count; ++i, to += step)
            *to = out[i];
    }
    return turned;
}

} // namespace

TFilterImage Morphed(TMorphology op, const TFilterImage& in, int windowX, int windowY, const TRect& box) {
    if (in.IsEmpty() || box.IsEmpty()) return TFilterImage(box, in.Colors());
    return MorphedAcross(op, MorphedAcross(op, in, windowX, box.Left, box.Right), windowY, box.Top,
                         box.Bottom);
}

// Convolution (Filter Effects 1, 9.9)

namespace {

/// Where a place beyond an extent is read; nothing where it is transparent.
int EdgePlace(int at, int first, int end, TEdgeMode mode) {
    if (at >= first && at < end) return at;
    if (mode == TEdgeMode::Duplicate) return std::clamp(at, first, end - 1);
    const int size = end - first;
    const int rest = (at - first) % size;
    return first + (rest < 0 ? rest + size : rest);
}

/// The input as far as the kernel looks beyond the box, its edges continued.
TFilterImage WithEdges(const TFilterImage& in, const TConvolution& c, const TRect& edge, const TRect& box) {
    const TRect grown{box.Left - c.TargetX, box.Top - c.TargetY, box.Right + c.OrderX - 1 - c.TargetX,
                      box.Bottom + c.OrderY - 1 - c.TargetY};
    if (c.Edge == TEdgeMode::None || edge.IsEmpty()) {
        std::vector<TFilterPixel> scratch;
        const TFilterImage own = Cropped(in, edge);
        return MadeByRows(grown, in.Colors(), [&](int y, TFilterPixel* row) {
            std::copy_n(own.Span(y, grown.Left, grown.Width(), scratch), grown.Width(), row);
        });
    }
    return MadeByRows(grown, in.Colors(), [&](int y, TFilterPixel* row) {
        const int from = EdgePlace(y, edge.Top, edge.Bottom, c.Edge);
        for (int x = grown.Left; x < grown.Right; ++x)
            row[x - grown.Left] = in.At(EdgePlace(x, edge.Left, edge.Right, c.Edge), from);
    });
}

} // namespace

TFilterImage Convolved(const TFilterImage& in, const TConvolution& c, const TRect& edge, const TRect& box) {
    if (box.IsEmpty()) return TFilterImage(box, in.Colors());
    TFilterImage source = WithEdges(in, c, edge, box);
    if (c.PreserveAlpha)
        std::transform(source.Pixels().begin(), source.Pixels().end(), source.Pixels().begin(),
                       Unpremultiplied);
    // The kernel is turned by half a turn: its last weight meets the first pixel.
    std::vector<float> kernel(c.Kernel.rbegin(), c.Kernel.rend());
    for (float& weight : kernel)
        weight /= c.Divisor;
    return MadeByRows(box, in.Colors(), [&](int y, TFilterPixel* row) {
        for (int x = 0; x < box.Width(); ++x) {
            TFilterPixel sum;
            for (int j = 0; j < c.OrderY; ++j) {
                const TFilterPixel* const from = source.Row(y - c.TargetY + j) + x;
                const float* const weights = kernel.data() + j * c.OrderX;
                for (int i = 0; i < c.OrderX; ++i)
                    sum += from[i] * weights[i];
            }
            const float alpha = source.Row(y)[x + c.TargetX].A;
            const float bias = c.Bias * alpha;
            sum += {bias, bias, bias, bias};
            if (c.PreserveAlpha) {
                sum = {sum.R * alpha, sum.G * alpha, sum.B * alpha, alpha};
            }
            row[x] = ClampedPixel(sum);
        }
    });
}

// Displacement and tiles (Filter Effects 1, 9.11 and 9.20)

TFilterImage Displaced(const TFilterImage& in, const TFilterImage& map, const TDisplacement& d,
                       const TRect& box) {
    static constexpr float TFilterPixel::*channels[] = {&TFilterPixel::R, &TFilterPixel::G, &TFilterPixel::B,
                                                        &TFilterPixel::A};
    std::vector<TFilterPixel> scratch;
    return MadeByRows(box, in.Colors(), [&](int y, TFilterPixel* row) {
        const TFilterPixel* const from = map.Span(y, box.Left, box.Width(), scratch);
        for (int i = 0; i < box.Width(); ++i) {
            const TFilterPixel c = Unpremultiplied(from[i]);
            const double u = c.*channels[d.XChannel] - 0.5;
            const double v = c.*channels[d.YChannel] - 0.5;
            row[i] = Interpolated(in, box.Left + i + 0.5 + u * d.XScale[0] + v * d.YScale[0],
                                  y + 0.5 + u * d.XScale[1] + v * d.YScale[1]);
        }
    });
}

TFilterImage Tiled(const TFilterImage& in, const TRectD& tile, const TRect& box) {
    const double width = tile.Width();
    const double height = tile.Height();
    if (!(width > 0) || !(height > 0)) return TFilterImage(box, in.Colors());
    const auto wrapped = [](double at, double first, double size) {
        const double rest = std::fmod(at - first, size);
        return static_cast<int>(std::floor(first + (rest < 0 ? rest + size : rest)));
    };
    std::vector<int> columns;
    for (int x = box.Left; x < box.Right; ++x)
        columns.push_back(wrapped(x + 0.5, tile.Left, width));
    return MadeByRows(box, in.Colors(), [&](int y, TFilterPixel* row) {
        const int from = wrapped(y + 0.5, tile.Top, height);
        for (std::size_t i = 0; i < columns.size(); ++i)
            row[i] = in.At(columns[i], from);
    });
}

} // namespace Vz
