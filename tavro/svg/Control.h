#pragma once

#include "tavro/controls/GraphicControl.h"
#include "tavro/controls/GraphicObject.h"
#include "tavro/svg/model/DrawingEvents.h"

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

namespace Vz {

class TKeptLayers;
class TSVGDocument;
class TSVGGraphicElement;
class TVZGPBitmap;
class TVZTransform;

/// A transparent control that owns one SVG document and paints it into its bounds, centred.
///
/// With an active element, and buffered, all that is drawn before that element and all that is drawn after it
/// are kept in two bitmaps, and a painting draws only the element between them. Code that edits other
/// elements says MarkBuffersStale; edits of the active element itself show at the next painting without that.
/// No edit of the document invalidates by itself.
class TVZSVGControl : public TCreatable<TVZSVGControl, TVZCustomTransparentGraphicControl>,
                      public IVZGraphicObject {
public:
    static constexpr std::string_view TypeName = "TVZSVGControl";
    static constexpr int MaxQuality = 8;
    /// Caches of more pixels than this are not made; the parts are then drawn anew each time, with equal
    /// result.
    static constexpr double MaxCachePixels = 1 << 26;

    explicit TVZSVGControl(TCreateKey key);
    ~TVZSVGControl() override;

    // Document.

    /// The live document. It stays the same object for the control's life.
    TSVGDocument& GetDocument() const { return *FSVG; }
    /// Replaces the document's content by that of an embedded resource, which is parsed once a process. The
    /// active element becomes null, and the caches stale. Raises EResNotFound.
    virtual void LoadSVGResource(std::string_view name);
    /// Replaces the document's content by that of an SVG text; `source` names it in errors. Raises EReadError
    /// for what cannot be opened or is no SVG document, and all stays as it was. Effect otherwise: as
    /// LoadSVGResource.
    void LoadFromText(std::string_view text, std::string_view source = "SVG");
    void LoadFromStream(std::istream& stream, std::string_view source = "SVG");
    void LoadFromFile(const std::string& path);

    /// The element that is drawn between the caches: one of the document, looked at; null (default): no
    /// caches. A new one marks the caches stale and does not invalidate. An element that leaves the document
    /// is forgotten.
    TSVGGraphicElement* GetActiveSVGElement() const;
    void SetActiveSVGElement(TSVGGraphicElement* element);

    // Published.

    /// Whether the caches are used. Default true. A change sets the stale mark to the new value, and does not
    /// invalidate.
    bool GetBuffered() const { return FBuffered; }
    void SetBuffered(bool value);
    /// True: the picture fills the bounds; false (default): it keeps its aspect ratio. A change marks the
    /// caches stale and invalidates.
    bool GetStretch() const { return FStretch; }
    void SetStretch(bool value);
    /// Oversampling of the caches, 1..8, clamped; default 1. A change marks them stale and invalidates.
    int GetQuality() const { return FQuality; }
    void SetQuality(int value);
    /// 0 (nothing is painted) .. 1, clamped; default 1. Not-a-number is ignored. A change, or a value outside
    /// of the range, invalidates.
    float GetOpacity() const override { return FOpacity; }
    void SetOpacity(float value) override;
    bool IsOpacityStored() const { return FOpacity != 1.0f; }
    /// What the picture is transformed by, in control pixels about the upper left corner. Default the
    /// identity. A change invalidates.
    TVZTransform& GetTransform() const { return *FTransform; }
    void SetTransform(const TVZTransform& value);
    bool IsTransformStored() const;
    /// The document's own events; see there.
    const TSVGDrawingEvent& GetOnDrawing() const;
    void SetOnDrawing(TSVGDrawingEvent event);
    const TSVGDrawnEvent& GetOnDrawn() const;
    void SetOnDrawn(TSVGDrawnEvent event);
    std::span<const TProp> GetPropTable() const override;

    // Place.

    /// The rectangle of the control that the picture occupies, in control pixels, before the transform.
    TRectF GetDrawRect() const;
    TMatrix GetAbsoluteMatrix() const override;
    /// Leaves the matrix as it is.
    void GetMatrix(TMatrix& matrix) const override {}
    /// The topmost painted element that shows at a control pixel; null where there is none. What is drawn
    /// through a use gives the use.
    TSVGGraphicElement* ElementAtControlPoint(int x, int y) const;

    // Caches.

    /// Marks the caches out of date: they are rebuilt before their next use.
    void MarkBuffersStale() { FBuffersStale = true; }
    bool AreBuffersStale() const { return FBuffersStale; }
    /// What is drawn before and after the active element, as of the last rebuild; null before the first.
    const TVZGPBitmap* GetBeforeBuffer() const;
    const TVZGPBitmap* GetAfterBuffer() const;

    // Steps.

    /// Takes over the control's Enabled into the document (which greys when false), marks the caches stale,
    /// invalidates.
    virtual void EnabledChanged();
    /// The reference rectangle of the transform: the client rectangle.
    virtual void GetShapeRect(TObject& sender, TRectF& rect);
    /// Told when the transform changed: invalidates.
    virtual void ObjectChanged(TObject& sender);
    /// Rebuilds the caches where there is an active element and they are stale.
    virtual void UpdateBuffers();
    /// Buffered, or an opacity below 1.
    virtual bool IsBuffered() const;
    void Resize() override;
    void EnabledChangedMessage() override;

protected:
    void Construct() override;
    /// All loading goes through here: runs `load`, which replaces the document's content or raises, and then
    /// forgets the active element, marks the caches stale and invalidates. Overrides call it and add what
    /// their class does.
    virtual void ReplaceContent(const std::function<void()>& load);
    void DoPaint(TVZGPCanvas& controlCanvas) override;
    /// Only where the active element was and is, when nothing else can have changed since the last painting.
    void RequestRepaint() override;

private:
    /// How the two caches lie: what maps the natural picture to their pixels, and how they come onto the
    /// device.
    struct TCachePlan {
        bool IsExact =
            true; ///< a cache pixel is a device pixel; else the caches are stretched into the draw rectangle
        TAffine ToCache; ///< exact: natural picture -> cache pixels
        unsigned Width = 0;
        unsigned Height = 0;
        TRect Box; ///< exact: device pixels that they cover
        bool Matches(const TCachePlan& other) const;
    };
    /// What the pixels on the screen depend on beside the document's content, as of the last buffered
    /// painting.
    struct TPainted {
        bool IsValid = false;
        TAffine Total; ///< natural picture -> device pixels
        float Opacity = 1;
        unsigned CacheCount = 0; ///< which caches
        bool IsLike(const TPainted& other) const;
    };

    void CheckActiveElement() const;
    TSizeF GetPictureSize(double factor) const;
    TAffine PlaceDocument(const TRectF& rect) const;
    TCachePlan MakePlan(const TAffine& surface) const;
    bool CanCache(const TCachePlan& plan) const;
    bool CanPaintParts() const;
    void PaintParts(TVZGPCanvas& canvas, const TAffine& surface, const TRectF& rect);
    void PaintUncached(TVZGPCanvas& canvas, const TAffine& matrix);
    void PaintExact(TVZGPCanvas& canvas, const TAffine& matrix, const TRect& elementBox);
    void PaintStretched(TVZGPCanvas& canvas, const TAffine& matrix, const TRectF& rect,
                        const TRect& elementBox);
    void PaintElementStretched(TVZGPCanvas& canvas, const TRectF& rect, const TRect& elementBox);
    TRect ElementPixels(const TAffine& total) const;
    TRect FindElementPixels(const TAffine& total) const;
    TRect ToControl(const TRect& devicePixels) const;
    bool OnlyElementChanged(TAffine& total) const;

    std::unique_ptr<TSVGDocument> FSVG;
    mutable TSVGGraphicElement* FActiveSVGElement = nullptr; ///< as the document watches it
    bool FBuffered = true;
    mutable bool FBuffersStale = true;
    bool FStretch = false;
    std::unique_ptr<TVZTransform> FTransform;
    float FOpacity = 1;
    int FQuality = 1;

    TAffine FSurface; ///< control pixels -> device pixels of the last painting, without the transform
    TCachePlan FPlan; ///< of the caches as they are
    std::shared_ptr<TKeptLayers> FLayers;        ///< the caches as they are
    std::unique_ptr<TVZGPBitmap> FElementBuffer; ///< the active element in the caches' size
    TRect FElementUsed;                          ///< the pixels of that which are not transparent
    /// Where the active element lay when it was looked for last, which a frame does twice.
    struct TElementPlace {
        const TSVGGraphicElement* Element = nullptr;
        std::uint64_t ChangeCount = 0; ///< of the document
        TAffine Total;                 ///< natural picture -> device pixels
        TRect Box;                     ///< device pixels
    };
    mutable TElementPlace FElementPlace;
    TPainted FPainted;
    unsigned FCacheCount = 0;      ///< how often the caches were rebuilt
    bool FIsWholeReported = false; ///< all of the control was reported as stale since the last painting
    TRect FShown; ///< control pixels that may show the active element and were not reported as stale since
};

/// Offers TVZSVGControl, and nothing else, to form designers on the page "SVG".
void Register();

} // namespace Vz
