#include "tavro/instruments/clocks/DigitalClock.h"

#include "tavro/instruments/Editing.h"
#include "tavro/instruments/Publish.h"
#include "tavro/svg/model/Containers.h"

#include <algorithm>
#include <array>

namespace Vz {

namespace {

using namespace Rows;
using TPart = TVZDigitalClock::TPart;

/// The digits that light each segment, as bits: bit 0 is the digit 0.
constexpr std::uint16_t SegmentDigits[] = {
    0x145, // bottom left: 0 2 6 8
    0x3FB, // bottom right: all but 2
    0x371, // top left: 0 4 5 6 8 9
    0x39F, // top right: 0 1 2 3 4 7 8 9
    0x3ED, // top: 0 2 3 5 6 7 8 9
    0x37C, // middle: 2 3 4 5 6 8 9
    0x36D, // bottom: 0 2 3 5 6 8 9
};

constexpr TColorRow Colors[] = {
    {"FrameColor",
     0xFF042B00,
     FirstStopOf("linearGradientFrame"),
     {Stop("linearGradientFrame", 0), Flat("Frame")}},
    {"BackfaceColor", 0xFF010000, FillOf("Backface"), {Fill("Backface")}},
    {"LabelsFillColor", 0xFF06FF06, FillOf("digits"), {Fill("digits"), Stop("linearGradientBackface", 1)}},
    {"LabelsStrokeColor", 0xFF007B00, StrokeOf("digits"), {Stroke("digits")}},
};

constexpr TPartRow PartElements[] = {
    {TPart::dpDecoration, "Decoration"},
    {TPart::dpFrame, "Frame"},
    {TPart::dpBackface, "Backface"},
    {TPart::dpLabels, "digits"},
    {TPart::dpTimeOfDay, "AMPM"},
    {TPart::dpGlass, "Glass"}, // also governed by design and gradients: whichever ran last wins. Kept.
};

constexpr std::string_view DetailElements[] = {"Glass", "BackfaceHighlight"};

constexpr TGradientRow Gradients[] = {
    Switch("Frame", "GradientFrame", "FrameColor"),
    Switch("BackfaceHighlight", "GradientBackface", "BackfaceColor"),
    ShownInDetail("Glass"),
};

constexpr TColorEdit LightEdits[] = {
    Stop("linearGradientFrame", 1, Light),
    EveryStop("linearGradientGlassTop", Light),
    EveryStop("linearGradientGlassBottom", Light),
};

using K = TArtworkKind;
constexpr TArtworkRow Structure[] = {
    {"Frame", K::Path},
    {"Backface", K::Path},
    {"BackfaceHighlight", K::Path},
    {"digits", K::Group},
    {"d1", K::Group, "digits"},
    {"d2", K::Group, "digits"},
    {"d3", K::Group, "digits"},
    {"d4", K::Group, "digits"},
    {"pointTop", K::Path, "digits"},
    {"pointBottom", K::Path, "digits"},
    {"AMPM", K::Group},
    {"AM", K::Text, "AMPM"},
    {"PM", K::Text, "AMPM"},
    {"Glass", K::Group},
};

constexpr TInstrumentSetup Setup{
    .Artwork = "ClockDigitalSVG",
    .ActiveElement = "digits",
    .DecorationFill = 0xFF07FF07,
    .Height = 75,
    .Parts = TVZDigitalClock::AllParts.GetMask(),
    .Colors = Colors,
    .PartElements = PartElements,
    .DetailElements = DetailElements,
    .Gradients = Gradients,
    .LightEdits = LightEdits,
    .Structure = Structure,
};

} // namespace

std::span<const TProp> TVZDigitalClock::GetPropTable() const {
    using T = TVZDigitalClock;
    static constexpr auto Rows = Publish(
        std::array{
            Prop<&T::GetParts, &T::SetParts>("Parts", AllParts),
            Main(Prop<&T::GetTime, &T::SetTime>("Time", TDateTime{}), TQuantity::TimeOfDay),
        },
        ColorProps<Setup>(),
        Inherited<Setup>({"Decoration", "DecorationPath", "DecorationFillColor", "DecorationStrokeColor",
                          "Design", "EnableGradients", "LightColor", "OnChange", "Buffered", "Stretch",
                          "Quality", "Opacity", "Transform", "OnDrawing", "OnDrawn"}));
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

const TInstrumentSetup& TVZDigitalClock::GetSetup() const { return Setup; }

void TVZDigitalClock::LoadSVGProperties() {
    TCreatable::LoadSVGProperties();
    SetIsPM(true); // one of the two is a change, and shows and hides both
    SetIsPM(false);
}

void TVZDigitalClock::ReplaceContent(const std::function<void()>& load) {
    TCreatable::ReplaceContent(load);
    if (FTime.Days != 0) UpdateTime();
}

// Time.

void TVZDigitalClock::SetTime(TDateTime value) {
    if (value.Days == FTime.Days || !IsValidDateTime(value)) return;
    FTime = value;
    UpdateTime();
    DoOnChange();
}

void TVZDigitalClock::UpdateTime() {
    const TTimeOfDay time = DecodeTime(FTime);
    const int hour = time.Hour % 12 == 0 ? 12 : time.Hour % 12;
    EditDocument([&] {
        WriteDigit("d4", time.Minute % 10);
        WriteDigit("d3", time.Minute / 10);
        SetIsPM(time.Hour > 12); // noon counts as morning. Kept.
        WriteDigit("d1", hour < 10 ? BlankDigit : 1);
        WriteDigit("d2", hour % 10);
    });
    Invalidate();
}

void TVZDigitalClock::WriteDigit(std::string_view id, int digit) {
    if (auto* const group = Find<TSVGGroup>(id)) SetDigit(*group, static_cast<std::uint8_t>(digit));
}

void TVZDigitalClock::SetDigit(TSVGGroup& group, std::uint8_t digit) {
    const std::size_t count = std::min(group.GetChildCount(), std::size(SegmentDigits));
    EditDocument([&] {
        for (std::size_t i = 0; i < count; ++i)
            if (auto* const segment = group.GetChild(i).AsGraphic())
                segment->SetVisible(digit <= 15 && (SegmentDigits[i] >> digit & 1) != 0);
    });
}

void TVZDigitalClock::SetIsPM(bool value) {
    if (!Store(FIsPM, value)) return;
    EditDocument([&] {
        ShowElement("AM", !value);
        ShowElement("PM", value);
    });
    MarkBuffersStale();
}

} // namespace Vz
