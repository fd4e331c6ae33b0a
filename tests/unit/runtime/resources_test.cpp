#include "tavro/runtime/Resources.h"

#include "tavro/runtime/AtomicFile.h"
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

namespace {

namespace fs = std::filesystem;

/// A folder of its own for each test, removed afterwards.
class TAddedResources : public testing::Test {
protected:
    TAddedResources()
        : FFolder(fs::path(testing::TempDir()) /
                  (std::string("tavro-resources-") +
                   testing::UnitTest::GetInstance()->current_test_info()->name())) {
        fs::remove_all(FFolder);
        fs::create_directories(FFolder);
    }
    ~TAddedResources() override { fs::remove_all(FFolder); }

    void Write(const char* name, std::string_view text) const { WriteFileAtomically(FFolder / name, text); }
    const fs::path& Folder() const { return FFolder; }

private:
    fs::path FFolder;
};

TEST_F(TAddedResources, OneIsFoundByItsNameAndKeptAsACopy) {
    std::string text = "<svg/>";
    AddResource("MyDial", text);
    text.assign("other");
    EXPECT_EQ(GetResource("MyDial"), "<svg/>");
    EXPECT_FALSE(FindResource("mydial").has_value());
    const std::string_view kept = GetResource("MyDial");
    for (int i = 0; i < 100; ++i)
        AddResource("Further" + std::to_string(i), "x");
    EXPECT_EQ(GetResource("MyDial").data(), kept.data()) << "a view of it stays valid";
}

TEST_F(TAddedResources, ANameIsGivenOnce) {
    AddResource("Twice", "a");
    EXPECT_NO_THROW(AddResource("Twice", "a"));
    EXPECT_THROW(AddResource("Twice", "b"), EInvalidOperation);
    EXPECT_EQ(GetResource("Twice"), "a");
    EXPECT_THROW(AddResource("", "a"), EArgumentOutOfRange);
    for (const TResource& embedded : GetResourceTable()) {
        EXPECT_THROW(AddResource(embedded.Name, "a"), EInvalidOperation);
        EXPECT_EQ(FindResource(embedded.Name)->data(), embedded.Data.data());
    }
}

TEST_F(TAddedResources, FolderGivesItsSvgFiles) {
    Write("FolderA.svg", "a");
    Write("FolderB.SVG", "b");
    Write("FolderC.txt", "c");
    fs::create_directory(Folder() / "FolderD.svg");
    AddResourceFolder(Folder());
    EXPECT_EQ(GetResource("FolderA"), "a");
    EXPECT_EQ(GetResource("FolderB"), "b");
    EXPECT_FALSE(FindResource("FolderC").has_value());
    EXPECT_FALSE(FindResource("FolderD").has_value());
    EXPECT_NO_THROW(AddResourceFolder(Folder()));
}

TEST_F(TAddedResources, FolderIsAddedWholeOrNotAtAll) {
    Write("NewOne.svg", "a");
    Write("Taken.svg", "b");
    AddResource("Taken", "other");
    EXPECT_THROW(AddResourceFolder(Folder()), EInvalidOperation);
    EXPECT_FALSE(FindResource("NewOne").has_value());
    fs::remove(Folder() / "Taken.svg");
    Write("Same.svg", "a");
    Write("Same.SVG", "b");
    EXPECT_THROW(AddResourceFolder(Folder()), EInvalidOperation);
    EXPECT_FALSE(FindResource("NewOne").has_value());
    try {
        AddResourceFolder(Folder() / "none");
        FAIL();
    } catch (const EReadError& error) {
        EXPECT_NE(std::string(error.what()).find("none"), std::string::npos) << error.what();
    }
}

} // namespace
