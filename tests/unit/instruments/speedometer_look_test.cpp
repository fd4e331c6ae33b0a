// How the speedometer looks: parts, design, colours, gradients, light, emblem.

#include "RecolourByHand.h"
#include "SpeedometerProbe.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

namespace Vz::Test {
namespace {

using TPart = TVZSpeedometer::TPart;
using TParts = TVZSpeedometer::TParts;

// Parts and design

TEST(Speedometer, EachPartShowsItsElement) {
    const std::pair<TPart, const char*> rows[] = {
        {TPart::spFrame, "Frame"},
        {TPart::spBackface, "Backface"},
        {TPart::spDecoration, "Decoration"},
        {TPart::spMajorMarkers, "MarkersMajor"},
        {TPart::spMinorMarkers, "MarkersMinor"},
        {TPart::spKnob, "KnobGroup"},
        {TPart::spLabels, "Labels"},
        {TPart::spNeedle, "NeedleGroup"},
        {TPart::spGlass, "Glass"},
    };
    TSpeed speed;
    for (const auto& [part, id] : rows) {
        speed->SetParts(TParts{part});
        for (const auto& [other, otherId] : rows)
            EXPECT_EQ(speed.Get(otherId).GetVisible(), part == other) << id << ' ' << otherId;
    }
    speed->SetParts({});
    for (const auto& [part, id] : rows)
        EXPECT_FALSE(speed.Get(id).GetVisible());
    TWatch watch(*speed);
    speed->SetParts({});
    EXPECT_TRUE(watch.IsQuiet());
    speed->SetParts(TVZSpeedometer::AllParts);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_EQ(watch.Notices, 1);
}

TEST(Speedometer, SimpleDesignHidesTheDetail) {
    TSpeed speed;
    speed->SetDesign(TSVGDesign::sdSimple);
    for (const char* id : {"BackfaceHighlight", "InnerFrame", "NeedleHighlight", "Glass", "NeedleShadow"})
        EXPECT_FALSE(speed.Get(id).GetVisible()) << id;
    // The glass is a part as well: whichever ran last wins.
    speed->SetParts(TParts{TPart::spGlass});
    EXPECT_TRUE(speed.Get("Glass").GetVisible());
    speed->InitializeGauge(); // parts, then design
    EXPECT_FALSE(speed.Get("Glass").GetVisible());
    speed->SetDesign(TSVGDesign::sdDetailed);
    for (const char* id : {"BackfaceHighlight", "InnerFrame", "NeedleHighlight", "Glass", "NeedleShadow"})
        EXPECT_TRUE(speed.Get(id).GetVisible()) << id;
}

// Colours

TEST(Speedometer, ColorsAreTheArtworks) {
    TSpeed speed;
    EXPECT_EQ(speed->GetFrameColor(), speed.Stop("linearGradientFrame", 0));
    EXPECT_EQ(speed->GetBackfaceColor(), speed.Stop("linearGradientBackface", 0));
    EXPECT_EQ(speed->GetNeedleFillColor(), speed.Fill("Needle"));
    EXPECT_EQ(speed->GetNeedleStrokeColor(), speed.Stroke("Needle"));
    EXPECT_EQ(speed->GetLabelsFillColor(), speed.Fill("Labels"));
    EXPECT_EQ(speed->GetLabelsStrokeColor(), speed.Stroke("Labels"));
    EXPECT_EQ(speed->GetMarkersFillColor(), speed.Fill("MarkersMajor"));
    EXPECT_EQ(speed->GetMarkersStrokeColor(), speed.Stroke("MarkersMajor"));
    EXPECT_EQ(speed->GetKnobFillColor(), speed.Stop("GradientKnob", 0));
    EXPECT_EQ(speed->GetKnobStrokeColor(), speed.Stroke("Knob"));
    EXPECT_EQ(speed->GetDecorationFillColor(), 0xFFF06400u);
    EXPECT_EQ(speed->GetDecorationStrokeColor(), 0xFF000000u);
}

using TColorSetter = void (TVZSpeedometer::*)(TVZGPColor);

TEST(Speedometer, GradientColors) {
    const struct {
        TColorSetter Set;
        std::vector<const char*> Gradients;
        const char* Flat;
    } rows[] = {
        {&TVZSpeedometer::SetFrameColor, {"linearGradientFrame"}, "OuterFrame"},
        {&TVZSpeedometer::SetBackfaceColor,
         {"linearGradientBackfaceHighlight", "linearGradientBackface"},
         "BackfaceFlat"},
        {&TVZSpeedometer::SetKnobFillColor, {"GradientKnob"}, "Knob"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Flat);
        TSpeed speed;
        THeadlessHost host(*speed);
        host.Paint();
        std::vector<TVZGPColor> last;
        for (const char* id : row.Gradients) {
            const auto& gradient = speed.Get<TSVGCustomGradient>(id);
            last.push_back(speed.Stop(id, gradient.GetStopCount() - 1));
        }
        TWatch watch(*speed);
        (*speed.*row.Set)(0xFF2060A0);
        EXPECT_EQ(watch.Invalidates, 1);
        EXPECT_TRUE(speed->AreBuffersStale());
        EXPECT_EQ(speed.Get(row.Flat).GetBrush().GetKind(), TVZGPBrushKind::URI);
        for (std::size_t i = 0; i < row.Gradients.size(); ++i) {
            const auto& gradient = speed.Get<TSVGCustomGradient>(row.Gradients[i]);
            EXPECT_EQ(speed.Stop(row.Gradients[i], 0), 0xFF2060A0u);
            EXPECT_NE(speed.Stop(row.Gradients[i], gradient.GetStopCount() - 1), last[i]); // shaded too
        }
        // Recolouring starts from the artwork's stops: over another colour it gives the same.
        TSpeed other;
        (*other.*row.Set)(0xFFFF00FF);
        (*other.*row.Set)(0xFF2060A0);
        EXPECT_EQ(other.Paint(), speed.Paint());
        // With gradients off the flat element takes the colour, and the gradient stays.
        speed->SetEnableGradients(false);
        (*speed.*row.Set)(0xFF00FF00);
        EXPECT_EQ(speed.Fill(row.Flat), 0xFF00FF00u);
        EXPECT_EQ(speed.Stop(row.Gradients[0], 0), 0xFF2060A0u);
    }
}

TEST(Speedometer, PlainColors) {
    const struct {
        TColorSetter Set;
        std::vector<const char*> Elements;
        bool IsStroke;
        bool IsActive; ///< of the active element, which is in no cache
    } rows[] = {
        {&TVZSpeedometer::SetKnobStrokeColor, {"Knob"}, true, false},
        {&TVZSpeedometer::SetLabelsFillColor, {"Labels"}, false, false},
        {&TVZSpeedometer::SetLabelsStrokeColor, {"Labels"}, true, false},
        {&TVZSpeedometer::SetMarkersFillColor, {"MarkersMajor", "MarkersMinor"}, false, false},
        {&TVZSpeedometer::SetMarkersStrokeColor, {"MarkersMajor", "MarkersMinor"}, true, false},
        {&TVZSpeedometer::SetNeedleFillColor, {"Needle"}, false, true},
        {&TVZSpeedometer::SetNeedleStrokeColor, {"Needle"}, true, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Elements[0]);
        TSpeed speed;
        THeadlessHost host(*speed);
        host.Paint();
        TWatch watch(*speed);
        (*speed.*row.Set)(0xC0123456);
        EXPECT_EQ(watch.Invalidates, 1);
        EXPECT_EQ(watch.Notices, 1);
        EXPECT_EQ(watch.Changes, 0);
        EXPECT_EQ(speed->AreBuffersStale(), !row.IsActive);
        for (const char* id : row.Elements)
            EXPECT_EQ(row.IsStroke ? speed.Stroke(id) : speed.Fill(id), 0xC0123456u);
        if (!row.IsStroke) continue;
        (*speed.*row.Set)(0);
        for (const char* id : row.Elements)
            EXPECT_EQ(speed.Get(id).GetPen().GetKind(), TVZGPBrushKind::None);
    }
}

TEST(Speedometer, NeedlesRidgeTakesHalfTheBrightness) {
    TSpeed speed;
    speed->SetNeedleFillColor(0x80FF0305);
    EXPECT_EQ(speed.Fill("NeedleHighlight"), 0x80800202u); // 127.5, 1.5, 2.5
    speed->SetDesign(TSVGDesign::sdSimple);
    speed->SetNeedleFillColor(0xFF00FF00);
    EXPECT_EQ(speed.Fill("NeedleHighlight"), 0x80800202u);
    EXPECT_EQ(speed.Fill("Needle"), 0xFF00FF00u);
}

TEST(Speedometer, NeedleColorShowsThroughTheCaches) {
    TSpeed cached, fresh;
    THeadlessHost host(*cached);
    host.Paint();
    cached->SetNeedleFillColor(0xFFFF0000);
    cached->SetNeedleStrokeColor(0xFF0000FF);
    fresh->SetNeedleFillColor(0xFFFF0000);
    fresh->SetNeedleStrokeColor(0xFF0000FF);
    const TPixels shown = host.PaintStale().GetPixels();
    const auto expected = fresh.Paint();
    for (int y = 0; y < shown.Height; ++y)
        ASSERT_TRUE(std::equal(shown.Row(y), shown.Row(y) + shown.Width, expected.begin() + y * shown.Width))
            << y;
}

TEST(Speedometer, GradientsAreSwitched) {
    const struct {
        const char* Element;
        const char* Gradient;
        bool IsStroke;
        TVZGPColor Color;
    } rows[] = {
        {"BackfaceFlat", "linearGradientBackface", false, 0xFF555753},
        {"BackfaceHighlight", "linearGradientBackfaceHighlight", false, 0xFF555753},
        {"OuterFrame", "linearGradientFrame", false, 0xFF888A85},
        {"Knob", "radialGradientKnob", false, 0xFFFFFFFF},
        {"Decoration", "linearGradientDecorationFill", false, 0xFFF06400},
        {"Decoration", "linearGradientDecorationStroke", true, 0xFF000000},
    };
    TSpeed speed;
    const auto before = speed.Paint();
    for (const bool enable : {false, true}) {
        TWatch watch(*speed);
        speed->SetEnableGradients(enable);
        EXPECT_EQ(watch.Invalidates, 1);
        for (const auto& row : rows) {
            SCOPED_TRACE(row.Gradient);
            TSVGGraphicElement& element = speed.Get(row.Element);
            const TSVGBrush brush = row.IsStroke ? element.GetPen() : element.GetBrush();
            EXPECT_EQ(brush.GetKind(), enable ? TVZGPBrushKind::URI : TVZGPBrushKind::Solid);
            EXPECT_EQ(brush.GetURI(), enable ? row.Gradient : "");
            if (enable) continue;
            EXPECT_EQ(brush.GetColor(), row.Color);
        }
    }
    EXPECT_EQ(speed.Paint(), before);
}

TEST(Speedometer, LightTintsShineAndShadow) {
    TSpeed speed;
    EXPECT_EQ(speed.Fill("NeedleShadow"), 0xFF000000u);
    speed->SetLightColor(0xFFFFC080);
    EXPECT_EQ(speed.Stop("linearGradientShine", 0), 0xFFFFC080u);
    EXPECT_EQ(speed.Fill("NeedleShadow"), 0xFF7F4000u);
    speed->SetLightColor(0xFF0000FF);
    EXPECT_EQ(speed.Stop("linearGradientShine", 0), 0xFF0000FFu);
    EXPECT_EQ(speed.Fill("NeedleShadow"), 0xFF0000FFu);
}

TEST(Speedometer, EmblemsFillDependsOnTheDesign) {
    TSpeed speed;
    TWatch watch(*speed);
    speed->SetDecorationFillColor(0xFF0080FF);
    EXPECT_EQ(speed.Stop("GradientDecoration", 0), 0xFF0080FFu);
    EXPECT_EQ(speed.Get("Decoration").GetBrush().GetKind(), TVZGPBrushKind::URI);
    EXPECT_EQ(watch.Invalidates, 1);
    speed->SetDesign(TSVGDesign::sdSimple);
    speed->SetDecorationFillColor(0xFF00FF00);
    EXPECT_EQ(speed.Stop("GradientDecoration", 0), 0xFF0080FFu);
    EXPECT_EQ(speed.Get("Decoration").GetBrush().GetKind(), TVZGPBrushKind::Solid);
    EXPECT_EQ(speed.Fill("Decoration"), 0xFF00FF00u);
}

TColors Stops(TSpeed& speed, std::string_view id) {
    TColors stops;
    for (std::size_t i = 0; i < speed.Get<TSVGCustomGradient>(id).GetStopCount(); ++i)
        stops.push_back(speed.Stop(id, i));
    return stops;
}

/// What each setter that recolours makes of the artwork's stops.
TEST(Speedometer, GradientsAreRecolouredAsComputedByHand) {
    const std::pair<TColorSetter, const char*> rows[] = {
        {&TVZSpeedometer::SetFrameColor, "linearGradientFrame"},
        {&TVZSpeedometer::SetBackfaceColor, "linearGradientBackface"},
        {&TVZSpeedometer::SetBackfaceColor, "linearGradientBackfaceHighlight"},
        {&TVZSpeedometer::SetKnobFillColor, "GradientKnob"},
        {&TVZSpeedometer::SetDecorationFillColor, "GradientDecoration"},
        {&TVZSpeedometer::SetLightColor, "linearGradientShine"},
    };
    TSpeed speed;
    std::vector<TColors> drawn;
    for (const auto& [set, id] : rows)
        drawn.push_back(Stops(speed, id));
    std::mt19937 random(47);
    for (int round = 0; round < 50; ++round)
        for (std::size_t i = 0; i < std::size(rows); ++i) {
            const TVZGPColor color = random();
            (*speed.*rows[i].first)(color);
            ASSERT_EQ(Stops(speed, rows[i].second), WalkedByHand(drawn[i], color, true)) << rows[i].second;
        }
}

TEST(Speedometer, FlatColorsLeaveTheGradientsAndTheDisc) {
    TSpeed speed;
    const TColors drawn = Stops(speed, "linearGradientFrame");
    speed->SetEnableGradients(false);
    const TVZGPColor disc = speed.Fill("BackfaceHighlight");
    speed->SetFrameColor(0xFF00FF00);
    speed->SetBackfaceColor(0xFF0000FF);
    EXPECT_EQ(speed.Fill("BackfaceFlat"), 0xFF0000FFu);
    EXPECT_EQ(speed.Fill("BackfaceHighlight"), disc); // the setter names the flat element only
    EXPECT_EQ(Stops(speed, "linearGradientFrame"), drawn);
    speed->SetEnableGradients(true); // switches to the gradient as it is
    EXPECT_EQ(Stops(speed, "linearGradientFrame"), drawn);
    speed->SetEnableGradients(false);
    EXPECT_EQ(speed.Fill("OuterFrame"), 0xFF00FF00u);
    EXPECT_EQ(speed.Fill("BackfaceHighlight"), 0xFF0000FFu);
}

TEST(Speedometer, AFlatColorsAlphaDoesNotStayBehindInAGradient) {
    TSpeed never;
    never->SetFrameColor(0xFF2040A0);
    const auto picture = never.Paint();
    for (const TVZGPColor flat : {0x00000000u, 0x80FF0000u}) {
        TSpeed speed;
        speed->SetEnableGradients(false);
        speed->SetFrameColor(flat);
        EXPECT_NE(speed.Paint(), picture);
        speed->SetEnableGradients(true);
        speed->SetFrameColor(0xFF2040A0);
        EXPECT_EQ(speed.Paint(), picture) << flat;
    }
}

TEST(Speedometer, FillOfNoColorIsSwitchedOff) {
    TSpeed speed;
    const std::pair<TColorSetter, const char*> rows[] = {
        {&TVZSpeedometer::SetLabelsFillColor, "Labels"},
        {&TVZSpeedometer::SetMarkersFillColor, "MarkersMinor"},
        {&TVZSpeedometer::SetNeedleFillColor, "Needle"},
    };
    for (const auto& [set, id] : rows) {
        (*speed.*set)(0);
        EXPECT_EQ(speed.Get(id).GetBrush().GetKind(), TVZGPBrushKind::None) << id;
        (*speed.*set)(0xFF112233);
        EXPECT_EQ(speed.Get(id).GetBrush().GetKind(), TVZGPBrushKind::Solid) << id;
        EXPECT_EQ(speed.Fill(id), 0xFF112233u);
    }
}

TEST(Speedometer, ColorsGoOverAStyleOfTheArtwork) {
    TSpeed speed;
    std::istringstream artwork(R"svg(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 400 400">
      <style>rect { fill: #123456; stroke: #654321 }</style>
      <rect id="Needle" width="9" height="9" style="stroke:url(#none)"/>
      <rect id="Knob" width="9" height="9" class="k" style="stroke:#00ff00"/></svg>)svg");
    speed->LoadFromStream(artwork);
    speed->SetNeedleStrokeColor(0xFF0000FF);
    speed->SetKnobStrokeColor(0xFFFF00FF);
    speed->SetNeedleFillColor(0xFF00FFFF);
    EXPECT_EQ(speed.Get("Needle").GetPen().GetKind(), TVZGPBrushKind::Solid);
    EXPECT_EQ(speed.Get("Needle").GetPen().GetURI(), "");
    TSVGDocument copy;
    copy.LoadFromText(speed->GetDocument().WriteText());
    for (TSVGDocument* document : {&speed->GetDocument(), &copy}) {
        EXPECT_EQ(document->Find<TSVGGraphicElement>("Needle")->GetPen().GetColor(), 0xFF0000FFu);
        EXPECT_EQ(document->Find<TSVGGraphicElement>("Knob")->GetPen().GetColor(), 0xFFFF00FFu);
        EXPECT_EQ(document->Find<TSVGGraphicElement>("Needle")->GetBrush().GetColor(), 0xFF00FFFFu);
    }
}

TEST(Speedometer, EmblemsColorRepaintsAlsoWithoutItsGradient) {
    TSpeed speed;
    speed.Get<TSVGCustomGradient>("GradientDecoration").Remove();
    TWatch watch(*speed);
    speed->SetDecorationFillColor(0xFF0080FF);
    EXPECT_EQ(watch.Invalidates, 1);
    speed->SetDesign(TSVGDesign::sdSimple);
    speed.Get("Decoration").Remove();
    TWatch simple(*speed);
    speed->SetDecorationFillColor(0xFF00FF00); // as in the base: no element, no repaint
    EXPECT_TRUE(simple.IsQuiet());
}

/// A batch puts off nothing but the last initializing: it ends in the picture that single settings give.
TEST(Speedometer, BatchGivesTheSamePicture) {
    TSpeed single, batch;
    const auto edit = [](TSpeed& speed) {
        speed->SetMax(120);
        speed->SetValue(77);
        speed->SetFrameColor(0xFFA02020);
        speed->SetLightColor(0xFFFFC080);
        speed->SetDecoration(TDecoration::dcCar);
        speed->SetFormatStr("0.0");
        speed->GetFont().SetSize(18);
        speed->SetNeedleFillColor(0xFFFFFF00);
    };
    edit(single);
    batch->BeginUpdate();
    edit(batch);
    batch->EndUpdate();
    EXPECT_EQ(batch.Paint(), single.Paint());
    EXPECT_EQ(batch->GetDocument().WriteText(), single->GetDocument().WriteText());
}

TEST(Speedometer, EmblemElementIsTheOneOfItsParts) {
    TSpeed speed;
    const auto shown = speed.Paint();
    speed->SetParts(TVZSpeedometer::AllParts - TParts{TPart::spDecoration});
    EXPECT_NE(speed.Paint(), shown);
    speed->SetDecoration(TDecoration::dcStar);
    EXPECT_FALSE(speed.Get("Decoration").GetVisible());
    speed->SetParts(TVZSpeedometer::AllParts);
    speed->SetDecoration(TDecoration::dcFuelTank);
    EXPECT_EQ(speed.Paint(), shown);
}

} // namespace
} // namespace Vz::Test
