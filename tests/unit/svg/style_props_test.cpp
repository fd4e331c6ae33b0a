#include "tavro/svg/css/StyleProps.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace Vz {
namespace {

using P = TSVGStyleProperty;
using TKind = TStyleValue::TKind;

TStyleValue Value(P property, std::string_view text) {
    const auto value = ParseStyleValue(property, text);
    EXPECT_TRUE(value) << GetStylePropertyName(property) << ": " << text;
    return value.value_or(TStyleValue{});
}

/// What the value's text is after reading.
std::string Text(P property, std::string_view text) {
    const auto value = ParseStyleValue(property, text);
    return value ? StyleValueText(property, *value) : "(refused)";
}

std::vector<P> AllProperties() {
    std::vector<P> all;
    for (int i = 0; i < static_cast<int>(P::Count); ++i)
        all.push_back(static_cast<P>(i));
    return all;
}

TEST(StyleProps, NamesAndNumbers) {
    EXPECT_EQ(static_cast<int>(P::Fill), 14);
    EXPECT_EQ(static_cast<int>(P::Stroke), 40);
    EXPECT_EQ(GetStylePropertyName(P::Fill), "fill");
    EXPECT_EQ(GetStylePropertyName(P::StrokeDashArray), "stroke-dasharray");
    EXPECT_EQ(GetStylePropertyName(P::Count), "");
    std::set<std::string_view> names;
    for (const P property : AllProperties()) {
        const std::string_view name = GetStylePropertyName(property);
        EXPECT_TRUE(names.insert(name).second) << name;
        EXPECT_EQ(FindStyleProperty(name), property);
    }
    for (const char* name : {"", "a", "zz", "font", "marker", "transform", "width", "Fill", "fill "})
        EXPECT_FALSE(FindStyleProperty(name)) << name;
    // As far as SVG 1.1 has them they stand in alphabetical order.
    for (int i = 1; i <= static_cast<int>(P::WritingMode); ++i)
        EXPECT_LT(GetStylePropertyName(static_cast<P>(i - 1)), GetStylePropertyName(static_cast<P>(i)));
}

TEST(StyleProps, InheritanceAndAttributes) {
    for (const P property :
         {P::Fill, P::Stroke, P::FontSize, P::Visibility, P::TextAnchor, P::MarkerMid, P::ClipRule})
        EXPECT_TRUE(IsInherited(property)) << GetStylePropertyName(property);
    for (const P property :
         {P::Opacity, P::ClipPath, P::Mask, P::StopColor, P::Display, P::TextDecoration, P::Filter})
        EXPECT_FALSE(IsInherited(property)) << GetStylePropertyName(property);
    EXPECT_TRUE(IsPresentationAttribute(P::Fill));
    for (const P property : {P::MixBlendMode, P::LineHeight, P::FontKerning, P::FontVariationSettings})
        EXPECT_FALSE(IsPresentationAttribute(property)) << GetStylePropertyName(property);
}

TEST(StyleProps, KeywordsReadBack) {
    for (int i = 0; i < static_cast<int>(TKeyword::Count); ++i) {
        const auto word = static_cast<TKeyword>(i);
        ASSERT_FALSE(GetKeywordName(word).empty());
        EXPECT_EQ(FindKeyword(GetKeywordName(word)), word);
    }
    EXPECT_EQ(FindKeyword("EVENODD"), TKeyword::EvenOdd);
    EXPECT_EQ(FindKeyword("LineaRrgb"), TKeyword::LinearRgb);
    EXPECT_EQ(FindKeyword("crispEdges"), TKeyword::CrispEdges);
    EXPECT_EQ(FindKeyword("crisp-edges"), TKeyword::CrispEdgesCss);
    for (const char* text : {"", "xyz", "non", "nonee", "even-odd"})
        EXPECT_FALSE(FindKeyword(text)) << text;
}

TEST(StyleProps, WordsOfEveryProperty) {
    const std::multimap<P, std::string_view> words{
        {P::AlignmentBaseline, "text-before-edge"},
        {P::BaselineShift, "super"},
        {P::Clip, "auto"},
        {P::ClipRule, "evenodd"},
        {P::ColorInterpolation, "linearRGB"},
        {P::ColorInterpolationFilters, "sRGB"},
        {P::ColorRendering, "optimizeSpeed"},
        {P::Cursor, "auto"},
        {P::Direction, "rtl"},
        {P::Display, "none"},
        {P::Display, "inline-block"},
        {P::DominantBaseline, "hanging"},
        {P::EnableBackground, "accumulate"},
        {P::FillRule, "nonzero"},
        {P::FontSize, "xx-small"},
        {P::FontSize, "larger"},
        {P::FontSizeAdjust, "none"},
        {P::FontStretch, "semi-condensed"},
        {P::FontStyle, "oblique"},
        {P::FontVariant, "small-caps"},
        {P::FontWeight, "bolder"},
        {P::ImageRendering, "crisp-edges"},
        {P::LetterSpacing, "normal"},
        {P::Overflow, "hidden"},
        {P::PointerEvents, "visiblePainted"},
        {P::ShapeRendering, "crispEdges"},
        {P::StrokeDashArray, "none"},
        {P::StrokeLineCap, "square"},
        {P::StrokeLineJoin, "bevel"},
        {P::TextAnchor, "middle"},
        {P::TextDecoration, "none"},
        {P::TextRendering, "geometricPrecision"},
        {P::UnicodeBidi, "bidi-override"},
        {P::Visibility, "collapse"},
        {P::WordSpacing, "normal"},
        {P::WritingMode, "tb-rl"},
        {P::FontKerning, "none"},
        {P::Isolation, "isolate"},
        {P::Kerning, "auto"},
        {P::LineHeight, "normal"},
        {P::MaskType, "alpha"},
        {P::MixBlendMode, "color-dodge"},
        {P::PaintOrder, "normal"},
        {P::VectorEffect, "non-scaling-stroke"},
        {P::GlyphOrientationVertical, "auto"},
        {P::TextOrientation, "upright"},
        {P::FontVariationSettings, "normal"},
        {P::WhiteSpace, "pre"},
    };
    for (const auto& [property, word] : words) {
        const TStyleValue value = Value(property, word);
        EXPECT_EQ(value.Kind, TKind::Keyword) << word;
        EXPECT_EQ(GetKeywordName(value.Word), word);
        std::string upper(word);
        std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) { return std::toupper(c); });
        EXPECT_EQ(Value(property, upper), value);
        EXPECT_EQ(ParseStyleValue(property, std::string(word) + " bogus").has_value(), property == P::Cursor)
            << word;
    }
    // A word of another property is none.
    EXPECT_FALSE(ParseStyleValue(P::FillRule, "bold"));
    EXPECT_FALSE(ParseStyleValue(P::MixBlendMode, "xor"));
    EXPECT_FALSE(ParseStyleValue(P::ShapeRendering, "crisp-edges"));
}

