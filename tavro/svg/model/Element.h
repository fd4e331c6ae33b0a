#pragma once

#include "tavro/runtime/Object.h"
#include "tavro/svg/css/Style.h"
#include "tavro/svg/model/CopyOnWrite.h"
#include "tavro/svg/model/IdTable.h"
#include "tavro/svg/values/Types.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Vz {

class TSVGDocument;
class TSVGGraphicElement;
class TSVGFont;

/// The kinds of element that the model knows, by the names of SVG.
enum class TSVGTag : std::uint8_t {
    Svg,
    G,
    Defs,
    Symbol,
    Use,
    Switch,
    A,
    Path,
    Rect,
    Circle,
    Ellipse,
    Line,
    Polyline,
    Polygon,
    Image,
    Text,
    TSpan,
    TextPath,
    TRef,
    Characters,
    LinearGradient,
    RadialGradient,
    Stop,
    Pattern,
    ClipPath,
    Mask,
    Marker,
    Filter,
    FilterPart,
    Style,
    Title,
    Other,
};

/// Attributes on their way to a written document.
class IAttributeSink {
public:
    virtual ~IAttributeSink() = default;
    virtual void Put(std::string_view name, std::string_view value) = 0;
};

/// What became stale: which element, and how.
struct TSVGChange {
    const class TSVGElement* Element;
    TSVGChangeKind Kind;
};

/// A node of a document. Elements live in a document's tree and are owned by their parents; whoever keeps a
/// reference across edits of the tree looks the element up by its id instead.
class TSVGElement : public TObject {
public:
    ~TSVGElement() override;
    static void* operator new(std::size_t size);
    static void operator delete(void* element) noexcept;

    TSVGTag GetTag() const { return FTag; }
    /// The element's name in SVG, such as "linearGradient".
    virtual std::string_view GetTagName() const;

    /// The element as one that can be drawn; null where it is none.
    const TSVGGraphicElement* AsGraphic() const;
    TSVGGraphicElement* AsGraphic();

    TSVGDocument& GetDocument() const { return *FDocument; }
    TSVGElement* GetParent() const { return FParent; }
    /// True when the given element is among this element's ancestors; not for the element itself.
    bool HasAncestor(const TSVGElement* element) const;

    const std::string& GetId() const { return *FId; }
    /// Names the element; where another one has the same id the first in the document is found. "" takes it
    /// away.
    void SetId(std::string_view id);

    std::size_t GetChildCount() const { return FChildren.size(); }
    /// The child at a place, 0 first. Raises EArgumentOutOfRange.
    TSVGElement& GetChild(std::size_t index) const;
    const std::vector<std::unique_ptr<TSVGElement>>& Children() const { return FChildren; }
    /// Takes an element of the same document in as the last child, or before the child at `index`. Raises
    /// EArgumentOutOfRange for an index beyond the count, EInvalidOperation for an element of another
    /// document, of another parent, or that this one lies in.
    TSVGElement& AddChild(std::unique_ptr<TSVGElement> child);
    TSVGElement& InsertChild(std::size_t index, std::unique_ptr<TSVGElement> child);
    /// Creates an element of class T in this element's document as its last child.
    template <class T> T& Add() { return static_cast<T&>(AddChild(std::make_unique<T>(GetDocument()))); }
    /// Takes the element and all below it out of the tree and hands it over.
    std::unique_ptr<TSVGElement> Remove();
    void RemoveChildren();
    /// A copy of the element and all below it, ids left out, placed right behind it under the same parent
    /// (and so drawn after it). Raises EInvalidOperation for the root.
    TSVGElement& CloneBeside();

    /// Enabled (default) or greyed drawing of the element and all below it.
    void SetEnabled(bool value);
    bool GetEnabled() const { return FEnabled; }

    /// Nested; the document tells its listener once at the outermost end. One count for the whole document.
    /// An EndUpdate without its BeginUpdate does nothing.
    void BeginUpdate();
    void EndUpdate();
    /// Places the document that the element belongs to, by its size and alignment, into the rectangle: what
    /// TSVGDocument::GetDrawMatrix gives then maps its natural pixels to it.
    void FitToRect(const TRectF& rect);
    /// Tells the document that something of this element changed outside of its setters; nothing happens
    /// while the element is in no tree.
    void Changed(TSVGChangeKind kind = TSVGChangeKind::Paint);

