#include "tavro/svg/model/Gradients.h"

#include "tavro/graphics/PaintDevice.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/model/KeptByHashInternal.h"
#include "tavro/svg/values/Scan.h"
#include "tavro/svg/values/TransformText.h"

#include <algorithm>
#include <cmath>

namespace Vz {

// Stops

void TSVGGradientStop::SetOffset(float value) {
    if (std::isnan(value) || std::clamp(value, 0.0f, 1.0f) == FOffset) return;
    FOffset = std::clamp(value, 0.0f, 1.0f);
    Changed(TSVGChangeKind::Paint);
}

bool TSVGGradientStop::ReadAttribute(std::string_view name, std::string_view value) {
    if (name != "offset") return TSVGElement::ReadAttribute(name, value);
    std::string_view text = Trimmed(value);
    const bool percent = text.ends_with('%');
    if (percent) text.remove_suffix(1);
    if (const auto number = ParseNumber(text))
        SetOffset(static_cast<float>(percent ? *number / 100 : *number));
    else
        Refuse(name, value);
    return true;
}

void TSVGGradientStop::WriteAttributes(IAttributeSink& sink) const {
    sink.Put("offset", NumberText(FOffset));
}

std::unique_ptr<TSVGElement> TSVGGradientStop::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGGradientStop>(document);
}

void TSVGGradientStop::CopyFrom(const TSVGElement& source) {
    TSVGElement::CopyFrom(source);
    const auto& other = static_cast<const TSVGGradientStop&>(source);
    FOffset = other.FOffset;
    FSavedColor = other.FSavedColor;
}

// Gradients

namespace {

using TPart = TSVGCustomGradient::TPart;

/// How many stops count; the ramp of a gradient has fewer colours.
constexpr std::size_t MaxStops = 2048;

/// How many templates in a row are followed (a chain that returns to itself ends there too).
constexpr int MaxTemplates = 32;

struct TLengthRow {
    TSVGTag Tag;
    TPart Part;
    std::string_view Name;
    TAxis Axis;
    double DefaultPercent;
};
constexpr TLengthRow LengthRows[] = {
    {TSVGTag::LinearGradient, TPart::X1, "x1", TAxis::X, 0},
    {TSVGTag::LinearGradient, TPart::Y1, "y1", TAxis::Y, 0},
    {TSVGTag::LinearGradient, TPart::X2, "x2", TAxis::X, 100},
    {TSVGTag::LinearGradient, TPart::Y2, "y2", TAxis::Y, 0},
    {TSVGTag::RadialGradient, TPart::CX, "cx", TAxis::X, 50},
    {TSVGTag::RadialGradient, TPart::CY, "cy", TAxis::Y, 50},
    {TSVGTag::RadialGradient, TPart::R, "r", TAxis::Other, 50},
    {TSVGTag::RadialGradient, TPart::FX, "fx", TAxis::X, 50},
    {TSVGTag::RadialGradient, TPart::FY, "fy", TAxis::Y, 50},
    {TSVGTag::RadialGradient, TPart::FR, "fr", TAxis::Other, 0},
};

/// The row of a length and the slot in which a gradient of its tag keeps it.
struct TSlot {
    const TLengthRow* Row = nullptr;
    int Index = -1;
};

template <class F> TSlot FindSlot(TSVGTag tag, F fits) {
    int index = 0;
    for (const TLengthRow& row : LengthRows) {
        if (row.Tag != tag) continue;
        if (fits(row)) return {&row, index};
        ++index;
    }
    return {};
}

constexpr std::string_view SpreadNames[] = {"pad", "reflect", "repeat"};

bool IsStop(const std::unique_ptr<TSVGElement>& child) { return child->GetTag() == TSVGTag::Stop; }

/// The ramp of these stops; the same one for as long as somebody holds it.
std::shared_ptr<const TGradientRamp> RampOf(std::span<const TRampStop> stops, double opacity) {
    thread_local TKeptByHash<const TGradientRamp> kept;
    THash hash;
    hash.Add(opacity);
    for (const TRampStop& stop : stops)
        hash.Add(double{stop.Offset}).Add(std::uint64_t{stop.Color});
    auto ramp = kept.Find(hash.Get(), [&](const std::shared_ptr<const TGradientRamp>& other) {
        return other->Opacity() == opacity && std::ranges::equal(other->Stops(), stops);
    });
    if (!ramp) {
        ramp.reset(new TGradientRamp(stops, opacity));
        kept.Add(hash.Get(), ramp);
    }
    return ramp;
}

/// Finds the first in a chain of templates for which `get` gives something.
template <class T, class F> auto Along(const T& first, F get) -> decltype(get(first)) {
    const T* at = &first;
    for (int i = 0; at && i < MaxTemplates; ++i, at = at->GetTemplate())
        if (auto found = get(*at)) return found;
    return {};
}

} // namespace