TEST(StyleProps, WordsForAll) {
    for (const P property : AllProperties()) {
        const std::string_view name = GetStylePropertyName(property);
        EXPECT_EQ(Value(property, " INHERIT ").Kind, TKind::Inherit) << name;
        const TStyleValue initial = Value(property, "initial");
        EXPECT_NE(initial.Kind, TKind::Inherit) << name;
        EXPECT_EQ(Value(property, "unset"), IsInherited(property) ? TStyleValue{} : initial) << name;
        EXPECT_EQ(Value(property, StyleValueText(property, initial)), initial) << name;
        EXPECT_FALSE(ParseStyleValue(property, "")) << name;
        EXPECT_FALSE(ParseStyleValue(property, " \t")) << name;
    }
    EXPECT_EQ(Value(P::StrokeMiterLimit, "initial").Number, 4);
}

TEST(StyleProps, Paints) {
    EXPECT_EQ(Value(P::Fill, "none").Kind, TKind::NoPaint);
    EXPECT_EQ(Value(P::Stroke, "CurrentColor").Kind, TKind::CurrentColor);
    EXPECT_EQ(Value(P::Fill, "context-fill").Kind, TKind::ContextFill);
    EXPECT_EQ(Value(P::Fill, "context-stroke").Kind, TKind::ContextStroke);
    EXPECT_EQ(Value(P::Fill, "\n  green\n ").Color, 0xFF008000);
    EXPECT_EQ(Value(P::Fill, "red icc-color(acmecmyk, 0.11, 0.48)").Color, 0xFFFF0000);
    EXPECT_EQ(Text(P::Fill, "rgba(1,2,3,0.5)"), "#01020380");

    const TStyleValue plain = Value(P::Fill, "  url(  #lg1   )  ");
    EXPECT_EQ(plain.Kind, TKind::Url);
    EXPECT_EQ(*plain.Text, "lg1");
    EXPECT_EQ(plain.Fallback, TStyleValue::TFallback::Absent);
    for (const char* text : {"url('#lg1')", "url(\"#lg1\")", "URL( '#lg1' )", "url(#lg\\31)"})
        EXPECT_EQ(Value(P::Fill, text), plain) << text;

    EXPECT_EQ(Value(P::Fill, "url(#a) none").Fallback, TStyleValue::TFallback::None);
    EXPECT_EQ(Value(P::Fill, "url(#a)currentColor").Fallback, TStyleValue::TFallback::CurrentColor);
    const TStyleValue colored = Value(P::Fill, "url(#a) green icc-color(b, 1)");
    EXPECT_EQ(colored.Fallback, TStyleValue::TFallback::Color);
    EXPECT_EQ(colored.Color, 0xFF008000);
    EXPECT_EQ(Text(P::Fill, "url( '#a' )  GREEN"), "url(#a) #008000");
    EXPECT_EQ(Text(P::Fill, "url('#a (b)\"\\\\')"), "url(\"#a (b)\\\"\\\\\")");
    EXPECT_EQ(*Value(P::Fill, "url('#a (b)\"\\\\')").Text, "a (b)\"\\");
    // Other documents keep their address, and no id can be mistaken for one.
    EXPECT_EQ(Text(P::Fill, "url(other.svg#a)"), "url(other.svg#a)");
    EXPECT_EQ(*Value(P::Fill, "url(other.svg)").Text, "other.svg#");

    for (const char* text :
         {"#", "greenish", "red blue", "url(#a", "url()", "url(#a) x", "url(#a b)", "none none", "red icc(1)",
          "red icc-color(1) x", "inherit none", "url (#a)", "12", "red;", "red !x"})
        EXPECT_FALSE(ParseStyleValue(P::Fill, text)) << text;
}

