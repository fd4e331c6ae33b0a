#pragma once

#include "tavro/instruments/meters/Meter.h"
#include "tavro/runtime/Set.h"

namespace Vz {

/// A dashboard speedometer: a framed round dial with a printed scale of seven numbers, an emblem, and a
/// needle that sweeps 200.2 degrees. The scale runs from 0 to 240 unless Min and Max say otherwise.
///
/// The needle may run a little beyond both ends of the scale, as a real one rests below zero. The artwork
/// carries the markers; only the seven numbers are rewritten. Colours are the artwork's own until they are
/// set.
class TVZSpeedometer : public TCreatable<TVZSpeedometer, TVZCustomMeter> {
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
    static constexpr TParts AllParts = TParts::UpTo(TPart::spGlass);

    /// Where the needle's range begins, in scale units: the scale's span times 0.04167, rounded to a whole
    /// number (a half to the even one), below Min. -10 by default; -100.05 degrees from upright.
    float GetLowest() const override { return FNeedleMin; }
    /// Where it ends: as much above Max. 250 by default; 100.15 degrees.
    float GetHighest() const override { return FNeedleMax; }

    /// The parts that are shown. Default all nine. A change runs UpdateParts. The glass is also hidden by the
    /// simple design; whichever of the two was set last decides.
    TParts GetParts() const { return TParts::FromMask(GetPartsMask()); }
    void SetParts(TParts value) { SetPartsMask(value.GetMask()); }

    // Colours, 0xAARRGGBB; any value. A fresh one has the artwork's, which are the defaults named here. While
    // gradients are off, frame, dial and knob are flat.

    /// Of the frame, of which the artwork makes light and shade. Default 0xFF888A85.
    TVZGPColor GetFrameColor() const { return GetColor(Frame); }
    void SetFrameColor(TVZGPColor value) { SetColor(Frame, value); }
    /// Of the dial, of which the artwork makes light and shade. Default 0xFF555753.
    TVZGPColor GetBackfaceColor() const { return GetColor(Backface); }
    void SetBackfaceColor(TVZGPColor value) { SetColor(Backface, value); }
    /// Of major and minor markers. Default 0xFFFFFFFF.
    TVZGPColor GetMarkersFillColor() const { return GetColor(MarkersFill); }
    void SetMarkersFillColor(TVZGPColor value) { SetColor(MarkersFill, value); }
    /// Outline of major and minor markers; 0x00000000: none. Default 0xFF000000.
    TVZGPColor GetMarkersStrokeColor() const { return GetColor(MarkersStroke); }
    void SetMarkersStrokeColor(TVZGPColor value) { SetColor(MarkersStroke, value); }
    /// Of the numbers. Default 0xFFFFFFFF.
    TVZGPColor GetLabelsFillColor() const { return GetColor(LabelsFill); }
    void SetLabelsFillColor(TVZGPColor value) { SetColor(LabelsFill, value); }
    /// Outline of the numbers; 0x00000000: none. Default 0xFF000000.
    TVZGPColor GetLabelsStrokeColor() const { return GetColor(LabelsStroke); }
    void SetLabelsStrokeColor(TVZGPColor value) { SetColor(LabelsStroke, value); }
    /// Of the knob, of which the artwork makes light and shade. Default 0xFFFFFFFF.
    TVZGPColor GetKnobFillColor() const { return GetColor(KnobFill); }
    void SetKnobFillColor(TVZGPColor value) { SetColor(KnobFill, value); }
    /// Outline of the knob; 0x00000000: none. Default 0xFF000000.
    TVZGPColor GetKnobStrokeColor() const { return GetColor(KnobStroke); }
    void SetKnobStrokeColor(TVZGPColor value) { SetColor(KnobStroke, value); }
    /// Of the needle; in the detailed design its ridge takes half the brightness. Default 0xFFFFFFFF.
    TVZGPColor GetNeedleFillColor() const { return GetColor(NeedleFill); }
    void SetNeedleFillColor(TVZGPColor value) { SetColor(NeedleFill, value); }
    /// Outline of the needle; 0x00000000: none. Default 0xFF000000.
    TVZGPColor GetNeedleStrokeColor() const { return GetColor(NeedleStroke); }
    void SetNeedleStrokeColor(TVZGPColor value) { SetColor(NeedleStroke, value); }

    std::span<const TProp> GetPropTable() const override;

    // Steps.

    void DoInitializeGauge() override;
    void UpdateDecorationFill() override;
    void InitializeLabels() override;
    /// Writes the numbers and takes the needle's range from the scale.
    virtual void InitializeSpeedometer();
    /// Turns the needle to the value and invalidates; in a range of no extent it stays where it is. Nothing
    /// happens where the artwork has no needle group or no knob.
    virtual void UpdateNeedle();

protected:
    void Construct() override;
    const TInstrumentSetup& GetSetup() const override;
    void ColorChanged(std::size_t index) override;
    void ShowScale() override;
    void ShowValue() override { UpdateNeedle(); }

private:
    /// The rows of the colours, in their order.
    enum TColorIndex : std::uint8_t {
        Frame,
        Backface,
        MarkersFill,
        MarkersStroke,
        LabelsFill,
        LabelsStroke,
        KnobFill,
        KnobStroke,
        NeedleFill,
        NeedleStroke,
    };

    float FNeedleMin = -10;
    float FNeedleMax = 250;
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
