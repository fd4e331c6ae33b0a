#include "tavro/svg/Control.h"

#include "tavro/controls/ClipScope.h"
#include "tavro/graphics/Transform.h"
#include "tavro/runtime/Rounding.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/paint/KeptLayers.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace Vz {

namespace {

/// What is drawn while it lives is laid down as one, with an opacity; nothing happens for an opacity of 1.
class TLayerScope {
public:
    TLayerScope(IPaintDevice& device, float opacity, const TRect* bounds)
        : FDevice(opacity < 1 ? &device : nullptr) {
        if (!FDevice) return;
        TLayerStyle style;
        style.Opacity = opacity;
        style.Bounds = bounds;
        FDevice->PushLayer(style);
    }
    ~TLayerScope() {
        if (FDevice) FDevice->PopLayer();
    }
    TLayerScope(const TLayerScope&) = delete;
    TLayerScope& operator=(const TLayerScope&) = delete;

private:
    IPaintDevice* FDevice;
};

/// Multiplies a document's opacity for as long as it lives. Nobody is told of that.
class TOpacityScope {
public:
    TOpacityScope(TSVGDocument& document, float factor)
        : FDocument(document)
        , FOpacity(document.GetOpacity()) {
        FDocument.SetOpacityUntold(FOpacity * factor);
    }
    ~TOpacityScope() { FDocument.SetOpacityUntold(FOpacity); }
    TOpacityScope(const TOpacityScope&) = delete;
    TOpacityScope& operator=(const TOpacityScope&) = delete;

private:
    TSVGDocument& FDocument;
    float FOpacity;
};

/// The same map but for the noise of computing it: nobody sees a millionth of a pixel.
bool IsNear(const TAffine& a, const TAffine& b) {
    const auto isNear = [](double x, double y, double slack) { return std::abs(x - y) <= slack; };
    const auto isNearFactor = [&](double x, double y) { return isNear(x, y, 1e-10 * (1 + std::abs(x))); };
    return isNearFactor(a.A, b.A) && isNearFactor(a.B, b.B) && isNearFactor(a.C, b.C) &&
           isNearFactor(a.D, b.D) && isNear(a.E, b.E, 1e-6) && isNear(a.F, b.F, 1e-6);
}

TRectD ToRectD(const TRect& rect) {
    return {double(rect.Left), double(rect.Top), double(rect.Right), double(rect.Bottom)};
}

TRectD ToRectD(const TRectF& rect) { return {rect.Left, rect.Top, rect.Right, rect.Bottom}; }

TRectD Grown(const TRectD& rect, double by) {
    if (rect.IsEmpty()) return rect;
    return {rect.Left - by, rect.Top - by, rect.Right + by, rect.Bottom + by};
}

/// A picture's pixels -> the rectangle that it is stretched into.
TAffine StretchMap(const TRectF& rect, unsigned width, unsigned height) {
    return {rect.Width() / double(width), 0, 0, rect.Height() / double(height), rect.Left, rect.Top};
}

bool IsPaintable(const TRectF& rect) {
    return rect.Width() > 0 && rect.Height() > 0 && std::isfinite(rect.Width()) &&
           std::isfinite(rect.Height());
}

/// True when two rectangles had better be painted as the one around them: shapes are traced for each
/// rectangle, which a few pixels more outweigh.
bool IsOneAsGood(const TRect& a, const TRect& b, const TRect& both) {
    const auto area = [](const TRect& r) { return double(r.Width()) * r.Height(); };
    return area(both) <= 1.3 * (area(a) + area(b) - area(Intersection(a, b)));
}

void Erase(const TPixels& pixels, const TRect& box) {
    for (int y = box.Top; y < box.Bottom; ++y)
        std::fill_n(pixels.Row(y) + box.Left, box.Width(), 0u);
}

/// Lays the used part of a cache onto the device, pixel on pixel; (x, y) is the place of its pixel (0, 0).
void LayDown(IPaintDevice& device, const TVZGPBitmap& cache, const TRect& used, int x, int y, float opacity) {
    if (used.IsEmpty()) return;
    const TPixels all = cache.GetPixels();
    const TPixels part{all.Row(used.Top) + used.Left, used.Width(), used.Height(), all.Stride};
    device.DrawImage(part, TAffine::Translation(x + used.Left, y + used.Top), opacity,
                     TInterpolation::Nearest);
}

} // namespace

