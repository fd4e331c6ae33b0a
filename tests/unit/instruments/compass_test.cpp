#include "tavro/Vz.Tavro.Compass.h"

#include "InstrumentProbe.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/instruments/ArtworkCheck.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/FormFile.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <sstream>
#include <vector>

namespace Vz::Test {
namespace {

using enum TCompassMovablePart;
using TPart = TVZCompass::TPart;
using TParts = TVZCompass::TParts;

constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float Nan = std::numeric_limits<float>::quiet_NaN();
constexpr float Greatest = std::numeric_limits<float>::max();

/// A compass, and what its artwork shows.
struct TShip {
    std::unique_ptr<TVZCompass> Compass = TVZCompass::Create();
    TVZCompass* operator->() { return Compass.get(); }
    TVZCompass& operator*() { return *Compass; }

    template <class T = TSVGGraphicElement> T& Get(std::string_view id) {
        return *Compass->GetDocument().Find<T>(id);
    }
    TVZGPColor Fill(std::string_view id) { return Get(id).GetBrush().GetColor(); }
    TVZGPColor Stroke(std::string_view id) { return Get(id).GetPen().GetColor(); }
    TVZGPColor Stop(std::string_view id, std::size_t index) {
        return Get<TSVGCustomGradient>(id).GetStop(index).GetStopColor();
    }
    TVZGPColor LastStop(std::string_view id) {
        return Stop(id, Get<TSVGCustomGradient>(id).GetStopCount() - 1);
    }
    bool IsShown(std::string_view id) { return Get(id).GetVisible(); }
    /// How far an element is turned, in degrees clockwise.
    double Turned(std::string_view id) {
        const TMatrix m = Get(id).GetMatrix();
        return std::atan2(m.M12, m.M11) * 180 / std::numbers::pi;
    }
    void ExpectTurned(double needle, double detail, double backface) {
        EXPECT_NEAR(std::remainder(Turned("Needle") - needle, 360), 0, 1e-3);
        EXPECT_NEAR(std::remainder(Turned("BackfaceDetail") - detail, 360), 0, 1e-3);
        EXPECT_NEAR(std::remainder(Turned("Backface") - backface, 360), 0, 1e-3);
    }
    std::vector<std::uint32_t> Paint() {
        THeadlessHost host(*Compass);
        const TPixels pixels = host.Paint().GetPixels();
        std::vector<std::uint32_t> copy;
        for (int y = 0; y < pixels.Height; ++y)
            copy.insert(copy.end(), pixels.Row(y), pixels.Row(y) + pixels.Width);
        return copy;
    }
};

// Angle

TEST(Compass, FreshOne) {
    TShip ship;
    EXPECT_EQ(ship->GetAngle(), 0);
    EXPECT_EQ(ship->GetRotate(), cmpFaceNRose);
    EXPECT_EQ(ship->GetParts().GetMask(), 1023u);
    EXPECT_EQ(ship->GetDecoration(), TDecoration::dcStar);
    EXPECT_EQ(ship->GetDecorationElementId(), "Rose");
    EXPECT_EQ(ship->GetSVGResourceName(), "CompassMetallicSVG");
    EXPECT_EQ(ship->GetActiveSVGElement(), &ship.Get("Backface"));
    EXPECT_EQ(ship->GetWidth(), 200);
    EXPECT_EQ(ship->GetHeight(), 200);
    ship.ExpectTurned(-18, 0, 0);
}

TEST(Compass, AngleIsHeldByTheOneBefore) {
    TShip ship;
    ship->SetAngle(-5);
    EXPECT_EQ(ship->GetAngle(), 0);
    ship->SetAngle(10);
    ship->SetAngle(400);
    EXPECT_EQ(ship->GetAngle(), 400);
    ship.ExpectTurned(-18, 0, 400);
    ship->SetAngle(500);
    EXPECT_EQ(ship->GetAngle(), 360);
    ship->SetAngle(500);
    EXPECT_EQ(ship->GetAngle(), 500);
    ship->SetAngle(20); // also one in the range
    EXPECT_EQ(ship->GetAngle(), 360);
    ship->SetAngle(20);
    EXPECT_EQ(ship->GetAngle(), 20);
    ship->SetAngle(400);
    ship->SetAngle(-1);
    EXPECT_EQ(ship->GetAngle(), 0);
}

TEST(Compass, AngleIsShownAtOnceAndTellsNobody) {
    TShip ship;
    ship.Paint();
    TWatch watch(*ship);
    ship->SetAngle(0);
    EXPECT_TRUE(watch.IsQuiet());
    ship->SetAngle(90);
    ship.ExpectTurned(-18, 0, 90);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_EQ(watch.Changes, 0);
    EXPECT_FALSE(ship->AreBuffersStale());
    ship->SetAngle(90);
    EXPECT_EQ(watch.Invalidates, 1);
}

TEST(Compass, NumbersThatAreNone) {
    TShip ship;
    ship->SetAngle(50);
    TWatch watch(*ship);
    for (const float number : {Nan, Infinity, -Infinity}) {
        ship->SetAngle(number);
        ship->SetSeconds(number);
        ship->SetAngle(1, 2, number);
    }
    EXPECT_TRUE(watch.IsQuiet());
    EXPECT_EQ(ship->GetAngle(), 50);
    ship->SetAngle(Greatest);
    EXPECT_EQ(ship->GetAngle(), Greatest);
    EXPECT_EQ(ship->GetDegrees(), std::numeric_limits<int>::max());
    EXPECT_EQ(ship->GetMinutes(), std::numeric_limits<int>::max());
    ship->SetRotate(cmpNeedle);
    EXPECT_EQ(ship->GetAngle(), Greatest);
    EXPECT_NO_THROW(ship.Paint());
    ship->SetMinutes(5); // seconds without end
    EXPECT_EQ(ship->GetAngle(), Greatest);
    ship->SetDegrees(std::numeric_limits<int>::min());
    EXPECT_TRUE(std::isfinite(ship->GetAngle()));
}

TEST(Compass, DegreesMinutesSeconds) {
    TShip ship;
    ship->SetAngle(12, 30, 36);
    EXPECT_FLOAT_EQ(ship->GetAngle(), 12.51f);
    EXPECT_EQ(ship->GetDegrees(), 12);
    EXPECT_EQ(ship->GetMinutes(), 30);
    EXPECT_NEAR(ship->GetSeconds(), -1049.4, 1e-3);
    ship->SetAngle(10.5f);
    EXPECT_EQ(ship->GetDegrees(), 10);
    EXPECT_EQ(ship->GetMinutes(), 30);
    EXPECT_EQ(ship->GetSeconds(), -1170);
    ship->SetMinutes(30); // the seconds go back in, as they are
    EXPECT_FLOAT_EQ(ship->GetAngle(), 10.175f);
    ship->SetAngle(10.5f);
    ship->SetSeconds(36);
    EXPECT_FLOAT_EQ(ship->GetAngle(), 10.51f);
    ship->SetAngle(10.75f);
    ship->SetDegrees(20);
    EXPECT_EQ(ship->GetAngle(), 20.75f);
    ship->SetDegrees(-30); // 0.75 - 30
    EXPECT_EQ(ship->GetAngle(), 0);
    ship->SetAngle(-1, 90, 1800); // -1 + 1.5 + 0.5
    EXPECT_EQ(ship->GetAngle(), 1);
}

// What turns

TEST(Compass, EachPartTurnsByItself) {
    TShip ship;
    ship->SetRotate(cmpNeedle);
    EXPECT_EQ(ship->GetActiveSVGElement(), &ship.Get("Needle"));
    ship->SetAngle(90);
    ship.ExpectTurned(72, 0, 0);
    ship->SetRotate(cmpFace);
    EXPECT_EQ(ship->GetAngle(), 90);
    EXPECT_EQ(ship->GetActiveSVGElement(), &ship.Get("BackfaceDetail"));
    ship.ExpectTurned(-18, 90, 0);
    ship->SetRotate(cmpFaceNRose);
    EXPECT_EQ(ship->GetActiveSVGElement(), &ship.Get("Backface"));
    ship.ExpectTurned(-18, 0, 90);
    ship->SetRotate(cmpNeedle);
    ship.ExpectTurned(72, 0, 0);
}

TEST(Compass, RotateKeepsAnAngleAboveTheTurn) {
    TShip ship;
    ship->SetAngle(400);
    ship->SetRotate(cmpFace);
    EXPECT_EQ(ship->GetAngle(), 400);
    ship.ExpectTurned(-18, 40, 0);
}

TEST(Compass, RotateTellsNobodyAndRepaints) {
    TShip ship;
    ship->SetAngle(30);
    ship.Paint();
    TWatch watch(*ship);
    ship->SetRotate(cmpFaceNRose);
    EXPECT_TRUE(watch.IsQuiet());
    ship->SetRotate(cmpNeedle);
    EXPECT_EQ(watch.Changes, 0);
    EXPECT_EQ(watch.Invalidates, 3); // back, to the angle, and the whole
    EXPECT_TRUE(ship->AreBuffersStale());
}

/// The middle stays where it is, whatever turns, and wherever it is looked for: the knob may be hidden.
TEST(Compass, EverythingTurnsAboutTheMiddle) {
    for (const TSVGDesign design : {TSVGDesign::sdDetailed, TSVGDesign::sdSimple})
        for (const TCompassMovablePart part : {cmpNeedle, cmpFace, cmpFaceNRose}) {
            TShip ship;
            ship->SetDesign(design);
            ship->SetParts({TPart::cpFrame, TPart::cpBackface, TPart::cpRose, TPart::cpNeedle});
            ship->SetRotate(part);
            for (const float angle : {33.0f, 181.0f, 359.0f}) {
                ship->SetAngle(angle);
                const TPointD still = ship->GetActiveSVGElement()->GetTransform()(TPointD{200, 200});
                EXPECT_NEAR(still.X, 200, 1e-3) << int(part) << ' ' << angle;
                EXPECT_NEAR(still.Y, 200, 1e-3) << int(part) << ' ' << angle;
            }
        }
}

TEST(Compass, WithoutItsMiddleAPartTurnsAboutTheOrigin) {
    TShip ship;
    ship.Get("ScrewDriveUp").Remove();
    ship.Get("InnerCircle").Remove();
    ship->SetAngle(90);
    ship.ExpectTurned(-18, 0, 90);
    const TMatrix face = ship.Get("Backface").GetMatrix();
    EXPECT_NEAR(face.M31, 0, 1e-4);
    EXPECT_NEAR(face.M32, 0, 1e-4);
    ship->SetRotate(cmpNeedle);
    ship.ExpectTurned(72, 0, 0);
    const TMatrix needle = ship.Get("Needle").GetMatrix();
    EXPECT_NEAR(needle.M31, 0, 1e-4);
    EXPECT_NEAR(needle.M32, 0, 1e-4);
}

TEST(Compass, MissingPartsAreNoError) {
    TShip ship;
    ship->SetActiveSVGElement(nullptr);
    ship.Get("Needle").Remove();
    TWatch watch(*ship);
    ship->SetRotate(cmpNeedle);
    EXPECT_EQ(ship->GetActiveSVGElement(), nullptr);
    ship->SetAngle(90);
    EXPECT_EQ(ship->GetAngle(), 90);
    EXPECT_EQ(watch.Invalidates, 2);
    ship->GetDocument().RemoveChildren();
    watch.Invalidates = 0;
    ship->SetAngle(91); // nothing is left that could be shown
    EXPECT_EQ(ship->GetAngle(), 91);
    EXPECT_EQ(watch.Invalidates, 0);
}

TEST(Compass, BatchShowsTheAngle) {
    TShip ship;
    ship->BeginUpdate();
    ship->SetRotate(cmpFace);
    ship->SetAngle(70);
    ship->EndUpdate();
    ship.ExpectTurned(-18, 70, 0);
}

// Parts and design

TEST(Compass, EachPartShowsItsElements) {
    const std::pair<TPart, std::vector<const char*>> rows[] = {
        {TPart::cpFrame, {"Frame"}},
        {TPart::cpBackface, {"Backface"}},
        {TPart::cpBackfaceLines, {"BackfaceLines", "InnerCircle"}},
        {TPart::cpRose, {"Rose"}},
        {TPart::cpMarkers, {"Markers"}},
        {TPart::cpNumbers, {"Numbers"}},
        {TPart::cpLabels, {"Labels"}},
        {TPart::cpNeedle, {"Needle"}},
        {TPart::cpNeedleShadow, {"NeedleShadow"}},
        {TPart::cpKnob, {"Knob"}},
    };
    TShip ship;
    const auto whole = ship.Paint();
    for (const auto& [part, ids] : rows) {
        ship->SetParts(TVZCompass::AllParts - TParts{part});
        EXPECT_NE(ship.Paint(), whole) << ids[0];
        for (const auto& [other, others] : rows)
            for (const char* const id : others)
                EXPECT_EQ(ship.IsShown(id), other != part) << id;
        ship->SetParts({part});
        for (const auto& [other, others] : rows)
            for (const char* const id : others)
                EXPECT_EQ(ship.IsShown(id), other == part) << id;
    }
    ship->SetParts(TVZCompass::AllParts);
    EXPECT_EQ(ship.Paint(), whole);
}

constexpr const char* Details[] = {
    "FrameOrnamentation",
    "ReflectionLow",
    "ReflectionHigh",
    "BackfaceShadow",
    "Numbers",
    "Markers",
    "NeedleHighShadow",
    "NeedleHighHighlight",
    "NeedleLowShadow",
    "NeedleLowHighlight",
    "ScrewDriveUp",
    "ScrewDriveAcross",
    "KnobFrame",
};

TEST(Compass, SimpleDesignHidesTheDetail) {
    TShip ship;
    TWatch watch(*ship);
    ship->SetDesign(TSVGDesign::sdSimple);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_TRUE(ship->AreBuffersStale());
    for (const char* const id : Details)
        EXPECT_FALSE(ship.IsShown(id)) << id;
    for (const char* const id : {"frameRect", "BackfaceCircle", "Labels", "NeedleHigh", "KnobHead", "Rose"})
        EXPECT_TRUE(ship.IsShown(id)) << id;
    ship->SetDesign(TSVGDesign::sdDetailed);
    for (const char* const id : Details)
        EXPECT_TRUE(ship.IsShown(id)) << id;
}

TEST(Compass, LastWriterShowsNumbersAndMarkers) {
    TShip ship;
    ship->SetParts(TVZCompass::AllParts - TParts{TPart::cpNumbers, TPart::cpMarkers});
    EXPECT_FALSE(ship.IsShown("Numbers"));
    EXPECT_FALSE(ship.IsShown("Markers"));
    ship->InitializeGauge(); // the design runs behind the parts
    EXPECT_TRUE(ship.IsShown("Numbers"));
    EXPECT_TRUE(ship.IsShown("Markers"));
    ship->UpdateParts();
    EXPECT_FALSE(ship.IsShown("Numbers"));
    EXPECT_FALSE(ship.IsShown("Markers"));
}

// Colours

TEST(Compass, ColorsAreTheArtworks) {
    TShip ship;
    EXPECT_EQ(ship->GetBackfaceColor(),
              ship.Stop("linearGradientBackface", 1)); // the last one, not the first
    EXPECT_NE(ship->GetBackfaceColor(), ship.Stop("linearGradientBackface", 0));
    EXPECT_EQ(ship->GetFrameColor(), ship.Stop("linearGradientFrame", 0));
    EXPECT_EQ(ship->GetKnobFillColor(), ship.Stop("linearGradientKnobHead", 0));
    EXPECT_EQ(ship->GetKnobStrokeColor(), ship.Stroke("Knob"));
    EXPECT_EQ(ship->GetBackfaceLinesFillColor(), ship.Fill("BackfaceLines"));
    EXPECT_EQ(ship->GetBackfaceLinesStrokeColor(), ship.Stroke("BackfaceLines"));
    EXPECT_EQ(ship->GetMarkersFillColor(), ship.Fill("Markers"));
    EXPECT_EQ(ship->GetMarkersStrokeColor(), ship.Stroke("Markers"));
    EXPECT_EQ(ship->GetNumbersFillColor(), ship.Fill("Numbers"));
    EXPECT_EQ(ship->GetNumbersStrokeColor(), ship.Stroke("Numbers"));
    EXPECT_EQ(ship->GetLabelsFillColor(), ship.Fill("Labels"));
    EXPECT_EQ(ship->GetLabelsStrokeColor(), ship.Stroke("Labels"));
    EXPECT_EQ(ship->GetNeedleHighColor(), ship.Fill("NeedleHigh"));
    EXPECT_EQ(ship->GetNeedleLowColor(), ship.Fill("NeedleLow"));
    EXPECT_EQ(ship->GetDecorationFillColor(), 0xFFAFC6C5u);
    EXPECT_EQ(ship->GetDecorationStrokeColor(), 0xFFAFC6C5u);
}

using TColorSetter = void (TVZCompass::*)(TVZGPColor);

TEST(Compass, FlatColors) {
    const struct {
        TColorSetter Set;
        bool IsFill;
        std::vector<const char*> Ids;
    } rows[] = {
        {&TVZCompass::SetBackfaceLinesFillColor, true, {"BackfaceLines", "InnerCircle"}},
        {&TVZCompass::SetBackfaceLinesStrokeColor, false, {"BackfaceLines", "InnerCircle"}},
        {&TVZCompass::SetMarkersFillColor, true, {"Markers"}},
        {&TVZCompass::SetMarkersStrokeColor, false, {"Markers"}},
        {&TVZCompass::SetNumbersFillColor, true, {"Numbers"}},
        {&TVZCompass::SetNumbersStrokeColor, false, {"Numbers"}},
        {&TVZCompass::SetLabelsFillColor, true, {"Labels"}},
        {&TVZCompass::SetLabelsStrokeColor, false, {"Labels"}},
        {&TVZCompass::SetKnobStrokeColor, false, {"Knob"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Ids[0]);
        TShip ship;
        ship.Paint();
        const auto paint = [&](const char* id) {
            return row.IsFill ? ship.Get(id).GetBrush() : ship.Get(id).GetPen();
        };
        TWatch watch(*ship);
        (*ship.*row.Set)(0xFF2060A0);
        EXPECT_EQ(watch.Invalidates, 1);
        EXPECT_TRUE(ship->AreBuffersStale());
        for (const char* const id : row.Ids) {
            EXPECT_EQ(paint(id).GetColor(), 0xFF2060A0u) << id;
            EXPECT_EQ(paint(id).GetKind(), TVZGPBrushKind::Solid) << id;
        }
        (*ship.*row.Set)(0xFF2060A0);
        EXPECT_EQ(watch.Invalidates, 1);
        (*ship.*row.Set)(0);
        for (const char* const id : row.Ids)
            EXPECT_EQ(paint(id).GetKind(), TVZGPBrushKind::None) << id;
        EXPECT_EQ(watch.Changes, 0);
    }
}

TEST(Compass, FrameAndBackface) {
    TShip ship;
    const auto frame = ship.LastStop("linearGradientFrame");
    const auto backface = ship.Stop("linearGradientBackface", 0);
    ship->SetFrameColor(0xFFFF00FF); // recolouring begins with the artwork's stops each time
    ship->SetFrameColor(0xFF2060A0);
    EXPECT_EQ(ship.Stop("linearGradientFrame", 0), 0xFF2060A0u);
    EXPECT_NE(ship.LastStop("linearGradientFrame"), frame);
    TShip once;
    once->SetFrameColor(0xFF2060A0);
    EXPECT_EQ(once.LastStop("linearGradientFrame"), ship.LastStop("linearGradientFrame"));
    ship->SetBackfaceColor(0xFF00FFFF);
    ship->SetBackfaceColor(0xFF808080);
    EXPECT_EQ(ship.Stop("linearGradientBackface", 1), 0xFF808080u);
    // 0xF2F2F2 to 0xDCDCDC: 128 * (1 - 22 / 242) = 116.36
    EXPECT_EQ(backface, 0xFFDCDCDCu);
    EXPECT_EQ(ship.Stop("linearGradientBackface", 0), 0xFF747474u);

    ship->SetEnableGradients(false);
    ship->SetFrameColor(0xFF112233);
    ship->SetBackfaceColor(0xFF445566);
    EXPECT_EQ(ship.Fill("frameRect"), 0xFF112233u);
    EXPECT_EQ(ship.Fill("BackfaceCircle"), 0xFF445566u);
    EXPECT_EQ(ship.Stop("linearGradientFrame", 0), 0xFF2060A0u); // the gradients stay
    EXPECT_EQ(ship.Stop("linearGradientBackface", 1), 0xFF808080u);
}

TEST(Compass, KnobIsLightAndDark) {
    TShip ship;
    ship->SetKnobFillColor(0xFF91502B);                     // 145, 80, 43
    const TVZGPColor light = 0xFFFFA056, dark = 0xFF482816; // 72.5 to 72, 21.5 to 22: half to even
    EXPECT_EQ(ship.Stop("linearGradientKnobHead", 0), 0xFF91502Bu);
    EXPECT_EQ(ship.Stop("linearGradientKnobHead", 1), light);
    EXPECT_EQ(ship.Stop("linearGradientKnobDriveUp", 0), dark);
    EXPECT_EQ(ship.Stop("linearGradientKnobDriveUp", 1), light);
    EXPECT_EQ(ship.Stop("linearGradientKnobDriveAcross", 0), dark);
    EXPECT_EQ(ship.Stop("linearGradientKnobDriveAcross", 1), light);
    EXPECT_EQ(ship.Stop("linearGradientKnobFrame", 0), light);
    EXPECT_EQ(ship.Stop("linearGradientKnobFrame", 1), 0xFF91502Bu);
    EXPECT_EQ(ship.Get("KnobHead").GetBrush().GetKind(), TVZGPBrushKind::URI);
    ship->SetEnableGradients(false);
    ship->SetKnobFillColor(0xFF445566);
    EXPECT_EQ(ship.Fill("KnobHead"), 0xFF445566u);
    EXPECT_EQ(ship.Fill("KnobFrame"), 0xFF91502Bu); // only the head takes a colour set later
    EXPECT_EQ(ship.Stop("linearGradientKnobHead", 0), 0xFF91502Bu);
}

TEST(Compass, NeedleIsLightAndDarkWithAndWithoutGradients) {
    for (const bool gradients : {true, false}) {
        TShip ship;
        ship->SetEnableGradients(gradients);
        ship->SetNeedleHighColor(0x800FC864); // 15, 200, 100
        EXPECT_EQ(ship.Fill("NeedleHigh"), 0x800FC864u);
        EXPECT_EQ(ship.Stroke("NeedleHigh"), 0x8012F078u);                      // 18, 240, 120
        EXPECT_EQ(ship.Stop("linearGradientNeedleHighShadow", 0), 0x80043C1Eu); // 4.5 to 4, 60, 30
        EXPECT_EQ(ship.Stop("linearGradientNeedleHighShadow", 1), 0x8012F078u);
        ship->SetNeedleLowColor(0xFFFF0A05); // 255, 10, 5
        EXPECT_EQ(ship.Fill("NeedleLow"), 0xFFFF0A05u);
        EXPECT_EQ(ship.Stroke("NeedleLow"), 0xFFFF0C06u);
        EXPECT_EQ(ship.Stop("linearGradientNeedleLowShadow", 0), 0xFF4C0302u); // 76.5 to 76, 3, 1.5 to 2
        EXPECT_EQ(ship.Stop("linearGradientNeedleLowShadow", 1), 0xFFFF0C06u);
        EXPECT_EQ(ship.Fill("NeedleHigh"), 0x800FC864u);
    }
}

// Gradients and light

TEST(Compass, GradientsGiveWayToFlatColors) {
    TShip ship;
    ship->SetFrameColor(0xFF102030);
    ship->SetBackfaceColor(0xFF405060);
    ship->SetKnobFillColor(0xFF708090);
    ship->SetLightColor(0xFFFFF0E0);
    TWatch watch(*ship);
    ship->SetEnableGradients(false);
    EXPECT_EQ(watch.Invalidates, 1);
    const std::pair<const char*, TVZGPColor> flat[] = {
        {"BackfaceCircle", 0xFF405060},   {"ReflectionLow", 0xFFFFF0E0}, {"ReflectionHigh", 0xFFFFF0E0},
        {"frameRect", 0xFF102030},        {"KnobHead", 0xFF708090},      {"ScrewDriveUp", 0xFF708090},
        {"ScrewDriveAcross", 0xFF708090}, {"KnobFrame", 0xFF708090},
    };
    for (const auto& [id, color] : flat) {
        EXPECT_EQ(ship.Get(id).GetBrush().GetKind(), TVZGPBrushKind::Solid) << id;
        EXPECT_EQ(ship.Fill(id), color) << id;
    }
    EXPECT_FALSE(ship.IsShown("FrameOrnamentation"));
    ship->SetEnableGradients(true);
    for (const auto& [id, color] : flat)
        EXPECT_EQ(ship.Get(id).GetBrush().GetKind(), TVZGPBrushKind::URI) << id;
    EXPECT_EQ(ship.Get("KnobFrame").GetBrush().GetURI(), "linearGradientKnobFrame");
    EXPECT_TRUE(ship.IsShown("FrameOrnamentation"));
    ship->SetEnableGradients(false);
    ship->UpdateDesign(); // whichever ran last shows the ornaments
    EXPECT_TRUE(ship.IsShown("FrameOrnamentation"));
}

TEST(Compass, LightTintsTheShadows) {
    TShip ship;
    ship->SetLightColor(0xFFFFC080);
    EXPECT_EQ(ship.Fill("BackfaceShadow"), 0xFF7F4000u); // less its smallest channel
    EXPECT_EQ(ship.Fill("NeedleShadow"), 0xFF7F4000u);
    ship->SetLightColor(0xFFFFFFFF);
    EXPECT_EQ(ship.Fill("BackfaceShadow"), 0xFF000000u);
}

// Rose

TEST(Compass, RoseIsItsOwnForThreeEmblems) {
    TShip ship;
    const auto rose = [&] { return ship.Get<TSVGPath>("Rose").GetData().GetPathString(); };
    std::vector<std::string> paths{rose()};
    EXPECT_TRUE(paths[0].starts_with("M50 50")) << paths[0].substr(0, 40);
    TWatch watch(*ship);
    for (const TDecoration decoration : {TDecoration::dcModern, TDecoration::dcGlobe}) {
        ship->SetDecoration(decoration);
        TVZPathData catalogue;
        catalogue.SetPathString(Vz::GetDecorationPath(static_cast<int>(decoration)));
        EXPECT_NE(rose(), catalogue.GetPathString());
        EXPECT_NE(rose(), paths.back());
        paths.push_back(rose());
        const TRectF box = ship.Get<TSVGPath>("Rose").GetBounds();
        EXPECT_NEAR(VZCenterPoint(box).X, 50, 4);
        EXPECT_NEAR(VZCenterPoint(box).Y, 50, 4);
    }
    EXPECT_EQ(watch.Invalidates, 2);
    EXPECT_TRUE(ship->AreBuffersStale());
    ship->SetDecoration(TDecoration::dcBolt);
    TVZPathData bolt;
    bolt.SetPathString(Vz::GetDecorationPath(static_cast<int>(TDecoration::dcBolt)));
    EXPECT_EQ(rose(), bolt.GetPathString());
    ship->SetDecoration(TDecoration::dcStar);
    EXPECT_EQ(rose(), paths[0]);
    ship->SetDecoration(TDecoration::dcNone);
    EXPECT_EQ(rose(), "");
    ship.Get("Rose").Remove();
    watch.Invalidates = 0;
    ship->SetDecoration(TDecoration::dcStar);
    EXPECT_EQ(watch.Invalidates, 1);
}

// Streams and other artworks

TEST(Compass, StoresWhatDiffers) {
    RegisterComponentClasses();
    TShip ship;
    EXPECT_EQ(WriteForm(*ship), "object TVZCompass\nend\n");
    ship->SetAngle(400);
    ship->SetRotate(cmpNeedle);
    EXPECT_EQ(WriteForm(*ship), "object TVZCompass\n  Angle = 400\n  Rotate = cmpNeedle\nend\n");
    const auto copy = ReadForm(WriteForm(*ship));
    auto& read = dynamic_cast<TVZCompass&>(*copy);
    EXPECT_EQ(read.GetAngle(), 400);
    EXPECT_EQ(read.GetActiveSVGElement(), read.GetDocument().Find<TSVGGraphicElement>("Needle"));
    EXPECT_EQ(read.GetDocument().WriteText(), ship->GetDocument().WriteText());
}

TEST(Compass, EveryLoadMakesWhatTurnsActive) {
    TShip ship;
    const std::string text = ship->GetDocument().WriteText();
    ship->SetAngle(40);
    std::istringstream stream(text);
    const std::pair<TCompassMovablePart, const char*> rows[] = {
        {cmpNeedle, "Needle"}, {cmpFace, "BackfaceDetail"}, {cmpFaceNRose, "Backface"}};
    for (const auto& [part, id] : rows) {
        ship->SetRotate(part);
        ship->LoadSVGResource("CompassMetallicSVG");
        EXPECT_EQ(ship->GetActiveSVGElement(), &ship.Get(id));
        ship->LoadFromText(text);
        EXPECT_EQ(ship->GetActiveSVGElement(), &ship.Get(id));
        EXPECT_NEAR(std::remainder(ship.Turned(id) - (part == cmpNeedle ? 22 : 40), 360), 0, 1e-3);
        EXPECT_NEAR(ship.Turned("Needle"), 22, 1e-3); // a load lays the needle to the angle, too
        EXPECT_EQ(ship->GetRotate(), part);
    }
}

TEST(Compass, TakesAnyArtwork) {
    TShip ship;
    ship->LoadFromText("<svg xmlns='http://www.w3.org/2000/svg'/>"); // every element is missing
    ship->SetAngle(10);
    ship->SetRotate(cmpFace);
    ship->SetFrameColor(1);
    ship->SetKnobFillColor(1);
    ship->SetNeedleHighColor(1);
    ship->SetNumbersFillColor(0);
    ship->SetEnableGradients(false);
    ship->SetLightColor(0xFF102030);
    ship->SetDesign(TSVGDesign::sdSimple);
    ship->SetDecoration(TDecoration::dcGlobe);
    ship->SetParts({});
    EXPECT_NO_THROW(ship.Paint());
    EXPECT_EQ(ship->GetAngle(), 10);
}

TEST(Compass, ContractNamesWhatIsLookedFor) {
    TShip ship;
    const auto faults = CheckArtwork(*ship, "<svg xmlns='http://www.w3.org/2000/svg'/>");
    const auto isMissed = [&](std::string_view id) {
        return std::ranges::any_of(faults, [&](const TArtworkFault& fault) {
            return fault.Text.find('"' + std::string(id) + '"') != std::string::npos;
        });
    };
    for (const char* const id : Details)
        EXPECT_TRUE(isMissed(id)) << id;
    for (const char* const id : {"Frame",
                                 "frameRect",
                                 "BackfaceCircle",
                                 "Backface",
                                 "Rose",
                                 "BackfaceDetail",
                                 "InnerCircle",
                                 "BackfaceLines",
                                 "Labels",
                                 "Needle",
                                 "NeedleShadow",
                                 "NeedleHigh",
                                 "NeedleLow",
                                 "Knob",
                                 "KnobHead",
                                 "linearGradientBackface",
                                 "linearGradientFrame",
                                 "linearGradientReflectionLow",
                                 "linearGradientReflectionHigh",
                                 "linearGradientKnobHead",
                                 "linearGradientKnobDriveUp",
                                 "linearGradientKnobDriveAcross",
                                 "linearGradientKnobFrame",
                                 "linearGradientNeedleHighShadow",
                                 "linearGradientNeedleLowShadow"})
        EXPECT_TRUE(isMissed(id)) << id;
}

// Frames

TEST(Compass, FramesAllocateNothing) {
    for (const TCompassMovablePart part : {cmpNeedle, cmpFace, cmpFaceNRose}) {
        TShip ship;
        ship->SetRotate(part);
        THeadlessHost host(*ship);
        host.Paint();
        const auto turn = [&] {
            for (int i = 0; i < 90; ++i) {
                ship->SetAngle(float(i * 4));
                host.PaintStale();
            }
        };
        turn(); // everything grows to its size
        turn();
        const std::uint64_t epoch = ship->GetDocument().GetEpoch();
        const std::size_t before = CountAllocations();
        turn();
        EXPECT_EQ(CountAllocations(), before) << int(part);
        EXPECT_EQ(ship->GetDocument().GetEpoch(), epoch);
        EXPECT_FALSE(ship->AreBuffersStale());
    }
}

} // namespace
} // namespace Vz::Test
