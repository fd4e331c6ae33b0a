#include "tavro/svg/Control.h"

#include "tavro/controls/Palette.h"
#include "tavro/graphics/Transform.h"
#include "tavro/runtime/Props.h"
#include "tavro/runtime/Resources.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/paint/KeptLayers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <mutex>

namespace Vz {

namespace {

/// The document of an embedded resource, parsed on its first use in the process.
const TSVGDocument& Prototype(std::string_view name) {
    using TPrototypes = std::map<std::string, std::unique_ptr<const TSVGDocument>, std::less<>>;
    static TPrototypes& prototypes = *std::make_unique<TPrototypes>().release(); // outlives all copies
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    if (const auto found = prototypes.find(name); found != prototypes.end()) return *found->second;
    TSVGDocument read;
    read.LoadFromText(GetResource(name), name);
    auto document = std::make_unique<TSVGDocument>();
    document->AssignContent(read); // a copy lies closer together
    document->MakeSharedLasting();
    return *prototypes.emplace(name, std::move(document)).first->second;
}

} // namespace

TVZSVGControl::TVZSVGControl(TCreateKey key)
    : TCreatable(key)
    , FSVG(std::make_unique<TSVGDocument>())
    , FTransform(std::make_unique<TVZTransform>()) {
    FTransform->OnChange = [this](TObject& sender) { ObjectChanged(sender); };
    FTransform->OnShapeRect = [this](TObject& sender, TRectF& rect) { GetShapeRect(sender, rect); };
}

TVZSVGControl::~TVZSVGControl() = default;

void TVZSVGControl::Construct() {
    TVZCustomTransparentGraphicControl::Construct();
    SetHeight(50);
    SetWidth(50);
}

// Document.

void TVZSVGControl::LoadSVGResource(std::string_view name) {
    ReplaceContent([&] { FSVG->AssignContent(Prototype(name)); });
}

void TVZSVGControl::LoadFromText(std::string_view text, std::string_view source) {
    ReplaceContent([&] { FSVG->LoadFromText(text, source); });
}

void TVZSVGControl::LoadFromStream(std::istream& stream, std::string_view source) {
    ReplaceContent([&] { FSVG->LoadFromStream(stream, source); });
}

void TVZSVGControl::LoadFromFile(const std::string& path) {
    ReplaceContent([&] { FSVG->LoadFromFile(path); });
}

void TVZSVGControl::ReplaceContent(const std::function<void()>& load) {
    load();
    FActiveSVGElement = nullptr;
    FSVG->Watch(nullptr);
    FSVG->SetEnabled(GetEnabled());
    FBuffersStale = true;
    Invalidate();
}

/// Forgets an active element that has left the document.
void TVZSVGControl::CheckActiveElement() const {
    if (FActiveSVGElement == FSVG->GetWatched()) return;
    FActiveSVGElement = nullptr;
    FBuffersStale = true;
}

TSVGGraphicElement* TVZSVGControl::GetActiveSVGElement() const {
    CheckActiveElement();
    return FActiveSVGElement;
}

void TVZSVGControl::SetActiveSVGElement(TSVGGraphicElement* element) {
    if (element == GetActiveSVGElement()) return;
    FSVG->Watch(element);
    FActiveSVGElement = FSVG->GetWatched();
    FBuffersStale = true;
}

// Published.

void TVZSVGControl::SetBuffered(bool value) {
    if (value == FBuffered) return;
    FBuffered = value;
    FBuffersStale = value;
}

void TVZSVGControl::SetStretch(bool value) {
    if (value == FStretch) return;
    FStretch = value;
    FBuffersStale = true;
    Invalidate();
}

void TVZSVGControl::SetQuality(int value) {
    value = std::clamp(value, 1, MaxQuality);
    if (value == FQuality) return;
    FQuality = value;
    FBuffersStale = true;
    Invalidate();
}

void TVZSVGControl::SetOpacity(float value) {
    // Compared before it is clamped: so 1.5 invalidates each time. Kept.
    if (value == FOpacity || std::isnan(value)) return;
    FOpacity = std::clamp(value, 0.0f, 1.0f);
    Invalidate();
}

void TVZSVGControl::SetTransform(const TVZTransform& value) { FTransform->Assign(value); }

std::span<const TProp> TVZSVGControl::GetPropTable() const {
    using T = TVZSVGControl;
    static constexpr std::array Rows{
        Prop<&T::GetBuffered, &T::SetBuffered>("Buffered", true),
        Prop<&T::GetStretch, &T::SetStretch>("Stretch", false),
        Prop<&T::GetQuality, &T::SetQuality>("Quality", 1),
        Prop<&T::GetOpacity, &T::SetOpacity, &T::IsOpacityStored>("Opacity", 1.0f),
        ObjectProp<&T::GetTransform, &T::SetTransform, &T::IsTransformStored>("Transform"),
        EventProp<&T::SetOnDrawing>("OnDrawing"),
        EventProp<&T::SetOnDrawn>("OnDrawn"),
    };
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

// Place.

TSizeF TVZSVGControl::GetPictureSize(double factor) const {
    const auto mode = FStretch ? TSVGImageWrapMode::Stretch : TSVGImageWrapMode::Fit;
    return ScaleSize(float(GetWidth() * factor), float(GetHeight() * factor), FSVG->GetWidth(),
                     FSVG->GetHeight(), mode, 1.0f);
}

TRectF TVZSVGControl::GetDrawRect() const {
    const TSizeF size = GetPictureSize(1);
    TRectF rect{0, 0, size.Width, size.Height};
    CenterRect(rect, VZRect(GetClientRect()));
    return rect;
}

TMatrix TVZSVGControl::GetAbsoluteMatrix() const {
    const auto* parent = dynamic_cast<const IVZGraphicObject*>(GetParent());
    if (!parent) return FTransform->GetMatrix();
    return VZMatrixMultiply(FTransform->GetMatrix(), parent->GetAbsoluteMatrix());
}

TSVGGraphicElement* TVZSVGControl::ElementAtControlPoint(int x, int y) const {
    const TRectF rect = GetDrawRect();
    const TAffine absolute = TAffine::FromMatrix(GetAbsoluteMatrix());
    const TAffine matrix = PlaceDocument(rect);
    if (!absolute.IsInvertible() || !matrix.IsInvertible()) return nullptr;
    const TPointD point = absolute.Inverse()(x, y);
    const bool isInside = x >= 0 && x < GetWidth() && y >= 0 && y < GetHeight() && point.X >= rect.Left &&
                          point.X <= rect.Right && point.Y >= rect.Top && point.Y <= rect.Bottom;
    if (!isInside) return nullptr;
    const TPointD natural = matrix.Inverse()(point);
    return FSVG->ElementAt({float(natural.X), float(natural.Y)});
}

// Steps.

void TVZSVGControl::EnabledChanged() {
    FSVG->SetEnabled(GetEnabled());
    FBuffersStale = true;
    Invalidate();
}

void TVZSVGControl::EnabledChangedMessage() {
    EnabledChanged();
    TVZCustomTransparentGraphicControl::EnabledChangedMessage();
}

void TVZSVGControl::GetShapeRect(TObject&, TRectF& rect) { rect = VZRect(GetClientRect()); }

void TVZSVGControl::ObjectChanged(TObject&) { Invalidate(); }

bool TVZSVGControl::IsBuffered() const { return FBuffered || FOpacity < 1.0f; }

void TVZSVGControl::Resize() {
    TVZCustomTransparentGraphicControl::Resize();
    FBuffersStale = true;
}

void Register() { RegisterComponents("SVG", {TVZSVGControl::TypeName}); }

// What the header leaves to the hidden parts.

bool TVZSVGControl::IsTransformStored() const { return !IsIdentityMatrix(FTransform->GetMatrix()); }
const TSVGDrawingEvent& TVZSVGControl::GetOnDrawing() const { return FSVG->OnDrawing; }
void TVZSVGControl::SetOnDrawing(TSVGDrawingEvent event) { FSVG->OnDrawing = std::move(event); }
const TSVGDrawnEvent& TVZSVGControl::GetOnDrawn() const { return FSVG->OnDrawn; }
void TVZSVGControl::SetOnDrawn(TSVGDrawnEvent event) { FSVG->OnDrawn = std::move(event); }
const TVZGPBitmap* TVZSVGControl::GetBeforeBuffer() const { return FLayers ? &FLayers->Before : nullptr; }
const TVZGPBitmap* TVZSVGControl::GetAfterBuffer() const { return FLayers ? &FLayers->After : nullptr; }

} // namespace Vz
