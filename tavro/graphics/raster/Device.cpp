#include "tavro/graphics/raster/Device.h"

#include "tavro/graphics/raster/StateInternal.h"

#include <algorithm>

namespace Vz {

void TRasterDevice::TGiveBack::operator()(TRasterState* state) const { TRasterState::GiveBack(state); }

TRasterDevice::TRasterDevice(const TPixels& target)
    : TRasterDevice(target, TRegion(target.Bounds())) {}

TRasterDevice::TRasterDevice(const TPixels& target, const TRegion& region)
    : FState(TRasterState::Take(target, region.Rects())) {}

TRasterDevice::~TRasterDevice() = default;

void TRasterDevice::Draw(const TShape& shape, const TPaint& paint, const TAffine& toDevice) {
    if (!shape.Figures || !toDevice.IsInvertible()) return;
    const TRect active = FState->ActiveBox();
    if (active.IsEmpty()) return;
    const TPolygons& polygons = Flatten(shape, FlatteningScale(toDevice), FState->Polygons);
    if (Intersection(PixelBounds(toDevice(polygons.Bounds)), active).IsEmpty()) return;
    TPaintSource source;
    if (!source.Prepare(paint, toDevice)) return;
    FState->Coverage.SetShape(polygons, toDevice);
    FState->Fill(shape.Stroke ? TFillRule::NonZero : shape.Rule, source);
}

void TRasterDevice::DrawImage(const TPixels& image, const TAffine& toDevice, double opacity,
                              TInterpolation mode) {
    if (!image.Data || image.Width <= 0 || image.Height <= 0 || !toDevice.IsInvertible()) return;
    int x = 0;
    int y = 0;
    if (IsWholeTranslation(toDevice, x, y)) {
        TSurface picture;
        picture.Pixels = image;
        picture.Box = {x, y, x + image.Width, y + image.Height};
        picture.Drawn = picture.Box;
        picture.Opacity = OpacityByte(opacity);
        if (picture.Opacity > 0) FState->LayDown(picture);
        return;
    }
    TPaintSource source;
    if (!source.PrepareImage(image, toDevice, opacity, mode)) return;
    const double width = image.Width;
    const double height = image.Height;
    TPolygons& frame = FState->Polygons;
    frame.Points.assign({{0, 0}, {width, 0}, {width, height}, {0, height}});
    frame.Starts.assign({0, 4});
    FState->Coverage.SetShape(frame, toDevice);
    FState->Fill(TFillRule::NonZero, source);
}

void TRasterDevice::PushClip(std::span<const TClipShape> shapes) { FState->PushClip(shapes); }

void TRasterDevice::PopClip() { FState->PopClip(); }

void TRasterDevice::PushLayer(const TLayerStyle& style) {
    TRect box = FState->ActiveBox();
    if (style.Bounds) box = Intersection(box, *style.Bounds);
    TSurface& layer = FState->PushSurface(box);
    layer.Opacity = OpacityByte(style.Opacity);
    layer.Blend = style.Blend;
}

void TRasterDevice::PopLayer() {
    FState->EndSurface([this](const TSurface& done) { FState->LayDown(done); });
}

void TRasterDevice::PushMask(TMaskKind kind) { FState->PushSurface(FState->Surface().Box).MaskKind = kind; }

void TRasterDevice::PopMask() {
    FState->EndSurface([this](const TSurface& done) { FState->ApplyMask(done); });
}

void TRasterDevice::BeginBetween(const TLayerPair& layers, int x, int y) {
    if (!FState->BeginBetween(layers, x, y)) IPaintDevice::BeginBetween(layers, x, y);
}

void TRasterDevice::EndBetween(const TLayerPair& layers, int x, int y) {
    if (!FState->EndBetween(layers)) IPaintDevice::EndBetween(layers, x, y);
}

TRect TRasterDevice::GetClipBounds() const { return FState->ActiveBox(); }

void TRasterDevice::Clear(TVZGPColor color) {
    TSurface& surface = FState->Surface();
    for (const TRect& rect : surface.Rects) {
        surface.Drawn = Union(surface.Drawn, rect);
        for (int y = rect.Top; y < rect.Bottom; ++y)
            std::fill_n(surface.At(rect.Left, y), rect.Width(), Premultiply(color));
    }
}

void TRasterDevice::ClearOnDemand(TVZGPColor color) { FState->ClearOnDemand(Premultiply(color)); }

void TRasterDevice::Copy(const TPixels& image, int x, int y) {
    TSurface& surface = FState->Surface();
    const TRect box{x, y, x + image.Width, y + image.Height};
    for (const TRect& rect : surface.Rects) {
        surface.Drawn = Union(surface.Drawn, rect);
        const TRect inside = Intersection(rect, box);
        if (inside == rect && rect.Width() == image.Stride && image.Stride == surface.Pixels.Stride) {
            std::copy_n(image.Row(rect.Top - y), rect.Height() * image.Stride,
                        surface.At(rect.Left, rect.Top));
            continue;
        }
        for (int line = rect.Top; line < rect.Bottom; ++line) {
            std::uint32_t* row = surface.At(rect.Left, line);
            if (line < inside.Top || line >= inside.Bottom) {
                std::fill_n(row, rect.Width(), 0u);
                continue;
            }
            row = std::fill_n(row, inside.Left - rect.Left, 0u);
            row = std::copy_n(image.Row(line - y) + (inside.Left - x), inside.Width(), row);
            std::fill_n(row, rect.Right - inside.Right, 0u);
        }
    }
}

} // namespace Vz
