#include "tavro/instruments/lights/CubeLight.h"

#include "tavro/instruments/Editing.h"
#include "tavro/instruments/Publish.h"

namespace Vz {

namespace {

using namespace Rows;
using TPart = TVZCubeLight::TPart;

constexpr TColorRow Colors[] = {
    // Read from the third stop and recoloured about the fourth, which the artwork draws alike. Kept.
    {"FrameColor",
     0xFF2A2A2A,
     StopOf("linearGradientFrame", 2),
     {RecolourAbout("linearGradientFrame", 3), Flat("Frame")}},
    {"HousingColor", 0xFF242424, FillOf("FrontHousing"), {FlatFill("FrontHousing")}},
    {"OnColor", 0xFFFF0000, FillOf("RedLight")},
    {"OffColor", 0xFF000000},
};

constexpr TPartRow PartElements[] = {
    {TPart::clFrame, "Frame"},
    {TPart::clLight, "AssemblyRed"},
    {TPart::clLightHousing, "useRedFrontHousing"},
    {TPart::clDecoration, "DecorationRed"},
};

// The design alone hides nothing; it decides when the gradients are switched next. Kept.
constexpr TGradientRow Gradients[] = {
    Switch("Frame", "linearGradientFrame", "FrameColor"),
    ShownInDetail("RedLightShine"),
};

using K = TArtworkKind;
constexpr TArtworkRow Structure[] = {
    {"Lights", K::Group},
    {"AssemblyRed", K::Graphic, "Lights"},
    {"RedLight", K::Graphic, "AssemblyRed"},
    {"RedLightShine", K::Graphic, "AssemblyRed"},
    {"Decorations", K::Group},
    {"GradientShine", K::Gradient},
    {"GradientDim", K::Gradient},
};

constexpr TInstrumentSetup Setup{
    .Artwork = "CubeLightSVG",
    .ActiveElement = "Lights",
    .DecorationElement = "DecorationRed",
    .DecorationFill = 0xFF000000,
    .Parts = TVZCubeLight::AllParts.GetMask(),
    .Colors = Colors,
    .PartElements = PartElements,
    .Gradients = Gradients,
    .Structure = Structure,
};

} // namespace

std::span<const TProp> TVZCubeLight::GetPropTable() const {
    using T = TVZCubeLight;
    static constexpr auto Rows = Publish(
        std::array{Main(Prop<&T::GetChecked, &T::SetChecked>("Checked", true), TQuantity::Switch),
                   Prop<&T::GetEnableActions, &T::SetEnableActions>("EnableActions", true),
                   Prop<&T::GetParts, &T::SetParts>("Parts", AllParts)},
        ColorProps<Setup>(),
        Inherited<Setup>({"Decoration", "DecorationPath", "DecorationFillColor", "DecorationStrokeColor",
                          "Design", "EnableGradients", "LightColor", "Buffered", "Stretch", "Quality",
                          "Opacity", "Transform", "OnChange", "OnDrawing", "OnDrawn"}));
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

const TInstrumentSetup& TVZCubeLight::GetSetup() const { return Setup; }

void TVZCubeLight::SetChecked(bool value) {
    if (!Store(FChecked, value)) return;
    UpdateState();
    DoOnChange();
}

void TVZCubeLight::ColorChanged(std::size_t index) {
    if (index == On || index == Off) UpdateState();
}

void TVZCubeLight::UpdateState() {
    EditDocument(
        [this] { ShowLamp("RedLight", FChecked ? GetOnColor() : GetOffColor(), "RedLightShine", FChecked); });
    MarkChanged();
}

void TVZCubeLight::ReplaceContent(const std::function<void()>& load) {
    TCreatable::ReplaceContent(load);
    if (!FChecked) UpdateState(); // an artwork is drawn lit
}

void TVZCubeLight::Clicked(const TSVGGraphicElement& element, TShiftState) {
    if (IsInside(element, "Lights") || IsInside(element, "Decorations")) SetChecked(!FChecked);
}

} // namespace Vz
