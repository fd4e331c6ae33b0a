#include "tavro/svg/model/Gradients.h"

#include "DocumentScene.h"

#include <gtest/gtest.h>

namespace Vz::Test {
namespace {

constexpr std::string_view TwoStops =
    "<stop offset='0' stop-color='#000'/><stop offset='1' stop-color='#fff'/>";

/// A rectangle over all of the picture, filled by the gradient "g".
std::unique_ptr<TSVGDocument> Filled(std::string_view defs) {
    return LoadContent(std::string(defs) + "<rect id='r' width='100' height='100' fill='url(#g)'/>");
}

std::string Linear(std::string_view attributes, std::string_view stops = TwoStops) {
    return "<linearGradient id='g' " + std::string(attributes) + ">" + std::string(stops) +
           "</linearGradient>";
}

std::string Radial(std::string_view attributes, std::string_view stops = TwoStops) {
    return "<radialGradient id='g' " + std::string(attributes) + ">" + std::string(stops) +
           "</radialGradient>";
}

int GreyAt(const TDrawing& drawing, int x, int y) { return GreenOf(drawing.At(x, y)); }

// Stops

TEST(Gradient, ListsItsStopsInOrder) {
    const auto document = Filled(Linear("", "<title>t</title><stop offset='25%' stop-color='red'/>"
                                            "<stop offset='.5' stop-color='lime' stop-opacity='.5'/>"));
    const auto* const gradient = document->Find<TSVGCustomGradient>("g");
    ASSERT_EQ(gradient->GetStopCount(), 2u);
    EXPECT_EQ(gradient->GetStop(0).GetOffset(), 0.25f);
    EXPECT_EQ(gradient->GetStop(1).GetOffset(), 0.5f);
    EXPECT_EQ(gradient->GetStop(0).GetStopBrush().GetColor(), 0xFFFF0000u);
    EXPECT_EQ(gradient->GetStop(1).GetStopBrush().GetColor(), 0x8000FF00u);
    EXPECT_EQ(gradient->GetStop(1).GetStopColor(), 0x8000FF00u);
}

TEST(Gradient, RaisesForAStopOutOfRange) {
    const auto document = Filled(Linear(""));
    const auto* const gradient = document->Find<TSVGCustomGradient>("g");
    EXPECT_THROW(gradient->GetStop(2), EArgumentOutOfRange);
    EXPECT_THROW(gradient->GetStop(static_cast<std::size_t>(-1)), EArgumentOutOfRange);
    const auto empty = Filled(Linear("", ""));
    EXPECT_THROW(empty->Find<TSVGCustomGradient>("g")->GetStop(0), EArgumentOutOfRange);
    const auto lent = Filled("<linearGradient id='t'>" + std::string(TwoStops) + "</linearGradient>" +
                             Linear("xlink:href='#t'", ""));
    EXPECT_EQ(lent->Find<TSVGCustomGradient>("g")->GetStopCount(), 0u) << "its own, not those that are lent";
    EXPECT_THROW(lent->Find<TSVGCustomGradient>("g")->GetStop(0), EArgumentOutOfRange);
}

TEST(GradientStop, RecolorsTheGradient) {
    const auto document = Filled(Linear(""));
    auto& stop = document->Find<TSVGCustomGradient>("g")->GetStop(1);
    TNotices notices(*document);
    stop.GetStopBrush().SetColor(0x80FF0000);
    EXPECT_EQ(notices.Take(), 1u);
    EXPECT_EQ(stop.GetStopBrush().GetColor(), 0x80FF0000u);
    EXPECT_EQ(stop.GetStopColor(), 0x80FF0000u);
    const std::uint32_t last = Drawn(*document).At(99, 50);
    EXPECT_NEAR(AlphaOf(last), 128, 2);
    EXPECT_NEAR(RedOf(last), 128, 3);
    EXPECT_EQ(GreenOf(last), 0);
}

TEST(GradientStop, HasAPlaceForASavedColor) {
    const auto document = Filled(Linear(""));
    auto& stop = document->Find<TSVGCustomGradient>("g")->GetStop(0);
    EXPECT_EQ(stop.GetSavedColor(), 0u);
    stop.SetSavedColor(0x12345678);
    stop.GetStopBrush().SetColor(0xFFABCDEF);
    EXPECT_EQ(stop.GetSavedColor(), 0x12345678u);
    TSVGDocument copy;
    copy.AssignContent(*document);
    EXPECT_EQ(copy.Find<TSVGCustomGradient>("g")->GetStop(0).GetSavedColor(), 0x12345678u);
}

TEST(GradientStop, ClampsItsOffset) {
    const auto document = Filled(Linear(""));
    auto& stop = document->Find<TSVGCustomGradient>("g")->GetStop(0);
    stop.SetOffset(1.5f);
    EXPECT_EQ(stop.GetOffset(), 1.0f);
    stop.SetOffset(-Endless);
    EXPECT_EQ(stop.GetOffset(), 0.0f);
    stop.SetOffset(NoNumber);
    EXPECT_EQ(stop.GetOffset(), 0.0f);
}

TEST(GradientStop, TakesColorsOfOthers) {
    const auto document =
        Filled(Linear("color='#123456' stop-color='#abcdef'",
                      "<stop stop-color='currentColor'/><stop offset='1' stop-color='inherit'/>"));
    const auto* const gradient = document->Find<TSVGCustomGradient>("g");
    EXPECT_EQ(gradient->GetStop(0).GetStopColor(), 0xFF123456u);
    EXPECT_EQ(gradient->GetStop(0).GetStopBrush().GetColor(), 0xFF123456u);
    EXPECT_EQ(gradient->GetStop(1).GetStopColor(), 0xFFABCDEFu);
    EXPECT_EQ(gradient->GetStop(1).GetStopBrush().GetColor(), 0xFFABCDEFu);
}

TEST(GradientStop, OffsetsDoNotFall) {
    // The second stop counts at .5: the left half is black, then a step to white.
    const auto document =
        Filled(Linear("", "<stop offset='.5' stop-color='#000'/><stop offset='.2' stop-color='#fff'/>"));
    const TDrawing drawing = Drawn(*document);
    EXPECT_EQ(GreyAt(drawing, 30, 50), 0);
    EXPECT_EQ(GreyAt(drawing, 70, 50), 255);
}

TEST(GradientStop, OpacityBeyondOneIsOne) {
    const auto document = Filled(Linear("", "<stop stop-color='red'/>"));
    TStyleValue two{TStyleValue::TKind::Number};
    two.Number = 2;
    auto& stop = document->Find<TSVGCustomGradient>("g")->GetStop(0);
    stop.PutStyle(TSVGStyleProperty::StopOpacity, two);
    EXPECT_EQ(stop.GetStopColor(), 0xFFFF0000u);
}

// Linear

TEST(LinearGradient, RunsFromLeftToRight) {
    const TDrawing drawing = Drawn(*Filled(Linear("")));
    // The middle of pixel 25 lies at 25.5 %.
    EXPECT_NEAR(GreyAt(drawing, 25, 50), 65, 1);
    EXPECT_NEAR(GreyAt(drawing, 50, 50), 129, 1);
    EXPECT_NEAR(GreyAt(drawing, 75, 10), 193, 1);
}

TEST(LinearGradient, TakesUserSpaceAndTransform) {
    const TDrawing drawing = Drawn(*Filled(Linear(
        "gradientUnits='userSpaceOnUse' x1='0' y1='20' x2='0' y2='60' gradientTransform='translate(0 10)'")));
    EXPECT_EQ(GreyAt(drawing, 50, 28), 0);
    EXPECT_NEAR(GreyAt(drawing, 50, 49), 124, 1) << "19.5 of 40";
    EXPECT_EQ(GreyAt(drawing, 50, 71), 255);
}

TEST(LinearGradient, Spreads) {
    const auto at = [](const char* spread, int x) {
        return GreyAt(Drawn(*Filled(Linear("x1='.4' x2='.6' spreadMethod='" + std::string(spread) + "'"))), x,
                      50);
    };
    EXPECT_EQ(at("pad", 30), 0);
    EXPECT_EQ(at("pad", 70), 255);
    // 30.5 lies 9.5 before the start, half of a run.
    EXPECT_NEAR(at("reflect", 30), 121, 2);
    EXPECT_NEAR(at("repeat", 30), 134, 2);
    EXPECT_NEAR(at("reflect", 62), 223, 2);
    EXPECT_NEAR(at("repeat", 62), 32, 2);
}

TEST(LinearGradient, OfOneStopIsAColor) {
    EXPECT_EQ(Drawn(*Filled(Linear("", "<stop offset='.7' stop-color='red'/>"))).At(1, 1), 0xFFFF0000u);
}

TEST(LinearGradient, WithoutStopsPaintsNothing) { EXPECT_TRUE(Drawn(*Filled(Linear("", ""))).IsEmpty()); }

TEST(LinearGradient, WithoutLengthIsItsLastColor) {
    EXPECT_EQ(Drawn(*Filled(Linear("x1='.5' x2='.5'"))).At(10, 10), 0xFFFFFFFFu);
}

TEST(LinearGradient, OfABoxWithoutExtentFallsBack) {
    const auto document =
        LoadContent(Linear("") + "<path d='M0 50H100' stroke='url(#g) lime' stroke-width='10'/>");
    EXPECT_EQ(Drawn(*document).At(50, 50), 0xFF00FF00u);
}

TEST(LinearGradient, FadesWithFillOpacity) {
    const auto document =
        Filled(Linear("", "<stop stop-color='red'/><stop offset='1' stop-color='red' stop-opacity='.5'/>"));
    TStyleValue half{TStyleValue::TKind::Number};
    half.Number = 128 / 255.0;
    document->Find<TSVGGraphicElement>("r")->PutStyle(TSVGStyleProperty::FillOpacity, half);
    const TDrawing drawing = Drawn(*document);
    EXPECT_NEAR(AlphaOf(drawing.At(0, 50)), 128, 1);
    EXPECT_NEAR(AlphaOf(drawing.At(99, 50)), 64, 1);
}

// Radial

TEST(RadialGradient, GrowsFromItsCentre) {
    const TDrawing drawing = Drawn(*Filled(Radial("")));
    EXPECT_NEAR(GreyAt(drawing, 50, 50), 4, 3);
    EXPECT_NEAR(GreyAt(drawing, 75, 50), 130, 2) << "25.5 of 50";
    EXPECT_NEAR(GreyAt(drawing, 50, 24), 130, 2);
    EXPECT_EQ(GreyAt(drawing, 1, 1), 255);
}

TEST(RadialGradient, HasAFocus) {
    const TDrawing drawing =
        Drawn(*Filled(Radial("gradientUnits='userSpaceOnUse' cx='50' cy='50' r='40' fx='30' fy='50'")));
    EXPECT_NEAR(GreyAt(drawing, 30, 50), 4, 4);
    // On the axis the ramp runs from 30 to 90 on one side, from 30 to 10 on the other.
    EXPECT_NEAR(GreyAt(drawing, 60, 50), 130, 2) << "30.5 of 60";
    EXPECT_NEAR(GreyAt(drawing, 20, 50), 121, 3) << "9.5 of 20";
}

TEST(RadialGradient, MakesAConeOfAFocusOutside) {
    // The cone from (-300, 50) about the circle of radius 40 at 50: it opens by 40 in 350.
    const TDrawing drawing =
        Drawn(*Filled(Radial("gradientUnits='userSpaceOnUse' cx='50' cy='50' r='40' fx='-300' fy='50'")));
    EXPECT_NEAR(GreyAt(drawing, 0, 50), 247, 2) << "300.5 of 310 on the axis";
    EXPECT_EQ(drawing.At(50, 50), 0xFFFFFFFFu) << "beyond the circle's near side";
    EXPECT_EQ(drawing.At(0, 20), drawing.At(0, 79)) << "as high above the axis as below";
    EXPECT_NE(drawing.At(0, 20), 0u);
    EXPECT_EQ(drawing.At(0, 10), 0u) << "outside of the cone, 34.5 high here";
    EXPECT_EQ(drawing.At(99, 2), 0u);
}

TEST(RadialGradient, OfNoDepthIsAStep) {
    const TDrawing drawing = Drawn(*Filled(Radial("r='.3' fr='.3'")));
    EXPECT_EQ(drawing.At(50, 50), 0xFF000000u);
    EXPECT_EQ(drawing.At(50, 25), 0xFF000000u);
    EXPECT_EQ(drawing.At(50, 15), 0xFFFFFFFFu);
}

TEST(RadialGradient, FocusFollowsTheCentreWhereNotGiven) {
    EXPECT_EQ(Drawn(*Filled(Radial("cx='.2' cy='.3'"))),
              Drawn(*Filled(Radial("cx='.2' cy='.3' fx='.2' fy='.3'"))));
}

TEST(RadialGradient, OfNoRadiusIsItsLastColor) {
    EXPECT_EQ(Drawn(*Filled(Radial("r='0'"))).At(50, 50), 0xFFFFFFFFu);
}

// Templates

TEST(Gradient, TakesFromItsTemplateWhatItDoesNotSay) {
    const auto document =
        Filled("<radialGradient id='t' spreadMethod='reflect' gradientUnits='userSpaceOnUse'>" +
               std::string(TwoStops) + "</radialGradient>" + Linear("xlink:href='#t' x1='0' x2='50'", ""));
    const auto* const gradient = document->Find<TSVGCustomGradient>("g");
    EXPECT_EQ(gradient->GetTemplate(), document->FindElement("t"));
    const TDrawing drawing = Drawn(*document);
    EXPECT_NEAR(GreyAt(drawing, 25, 50), 130, 1);
    EXPECT_NEAR(GreyAt(drawing, 75, 50), 124, 2) << "reflected";
}

TEST(Gradient, FollowsAChainWhateverItsOrder) {
    const auto document = Filled(Linear("href='#b'", "") +
                                 "<linearGradient id='b' href='#c' x2='.5'/><linearGradient id='c' x2='.1'>" +
                                 std::string(TwoStops) + "</linearGradient>");
    EXPECT_NEAR(GreyAt(Drawn(*document), 25, 50), 130, 1) << "the nearest x2 counts";
}

TEST(Gradient, LeavesACycleOfTemplates) {
    EXPECT_TRUE(Drawn(*Filled(Linear("xlink:href='#g'", ""))).IsEmpty());
    EXPECT_TRUE(
        Drawn(*Filled(Linear("xlink:href='#h'", "") + "<linearGradient id='h' xlink:href='#g'/>")).IsEmpty());
}

TEST(Gradient, KeepsOnlyTheLengthsOfItsKind) {
    const auto document = Filled(Linear("x1='1' cx='3' r='4'"));
    using TPart = TSVGCustomGradient::TPart;
    const auto* const gradient = document->Find<TSVGCustomGradient>("g");
    EXPECT_EQ(gradient->GetLength(TPart::X1)->GetValue(), 1);
    EXPECT_FALSE(gradient->GetLength(TPart::X2).has_value());
    EXPECT_FALSE(gradient->GetLength(TPart::CX).has_value());
}

TEST(Gradient, OfManyStopsIsBounded) {
    std::string stops;
    for (int i = 0; i < 50000; ++i)
        stops += "<stop offset='" + std::to_string(i / 50000.0) + "' stop-color='" +
                 (i % 2 ? "red" : "blue") + "'/>";
    const auto document = Filled(Linear("", stops));
    EXPECT_EQ(document->Find<TSVGCustomGradient>("g")->GetStopCount(), 50000u);
    EXPECT_FALSE(Drawn(*document).IsEmpty());
}

} // namespace
} // namespace Vz::Test
