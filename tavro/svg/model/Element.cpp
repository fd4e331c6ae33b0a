#include "tavro/svg/model/Element.h"

#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Updates.h"
#include "tavro/svg/model/CompiledInternal.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/model/ElementMemoryInternal.h"
#include "tavro/svg/model/Font.h"
#include "tavro/svg/values/Scan.h"
#include "tavro/svg/values/TransformText.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

constexpr std::string_view TagNames[] = {
    "svg",      "g",       "defs",           "symbol",         "use",     "switch",
    "a",        "path",    "rect",           "circle",         "ellipse", "line",
    "polyline", "polygon", "image",          "text",           "tspan",   "textPath",
    "tref",     "",        "linearGradient", "radialGradient", "stop",    "pattern",
    "clipPath", "mask",    "marker",         "filter",         "",        "style",
    "title",    "",
};
static_assert(std::size(TagNames) == static_cast<std::size_t>(TSVGTag::Other) + 1);

} // namespace

void* TSVGElement::operator new(std::size_t size) { return TElementBlocks::Take(size); }

void TSVGElement::operator delete(void* element) noexcept { TElementBlocks::Give(element); }

/// What few elements have.
struct TSVGElement::TRare {
    /// Own values of properties that are excluded at present.
    TSVGStyleSet Excluded;
    // What the element asks of its viewer, as written.
    std::optional<std::string> Extensions;
    std::optional<std::string> Languages;
};

TSVGElement::TRare& TSVGElement::Rare() {
    if (!FRare) FRare = std::make_unique<TRare>();
    return *FRare;
}

TSVGElement::TSVGElement(TSVGDocument& document, TSVGTag tag)
    : FDocument(&document)
    , FTag(tag) {}

TSVGElement::~TSVGElement() {
    // A deep tree is taken apart level by level, so that its depth does not become the stack's.
    std::vector<std::unique_ptr<TSVGElement>> pending = std::move(FChildren);
    while (!pending.empty()) {
        const std::unique_ptr<TSVGElement> last = std::move(pending.back());
        pending.pop_back();
        for (auto& child : last->FChildren)
            pending.push_back(std::move(child));
        last->FChildren.clear();
    }
}

std::string_view TSVGElement::GetTagName() const { return TagNames[static_cast<int>(GetTag())]; }

bool TSVGElement::HasAncestor(const TSVGElement* element) const {
    for (const TSVGElement* at = FParent; at; at = at->FParent)
        if (at == element) return true;
    return false;
}

void TSVGElement::SetId(std::string_view id) {
    if (id == *FId) return;
    FDocument->ChangeId(*this, id);
    Changed(TSVGChangeKind::Structure);
}

TSVGElement& TSVGElement::GetChild(std::size_t index) const {
    if (index >= FChildren.size())
        throw EArgumentOutOfRange("child " + std::to_string(index) + " of " +
                                  std::to_string(FChildren.size()));
    return *FChildren[index];
}

TSVGElement& TSVGElement::AddChild(std::unique_ptr<TSVGElement> child) {
    return InsertChild(FChildren.size(), std::move(child));
}

TSVGElement& TSVGElement::InsertChild(std::size_t index, std::unique_ptr<TSVGElement> child) {
    if (index > FChildren.size())
        throw EArgumentOutOfRange("place " + std::to_string(index) + " of " +
                                  std::to_string(FChildren.size()));
    if (!child || child->FDocument != FDocument || child->FParent || child.get() == this ||
        HasAncestor(child.get()))
        throw EInvalidOperation("an element is added that is not a free one of the same document");
    TSVGElement& element = *child;
    FChildren.insert(FChildren.begin() + static_cast<std::ptrdiff_t>(index), std::move(child));
    element.FParent = this;
    FDocument->Register(element);
    element.Changed(TSVGChangeKind::Structure);
    return element;
}

std::unique_ptr<TSVGElement> TSVGElement::Remove() {
    if (!FParent) throw EInvalidOperation("the root of a document cannot be removed");
    auto& siblings = FParent->FChildren;
    const auto at =
        std::find_if(siblings.begin(), siblings.end(), [this](const auto& s) { return s.get() == this; });
    std::unique_ptr<TSVGElement> self = std::move(*at);
    siblings.erase(at);
    TSVGElement* const parent = FParent;
    FParent = nullptr;
    FDocument->Unregister({&self, 1});
    parent->Changed(TSVGChangeKind::Structure);
    return self;
}

