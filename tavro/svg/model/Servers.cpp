#include "tavro/svg/model/Servers.h"

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

std::optional<TSVGUnits> ParseUnits(std::string_view text) {
    if (text == "userSpaceOnUse") return TSVGUnits::UserSpaceOnUse;
    if (text == "objectBoundingBox") return TSVGUnits::ObjectBoundingBox;
    if (text == "strokeWidth") return TSVGUnits::StrokeWidth;
    return {};
}

std::string_view UnitsText(TSVGUnits units) {
    constexpr std::string_view names[] = {"userSpaceOnUse", "objectBoundingBox", "strokeWidth"};
    return names[static_cast<int>(units)];
}

constexpr std::string_view SpreadNames[] = {"pad", "reflect", "repeat"};

std::string IdOf(std::string_view href) {
    href = Trimmed(href);
    return std::string(href.starts_with('#') ? href.substr(1) : std::string_view());
}

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
        FOwn.Edit().Reference = IdOf(value);
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

// Patterns, clip paths, masks, markers, filters

TSVGReferenced::TSVGReferenced(TSVGDocument& document, TSVGTag tag)
    : TSVGViewElement(document, tag) {}

const TSVGReferenced* TSVGReferenced::GetTemplate() const {
    if (FReference.empty()) return nullptr;
    const auto* const other = dynamic_cast<const TSVGReferenced*>(GetDocument().FindElement(FReference));
    return other && other->GetTag() == GetTag() ? other : nullptr;
}

namespace {

/// The attributes of units by the elements that have them.
struct TUnitsRow {
    TSVGTag Tag;
    std::string_view Units;
    std::string_view ContentUnits; ///< empty: none
};
constexpr TUnitsRow UnitsRows[] = {
    {TSVGTag::Pattern, "patternUnits", "patternContentUnits"}, {TSVGTag::ClipPath, "clipPathUnits", {}},
    {TSVGTag::Mask, "maskUnits", "maskContentUnits"},          {TSVGTag::Marker, "markerUnits", {}},
    {TSVGTag::Filter, "filterUnits", "primitiveUnits"},
};

const TUnitsRow& UnitsOf(TSVGTag tag) { return *std::ranges::find(UnitsRows, tag, &TUnitsRow::Tag); }

} // namespace

bool TSVGReferenced::ReadAttribute(std::string_view name, std::string_view value) {
    bool read = true;
    TSVGLength length;
    const bool isMarker = GetTag() == TSVGTag::Marker;
    const TUnitsRow& row = UnitsOf(GetTag());
    if (name == row.Units || (name == row.ContentUnits && !name.empty())) {
        const auto units = ParseUnits(value);
        read = units && *units != (isMarker ? TSVGUnits::ObjectBoundingBox : TSVGUnits::StrokeWidth);
        if (read) (name == row.Units ? FUnits : FContentUnits) = units;
    } else if (name == "href") {
        FReference = IdOf(value);
        read = !FReference.empty();
    } else if (name == "x" || name == "y") {
        if ((read = length.Parse(value))) (name == "x" ? FOwnX : FOwnY) = length;
    } else if (GetTag() == TSVGTag::Filter && (name == "width" || name == "height")) {
        // Kept where it is negative, too: nothing is then painted through the filter (Filter Effects 1, 8.2).
        if ((read = length.Parse(value))) name == "width" ? SetWidthLength(length) : SetHeightLength(length);
    } else if (isMarker && (name == "width" || name == "height")) {
        return true; // those of a marker have other names
    } else if (name == "markerWidth" || name == "markerHeight") {
        return TSVGViewElement::ReadAttribute(name == "markerWidth" ? "width" : "height", value);
    } else if (name == "refX" || name == "refY") {
        const std::string_view word = Trimmed(value);
        if (word == "left" || word == "top")
            length = {TSVGUnit::Percent, 0};
        else if (word == "center")
            length = {TSVGUnit::Percent, 50};
        else if (word == "right" || word == "bottom")
            length = {TSVGUnit::Percent, 100};
        else
            read = length.Parse(value);
        if (read) (name == "refX" ? FRefX : FRefY) = length;
    } else if (name == "orient") {
        FOrientReverse = Trimmed(value) == "auto-start-reverse";
        if (FOrientReverse || Trimmed(value) == "auto") {
            FOrient = {};
        } else {
            TScanner scan{Trimmed(value)};
            const auto angle = scan.Angle();
            if ((read = angle && scan.AtEnd())) FOrient = angle;
        }
    } else if (name == "patternTransform") {
        const auto transform = ParseTransform(value);
        if ((read = transform.has_value())) FPatternTransform = transform;
    } else {
        return TSVGViewElement::ReadAttribute(name, value);
    }
    if (!read) Refuse(name, value);
    Changed(TSVGChangeKind::Paint);
    return true;
}

void TSVGReferenced::WriteAttributes(IAttributeSink& sink) const {
    /// Gives the view's attributes the names that a marker has for them.
    struct TRenamed final : IAttributeSink {
        IAttributeSink& Sink;
        bool Marker;
        TRenamed(IAttributeSink& to, bool marker)
            : Sink(to)
            , Marker(marker) {}
        void Put(std::string_view name, std::string_view value) override {
            if (Marker && name == "width")
                name = "markerWidth";
            else if (Marker && name == "height")
                name = "markerHeight";
            Sink.Put(name, value);
        }
    } renamed(sink, GetTag() == TSVGTag::Marker);
    TSVGViewElement::WriteAttributes(renamed);

    const TSVGTag tag = GetTag();
    if (!FReference.empty()) sink.Put("xlink:href", "#" + FReference);
    if (FOwnX) sink.Put("x", FOwnX->ToText());
    if (FOwnY) sink.Put("y", FOwnY->ToText());
    if (FUnits) sink.Put(UnitsOf(tag).Units, UnitsText(*FUnits));
    if (FContentUnits) sink.Put(UnitsOf(tag).ContentUnits, UnitsText(*FContentUnits));
    if (FPatternTransform) sink.Put("patternTransform", TransformText(*FPatternTransform));
    if (tag == TSVGTag::Marker) {
        sink.Put("refX", FRefX.ToText());
        sink.Put("refY", FRefY.ToText());
        sink.Put("orient", FOrient ? NumberText(*FOrient) : FOrientReverse ? "auto-start-reverse" : "auto");
    }
}

std::unique_ptr<TSVGElement> TSVGReferenced::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGReferenced>(document, GetTag());
}

void TSVGReferenced::CopyFrom(const TSVGElement& source) {
    TSVGViewElement::CopyFrom(source);
    const auto& other = static_cast<const TSVGReferenced&>(source);
    FReference = other.FReference;
    FUnits = other.FUnits;
    FContentUnits = other.FContentUnits;
    FOwnX = other.FOwnX;
    FOwnY = other.FOwnY;
    FRefX = other.FRefX;
    FRefY = other.FRefY;
    FOrient = other.FOrient;
    FOrientReverse = other.FOrientReverse;
    FPatternTransform = other.FPatternTransform;
}

} // namespace Vz
