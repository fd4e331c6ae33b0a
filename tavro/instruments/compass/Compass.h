#pragma once

#include "tavro/instruments/Heading.h"
#include "tavro/instruments/Instrument.h"
#include "tavro/runtime/Set.h"

namespace Vz {

/// A ship's compass of metal: a square frame with a bowl, a card with a rose, numbers and letters, fixed
/// heading marks, a needle of two colours and a knob. It shows an angle in degrees by turning the needle, the
/// card's print, or the card with its rose.
///
/// Colours are the artwork's own until they are set. The angle is no value that tells of itself: no setter
/// raises OnChange.
class TVZCompass : public TCreatable<TVZCompass, TVZSVGCustomInstrument>, public THeading<TVZCompass> {
public:
    static constexpr std::string_view TypeName = "TVZCompass";
    using TCreatable::TCreatable;

    enum class TPart : std::uint8_t {
        cpFrame,
        cpBackface,
        cpBackfaceLines,
        cpRose,
        cpMarkers,
        cpNumbers,
        cpLabels,
        cpNeedle,
        cpNeedleShadow,
        cpKnob,
    };
    using TParts = TSet<TPart>;
    static constexpr TParts AllParts = TParts::UpTo(TPart::cpKnob);

    /// What the compass shows, in degrees clockwise. Default 0. A negative value gives 0; what is not finite
    /// is ignored. One above 360 is taken as it is; from there the next change, whatever its value that is
    /// not negative, gives 360. Raises no OnChange.
    float GetAngle() const { return FAngle; }
    using THeading::SetAngle;
    void SetAngle(float value);
    /// What turns: the needle, the card's print, or the card with its rose. Default cmpFaceNRose. The part
    /// that turned until now goes back to where it shows 0; the angle stays.
    TCompassMovablePart GetRotate() const { return FRotate; }
    void SetRotate(TCompassMovablePart value);
    /// The parts that are shown. Default all ten. A change runs UpdateParts. Numbers and markers are also
    /// hidden by the simple design; whichever of the two was set last decides.
    TParts GetParts() const { return TParts::FromMask(GetPartsMask()); }
    void SetParts(TParts value) { SetPartsMask(value.GetMask()); }

    // Colours, 0xAARRGGBB; any value. A fresh one has the artwork's, which are the defaults named here. While
    // gradients are off, frame, dial and knob are flat. Fills and outlines of 0x00000000 are none, but for
    // frame, dial, knob and needle, whose colours make light and shade.

