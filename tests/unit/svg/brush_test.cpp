#include "tavro/svg/model/Element.h"

#include "DocumentScene.h"
#include "tavro/svg/model/Gradients.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Vz::Test {
namespace {

using Kind = TVZGPBrushKind;

/// A rectangle of 50 by 50 with these attributes.
struct TBox {
    std::unique_ptr<TSVGDocument> Document;
    TSVGGraphicElement* Element;
    TSVGBrush Brush;

    explicit TBox(std::string_view attributes, std::string_view parent = {})
        : Document(LoadContent("<linearGradient id='g'><stop stop-color='lime'/></linearGradient><g " +
                               std::string(parent) + "><rect id='r' width='50' height='50' " +
                               std::string(attributes) + "/></g>"))
        , Element(Document->Find<TSVGGraphicElement>("r"))
        , Brush(Element->GetBrush()) {}
    std::uint32_t Pixel() const { return Drawn(*Document).At(25, 25); }
};

TEST(Brush, HasTheKindsNumbers) {
    EXPECT_EQ(static_cast<int>(Kind::None), 0);
    EXPECT_EQ(static_cast<int>(Kind::Solid), 1);
    EXPECT_EQ(static_cast<int>(Kind::URI), 2);
}

TEST(Brush, ReadsItsKindAfterInheritance) {
    EXPECT_EQ(TBox("").Brush.GetKind(), Kind::Solid) << "the initial fill is black";
    EXPECT_EQ(TBox("").Element->GetPen().GetKind(), Kind::None) << "the initial stroke is none";
    EXPECT_EQ(TBox("fill='none'").Brush.GetKind(), Kind::None);
    EXPECT_EQ(TBox("fill='url(#g)'").Brush.GetKind(), Kind::URI);
    EXPECT_EQ(TBox("", "fill='none'").Brush.GetKind(), Kind::None);
    EXPECT_EQ(TBox("", "fill='url(#g)'").Brush.GetKind(), Kind::URI);
    EXPECT_EQ(TBox("fill='inherit'", "fill='none'").Brush.GetKind(), Kind::None);
    EXPECT_EQ(TBox("", "stroke='red'").Element->GetPen().GetKind(), Kind::Solid);
}

TEST(Brush, ReadsItsColorAfterInheritance) {
    EXPECT_EQ(TBox("").Brush.GetColor(), 0xFF000000u);
    EXPECT_EQ(TBox("fill='#102030'").Brush.GetColor(), 0xFF102030u);
    EXPECT_EQ(TBox("fill-opacity='.5'", "fill='#102030'").Brush.GetColor(), 0x80102030u);
    EXPECT_EQ(TBox("fill='#102030'", "fill-opacity='.2'").Brush.GetColor(), 0x33102030u);
    EXPECT_EQ(TBox("", "color='#405060' fill='currentColor'").Brush.GetColor(), 0xFF405060u);
    EXPECT_EQ(TBox("style='fill:#0f0'", "fill='red'").Brush.GetColor(), 0xFF00FF00u);
}

TEST(Brush, SetsItsColorWithAlpha) {
    TBox box("fill='red' fill-opacity='.3'");
    box.Brush.SetColor(0xFF0000FF);
    EXPECT_EQ(box.Brush.GetColor(), 0xFF0000FFu);
    EXPECT_EQ(box.Pixel(), 0xFF0000FFu);
    box.Brush.SetColor(0x800000FF);
    EXPECT_EQ(box.Brush.GetColor(), 0x800000FFu);
    EXPECT_EQ(box.Pixel(), 0x80000080u) << "premultiplied";
    box.Brush.SetColor(0x0000FF00);
    EXPECT_EQ(box.Brush.GetColor(), 0x0000FF00u);
    EXPECT_EQ(box.Pixel(), 0u);
}

TEST(Brush, RoundsItsAlphaToTheEvenNumber) {
    EXPECT_EQ(Faded(0xFF123456, 0.1), 0x1A123456u); // 25.5
    EXPECT_EQ(Faded(0xFF123456, 0.3), 0x4C123456u); // 76.5
    EXPECT_EQ(Faded(0x80123456, 7), 0x80123456u);
    EXPECT_EQ(Faded(0x80123456, -1), 0x00123456u);
    EXPECT_EQ(Faded(0x80123456, std::nan("")), 0x00123456u);
    const auto document =
        LoadContent("<rect id='r' fill='red' fill-opacity='0.3'/><linearGradient><stop id='s' "
                    "stop-color='red' stop-opacity='0.3'/></linearGradient>");
    EXPECT_EQ(document->Find<TSVGGraphicElement>("r")->GetBrush().GetColor(), 0x4CFF0000u);
    EXPECT_EQ(document->Find<TSVGGradientStop>("s")->GetStopBrush().GetColor(), 0x4CFF0000u);
    EXPECT_EQ(document->Find<TSVGGradientStop>("s")->GetStopColor(), 0x4CFF0000u);
}

TEST(Brush, ReadsBackEveryAlpha) {
    TBox box("", "fill-opacity='.7'");
    for (unsigned alpha = 0; alpha < 256; ++alpha) {
        const TVZGPColor color = MakeColor(alpha, 10, 20, 30);
        box.Brush.SetColor(color);
        ASSERT_EQ(box.Brush.GetColor(), color);
    }
}

TEST(Brush, WithoutAValueOfItsOwnBecomesSolid) {
    TBox box("", "fill='currentColor'");
    box.Brush.SetColor(0xFF112233);
    EXPECT_EQ(box.Brush.GetKind(), Kind::Solid);
    EXPECT_EQ(box.Pixel(), 0xFF112233u);
    EXPECT_TRUE(box.Element->GetStyle().Contains(TSVGStyleProperty::Fill));
    EXPECT_FALSE(box.Document->GetChild(1).GetStyle().Find(TSVGStyleProperty::Fill)->Kind ==
                 TStyleValue::TKind::Color)
        << "the parent keeps its own";
}

TEST(Brush, SwitchedOffKeepsItsColorForLater) {
    TBox box("fill='red'");
    box.Brush.SetKind(Kind::None);
    EXPECT_EQ(box.Pixel(), 0u);
    box.Brush.SetColor(0xFF00FFFF);
    EXPECT_EQ(box.Brush.GetKind(), Kind::None) << "none stays none";
    EXPECT_EQ(box.Pixel(), 0u);
    box.Brush.SetKind(Kind::Solid);
    EXPECT_EQ(box.Pixel(), 0xFF00FFFFu);
}

TEST(Brush, RefersToAPaintServer) {
    TBox box("fill='red'");
    box.Brush.SetURI("g");
    EXPECT_EQ(box.Brush.GetKind(), Kind::Solid) << "the kind stays";
    EXPECT_EQ(box.Pixel(), 0xFFFF0000u);
    box.Brush.SetKind(Kind::URI);
    EXPECT_EQ(box.Brush.GetURI(), "g");
    EXPECT_EQ(box.Pixel(), 0xFF00FF00u);
    box.Brush.SetURI("");
    EXPECT_EQ(box.Brush.GetURI(), "");
    EXPECT_EQ(box.Brush.GetKind(), Kind::URI);
    box.Brush.SetKind(Kind::Solid);
    EXPECT_EQ(box.Pixel(), 0xFFFF0000u) << "the colour that it had";
}

TEST(Brush, TakesReferencesInEveryForm) {
    TBox box("fill='url(#g)'");
    EXPECT_EQ(box.Brush.GetURI(), "g");
    for (const char* form : {"other", "#other", "url(#other)", " url( #other ) "}) {
        box.Brush.SetURI("g");
        box.Brush.SetURI(form);
        EXPECT_EQ(box.Brush.GetURI(), "other") << form;
    }
    EXPECT_EQ(box.Pixel(), 0u) << "there is none, and no colour to fall back on";
    box.Brush.SetColor(0xFF0000FF);
    EXPECT_EQ(box.Brush.GetKind(), Kind::URI);
    EXPECT_EQ(box.Pixel(), 0xFF0000FFu) << "the fallback";
    box.Brush.SetURI("g");
    EXPECT_EQ(box.Pixel(), 0xFF00FF00u);
}

TEST(Brush, AFlatColorsAlphaDoesNotStayBehindInAGradient) {
    for (const TVZGPColor flat : {0x00000000u, 0x80FF0000u, 0xFFFF0000u})
        for (const char* attributes : {"fill='url(#g)'", "fill='url(#g)' fill-opacity='.5'"})
            for (const char* parent : {"", "fill-opacity='.25'"}) {
                TBox box(attributes, parent);
                const std::uint32_t never = box.Pixel();
                for (int switched = 0; switched < 2; ++switched) {
                    box.Brush.SetURI("");
                    box.Brush.SetKind(flat == 0 ? Kind::None : Kind::Solid);
                    box.Brush.SetColor(flat);
                    EXPECT_EQ(box.Brush.GetColor(), flat);
                    EXPECT_EQ(box.Pixel(), flat == 0x80FF0000 ? 0x80800000 : flat) << "premultiplied";
                    box.Brush.SetURI("g");
                    box.Brush.SetKind(Kind::URI);
                    EXPECT_EQ(box.Pixel(), never) << flat << attributes << parent;
                }
                EXPECT_EQ(Drawn(*LoadText(box.Document->WriteText())), Drawn(*box.Document));
            }
    // Half, a quarter, and the gradient's green.
    EXPECT_EQ(TBox("fill='url(#g)' fill-opacity='.5'").Pixel(), 0x80008000u);
    EXPECT_EQ(TBox("fill='url(#g)'", "fill-opacity='.25'").Pixel(), 0x40004000u);
}

TEST(Brush, AnOpacityNearerThanTheColorHolds) {
    TBox box("fill-opacity='.5'", "id='p' fill='red'");
    box.Document->Find<TSVGGraphicElement>("p")->GetBrush().SetColor(0x33FF0000);
    EXPECT_EQ(box.Brush.GetColor(), 0x80FF0000u);
    EXPECT_EQ(box.Pixel(), 0x80800000u);
    EXPECT_EQ(Drawn(*LoadText(box.Document->WriteText())), Drawn(*box.Document));
    box.Element->SetSet(TSVGStyleProperty::FillOpacity, false);
    EXPECT_EQ(box.Brush.GetColor(), 0x33FF0000u);
    EXPECT_EQ(AlphaOf(box.Pixel()), 0x33u);
}

TEST(Brush, TellsOnlyChanges) {
    TBox box("fill='red'");
    TNotices notices(*box.Document);
    box.Brush.SetColor(0xFFFF0000);
    box.Brush.SetKind(Kind::Solid);
    box.Brush.SetURI("");
    EXPECT_EQ(notices.Take(), 0u);
    box.Brush.SetKind(Kind::None);
    EXPECT_EQ(notices.Take(), 1u);
}

TEST(Brush, IsWrittenAndReadBack) {
    TBox box("");
    const auto again = [&] { return LoadText(box.Document->WriteText()); };
    const auto brush = [](TSVGDocument& document) {
        return document.Find<TSVGGraphicElement>("r")->GetBrush();
    };
    box.Brush.SetColor(0x40112233);
    EXPECT_EQ(brush(*again()).GetColor(), 0x40112233u);
    box.Brush.SetURI("g");
    box.Brush.SetKind(Kind::URI);
    EXPECT_EQ(brush(*again()).GetURI(), "g");
    EXPECT_EQ(Drawn(*again()), Drawn(*box.Document));
    box.Brush.SetURI("");
    EXPECT_EQ(Drawn(*again()), Drawn(*box.Document)) << "a reference to nothing";
    EXPECT_EQ(again()->WriteText(), box.Document->WriteText());
    box.Brush.SetURI("an \"odd) id\\");
    EXPECT_EQ(brush(*again()).GetURI(), "an \"odd) id\\");
    box.Brush.SetKind(Kind::None);
    EXPECT_EQ(brush(*again()).GetKind(), Kind::None);
}

TEST(Pen, HasAColorAndAWidth) {
    TBox box("fill='none' stroke-width='3'", "stroke='red'");
    TSVGPen pen = box.Element->GetPen();
    EXPECT_EQ(pen.GetKind(), Kind::Solid);
    EXPECT_EQ(pen.GetColor(), 0xFFFF0000u);
    EXPECT_EQ(pen.GetWidth(), 3);
    pen.SetColor(0x8000FF00);
    EXPECT_EQ(pen.GetColor(), 0x8000FF00u);
    pen.SetWidth(20);
    EXPECT_EQ(pen.GetWidth(), 20);
    EXPECT_EQ(Drawn(*box.Document).At(5, 25), 0x80008000u) << "half of the width lies inside";
    for (const double bad : {-1.0, double(NoNumber), double(Endless)}) {
        pen.SetWidth(bad);
        EXPECT_EQ(pen.GetWidth(), 20);
    }
    pen.SetKind(Kind::None);
    EXPECT_TRUE(Drawn(*box.Document).IsEmpty());
    pen.SetURI("#g");
    pen.SetKind(Kind::URI);
    EXPECT_EQ(Drawn(*box.Document).At(5, 25), 0xFF00FF00u) << "nothing of the flat colour's alpha";
}

} // namespace
} // namespace Vz::Test
