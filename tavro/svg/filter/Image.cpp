#include "tavro/svg/filter/ImageInternal.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Vz {

namespace {

/// A function on 0..1 by its values at equal steps, between which it is taken as straight.
class TCurve {
public:
    static constexpr int Steps = 4096;

    explicit TCurve(double (*function)(double)) {
        for (int i = 0; i <= Steps; ++i)
            FValues[i] = static_cast<float>(function(i / double{Steps}));
        FValues[Steps + 1] = FValues[Steps];
    }
    float operator()(float value) const {
        if (!(value > 0)) return 0;
        const float place = std::min(value, 1.0f) * Steps;
        const int step = static_cast<int>(place);
        return FValues[step] + (FValues[step + 1] - FValues[step]) * (place - static_cast<float>(step));
    }

private:
    std::array<float, Steps + 2> FValues{};
};

double LinearCurve(double v) { return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); }
double SrgbCurve(double v) { return v <= 0.0031308 ? v * 12.92 : 1.055 * std::pow(v, 1 / 2.4) - 0.055; }

template <class F> TFilterPixel WithColors(const TFilterPixel& p, F curve) {
    if (!(p.A > 0)) return {};
    const float inverse = 1 / p.A;
    return {curve(p.R * inverse) * p.A, curve(p.G * inverse) * p.A, curve(p.B * inverse) * p.A, p.A};
}

std::uint32_t DevicePixel(const TFilterPixel& p) {
    const float alpha = std::clamp(p.A, 0.0f, 1.0f) * 255;
    const auto part = [alpha](float v) {
        return static_cast<unsigned>(std::clamp(v * 255, 0.0f, alpha) + 0.5f);
    };
    return MakeColor(static_cast<unsigned>(alpha + 0.5f), part(p.R), part(p.G), part(p.B));
}

} // namespace

TFilterImage::TFilterImage(const TRect& box, TFilterColors colors)
    : FBox(box.IsEmpty() ? TRect{} : box)
    , FColors(colors)
    , FPixels(static_cast<std::size_t>(FBox.Width()) * static_cast<std::size_t>(FBox.Height())) {}

TFilterPixel TFilterImage::At(int x, int y) const {
    if (x < FBox.Left || x >= FBox.Right || y < FBox.Top || y >= FBox.Bottom) return {};
    return Row(y)[x - FBox.Left];
}

const TFilterPixel* TFilterImage::Span(int y, int left, int count, std::vector<TFilterPixel>& scratch) const {
    const bool has = y >= FBox.Top && y < FBox.Bottom;
    if (has && left >= FBox.Left && left + count <= FBox.Right) return Row(y) + (left - FBox.Left);
    scratch.assign(static_cast<std::size_t>(count), {});
    const int from = std::max(left, FBox.Left);
    const int to = std::min(left + count, FBox.Right);
    if (has && from < to)
        std::copy_n(Row(y) + (from - FBox.Left), to - from, scratch.begin() + (from - left));
    return scratch.data();
}

float LinearOfSrgb(float value) {
    static const TCurve curve(LinearCurve);
    return curve(value);
}

float SrgbOfLinear(float value) {
    static const TCurve curve(SrgbCurve);
    return curve(value);
}

TFilterPixel FilterPixelOf(TVZGPColor color, TFilterColors colors) {
    const auto part = [colors](unsigned v) {
        const float value = static_cast<float>(v) / 255;
        return colors == TFilterColors::Linear ? static_cast<float>(LinearCurve(value)) : value;
    };
    return Premultiplied({part(RedOf(color)), part(GreenOf(color)), part(BlueOf(color)),
                          static_cast<float>(AlphaOf(color)) / 255});
}

TFilterPixel Unpremultiplied(const TFilterPixel& p) {
    if (!(p.A > 0)) return {};
    const float inverse = 1 / p.A;
    return {std::min(p.R * inverse, 1.0f), std::min(p.G * inverse, 1.0f), std::min(p.B * inverse, 1.0f), p.A};
}

TFilterPixel Premultiplied(const TFilterPixel& c) { return {c.R * c.A, c.G * c.A, c.B * c.A, c.A}; }

TFilterPixel ClampedPixel(const TFilterPixel& p) {
    // Written so that not-a-number becomes 0.
    const float alpha = p.A > 0 ? std::min(p.A, 1.0f) : 0;
    const auto part = [alpha](float v) { return v > 0 ? std::min(v, alpha) : 0; };
    return {part(p.R), part(p.G), part(p.B), alpha};
}

TFilterImage FilterImageOf(const TPixels& pixels, int left, int top) {
    constexpr float unit = 1.0f / 255;
    return MadeByRows({left, top, left + pixels.Width, top + pixels.Height}, TFilterColors::Srgb,
                      [&](int y, TFilterPixel* row) {
                          const std::uint32_t* const from = pixels.Row(y - top);
                          for (int i = 0; i < pixels.Width; ++i)
                              row[i] = {RedOf(from[i]) * unit, GreenOf(from[i]) * unit,
                                        BlueOf(from[i]) * unit, AlphaOf(from[i]) * unit};
                      });
}

void WritePixels(const TFilterImage& image, const TPixels& pixels) {
    const TRect& box = image.Box();
    const bool convert = image.Colors() == TFilterColors::Linear;
    for (int y = box.Top; y < box.Bottom; ++y) {
        const TFilterPixel* const from = image.Row(y);
        std::uint32_t* const to = pixels.Row(y - box.Top);
        for (int i = 0; i < box.Width(); ++i)
            to[i] = DevicePixel(convert ? WithColors(from[i], SrgbOfLinear) : from[i]);
    }
}

TFilterImage InColors(const TFilterImage& image, TFilterColors colors) {
    if (image.Colors() == colors) return image;
    TFilterImage result(image.Box(), colors);
    const auto curve = colors == TFilterColors::Linear ? LinearOfSrgb : SrgbOfLinear;
    std::transform(image.Pixels().begin(), image.Pixels().end(), result.Pixels().begin(),
                   [curve](const TFilterPixel& p) { return WithColors(p, curve); });
    return result;
}

TFilterImage Cropped(const TFilterImage& image, const TRect& box) {
    const TRect common = Intersection(image.Box(), box);
    if (common == image.Box()) return image;
    return MadeByRows(common, image.Colors(), [&](int y, TFilterPixel* row) {
        std::copy_n(image.Row(y) + (common.Left - image.Box().Left), common.Width(), row);
    });
}

} // namespace Vz