void TSVGElement::RemoveChildren() {
    if (FChildren.empty()) return;
    const auto removed = std::move(FChildren);
    FChildren.clear();
    FDocument->Unregister(removed);
    Changed(TSVGChangeKind::Structure);
}

std::unique_ptr<TSVGElement> TSVGElement::CloneInto(TSVGDocument& document, TSVGIdTable* ids) const {
    std::unique_ptr<TSVGElement> copy = NewAlike(document);
    copy->CopyFrom(*this);
    if (ids) {
        copy->FId = FId;
        copy->FIdPlace = FIdPlace;
        if (FIdPlace) ids->Set(FIdPlace, copy.get());
    }
    copy->FChildren = CloneChildren(document, *copy, ids);
    return copy;
}

std::vector<std::unique_ptr<TSVGElement>>
TSVGElement::CloneChildren(TSVGDocument& document, TSVGElement& parent, TSVGIdTable* ids) const {
    std::vector<std::unique_ptr<TSVGElement>> copies;
    copies.reserve(FChildren.size());
    for (const auto& child : FChildren) {
        copies.push_back(child->CloneInto(document, ids));
        copies.back()->FParent = &parent;
    }
    return copies;
}

TSVGElement& TSVGElement::CloneBeside() {
    if (!FParent) throw EInvalidOperation("the root of a document cannot be cloned beside itself");
    const auto& siblings = FParent->FChildren;
    const auto at =
        std::find_if(siblings.begin(), siblings.end(), [this](const auto& s) { return s.get() == this; });
    return FParent->InsertChild(static_cast<std::size_t>(at - siblings.begin()) + 1,
                                CloneInto(*FDocument, nullptr));
}

void TSVGElement::SetEnabled(bool value) {
    if (value == FEnabled) return;
    FEnabled = value;
    Changed(TSVGChangeKind::Paint);
}

void TSVGElement::BeginUpdate() { ++FDocument->FUpdateCount; }

void TSVGElement::EndUpdate() {
    if (FDocument->FUpdateCount > 0 && --FDocument->FUpdateCount == 0) FDocument->Tell();
}

void TSVGElement::Changed(TSVGChangeKind kind) {
    if (IsInTree()) FDocument->Notify({this, kind});
}

bool TSVGElement::IsInTree() const {
    const TSVGElement* top = this;
    while (top->FParent)
        top = top->FParent;
    return top == FDocument;
}

void TSVGElement::PutStyle(TSVGStyleProperty property, TStyleValue value) {
    if (const TStyleValue* const own = FStyle.Find(property); own && *own == value) return;
    TakeExcluded(property);
    FStyle.Put(property, std::move(value));
    Changed(TSVGChangeKind::Paint);
}

void TSVGElement::SetSet(TSVGStyleProperty property, bool included) {
    const TStyleValue* const own = FStyle.Find(property);
    if (included == (own != nullptr)) return;
    if (!included) {
        KeepExcluded(property, *own);
        FStyle.Remove(property);
        Changed(TSVGChangeKind::Paint);
    } else if (auto kept = TakeExcluded(property))
        PutStyle(property, std::move(*kept));
    else if (const TStyleValue* const value = FindInherited(property))
        PutStyle(property, TStyleValue(*value));
    else if (auto initial = ParseStyleValue(property, "initial"))
        PutStyle(property, std::move(*initial));
}

void TSVGElement::KeepExcluded(TSVGStyleProperty property, TStyleValue value) {
    Rare().Excluded.Put(property, std::move(value));
}

std::optional<TStyleValue> TSVGElement::TakeExcluded(TSVGStyleProperty property) {
    const TStyleValue* const kept = FRare ? FRare->Excluded.Find(property) : nullptr;
    if (!kept) return {};
    TStyleValue value = *kept;
    FRare->Excluded.Remove(property);
    return value;
}

void TSVGElement::SetValue(const TSVGStyleSet& set) {
    if (FRare) FRare->Excluded = {};
    if (set == FStyle) return;
    const TUpdateScope update(*this);
    FStyle = {};
    for (const auto& [property, value] : set.Entries())
        PutStyle(property, value);
    Changed(TSVGChangeKind::Paint);
}

