#include "tavro/runtime/Resources.h"

#include "tavro/runtime/Exceptions.h"

#include <gtest/gtest.h>

#include <set>

using namespace Vz;

TEST(Resources, EachIsFoundByItsNameOnly) {
    std::set<std::string_view> names;
    for (const TResource& resource : GetResourceTable()) {
        EXPECT_FALSE(resource.Name.empty());
        EXPECT_TRUE(names.insert(resource.Name).second) << resource.Name;
        const auto found = FindResource(resource.Name);
        ASSERT_TRUE(found.has_value());
        EXPECT_EQ(found->data(), resource.Data.data());
        EXPECT_EQ(GetResource(resource.Name).size(), resource.Data.size());
    }
}

TEST(Resources, MissingOneIsNamed) {
    EXPECT_FALSE(FindResource("NoSuchThing").has_value());
    EXPECT_FALSE(FindResource("").has_value());
    try {
        GetResource("NoSuchThing");
        FAIL();
    } catch (const EResNotFound& error) {
        EXPECT_NE(std::string(error.what()).find("NoSuchThing"), std::string::npos);
    }
}
