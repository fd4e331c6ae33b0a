#pragma once

#include "tavro/instruments/Instrument.h"
#include "tavro/runtime/DateTime.h"
#include "tavro/runtime/Set.h"

namespace Vz {

/// A wall clock: a dial with hour indices and four numerals in a frame of two tones, three hands with their
/// shadows, an emblem and a domed glass. It shows the time of day of Time and leaves the date aside.
///
/// It has no timer: the hands stand where the last Time put them, at the beginning the moment of creation.
/// The hour hand creeps with the minutes, the minute hand with the seconds; the second hand goes in whole
/// seconds. Colours are the artwork's own until they are set.
class TVZClock : public TCreatable<TVZClock, TVZSVGCustomInstrument> {
public:
    static constexpr std::string_view TypeName = "TVZClock";
    using TCreatable::TCreatable;

    enum class TPart : std::uint8_t {
        cpFrame,
        cpFrameDecoration,
        cpBackface,
        cpDecoration,
        cpLabels,
        cpHourHand,
        cpMinuteHand,
        cpSecondHand,
        cpKnob,
        cpShadows,
        cpGlass,
    };
    using TParts = TSet<TPart>;
    static constexpr TParts AllParts = TParts::UpTo(TPart::cpGlass);

    /// The parts that are shown. Default all eleven. A change runs UpdateParts. cpFrameDecoration is the
    /// frame's two tones, cpShadows the frame's shadow and the hands'. The glass is also hidden by the simple
    /// design; whichever of the two was set last decides.
    TParts GetParts() const { return TParts::FromMask(GetPartsMask()); }
    void SetParts(TParts value) { SetPartsMask(value.GetMask()); }
    /// What the clock shows, in days since 1899-12-30; milliseconds do not count. Declared default 0,
    /// midnight; a fresh clock holds the local date and time of its creation. What is no date and time of the
    /// years 1 to 9999 is ignored. A change turns the hands and raises OnChange.
    TDateTime GetTime() const { return FTime; }
    void SetTime(TDateTime value);

    // Colours, 0xAARRGGBB; any value. A fresh one has the artwork's, which are the defaults named here unless
    // another one is. While gradients are off, fills are flat and the gradients keep what they were.

    /// Of the frame: its bright tone, and the dark tone and the bevels made of it. Default 0xFFF7F7F7.
    TVZGPColor GetFrameColor() const { return GetColor(Frame); }
    void SetFrameColor(TVZGPColor value) { SetColor(Frame, value); }
    /// Of the dial, and of the light that its glass gathers. Default 0xFF266080.
    TVZGPColor GetBackfaceColor() const { return GetColor(Backface); }
    void SetBackfaceColor(TVZGPColor value) { SetColor(Backface, value); }
    /// Of the second hand, 40 darker towards its tail. Default 0xFF3CA1F6.
    TVZGPColor GetSecondHandFillColor() const { return GetColor(SecondHandFill); }
    void SetSecondHandFillColor(TVZGPColor value) { SetColor(SecondHandFill, value); }
    /// Outline of the second hand; 0x00000000: none. Default 0xFF000000.
    TVZGPColor GetSecondHandStrokeColor() const { return GetColor(SecondHandStroke); }
    void SetSecondHandStrokeColor(TVZGPColor value) { SetColor(SecondHandStroke, value); }
    /// Of the minute hand, 40 darker on one slope. Default 0xFFF5F5F5.
    TVZGPColor GetMinuteHandFillColor() const { return GetColor(MinuteHandFill); }
    void SetMinuteHandFillColor(TVZGPColor value) { SetColor(MinuteHandFill, value); }
    /// Outline of the minute hand; 0x00000000: none. Default 0xFF000000.
    TVZGPColor GetMinuteHandStrokeColor() const { return GetColor(MinuteHandStroke); }
    void SetMinuteHandStrokeColor(TVZGPColor value) { SetColor(MinuteHandStroke, value); }
    /// Of the hour hand, 40 darker on one slope. Default 0xFFF5F5F5.
    TVZGPColor GetHourHandFillColor() const { return GetColor(HourHandFill); }
    void SetHourHandFillColor(TVZGPColor value) { SetColor(HourHandFill, value); }
    /// Outline of the hour hand; 0x00000000: none. Default 0xFF000000.
    TVZGPColor GetHourHandStrokeColor() const { return GetColor(HourHandStroke); }
    void SetHourHandStrokeColor(TVZGPColor value) { SetColor(HourHandStroke, value); }
    /// Of indices, numerals and minute track, shaded from light to dark. Declared default 0xFF000000; a fresh
    /// clock's are 0xFFF5F5F5.
    TVZGPColor GetLabelsFillColor() const { return GetColor(LabelsFill); }
    void SetLabelsFillColor(TVZGPColor value) { SetColor(LabelsFill, value); }
    /// Outline of the same; 0x00000000: none. Default 0xFF000000.
    TVZGPColor GetLabelsStrokeColor() const { return GetColor(LabelsStroke); }
    void SetLabelsStrokeColor(TVZGPColor value) { SetColor(LabelsStroke, value); }
    /// Of the knob, with half its brightness at the rim. Default 0xFFF7F7F7.
    TVZGPColor GetKnobFillColor() const { return GetColor(KnobFill); }
    void SetKnobFillColor(TVZGPColor value) { SetColor(KnobFill, value); }
    /// Outline of the knob; 0x00000000: none. Default 0xFF9C9C9C.
    TVZGPColor GetKnobStrokeColor() const { return GetColor(KnobStroke); }
    void SetKnobStrokeColor(TVZGPColor value) { SetColor(KnobStroke, value); }

    std::span<const TProp> GetPropTable() const override;

    // Steps.

    void DoInitializeGauge() override;
    void DoUpdateLight() override;
    /// Turns the hands to Time about the knob's centre and invalidates. A hand that the artwork lacks is
    /// passed over; without a knob the hands turn about the point 0, 0 of the artwork.
    virtual void UpdateTime();

protected:
    void Construct() override;
    const TInstrumentSetup& GetSetup() const override;

private:
    /// The rows of the colours, in their order.
    enum TColorIndex : std::uint8_t {
        Frame,
        Backface,
        SecondHandFill,
        SecondHandStroke,
        MinuteHandFill,
        MinuteHandStroke,
        HourHandFill,
        HourHandStroke,
        LabelsFill,
        LabelsStroke,
        KnobFill,
        KnobStroke,
    };

    /// By degrees clockwise from how the hand is drawn.
    void TurnHand(std::string_view id, double angleDeg);

    TDateTime FTime;
};

template <> struct EnumNames<TVZClock::TPart> {
    static constexpr std::string_view Name = "TVZClock.TPart";
    static constexpr std::string_view SetName = "TVZClock.TParts";
    static constexpr std::string_view Members[] = {
        "cpFrame",      "cpFrameDecoration", "cpBackface", "cpDecoration", "cpLabels", "cpHourHand",
        "cpMinuteHand", "cpSecondHand",      "cpKnob",     "cpShadows",    "cpGlass",
    };
};

} // namespace Vz