TEST(StyleProps, Colors) {
    for (const P property : {P::Color, P::StopColor, P::FloodColor, P::LightingColor}) {
        EXPECT_EQ(Value(property, "#fff").Color, 0xFFFFFFFF);
        EXPECT_EQ(Value(property, "currentcolor").Kind, TKind::CurrentColor);
        EXPECT_FALSE(ParseStyleValue(property, "none"));
        EXPECT_FALSE(ParseStyleValue(property, "url(#a)"));
    }
}

TEST(StyleProps, Opacities) {
    for (const P property : {P::Opacity, P::FillOpacity, P::StrokeOpacity, P::StopOpacity, P::FloodOpacity}) {
        EXPECT_EQ(Value(property, ".5").Number, 0.5);
        EXPECT_EQ(Value(property, "50%").Number, 0.5);
        EXPECT_EQ(Value(property, "5").Number, 1);
        EXPECT_EQ(Value(property, "-5").Number, 0);
        EXPECT_EQ(Value(property, "300%").Number, 1);
        for (const char* text : {"0.1mm", "half", "1 1", "50 %", "nan", "1e99"})
            EXPECT_FALSE(ParseStyleValue(property, text)) << text;
    }
}

TEST(StyleProps, LengthsAndNumbers) {
    struct TCase {
        P Property;
        const char* Text;
        const char* Read;
    };
    const TCase cases[] = {
        {P::StrokeWidth, "2", "2"},
        {P::StrokeWidth, "+.5PX", "0.5px"},
        {P::StrokeWidth, "10%", "10%"},
        {P::StrokeWidth, "-20", "(refused)"},
        {P::StrokeWidth, "thick", "(refused)"},
        {P::StrokeWidth, "0.5.5", "(refused)"},
        {P::StrokeDashOffset, "-2em", "-2em"},
        {P::StrokeMiterLimit, "10", "10"},
        {P::StrokeMiterLimit, "0.5", "(refused)"},
        {P::StrokeMiterLimit, "5mm", "(refused)"},
        {P::StrokeMiterLimit, "20%", "(refused)"},
        {P::FontSize, "12", "12"},
        {P::FontSize, "1.5em", "1.5em"},
        {P::FontSize, "1e2ex", "100ex"},
        {P::FontSize, "0", "0"},
        {P::FontSize, "-1", "(refused)"},
        {P::FontSize, "bold", "(refused)"},
        {P::FontWeight, "650", "650"},
        {P::FontWeight, "1", "1"},
        {P::FontWeight, "0", "(refused)"},
        {P::FontWeight, "1001", "(refused)"},
        {P::FontWeight, "700px", "(refused)"},
        {P::FontStretch, "75%", "75%"},
        {P::FontStretch, "75", "(refused)"},
        {P::FontStyle, "oblique 10deg", "oblique"},
        {P::FontStyle, "italic 10deg", "(refused)"},
        {P::FontSizeAdjust, "0.5", "0.5"},
        {P::FontSizeAdjust, "-1", "(refused)"},
        {P::LetterSpacing, "-3", "-3"},
        {P::LetterSpacing, "5%", "5%"},
        {P::WordSpacing, "1ex", "1ex"},
        {P::Kerning, "0", "0"},
        {P::BaselineShift, "-50%", "-50%"},
        {P::BaselineShift, "middle", "(refused)"},
        {P::LineHeight, "1.25", "1.25"},
        {P::LineHeight, "125%", "125%"},
        {P::LineHeight, "-1", "(refused)"},
        {P::GlyphOrientationVertical, "90", "90"},
        {P::GlyphOrientationVertical, "0.25turn", "90"},
        {P::GlyphOrientationVertical, "90px", "(refused)"},
    };
    for (const TCase& c : cases)
        EXPECT_EQ(Text(c.Property, c.Text), c.Read) << GetStylePropertyName(c.Property) << ": " << c.Text;
    EXPECT_EQ(Value(P::LineHeight, "1.25").Kind, TKind::Number);
    EXPECT_EQ(Value(P::LineHeight, "125%").Kind, TKind::Length);
}

