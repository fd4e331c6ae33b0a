#pragma once

#include "tavro/instruments/lights/Light.h"
#include "tavro/runtime/Set.h"

namespace Vz {

/// A square signal lamp in a housing: a block of glass that is lit from within or dark, with an emblem on it.
/// A click on the lamp, or on the emblem, switches it.
///
/// Colours are the artwork's own until they are set. A fresh lamp is lit as it is drawn.
class TVZCubeLight : public TCreatable<TVZCubeLight, TVZCustomLight> {
public:
    static constexpr std::string_view TypeName = "TVZCubeLight";
    using TCreatable::TCreatable;

    enum class TPart : std::uint8_t { clFrame, clLight, clLightHousing, clDecoration };
    using TParts = TSet<TPart>;
    static constexpr TParts AllParts = TParts::UpTo(TPart::clDecoration);

    /// Whether the lamp is lit. Default true. A change shows it and raises OnChange.
    bool GetChecked() const { return FChecked; }
    void SetChecked(bool value);
    /// The parts that are shown. Default all four. A change runs UpdateParts.
    TParts GetParts() const { return TParts::FromMask(GetPartsMask()); }
    void SetParts(TParts value) { SetPartsMask(value.GetMask()); }

    // Colours, 0xAARRGGBB; any value. A fresh one has the artwork's, which are the defaults named here. None
    // of them raises OnChange.

    /// Of the frame, of which the artwork makes light and shade; flat while gradients are off. Default
    /// 0xFF2A2A2A.
    TVZGPColor GetFrameColor() const { return GetColor(Frame); }
    void SetFrameColor(TVZGPColor value) { SetColor(Frame, value); }
    /// Of the panel about the lamp, flat; 0x00000000: none. Default 0xFF242424.
    TVZGPColor GetHousingColor() const { return GetColor(Housing); }
    void SetHousingColor(TVZGPColor value) { SetColor(Housing, value); }
    /// Of the lit lamp. Default 0xFFFF0000. It does not show while the lamp is dark.
    TVZGPColor GetOnColor() const { return GetColor(On); }
    void SetOnColor(TVZGPColor value) { SetColor(On, value); }
    /// Of the dark lamp. Default 0xFF000000.
    TVZGPColor GetOffColor() const { return GetColor(Off); }
    void SetOffColor(TVZGPColor value) { SetColor(Off, value); }

    std::span<const TProp> GetPropTable() const override;

    // Steps.

    /// Shows the lamp lit or dark, marks the caches stale and invalidates.
    void UpdateState() override;

protected:
    const TInstrumentSetup& GetSetup() const override;
    void ColorChanged(std::size_t index) override;
    void ReplaceContent(const std::function<void()>& load) override;
    void Clicked(const TSVGGraphicElement& element, TShiftState shift) override;

private:
    /// The rows of the colours, in their order.
    enum TColorIndex : std::uint8_t { Frame, Housing, On, Off };

    bool FChecked = true;
};

template <> struct EnumNames<TVZCubeLight::TPart> {
    static constexpr std::string_view Name = "TVZCubeLight.TPart";
    static constexpr std::string_view SetName = "TVZCubeLight.TParts";
    static constexpr std::string_view Members[] = {"clFrame", "clLight", "clLightHousing", "clDecoration"};
};

} // namespace Vz
