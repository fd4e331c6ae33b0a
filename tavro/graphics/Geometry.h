#pragma once

#include <cstdint>

namespace Vz {

/// A point in single precision.
struct TPointF {
    float X = 0;
    float Y = 0;
    friend bool operator==(const TPointF&, const TPointF&) = default;
};

/// A rectangle in single precision; Right and Bottom are outside of it.
struct TRectF {
    float Left = 0;
    float Top = 0;
    float Right = 0;
    float Bottom = 0;
    float Width() const { return Right - Left; }
    float Height() const { return Bottom - Top; }
    friend bool operator==(const TRectF&, const TRectF&) = default;
};

/// A rectangle of whole pixels; Right and Bottom are outside of it.
struct TRect {
    std::int32_t Left = 0;
    std::int32_t Top = 0;
    std::int32_t Right = 0;
    std::int32_t Bottom = 0;
    std::int32_t Width() const { return Right - Left; }
    std::int32_t Height() const { return Bottom - Top; }
    bool IsEmpty() const { return Right <= Left || Bottom <= Top; }
    friend bool operator==(const TRect&, const TRect&) = default;
};

/// The common part of two rectangles; empty (all zero) where they do not meet.
TRect Intersection(const TRect& a, const TRect& b);
/// The least rectangle around both; an empty one does not count.
TRect Union(const TRect& a, const TRect& b);

/// An affine matrix of three rows and columns in single precision. A point is a row (x, y, 1) multiplied from
/// the left: x' = x M11 + y M21 + M31, y' = x M12 + y M22 + M32. The default is the identity.
struct TMatrix {
    float M11 = 1, M12 = 0, M13 = 0;
    float M21 = 0, M22 = 1, M23 = 0;
    float M31 = 0, M32 = 0, M33 = 1;
    friend bool operator==(const TMatrix&, const TMatrix&) = default;
};

/// The turn about center by radians, clockwise where y points down (as SVG's rotate).
TMatrix CreateRotationVZMatrix(const TPointF& center, float radians);
TMatrix CreateScaleVZMatrix(float sx, float sy);
TMatrix CreateTranslateVZMatrix(float dx, float dy);
/// The matrix that applies a first and then b.
TMatrix VZMatrixMultiply(const TMatrix& a, const TMatrix& b);
/// True only where every figure is exactly that of the identity.
bool IsIdentityMatrix(const TMatrix& matrix);

TPointF VZPoint(float x, float y);
TRectF VZRect(const TRect& rect);
TRectF VZRect(float left, float top, float right, float bottom);
/// The centre of the rectangle.
TPointF VZCenterPoint(const TRect& rect);
TPointF VZCenterPoint(const TRectF& rect);
/// Moves rect, its size unchanged, so that its centre is that of bounds.
void CenterRect(TRectF& rect, const TRectF& bounds);

/// How a picture is fitted into an area.
enum class TSVGImageWrapMode : std::uint8_t {
    Original = 0, ///< its own size
    Fit = 1,      ///< as large as fits, aspect ratio kept
    Stretch = 2,  ///< the area's size
};

/// A size in single precision.
struct TSizeF {
    float Width = 0;
    float Height = 0;
    friend bool operator==(const TSizeF&, const TSizeF&) = default;
};

/// The size that a picture of sourceWidth by sourceHeight takes in an area of width by height, times scale.
/// A source without extent gives the area's size in Fit mode.
TSizeF ScaleSize(float width, float height, float sourceWidth, float sourceHeight, TSVGImageWrapMode mode,
                 float scale);

/// A point in double precision, as the engine computes with.
struct TPointD {
    double X = 0;
    double Y = 0;
    friend bool operator==(const TPointD&, const TPointD&) = default;
};

/// A rectangle in double precision, by its edges. IsEmpty where it encloses nothing, not even a point:
/// the default is the empty one, into which points can be taken up.
struct TRectD {
    double Left = 1;
    double Top = 1;
    double Right = 0;
    double Bottom = 0;
    double Width() const { return Right - Left; }
    double Height() const { return Bottom - Top; }
    bool IsEmpty() const { return !(Left <= Right && Top <= Bottom); }
    void Include(double x, double y);
    void Include(const TRectD& other);
    friend bool operator==(const TRectD&, const TRectD&) = default;
};

TRectD Intersection(const TRectD& a, const TRectD& b);
/// The least rectangle of whole pixels around rect, limited to +-2^30; empty where rect is empty or not a
/// number.
TRect PixelBounds(const TRectD& rect);

/// An affine map in double precision, in SVG's order: x' = A x + C y + E, y' = B x + D y + F. The default is
/// the identity.
struct TAffine {
    double A = 1, B = 0, C = 0, D = 1, E = 0, F = 0;

    static TAffine Translation(double x, double y) { return {1, 0, 0, 1, x, y}; }
    static TAffine Scaling(double x, double y) { return {x, 0, 0, y, 0, 0}; }
    /// The turn about the origin, clockwise where y points down.
    static TAffine Rotation(double radians);
    static TAffine FromMatrix(const TMatrix& m) { return {m.M11, m.M12, m.M21, m.M22, m.M31, m.M32}; }

    TPointD operator()(double x, double y) const { return {A * x + C * y + E, B * x + D * y + F}; }
    TPointD operator()(const TPointD& p) const { return (*this)(p.X, p.Y); }
    /// The box around the mapped rectangle.
    TRectD operator()(const TRectD& rect) const;
    double Determinant() const { return A * D - B * C; }
    bool IsFinite() const;
    bool IsInvertible() const;
    /// The inverse; the identity where there is none (ask IsInvertible).
    TAffine Inverse() const;
    /// The greatest factor by which the map lengthens a vector: its greater singular value.
    double MaxScale() const;
    /// Square root of the area factor.
    double MeanScale() const;
    bool IsTranslation() const { return A == 1 && B == 0 && C == 0 && D == 1; }
    bool IsAxisAligned() const { return (B == 0 && C == 0) || (A == 0 && D == 0); }
    /// The same map in single precision; beyond single's range the figures are held at its ends.
    TMatrix ToMatrix() const;
    /// first.Then(second): applies first and then second.
    TAffine Then(const TAffine& second) const;
    friend bool operator==(const TAffine&, const TAffine&) = default;
};

} // namespace Vz
