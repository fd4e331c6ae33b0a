#include "tavro/svg/model/ElementFactory.h"

#include "tavro/svg/model/Document.h"
#include "tavro/svg/model/Gradients.h"
#include "tavro/svg/model/Image.h"
#include "tavro/svg/model/PlainElement.h"
#include "tavro/svg/model/Referenced.h"
#include "tavro/svg/model/Shapes.h"
#include "tavro/svg/model/TextElements.h"
#include "tavro/svg/values/NameTableInternal.h"

namespace Vz {

namespace {

using TMaker = std::unique_ptr<TSVGElement> (*)(TSVGDocument&);

template <class T> std::unique_ptr<TSVGElement> Make(TSVGDocument& document) {
    return std::make_unique<T>(document);
}

template <class T, TSVGTag Tag> std::unique_ptr<TSVGElement> MakeTagged(TSVGDocument& document) {
    return std::make_unique<T>(document, Tag);
}

struct TRow {
    std::string_view Name;
    TMaker Make;
};

using G = TSVGTag;

/// By name.
constexpr TRow Rows[] = {
    {"a", MakeTagged<TSVGGroup, G::A>},
    {"circle", MakeTagged<TSVGBasicShape, G::Circle>},
    {"clipPath", Make<TSVGClipPath>},
    {"defs", MakeTagged<TSVGGroup, G::Defs>},
    {"ellipse", MakeTagged<TSVGBasicShape, G::Ellipse>},
    {"filter", Make<TSVGFilter>},
    {"g", MakeTagged<TSVGGroup, G::G>},
    {"image", Make<TSVGImage>},
    {"line", MakeTagged<TSVGBasicShape, G::Line>},
    {"linearGradient", Make<TSVGLinearGradient>},
    {"marker", Make<TSVGMarker>},
    {"mask", Make<TSVGMask>},
    {"path", Make<TSVGPath>},
    {"pattern", Make<TSVGPattern>},
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

/// Elements that stand only inside of text.
constexpr TRow TextRows[] = {
    {"a", Make<TSVGCustomText>},
    {"textPath", Make<TSVGTextPath>},
    {"tref", MakeTagged<TSVGCustomText, G::TRef>},
    {"tspan", Make<TSVGCustomText>},
};

template <std::size_t Count> class TMakers {
public:
    explicit constexpr TMakers(const TRow (&rows)[Count])
        : FRows(rows)
        , FPlaces([&rows](std::size_t i) { return rows[i].Name; }) {}
    TMaker Find(std::string_view name) const {
        const std::size_t i =
            FPlaces.Find(name, [&](std::size_t place) { return FRows[place].Name == name; });
        return i < Count ? FRows[i].Make : nullptr;
    }

private:
    const TRow* FRows;
    TNameTable<Count> FPlaces;
};
constexpr TMakers Makers(Rows);
constexpr TMakers TextMakers(TextRows);

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
    const TMaker make = inText ? TextMakers.Find(name) : Makers.Find(name);
    return make ? make(document) : nullptr;
}

} // namespace Vz
