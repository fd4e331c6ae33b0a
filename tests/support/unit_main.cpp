// Runs unit tests in fixed surroundings. Beside GoogleTest's options: --file=strings_test runs the tests of
// that source only, and fails where it has none.

#include "tests/support/Environment.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

namespace {

/// A filter of all tests in sources of that name; empty where there are none.
std::string FilterOf(std::string_view file) {
    std::string filter;
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *all.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j) {
            const testing::TestInfo& test = *suite.GetTestInfo(j);
            if (std::filesystem::path(test.file()).stem() == file)
                filter += std::string(suite.name()) + '.' + test.name() + ':';
        }
    }
    return filter;
}

} // namespace

int main(int count, char** arguments) {
    Vz::Test::FixEnvironment();
    testing::InitGoogleTest(&count, arguments);
    constexpr std::string_view option = "--file=";
    for (int i = 1; i < count; ++i) {
        const std::string_view word = arguments[i];
        if (!word.starts_with(option)) continue;
        const std::string filter = FilterOf(word.substr(option.size()));
        if (filter.empty()) {
            std::fprintf(stderr, "no tests stand in %s\n", arguments[i] + option.size());
            return 1;
        }
        testing::GTEST_FLAG(filter) = filter;
        testing::GTEST_FLAG(brief) = true;
    }
    return RUN_ALL_TESTS();
}
