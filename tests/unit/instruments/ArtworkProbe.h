#pragma once

#include "InstrumentProbe.h"
#include "tavro/controls/HeadlessHost.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Vz::Test {

/// An instrument, and what its artwork shows.
template <class TInstrument> struct TShown {
    std::unique_ptr<TInstrument> Instrument = TInstrument::Create();
    TInstrument* operator->() { return Instrument.get(); }
    TInstrument& operator*() { return *Instrument; }

    template <class T = TSVGGraphicElement> T& Get(std::string_view id) {
        return *Instrument->GetDocument().template Find<T>(id);
    }
    bool IsVisible(std::string_view id) { return Get(id).GetVisible(); }
    TVZGPColor Fill(std::string_view id) { return Get(id).GetBrush().GetColor(); }
    TVZGPColor Stroke(std::string_view id) { return Get(id).GetPen().GetColor(); }
    TVZGPColor Stop(std::string_view id, std::size_t index) {
        return Get<TSVGCustomGradient>(id).GetStop(index).GetStopBrush().GetColor();
    }
    std::vector<TVZGPColor> Stops(std::string_view id) {
        std::vector<TVZGPColor> stops;
        for (std::size_t i = 0; i < Get<TSVGCustomGradient>(id).GetStopCount(); ++i)
            stops.push_back(Stop(id, i));
        return stops;
    }
    double Length(std::string_view id, TSVGBasicShape::TPart part) {
        return Get<TSVGBasicShape>(id).GetLength(part).GetValue();
    }
    /// The texts that lie directly in a group, separated by blanks.
    std::string Texts(std::string_view id) {
        std::string all;
        for (const auto& child : Get(id).Children())
            all += (all.empty() ? "" : " ") + dynamic_cast<TSVGCustomText&>(*child).GetText();
        return all;
    }
    std::vector<std::uint32_t> Paint() {
        THeadlessHost host(*Instrument);
        const TPixels pixels = host.Paint().GetPixels();
        std::vector<std::uint32_t> copy;
        for (int y = 0; y < pixels.Height; ++y)
            copy.insert(copy.end(), pixels.Row(y), pixels.Row(y) + pixels.Width);
        return copy;
    }
};

} // namespace Vz::Test
