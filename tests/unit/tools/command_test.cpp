#include "Tool.h"
#include "tavro/runtime/Resources.h"

#include <gmock/gmock.h>

#include <sstream>

namespace Vz::Test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class TCommandTest : public TToolTest {
protected:
    static std::vector<std::string> Lines(const std::string& text) {
        std::vector<std::string> lines;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }
};

TEST_F(TCommandTest, ClassesAreOneNamePerLine) {
    const auto lines = Lines(Output({"classes"}));
    EXPECT_THAT(lines, testing::Contains("TVZSVGControl"));
    EXPECT_THAT(lines, testing::Contains("TVZForm"));
}

TEST_F(TCommandTest, DescribeHasFiveFieldsInDeclarationOrder) {
    EXPECT_THAT(Output({"describe", "TVZSVGControl"}), StartsWith("Buffered\tBoolean\ttrue\t-\ttrue\n"
                                                                  "Stretch\tBoolean\tfalse\t-\tfalse\n"
                                                                  "Quality\tinteger\t1\t-\t1\n"
                                                                  "Opacity\tsingle\t1\t-\t1\n"
                                                                  "Transform\t"));
    for (const std::string& line : Lines(Output({"describe", "TVZSVGControl"})))
        EXPECT_EQ(std::ranges::count(line, '\t'), 4) << line;
}

TEST_F(TCommandTest, DescribeAsJsonSaysTheSame) {
    const std::string json = Output({"describe", "TVZSVGControl", "--json"});
    EXPECT_THAT(json,
                StartsWith("[\n  {\"name\": \"Buffered\", \"type\": \"Boolean\", \"default\": \"true\", "
                           "\"stored\": false, \"value\": \"true\"},\n"));
    EXPECT_EQ(std::ranges::count(json, '{'), std::ssize(Lines(Output({"describe", "TVZSVGControl"}))));
    EXPECT_EQ(Output({"describe", "TVZForm", "--json"}), "[]\n");
}

TEST_F(TCommandTest, OwnedObjectIsDescribedWithItsParts) {
    const auto lines = Lines(Output({"describe", "TVZSpeedometer"}));
    const auto font = std::ranges::find(lines, "Font\tTSVGFont\t\t-\t");
    ASSERT_LT(std::ranges::distance(lines.begin(), font) + 1, std::ssize(lines));
    EXPECT_THAT(*(font + 1), StartsWith("Font.Family\tstring\t"));
    EXPECT_EQ(Output({"get", "TVZSpeedometer", "--set", "Font.Size=8", "Font.Size"}), "Font.Size=8\n");
    EXPECT_THAT(Complaint({"get", "TVZSpeedometer", "--set", "Font.Size=big"}),
                HasSubstr("Font.Size: 'big'"));
}

TEST_F(TCommandTest, EveryClassIsDescribedDrawnAndWritten) {
    for (const std::string& name : Lines(Output({"classes"}))) {
        Output({"describe", name});
        Output({"render", name, "-o", name + ".png"});
        EXPECT_TRUE(Exists(name + ".png"));
        EXPECT_THAT(Output({"form", name}), StartsWith("object " + name + "\n"));
    }
}

TEST_F(TCommandTest, GetPrintsCommonPropertiesFirst) {
    EXPECT_THAT(
        Output({"get", "TVZSVGControl"}),
        StartsWith("Name=\nLeft=0\nTop=0\nWidth=50\nHeight=50\nEnabled=true\nVisible=true\nBuffered=true\n"));
}

TEST_F(TCommandTest, GetPrintsWhatIsNamedInThatOrder) {
    EXPECT_EQ(Output({"get", "TVZSVGControl", "Quality", "--set", "Opacity=0.25", "Opacity", "Width"}),
              "Quality=1\nOpacity=0.25\nWidth=50\n");
}

TEST_F(TCommandTest, SvgFileGivesItsOwnSize) {
    WriteBox();
    EXPECT_EQ(Output({"get", "box.svg", "Width", "Height"}), "Width=40\nHeight=20\n");
    Write("view.svg", "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 30 60'/>");
    EXPECT_EQ(Output({"get", "view.svg", "Width", "Height"}), "Width=30\nHeight=60\n");
    Write("none.svg", "<svg xmlns='http://www.w3.org/2000/svg'/>");
    EXPECT_EQ(Output({"get", "none.svg", "Width", "Height"}), "Width=100\nHeight=100\n");
    Write("UPPER.SVG", "<svg xmlns='http://www.w3.org/2000/svg' width='1.5' height='1e30'/>");
    EXPECT_EQ(Output({"get", "UPPER.SVG", "Width", "Height"}), "Width=2\nHeight=1000000\n");
}

