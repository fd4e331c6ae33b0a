#include "Tool.h"

#include <gmock/gmock.h>

#include <tuple>

namespace Vz::Test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

using TErrorTest = TToolTest;

TEST_F(TErrorTest, UnknownClass) {
    EXPECT_THAT(Complaint({"get", "TVZNothing"}), HasSubstr("TVZNothing"));
    EXPECT_THAT(Complaint({"describe", "TVZNothing"}), HasSubstr("TVZNothing"));
    EXPECT_THAT(Complaint({"get", "picture.jpg"}),
                HasSubstr("'picture.jpg' is no class, no *.form and no *.svg file"));
}

TEST_F(TErrorTest, MissingFiles) {
    EXPECT_THAT(Complaint({"get", "missing.svg"}), HasSubstr("missing.svg"));
    EXPECT_THAT(Complaint({"get", "missing.form"}), HasSubstr("missing.form"));
    EXPECT_THAT(Complaint({"get", "missing.form#A"}), HasSubstr("missing.form"));
    for (const std::string ending : {".svg", ".form"}) {
        EXPECT_THAT(Complaint({"get", "missing" + ending}), HasSubstr(": cannot be read: No such file"));
        std::filesystem::create_directory(Folder() / ("folder" + ending));
        EXPECT_THAT(Complaint({"get", "folder" + ending}), HasSubstr("cannot be read: Is a directory"));
    }
}

TEST_F(TErrorTest, BrokenSvgIsNamedWithItsPlace) {
    Write("broken.svg", "<svg xmlns='http://www.w3.org/2000/svg'>\n  <rect\n</svg>\n");
    EXPECT_THAT(Complaint({"render", "broken.svg", "-o", "x.png"}), HasSubstr("broken.svg:3:"));
    EXPECT_FALSE(Exists("x.png"));
    Write("other.svg", "<html/>");
    EXPECT_THAT(Complaint({"get", "other.svg"}), HasSubstr("other.svg:1:"));
    Write("empty.svg", "");
    EXPECT_THAT(Complaint({"get", "empty.svg"}), HasSubstr("empty.svg"));
}

TEST_F(TErrorTest, BrokenFormIsNamedWithItsPlace) {
    Write("broken.form", "object A: TVZSVGControl\n  Quality = many\nend\n");
    const std::string text = Complaint({"get", "broken.form"});
    EXPECT_THAT(text, HasSubstr("broken.form:2:"));
    EXPECT_THAT(text, HasSubstr("Quality"));
    EXPECT_THAT(text, HasSubstr("many"));
    Write("unknown.form", "object A: TVZNothing\nend\n");
    EXPECT_THAT(Complaint({"get", "unknown.form"}), HasSubstr("unknown.form:1:"));
}

TEST_F(TErrorTest, PropertyAndTextAreNamed) {
    EXPECT_THAT(Complaint({"get", "TVZSVGControl", "--set", "Nothing=1"}), HasSubstr("Nothing"));
    EXPECT_THAT(Complaint({"get", "TVZSVGControl", "Nothing"}), HasSubstr("Nothing"));
    EXPECT_THAT(Complaint({"get", "TVZSVGControl", "--set", "Font.Size=1"}), HasSubstr("Font.Size"));
    EXPECT_THAT(Complaint({"get", "TVZSVGControl", "--set", "OnDrawn=1"}), HasSubstr("OnDrawn"));
    for (const char* const text : {"Quality=lots", "Quality=", "Quality=99999999999", "Stretch=yes",
                                   "Opacity=1,5", "Opacity=nan", "Transform=rotate"}) {
        const std::string edit = text;
        const std::string complaint = Complaint({"get", "TVZSVGControl", "--set", edit});
        EXPECT_THAT(complaint, HasSubstr(edit.substr(0, edit.find('='))));
        EXPECT_THAT(complaint, HasSubstr(edit.substr(edit.find('=') + 1)));
    }
}

TEST_F(TErrorTest, ControlCharactersStayOnOneLine) {
    Complaint({"get", "TVZSVGControl", "--set", "Quality=1\n2"});
}

TEST_F(TErrorTest, FormHasNoDocument) {
    EXPECT_THAT(Complaint({"document", "TVZForm"}), HasSubstr("TVZForm has no SVG document"));
}

TEST_F(TErrorTest, FileIsWrittenWholeOrNotAtAll) {
    WriteBox();
    Write("old.png", "old");
    Complaint({"render", "box.svg", "--set", "Quality=x", "-o", "old.png"});
    EXPECT_EQ(Read("old.png"), "old");
    EXPECT_THAT(Complaint({"render", "box.svg", "-o", "no/such/folder.png"}),
                HasSubstr("no/such/folder.png"));
    std::filesystem::create_directory(Folder() / "folder.png");
    Complaint({"render", "box.svg", "-o", "folder.png"});
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(Folder()))
        files += !entry.path().filename().string().starts_with("..");
    EXPECT_EQ(files, 3) << "something was left behind";
}

