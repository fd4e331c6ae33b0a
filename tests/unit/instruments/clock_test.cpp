#include "ClockProbe.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/FormFile.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace Vz::Test {
namespace {

using TPart = TVZClock::TPart;
using TParts = TVZClock::TParts;
using TWall = TClockProbe<TVZClock>;
using TColorSetter = void (TVZClock::*)(TVZGPColor);

constexpr double Near = 1e-3;

/// How far apart two directions are, in degrees.
double Between(double one, double other) { return std::abs(std::remainder(one - other, 360)); }

void ExpectTurned(TWall& wall, double hour, double minute, double second) {
    EXPECT_LT(Between(wall.Turn("HourHand"), hour), Near) << wall.Turn("HourHand");
    EXPECT_LT(Between(wall.Turn("MinuteHand"), minute), Near) << wall.Turn("MinuteHand");
    EXPECT_LT(Between(wall.Turn("SecondHand"), second), Near) << wall.Turn("SecondHand");
}

// Time

TEST(Clock, FreshOne) {
    const TDateTime before = Now();
    TWall wall;
    EXPECT_GE(wall->GetTime().Days, before.Days);
    EXPECT_LE(wall->GetTime().Days, Now().Days);
    const TTimeOfDay time = DecodeTime(wall->GetTime());
    ExpectTurned(wall, (time.Hour % 12 + time.Minute / 60.0) * 30 - 225,
                 time.Minute * 6 + time.Second * 0.1 - 105, time.Second * 6 + 30);
    EXPECT_EQ(wall->GetParts().GetMask(), 2047u);
    EXPECT_EQ(wall->GetWidth(), 200);
    EXPECT_EQ(wall->GetHeight(), 200);
    EXPECT_EQ(wall->GetDecoration(), TDecoration::dcNone);
    EXPECT_EQ(wall->GetDecorationElementId(), "Decoration");
    EXPECT_EQ(wall->GetActiveSVGElement(), &wall.Get("ClockHands"));
    EXPECT_EQ(wall->GetSVGResourceName(), "ClockLorvanSVG");
    EXPECT_FALSE(wall->IsUpdating());
}

TEST(Clock, HandsOfATime) {
    const struct {
        TDateTime Time;
        double Hour, Minute, Second;
    } rows[] = {
        {0, -225, -105, 30},
        {EncodeTime(15, 30, 45, 0), -120, 79.5, 300},
        {EncodeTime(12, 0, 0, 0), -225, -105, 30},
        {EncodeTime(0, 0, 59, 0), -225, -99.1, 384}, // seconds do not move the hours
        {EncodeTime(23, 59, 59, 0), (11 + 59 / 60.0) * 30 - 225, (59 + 59 / 60.0) * 6 - 105, 384},
        {EncodeTime(15, 30, 45, 999), -120, 79.5, 300}, // nor milliseconds anything
        {EncodeDate(2024, 2, 29) + EncodeTime(18, 20, 30, 0).Days, -35, 18, 210},
        {-1.25, -45, -105, 30}, // 6 o'clock on 1899-12-29
    };
    TWall wall;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Time.Days);
        TWatch watch(*wall);
        wall->SetTime(row.Time);
        EXPECT_EQ(wall->GetTime().Days, row.Time.Days);
        EXPECT_EQ(watch.Changes, 1);
        EXPECT_EQ(watch.Invalidates, 1);
        EXPECT_EQ(watch.Notices, 1);
        ExpectTurned(wall, row.Hour, row.Minute, row.Second);
    }
}

/// The hands as they are drawn and the resting directions belong together: at noon all tips are above.
TEST(Clock, HandsPointToTwelveAtNoon) {
    TWall wall;
    wall->SetTime(0.5);
    const std::pair<const char*, double> hands[] = {{"Hour", 110}, {"Minute", 59}, {"Second", 50}};
    for (const auto& [name, top] : hands)
        for (const char* what : {"HandNeedle", "HandShadow"}) {
            SCOPED_TRACE(std::string(name) + what);
            const TAffine group = wall.Get(std::string(name) + "Hand").GetTransform();
            const TAffine own = wall.Get(std::string(name) + what).GetTransform();
            const TPointD tip = group(own(TPointD{200, top}));
            EXPECT_NEAR(tip.X, 200, Near);
            EXPECT_NEAR(tip.Y, top, Near);
        }
}

