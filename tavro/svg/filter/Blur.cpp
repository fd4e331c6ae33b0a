#include "tavro/svg/filter/OpsInternal.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Vz {

namespace {

/// From this deviation on three box blurs stand for the Gaussian (Filter Effects 1, 9.14).
constexpr double FirstBoxSigma = 2;

/// One axis of a blur: how a line of pixels becomes another one.
class TLineBlur {
public:
    /// Pictures reach from `begin` to `end`.
    TLineBlur(double sigma, int begin, int end);
    /// Writes the pixels from..from + count of the blurred line, whose own pixels are at..at + size.
    void Run(const TFilterPixel* line, int at, int size, TFilterPixel* out, int from, int count);

private:
    void RunKernel(TFilterPixel* out, int first, int from, int count) const;
    void RunBoxes(TFilterPixel* out, int first, int from, int count);
    void RunFlat(const TFilterPixel* line, int size, TFilterPixel* out, int count) const;

    std::vector<float> FKernel; ///< one side of a Gaussian, its middle first
    int FBegin, FEnd;
    int FBox = 0;         ///< width of the boxes; 0: kernel
    bool FIsFlat = false; ///< the curve is so wide that its height counts everywhere
    float FFlat = 0;      ///< that height; 0 for a curve lower than a float can tell
    int FReach = 0;
    std::vector<TFilterPixel> FLine, FNext;
};

TLineBlur::TLineBlur(double sigma, int begin, int end)
    : FBegin(begin)
    , FEnd(end) {
    if (!(sigma > 0)) {
        FKernel = {1};
        return;
    }
    if (sigma > 4.0 * (end - begin)) {
        // Over this distance the curve falls by less than a thirtieth, and it is lower than a tenth of a
        // pixel.
        FIsFlat = true;
        FFlat = static_cast<float>(1 / (sigma * std::sqrt(2 * std::numbers::pi)));
        return;
    }
    if (sigma >= FirstBoxSigma) {
        FBox = static_cast<int>(std::floor(sigma * 3 * std::sqrt(2 * std::numbers::pi) / 4 + 0.5));
        FReach = FBox % 2 ? FBox / 2 * 3 : FBox / 2 * 3 + 1;
        return;
    }
    FReach = static_cast<int>(std::ceil(3 * sigma));
    double sum = 0;
    for (int i = 0; i <= FReach; ++i) {
        // Divided before it is squared: the square of a small deviation may be 0.
        const double steps = i / sigma;
        FKernel.push_back(static_cast<float>(std::exp(-steps * steps / 2)));
        sum += FKernel.back() * (i ? 2 : 1);
    }
    for (float& weight : FKernel)
        weight = static_cast<float>(weight / sum);
}

/// The mean of the pixels from i - left to i + right, for each i of a line that is empty outside.
void BoxBlur(const std::vector<TFilterPixel>& line, int left, int right, std::vector<TFilterPixel>& out) {
    const int size = static_cast<int>(line.size());
    const float part = 1.0f / static_cast<float>(left + right + 1);
    TFilterPixel sum;
    for (int i = 0; i < std::min(right, size); ++i)
        sum += line[i];
    for (int i = 0; i < size; ++i) {
        if (i + right < size) sum += line[i + right];
        out[i] = sum * part;
        if (i >= left) sum -= line[i - left];
    }
}

void TLineBlur::RunKernel(TFilterPixel* out, int first, int from, int count) const {
    for (int i = 0; i < count; ++i) {
        const TFilterPixel* const middle = FLine.data() + (from + i - first);
        TFilterPixel sum = *middle * FKernel[0];
        for (int k = 1; k <= FReach; ++k)
            sum += (middle[k] + middle[-k]) * FKernel[k];
        out[i] = sum;
    }
}

void TLineBlur::RunBoxes(TFilterPixel* out, int first, int from, int count) {
    const int half = FBox / 2;
    const int less = FBox % 2 ? half : half - 1;
    FNext.resize(FLine.size());
    BoxBlur(FLine, half, less, FNext);
    BoxBlur(FNext, less, half, FLine);
    BoxBlur(FLine, half, half, FNext);
    std::copy_n(FNext.data() + (from - first), count, out);
}

void TLineBlur::RunFlat(const TFilterPixel* line, int size, TFilterPixel* out, int count) const {
    TFilterPixel sum;
    for (int i = 0; i < size; ++i)
        sum += line[i];
    std::fill_n(out, count, sum * FFlat);
}

void TLineBlur::Run(const TFilterPixel* line, int at, int size, TFilterPixel* out, int from, int count) {
    if (FIsFlat) return RunFlat(line, size, out, count);
    std::fill_n(out, count, TFilterPixel{});
    // Only what lies within reach of the line on the one hand and of the result on the other needs to be
    // computed.
    const int begin = std::max(from, at - FReach);
    const int end = std::min(from + count, at + size + FReach);
    if (begin >= end) return;
    const int first = FBox ? std::max(begin - FReach, FBegin) : begin - FReach;
    const int last = FBox ? std::min(end + FReach, FEnd) : end + FReach;
    FLine.assign(static_cast<std::size_t>(last - first), {});
    const int copied = std::max(first, at);
    const int copiedEnd = std::min(last, at + size);
    if (copied >= copiedEnd) return;
    std::copy_n(line + (copied - at), copiedEnd - copied, FLine.begin() + (copied - first));
    if (FBox)
        RunBoxes(out + (begin - from), first, begin, end - begin);
    else
        RunKernel(out + (begin - from), first, begin, end - begin);
}

/// The range of whole numbers from Begin to before End.
struct TRange {
    int Begin, End;
};

/// Blurs the rows of a picture into those columns from `left` to `right`, and turns the result so that rows
/// are columns.
TFilterImage BlurredAcross(const TFilterImage& in, double sigma, TRange limit, int left, int right) {
    const TRect& box = in.Box();
    TLineBlur blur(sigma, std::min({limit.Begin, left, box.Left}), std::max({limit.End, right, box.Right}));
    TFilterImage turned({box.Top, left, box.Bottom, right}, in.Colors());
    if (turned.IsEmpty()) return turned;
    const int count = right - left;
    const std::size_t step = static_cast<std::size_t>(box.Height());
    std::vector<TFilterPixel> line(static_cast<std::size_t>(count));
    for (int y = box.Top; y < box.Bottom; ++y) {
        blur.Run(in.Row(y), box.Left, box.Width(), line.data(), left, count);
        TFilterPixel* to = turned.Pixels().data() + (y - box.Top);
        for (int i = 0; i < count; ++i, to += step)
            *to = line[i];
    }
    return turned;
}

} // namespace

