#include "tavro/graphics/Geometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Vz {

TRect Intersection(const TRect& a, const TRect& b) {
    const TRect both{std::max(a.Left, b.Left), std::max(a.Top, b.Top), std::min(a.Right, b.Right),
                     std::min(a.Bottom, b.Bottom)};
    return both.IsEmpty() ? TRect{} : both;
}

TRect Union(const TRect& a, const TRect& b) {
    if (a.IsEmpty()) return b;
    if (b.IsEmpty()) return a;
    return {std::min(a.Left, b.Left), std::min(a.Top, b.Top), std::max(a.Right, b.Right),
            std::max(a.Bottom, b.Bottom)};
}

TMatrix CreateRotationVZMatrix(const TPointF& center, float radians) {
    const double s = std::sin(double{radians});
    const double c = std::cos(double{radians});
    const double x = center.X;
    const double y = center.Y;
    return TAffine{c, s, -s, c, x - c * x + s * y, y - s * x - c * y}.ToMatrix();
}

TMatrix CreateScaleVZMatrix(float sx, float sy) {
    TMatrix m;
    m.M11 = sx;
    m.M22 = sy;
    return m;
}

TMatrix CreateTranslateVZMatrix(float dx, float dy) {
    TMatrix m;
    m.M31 = dx;
    m.M32 = dy;
    return m;
}

TMatrix VZMatrixMultiply(const TMatrix& a, const TMatrix& b) {
    return TAffine::FromMatrix(a).Then(TAffine::FromMatrix(b)).ToMatrix();
}

bool IsIdentityMatrix(const TMatrix& matrix) { return matrix == TMatrix{}; }

TPointF VZPoint(float x, float y) { return {x, y}; }

TRectF VZRect(const TRect& rect) {
    return {static_cast<float>(rect.Left), static_cast<float>(rect.Top), static_cast<float>(rect.Right),
            static_cast<float>(rect.Bottom)};
}

TRectF VZRect(float left, float top, float right, float bottom) { return {left, top, right, bottom}; }

TPointF VZCenterPoint(const TRect& rect) { return VZCenterPoint(VZRect(rect)); }

TPointF VZCenterPoint(const TRectF& rect) {
    return {rect.Left + (rect.Right - rect.Left) / 2, rect.Top + (rect.Bottom - rect.Top) / 2};
}

void CenterRect(TRectF& rect, const TRectF& bounds) {
    const TPointF center = VZCenterPoint(bounds);
    const float width = rect.Width();
    const float height = rect.Height();
    rect.Left = center.X - width / 2;
    rect.Top = center.Y - height / 2;
    rect.Right = rect.Left + width;
    rect.Bottom = rect.Top + height;
}

TSizeF ScaleSize(float width, float height, float sourceWidth, float sourceHeight, TSVGImageWrapMode mode,
                 float scale) {
    switch (mode) {
    case TSVGImageWrapMode::Original:
        return {sourceWidth * scale, sourceHeight * scale};
    case TSVGImageWrapMode::Fit:
        if (sourceWidth > 0 && sourceHeight > 0) {
            const float factor = std::min(width / sourceWidth, height / sourceHeight);
            return {sourceWidth * factor * scale, sourceHeight * factor * scale};
        }
        break;
    case TSVGImageWrapMode::Stretch:
        break;
    }
    return {width * scale, height * scale};
}

void TRectD::Include(double x, double y) {
    if (IsEmpty()) {
        *this = {x, y, x, y};
        return;
    }
    Left = std::min(Left, x);
    Top = std::min(Top, y);
    Right = std::max(Right, x);
    Bottom = std::max(Bottom, y);
}

void TRectD::Include(const TRectD& other) {
    if (other.IsEmpty()) return;
    Include(other.Left, other.Top);
    Include(other.Right, other.Bottom);
}

TRectD Intersection(const TRectD& a, const TRectD& b) {
    if (a.IsEmpty() || b.IsEmpty()) return {};
    const TRectD both{std::max(a.Left, b.Left), std::max(a.Top, b.Top), std::min(a.Right, b.Right),
                      std::min(a.Bottom, b.Bottom)};
    return both.IsEmpty() ? TRectD{} : both;
}

TRect PixelBounds(const TRectD& rect) {
    if (rect.IsEmpty()) return {};
    static constexpr double limit = 1 << 30;
    const auto whole = [](double v) { return static_cast<std::int32_t>(std::clamp(v, -limit, limit)); };
    return {whole(std::floor(rect.Left)), whole(std::floor(rect.Top)), whole(std::ceil(rect.Right)),
            whole(std::ceil(rect.Bottom))};
}

TAffine TAffine::Rotation(double radians) {
    const double s = std::sin(radians);
    const double c = std::cos(radians);
    return {c, s, -s, c, 0, 0};
}

TRectD TAffine::operator()(const TRectD& rect) const {
    TRectD box;
    if (rect.IsEmpty()) return box;
    for (const double x : {rect.Left, rect.Right})
        for (const double y : {rect.Top, rect.Bottom}) {
            const TPointD p = (*this)(x, y);
            box.Include(p.X, p.Y);
        }
    return box;
}

bool TAffine::IsFinite() const {
    return std::isfinite(A) && std::isfinite(B) && std::isfinite(C) && std::isfinite(D) && std::isfinite(E) &&
           std::isfinite(F);
}

bool TAffine::IsInvertible() const {
    const double det = Determinant();
    return IsFinite() && std::isnormal(det) && std::isfinite(1 / det);
}

TAffine TAffine::Inverse() const {
    if (!IsInvertible()) return {};
    const double f = 1 / Determinant();
    return {D * f, -B * f, -C * f, A * f, (C * F - D * E) * f, (B * E - A * F) * f};
}

double TAffine::MaxScale() const {
    // The sum of the lengths of the map's two parts, one that turns and one that mirrors: without
    // cancellation.
    return (std::hypot(A + D, B - C) + std::hypot(A - D, B + C)) / 2;
}

double TAffine::MeanScale() const { return std::sqrt(std::abs(Determinant())); }

TMatrix TAffine::ToMatrix() const {
    static constexpr double limit = std::numeric_limits<float>::max();
    const auto single = [](double v) { return static_cast<float>(std::clamp(v, -limit, limit)); };
    TMatrix m;
    m.M11 = single(A);
    m.M12 = single(B);
    m.M21 = single(C);
    m.M22 = single(D);
    m.M31 = single(E);
    m.M32 = single(F);
    return m;
}

TAffine TAffine::Then(const TAffine& s) const {
    return {A * s.A + B * s.C, A * s.B + B * s.D,       C * s.A + D * s.C,
            C * s.B + D * s.D, E * s.A + F * s.C + s.E, E * s.B + F * s.D + s.F};
}

} // namespace Vz
