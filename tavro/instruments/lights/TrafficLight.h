#pragma once

#include "tavro/instruments/lights/Light.h"
#include "tavro/runtime/Set.h"

#include <array>

namespace Vz {

/// A signal of three lamps, red, yellow and green from above, each of which is lit or dark and may carry an
/// emblem. Any of them may be lit at the same time. A click on a lamp or its emblem moves the light there, or
/// puts it out; there is no sequence of its own.
///
/// Colours are the artwork's own until they are set.
class TVZTrafficLight : public TCreatable<TVZTrafficLight, TVZCustomLight> {
public:
    static constexpr std::string_view TypeName = "TVZTrafficLight";
    using TCreatable::TCreatable;

    enum class TLight : std::uint8_t { ltRed, ltYellow, ltGreen };
    using TLights = TSet<TLight>;
    /// By the ordinal of TLight.
    using TLightDecorations = std::array<TDecoration, 3>;

    // clang-format off
    enum class TPart : std::uint8_t {
        tlTopDome, tlFrame,
        tlRedLight, tlRedLightHousing, tlRedLightLeftHood, tlRedLightRightHood, tlRedDecoration,
        tlYellowLight, tlYellowLightHousing, tlYellowLightLeftHood, tlYellowLightRightHood, tlYellowDecoration,
        tlGreenLight, tlGreenLightHousing, tlGreenLightLeftHood, tlGreenLightRightHood, tlGreenDecoration,
    };
    // clang-format on
    using TParts = TSet<TPart>;
    static constexpr TParts AllParts = TParts::UpTo(TPart::tlGreenDecoration);

    /// The lamps that are lit; none and all are allowed. Default the red one. A change shows them and raises
    /// OnChange.
    TLights GetLights() const { return FLights; }
    void SetLights(TLights value);
    /// Whether a click with Shift or Ctrl switches its lamp alone and leaves the others as they are. Default
    /// false: each click leaves at most one lamp lit.
    bool GetMultiSelect() const { return FMultiSelect; }
    void SetMultiSelect(bool value) { FMultiSelect = value; }
    /// The parts that are shown. Default all seventeen. A change runs UpdateParts.
    TParts GetParts() const { return TParts::FromMask(GetPartsMask()); }
    void SetParts(TParts value) { SetPartsMask(value.GetMask()); }

    // Colours, 0xAARRGGBB; any value. A fresh one has the artwork's, which are the defaults named here. None
    // of them raises OnChange. While gradients are off, dome, frame and hoods are flat.

    /// Of every dark lamp. Default 0xFF000000.
    TVZGPColor GetOffColor() const { return GetColor(Off); }
    void SetOffColor(TVZGPColor value) { SetColor(Off, value); }
    /// Of the dome on top, of which the artwork makes light and shade. Default 0xFF393939.
    TVZGPColor GetDomeColor() const { return GetColor(Dome); }
    void SetDomeColor(TVZGPColor value) { SetColor(Dome, value); }
    /// Of the frame, likewise. Default 0xFF2A2A2A.
    TVZGPColor GetFrameColor() const { return GetColor(Frame); }
    void SetFrameColor(TVZGPColor value) { SetColor(Frame, value); }
    /// Of the hoods over the lamps, likewise. Default 0xFF242424.
    TVZGPColor GetHoodColor() const { return GetColor(Hood); }
    void SetHoodColor(TVZGPColor value) { SetColor(Hood, value); }
    /// Of the panels about the lamps and of the hoods' feet, flat; 0x00000000: none. Default 0xFF242424.
    TVZGPColor GetHousingColor() const { return GetColor(Housing); }
    void SetHousingColor(TVZGPColor value) { SetColor(Housing, value); }
    /// Of the lit red lamp. Default 0xFFFF0000.
    TVZGPColor GetRedLightColor() const { return GetColor(RedLight); }
    void SetRedLightColor(TVZGPColor value) { SetColor(RedLight, value); }
    /// Of the lit yellow lamp. Default 0xFFD5D600.
    TVZGPColor GetYellowLightColor() const { return GetColor(YellowLight); }
    void SetYellowLightColor(TVZGPColor value) { SetColor(YellowLight, value); }
    /// Of the lit green lamp. Default 0xFF00E400.
    TVZGPColor GetGreenLightColor() const { return GetColor(GreenLight); }
    void SetGreenLightColor(TVZGPColor value) { SetColor(GreenLight, value); }

