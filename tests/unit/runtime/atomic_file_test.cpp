#include "tavro/runtime/AtomicFile.h"

#include "tavro/runtime/Exceptions.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace Vz;
namespace fs = std::filesystem;

namespace {

/// A folder of its own for each test, removed afterwards.
class TAtomicFileTest : public testing::Test {
protected:
    TAtomicFileTest() {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        Folder = fs::path(testing::TempDir()) / (std::string("tavro-file-") + info->name());
        fs::remove_all(Folder);
        fs::create_directories(Folder);
    }
    ~TAtomicFileTest() override {
        std::error_code error;
        fs::permissions(Folder, fs::perms::owner_all, error);
        fs::remove_all(Folder, error);
    }

    int CountFiles() const {
        return static_cast<int>(std::distance(fs::directory_iterator(Folder), fs::directory_iterator()));
    }

    fs::path Folder;
};

std::string Read(const fs::path& path) { return ReadWholeFile(path, 1 << 20); }

} // namespace

TEST_F(TAtomicFileTest, WritesAndReplacesWholeFiles) {
    const fs::path file = Folder / "a.form";
    const std::string bytes("one\0two\r\n", 9);
    WriteFileAtomically(file, bytes);
    EXPECT_EQ(Read(file), bytes);
    WriteFileAtomically(file, "");
    EXPECT_EQ(Read(file), "");
    EXPECT_EQ(CountFiles(), 1);
}

TEST_F(TAtomicFileTest, KeepsPermissionsAndLinks) {
    const fs::path file = Folder / "real";
    const fs::path link = Folder / "link";
    WriteFileAtomically(file, "old");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("real", link);
    WriteFileAtomically(link, "new");
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(Read(file), "new");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(CountFiles(), 2);
}

TEST_F(TAtomicFileTest, FailureLeavesTheOldFileAndNoOther) {
    const fs::path file = Folder / "taken";
    fs::create_directories(file / "inside"); // a folder is in the way
    EXPECT_THROW(WriteFileAtomically(file, "new"), EWriteError);
    EXPECT_TRUE(fs::is_directory(file));
    EXPECT_EQ(CountFiles(), 1);
    try {
        WriteFileAtomically(Folder / "nowhere" / "a.form", "new");
        FAIL();
    } catch (const EWriteError& error) {
        EXPECT_EQ(error.GetPlace().Name, (Folder / "nowhere" / "a.form").string());
    }
}

TEST_F(TAtomicFileTest, DeviceIsWrittenToAsItIs) {
    if (!fs::exists("/dev/null")) GTEST_SKIP() << "no null device here";
    WriteFileAtomically("/dev/null", "gone");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "no full device here";
    EXPECT_THROW(WriteFileAtomically("/dev/full", "does not fit"), EWriteError);
}

TEST_F(TAtomicFileTest, ReadingNamesWhatItCannotRead) {
    EXPECT_THROW(Read(Folder / "missing"), EReadError);
    EXPECT_THROW(Read(Folder), EReadError);
    WriteFileAtomically(Folder / "long", "12345");
    EXPECT_EQ(ReadWholeFile(Folder / "long", 5), "12345");
    EXPECT_THROW(ReadWholeFile(Folder / "long", 4), EReadError);
}
