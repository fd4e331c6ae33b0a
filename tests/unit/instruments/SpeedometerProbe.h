#pragma once

#include "InstrumentProbe.h"
#include "tavro/Vz.Tavro.Speedometers.h"
#include "tavro/controls/HeadlessHost.h"

#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <string>
#include <string_view>
#include <vector>

namespace Vz::Test {

/// A speedometer, and what its artwork shows.
struct TSpeed {
    std::unique_ptr<TVZSpeedometer> Meter = TVZSpeedometer::Create();
    TVZSpeedometer* operator->() { return Meter.get(); }
    TVZSpeedometer& operator*() { return *Meter; }

    template <class T = TSVGGraphicElement> T& Get(std::string_view id) {
        return *Meter->GetDocument().Find<T>(id);
    }
    TVZGPColor Fill(std::string_view id) { return Get(id).GetBrush().GetColor(); }
    TVZGPColor Stroke(std::string_view id) { return Get(id).GetPen().GetColor(); }
    TVZGPColor Stop(std::string_view id, std::size_t index) {
        return Get<TSVGCustomGradient>(id).GetStop(index).GetStopBrush().GetColor();
    }
    double Angle() {
        const TMatrix m = Get("NeedleGroup").GetMatrix();
        return std::atan2(m.M12, m.M11) * 180 / std::numbers::pi;
    }
    std::string Labels() {
        std::string all;
        for (const auto& child : Meter->GetDocument().FindElement("Labels")->Children())
            all += (all.empty() ? "" : " ") + dynamic_cast<TSVGCustomText&>(*child).GetText();
        return all;
    }
    std::vector<std::uint32_t> Paint() {
        THeadlessHost host(*Meter);
        const TPixels pixels = host.Paint().GetPixels();
        std::vector<std::uint32_t> copy;
        for (int y = 0; y < pixels.Height; ++y)
            copy.insert(copy.end(), pixels.Row(y), pixels.Row(y) + pixels.Width);
        return copy;
    }
};

} // namespace Vz::Test
