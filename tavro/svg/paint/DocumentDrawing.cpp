#include "tavro/svg/paint/PainterInternal.h"

#include "tavro/runtime/Events.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Vz {

namespace {

/// Remembers the last element that painted a point.
class THitDevice final : public IPaintDevice {
public:
    THitDevice(TPointD point)
        : FPoint(point) {}
    const TSVGPainter* Painter = nullptr;
    const TSVGGraphicElement* Hit = nullptr;

    void Draw(const TShape& shape, const TPaint& paint, const TAffine& toDevice) override {
        const bool clear = paint.Kind == TPaint::TKind::Solid && AlphaOf(paint.Color) == 0;
        if (!InMask() && !clear && IsInside() && Covers(shape, toDevice)) Hit = Painter->GetCurrent();
    }
    void DrawImage(const TPixels& image, const TAffine& toDevice, double, TInterpolation) override {
        const TPointD at = toDevice.Inverse()(FPoint);
        if (!InMask() && IsInside() && at.X >= 0 && at.Y >= 0 && at.X < image.Width && at.Y < image.Height)
            Hit = Painter->GetCurrent();
    }
    void PushClip(std::span<const TClipShape> shapes) override {
        FInside.push_back(IsInside() && std::ranges::any_of(shapes, [this](const TClipShape& clip) {
                              return Covers(clip.Shape, clip.Matrix);
                          }));
    }
    void PopClip() override { FInside.pop_back(); }
    void PushLayer(const TLayerStyle&) override {}
    void PopLayer() override {}
    void PushMask(TMaskKind) override { ++FMasks; }
    void PopMask() override { --FMasks; }
    TRect GetClipBounds() const override {
        constexpr int far = 1 << 30;
        return {-far, -far, far, far};
    }
    bool IsVector() const override { return false; }

private:
    /// True while what is drawn is no picture but a mask.
    bool InMask() const { return FMasks > 0; }
    bool IsInside() const { return FInside.empty() || FInside.back(); }
    bool Covers(const TShape& shape, const TAffine& toDevice) const {
        return toDevice.IsInvertible() &&
               Contains(shape, toDevice.Inverse()(FPoint), FlatteningScale(toDevice));
    }

    TPointD FPoint;
    std::vector<bool> FInside;
    int FMasks = 0;
};

} // namespace

namespace {

/// True where the element itself sets one of the properties that make a layer to something that does.
bool IsInForce(const TSVGElement& element, TSVGStyleProperty property) {
    const TStyleValue* const value = element.GetStyle().Find(property);
    if (!value || value->Kind == TStyleValue::TKind::NoPaint) return false;
    return value->Kind != TStyleValue::TKind::Keyword ||
           (value->Word != TKeyword::Normal && value->Word != TKeyword::Auto);
}

} // namespace

void TSVGDocument::Draw(TVZGPCanvas& canvas, const TAffine& matrix, const TRectF& rect) const {
    if (!RaiseDrawing(canvas, matrix, rect)) DrawContent(canvas, matrix);
    RaiseDrawn(canvas, matrix, rect);
}

void TSVGDocument::DrawContent(TVZGPCanvas& canvas, const TAffine& matrix) const {
    TSVGPainter(*this, canvas.GetDevice()).Paint(TPaintPass::Whole, nullptr, matrix.Then(canvas.ToDevice()));
}

bool TSVGDocument::RaiseDrawing(TVZGPCanvas& canvas, const TAffine& matrix, const TRectF& rect) const {
    bool handled = false;
    if (OnDrawing)
        Raise(OnDrawing, const_cast<TSVGDocument&>(*this), matrix.ToMatrix(), canvas, rect, handled);
    return handled;
}

void TSVGDocument::RaiseDrawn(TVZGPCanvas& canvas, const TAffine& matrix, const TRectF& rect) const {
    if (OnDrawn) Raise(OnDrawn, const_cast<TSVGDocument&>(*this), matrix.ToMatrix(), canvas, rect);
}

