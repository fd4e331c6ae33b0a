#include "tavro/svg/filter/OpsInternal.h"

#include "tavro/graphics/raster/BlendModes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Vz {

TFilterImage Flooded(const TRect& box, TVZGPColor color, TFilterColors colors) {
    TFilterImage result(box, colors);
    std::fill(result.Pixels().begin(), result.Pixels().end(), FilterPixelOf(color, colors));
    return result;
}

// Colour matrices (Filter Effects 1, 9.6)

TColorMatrix IdentityColors() { return {1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0}; }

namespace {

/// What red, green and blue weigh in the luminance that saturation and hue leave alone.
constexpr double Luma[3] = {0.213, 0.715, 0.072};

/// A matrix whose upper left part is `part(row, column)`.
template <class F> TColorMatrix ColorsOf(F part) {
    TColorMatrix m = IdentityColors();
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            m[static_cast<std::size_t>(row * 5 + column)] = static_cast<float>(part(row, column));
    return m;
}

} // namespace

TColorMatrix SaturateColors(double amount) {
    return ColorsOf([amount](int row, int column) {
        return Luma[column] + amount * ((row == column ? 1 : 0) - Luma[column]);
    });
}

TColorMatrix HueRotateColors(double angleDeg) {
    static constexpr double sines[3][3] = {
        {-0.213, -0.715, 0.928}, {0.143, 0.140, -0.283}, {-0.787, 0.715, 0.072}};
    const double angle = std::fmod(angleDeg, 360) * std::numbers::pi / 180;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return ColorsOf([c, s](int row, int column) {
        return Luma[column] + c * ((row == column ? 1 : 0) - Luma[column]) + s * sines[row][column];
    });
}

TColorMatrix LuminanceToAlphaColors() {
    TColorMatrix m{};
    m[15] = 0.2125f;
    m[16] = 0.7154f;
    m[17] = 0.0721f;
    return m;
}

TFilterImage Recoloured(const TFilterImage& in, const TColorMatrix& m, const TRect& box) {
    return MappedPixels(in, box, [&m](const TFilterPixel& pixel) {
        const TFilterPixel c = Unpremultiplied(pixel);
        const auto row = [&](std::size_t i) {
            const float v = m[i] * c.R + m[i + 1] * c.G + m[i + 2] * c.B + m[i + 3] * c.A + m[i + 4];
            return v > 0 ? std::min(v, 1.0f) : 0;
        };
        return Premultiplied({row(0), row(5), row(10), row(15)});
    });
}

// Transfer functions (Filter Effects 1, 9.7)

float TTransfer::operator()(float value) const {
    const int count = static_cast<int>(Values.size());
    float result = value;
    switch (Kind) {
    case TKind::Identity:
        return value;
    case TKind::Table: {
        if (count == 0) return value;
        const float place = value * static_cast<float>(count - 1);
        const int at = std::clamp(static_cast<int>(place), 0, count - 1);
        const int next = std::min(at + 1, count - 1);
        result = Values[at] + (place - static_cast<float>(at)) * (Values[next] - Values[at]);
        break;
    }
    case TKind::Discrete:
        if (count == 0) return value;
        result = Values[std::clamp(static_cast<int>(value * static_cast<float>(count)), 0, count - 1)];
        break;
    case TKind::Linear:
        result = Slope * value + Intercept;
        break;
    case TKind::Gamma:
        result = Amplitude * std::pow(value, Exponent) + Offset;
        break;
    }
    return result > 0 ? std::min(result, 1.0f) : 0;
}

TFilterImage Transferred(const TFilterImage& in, const TTransfers& f, const TRect& box) {
    return MappedPixels(in, box, [&f](const TFilterPixel& pixel) {
        const TFilterPixel c = Unpremultiplied(pixel);
        return Premultiplied({f[0](c.R), f[1](c.G), f[2](c.B), f[3](c.A)});
    });
}

// Two pictures in one (Filter Effects 1, 9.5 and 9.8)

namespace {

/// What of each picture a Porter-Duff operator keeps, by the alphas of both.
struct TShares {
    float First, Second;
};

TShares SharesOf(TCompositeOperator op, float a, float b) {
    switch (op) {
    case TCompositeOperator::In:
        return {b, 0};
    case TCompositeOperator::Out:
        return {1 - b, 0};
    case TCompositeOperator::Atop:
        return {b, 1 - a};
    case TCompositeOperator::Xor:
        return {1 - b, 1 - a};
    case TCompositeOperator::Lighter:
        return {1, 1};
    default:
        return {1, 1 - a};
    }
}

} // namespace

TFilterImage Composed(TCompositeOperator op, const std::array<float, 4>& k, const TFilterImage& in,
                      const TFilterImage& in2, const TRect& box) {
    if (op == TCompositeOperator::Arithmetic)
        return MappedPixels(in, in2, box, [&k](const TFilterPixel& a, const TFilterPixel& b) {
            const auto part = [&k](float i, float j) { return k[0] * i * j + k[1] * i + k[2] * j + k[3]; };
            return ClampedPixel({part(a.R, b.R), part(a.G, b.G), part(a.B, b.B), part(a.A, b.A)});
        });
    return MappedPixels(in, in2, box, [op](const TFilterPixel& a, const TFilterPixel& b) {
        const TShares shares = SharesOf(op, a.A, b.A);
        const TFilterPixel sum = a * shares.First + b * shares.Second;
        return op == TCompositeOperator::Lighter ? ClampedPixel(sum) : sum;
    });
}

TFilterImage Blended(TBlendMode mode, const TFilterImage& in, const TFilterImage& in2, const TRect& box) {
    if (mode == TBlendMode::Normal) return Composed(TCompositeOperator::Over, {}, in, in2, box);
    return MappedPixels(in, in2, box, [mode](const TFilterPixel& over, const TFilterPixel& under) {
        const TFilterPixel s = Unpremultiplied(over);
        const TFilterPixel b = Unpremultiplied(under);
        const auto mixed = BlendColors(mode, {b.R, b.G, b.B}, {s.R, s.G, s.B});
        const float both = s.A * b.A;
        return over * (1 - b.A) + under * (1 - s.A) +
               TFilterPixel{mixed[0] * both, mixed[1] * both, mixed[2] * both, both};
    });
}

} // namespace Vz