    /// The style properties that the element sets itself.
    const TSVGStyleSet& GetStyle() const { return FStyle; }
    /// Gives the element a value of its own; nothing happens where it has the same.
    virtual void PutStyle(TSVGStyleProperty property, TStyleValue value);
    /// Includes or excludes one style property from what the element sets itself. Excluded it is inherited or
    /// initial, until it is set or included again: then it has its own value back. One that the element never
    /// had takes the computed value over.
    virtual void SetSet(TSVGStyleProperty property, bool included);
    /// Replaces the whole set.
    void SetValue(const TSVGStyleSet& set);

    /// The style after cascade and inheritance, as the element has it in its own place in the tree (not
    /// through use).
    TComputedStyle GetComputedStyle() const;
    /// The nearest own value of an inherited property among the element and its ancestors; null where none
    /// sets it.
    const TStyleValue* FindInherited(TSVGStyleProperty property) const;

    /// Reads one attribute that is no style property; false where the element does not know it. A value that
    /// cannot be read leaves the attribute as it was and adds a diagnostic.
    virtual bool ReadAttribute(std::string_view name, std::string_view value);
    /// Puts all attributes that differ from their defaults, style properties apart.
    virtual void WriteAttributes(IAttributeSink& sink) const;

protected:
    TSVGElement(TSVGDocument& document, TSVGTag tag);
    /// An empty element of the same class in a document.
    virtual std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const = 0;
    /// Takes over everything but id, children and place.
    virtual void CopyFrom(const TSVGElement& source);
    /// What this element shares with its copies lives from here on as long as the program (see Lasting.h).
    virtual void MakeLasting();
    /// Keeps a value while its property is excluded, and hands it back once; nothing where none is kept.
    void KeepExcluded(TSVGStyleProperty property, TStyleValue value);
    std::optional<TStyleValue> TakeExcluded(TSVGStyleProperty property);
    /// Notes an attribute whose value is not taken.
    void Refuse(std::string_view name, std::string_view value, std::string_view why = "cannot read");

private:
    friend class TSVGDocument;
    friend class TSVGGraphicElement;
    bool IsInTree() const;
    /// A copy with all below it; with its ids, which it enters, where there is a table for them.
    std::unique_ptr<TSVGElement> CloneInto(TSVGDocument& document, TSVGIdTable* ids) const;
    std::vector<std::unique_ptr<TSVGElement>> CloneChildren(TSVGDocument& document, TSVGElement& parent,
                                                            TSVGIdTable* ids) const;

    TSVGDocument* FDocument;
    TSVGElement* FParent = nullptr;
    TCopyOnWrite<std::string> FId;
    [[no_unique_address]] TSVGStyleSet FStyle; // the next four stand in its padding
    bool FEnabled = true;
    const TSVGTag FTag;
    bool FIsGraphic = false;
    TSVGIdTable::TPlace FIdPlace = 0; ///< where the document finds this element by its id; else 0
    /// What few elements have.
    struct TRare;
    TRare& Rare();
    std::unique_ptr<TRare> FRare;
    std::vector<std::unique_ptr<TSVGElement>> FChildren;
};

/// A fill brush, a stroke pen or a stop's brush: a view of one element's own style. Cheap to copy; not to be
/// kept across edits of the tree.
class TSVGBrush {
public:
    TSVGBrush(TSVGElement& element, TSVGStyleProperty paint, TSVGStyleProperty opacity)
        : FElement(&element)
        , FPaint(paint)
        , FOpacity(opacity) {}
    /// What it paints with, after inheritance.
    TVZGPBrushKind GetKind() const;
    /// Takes colour and reference as they are.
    void SetKind(TVZGPBrushKind kind);
    /// The id that it refers to; empty where it refers to none.
    std::string GetURI() const;
    /// Refers to a paint server by id, with or without "#" or "url(#...)"; empty clears the reference. The
    /// kind stays.
    void SetURI(std::string_view uri);
    /// The colour after inheritance, its opacity property multiplied into the alpha.
    TVZGPColor GetColor() const;
    /// Sets the colour with its alpha, whatever the opacity property says; that stays as it is, for what a
    /// reference paints. A reference stays and takes the colour as its fallback; "none" stays none; a brush
    /// without a value of its own becomes solid.
    void SetColor(TVZGPColor color);

private:
    TStyleValue Own() const;
    void Put(TStyleValue value);
    bool IsAlphaOverridden() const;