bool TVZSVGControl::TCachePlan::Matches(const TCachePlan& other) const {
    return IsExact == other.IsExact && Width == other.Width && Height == other.Height &&
           IsNear(ToCache, other.ToCache);
}

bool TVZSVGControl::TPainted::IsLike(const TPainted& other) const {
    return IsValid && other.IsValid && Opacity == other.Opacity && CacheCount == other.CacheCount &&
           IsNear(Total, other.Total);
}

/// Places the document into a rectangle: the map from the natural picture to it.
TAffine TVZSVGControl::PlaceDocument(const TRectF& rect) const {
    const TSVGAlign align = FStretch ? TSVGAlign::None : TSVGAlign::XMidYMid;
    FSVG->GetPreserveAspectRatio().SetAlign(align);
    FSVG->GetViewPreserveAspectRatio().SetAlign(align);
    FSVG->FitToRect(rect);
    return FSVG->GetDrawMatrix();
}

/// How the caches are to lie on a surface (control pixels -> device pixels). Where the picture is neither
/// turned nor oversampled they are device pixels in the very place that they will be laid down.
TVZSVGControl::TCachePlan TVZSVGControl::MakePlan(const TAffine& surface) const {
    TCachePlan plan;
    const TAffine toDevice = TAffine::FromMatrix(GetAbsoluteMatrix()).Then(surface);
    plan.IsExact = FQuality == 1 && toDevice.B == 0 && toDevice.C == 0;
    if (!plan.IsExact) {
        const TSizeF size = GetPictureSize(FQuality * surface.MeanScale());
        const auto whole = [](float extent) {
            return static_cast<unsigned>(std::clamp<std::int64_t>(RoundHalfEven(extent), 0, 1 << 30));
        };
        plan.Width = whole(size.Width);
        plan.Height = whole(size.Height);
        plan.ToCache = PlaceDocument({0, 0, size.Width, size.Height});
        return plan;
    }
    const TRectF rect = GetDrawRect();
    plan.Box = Intersection(TouchedPixels(toDevice, ToRectD(rect)),
                            TouchedPixels(surface, ToRectD(GetClientRect())));
    plan.Width = static_cast<unsigned>(plan.Box.Width());
    plan.Height = static_cast<unsigned>(plan.Box.Height());
    plan.ToCache =
        PlaceDocument(rect).Then(toDevice).Then(TAffine::Translation(-plan.Box.Left, -plan.Box.Top));
    return plan;
}

bool TVZSVGControl::CanCache(const TCachePlan& plan) const {
    return plan.Width > 0 && plan.Height > 0 && plan.Width <= TVZGPBitmap::MaxExtent &&
           plan.Height <= TVZGPBitmap::MaxExtent && double(plan.Width) * plan.Height <= MaxCachePixels;
}

void TVZSVGControl::UpdateBuffers() {
    TSVGGraphicElement* const active = GetActiveSVGElement();
    if (!active || !FBuffersStale) return;
    FPlan = MakePlan(FSurface);
    if (!CanCache(FPlan)) return;
    FLayers = TKeptLayers::Renew(std::move(FLayers));
    const auto rebuild = [&](TVZGPBitmap& cache, auto draw) {
        cache.SetSize(FPlan.Width, FPlan.Height);
        (FSVG.get()->*draw)(cache.GetCanvas(), FPlan.ToCache, *active);
    };
    rebuild(FLayers->Before, &TSVGDocument::DrawBefore);
    rebuild(FLayers->After, &TSVGDocument::DrawAfter);
    FLayers = TKeptLayers::Share(std::move(FLayers));
    FBuffersStale = false;
    ++FCacheCount;
}

