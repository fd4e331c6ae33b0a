#pragma once

#include "tavro/instruments/Instrument.h"
#include "tavro/instruments/Scale.h"
#include "tavro/runtime/Set.h"

namespace Vz {

/// A dashboard speedometer: a framed round dial with a printed scale of seven numbers, an emblem, and a
/// needle that sweeps 200.2 degrees. Values have no unit of their own; the scale runs from Min to Max.
///
/// The needle may run a little beyond both ends of the scale, as a real one rests below zero. The artwork
/// carries the markers; only the seven numbers are rewritten. Colours are the artwork's own until they are
/// set.
class TVZSpeedometer final : public TCreatable<TVZSpeedometer, TVZSVGCustomInstrument> {
public:
    static constexpr std::string_view TypeName = "TVZSpeedometer";
    using TCreatable::TCreatable;

    enum class TPart : std::uint8_t {
        spFrame,
        spBackface,
        spDecoration,
        spMajorMarkers,
        spMinorMarkers,
        spKnob,
        spLabels,
        spNeedle,
        spGlass,
    };
    using TParts = TSet<TPart>;
    static constexpr TParts AllParts = TParts::FromMask(511);

    // Scale. None of these raises OnChange, except SetValue.

    /// Upper end of the scale, in scale units; any finite number, others are ignored. Default 240. One below
    /// Min moves Min to one below it; Value comes down to it.
    float GetMax() const { return FScale.Max; }
    void SetMax(float value);
    bool IsMaxStored() const { return FScale.Max != FDefaultMax; }
    /// Lower end of the scale, in scale units; any finite number, others are ignored. Default 0. One above
    /// Max moves Max to one above it; Value comes up to it.
    float GetMin() const { return FScale.Min; }
    void SetMin(float value);
    bool IsMinStored() const { return FScale.Min != FDefaultMin; }
    /// What the needle shows, in scale units, held in the needle's range; not-a-number is ignored. Default 0.
    /// A change raises OnChange.
    float GetValue() const { return FScale.Value; }
    void SetValue(float value);
    bool IsValueStored() const { return FScale.IsValueStored(); }
    /// Where the needle's range begins, in scale units: the scale's span times 0.04167, rounded to a whole
    /// number (a half to the even one), below Min. -10 by default; -100.05 degrees from upright.
    float GetNeedleMin() const { return FNeedleMin; }
    /// Where it ends: as much above Max. 250 by default; 100.15 degrees.
    float GetNeedleMax() const { return FNeedleMax; }

    // Look.

    /// The parts that are shown. Default all nine. A change runs UpdateParts. The glass is also hidden by the
    /// simple design; whichever of the two was set last decides.
    TParts GetParts() const { return FParts; }
    void SetParts(TParts value);
    /// Font of the numbers, in artwork units. By default everything is as the artwork has it. Set by copying.
    TSVGFont& GetFont() const { return *FFont; }
    void SetFont(const TSVGFont& value);

    // Colours, 0xAARRGGBB. A fresh one has the artwork's, which are the defaults named here. While gradients
    // are off, frame, dial and knob are flat.

