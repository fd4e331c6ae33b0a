#include "tavro/svg/model/IdTable.h"

#include "tavro/svg/model/Document.h"

#include <gtest/gtest.h>

namespace Vz::Test {
namespace {

TEST(IdTable, FindsWhatWasSet) {
    TSVGDocument element;
    TSVGIdTable table;
    EXPECT_EQ(table.Find("a"), nullptr);
    const auto place = table.Add("a");
    EXPECT_NE(place, 0u);
    EXPECT_EQ(table.Add("a"), place);
    EXPECT_EQ(table.Find("a"), nullptr);
    table.Set(place, &element);
    EXPECT_EQ(table.Find("a"), &element);
    table.Drop(place, "a");
    EXPECT_EQ(table.Find("a"), nullptr);
}

TEST(IdTable, GivesPlacesOfDroppedIdsAgain) {
    TSVGIdTable table;
    const auto kept = table.Add("kept");
    auto place = table.Add("0");
    for (int i = 1; i < 100; ++i) {
        table.Drop(place, std::to_string(i - 1));
        EXPECT_EQ(table.Add(std::to_string(i)), place);
    }
    EXPECT_EQ(table.Add("kept"), kept);
}

TEST(IdTable, CopySharesNamesUntilOneOfBothGetsANewOne) {
    TSVGDocument element;
    TSVGIdTable table;
    const auto a = table.Add("a");
    table.Set(a, &element);
    TSVGIdTable copy = table.EmptyCopy();
    EXPECT_EQ(copy.Find("a"), nullptr);
    EXPECT_EQ(copy.Add("a"), a);
    const auto b = copy.Add("b");
    copy.Set(b, &element);
    EXPECT_EQ(table.Find("b"), nullptr);
    copy.Set(a, &element);
    copy.Drop(a, "a");
    EXPECT_EQ(table.Find("a"), &element);
    EXPECT_EQ(copy.Find("b"), &element);
    EXPECT_NE(table.Add("c"), a);
    EXPECT_EQ(copy.Find("c"), nullptr);
}

} // namespace
} // namespace Vz::Test
