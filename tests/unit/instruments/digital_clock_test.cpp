#include "ClockProbe.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/FormFile.h"
#include "tavro/svg/model/Containers.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace Vz::Test {
namespace {

using TPart = TVZDigitalClock::TPart;
using TParts = TVZDigitalClock::TParts;

/// The lit segments of a digit's group as the letters of its children, bottom left first.
std::string Segments(const TSVGElement& group) {
    std::string lit;
    for (std::size_t i = 0; i < group.GetChildCount(); ++i)
        if (group.GetChild(i).AsGraphic()->GetVisible()) lit += "abcdefghi"[i];
    return lit;
}

/// The lit segments of 0 to 9, in the letters of Segments: a bottom left, b bottom right, c top left, d top
/// right, e top, f middle, g bottom.
constexpr std::string_view Digits[] = {"abcdeg", "bd",     "adefg", "bdefg",   "bcdf",
                                       "bcefg",  "abcefg", "bde",   "abcdefg", "bcdefg"};

struct TDisplay : TClockProbe<TVZDigitalClock> {
    char Digit(std::string_view id) {
        const std::string lit = Segments(Get(id));
        if (lit.empty()) return ' ';
        for (std::size_t i = 0; i < std::size(Digits); ++i)
            if (Digits[i] == lit) return static_cast<char>('0' + i);
        return '?';
    }
    /// What the display shows: "12:30 AM".
    std::string Shown() {
        return std::string{Digit("d1"), Digit("d2"), ':', Digit("d3"), Digit("d4")} +
               (IsShown("AM") ? " AM" : "") + (IsShown("PM") ? " PM" : "");
    }
};

// Time

TEST(DigitalClock, FreshOneShowsTheDigitsOfTheArtwork) {
    TDisplay display;
    EXPECT_EQ(display->GetTime().Days, 0);
    EXPECT_FALSE(display->GetIsPM());
    EXPECT_EQ(display.Shown(), "12:00 AM");
    EXPECT_EQ(display->GetParts().GetMask(), 63u);
    EXPECT_EQ(display->GetWidth(), 200);
    EXPECT_EQ(display->GetHeight(), 75);
    EXPECT_EQ(display->GetDecoration(), TDecoration::dcNone);
    EXPECT_EQ(display->GetDecorationElementId(), "Decoration");
    EXPECT_EQ(display->GetActiveSVGElement(), &display.Get("digits"));
    EXPECT_EQ(display->GetSVGResourceName(), "ClockDigitalSVG");
    // Neither initializing nor the time that it holds writes them.
    display->SetDigit(display.Get<TSVGGroup>("d4"), 7);
    display->InitializeGauge();
    display->SetTime(0);
    EXPECT_EQ(display.Shown(), "12:07 AM");
    display->UpdateTime();
    EXPECT_EQ(display.Shown(), "12:00 AM");
}

TEST(DigitalClock, TimesInTwelveHours) {
    const struct {
        int Hour, Minute;
        const char* Shown;
    } rows[] = {
        {0, 5, "12:05 AM"},   {12, 30, "12:30 AM"}, {13, 0, " 1:00 PM"},  {23, 59, "11:59 PM"},
        {10, 7, "10:07 AM"},  {0, 0, "12:00 AM"},   {1, 23, " 1:23 AM"},  {9, 46, " 9:46 AM"},
        {11, 58, "11:58 AM"}, {12, 59, "12:59 AM"}, {22, 10, "10:10 PM"}, {18, 35, " 6:35 PM"},
        {20, 2, " 8:02 PM"},  {7, 19, " 7:19 AM"},  {16, 4, " 4:04 PM"},  {12, 0, "12:00 AM"},
    };
    TDisplay display;
    display->SetTime(1.5);
    for (const auto& row : rows)
        for (const int date : {0, 45000, -3}) {
            const TDateTime time = EncodeTime(row.Hour, row.Minute, 59, 999).Days;
            TWatch watch(*display);
            display->SetTime(date < 0 ? date - time.Days : date + time.Days);
            EXPECT_EQ(display.Shown(), row.Shown) << date;
            EXPECT_EQ(display->GetIsPM(), row.Hour > 12);
            EXPECT_EQ(watch.Changes, 1);
            EXPECT_EQ(watch.Invalidates, 1);
            EXPECT_LE(watch.Notices, 1); // none where no segment changes
        }
}

TEST(DigitalClock, SameTimeAndNoTimeDoNothing) {
    TDisplay display;
    display->SetTime(EncodeTime(15, 30, 0, 0));
    constexpr double infinity = std::numeric_limits<double>::infinity();
    TWatch watch(*display);
    for (const double days : {EncodeTime(15, 30, 0, 0).Days, std::numeric_limits<double>::quiet_NaN(),
                              infinity, -infinity, 2958466.0, -693594.0, 1e300})
        display->SetTime(days);
    EXPECT_TRUE(watch.IsQuiet());
    EXPECT_EQ(display->GetTime().Days, EncodeTime(15, 30, 0, 0).Days);
    EXPECT_EQ(display.Shown(), " 3:30 PM");
}

TEST(DigitalClock, SegmentsOfEveryDigit) {
    TDisplay display;
    auto& group = display.Get<TSVGGroup>("d3");
    ASSERT_EQ(group.GetChildCount(), 7u);
    for (int digit = 0; digit < 256; ++digit) {
        display->SetDigit(group, static_cast<std::uint8_t>(digit));
        EXPECT_EQ(Segments(group), digit < 10 ? Digits[digit] : "") << digit;
    }
    EXPECT_EQ(TVZDigitalClock::BlankDigit, 10);
}

/// The children stand where their order says.
TEST(DigitalClock, SegmentsStandInTheirOrder) {
    TDisplay display;
    for (const char* id : {"d1", "d2", "d3", "d4"}) {
        SCOPED_TRACE(id);
        auto& group = display.Get<TSVGGroup>(id);
        display->SetDigit(group, 8);
        std::vector<TPointF> at;
        for (std::size_t i = 0; i < 7; ++i)
            at.push_back(VZCenterPoint(group.GetChild(i).AsGraphic()->GetBounds()));
        const TPointF middle = at[5];
        for (const int i : {0, 2})
            EXPECT_LT(at[i].X, middle.X) << i;
        for (const int i : {1, 3})
            EXPECT_GT(at[i].X, middle.X) << i;
        for (const int i : {2, 3, 4})
            EXPECT_LT(at[i].Y, middle.Y) << i;
        for (const int i : {0, 1, 6})
            EXPECT_GT(at[i].Y, middle.Y) << i;
        EXPECT_LT(at[4].Y, at[2].Y);
        EXPECT_GT(at[6].Y, at[0].Y);
    }
}

TEST(DigitalClock, GroupsOfMoreOrFewerSegments) {
    TDisplay display;
    auto& group = display.Get<TSVGGroup>("d4");
    auto& eighth = group.Add<TSVGPath>();
    display->SetTime(EncodeTime(8, 11, 0, 0));
    EXPECT_TRUE(eighth.GetVisible());
    while (group.GetChildCount() > 2)
        group.GetChild(group.GetChildCount() - 1).Remove();
    display->SetTime(EncodeTime(8, 12, 0, 0)); // bottom left, and what is gone
    EXPECT_EQ(Segments(group), "a");
    group.Remove();
    display->SetTime(EncodeTime(9, 33, 0, 0));
    EXPECT_EQ(display.Digit("d2"), '9');
}

TEST(DigitalClock, HalfOfTheDay) {
    TDisplay display;
    THeadlessHost host(*display);
    host.Paint();
    TWatch watch(*display);
    display->SetIsPM(false);
    EXPECT_TRUE(watch.IsQuiet());
    EXPECT_FALSE(display->AreBuffersStale());
    display->SetIsPM(true);
    EXPECT_TRUE(display->GetIsPM());
    EXPECT_FALSE(display.IsShown("AM"));
    EXPECT_TRUE(display.IsShown("PM"));
    EXPECT_TRUE(display->AreBuffersStale());
    EXPECT_EQ(watch.Invalidates, 0); // what changes the time asks for the painting
    EXPECT_EQ(watch.Changes, 0);
    display->UpdateTime();
    EXPECT_FALSE(display->GetIsPM());
    EXPECT_EQ(display.Shown(), "12:00 AM");
}

TEST(DigitalClock, HalfOfTheDayThatAnArtworkShowsDoesNotCount) {
    TDisplay display;
    const char* const svg =
        "<svg xmlns='http://www.w3.org/2000/svg'><g id='AMPM'><text id='AM' display='none'>AM</text>"
        "<text id='PM'>PM</text></g></svg>";
    for (const bool isPM : {false, true}) {
        display->SetIsPM(isPM);
        std::istringstream stream(svg);
        display->LoadFromStream(stream);
        EXPECT_FALSE(display->GetIsPM());
        EXPECT_TRUE(display.IsShown("AM"));
        EXPECT_FALSE(display.IsShown("PM"));
    }
}

// Parts, design, gradients

TEST(DigitalClock, EachPartShowsItsElement) {
    const std::pair<TPart, const char*> rows[] = {
        {TPart::dpFrame, "Frame"},   {TPart::dpBackface, "Backface"}, {TPart::dpDecoration, "Decoration"},
        {TPart::dpLabels, "digits"}, {TPart::dpTimeOfDay, "AMPM"},    {TPart::dpGlass, "Glass"},
    };
    TDisplay display;
    for (const auto& [part, id] : rows) {
        display->SetParts(TParts{part});
        for (const auto& [other, otherId] : rows)
            EXPECT_EQ(display.IsShown(otherId), part == other) << id << ' ' << otherId;
    }
    display->SetParts({});
    for (const auto& [part, id] : rows)
        EXPECT_FALSE(display.IsShown(id)) << id;
    TWatch watch(*display);
    display->SetParts({});
    EXPECT_TRUE(watch.IsQuiet());
}

TEST(DigitalClock, GlassIsShownByWhatRanLast) {
    TDisplay display;
    const auto glass = [&] { return display.IsShown("Glass"); };
    const auto glow = [&] { return display.IsShown("BackfaceHighlight"); };
    EXPECT_TRUE(glass() && glow());
    display->SetDesign(TSVGDesign::sdSimple);
    EXPECT_TRUE(!glass() && !glow());
    display->SetParts(TParts{TPart::dpGlass});
    EXPECT_TRUE(glass() && !glow());
    display->InitializeGauge(); // parts, then design
    EXPECT_FALSE(glass());
    display->SetEnableGradients(false);
    EXPECT_FALSE(glass());
    display->SetDesign(TSVGDesign::sdDetailed);
    EXPECT_TRUE(glass() && glow()); // the design does not ask for gradients
    display->SetEnableGradients(true);
    EXPECT_TRUE(glass());
    display->SetEnableGradients(false);
    EXPECT_TRUE(!glass() && glow());
    display->SetDesign(TSVGDesign::sdSimple);
    display->SetEnableGradients(true);
    EXPECT_FALSE(glass());
}

TEST(DigitalClock, GradientsAreSwitched) {
    TDisplay display;
    display->SetFrameColor(0xFF203040);
    display->SetBackfaceColor(0xFF405060);
    display->SetEnableGradients(false);
    EXPECT_EQ(display.FillKind("Frame"), TVZGPBrushKind::Solid);
    EXPECT_EQ(display.Fill("Frame"), 0xFF203040u);
    EXPECT_EQ(display.FillKind("BackfaceHighlight"), TVZGPBrushKind::Solid);
    EXPECT_EQ(display.Fill("BackfaceHighlight"), 0xFF405060u);
    display->SetFrameColor(0xFF807060); // flat now; the gradient waits
    EXPECT_EQ(display.Fill("Frame"), 0xFF807060u);
    EXPECT_EQ(display.Stops("linearGradientFrame")[0], 0xFF203040u);
    display->SetEnableGradients(true);
    EXPECT_EQ(display.Get("Frame").GetBrush().GetURI(), "GradientFrame");
    EXPECT_EQ(display.Get("BackfaceHighlight").GetBrush().GetURI(), "GradientBackface");
    EXPECT_EQ(display.Stops("linearGradientFrame")[0], 0xFF203040u);
}

// Colours and light

TEST(DigitalClock, ColorsAreTheArtworks) {
    TDisplay display;
    EXPECT_EQ(display->GetFrameColor(), display.Stops("linearGradientFrame")[0]);
    EXPECT_EQ(display->GetFrameColor(), 0xFF042B00u);
    EXPECT_EQ(display->GetBackfaceColor(), display.Fill("Backface"));
    EXPECT_EQ(display->GetBackfaceColor(), 0xFF010000u);
    EXPECT_EQ(display->GetLabelsFillColor(), display.Fill("digits"));
    EXPECT_EQ(display->GetLabelsFillColor(), 0xFF06FF06u);
    EXPECT_EQ(display->GetLabelsStrokeColor(), display.Stroke("digits"));
    EXPECT_EQ(display->GetLabelsStrokeColor(), 0xFF007B00u);
    EXPECT_EQ(display->GetDecorationFillColor(), 0xFF07FF07u);
    EXPECT_EQ(display->GetDecorationStrokeColor(), 0xFF000000u);
}

TEST(DigitalClock, ColorsGoToTheirElements) {
    using TColorSetter = void (TVZDigitalClock::*)(TVZGPColor);
    TDisplay display;
    const auto set = [&](TColorSetter setter, TVZGPColor color) {
        TWatch watch(*display);
        (*display.*setter)(color);
        EXPECT_EQ(watch.Invalidates, 1);
        EXPECT_EQ(watch.Notices, 1);
        EXPECT_EQ(watch.Changes, 0);
        EXPECT_TRUE(display->AreBuffersStale());
        TWatch again(*display);
        (*display.*setter)(color);
        EXPECT_TRUE(again.IsQuiet());
    };
    set(&TVZDigitalClock::SetFrameColor, 0xC0112233);
    EXPECT_EQ(display.Stops("linearGradientFrame"), (TColors{0xC0112233, 0xFFFFFFFF}));
    set(&TVZDigitalClock::SetBackfaceColor, 0xC0445566);
    EXPECT_EQ(display.Fill("Backface"), 0xC0445566u);
    EXPECT_EQ(display.Stops("linearGradientBackface"), (TColors{0x00000000, 0xFF06FF06}));
    set(&TVZDigitalClock::SetLabelsFillColor, 0xC0778899);
    EXPECT_EQ(display.Fill("digits"), 0xC0778899u);
    EXPECT_EQ(display.Stops("linearGradientBackface"), (TColors{0x00000000, 0xC0778899}));
    set(&TVZDigitalClock::SetLabelsStrokeColor, 0xC0AABBCC);
    EXPECT_EQ(display.Stroke("digits"), 0xC0AABBCCu);
    // Each may be switched off, and on again.
    set(&TVZDigitalClock::SetLabelsStrokeColor, 0);
    EXPECT_EQ(display.StrokeKind("digits"), TVZGPBrushKind::None);
    set(&TVZDigitalClock::SetBackfaceColor, 0);
    EXPECT_EQ(display.FillKind("Backface"), TVZGPBrushKind::None);
    set(&TVZDigitalClock::SetBackfaceColor, 0xFF010203);
    EXPECT_EQ(display.FillKind("Backface"), TVZGPBrushKind::Solid);
}

TEST(DigitalClock, GlowStaysWhileGradientsAreOff) {
    TDisplay display;
    display->SetEnableGradients(false);
    display->SetLabelsFillColor(0xFFFF8000);
    EXPECT_EQ(display.Fill("digits"), 0xFFFF8000u);
    EXPECT_EQ(display.Stops("linearGradientBackface")[1], 0xFF06FF06u);
    display->SetEnableGradients(true);
    EXPECT_EQ(display.Stops("linearGradientBackface")[1], 0xFF06FF06u);
}

TEST(DigitalClock, LightTintsFrameAndGlass) {
    TDisplay display;
    TWatch watch(*display);
    display->SetLightColor(0x80FFC041);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_TRUE(display->AreBuffersStale());
    EXPECT_EQ(display.Stops("linearGradientFrame"), (TColors{0xFF042B00, 0xFFFFC041}));
    EXPECT_EQ(display.Stops("linearGradientGlassTop"), (TColors{0xFFFFC041, 0x1AFFC041}));
    EXPECT_EQ(display.Stops("linearGradientGlassBottom"), (TColors{0xFFFFC041, 0x00FFC041}));
}

// Streams and other artworks

TEST(DigitalClock, StoresWhatDiffers) {
    RegisterComponentClasses();
    TDisplay display;
    EXPECT_EQ(WriteForm(*display), "object TVZDigitalClock\nend\n");
    display->SetTime(EncodeTime(22, 10, 0, 0));
    display->SetLabelsFillColor(0xFFFF2020);
    display->SetParts(TVZDigitalClock::AllParts - TParts{TPart::dpTimeOfDay});
    const std::string form = WriteForm(*display);
    EXPECT_EQ(form, "object TVZDigitalClock\n"
                    "  Parts = [dpFrame, dpBackface, dpDecoration, dpLabels, dpGlass]\n"
                    "  Time = 22:10:00\n"
                    "  LabelsFillColor = 0xFFFF2020\n"
                    "end\n");
    const auto copy = ReadForm(form);
    auto& read = dynamic_cast<TVZDigitalClock&>(*copy);
    EXPECT_TRUE(read.GetIsPM());
    EXPECT_EQ(read.GetDocument().WriteText(), display.Text());
}

TEST(DigitalClock, KeepsItsValuesInAnotherArtwork) {
    TDisplay display;
    display->SetTime(EncodeTime(22, 10, 0, 0));
    display->SetFrameColor(0xFFA02020);
    display->SetLightColor(0xFFFFC080);
    const auto picture = display.Paint();
    display->LoadSVGResource("ClockDigitalSVG");
    EXPECT_EQ(display->GetActiveSVGElement(), &display.Get("digits"));
    EXPECT_EQ(display.Shown(), "10:10 PM");
    EXPECT_EQ(display.Paint(), picture);
    std::istringstream bare("<svg xmlns='http://www.w3.org/2000/svg'/>");
    display->LoadFromStream(bare); // every element is missing
    display->SetTime(0);
    display->SetIsPM(true);
    display->SetFrameColor(1);
    display->SetLabelsFillColor(1);
    display->SetEnableGradients(false);
    display->SetDesign(TSVGDesign::sdSimple);
    display->SetLightColor(0xFF102030);
    display->SetParts({});
    EXPECT_NO_THROW(display.Paint());
}

TEST(DigitalClock, DigitThatIsNoGroupIsAFaultOfTheArtwork) {
    TDisplay display;
    std::istringstream wrong("<svg xmlns='http://www.w3.org/2000/svg'><path id='d4' d='M0 0h9'/></svg>");
    display->LoadFromStream(wrong);
    EXPECT_THROW(display->SetTime(0.25), EInvalidCast);
    EXPECT_NO_THROW(display.Paint());
}

// Frames

TEST(DigitalClock, AnotherMinuteIsCheap) {
    TDisplay display;
    THeadlessHost host(*display);
    host.Paint();
    const auto tick = [&] {
        for (int i = 0; i < 12 * 60; i += 7) {
            display->SetTime(EncodeTime(i / 60, i % 60, 0, 0));
            host.PaintStale();
        }
    };
    for (int i = 0; i < 2; ++i) // everything grows to its size
        tick();
    const std::uint64_t epoch = display->GetDocument().GetEpoch();
    const std::size_t before = CountAllocations();
    tick();
    EXPECT_EQ(CountAllocations(), before);
    EXPECT_EQ(display->GetDocument().GetEpoch(), epoch);
    EXPECT_FALSE(display->AreBuffersStale()); // AM stays
}

} // namespace
} // namespace Vz::Test
