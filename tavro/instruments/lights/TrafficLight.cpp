#include "tavro/instruments/lights/TrafficLight.h"

#include "tavro/instruments/Editing.h"
#include "tavro/instruments/Publish.h"

namespace Vz {

namespace {

using namespace Rows;
using TLight = TVZTrafficLight::TLight;
using TPart = TVZTrafficLight::TPart;

/// One lamp's elements.
struct TLamp {
    TLight Light;
    std::string_view Assembly;
    std::string_view Disc;
    std::string_view Shine;
    std::string_view Emblem; ///< the path
    std::string_view EmblemUse;
};

constexpr TLamp Lamps[] = {
    {TLight::ltRed, "AssemblyRed", "RedLight", "RedLightShine", "DecorationRed", "useDecorationRed"},
    {TLight::ltYellow, "AssemblyYellow", "YellowLight", "YellowLightShine", "DecorationYellow",
     "useDecorationYellow"},
    {TLight::ltGreen, "AssemblyGreen", "GreenLight", "GreenLightShine", "DecorationGreen",
     "useDecorationGreen"},
};

constexpr TColorRow Colors[] = {
    {"OffColor", 0xFF000000, {}, {}, TReach::ActiveElement},
    {"DomeColor",
     0xFF393939,
     StopOf("radialGradientDome", 1),
     {RecolourAbout("radialGradientDome", 1), Flat("TopDome")}},
    // Read from the third stop and recoloured about the fourth, which the artwork draws alike. Kept.
    {"FrameColor",
     0xFF2A2A2A,
     StopOf("linearGradientFrame", 2),
     {RecolourAbout("linearGradientFrame", 3), Flat("Frame")}},
    {"HoodColor",
     0xFF242424,
     StopOf("linearGradientHousing", 1),
     {RecolourAbout("linearGradientHousing", 1), Flat("RightHood"), Flat("LeftHood")}},
    {"HousingColor",
     0xFF242424,
     FillOf("FrontHousing"),
     {FlatFill("FrontHousing"), FlatFill("RightHousing"), FlatFill("LeftHousing")}},
    {"RedLightColor", 0xFFFF0000, FillOf("RedLight"), {}, TReach::ActiveElement},
    {"YellowLightColor", 0xFFD5D600, FillOf("YellowLight"), {}, TReach::ActiveElement},
    {"GreenLightColor", 0xFF00E400, FillOf("GreenLight"), {}, TReach::ActiveElement},
};

constexpr TPartRow PartElements[] = {
    {TPart::tlRedLight, "AssemblyRed"},
    {TPart::tlRedLightHousing, "useRedFrontHousing"},
    {TPart::tlRedLightLeftHood, "useRedLeftHousing"},
    {TPart::tlRedLightLeftHood, "RedLeftShadow"},
    {TPart::tlRedLightRightHood, "useRedRightHousing"},
    {TPart::tlRedDecoration, "DecorationRed"},
    {TPart::tlYellowLight, "AssemblyYellow"},
    {TPart::tlYellowLightHousing, "useYellowFrontHousing"},
    {TPart::tlYellowLightLeftHood, "useYellowLeftHousing"},
    {TPart::tlYellowLightLeftHood, "YellowLeftShadow"},
    {TPart::tlYellowLightRightHood, "useYellowRightHousing"},
    {TPart::tlYellowDecoration, "DecorationYellow"},
    {TPart::tlGreenLight, "AssemblyGreen"},
    {TPart::tlGreenLightHousing, "useGreenFrontHousing"},
    {TPart::tlGreenLightLeftHood, "useGreenLeftHousing"},
    {TPart::tlGreenLightLeftHood, "GreenLeftShadow"},
    {TPart::tlGreenLightRightHood, "useGreenRightHousing"},
    {TPart::tlGreenDecoration, "DecorationGreen"},
    {TPart::tlFrame, "Frame"},
    {TPart::tlTopDome, "TopDome"},
};

// The design alone hides nothing; it decides when the gradients are switched next. Kept.
constexpr TGradientRow Gradients[] = {
    Switch("Frame", "linearGradientFrame", "FrameColor"),
    Switch("LeftHood", "GradientLeftHousing", "HoodColor"),
    Switch("RightHood", "GradientRightHousing", "HoodColor"),
    Switch("TopDome", "radialGradientDome", "DomeColor"),
    ShownInDetail("RedLightShine"),
    ShownInDetail("YellowLightShine"),
    ShownInDetail("GreenLightShine"),
};

using K = TArtworkKind;
constexpr TArtworkRow Structure[] = {
    {"Lights", K::Group},
    {"AssemblyRed", K::Graphic, "Lights"},
    {"AssemblyYellow", K::Graphic, "Lights"},
    {"AssemblyGreen", K::Graphic, "Lights"},
    {"RedLight", K::Graphic, "AssemblyRed"},
    {"YellowLight", K::Graphic, "AssemblyYellow"},
    {"GreenLight", K::Graphic, "AssemblyGreen"},
    {"RedLightShine", K::Graphic, "AssemblyRed"},
    {"YellowLightShine", K::Graphic, "AssemblyYellow"},
    {"GreenLightShine", K::Graphic, "AssemblyGreen"},
    {"DecorationRed", K::Path},
    {"DecorationYellow", K::Path},
    {"DecorationGreen", K::Path},
    {"useDecorationRed", K::Use, "Decorations"},
    {"useDecorationYellow", K::Use, "Decorations"},
    {"useDecorationGreen", K::Use, "Decorations"},
    {"GradientShine", K::Gradient},
    {"GradientDim", K::Gradient},
};

constexpr TInstrumentSetup Setup{
    .Artwork = "TrafficLightSVG",
    .ActiveElement = "Lights",
    .DecorationElement = "Decorations",
    .DecorationKind = K::Group,
    .DecorationFill = 0xFFFFFFFF,
    .Parts = TVZTrafficLight::AllParts.GetMask(),
    .Colors = Colors,
    .PartElements = PartElements,
    .Gradients = Gradients,
    .Structure = Structure,
};

} // namespace

std::span<const TProp> TVZTrafficLight::GetPropTable() const {
    using T = TVZTrafficLight;
    static constexpr auto Rows = Publish(
        std::array{
            Main(Prop<&T::GetLights, &T::SetLights>("Lights", TLights{TLight::ltRed}), TQuantity::Lamps),
            Prop<&T::GetEnableActions, &T::SetEnableActions>("EnableActions", true),
            Prop<&T::GetMultiSelect, &T::SetMultiSelect>("MultiSelect", false),
            Prop<&T::GetParts, &T::SetParts>("Parts", AllParts)},
        ColorProps<Setup>(),
        std::array{
            Prop<&T::GetRedDecoration, &T::SetRedDecoration>("RedDecoration", TDecoration::dcNone),
            Prop<&T::GetYellowDecoration, &T::SetYellowDecoration>("YellowDecoration", TDecoration::dcNone),
            Prop<&T::GetGreenDecoration, &T::SetGreenDecoration>("GreenDecoration", TDecoration::dcNone)},
        Inherited<Setup>({"DecorationFillColor", "DecorationStrokeColor", "Design", "EnableGradients",
                          "LightColor", "Buffered", "Stretch", "Quality", "Opacity", "Transform", "OnChange",
                          "OnDrawing", "OnDrawn"}));
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

const TInstrumentSetup& TVZTrafficLight::GetSetup() const { return Setup; }

void TVZTrafficLight::DoInitializeGauge() {
    TCreatable::DoInitializeGauge();
    UpdateState();
}

// Lamps.

void TVZTrafficLight::SetLights(TLights value) {
    if (!Store(FLights, value)) return;
    UpdateState();
    DoOnChange();
}

void TVZTrafficLight::ColorChanged(std::size_t index) {
    if (index == Off || index >= RedLight) UpdateState();
}

void TVZTrafficLight::UpdateState() {
    EditDocument([this] {
        for (const TLamp& lamp : Lamps) {
            const bool isLit = FLights.Contains(lamp.Light);
            const TVZGPColor own = GetColor(RedLight + static_cast<std::size_t>(lamp.Light));
            ShowLamp(lamp.Disc, isLit ? own : GetOffColor(), lamp.Shine, isLit);
        }
    });
    Invalidate();
}

void TVZTrafficLight::Clicked(const TSVGGraphicElement& element, TShiftState shift) {
    for (const TLamp& lamp : Lamps) {
        if (element.GetId() != lamp.EmblemUse && !IsInside(element, lamp.Assembly)) continue;
        const bool isLit = FLights.Contains(lamp.Light);
        const TLights light{lamp.Light};
        const bool isAlone = shift.Contains(TShiftKey::Shift) || shift.Contains(TShiftKey::Ctrl);
        if (FMultiSelect && isAlone) return SetLights(isLit ? FLights - light : FLights + light);
        return SetLights(isLit ? TLights{} : light);
    }
}

// Emblems.

void TVZTrafficLight::SetDecoration(TLight light, TDecoration value) {
    if (Store(FDecorations[static_cast<std::size_t>(light)], value)) UpdateDecoration(light);
}

void TVZTrafficLight::UpdateDecoration(TLight light) {
    const int emblem = static_cast<int>(GetDecoration(light));
    if (auto* const path = Find<TSVGPath>(Lamps[static_cast<std::size_t>(light)].Emblem))
        EditDocument([&] { path->SetData(&PathOf(Vz::GetDecorationPath(emblem))); });
    MarkChanged();
}

void TVZTrafficLight::ReplaceContent(const std::function<void()>& load) {
    TCreatable::ReplaceContent(load);
    for (const TLight light :
         {TLight::ltYellow, TLight::ltGreen}) // UpdateDecoration draws the red one's only
        if (GetDecoration(light) != TDecoration::dcNone) UpdateDecoration(light);
}

} // namespace Vz
