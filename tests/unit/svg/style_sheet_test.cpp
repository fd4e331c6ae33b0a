#include "tavro/svg/css/StyleSheet.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <deque>
#include <map>

namespace Vz {
namespace {

/// An element of a small tree.
struct TNode final : IStyledElement {
    std::string Type = "g";
    std::map<std::string, std::string, std::less<>> Attributes;
    const TNode* Up = nullptr;
    const TNode* Before = nullptr;

    std::string_view TypeName() const override { return Type; }
    std::string_view Id() const override { return Attribute("id").value_or(""); }
    std::string_view Classes() const override { return Attribute("class").value_or(""); }
    std::optional<std::string_view> Attribute(std::string_view name) const override {
        const auto found = Attributes.find(name);
        if (found == Attributes.end()) return std::nullopt;
        return found->second;
    }
    const IStyledElement* Parent() const override { return Up; }
    const IStyledElement* Previous() const override { return Before; }
};

/// Owns the elements of one test.
class TTree {
public:
    TNode& Add(const TNode* parent, std::string type, std::string id = {}, std::string classes = {}) {
        TNode& node = FNodes.emplace_back();
        node.Type = std::move(type);
        node.Up = parent;
        if (!id.empty()) node.Attributes["id"] = id;
        if (!classes.empty()) node.Attributes["class"] = classes;
        for (const TNode& other : FNodes)
            if (&other != &node && other.Up == parent && parent) node.Before = &other;
        return node;
    }

private:
    std::deque<TNode> FNodes;
};

/// The fills that a sheet gives an element, weakest first, as numbers: its rules say fill:#00000N.
std::string Fills(const TStyleSheet& sheet, const TNode& node) {
    std::vector<TStyleSheet::TMatch> matches;
    sheet.Match(node, matches);
    std::string text;
    for (const auto& match : matches)
        for (const TDeclaration& declaration : *match.Declarations)
            text += std::to_string(declaration.Value.Color & 0xFFFFFF);
    return text;
}

TStyleSheet Sheet(std::string_view css) {
    TStyleSheet sheet;
    sheet.Add(css);
    return sheet;
}

bool IsMatched(std::string_view selector, const TNode& node) {
    return !Fills(Sheet(std::string(selector) + "{fill:#000001}"), node).empty();
}

class StyleSheet : public ::testing::Test {
protected:
    TTree Tree;
    TNode& Root = Tree.Add(nullptr, "svg");
    TNode& Group = Tree.Add(&Root, "g", "g1", "dial big");
    TNode& First = Tree.Add(&Group, "rect", "r1", "fil");
    TNode& Second = Tree.Add(&Group, "rect", "r2", " fil\tlast ");
    TNode& Deep = Tree.Add(&Tree.Add(&Second, "a"), "path", "p");
};

TEST_F(StyleSheet, SimpleSelectors) {
    for (const char* selector :
         {"*", "rect", "#r1", ".fil", "rect.fil#r1", "*.fil", "rect:first-child", ":first-child", "svg|rect",
          "*|*", "[id]", "[id=r1]", "[id='r1']", "[class~=\"fil\"]", "[ id = r1 ]", "[id|=r1]", "\\72 ect",
          "#\\72 1", ".f\\69l"})
        EXPECT_TRUE(IsMatched(selector, First)) << selector;
    for (const char* selector :
         {"Rect", "circle", "#R1", ".Fil", ".fi", "rect:hover", "a:link", "rect:lang(en)", "rect::before",
          "rect:before", "[x]", "[id=r]", "[class~='']", "[class=fi]", "#r1#r2", ":root", "[id~=r]"})
        EXPECT_FALSE(IsMatched(selector, First)) << selector;
    EXPECT_TRUE(IsMatched(".last", Second));
    EXPECT_TRUE(IsMatched(".last.fil", Second));
    EXPECT_FALSE(IsMatched(":first-child", Second));
    EXPECT_TRUE(IsMatched(":root", Root));
    First.Attributes["lang"] = "en-US";
    EXPECT_TRUE(IsMatched("[lang|=en]", First));
    EXPECT_FALSE(IsMatched("[lang|=e]", First));
}

TEST_F(StyleSheet, Combinators) {
    for (const char* selector :
         {"svg rect", "svg g rect", "g > rect", "svg>g>rect", "#g1 * ", "svg .dial .fil", "* *"})
        EXPECT_TRUE(IsMatched(selector, First)) << selector;
    for (const char* selector :
         {"svg > rect", "rect > rect", "rect rect", "g g rect", "rect + rect", "* > * > * > *"})
        EXPECT_FALSE(IsMatched(selector, First)) << selector;
    EXPECT_TRUE(IsMatched("rect + rect", Second));
    EXPECT_TRUE(IsMatched("#r1+#r2", Second));
    EXPECT_TRUE(IsMatched("#r1 + rect a > path", Deep));
    // The nearest ancestor that fits need not be the right one.
    EXPECT_TRUE(IsMatched("svg > g path", Deep));
    EXPECT_TRUE(IsMatched("svg > * path", Deep));
}

TEST_F(StyleSheet, WrongSelectorsSpoilTheirRuleOnly) {
    for (const char* selector : {"",
                                 ">rect",
                                 "rect >",
                                 "rect > > g",
                                 "rect,",
                                 ",rect",
                                 "rect..fil",
                                 "rect#",
                                 "rect.1a",
                                 "[=a]",
                                 "[id=]",
                                 "[id^=r]",
                                 "[id=a b]",
                                 "rect:nth-child(1)",
                                 "rect:unknown",
                                 "rect~rect",
                                 "rect!",
                                 "1rect",
                                 "rect)",
                                 "rect:",
                                 "rect::"})
        EXPECT_EQ(Fills(Sheet(std::string(selector) + "{fill:#000001} rect{fill:#000002}"), Second), "2")
            << selector;
    // What is never closed takes all that follows with it.
    for (const char* selector : {"[", "[id", "[id='", "rect:lang("})
        EXPECT_EQ(Fills(Sheet(std::string(selector) + "{fill:#000001} rect{fill:#000002}"), Second), "")
            << selector;
    // One selector of a group that never matches does not spoil the others.
    EXPECT_TRUE(IsMatched("rect:hover, rect", First));
    EXPECT_FALSE(IsMatched("rect:bogus, rect", First));
}

TEST_F(StyleSheet, TheCascadeAmongRules) {
    EXPECT_EQ(Fills(Sheet("rect{fill:#000001}*{fill:#000002}#r1{fill:#000003}.fil{fill:#000004}"), First),
              "2143");
    EXPECT_EQ(Fills(Sheet("rect{fill:#000001}rect{fill:#000002}"), First), "12");
    EXPECT_EQ(Fills(Sheet("rect.fil{fill:#000001}.fil{fill:#000002}[id]{fill:#000003}"), First), "231");
    // An id outweighs any number of classes.
    std::string classes;
    for (int i = 0; i < 60; ++i)
        classes += ".fil";
    EXPECT_EQ(Fills(Sheet("#r1{fill:#000001}" + classes + "{fill:#000002}"), First), "21");
    EXPECT_EQ(Fills(Sheet("rect:first-child{fill:#000001} g rect{fill:#000002}"), First), "21");
    TStyleSheet two = Sheet("rect{fill:#000001}");
    two.Add("rect{fill:#000002} *{fill:#000003}");
    EXPECT_EQ(Fills(two, First), "312");
}

TEST_F(StyleSheet, SpecificityAsDeepAsTheTree) {
    const TNode* up = &Tree.Add(&Root, "g", "g9");
    for (int i = 0; i < 4; ++i)
        up = &Tree.Add(up, "g");
    const TNode& rect = Tree.Add(up, "rect");
    EXPECT_EQ(Fills(Sheet("g#g9 * g * * rect{fill:#000001} g#g9 * * rect{fill:#000002}"), rect), "21");
}

TEST_F(StyleSheet, DeclarationsAndTransform) {
    const TStyleSheet sheet = Sheet("rect { fill: #000001 !important; bogus: 1; transform: scale(2) } g{}");
    std::vector<TStyleSheet::TMatch> matches(7);
    sheet.Match(First, matches);
    ASSERT_EQ(matches.size(), 1u);
    ASSERT_EQ(matches[0].Declarations->size(), 1u);
    EXPECT_TRUE(matches[0].Declarations->front().Important);
    EXPECT_EQ(*matches[0].Transform, "scale(2)");
    sheet.Match(Group, matches);
    EXPECT_TRUE(matches.empty());
    EXPECT_TRUE(TStyleSheet().IsEmpty());
    EXPECT_FALSE(sheet.IsEmpty());
}

TEST_F(StyleSheet, AtRules) {
    EXPECT_EQ(Fills(Sheet("@media screen{rect{fill:#000001}}"), First), "1");
    EXPECT_EQ(Fills(Sheet("@media print,ALL{rect{fill:#000001}}rect{fill:#000002}"), First), "12");
    EXPECT_EQ(Fills(Sheet("@media{rect{fill:#000001}}"), First), "1");
    EXPECT_EQ(Fills(Sheet("@media only screen{@media all{rect{fill:#000001}}}"), First), "1");
    EXPECT_EQ(Fills(Sheet("@media print{rect{fill:#000001}}rect{fill:#000002}"), First), "2");
    EXPECT_EQ(Fills(Sheet("@media (prefers-color-scheme:dark){rect{fill:#000001}}rect{fill:#000002}"), First),
              "2");
    EXPECT_EQ(Fills(Sheet("@import url(a;b.css); rect{fill:#000002}"), First), "2");
    EXPECT_EQ(Fills(Sheet("@charset \"x\";@font-face{src:url('}')}rect{fill:#000002}"), First), "2");
    EXPECT_EQ(Fills(Sheet("@import \"x.css\""), First), "");
    EXPECT_EQ(Fills(Sheet("@keyframes a{from{fill:red}to{fill:red}}rect{fill:#000002}"), First), "2");
}

TEST_F(StyleSheet, BrokenTextIsRecovered) {
    EXPECT_EQ(Fills(Sheet("<!-- rect{fill:#000001} -->"), First), "1");
    EXPECT_EQ(Fills(Sheet("/* a{ */rect/**/{fill:/*x*/#000001}/* open"), First), "1");
    EXPECT_EQ(Fills(Sheet("rect/**/.fil{fill:#000001}"), First), "1");
    EXPECT_EQ(Fills(Sheet("rect{fill:#000001"), First), "1");
    EXPECT_EQ(Fills(Sheet("rect{fill:#000001;} } rect{fill:#000002} rect{fill:#000003}"), First), "13");
    EXPECT_EQ(Fills(Sheet("rect{fill:{;fill:red};fill:#000001}"), First), "1");
    EXPECT_EQ(Fills(Sheet("rect{font-family:'}';fill:#000001}").IsEmpty()
                        ? TStyleSheet{}
                        : Sheet("rect{stroke:'}';fill:#000001}"),
                    First),
              "1");
    EXPECT_EQ(Fills(Sheet("rect"), First), "");
    EXPECT_EQ(Fills(Sheet("{fill:red}rect{fill:#000001}"), First), "1");
}

TEST_F(StyleSheet, Diagnostics) {
    std::vector<std::string> notes;
    TStyleSheet sheet;
    sheet.Add("@import 'a';rect[x^=y]{fill:red}rect{fill:bogus;stroke:red}circle", &notes);
    ASSERT_EQ(notes.size(), 4u);
    EXPECT_NE(notes[0].find("@import"), std::string::npos);
    EXPECT_NE(notes[1].find("rect[x^=y]"), std::string::npos);
    EXPECT_NE(notes[2].find("fill:bogus"), std::string::npos);
    EXPECT_NE(notes[3].find("circle"), std::string::npos);
    notes.clear();
    std::string many;
    for (int i = 0; i < 1000; ++i)
        many += "rect{a:b}";
    sheet.Add(many, &notes);
    EXPECT_EQ(notes.size(), 101u);
}

TEST_F(StyleSheet, RulesPartsAndStepsAreBounded) {
    std::string many;
    for (std::size_t i = 0; i < TStyleSheet::MaxRules + 10; ++i)
        many += "rect{fill:#000001}";
    std::vector<std::string> notes;
    TStyleSheet sheet;
    sheet.Add(many, &notes);
    EXPECT_EQ(Fills(sheet, First).size(), TStyleSheet::MaxRules);
    EXPECT_EQ(notes.size(), 1u);

    std::string parts = "rect";
    for (std::size_t i = 1; i < TStyleSheet::MaxParts; ++i)
        parts = "* " + parts;
    EXPECT_FALSE(Sheet(parts + "{fill:red}").IsEmpty());
    EXPECT_TRUE(Sheet("* " + parts + "{fill:red}").IsEmpty());

    std::vector<TStyleSheet::TMatch> matches;
    std::int64_t budget = 30; // a match of one declaration takes seven
    sheet.Match(First, matches, &budget);
    EXPECT_EQ(matches.size(), 5u);
    EXPECT_LE(budget, 0);
    sheet.Match(First, matches, &budget);
    EXPECT_TRUE(matches.empty());
}

TEST_F(StyleSheet, HardCasesTakeFewSteps) {
    TTree tree;
    const TNode* up = nullptr;
    for (int i = 0; i < 3000; ++i)
        up = &tree.Add(up, "g", {}, "a");
    std::string selector = "x";
    for (int i = 0; i < 60; ++i)
        selector += i % 2 ? " > g" : " .a";
    EXPECT_FALSE(IsMatched(selector, *up));
    std::vector<TStyleSheet::TMatch> matches;
    constexpr std::int64_t budget = 1'000'000;
    std::int64_t left = budget;
    Sheet(selector + "{fill:red}").Match(*up, matches, &left);
    EXPECT_LE(budget - left, 60 * 3000 * 2) << "each part looks at each element a few times";

    const auto bytesFor = [&](std::string_view piece, std::size_t size) {
        const std::size_t before = Vz::Test::CountAllocatedBytes();
        std::string css;
        while (css.size() < size)
            css += piece;
        TStyleSheet sheet;
        sheet.Add(css);
        Fills(sheet, *up);
        return Vz::Test::CountAllocatedBytes() - before;
    };
    for (const char* piece : {"{", "}", "a{", "@", "@media{", "@media all{", "a{b:c}", "[", "a,", "a ", "\\",
                              "'", "/*", "url(", "a{fill:red}", ".a.a", "<!--", ":not(", "\\61 "}) {
        const std::size_t half = bytesFor(piece, 100'000);
        EXPECT_LE(bytesFor(piece, 200'000), 3 * half + 100'000) << piece;
    }
}

TEST_F(StyleSheet, CopiesStandAlone) {
    TStyleSheet copy;
    {
        const TStyleSheet original = Sheet(".fil{fill:#000001}#r1{fill:#000002}rect{fill:#000003}");
        copy = original;
    }
    EXPECT_EQ(Fills(copy, First), "312");
}

} // namespace
} // namespace Vz