std::size_t TSVGCustomGradient::GetStopCount() const {
    return static_cast<std::size_t>(std::ranges::count_if(Children(), IsStop));
}

TSVGGradientStop& TSVGCustomGradient::GetStop(std::size_t index) const {
    std::size_t at = 0;
    for (const auto& child : Children())
        if (IsStop(child) && at++ == index) return static_cast<TSVGGradientStop&>(*child);
    throw EArgumentOutOfRange("stop " + std::to_string(index) + " of " + std::to_string(at));
}

const TSVGCustomGradient* TSVGCustomGradient::GetTemplate() const {
    return FOwn->Reference.empty()
               ? nullptr
               : dynamic_cast<TSVGCustomGradient*>(GetDocument().FindElement(FOwn->Reference));
}

std::optional<TSVGLength> TSVGCustomGradient::GetLength(TPart part) const {
    const TSlot slot = FindSlot(GetTag(), [&](const TLengthRow& row) { return row.Part == part; });
    return slot.Row ? FOwn->Lengths[slot.Index] : std::nullopt;
}

std::vector<TRampStop> TSVGCustomGradient::MakeStops(bool enabled) const {
    const auto* const owner = Along(*this, [](const TSVGCustomGradient& g) {
        return std::ranges::any_of(g.Children(), IsStop) ? &g : nullptr;
    });
    std::vector<TRampStop> stops;
    if (!owner) return stops;
    float last = 0;
    for (const auto& child : owner->Children()) {
        if (!IsStop(child)) continue;
        if (stops.size() == MaxStops) break;
        const auto& stop = static_cast<const TSVGGradientStop&>(*child);
        last = std::max(last, stop.GetOffset());
        const TVZGPColor color = stop.GetStopColor();
        stops.push_back({last, enabled ? color : GreyOf(color)});
    }
    return stops;
}

TVZGPColor TSVGGradientStop::GetStopColor() const {
    using P = TSVGStyleProperty;
    using K = TStyleValue::TKind;
    const TStyleValue* const color = GetStyle().Find(P::StopColor);
    if (color && color->Kind == K::Color && color->HasOwnAlpha) return color->Color;
    const TStyleValue* const opacity = GetStyle().Find(P::StopOpacity);
    const bool simple = (!color || color->Kind == K::Color) && (!opacity || opacity->Kind == K::Number);
    if (simple) {
        const TVZGPColor rgb = color ? color->Color : 0xFF000000;
        return opacity ? Faded(rgb, opacity->Number) : rgb;
    }
    const TComputedStyle style = GetComputedStyle();
    return Faded(style.StopColor, style.StopOpacity);
}

