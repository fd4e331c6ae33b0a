#include "tavro/instruments/ArtworkCheck.h"

#include "InstrumentProbe.h"
#include "tavro/Vz.Tavro.Speedometers.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Resources.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace Vz::Test {
namespace {

std::string Artwork() { return std::string(GetResource("SpeedometerSVG")); }

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, text.npos) << from;
    return text.replace(at, from.size(), to);
}

std::vector<TArtworkFault> Check(std::string_view svg) {
    return CheckArtwork(*TVZSpeedometer::Create(), svg);
}

/// The place of a text, as an editor shows it.
TArtworkFault PlaceOf(const std::string& text, std::string_view what) {
    const auto end = text.begin() + std::ptrdiff_t(text.find(what));
    const auto line = std::find(std::reverse_iterator(end), text.rend(), '\n').base();
    return {1 + int(std::count(text.begin(), end, '\n')), 1 + int(end - line), {}};
}

TEST(ArtworkCheck, EveryClassHasAContractThatItsArtworkKeeps) {
    RegisterComponentClasses();
    int instruments = 0;
    for (const TClassEntry& entry : GetClasses()) {
        const auto component = entry.Create();
        const auto* const instrument = dynamic_cast<const TVZSVGCustomInstrument*>(component.get());
        if (!instrument) continue;
        SCOPED_TRACE(entry.Name);
        ++instruments;
        EXPECT_FALSE(instrument->GetArtworkContract().empty());
        std::set<std::string_view> ids;
        for (const TArtworkRow& row : instrument->GetArtworkContract())
            EXPECT_TRUE(ids.insert(row.Id).second) << row.Id;
        for (const TArtworkFault& fault :
             CheckArtwork(*instrument, GetResource(instrument->GetSVGResourceName())))
            ADD_FAILURE() << fault.Line << ':' << fault.Column << ' ' << fault.Text;
    }
    EXPECT_GE(instruments, 1);
}

TEST(ArtworkCheck, EachMissingElementIsNamed) {
    const auto speedometer = TVZSpeedometer::Create();
    for (const TArtworkRow& row : speedometer->GetArtworkContract()) {
        const std::string id(row.Id);
        const auto faults = Check(Replaced(Artwork(), " id=\"" + id + '"', ""));
        ASSERT_FALSE(faults.empty()) << id;
        const std::string parent(row.Parent);
        EXPECT_EQ(faults[0].Text, "there is no element \"" + id + '"' +
                                      (parent.empty() ? "" : ", which should lie in \"" + parent + '"'));
        const TArtworkFault place = PlaceOf(Artwork(), parent.empty() ? "<svg" : "id=\"" + parent + '"');
        EXPECT_EQ(faults[0].Line, place.Line);
        EXPECT_EQ(faults[0].Column, place.Column);
    }
}

TEST(ArtworkCheck, WhatIsMissingInAMissingGroupBelongsToTheRoot) {
    const auto faults =
        Check("<?xml version='1.0'?>\n<!-- <svg> -->\n <svg xmlns='http://www.w3.org/2000/svg'/>");
    EXPECT_EQ(faults.size(), TVZSpeedometer::Create()->GetArtworkContract().size());
    for (const TArtworkFault& fault : faults) {
        EXPECT_EQ(fault.Line, 3) << fault.Text;
        EXPECT_EQ(fault.Column, 2) << fault.Text;
    }
}

TEST(ArtworkCheck, ElementOfTheWrongClassHasAPlace) {
    std::string svg = Artwork();
    svg = Replaced(svg, "<path id=\"Decoration\"", "<g id='Decoration'/><path id=\"Spare\"");
    const auto faults = Check(svg);
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].Text, "\"Decoration\" is a g and should be a path");
    const TArtworkFault place = PlaceOf(svg, "id='Decoration'");
    EXPECT_EQ(faults[0].Line, place.Line);
    EXPECT_EQ(faults[0].Column, place.Column);
}

TEST(ArtworkCheck, PlaceCountsCharactersAndPassesOverComments) {
    const auto faults = Check("<svg xmlns='http://www.w3.org/2000/svg'>\n<!-- id=\"Frame\" -->\n"
                              "<desc>\xC3\xA4\xC3\xB6</desc><linearGradient id=\"Frame\"/></svg>");
    const auto frame = std::ranges::find_if(
        faults, [](const auto& fault) { return fault.Text.starts_with("\"Frame\" is"); });
    ASSERT_NE(frame, faults.end());
    EXPECT_EQ(frame->Line, 3);
    EXPECT_EQ(frame->Column, 32);
}

TEST(ArtworkCheck, OtherKinds) {
    const std::pair<std::pair<const char*, const char*>, const char*> cases[] = {
        {{"<linearGradient id=\"GradientKnob\">", "<g id=\"GradientKnob\"/><linearGradient>"},
         "\"GradientKnob\" is a g and should be a gradient with stops of its own"},
        {{"<radialGradient id=\"radialGradientKnob\"", "<g id=\"radialGradientKnob\"/><radialGradient"},
         "\"radialGradientKnob\" is a g and should be a gradient"},
        {{"<text id=\"speed0\"", "<rect id=\"speed0\"/><text"},
         "\"Labels\" is a g and should be a group or text that holds texts "
         "and nothing else"},
        {{"id=\"InnerFrame\"", "id=\"InnerFrame_\""}, "there is no element \"InnerFrame\""},
    };
    for (const auto& [edit, text] : cases) {
        const auto faults = Check(Replaced(Artwork(), edit.first, edit.second));
        ASSERT_FALSE(faults.empty()) << text;
        EXPECT_EQ(faults[0].Text, text);
    }
}

TEST(ArtworkCheck, PlacesInTheTree) {
    auto faults = Check(Replaced(Replaced(Artwork(), "id=\"Needle\"", "id=\"Other\""), "<g id=\"Glass\">",
                                 "<path id=\"Needle\" d=\"M0 0\"/><g id=\"Glass\">"));
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].Text, "\"Needle\" should lie in \"NeedleGroup\"");
    faults = Check(Replaced(
        Replaced(Replaced(Artwork(), "id=\"speed0\"", "id=\"x\""), "id=\"speed40\"", "id=\"speed0\""),
        "id=\"x\"", "id=\"speed40\""));
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].Text, "\"speed40\" stands before its predecessor in \"Labels\"");
}

TEST(ArtworkCheck, BrokenTexts) {
    const auto complaint = [](std::string_view svg) -> std::string {
        try {
            CheckArtwork(*TVZSpeedometer::Create(), svg, "new.svg");
        } catch (const EReadError& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_TRUE(complaint("<svg xmlns='http://www.w3.org/2000/svg'>\n  <g></svg>").starts_with("new.svg:2:"));
    EXPECT_TRUE(complaint("").starts_with("new.svg"));
    EXPECT_TRUE(complaint("<html/>").starts_with("new.svg:1:"));
    const auto faults = Check(Replaced(Artwork(), "cx=\"200\"", "cx=\"many\""));
    ASSERT_EQ(faults.size(), 1u); // what the reader skips
    EXPECT_GT(faults[0].Line, 0);
}

} // namespace
} // namespace Vz::Test
