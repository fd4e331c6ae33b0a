// `tavro check`: an artwork against what its class looks for.

#include "Tool.h"
#include "tavro/runtime/Resources.h"

#include <gmock/gmock.h>

namespace Vz::Test {
namespace {

using testing::HasSubstr;

class TCheckTest : public TToolTest {
protected:
    static std::string Replaced(std::string text, std::string_view from, std::string_view to) {
        const std::size_t at = text.find(from);
        EXPECT_NE(at, text.npos) << from;
        return text.replace(at, from.size(), to);
    }
};

TEST_F(TCheckTest, ArtworkThatServesGetsNoWord) {
    Write("speed.svg", std::string(GetResource("SpeedometerSVG")));
    Write("round.svg", std::string(GetResource("CircularGaugeSVG")));
    EXPECT_EQ(Output({"check", "TVZSpeedometer", "speed.svg"}), "");
    EXPECT_EQ(Output({"check", "TVZCircularClock", "round.svg"}), "");
}

TEST_F(TCheckTest, EachFaultIsALineWithItsPlace) {
    std::string svg =
        Replaced(std::string(GetResource("SpeedometerSVG")), "id=\"NeedleShadow\"", "id=\"Dark\"");
    svg = Replaced(svg, "<path id=\"Decoration\"", "<g id=\"Decoration\"/><path");
    Write("new.svg", svg);
    const TRun run = Run({"check", "TVZSpeedometer", "new.svg"});
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(std::ranges::count(run.Out, '\n'), 2) << run.Out;
    const auto lineOf = [&](std::string_view text) {
        return std::to_string(1 +
                              std::count(svg.begin(), svg.begin() + std::ptrdiff_t(svg.find(text)), '\n'));
    };
    EXPECT_THAT(run.Out, HasSubstr("new.svg:" + lineOf("id=\"Decoration\"") + ":"));
    EXPECT_THAT(run.Out, HasSubstr(": \"Decoration\" is a g and should be a path\n"));
    EXPECT_THAT(run.Out, HasSubstr("new.svg:" + lineOf("id=\"NeedleGroup\"") + ":"));
    EXPECT_THAT(run.Out,
                HasSubstr(": there is no element \"NeedleShadow\", which should lie in \"NeedleGroup\"\n"));
    EXPECT_EQ(run.Err, "tavro: new.svg does not serve as the artwork of a TVZSpeedometer\n");
}

TEST_F(TCheckTest, ArtworkOfAnotherInstrumentDoesNotServe) {
    Write("speed.svg", std::string(GetResource("SpeedometerSVG")));
    const TRun run = Run({"check", "TVZCircularClock", "speed.svg"});
    EXPECT_EQ(run.Status, 1);
    EXPECT_THAT(run.Out, HasSubstr("there is no element \"TextCircle\"\n"));
}

TEST_F(TCheckTest, WhatCostsTheCacheIsAWarningOnly) {
    const std::string artwork(GetResource("SpeedometerSVG"));
    const std::pair<std::string, std::string> cases[] = {{"opacity=\"0.9\"", "opacity"},
                                                         {"mask=\"url(#m)\"", "mask"},
                                                         {"style=\"clip-path:url(#c)\"", "clip-path"},
                                                         {"filter=\"url(#f)\"", "filter"}};
    for (const auto& [attribute, reason] : cases) {
        const std::string svg = Replaced(artwork, "<svg ", "<svg id=\"Dial\" " + attribute + ' ');
        Write("slow.svg", svg);
        const std::string text = Output({"check", "TVZSpeedometer", "slow.svg"});
        EXPECT_THAT(text, testing::MatchesRegex("slow.svg:[0-9]+:[0-9]+: warning: the " + reason +
                                                " of the svg \"Dial\" keeps what stands still around "
                                                "\"NeedleGroup\" from being cached\n"));
    }
    Write("anonymous.svg",
          Replaced(Replaced(artwork, "<g id=\"NeedleGroup\"", "<g opacity=\".5\"><g id=\"NeedleGroup\""),
                   "<g id=\"Glass\">", "</g><g id=\"Glass\">"));
    EXPECT_THAT(Output({"check", "TVZSpeedometer", "anonymous.svg"}),
                HasSubstr("warning: the opacity of the g keeps what stands still around \"NeedleGroup\""));
    Write("both.svg",
          Replaced(Replaced(artwork, "<svg ", "<svg opacity=\".5\" "), "id=\"NeedleShadow\"", "id=\"Dark\""));
    EXPECT_EQ(Run({"check", "TVZSpeedometer", "both.svg"}).Status, 1);
}

TEST_F(TCheckTest, BadInput) {
    Write("broken.svg", "<svg xmlns='http://www.w3.org/2000/svg'>\n  <g></svg>");
    WriteBox();
    EXPECT_THAT(Complaint({"check", "TVZSpeedometer", "broken.svg"}), HasSubstr("broken.svg:2:"));
    EXPECT_THAT(Complaint({"check", "TVZSpeedometer", "missing.svg"}), HasSubstr("missing.svg"));
    EXPECT_THAT(Complaint({"check", "TVZNothing", "box.svg"}), HasSubstr("TVZNothing"));
    EXPECT_THAT(Complaint({"check", "TVZSVGControl", "box.svg"}),
                HasSubstr("a TVZSVGControl has no artwork of its own"));
}

} // namespace
} // namespace Vz::Test
