#include "Boiler.h"

#include <tavro/runtime/Resources.h>

#include <algorithm>

namespace Plant {

namespace {

constexpr std::string_view Artwork = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 100 100">
<rect x="10" y="10" width="80" height="80" rx="20" fill="#456"/>
<rect id="Water" x="30" y="20" width="40" height="60" fill="#39f"/>
</svg>)";

constexpr Vz::TInstrumentSetup Setup{.Artwork = "BoilerSVG"};

} // namespace

std::span<const Vz::TProp> TBoiler::GetPropTable() const {
    static constexpr auto Rows =
        Vz::Publish(std::array{Vz::Main(Vz::Prop<&TBoiler::GetLevel, &TBoiler::SetLevel>("Level", 0.0))},
                    Vz::Inherited<Setup>({"Opacity", "OnChange"}));
    return Rows;
}

const Vz::TInstrumentSetup& TBoiler::GetSetup() const {
    Vz::AddResource("BoilerSVG", Artwork);
    return Setup;
}

void TBoiler::SetLevel(double value) {
    value = std::clamp(value, 0.0, 100.0);
    if (value == FLevel) return;
    FLevel = value;
    if (auto* const water = GetDocument().Find<Vz::TSVGGraphicElement>("Water"))
        water->SetOpacity(static_cast<float>(value / 100));
    MarkBuffersStale();
    Invalidate();
    DoOnChange();
}

} // namespace Plant
