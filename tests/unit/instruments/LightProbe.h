#pragma once

#include "InstrumentProbe.h"
#include "tavro/Vz.Tavro.Lights.h"
#include "tavro/controls/HeadlessHost.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Vz::Test {

/// A light in the size of its artwork, so that a control pixel is an artwork unit, and what its artwork
/// shows.
template <class T> struct TLightProbe {
    TLightProbe() {
        Light->SetWidth(static_cast<int>(Light->GetDocument().GetWidth()));
        Light->SetHeight(static_cast<int>(Light->GetDocument().GetHeight()));
    }
    T* operator->() { return Light.get(); }
    T& operator*() { return *Light; }

    template <class E = TSVGGraphicElement> E& Get(std::string_view id) {
        return *Light->GetDocument().template Find<E>(id);
    }
    TVZGPColor Fill(std::string_view id) { return Get(id).GetBrush().GetColor(); }
    std::string Server(std::string_view id) { return Get(id).GetBrush().GetURI(); }
    bool IsShown(std::string_view id) { return Get(id).GetVisible(); }
    bool HasEmblem(std::string_view id) { return !Get<TSVGPath>(id).GetData().GetFigures().Verbs.empty(); }
    std::vector<TVZGPColor> Stops(std::string_view id) {
        auto& gradient = Get<TSVGCustomGradient>(id);
        std::vector<TVZGPColor> colors;
        for (std::size_t i = 0; i < gradient.GetStopCount(); ++i)
            colors.push_back(gradient.GetStop(i).GetStopBrush().GetColor());
        return colors;
    }
    std::string IdAt(int x, int y) {
        const TSVGGraphicElement* const element = Light->ElementAtControlPoint(x, y);
        return element ? element->GetId() : "nothing";
    }
    void Click(int x, int y, TShiftState shift = {}, TMouseButton button = TMouseButton::Left) {
        THeadlessHost(*Light).Click(x, y, button, shift);
    }

    std::unique_ptr<T> Light = T::Create();
};

} // namespace Vz::Test
