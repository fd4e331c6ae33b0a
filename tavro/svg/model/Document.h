#pragma once

#include "tavro/graphics/Canvas.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/svg/model/Containers.h"
#include "tavro/svg/model/DrawingEvents.h"

#include <functional>
#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Vz {

enum class TPaintPass;
class TSVGPictures;

/// A note of something in a document that was skipped.
struct TSVGDiagnostic {
    int Line = 0; ///< 1 first; 0: no place
    int Column = 0;
    std::string Text;
};

/// A live SVG document: the outermost svg element, which owns all elements, finds them by their ids, is read
/// and written, fitted, drawn and asked what lies at a point. All edits of the picture are edits of its
/// elements.
class TSVGDocument final : public TSVGViewElement {
public:
    /// The deepest nesting of elements that is read; below it elements are skipped with a diagnostic.
    static constexpr int MaxDepth = 512;
    /// The largest text that is read, in bytes.
    static constexpr std::size_t MaxTextSize = std::size_t{64} << 20;

    /// An empty document.
    TSVGDocument();
    ~TSVGDocument() override;

    // Content.

    /// Replaces the content by that of an SVG text. `source` names it in errors. A text that is not
    /// well-formed XML or has no svg root raises EReadError with line and column, and the content stays.
    /// Of the document itself it keeps the enabled state and the alignment in FitToRect; opacity and all else
    /// are the text's, or as in an empty document.
    void LoadFromText(std::string_view text, std::string_view source = "SVG");
    void LoadFromStream(std::istream& stream, std::string_view source = "SVG");
    void LoadFromFile(const std::string& path);
    /// The deepest nesting of documents in documents, by data URI, that is read.
    static constexpr int MaxEmbedding = 4;
    int GetEmbeddingDepth() const { return FEmbeddingDepth; }
    /// LoadFromText for a document that lies in another one, with which it shares the bounds.
    void LoadEmbedded(std::string_view text, const TSVGDocument& outer);
    /// Replaces the content by a copy of another document's.
    void AssignContent(const TSVGDocument& source);
    /// What the elements share with copies of the document lives from here on as long as the program, which
    /// makes copies cheaper. For a document that itself lives as long, and is not edited any more.
    void MakeSharedLasting();
    /// The live document as SVG: ids kept, style properties as attributes, the same picture in other viewers.
    /// For those that know no text on a path such text is followed, in a `switch`, by its outlines; these are
    /// made anew whenever a document that has them is written again.
    std::string WriteText() const;
    void SaveToFile(const std::string& path) const;
    /// What the last load skipped, at most 200 notes.
    const std::vector<TSVGDiagnostic>& GetDiagnostics() const { return FDiagnostics; }

    // Elements by id.

    /// Null where there is none.
    TSVGElement* FindElement(std::string_view id) const;
    /// The element of that id as a T; null where there is none. Raises EInvalidCast where it is of another
    /// class.
    template <class T> T* Find(std::string_view id) const {
        TSVGElement* const element = FindElement(id);
        T* typed = nullptr;
        if constexpr (std::is_same_v<T, TSVGGraphicElement>)
            typed = element ? element->AsGraphic() : nullptr;
        else
            typed = dynamic_cast<T*>(element);
        if (element && !typed) RaiseInvalidCast(id, *element);
        return typed;
    }

    // Size and place.

    /// The picture's natural size in pixels: what the file gives, else its view box's, else 100 by 100; each
    /// side within 1e-6 to 1e6.
    float GetWidth() const;
    float GetHeight() const;
    /// How FitToRect places the picture. Default xMidYMid.
    TSVGPreserveAspectRatio& GetPreserveAspectRatio() { return FPlacement; }
    /// How the view box is placed in the natural size: as the content says when it is loaded (else xMidYMid),
    /// and from then on as it is set here. What is written is the content's own.
    TSVGPreserveAspectRatio& GetViewPreserveAspectRatio() { return FViewPlacement; }
    const TSVGPreserveAspectRatio& GetViewAspectRatio() const { return FViewPlacement; }
    /// What the last FitToRect gave; the identity before the first.
    const TAffine& GetDrawMatrix() const { return FDrawMatrix; }

    // Drawing. `matrix` maps the natural picture to the canvas (GetDrawMatrix, or any).