double BlurReach(double sigma) { return sigma > 0 ? 3 * sigma + 2 : 0; }

TFilterImage Blurred(const TFilterImage& in, double sigmaX, double sigmaY, const TRect& limit,
                     const TRect& box) {
    if (in.IsEmpty() || box.IsEmpty()) return TFilterImage(box, in.Colors());
    if (!(sigmaX > 0) && !(sigmaY > 0)) return Cropped(in, box);
    const TFilterImage turned = BlurredAcross(in, sigmaX, {limit.Left, limit.Right}, box.Left, box.Right);
    return BlurredAcross(turned, sigmaY, {limit.Top, limit.Bottom}, box.Top, box.Bottom);
}

TFilterImage WithShadow(const TFilterImage& in, const TShadow& shadow, const TRect& limit, const TRect& box) {
    const int dx = static_cast<int>(std::clamp(std::floor(shadow.Dx), -1e8, 1e8));
    const int dy = static_cast<int>(std::clamp(std::floor(shadow.Dy), -1e8, 1e8));
    // One pixel more on two sides for what is left of the shift.
    const TRect before{box.Left - dx - 1, box.Top - dy - 1, box.Right - dx, box.Bottom - dy};
    const TFilterPixel color = FilterPixelOf(shadow.Color, in.Colors());
    TFilterImage dark = MappedPixels(Blurred(in, shadow.SigmaX, shadow.SigmaY, limit, before), before,
                                     [&](const TFilterPixel& p) { return color * p.A; });
    dark = Moved(dark, shadow.Dx, shadow.Dy, box);
    return Composed(TCompositeOperator::Over, {}, in, dark, box);
}

} // namespace Vz