TEST(Clock, HandsTurnAboutTheKnob) {
    TWall wall;
    EXPECT_EQ(VZCenterPoint(wall.Get("Knob").GetBounds()), (TPointF{200, 200}));
    wall.Get("HourHand").SetMatrix(CreateTranslateVZMatrix(40, 40)); // replaced, not added to
    wall->SetTime(EncodeTime(4, 44, 44, 0));
    for (const char* id : {"HourHand", "MinuteHand", "SecondHand"}) {
        const TPointD still = wall.Get(id).GetTransform()(TPointD{200, 200});
        EXPECT_NEAR(still.X, 200, Near) << id;
        EXPECT_NEAR(still.Y, 200, Near) << id;
    }
}

TEST(Clock, WithoutAKnobHandsTurnAboutTheCorner) {
    TWall wall;
    wall.Get("Knob").Remove();
    wall->SetTime(EncodeTime(15, 30, 45, 0));
    ExpectTurned(wall, -120, 79.5, 300);
    for (const char* id : {"HourHand", "MinuteHand", "SecondHand"}) {
        const TPointD still = wall.Get(id).GetTransform()(TPointD{0, 0});
        EXPECT_NEAR(still.X, 0, Near) << id;
        EXPECT_NEAR(still.Y, 0, Near) << id;
    }
}

TEST(Clock, AMissingHandIsPassedOver) {
    TWall wall;
    wall.Get("MinuteHand").Remove();
    TWatch watch(*wall);
    wall->SetTime(0);
    EXPECT_LT(Between(wall.Turn("HourHand"), -225), Near);
    EXPECT_LT(Between(wall.Turn("SecondHand"), 30), Near);
    EXPECT_EQ(watch.Changes, 1);
    EXPECT_EQ(watch.Invalidates, 1);
}

TEST(Clock, SameTimeAndNoTimeDoNothing) {
    TWall wall;
    wall->SetTime(EncodeTime(15, 30, 45, 0));
    constexpr double infinity = std::numeric_limits<double>::infinity();
    TWatch watch(*wall);
    for (const double days : {EncodeTime(15, 30, 45, 0).Days, std::numeric_limits<double>::quiet_NaN(),
                              infinity, -infinity, 2958466.0, -693594.0, 1e300})
        wall->SetTime(days);
    EXPECT_TRUE(watch.IsQuiet());
    EXPECT_EQ(wall->GetTime().Days, EncodeTime(15, 30, 45, 0).Days);
    ExpectTurned(wall, -120, 79.5, 300);
}

class TLoggedClock final : public TCreatable<TLoggedClock, TVZClock> {
public:
    static constexpr std::string_view TypeName = "TLoggedClock";
    using TCreatable::TCreatable;
    TLog Log;
    void UpdateDecoration() override { Note("UpdateDecoration"), TCreatable::UpdateDecoration(); }
    void DoUpdateParts() override { Note("DoUpdateParts"), TCreatable::DoUpdateParts(); }
    void DoUpdateDesign() override { Note("DoUpdateDesign"), TCreatable::DoUpdateDesign(); }
    void UpdateTime() override { Note("UpdateTime"), TCreatable::UpdateTime(); }

private:
    void Note(const char* what) { Log.push_back(what); }
};

TEST(Clock, InitializingEndsWithTheTime) {
    const auto clock = TLoggedClock::Create();
    const TLog steps{"UpdateDecoration", "DoUpdateParts", "DoUpdateDesign", "UpdateTime"};
    TLog fresh{"UpdateTime"}; // the time of its creation
    fresh.insert(fresh.end(), steps.begin(), steps.end());
    EXPECT_EQ(clock->Log, fresh);
    clock->Log.clear();
    clock->BeginUpdate();
    clock->InitializeGauge();
    EXPECT_EQ(clock->Log, TLog{});
    clock->EndUpdate();
    EXPECT_EQ(clock->Log, steps);
    clock->Log.clear();
    clock->SetTime(0);
    EXPECT_EQ(clock->Log, TLog{"UpdateTime"});
}

