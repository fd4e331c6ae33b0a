#include "tavro/svg/model/Referenced.h"

#include "tavro/svg/model/Document.h"
#include "tavro/svg/values/Scan.h"
#include "tavro/svg/values/TransformText.h"

#include <algorithm>
#include <array>

namespace Vz {

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

// What all have

void TSVGReferenced::ReadUnits(std::optional<TSVGUnits>& units, std::string_view name,
                               std::string_view value) {
    const TSVGUnits other =
        GetTag() == TSVGTag::Marker ? TSVGUnits::StrokeWidth : TSVGUnits::ObjectBoundingBox;
    const auto read = ParseUnits(value);
    if (read == TSVGUnits::UserSpaceOnUse || read == other)
        units = read;
    else
        Refuse(name, value);
    Changed(TSVGChangeKind::Paint);
}

bool TSVGReferenced::ReadAttribute(std::string_view name, std::string_view value) {
    if (name != UnitsOf(GetTag()).Units) return TSVGViewElement::ReadAttribute(name, value);
    ReadUnits(FUnits, name, value);
    return true;
}

void TSVGReferenced::WriteAttributes(IAttributeSink& sink) const {
    TSVGViewElement::WriteAttributes(sink);
    if (FUnits) sink.Put(UnitsOf(GetTag()).Units, UnitsText(*FUnits));
}

void TSVGReferenced::CopyFrom(const TSVGElement& source) {
    TSVGViewElement::CopyFrom(source);
    FUnits = static_cast<const TSVGReferenced&>(source).FUnits;
}

// Clip paths

std::unique_ptr<TSVGElement> TSVGClipPath::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGClipPath>(document);
}

// Markers

namespace {

/// The attributes of a view by the names that a marker has for them.
constexpr std::array<std::string_view, 2> MarkerSizeNames[] = {{"markerWidth", "width"},
                                                               {"markerHeight", "height"}};

/// Reads refX or refY: a length or a word (SVG 2, 13.7.1).
bool ReadRef(std::string_view value, TSVGLength& ref) {
    const std::string_view word = Trimmed(value);
    TSVGLength length;
    if (word == "left" || word == "top")
        length = {TSVGUnit::Percent, 0};
    else if (word == "center")
        length = {TSVGUnit::Percent, 50};
    else if (word == "right" || word == "bottom")
        length = {TSVGUnit::Percent, 100};
    else if (!length.Parse(value))
        return false;
    ref = length;
    return true;
}

} // namespace

bool TSVGMarker::ReadOrient(std::string_view value) {
    value = Trimmed(value);
    FOrientReverse = value == "auto-start-reverse";
    if (FOrientReverse || value == "auto") {
        FOrient = {};
        return true;
    }
    TScanner scan{value};
    const auto angle = scan.Angle();
    if (!angle || !scan.AtEnd()) return false;
    FOrient = angle;
    return true;
}

bool TSVGMarker::ReadAttribute(std::string_view name, std::string_view value) {
    for (const auto& [own, view] : MarkerSizeNames) {
        if (name == view) return true; // a marker has none of this name
        if (name == own) return TSVGReferenced::ReadAttribute(view, value);
    }
    bool read = false;
    if (name == "refX" || name == "refY")
        read = ReadRef(value, name == "refX" ? FRefX : FRefY);
    else if (name == "orient")
        read = ReadOrient(value);
    else
        return TSVGReferenced::ReadAttribute(name, value);
    if (!read) Refuse(name, value);
    Changed(TSVGChangeKind::Paint);
    return true;
}

void TSVGMarker::WriteAttributes(IAttributeSink& sink) const {
    struct TRenamed final : IAttributeSink {
        IAttributeSink& Sink;
        explicit TRenamed(IAttributeSink& to)
            : Sink(to) {}
        void Put(std::string_view name, std::string_view value) override {
            for (const auto& [own, view] : MarkerSizeNames)
                if (name == view) return Sink.Put(own, value);
            Sink.Put(name, value);
        }
    } renamed(sink);
    TSVGReferenced::WriteAttributes(renamed);
    sink.Put("refX", FRefX.ToText());
    sink.Put("refY", FRefY.ToText());
    sink.Put("orient", FOrient ? NumberText(*FOrient) : FOrientReverse ? "auto-start-reverse" : "auto");
}