TEST_F(TCommandTest, EditsGoInTheirOrder) {
    EXPECT_EQ(Output({"get", "TVZSVGControl", "--set", "Quality=20", "--set", "Quality=3", "Quality"}),
              "Quality=3\n");
    EXPECT_EQ(Output({"get", "TVZSVGControl", "--set", "Quality=3", "--set", "Quality=20", "Quality"}),
              "Quality=8\n");
}

TEST_F(TCommandTest, ValueMayHoldAnEqualsSign) {
    EXPECT_THAT(Complaint({"get", "TVZSVGControl", "--set", "Name=a=b"}), HasSubstr("a=b"));
}

TEST_F(TCommandTest, DocumentKeepsIds) {
    WriteBox();
    const std::string text = Output({"document", "box.svg"});
    EXPECT_THAT(text, HasSubstr("id=\"Box\""));
    EXPECT_EQ(Output({"document", "box.svg", "-o", "copy.svg"}), "");
    EXPECT_EQ(Read("copy.svg"), text);
    EXPECT_EQ(Output({"document", "box.svg", "-o", "-"}), text);
    Output({"render", "box.svg", "-o", "a.png"});
    Output({"render", "copy.svg", "-o", "b.png"});
    EXPECT_EQ(Read("a.png"), Read("b.png"));
}

TEST_F(TCommandTest, FormReadsBack) {
    const std::string text =
        Output({"form", "TVZSVGControl", "--set", "Name=Dial", "--set", "Opacity=0.5", "--set", "Width=80"});
    EXPECT_THAT(text, StartsWith("object Dial: TVZSVGControl\n"));
    EXPECT_THAT(text, HasSubstr("  Opacity = 0.5\n"));
    EXPECT_THAT(text, HasSubstr("  Width = 80\n"));
    EXPECT_THAT(text, Not(HasSubstr("Height")));
    EXPECT_THAT(text, Not(HasSubstr("Quality")));
    Write("dial.form", text);
    EXPECT_EQ(Output({"form", "dial.form"}), text);
    EXPECT_EQ(Output({"form", "dial.form", "-o", "again.form"}), "");
    EXPECT_EQ(Read("again.form"), text);
}

TEST_F(TCommandTest, ComponentOfAFormIsPicked) {
    Write("two.form", "object Board: TVZForm\n  Width = 300\n"
                      "  object A: TVZSVGControl\n    Quality = 2\n  end\n"
                      "  object B: TVZSVGControl\n    Quality = 3\n    Left = 100\n  end\nend\n");
    EXPECT_EQ(Output({"get", "two.form", "Width"}), "Width=300\n");
    EXPECT_EQ(Output({"get", "two.form#B", "Quality", "Left"}), "Quality=3\nLeft=100\n");
    EXPECT_EQ(Output({"get", "two.form#Board", "Width"}), "Width=300\n");
    EXPECT_THAT(Complaint({"get", "two.form#C", "Width"}), HasSubstr("two.form: there is no component 'C'"));
    EXPECT_THAT(Complaint({"get", "two.form#", "Width"}), HasSubstr("there is no component ''"));
}

TEST_F(TCommandTest, TraceShowsEachEditAndItsEvents) {
    EXPECT_EQ(Output({"trace", "TVZSVGControl", "--set", "Stretch=true", "--set", "Stretch=true", "--set",
                      "Buffered=false", "--click", "10,12,right,shift"}),
              "--set Stretch=true\n  Invalidate\n--set Stretch=true\n--set Buffered=false\n"
              "--click 10,12,right,shift\n  OnMouseDown\n  OnMouseUp\n");
}

TEST_F(TCommandTest, TraceOfALeftClickAndOfUpdates) {
    EXPECT_EQ(Output({"trace", "TVZSVGControl", "--begin-update", "--click", "0,0", "--end-update"}),
              "--begin-update\n--click 0,0\n  OnMouseDown\n  OnClick\n  OnMouseUp\n--end-update\n");
    EXPECT_EQ(Output({"trace", "TVZSVGControl", "--set", "Enabled=false", "--click", "0,0"}),
              "--set Enabled=false\n  Invalidate\n--click 0,0\n");
}

TEST_F(TCommandTest, UpdatesNeedNotBalance) {
    EXPECT_EQ(Output({"trace", "TVZSpeedometer", "--end-update", "--end-update", "--begin-update", "--set",
                      "Value=20", "--end-update"}),
              "--end-update\n--end-update\n--begin-update\n--set Value=20\n  Invalidate\n  OnChange\n"
              "--end-update\n");
}