std::optional<TPaint> TSVGCustomGradient::MakePaint(const TRectD& box, const TLengthBasis& basis,
                                                    double opacity, bool enabled) const {
    std::vector<TRampStop> stops = MakeStops(enabled);
    if (stops.empty()) return {};
    const auto solid = [&](TVZGPColor color) {
        TPaint paint;
        paint.Color = Faded(color, opacity);
        return paint;
    };
    const auto units = Along(*this, [](const TSVGCustomGradient& g) { return g.FOwn->Units; });
    const bool relative = units.value_or(TSVGUnits::ObjectBoundingBox) == TSVGUnits::ObjectBoundingBox;
    if (relative && (box.IsEmpty() || box.Width() <= 0 || box.Height() <= 0)) return {};
    if (stops.size() == 1) return solid(stops[0].Color);

    TLengthBasis unit = basis;
    if (relative) unit.ViewWidth = unit.ViewHeight = 1;
    const auto length = [&](TPart part, const std::optional<TSVGLength>& instead) {
        const TSlot slot = FindSlot(GetTag(), [&](const TLengthRow& row) { return row.Part == part; });
        const auto own = Along(*this, [&](const TSVGCustomGradient& g) { return g.GetLength(part); });
        return own.value_or(instead.value_or(TSVGLength{TSVGUnit::Percent, slot.Row->DefaultPercent}))
            .Resolve(slot.Row->Axis, unit);
    };
    TPaint paint;
    paint.Spread =
        Along(*this, [](const TSVGCustomGradient& g) { return g.FOwn->Spread; }).value_or(TSpread::Pad);
    paint.Matrix =
        Along(*this, [](const TSVGCustomGradient& g) { return g.FOwn->Transform; }).value_or(TAffine{});
    if (relative) paint.Matrix = paint.Matrix.Then({box.Width(), 0, 0, box.Height(), box.Left, box.Top});
    if (!paint.Matrix.IsInvertible()) return {};
    if (GetTag() == TSVGTag::LinearGradient) {
        paint.Kind = TPaint::TKind::Linear;
        paint.Start = {length(TPart::X1, {}), length(TPart::Y1, {})};
        paint.End = {length(TPart::X2, {}), length(TPart::Y2, {})};
        if (paint.Start == paint.End) return solid(stops.back().Color);
    } else {
        const auto own = [&](TPart part) {
            return Along(*this, [&](const TSVGCustomGradient& g) { return g.GetLength(part); });
        };
        paint.Kind = TPaint::TKind::Radial;
        paint.Center = {length(TPart::CX, {}), length(TPart::CY, {})};
        paint.Focus = {length(TPart::FX, own(TPart::CX)), length(TPart::FY, own(TPart::CY))};
        paint.Radius = length(TPart::R, {});
        paint.FocusRadius = length(TPart::FR, {});
        if (paint.Radius < 0 || paint.FocusRadius < 0) return {};
        if (paint.Radius == 0) return solid(stops.back().Color);
        if (paint.FocusRadius == paint.Radius) {
            // What a cone of no depth paints is left open (SVG 2, 14.2.3.1): the first colour inside, the
            // last around.
            paint.FocusRadius = 0;
            paint.Focus = paint.Center;
            paint.Spread = TSpread::Pad;
            stops = {{1, stops.front().Color}, {1, stops.back().Color}};
        }
    }
    paint.Ramp = RampOf(stops, opacity);
    return paint;
}

bool TSVGCustomGradient::ReadAttribute(std::string_view name, std::string_view value) {
    const TSlot slot = FindSlot(GetTag(), [&](const TLengthRow& row) { return row.Name == name; });
    bool read = true;
    if (slot.Row) {
        TSVGLength length;
        if ((read = length.Parse(value))) FOwn.Edit().Lengths[slot.Index] = length;
    } else if (name == "gradientUnits") {
        const auto units = ParseUnits(value);
        if ((read = units && *units != TSVGUnits::StrokeWidth)) FOwn.Edit().Units = units;
    } else if (name == "spreadMethod") {
        const auto at = std::ranges::find(SpreadNames, value);
        if ((read = at != std::end(SpreadNames)))
            FOwn.Edit().Spread = static_cast<TSpread>(at - std::begin(SpreadNames));
    } else if (name == "gradientTransform") {
        const auto transform = ParseTransform(value);
        if ((read = transform.has_value())) FOwn.Edit().Transform = transform;
    } else if (name == "href") {
        FOwn.Edit().Reference = IdOfHref(value);
        read = !FOwn->Reference.empty();
    } else {
        return TSVGElement::ReadAttribute(name, value);
    }
    if (!read) Refuse(name, value);
    Changed(TSVGChangeKind::Paint);
    return true;
}

void TSVGCustomGradient::WriteAttributes(IAttributeSink& sink) const {
    if (!FOwn->Reference.empty()) sink.Put("xlink:href", "#" + FOwn->Reference);
    for (const TLengthRow& row : LengthRows)
        if (row.Tag == GetTag())
            if (const auto length = GetLength(row.Part)) sink.Put(row.Name, length->ToText());
    if (FOwn->Units) sink.Put("gradientUnits", UnitsText(*FOwn->Units));
    if (FOwn->Spread) sink.Put("spreadMethod", SpreadNames[static_cast<int>(*FOwn->Spread)]);
    if (FOwn->Transform) sink.Put("gradientTransform", TransformText(*FOwn->Transform));
}

void TSVGCustomGradient::CopyFrom(const TSVGElement& source) {
    TSVGElement::CopyFrom(source);
    const auto& other = static_cast<const TSVGCustomGradient&>(source);
    FOwn = other.FOwn;
}

void TSVGCustomGradient::MakeLasting() {
    TSVGElement::MakeLasting();
    FOwn.MakeLasting();
}

std::unique_ptr<TSVGElement> TSVGLinearGradient::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGLinearGradient>(document);
}

std::unique_ptr<TSVGElement> TSVGRadialGradient::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGRadialGradient>(document);
}

} // namespace Vz
