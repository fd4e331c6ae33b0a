#include "LightProbe.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/FormFile.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Vz::Test {
namespace {

using TCube = TLightProbe<TVZCubeLight>;
using TParts = TVZCubeLight::TParts;
using TColors = std::vector<TVZGPColor>;

void ExpectLit(TCube& cube, bool isLit) {
    EXPECT_EQ(cube.Fill("RedLight"), isLit ? cube->GetOnColor() : cube->GetOffColor());
    EXPECT_EQ(cube.Server("RedLightShine"), isLit ? "GradientShine" : "GradientDim");
}

TEST(CubeLight, FreshOne) {
    TCube cube;
    EXPECT_EQ(TVZCubeLight::Create()->GetWidth(), 200);
    EXPECT_EQ(TVZCubeLight::Create()->GetHeight(), 200);
    EXPECT_EQ(cube->GetSVGResourceName(), "CubeLightSVG");
    EXPECT_EQ(cube->GetActiveSVGElement(), &cube.Get("Lights"));
    EXPECT_EQ(cube->GetDecorationElementId(), "DecorationRed");
    EXPECT_TRUE(cube->GetChecked());
    EXPECT_TRUE(cube->GetEnableActions());
    EXPECT_EQ(cube->GetParts().GetMask(), 15u);
    EXPECT_EQ(cube->GetFrameColor(), 0xFF2A2A2Au);
    EXPECT_EQ(cube->GetHousingColor(), 0xFF242424u);
    EXPECT_EQ(cube->GetOnColor(), 0xFFFF0000u);
    EXPECT_EQ(cube->GetOffColor(), 0xFF000000u);
    EXPECT_EQ(cube->GetDecoration(), TDecoration::dcNone);
    EXPECT_EQ(cube->GetDecorationFillColor(), 0xFF000000u);
    EXPECT_EQ(cube->GetDecorationStrokeColor(), 0xFF000000u);
    ExpectLit(cube, true);
    EXPECT_EQ(cube->GetPropTable()[0].Name, "Checked");
    EXPECT_TRUE(cube->GetPropTable()[0].Main != TQuantity::None);
}

TEST(CubeLight, CheckedLightsTheLamp) {
    TCube cube;
    TWatch watch(*cube);
    cube->SetChecked(true);
    EXPECT_TRUE(watch.IsQuiet());
    cube->SetChecked(false);
    ExpectLit(cube, false);
    EXPECT_EQ(watch.Changes, 1);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_TRUE(cube->AreBuffersStale());
    cube->SetChecked(true);
    ExpectLit(cube, true);
    EXPECT_EQ(watch.Changes, 2);
}

TEST(CubeLight, AColorShowsInItsStateOnly) {
    TCube cube;
    cube->SetOffColor(0xFF112233);
    EXPECT_EQ(cube.Fill("RedLight"), 0xFFFF0000u);
    cube->SetChecked(false);
    EXPECT_EQ(cube.Fill("RedLight"), 0xFF112233u);
    TWatch watch(*cube);
    cube->SetOnColor(0xFF00FF00);
    EXPECT_EQ(cube.Fill("RedLight"), 0xFF112233u);
    EXPECT_EQ(watch.Changes, 0);
    EXPECT_GE(watch.Invalidates, 1);
    cube->SetChecked(true);
    EXPECT_EQ(cube.Fill("RedLight"), 0xFF00FF00u);
}

TEST(CubeLight, ARefreshLeavesTheLampAsItIs) {
    TCube cube;
    cube.Get("RedLight").GetBrush().SetColor(0xFF123456);
    cube->InitializeGauge();
    EXPECT_EQ(cube.Fill("RedLight"), 0xFF123456u);
    cube->UpdateState();
    EXPECT_EQ(cube.Fill("RedLight"), 0xFFFF0000u);
}

TEST(CubeLight, AClickSwitches) {
    TCube cube;
    TWatch watch(*cube);
    cube.Click(120, 120);
    EXPECT_FALSE(cube->GetChecked());
    ExpectLit(cube, false);
    cube.Click(60, 180, {TShiftKey::Ctrl}, TMouseButton::Right);
    EXPECT_TRUE(cube->GetChecked());
    cube.Click(120, 120, {TShiftKey::Shift}, TMouseButton::Middle);
    EXPECT_FALSE(cube->GetChecked());
    EXPECT_EQ(watch.Changes, 3);
}

TEST(CubeLight, TheEmblemSwitchesToo) {
    TCube cube;
    cube->SetDecoration(TDecoration::dcBolt);
    EXPECT_EQ(cube.IdAt(124, 120), "useDecorationRed");
    cube.Click(124, 120);
    EXPECT_FALSE(cube->GetChecked());
    cube->SetParts(TVZCubeLight::AllParts - TParts{TVZCubeLight::TPart::clLight});
    cube.Click(124, 120); // without the lamp
    EXPECT_TRUE(cube->GetChecked());
}

TEST(CubeLight, FrameAndHousingDoNot) {
    TCube cube;
    EXPECT_EQ(cube.IdAt(9, 120), "Frame");
    cube.Click(9, 120);
    EXPECT_EQ(cube.IdAt(30, 120), "useRedFrontHousing");
    cube.Click(30, 120);
    EXPECT_EQ(cube.IdAt(1, 1), "nothing");
    cube.Click(1, 1);
    EXPECT_TRUE(cube->GetChecked());
}

TEST(CubeLight, WithoutActionsEventsAreRaisedAllTheSame) {
    TCube cube;
    cube->SetEnableActions(false);
    int ups = 0;
    cube->SetOnMouseUp([&](TObject&, TMouseButton, TShiftState, int, int) { ++ups; });
    cube.Click(120, 120);
    EXPECT_TRUE(cube->GetChecked());
    EXPECT_EQ(ups, 1);
}

TEST(CubeLight, FrameColorGoesIntoItsGradient) {
    TCube cube;
    cube->SetFrameColor(0xFFFFFFFF);
    cube->SetFrameColor(0xFF405060);
    EXPECT_EQ(cube.Stops("linearGradientFrame"),
              (TColors{0xFF4A5A6A, 0xFF687888, 0xFF405060, 0xFF405060, 0xFF2C3C4C}));
    EXPECT_EQ(cube.Server("Frame"), "linearGradientFrame");
    cube->SetEnableGradients(false);
    EXPECT_EQ(cube.Fill("Frame"), 0xFF405060u);
    EXPECT_EQ(cube.Server("Frame"), "");
    cube->SetFrameColor(0xFF010203);
    EXPECT_EQ(cube.Fill("Frame"), 0xFF010203u);
    EXPECT_EQ(cube.Stops("linearGradientFrame")[2], 0xFF405060u);
}

TEST(CubeLight, HousingColorIsFlat) {
    TCube cube;
    TWatch watch(*cube);
    cube->SetHousingColor(0xFF445566);
    EXPECT_EQ(cube.Fill("FrontHousing"), 0xFF445566u);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_EQ(watch.Changes, 0);
}

TEST(CubeLight, TheShineNeedsGradientsAndDetail) {
    TCube cube;
    cube->SetDesign(TSVGDesign::sdSimple); // the design alone hides nothing
    EXPECT_TRUE(cube.IsShown("RedLightShine"));
    cube->UpdateGradients();
    EXPECT_FALSE(cube.IsShown("RedLightShine"));
    cube->SetDesign(TSVGDesign::sdDetailed);
    cube->SetEnableGradients(false);
    EXPECT_FALSE(cube.IsShown("RedLightShine"));
    cube->SetEnableGradients(true);
    EXPECT_TRUE(cube.IsShown("RedLightShine"));
}

TEST(CubeLight, EachPartHidesItsElement) {
    const char* const elements[] = {"Frame", "AssemblyRed", "useRedFrontHousing", "DecorationRed"};
    TCube cube;
    for (unsigned hidden = 0; hidden < 4; ++hidden) {
        cube->SetParts(TParts::FromMask(15u & ~(1u << hidden)));
        for (unsigned part = 0; part < 4; ++part)
            EXPECT_EQ(cube.IsShown(elements[part]), part != hidden) << elements[part];
    }
}

TEST(CubeLight, AFormKeepsWhatWasSet) {
    RegisterComponentClasses();
    TCube cube;
    cube->SetChecked(false);
    cube->SetOnColor(0xFF00FF00);
    cube->SetFrameColor(0xFF405060);
    cube->SetDecoration(TDecoration::dcStar);
    const std::string form = WriteForm(*cube);
    const auto copy = ReadForm(form);
    EXPECT_EQ(WriteForm(*copy), form);
    EXPECT_EQ(dynamic_cast<TVZCubeLight&>(*copy).GetDocument().WriteText(), cube->GetDocument().WriteText());
}

TEST(CubeLight, AnotherArtworkTakesOverWhatWasSet) {
    const std::string artwork = TVZCubeLight::Create()->GetDocument().WriteText();
    TCube cube;
    cube->SetOffColor(0xFF112233);
    cube->SetChecked(false);
    cube->LoadFromText(artwork);
    ExpectLit(cube, false);
    EXPECT_EQ(cube.Fill("RedLight"), 0xFF112233u);
    cube->LoadFromText("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
    EXPECT_NO_THROW(cube->SetChecked(true));
    EXPECT_NO_THROW(cube.Click(50, 50));
    EXPECT_TRUE(cube->GetChecked());
}

TEST(CubeLight, SwitchingTakesBoundedMemory) {
    TCube cube;
    THeadlessHost host(*cube);
    host.Paint();
    bool isLit = true;
    const auto run = [&] {
        for (int i = 0; i < 10; ++i) {
            cube->SetChecked(isLit = !isLit);
            host.PaintStale();
        }
    };
    run();
    run();
    const std::size_t before = CountAllocations();
    run();
    // FIXME: what changes its shape or paint is compiled anew for each frame, which takes memory; a move does
    // not.
    EXPECT_LE(CountAllocations() - before, 10u * 550);
}

} // namespace
} // namespace Vz::Test