    TSVGElement* FElement;
    TSVGStyleProperty FPaint;
    TSVGStyleProperty FOpacity;
};

/// A stroke's brush and width.
class TSVGPen : public TSVGBrush {
public:
    explicit TSVGPen(TSVGElement& element);
    double GetWidth() const;
    /// In user units; negative and not finite widths are refused (nothing happens).
    void SetWidth(double value);

private:
    TSVGElement* FPenElement;
};

/// An element that can be drawn.
class TSVGGraphicElement : public TSVGElement {
public:
    ~TSVGGraphicElement() override;

    /// False: the element is not drawn, by its own "display" or its own "visibility". Default true. Setting
    /// true takes both away; setting false keeps all below it from being drawn, too.
    bool GetVisible() const;
    void SetVisible(bool value);
    /// False: the element and all below it are not drawn ("display" none of its own).
    bool IsDisplayed() const { return FDisplayed; }
    /// 0..1, default 1, of the element as one; clamped, not-a-number is refused.
    float GetOpacity() const { return FOpacity; }
    void SetOpacity(float value);
    /// The element's transform, from its units to its parent's. SetMatrix replaces it; figures that are not
    /// finite are refused (nothing happens).
    TMatrix GetMatrix() const { return FTransform->ToMatrix(); }
    void SetMatrix(const TMatrix& matrix);
    const TAffine& GetTransform() const { return *FTransform; }
    void SetTransform(const TAffine& transform);
    void PutStyle(TSVGStyleProperty property, TStyleValue value) override;
    /// Display and opacity are always the element's own: excluded they are initial (shown, opaque).
    void SetSet(TSVGStyleProperty property, bool included) override;

    TSVGBrush GetBrush() { return {*this, TSVGStyleProperty::Fill, TSVGStyleProperty::FillOpacity}; }
    TSVGPen GetPen() { return TSVGPen{*this}; }
    /// Copies the font's settings into the element's own style; what the font leaves open is left as it was.
    void SetFont(const TSVGFont* font);
    /// What the element's own style sets of a font; the rest is left open.
    TSVGFont GetFont() const;

    /// The box around what is filled, of the element and all below it, under its own transform and then the
    /// matrix (SVG 1.1, 7.11: without strokes). All zero where it is empty.
    TRectF GetBounds(const TMatrix& matrix = {}) const;

    /// Which languages, features and extensions the element wants (SVG 1.1, 5.8); decides in a switch and
    /// alone.
    bool ConditionsHold() const;

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    TSVGGraphicElement(TSVGDocument& document, TSVGTag tag);
    void CopyFrom(const TSVGElement& source) override;
    void MakeLasting() override;

private:
    bool IsHidden() const;
    void SetDisplayed(bool value);

    friend class TSVGPainter;
    // What a painting reads of each element stands close together, from the children on.
    TCopyOnWrite<TAffine> FTransform;
    float FOpacity = 1;
    bool FDisplayed = true;
    mutable std::uint64_t FCompiledEpoch = 0; ///< of the document when FCompiled was made
    struct TCompiled;
    mutable std::shared_ptr<const TCompiled> FCompiled;
};

inline const TSVGGraphicElement* TSVGElement::AsGraphic() const {
    return FIsGraphic ? static_cast<const TSVGGraphicElement*>(this) : nullptr;
}

inline TSVGGraphicElement* TSVGElement::AsGraphic() {
    return FIsGraphic ? static_cast<TSVGGraphicElement*>(this) : nullptr;
}

} // namespace Vz
