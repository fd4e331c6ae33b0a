#pragma once

#include "tavro/svg/model/CompiledInternal.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/model/Gradients.h"
#include "tavro/svg/model/Image.h"
#include "tavro/svg/model/PlainElement.h"
#include "tavro/svg/model/Referenced.h"
#include "tavro/svg/model/Shapes.h"
#include "tavro/svg/paint/DeviceSwitchInternal.h"
#include "tavro/svg/text/Layout.h"

#include <list>
#include <span>

namespace Vz {

/// Which part of a document is painted.
enum class TPaintPass { Whole, Before, Element, After };

struct TPaintContext;

/// What context-fill and context-stroke refer to: the shape that a marker stands on, or a use.
struct TContextShape {
    const TSVGGraphicElement* Element;
    const TPaintContext* Inner; ///< what is in force inside of it
};

/// What is in force at a place of the tree.
struct TPaintContext {
    const TComputedStyle* Style = nullptr; ///< of the parent
    TAffine Matrix;                        ///< the parent's units -> device
    double ViewWidth = 0;                  ///< of the nearest viewport, in its units
    double ViewHeight = 0;
    bool Enabled = true;
    bool Referenced = false;                 ///< reached through a reference: nothing is kept
    const TSVGGraphicElement* Use = nullptr; ///< the outermost use on the way here
    const TContextShape* Context = nullptr;
    int Depth = 0;
};

/// Walks a document in painting order and hands what it paints to a device.
class TSVGPainter {
public:
    /// Elements within elements, references followed.
    static constexpr int MaxDepth = 1200;

    TSVGPainter(const TSVGDocument& document, IPaintDevice& device)
        : FDocument(document)
        , FOwnWork(device)
        , FWork(FOwnWork)
        , FDevice(device, FWork) {}
    /// For a part of another painting, with which it shares the bounds.
    TSVGPainter(const TSVGDocument& document, IPaintDevice& device, TPaintWork& work)
        : FDocument(document)
        , FOwnWork(device)
        , FWork(work)
        , FDevice(device, FWork) {}

    /// `matrix` maps the document's natural pixels to the device's.
    void Paint(TPaintPass pass, const TSVGGraphicElement* pivot, const TAffine& matrix);
    /// What the step being drawn belongs to: the element, or the outermost use that it is drawn through.
    const TSVGGraphicElement* GetCurrent() const { return FCurrent; }

private:
    /// A reference that is being followed: what leads back to it is left out.
    class TFollow {
    public:
        TFollow(TSVGPainter& painter, const TSVGElement* element)
            : FPainter(painter)
            , FFollow(painter.FWork) {
            FPainter.FActive.push_back(element);
        }
        ~TFollow() { FPainter.FActive.pop_back(); }

    private:
        TSVGPainter& FPainter;
        TPaintWork::TFollow FFollow;
    };

    /// What lays an element's drawing down as one.
    struct TEffects {
        double Opacity = 1;
        const TSVGClipPath* Clip = nullptr;
        const TSVGMask* Mask = nullptr;
        const TComputedStyle* Style = nullptr;
        bool IsEmpty = false; ///< nothing is painted
        bool NeedsLayer() const;
        /// Nothing but the element itself.
        bool IsPlain() const;
        /// Nothing but an opacity.
        bool IsFade() const;
    };

    // Painter.cpp: the walk.
    TPaintContext RootContext(const TAffine& matrix) const;
    /// True where what is computed for elements is kept for the next painting: on the way to the active
    /// element and inside of it.
    bool Keeps(const TPaintContext& context) const {
        return FPass == TPaintPass::Element && !context.Referenced;
    }
    const TComputedStyle& StyleOf(const TSVGGraphicElement& element, const TPaintContext& context,
                                  TComputedStyle& scratch) const;
    void PaintChildren(const TSVGElement& parent, const TPaintContext& context);
    void PaintPath(const TSVGElement& parent, const TPaintContext& context);
    void StepDown(const TSVGGraphicElement& element, const TPaintContext& context);
    void PaintElement(const TSVGGraphicElement& element, const TPaintContext& context);
    /// `opacity` is what a shape takes into its paint.
    void PaintContent(const TSVGGraphicElement& element, const TPaintContext& inner, double opacity);
    static bool PaintsOnce(const TSVGGraphicElement& element, const TComputedStyle& style);
    void PaintDrawable(const TSVGGraphicElement& element, const TPaintContext& inner, double opacity);
    void PaintSteps(const TDrawList& list, const TAffine& matrix, bool keep);
    /// Fill, stroke and markers in their order.
    void PaintShape(const TSVGShape& shape, const TDrawList& list, const TPaintContext& inner);
    void PaintUse(const TSVGUse& use, const TPaintContext& inner);
    void PaintView(const TSVGViewElement& view, const TPaintContext& inner,
                   const std::optional<TSVGLength>& width, const std::optional<TSVGLength>& height,
                   TPointD place);
    void PaintImage(const TSVGImage& image, const TPaintContext& inner);
    /// The context inside an element: its own transform and style on top.
    TPaintContext Inside(const TSVGGraphicElement& element, const TPaintContext& context,
                         const TComputedStyle& style) const;
    /// Counts an element that is reached through a reference; false where it is to be left out.
    bool Enter();

