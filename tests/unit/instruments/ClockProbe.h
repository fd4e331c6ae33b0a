#pragma once

#include "InstrumentProbe.h"
#include "tavro/Vz.Tavro.Clocks.h"
#include "tavro/controls/HeadlessHost.h"

#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <string>
#include <string_view>
#include <vector>

namespace Vz::Test {

/// A clock, and what its artwork shows.
template <class T> struct TClockProbe {
    std::unique_ptr<T> Clock = T::Create();
    T* operator->() { return Clock.get(); }
    T& operator*() { return *Clock; }

    template <class E = TSVGGraphicElement> E& Get(std::string_view id) {
        return *Clock->GetDocument().template Find<E>(id);
    }
    bool IsShown(std::string_view id) { return Get(id).GetVisible(); }
    TVZGPColor Fill(std::string_view id) { return Get(id).GetBrush().GetColor(); }
    TVZGPBrushKind FillKind(std::string_view id) { return Get(id).GetBrush().GetKind(); }
    TVZGPColor Stroke(std::string_view id) { return Get(id).GetPen().GetColor(); }
    TVZGPBrushKind StrokeKind(std::string_view id) { return Get(id).GetPen().GetKind(); }
    std::vector<TVZGPColor> Stops(std::string_view id) {
        auto& gradient = Get<TSVGCustomGradient>(id);
        std::vector<TVZGPColor> colors;
        for (std::size_t i = 0; i < gradient.GetStopCount(); ++i)
            colors.push_back(gradient.GetStop(i).GetStopBrush().GetColor());
        return colors;
    }
    /// How far an element is turned, in degrees from 0 up to 360.
    double Turn(std::string_view id) {
        const TMatrix m = Get(id).GetMatrix();
        return std::fmod(std::atan2(double(m.M12), double(m.M11)) * 180 / std::numbers::pi + 360, 360);
    }
    std::string Text() { return Clock->GetDocument().WriteText(); }
    std::vector<std::uint32_t> Paint() {
        THeadlessHost host(*Clock);
        const TPixels pixels = host.Paint().GetPixels();
        std::vector<std::uint32_t> copy;
        for (int y = 0; y < pixels.Height; ++y)
            copy.insert(copy.end(), pixels.Row(y), pixels.Row(y) + pixels.Width);
        return copy;
    }
};

using TColors = std::vector<TVZGPColor>;

} // namespace Vz::Test