TEST_F(TErrorTest, WhatAnEditDidBeforeTheFaultIsTraced) {
    const TRun run = Run({"trace", "TVZSVGControl", "--set", "Stretch=true", "--set", "Quality=x"});
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Out, "--set Stretch=true\n  Invalidate\n--set Quality=x\n");
}

/// Wrong usage, and what the first line of standard error says.
struct TUsage {
    std::vector<std::string> Arguments;
    std::string Text;
};
void PrintTo(const TUsage& usage, std::ostream* stream) { *stream << usage.Text; }

class TUsageTest : public TToolTest, public testing::WithParamInterface<TUsage> {};

TEST_P(TUsageTest, EndsWithTwo) {
    const auto& [arguments, text] = GetParam();
    const TRun run = Run(arguments);
    EXPECT_EQ(run.Status, 2);
    EXPECT_EQ(run.Out, "");
    EXPECT_THAT(run.Err, StartsWith("tavro: " + text + '\n'));
    EXPECT_THAT(run.Err, testing::AnyOf(HasSubstr("\nusage: tavro "), HasSubstr("\ncommands: classes ")));
}

INSTANTIATE_TEST_SUITE_P(
    Each, TUsageTest,
    testing::Values(
        TUsage{std::vector<std::string>{}, "a command is missing"},
        TUsage{{"draw"}, "unknown command 'draw'"}, TUsage{{"--draw"}, "unknown command '--draw'"},
        TUsage{{"get"}, "'get' needs a SOURCE"}, TUsage{{"describe"}, "'describe' needs a CLASS"},
        TUsage{{"describe", "A", "B"}, "unexpected argument 'B'"},
        TUsage{{"classes", "A"}, "unexpected argument 'A'"},
        TUsage{{"get", "A", "--fast"}, "unknown option '--fast'"},
        TUsage{{"get", "A", "--json"}, "'get' takes no --json"},
        TUsage{{"get", "A", "-o", "f"}, "'get' takes no -o"},
        TUsage{{"describe", "A", "--set", "B=1"}, "'describe' takes no --set"},
        TUsage{{"check"}, "'check' needs a CLASS"}, TUsage{{"check", "A"}, "'check' needs a FILE"},
        TUsage{{"check", "A", "b.svg", "C"}, "unexpected argument 'C'"},
        TUsage{{"check", "A", "b.svg", "--set", "C=1"}, "'check' takes no --set"},
        TUsage{{"render", "TVZForm"}, "'render' needs -o FILE"},
        TUsage{{"render", "A", "-o"}, "-o needs FILE"},
        TUsage{{"form", "A", "-o", ""}, "-o takes a file's name, not ''"},
        TUsage{{"render", "A", "-o", "a.gif"}, "a picture's name ends in .png, .svg or .pdf, unlike 'a.gif'"},
        TUsage{{"render", "A", "-o", "png"}, "a picture's name ends in .png, .svg or .pdf, unlike 'png'"},
        TUsage{{"get", "A", "--set"}, "--set needs NAME=VALUE"},
        TUsage{{"get", "A", "--set", "B"}, "--set takes NAME=VALUE, not 'B'"},
        TUsage{{"get", "A", "--artwork"}, "--artwork needs FILE.svg"},
        TUsage{{"get", "A", "--artwork", ""}, "--artwork takes an SVG file's name, not ''"},
        TUsage{{"check", "A", "b.svg", "--artwork", "c.svg"}, "'check' takes no --artwork"},
        TUsage{{"get", "A", "--set", "=1"}, "--set takes NAME=VALUE, not '=1'"}));

class TMalformedTest : public TToolTest,
                       public testing::WithParamInterface<std::tuple<std::string, std::string>> {};

TEST_P(TMalformedTest, EndsWithTwoAndQuotesTheText) {
    const auto& [option, text] = GetParam();
    const TRun run = Run({"render", "TVZForm", "-o", "x.png", option, text});
    EXPECT_EQ(run.Status, 2);
    EXPECT_THAT(run.Err, StartsWith("tavro: " + option + " takes "));
    EXPECT_THAT(run.Err, HasSubstr(", not '" + text + "'\n"));
    EXPECT_FALSE(Exists("x.png"));
}

INSTANTIATE_TEST_SUITE_P(Sizes, TMalformedTest,
                         testing::Combine(testing::Values("--size"),
                                          testing::Values("", "10", "10x", "x10", "10x20x30", "0x10", "10x-1",
                                                          "axb", "1.5x2", "10X20", "99999999999x1")));
INSTANTIATE_TEST_SUITE_P(Clicks, TMalformedTest,
                         testing::Combine(testing::Values("--click"),
                                          testing::Values("", "1", "1,", "1,2,", "1,2,up", "1;2", "1,2,left,",
                                                          "a,2", "1.5,2")));
INSTANTIATE_TEST_SUITE_P(Scales, TMalformedTest,
                         testing::Combine(testing::Values("--scale"),
                                          testing::Values("", "0", "-1", "nan", "inf", "2x")));
INSTANTIATE_TEST_SUITE_P(Backgrounds, TMalformedTest,
                         testing::Combine(testing::Values("--background"),
                                          testing::Values("", "red", "#fff")));

} // namespace
} // namespace Vz::Test
