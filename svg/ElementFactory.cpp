#include "svg/ElementFactory.h"

#include "svg/Document.h"
#include "svg/Servers.h"
#include "svg/Shapes.h"
#include "svg/TextElements.h"

#include <algorithm>

namespace Vz {

namespace {

using TMaker = std::unique_ptr<TSVGElement> (*)(TSVGDocument&);

template <class T> std::unique_ptr<TSVGElement> Make(TSVGDocument& document) {
    return std::make_unique<T>(document);
}

template <class T, TSVGTag Tag> std::unique_ptr<TSVGElement> MakeTagged(TSVGDocument& document) {
    return std::make_unique<T>(document, Tag);
}

/// A tspan-like element with another name.
class TSVGTextReference final : public TSVGCustomText {
public:
    using TSVGCustomText::TSVGCustomText;
    TSVGTag GetTag() const override { return TSVGTag::TRef; }

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override {
        return std::make_unique<TSVGTextReference>(document);
    }
};

struct TRow {
    std::string_view Name;
    TMaker Make;
};

using G = TSVGTag;

/// By name, in alphabetical order.
constexpr TRow Rows[] = {
    {"a", MakeTagged<TSVGGroup, G::A>},
    {"circle", MakeTagged<TSVGBasicShape, G::Circle>},
    {"clipPath", MakeTagged<TSVGReferenced, G::ClipPath>},
    {"defs", MakeTagged<TSVGGroup, G::Defs>},
    {"ellipse", MakeTagged<TSVGBasicShape, G::Ellipse>},
    {"filter", MakeTagged<TSVGReferenced, G::Filter>},
    {"g", MakeTagged<TSVGGroup, G::G>},
    {"image", Make<TSVGImage>},
    {"line", MakeTagged<TSVGBasicShape, G::Line>},
    {"linearGradient", Make<TSVGLinearGradient>},
    {"marker", MakeTagged<TSVGReferenced, G::Marker>},
    {"mask", MakeTagged<TSVGReferenced, G::Mask>},
    {"path", Make<TSVGPath>},
    {"pattern", MakeTagged<TSVGReferenced, G::Pattern>},
    {"polygon", MakeTagged<TSVGPoly, G::Polygon>},
    {"polyline", MakeTagged<TSVGPoly, G::Polyline>},
    {"radialGradient", Make<TSVGRadialGradient>},
    {"rect", MakeTagged<TSVGBasicShape, G::Rect>},
    {"stop", Make<TSVGGradientStop>},
    {"svg", MakeTagged<TSVGView, G::Svg>},
    {"switch", MakeTagged<TSVGGroup, G::Switch>},
    {"symbol", MakeTagged<TSVGView, G::Symbol>},
    {"text", Make<TSVGText>},
    {"use", Make<TSVGUse>},
};
static_assert(std::ranges::is_sorted(Rows, {}, &TRow::Name));

/// Elements that stand only inside of text.
constexpr TRow TextRows[] = {
    {"a", Make<TSVGCustomText>},
    {"textPath", Make<TSVGTextPath>},
    {"tref", Make<TSVGTextReference>},
    {"tspan", Make<TSVGCustomText>},
};

TMaker Find(std::span<const TRow> rows, std::string_view name) {
    const auto at = std::ranges::lower_bound(rows, name, {}, &TRow::Name);
    return at != rows.end() && at->Name == name ? at->Make : nullptr;
}

bool IsFilterPartName(std::string_view name) {
    return name.size() > 2 && name.starts_with("fe") && name[2] >= 'A' && name[2] <= 'Z';
}

} // namespace

std::unique_ptr<TSVGElement> MakeElement(std::string_view name, TSVGElement& parent) {
    TSVGDocument& document = parent.GetDocument();
    if (name == "title" || name == "desc")
        return std::make_unique<TSVGPlainElement>(document, TSVGTag::Title, std::string(name));
    if (IsFilterPartName(name))
        return std::make_unique<TSVGPlainElement>(document, TSVGTag::FilterPart, std::string(name));
    const TSVGTag above = parent.GetTag();
    const bool inText = above == TSVGTag::Text || above == TSVGTag::TSpan || above == TSVGTag::TextPath ||
                        above == TSVGTag::TRef;
    const TMaker make = Find(inText ? std::span<const TRow>(TextRows) : std::span<const TRow>(Rows), name);
    return make ? make(document) : nullptr;
}

} // namespace Vz
