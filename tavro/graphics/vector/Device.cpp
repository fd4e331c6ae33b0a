#include "tavro/graphics/vector/Device.h"

#include "tavro/graphics/raster/BlendModesInternal.h"
#include "tavro/graphics/raster/Device.h"
#include "tavro/graphics/vector/CairoPaintInternal.h"
#include "tavro/runtime/Exceptions.h"

#include <algorithm>
#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cmath>
#include <optional>

namespace Vz {
namespace {

/// A luminance mask in a file is drawn with this many pixels for each of the device's, as long as they are
/// not more than MaskExtent a side.
constexpr double MaskScale = 3;
constexpr double MaskExtent = 4096;

cairo_status_t AppendBytes(void* text, const unsigned char* data, unsigned length) {
    try {
        static_cast<std::string*>(text)->append(reinterpret_cast<const char*>(data), length);
    } catch (const std::bad_alloc&) {
        return CAIRO_STATUS_NO_MEMORY;
    }
    return CAIRO_STATUS_SUCCESS;
}

/// What a Push on the curves' own surface began.
struct TEntry {
    enum class TKind { Clip, UnionClip, Layer, Mask };
    TKind Kind;
    double Opacity = 1;
    TBlendMode Blend = TBlendMode::Normal;
    TCairoPattern Union;
};

/// What cairo cannot do is drawn by the raster device on a piece of pixels: a luminance mask.
struct TPiece {
    TRect Area;       ///< of the device that this piece is a part of
    double Scale = 1; ///< its pixels for each of the device's
    TVZGPBitmap Bitmap;
    std::optional<TRasterDevice> Device;
    TMaskKind Mask = TMaskKind::Luminance;
    int Depth = 0; ///< pushes on it that are not popped yet

    TAffine FromDevice() const { return {Scale, 0, 0, Scale, -Area.Left * Scale, -Area.Top * Scale}; }
};

/// The mask's coverage as a pattern in the device's pixels.
TCairoPattern MaskPattern(const TPiece& piece) {
    const TPixels pixels = piece.Bitmap.GetPixels();
    TCairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_A8, pixels.Width, pixels.Height));
    unsigned char* row = cairo_image_surface_get_data(surface.get());
    for (int y = 0; row != nullptr && y < pixels.Height; ++y) {
        MaskCoverage(piece.Mask, pixels.Row(y), pixels.Width, row);
        row += cairo_image_surface_get_stride(surface.get());
    }
    cairo_surface_mark_dirty(surface.get());
    TCairoPattern pattern(cairo_pattern_create_for_surface(surface.get()));
    const cairo_matrix_t matrix = ToCairo(piece.FromDevice());
    cairo_pattern_set_matrix(pattern.get(), &matrix);
    return pattern;
}

} // namespace

struct TVectorDevice::TState {
    std::string Bytes;
    TCairoSurface Surface;
    TCairoContext Context;
    TAffine Base; ///< device pixels -> the surface's units
    bool IsFile = true;
    std::vector<TEntry> Entries;
    std::vector<std::unique_ptr<TPiece>> Pieces;
    TPolygons Polygons;

    void Start() {
        Context.reset(cairo_create(Surface.get()));
        const cairo_matrix_t matrix = ToCairo(Base);
        cairo_set_matrix(Context.get(), &matrix);
        if (IsFile) return;
        cairo_set_antialias(Context.get(), CAIRO_ANTIALIAS_BEST);
        cairo_set_tolerance(Context.get(), 0.02);
    }

    TPiece* Piece() { return Pieces.empty() ? nullptr : Pieces.back().get(); }
    cairo_t* Cairo() { return Context.get(); }
    TStopMix Mix() const { return IsFile ? TStopMix::Plain : TStopMix::Premultiplied; }