TEST(StyleProps, Dashes) {
    const TStyleValue dashes = Value(P::StrokeDashArray, "5mm, 2.5% 3");
    ASSERT_EQ(dashes.Kind, TKind::Lengths);
    EXPECT_EQ(*dashes.Text, "5mm 2.5% 3");
    EXPECT_EQ(Text(P::StrokeDashArray, "5mm, 2.5% 3"), "5mm 2.5% 3");
    for (const char* text : {"20 40 -20", "1,,2", "1,", ",1", "1 none", "a"})
        EXPECT_FALSE(ParseStyleValue(P::StrokeDashArray, text)) << text;
}

TEST(StyleProps, References) {
    for (const P property : {P::ClipPath, P::Mask, P::MarkerStart, P::MarkerMid, P::MarkerEnd, P::Filter}) {
        EXPECT_EQ(Value(property, "none").Kind, TKind::NoPaint);
        EXPECT_EQ(*Value(property, "url(#a)").Text, "a");
        for (const char* text : {"url(#a) none", "url(#a) red", "#a", "a", "circle() view-box"})
            EXPECT_FALSE(ParseStyleValue(property, text)) << text;
    }
}

TEST(StyleProps, Filters) {
    for (const char* text :
         {"blur(4)", "blur()", "grayscale(0.5) url(#missing) opacity(0.5)", "drop-shadow(blue 4 5 6)"}) {
        EXPECT_EQ(Value(P::Filter, text).Kind, TKind::Text);
        EXPECT_EQ(Text(P::Filter, text), text);
    }
    for (const char* text : {"blur", "blur(", "unknown(1)", "blur(4), blur(4)", "none blur(4)"})
        EXPECT_FALSE(ParseStyleValue(P::Filter, text)) << text;
}