    /// The whole picture. `rect` is only handed to the events.
    void Draw(TVZGPCanvas& canvas, const TAffine& matrix, const TRectF& rect) const;
    /// The same without the events.
    void DrawContent(TVZGPCanvas& canvas, const TAffine& matrix) const;
    /// SetOpacity for the time of a drawing: nobody is told.
    void SetOpacityUntold(float value);
    void DrawElement(TVZGPCanvas& canvas, const TAffine& matrix, const TSVGGraphicElement& element) const;
    /// All that is painted before the element, or after it: with the element between them they make the
    /// whole.
    void DrawBefore(TVZGPCanvas& canvas, const TAffine& matrix, const TSVGGraphicElement& element) const;
    void DrawAfter(TVZGPCanvas& canvas, const TAffine& matrix, const TSVGGraphicElement& element) const;
    /// False where the three parts would not make the whole: an ancestor of the element is laid down as one
    /// (opacity, mask, clip, filter, blending), another element blends with what lies under it, or the
    /// element is drawn only through references.
    bool CanDrawInParts(const TSVGGraphicElement& element) const { return !FindPartsObstacle(element); }
    /// What makes CanDrawInParts false: the outer or blending element, and its property (`opacity`, `mask`);
    /// for an element that is drawn through references only, what holds it and `content`. Nothing where it is
    /// true.
    struct TPartsObstacle {
        const TSVGElement* Element;
        std::string_view Reason;
    };
    std::optional<TPartsObstacle> FindPartsObstacle(const TSVGGraphicElement& element) const;
    /// Device pixels that DrawElement may touch.
    TRectD GetDrawBounds(const TAffine& toDevice, const TSVGGraphicElement& element) const;
    /// The topmost painted element at a point of the natural picture; null where there is none. What is drawn
    /// through a use gives the use.
    TSVGGraphicElement* ElementAt(TPointF point) const;
    /// For who draws in parts: raises OnDrawing, and gives true where a handler drew the picture itself;
    /// raises OnDrawn.
    bool RaiseDrawing(TVZGPCanvas& canvas, const TAffine& matrix, const TRectF& rect) const;
    void RaiseDrawn(TVZGPCanvas& canvas, const TAffine& matrix, const TRectF& rect) const;

    /// Asked before the picture is drawn, by Draw or by a control from its caches: `handled` comes as false;
    /// a handler that sets it drew the picture itself, and the document draws nothing.
    TSVGDrawingEvent OnDrawing;
    /// Told after the picture was drawn.
    TSVGDrawnEvent OnDrawn;
    /// How often a handler may answer a notice with an edit, before EInvalidOperation says that it has no
    /// end.
    static constexpr int MaxNotices = 100;
    /// Told once after each edit, or at the outermost EndUpdate, with the last change. Edits that the handler
    /// makes are told when it has returned. What it raises reaches the code that made the edit, which stands.
    std::function<void(const TSVGChange& change)> OnChange;

    /// One element that the document watches for somebody: null (default) from when it leaves the document.
    /// One that is not in the document is not watched.
    TSVGGraphicElement* GetWatched() const { return FWatched; }
    void Watch(TSVGGraphicElement* element);

    /// Grows with every change that is not only one of place.
    std::uint64_t GetEpoch() const { return FEpoch; }
    /// Grows with every change.
    std::uint64_t GetChangeCount() const { return FChangeCount; }
    /// Grows with every element that comes or goes.
    std::uint64_t GetStructureEpoch() const { return FStructureEpoch; }

    bool ReadAttribute(std::string_view name, std::string_view value) override;

private:
    friend class TSVGElement;
    friend class TSVGReader;
    friend struct TSVGPicture;
    [[noreturn]] static void RaiseInvalidCast(std::string_view id, const TSVGElement& element);
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
    void ChangeId(TSVGElement& element, std::string_view id);
    void TakeId(TSVGElement& element);
    bool DropId(TSVGElement& element);
    void FindIdsAgain();
    void Register(TSVGElement& root);
    void Unregister(std::span<const std::unique_ptr<TSVGElement>> roots);
    void Notify(const TSVGChange& change);
    void Tell();
    void DrawPart(TPaintPass pass, TVZGPCanvas& canvas, const TAffine& matrix,
                  const TSVGGraphicElement& element) const;
    /// All elements with a blend mode of their own.
    const std::vector<const TSVGElement*>& BlendingElements() const;
    void AddDiagnostic(std::string text);
    /// Replaces the content by elements that are made for this document, and the attributes by another one's.
    void TakeContent(const TSVGDocument& other, std::vector<std::unique_ptr<TSVGElement>> children,
                     TSVGIdTable ids);

    TSVGIdTable FIds;
    mutable std::size_t FCopySize = 0; ///< bytes that the elements of a copy take; 0: nobody knows
    bool FDuplicateIds = false;
    int FUpdateCount = 0;
    bool FPending = false; ///< a change that was not told yet: FPendingChange
    bool FIsTelling = false;
    TSVGChange FPendingChange{};
    TSVGGraphicElement* FWatched = nullptr;
    std::uint64_t FEpoch = 1;
    std::uint64_t FChangeCount = 1;
    std::uint64_t FStructureEpoch = 1;
    mutable std::vector<const TSVGElement*> FBlending; ///< of the epoch FBlendingEpoch
    mutable std::uint64_t FBlendingEpoch = 0;
    TSVGPreserveAspectRatio FPlacement;
    TSVGPreserveAspectRatio FViewPlacement;
    TAffine FDrawMatrix;
    std::vector<TSVGDiagnostic> FDiagnostics;
    int FEmbeddingDepth = 0;
    std::shared_ptr<TSVGPictures> FPictures; ///< null as long as there are none
    /// Fills in the place while a text is being read; empty at other times.
    std::function<void(TSVGDiagnostic& note)> FReadPlace;
};

} // namespace Vz