void TVZSVGControl::DoPaint(TVZGPCanvas& controlCanvas) {
    const TPainted last = std::exchange(FPainted, {});
    const bool isReported = std::exchange(FIsWholeReported, false);
    const TRectF rect = GetDrawRect();
    if (FOpacity == 0 || !IsPaintable(rect)) return;
    TVZGPCanvas canvas(controlCanvas);
    const TMatrix absolute = GetAbsoluteMatrix();
    if (!IsIdentityMatrix(absolute)) canvas.SetMatrix(absolute);
    const TAffine toDevice = canvas.ToDevice();
    if (!toDevice.IsInvertible()) return;
    // Not turned, the picture ends at whole pixels, with caches or without.
    const bool isUpright = toDevice.B == 0 && toDevice.C == 0;
    const TRect box = isUpright ? TouchedPixels(toDevice, ToRectD(rect)) : canvas.GetDevice().GetClipBounds();
    const TClipScope clip(canvas.GetDevice(), box);
    if (clip.IsEmpty()) return;
    const bool isInParts = CanPaintParts();
    std::optional<TOpacityScope>
        faded; // drawn whole the document has the control's opacity, also for handlers
    if (!isInParts) faded.emplace(*FSVG, FOpacity);
    const TAffine matrix = PlaceDocument(rect);
    if (!FSVG->RaiseDrawing(canvas, matrix, rect)) {
        if (isInParts && CanPaintParts()) {
            PaintParts(canvas, controlCanvas.ToDevice(), rect);
        } else {
            if (!faded) faded.emplace(*FSVG, FOpacity);
            FSVG->DrawContent(canvas, PlaceDocument(rect));
        }
    }
    FSVG->RaiseDrawn(canvas, matrix, rect);
    // A change that shows for the first time without having been reported may have met a part of the control
    // only: then the next report has to be of all.
    if (!isReported && !FPainted.IsLike(last)) FPainted.IsValid = false;
}

bool TVZSVGControl::CanPaintParts() const {
    const TSVGGraphicElement* const active = GetActiveSVGElement();
    return active && FBuffered && FSVG->CanDrawInParts(*active);
}

/// Paints what is before the active element, the element, and what is after it.
void TVZSVGControl::PaintParts(TVZGPCanvas& canvas, const TAffine& surface, const TRectF& rect) {
    FSurface = surface;
    const TCachePlan plan = MakePlan(surface);
    const bool canCache = CanCache(plan) && !canvas.GetDevice().IsVector();
    if (canCache && !plan.Matches(FPlan)) FBuffersStale = true;
    if (canCache && FBuffersStale) UpdateBuffers();
    const TAffine matrix = PlaceDocument(rect);
    if (!canCache || FBuffersStale) {
        PaintUncached(canvas, matrix);
        return;
    }
    FPlan.Box = plan.Box;
    FPainted = {true, matrix.Then(canvas.ToDevice()), FOpacity, FCacheCount};
    const TRect elementBox = ElementPixels(FPainted.Total);
    if (FPlan.IsExact)
        PaintExact(canvas, matrix, elementBox);
    else
        PaintStretched(canvas, matrix, rect, elementBox);
    FShown = Union(FShown, ToControl(elementBox));
}

void TVZSVGControl::PaintUncached(TVZGPCanvas& canvas, const TAffine& matrix) {
    for (const auto draw :
         {&TSVGDocument::DrawBefore, &TSVGDocument::DrawElement, &TSVGDocument::DrawAfter}) {
        const TLayerScope layer(canvas.GetDevice(), FOpacity, nullptr);
        (FSVG.get()->*draw)(canvas, matrix, *FActiveSVGElement);
    }
}

void TVZSVGControl::PaintExact(TVZGPCanvas& canvas, const TAffine& matrix, const TRect& elementBox) {
    IPaintDevice& device = canvas.GetDevice();
    const auto drawElement = [&] {
        if (Intersection(device.GetClipBounds(), elementBox).IsEmpty()) return;
        const TLayerScope layer(device, FOpacity, &elementBox);
        FSVG->DrawElement(canvas, matrix, *FActiveSVGElement);
    };
    const int x = FPlan.Box.Left;
    const int y = FPlan.Box.Top;
    if (FOpacity == 1) {
        device.BeginBetween(FLayers->GetPair(), x, y);
        drawElement();
        device.EndBetween(FLayers->GetPair(), x, y);
        return;
    }
    LayDown(device, FLayers->Before, FLayers->GetPair().BeforeUsed(), x, y, FOpacity);
    drawElement();
    LayDown(device, FLayers->After, FLayers->GetPair().AfterUsed(), x, y, FOpacity);
}

void TVZSVGControl::PaintStretched(TVZGPCanvas& canvas, const TAffine& matrix, const TRectF& rect,
                                   const TRect& elementBox) {
    constexpr int HighQualityBicubic = 7;
    if (FQuality > 1) canvas.SetInterpolationMode(HighQualityBicubic);
    if (!FLayers->GetPair().BeforeUsed().IsEmpty()) canvas.DrawImage(FLayers->Before, rect, FOpacity);
    if (FOpacity < 1 || FQuality > 1)
        PaintElementStretched(canvas, rect, elementBox);
    else
        FSVG->DrawElement(canvas, matrix, *FActiveSVGElement);
    if (!FLayers->GetPair().AfterUsed().IsEmpty()) canvas.DrawImage(FLayers->After, rect, FOpacity);
}