void TSVGDocument::DrawElement(TVZGPCanvas& canvas, const TAffine& matrix,
                               const TSVGGraphicElement& element) const {
    DrawPart(TPaintPass::Element, canvas, matrix, element);
}

void TSVGDocument::DrawBefore(TVZGPCanvas& canvas, const TAffine& matrix,
                              const TSVGGraphicElement& element) const {
    DrawPart(TPaintPass::Before, canvas, matrix, element);
}

void TSVGDocument::DrawAfter(TVZGPCanvas& canvas, const TAffine& matrix,
                             const TSVGGraphicElement& element) const {
    DrawPart(TPaintPass::After, canvas, matrix, element);
}

void TSVGDocument::DrawPart(TPaintPass pass, TVZGPCanvas& canvas, const TAffine& matrix,
                            const TSVGGraphicElement& element) const {
    if (&element.GetDocument() == this)
        TSVGPainter(*this, canvas.GetDevice()).Paint(pass, &element, matrix.Then(canvas.ToDevice()));
}

std::optional<TSVGDocument::TPartsObstacle>
TSVGDocument::FindPartsObstacle(const TSVGGraphicElement& element) const {
    if (&element.GetDocument() != this || !element.GetParent()) return TPartsObstacle{&element, "content"};
    // What blends with all that was painted before it cannot be painted on its own.
    const auto blendsOutside = [&](const TSVGElement* blending) {
        return blending != &element && !blending->HasAncestor(&element);
    };
    const auto& blending = BlendingElements();
    if (const auto found = std::ranges::find_if(blending, blendsOutside); found != blending.end())
        return TPartsObstacle{*found, "mix-blend-mode"};
    for (const TSVGElement* at = element.GetParent(); at; at = at->GetParent()) {
        const TSVGGraphicElement* const group = at->AsGraphic();
        const TSVGTag tag = at->GetTag();
        const bool isContainer =
            tag == TSVGTag::G || tag == TSVGTag::A || tag == TSVGTag::Switch || at == this;
        if (!group || !isContainer) return TPartsObstacle{at, "content"};
        if (group->GetOpacity() < 1) return TPartsObstacle{at, "opacity"};
        // Only properties that the element sets itself make a layer: none of them is inherited.
        for (const auto property :
             {TSVGStyleProperty::ClipPath, TSVGStyleProperty::Mask, TSVGStyleProperty::Filter,
              TSVGStyleProperty::MixBlendMode, TSVGStyleProperty::Isolation})
            if (IsInForce(*at, property)) return TPartsObstacle{at, GetStylePropertyName(property)};
    }
    return std::nullopt;
}

const std::vector<const TSVGElement*>& TSVGDocument::BlendingElements() const {
    if (FBlendingEpoch == FEpoch) return FBlending;
    FBlending.clear();
    FBlendingEpoch = FEpoch;
    const auto collect = [this](const TSVGElement& element, auto&& self) -> void {
        if (IsInForce(element, TSVGStyleProperty::MixBlendMode)) FBlending.push_back(&element);
        for (const auto& child : element.Children())
            self(*child, self);
    };
    collect(*this, collect);
    return FBlending;
}

TRectD TSVGDocument::GetDrawBounds(const TAffine& toDevice, const TSVGGraphicElement& element) const {
    TContentBounds device;
    if (&element.GetDocument() == this)
        TSVGPainter(*this, device).Paint(TPaintPass::Element, &element, toDevice);
    return device.Box();
}

TSVGGraphicElement* TSVGDocument::ElementAt(TPointF point) const {
    THitDevice device({point.X, point.Y});
    TSVGPainter painter(*this, device);
    device.Painter = &painter;
    painter.Paint(TPaintPass::Whole, nullptr, {});
    return const_cast<TSVGGraphicElement*>(device.Hit);
}

} // namespace Vz
