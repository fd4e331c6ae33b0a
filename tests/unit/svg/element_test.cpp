#include "tavro/svg/model/Element.h"

#include "DocumentScene.h"
#include "tavro/svg/model/Font.h"

#include <gtest/gtest.h>

namespace Vz::Test {
namespace {

using P = TSVGStyleProperty;
using K = TStyleValue::TKind;

TStyleValue ColorValue(TVZGPColor color) {
    TStyleValue value{K::Color};
    value.Color = color;
    return value;
}

std::unique_ptr<TSVGDocument> Nested() {
    return LoadContent("<g id='outer'><g id='inner'><rect id='box' width='10' height='10'/></g>"
                       "<path id='line' d='M0 0H5'/></g>");
}

// The tree

TEST(Element, KnowsItsAncestors) {
    const auto document = Nested();
    const TSVGElement* const box = document->FindElement("box");
    EXPECT_TRUE(box->HasAncestor(document->FindElement("inner")));
    EXPECT_TRUE(box->HasAncestor(document->FindElement("outer")));
    EXPECT_TRUE(box->HasAncestor(document.get()));
    EXPECT_FALSE(box->HasAncestor(box));
    EXPECT_FALSE(box->HasAncestor(document->FindElement("line")));
    EXPECT_FALSE(document->HasAncestor(box));
    EXPECT_FALSE(box->HasAncestor(nullptr));
}

TEST(Element, ListsItsChildrenInOrder) {
    const auto document = Nested();
    TSVGElement& outer = *document->FindElement("outer");
    ASSERT_EQ(outer.GetChildCount(), 2u);
    EXPECT_EQ(outer.GetChild(0).GetId(), "inner");
    EXPECT_EQ(outer.GetChild(1).GetId(), "line");
    EXPECT_EQ(&outer.GetChild(1).GetDocument(), document.get());
    EXPECT_EQ(outer.GetChild(1).GetParent(), &outer);
    EXPECT_THROW(outer.GetChild(2), EArgumentOutOfRange);
}

TEST(Element, IsNamedAsInSvg) {
    const auto document =
        LoadContent("<linearGradient id='a'><stop id='b'/></linearGradient><clipPath id='c'/>"
                    "<text id='d'><textPath id='e'/></text>");
    EXPECT_EQ(document->GetTagName(), "svg");
    EXPECT_EQ(document->FindElement("a")->GetTagName(), "linearGradient");
    EXPECT_EQ(document->FindElement("b")->GetTagName(), "stop");
    EXPECT_EQ(document->FindElement("c")->GetTagName(), "clipPath");
    EXPECT_EQ(document->FindElement("e")->GetTagName(), "textPath");
}

TEST(Element, TakesChildrenInAtAPlace) {
    const auto document = Nested();
    TSVGElement& outer = *document->FindElement("outer");
    auto path = std::make_unique<TSVGPath>(*document);
    path->SetId("new");
    EXPECT_EQ(document->FindElement("new"), nullptr) << "not in the tree yet";
    TSVGElement& added = outer.InsertChild(1, std::move(path));
    EXPECT_EQ(&outer.GetChild(1), &added);
    EXPECT_EQ(document->FindElement("new"), &added);
    EXPECT_THROW(outer.InsertChild(4, std::make_unique<TSVGPath>(*document)), EArgumentOutOfRange);
    EXPECT_EQ(outer.GetChildCount(), 3u);
}

TEST(Element, RefusesWhatIsNotFree) {
    const auto document = Nested();
    TSVGDocument other;
    EXPECT_THROW(document->AddChild(std::make_unique<TSVGPath>(other)), EInvalidOperation);
    EXPECT_THROW(document->AddChild(nullptr), EInvalidOperation);
}

TEST(Element, CannotLieInItself) {
    const auto document = Nested();
    auto outer = document->FindElement("outer")->Remove();
    TSVGElement& inner = outer->GetChild(0);
    EXPECT_THROW(inner.AddChild(std::move(outer)), EInvalidOperation);
}

TEST(Element, IsRemovedWithAllBelowIt) {
    const auto document = Nested();
    TNotices notices(*document);
    const auto removed = document->FindElement("inner")->Remove();
    EXPECT_EQ(notices.Take(), 1u);
    EXPECT_EQ(removed->GetParent(), nullptr);
    EXPECT_EQ(removed->GetChildCount(), 1u);
    EXPECT_EQ(document->FindElement("inner"), nullptr);
    EXPECT_EQ(document->FindElement("box"), nullptr);
    EXPECT_EQ(document->FindElement("outer")->GetChildCount(), 1u);
    EXPECT_THROW(document->Remove(), EInvalidOperation);
}

TEST(Element, MovesToAnotherParent) {
    const auto document = Nested();
    document->AddChild(document->FindElement("inner")->Remove());
    EXPECT_EQ(document->FindElement("box")->GetParent()->GetParent(), document.get());
    EXPECT_EQ(document->GetChild(1).GetId(), "inner");
}

TEST(Element, LosesItsChildrenAtOnce) {
    const auto document = Nested();
    TNotices notices(*document);
    document->FindElement("outer")->RemoveChildren();
    EXPECT_EQ(notices.Take(), 1u);
    EXPECT_EQ(document->FindElement("box"), nullptr);
    EXPECT_EQ(document->FindElement("line"), nullptr);
    document->FindElement("outer")->RemoveChildren();
    EXPECT_EQ(notices.Take(), 0u) << "nothing was there any more";
}

TEST(Element, ClonesBesideItself) {
    const auto document = Nested();
    TNotices notices(*document);
    TSVGElement& inner = *document->FindElement("inner");
    TSVGElement& clone = inner.CloneBeside();
    EXPECT_EQ(notices.Take(), 1u);
    const TSVGElement& outer = *document->FindElement("outer");
    ASSERT_EQ(outer.GetChildCount(), 3u);
    EXPECT_EQ(&outer.GetChild(1), &clone) << "right behind the original, before the line";
    EXPECT_EQ(clone.GetTag(), TSVGTag::G);
    EXPECT_EQ(clone.GetId(), "") << "ids stay with the original";
    ASSERT_EQ(clone.GetChildCount(), 1u);
    EXPECT_EQ(clone.GetChild(0).GetId(), "");
    EXPECT_EQ(document->FindElement("box")->GetParent(), &inner);
    EXPECT_THROW(document->CloneBeside(), EInvalidOperation);
}

TEST(Element, IsDrawnBelowItsClone) {
    const auto document = LoadContent("<rect id='a' width='20' height='20' fill='red'/>");
    auto& clone = static_cast<TSVGGraphicElement&>(document->FindElement("a")->CloneBeside());
    clone.GetBrush().SetColor(0xFF0000FF);
    clone.SetMatrix(CreateTranslateVZMatrix(10, 0));
    const TDrawing drawing = Drawn(*document);
    EXPECT_EQ(drawing.At(5, 5), 0xFFFF0000u);
    EXPECT_EQ(drawing.At(15, 5), 0xFF0000FFu);
    EXPECT_EQ(drawing.At(25, 5), 0xFF0000FFu);
}

TEST(Element, CloneDrawsAsTheOriginal) {
    const auto document = LoadContent(
        "<linearGradient id='g'><stop stop-color='red'/><stop offset='1' stop-color='blue'/></linearGradient>"
        "<g id='all' transform='rotate(10 50 50)' opacity='.8' fill='url(#g)' stroke='green'>"
        "<path d='M10 10 C 40 0 60 90 90 20' stroke-width='3' stroke-dasharray='6 2'/>"
        "<rect x='20' y='30' width='30' height='20' rx='5' style='fill-opacity:.5'/><circle cx='60' cy='70' "
        "r='9'/>"
        "<polygon points='70 60 90 60 80 80'/><text x='10' y='80' font-size='14'>Tab<tspan "
        "dy='4'>le</tspan></text>"
        "<use xlink:href='#star' x='3'/></g><defs><path id='star' d='M5 40h10v10z'/></defs>");
    const TDrawing before = Drawn(*document);
    ASSERT_FALSE(before.IsEmpty());
    auto* const original = document->Find<TSVGGraphicElement>("all");
    auto& clone = static_cast<TSVGGraphicElement&>(original->CloneBeside());
    EXPECT_NE(Drawn(*document), before) << "drawn twice, half transparent";
    original->SetVisible(false);
    EXPECT_EQ(Drawn(*document), before);
    clone.SetVisible(false);
    EXPECT_TRUE(Drawn(*document).IsEmpty());
}

// Updates

TEST(Element, TellsEachEditOnce) {
    const auto document = Nested();
    TNotices notices(*document);
    auto* const box = document->Find<TSVGGraphicElement>("box");
    box->SetVisible(false);
    ASSERT_EQ(notices.All.size(), 1u);
    EXPECT_EQ(notices.All[0].Element, box);
    EXPECT_EQ(notices.All[0].Kind, TSVGChangeKind::Place);
    EXPECT_EQ(notices.Take(), 1u);
    box->SetVisible(false);
    EXPECT_EQ(notices.Take(), 0u) << "nothing changed";
    box->GetBrush().SetColor(0x80FF0000);
    ASSERT_EQ(notices.All.size(), 1u) << "colour and opacity are one edit";
    EXPECT_EQ(notices.All[0].Kind, TSVGChangeKind::Paint);
    EXPECT_EQ(notices.Take(), 1u);
    document->Find<TSVGPath>("line")->GetData().SetPathString("M1 1H9");
    ASSERT_EQ(notices.All.size(), 1u);
    EXPECT_EQ(notices.All[0].Kind, TSVGChangeKind::Shape);
    EXPECT_EQ(notices.Take(), 1u);
    box->Changed();
    EXPECT_EQ(notices.Take(), 1u) << "told from outside, as after edits of a brush";
}

TEST(Element, TellsNestedUpdatesOnceAtTheOutermostEnd) {
    const auto document = Nested();
    TNotices notices(*document);
    auto* const box = document->Find<TSVGGraphicElement>("box");
    document->BeginUpdate();
    box->BeginUpdate(); // one count for the whole document
    box->SetVisible(false);
    box->SetOpacity(0.5f);
    document->EndUpdate();
    EXPECT_EQ(notices.Take(), 0u);
    box->GetBrush().SetColor(0xFF00FF00);
    box->EndUpdate();
    ASSERT_EQ(notices.All.size(), 1u);
    EXPECT_EQ(notices.All[0].Element, box);
    EXPECT_EQ(notices.All[0].Kind, TSVGChangeKind::Paint) << "the last change";
    notices.Take();
    document->BeginUpdate();
    document->EndUpdate();
    EXPECT_EQ(notices.Take(), 0u) << "an update without an edit";
}

TEST(Element, FaultOfAHandlerReachesTheCallerAndBalancesTheUpdates) {
    const auto document = Nested();
    auto* const box = document->Find<TSVGGraphicElement>("box");
    document->OnChange = [](const TSVGChange&) { throw EConvertError("a handler's fault"); };
    EXPECT_THROW(box->GetBrush().SetColor(0x80FF0000), EConvertError); // an update of its own
    EXPECT_THROW(box->SetVisible(false), EConvertError);
    EXPECT_EQ(box->GetBrush().GetColor(), 0x80FF0000u) << "the edit stands";
    TNotices notices(*document);
    box->SetVisible(true);
    EXPECT_EQ(notices.Take(), 1u) << "no update was left open";
    document->BeginUpdate();
    box->SetVisible(false);
    EXPECT_EQ(notices.Take(), 0u);
    document->EndUpdate();
    EXPECT_EQ(notices.Take(), 1u);
}

TEST(Element, SurplusEndUpdateDoesNothing) {
    const auto document = Nested();
    TNotices notices(*document);
    auto* const box = document->Find<TSVGGraphicElement>("box");
    box->EndUpdate();
    document->EndUpdate();
    document->BeginUpdate();
    box->SetVisible(false);
    EXPECT_EQ(notices.Take(), 0u) << "the next update is one";
    document->EndUpdate();
    EXPECT_EQ(notices.Take(), 1u);
}

TEST(Element, EditsOfAHandlerAreToldAfterIt) {
    const auto document = Nested();
    auto* const box = document->Find<TSVGGraphicElement>("box");
    std::vector<float> opacities;
    int depth = 0;
    document->OnChange = [&](const TSVGChange&) {
        EXPECT_EQ(++depth, 1) << "a notice within a notice";
        opacities.push_back(box->GetOpacity());
        if (box->GetOpacity() > 0.25f) box->SetOpacity(box->GetOpacity() / 2);
        --depth;
    };
    box->SetOpacity(0.8f);
    EXPECT_EQ(opacities, (std::vector<float>{0.8f, 0.4f, 0.2f}));
}

TEST(Element, AHandlerThatAlwaysEditsIsAnError) {
    const auto document = Nested();
    auto* const box = document->Find<TSVGGraphicElement>("box");
    int told = 0;
    document->OnChange = [&](const TSVGChange&) { box->SetVisible(++told % 2 == 1); };
    EXPECT_THROW(box->SetVisible(false), EInvalidOperation);
    EXPECT_EQ(told, TSVGDocument::MaxNotices);
    TNotices notices(*document);
    box->SetOpacity(0.5f);
    EXPECT_EQ(notices.Take(), 1u) << "the document is as usable as before";
}

TEST(Element, HandlerMayTakeItselfAway) {
    const auto document = Nested();
    int first = 0, second = 0;
    const std::string text(100, 'x'); // what a handler captures lives until it returns
    document->OnChange = [&, text](const TSVGChange&) {
        document->OnChange = [&](const TSVGChange&) { ++second; };
        first += static_cast<int>(text.size());
    };
    document->SetOpacity(0.5f);
    document->SetOpacity(0.25f);
    EXPECT_EQ(first, 100);
    EXPECT_EQ(second, 1);
}

TEST(Element, FitsItsDocument) {
    const auto document = Nested();
    document->FindElement("box")->FitToRect({10, 20, 60, 120}); // 50 by 100, the picture 100 by 100
    EXPECT_EQ(document->GetDrawMatrix(), (TAffine{0.5, 0, 0, 0.5, 10, 45}));
}

TEST(Element, OutsideOfTheTreeTellsNothing) {
    const auto document = Nested();
    TNotices notices(*document);
    TSVGPath path(*document);
    path.SetOpacity(0.5f);
    path.GetData().SetPathString("M0 0H9");
    path.SetId("free");
    EXPECT_EQ(notices.Take(), 0u);
    EXPECT_EQ(document->FindElement("free"), nullptr);
    document->BeginUpdate();
    {
        const auto removed = document->FindElement("line")->Remove();
        static_cast<TSVGGraphicElement&>(*removed).SetVisible(false);
    }
    document->EndUpdate();
    ASSERT_EQ(notices.All.size(), 1u);
    EXPECT_EQ(notices.All[0].Element, document->FindElement("outer")) << "not the element that is gone";
}

TEST(Element, GrowsTheEpochExceptForPlace) {
    const auto document = Nested();
    auto* const box = document->Find<TSVGGraphicElement>("box");
    const std::uint64_t epoch = document->GetEpoch();
    box->SetMatrix(CreateTranslateVZMatrix(1, 2));
    box->SetOpacity(0.5f);
    EXPECT_EQ(document->GetEpoch(), epoch);
    box->GetBrush().SetColor(0xFF123456);
    EXPECT_GT(document->GetEpoch(), epoch);
}

TEST(Element, ListenerMayReplaceItself) {
    const auto document = Nested();
    int calls = 0;
    document->OnChange = [&](const TSVGChange&) {
        ++calls;
        document->OnChange = nullptr;
    };
    document->FindElement("box")->Changed();
    document->FindElement("box")->Changed();
    EXPECT_EQ(calls, 1);
}

// Visible, opacity, matrix

TEST(GraphicElement, ClampsItsOpacity) {
    const auto document = Nested();
    auto* const box = document->Find<TSVGGraphicElement>("box");
    EXPECT_EQ(box->GetOpacity(), 1.0f);
    box->SetOpacity(0.25f);
    EXPECT_EQ(box->GetOpacity(), 0.25f);
    box->SetOpacity(NoNumber);
    EXPECT_EQ(box->GetOpacity(), 0.25f);
    box->SetOpacity(1.5f);
    EXPECT_EQ(box->GetOpacity(), 1.0f);
    box->SetOpacity(-0.2f);
    EXPECT_EQ(box->GetOpacity(), 0.0f);
    box->SetOpacity(Endless);
    EXPECT_EQ(box->GetOpacity(), 1.0f);
}

TEST(GraphicElement, ReplacesItsTransform) {
    const auto document =
        LoadContent("<rect id='a' width='1' height='1' transform='rotate(30) translate(4 5)'/>");
    auto* const a = document->Find<TSVGGraphicElement>("a");
    const TMatrix matrix{2, 0.5f, 0, -0.5f, 3, 0, 7, -8, 1};
    a->SetMatrix(matrix);
    EXPECT_EQ(a->GetMatrix(), matrix);
    EXPECT_EQ(a->GetTransform(), (TAffine{2, 0.5, -0.5, 3, 7, -8}));
}

TEST(GraphicElement, RefusesMatricesThatAreNotFinite) {
    const auto document = Nested();
    auto* const box = document->Find<TSVGGraphicElement>("box");
    const TMatrix good = CreateTranslateVZMatrix(3, 4);
    box->SetMatrix(good);
    TNotices notices(*document);
    for (const float bad : {NoNumber, Endless, -Endless})
        for (float TMatrix::*figure :
             {&TMatrix::M11, &TMatrix::M12, &TMatrix::M21, &TMatrix::M22, &TMatrix::M31, &TMatrix::M32}) {
            TMatrix matrix = good;
            matrix.*figure = bad;
            box->SetMatrix(matrix);
            EXPECT_EQ(box->GetMatrix(), good);
        }
    EXPECT_EQ(notices.Take(), 0u);
}

TEST(GraphicElement, IsHiddenByDisplay) {
    const auto document = LoadContent("<g id='g' display='none'><rect id='r' width='50' height='50'/></g>"
                                      "<path id='p' style='display:none' d='M0 0h9v9z'/>"
                                      "<path id='q' display='block' d='M60 60h9v9z'/>");
    auto* const g = document->Find<TSVGGraphicElement>("g");
    EXPECT_FALSE(g->GetVisible());
    EXPECT_TRUE(document->Find<TSVGGraphicElement>("r")->GetVisible()) << "of its own";
    EXPECT_FALSE(document->Find<TSVGGraphicElement>("p")->GetVisible());
    EXPECT_TRUE(document->Find<TSVGGraphicElement>("q")->GetVisible());
    EXPECT_EQ(Drawn(*document).At(25, 25), 0u);
    g->SetVisible(true);
    EXPECT_EQ(Drawn(*document).At(25, 25), 0xFF000000u);
    g->SetVisible(false);
    EXPECT_EQ(Drawn(*document).At(25, 25), 0u);
}

// The set of own style properties

TEST(Style, EntriesOfFillAndStrokeHaveTheirNumbers) {
    EXPECT_EQ(static_cast<int>(P::Fill), 14);
    EXPECT_EQ(static_cast<int>(P::Stroke), 40);
    EXPECT_EQ(GetStylePropertyName(static_cast<P>(14)), "fill");
    EXPECT_EQ(GetStylePropertyName(static_cast<P>(40)), "stroke");
}

TEST(Style, ExcludedPropertyIsInheritedAgain) {
    const auto document =
        LoadContent("<g fill='red' stroke='lime'><rect id='r' width='50' height='50' fill='blue'/></g>");
    auto* const r = document->Find<TSVGGraphicElement>("r");
    EXPECT_TRUE(r->GetStyle().Contains(P::Fill));
    EXPECT_FALSE(r->GetStyle().Contains(P::Stroke));
    TNotices notices(*document);
    r->SetSet(static_cast<P>(14), false);
    EXPECT_EQ(notices.Take(), 1u);
    EXPECT_FALSE(r->GetStyle().Contains(P::Fill));
    EXPECT_EQ(r->GetBrush().GetColor(), 0xFFFF0000u);
    EXPECT_EQ(Drawn(*document).At(25, 25), 0xFFFF0000u);
    r->SetSet(static_cast<P>(14), false);
    EXPECT_EQ(notices.Take(), 0u);
}

TEST(Style, IncludedPropertyKeepsWhatWasInherited) {
    const auto document =
        LoadContent("<g id='g' fill='red' stroke='lime'><rect id='r' width='50' height='50'/></g>");
    auto* const r = document->Find<TSVGGraphicElement>("r");
    r->SetSet(static_cast<P>(14), true);
    r->SetSet(static_cast<P>(40), true);
    document->Find<TSVGGraphicElement>("g")->GetBrush().SetColor(0xFF0000FF);
    document->Find<TSVGGraphicElement>("g")->GetPen().SetColor(0xFF0000FF);
    EXPECT_EQ(r->GetBrush().GetColor(), 0xFFFF0000u);
    EXPECT_EQ(r->GetPen().GetColor(), 0xFF00FF00u);
    EXPECT_EQ(Drawn(*document).At(25, 25), 0xFFFF0000u);
}

TEST(Style, PropertyIncludedAgainHasItsOwnValueBack) {
    const auto document =
        LoadContent("<g fill='red'><rect id='r' width='50' height='50' fill='blue' opacity='.5'/></g>");
    auto* const r = document->Find<TSVGGraphicElement>("r");
    r->SetSet(P::Fill, false);
    EXPECT_EQ(r->GetBrush().GetColor(), 0xFFFF0000u);
    EXPECT_EQ(static_cast<TSVGGraphicElement&>(r->CloneBeside()).GetBrush().GetColor(), 0xFFFF0000u);
    r->SetSet(P::Fill, true);
    EXPECT_EQ(r->GetBrush().GetColor(), 0xFF0000FFu);
    r->SetSet(P::Opacity, false);
    r->SetVisible(false);
    r->SetSet(P::Display, false);
    EXPECT_EQ(r->GetOpacity(), 1.0f);
    EXPECT_TRUE(r->GetVisible());
    r->SetSet(P::Opacity, true);
    r->SetSet(P::Display, true);
    EXPECT_EQ(r->GetOpacity(), 0.5f);
    EXPECT_FALSE(r->GetVisible());
    r->SetSet(P::Fill, false);
    r->GetBrush().SetColor(0xFF00FF00);
    r->SetSet(P::Fill, false);
    r->SetSet(P::Fill, true);
    EXPECT_EQ(r->GetBrush().GetColor(), 0xFF00FF00u) << "the value that was set last";
    r->SetSet(P::Opacity, false);
    r->SetOpacity(0.75f);
    r->SetSet(P::Opacity, true);
    EXPECT_EQ(r->GetOpacity(), 0.75f);
}

TEST(Style, VisibilityAndVisibleAgree) {
    const auto document =
        LoadContent("<g id='g' visibility='hidden'><rect id='a' width='50' height='50'/>"
                    "<rect id='b' x='50' width='50' height='50' visibility='visible'/></g>");
    auto* const g = document->Find<TSVGGraphicElement>("g");
    EXPECT_FALSE(g->GetVisible());
    EXPECT_EQ(Drawn(*document).At(25, 25), 0u);
    EXPECT_EQ(Drawn(*document).At(75, 25), 0xFF000000u) << "what is visible in a hidden group";
    g->SetVisible(false);
    EXPECT_TRUE(Drawn(*document).IsEmpty());
    TNotices notices(*document);
    g->SetVisible(true);
    EXPECT_EQ(notices.Take(), 1u);
    EXPECT_TRUE(g->GetVisible());
    EXPECT_EQ(Drawn(*document).At(25, 25), 0xFF000000u);
    g->SetVisible(true);
    EXPECT_EQ(notices.Take(), 0u);
}

TEST(Style, IncludedPropertyThatNobodySetKeepsItsInitialValue) {
    const auto document = LoadContent("<g id='g'><rect id='r' width='50' height='50'/></g>");
    auto* const r = document->Find<TSVGGraphicElement>("r");
    for (const int entry : {14, 40}) {
        r->SetSet(static_cast<P>(entry), true);
        EXPECT_TRUE(r->GetStyle().Contains(static_cast<P>(entry)));
    }
    EXPECT_EQ(r->GetPen().GetKind(), TVZGPBrushKind::None);
    document->Find<TSVGGraphicElement>("g")->GetBrush().SetColor(0xFFFF0000);
    EXPECT_EQ(Drawn(*document).At(25, 25), 0xFF000000u);
}

TEST(Style, WholeSetIsReplaced) {
    const auto document =
        LoadContent("<g fill='red'><rect id='r' width='50' height='50' fill='blue' stroke='lime' "
                    "stroke-width='4'/></g>");
    auto* const r = document->Find<TSVGGraphicElement>("r");
    TSVGStyleSet set;
    set.Put(P::Stroke, ColorValue(0xFF00FFFF));
    TNotices notices(*document);
    r->SetValue(set);
    EXPECT_EQ(notices.Take(), 1u);
    EXPECT_EQ(r->GetStyle(), set);
    EXPECT_EQ(r->GetBrush().GetColor(), 0xFFFF0000u) << "inherited";
    EXPECT_EQ(r->GetPen().GetColor(), 0xFF00FFFFu);
    EXPECT_EQ(r->GetPen().GetWidth(), 1.0);
    r->SetValue(set);
    EXPECT_EQ(notices.Take(), 0u);
}

TEST(Style, SetThatHidesOrFadesDoesSo) {
    const auto document = Nested();
    auto* const box = document->Find<TSVGGraphicElement>("box");
    TSVGStyleSet set;
    set.Put(P::Display, TStyleValue{K::Keyword, TKeyword::None});
    TStyleValue half{K::Number};
    half.Number = 0.5;
    set.Put(P::Opacity, half);
    box->SetValue(set);
    EXPECT_FALSE(box->GetVisible());
    EXPECT_EQ(box->GetOpacity(), 0.5f);
    EXPECT_NO_THROW(LoadText(document->WriteText())) << "no attribute is written twice";
}

TEST(Style, DisplayAndOpacityAreTheElementsOwnUntilExcluded) {
    const auto document = Nested();
    auto* const box = document->Find<TSVGGraphicElement>("box");
    box->SetVisible(false);
    box->SetOpacity(0.25f);
    for (const P property : {P::Display, P::Opacity})
        box->SetSet(property, true);
    EXPECT_FALSE(box->GetVisible());
    EXPECT_EQ(box->GetOpacity(), 0.25f);
    box->SetSet(P::Opacity, false);
    EXPECT_FALSE(box->GetVisible());
    EXPECT_EQ(box->GetOpacity(), 1.0f);
    box->SetSet(P::Display, false);
    EXPECT_TRUE(box->GetVisible());
}

TEST(Style, OwnWinsOverClassAndParent) {
    const auto document = LoadContent("<style>.c{fill:lime}</style><g fill='red'>"
                                      "<rect id='r' class='c' width='50' height='50'/></g>");
    auto* const r = document->Find<TSVGGraphicElement>("r");
    EXPECT_EQ(r->GetBrush().GetColor(), 0xFF00FF00u);
    r->GetBrush().SetColor(0xFF0000FF);
    EXPECT_EQ(Drawn(*document).At(25, 25), 0xFF0000FFu);
}

TEST(Style, IsSharedByCopiesUntilEdited) {
    TSVGStyleSet a;
    a.Put(P::Fill, ColorValue(0xFFFF0000));
    TSVGStyleSet b = a;
    EXPECT_EQ(a.Entries().data(), b.Entries().data());
    b.Put(P::Fill, ColorValue(0xFF0000FF));
    EXPECT_EQ(a.Find(P::Fill)->Color, 0xFFFF0000u);
    EXPECT_EQ(b.Find(P::Fill)->Color, 0xFF0000FFu);
    EXPECT_TRUE(b.Remove(P::Fill));
    EXPECT_FALSE(b.Remove(P::Fill));
    EXPECT_TRUE(b.IsEmpty());
    EXPECT_FALSE(a.IsEmpty());
}

TEST(Style, FindsTheNearestValue) {
    const auto document =
        LoadContent("<g stroke-width='5' stop-color='red'><g stroke-width='inherit'>"
                    "<rect id='r'/><linearGradient id='l'><stop id='s'/></linearGradient></g></g>");
    const TStyleValue* const width = document->FindElement("r")->FindInherited(P::StrokeWidth);
    ASSERT_NE(width, nullptr);
    EXPECT_EQ(width->Number, 5);
    EXPECT_EQ(document->FindElement("r")->FindInherited(P::Fill), nullptr);
    EXPECT_EQ(document->FindElement("s")->FindInherited(P::StopColor), nullptr) << "is not inherited";
}

TEST(Style, IsComputedInPlace) {
    const auto document = LoadContent(
        "<g color='#102030' font-size='20' stroke-width='2em' fill='currentColor'>"
        "<g font-size='50%'><rect id='r' color='#fff' stroke='inherit' letter-spacing='2em'/></g></g>");
    const TComputedStyle style = document->FindElement("r")->GetComputedStyle();
    EXPECT_EQ(style.StrokeWidth, 40) << "em of the element that says it";
    EXPECT_EQ(style.Text->Font.Size, 10);
    EXPECT_EQ(style.Text->LetterSpacing, 20);
    EXPECT_EQ(style.Color, 0xFFFFFFFFu);
    EXPECT_EQ(style.Fill.Kind, TComputedPaint::TKind::CurrentColor) << "inherited as the word";
    EXPECT_EQ(style.Stroke.Kind, TComputedPaint::TKind::None);
}

// Fonts

TEST(GraphicElement, CopiesAFontsSettings) {
    const auto document = LoadContent("<text id='t' y='20' font-family='serif' font-style='italic'>a</text>");
    auto* const text = document->Find<TSVGCustomText>("t");
    TVZGPBitmap bitmap(1, 1);
    TSVGFont font(bitmap.GetCanvas());
    font.SetSize(12.5f);
    font.SetWeight(700);
    TNotices notices(*document);
    text->SetFont(&font);
    EXPECT_EQ(notices.Take(), 1u);
    const TComputedStyle style = text->GetComputedStyle();
    EXPECT_EQ(style.Text->Font.Size, 12.5);
    EXPECT_EQ(style.Text->Font.Weight, 700);
    EXPECT_EQ(style.Text->Font.Family, "serif") << "left open by the font";
    EXPECT_EQ(style.Text->Font.Slant, TFontSlant::Italic);
    font.SetFamily("Noto Sans, sans-serif");
    font.SetStyle(TSVGFontStyle::fsNormal);
    text->SetFont(&font);
    EXPECT_EQ(text->GetComputedStyle().Text->Font.Slant, TFontSlant::Normal);
    EXPECT_EQ(text->GetComputedStyle().Text->Font.Family, "Noto Sans, sans-serif");
    notices.Take();
    text->SetFont(&font);
    text->SetFont(nullptr);
    EXPECT_EQ(notices.Take(), 0u);
}

TEST(GraphicElement, GivesTheFontThatItSets) {
    const auto document = LoadContent("<g font-weight='bold'><text id='t' y='20' font-family='serif' "
                                      "font-style='oblique' font-size='10pt'>a</text></g>");
    auto* const text = document->Find<TSVGCustomText>("t");
    EXPECT_EQ(text->GetFont().GetFamily(), "serif");
    EXPECT_FLOAT_EQ(text->GetFont().GetSize(), 10 * 96 / 72.0f);
    EXPECT_EQ(text->GetFont().GetWeight(), 0) << "inherited, not its own";
    EXPECT_EQ(text->GetFont().GetStyle(), TSVGFontStyle::fsItalic);
    TSVGFont font;
    font.SetFamily("Noto Sans");
    font.SetSize(9);
    font.SetWeight(300);
    font.SetStyle(TSVGFontStyle::fsNormal);
    text->SetFont(&font);
    EXPECT_EQ(text->GetFont().GetFamily(), "Noto Sans");
    EXPECT_EQ(text->GetFont().GetSize(), 9);
    EXPECT_EQ(text->GetFont().GetWeight(), 300);
    EXPECT_EQ(text->GetFont().GetStyle(), TSVGFontStyle::fsNormal);
    EXPECT_TRUE(document->GetFont().IsOpen());
}

} // namespace
} // namespace Vz::Test
