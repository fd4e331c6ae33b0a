#pragma once

#include "tavro/instruments/meters/Level.h"
#include "tavro/runtime/Set.h"

namespace Vz {

/// A flat modern battery: a window in bands, in which a level with a cap of its own shows the charge, and an
/// emblem. The unit is the program's, percent as it comes: the scale runs from 0 to 100.
///
/// The level keeps its colour whatever the charge. Colours are the artwork's own until they are set.
class TVZBatteryModern : public TCreatable<TVZBatteryModern, TVZCustomLevel> {
public:
    static constexpr std::string_view TypeName = "TVZBatteryModern";
    using TCreatable::TCreatable;

    enum class TPart : std::uint8_t {
        bmTop,
        bmConnector,
        bmBottom,
        bmDecoration,
        bmLevel,
        bmGlass,
        bmShadow,
    };
    using TParts = TSet<TPart>;
    static constexpr TParts AllParts = TParts::UpTo(TPart::bmShadow);

    // Colours, 0xAARRGGBB; any value. A fresh one has the artwork's, which are the defaults named here. While
    // gradients are off, caps, connector and level are flat.

    /// Of the case behind the window, of which the artwork makes light and shade. Default 0xFF808080. The
    /// case keeps its gradient while gradients are off; a colour that is set then does not show.
    TVZGPColor GetBackfaceColor() const { return GetColor(Backface); }
    void SetBackfaceColor(TVZGPColor value) { SetColor(Backface, value); }
    /// Of the window's rim and bands. Default 0xFF000000.
    TVZGPColor GetBandsColor() const { return GetColor(Bands); }
    void SetBandsColor(TVZGPColor value) { SetColor(Bands, value); }
    /// Of the level and its cap, of which the artwork makes light and shade. Default 0xFF55D400.
    TVZGPColor GetFillColor() const { return GetColor(LevelFill); }
    void SetFillColor(TVZGPColor value) { SetColor(LevelFill, value); }
    /// Of the top cap and the connector, of which the artwork makes light and shade. Default 0xFF000000.
    TVZGPColor GetTopColor() const { return GetColor(Top); }
    void SetTopColor(TVZGPColor value) { SetColor(Top, value); }
    /// Of the bottom cap likewise. Default 0xFF000000.
    TVZGPColor GetBottomColor() const { return GetColor(Bottom); }
    void SetBottomColor(TVZGPColor value) { SetColor(Bottom, value); }

    /// The parts that are shown. Default all seven. A change runs UpdateParts. The shadow is also hidden by
    /// the simple design and without gradients; what was set last decides.
    TParts GetParts() const { return TParts::FromMask(GetPartsMask()); }
    void SetParts(TParts value) { SetPartsMask(value.GetMask()); }

    std::span<const TProp> GetPropTable() const override;

protected:
    const TInstrumentSetup& GetSetup() const override;
    std::string_view GetLevelId() const override { return "Level"; }
    void EdgeMoved(double y) override;

private:
    /// The rows of the colours, in their order.
    enum TColorIndex : std::uint8_t { Backface, Bands, LevelFill, Top, Bottom };
};

template <> struct EnumNames<TVZBatteryModern::TPart> {
    static constexpr std::string_view Name = "TVZBatteryModern.TPart";
    static constexpr std::string_view SetName = "TVZBatteryModern.TParts";
    static constexpr std::string_view Members[] = {
        "bmTop", "bmConnector", "bmBottom", "bmDecoration", "bmLevel", "bmGlass", "bmShadow",
    };
};

} // namespace Vz
