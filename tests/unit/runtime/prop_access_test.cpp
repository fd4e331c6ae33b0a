#include "tavro/runtime/PropAccess.h"

#include "tests/unit/runtime/TestComponents.h"

#include <gtest/gtest.h>

using namespace Vz;

namespace {

template <class E, class F> std::string MessageOf(F&& action) {
    try {
        action();
    } catch (const E& error) {
        return error.what();
    }
    return "nothing raised";
}

} // namespace

TEST(PropAccess, TextsGoInAndOut) {
    const auto gauge = TTestGauge::Create();
    const struct {
        const char *Path, *Before, *After;
    } cases[] = {
        {"Name", "", "Speed"},
        {"On", "true", "false"},
        {"Count", "0", "-7"},
        {"Small", "1", "255"},
        {"Max", "240", "16.6667"},
        {"Exact", "0.1", "1e-9"},
        {"FrameColor", "0xFF888A85", "0x00000000"},
        {"Part", "tpFrame", "tpGlass"},
        {"Parts", "[tpFrame, tpFace, tpGlass]", "[tpFace]"},
        {"Time", "00:00:00", "2026-03-15T15:30:45"},
        {"Caption", "", "it's"},
        {"Labels", "", "a\\nb\\\\c"},
        {"Word", "", "needle"},
        {"Font.Size", "12", "14.5"},
        {"Font.Family", "Sans", "Serif"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(GetPropText(*gauge, one.Path), one.Before) << one.Path;
        SetPropText(*gauge, one.Path, one.After);
        EXPECT_EQ(GetPropText(*gauge, one.Path), one.After) << one.Path;
    }
    EXPECT_EQ(gauge->GetLabels().GetItems(), (std::vector<std::string>{"a", "b\\c"}));
}

TEST(PropAccess, ListGoesThroughOwnedObjectsInTheirPlace) {
    const auto gauge = TTestGauge::Create();
    std::vector<std::string> paths;
    for (const TNamedProp& prop : ListProps(*gauge))
        paths.push_back(prop.Path);
    EXPECT_EQ(paths, (std::vector<std::string>{"Name", "On", "Count", "Small", "Max", "Exact", "FrameColor",
                                               "Part", "Parts", "Time", "Caption", "Always", "Labels", "Word",
                                               "Font.Size", "Font.Family", "OnChange"}));
}

TEST(PropAccess, StoredRule) {
    const auto gauge = TTestGauge::Create();
    const auto stored = [&](std::string_view name) { return IsPropStored(*gauge, *FindProp(*gauge, name)); };
    EXPECT_FALSE(stored("Count"));
    EXPECT_FALSE(stored("Max")) << "the predicate alone decides, though 240 differs from the declared 100";
    EXPECT_TRUE(stored("Always")) << "no default is declared";
    EXPECT_FALSE(stored("Labels"));
    EXPECT_FALSE(stored("Word"));
    EXPECT_FALSE(stored("OnChange"));
    gauge->SetName("Speed");
    EXPECT_FALSE(stored("Name"));
    gauge->SetCount(1);
    gauge->SetMax(100);
    SetPropText(*gauge, "Labels", "a");
    SetPropText(*gauge, "Word", "a");
    gauge->OnChange = [](TObject&) {};
    EXPECT_TRUE(stored("Count"));
    EXPECT_TRUE(stored("Max")) << "equal to the declared default, but not to the instance's own";
    EXPECT_TRUE(stored("Labels"));
    EXPECT_TRUE(stored("Word"));
    EXPECT_FALSE(stored("OnChange"));
    gauge->HasWord = false;
    EXPECT_FALSE(stored("Word"));
}

TEST(PropAccess, ErrorsNameThePropertyAndTheText) {
    const auto gauge = TTestGauge::Create();
    const auto set = [&](const char* path, const char* text) {
        return [&gauge, path, text] { SetPropText(*gauge, path, text); };
    };
    EXPECT_EQ(MessageOf<EConvertError>(set("Max", "abc")), "Max: 'abc' is not a number");
    EXPECT_EQ(MessageOf<EConvertError>(set("Small", "256")), "Small: '256' lies outside 0..255");
    EXPECT_EQ(MessageOf<EConvertError>(set("Font.Size", "x")), "Font.Size: 'x' is not a number");
    EXPECT_EQ(MessageOf<EConvertError>(set("Part", "tpNone")),
              "Part: 'tpNone' is not a member of TTestPart (tpFrame, tpFace, tpGlass)");
    EXPECT_EQ(MessageOf<EConvertError>(set("Word", "A1")), "Word: 'A1': not a word");
    EXPECT_EQ(MessageOf<EConvertError>(set("Caption", "refused")), "Caption: 'refused': caption refused");
    EXPECT_EQ(MessageOf<EPropertyError>(set("Count", "13")), "Count: thirteen is refused");
    EXPECT_EQ(MessageOf<EPropertyError>(set("Name", "1st")), "Name: \"1st\" is not a valid component name");
    EXPECT_EQ(MessageOf<EPropertyError>(set("Font", "x")),
              "Font: is an object: its properties are set one by one");
    EXPECT_EQ(MessageOf<EPropertyError>(set("OnChange", "x")), "OnChange: is an event and has no value");
    for (const char* path :
         {"Nothing", "Font.Nothing", "Max.Size", "", ".", "Font.", ".Font", "Font.Size.X", "max"})
        EXPECT_THROW(ResolveProp(*gauge, path), EPropertyError) << path;
    EXPECT_THROW(GetPropText(*gauge, "Font"), EPropertyError);
    EXPECT_EQ(gauge->GetCount(), 0);
}