TEST(StyleProps, TransformOrigins) {
    struct TCase {
        const char* Text;
        const char* Read;
    };
    const TCase cases[] = {
        {"100 100", "100 100"},
        {"10px 20%", "10px 20%"},
        {"center", "50% 50%"},
        {"left", "0% 50%"},
        {"right", "100% 50%"},
        {"top", "50% 0%"},
        {"bottom", "50% 100%"},
        {"top left", "0% 0%"},
        {"right bottom", "100% 100%"},
        {"bottom right", "100% 100%"},
        {"center top", "50% 0%"},
        {"top center", "50% 0%"},
        {"center left", "0% 50%"},
        {"10px", "10px 50%"},
        {"10px top", "10px 0%"},
        {"left 10px", "0% 10px"},
        {"1 2 3px", "1 2"},
        {"top 10px", "(refused)"},
        {"10px left", "(refused)"},
        {"left right", "(refused)"},
        {"top bottom", "(refused)"},
        {"1 2 3%", "(refused)"},
        {"1 2 3 4", "(refused)"},
        {"middle", "(refused)"},
    };
    for (const TCase& c : cases)
        EXPECT_EQ(Text(P::TransformOrigin, c.Text), c.Read) << c.Text;
}

TEST(StyleProps, SetsOfWords) {
    EXPECT_EQ(Text(P::TextDecoration, "line-through  UNDERLINE"), "underline line-through");
    EXPECT_EQ(Text(P::TextDecoration, "underline overline line-through"), "underline overline line-through");
    for (const char* text :
         {"underline,overline", "underlineoverline", "underline underline", "none underline", "bogus"})
        EXPECT_FALSE(ParseStyleValue(P::TextDecoration, text)) << text;
    EXPECT_EQ(Text(P::PaintOrder, "stroke"), "stroke fill markers");
    EXPECT_EQ(Text(P::PaintOrder, "Markers stroke"), "markers stroke fill");
    for (const char* text :
         {"stroke stroke", "invalid", "stroke invalid", "fill stroke markers fill", "normal fill"})
        EXPECT_FALSE(ParseStyleValue(P::PaintOrder, text)) << text;
}

TEST(StyleProps, Texts) {
    EXPECT_EQ(Text(P::FontFamily, " 'Noto; Sans', Arial "), "'Noto; Sans', Arial");
    EXPECT_EQ(Text(P::Cursor, "url(a;b.cur), pointer"), "url(a;b.cur), pointer");
    EXPECT_EQ(Text(P::Clip, "rect(1 2 3 4)"), "rect(1 2 3 4)");
    EXPECT_EQ(Text(P::EnableBackground, "new 10 10 20 -30"), "new 10 10 20 -30");
    EXPECT_EQ(Text(P::FontVariationSettings, "'wght' 700, \"wdth\" 75"), "'wght' 700, \"wdth\" 75");
    EXPECT_FALSE(ParseStyleValue(P::FontVariationSettings, "'weight' 700"));
    EXPECT_FALSE(ParseStyleValue(P::FontVariationSettings, "'wght' 700,"));
    EXPECT_EQ(Text(P::FontFamily, "A\\;B\\20 C"), "A\\;B\\20 C");
    // Nothing that would swallow what is written behind it.
    for (const char* text : {"a;fill:red", "'a", "a/*", "f(", "a}", "a\\", "{}", "a ! b"})
        EXPECT_FALSE(ParseStyleValue(P::FontFamily, text)) << text;
}

TEST(StyleProps, EscapesInWords) {
    EXPECT_EQ(Value(P::Fill, "r\\65 d").Color, 0xFFFF0000);
    EXPECT_EQ(Value(P::FillRule, "\\65 venodd").Word, TKeyword::EvenOdd);
    EXPECT_EQ(*Value(P::Fill, "url(#a\\)b)").Text, "a)b");
}