/// The speedometer's own artwork with a mark on its needle, in new.svg.
void WriteMarkedArtwork(const TToolTest& test) {
    std::string svg(GetResource("SpeedometerSVG"));
    const std::size_t needle = svg.find("id=\"NeedleGroup\"");
    ASSERT_NE(needle, svg.npos);
    svg.insert(svg.find('>', needle) + 1, "<circle id=\"Mark\" r=\"9\"/>");
    test.Write("new.svg", svg);
}

TEST_F(TCommandTest, ArtworkTakesThePlaceOfTheClasssOwnFromThereOn) {
    WriteMarkedArtwork(*this);
    EXPECT_THAT(Output({"document", "TVZSpeedometer"}), Not(HasSubstr("\"Mark\"")));
    const std::string text =
        Output({"document", "TVZSpeedometer", "--set", "Value=80", "--artwork", "new.svg"});
    EXPECT_THAT(text, HasSubstr("\"Mark\""));
    EXPECT_EQ(Output({"get", "TVZSpeedometer", "--set", "Value=80", "--artwork", "new.svg", "Value"}),
              "Value=80\n");
    EXPECT_EQ(text, Output({"document", "TVZSpeedometer", "--artwork", "new.svg", "--set", "Value=80"}));
    EXPECT_THAT(Output({"trace", "TVZSpeedometer", "--artwork", "new.svg"}),
                StartsWith("--artwork new.svg\n  Invalidate\n"));
    Output({"render", "TVZSpeedometer", "-o", "old.png"});
    Output({"render", "TVZSpeedometer", "--artwork", "new.svg", "-o", "new.png"});
    EXPECT_NE(Read("old.png"), Read("new.png"));
    EXPECT_EQ(Output({"form", "TVZSpeedometer", "--artwork", "new.svg"}), Output({"form", "TVZSpeedometer"}));
}

TEST_F(TCommandTest, ArtworkThatCannotBeTaken) {
    WriteMarkedArtwork(*this);
    Write("broken.svg", "<svg xmlns='http://www.w3.org/2000/svg'>\n  <g></svg>");
    EXPECT_THAT(Complaint({"get", "TVZSpeedometer", "--artwork", "broken.svg"}), HasSubstr("broken.svg:2:"));
    EXPECT_THAT(Complaint({"get", "TVZSpeedometer", "--artwork", "none.svg"}), HasSubstr("none.svg"));
    for (const char* const other : {"TVZSVGControl", "TVZForm", "new.svg"})
        EXPECT_THAT(Complaint({"get", other, "--artwork", "new.svg"}),
                    HasSubstr(" has no artwork of its own"));
}

TEST_F(TCommandTest, TraceNamesComponentsInside) {
    Write("one.form", "object Board: TVZForm\n  object A: TVZSVGControl\n  end\nend\n");
    EXPECT_EQ(Output({"trace", "one.form", "--click", "10,10"}),
              "--click 10,10\n  A.OnMouseDown\n  A.OnClick\n  A.OnMouseUp\n");
    EXPECT_EQ(Output({"trace", "one.form#A", "--click", "60,10", "--click", "49,49,middle"}),
              "--click 60,10\n--click 49,49,middle\n  OnMouseDown\n  OnMouseUp\n");
}

TEST_F(TCommandTest, TraceOfClicksThatSwitch) {
    const std::string events = "  OnMouseDown\n  OnClick\n  OnMouseUp\n";
    EXPECT_EQ(Output({"trace", "TVZCubeLight", "--click", "100,100", "--set", "EnableActions=false",
                      "--click", "100,100"}),
              "--click 100,100\n" + events +
                  "  Invalidate\n  OnChange\n--set EnableActions=false\n"
                  "--click 100,100\n" +
                  events);
    EXPECT_EQ(
        Output({"get", "TVZTrafficLight", "--set", "MultiSelect=true", "--click", "100,169,ctrl", "Lights"}),
        "Lights=[ltRed, ltGreen]\n");
    EXPECT_EQ(Output({"get", "TVZRotaryDial", "--click", "100,20", "Value"}), "Value=5\n");
    EXPECT_EQ(Output({"get", "TVZRotarySwitch", "--click", "100,20,right", "Checked"}), "Checked=true\n");
}

TEST_F(TCommandTest, HelpAndVersion) {
    EXPECT_THAT(Output({"--version"}), StartsWith("tavro "));
    const std::string help = Output({"--help"});
    for (const char* const command : {"classes", "describe", "render", "document", "form", "get", "trace"}) {
        EXPECT_THAT(help, HasSubstr(std::string("tavro ") + command));
        EXPECT_THAT(Output({command, "--help"}), StartsWith(std::string("usage: tavro ") + command));
    }
}

} // namespace
} // namespace Vz::Test