    /// Of the frame, of which the artwork makes light and shade. Default 0xFFD3D7CF.
    TVZGPColor GetFrameColor() const { return GetColor(Frame); }
    void SetFrameColor(TVZGPColor value) { SetColor(Frame, value); }
    /// Of the dial, of which the artwork makes light and shade. Default 0xFFF2F2F2.
    TVZGPColor GetBackfaceColor() const { return GetColor(Backface); }
    void SetBackfaceColor(TVZGPColor value) { SetColor(Backface, value); }
    /// Of the card's lines and its inner circle. Default 0xFF000000.
    TVZGPColor GetBackfaceLinesFillColor() const { return GetColor(BackfaceLinesFill); }
    void SetBackfaceLinesFillColor(TVZGPColor value) { SetColor(BackfaceLinesFill, value); }
    /// Outline of the card's lines and its inner circle. Default 0xFFD3D7CF.
    TVZGPColor GetBackfaceLinesStrokeColor() const { return GetColor(BackfaceLinesStroke); }
    void SetBackfaceLinesStrokeColor(TVZGPColor value) { SetColor(BackfaceLinesStroke, value); }
    /// Of the fixed heading marks. Default 0xFF000000.
    TVZGPColor GetMarkersFillColor() const { return GetColor(MarkersFill); }
    void SetMarkersFillColor(TVZGPColor value) { SetColor(MarkersFill, value); }
    /// Outline of the heading marks. Default 0xFF000000.
    TVZGPColor GetMarkersStrokeColor() const { return GetColor(MarkersStroke); }
    void SetMarkersStrokeColor(TVZGPColor value) { SetColor(MarkersStroke, value); }
    /// Of the degrees on the card. Default 0xFF2E3436.
    TVZGPColor GetNumbersFillColor() const { return GetColor(NumbersFill); }
    void SetNumbersFillColor(TVZGPColor value) { SetColor(NumbersFill, value); }
    /// Outline of the degrees. Default 0xFF000000.
    TVZGPColor GetNumbersStrokeColor() const { return GetColor(NumbersStroke); }
    void SetNumbersStrokeColor(TVZGPColor value) { SetColor(NumbersStroke, value); }
    /// Of the letters of the winds. Default 0xFF000000.
    TVZGPColor GetLabelsFillColor() const { return GetColor(LabelsFill); }
    void SetLabelsFillColor(TVZGPColor value) { SetColor(LabelsFill, value); }
    /// Outline of the letters. Default 0xFF000000.
    TVZGPColor GetLabelsStrokeColor() const { return GetColor(LabelsStroke); }
    void SetLabelsStrokeColor(TVZGPColor value) { SetColor(LabelsStroke, value); }
    /// Of the needle's upper half; its outline takes 1.2 of the brightness, its shade 0.3 to 1.2. Default
    /// 0xFFCC0000.
    TVZGPColor GetNeedleHighColor() const { return GetColor(NeedleHigh); }
    void SetNeedleHighColor(TVZGPColor value) { SetColor(NeedleHigh, value); }
    /// Of the needle's lower half, likewise. Default 0xFF3465A4.
    TVZGPColor GetNeedleLowColor() const { return GetColor(NeedleLow); }
    void SetNeedleLowColor(TVZGPColor value) { SetColor(NeedleLow, value); }
    /// Of the knob, whose light takes the double and whose shade half of the brightness. Default 0xFF808080.
    TVZGPColor GetKnobFillColor() const { return GetColor(KnobFill); }
    void SetKnobFillColor(TVZGPColor value) { SetColor(KnobFill, value); }
    /// Outline of the knob; 0x00000000: none. Default 0xFF000000.
    TVZGPColor GetKnobStrokeColor() const { return GetColor(KnobStroke); }
    void SetKnobStrokeColor(TVZGPColor value) { SetColor(KnobStroke, value); }

    std::span<const TProp> GetPropTable() const override;

    // Steps.

    void DoInitializeGauge() override;
    /// The star, the toothed ring and the globe are the compass's own; all else is the catalogue's.
    void UpdateDecoration() override;
    /// Turns what Rotate says to the angle and invalidates. The needle turns about the middle of the knob's
    /// slot, a face about its inner circle; either about (0, 0) where the artwork lacks that. Nothing happens
    /// while the document is empty.
    virtual void UpdateNeedle();

protected:
    const TInstrumentSetup& GetSetup() const override;
    /// What turns.
    std::string_view GetActiveElementId() const override;
    /// Lays the needle to the angle, also where a face turns, which is meant.
    void ReadGeometry() override;

private:
    /// The rows of the colours, in their order.
    enum TColorIndex : std::uint8_t {
        Frame,
        Backface,
        BackfaceLinesFill,
        BackfaceLinesStroke,
        MarkersFill,
        MarkersStroke,
        NumbersFill,
        NumbersStroke,
        LabelsFill,
        LabelsStroke,
        NeedleHigh,
        NeedleLow,
        KnobFill,
        KnobStroke,
    };

    void Turn(TCompassMovablePart part);

    float FAngle = 0;
    TCompassMovablePart FRotate = TCompassMovablePart::cmpFaceNRose;
};

template <> struct EnumNames<TVZCompass::TPart> {
    static constexpr std::string_view Name = "TVZCompass.TPart";
    static constexpr std::string_view SetName = "TVZCompass.TParts";
    static constexpr std::string_view Members[] = {
        "cpFrame",   "cpBackface", "cpBackfaceLines", "cpRose",         "cpMarkers",
        "cpNumbers", "cpLabels",   "cpNeedle",        "cpNeedleShadow", "cpKnob",
    };
};

} // namespace Vz