// Parts and design

TEST(Clock, EachPartShowsItsElements) {
    const std::pair<TPart, const char*> rows[] = {
        {TPart::cpFrame, "Frame"},
        {TPart::cpFrameDecoration, "FrameTwoTone"},
        {TPart::cpBackface, "Backface"},
        {TPart::cpDecoration, "Decoration"},
        {TPart::cpLabels, "Labels"},
        {TPart::cpHourHand, "HourHand"},
        {TPart::cpMinuteHand, "MinuteHand"},
        {TPart::cpSecondHand, "SecondHand"},
        {TPart::cpKnob, "Knob"},
        {TPart::cpShadows, "FrameShadow"},
        {TPart::cpShadows, "SecondHandShadow"},
        {TPart::cpShadows, "MinuteHandShadow"},
        {TPart::cpShadows, "HourHandShadow"},
        {TPart::cpGlass, "Glass"},
    };
    TWall wall;
    for (const auto& [part, id] : rows) {
        wall->SetParts(TParts{part});
        for (const auto& [other, otherId] : rows)
            EXPECT_EQ(wall.IsShown(otherId), part == other) << id << ' ' << otherId;
    }
    wall->SetParts({});
    for (const auto& [part, id] : rows)
        EXPECT_FALSE(wall.IsShown(id)) << id;
    wall->SetTime(EncodeTime(15, 30, 45, 0)); // hidden hands turn, and the hidden knob is their centre
    ExpectTurned(wall, -120, 79.5, 300);
    const TPointD still = wall.Get("HourHand").GetTransform()(TPointD{200, 200});
    EXPECT_NEAR(still.X, 200, Near);
    TWatch watch(*wall);
    wall->SetParts({});
    EXPECT_TRUE(watch.IsQuiet());
    wall->SetParts(TVZClock::AllParts);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_EQ(watch.Notices, 1);
    EXPECT_TRUE(wall->AreBuffersStale());
}

TEST(Clock, SimpleDesignHidesTheDetail) {
    const char* const details[] = {"FrameInnerBevel", "FrameOuterBevel", "Frame4to9", "Frame10to3", "Glass"};
    TWall wall;
    wall->SetDesign(TSVGDesign::sdSimple);
    for (const char* id : details)
        EXPECT_FALSE(wall.IsShown(id)) << id;
    EXPECT_TRUE(wall.IsShown("FrameTwoTone"));
    wall->SetParts(TParts{TPart::cpGlass}); // whichever ran last wins
    EXPECT_TRUE(wall.IsShown("Glass"));
    wall->InitializeGauge(); // parts, then design
    EXPECT_FALSE(wall.IsShown("Glass"));
    wall->SetDesign(TSVGDesign::sdDetailed);
    for (const char* id : details)
        EXPECT_TRUE(wall.IsShown(id)) << id;
}

// Colours

TEST(Clock, ColorsAreTheArtworks) {
    TWall wall;
    EXPECT_EQ(wall->GetFrameColor(), 0xFFF7F7F7u);
    EXPECT_EQ(wall->GetBackfaceColor(), 0xFF266080u);
    EXPECT_EQ(wall->GetSecondHandFillColor(), 0xFF3CA1F6u);
    EXPECT_EQ(wall->GetSecondHandStrokeColor(), 0xFF000000u);
    EXPECT_EQ(wall->GetMinuteHandFillColor(), 0xFFF5F5F5u);
    EXPECT_EQ(wall->GetMinuteHandStrokeColor(), 0xFF000000u);
    EXPECT_EQ(wall->GetHourHandFillColor(), 0xFFF5F5F5u);
    EXPECT_EQ(wall->GetHourHandStrokeColor(), 0xFF000000u);
    EXPECT_EQ(wall->GetLabelsFillColor(), 0xFFF5F5F5u);
    EXPECT_EQ(wall->GetLabelsStrokeColor(), 0xFF000000u);
    EXPECT_EQ(wall->GetKnobFillColor(), 0xFFF7F7F7u);
    EXPECT_EQ(wall->GetKnobStrokeColor(), 0xFF9C9C9Cu);
    EXPECT_EQ(wall->GetDecorationFillColor(), 0xFF87CEEBu);
    EXPECT_EQ(wall->GetDecorationStrokeColor(), 0xFF000000u);
}

