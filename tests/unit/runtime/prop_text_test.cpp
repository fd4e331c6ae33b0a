#include "tavro/runtime/PropText.h"

#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Props.h"
#include "tests/unit/runtime/TestComponents.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

using namespace Vz;

namespace {

template <class T> T Read(std::string_view text) {
    return TValueTraits<T>::FromValue(TextToValue(TValueTraits<T>::Type, text));
}

template <class T> std::string Write(T value) { return ValueToText(TValueTraits<T>::ToValue(value)); }

template <class T> void ExpectRefused(std::initializer_list<const char*> texts) {
    for (const char* text : texts)
        EXPECT_THROW(Read<T>(text), EConvertError) << testing::PrintToString(text);
}

} // namespace

TEST(PropText, NumbersAreWrittenShortest) {
    EXPECT_EQ(Write(42.0f), "42");
    EXPECT_EQ(Write(-1.5), "-1.5");
    EXPECT_EQ(Write(3.4028235e38f), "3.4028235e38");
    EXPECT_EQ(Write(0.1f), "0.1");
    EXPECT_EQ(Write(static_cast<double>(0.1f)), "0.10000000149011612");
    EXPECT_EQ(Write(16.6667f), "16.6667");
    EXPECT_EQ(Write(100000.0f), "100000");
    EXPECT_EQ(Write(16777216.0f), "16777216");
    EXPECT_EQ(Write(1e14), "100000000000000");
    EXPECT_EQ(Write(1e15), "1e15");
    EXPECT_EQ(Write(0.00001), "0.00001");
    EXPECT_EQ(Write(0.00000125), "1.25e-6");
    EXPECT_EQ(Write(1e-45f), "1e-45");
    EXPECT_EQ(Write(-0.0), "-0");
    EXPECT_EQ(Write(std::numeric_limits<double>::max()), "1.7976931348623157e308");
    EXPECT_EQ(Write(5e-324), "5e-324");
    EXPECT_EQ(Write(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(PropText, EveryFiniteNumberReadsBack) {
    std::mt19937_64 random(3);
    for (int i = 0; i < 50000; ++i) {
        const auto bits = random();
        const auto wide = std::bit_cast<double>(bits);
        const auto narrow = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        if (std::isfinite(wide)) {
            ASSERT_EQ(std::bit_cast<std::uint64_t>(Read<double>(Write(wide))), bits);
        }
        if (std::isfinite(narrow)) {
            ASSERT_EQ(std::bit_cast<std::uint32_t>(Read<float>(Write(narrow))),
                      static_cast<std::uint32_t>(bits));
        }
        const auto integer = static_cast<std::int64_t>(bits);
        ASSERT_EQ(Read<std::int64_t>(Write(integer)), integer);
    }
}

TEST(PropText, NumbersThatAreNotFiniteCannotBeRead) {
    EXPECT_EQ(Write(std::nanf("")), "NaN");
    EXPECT_EQ(Write(-std::numeric_limits<double>::infinity()), "-INF");
    EXPECT_FALSE(CanReadBack(TValueTraits<float>::ToValue(std::nanf(""))));
    EXPECT_FALSE(CanReadBack(TValueTraits<double>::ToValue(HUGE_VAL)));
    EXPECT_TRUE(CanReadBack(TValueTraits<double>::ToValue(1)));
    ExpectRefused<float>({"NaN", "nan", "inf", "INF", "-INF", "infinity", "nan(1)"});
    ExpectRefused<double>({"NaN", "inf"});
}

TEST(PropText, NumbersAreReadStrictly) {
    EXPECT_EQ(Read<float>("1e3"), 1000.0f);
    EXPECT_EQ(Read<float>("1E+3"), 1000.0f);
    EXPECT_EQ(Read<float>("-.5"), -0.5f);
    EXPECT_EQ(Read<float>("5."), 5.0f);
    ExpectRefused<float>(
        {"", " ", "1 ", " 1", "+1", "1,5", "0x10", "1e", "e5", ".", "-", "1.2.3", "1f", "--1"});
    ExpectRefused<float>({"3.5e38", "1e39", "-1e400", "1e999999999999"});
    EXPECT_EQ(Read<float>("1e-60"), 0.0f);
    EXPECT_EQ(Read<double>("1e-400"), 0.0);
    EXPECT_TRUE(std::signbit(Read<double>("-1E-400")));
    EXPECT_EQ(Read<double>("1e-99999999999999999999"), 0.0);
    EXPECT_EQ(Read<float>("0." + std::string(100, '0') + "1"), 0.0f);
    ExpectRefused<double>({"1e309", "-1e309", "1e99999999999999999999"});
    EXPECT_THROW(Read<float>(std::string(400, '9') + "e-5"), EConvertError);
}

TEST(PropText, IntegersKeepTheirRange) {
    EXPECT_EQ(Read<int>("-2147483648"), std::numeric_limits<int>::min());
    EXPECT_EQ(Read<std::uint8_t>("255"), 255);
    ExpectRefused<int>(
        {"2147483648", "-2147483649", "99999999999999999999", "1.0", "1e3", "", "+1", "0x1", "1 "});
    ExpectRefused<std::uint8_t>({"256", "-1"});
}

TEST(PropText, Booleans) {
    EXPECT_EQ(Write(true), "true");
    EXPECT_FALSE(Read<bool>("false"));
    ExpectRefused<bool>({"True", "1", "", "true "});
}

TEST(PropText, Colours) {
    EXPECT_EQ(Write<std::uint32_t>(0xFF888A85), "0xFF888A85");
    EXPECT_EQ(Write<std::uint32_t>(0), "0x00000000");
    EXPECT_EQ(Read<std::uint32_t>("0xff888a85"), 0xFF888A85u);
    EXPECT_EQ(Read<std::uint32_t>("0X0000000a"), 10u);
    ExpectRefused<std::uint32_t>({"", "0x", "FF888A85", "0xFF888A8", "0xFF888A855", "0xFF888A8G", "#FF888A85",
                                  "red", "0x-F888A85", "4287138437"});
}

TEST(PropText, EnumerationsAndSets) {
    using enum TTestPart;
    EXPECT_EQ(Write(tpFace), "tpFace");
    EXPECT_EQ(Read<TTestPart>("tpGlass"), tpGlass);
    ExpectRefused<TTestPart>({"tpglass", "", "1", "tpGlass "});
    EXPECT_EQ(Write(TSet{tpGlass, tpFrame}), "[tpFrame, tpGlass]");
    EXPECT_EQ(Write(TSet<TTestPart>()), "[]");
    EXPECT_EQ(Read<TSet<TTestPart>>("[tpGlass,tpFrame]"), (TSet{tpFrame, tpGlass}));
    EXPECT_EQ(Read<TSet<TTestPart>>("[ tpGlass , tpGlass ]"), TSet{tpGlass});
    EXPECT_TRUE(Read<TSet<TTestPart>>("[ ]").IsEmpty());
    ExpectRefused<TSet<TTestPart>>({"", "[", "]", "tpGlass", "[tpGlass", "[tpGlass,]", "[,]", "[,tpGlass]",
                                    "[tpX]", "[tpGlass tpFrame]", "[[]]", " []"});
    EXPECT_FALSE(CanReadBack(TValue(TEnumValue{&EnumType<TTestPart>, 3})));
    EXPECT_FALSE(CanReadBack(TValue(TSetValue{&EnumType<TTestPart>, 8})));
    EXPECT_TRUE(CanReadBack(TValue(TSetValue{&EnumType<TTestPart>, 7})));
}

TEST(PropText, DateAndTimeWithAllItMayLeaveOut) {
    const struct {
        const char* Text;
        TDate Date;
        TTimeOfDay Time;
    } cases[] = {
        {"2026-03-15T15:30:45", {2026, 3, 15}, {15, 30, 45, 0}},
        {"2026-03-15", {2026, 3, 15}, {}},
        {"15:30:45", {}, {15, 30, 45, 0}},
        {"00:00:00", {}, {}},
        {"00:00:00.001", {}, {0, 0, 0, 1}},
        {"2026-03-15T00:00:00.250", {2026, 3, 15}, {0, 0, 0, 250}},
        {"0001-01-01T23:59:59.999", {1, 1, 1}, {23, 59, 59, 999}},
        {"9999-12-31T23:59:59.999", {9999, 12, 31}, {23, 59, 59, 999}},
        {"1899-12-29T06:00:00", {1899, 12, 29}, {6, 0, 0, 0}},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(DateTimeToText(EncodeDateTime(one.Date, one.Time)), one.Text);
        EXPECT_EQ(TextToDateTime(one.Text).Days, EncodeDateTime(one.Date, one.Time).Days) << one.Text;
    }
    EXPECT_EQ(TextToDateTime("1899-12-30T15:30:45").Days, TextToDateTime("15:30:45").Days);
    EXPECT_EQ(TextToDateTime("15:30").Days, TextToDateTime("15:30:00").Days);
    EXPECT_EQ(TextToDateTime("00:00:00.5").Days, TextToDateTime("00:00:00.500").Days);
    EXPECT_EQ(TextToDateTime("46096.5").Days, 46096.5);
    EXPECT_EQ(TextToDateTime("-1.25").Days, -1.25);
    EXPECT_EQ(TextToDateTime("0").Days, 0);
}

TEST(PropText, DateAndTimeThatThereIsNot) {
    for (const char* text : {"",
                             "2026-02-29",
                             "2026-13-01",
                             "24:00:00",
                             "12:60:00",
                             "2026-03-15T",
                             "2026-03-15 15:30:45",
                             "1:2:3",
                             "15:30:45.",
                             "15:30:45.1234",
                             "15:30:",
                             "2026-3-15",
                             "26-03-15",
                             "2026-03-15T15:30:45Z",
                             "T15:30:45",
                             "2958466",
                             "-693594",
                             "nan",
                             "inf",
                             "now",
                             "0000-01-01",
                             "2026-03-15T15"})
        EXPECT_THROW(TextToDateTime(text), EConvertError) << text;
    EXPECT_EQ(DateTimeToText(3e6), "3000000");
    EXPECT_FALSE(CanReadBack(TValueTraits<TDateTime>::ToValue(3e6)));
}

TEST(PropText, EveryMillisecondReadsBackTheSameNumber) {
    std::mt19937 random(11);
    for (int i = 0; i < 20000; ++i) {
        const auto at = [&](unsigned count) { return static_cast<int>(random() % count); };
        const TDateTime value =
            EncodeDateTime(DecodeDate(at(3652059) - 693593), {at(24), at(60), at(60), at(4) ? 0 : at(1000)});
        ASSERT_EQ(TextToDateTime(DateTimeToText(value)).Days, value.Days);
    }
}

TEST(PropText, ListsOfItems) {
    using TItems = std::vector<std::string>;
    EXPECT_EQ(ItemsToText({"a", "b"}), "a\\nb");
    EXPECT_EQ(ItemsToText({"a\\nb"}), "a\\\\nb");
    EXPECT_EQ(TextToItems("a\\nb\\\\c\\n"), (TItems{"a", "b\\c", ""}));
    EXPECT_EQ(TextToItems(""), TItems{});
    EXPECT_THROW(TextToItems("a\\tb"), EConvertError);
    EXPECT_THROW(TextToItems("a\\"), EConvertError);
    std::mt19937 random(5);
    for (int i = 0; i < 2000; ++i) {
        TItems items(random() % 4);
        for (std::string& item : items)
            for (unsigned length = random() % 5; length > 0; --length)
                item += "\\n\nab"[random() % 5];
        if (items == TItems{""}) continue; // has the empty list's text
        ASSERT_EQ(TextToItems(ItemsToText(items)), items);
    }
}

TEST(PropText, TextsStandAsTheyAre) {
    EXPECT_EQ(Write(std::string_view("it's \\n")), "it's \\n");
    EXPECT_EQ(Read<std::string_view>("it's"), "it's");
    ExpectRefused<std::string_view>({"\xFF"});
    EXPECT_FALSE(CanReadBack(TValueTraits<std::string_view>::ToValue("\xFF")));
    EXPECT_EQ(ValueToText(TValue()), "");
    EXPECT_FALSE(CanReadBack(TValue()));
}
