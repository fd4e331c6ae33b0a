// What each setting tells, and in which order: a repaint asked for is an i, a change of the main value a c.

#include "tavro/package/Package.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/PropAccess.h"

#include "GaugeProbe.h"

#include <gtest/gtest.h>

#include <ostream>

namespace Vz::Test {
namespace {

struct TSetting {
    const char* Class;
    const char* Name;
    const char* Text;
    const char* Notices;
};
void PrintTo(const TSetting& setting, std::ostream* stream) {
    *stream << setting.Class << '.' << setting.Name << '=' << setting.Text;
}

/// What setting the property tells.
std::string NoticesOf(TVZSVGCustomInstrument& instrument, const TSetting& setting) {
    std::string notices;
    instrument.SetOnInvalidate([&](TObject&) { notices += 'i'; });
    instrument.SetOnChange([&](TObject&) { notices += 'c'; });
    SetPropText(instrument, setting.Name, setting.Text);
    return notices;
}

class TNoticesTest : public testing::TestWithParam<TSetting> {};

TEST_P(TNoticesTest, FirstTimeAndNotTheSecond) {
    RegisterComponentClasses();
    const auto component = GetClass(GetParam().Class).Create();
    auto& instrument = dynamic_cast<TVZSVGCustomInstrument&>(*component);
    EXPECT_EQ(NoticesOf(instrument, GetParam()), GetParam().Notices);
    EXPECT_EQ(NoticesOf(instrument, GetParam()), "");
}

// A scale's end writes the numbers, turns the needle, and marks the whole; of these, the speedometer's
// numbers say nothing by themselves.
INSTANTIATE_TEST_SUITE_P(Speedometer, TNoticesTest,
                         testing::Values(TSetting{"TVZSpeedometer", "Value", "30", "ic"},
                                         TSetting{"TVZSpeedometer", "Max", "100", "ii"},
                                         TSetting{"TVZSpeedometer", "Max", "-5", "ii"},
                                         TSetting{"TVZSpeedometer", "Min", "500", "ii"},
                                         TSetting{"TVZSpeedometer", "Parts", "[]", "i"},
                                         TSetting{"TVZSpeedometer", "Design", "sdSimple", "i"},
                                         TSetting{"TVZSpeedometer", "EnableGradients", "false", "i"},
                                         TSetting{"TVZSpeedometer", "LightColor", "0xFFFF0000", "i"},
                                         TSetting{"TVZSpeedometer", "FormatStr", "0.00", "i"},
                                         TSetting{"TVZSpeedometer", "Font.Size", "10", "i"},
                                         TSetting{"TVZSpeedometer", "FrameColor", "0xFF112233", "i"},
                                         TSetting{"TVZSpeedometer", "BackfaceColor", "0xFF112233", "i"},
                                         TSetting{"TVZSpeedometer", "KnobFillColor", "0xFF112233", "i"},
                                         TSetting{"TVZSpeedometer", "KnobStrokeColor", "0x00000000", "i"},
                                         TSetting{"TVZSpeedometer", "MarkersFillColor", "0xFF112233", "i"},
                                         TSetting{"TVZSpeedometer", "MarkersStrokeColor", "0x00000000", "i"},
                                         TSetting{"TVZSpeedometer", "LabelsFillColor", "0xFF112233", "i"},
                                         TSetting{"TVZSpeedometer", "NeedleFillColor", "0xFF112233", "i"},
                                         TSetting{"TVZSpeedometer", "NeedleStrokeColor", "0x00000000", "i"},
                                         TSetting{"TVZSpeedometer", "Decoration", "dcNone", "i"},
                                         TSetting{"TVZSpeedometer", "DecorationPath", "M0 0H9V9Z", "i"},
                                         TSetting{"TVZSpeedometer", "DecorationFillColor", "0x00000000", "i"},
                                         TSetting{"TVZSpeedometer", "DecorationStrokeColor", "0xFF112233",
                                                  "i"}));

// The thermometer does as the speedometer; a battery's scale is all in its level.
INSTANTIATE_TEST_SUITE_P(Levels, TNoticesTest,
                         testing::Values(TSetting{"TVZThermometer", "Value", "30", "ic"},
                                         TSetting{"TVZThermometer", "Max", "100", "ii"},
                                         TSetting{"TVZThermometer", "Min", "500", "ii"},
                                         TSetting{"TVZThermometer", "Font.Size", "10", "i"},
                                         TSetting{"TVZThermometer", "FormatStr", "0.00", "i"},
                                         TSetting{"TVZThermometer", "MarkersColor", "0x00000000", "i"},
                                         TSetting{"TVZBattery", "Value", "30", "ic"},
                                         TSetting{"TVZBattery", "Max", "-10", "i"},
                                         TSetting{"TVZBattery", "Min", "500", "i"},
                                         TSetting{"TVZBattery", "Decoration", "dcNone", "i"},
                                         TSetting{"TVZBattery", "MarkersStrokeColor", "0x00000000", "i"},
                                         TSetting{"TVZBatteryModern", "Value", "30", "ic"},
                                         TSetting{"TVZBatteryModern", "Max", "-10", "i"},
                                         TSetting{"TVZBatteryModern", "Min", "500", "i"},
                                         TSetting{"TVZBatteryModern", "FillColor", "0xFF112233", "i"}));

// The round gauge's numbers are a list that tells of itself, and so do its marker paths.
INSTANTIATE_TEST_SUITE_P(
    RoundGauge, TNoticesTest,
    testing::Values(TSetting{"TVZCircularBarometer", "Value", "960", "ic"},
                    TSetting{"TVZCircularBarometer", "Max", "2000", "iii"},
                    TSetting{"TVZCircularBarometer", "Min", "5000", "iii"},
                    TSetting{"TVZCircularBarometer", "StartAngle", "10", "iii"},
                    TSetting{"TVZCircularBarometer", "StopAngle", "400", "iii"},
                    TSetting{"TVZCircularBarometer", "MajorMarkers", "5", "ii"},
                    TSetting{"TVZCircularBarometer", "MinorMarkers", "2", "i"},
                    TSetting{"TVZCircularBarometer", "MajorMarker", "gmCircle", "ii"},
                    TSetting{"TVZCircularBarometer", "MinorMarker", "gmCircle", "ii"},
                    TSetting{"TVZCircularBarometer", "MajorMarkerPath", "M0 0H9V9Z", "i"},
                    TSetting{"TVZCircularBarometer", "MinorMarkerPath", "M0 0H9V9Z", "i"},
                    TSetting{"TVZCircularBarometer", "Labels", "a\\nb", "i"},
                    TSetting{"TVZCircularBarometer", "Parts", "[]", "i"},
                    TSetting{"TVZCircularBarometer", "Design", "sdSimple", "i"},
                    TSetting{"TVZCircularBarometer", "EnableGradients", "false", "i"},
                    TSetting{"TVZCircularBarometer", "LightColor", "0xFFFF0000", "i"},
                    TSetting{"TVZCircularBarometer", "Decoration", "dcStar", "i"},
                    TSetting{"TVZCircularBarometer", "Decoration", "dcBolt", "i"},
                    TSetting{"TVZCircularBarometer", "FrameColor", "0xFF112233", "i"},
                    TSetting{"TVZCircularBarometer", "LabelsStrokeColor", "0x00000000", "i"},
                    TSetting{"TVZCircularBarometer", "BigHandColor", "0xFF112233", "i"},
                    TSetting{"TVZCircularBarometer", "Font.Size", "10", "i"},
                    TSetting{"TVZCircularBarometer", "CaptionFont.Size", "10", "i"},
                    TSetting{"TVZCircularBarometer", "Caption", "x", "i"},
                    TSetting{"TVZCircularBarometer", "DetailText", "x", "i"},
                    // Labels of their own are not written anew.
                    TSetting{"TVZCircularFuelGauge", "Max", "200", "ii"},
                    TSetting{"TVZCircularFuelGauge", "MajorMarkers", "5", "i"},
                    TSetting{"TVZCircularClock", "Time", "10:08:36", "ic"},
                    TSetting{"TVZCircularClock", "Hands", "[ghBig]", "i"},
                    TSetting{"TVZAnalogCalendar", "DayOfYear", "400", "ic"}));

// What turns a part invalidates by itself; Rotate turns two of them and the whole is painted.
INSTANTIATE_TEST_SUITE_P(Compasses, TNoticesTest,
                         testing::Values(TSetting{"TVZCompass", "Angle", "30", "i"},
                                         TSetting{"TVZCompass", "Rotate", "cmpNeedle", "i"},
                                         TSetting{"TVZCompass", "Parts", "[]", "i"},
                                         TSetting{"TVZCompass", "Design", "sdSimple", "i"},
                                         TSetting{"TVZCompass", "EnableGradients", "false", "i"},
                                         TSetting{"TVZCompass", "LightColor", "0xFFFF0000", "i"},
                                         TSetting{"TVZCompass", "NeedleHighColor", "0xFF112233", "i"},
                                         TSetting{"TVZCompass", "Decoration", "dcModern", "i"},
                                         TSetting{"TVZCompass", "Decoration", "dcBolt", "i"},
                                         TSetting{"TVZCircularCompass", "Angle", "30", "ic"},
                                         TSetting{"TVZCircularCompass", "Rotate", "cmpNeedle", "i"}));

// What shows a lamp invalidates by itself; so a lamp's colour does it twice.
INSTANTIATE_TEST_SUITE_P(Lights, TNoticesTest,
                         testing::Values(TSetting{"TVZTrafficLight", "Lights", "[ltGreen]", "ic"},
                                         TSetting{"TVZTrafficLight", "RedLightColor", "0xFF112233", "ii"},
                                         TSetting{"TVZTrafficLight", "OffColor", "0xFF112233", "ii"},
                                         TSetting{"TVZTrafficLight", "DomeColor", "0xFF112233", "i"},
                                         TSetting{"TVZTrafficLight", "HousingColor", "0xFF112233", "i"},
                                         TSetting{"TVZTrafficLight", "YellowDecoration", "dcStar", "i"},
                                         TSetting{"TVZTrafficLight", "DecorationFillColor", "0xFF112233",
                                                  "i"},
                                         TSetting{"TVZTrafficLight", "MultiSelect", "true", ""},
                                         TSetting{"TVZTrafficLight", "EnableActions", "false", ""},
                                         TSetting{"TVZTrafficLight", "Parts", "[]", "i"},
                                         TSetting{"TVZCubeLight", "Checked", "false", "ic"},
                                         TSetting{"TVZCubeLight", "OnColor", "0xFF112233", "ii"},
                                         TSetting{"TVZCubeLight", "FrameColor", "0xFF112233", "i"},
                                         TSetting{"TVZCubeLight", "HousingColor", "0xFF112233", "i"},
                                         TSetting{"TVZCubeLight", "EnableActions", "false", ""},
                                         TSetting{"TVZCubeLight", "Decoration", "dcBolt", "i"}));

INSTANTIATE_TEST_SUITE_P(Knobs, TNoticesTest,
                         testing::Values(TSetting{"TVZRotarySwitch", "Checked", "true", "ic"},
                                         TSetting{"TVZRotarySwitch", "Value", "1", "ic"},
                                         TSetting{"TVZRotaryDial", "Value", "3", "ic"},
                                         TSetting{"TVZRotaryDial", "Max", "20", "iii"},
                                         TSetting{"TVZRotaryDial", "Min", "-2", "iii"}));
INSTANTIATE_TEST_SUITE_P(
    Clocks, TNoticesTest,
    testing::Values(TSetting{"TVZClock", "Time", "10:08:36", "ic"}, TSetting{"TVZClock", "Parts", "[]", "i"},
                    TSetting{"TVZClock", "Design", "sdSimple", "i"},
                    TSetting{"TVZClock", "EnableGradients", "false", "i"},
                    TSetting{"TVZClock", "LightColor", "0xFFFF0000", "i"},
                    TSetting{"TVZClock", "FrameColor", "0xFF112233", "i"},
                    TSetting{"TVZClock", "BackfaceColor", "0xFF112233", "i"},
                    TSetting{"TVZClock", "HourHandFillColor", "0xFF112233", "i"},
                    TSetting{"TVZClock", "SecondHandStrokeColor", "0x00000000", "i"},
                    TSetting{"TVZClock", "LabelsStrokeColor", "0x00000000", "i"},
                    TSetting{"TVZClock", "Decoration", "dcStar", "i"},
                    TSetting{"TVZDigitalClock", "Time", "10:08:36", "ic"},
                    TSetting{"TVZDigitalClock", "Time", "22:08:36", "ic"},
                    TSetting{"TVZDigitalClock", "Parts", "[]", "i"},
                    TSetting{"TVZDigitalClock", "Design", "sdSimple", "i"},
                    TSetting{"TVZDigitalClock", "EnableGradients", "false", "i"},
                    TSetting{"TVZDigitalClock", "LightColor", "0xFFFF0000", "i"},
                    TSetting{"TVZDigitalClock", "FrameColor", "0xFF112233", "i"},
                    TSetting{"TVZDigitalClock", "LabelsFillColor", "0xFF112233", "i"},
                    TSetting{"TVZDigitalClock", "LabelsStrokeColor", "0xFF112233", "i"}));

TEST(Notices, EndsThatMoveTheValueDoNotTellOfAChange) {
    const auto gauge = TVZCircularBarometer::Create();
    gauge->SetValue(1000);
    EXPECT_EQ(NoticesOf(*gauge, {"", "Max", "960", ""}), "iii");
    EXPECT_EQ(gauge->GetValue(), 960);
    const auto speedometer = TVZSpeedometer::Create();
    speedometer->SetValue(200);
    EXPECT_EQ(NoticesOf(*speedometer, {"", "Max", "100", ""}), "ii");
    EXPECT_EQ(speedometer->GetValue(), 100);
}

TEST(Notices, ValueBeyondTheEndTellsEachTime) {
    const auto gauge = TVZCircularBarometer::Create();
    EXPECT_EQ(NoticesOf(*gauge, {"", "Value", "2000", ""}), "ic");
    EXPECT_EQ(NoticesOf(*gauge, {"", "Value", "2000", ""}), "ic"); // it is not what is stored
    EXPECT_EQ(NoticesOf(*gauge, {"", "Value", "1050", ""}), "");
}

} // namespace
} // namespace Vz::Test
