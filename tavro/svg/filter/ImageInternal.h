#pragma once

#include "tavro/graphics/Bitmap.h"
#include "tavro/graphics/Geometry.h"

#include <memory>
#include <vector>

namespace Vz {

/// What the colours of a filter's pixels stand for (Filter Effects 1, color-interpolation-filters).
enum class TFilterColors : std::uint8_t { Srgb, Linear };

/// One pixel of a filter: premultiplied, each part 0..1.
struct TFilterPixel {
    float R = 0, G = 0, B = 0, A = 0;

    TFilterPixel& operator+=(const TFilterPixel& o) {
        R += o.R, G += o.G, B += o.B, A += o.A;
        return *this;
    }
    TFilterPixel& operator-=(const TFilterPixel& o) {
        R -= o.R, G -= o.G, B -= o.B, A -= o.A;
        return *this;
    }
    friend TFilterPixel operator+(TFilterPixel a, const TFilterPixel& b) { return a += b; }
    friend TFilterPixel operator*(const TFilterPixel& p, float f) {
        return {p.R * f, p.G * f, p.B * f, p.A * f};
    }
    friend bool operator==(const TFilterPixel&, const TFilterPixel&) = default;
};

/// A picture that filters work on: the pixels of a box, everything outside of it transparent.
class TFilterImage {
public:
    TFilterImage() = default;
    /// A transparent picture.
    explicit TFilterImage(const TRect& box, TFilterColors colors = TFilterColors::Srgb);

    const TRect& Box() const { return FBox; }
    TFilterColors Colors() const { return FColors; }
    bool IsEmpty() const { return FPixels.empty(); }
    /// The row of that y, whose first pixel lies at Box().Left.
    TFilterPixel* Row(int y) { return FPixels.data() + Index(y); }
    const TFilterPixel* Row(int y) const { return FPixels.data() + Index(y); }
    std::vector<TFilterPixel>& Pixels() { return FPixels; }
    const std::vector<TFilterPixel>& Pixels() const { return FPixels; }
    /// The pixel at a place; transparent outside of the box.
    TFilterPixel At(int x, int y) const;
    /// `count` pixels from (left, y) on: the picture's own where it has them all, else copied into `scratch`.
    const TFilterPixel* Span(int y, int left, int count, std::vector<TFilterPixel>& scratch) const;

private:
    std::size_t Index(int y) const {
        return static_cast<std::size_t>(y - FBox.Top) * static_cast<std::size_t>(FBox.Width());
    }

    TRect FBox;
    TFilterColors FColors = TFilterColors::Srgb;
    std::vector<TFilterPixel> FPixels;
};

using TFilterImagePtr = std::shared_ptr<const TFilterImage>;

/// The light that an sRGB channel stands for, and back; 0..1, what lies outside is clamped (IEC 61966-2-1).
float LinearOfSrgb(float value);
float SrgbOfLinear(float value);

/// The colour as a pixel of a filter.
TFilterPixel FilterPixelOf(TVZGPColor color, TFilterColors colors);
/// The colour itself, its alpha not multiplied in; transparent black where alpha is 0.
TFilterPixel Unpremultiplied(const TFilterPixel& pixel);
TFilterPixel Premultiplied(const TFilterPixel& color);
/// Every part within 0..1 and no colour above alpha.
TFilterPixel ClampedPixel(const TFilterPixel& pixel);
/// a over b.
inline TFilterPixel OverPixel(const TFilterPixel& a, const TFilterPixel& b) { return a + b * (1 - a.A); }

/// Device pixels, the first of which lies at (left, top), as sRGB picture.
TFilterImage FilterImageOf(const TPixels& pixels, int left, int top);
/// Writes the picture as sRGB into pixels of its box's size.
void WritePixels(const TFilterImage& image, const TPixels& pixels);
/// The same picture in other colours.
TFilterImage InColors(const TFilterImage& image, TFilterColors colors);
/// The part of a picture within a box.
TFilterImage Cropped(const TFilterImage& image, const TRect& box);

/// The picture that `row` fills: it is called for each y of the box with the row to be written.
template <class F> TFilterImage MadeByRows(const TRect& box, TFilterColors colors, F row) {
    TFilterImage result(box, colors);
    if (!result.IsEmpty())
        for (int y = box.Top; y < box.Bottom; ++y)
            row(y, result.Row(y));
    return result;
}

/// The picture whose pixels `map` makes of those of another one, transparent ones included.
template <class F> TFilterImage MappedPixels(const TFilterImage& in, const TRect& box, F map) {
    std::vector<TFilterPixel> scratch;
    return MadeByRows(box, in.Colors(), [&](int y, TFilterPixel* row) {
        const TFilterPixel* const from = in.Span(y, box.Left, box.Width(), scratch);
        for (int i = 0; i < box.Width(); ++i)
            row[i] = map(from[i]);
    });
}

/// Likewise of two pictures in the same colours.
template <class F>
TFilterImage MappedPixels(const TFilterImage& in, const TFilterImage& in2, const TRect& box, F map) {
    std::vector<TFilterPixel> scratch, scratch2;
    return MadeByRows(box, in.Colors(), [&](int y, TFilterPixel* row) {
        const TFilterPixel* const a = in.Span(y, box.Left, box.Width(), scratch);
        const TFilterPixel* const b = in2.Span(y, box.Left, box.Width(), scratch2);
        for (int i = 0; i < box.Width(); ++i)
            row[i] = map(a[i], b[i]);
    });
}

} // namespace Vz