TEST(Clock, ColorsAreReadFromTheirPlaces) {
    TWall wall;
    std::istringstream bare("<svg xmlns='http://www.w3.org/2000/svg'><defs>"
                            "<linearGradient id='radialGradientBackface'><stop stop-color='#010203'/>"
                            "<stop stop-color='#040506'/></linearGradient>"
                            "<linearGradient id='linearGradientDarkLabels'><stop stop-color='#070809'/>"
                            "</linearGradient></defs>"
                            "<path id='Labels10to3' stroke='#0a0b0c'/><path id='Labels4to9' stroke='#fff'/>"
                            "<path id='HourHandNeedle' stroke='#0d0e0f'/></svg>");
    wall->LoadFromStream(bare);
    EXPECT_EQ(wall->GetBackfaceColor(), 0xFF010203u);
    EXPECT_EQ(wall->GetLabelsFillColor(), 0xFF070809u);
    EXPECT_EQ(wall->GetLabelsStrokeColor(), 0xFF0A0B0Cu);
    EXPECT_EQ(wall->GetHourHandStrokeColor(), 0xFF0D0E0Fu);
    EXPECT_EQ(wall->GetFrameColor(), 0xFFF7F7F7u); // what is not there stays
}

struct TFillRow {
    TColorSetter Set;
    TVZGPColor Color;
    std::vector<std::pair<const char*, TColors>> Gradients;
    std::vector<const char*> Flat;
};
const TFillRow FillRows[] = {
    // 150, 50 and 250 times 0.27 end in a half, which goes to the even number.
    {&TVZClock::SetFrameColor,
     0xC09632FA,
     {{"linearGradientFrame10to3", {0xC09632FA, 0xC0842CDC}},
      {"radialGradientFrame4to9", {0xC05A1E96, 0xC0280E44}},
      {"linearGradientBevel", {0xC0331154, 0xFFFFFFFF}}},
     {"FrameTop"}},
    // The second gradient's first stop is half of white, 127, brighter.
    {&TVZClock::SetBackfaceColor,
     0xC00381C8,
     {{"radialGradientBackface", {0xC0024064, 0xC00381C8}},
      {"radialGradientGlassBottom", {0xC082FFFF, 0xC00381C8}}},
     {"BackfaceCircle"}},
    // 100 times 0.815 and 75, 25 times 0.38 end in a half.
    {&TVZClock::SetLabelsFillColor,
     0xC0644B19,
     {{"linearGradientLightLabels", {0xC0523D14, 0xC0644B19}},
      {"linearGradientDarkLabels", {0xC0644B19, 0xC0261C0A}}},
     {"Labels4to9", "Labels10to3"}},
    {&TVZClock::SetKnobFillColor, 0xC0FF0305, {{"radialGradientKnob", {0xC0FF0305, 0xC0800202}}}, {"Knob"}},
    {&TVZClock::SetHourHandFillColor,
     0xC0FF2827,
     {{"linearGradientHourHand", {0xC0FF2827, 0xC0D70000}}},
     {"HourHandNeedle"}},
    {&TVZClock::SetMinuteHandFillColor,
     0xC0292A00,
     {{"linearGradientMinuteHand", {0xC0292A00, 0xC0010200}}},
     {"MinuteHandNeedle"}},
    {&TVZClock::SetSecondHandFillColor,
     0xC0805040,
     {{"linearGradientSecondHand", {0xC0805040, 0xC0582818}}},
     {"SecondHandNeedle"}},
};

