#include "tavro/svg/model/Document.h"

#include "DocumentScene.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace Vz::Test {
namespace {

namespace fs = std::filesystem;

// Lookup

TEST(Document, FindsNothingUnderAnAbsentId) {
    const auto document = LoadContent("<path id='p' d='M0 0H9'/>");
    EXPECT_EQ(document->FindElement("q"), nullptr);
    EXPECT_EQ(document->FindElement(""), nullptr);
    EXPECT_EQ(document->Find<TSVGPath>("q"), nullptr);
    EXPECT_EQ(document->Find<TSVGCustomGradient>("P"), nullptr) << "ids have case";
}

TEST(Document, FindsElementsByTheirClass) {
    const auto document = LoadContent("<path id='p' d='M0 0H9'/><text id='t'>a</text><g id='g'/>"
                                      "<radialGradient id='r'><stop id='s'/></radialGradient>");
    EXPECT_NE(document->Find<TSVGPath>("p"), nullptr);
    EXPECT_NE(document->Find<TSVGGraphicElement>("p"), nullptr);
    EXPECT_NE(document->Find<TSVGElement>("p"), nullptr);
    EXPECT_NE(document->Find<TSVGCustomText>("t"), nullptr);
    EXPECT_NE(document->Find<TSVGText>("t"), nullptr);
    EXPECT_NE(document->Find<TSVGGroup>("g"), nullptr);
    EXPECT_NE(document->Find<TSVGCustomGradient>("r"), nullptr);
    EXPECT_THROW(document->Find<TSVGPath>("g"), EInvalidCast);
    EXPECT_THROW(document->Find<TSVGGraphicElement>("r"), EInvalidCast);
    EXPECT_THROW(document->Find<TSVGCustomGradient>("p"), EInvalidCast);
    EXPECT_THROW(document->Find<TSVGCustomText>("p"), EInvalidCast);
    try {
        document->Find<TSVGPath>("r");
    } catch (const EInvalidCast& error) {
        EXPECT_STREQ(error.what(), "the element \"r\" is a <radialGradient>, not of the class asked for");
    }
}

TEST(Document, FindsItselfByItsId) {
    const auto document = LoadContent("", "id='root'");
    EXPECT_EQ(document->FindElement("root"), document.get());
}

// Ids

TEST(Document, FindsTheFirstOfTwoEqualIds) {
    const auto document = LoadContent("<g id='a'/><g><path id='a' d='M0 0H9'/></g><rect id='a'/>");
    EXPECT_EQ(document->FindElement("a")->GetTag(), TSVGTag::G);
    auto first = document->FindElement("a")->Remove();
    EXPECT_EQ(document->FindElement("a")->GetTag(), TSVGTag::Path) << "the next one steps up";
    document->GetChild(0).RemoveChildren();
    EXPECT_EQ(document->FindElement("a")->GetTag(), TSVGTag::Rect);
    document->AddChild(std::move(first));
    EXPECT_EQ(document->FindElement("a")->GetTag(), TSVGTag::Rect) << "it stands behind";
    document->FindElement("a")->SetId("");
    EXPECT_EQ(document->FindElement("a")->GetTag(), TSVGTag::G);
    document->FindElement("a")->SetId("b");
    EXPECT_EQ(document->FindElement("a"), nullptr);
    EXPECT_EQ(document->FindElement("b")->GetTag(), TSVGTag::G);
}

TEST(Document, FindsTheFirstInDocumentOrderNotTheOldest) {
    const auto document = LoadContent("<g id='front'><path d='M0 0H9'/></g><g id='back'><rect id='a'/></g>");
    document->FindElement("front")->GetChild(0).SetId("a");
    EXPECT_EQ(document->FindElement("a")->GetTag(), TSVGTag::Path);
    auto circle = std::make_unique<TSVGBasicShape>(*document, TSVGTag::Circle);
    circle->SetId("a");
    document->InsertChild(0, std::move(circle));
    EXPECT_EQ(document->FindElement("a")->GetTag(), TSVGTag::Circle);
    // An ancestor stands before what lies in it.
    document->SetId("a");
    EXPECT_EQ(document->FindElement("a"), document.get());
    document->SetId("");
    EXPECT_EQ(document->FindElement("a")->GetTag(), TSVGTag::Circle);
    // What was removed is not found by a key that went with it.
    document->FindElement("a")->Remove();
    EXPECT_EQ(document->FindElement("a")->GetTag(), TSVGTag::Path);
    document->FindElement("a")->Remove();
    EXPECT_EQ(document->FindElement("a")->GetTag(), TSVGTag::Rect);
    document->FindElement("back")->Remove();
    EXPECT_EQ(document->FindElement("a"), nullptr);
}

TEST(Document, RenamesAnElementFromItsOwnId) {
    const auto document = LoadContent("<g id='alphabet'/>");
    TSVGElement& element = *document->FindElement("alphabet");
    element.SetId(std::string_view(element.GetId()).substr(5));
    EXPECT_EQ(document->FindElement("bet"), &element);
    EXPECT_EQ(document->FindElement("alphabet"), nullptr);
}

// Loading

TEST(Document, IsEmptyAtFirst) {
    const TSVGDocument document;
    EXPECT_EQ(document.GetChildCount(), 0u);
    EXPECT_EQ(document.GetWidth(), 100);
    EXPECT_EQ(document.GetHeight(), 100);
    EXPECT_TRUE(Drawn(document).IsEmpty());
}

TEST(Document, ReplacesItsContent) {
    const auto document =
        LoadContent("<g id='old' fill='red'/>", "width='10' height='20' viewBox='0 0 1 2' fill='red'");
    TNotices notices(*document);
    document->LoadFromText(SvgText("<rect id='new' width='50' height='50'/>", "id='root'"));
    ASSERT_EQ(notices.All.size(), 1u);
    EXPECT_EQ(notices.All[0].Kind, TSVGChangeKind::Structure);
    EXPECT_EQ(document->FindElement("old"), nullptr);
    EXPECT_EQ(&document->FindElement("new")->GetDocument(), document.get());
    EXPECT_EQ(document->FindElement("new")->GetParent(), document.get());
    EXPECT_EQ(document->FindElement("root"), document.get());
    EXPECT_EQ(document->GetWidth(), 100);
    EXPECT_FALSE(document->GetViewBox().has_value());
    EXPECT_EQ(document->Find<TSVGGraphicElement>("new")->GetBrush().GetColor(), 0xFF000000u);
    notices.Take();
    document->Find<TSVGGraphicElement>("new")->SetVisible(false);
    EXPECT_EQ(notices.Take(), 1u) << "the new elements are this document's";
}

TEST(Document, KeepsItsOwnSettingsOverALoad) {
    const auto document = LoadContent("");
    document->SetEnabled(false);
    document->GetPreserveAspectRatio().SetAlign(TSVGAlign::XMaxYMax);
    int drawings = 0;
    document->OnDrawing = [&](TObject&, const TMatrix&, TVZGPCanvas&, const TRectF&, bool&) { ++drawings; };
    document->LoadFromText(SvgText("<g/>"));
    EXPECT_FALSE(document->GetEnabled());
    EXPECT_EQ(document->GetPreserveAspectRatio().GetAlign(), TSVGAlign::XMaxYMax);
    Drawn(*document);
    EXPECT_EQ(drawings, 1);
}

TEST(Document, PlacesItsViewBoxAsTheContentSaysUntilItIsSet) {
    const auto document = LoadContent("", "viewBox='0 0 9 9' preserveAspectRatio='xMaxYMid'");
    EXPECT_EQ(document->GetViewPreserveAspectRatio().GetAlign(), TSVGAlign::XMaxYMid);
    document->GetViewPreserveAspectRatio().SetAlign(TSVGAlign::None);
    EXPECT_EQ(document->GetOwnAspectRatio()->GetAlign(), TSVGAlign::XMaxYMid) << "what is written";
    TSVGDocument copy;
    copy.AssignContent(*document);
    EXPECT_EQ(copy.GetViewPreserveAspectRatio().GetAlign(), TSVGAlign::XMaxYMid);
    document->LoadFromText(SvgText("<g/>"));
    EXPECT_EQ(document->GetViewPreserveAspectRatio().GetAlign(), TSVGAlign::XMidYMid);
}

TEST(Document, KeepsItsContentWhereATextIsBroken) {
    const auto document = LoadContent("<rect id='r' width='50' height='50' fill='red'/>");
    const TDrawing before = Drawn(*document);
    TNotices notices(*document);
    for (const char* broken : {"", "no xml", "<svg", "<svg xmlns='http://www.w3.org/2000/svg'><g></svg>",
                               "<html/>", "<svg><g id='r'/><g id='r'/>"})
        EXPECT_THROW(document->LoadFromText(broken), EReadError) << broken;
    EXPECT_EQ(notices.Take(), 0u);
    EXPECT_NE(document->Find<TSVGBasicShape>("r"), nullptr);
    EXPECT_EQ(Drawn(*document), before);
}

TEST(Document, LoadsFromStreams) {
    TSVGDocument document;
    std::istringstream stream(SvgText("<g id='a'/>"));
    document.LoadFromStream(stream, "picture");
    EXPECT_NE(document.FindElement("a"), nullptr);
    std::istringstream broken("<svg>\n<g>");
    try {
        document.LoadFromStream(broken, "picture");
        FAIL();
    } catch (const EReadError& error) {
        EXPECT_EQ(error.GetPlace().Name, "picture");
        EXPECT_EQ(error.GetPlace().Line, 2);
    }
}

TEST(Document, SavesAndLoadsFiles) {
    const fs::path file = fs::temp_directory_path() / "tavro-document-test.svg";
    const auto document = LoadContent("<rect id='r' width='50' height='50' fill='red'/>");
    document->SaveToFile(file.string());
    TSVGDocument again;
    again.LoadFromFile(file.string());
    EXPECT_EQ(again.WriteText(), document->WriteText());
    fs::remove(file);
    EXPECT_THROW(again.LoadFromFile(file.string()), EReadError);
    EXPECT_NE(again.FindElement("r"), nullptr);
    EXPECT_THROW(again.SaveToFile((file / "below" / "a file").string()), EWriteError);
}

TEST(Document, CopiesAnother) {
    const auto source =
        LoadContent("<linearGradient id='g'><stop stop-color='red'/><stop offset='1'/></linearGradient>"
                    "<g id='a' opacity='.5'><rect id='r' width='90' height='90' fill='url(#g)'/></g>",
                    "id='root' viewBox='0 0 100 100' opacity='.75'");
    TSVGDocument copy;
    copy.AssignContent(*source);
    EXPECT_EQ(copy.WriteText(), source->WriteText());
    EXPECT_EQ(Drawn(copy), Drawn(*source));
    EXPECT_EQ(copy.FindElement("root"), &copy);
    EXPECT_EQ(&copy.FindElement("r")->GetDocument(), &copy);
    copy.Find<TSVGCustomGradient>("g")->GetStop(0).GetStopBrush().SetColor(0xFF0000FF);
    EXPECT_NE(Drawn(copy), Drawn(*source)) << "each has its own elements";
    EXPECT_NE(source->FindElement("r"), copy.FindElement("r"));
}

TEST(Document, CopiesHaveTheirOwnIds) {
    const auto source = LoadContent("<g id='a'><rect id='b'/><circle id='b'/></g><path id='c' d='M0 0H9'/>");
    source->FindElement("c")->SetId("d");
    TSVGDocument copies[2];
    for (TSVGDocument& copy : copies)
        copy.AssignContent(*source);
    TSVGDocument& copy = copies[0];
    copy.FindElement("d")->SetId("new");
    copy.Add<TSVGGroup>().SetId("more");
    auto rect = copy.FindElement("b")->Remove();
    EXPECT_EQ(copy.FindElement("b")->GetTag(), TSVGTag::Circle) << "the second one steps up in a copy, too";
    copy.FindElement("a")->RemoveChildren();
    EXPECT_EQ(copy.FindElement("b"), nullptr);
    EXPECT_EQ(copy.FindElement("c"), nullptr);
    EXPECT_EQ(copy.FindElement("d"), nullptr);
    EXPECT_EQ(copy.FindElement("new")->GetTag(), TSVGTag::Path);
    for (const TSVGDocument* const untouched :
         {static_cast<const TSVGDocument*>(source.get()), static_cast<const TSVGDocument*>(&copies[1])}) {
        EXPECT_EQ(untouched->FindElement("b")->GetTag(), TSVGTag::Rect);
        EXPECT_EQ(&untouched->FindElement("d")->GetDocument(), untouched);
        EXPECT_EQ(untouched->FindElement("new"), nullptr);
        EXPECT_EQ(untouched->FindElement("more"), nullptr);
    }
    copy.AssignContent(copies[1]);
    EXPECT_EQ(copy.FindElement("more"), nullptr);
    EXPECT_EQ(rect->GetId(), "b") << "what was removed keeps its id over a new content";
    copy.AddChild(std::move(rect));
    EXPECT_EQ(copy.FindElement("b")->GetParent(), copy.FindElement("a"));
    copy.AssignContent(copy);
    EXPECT_EQ(copy.FindElement("b")->GetParent(), copy.FindElement("a"));
    EXPECT_EQ(copy.GetChildCount(), 3u);
}

TEST(Document, CopiesOfWhatLastsAreEditedOnTheirOwn) {
    auto source = LoadContent("<linearGradient id='g' x1='2'><stop stop-color='red'/></linearGradient>"
                              "<path id='p' d='M0 0H50V50' transform='scale(2)' fill='url(#g)'/>"
                              "<circle id='c' r='9'/><text id='t' x='5'>a</text>");
    const std::string text = source->WriteText();
    source->MakeSharedLasting();
    source->MakeSharedLasting(); // twice does no harm
    TSVGDocument copies[2];
    for (TSVGDocument& copy : copies)
        copy.AssignContent(*source);
    TSVGDocument& copy = copies[0];
    auto& path = *copy.Find<TSVGPath>("p");
    path.GetBrush().SetColor(0xFF00FF00);
    path.SetSet(TSVGStyleProperty::Stroke, true);
    path.SetSet(TSVGStyleProperty::Fill, false);
    path.GetData().ApplyMatrix(CreateTranslateVZMatrix(3, 4));
    path.SetMatrix(CreateTranslateVZMatrix(5, 6));
    copy.Find<TSVGBasicShape>("c")->SetLength(TSVGBasicShape::TPart::R, {TSVGUnit::Number, 8});
    copy.FindElement("g")->ReadAttribute("x1", "3");
    copy.FindElement("t")->ReadAttribute("x", "6");
    copy.FindElement("c")->SetId("d");
    EXPECT_EQ(copies[1].WriteText(), text);
    EXPECT_EQ(source->WriteText(), text);
    source = nullptr;
    EXPECT_EQ(copies[1].WriteText(), text) << "what it shared stays";
    const std::string edited = copy.WriteText();
    for (const char* const part :
         {"M3 4", "matrix(1 0 0 1 5 6)", "r=\"8\"", "x1=\"3\"", "x=\"6\"", "id=\"d\""})
        EXPECT_NE(edited.find(part), edited.npos) << part << " in " << edited;
}

TEST(Document, ElementsOutliveTheCopyThatTheyCameWith) {
    const auto source = LoadContent("<g id='a'><path id='b' d='M0 0H50V50'/></g><path id='c' d='M0 0H9'/>");
    auto copy = std::make_unique<TSVGDocument>();
    copy->AssignContent(*source);
    auto removed = copy->FindElement("b")->Remove();
    copy->RemoveChildren();
    EXPECT_EQ(dynamic_cast<TSVGPath&>(*removed).GetData().GetFigures().Verbs.size(), 3u);
    removed = nullptr;
    copy->AssignContent(*source);
    EXPECT_EQ(copy->WriteText(), source->WriteText());
}

// Natural size

struct TSizeCase {
    const char* Attributes;
    float Width;
    float Height;
};

class DocumentSize : public testing::TestWithParam<TSizeCase> {};

TEST_P(DocumentSize, IsAsTheFileSays) {
    const auto document = LoadContent("", GetParam().Attributes);
    EXPECT_FLOAT_EQ(document->GetWidth(), GetParam().Width) << GetParam().Attributes;
    EXPECT_FLOAT_EQ(document->GetHeight(), GetParam().Height) << GetParam().Attributes;
}

INSTANTIATE_TEST_SUITE_P(
    Rules, DocumentSize,
    testing::Values(TSizeCase{"", 100, 100}, TSizeCase{"width='30' height='40'", 30, 40},
                    TSizeCase{"width='1in' height='2.54cm'", 96, 96},
                    TSizeCase{"width='72pt' height='6pc'", 96, 96},
                    TSizeCase{"viewBox='5 6 300 150'", 300, 150},
                    TSizeCase{"width='100%' height='100%' viewBox='0 0 300 150'", 300, 150},
                    TSizeCase{"width='60' viewBox='0 0 300 150'", 60, 30},
                    TSizeCase{"height='60' viewBox='0 0 300 150'", 120, 60},
                    TSizeCase{"width='60' height='50%' viewBox='0 0 300 150'", 60, 30},
                    TSizeCase{"width='60'", 60, 100},
                    TSizeCase{"width='60' height='70' viewBox='0 0 1 1'", 60, 70},
                    TSizeCase{"width='0' height='70'", 100, 70}, TSizeCase{"width='-5' height='70'", 100, 70},
                    TSizeCase{"viewBox='0 0 0 10'", 100, 100}, TSizeCase{"viewBox='0 0 10'", 100, 100},
                    TSizeCase{"width='100000' height='100000'", 100000, 100000},
                    TSizeCase{"width='1e30' height='1e-30'", 1e6f, 1e-6f},
                    TSizeCase{"height='100' viewBox='0 0 1e38 1e-38'", 1e6f, 100}));

TEST(Document, RefusesViewBoxesWithoutExtent) {
    const auto document = LoadContent("", "viewBox='0 0 30 40'");
    TNotices notices(*document);
    document->SetViewBox(TSVGViewBox{0, 0, 0, 10});
    document->SetViewBox(TSVGViewBox{0, 0, double(NoNumber), 10});
    document->SetViewBox(TSVGViewBox{double(Endless), 0, 10, 10});
    EXPECT_EQ(notices.Take(), 0u);
    EXPECT_EQ(document->GetWidth(), 30);
    document->SetViewBox(std::nullopt);
    EXPECT_EQ(document->GetWidth(), 100);
    document->SetViewBox(TSVGViewBox{0, 0, 7, 8});
    EXPECT_EQ(document->GetWidth(), 7);
    document->SetWidthLength(TSVGLength{TSVGUnit::Px, 70});
    EXPECT_EQ(document->GetHeight(), 80);
    EXPECT_EQ(notices.Take(), 3u);
}

// FitToRect

struct TFitCase {
    TSVGAlign Align;
    TAffine Wide; ///< a picture of 40 by 20 in (10, 20, 110, 220)
    TAffine High; ///< a picture of 20 by 40 in (10, 20, 210, 120)
};

class DocumentFit : public testing::TestWithParam<TFitCase> {};

TEST_P(DocumentFit, PlacesThePicture) {
    const TFitCase& fit = GetParam();
    const auto wide = LoadContent("", "width='40' height='20'");
    wide->GetPreserveAspectRatio().SetAlign(fit.Align);
    wide->FitToRect({10, 20, 110, 220});
    EXPECT_EQ(wide->GetDrawMatrix(), fit.Wide);
    const auto high = LoadContent("", "width='20' height='40'");
    high->GetPreserveAspectRatio().SetAlign(fit.Align);
    high->GetPreserveAspectRatio().SetSlice(true); // all of the picture is shown, whatever the file says
    high->FitToRect({10, 20, 210, 120});
    EXPECT_EQ(high->GetDrawMatrix(), fit.High);
}

// Wide: 100 by 50 at scale 2.5, 150 left over below; high: 50 by 100 at scale 2.5, 150 left over at the side.
INSTANTIATE_TEST_SUITE_P(
    Alignments, DocumentFit,
    testing::Values(TFitCase{TSVGAlign::None, {2.5, 0, 0, 10, 10, 20}, {10, 0, 0, 2.5, 10, 20}},
                    TFitCase{TSVGAlign::XMinYMin, {2.5, 0, 0, 2.5, 10, 20}, {2.5, 0, 0, 2.5, 10, 20}},
                    TFitCase{TSVGAlign::XMidYMin, {2.5, 0, 0, 2.5, 10, 20}, {2.5, 0, 0, 2.5, 85, 20}},
                    TFitCase{TSVGAlign::XMaxYMin, {2.5, 0, 0, 2.5, 10, 20}, {2.5, 0, 0, 2.5, 160, 20}},
                    TFitCase{TSVGAlign::XMinYMid, {2.5, 0, 0, 2.5, 10, 95}, {2.5, 0, 0, 2.5, 10, 20}},
                    TFitCase{TSVGAlign::XMidYMid, {2.5, 0, 0, 2.5, 10, 95}, {2.5, 0, 0, 2.5, 85, 20}},
                    TFitCase{TSVGAlign::XMaxYMid, {2.5, 0, 0, 2.5, 10, 95}, {2.5, 0, 0, 2.5, 160, 20}},
                    TFitCase{TSVGAlign::XMinYMax, {2.5, 0, 0, 2.5, 10, 170}, {2.5, 0, 0, 2.5, 10, 20}},
                    TFitCase{TSVGAlign::XMidYMax, {2.5, 0, 0, 2.5, 10, 170}, {2.5, 0, 0, 2.5, 85, 20}},
                    TFitCase{TSVGAlign::XMaxYMax, {2.5, 0, 0, 2.5, 10, 170}, {2.5, 0, 0, 2.5, 160, 20}}));

TEST(Document, AlignmentsHaveTheirNumbers) {
    EXPECT_EQ(static_cast<int>(TSVGAlign::None), 0);
    EXPECT_EQ(static_cast<int>(TSVGAlign::XMidYMid), 5);
    EXPECT_EQ(static_cast<int>(TSVGAlign::XMaxYMax), 9);
}

TEST(Document, FitsToOddRectanglesWithoutHarm) {
    const auto document = LoadContent("<rect width='100' height='100'/>");
    const std::pair<TRectF, std::uint32_t> cases[] = {{{0, 0, 0, 0}, 0},
                                                      {{5, 5, 1, 1}, 0},
                                                      {{NoNumber, 0, 10, 10}, 0},
                                                      {{0, 0, Endless, 10}, 0},
                                                      {{0, 0, 1e38f, 1e38f}, 0xFF000000}};
    for (const auto& [rect, expected] : cases) {
        SCOPED_TRACE(testing::Message() << rect.Left << " to " << rect.Right);
        document->FitToRect(rect);
        EXPECT_EQ(Drawn(*document, 20, 20, document->GetDrawMatrix()).At(10, 10), expected);
        document->FitToRect({0, 0, 20, 20});
        EXPECT_EQ(Drawn(*document, 20, 20, document->GetDrawMatrix()).At(10, 10), 0xFF000000u) << "again";
    }
}

TEST(Document, DrawsItsViewBoxFitted) {
    const auto document = LoadContent("<rect width='10' height='10' fill='red'/>",
                                      "width='40' height='20' viewBox='0 0 10 10'");
    TDrawing drawing = Drawn(*document, 40, 20);
    EXPECT_EQ(drawing.At(5, 10), 0u);
    EXPECT_EQ(drawing.At(11, 10), 0xFFFF0000u) << "in the middle";
    EXPECT_EQ(drawing.At(29, 10), 0xFFFF0000u);
    EXPECT_EQ(drawing.At(31, 10), 0u);
    document->GetViewPreserveAspectRatio().SetAlign(TSVGAlign::None);
    EXPECT_EQ(Drawn(*document, 40, 20).At(1, 1), 0xFFFF0000u);
    // What the file says goes first.
    document->ReadAttribute("preserveAspectRatio", "xMaxYMid");
    drawing = Drawn(*document, 40, 20);
    EXPECT_EQ(drawing.At(5, 10), 0u);
    EXPECT_EQ(drawing.At(39, 10), 0xFFFF0000u);
}

// Events of drawing

TEST(Document, AsksBeforeAndTellsAfterItIsDrawn) {
    const auto document = LoadContent("<rect width='100' height='100' fill='red'/>");
    std::string order;
    TMatrix asked;
    document->OnDrawing = [&](TObject& sender, const TMatrix& matrix, TVZGPCanvas&, const TRectF& rect,
                              bool& handled) {
        EXPECT_EQ(&sender, document.get());
        EXPECT_FALSE(handled);
        EXPECT_EQ(rect, (TRectF{0, 0, 100, 100}));
        asked = matrix;
        order += 'a';
    };
    document->OnDrawn = [&](TObject& sender, const TMatrix& matrix, TVZGPCanvas&, const TRectF&) {
        EXPECT_EQ(&sender, document.get());
        EXPECT_EQ(matrix, asked);
        order += 'b';
    };
    const TDrawing drawing = Drawn(*document, 100, 100, {0.5, 0, 0, 0.5, 7, 8});
    EXPECT_EQ(order, "ab");
    EXPECT_EQ(asked, (TMatrix{0.5f, 0, 0, 0, 0.5f, 0, 7, 8, 1}));
    EXPECT_EQ(drawing.At(30, 30), 0xFFFF0000u);
    TVZGPBitmap bitmap(10, 10);
    document->DrawElement(bitmap.GetCanvas(), {}, static_cast<TSVGGraphicElement&>(document->GetChild(0)));
    EXPECT_EQ(order, "ab") << "only for the document as a whole";
}

TEST(Document, LeavesTheDrawingToAHandler) {
    const auto document = LoadContent("<rect width='100' height='100' fill='red'/>");
    document->OnDrawing = [&](TObject&, const TMatrix&, TVZGPCanvas& canvas, const TRectF&, bool& handled) {
        canvas.Clear(0xFF0000FF);
        handled = true;
    };
    bool drawn = false;
    document->OnDrawn = [&](TObject&, const TMatrix&, TVZGPCanvas&, const TRectF&) { drawn = true; };
    EXPECT_EQ(Drawn(*document).At(50, 50), 0xFF0000FFu);
    EXPECT_TRUE(drawn);
}

// Text of text elements

TEST(Document, MakesTextAlongAPath) {
    const auto document = LoadContent("<path id='line' d='M10 50H90'/>");
    document->Find<TSVGPath>("line")->GetBrush().SetKind(TVZGPBrushKind::None);
    auto& text = document->Add<TSVGText>();
    auto& along = text.Add<TSVGTextPath>();
    along.SetReference("line");
    along.SetStartOffset({TSVGUnit::Percent, 50});
    along.SetText("HHH");
    EXPECT_EQ(along.GetText(), "HHH");
    EXPECT_EQ(text.GetText(), "HHH");
    TDrawing drawing = Drawn(*document);
    EXPECT_FALSE(drawing.IsEmpty());
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 100; ++x)
            if (drawing.At(x, y) != 0) {
                EXPECT_GE(x, 49) << "from the middle on";
                EXPECT_LE(y, 51) << "above the line";
            }
    along.SetReference("absent");
    EXPECT_TRUE(Drawn(*document).IsEmpty());
}

TEST(Document, ReplacesTheCharactersOfAText) {
    const auto document = LoadContent("<text id='t' y='50'>a<tspan id='s'>b</tspan>c</text>");
    auto* const text = document->Find<TSVGCustomText>("t");
    EXPECT_EQ(text->GetText(), "abc");
    TNotices notices(*document);
    text->SetText("new");
    EXPECT_EQ(notices.Take(), 1u);
    EXPECT_EQ(text->GetText(), "new");
    EXPECT_EQ(document->FindElement("s"), nullptr);
    text->SetText("new");
    EXPECT_EQ(notices.Take(), 0u);
    text->SetText("");
    EXPECT_EQ(notices.Take(), 1u);
    EXPECT_EQ(text->GetText(), "");
    EXPECT_TRUE(Drawn(*document).IsEmpty());
}

} // namespace
} // namespace Vz::Test