/// Draws the element in the caches' size first. That bitmap is kept for the next time.
void TVZSVGControl::PaintElementStretched(TVZGPCanvas& canvas, const TRectF& rect, const TRect& elementBox) {
    const TClipScope clip(canvas.GetDevice(), elementBox);
    if (clip.IsEmpty()) return;
    if (!FElementBuffer) FElementBuffer = std::make_unique<TVZGPBitmap>();
    TVZGPBitmap& buffer = *FElementBuffer;
    if (buffer.GetWidth() == FPlan.Width && buffer.GetHeight() == FPlan.Height)
        Erase(buffer.GetPixels(), FElementUsed);
    else
        buffer.SetSize(FPlan.Width, FPlan.Height);
    FElementUsed = Intersection(PixelBounds(FSVG->GetDrawBounds(FPlan.ToCache, *FActiveSVGElement)),
                                buffer.GetPixels().Bounds());
    FSVG->DrawElement(buffer.GetCanvas(), FPlan.ToCache, *FActiveSVGElement);
    canvas.DrawImage(buffer, rect, FOpacity);
}

// What becomes stale.

/// The device pixels that the active element can touch on the surface that was painted last. `total` maps the
/// natural picture.
TRect TVZSVGControl::ElementPixels(const TAffine& total) const {
    if (!FPlan.IsExact) return FindElementPixels(total);
    TElementPlace& last = FElementPlace;
    const std::uint64_t changes = FSVG->GetChangeCount();
    const bool isKnown =
        last.Element == FActiveSVGElement && last.ChangeCount == changes && IsNear(total, last.Total);
    if (!isKnown) last = {FActiveSVGElement, changes, total, FindElementPixels(total)};
    return last.Box;
}

TRect TVZSVGControl::FindElementPixels(const TAffine& total) const {
    TRectD box = FSVG->GetDrawBounds(total, *FActiveSVGElement);
    if (!FPlan.IsExact) {
        // Drawn through a bitmap an element reaches as far as the filter carries its outermost pixels.
        constexpr double reach = 3;
        const TAffine absolute = TAffine::FromMatrix(GetAbsoluteMatrix());
        const TAffine toDevice =
            StretchMap(GetDrawRect(), FPlan.Width, FPlan.Height).Then(absolute).Then(FSurface);
        box.Include(Grown(toDevice(Grown(FSVG->GetDrawBounds(FPlan.ToCache, *FActiveSVGElement), reach)), 1));
    }
    return PixelBounds(box);
}

TRect TVZSVGControl::ToControl(const TRect& devicePixels) const {
    if (devicePixels.IsEmpty()) return {};
    return Intersection(TouchedPixels(FSurface.Inverse(), ToRectD(devicePixels)), GetClientRect());
}

/// True when a painting now would differ from the last one in the active element's pixels at most, as far as
/// the control can know. Gives the natural picture's map to the device.
bool TVZSVGControl::OnlyElementChanged(TAffine& total) const {
    const bool hasHandler = GetOnPainting() || GetOnPainted() || FSVG->OnDrawing || FSVG->OnDrawn;
    if (!FBuffered || FBuffersStale || !FPainted.IsValid || hasHandler) return false;
    const TSVGGraphicElement* const active = GetActiveSVGElement();
    if (!active || FBuffersStale) return false; // the element may have been found to be gone
    if (FOpacity != FPainted.Opacity || !FSVG->CanDrawInParts(*active)) return false;
    const TAffine absolute = TAffine::FromMatrix(GetAbsoluteMatrix());
    total = PlaceDocument(GetDrawRect()).Then(absolute).Then(FSurface);
    return IsNear(total, FPainted.Total);
}

void TVZSVGControl::RequestRepaint() {
    TAffine total;
    if (!OnlyElementChanged(total)) {
        FShown = {};
        FIsWholeReported = true;
        InvalidateRect(GetClientRect());
        return;
    }
    // Whatever a surface shows of the element and was not reported yet lies in FShown: this report included,
    // nothing does but what is painted from here on.
    const TRect now = ToControl(ElementPixels(total));
    const TRect stale[] = {FShown, now};
    const TRect both = Union(FShown, now);
    FShown = now;
    if (IsOneAsGood(stale[0], stale[1], both))
        InvalidateRect(both);
    else
        InvalidateRects(stale);
}

} // namespace Vz