std::unique_ptr<TSVGElement> TSVGMarker::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGMarker>(document);
}

void TSVGMarker::CopyFrom(const TSVGElement& source) {
    TSVGReferenced::CopyFrom(source);
    const auto& other = static_cast<const TSVGMarker&>(source);
    FRefX = other.FRefX;
    FRefY = other.FRefY;
    FOrient = other.FOrient;
    FOrientReverse = other.FOrientReverse;
}

// Regions

const TSVGElement* TSVGRegion::FindTemplate() const {
    if (FReference.empty()) return nullptr;
    const TSVGElement* const other = GetDocument().FindElement(FReference);
    return other && other->GetTag() == GetTag() ? other : nullptr;
}

bool TSVGRegion::ReadAttribute(std::string_view name, std::string_view value) {
    if (name == UnitsOf(GetTag()).ContentUnits) {
        ReadUnits(FContentUnits, name, value);
        return true;
    }
    bool read = true;
    if (name == "href") {
        FReference = IdOfHref(value);
        read = !FReference.empty();
    } else if (name == "x" || name == "y") {
        TSVGLength length;
        if ((read = length.Parse(value))) (name == "x" ? FOwnX : FOwnY) = length;
    } else {
        return TSVGReferenced::ReadAttribute(name, value);
    }
    if (!read) Refuse(name, value);
    Changed(TSVGChangeKind::Paint);
    return true;
}

void TSVGRegion::WriteAttributes(IAttributeSink& sink) const {
    TSVGReferenced::WriteAttributes(sink);
    if (!FReference.empty()) sink.Put("xlink:href", "#" + FReference);
    if (FOwnX) sink.Put("x", FOwnX->ToText());
    if (FOwnY) sink.Put("y", FOwnY->ToText());
    if (FContentUnits) sink.Put(UnitsOf(GetTag()).ContentUnits, UnitsText(*FContentUnits));
}

void TSVGRegion::CopyFrom(const TSVGElement& source) {
    TSVGReferenced::CopyFrom(source);
    const auto& other = static_cast<const TSVGRegion&>(source);
    FReference = other.FReference;
    FContentUnits = other.FContentUnits;
    FOwnX = other.FOwnX;
    FOwnY = other.FOwnY;
}

std::unique_ptr<TSVGElement> TSVGMask::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGMask>(document);
}

bool TSVGFilter::ReadAttribute(std::string_view name, std::string_view value) {
    if (name != "width" && name != "height") return TSVGRegion::ReadAttribute(name, value);
    // Kept where it is negative, too: nothing is then painted through the filter (Filter Effects 1, 8.2).
    TSVGLength length;
    if (!length.Parse(value))
        Refuse(name, value);
    else if (name == "width")
        SetWidthLength(length);
    else
        SetHeightLength(length);
    return true;
}

std::unique_ptr<TSVGElement> TSVGFilter::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGFilter>(document);
}

bool TSVGPattern::ReadAttribute(std::string_view name, std::string_view value) {
    if (name != "patternTransform") return TSVGRegion::ReadAttribute(name, value);
    if (const auto transform = ParseTransform(value))
        FPatternTransform = transform;
    else
        Refuse(name, value);
    Changed(TSVGChangeKind::Paint);
    return true;
}

void TSVGPattern::WriteAttributes(IAttributeSink& sink) const {
    TSVGRegion::WriteAttributes(sink);
    if (FPatternTransform) sink.Put("patternTransform", TransformText(*FPatternTransform));
}

std::unique_ptr<TSVGElement> TSVGPattern::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGPattern>(document);
}

void TSVGPattern::CopyFrom(const TSVGElement& source) {
    TSVGRegion::CopyFrom(source);
    FPatternTransform = static_cast<const TSVGPattern&>(source).FPatternTransform;
}

} // namespace Vz
