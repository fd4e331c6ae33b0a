#include "tavro/Vz.Tavro.Speedometers.h"

#include "SpeedometerProbe.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/FormFile.h"
#include "tavro/runtime/PropAccess.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <sstream>

namespace Vz::Test {
namespace {

using TPart = TVZSpeedometer::TPart;
using TParts = TVZSpeedometer::TParts;

constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float Nan = std::numeric_limits<float>::quiet_NaN();
constexpr float Greatest = std::numeric_limits<float>::max();

// Scale and needle

TEST(Speedometer, FreshOne) {
    TSpeed speed;
    EXPECT_EQ(speed->GetMin(), 0);
    EXPECT_EQ(speed->GetMax(), 240);
    EXPECT_EQ(speed->GetValue(), 0);
    EXPECT_EQ(speed->GetLowest(), -10);
    EXPECT_EQ(speed->GetHighest(), 250);
    EXPECT_EQ(speed->GetParts().GetMask(), 511u);
    EXPECT_EQ(speed->GetDecoration(), TDecoration::dcFuelTank);
    EXPECT_EQ(speed->GetDecorationElementId(), "Decoration");
    EXPECT_EQ(speed.Labels(), "0 40 80 120 160 200 240");
    EXPECT_NEAR(speed.Angle(), -92.35, 1e-4);
    EXPECT_EQ(speed->GetActiveSVGElement(), &speed.Get("NeedleGroup"));
    EXPECT_EQ(speed->GetSVGResourceName(), "SpeedometerSVG");
}

TEST(Speedometer, NeedleRunsBeyondBothEnds) {
    TSpeed speed;
    TWatch watch(*speed);
    speed->SetValue(300);
    EXPECT_EQ(speed->GetValue(), 250);
    EXPECT_NEAR(speed.Angle(), 100.15, 1e-4);
    speed->SetValue(-50);
    EXPECT_EQ(speed->GetValue(), -10);
    EXPECT_NEAR(speed.Angle(), -100.05, 1e-4);
    speed->SetValue(240);
    EXPECT_NEAR(speed.Angle(), 92.45, 1e-4);
    speed->SetValue(120); // the middle of the range is a little off the drawn needle
    EXPECT_NEAR(speed.Angle(), 0.05, 1e-4);
    EXPECT_EQ(watch.Changes, 4);
    EXPECT_EQ(watch.Invalidates, 4);
}

TEST(Speedometer, NeedleTurnsAboutTheKnob) {
    TSpeed speed;
    const TPointF centre = VZCenterPoint(speed.Get("Knob").GetBounds());
    EXPECT_EQ(centre, (TPointF{200, 200}));
    for (const float value : {-10.0f, 33.0f, 250.0f}) {
        speed->SetValue(value);
        const TPointD still = speed.Get("NeedleGroup").GetTransform()(TPointD{200, 200});
        EXPECT_NEAR(still.X, 200, 1e-3);
        EXPECT_NEAR(still.Y, 200, 1e-3);
    }
}

TEST(Speedometer, SameValueDoesNothing) {
    TSpeed speed;
    speed->SetValue(50);
    TWatch watch(*speed);
    speed->SetValue(50);
    speed->SetMax(240);
    speed->SetMin(0);
    EXPECT_TRUE(watch.IsQuiet());
    speed->SetValue(250);
    EXPECT_EQ(watch.Changes, 1);
    speed->SetValue(300); // compared before it is clamped: a change each time
    EXPECT_EQ(watch.Changes, 2);
}

TEST(Speedometer, UpperEnd) {
    TSpeed speed;
    speed->SetValue(180);
    TWatch watch(*speed);
    speed->SetMax(100);
    EXPECT_EQ(speed->GetLowest(), -4); // round(4.167)
    EXPECT_EQ(speed->GetHighest(), 104);
    EXPECT_EQ(speed->GetValue(), 100);
    EXPECT_EQ(speed.Labels(), "0 16.7 33.3 50 66.7 83.3 100");
    EXPECT_EQ(watch.Changes, 0);
    EXPECT_EQ(watch.Invalidates, 2); // the needle's and its own
    EXPECT_TRUE(speed->AreBuffersStale());
    speed->SetMax(-20); // below Min
    EXPECT_EQ(speed->GetMin(), -21);
    EXPECT_EQ(speed->GetMax(), -20);
    EXPECT_EQ(speed->GetValue(), -20);
    EXPECT_EQ(watch.Changes, 0);
}

TEST(Speedometer, LowerEnd) {
    TSpeed speed;
    TWatch watch(*speed);
    speed->SetMin(500); // above Max
    EXPECT_EQ(speed->GetMax(), 501);
    EXPECT_EQ(speed->GetValue(), 500);
    EXPECT_EQ(speed->GetLowest(), 500); // round(0.04167) = 0
    EXPECT_EQ(speed->GetHighest(), 501);
    EXPECT_NEAR(speed.Angle(), -100.05, 1e-4);
    EXPECT_EQ(watch.Changes, 0);
}

TEST(Speedometer, OverrunRoundsHalfToEven) {
    TSpeed speed;
    speed->SetMax(50000); // 2083.5
    EXPECT_EQ(speed->GetLowest(), -2084);
    speed->SetMax(150000); // 6250.5
    EXPECT_EQ(speed->GetLowest(), -6250);
    EXPECT_EQ(speed->GetHighest(), 156250);
}

TEST(Speedometer, OverrunIsWholeAlsoWhereTheScaleIsNot) {
    TSpeed speed;
    speed->SetMin(-40);
    speed->SetMax(200);
    EXPECT_EQ(speed->GetLowest(), -50);
    EXPECT_EQ(speed->GetHighest(), 210);
    speed->SetMin(0.25f);
    speed->SetMax(12.75f); // 12.5 * 0.04167 = 0.52
    EXPECT_EQ(speed->GetLowest(), -0.75f);
    EXPECT_EQ(speed->GetHighest(), 13.75f);
    speed->SetMax(11.25f); // 11 * 0.04167 = 0.458
    EXPECT_EQ(speed->GetLowest(), 0.25f);
    EXPECT_EQ(speed->GetHighest(), 11.25f);
    speed->SetMin(0);
    speed->SetMax(1e10f); // more than a single holds exactly: the ends are rounded once
    EXPECT_EQ(speed->GetHighest(), float(1e10 + 416700000));
    EXPECT_EQ(speed->GetLowest(), -416700000.0f);
}

TEST(Speedometer, NeedleAgreesWithTheFormulaOnRandomScales) {
    std::mt19937 random(41);
    std::uniform_real_distribution<float> any(-2000, 2000);
    TSpeed speed;
    for (int round = 0; round < 2000; ++round) {
        const float a = any(random), b = any(random);
        if (std::abs(a - b) < 12) continue; // without an overrun the needle's range is the scale's
        speed->SetMin(std::min(a, b));
        speed->SetMax(std::max(a, b));
        speed->SetMin(std::min(a, b)); // the first one may have been pushed
        const float value = any(random) * 2;
        speed->SetValue(value);
        const double overrun = std::nearbyint(double(speed->GetMax() - speed->GetMin()) * 0.04167);
        const double least = float(speed->GetMin() - overrun), greatest = float(speed->GetMax() + overrun);
        const double held = std::min(std::max(double(value), least), greatest);
        ASSERT_EQ(speed->GetValue(), float(held)) << round;
        ASSERT_NEAR(speed.Angle(), (held - least) / (greatest - least) * 200.2 - 100.05, 2e-4) << round;
    }
}

TEST(Speedometer, UpperEndPullsTheValueToTheScaleNotToTheOverrun) {
    TSpeed speed;
    speed->SetValue(250);
    speed->SetMax(245);
    EXPECT_EQ(speed->GetValue(), 245);
    speed->SetValue(-10);
    speed->SetMin(-5);
    EXPECT_EQ(speed->GetValue(), -5);
}

TEST(Speedometer, WithoutNeedleOrKnobNothingTurns) {
    for (const char* id : {"NeedleGroup", "Knob"}) {
        TSpeed speed;
        speed->SetActiveSVGElement(nullptr);
        speed.Get(id).Remove();
        TWatch watch(*speed);
        speed->UpdateNeedle();
        EXPECT_TRUE(watch.IsQuiet()) << id;
        speed->SetValue(100);
        EXPECT_EQ(speed->GetValue(), 100);
        EXPECT_EQ(watch.Changes, 1);
        EXPECT_EQ(watch.Invalidates, 0);
    }
}

TEST(Speedometer, EqualEndsAreHarmless) {
    TSpeed speed;
    speed->SetValue(120);
    speed->SetMax(0); // equal to Min
    EXPECT_EQ(speed->GetMin(), 0);
    EXPECT_EQ(speed->GetMax(), 0);
    EXPECT_EQ(speed->GetValue(), 0);
    EXPECT_NEAR(speed.Angle(), 0.05, 1e-4); // stays where it was
    EXPECT_EQ(speed.Labels(), "0 0 0 0 0 0 0");
    speed->SetValue(5);
    EXPECT_EQ(speed->GetValue(), 0);
    EXPECT_NO_THROW(speed.Paint());
    speed->SetMax(100);
    EXPECT_NEAR(speed.Angle(), 4.0 / 108 * 200.2 - 100.05, 1e-4);
}

TEST(Speedometer, NumbersThatAreNone) {
    TSpeed speed;
    speed->SetValue(50);
    {
        TWatch watch(*speed);
        for (const float number : {Nan, Infinity, -Infinity}) {
            speed->SetMin(number);
            speed->SetMax(number);
        }
        speed->SetValue(Nan);
        EXPECT_TRUE(watch.IsQuiet());
    }
    EXPECT_EQ(speed->GetValue(), 50);
    speed->SetValue(Infinity);
    EXPECT_EQ(speed->GetValue(), 250);
    speed->SetValue(-Infinity);
    EXPECT_EQ(speed->GetValue(), -10);
    speed->SetMax(Greatest);
    speed->SetMin(-Greatest);
    speed->SetValue(0);
    EXPECT_NO_THROW(speed.Paint());
    EXPECT_TRUE(std::isfinite(speed.Angle()));
}

TEST(Speedometer, NumbersFollowThePicture) {
    TSpeed speed;
    TWatch watch(*speed);
    speed->SetFormatStr("0.00");
    EXPECT_EQ(speed.Labels(), "0.00 40.00 80.00 120.00 160.00 200.00 240.00");
    EXPECT_EQ(watch.Invalidates, 1);
    speed->SetMin(-120);
    EXPECT_EQ(speed.Labels(), "-120.00 -60.00 0.00 60.00 120.00 180.00 240.00");
    EXPECT_THROW(speed->SetFormatStr("0;0;0;0"), EConvertError);
    EXPECT_EQ(speed->GetFormatStr(), "0.00");
    EXPECT_NO_THROW(speed->SetFormatStr(std::string(10000, 'x')));
}

TEST(Speedometer, LastNumberIsTheUpperEnd) {
    TSpeed speed;
    speed->SetFormatStr("0.000000");
    speed->SetMin(0.1f); // a single that is no round number, in a span that is none either
    EXPECT_TRUE(speed.Labels().ends_with(" 240.000000")) << speed.Labels();
    EXPECT_TRUE(speed.Labels().starts_with("0.100000 40.083333 ")) << speed.Labels();
    speed->SetMax(Greatest);
    speed->SetMin(-Greatest); // a span that no single holds
    speed->SetFormatStr("0.0e+0");
    EXPECT_TRUE(speed.Labels().starts_with("-3.4e+38 -2.3e+38 -1.1e+38 ")) << speed.Labels();
    EXPECT_TRUE(speed.Labels().ends_with(" 3.4e+38")) << speed.Labels();
}

TEST(Speedometer, NumbersFollowTheCountOfTexts) {
    TSpeed speed;
    auto& labels = *speed->GetDocument().FindElement("Labels");
    while (labels.GetChildCount() > 3)
        labels.GetChild(labels.GetChildCount() - 1).Remove();
    speed->SetMin(-240);
    EXPECT_EQ(speed.Labels(), "-240 0 240");
}

TEST(Speedometer, PicturesOfAnyTextAreTakenOrRefused) {
    std::mt19937 random(43);
    const std::string_view signs = "0#.,;eE+-'\"% x\\\xc3\xa9<&>\0";
    TSpeed speed;
    int taken = 0, refused = 0;
    for (int round = 0; round < 3000; ++round) {
        std::string picture(random() % 12, ' ');
        for (char& sign : picture)
            sign = signs[random() % signs.size()];
        const std::string before = speed->GetFormatStr(), labels = speed.Labels();
        try {
            speed->SetFormatStr(picture);
            ASSERT_EQ(speed->GetFormatStr(), picture);
            ++taken;
        } catch (const EConvertError&) {
            ASSERT_EQ(speed->GetFormatStr(), before);
            ASSERT_EQ(speed.Labels(), labels);
            ++refused;
        }
        if (round % 300 != 0) continue;
        TSVGDocument copy;
        ASSERT_NO_THROW(copy.LoadFromText(speed->GetDocument().WriteText())) << picture;
        ASSERT_NO_THROW(speed.Paint()) << picture;
    }
    EXPECT_GT(taken, 300);
    EXPECT_GT(refused, 300);
}

TEST(Speedometer, LabelThatIsNoTextIsAFaultOfTheArtwork) {
    TSpeed speed;
    speed->GetDocument().FindElement("Labels")->Add<TSVGPath>();
    EXPECT_THROW(speed->InitializeLabels(), EInvalidCast);
    EXPECT_THROW(speed->SetMax(7), EInvalidCast);
}

// Font

TEST(Speedometer, FontIsCopied) {
    TSpeed speed;
    TSVGFont font;
    font.SetSize(14);
    TWatch watch(*speed);
    speed->SetFont(font);
    EXPECT_NE(&speed->GetFont(), &font);
    EXPECT_EQ(speed->GetFont().GetSize(), 14);
    EXPECT_EQ(speed.Get("Labels").GetStyle().Find(TSVGStyleProperty::FontSize)->Number, 14);
    EXPECT_EQ(watch.Invalidates, 1);
    speed->SetFont(font);
    EXPECT_EQ(watch.Invalidates, 1);
    speed->GetFont().SetWeight(300);
    EXPECT_EQ(watch.Invalidates, 2);
    speed->SetFont(TSVGFont());
    TSpeed fresh;
    EXPECT_EQ(speed.Paint(), fresh.Paint());
}

// Streams

TEST(Speedometer, StoresWhatDiffers) {
    RegisterComponentClasses();
    TSpeed speed;
    EXPECT_EQ(WriteForm(*speed), "object TVZSpeedometer\nend\n");
    speed->SetMin(10);
    speed->SetValue(0); // its default, but reading Min alone would pull it up
    EXPECT_TRUE(speed->IsValueStored());
    speed->SetFrameColor(0xFF112233);
    const auto copy = ReadForm(WriteForm(*speed));
    auto& read = dynamic_cast<TVZSpeedometer&>(*copy);
    EXPECT_EQ(read.GetMin(), 10);
    EXPECT_EQ(read.GetValue(), 0);
    EXPECT_EQ(read.GetFrameColor(), 0xFF112233u);
}

TEST(Speedometer, EndsAreStoredWhereTheyDiffer) {
    TSpeed speed;
    EXPECT_FALSE(speed->IsMinStored());
    EXPECT_FALSE(speed->IsMaxStored());
    speed->SetMin(-240);
    speed->SetMax(200);
    EXPECT_TRUE(speed->IsMinStored());
    EXPECT_TRUE(speed->IsMaxStored());
    EXPECT_EQ(WriteForm(*speed), "object TVZSpeedometer\n  Min = -240\n  Max = 200\nend\n");
    speed->SetMin(0);
    speed->SetMax(240);
    EXPECT_EQ(WriteForm(*speed), "object TVZSpeedometer\nend\n");
}

TEST(Speedometer, EmblemOfTheUsersOwnIsStored) {
    RegisterComponentClasses();
    TSpeed speed;
    TVZPathData path;
    path.SetPathString("M0 0L100 0 100 100Z");
    speed->SetDecorationPath(path);
    const auto copy = ReadForm(WriteForm(*speed));
    auto& read = dynamic_cast<TVZSpeedometer&>(*copy);
    EXPECT_EQ(read.GetDecoration(), TDecoration::dcCustom);
    EXPECT_EQ(read.GetDecorationPath()->GetPathString(), path.GetPathString());
    // A form that fails leaves it, too.
    EXPECT_THROW(ReadFormInto(*speed, "object TVZSpeedometer\n DecorationPath = 'M1 1L2 2'\n Max = x\nend\n"),
                 EConvertError);
    EXPECT_EQ(speed->GetDecorationPath()->GetPathString(), path.GetPathString());
}

// Another artwork

TEST(Speedometer, KeepsItsValuesInAnotherArtwork) {
    TSpeed speed, whole;
    for (TSpeed* one : {&speed, &whole}) {
        (*one)->SetMax(100);
        (*one)->SetValue(60);
        (*one)->SetFrameColor(0xFFA02020);
        (*one)->SetLabelsFillColor(0xFFFFFF00);
        (*one)->SetLightColor(0xFFFFC080);
        (*one)->GetFont().SetSize(20);
        (*one)->SetParts(TVZSpeedometer::AllParts - TParts{TPart::spMinorMarkers});
        (*one)->SetDecorationFillColor(0xFF00FF00);
    }
    speed->LoadSVGResource("SpeedometerSVG");
    EXPECT_EQ(speed->GetActiveSVGElement(), &speed.Get("NeedleGroup"));
    EXPECT_EQ(speed.Paint(), whole.Paint());
    std::istringstream bare("<svg xmlns='http://www.w3.org/2000/svg'/>");
    speed->LoadFromStream(bare); // every element is missing
    speed->SetValue(10);
    speed->SetMax(20);
    speed->SetFrameColor(1);
    speed->SetNeedleFillColor(1);
    speed->SetEnableGradients(false);
    speed->SetLightColor(0xFF102030);
    speed->SetDesign(TSVGDesign::sdSimple);
    speed->SetDecoration(TDecoration::dcBolt);
    speed->GetFont().SetSize(3);
    EXPECT_NO_THROW(speed.Paint());
}

// Frames

TEST(Speedometer, MovingTheNeedleIsCheap) {
    TSpeed speed;
    THeadlessHost host(*speed);
    host.Paint();
    int changes = 0;
    speed->SetOnChange([&](TObject&) { ++changes; });
    const auto setOnly = [&] {
        for (int i = 0; i < 1000; ++i)
            speed->SetValue(float(i % 240) + 0.5f);
    };
    const auto setAndPaint = [&] {
        for (int i = 0; i < 240; ++i) {
            speed->SetValue(float(i));
            host.PaintStale();
        }
    };
    for (int i = 0; i < 2; ++i) { // everything grows to its size
        setOnly();
        setAndPaint();
    }
    const std::uint64_t epoch = speed->GetDocument().GetEpoch();
    const std::size_t before = CountAllocations();
    changes = 0;
    setOnly();
    EXPECT_EQ(CountAllocations(), before);
    EXPECT_EQ(changes, 1000);
    setAndPaint();
    EXPECT_EQ(CountAllocations(), before);
    // Nothing but a place changed: no style, path, paint or text was dropped, and the caches held.
    EXPECT_EQ(speed->GetDocument().GetEpoch(), epoch);
    EXPECT_FALSE(speed->AreBuffersStale());
}

} // namespace
} // namespace Vz::Test