TComputedStyle TSVGElement::GetComputedStyle() const {
    const TComputedStyle parent = FParent ? FParent->GetComputedStyle() : TComputedStyle::Initial();
    TLengthBasis view{FDocument->GetWidth(), FDocument->GetHeight()};
    if (const auto& box = FDocument->GetViewBox()) {
        view.ViewWidth = box->Width;
        view.ViewHeight = box->Height;
    }
    TComputedStyle style = ComputeStyle(parent, FStyle, view);
    if (!FParent) style.RootFontSize = style.Text->Font.Size;
    return style;
}

const TStyleValue* TSVGElement::FindInherited(TSVGStyleProperty property) const {
    for (const TSVGElement* at = this; at; at = at->FParent) {
        const TStyleValue* const own = at->FStyle.Find(property);
        if (own && own->Kind != TStyleValue::TKind::Inherit) return own;
        if (!own && !IsInherited(property)) return nullptr;
    }
    return nullptr;
}

bool TSVGElement::ReadAttribute(std::string_view, std::string_view) { return false; }

void TSVGElement::WriteAttributes(IAttributeSink&) const {}

void TSVGElement::CopyFrom(const TSVGElement& source) {
    FStyle = source.FStyle;
    FEnabled = source.FEnabled;
    FRare = source.FRare ? std::make_unique<TRare>(*source.FRare) : nullptr;
}

void TSVGElement::MakeLasting() {
    FId.MakeLasting();
    FStyle.MakeLasting();
}

void TSVGElement::Refuse(std::string_view name, std::string_view value, std::string_view why) {
    constexpr std::size_t longest = 40;
    std::string text{GetTagName()};
    text +=
        ": " + std::string(name) + ": " + std::string(why) + " \"" + std::string(value.substr(0, longest));
    text += value.size() > longest ? "...\"" : "\"";
    FDocument->AddDiagnostic(std::move(text));
}

// Brushes

namespace {

std::string_view BareId(std::string_view uri) {
    uri = Trimmed(uri);
    if (StartsWithNoCase(uri, "url(") && uri.ends_with(')')) uri = Trimmed(uri.substr(4, uri.size() - 5));
    if (uri.starts_with('#')) uri.remove_prefix(1);
    return uri;
}

} // namespace

TStyleValue TSVGBrush::Own() const {
    if (const TStyleValue* const value = FElement->FindInherited(FPaint)) return *value;
    TStyleValue initial;
    initial.Kind =
        FPaint == TSVGStyleProperty::Stroke ? TStyleValue::TKind::NoPaint : TStyleValue::TKind::Color;
    return initial;
}

void TSVGBrush::Put(TStyleValue value) { FElement->PutStyle(FPaint, std::move(value)); }

TVZGPBrushKind TSVGBrush::GetKind() const {
    switch (Own().Kind) {
    case TStyleValue::TKind::NoPaint:
        return TVZGPBrushKind::None;
    case TStyleValue::TKind::Url:
        return TVZGPBrushKind::URI;
    default:
        return TVZGPBrushKind::Solid;
    }
}

void TSVGBrush::SetKind(TVZGPBrushKind kind) {
    TStyleValue value = Own();
    using K = TStyleValue::TKind;
    if (kind == TVZGPBrushKind::Solid && value.Kind == K::CurrentColor)
        value.Color = FElement->GetComputedStyle().Color;
    value.Kind = kind == TVZGPBrushKind::None ? K::NoPaint : kind == TVZGPBrushKind::URI ? K::Url : K::Color;
    if (value.Kind == K::Url && !value.Text) value.Text = std::make_shared<const std::string>();
    Put(std::move(value));
}

std::string TSVGBrush::GetURI() const {
    const TStyleValue value = Own();
    return value.Text ? *value.Text : std::string();
}

void TSVGBrush::SetURI(std::string_view uri) {
    TStyleValue value = Own();
    const std::string_view id = BareId(uri);
    if (value.Text ? *value.Text == id : id.empty()) return;
    value.Text = std::make_shared<const std::string>(id);
    Put(std::move(value));
}

/// True where an element nearer than the one whose colour is in force sets the opacity property.
bool TSVGBrush::IsAlphaOverridden() const {
    for (const TSVGElement* at = FElement; at; at = at->GetParent()) {
        if (const TStyleValue* const own = at->GetStyle().Find(FPaint);
            own && own->Kind != TStyleValue::TKind::Inherit)
            return false;
        if (at->GetStyle().Contains(FOpacity)) return true;
    }
    return false;
}