    void SetOutline(const TShape& shape, const TAffine& toDevice) {
        if (shape.Stroke == nullptr) return SetPath(Cairo(), *shape.Figures, toDevice);
        const double finer = IsFile ? 4 : 1;
        const TShape uncached{shape.Figures, shape.Stroke, shape.Rule, nullptr};
        SetPath(Cairo(), Flatten(uncached, FlatteningScale(toDevice) * finer, Polygons), toDevice);
    }
    void SetRule(const TShape& shape) {
        const bool isEvenOdd = shape.Stroke == nullptr && shape.Rule == TFillRule::EvenOdd;
        cairo_set_fill_rule(Cairo(), isEvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
    }
    void Fill(const TShape& shape, const TAffine& toDevice) {
        SetOutline(shape, toDevice);
        SetRule(shape);
        cairo_fill(Cairo());
    }
    void Stroke(const TShape& shape, const TAffine& toDevice);

    TRect ClipBox();
    void ClipToUnion(std::span<const TClipShape> shapes);
    bool OpenPiece(std::unique_ptr<TPiece> piece, const TRect& area);
    void ApplyMask(cairo_pattern_t* mask);
};

void TVectorDevice::TState::Stroke(const TShape& shape, const TAffine& toDevice) {
    if (!(shape.Stroke->Width > 0)) return;
    if (!SetStroke(Cairo(), *shape.Stroke)) return Fill(shape, toDevice);
    SetPath(Cairo(), *shape.Figures, toDevice);
    const cairo_matrix_t pen = ToCairo(toDevice.Then(Base));
    const cairo_matrix_t base = ToCairo(Base);
    cairo_set_matrix(Cairo(), &pen);
    cairo_stroke(Cairo());
    cairo_set_matrix(Cairo(), &base);
}

TRect TVectorDevice::TState::ClipBox() {
    TRectD box;
    cairo_clip_extents(Cairo(), &box.Left, &box.Top, &box.Right, &box.Bottom);
    const TRect pixels = PixelBounds(box);
    return pixels.IsEmpty() ? TRect{} : pixels;
}

/// The union of shapes is no path: what is drawn within the clip goes through their picture as a mask.
void TVectorDevice::TState::ClipToUnion(std::span<const TClipShape> shapes) {
    cairo_push_group_with_content(Cairo(), CAIRO_CONTENT_ALPHA);
    cairo_set_source_rgba(Cairo(), 0, 0, 0, 1);
    for (const TClipShape& clip : shapes)
        if (clip.Shape.Figures != nullptr && clip.Matrix.IsInvertible()) Fill(clip.Shape, clip.Matrix);
    Entries.push_back(
        {TEntry::TKind::UnionClip, 1, TBlendMode::Normal, TCairoPattern(cairo_pop_group(Cairo()))});
    cairo_push_group(Cairo());
}

/// False where the area cannot be drawn in pixels.
bool TVectorDevice::TState::OpenPiece(std::unique_ptr<TPiece> piece, const TRect& area) {
    const double width = std::ceil(area.Width() * piece->Scale);
    const double height = std::ceil(area.Height() * piece->Scale);
    if (!(width <= TVZGPBitmap::MaxExtent && height <= TVZGPBitmap::MaxExtent)) return false;
    piece->Area = area;
    piece->Bitmap.SetSize(static_cast<unsigned>(width), static_cast<unsigned>(height));
    piece->Device.emplace(piece->Bitmap.GetPixels());
    piece->Device->PushLayer({});
    Pieces.push_back(std::move(piece));
    return true;
}

/// Multiplies the layer in force, which begins anew with its masked picture. Where clips stand between, or no
/// layer is in force, the mask is left out.
void TVectorDevice::TState::ApplyMask(cairo_pattern_t* mask) {
    if (Entries.empty() || Entries.back().Kind != TEntry::TKind::Layer) return;
    const TCairoPattern content(cairo_pop_group(Cairo()));
    cairo_push_group(Cairo());
    cairo_set_source(Cairo(), content.get());
    cairo_mask(Cairo(), mask);
}

TVectorDevice::TVectorDevice(TFormat format, double width, double height)
    : FState(std::make_unique<TState>()) {
    constexpr double pointsPerPixel = 72.0 / 96;
    std::string* const bytes = &FState->Bytes;
    const bool hasSize = width > 0 && height > 0 && std::isfinite(width) && std::isfinite(height);
    if (!hasSize) {
        FState->Surface.reset(
            cairo_image_surface_create(CAIRO_FORMAT_ARGB32, -1, -1)); // keeps the error for Finish
    } else if (format == TFormat::Pdf) {
        FState->Base = TAffine::Scaling(pointsPerPixel, pointsPerPixel);
        FState->Surface.reset(cairo_pdf_surface_create_for_stream(AppendBytes, bytes, width * pointsPerPixel,
                                                                  height * pointsPerPixel));
    } else {
        FState->Surface.reset(cairo_svg_surface_create_for_stream(AppendBytes, bytes, width, height));
        cairo_svg_surface_set_document_unit(FState->Surface.get(), CAIRO_SVG_UNIT_PX);
    }
    FState->Start();
}

TVectorDevice::TVectorDevice(const TPixels& target)
    : FState(std::make_unique<TState>()) {
    FState->IsFile = false;
    FState->Surface = MakeSurface(target);
    FState->Start();
}

TVectorDevice::~TVectorDevice() = default;

void TVectorDevice::Draw(const TShape& shape, const TPaint& paint, const TAffine& toDevice) {
    if (!FState->Context || shape.Figures == nullptr || !toDevice.IsInvertible()) return;
    if (TPiece* const piece = FState->Piece())
        return piece->Device->Draw(shape, paint, toDevice.Then(piece->FromDevice()));
    if (!SetSource(FState->Cairo(), paint, toDevice, FState->Mix())) return;
    if (shape.Stroke != nullptr)
        FState->Stroke(shape, toDevice);
    else
        FState->Fill(shape, toDevice);
}

void TVectorDevice::DrawImage(const TPixels& image, const TAffine& toDevice, double opacity,
                              TInterpolation mode) {
    if (!FState->Context || image.Data == nullptr || image.Width <= 0 || image.Height <= 0) return;
    if (!toDevice.IsInvertible() || !(opacity > 0)) return;
    if (TPiece* const piece = FState->Piece())
        return piece->Device->DrawImage(image, toDevice.Then(piece->FromDevice()), opacity, mode);
    cairo_t* const context = FState->Cairo();
    const TCairoSurface surface = MakePicture(image, opacity);
    const TCairoPattern pattern(cairo_pattern_create_for_surface(surface.get()));
    const cairo_matrix_t matrix = ToCairo(toDevice.Inverse());
    cairo_pattern_set_matrix(pattern.get(), &matrix);
    cairo_pattern_set_filter(pattern.get(), FilterOf(mode));
    // Padded, the picture's rim stays sharp where pixels are mixed; in a file it does so anyway.
    cairo_pattern_set_extend(pattern.get(), FState->IsFile ? CAIRO_EXTEND_NONE : CAIRO_EXTEND_PAD);
    TFigures frame;
    frame.AddRect(0, 0, image.Width, image.Height);
    cairo_set_source(context, pattern.get());
    FState->Fill({&frame, nullptr, TFillRule::NonZero, nullptr}, toDevice);
}

void TVectorDevice::PushClip(std::span<const TClipShape> shapes) {
    if (!FState->Context) return;
    if (TPiece* const piece = FState->Piece()) {
        std::vector<TClipShape> mapped(shapes.begin(), shapes.end());
        for (TClipShape& clip : mapped)
            clip.Matrix = clip.Matrix.Then(piece->FromDevice());
        ++piece->Depth;
        return piece->Device->PushClip(mapped);
    }
    cairo_t* const context = FState->Cairo();
    if (shapes.size() > 1) return FState->ClipToUnion(shapes);
    cairo_save(context);
    FState->Entries.push_back({TEntry::TKind::Clip, 1, TBlendMode::Normal, nullptr});
    cairo_new_path(context);
    if (!shapes.empty() && shapes[0].Shape.Figures != nullptr && shapes[0].Matrix.IsInvertible()) {
        FState->SetOutline(shapes[0].Shape, shapes[0].Matrix);
        FState->SetRule(shapes[0].Shape);
    }
    cairo_clip(context);
}

void TVectorDevice::PopClip() {
    if (!FState->Context) return;
    if (TPiece* const piece = FState->Piece()) {
        --piece->Depth;
        return piece->Device->PopClip();
    }
    const TEntry entry = std::move(FState->Entries.back());
    FState->Entries.pop_back();
    if (entry.Kind == TEntry::TKind::Clip) return cairo_restore(FState->Cairo());
    cairo_pop_group_to_source(FState->Cairo());
    cairo_mask(FState->Cairo(), entry.Union.get());
}

void TVectorDevice::PushLayer(const TLayerStyle& style) {
    if (!FState->Context) return;
    if (TPiece* const piece = FState->Piece()) {
        TLayerStyle mapped = style;
        TRect bounds;
        if (style.Bounds != nullptr) {
            const TRect& b = *style.Bounds;
            bounds = PixelBounds(piece->FromDevice()(
                TRectD{double(b.Left), double(b.Top), double(b.Right), double(b.Bottom)}));
            mapped.Bounds = &bounds;
        }
        ++piece->Depth;
        return piece->Device->PushLayer(mapped);
    }
    cairo_save(FState->Cairo());
    if (style.Bounds != nullptr) {
        cairo_new_path(FState->Cairo());
        cairo_rectangle(FState->Cairo(), style.Bounds->Left, style.Bounds->Top, style.Bounds->Width(),
                        style.Bounds->Height());
        cairo_clip(FState->Cairo());
    }
    cairo_push_group(FState->Cairo());
    FState->Entries.push_back({TEntry::TKind::Layer, style.Opacity, style.Blend, nullptr});
}

void TVectorDevice::PopLayer() {
    if (!FState->Context) return;
    if (TPiece* const piece = FState->Piece()) {
        --piece->Depth;
        return piece->Device->PopLayer();
    }
    const TEntry entry = std::move(FState->Entries.back());
    FState->Entries.pop_back();
    cairo_pop_group_to_source(FState->Cairo());
    cairo_set_operator(FState->Cairo(), OperatorOf(entry.Blend));
    cairo_paint_with_alpha(FState->Cairo(), entry.Opacity > 0 ? std::min(entry.Opacity, 1.0) : 0);
    cairo_restore(FState->Cairo());
}

void TVectorDevice::PushMask(TMaskKind kind) {
    if (!FState->Context) return;
    if (TPiece* const piece = FState->Piece()) {
        ++piece->Depth;
        return piece->Device->PushMask(kind);
    }
    if (kind != TMaskKind::Alpha) {
        const TRect area = FState->ClipBox();
        auto piece = std::make_unique<TPiece>();
        piece->Mask = kind;
        const double fit = MaskExtent / std::max({1, area.Width(), area.Height()});
        piece->Scale = FState->IsFile ? std::min(MaskScale, fit) : 1;
        if (FState->OpenPiece(std::move(piece), area)) return;
    }
    cairo_push_group(FState->Cairo());
    FState->Entries.push_back({TEntry::TKind::Mask, 1, TBlendMode::Normal, nullptr});
}

void TVectorDevice::PopMask() {
    if (!FState->Context) return;
    if (TPiece* const piece = FState->Piece()) {
        if (piece->Depth-- > 0) return piece->Device->PopMask();
        piece->Device->PopLayer();
        const std::unique_ptr<TPiece> done = std::move(FState->Pieces.back());
        FState->Pieces.pop_back();
        return FState->ApplyMask(MaskPattern(*done).get());
    }
    FState->Entries.pop_back();
    const TCairoPattern mask(cairo_pop_group(FState->Cairo()));
    FState->ApplyMask(mask.get());
}

bool TVectorDevice::IsVector() const { return FState->IsFile; }

TRect TVectorDevice::GetClipBounds() const {
    if (!FState->Context) return {};
    TPiece* const piece = FState->Piece();
    if (piece == nullptr) return FState->ClipBox();
    const TRect box = piece->Device->GetClipBounds();
    if (box.IsEmpty()) return {};
    const TRectD edges{double(box.Left), double(box.Top), double(box.Right), double(box.Bottom)};
    return PixelBounds(piece->FromDevice().Inverse()(edges));
}

std::string TVectorDevice::Finish() {
    if (!FState->Context) return {};
    const cairo_status_t drawn = cairo_status(FState->Cairo());
    FState->Pieces.clear();
    FState->Context.reset();
    cairo_surface_flush(FState->Surface.get());
    if (FState->IsFile) cairo_surface_finish(FState->Surface.get());
    const cairo_status_t written = cairo_surface_status(FState->Surface.get());
    const cairo_status_t status = drawn != CAIRO_STATUS_SUCCESS ? drawn : written;
    if (status != CAIRO_STATUS_SUCCESS)
        throw EWriteError(std::string("the drawing cannot be written: ") + cairo_status_to_string(status));
    return std::move(FState->Bytes);
}

} // namespace Vz
