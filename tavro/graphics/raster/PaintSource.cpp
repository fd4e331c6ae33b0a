#include "tavro/graphics/raster/PaintSourceInternal.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Vz {

namespace {

/// A focus farther out than this part of the way to the rim counts as on the rim.
constexpr double RimPart = 0.9999;

} // namespace

unsigned OpacityByte(double opacity) {
    return opacity > 0 ? static_cast<unsigned>(std::min(opacity, 1.0) * 255 + 0.5) : 0;
}

bool TPaintSource::SetSolid(std::uint32_t pixel) {
    FKind = TKind::Solid;
    FPixel = pixel;
    return pixel >> 24 != 0;
}

bool TPaintSource::Prepare(const TPaint& paint, const TAffine& toDevice) {
    if (paint.Kind == TPaint::TKind::Solid) return SetSolid(Premultiply(paint.Color));
    const TAffine map = paint.Matrix.Then(toDevice);
    if (!map.IsInvertible()) return false;
    if (paint.Kind == TPaint::TKind::Image) {
        FKind = TKind::Image;
        FOpacity = OpacityByte(paint.Opacity);
        return paint.Image && FOpacity > 0 &&
               FSampler.Prepare(paint.Image->GetPixels(), map, paint.Interpolation,
                                TImageSampler::TOutside::Repeat);
    }
    if (!paint.Ramp) return false;
    FWalk = {{}, paint.Spread, paint.Ramp->Table(), paint.Ramp->IsOpaque()};
    const TAffine toPaint = map.Inverse();
    return paint.Kind == TPaint::TKind::Linear ? SetLinear(paint, toPaint) : SetRadial(paint, toPaint);
}

bool TPaintSource::PrepareImage(const TPixels& image, const TAffine& toDevice, double opacity,
                                TInterpolation mode) {
    FKind = TKind::Image;
    FOpacity = OpacityByte(opacity);
    return FOpacity > 0 && FSampler.Prepare(image, toDevice, mode, TImageSampler::TOutside::Clamp);
}

bool TPaintSource::SetLinear(const TPaint& paint, const TAffine& toPaint) {
    const double dx = paint.End.X - paint.Start.X;
    const double dy = paint.End.Y - paint.Start.Y;
    const double square = dx * dx + dy * dy;
    // SVG 1.1, 13.2.2: a gradient without length is painted in its last colour.
    if (!(square > 0)) return SetSolid(FWalk.Table[TGradientRamp::Size - 1]);
    const double fx = dx / square;
    const double fy = dy / square;
    FKind = TKind::Linear;
    FWalk.ToRamp = toPaint.Then({fx, 0, fy, 1, -(paint.Start.X * fx + paint.Start.Y * fy), 0});
    return FWalk.ToRamp.IsFinite();
}

bool TPaintSource::SetRadial(const TPaint& paint, const TAffine& toPaint) {
    // SVG 1.1, 13.2.3: a radius of zero paints the last colour.
    if (!(paint.Radius > 0)) return SetSolid(FWalk.Table[TGradientRamp::Size - 1]);
    const double unit = 1 / paint.Radius;
    FAxis = {(paint.Center.X - paint.Focus.X) * unit, (paint.Center.Y - paint.Focus.Y) * unit};
    FFocusRadius = std::max(paint.FocusRadius, 0.0) * unit;
    FWalk.ToRamp = toPaint.Then({unit, 0, 0, unit, -paint.Focus.X * unit, -paint.Focus.Y * unit});
    const double distance = std::hypot(FAxis.X, FAxis.Y);
    FKind = distance == 0 && FFocusRadius == 0 ? TKind::Radial : TKind::Focal;
    // A focus on the rim has circles that all touch there; a hair inside, every place has its circle.
    const double rim = 1 - FFocusRadius;
    if (distance > RimPart * rim) {
        if (distance * RimPart > rim || !(rim > 0))
            FKind = TKind::Cone;
        else
            FAxis = {FAxis.X * (RimPart * rim / distance), FAxis.Y * (RimPart * rim / distance)};
    }
    return FWalk.ToRamp.IsFinite() && std::isfinite(distance) && std::isfinite(FFocusRadius);
}

void TPaintSource::Fill(const TFillJob& job) const {
    const TRowOps& ops = RowOps();
    switch (FKind) {
    case TKind::Solid:
        ops.FillSolid(job, FPixel);
        break;
    case TKind::Linear:
        ops.FillLinear(job, FWalk);
        break;
    case TKind::Radial:
        ops.FillRadial(job, FWalk);
        break;
    default:
        ops.FillFocal(job, {FWalk, static_cast<float>(FAxis.X), static_cast<float>(FAxis.Y),
                            static_cast<float>(FFocusRadius), static_cast<float>(1 - FFocusRadius)});
    }
}

void TPaintSource::Fetch(int x, int y, int count, std::uint32_t* pixels, TSampleScratch& scratch) const {
    if (FKind == TKind::Cone) {
        for (int i = 0; i < count; ++i)
            pixels[i] = ConePixel(FWalk.ToRamp(x + i + 0.5, y + 0.5));
        return;
    }
    FSampler.Fetch(x, y, count, pixels, scratch);
    for (int i = 0; FOpacity < 255 && i < count; ++i)
        pixels[i] = ScalePixel(pixels[i], FOpacity);
}

/// The general two-circle gradient: the greatest t whose circle passes through the place and has a radius of
/// zero or more; nothing is painted where there is none (SVG 2, 14.2.3, by way of canvas 2D).
std::uint32_t TPaintSource::ConePixel(const TPointD& p) const {
    const double growth = 1 - FFocusRadius;
    const double a = FAxis.X * FAxis.X + FAxis.Y * FAxis.Y - growth * growth;
    const double b = p.X * FAxis.X + p.Y * FAxis.Y + FFocusRadius * growth;
    const double c = p.X * p.X + p.Y * p.Y - FFocusRadius * FFocusRadius;
    const double square = b * b - a * c;
    if (!(square >= 0)) return 0;
    const double sum = b + std::copysign(std::sqrt(square), b);
    double first = sum != 0 ? c / sum : NAN;
    double second = a != 0 ? sum / a : NAN;
    if (!(first > second)) std::swap(first, second);
    for (const double t : {first, second})
        if (FFocusRadius + t * growth >= 0) return FWalk.Table[RampEntry(t, FWalk.Spread)];
    return 0;
}

} // namespace Vz