TVZGPColor TSVGBrush::GetColor() const {
    const TStyleValue value = Own();
    if (value.HasOwnAlpha && !IsAlphaOverridden()) return value.Color;
    const TVZGPColor color =
        value.Kind == TStyleValue::TKind::CurrentColor ? FElement->GetComputedStyle().Color : value.Color;
    const TStyleValue* const opacity = FElement->FindInherited(FOpacity);
    const TVZGPColor base = value.HasOwnAlpha ? WithAlpha(color, 255) : color;
    return opacity ? Faded(base, opacity->Number) : base;
}

void TSVGBrush::SetColor(TVZGPColor color) {
    using K = TStyleValue::TKind;
    TStyleValue value = Own();
    value.Color = color;
    const TStyleValue* const opacity = FElement->FindInherited(FOpacity);
    value.HasOwnAlpha = AlphaOf(color) != 255 || (opacity && opacity->Number != 1);
    if (value.Kind == K::Url)
        value.Fallback = TStyleValue::TFallback::Color;
    else if (value.Kind != K::NoPaint)
        value.Kind = K::Color;
    Put(std::move(value));
}

TSVGPen::TSVGPen(TSVGElement& element)
    : TSVGBrush(element, TSVGStyleProperty::Stroke, TSVGStyleProperty::StrokeOpacity)
    , FPenElement(&element) {}

double TSVGPen::GetWidth() const { return FPenElement->GetComputedStyle().StrokeWidth; }

void TSVGPen::SetWidth(double value) {
    if (!std::isfinite(value) || value < 0) return;
    TStyleValue length;
    length.Kind = TStyleValue::TKind::Length;
    length.Number = value;
    FPenElement->PutStyle(TSVGStyleProperty::StrokeWidth, std::move(length));
}

// Graphic elements

TSVGGraphicElement::TSVGGraphicElement(TSVGDocument& document, TSVGTag tag)
    : TSVGElement(document, tag) {
    FIsGraphic = true;
}

TSVGGraphicElement::~TSVGGraphicElement() = default;

void TSVGGraphicElement::PutStyle(TSVGStyleProperty property, TStyleValue value) {
    using K = TStyleValue::TKind;
    if (property == TSVGStyleProperty::Display) {
        if (value.Kind == K::Keyword) SetDisplayed(value.Word != TKeyword::None);
    } else if (property == TSVGStyleProperty::Opacity) {
        const TSVGGraphicElement* const parent = GetParent() ? GetParent()->AsGraphic() : nullptr;
        SetOpacity(value.Kind == K::Inherit ? (parent ? parent->FOpacity : 1.0f)
                                            : static_cast<float>(value.Number));
    } else {
        TSVGElement::PutStyle(property, std::move(value));
    }
}

void TSVGGraphicElement::SetSet(TSVGStyleProperty property, bool included) {
    using K = TStyleValue::TKind;
    const bool isDisplay = property == TSVGStyleProperty::Display;
    if (!isDisplay && property != TSVGStyleProperty::Opacity) return TSVGElement::SetSet(property, included);
    if (included) {
        if (auto kept = TakeExcluded(property)) PutStyle(property, std::move(*kept));
        return;
    }
    if (isDisplay ? FDisplayed : FOpacity == 1) return;
    TStyleValue own;
    own.Kind = isDisplay ? K::Keyword : K::Number;
    own.Word = TKeyword::None;
    own.Number = FOpacity;
    isDisplay ? SetDisplayed(true) : SetOpacity(1);
    KeepExcluded(property, own);
}

/// True where the element's own style says that it is not visible.
bool TSVGGraphicElement::IsHidden() const {
    const TStyleValue* const own = GetStyle().Find(TSVGStyleProperty::Visibility);
    return own && own->Kind == TStyleValue::TKind::Keyword && own->Word != TKeyword::Visible;
}

bool TSVGGraphicElement::GetVisible() const { return FDisplayed && !IsHidden(); }

void TSVGGraphicElement::SetVisible(bool value) {
    const TUpdateScope update(*this);
    if (value && IsHidden()) {
        FStyle.Remove(TSVGStyleProperty::Visibility);
        Changed(TSVGChangeKind::Paint);
    }
    SetDisplayed(value);
}

void TSVGGraphicElement::SetDisplayed(bool value) {
    TakeExcluded(TSVGStyleProperty::Display);
    if (value == FDisplayed) return;
    FDisplayed = value;
    Changed(TSVGChangeKind::Place);
}