    // Emblems. All take DecorationFillColor, 0xFFFFFFFF by default, and DecorationStrokeColor.

    /// A lamp's emblem, of the catalogue; dcCustom shows none. Default dcNone. A change runs UpdateDecoration
    /// of the lamp.
    TDecoration GetDecoration(TLight light) const { return FDecorations[static_cast<std::size_t>(light)]; }
    void SetDecoration(TLight light, TDecoration value);
    TDecoration GetRedDecoration() const { return GetDecoration(TLight::ltRed); }
    void SetRedDecoration(TDecoration value) { SetDecoration(TLight::ltRed, value); }
    TDecoration GetYellowDecoration() const { return GetDecoration(TLight::ltYellow); }
    void SetYellowDecoration(TDecoration value) { SetDecoration(TLight::ltYellow, value); }
    TDecoration GetGreenDecoration() const { return GetDecoration(TLight::ltGreen); }
    void SetGreenDecoration(TDecoration value) { SetDecoration(TLight::ltGreen, value); }
    using TVZSVGCustomInstrument::GetDecoration;
    using TVZSVGCustomInstrument::SetDecoration;

    std::span<const TProp> GetPropTable() const override;

    // Steps.

    void DoInitializeGauge() override;
    /// Draws the red lamp's emblem only; the others change by their setters. Kept.
    void UpdateDecoration() override { UpdateDecoration(TLight::ltRed); }
    /// Draws one lamp's emblem, marks the caches stale and invalidates.
    void UpdateDecoration(TLight light);
    /// Shows each lamp lit or dark, red, yellow, green, and invalidates; the lamps lie in the active element.
    void UpdateState() override;

protected:
    const TInstrumentSetup& GetSetup() const override;
    void ColorChanged(std::size_t index) override;
    void ReplaceContent(const std::function<void()>& load) override;
    void Clicked(const TSVGGraphicElement& element, TShiftState shift) override;

private:
    /// The rows of the colours, in their order; those of the lamps in the order of TLight.
    enum TColorIndex : std::uint8_t { Off, Dome, Frame, Hood, Housing, RedLight, YellowLight, GreenLight };

    TLights FLights{TLight::ltRed};
    bool FMultiSelect = false;
    TLightDecorations FDecorations{};
};

template <> struct EnumNames<TVZTrafficLight::TLight> {
    static constexpr std::string_view Name = "TVZTrafficLight.TLight";
    static constexpr std::string_view SetName = "TVZTrafficLight.TLights";
    static constexpr std::string_view Members[] = {"ltRed", "ltYellow", "ltGreen"};
};

template <> struct EnumNames<TVZTrafficLight::TPart> {
    static constexpr std::string_view Name = "TVZTrafficLight.TPart";
    static constexpr std::string_view SetName = "TVZTrafficLight.TParts";
    // clang-format off
    static constexpr std::string_view Members[] = {
        "tlTopDome", "tlFrame",
        "tlRedLight", "tlRedLightHousing", "tlRedLightLeftHood",
        "tlRedLightRightHood", "tlRedDecoration",
        "tlYellowLight", "tlYellowLightHousing", "tlYellowLightLeftHood",
        "tlYellowLightRightHood", "tlYellowDecoration",
        "tlGreenLight", "tlGreenLightHousing", "tlGreenLightLeftHood",
        "tlGreenLightRightHood", "tlGreenDecoration",
    };
    // clang-format on
};

} // namespace Vz
