#include "tavro/runtime/Props.h"

#include "tavro/runtime/ComponentProps.h"
#include "tests/unit/runtime/TestComponents.h"

#include <gtest/gtest.h>

#include "tavro/runtime/PropAccess.h"

using namespace Vz;

namespace {

const TProp& Row(const TPersistent& object, std::string_view name) {
    const TProp* row = FindProp(object, name);
    EXPECT_NE(row, nullptr) << name;
    return *row;
}

} // namespace

TEST(Props, RowsKnowTheirTypes) {
    const auto gauge = TTestGauge::Create();
    const struct {
        const char* Name;
        TValueKind Kind;
        const char* Type;
    } cases[] = {
        {"Name", TValueKind::Text, "string"},           {"On", TValueKind::Boolean, "Boolean"},
        {"Count", TValueKind::Integer, "integer"},      {"Max", TValueKind::Single, "single"},
        {"Exact", TValueKind::Double, "double"},        {"FrameColor", TValueKind::Color, "colour"},
        {"Part", TValueKind::Enumeration, "TTestPart"}, {"Parts", TValueKind::Set, "TTestParts"},
        {"Time", TValueKind::DateTime, "date-time"},    {"Caption", TValueKind::Text, "string"},
        {"Labels", TValueKind::Strings, "string list"}, {"Word", TValueKind::TextObject, "word"},
        {"Font", TValueKind::Object, "TTestFont"},      {"OnChange", TValueKind::Event, "event"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(Row(*gauge, one.Name).Type.Kind, one.Kind) << one.Name;
        EXPECT_EQ(Row(*gauge, one.Name).Type.Name, one.Type) << one.Name;
    }
    EXPECT_EQ(Row(*gauge, "Small").Type.Max, 255);
    EXPECT_EQ(Row(*gauge, "Count").Type.Min, -2147483648LL);
}

TEST(Props, GetAndSetGoThroughTheClass) {
    const auto gauge = TTestGauge::Create();
    const TProp& max = Row(*gauge, "Max");
    max.Set(*gauge, TValueTraits<float>::ToValue(7.5f));
    EXPECT_EQ(gauge->GetMax(), 7.5f);
    EXPECT_EQ(max.Get(*gauge), TValueTraits<float>::ToValue(7.5f));
    EXPECT_EQ(max.Default, TValueTraits<float>::ToValue(100));
    max.Set(*gauge, TValueTraits<int>::ToValue(3)); // a host's spin box may well give an integer
    EXPECT_EQ(gauge->GetMax(), 3.0f);
    EXPECT_THROW(max.Set(*gauge, TValueTraits<bool>::ToValue(true)), EInvalidCast);
    EXPECT_EQ(gauge->GetMax(), 3.0f);
    EXPECT_THROW(Row(*gauge, "Small").Set(*gauge, TValueTraits<int>::ToValue(256)), EConvertError);
    EXPECT_EQ(gauge->GetSmall(), 1);
}

TEST(Props, EnumerationsAndSetsAreToldApart) {
    const auto gauge = TTestGauge::Create();
    static constexpr TEnumType Other{"TOther", {}};
    EXPECT_THROW(Row(*gauge, "Part").Set(*gauge, TValue(TEnumValue{&Other, 0})), EInvalidCast);
    EXPECT_THROW(Row(*gauge, "Parts").Set(*gauge, TValue(TSetValue{&Other, 0})), EInvalidCast);
    Row(*gauge, "Part").Set(*gauge, TValue(TEnumValue{&EnumType<TTestPart>, 2}));
    EXPECT_EQ(gauge->GetPart(), TTestPart::tpGlass);
}

TEST(Props, OwnedObjectsAreCopiedThroughTheSetter) {
    const auto gauge = TTestGauge::Create();
    const TProp& labels = Row(*gauge, "Labels");
    labels.SetObject(*gauge, TStrings{"a", "b"});
    EXPECT_EQ(gauge->GetLabels().GetCount(), 2);
    EXPECT_EQ(labels.GetObject(*gauge), &gauge->GetLabels());
    EXPECT_THROW(labels.SetObject(*gauge, TTestWord()), EInvalidCast);
    TTestFont font;
    font.SetSize(20);
    Row(*gauge, "Font").SetObject(*gauge, font); // no setter: the object's own Assign
    EXPECT_EQ(gauge->GetFont().GetSize(), 20.0f);
    gauge->HasWord = false;
    EXPECT_EQ(Row(*gauge, "Word").GetObject(*gauge), nullptr);
}

TEST(Props, EventsCanBeListenedToWhateverTheyCarry) {
    const auto gauge = TTestGauge::Create();
    int calls = 0;
    Row(*gauge, "OnChange").Attach(*gauge, [&] { ++calls; });
    Raise(gauge->OnChange, *gauge);
    EXPECT_EQ(calls, 1);
}

TEST(Props, DoubleNamesAreSeen) {
    constexpr std::array Twice{NameProp, NameProp};
    static_assert(!NamesAreUnique(Twice));
    static_assert(NamesAreUnique(std::span(Twice).first(1)));
    SUCCEED();
}

TEST(Props, SetsOfMembers) {
    using enum TTestPart;
    constexpr TSet<TTestPart> Both{tpFrame, tpGlass};
    static_assert(Both.GetMask() == 5);
    static_assert(Both.Contains(tpGlass) && !Both.Contains(tpFace));
    static_assert((Both + TSet{tpFace}).GetMask() == 7);
    static_assert((Both - TSet{tpFrame}) == TSet{tpGlass});
    static_assert((Both * TSet{tpFrame, tpFace}) == TSet{tpFrame});
    TSet<TTestPart> set;
    EXPECT_TRUE(set.IsEmpty());
    set.Include(tpFace);
    set.Include(tpFrame);
    set.Exclude(tpFace);
    EXPECT_EQ(set, TSet{tpFrame});
}