void TSVGGraphicElement::SetOpacity(float value) {
    if (std::isnan(value)) return;
    TakeExcluded(TSVGStyleProperty::Opacity);
    value = std::clamp(value, 0.0f, 1.0f);
    if (value == FOpacity) return;
    FOpacity = value;
    Changed(TSVGChangeKind::Place);
}

void TSVGGraphicElement::SetMatrix(const TMatrix& matrix) { SetTransform(TAffine::FromMatrix(matrix)); }

void TSVGGraphicElement::SetTransform(const TAffine& transform) {
    if (!transform.IsFinite() || transform == *FTransform) return;
    FTransform.Edit() = transform;
    Changed(TSVGChangeKind::Place);
}

void TSVGGraphicElement::SetFont(const TSVGFont* font) {
    if (!font) return;
    using P = TSVGStyleProperty;
    using K = TStyleValue::TKind;
    const TUpdateScope update(*this);
    TStyleValue value;
    if (!font->GetFamily().empty()) {
        value.Kind = K::Text;
        value.Text = std::make_shared<const std::string>(font->GetFamily());
        PutStyle(P::FontFamily, value);
        value.Text = nullptr;
    }
    if (font->GetSize() > 0) {
        value.Kind = K::Length;
        value.Number = font->GetSize();
        PutStyle(P::FontSize, value);
        value.Number = 0;
    }
    if (font->GetWeight() > 0) {
        value.Kind = K::Number;
        value.Number = font->GetWeight();
        PutStyle(P::FontWeight, value);
        value.Number = 0;
    }
    if (font->GetStyle() != TSVGFontStyle::fsArtwork) {
        value.Kind = K::Keyword;
        value.Word = font->GetStyle() == TSVGFontStyle::fsItalic ? TKeyword::Italic : TKeyword::Normal;
        PutStyle(P::FontStyle, value);
    }
}

TSVGFont TSVGGraphicElement::GetFont() const { return TSVGFont(*this); }

namespace {

/// The language that documents are asked for (SVG 1.1, 5.8.5): the library takes it from nowhere, so it is
/// fixed.
constexpr std::string_view UserLanguage = "en";

bool LanguageFits(std::string_view list) {
    while (!list.empty()) {
        const std::size_t comma = std::min(list.find(','), list.size());
        const std::string_view one = Trimmed(list.substr(0, comma));
        list.remove_prefix(std::min(comma + 1, list.size()));
        if (StartsWithNoCase(one, UserLanguage) &&
            (one.size() == UserLanguage.size() || one[UserLanguage.size()] == '-'))
            return true;
    }
    return false;
}

} // namespace

bool TSVGGraphicElement::ConditionsHold() const {
    return !FRare || (!FRare->Extensions && (!FRare->Languages || LanguageFits(*FRare->Languages)));
}

bool TSVGGraphicElement::ReadAttribute(std::string_view name, std::string_view value) {
    if (name == "transform") {
        if (const auto transform = ParseTransform(value))
            SetTransform(*transform);
        else
            Refuse(name, value);
        return true;
    }
    if (name == "requiredExtensions" || name == "systemLanguage") {
        (name == "systemLanguage" ? Rare().Languages : Rare().Extensions) = value;
        return true;
    }
    return TSVGElement::ReadAttribute(name, value);
}

void TSVGGraphicElement::WriteAttributes(IAttributeSink& sink) const {
    TSVGElement::WriteAttributes(sink);
    if (!FDisplayed) sink.Put("display", "none");
    if (FOpacity != 1) sink.Put("opacity", NumberText(FOpacity));
    if (!(*FTransform == TAffine{})) sink.Put("transform", TransformText(*FTransform));
    if (FRare && FRare->Extensions) sink.Put("requiredExtensions", *FRare->Extensions);
    if (FRare && FRare->Languages) sink.Put("systemLanguage", *FRare->Languages);
}

void TSVGGraphicElement::CopyFrom(const TSVGElement& source) {
    TSVGElement::CopyFrom(source);
    const auto& other = static_cast<const TSVGGraphicElement&>(source);
    FTransform = other.FTransform;
    FOpacity = other.FOpacity;
    FDisplayed = other.FDisplayed;
}

void TSVGGraphicElement::MakeLasting() {
    TSVGElement::MakeLasting();
    FTransform.MakeLasting();
}

} // namespace Vz
