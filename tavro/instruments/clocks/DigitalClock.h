#pragma once

#include "tavro/instruments/Instrument.h"
#include "tavro/runtime/DateTime.h"
#include "tavro/runtime/Set.h"

namespace Vz {

class TSVGGroup;

/// A digital clock: hours and minutes in four digits of seven segments, and AM or PM, behind glass. It shows
/// the time of day of Time in twelve hours and leaves the date and the seconds aside.
///
/// It has no timer, and shows the digits that the artwork draws, twelve o'clock, until Time changes. Colours
/// are the artwork's own until they are set.
class TVZDigitalClock : public TCreatable<TVZDigitalClock, TVZSVGCustomInstrument> {
public:
    static constexpr std::string_view TypeName = "TVZDigitalClock";
    using TCreatable::TCreatable;

    enum class TPart : std::uint8_t {
        dpFrame,
        dpBackface,
        dpDecoration,
        dpLabels,
        dpTimeOfDay,
        dpGlass,
    };
    using TParts = TSet<TPart>;
    static constexpr TParts AllParts = TParts::UpTo(TPart::dpGlass);
    /// A value for SetDigit that lights no segment.
    static constexpr std::uint8_t BlankDigit = 10;

    /// The parts that are shown. Default all six. A change runs UpdateParts. dpLabels is the digits with
    /// their colon, dpTimeOfDay AM and PM. The glass is also shown and hidden by Design and EnableGradients;
    /// what was set last decides.
    TParts GetParts() const { return TParts::FromMask(GetPartsMask()); }
    void SetParts(TParts value) { SetPartsMask(value.GetMask()); }
    /// What the clock shows, in days since 1899-12-30; seconds do not count. Default 0, midnight. What is no
    /// date and time of the years 1 to 9999 is ignored. A change writes the digits and raises OnChange.
    TDateTime GetTime() const { return FTime; }
    void SetTime(TDateTime value);
    /// True while PM is shown, false while AM is: of the last Time that was written, or as it was set. Not
    /// published. Default false. A change is seen with the next painting; it asks for none.
    bool GetIsPM() const { return FIsPM; }
    void SetIsPM(bool value);

    // Colours, 0xAARRGGBB; any value. A fresh one has the artwork's, which are the defaults named here.

    /// Of the frame; while gradients are on, its light is LightColor. Default 0xFF042B00.
    TVZGPColor GetFrameColor() const { return GetColor(Frame); }
    void SetFrameColor(TVZGPColor value) { SetColor(Frame, value); }
    /// Of the display behind the digits; 0x00000000: none. Default 0xFF010000.
    TVZGPColor GetBackfaceColor() const { return GetColor(Backface); }
    void SetBackfaceColor(TVZGPColor value) { SetColor(Backface, value); }
    /// Of the lit segments; 0x00000000: none. While gradients are on, their glow and AM and PM take it, too.
    /// Default 0xFF06FF06.
    TVZGPColor GetLabelsFillColor() const { return GetColor(LabelsFill); }
    void SetLabelsFillColor(TVZGPColor value) { SetColor(LabelsFill, value); }
    /// Outline of the lit segments; 0x00000000: none. Default 0xFF007B00.
    TVZGPColor GetLabelsStrokeColor() const { return GetColor(LabelsStroke); }
    void SetLabelsStrokeColor(TVZGPColor value) { SetColor(LabelsStroke, value); }

    std::span<const TProp> GetPropTable() const override;

    // Steps.

    /// Also shows AM and not PM, whatever the artwork does.
    void LoadSVGProperties() override;
    /// Lights the segments of a digit, the group's children: bottom left, bottom right, top left, top right,
    /// top, middle, bottom. 0 to 9; any other value is a blank. Children beyond the seventh stay as they are.
    void SetDigit(TSVGGroup& group, std::uint8_t digit);
    /// Writes Time into the digits and invalidates. The hour has no leading zero; 12:00 to 12:59 is AM, and
    /// PM begins at 13:00. A digit that the artwork lacks is passed over.
    virtual void UpdateTime();

protected:
    const TInstrumentSetup& GetSetup() const override;
    /// Another artwork shows the Time that was set.
    void ReplaceContent(const std::function<void()>& load) override;

private:
    /// The rows of the colours, in their order.
    enum TColorIndex : std::uint8_t { Frame, Backface, LabelsFill, LabelsStroke };

    void WriteDigit(std::string_view id, int digit);

    TDateTime FTime;
    bool FIsPM = false;
};

template <> struct EnumNames<TVZDigitalClock::TPart> {
    static constexpr std::string_view Name = "TVZDigitalClock.TPart";
    static constexpr std::string_view SetName = "TVZDigitalClock.TParts";
    static constexpr std::string_view Members[] = {
        "dpFrame", "dpBackface", "dpDecoration", "dpLabels", "dpTimeOfDay", "dpGlass",
    };
};

} // namespace Vz
