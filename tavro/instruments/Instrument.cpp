#include "tavro/instruments/Instrument.h"

#include "tavro/instruments/Editing.h"
#include "tavro/instruments/Memo.h"
#include "tavro/runtime/FormatFloat.h"
#include "tavro/runtime/PropAccess.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <utility>
#include <vector>

namespace Vz {

namespace {

/// The fill or stroke becomes the colour, or none for 0x00000000, whatever it was.
void PaintFlat(TSVGGraphicElement& element, TSVGStyleProperty paint, TVZGPColor color) {
    TSVGBrush brush = paint == TSVGStyleProperty::Fill ? element.GetBrush() : element.GetPen();
    // Out of the element's own style first, so that nothing of the artwork's paint stays behind the colour.
    element.SetSet(paint, false);
    brush.SetKind(color == 0 ? TVZGPBrushKind::None : TVZGPBrushKind::Solid);
    brush.SetColor(color);
    element.Changed();
}

} // namespace

struct TVZSVGCustomInstrument::TArtworkStyles : std::map<std::string, TSVGStyleSet, std::less<>> {};

// Construction.

TVZSVGCustomInstrument::TVZSVGCustomInstrument(TCreateKey key)
    : TVZSVGControl(key)
    , FArtworkStyles(std::make_unique<TArtworkStyles>()) {}

TVZSVGCustomInstrument::~TVZSVGCustomInstrument() = default;

void TVZSVGCustomInstrument::Construct() {
    const TInstrumentSetup& setup = GetSetup();
    if (FDecorationElementId.empty()) FDecorationElementId = setup.DecorationElement;
    const auto declared = [](TVZGPColor color) { return TReadColor{color, color}; };
    FDecorationFillColor = declared(setup.DecorationFill);
    FDecorationStrokeColor = declared(setup.DecorationStroke);
    FColors.clear();
    for (const TColorRow& row : setup.Colors)
        FColors.push_back(declared(row.Default));
    FParts = setup.Parts;
    TVZSVGControl::Construct();
    LoadSVGResource(GetSVGResourceName());
    LoadSVGProperties();
    FDecoration = setup.Decoration;
    SetHeight(setup.Height);
    SetWidth(setup.Width);
}

void TVZSVGCustomInstrument::AfterConstruction() {
    TVZSVGControl::AfterConstruction();
    FIsComplete = true;
    InitializeGauge();
}

const TInstrumentSetup& TVZSVGCustomInstrument::GetSetup() const {
    static constexpr TInstrumentSetup empty;
    return empty;
}

std::string TVZSVGCustomInstrument::GetSVGResourceName() const { return std::string(GetSetup().Artwork); }
std::string_view TVZSVGCustomInstrument::GetActiveElementId() const { return GetSetup().ActiveElement; }

void TVZSVGCustomInstrument::LoadSVGProperties() {
    ReadColor(FDecorationFillColor, Rows::FillOf(FDecorationElementId));
    ReadColor(FDecorationStrokeColor, Rows::StrokeOf(FDecorationElementId));
    const auto rows = GetSetup().Colors;
    for (std::size_t i = 0; i < rows.size(); ++i)
        ReadColor(FColors[i], rows[i].Source);
    SaveGradients();
}

// Update batches.

void TVZSVGCustomInstrument::BeginUpdate() { ++FUpdateCount; }

void TVZSVGCustomInstrument::EndUpdate() {
    if (--FUpdateCount == 0) InitializeGauge();
}

void TVZSVGCustomInstrument::InitializeGauge() {
    if (IsUpdating()) return;
    EditDocument([this] { DoInitializeGauge(); });
}

void TVZSVGCustomInstrument::DoInitializeGauge() {
    UpdateDecoration();
    DoUpdateParts();
    DoUpdateDesign();
}

// Update steps.

void TVZSVGCustomInstrument::DoUpdateParts() {
    for (const TPartRow& row : GetSetup().PartElements)
        ShowElement(row.Element, (row.Parts & ~FParts) == 0);
}

void TVZSVGCustomInstrument::DoUpdateDesign() {
    for (const std::string_view id : GetSetup().DetailElements)
        ShowElement(id, FDesign == TSVGDesign::sdDetailed);
}

void TVZSVGCustomInstrument::UpdateDesign() {
    EditDocument([this] { DoUpdateDesign(); });
    MarkChanged();
}

void TVZSVGCustomInstrument::UpdateParts() {
    if (GetDocument().GetChildCount() == 0) return;
    EditDocument([this] {
        DoUpdateParts();
        MarkBuffersStale();
    });
    Invalidate();
}

void TVZSVGCustomInstrument::UpdateDecoration() {
    if (auto* const path = Find<TSVGPath>(FDecorationElementId))
        EditDocument([&] {
            // Also for dcCustom: a path of the user's own lives in the artwork only and goes here. Kept.
            path->SetData(&PathOf(Vz::GetDecorationPath(static_cast<int>(FDecoration))));
        });
    MarkChanged();
}

const TVZPathData& TVZSVGCustomInstrument::PathOf(std::string_view data) {
    thread_local TMemo<std::string, std::unique_ptr<const TVZPathData>> known;
    return *known.Get(std::string(data), [data] {
        auto path = std::make_unique<TVZPathData>();
        path->SetPathString(data);
        return path;
    });
}

void TVZSVGCustomInstrument::UpdateDecorationFill() {
    auto* const element = Find<TSVGGraphicElement>(FDecorationElementId);
    if (!element) return;
    EditDocument([&] { PaintFlat(*element, TSVGStyleProperty::Fill, FDecorationFillColor.Now); });
    MarkChanged();
}

void TVZSVGCustomInstrument::UpdateDecorationStroke() {
    auto* const element = Find<TSVGGraphicElement>(FDecorationElementId);
    if (!element) return;
    EditDocument([&] { PaintFlat(*element, TSVGStyleProperty::Stroke, FDecorationStrokeColor.Now); });
    MarkChanged();
}

void TVZSVGCustomInstrument::DoOnChange() { Raise(FOnChange, *this); }

// Properties.

void TVZSVGCustomInstrument::SetDesign(TSVGDesign value) {
    if (Store(FDesign, value)) UpdateDesign();
}

void TVZSVGCustomInstrument::SetDecoration(TDecoration value) {
    if (Store(FDecoration, value)) UpdateDecoration();
}

const TVZPathData* TVZSVGCustomInstrument::GetDecorationPath() const {
    const auto* const path = Find<TSVGPath>(FDecorationElementId);
    return path ? &path->GetData() : nullptr;
}

void TVZSVGCustomInstrument::SetDecorationPath(const TVZPathData& value) {
    auto* const path = Find<TSVGPath>(FDecorationElementId);
    if (!path) return;
    const bool isSame = value.GetFigures() == path->GetData().GetFigures();
    if (isSame && FDecoration == TDecoration::dcCustom) return;
    EditDocument([&] { path->SetData(&value); });
    FDecoration = TDecoration::dcCustom;
    MarkChanged();
}

void TVZSVGCustomInstrument::ResetDecorationPath() {
    const TProp* const decoration = FindProp(*this, "Decoration");
    if (decoration && FDecoration == TDecoration::dcCustom) decoration->Set(*this, decoration->Default);
}

void TVZSVGCustomInstrument::SetDecorationFillColor(TVZGPColor value) {
    if (Store(FDecorationFillColor.Now, value)) UpdateDecorationFill();
}

void TVZSVGCustomInstrument::SetDecorationStrokeColor(TVZGPColor value) {
    if (Store(FDecorationStrokeColor.Now, value)) UpdateDecorationStroke();
}

void TVZSVGCustomInstrument::SetPartsMask(std::uint32_t value) {
    if (Store(FParts, value)) UpdateParts();
}

void TVZSVGCustomInstrument::SetEnableGradients(bool value) {
    if (Store(FEnableGradients, value)) UpdateGradients();
}

void TVZSVGCustomInstrument::SetLightColor(TVZGPColor value) {
    if (Store(FLightColor, value)) UpdateLight();
}

void TVZSVGCustomInstrument::SetFormatStr(std::string_view value) {
    if (value == FFormatStr) return;
    FormatFloat(value, 123.45); // raises for a picture that cannot be used
    FFormatStr = value;
    EditDocument([this] { UpdateNumbers(); });
    MarkChanged();
}

bool TVZSVGCustomInstrument::IsFormatStrStored() const { return FFormatStr != DefaultFormatStr; }

std::string TVZSVGCustomInstrument::FormatNumber(double value) const {
    return FormatFloat(FFormatStr, value);
}

const std::vector<std::string>&
TVZSVGCustomInstrument::FormatNumbers(const std::vector<double>& values) const {
    thread_local TMemo<std::pair<std::string, std::vector<double>>, std::vector<std::string>> known;
    return known.Get({FFormatStr, values}, [&] {
        std::vector<std::string> texts;
        for (const double value : values)
            texts.push_back(FormatNumber(value));
        return texts;
    });
}

// What setters and steps are written with.

void TVZSVGCustomInstrument::MarkChanged() {
    MarkBuffersStale();
    Invalidate();
}

void TVZSVGCustomInstrument::ShowElement(std::string_view id, bool visible) {
    if (auto* const element = Find<TSVGGraphicElement>(id)) element->SetVisible(visible);
}

void TVZSVGCustomInstrument::SetElementFill(std::string_view id, TVZGPColor color) {
    auto* const element = Find<TSVGGraphicElement>(id);
    if (!element) return;
    TSVGBrush brush = element->GetBrush();
    const TVZGPBrushKind kind = brush.GetKind();
    if (color == 0 && kind == TVZGPBrushKind::Solid) brush.SetKind(TVZGPBrushKind::None);
    if (color != 0 && kind == TVZGPBrushKind::None) brush.SetKind(TVZGPBrushKind::Solid);
    brush.SetColor(color);
    element->Changed();
}

void TVZSVGCustomInstrument::SetElementStroke(std::string_view id, TVZGPColor color) {
    if (auto* const element = Find<TSVGGraphicElement>(id))
        PaintFlat(*element, TSVGStyleProperty::Stroke, color);
}

void TVZSVGCustomInstrument::SetElementFlatFill(std::string_view id, TVZGPColor color) {
    if (auto* const element = Find<TSVGGraphicElement>(id))
        PaintFlat(*element, TSVGStyleProperty::Fill, color);
}

void TVZSVGCustomInstrument::SetElementText(std::string_view id, std::string_view text) {
    if (auto* const element = Find<TSVGCustomText>(id)) element->SetText(text);
}

TSVGBasicShape* TVZSVGCustomInstrument::FindRect(std::string_view id) const {
    auto* const shape = Find<TSVGBasicShape>(id);
    if (shape && shape->GetTag() != TSVGTag::Rect)
        throw EInvalidCast("the element \"" + std::string(id) + "\" is no rect");
    return shape;
}

void TVZSVGCustomInstrument::WriteScale(std::string_view groupId, float first, float last,
                                        std::string_view twinId) {
    auto* const group = Find<TSVGGraphicElement>(groupId);
    auto* const twin = twinId.empty() ? group : Find<TSVGGraphicElement>(twinId);
    if (!group || !twin) return;
    const std::size_t count = group->GetChildCount();
    if (twin->GetChildCount() < count)
        throw EArgumentOutOfRange(std::string(twinId) + ": fewer texts than in " + std::string(groupId));
    std::vector<TSVGCustomText*> texts;
    const auto take = [&](const TSVGGraphicElement& parent, std::string_view id) {
        for (std::size_t i = 0; i < count; ++i) {
            texts.push_back(dynamic_cast<TSVGCustomText*>(parent.Children()[i].get()));
            if (!texts.back()) throw EInvalidCast(std::string(id) + ": a child that is no text");
        }
    };
    take(*group, groupId);
    if (twin != group) take(*twin, twinId);

    const double step = (double{last} - double{first}) / std::max(static_cast<int>(count) - 1, 1);
    std::vector<double> numbers;
    for (double number = first; numbers.size() < count; number += step)
        numbers.push_back(number);
    const std::vector<std::string>& written = FormatNumbers(numbers);
    EditDocument([&] {
        for (std::size_t i = 0; i < texts.size(); ++i)
            texts[i]->SetText(written[i % count]);
    });
}

namespace {

constexpr TSVGStyleProperty FontProperties[] = {
    TSVGStyleProperty::FontFamily,  TSVGStyleProperty::FontSize,  TSVGStyleProperty::FontSizeAdjust,
    TSVGStyleProperty::FontStretch, TSVGStyleProperty::FontStyle, TSVGStyleProperty::FontVariant,
    TSVGStyleProperty::FontWeight,
};

} // namespace

void TVZSVGCustomInstrument::ApplyFont(std::string_view elementId, const TSVGFont& font) {
    auto* const element = Find<TSVGGraphicElement>(elementId);
    if (!element) return;
    const auto found = FArtworkStyles->try_emplace(std::string(elementId), element->GetStyle());
    const bool isFirst = found.second; // clang 14 captures no structured binding
    const TSVGStyleSet& artwork = found.first->second;
    EditDocument([&] {
        if (isFirst && font.IsOpen()) return element->Changed(); // all is as the artwork has it
        TSVGStyleSet style = element->GetStyle();
        for (const TSVGStyleProperty property : FontProperties) {
            if (const TStyleValue* const own = artwork.Find(property))
                style.Put(property, *own);
            else
                style.Remove(property);
        }
        element->SetValue(style);
        element->SetFont(&font);
        element->Changed();
    });
    MarkChanged();
}

namespace {

using TOutlines = std::vector<std::shared_ptr<const void>>;

/// Gathers what the box of an element depends on, where that is no more than which outlines are shown.
bool CollectOutlines(const TSVGGraphicElement& element, TOutlines& outlines) {
    if (!element.IsDisplayed()) return true;
    if (!(element.GetTransform() == TAffine{}) || !element.ConditionsHold()) return false;
    if (element.GetTag() == TSVGTag::G)
        return std::ranges::all_of(element.Children(), [&](const auto& child) {
            const TSVGGraphicElement* const graphic = child->AsGraphic();
            return !graphic || CollectOutlines(*graphic, outlines);
        });
    const auto* const shape = dynamic_cast<const TSVGShape*>(&element);
    outlines.push_back(shape ? shape->ShareOutline() : nullptr);
    return outlines.back() != nullptr;
}

TPointF FindCenter(const TSVGGraphicElement& element) {
    const auto find = [&] { return VZCenterPoint(element.GetBounds()); };
    thread_local TMemo<TOutlines, TPointF> known;
    TOutlines outlines;
    const bool canKnow = element.IsDisplayed() && CollectOutlines(element, outlines);
    return canKnow ? known.Get(outlines, find) : find();
}

} // namespace

bool TVZSVGCustomInstrument::TurnElement(std::string_view id, std::string_view centerId, double angleDeg) {
    auto* const element = Find<TSVGGraphicElement>(id);
    const auto* const center = Find<TSVGGraphicElement>(centerId);
    if (!element || !center) return false;
    const double radians = static_cast<float>(angleDeg) * std::numbers::pi / 180;
    if (!std::isfinite(radians)) return true; // an empty range: the element stays where it is
    const TSVGDocument& document = GetDocument();
    TKnownCenter& known = FKnownCenter;
    if (known.Element != center || known.ChangeCount != document.GetChangeCount())
        known = {center, document.GetChangeCount(), FindCenter(*center)};
    EditDocument([&] {
        element->SetMatrix(CreateRotationVZMatrix(known.Center, static_cast<float>(radians)));
        // The centre is under its own transform and those below it, not under what turns around it. Counted
        // before anybody is told: a handler's edit may move it.
        if (element != center && !element->HasAncestor(center)) known.ChangeCount = document.GetChangeCount();
    });
    return true;
}

// Another artwork.

void TVZSVGCustomInstrument::ReplaceContent(const std::function<void()>& load) {
    const std::vector<TReadColor> colors = FColors;
    const TReadColor fill = FDecorationFillColor, stroke = FDecorationStrokeColor;
    TVZPathData path;
    if (FIsComplete && IsDecorationPathStored())
        if (const TVZPathData* const own = GetDecorationPath()) path.Assign(*own);
    TVZSVGControl::ReplaceContent(load);
    FArtworkStyles->clear();
    SetActiveSVGElement(Find<TSVGGraphicElement>(GetActiveElementId()));
    ReadGeometry();
    if (!FIsComplete) return;

    EditDocument([&] {
        LoadSVGProperties();
        if (FLightColor != DefaultLightColor) UpdateLight();
        if (!FEnableGradients) UpdateGradients();
        for (std::size_t i = 0; i < colors.size(); ++i)
            if (colors[i].IsSet()) SetColor(i, colors[i].Now);
        if (fill.IsSet()) SetDecorationFillColor(fill.Now);
        if (stroke.IsSet()) SetDecorationStrokeColor(stroke.Now);
        InitializeGauge();
        if (IsDecorationPathStored()) SetDecorationPath(path);
    });
}

} // namespace Vz
