#include "tavro/svg/model/Reader.h"

#include "DocumentScene.h"
#include "tavro/svg/model/PlainElement.h"
#include "tavro/svg/model/Referenced.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Vz::Test {
namespace {

using testing::HasSubstr;

/// What reading the text raises; fails where it raises nothing.
EReadError ErrorOf(std::string_view text) {
    try {
        TSVGDocument document;
        document.LoadFromText(text, "a.svg");
    } catch (const EReadError& error) {
        return error;
    }
    ADD_FAILURE() << "read without an error: " << text;
    return EReadError("none");
}

// Form

TEST(Reader, RaisesWithLineAndColumn) {
    const EReadError error = ErrorOf("<svg>\n  <g>\n    <path d=>\n  </g>\n</svg>");
    EXPECT_EQ(error.GetPlace(), (TSourcePlace{"a.svg", 3, 13}));
    EXPECT_STREQ(error.what(), "a.svg:3:13: not well-formed XML: not well-formed (invalid token)");
}

TEST(Reader, CountsColumnsInCharacters) {
    EXPECT_EQ(ErrorOf("<svg>\n\xC3\xA4\xC3\xB6\xC3\xBC<</svg>").GetPlace().Column, 5);
}

TEST(Reader, RaisesWhereTheRootIsAnother) {
    EXPECT_EQ(ErrorOf("<?xml version='1.0'?>\n<html/>").GetReason(), "the root is <html>, not <svg>");
    EXPECT_EQ(ErrorOf("<?xml version='1.0'?>\n<html/>").GetPlace().Line, 2);
    EXPECT_EQ(ErrorOf("<svg xmlns='http://example.org/'/>").GetReason(), "the root is <svg>, not <svg>");
    EXPECT_EQ(ErrorOf("<g/>").GetReason(), "the root is <g>, not <svg>");
}

TEST(Reader, RaisesWhereXmlIsBroken) {
    for (const char* text :
         {"", " ", "text", "<svg", "<svg>", "<svg></g>", "<svg/><svg/>", "<svg a='1' a='2'/>",
          "<svg>&nothing;</svg>", "<svg a=1/>", "<svg>\x01</svg>", "<svg>\xFF</svg>", "<svg>&#0;</svg>",
          "<?xml version='1.0' encoding='koi-9'?><svg/>", "<svg:g xmlns:svg='http://www.w3.org/2000/svg'/>"})
        EXPECT_FALSE(ErrorOf(text).GetReason().empty()) << text;
}

TEST(Reader, RaisesWhereTheTextIsTooLarge) {
    const std::string text(TSVGDocument::MaxTextSize + 1, ' ');
    EXPECT_EQ(ErrorOf(text).GetReason(), "larger than 64 MiB");
}

// Encodings and namespaces

TEST(Reader, TakesTheEncodingsOfXml) {
    EXPECT_NE(LoadText("\xEF\xBB\xBF<svg><g id='a'/></svg>")->FindElement("a"), nullptr);
    EXPECT_NE(LoadText("<?xml version='1.0' encoding='ISO-8859-1'?><svg><g id='\xE4'/></svg>")
                  ->FindElement("\xC3\xA4"),
              nullptr);
    std::string wide("\xFF\xFE", 2);
    for (const char c :
         std::string("<svg><style>rect{fill:lime}</style><rect id='a' width='100' height='100'/></svg>"))
        wide += {c, '\0'};
    const auto document = LoadText(wide);
    ASSERT_NE(document->FindElement("a"), nullptr);
    EXPECT_EQ(Drawn(*document).At(50, 50), 0xFF00FF00u) << "its style sheet is found, too";
}

TEST(Reader, KnowsElementsByTheirNamespace) {
    const auto prefixed =
        LoadText("<s:svg xmlns:s='http://www.w3.org/2000/svg'><s:g id='a'/><g id='b'/></s:svg>");
    EXPECT_NE(prefixed->FindElement("a"), nullptr);
    const auto foreign = LoadText(
        "<svg xmlns='http://www.w3.org/2000/svg' xmlns:e='http://example.org/editor'>"
        "<e:g id='a'><g id='in'/></e:g><g xmlns='http://example.org/x' id='b'/>"
        "<metadata><rdf:g xmlns:rdf='r' id='c'/></metadata><g id='d' e:id='e' e:opacity='0'/></svg>");
    for (const char* id : {"a", "in", "b", "c", "e"})
        EXPECT_EQ(foreign->FindElement(id), nullptr) << id;
    ASSERT_NE(foreign->FindElement("d"), nullptr);
    EXPECT_EQ(foreign->Find<TSVGGroup>("d")->GetOpacity(), 1.0f);
    EXPECT_NE(LoadText("<svg><g id='a'/></svg>")->FindElement("a"), nullptr) << "without any namespace";
}

TEST(Reader, BindsPrefixesWhereTheyAreDeclared) {
    const auto document =
        LoadText("<svg xmlns='http://www.w3.org/2000/svg' xmlns:p='http://example.org/'>"
                 "<g xmlns:p='http://www.w3.org/2000/svg'><p:g id='in'/><g xmlns:p=''><p:g id='deep'/></g>"
                 "<p:g id='in2'/></g><p:g id='out'/></svg>");
    EXPECT_NE(document->FindElement("in"), nullptr);
    EXPECT_NE(document->FindElement("in2"), nullptr);
    EXPECT_EQ(document->FindElement("out"), nullptr);
}

TEST(Reader, TakesReferencesWithAndWithoutPrefix) {
    const auto reference = [](std::string_view attributes) {
        return LoadText("<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' "
                        "xmlns:l='http://www.w3.org/1999/xlink' xmlns:o='http://example.org/'><use id='u' " +
                        std::string(attributes) + "/></svg>")
            ->Find<TSVGUse>("u")
            ->GetReference();
    };
    EXPECT_EQ(reference("xlink:href='#a'"), "a");
    EXPECT_EQ(reference("l:href='#a'"), "a");
    EXPECT_EQ(reference("href='#a'"), "a");
    EXPECT_EQ(reference("o:href='#a'"), "");
    EXPECT_EQ(reference("xlink:href='#a' href='#b'"), "b") << "the plain one goes first";
    EXPECT_EQ(reference("href='#b' xlink:href='#a'"), "b");
    EXPECT_EQ(reference("href='other.svg#a'"), "");
}

// Content

TEST(Reader, SkipsWhatItDoesNotKnowWithANote) {
    const auto document = LoadText("<svg xmlns='http://www.w3.org/2000/svg'>\n"
                                   "  <script>alert(1)</script>\n"
                                   "  <animate id='x'/>\n"
                                   "  <rect id='r' width='wide' height='9'/>\n"
                                   "  <path id='p' d='M0 0L5'/>\n"
                                   "  <g transform='turn(9)' fill='no colour'/>\n"
                                   "  <g style='stroke:; fill:lime'/>\n"
                                   "</svg>");
    const auto& notes = document->GetDiagnostics();
    ASSERT_EQ(notes.size(), 7u);
    const int lines[] = {2, 3, 4, 5, 6, 6, 7};
    const char* const words[] = {"script", "animate", "width", "d:", "transform", "fill", "stroke"};
    for (std::size_t i = 0; i < notes.size(); ++i) {
        EXPECT_EQ(notes[i].Line, lines[i]) << notes[i].Text;
        EXPECT_EQ(notes[i].Column, 3) << notes[i].Text;
        EXPECT_THAT(notes[i].Text, HasSubstr(words[i]));
    }
    EXPECT_EQ(document->FindElement("x"), nullptr);
    EXPECT_NE(document->FindElement("r"), nullptr);
    const auto again = LoadContent("<g/>");
    EXPECT_TRUE(again->GetDiagnostics().empty());
}

TEST(Reader, NotesWhereAStyleIsBrokenBesideASheet) {
    const auto document = LoadText(
        "<svg xmlns='http://www.w3.org/2000/svg'>\n<style>g{fill:red}\nrect:hover(1){fill:red}</style>\n"
        "<g style='fill:nothing'/>\n<g/></svg>");
    ASSERT_EQ(document->GetDiagnostics().size(), 2u);
    EXPECT_EQ(document->GetDiagnostics()[1].Line, 4);
    EXPECT_THAT(document->GetDiagnostics()[1].Text, HasSubstr("nothing"));
}

TEST(Reader, KeepsAtMostTwoHundredNotes) {
    std::string content;
    for (int i = 0; i < 300; ++i)
        content += "<unknown/>";
    EXPECT_EQ(LoadContent(content)->GetDiagnostics().size(), 200u);
}

/// All that artworks are drawn with is known: nothing of it is passed over.
TEST(Reader, KnowsEverythingThatArtworksUse) {
    const auto document = LoadText(R"svg(<?xml version="1.0" encoding="UTF-8"?>
<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" xmlns:edit="urn:an-editor"
    width="200" height="100" viewBox="0 0 200 100" preserveAspectRatio="xMidYMid" edit:version="3">
  <title>All</title>
  <metadata><edit:page size="4"><any/></edit:page></metadata>
  <edit:view zoom="2"/>
  <defs id="defs">
    <linearGradient id="l" gradientUnits="userSpaceOnUse" gradientTransform="rotate(9)" spreadMethod="reflect"
        x1="0" y1="1" x2="2" y2="3" edit:collect="always">
      <stop offset="0" stop-color="#f00" stop-opacity=".5"/><stop offset="1" style="stop-color:#0f0;stop-opacity:1"/>
    </linearGradient>
    <radialGradient id="r" xlink:href="#l" gradientUnits="objectBoundingBox" spreadMethod="repeat"
        cx=".5" cy=".5" r=".5" fx=".4" fy=".4"/>
    <path id="rail" d="M10 50A40 40 0 0 1 90 50"/>
  </defs>
  <g id="g" transform="translate(1 2)" opacity=".9" visibility="visible" display="inline" fill-rule="evenodd">
    <rect x="1" y="2" width="30" height="20" rx="3" ry="4" fill="url(#l)" stroke="#123" stroke-width="2"
        stroke-linecap="round" stroke-linejoin="bevel" fill-opacity=".5"/>
    <circle cx="50" cy="50" r="20" fill="url(#r)"/>
    <ellipse cx="50" cy="50" rx="20" ry="10" style="fill:#fff;fill-opacity:.2;fill-rule:nonzero;stroke:red;
        stroke-width:1;stroke-opacity:.4;stroke-linecap:square;stroke-linejoin:miter;opacity:.7;visibility:visible"/>
    <use xlink:href="#rail" x="3" y="4"/>
  </g>
  <text x="5" y="20" font-family="Sans" font-size="12" font-weight="bold" text-anchor="middle" letter-spacing="1"
      word-spacing="2" xml:space="preserve">a <tspan dy="3" style="font-size:9px;font-family:Sans;font-weight:400;
      font-variant:normal;text-anchor:start;line-height:125%;letter-spacing:0px;word-spacing:0px">b</tspan></text>
  <text><textPath xlink:href="#rail" startOffset="10%">along</textPath></text>
</svg>)svg");
    for (const TSVGDiagnostic& note : document->GetDiagnostics())
        ADD_FAILURE() << note.Line << ": " << note.Text;
    EXPECT_EQ(document->Find<TSVGCustomGradient>("l")->GetStopCount(), 2u);
    EXPECT_FALSE(Drawn(*document, 200, 100).IsEmpty());
}

TEST(Reader, IgnoresTitleAndMetadataWhenDrawing) {
    const auto document = LoadContent(
        "<title>A <b>bold</b> name</title><desc>d</desc><metadata><rect width='9' height='9'/></metadata>");
    EXPECT_TRUE(Drawn(*document).IsEmpty());
    EXPECT_EQ(static_cast<const TSVGPlainElement&>(document->GetChild(0)).GetText(), "A  name");
}

TEST(Reader, ReadsTextWithItsParts) {
    const auto document = LoadContent(
        "<text id='t'>a&amp;b<tspan id='s'> c\n</tspan>d<![CDATA[<e>]]><unknown>f</unknown>g</text>");
    EXPECT_EQ(document->Find<TSVGCustomText>("t")->GetText(), "a&b c\nd<e>g");
    EXPECT_EQ(document->Find<TSVGCustomText>("s")->GetText(), " c\n");
}

TEST(Reader, PutsCharactersOfAnotherTextIn) {
    const auto document = LoadContent(
        "<defs><text id='a'>one <tspan>two</tspan></text></defs>"
        "<text id='t'><tref xlink:href='#a'/>!</text><text id='u'><tref xlink:href='#u'/></text>");
    EXPECT_EQ(document->Find<TSVGCustomText>("t")->GetText(), "one two!");
    EXPECT_EQ(document->Find<TSVGCustomText>("u")->GetText(), "");
}

TEST(Reader, BoundsTheDepthOfElements) {
    std::string open;
    std::string close;
    for (int i = 0; i < 600; ++i) {
        open += "<g>";
        close += "</g>";
    }
    const auto document = LoadContent(open + "<rect id='r'/>" + close);
    EXPECT_EQ(document->FindElement("r"), nullptr);
    ASSERT_EQ(document->GetDiagnostics().size(), 1u);
    EXPECT_EQ(document->GetDiagnostics()[0].Text, "elements nested deeper than 512 are skipped");
}

// Cascade

TEST(Reader, AppliesTheCascade) {
    const auto color = [](std::string_view sheet, std::string_view attributes) {
        return LoadContent("<style>" + std::string(sheet) +
                           "</style><g class='up'><rect id='r' class='a b' " + std::string(attributes) +
                           "/></g>")
            ->Find<TSVGGraphicElement>("r")
            ->GetBrush()
            .GetColor();
    };
    EXPECT_EQ(color("", "fill='red'"), 0xFFFF0000u);
    EXPECT_EQ(color("rect{fill:lime}", "fill='red'"), 0xFF00FF00u) << "a sheet goes before attributes";
    EXPECT_EQ(color("rect{fill:lime}", "fill='red' style='fill:blue'"), 0xFF0000FFu);
    EXPECT_EQ(color("rect{fill:lime!important}", "style='fill:blue'"), 0xFF00FF00u);
    EXPECT_EQ(color("rect{fill:lime!important}", "style='fill:blue!important'"), 0xFF0000FFu);
    EXPECT_EQ(color(".a{fill:lime}rect{fill:red}", ""), 0xFF00FF00u) << "a class counts more than a type";
    EXPECT_EQ(color("#r{fill:lime}.a.b{fill:red}", ""), 0xFF00FF00u);
    EXPECT_EQ(color(".a{fill:red}.b{fill:lime}", ""), 0xFF00FF00u) << "the later of two equals";
    EXPECT_EQ(color(".up rect{fill:lime}", ""), 0xFF00FF00u);
    EXPECT_EQ(color(".up > rect{fill:lime}", ""), 0xFF00FF00u);
    EXPECT_EQ(color("svg > rect{fill:lime}", ""), 0xFF000000u);
    EXPECT_EQ(color(".up{fill:lime}", ""), 0xFF00FF00u) << "inherited";
}

TEST(Reader, AppliesSheetsToElementsBeforeThem) {
    const auto document =
        LoadContent("<rect id='r' width='50' height='50'/><style type='text/css'><![CDATA[#r{fill:lime;"
                    "transform:translate(20px,0)}]]></style><style type='text/other'>#r{fill:red}</style>");
    EXPECT_EQ(Drawn(*document).At(60, 25), 0xFF00FF00u);
    EXPECT_EQ(Drawn(*document).At(10, 25), 0u);
}

TEST(Reader, HidesThroughASheet) {
    const auto document = LoadContent("<style>.off{display:none}#on{display:inline}</style>"
                                      "<rect id='on' class='off'/><rect id='off' class='off'/>");
    EXPECT_TRUE(document->Find<TSVGGraphicElement>("on")->GetVisible());
    EXPECT_FALSE(document->Find<TSVGGraphicElement>("off")->GetVisible());
}

// Names that belong to others

TEST(Reader, TakesUnitsOnlyFromAnElementsOwnAttribute) {
    const auto document =
        LoadContent("<mask id='m' patternUnits='userSpaceOnUse' maskContentUnits='objectBoundingBox'/>"
                    "<marker id='k' width='7' markerWidth='5' markerUnits='userSpaceOnUse'/>"
                    "<pattern id='p' patternUnits='strokeWidth'/>");
    const auto* const mask = document->Find<TSVGMask>("m");
    EXPECT_FALSE(mask->GetUnits().has_value());
    EXPECT_EQ(mask->GetContentUnits(), TSVGUnits::ObjectBoundingBox);
    const auto* const marker = document->Find<TSVGMarker>("k");
    EXPECT_EQ(marker->GetWidthLength()->GetValue(), 5);
    EXPECT_EQ(marker->GetUnits(), TSVGUnits::UserSpaceOnUse);
    EXPECT_FALSE(document->Find<TSVGPattern>("p")->GetUnits().has_value());
    EXPECT_THROW(document->Find<TSVGMask>("k"), EInvalidCast);
    EXPECT_EQ(document->GetDiagnostics().size(), 1u);
}

} // namespace
} // namespace Vz::Test
