#include "tavro/instruments/meters/BatteryModern.h"

#include "tavro/instruments/Editing.h"
#include "tavro/instruments/ScalePublish.h"

namespace Vz {

namespace {

using namespace Rows;
using TPart = TVZBatteryModern::TPart;

constexpr TColorRow Colors[] = {
    {"BackfaceColor",
     0xFF808080,
     StopOf("GradientBackface", 2),
     {RecolourFromLast("GradientBackface"), Flat("Backface")}},
    {"BandsColor", 0xFF000000, FillOf("InnerRim"), {Fill("InnerRim")}},
    {"FillColor",
     0xFF55D400,
     StopOf("GradientLevel", 2),
     {Recolour("GradientLevel"), Flat("LevelColor"), Flat("LevelTop")},
     TReach::ActiveElement},
    {"TopColor",
     0xFF000000,
     LastStopOf("GradientTop"),
     {Recolour("GradientTop"), Recolour("linearGradientConn"), Flat("BatteryTop"), Flat("BatteryConnector")}},
    {"BottomColor",
     0xFF000000,
     LastStopOf("GradientBottom"),
     {Recolour("GradientBottom"), Flat("BatteryBottom")}},
};

constexpr TPartRow PartElements[] = {
    {TPart::bmDecoration, "Decoration"}, {TPart::bmLevel, "LevelGroup"},
    {TPart::bmTop, "BatteryTopGroup"},   {TPart::bmConnector, "BatteryConnector"},
    {TPart::bmBottom, "BatteryBottom"},  {TPart::bmGlass, "Glass"},
    {TPart::bmShadow, "Shadow"},
};

constexpr std::string_view DetailElements[] = {"LevelHighlight", "Shadow", "BackfaceShine"};

/// Without the case, which keeps its gradient. Kept.
constexpr TGradientRow Gradients[] = {
    Switch("BatteryTop", "linearGradientTop", "TopColor"),
    Switch("BatteryConnector", "linearGradientConn", "TopColor"),
    Switch("BatteryBottom", "linearGradientBottom", "BottomColor"),
    Switch("LeftHighlight", "GradientLeftHighlight", "LightColor"),
    ShownInDetail("RightShadow"),
    ShownInDetail("ThinLeftHighlight"),
    Switch("LevelColor", "linearGradientLevel", "FillColor"),
    Switch("LevelTop", "linearGradientLevelTop", "FillColor"),
    ShownInDetail("BackfaceShine"),
    ShownInDetail("Shadow"),
};

constexpr TColorEdit LightEdits[] = {
    EveryStop("GradientRightHighlight", Shadow),
    EveryStop("GradientShadow", Shadow),
    EveryStop("GradientLeftHighlight", Light),
    EveryStop("GradientThinHighlight", Light),
    Fill("LevelHighlight", Light),
    Fill("LeftHighlight", Light),
    Fill("ThinLeftHighlight", Light),
    Fill("RightShadow", Shadow),
};

using K = TArtworkKind;
constexpr TArtworkRow Structure[] = {
    {"Level", K::Graphic, "LevelGroup"},           {"LevelColor", K::Graphic, "Level"},
    {"LevelHighlight", K::Graphic, "Level"},       {"LevelTop", K::Rect, "LevelGroup"},
    {"BatteryTop", K::Graphic, "BatteryTopGroup"},
};

constexpr TInstrumentSetup Setup{
    .Artwork = "BatteryModernSVG",
    .ActiveElement = "LevelGroup",
    .Decoration = TDecoration::dcBolt,
    .DecorationFill = 0xFFFFEF42,
    .DecorationStroke = 0xFF6B0101,
    .Width = 105,
    .Parts = TVZBatteryModern::AllParts.GetMask(),
    .Colors = Colors,
    .PartElements = PartElements,
    .DetailElements = DetailElements,
    .Gradients = Gradients,
    .LightEdits = LightEdits,
    .Structure = Structure,
};

} // namespace

std::span<const TProp> TVZBatteryModern::GetPropTable() const {
    using T = TVZBatteryModern;
    static constexpr auto Rows =
        Publish(ColorProps<Setup>(), ScaleProps<DefaultScale, TQuantity::Charge>(),
                std::array{Prop<&T::GetParts, &T::SetParts>("Parts", AllParts)},
                Inherited<Setup>({"Decoration", "DecorationPath", "DecorationFillColor",
                                  "DecorationStrokeColor", "Design", "EnableGradients", "LightColor",
                                  "Stretch", "Buffered", "Quality", "OnChange"}));
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

const TInstrumentSetup& TVZBatteryModern::GetSetup() const { return Setup; }

void TVZBatteryModern::EdgeMoved(double y) {
    if (auto* const cap = FindRect("LevelTop"))
        cap->SetLength(TSVGBasicShape::TPart::Y, {TSVGUnit::Number, y});
}

} // namespace Vz