    // PainterSteps.cpp: from elements to draw steps.
    TDrawList MakeShapeList(const TSVGShape& shape, const TPaintContext& inner, double opacity);
    TDrawList MakeTextList(const TSVGCustomText& text, const TPaintContext& inner);
    void AddSteps(TDrawList& list, const std::shared_ptr<const TFigures>& figures,
                  const TComputedStyle& style, const TPaintContext& inner, double opacity);
    std::optional<TPaint> ResolvePaint(const TComputedPaint& paint, double opacity, const TRectD& box,
                                       const TComputedStyle& style, const TPaintContext& inner, bool& stable);
    std::optional<TPaint> ContextPaint(bool stroke, double opacity, const TPaintContext& inner, bool& stable);
    std::optional<TPaint> MakePattern(const TSVGPattern& pattern, double opacity, const TRectD& box,
                                      const TComputedStyle& style, const TPaintContext& inner);

    // PainterEffects.cpp: clips, masks, layers.
    TEffects FindEffects(const TSVGGraphicElement& element, const TComputedStyle& style) const;
    /// Paints inside of the clip, mask and layer that the element asks for.
    void WithEffects(const TEffects& effects, const TSVGGraphicElement& element, const TPaintContext& inner,
                     const std::function<void(const TPaintContext&)>& paint);
    TPaintContext ClipContext(const TSVGClipPath& clip, const TSVGGraphicElement& element,
                              const TPaintContext& inner, TComputedStyle& style);
    bool CollectClip(const TSVGElement& parent, const TPaintContext& context, std::vector<TClipShape>& shapes,
                     std::list<TFigures>& figures, int depth);
    /// PainterFilter.cpp: paints through the filter that the element's style names.
    void PaintFiltered(const TSVGGraphicElement& element, const TPaintContext& inner,
                       const std::function<void(const TPaintContext&)>& paint);
    struct TFilterJob;
    /// Paints what the clip path covers, opaque, as content of a mask.
    void PaintClip(const TSVGClipPath& clip, const TPaintContext& context);
    void PaintMask(const TSVGMask& mask, const TSVGGraphicElement& element, const TPaintContext& inner);
    /// The element of that id as a T; null where it is none, or where it is being followed already.
    template <class T> const T* FindReferenced(const std::shared_ptr<const std::string>& id) const {
        return static_cast<const T*>(FindReferenced(id, T::Tag));
    }
    const TSVGElement* FindReferenced(const std::shared_ptr<const std::string>& id, TSVGTag tag) const;
    bool IsFollowed(const TSVGElement* element) const;
    TRectD ObjectBox(const TSVGGraphicElement& element, const TPaintContext& inner);

    // PainterMarkers.cpp
    void PaintMarkers(const TSVGShape& shape, const TPaintContext& inner);
    void PaintMarker(const TSVGMarker& marker, const TSVGShape& shape, const TPaintContext& inner, TPointD at,
                     double angleRad);

    const TSVGDocument& FDocument;
    bool FEnabled = true; ///< false: the document lies in another one that is greyed
    TPaintWork FOwnWork;
    TPaintWork& FWork;
    TDeviceSwitch FDevice;
    const std::thread::id FThread = std::this_thread::get_id();
    TPaintPass FPass = TPaintPass::Whole;
    const TSVGGraphicElement* FPivot = nullptr;
    std::vector<const TSVGElement*> FActive; ///< references being followed
    const TSVGGraphicElement* FCurrent = nullptr;
};

/// Elements with one outline (TSVGShape).
constexpr bool IsShapeTag(TSVGTag tag) { return tag >= TSVGTag::Path && tag <= TSVGTag::Polygon; }

/// Elements that are drawn only through those that refer to them.
constexpr bool IsReferencedTag(TSVGTag tag) {
    return tag == TSVGTag::Pattern || tag == TSVGTag::ClipPath || tag == TSVGTag::Mask ||
           tag == TSVGTag::Marker || tag == TSVGTag::Filter;
}

/// The box around what an element fills (strokes left out), in the units in which `matrix` puts the element's
/// parent. `style` is the parent's. What does not fit into `work` any more is left out.
TRectD FillBounds(const TSVGGraphicElement& element, const TComputedStyle& style, const TAffine& matrix,
                  double viewWidth, double viewHeight, bool ownTransform, TPaintWork& work);

/// The transform of an element to its parent's units, its origin taken into account.
TAffine TransformOf(const TSVGGraphicElement& element, const TComputedStyle& style, double viewWidth,
                    double viewHeight);

/// A transform about the style's transform-origin, in a view of this size.
TAffine AboutOrigin(const TAffine& transform, const TComputedStyle& style, double viewWidth,
                    double viewHeight);

/// True where opacity, mask, clip, filter or blending lays the element's drawing down as one.
bool IsLayer(const TSVGGraphicElement& element, const TComputedStyle& style);

} // namespace Vz