TEST(Declarations, AreReadInOrder) {
    std::vector<std::string> refused;
    const auto list = ParseDeclarations("fill : red;; stroke-width:2px ! important ;FILL:blue", &refused);
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0].Property, P::Fill);
    EXPECT_FALSE(list[0].Important);
    EXPECT_EQ(list[1].Property, P::StrokeWidth);
    EXPECT_TRUE(list[1].Important);
    EXPECT_EQ(list[1].Value, Value(P::StrokeWidth, "2px"));
    EXPECT_EQ(list[2].Value.Color, 0xFF0000FF);
    EXPECT_TRUE(refused.empty());
    EXPECT_TRUE(ParseDeclarations("").empty());
    EXPECT_TRUE(ParseDeclarations(" ;; ; ").empty());
}

TEST(Declarations, BrokenOnesAreLeftOut) {
    std::vector<std::string> refused;
    const auto list = ParseDeclarations(
        "bogus; :red; fill; fill:; fill red; x:1; stroke:{;fill:blue}; fill:\"a;b\"; -a-b: c; fill: red !imp;"
        "opacity: .5; stroke: rgb(1;2)",
        &refused);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].Property, P::Opacity);
    EXPECT_EQ(refused, (std::vector<std::string>{"bogus", ":red", "fill", "fill:", "fill red", "x:1",
                                                 "stroke:{;fill:blue}", "fill:\"a;b\"", "-a-b: c",
                                                 "fill: red !imp", "stroke: rgb(1;2)"}));
}

TEST(Declarations, CommentsEscapesAndStrings) {
    EXPECT_EQ(ParseDeclarations("/*text*/fill:green/*text*/").at(0).Value.Color, 0xFF008000);
    EXPECT_EQ(ParseDeclarations("fi/**/ll:green;stroke:/*;*/red").size(), 1u);
    EXPECT_EQ(ParseDeclarations("fill:red;/* never closed; stroke:blue").size(), 1u);
    EXPECT_EQ(ParseDeclarations("f\\69ll:red").size(), 1u);
    EXPECT_EQ(ParseDeclarations("f\\69 ll:red").size(), 1u);
    const auto family = ParseDeclarations("font-family:'a;b /* c */', d;fill:red");
    ASSERT_EQ(family.size(), 2u);
    EXPECT_EQ(*family[0].Value.Text, "'a;b /* c */', d");
    // A string that its line leaves open spoils its own declaration only.
    EXPECT_EQ(ParseDeclarations("font-family:'a\n;fill:red").back().Property, P::Fill);
    EXPECT_EQ(ParseDeclarations("fill:url(data:;base64,/*x);stroke:red").size(), 2u);
    EXPECT_EQ(ParseDeclarations("fill:url(data:;base64,'x);stroke:red").size(), 1u);
}

TEST(Declarations, Transform) {
    std::string transform = "before";
    std::vector<std::string> refused;
    EXPECT_TRUE(ParseDeclarations("transform:scale(2);transform: rotate(45deg) ;transform:bogus", &refused,
                                  &transform)
                    .empty());
    EXPECT_EQ(transform, "rotate(45deg)");
    EXPECT_EQ(refused, std::vector<std::string>{"transform:bogus"});
    EXPECT_TRUE(ParseDeclarations("transform:scale(2)").empty());
}

std::map<P, std::string> Read(std::string_view text) {
    std::map<P, std::string> values;
    for (const TDeclaration& declaration : ParseDeclarations(text))
        values[declaration.Property] = StyleValueText(declaration.Property, declaration.Value);
    return values;
}

TEST(Declarations, MarkerShorthand) {
    const auto values = Read("marker:url(#m)");
    EXPECT_EQ(values,
              (std::map<P, std::string>{
                  {P::MarkerStart, "url(#m)"}, {P::MarkerMid, "url(#m)"}, {P::MarkerEnd, "url(#m)"}}));
    EXPECT_EQ(Read("marker:none").size(), 3u);
    EXPECT_TRUE(Read("marker:bogus").empty());
}