TEST(Clock, FillsWriteStops) {
    for (const TFillRow& row : FillRows) {
        SCOPED_TRACE(row.Gradients[0].first);
        TWall wall;
        (*wall.*row.Set)(0xFF123456); // stops are made of the new colour, never of what was there
        TWatch watch(*wall);
        (*wall.*row.Set)(row.Color);
        EXPECT_EQ(watch.Invalidates, 1);
        EXPECT_EQ(watch.Notices, 1);
        EXPECT_EQ(watch.Changes, 0);
        EXPECT_TRUE(wall->AreBuffersStale());
        for (const auto& [id, stops] : row.Gradients)
            EXPECT_EQ(wall.Stops(id), stops) << id;
        for (const char* id : row.Flat)
            EXPECT_EQ(wall.FillKind(id), TVZGPBrushKind::URI) << id;
        TWatch again(*wall);
        (*wall.*row.Set)(row.Color);
        EXPECT_TRUE(again.IsQuiet());
    }
}

TEST(Clock, WithoutGradientsFillsTouchTheFlatElementOnly) {
    for (const TFillRow& row : FillRows) {
        SCOPED_TRACE(row.Gradients[0].first);
        TWall wall;
        wall->SetEnableGradients(false);
        std::vector<TColors> before;
        for (const auto& gradient : row.Gradients)
            before.push_back(wall.Stops(gradient.first));
        TWatch watch(*wall);
        (*wall.*row.Set)(row.Color);
        EXPECT_EQ(watch.Invalidates, 1);
        EXPECT_TRUE(wall->AreBuffersStale());
        for (const char* id : row.Flat) {
            EXPECT_EQ(wall.Fill(id), row.Color) << id;
            EXPECT_EQ(wall.FillKind(id), TVZGPBrushKind::Solid) << id;
        }
        for (std::size_t i = 0; i < before.size(); ++i)
            EXPECT_EQ(wall.Stops(row.Gradients[i].first), before[i]);
        wall->SetEnableGradients(true); // the gradients come back as they were
        for (std::size_t i = 0; i < before.size(); ++i)
            EXPECT_EQ(wall.Stops(row.Gradients[i].first), before[i]);
    }
}

TEST(Clock, FrameTopStaysFlatOnceItWas) {
    TWall wall;
    wall->SetEnableGradients(false);
    EXPECT_EQ(wall.FillKind("FrameTop"), TVZGPBrushKind::URI); // no matter of the switch
    wall->SetFrameColor(0xFF204060);
    wall->SetEnableGradients(true);
    EXPECT_EQ(wall.FillKind("FrameTop"), TVZGPBrushKind::Solid);
    EXPECT_EQ(wall.Fill("FrameTop"), 0xFF204060u);
    EXPECT_EQ(wall.FillKind("Frame10to3"), TVZGPBrushKind::URI);
}

TEST(Clock, StrokesAreSwitchedOffByNoColor) {
    const std::pair<TColorSetter, std::vector<const char*>> rows[] = {
        {&TVZClock::SetHourHandStrokeColor, {"HourHandNeedle"}},
        {&TVZClock::SetMinuteHandStrokeColor, {"MinuteHandNeedle"}},
        {&TVZClock::SetSecondHandStrokeColor, {"SecondHandNeedle"}},
        {&TVZClock::SetKnobStrokeColor, {"Knob"}},
        {&TVZClock::SetLabelsStrokeColor, {"Labels10to3", "Labels4to9"}},
    };
    for (const auto& [set, ids] : rows) {
        SCOPED_TRACE(ids[0]);
        for (const bool hasGradients : {true, false}) {
            TWall wall;
            wall->SetEnableGradients(hasGradients);
            for (const TVZGPColor color : {0xFF102030u, 0u, 0x00FFFFFFu, 0u, 0x80010203u}) {
                TWatch watch(*wall);
                (*wall.*set)(color);
                EXPECT_EQ(watch.Invalidates, 1);
                EXPECT_TRUE(wall->AreBuffersStale());
                for (const char* id : ids) {
                    EXPECT_EQ(wall.Stroke(id), color);
                    EXPECT_EQ(wall.StrokeKind(id), color == 0 ? TVZGPBrushKind::None : TVZGPBrushKind::Solid);
                }
            }
        }
    }
}

// Gradients and light

