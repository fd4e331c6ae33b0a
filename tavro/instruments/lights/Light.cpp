#include "tavro/instruments/lights/Light.h"

#include "tavro/controls/ControlPtr.h"
#include "tavro/instruments/Editing.h"

namespace Vz {

void TVZCustomLight::MouseUp(TMouseButton button, TShiftState shift, int x, int y) {
    const TControlPtr self(this); // a handler may destroy the light
    TVZSVGCustomInstrument::MouseUp(button, shift, x, y);
    if (!self || !FEnableActions) return;
    if (const TSVGGraphicElement* const element = ElementAtControlPoint(x, y)) Clicked(*element, shift);
}

void TVZCustomLight::ShowLamp(std::string_view discId, TVZGPColor color, std::string_view shineId,
                              bool isLit) {
    SetElementFill(discId, color);
    auto* const shine = Find<TSVGGraphicElement>(shineId);
    if (!shine) return;
    shine->GetBrush().SetURI(isLit ? "GradientShine" : "GradientDim");
    shine->Changed();
}

bool TVZCustomLight::IsInside(const TSVGGraphicElement& element, std::string_view id) const {
    const auto* const group = Find<TSVGElement>(id);
    return group && element.HasAncestor(group);
}

} // namespace Vz