TEST(Declarations, FontShorthand) {
    auto values = Read("font: italic small-caps bold condensed 16px/1.5 'Noto Sans', serif");
    EXPECT_EQ(values.size(), 10u);
    EXPECT_EQ(values[P::FontStyle], "italic");
    EXPECT_EQ(values[P::FontVariant], "small-caps");
    EXPECT_EQ(values[P::FontWeight], "bold");
    EXPECT_EQ(values[P::FontStretch], "condensed");
    EXPECT_EQ(values[P::FontSize], "16px");
    EXPECT_EQ(values[P::LineHeight], "1.5");
    EXPECT_EQ(values[P::FontFamily], "'Noto Sans', serif");

    values = Read("font: 50px 'Noto Sans'");
    EXPECT_EQ(values[P::FontWeight], "normal");
    EXPECT_EQ(values[P::FontKerning], "auto");
    EXPECT_EQ(values[P::LineHeight], "normal");

    EXPECT_EQ(Read("font: 700 12px / 20px a")[P::FontWeight], "700");
    EXPECT_EQ(Read("font: 700 12px / 20px a")[P::LineHeight], "20px");
    EXPECT_EQ(Read("font: normal bold normal larger a")[P::FontSize], "larger");
    EXPECT_EQ(Read("font: 12 Arial")[P::FontSize], "12");
    EXPECT_EQ(Read("font: inherit")[P::FontSize], "inherit");
    for (const char* text : {"12px", "italic", "bold Arial", "12px/ Arial", "italic oblique 12px a",
                             "12px/x a", "caption", "inherit 12px a", "12px inherit", "/ 12px a"})
        EXPECT_TRUE(Read("font:" + std::string(text)).empty()) << text;
    const auto important = ParseDeclarations("font:12px a !important");
    ASSERT_FALSE(important.empty());
    EXPECT_TRUE(
        std::all_of(important.begin(), important.end(), [](const TDeclaration& d) { return d.Important; }));
}

/// The bytes of memory that a reading asks for.
template <class F> std::size_t BytesFor(F read) {
    const std::size_t before = Vz::Test::CountAllocatedBytes();
    read();
    return Vz::Test::CountAllocatedBytes() - before;
}

TEST(Declarations, LargeTextsTakeWorkInProportion) {
    const auto repeat = [&](std::string_view piece, std::size_t size) {
        std::string text;
        while (text.size() < size)
            text += piece;
        return text;
    };
    for (const char* piece : {"(", "fill:(", "\"", "'\n", "\\", "/*", "url(", "a:b;", "fill:red;", "!",
                              "f(\"", "/* */a", "font:1px a;", "{[("}) {
        const auto bytes = [&](std::size_t size) {
            const std::string text = repeat(piece, size);
            return BytesFor([&] { ParseDeclarations(text); });
        };
        EXPECT_LE(bytes(200'000), 3 * bytes(100'000) + 10'000) << piece;
    }
    for (const P property : AllProperties())
        for (const char* piece : {"1 ", "1,", "(", "a ", "url(", "'", "\\", "fill "}) {
            const auto bytes = [&](std::size_t size) {
                const std::string text = repeat(piece, size);
                return BytesFor([&] { ParseStyleValue(property, text); });
            };
            EXPECT_LE(bytes(20'000), 3 * bytes(10'000) + 10'000) << int(property) << ' ' << piece;
        }
}

TEST(StyleProps, WhatIsReadIsWrittenAndReadBack) {
    const char* texts[] = {"none",         "1",
                           "0.25",         "2px",
                           "50%",          "1 2 3",
                           "red",          "url(#a) #12345678",
                           "'a b'",        "normal",
                           "inherit",      "currentColor",
                           "auto",         "bold",
                           "underline",    "stroke",
                           "left top",     "blur(2px)",
                           "1e-7em",       "1e20",
                           "context-fill", "url(x.svg#y) none",
                           "90deg",        "\"wght\" 2"};
    int count = 0;
    for (const P property : AllProperties())
        for (const char* text : texts)
            if (const auto value = ParseStyleValue(property, text)) {
                const std::string written = StyleValueText(property, *value);
                EXPECT_EQ(ParseStyleValue(property, written), value) << written;
                ++count;
            }
    EXPECT_GT(count, 200);
}

} // namespace
} // namespace Vz