TEST(Clock, GradientsAreSwitched) {
    const struct {
        const char* Element;
        const char* Gradient;
        TVZGPColor Flat;
    } rows[] = {
        {"BackfaceCircle", "radialGradientBackface", 0xFF266080},
        {"Labels4to9", "linearGradientLightLabels", 0xFFF5F5F5},
        {"Labels10to3", "linearGradientDarkLabels", 0xFFF5F5F5},
        {"Knob", "radialGradientKnob", 0xFFF7F7F7},
        {"SecondHandNeedle", "linearGradientSecondHand", 0xFF3CA1F6},
        {"MinuteHandNeedle", "linearGradientMinuteHand", 0xFFF5F5F5},
        {"HourHandNeedle", "linearGradientHourHand", 0xFFF5F5F5},
        {"Frame10to3", "linearGradientFrame10to3", 0xFFF7F7F7},
        {"Frame4to9", "radialGradientFrame4to9", 0xFFF7F7F7},
        {"FrameOuterBevel", "linearGradientBevel", 0xFFFFC880}, // the light
        {"FrameInnerBevel", "linearGradientBevel", 0xFF7F4800}, // and its shadow
    };
    TWall wall;
    wall->SetLightColor(0xFFFFC880);
    wall->SetEnableGradients(false);
    for (const auto& row : rows) {
        EXPECT_EQ(wall.FillKind(row.Element), TVZGPBrushKind::Solid) << row.Element;
        EXPECT_EQ(wall.Fill(row.Element), row.Flat) << row.Element;
    }
    EXPECT_FALSE(wall.IsShown("TopRightShine"));
    EXPECT_FALSE(wall.IsShown("BottomShine"));
    wall->SetEnableGradients(true);
    for (const auto& row : rows) {
        EXPECT_EQ(wall.FillKind(row.Element), TVZGPBrushKind::URI) << row.Element;
        EXPECT_EQ(wall.Get(row.Element).GetBrush().GetURI(), row.Gradient) << row.Element;
    }
    EXPECT_TRUE(wall.IsShown("TopRightShine"));
    EXPECT_TRUE(wall.IsShown("BottomShine"));
}

TEST(Clock, LightTintsAndStopsKeepTheirOpacity) {
    TWall wall;
    EXPECT_EQ(wall.Stops("radialGradientFrameShadow"), (TColors{0x00000000, 0x29000000, 0x9E000000}));
    TWatch watch(*wall);
    wall->SetLightColor(0x80FFC041);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_TRUE(wall->AreBuffersStale());
    EXPECT_EQ(wall.Fill("ClockHands"), 0x80BE7F00u);
    EXPECT_EQ(wall.Stops("radialGradientFrameShadow"), (TColors{0x00BE7F00, 0x29BE7F00, 0x9EBE7F00}));
    EXPECT_EQ(wall.Stops("radialGradientGlassTopRight"), (TColors{0xFFFFC041, 0x00FFC041}));
    // The dial's colour, with half the light added: 38 + 127, 96 + 96, 128 + 32.
    EXPECT_EQ(wall.Stops("radialGradientGlassBottom"), (TColors{0xFFA5C0A0, 0x00266080}));
    wall->SetBackfaceColor(0xFF101010); // the colour's own stops are the colour's, opacity too
    EXPECT_EQ(wall.Stops("radialGradientGlassBottom"), (TColors{0xFF8F7030, 0xFF101010}));
}

TEST(Clock, LightIsTakenAlsoWithoutGradients) {
    TWall wall;
    wall->SetEnableGradients(false);
    wall->SetBackfaceColor(0xFF102030);
    wall->SetLightColor(0xFF0000FF);
    EXPECT_EQ(wall.Fill("ClockHands"), 0xFF0000FFu);
    EXPECT_EQ(wall.Stops("radialGradientGlassTopRight"), (TColors{0xFF0000FF, 0x000000FF}));
    EXPECT_EQ(wall.Stops("radialGradientGlassBottom"), (TColors{0xFF1020AF, 0x00102030}));
    EXPECT_EQ(wall.Fill("FrameOuterBevel"), 0xFFFFFFFFu); // until gradients are switched again
}

