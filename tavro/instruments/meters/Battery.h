#pragma once

#include "tavro/instruments/meters/Level.h"
#include "tavro/runtime/Set.h"

namespace Vz {

/// A battery: a glass cell between metal caps, in which a coloured level shows the charge, with a printed
/// scale and an emblem. The unit is the program's, percent as it comes: the scale runs from 0 to 100.
///
/// The level keeps its colour whatever the charge. Colours are the artwork's own until they are set.
class TVZBattery : public TCreatable<TVZBattery, TVZCustomLevel> {
public:
    static constexpr std::string_view TypeName = "TVZBattery";
    using TCreatable::TCreatable;

    enum class TPart : std::uint8_t {
        bpTop,
        bpConnector,
        bpBottom,
        bpDecoration,
        bpMarkers,
        bpLevel,
        bpGlass, ///< the glass, what shines on it and its edge
    };
    using TParts = TSet<TPart>;
    static constexpr TParts AllParts = TParts::UpTo(TPart::bpGlass);

    // Colours, 0xAARRGGBB; any value. A fresh one has the artwork's, which are the defaults named here. While
    // gradients are off, caps, connector and level are flat.

    /// Of the level, of which the artwork makes a glow. Default 0xFF68BAF4.
    TVZGPColor GetFillColor() const { return GetColor(LevelFill); }
    void SetFillColor(TVZGPColor value) { SetColor(LevelFill, value); }
    /// Of the top cap and the connector, of which the artwork makes light and shade. Default 0xFF666666.
    TVZGPColor GetTopColor() const { return GetColor(Top); }
    void SetTopColor(TVZGPColor value) { SetColor(Top, value); }
    /// Of the bottom cap likewise. Default 0xFF666666.
    TVZGPColor GetBottomColor() const { return GetColor(Bottom); }
    void SetBottomColor(TVZGPColor value) { SetColor(Bottom, value); }
    /// Of the printed scale. Default 0xFFFFF51F.
    TVZGPColor GetMarkersFillColor() const { return GetColor(MarkersFill); }
    void SetMarkersFillColor(TVZGPColor value) { SetColor(MarkersFill, value); }
    /// Outline of the printed scale; 0x00000000: none. Default 0xFF860101.
    TVZGPColor GetMarkersStrokeColor() const { return GetColor(MarkersStroke); }
    void SetMarkersStrokeColor(TVZGPColor value) { SetColor(MarkersStroke, value); }

    /// The parts that are shown. Default all seven. A change runs UpdateParts. What shines on the glass is
    /// also hidden by the simple design and without gradients; what was set last decides.
    TParts GetParts() const { return TParts::FromMask(GetPartsMask()); }
    void SetParts(TParts value) { SetPartsMask(value.GetMask()); }

    std::span<const TProp> GetPropTable() const override;

protected:
    const TInstrumentSetup& GetSetup() const override;
    void ColorChanged(std::size_t index) override;

private:
    /// The rows of the colours, in their order.
    enum TColorIndex : std::uint8_t { LevelFill, Top, Bottom, MarkersFill, MarkersStroke };
};

template <> struct EnumNames<TVZBattery::TPart> {
    static constexpr std::string_view Name = "TVZBattery.TPart";
    static constexpr std::string_view SetName = "TVZBattery.TParts";
    static constexpr std::string_view Members[] = {
        "bpTop", "bpConnector", "bpBottom", "bpDecoration", "bpMarkers", "bpLevel", "bpGlass",
    };
};

} // namespace Vz
