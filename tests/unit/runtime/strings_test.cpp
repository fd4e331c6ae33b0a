#include "tavro/runtime/Strings.h"

#include "tavro/runtime/Exceptions.h"

#include <gtest/gtest.h>

#include <random>

using namespace Vz;

namespace {

using TItems = std::vector<std::string>;

class TStringsTest : public testing::Test {
protected:
    TStringsTest() {
        List.SetOnChange([this](TObject& sender) {
            EXPECT_EQ(&sender, &List);
            ++Changes;
        });
    }

    TStrings List;
    int Changes = 0;
};

} // namespace

TEST_F(TStringsTest, EachChangeOutsideUpdatesNotifiesAtOnce) {
    EXPECT_EQ(List.Add("b"), 0);
    EXPECT_EQ(List.Add("c"), 1);
    List.Insert(0, "a");
    List.Insert(3, "d");
    EXPECT_EQ(List.GetItems(), (TItems{"a", "b", "c", "d"}));
    EXPECT_EQ(Changes, 4);
    List.Delete(1);
    EXPECT_EQ(List.GetItems(), (TItems{"a", "c", "d"}));
    List.SetItem(1, "x");
    EXPECT_EQ(List.GetItem(1), "x");
    EXPECT_EQ(Changes, 6);
    EXPECT_EQ(List.IndexOf("d"), 2);
    EXPECT_EQ(List.IndexOf("D"), -1);
    List.Clear();
    EXPECT_EQ(List.GetCount(), 0);
    EXPECT_EQ(Changes, 7);
}

TEST_F(TStringsTest, NestedUpdatesNotifyOnceAtTheEnd) {
    List.BeginUpdate();
    List.Add("a");
    List.BeginUpdate();
    List.Add("b");
    List.EndUpdate();
    EXPECT_EQ(Changes, 0);
    List.EndUpdate();
    EXPECT_EQ(Changes, 1);
    List.BeginUpdate();
    List.EndUpdate();
    EXPECT_EQ(Changes, 1);
}

TEST_F(TStringsTest, WhatChangesNothingSaysNothing) {
    List.Clear();
    List.SetText("");
    EXPECT_EQ(Changes, 0);
    List.SetText("a\nb");
    EXPECT_EQ(Changes, 1);
    List.SetItem(0, "a");
    List.SetText("a\r\nb\r\n");
    List.Assign(TStrings{"a", "b"});
    List.Assign(List);
    EXPECT_EQ(Changes, 1);
    EXPECT_TRUE(List.Equals(TStrings{"a", "b"}));
    EXPECT_FALSE(List.Equals(TStrings{"a"}));
}

TEST_F(TStringsTest, TextSplitsAtEveryKindOfLineEnd) {
    const struct {
        const char* Text;
        TItems Items;
    } cases[] = {
        {"", {}},           {"a", {"a"}},
        {"a\r\n", {"a"}},   {"a\nb\rc\r\nd", {"a", "b", "c", "d"}},
        {"\r\n", {""}},     {"E\r\n\r\n\r\n\r\nF", {"E", "", "", "", "F"}},
        {"\n\r", {"", ""}}, {"\r\r\n\n", {"", "", ""}},
    };
    for (const auto& one : cases) {
        List.SetText(one.Text);
        EXPECT_EQ(List.GetItems(), one.Items) << testing::PrintToString(one.Text);
    }
    List.SetText("a\nb");
    EXPECT_EQ(List.GetText(), "a\r\nb\r\n");
}

TEST_F(TStringsTest, TextReadsBack) {
    std::mt19937 random(1);
    for (int i = 0; i < 200; ++i) {
        TItems items(random() % 5);
        for (std::string& item : items)
            item.assign(random() % 4, static_cast<char>('a' + random() % 26));
        List.SetItems(items);
        TStrings other;
        other.SetText(List.GetText());
        EXPECT_EQ(other.GetItems(), items);
    }
}

TEST_F(TStringsTest, IndexesOutsideTheListAreRefused) {
    List.Add("a");
    EXPECT_THROW(List.GetItem(1), EArgumentOutOfRange);
    EXPECT_THROW(List.GetItem(-1), EArgumentOutOfRange);
    EXPECT_THROW(List.SetItem(1, "x"), EArgumentOutOfRange);
    EXPECT_THROW(List.Insert(2, "x"), EArgumentOutOfRange);
    EXPECT_THROW(List.Delete(1), EArgumentOutOfRange);
    EXPECT_EQ(Changes, 1);
}

TEST_F(TStringsTest, HandlerMayReplaceItselfAndChangeTheList) {
    List.SetOnChange([this](TObject&) {
        List.SetOnChange(nullptr);
        List.Add("by the handler");
        ++Changes;
    });
    List.Add("a");
    EXPECT_EQ(Changes, 1);
    EXPECT_EQ(List.GetCount(), 2);
}

TEST_F(TStringsTest, TakesNoOtherClass) {
    class TOther : public TPersistent {
    } other;
    EXPECT_THROW(List.Assign(other), EInvalidCast);
}
