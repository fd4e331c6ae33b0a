#include "tavro/runtime/Utf8.h"

#include <gtest/gtest.h>

using namespace Vz;
using namespace std::string_literals;

TEST(Utf8, EveryCodePointIsWellFormed) {
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        if (code >= 0xD800 && code < 0xE000) continue;
        std::string text;
        AppendUtf8(text, code);
        ASSERT_EQ(FindBadUtf8(text), std::string::npos) << static_cast<unsigned>(code);
        if (text.size() > 1) {
            ASSERT_EQ(FindBadUtf8(text.substr(0, text.size() - 1)), 0u) << static_cast<unsigned>(code);
            ASSERT_EQ(FindBadUtf8(text.substr(1)), 0u) << static_cast<unsigned>(code);
        }
    }
}

TEST(Utf8, BrokenSequencesAreFound) {
    const struct {
        std::string Text;
        std::size_t At;
    } cases[] = {
        {"abc\x80", 3},
        {"a\xC0\x80", 1},
        {"\xC1\xBF", 0},
        {"\xE0\x9F\xBF", 0},
        {"\xED\xA0\x80", 0},
        {"\xF0\x8F\xBF\xBF", 0},
        {"\xF4\x90\x80\x80", 0},
        {"\xF5\x80\x80\x80", 0},
        {"ä\xC3", 2},
        {"\xE2\x82", 0},
        {"\xFF", 0},
        {"\xC3(", 0},
    };
    for (const auto& one : cases)
        EXPECT_EQ(FindBadUtf8(one.Text), one.At) << testing::PrintToString(one.Text);
    EXPECT_EQ(FindBadUtf8("a\0b"s), std::string::npos);
    EXPECT_EQ(FindBadUtf8(""), std::string::npos);
}

TEST(Utf8, CodePointsThatAreNoneBecomeTheReplacement) {
    std::string text;
    AppendUtf8(text, 0xD800);
    AppendUtf8(text, 0x110000);
    EXPECT_EQ(text, "\uFFFD\uFFFD");
}

TEST(Utf8, MessagesStayOnOneShortLine) {
    EXPECT_EQ(QuotedForMessage("a\nb\x7F"
                               "c\xFFü"),
              "'a?b?c?ü'");
    EXPECT_EQ(QuotedForMessage(""), "''");
    EXPECT_EQ(QuotedForMessage(std::string(60, 'x')), "'" + std::string(60, 'x') + "'");
    EXPECT_EQ(QuotedForMessage(std::string(61, 'x')), "'" + std::string(60, 'x') + "...'");
    EXPECT_EQ(QuotedForMessage(std::string(59, 'x') + "ü"), "'" + std::string(59, 'x') + "...'");
}