TEST(Clock, LightOfAnArtworkWithFewerStops) {
    TWall wall;
    wall.Get<TSVGCustomGradient>("radialGradientGlassBottom").GetChild(1).Remove();
    wall->SetLightColor(0xFF000000);
    EXPECT_EQ(wall.Stops("radialGradientGlassBottom"), TColors{0xFF266080});
    wall.Get<TSVGCustomGradient>("radialGradientGlassBottom").Remove();
    EXPECT_NO_THROW(wall->SetLightColor(0xFF808080));
}

// Streams and other artworks

TEST(Clock, StoresItsTime) {
    RegisterComponentClasses();
    TWall wall;
    wall->SetTime(EncodeTime(15, 30, 45, 0));
    wall->SetFrameColor(0xFF204060);
    wall->SetParts(TVZClock::AllParts - TParts{TPart::cpSecondHand});
    const std::string form = WriteForm(*wall);
    EXPECT_EQ(form, "object TVZClock\n"
                    "  Parts = [cpFrame, cpFrameDecoration, cpBackface, cpDecoration, cpLabels, cpHourHand, "
                    "cpMinuteHand, cpKnob, cpShadows, cpGlass]\n"
                    "  Time = 15:30:45\n"
                    "  FrameColor = 0xFF204060\n"
                    "  LabelsFillColor = 0xFFF5F5F5\n"
                    "  DecorationFillColor = 0xFF87CEEB\n"
                    "end\n");
    const auto copy = ReadForm(form);
    auto& read = dynamic_cast<TVZClock&>(*copy);
    EXPECT_EQ(read.GetTime().Days, wall->GetTime().Days);
    EXPECT_EQ(read.GetDocument().WriteText(), wall.Text());
}

TEST(Clock, KeepsItsValuesInAnotherArtwork) {
    TWall wall;
    wall->SetTime(EncodeTime(10, 8, 36, 0));
    wall->SetFrameColor(0xFFA02020);
    wall->SetKnobStrokeColor(0);
    wall->SetLightColor(0xFFFFC080);
    wall->SetDesign(TSVGDesign::sdSimple);
    const auto picture = wall.Paint();
    wall->LoadSVGResource("ClockLorvanSVG");
    EXPECT_EQ(wall->GetActiveSVGElement(), &wall.Get("ClockHands"));
    EXPECT_EQ(wall.Paint(), picture);
    std::istringstream bare("<svg xmlns='http://www.w3.org/2000/svg'/>");
    wall->LoadFromStream(bare); // every element is missing
    for (const TFillRow& row : FillRows)
        (*wall.*row.Set)(row.Color);
    wall->SetTime(0);
    wall->SetEnableGradients(false);
    wall->SetLightColor(0xFF102030);
    wall->SetParts({});
    EXPECT_NO_THROW(wall.Paint());
}

TEST(Clock, HandOfAnotherClassIsAFaultOfTheArtwork) {
    TWall wall;
    std::istringstream wrong("<svg xmlns='http://www.w3.org/2000/svg'><defs><linearGradient id='HourHand'/>"
                             "</defs></svg>");
    EXPECT_THROW(wall->LoadFromStream(wrong), EInvalidCast);
}

// Frames

TEST(Clock, MovingTheHandsIsCheap) {
    TWall wall;
    THeadlessHost host(*wall);
    host.Paint();
    const auto tick = [&] {
        for (int i = 0; i < 120; ++i) {
            wall->SetTime(EncodeTime(i % 24, i % 60, i * 7 % 60, 0));
            host.PaintStale();
        }
    };
    for (int i = 0; i < 2; ++i) // everything grows to its size
        tick();
    const std::uint64_t epoch = wall->GetDocument().GetEpoch();
    const std::size_t before = CountAllocations();
    tick();
    EXPECT_EQ(CountAllocations(), before);
    EXPECT_EQ(wall->GetDocument().GetEpoch(), epoch);
    EXPECT_FALSE(wall->AreBuffersStale());
}

} // namespace
} // namespace Vz::Test
