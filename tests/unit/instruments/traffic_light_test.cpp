#include "LightProbe.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/FormFile.h"
#include "tavro/runtime/PropAccess.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Vz::Test {
namespace {

using TTraffic = TLightProbe<TVZTrafficLight>;
using TLight = TVZTrafficLight::TLight;
using TLights = TVZTrafficLight::TLights;
using TPart = TVZTrafficLight::TPart;
using TColors = std::vector<TVZGPColor>;

constexpr TLights Red{TLight::ltRed};
constexpr TLights Yellow{TLight::ltYellow};
constexpr TLights Green{TLight::ltGreen};
constexpr TShiftState Shift{TShiftKey::Shift};
constexpr TShiftState Ctrl{TShiftKey::Ctrl};

// The middles of the lamps, and places beside them.
constexpr int Middle = 84;
constexpr int RedY = 124;
constexpr int YellowY = 268;
constexpr int GreenY = 412;

/// A letter a lamp: its own name where it is lit with its colour and shine, '-' where it is dark.
std::string Shown(TTraffic& traffic) {
    struct TRow {
        const char* Disc;
        const char* Shine;
        char Letter;
        TVZGPColor Color;
    };
    const TRow rows[] = {{"RedLight", "RedLightShine", 'r', traffic->GetRedLightColor()},
                         {"YellowLight", "YellowLightShine", 'y', traffic->GetYellowLightColor()},
                         {"GreenLight", "GreenLightShine", 'g', traffic->GetGreenLightColor()}};
    std::string shown;
    for (const TRow& row : rows) {
        const TVZGPColor fill = traffic.Fill(row.Disc);
        const std::string shine = traffic.Server(row.Shine);
        const bool isLit = fill == row.Color && shine == "GradientShine";
        const bool isDark = fill == traffic->GetOffColor() && shine == "GradientDim";
        shown += isLit ? row.Letter : isDark ? '-' : '?';
    }
    return shown;
}

TEST(TrafficLight, FreshOne) {
    TTraffic traffic;
    EXPECT_EQ(TVZTrafficLight::Create()->GetWidth(), 200);
    EXPECT_EQ(TVZTrafficLight::Create()->GetHeight(), 200);
    EXPECT_EQ(traffic->GetSVGResourceName(), "TrafficLightSVG");
    EXPECT_EQ(traffic->GetActiveSVGElement(), &traffic.Get("Lights"));
    EXPECT_EQ(traffic->GetDecorationElementId(), "Decorations");
    EXPECT_EQ(traffic->GetLights(), Red);
    EXPECT_TRUE(traffic->GetEnableActions());
    EXPECT_FALSE(traffic->GetMultiSelect());
    EXPECT_EQ(traffic->GetParts().GetMask(), 0x1FFFFu);
    EXPECT_EQ(traffic->GetOffColor(), 0xFF000000u);
    EXPECT_EQ(traffic->GetDomeColor(), 0xFF393939u);
    EXPECT_EQ(traffic->GetFrameColor(), 0xFF2A2A2Au);
    EXPECT_EQ(traffic->GetHoodColor(), 0xFF242424u);
    EXPECT_EQ(traffic->GetHousingColor(), 0xFF242424u);
    EXPECT_EQ(traffic->GetRedLightColor(), 0xFFFF0000u);
    EXPECT_EQ(traffic->GetYellowLightColor(), 0xFFD5D600u);
    EXPECT_EQ(traffic->GetGreenLightColor(), 0xFF00E400u);
    EXPECT_EQ(traffic->GetDecorationFillColor(), 0xFFFFFFFFu);
    EXPECT_EQ(traffic->GetDecorationStrokeColor(), 0xFF000000u);
    for (const TLight light : {TLight::ltRed, TLight::ltYellow, TLight::ltGreen})
        EXPECT_EQ(traffic->GetDecoration(light), TDecoration::dcNone);
    EXPECT_EQ(Shown(traffic), "r--"); // drawn with all three lit
}

TEST(TrafficLight, Publishes) {
    const auto light = TVZTrafficLight::Create();
    const auto publishes = [&](std::string_view name) {
        return std::ranges::any_of(light->GetPropTable(), [&](const TProp& row) { return row.Name == name; });
    };
    EXPECT_FALSE(publishes("Decoration"));
    EXPECT_FALSE(publishes("DecorationPath"));
    EXPECT_TRUE(publishes("DecorationFillColor"));
    EXPECT_TRUE(publishes("RedDecoration"));
    const TProp& first = light->GetPropTable()[0];
    EXPECT_EQ(first.Name, "Lights");
    EXPECT_TRUE(first.Main == TQuantity::Lamps);
}

// Lamps

TEST(TrafficLight, AnyLampsAreLit) {
    TTraffic traffic;
    const char* const expected[] = {"---", "r--", "-y-", "ry-", "--g", "r-g", "-yg", "ryg"};
    for (std::uint32_t mask = 0; mask < 8; ++mask) {
        traffic->SetLights(TLights::FromMask(mask));
        EXPECT_EQ(Shown(traffic), expected[mask]);
    }
}

TEST(TrafficLight, OnChangeTellsOfLampsOnly) {
    TTraffic traffic;
    TWatch watch(*traffic);
    traffic->SetLights(Red);
    traffic->SetOffColor(0xFF000000);
    traffic->SetGreenLightColor(0xFF00E400);
    EXPECT_TRUE(watch.IsQuiet());
    traffic->SetLights({});
    EXPECT_EQ(watch.Changes, 1);
    EXPECT_EQ(watch.Invalidates, 1);
    traffic->SetLights(Green);
    EXPECT_EQ(watch.Changes, 2);
    const int before = watch.Invalidates;
    traffic->SetRedLightColor(0xFF110000);
    traffic->SetYellowLightColor(0xFF111100);
    traffic->SetGreenLightColor(0xFF001100);
    traffic->SetOffColor(0xFF333333);
    EXPECT_EQ(watch.Changes, 2);
    EXPECT_GE(watch.Invalidates, before + 4);
    EXPECT_EQ(traffic.Fill("RedLight"), 0xFF333333u);
    EXPECT_EQ(traffic.Fill("YellowLight"), 0xFF333333u);
    EXPECT_EQ(traffic.Fill("GreenLight"), 0xFF001100u);
    EXPECT_EQ(Shown(traffic), "--g");
}

TEST(TrafficLight, LampsLeaveTheCachesAsTheyAre) {
    TTraffic traffic;
    THeadlessHost host(*traffic);
    host.Paint();
    ASSERT_FALSE(traffic->AreBuffersStale());
    traffic->SetLights(Yellow);
    traffic->SetYellowLightColor(0xFFFFFF00);
    traffic->SetOffColor(0xFF202020);
    EXPECT_FALSE(traffic->AreBuffersStale());
    traffic->SetDomeColor(0xFF112233);
    EXPECT_TRUE(traffic->AreBuffersStale());
}

TEST(TrafficLight, SwitchingLampsTakesBoundedMemory) {
    TTraffic traffic;
    THeadlessHost host(*traffic);
    host.Paint();
    const auto run = [&] {
        for (int i = 0; i < 24; ++i) {
            traffic->SetLights(TLights::FromMask(static_cast<std::uint32_t>(i % 8)));
            host.PaintStale();
        }
    };
    run();
    run();
    const std::size_t before = CountAllocations();
    run();
    // FIXME: what changes its shape or paint is compiled anew for each frame, which takes memory; a move does
    // not.
    EXPECT_LE(CountAllocations() - before, 24u * 550);
}

TEST(TrafficLight, AFullRefreshShowsTheLampsAnew) {
    TTraffic traffic;
    traffic.Get("RedLight").GetBrush().SetColor(0xFF123456);
    traffic->InitializeGauge();
    EXPECT_EQ(traffic.Fill("RedLight"), 0xFFFF0000u);
    traffic->BeginUpdate();
    traffic->SetLights(Green);
    EXPECT_EQ(Shown(traffic), "--g"); // setters act at once
    traffic->EndUpdate();
    EXPECT_EQ(Shown(traffic), "--g");
}

// Clicks

TEST(TrafficLight, AClickMovesTheLightOrPutsItOut) {
    TTraffic traffic;
    TWatch watch(*traffic);
    traffic.Click(Middle, RedY); // lit
    EXPECT_TRUE(traffic->GetLights().IsEmpty());
    traffic.Click(Middle, RedY); // dark
    EXPECT_EQ(traffic->GetLights(), Red);
    traffic.Click(Middle, YellowY);
    EXPECT_EQ(traffic->GetLights(), Yellow);
    traffic.Click(Middle, GreenY, {}, TMouseButton::Right);
    EXPECT_EQ(traffic->GetLights(), Green);
    EXPECT_EQ(Shown(traffic), "--g");
    EXPECT_EQ(watch.Changes, 4);
    traffic->SetLights(Red + Green);
    traffic.Click(Middle, RedY); // a lit one of two puts out both
    EXPECT_TRUE(traffic->GetLights().IsEmpty());
}

TEST(TrafficLight, KeysSwitchOneLampAloneInMultiSelect) {
    TTraffic traffic;
    traffic->SetMultiSelect(true);
    traffic.Click(Middle, GreenY, Ctrl);
    EXPECT_EQ(traffic->GetLights(), Red + Green);
    traffic.Click(Middle, RedY, Shift);
    EXPECT_EQ(traffic->GetLights(), Green);
    traffic.Click(Middle, YellowY, Shift + Ctrl);
    EXPECT_EQ(traffic->GetLights(), Yellow + Green);
    traffic.Click(Middle, YellowY, {TShiftKey::Alt}); // neither of the two keys
    EXPECT_TRUE(traffic->GetLights().IsEmpty());
    traffic->SetLights(Red + Green);
    traffic.Click(Middle, YellowY);
    EXPECT_EQ(traffic->GetLights(), Yellow);
}

TEST(TrafficLight, WithoutMultiSelectKeysDoNotCount) {
    TTraffic traffic;
    traffic.Click(Middle, GreenY, Ctrl);
    EXPECT_EQ(traffic->GetLights(), Green);
    traffic.Click(Middle, GreenY, Shift);
    EXPECT_TRUE(traffic->GetLights().IsEmpty());
}

TEST(TrafficLight, AnEmblemBelongsToItsLamp) {
    TTraffic traffic;
    traffic->SetLights({});
    traffic->SetRedDecoration(TDecoration::dcBolt);
    traffic->SetYellowDecoration(TDecoration::dcBolt);
    traffic->SetGreenDecoration(TDecoration::dcBolt);
    EXPECT_EQ(traffic.IdAt(Middle + 3, RedY), "useDecorationRed");
    traffic.Click(Middle + 3, RedY);
    EXPECT_EQ(traffic->GetLights(), Red);
    EXPECT_EQ(traffic.IdAt(Middle + 3, YellowY), "useDecorationYellow");
    traffic.Click(Middle + 3, YellowY);
    EXPECT_EQ(traffic->GetLights(), Yellow);
    EXPECT_EQ(traffic.IdAt(Middle + 3, GreenY), "useDecorationGreen");
    traffic.Click(Middle + 3, GreenY);
    EXPECT_EQ(traffic->GetLights(), Green);
    traffic->SetParts(TVZTrafficLight::AllParts - TVZTrafficLight::TParts{TPart::tlGreenLight});
    traffic.Click(Middle + 3, GreenY); // without its lamp
    EXPECT_TRUE(traffic->GetLights().IsEmpty());
}

TEST(TrafficLight, OtherPlacesDoNotReact) {
    TTraffic traffic;
    EXPECT_EQ(traffic.IdAt(Middle, 49), "useRedLeftHousing"); // the hood, where its halves overlap
    traffic.Click(Middle, 49);
    EXPECT_EQ(traffic.IdAt(26, 180), "useRedRightHousing"); // its shadow on the panel
    traffic.Click(26, 180);
    EXPECT_NE(traffic.IdAt(18, 300), "nothing");
    traffic.Click(18, 300); // frame
    EXPECT_NE(traffic.IdAt(Middle, 20), "nothing");
    traffic.Click(Middle, 20); // dome
    EXPECT_EQ(traffic.IdAt(2, 2), "nothing");
    traffic.Click(2, 2);
    EXPECT_EQ(traffic->GetLights(), Red);
}

TEST(TrafficLight, WithoutActionsEventsAreRaisedAllTheSame) {
    TTraffic traffic;
    traffic->SetEnableActions(false);
    int ups = 0;
    traffic->SetOnMouseUp([&](TObject&, TMouseButton, TShiftState, int, int) { ++ups; });
    traffic.Click(Middle, RedY);
    EXPECT_EQ(traffic->GetLights(), Red);
    EXPECT_EQ(ups, 1);
}

TEST(TrafficLight, TheEventComesFirst) {
    TTraffic traffic;
    TLights seen;
    traffic->SetOnMouseUp([&](TObject&, TMouseButton, TShiftState, int, int) {
        seen = traffic->GetLights();
        traffic->SetEnableActions(false);
    });
    traffic.Click(Middle, GreenY);
    EXPECT_EQ(seen, Red);
    EXPECT_EQ(traffic->GetLights(), Red);
}

TEST(TrafficLight, AHandlerMayDestroyIt) {
    TTraffic traffic;
    traffic->SetOnMouseUp([&](TObject&, TMouseButton, TShiftState, int, int) { traffic.Light.reset(); });
    traffic->HandleMouseDown(TMouseButton::Left, {}, Middle, RedY);
    traffic->HandleMouseUp(TMouseButton::Left, {}, Middle, RedY);
    EXPECT_EQ(traffic.Light, nullptr);
}

TEST(TrafficLight, ClicksFollowThePictureIntoAnySize) {
    TTraffic traffic;
    traffic->SetWidth(200);
    traffic->SetHeight(200); // 200 / 488 of the artwork's size, centred
    traffic.Click(100, 169);
    EXPECT_EQ(traffic->GetLights(), Green);
    traffic.Click(40, 169); // beside the picture
    EXPECT_EQ(traffic->GetLights(), Green);
    traffic->SetStretch(true);
    traffic.Click(40, 110);
    EXPECT_EQ(traffic->GetLights(), Yellow);
    traffic->SetEnabled(false);
    traffic.Click(100, 50);
    EXPECT_EQ(traffic->GetLights(), Yellow);
}

// Emblems

TEST(TrafficLight, EachLampHasItsEmblem) {
    TTraffic traffic;
    TWatch watch(*traffic);
    traffic->SetGreenDecoration(TDecoration::dcStar);
    EXPECT_EQ(traffic->GetDecoration(TLight::ltGreen), TDecoration::dcStar);
    EXPECT_FALSE(traffic.HasEmblem("DecorationRed"));
    EXPECT_FALSE(traffic.HasEmblem("DecorationYellow"));
    EXPECT_TRUE(traffic.HasEmblem("DecorationGreen"));
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_EQ(watch.Changes, 0);
    traffic->SetDecoration(TLight::ltGreen, TDecoration::dcStar);
    EXPECT_EQ(watch.Invalidates, 1);
    traffic->SetGreenDecoration(TDecoration::dcCustom); // there is no path of the user's own
    EXPECT_FALSE(traffic.HasEmblem("DecorationGreen"));
    traffic->SetYellowDecoration(TDecoration::dcBolt);
    TVZPathData bolt;
    bolt.SetPathString(Vz::GetDecorationPath(static_cast<int>(TDecoration::dcBolt)));
    EXPECT_EQ(traffic.Get<TSVGPath>("DecorationYellow").GetData().GetFigures(), bolt.GetFigures());
    traffic->SetYellowDecoration(TDecoration::dcNone);
    EXPECT_FALSE(traffic.HasEmblem("DecorationYellow"));
}

TEST(TrafficLight, ARefreshDrawsTheRedEmblemOnly) {
    TTraffic traffic;
    traffic->SetRedDecoration(TDecoration::dcStar);
    traffic->SetYellowDecoration(TDecoration::dcStar);
    const TVZPathData nothing;
    traffic.Get<TSVGPath>("DecorationRed").SetData(&nothing);
    traffic.Get<TSVGPath>("DecorationYellow").SetData(&nothing);
    traffic->InitializeGauge();
    EXPECT_TRUE(traffic.HasEmblem("DecorationRed"));
    EXPECT_FALSE(traffic.HasEmblem("DecorationYellow"));
    traffic->UpdateDecoration(TLight::ltYellow);
    EXPECT_TRUE(traffic.HasEmblem("DecorationYellow"));
}

TEST(TrafficLight, EmblemsShareTheirColors) {
    TTraffic traffic;
    traffic->SetDecorationFillColor(0xFF336699);
    traffic->SetDecorationStrokeColor(0x00000000);
    EXPECT_EQ(traffic.Fill("Decorations"), 0xFF336699u);
    EXPECT_EQ(traffic.Get("Decorations").GetPen().GetKind(), TVZGPBrushKind::None);
}

// Look

TEST(TrafficLight, BodyColorsGoIntoTheGradients) {
    TTraffic traffic;
    for (int i = 0; i < 2; ++i) { // recolouring does not add up
        traffic->SetDomeColor(0xFF0000FF);
        traffic->SetDomeColor(0xFF802010);
        EXPECT_EQ(traffic.Stops("radialGradientDome"),
                  (TColors{0xFFB25242, 0xFF802010, 0xFF721202, 0xFF630300}));
        traffic->SetFrameColor(0xFF405060);
        EXPECT_EQ(traffic.Stops("linearGradientFrame"),
                  (TColors{0xFF4A5A6A, 0xFF607080, 0xFF405060, 0xFF405060, 0xFF2C3C4C}));
        traffic->SetHoodColor(0xFF203040);
        EXPECT_EQ(traffic.Stops("linearGradientHousing"), (TColors{0xFF425262, 0xFF203040, 0xFF0C1C2C}));
    }
    EXPECT_EQ(traffic.Server("Frame"), "linearGradientFrame");
    EXPECT_EQ(traffic.Server("TopDome"), "radialGradientDome");
}

TEST(TrafficLight, BodyColorsAreFlatWithoutGradients) {
    TTraffic traffic;
    traffic->SetEnableGradients(false);
    EXPECT_EQ(traffic.Fill("Frame"), 0xFF2A2A2Au);
    EXPECT_EQ(traffic.Fill("TopDome"), 0xFF393939u);
    const TColors dome = traffic.Stops("radialGradientDome");
    traffic->SetDomeColor(0xFF802010);
    traffic->SetFrameColor(0xFF405060);
    traffic->SetHoodColor(0xFF203040);
    EXPECT_EQ(traffic.Fill("TopDome"), 0xFF802010u);
    EXPECT_EQ(traffic.Fill("Frame"), 0xFF405060u);
    EXPECT_EQ(traffic.Fill("LeftHood"), 0xFF203040u);
    EXPECT_EQ(traffic.Fill("RightHood"), 0xFF203040u);
    EXPECT_EQ(traffic.Server("LeftHood"), "");
    EXPECT_EQ(traffic.Stops("radialGradientDome"), dome);
    traffic->SetEnableGradients(true);
    EXPECT_EQ(traffic.Server("LeftHood"), "GradientLeftHousing");
    EXPECT_EQ(traffic.Server("RightHood"), "GradientRightHousing");
    EXPECT_EQ(traffic.Server("Frame"), "linearGradientFrame");
}

TEST(TrafficLight, TheHousingIsAlwaysFlat) {
    TTraffic traffic;
    for (const bool gradients : {true, false}) {
        traffic->SetEnableGradients(gradients);
        const TVZGPColor color = gradients ? 0xFF445566 : 0xFF665544;
        TWatch watch(*traffic);
        traffic->SetHousingColor(color);
        for (const char* const id : {"FrontHousing", "RightHousing", "LeftHousing"})
            EXPECT_EQ(traffic.Fill(id), color) << id;
        EXPECT_EQ(watch.Invalidates, 1);
        EXPECT_EQ(watch.Changes, 0);
    }
    EXPECT_NE(traffic.Fill("LeftHood"), 0xFF665544u);
}

TEST(TrafficLight, ShinesNeedGradientsAndDetail) {
    TTraffic traffic;
    const auto areShown = [&] {
        std::string shown;
        for (const char* const id : {"RedLightShine", "YellowLightShine", "GreenLightShine"})
            shown += traffic.IsShown(id) ? '1' : '0';
        return shown;
    };
    EXPECT_EQ(areShown(), "111");
    traffic->SetEnableGradients(false);
    EXPECT_EQ(areShown(), "000");
    traffic->SetDesign(TSVGDesign::sdSimple);
    traffic->SetEnableGradients(true);
    EXPECT_EQ(areShown(), "000");
    traffic->SetDesign(TSVGDesign::sdDetailed); // the design alone shows nothing
    EXPECT_EQ(areShown(), "000");
    traffic->UpdateGradients();
    EXPECT_EQ(areShown(), "111");
}

TEST(TrafficLight, EachPartHidesItsElements) {
    const std::vector<std::vector<std::string>> elements{
        {"TopDome"},
        {"Frame"},
        {"AssemblyRed"},
        {"useRedFrontHousing"},
        {"useRedLeftHousing", "RedLeftShadow"},
        {"useRedRightHousing"},
        {"DecorationRed"},
        {"AssemblyYellow"},
        {"useYellowFrontHousing"},
        {"useYellowLeftHousing", "YellowLeftShadow"},
        {"useYellowRightHousing"},
        {"DecorationYellow"},
        {"AssemblyGreen"},
        {"useGreenFrontHousing"},
        {"useGreenLeftHousing", "GreenLeftShadow"},
        {"useGreenRightHousing"},
        {"DecorationGreen"},
    };
    TTraffic traffic;
    for (std::uint32_t hidden = 0; hidden < elements.size(); ++hidden) {
        traffic->SetParts(
            TVZTrafficLight::TParts::FromMask(TVZTrafficLight::AllParts.GetMask() & ~(1u << hidden)));
        for (std::uint32_t part = 0; part < elements.size(); ++part)
            for (const std::string& id : elements[part])
                EXPECT_EQ(traffic.IsShown(id), part != hidden) << id;
    }
}

TEST(TrafficLight, AFormKeepsWhatWasSet) {
    RegisterComponentClasses();
    TTraffic traffic;
    traffic->SetLights(Yellow + Green);
    traffic->SetMultiSelect(true);
    traffic->SetEnableActions(false);
    traffic->SetYellowDecoration(TDecoration::dcSunny);
    traffic->SetOffColor(0xFF202020);
    traffic->SetHoodColor(0xFF203040);
    const std::string form = WriteForm(*traffic);
    const auto copy = ReadForm(form);
    EXPECT_EQ(WriteForm(*copy), form);
    EXPECT_EQ(dynamic_cast<TVZTrafficLight&>(*copy).GetDocument().WriteText(),
              traffic->GetDocument().WriteText());
}

TEST(TrafficLight, AnotherArtworkTakesOverWhatWasSet) {
    const std::string artwork = TVZTrafficLight::Create()->GetDocument().WriteText();
    TTraffic traffic;
    traffic->SetLights(Green);
    traffic->SetGreenLightColor(0xFF00FFFF);
    traffic->SetYellowDecoration(TDecoration::dcStar);
    traffic->LoadFromText(artwork);
    EXPECT_EQ(Shown(traffic), "--g");
    EXPECT_EQ(traffic.Fill("GreenLight"), 0xFF00FFFFu);
    EXPECT_TRUE(traffic.HasEmblem("DecorationYellow"));
    EXPECT_EQ(traffic->GetActiveSVGElement(), &traffic.Get("Lights"));
    traffic->LoadFromText("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
    EXPECT_NO_THROW(traffic->SetLights(Red));
    EXPECT_NO_THROW(traffic->SetRedDecoration(TDecoration::dcStar));
    EXPECT_NO_THROW(traffic.Click(50, 50));
    EXPECT_EQ(traffic->GetLights(), Red);
}

} // namespace
} // namespace Vz::Test
