#include "tavro/instruments/meters/Battery.h"

#include "tavro/instruments/Editing.h"
#include "tavro/instruments/ScalePublish.h"

namespace Vz {

namespace {

using namespace Rows;
using TPart = TVZBattery::TPart;

constexpr TColorRow Colors[] = {
    {"FillColor",
     0xFF68BAF4,
     LastStopOf("GradientLevel"),
     {RecolourFromLast("GradientLevel"), Flat("BottomGlowLevel")}},
    {"TopColor",
     0xFF666666,
     FirstStopOf("GradientTop"),
     {RecolourAbout("GradientTop", 2), RecolourAbout("GradientConnector", 2), Flat("BatteryTop"),
      Flat("BatteryTopBump")}},
    {"BottomColor",
     0xFF666666,
     FirstStopOf("GradientBottom"),
     {RecolourAbout("GradientBottom", 2), Flat("BatteryBottom")}},
    {"MarkersFillColor", 0xFFFFF51F, FillOf("Markers"), {Fill("Markers")}},
    {"MarkersStrokeColor", 0xFF860101, StrokeOf("Markers")}, // see ColorChanged
};

constexpr TPartRow PartElements[] = {
    {TPart::bpDecoration, "Decoration"}, {TPart::bpLevel, "LevelGroup"},
    {TPart::bpTop, "TopGroup"},          {TPart::bpConnector, "Connector"},
    {TPart::bpBottom, "BottomGroup"},    {TPart::bpMarkers, "Markers"},
    {TPart::bpGlass, "GlassGroup"},      {TPart::bpGlass, "GlassHighlightsGroup"},
    {TPart::bpGlass, "GlassEdge"},
};

constexpr std::string_view DetailElements[] = {
    "GlassHighlightsGroup", "TopHighlights", "BottomHighlights", "BatteryTopBumpHighlight", "LevelHighlights",
};

constexpr TGradientRow Gradients[] = {
    Switch("BatteryTop", "GradientBatteryTop", "TopColor"),
    Switch("BatteryTopBump", "GradientConnector", "TopColor"),
    Switch("BatteryBottom", "GradientBatteryBottom", "BottomColor"),
    ShownInDetail("TopHighlights"),
    ShownInDetail("BottomHighlights"),
    ShownInDetail("LevelHighlights"),
    Shown("MarkersLevel"),
    Switch("BottomGlowLevel", "GradientLevel", "FillColor"),
    ShownInDetail("GlassHighlightsGroup"),
};

constexpr TColorEdit LightEdits[] = {
    EveryStop("GradientHighlights", Light),
    Fill("BatteryTopBumpHighlight", Light),
    Fill("BatteryBottomToplight", Light),
};

using K = TArtworkKind;
constexpr TArtworkRow Structure[] = {
    {"BatteryTop", K::Graphic, "TopGroup"},        {"TopHighlights", K::Graphic, "TopGroup"},
    {"BatteryTopBump", K::Graphic, "Connector"},   {"BatteryTopBumpHighlight", K::Graphic, "Connector"},
    {"BatteryBottom", K::Graphic, "BottomGroup"},  {"BottomHighlights", K::Graphic, "BottomGroup"},
    {"BottomGlowLevel", K::Graphic, "LevelGroup"}, {"LevelHighlights", K::Graphic, "LevelGroup"},
};

constexpr TInstrumentSetup Setup{
    .Artwork = "BatterySVG",
    .ActiveElement = "LevelGroup",
    .Decoration = TDecoration::dcBolt,
    .DecorationFill = 0xFFFFEF42,
    .DecorationStroke = 0xFF6B0101,
    .Width = 100,
    .Parts = TVZBattery::AllParts.GetMask(),
    .Colors = Colors,
    .PartElements = PartElements,
    .DetailElements = DetailElements,
    .Gradients = Gradients,
    .LightEdits = LightEdits,
    .Structure = Structure,
};

} // namespace

std::span<const TProp> TVZBattery::GetPropTable() const {
    using T = TVZBattery;
    static constexpr auto Rows =
        Publish(ColorProps<Setup>(), ScaleProps<DefaultScale, TQuantity::Charge>(),
                std::array{Prop<&T::GetParts, &T::SetParts>("Parts", AllParts)},
                Inherited<Setup>({"Decoration", "DecorationPath", "DecorationFillColor",
                                  "DecorationStrokeColor", "Design", "EnableGradients", "LightColor",
                                  "Stretch", "Buffered", "Quality", "OnChange"}));
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

const TInstrumentSetup& TVZBattery::GetSetup() const { return Setup; }

void TVZBattery::ColorChanged(std::size_t index) {
    auto* const markers = Find<TSVGGraphicElement>("Markers");
    if (index != MarkersStroke || !markers) return;
    // The pen alone: a reference that the artwork's style gives it stays behind the colour. Kept.
    TSVGBrush pen = markers->GetPen();
    pen.SetKind(GetMarkersStrokeColor() == 0 ? TVZGPBrushKind::None : TVZGPBrushKind::Solid);
    pen.SetColor(GetMarkersStrokeColor());
    markers->Changed();
}

} // namespace Vz
