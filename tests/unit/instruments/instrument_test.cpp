#include "tavro/instruments/Instrument.h"

#include "InstrumentProbe.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/runtime/PropAccess.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <sstream>
#include <utility>

namespace Vz::Test {
namespace {

constexpr float Nan = std::numeric_limits<float>::quiet_NaN();

double AngleOf(const TSVGGraphicElement& element) {
    const TMatrix m = element.GetMatrix();
    return std::atan2(m.M12, m.M11) * 57.29577951308232;
}

// Construction

TEST(Instrument, ConstructionRunsItsStepsInOrder) {
    const auto probe = TProbe::Create();
    EXPECT_EQ(probe->Log,
              (TLog{"Resize 0x50", "Resize 50x50", "GetSVGResourceName", "LoadSVGResource ProbeSVG",
                    "LoadSVGProperties", "Resize 50x200", "Resize 200x200", "Constructed", "InitializeGauge",
                    "DoInitializeGauge", "UpdateDecoration", "DoUpdateParts", "DoUpdateDesign", "Complete"}));
}

TEST(Instrument, FreshOneHasTheDefaults) {
    const auto probe = TProbe::Create();
    EXPECT_EQ(probe->GetWidth(), 200);
    EXPECT_EQ(probe->GetHeight(), 200);
    EXPECT_EQ(probe->GetFormatStr(), "0.#");
    EXPECT_EQ(probe->GetDesign(), TSVGDesign::sdDetailed);
    EXPECT_EQ(probe->GetDecoration(), TDecoration::dcNone);
    EXPECT_EQ(probe->GetLightColor(), 0xFFFFFFFFu);
    EXPECT_TRUE(probe->GetEnableGradients());
    EXPECT_FALSE(probe->IsUpdating());
    EXPECT_FALSE(probe->IsFormatStrStored());
    EXPECT_EQ(probe->GetActiveSVGElement(), &probe->Get<TSVGGraphicElement>("Hand"));
    EXPECT_TRUE(probe->AreBuffersStale());
}

TEST(Instrument, MissingArtworkFailsTheConstruction) {
    TProbe::Artwork = "<svg";
    EXPECT_THROW(TProbe::Create(), EReadError);
    TProbe::Artwork = ProbeSvg;
    EXPECT_THROW(TVZSVGControl::Create()->LoadSVGResource(""), EResNotFound);
}

/// One whose artwork there is not.
class TLost final : public TCreatable<TLost, TVZSVGCustomInstrument> {
public:
    static constexpr std::string_view TypeName = "TLost";
    using TCreatable::TCreatable;
    std::string GetSVGResourceName() const override { return "NoSuchArtwork"; }
};

TEST(Instrument, ResourceThatThereIsNotFailsTheConstruction) {
    EXPECT_THROW(TLost::Create(), EResNotFound);
    const auto owner = TVZSVGControl::Create();
    EXPECT_THROW(TLost::Create(*owner), EResNotFound);
    EXPECT_EQ(owner->GetComponentCount(), 0);
}

// Update batches

TEST(Instrument, OutermostEndInitializesOnce) {
    const auto probe = TProbe::Create();
    probe->Log.clear();
    probe->BeginUpdate();
    probe->BeginUpdate();
    EXPECT_TRUE(probe->IsUpdating());
    probe->InitializeGauge();
    probe->EndUpdate();
    EXPECT_EQ(probe->Log, TLog{"InitializeGauge"}); // the call itself, which did nothing
    EXPECT_TRUE(probe->IsUpdating());
    probe->Log.clear();
    probe->EndUpdate();
    EXPECT_EQ(probe->Log, (TLog{"InitializeGauge", "DoInitializeGauge", "UpdateDecoration", "DoUpdateParts",
                                "DoUpdateDesign"}));
    EXPECT_FALSE(probe->IsUpdating());
}

TEST(Instrument, EndTooManyGoesBelowZero) {
    const auto probe = TProbe::Create();
    probe->Log.clear();
    probe->EndUpdate();
    EXPECT_FALSE(probe->IsUpdating());
    EXPECT_TRUE(probe->Log.empty());
    probe->BeginUpdate(); // back to 0: still no batch
    EXPECT_FALSE(probe->IsUpdating());
    probe->BeginUpdate();
    EXPECT_TRUE(probe->IsUpdating());
    probe->EndUpdate();
    EXPECT_EQ(probe->Log.front(), "InitializeGauge");
}

TEST(Instrument, InitializeGaugeIsOneDocumentUpdate) {
    const auto probe = TProbe::Create();
    TWatch watch(*probe);
    probe->OnStep = [&] {
        probe->Get<TSVGGraphicElement>("Face").SetVisible(
            !probe->Get<TSVGGraphicElement>("Face").GetVisible());
    };
    probe->InitializeGauge();
    EXPECT_EQ(watch.Notices, 1);
    EXPECT_EQ(watch.Invalidates, 1); // UpdateDecoration's; it has none of its own
}

TEST(Instrument, SettersActAtOnceInsideABatch) {
    const auto probe = TProbe::Create();
    probe->Log.clear();
    probe->BeginUpdate();
    probe->SetDesign(TSVGDesign::sdSimple);
    EXPECT_EQ(probe->Log, TLog{"DoUpdateDesign"});
    probe->EndUpdate();
}

TEST(Instrument, FaultOfAHandlerBelowASetterReachesTheCaller) {
    const auto probe = TProbe::Create();
    probe->GetDocument().OnChange = [](const TSVGChange&) { throw EConvertError("a handler's fault"); };
    EXPECT_THROW(probe->SetDecorationFillColor(0xFF112233), EConvertError);
    TWatch watch(*probe);
    probe->SetDecorationFillColor(0xFF445566);
    EXPECT_EQ(watch.Notices, 1) << "no update of the document was left open";
    EXPECT_EQ(probe->GetDecorationFillColor(), 0xFF445566u);
}

TEST(Instrument, CentreThatAHandlerMovesIsFoundAnew) {
    const auto probe = TProbe::Create();
    auto& face = probe->Get<TSVGGraphicElement>("Face");
    probe->TurnElement("Hand", "Face", 10);
    bool isMoved = false;
    probe->GetDocument().OnChange = [&](const TSVGChange&) {
        if (!std::exchange(isMoved, true)) face.SetMatrix(CreateTranslateVZMatrix(10, 0));
    };
    probe->TurnElement("Hand", "Face", 20);
    EXPECT_TRUE(isMoved);
    probe->TurnElement("Hand", "Face", 90);
    const TPointF center = VZCenterPoint(face.GetBounds());
    EXPECT_EQ(probe->Get<TSVGGraphicElement>("Hand").GetMatrix(),
              CreateRotationVZMatrix(center, static_cast<float>(std::numbers::pi / 2)));
    probe->GetDocument().OnChange = {};
}

TEST(Instrument, AnEmblemsAlphaDoesNotStayBehindInAGradient) {
    const auto probe = TProbe::Create();
    auto& emblem = probe->Get<TSVGGraphicElement>("Emblem");
    for (const TVZGPColor flat : {0x00000000u, 0x80FF0000u}) {
        probe->SetDecorationFillColor(0xFF112233);
        probe->SetDecorationFillColor(flat);
        EXPECT_EQ(emblem.GetBrush().GetColor(), flat);
        probe->DoEnableGradient("Emblem", "Shade", true, 0, true);
        EXPECT_EQ(emblem.GetBrush().GetKind(), TVZGPBrushKind::URI);
        EXPECT_EQ(emblem.GetComputedStyle().FillOpacity, 1.0) << flat;
    }
}

// Steps

TEST(Instrument, StepsEditMarkAndInvalidate) {
    const auto probe = TProbe::Create();
    THeadlessHost host(*probe);
    const std::pair<const char*, std::function<void()>> steps[] = {
        {"DoUpdateDesign", [&] { probe->UpdateDesign(); }},
        {"DoUpdateParts", [&] { probe->UpdateParts(); }},
        {"DoEnableGradients on", [&] { probe->UpdateGradients(); }},
        {"DoUpdateLight", [&] { probe->UpdateLight(); }},
    };
    for (const auto& [name, step] : steps) {
        SCOPED_TRACE(name);
        host.Paint();
        ASSERT_FALSE(probe->AreBuffersStale());
        probe->Log.clear();
        TWatch watch(*probe);
        // Edits inside are told to nobody before the end.
        probe->OnStep = [&] {
            probe->Get<TSVGGraphicElement>("Face").SetOpacity(0.5f);
            probe->Get<TSVGGraphicElement>("Face").SetOpacity(1);
            EXPECT_EQ(watch.Notices, 0);
            EXPECT_EQ(watch.Invalidates, 0);
        };
        step();
        probe->OnStep = {};
        EXPECT_EQ(probe->Log, TLog{name});
        EXPECT_EQ(watch.Notices, 1);
        EXPECT_EQ(watch.Invalidates, 1);
        EXPECT_EQ(watch.Changes, 0);
        EXPECT_TRUE(probe->AreBuffersStale());
    }
}

TEST(Instrument, LightTellsTheDocumentInAnyCase) {
    const auto probe = TProbe::Create();
    TWatch watch(*probe);
    probe->UpdateDesign(); // changes nothing: nothing to tell
    probe->UpdateParts();
    EXPECT_EQ(watch.Notices, 0);
    EXPECT_EQ(watch.Invalidates, 2);
    probe->UpdateLight();
    EXPECT_EQ(watch.Notices, 1);
}

TEST(Instrument, DocumentUpdateEndsWhenAStepRaises) {
    const auto probe = TProbe::Create();
    probe->OnStep = [] { throw EInvalidOperation("no"); };
    EXPECT_THROW(probe->UpdateDesign(), EInvalidOperation);
    EXPECT_THROW(probe->UpdateParts(), EInvalidOperation);
    EXPECT_THROW(probe->UpdateGradients(), EInvalidOperation);
    EXPECT_THROW(probe->UpdateLight(), EInvalidOperation);
    EXPECT_THROW(probe->InitializeGauge(), EInvalidOperation);
    probe->OnStep = {};
    TWatch watch(*probe);
    probe->ShowElement("Face", false);
    EXPECT_EQ(watch.Notices, 1); // no update was left open
}

TEST(Instrument, PartsOfAnEmptyDocumentDoNotRepaint) {
    const auto probe = TProbe::Create();
    probe->GetDocument().RemoveChildren();
    probe->Log.clear();
    TWatch watch(*probe);
    probe->UpdateParts();
    EXPECT_TRUE(probe->Log.empty());
    EXPECT_TRUE(watch.IsQuiet());
}

TEST(Instrument, OnChangeComesFromDoOnChangeOnly) {
    const auto probe = TProbe::Create();
    probe->DoOnChange();
    TObject* sender = nullptr;
    probe->SetOnChange([&](TObject& who) { sender = &who; });
    probe->SetDesign(TSVGDesign::sdSimple);
    EXPECT_EQ(sender, nullptr);
    probe->DoOnChange();
    EXPECT_EQ(sender, probe.get());
}

// Setters

TEST(Instrument, EqualValuesDoNothing) {
    const auto probe = TProbe::Create();
    probe->Log.clear();
    TWatch watch(*probe);
    probe->SetDesign(probe->GetDesign());
    probe->SetDecoration(probe->GetDecoration());
    probe->SetDecorationFillColor(probe->GetDecorationFillColor());
    probe->SetDecorationStrokeColor(probe->GetDecorationStrokeColor());
    probe->SetEnableGradients(true);
    probe->SetLightColor(0xFFFFFFFF);
    probe->SetFormatStr("0.#");
    probe->SetFaceColor(0xFF112233);
    EXPECT_TRUE(watch.IsQuiet());
    EXPECT_TRUE(probe->Log.empty());
}

TEST(Instrument, SettersRunTheirOneStep) {
    const auto probe = TProbe::Create();
    probe->Log.clear();
    probe->SetDesign(TSVGDesign::sdSimple);
    probe->SetEnableGradients(false);
    probe->SetEnableGradients(true);
    probe->SetLightColor(0xFF00FF00);
    probe->SetDecoration(TDecoration::dcBolt);
    probe->SetFormatStr("0.00");
    EXPECT_EQ(probe->Log, (TLog{"DoUpdateDesign", "DoEnableGradients off", "DoEnableGradients on",
                                "DoUpdateLight", "UpdateDecoration", "UpdateNumbers"}));
}

TEST(Instrument, UnusablePictureLeavesTheOldOne) {
    const auto probe = TProbe::Create();
    probe->SetFormatStr("0.00");
    probe->Log.clear();
    TWatch watch(*probe);
    EXPECT_THROW(probe->SetFormatStr("0.0.0"), EConvertError);
    EXPECT_THROW(probe->SetFormatStr("'open"), EConvertError);
    EXPECT_EQ(probe->GetFormatStr(), "0.00");
    EXPECT_TRUE(watch.IsQuiet());
    EXPECT_TRUE(probe->Log.empty());
    EXPECT_EQ(probe->FormatNumber(1234.5), "1234.50");
    EXPECT_TRUE(probe->IsFormatStrStored());
}

TEST(Instrument, ColorSetterEditsAndRepaints) {
    const auto probe = TProbe::Create();
    THeadlessHost host(*probe);
    host.Paint();
    TWatch watch(*probe);
    probe->SetFaceColor(0x80FF0000);
    EXPECT_EQ(probe->Get<TSVGGraphicElement>("Face").GetBrush().GetColor(), 0x80FF0000u);
    EXPECT_EQ(watch.Invalidates, 1);
    EXPECT_EQ(watch.Notices, 1);
    EXPECT_TRUE(probe->AreBuffersStale());
}

// Tools

TEST(Instrument, MissingElementsArePassedOver) {
    const auto probe = TProbe::Create();
    TWatch watch(*probe);
    probe->ShowElement("Nothing", false);
    probe->SetElementFill("Nothing", 1);
    probe->SetElementStroke("Nothing", 1);
    probe->SetElementText("Nothing", "x");
    probe->RecolourGradient("Nothing", 1);
    probe->WriteScale("Nothing", 0, 1);
    probe->ApplyFont("Nothing", TSVGFont());
    probe->DoEnableGradient("Nothing", "Shade", true, 0, true);
    EXPECT_FALSE(probe->TurnElement("Nothing", "Knob", 10));
    EXPECT_FALSE(probe->TurnElement("Hand", "Nothing", 10));
    EXPECT_TRUE(watch.IsQuiet());
}

TEST(Instrument, ElementsOfAnotherClassRaise) {
    const auto probe = TProbe::Create();
    EXPECT_THROW(probe->ShowElement("Shade", false), EInvalidCast);
    EXPECT_THROW(probe->SetElementText("Face", "x"), EInvalidCast);
    EXPECT_THROW(probe->RecolourGradient("Face", 1), EInvalidCast);
    EXPECT_THROW(probe->DoEnableGradient("Shade", "Shade", true, 0, true), EInvalidCast);
    probe->GetDocument().FindElement("Numbers")->Add<TSVGGroup>();
    EXPECT_THROW(probe->WriteScale("Numbers", 0, 1), EInvalidCast);
    probe->FDecorationElementId = "Face";
    EXPECT_THROW(probe->SetDecoration(TDecoration::dcBolt), EInvalidCast);
}

TEST(Instrument, StrokeOfNoColorIsSwitchedOff) {
    const auto probe = TProbe::Create();
    auto& face = probe->Get<TSVGGraphicElement>("Face");
    probe->SetElementStroke("Face", 0);
    EXPECT_EQ(face.GetPen().GetKind(), TVZGPBrushKind::None);
    probe->SetElementStroke("Face", 0x7F123456);
    EXPECT_EQ(face.GetPen().GetKind(), TVZGPBrushKind::Solid);
    EXPECT_EQ(face.GetPen().GetColor(), 0x7F123456u);
    probe->SetElementStroke("Face", 0x00123456); // transparent, but not switched off
    EXPECT_EQ(face.GetPen().GetKind(), TVZGPBrushKind::Solid);
}

TEST(Instrument, FillOfNoColorIsSwitchedOff) {
    const auto probe = TProbe::Create();
    auto& face = probe->Get<TSVGGraphicElement>("Face");
    probe->SetElementFill("Face", 0);
    EXPECT_EQ(face.GetBrush().GetKind(), TVZGPBrushKind::None);
    probe->SetElementFill("Face", 0x7F123456);
    EXPECT_EQ(face.GetBrush().GetKind(), TVZGPBrushKind::Solid);
    EXPECT_EQ(face.GetBrush().GetColor(), 0x7F123456u);
    probe->SetElementFill("Face", 0x00123456); // transparent, but not switched off
    EXPECT_EQ(face.GetBrush().GetKind(), TVZGPBrushKind::Solid);
    probe->DoEnableGradient("Face", "Shade", true, 0, true);
    for (const TVZGPColor color : {0u, 0xFF123456u}) {
        probe->SetElementFill("Face", color); // what has a gradient keeps it
        EXPECT_EQ(face.GetBrush().GetKind(), TVZGPBrushKind::URI);
    }
}

TEST(Instrument, ScaleIsWrittenEvenly) {
    const auto probe = TProbe::Create();
    const auto texts = [&] {
        std::string all;
        for (const auto& child : probe->GetDocument().FindElement("Numbers")->Children())
            all += dynamic_cast<TSVGCustomText&>(*child).GetText() + '|';
        return all;
    };
    probe->WriteScale("Numbers", -1, 2);
    EXPECT_EQ(texts(), "-1|0.5|2|");
    probe->SetFormatStr("0.00 'km/h'");
    probe->WriteScale("Numbers", 0, 1.0f / 3);
    EXPECT_EQ(texts(), "0.00 km/h|0.17 km/h|0.33 km/h|");
    auto& numbers = *probe->GetDocument().FindElement("Numbers");
    numbers.GetChild(0).Remove();
    numbers.GetChild(0).Remove();
    probe->WriteScale("Numbers", 7, 9); // the only one is the first
    EXPECT_EQ(texts(), "7.00 km/h|");
    numbers.RemoveChildren();
    probe->WriteScale("Numbers", 7, 9);
}

TEST(Instrument, ElementsTurnAboutTheCentreUnderItsOwnTransform) {
    const auto probe = TProbe::Create();
    auto& hand = probe->Get<TSVGGraphicElement>("Hand");
    EXPECT_TRUE(probe->TurnElement("Hand", "Knob", 90));
    EXPECT_NEAR(AngleOf(hand), 90, 1e-4);
    const TPointD centre = hand.GetTransform()(TPointD{51, 62}); // the knob's, with its translation
    EXPECT_NEAR(centre.X, 51, 1e-4);
    EXPECT_NEAR(centre.Y, 62, 1e-4);
    EXPECT_TRUE(probe->TurnElement("Hand", "Knob", Nan));
    EXPECT_NEAR(AngleOf(hand), 90, 1e-4);
    // The known centre is dropped when its element moves or changes.
    probe->Get<TSVGGraphicElement>("Knob").SetMatrix(CreateTranslateVZMatrix(-10, 0));
    probe->TurnElement("Hand", "Knob", 180);
    EXPECT_NEAR(hand.GetTransform()(TPointD{40, 60}).X, 40, 1e-4);
    probe->Get<TSVGBasicShape>("Knob").SetLength(TSVGBasicShape::TPart::CX, TSVGLength(TSVGUnit::Number, 30));
    probe->TurnElement("Hand", "Knob", 180);
    EXPECT_NEAR(hand.GetTransform()(TPointD{20, 60}).X, 20, 1e-4);
    // A group's centre follows what moves inside.
    probe->TurnElement("Hand", "Numbers", 180);
    const double before = hand.GetTransform().E;
    dynamic_cast<TSVGGraphicElement&>(probe->GetDocument().FindElement("Numbers")->GetChild(2))
        .SetMatrix(CreateTranslateVZMatrix(40, 0));
    probe->TurnElement("Hand", "Numbers", 180);
    EXPECT_NEAR(hand.GetTransform().E, before + 40, 1e-3);
}

TEST(Instrument, OpenSettingsOfAFontAreTheArtworks) {
    const auto probe = TProbe::Create();
    auto& numbers = probe->Get<TSVGGraphicElement>("Numbers");
    const TSVGStyleSet drawn = numbers.GetStyle();
    TSVGFont font;
    probe->ApplyFont("Numbers", font);
    EXPECT_EQ(numbers.GetStyle(), drawn);
    font.SetSize(17);
    font.SetWeight(700);
    probe->ApplyFont("Numbers", font);
    EXPECT_EQ(numbers.GetStyle().Find(TSVGStyleProperty::FontSize)->Number, 17);
    EXPECT_TRUE(numbers.GetStyle().Contains(TSVGStyleProperty::FontWeight));
    EXPECT_EQ(*numbers.GetStyle().Find(TSVGStyleProperty::FontFamily),
              *drawn.Find(TSVGStyleProperty::FontFamily));
    probe->SetElementFill("Numbers", 0xFF00FF00);
    font.SetSize(0);
    font.SetWeight(0);
    probe->ApplyFont("Numbers", font);
    EXPECT_EQ(*numbers.GetStyle().Find(TSVGStyleProperty::FontSize),
              *drawn.Find(TSVGStyleProperty::FontSize));
    EXPECT_FALSE(numbers.GetStyle().Contains(TSVGStyleProperty::FontWeight));
    EXPECT_EQ(numbers.GetBrush().GetColor(), 0xFF00FF00u); // no business of the font's
}

// Another artwork

/// The probe artwork in other colours.
std::string OtherArtwork() {
    std::string text(ProbeSvg);
    for (const auto& [from, to] : {std::pair{"#112233", "#aabbcc"}, {"fill:#0000ff", "fill:#00ffff"}}) {
        const std::size_t at = text.find(from);
        text.replace(at, std::string_view(from).size(), to);
    }
    return text;
}

TEST(Instrument, AnotherArtworkTakesThePropertiesOver) {
    const auto probe = TProbe::Create();
    probe->SetFaceColor(0xFF336699);
    probe->SetDecorationFillColor(0xFF123456);
    probe->SetEnableGradients(false);
    probe->SetLightColor(0xFF00FF00);
    TVZPathData path;
    path.SetPathString("M1 2 L3 4 L5 6 Z");
    probe->SetDecorationPath(path);
    probe->Log.clear();
    TProbe::Artwork = OtherArtwork();
    probe->LoadSVGResource("Other");
    TProbe::Artwork = ProbeSvg;
    EXPECT_EQ(probe->GetFaceColor(), 0xFF336699u);
    EXPECT_EQ(probe->GetDecorationFillColor(), 0xFF123456u);
    EXPECT_EQ(probe->Get<TSVGGraphicElement>("Emblem").GetBrush().GetColor(), 0xFF123456u);
    EXPECT_EQ(probe->GetLightColor(), 0xFF00FF00u);
    EXPECT_EQ(probe->GetDecorationPath()->GetPathString(), path.GetPathString());
    EXPECT_EQ(probe->GetDecoration(), TDecoration::dcCustom);
    EXPECT_EQ(probe->GetActiveSVGElement(), &probe->Get<TSVGGraphicElement>("Hand"));
    EXPECT_EQ(probe->Log, (TLog{"LoadSVGResource Other", "LoadSVGProperties", "DoUpdateLight",
                                "DoEnableGradients off", "InitializeGauge", "DoInitializeGauge",
                                "UpdateDecoration", "DoUpdateParts", "DoUpdateDesign"}));
}

TEST(Instrument, ArtworkFromAStreamOrABrokenOne) {
    const auto probe = TProbe::Create();
    probe->SetFaceColor(0xFF336699);
    std::istringstream good(OtherArtwork());
    probe->LoadFromStream(good);
    EXPECT_EQ(probe->Get<TSVGGraphicElement>("Face").GetBrush().GetColor(), 0xFF336699u);
    probe->Log.clear();
    std::istringstream bad("<svg><g></svg>");
    EXPECT_THROW(probe->LoadFromStream(bad), EReadError);
    EXPECT_TRUE(probe->Log.empty());
    EXPECT_EQ(probe->Get<TSVGGraphicElement>("Face").GetBrush().GetColor(), 0xFF336699u);
    // One without any of the elements.
    std::istringstream bare("<svg xmlns='http://www.w3.org/2000/svg'/>");
    probe->LoadFromStream(bare);
    EXPECT_EQ(probe->GetFaceColor(), 0xFF336699u);
    EXPECT_EQ(probe->GetActiveSVGElement(), nullptr);
}

} // namespace
} // namespace Vz::Test