    /// Of the frame, of which the artwork makes light and shade. Default 0xFF888A85.
    TVZGPColor GetFrameColor() const { return FFrameColor; }
    void SetFrameColor(TVZGPColor value);
    /// Of the dial, of which the artwork makes light and shade. Default 0xFF555753.
    TVZGPColor GetBackfaceColor() const { return FBackfaceColor; }
    void SetBackfaceColor(TVZGPColor value);
    /// Of major and minor markers. Default 0xFFFFFFFF.
    TVZGPColor GetMarkersFillColor() const { return FMarkersFillColor; }
    void SetMarkersFillColor(TVZGPColor value);
    /// Outline of major and minor markers; 0x00000000: none. Default 0xFF000000.
    TVZGPColor GetMarkersStrokeColor() const { return FMarkersStrokeColor; }
    void SetMarkersStrokeColor(TVZGPColor value);
    /// Of the numbers. Default 0xFFFFFFFF.
    TVZGPColor GetLabelsFillColor() const { return FLabelsFillColor; }
    void SetLabelsFillColor(TVZGPColor value);
    /// Outline of the numbers; 0x00000000: none. Default 0xFF000000.
    TVZGPColor GetLabelsStrokeColor() const { return FLabelsStrokeColor; }
    void SetLabelsStrokeColor(TVZGPColor value);
    /// Of the knob, of which the artwork makes light and shade. Default 0xFFFFFFFF.
    TVZGPColor GetKnobFillColor() const { return FKnobFillColor; }
    void SetKnobFillColor(TVZGPColor value);
    /// Outline of the knob; 0x00000000: none. Default 0xFF000000.
    TVZGPColor GetKnobStrokeColor() const { return FKnobStrokeColor; }
    void SetKnobStrokeColor(TVZGPColor value);
    /// Of the needle; in the detailed design its ridge takes half the brightness. Default 0xFFFFFFFF.
    TVZGPColor GetNeedleFillColor() const { return FNeedleFillColor; }
    void SetNeedleFillColor(TVZGPColor value);
    /// Outline of the needle; 0x00000000: none. Default 0xFF000000.
    TVZGPColor GetNeedleStrokeColor() const { return FNeedleStrokeColor; }
    void SetNeedleStrokeColor(TVZGPColor value);

    std::span<const TProp> GetPropTable() const override;
    std::span<const TArtworkRow> GetArtworkContract() const override;

    // Steps.

    void DoEnableGradients(bool enable) override;
    void DoInitializeGauge() override;
    void DoUpdateDesign() override;
    void DoUpdateLight() override;
    void DoUpdateParts() override;
    void LoadSVGProperties() override;
    void UpdateNumbers() override;
    std::string GetSVGResourceName() const override { return "SpeedometerSVG"; }
    void UpdateDecorationFill() override;
    /// Writes the numbers of the scale, evenly from Min to Max, into the texts of the group "Labels". A child
    /// of it that is no text raises EInvalidCast.
    void InitializeLabels();
    /// Writes the numbers and takes the needle's range from the scale.
    void InitializeSpeedometer();
    /// Turns the needle to the value and invalidates; in a range of no extent it stays where it is. Nothing
    /// happens where the artwork has no needle group or no knob.
    void UpdateNeedle();

protected:
    void Construct() override;
    std::string_view GetActiveElementId() const override { return "NeedleGroup"; }

private:
    void FontChanged();
    void ScaleChanged();

    TScale FScale{0, 240, 0};
    float FDefaultMax = 240;
    float FDefaultMin = 0;
    float FNeedleMin = -10;
    float FNeedleMax = 250;
    TParts FParts = AllParts;
    std::unique_ptr<TSVGFont> FFont;
    TVZGPColor FNeedleFillColor = 0xFFFFFFFF;
    TVZGPColor FLabelsFillColor = 0xFFFFFFFF;
    TVZGPColor FMarkersFillColor = 0xFFFFFFFF;
    TVZGPColor FLabelsStrokeColor = 0xFF000000;
    TVZGPColor FFrameColor = 0xFF888A85;
    TVZGPColor FMarkersStrokeColor = 0xFF000000;
    TVZGPColor FBackfaceColor = 0xFF555753;
    TVZGPColor FKnobFillColor = 0xFFFFFFFF;
    TVZGPColor FKnobStrokeColor = 0xFF000000;
    TVZGPColor FNeedleStrokeColor = 0xFF000000;
};

template <> struct EnumNames<TVZSpeedometer::TPart> {
    static constexpr std::string_view Name = "TVZSpeedometer.TPart";
    static constexpr std::string_view SetName = "TVZSpeedometer.TParts";
    static constexpr std::string_view Members[] = {
        "spFrame", "spBackface", "spDecoration", "spMajorMarkers", "spMinorMarkers",
        "spKnob",  "spLabels",   "spNeedle",     "spGlass",
    };
};

} // namespace Vz
