// What holds for every published property of every registered class.

#include "tavro/VZSVGControl.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/AtomicFile.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/FormFile.h"
#include "tavro/runtime/PropAccess.h"
#include "tavro/runtime/PropText.h"
#include "tavro/runtime/Strings.h"

#include "tests/support/Environment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <map>
#include <random>
#include <set>

namespace Vz::Test {
namespace {

const std::string NamesFile = std::string(TestsFolder()) + "/unit/instruments/published.txt";

std::span<const TClassEntry> Classes() {
    RegisterComponentClasses();
    return GetClasses();
}

/// The row of a class's own table; null where it does not publish the property.
const TProp* FindPublished(const TPersistent& object, std::string_view name) {
    const auto table = object.GetPropTable();
    const auto row = std::ranges::find(table, name, &TProp::Name);
    return row == table.end() ? nullptr : &*row;
}

/// True for what a fresh component takes from the present time: no declared default, and not stored until it
/// is set.
bool FollowsTheClock(const TPropRef& ref) {
    const TValueKind kind = ref.Prop->Type.Kind;
    return std::holds_alternative<std::monostate>(ref.Prop->Default) &&
           !IsPropStored(*ref.Object, *ref.Prop) &&
           (kind == TValueKind::DateTime || kind == TValueKind::Integer);
}

/// The text of every property that has one.
std::map<std::string, std::string> TextsOf(TComponent& component) {
    std::map<std::string, std::string> texts;
    for (const TNamedProp& prop : ListProps(component)) {
        const TValueKind kind = prop.Ref.Prop->Type.Kind;
        if (kind != TValueKind::Event && kind != TValueKind::Object && !FollowsTheClock(prop.Ref))
            texts[prop.Path] = GetPropText(prop.Ref);
    }
    return texts;
}

/// A text that the property takes and that is not its present one.
std::string SampleFor(const TNamedProp& prop, bool isSecond = false) {
    const TProp& row = *prop.Ref.Prop;
    const std::string now = GetPropText(prop.Ref);
    switch (row.Type.Kind) {
    case TValueKind::Boolean:
        return now == "true" ? "false" : "true";
    case TValueKind::Integer:
        return std::to_string(std::stoll(now) + 1);
    case TValueKind::Single:
    case TValueKind::Double:
        return FloatToText(AsDouble(row.Get(*prop.Ref.Object)) + (isSecond ? 1.5 : -0.25));
    case TValueKind::Color:
        return now == "0xFF2468AC" ? "0xFF135790" : "0xFF2468AC";
    case TValueKind::Enumeration: {
        const auto members = row.Type.Members->Members;
        const int ordinal = AsEnum(row.Get(*prop.Ref.Object), *row.Type.Members);
        return std::string(members[(ordinal + 1) % int(members.size())]);
    }
    case TValueKind::Set:
        return now == "[]" ? '[' + std::string(row.Type.Members->Members[0]) + ']' : "[]";
    case TValueKind::DateTime:
        return "2026-03-15T15:30:45";
    case TValueKind::Strings:
        return "One\\nTwo's";
    case TValueKind::TextObject:
        return row.Name == "Transform" ? "matrix(1 0 0 1 3 4)" : "M1 2L3 4 5 0Z";
    default:
        return row.Name == "FormatStr" ? "0.00" : "It's \xC3\xA4 text";
    }
}

/// Gives the property another value.
void Vary(TComponent& component, const TNamedProp& prop) {
    const std::string before = GetPropText(prop.Ref);
    SetPropText(component, prop.Path, SampleFor(prop));
    if (GetPropText(prop.Ref) == before) SetPropText(component, prop.Path, SampleFor(prop, true));
    EXPECT_NE(GetPropText(prop.Ref), before) << "the sample changes nothing";
}

bool CanBeSet(const TNamedProp& prop) {
    const TValueKind kind = prop.Ref.Prop->Type.Kind;
    return kind != TValueKind::Event && kind != TValueKind::Object && prop.Path != "Name";
}

/// Calls `test(component, property)` with a fresh component for every property that can be set.
template <class F> void ForEachProp(F test) {
    for (const TClassEntry& entry : Classes()) {
        const auto model = entry.Create();
        for (const TNamedProp& named : ListProps(*model)) {
            if (!CanBeSet(named)) continue;
            SCOPED_TRACE(std::string(entry.Name) + '.' + named.Path);
            const auto component = entry.Create();
            test(*component, TNamedProp{named.Path, ResolveProp(*component, named.Path)});
        }
    }
}

TEST(Registry, PublishedNames) {
    std::string text = "# Every published property, one a line; a renamed or lost one shows here.\n"
                       "# TAVRO_UPDATE=1 test_instruments --file=registry_test writes this file anew.\n";
    for (const TClassEntry& entry : Classes()) {
        const auto component = entry.Create();
        std::set<std::string_view> names;
        for (const TProp& row : component->GetPropTable()) {
            EXPECT_TRUE(names.insert(row.Name).second) << row.Name << " twice";
            text += std::string(entry.Name) + '.' + std::string(row.Name) + ": " +
                    std::string(row.Type.Name) + '\n';
        }
        for (const TProp& row : component->GetCommonProps()) {
            const TProp* const own = FindPublished(*component, row.Name);
            if (own) {
                EXPECT_EQ(own->Type.Kind, row.Type.Kind) << row.Name << " hides a common one";
                EXPECT_EQ(ValueToText(own->Get(*component)), ValueToText(row.Get(*component))) << row.Name;
            }
        }
    }
    if (std::getenv("TAVRO_UPDATE")) WriteFileAtomically(NamesFile, text);
    EXPECT_EQ(text, ReadWholeFile(NamesFile, 1 << 20));
}

TEST(Registry, AResetOfItsOwnLeavesNothingChanged) {
    int count = 0;
    ForEachProp([&](TComponent& component, const TNamedProp& prop) {
        if (!prop.Ref.Prop->Reset) return;
        ++count;
        const auto fresh = TextsOf(component);
        Vary(component, prop);
        EXPECT_TRUE(IsPropStored(*prop.Ref.Object, *prop.Ref.Prop));
        prop.Ref.Prop->Reset(*prop.Ref.Object);
        EXPECT_FALSE(IsPropStored(*prop.Ref.Object, *prop.Ref.Prop));
        EXPECT_EQ(TextsOf(component), fresh);
    });
    EXPECT_GT(count, 20);
}

/// Where a fresh component holds another value than the declared one, and so stores it.
struct TFreshValue {
    std::string_view Class;
    std::string_view Name;
    std::string_view Text; ///< empty: the present time
};
constexpr TFreshValue FreshValues[] = {
    {"TVZClock", "Time", ""},
    {"TVZClock", "LabelsFillColor", "0xFFF5F5F5"},
    {"TVZClock", "DecorationFillColor", "0xFF87CEEB"},
    {"TVZRotaryDial", "Parts",
     "[gpFrame, gpBackface, gpHands, gpDecoration, gpMajorMarkers, gpMinorMarkers, gpLabels, "
     "gpMeasurementLabels, gpMainLabel, gpDetailLabel, gpBolts]"},
};

TEST(Registry, DeclaredDefaultsAreTheFreshValues) {
    ForEachProp([](TComponent& component, const TNamedProp& prop) {
        const TProp& row = *prop.Ref.Prop;
        for (const TFreshValue& fresh : FreshValues)
            if (fresh.Class == component.ClassName() && fresh.Name == prop.Path) {
                EXPECT_TRUE(fresh.Text.empty() || GetPropText(prop.Ref) == fresh.Text);
                EXPECT_NE(ValueToText(row.Default), GetPropText(prop.Ref));
                return;
            }
        if (std::holds_alternative<std::monostate>(row.Default)) return;
        EXPECT_EQ(row.Default, row.Get(*prop.Ref.Object));
    });
}

TEST(Registry, FreshComponentsStoreNothingElse) {
    for (const TClassEntry& entry : Classes()) {
        const auto component = entry.Create();
        std::string stored;
        for (const TFreshValue& fresh : FreshValues)
            if (fresh.Class == entry.Name)
                stored += "  " + std::string(fresh.Name) + " = " + GetPropText(*component, fresh.Name) + '\n';
        EXPECT_EQ(WriteForm(*component), "object " + std::string(entry.Name) + '\n' + stored + "end\n");
    }
}

TEST(Registry, ThereIsADeclaredDefaultOrAReason) {
    ForEachProp([](TComponent&, const TNamedProp& prop) {
        const TProp& row = *prop.Ref.Prop;
        const bool hasDefault = !std::holds_alternative<std::monostate>(row.Default);
        EXPECT_TRUE(hasDefault || row.Stored || row.Type.Kind == TValueKind::Strings);
    });
}

/// Properties that do more than take the value: a path makes the emblem the user's own, a day takes the hour
/// away.
bool SaysMore(const TNamedProp& prop) { return prop.Path == "DecorationPath" || prop.Path == "DayOfYear"; }

TEST(Registry, EqualValuesDoNothing) {
    ForEachProp([](TComponent& component, const TNamedProp& prop) {
        auto& control = dynamic_cast<TControl&>(component);
        for (const bool isFresh : {true, false}) {
            if (isFresh && SaysMore(prop)) continue;
            if (!isFresh) Vary(component, prop);
            const std::string now = GetPropText(prop.Ref);
            int calls = 0;
            control.SetOnInvalidate([&](TObject&) { ++calls; });
            const auto* const svg = dynamic_cast<TVZSVGControl*>(&component);
            const std::uint64_t epoch = svg ? svg->GetDocument().GetEpoch() : 0;
            for (const TProp& row : component.GetPropTable())
                if (row.Attach) row.Attach(component, [&] { ++calls; });
            SetPropText(component, prop.Path, now);
            EXPECT_EQ(calls, 0);
            EXPECT_EQ(GetPropText(prop.Ref), now);
            EXPECT_EQ(svg ? svg->GetDocument().GetEpoch() : 0, epoch);
            for (const TProp& row : component.GetPropTable())
                if (row.Attach) row.Attach(component, [] {});
            control.SetOnInvalidate({});
        }
    });
}

TEST(Registry, SetStreamedAndReadBackAlike) {
    ForEachProp([](TComponent& component, const TNamedProp& prop) {
        Vary(component, prop);
        const std::string form = WriteForm(component);
        const auto copy = ReadForm(form);
        EXPECT_EQ(TextsOf(*copy), TextsOf(component)) << form;
        EXPECT_EQ(WriteForm(*copy), form);
    });
}

/// The component's document as text; empty where it has none.
std::string DocumentOf(TComponent& component) {
    const auto* const svg = dynamic_cast<const TVZSVGControl*>(&component);
    return svg ? svg->GetDocument().WriteText() : std::string();
}

TEST(Registry, AFormGivesTheDocumentThatWasSaved) {
    ForEachProp([&](TComponent& component, const TNamedProp& prop) {
        for (const TProp& row : component.GetPropTable()) // what shows the present time shows one time
            if (row.Type.Kind == TValueKind::DateTime) row.Set(component, TValue(TDateTime(45000.25)));
        Vary(component, prop);
        const auto copy = ReadForm(WriteForm(component));
        EXPECT_TRUE(DocumentOf(*copy) == DocumentOf(component));
    });
}

TEST(Registry, AllPropertiesTogetherReadBackAlike) {
    for (const TClassEntry& entry : Classes()) {
        SCOPED_TRACE(entry.Name);
        const auto component = entry.Create();
        for (const TNamedProp& prop : ListProps(*component))
            if (CanBeSet(prop) && prop.Ref.Prop->Name != "Decoration")
                SetPropText(*component, prop.Path, SampleFor(prop));
        const std::string form = WriteForm(*component);
        const auto copy = ReadForm(form);
        EXPECT_EQ(TextsOf(*copy), TextsOf(*component)) << form;
    }
}

/// Published twice: with a default of its class, and as what every component has. Streamed once.
TEST(Registry, NothingIsStreamedTwice) {
    for (const TClassEntry& entry : Classes()) {
        SCOPED_TRACE(entry.Name);
        const auto component = entry.Create();
        std::set<std::string> paths;
        for (const TNamedProp& prop : ListProps(*component))
            EXPECT_TRUE(paths.insert(prop.Path).second) << prop.Path;
        for (const TProp& row : component->GetPropTable())
            EXPECT_TRUE(row.Type.Kind == TValueKind::Object || paths.contains(std::string(row.Name)))
                << row.Name;
    }
}

std::vector<std::uint32_t> Paint(TControl& control) {
    THeadlessHost host(control);
    const TPixels pixels = host.Paint().GetPixels();
    std::vector<std::uint32_t> copy;
    for (int y = 0; y < pixels.Height; ++y)
        copy.insert(copy.end(), pixels.Row(y), pixels.Row(y) + pixels.Width);
    return copy;
}

TEST(Registry, ColorsInAnyOrderGiveTheSamePicture) {
    std::mt19937 random(5);
    for (const TClassEntry& entry : Classes()) {
        SCOPED_TRACE(entry.Name);
        std::vector<std::pair<std::string, std::string>> edits;
        const auto model = entry.Create();
        for (const TProp& row : model->GetPropTable())
            if (row.Type.Kind == TValueKind::Color)
                edits.emplace_back(row.Name, ValueToText(TColorValue{std::uint32_t(random()) | 0xFF000000u}));
        std::vector<std::uint32_t> first;
        for (int round = 0; round < 3; ++round) {
            const auto component = entry.Create();
            if (FindPublished(*component, "Time")) SetPropText(*component, "Time", "15:30:45");
            for (const auto& [name, text] : edits)
                SetPropText(*component, name, text);
            const auto picture = Paint(dynamic_cast<TControl&>(*component));
            if (round == 0) first = picture;
            EXPECT_TRUE(picture == first) << "round " << round;
            std::shuffle(edits.begin(), edits.end(), random);
        }
    }
}

/// Where the order of two settings counts, and is meant to.
struct TOrdered {
    std::string_view Class; ///< of every class where empty
    std::string_view Name;
    std::string_view Reason;
};
constexpr TOrdered OrderedProps[] = {
    {"", "Min", "the ends of a scale push each other and the value"},
    {"", "Max", "the ends of a scale push each other and the value"},
    {"", "Value", "is held in the scale as it is at that time"},
    {"", "DecorationPath", "makes the emblem the user's own, and another emblem takes its place"},
    {"", "DayOfYear", "is another way to set Time"},
    {"", "MajorMarkerPath", "makes the shape the user's own, and another shape takes its place"},
    {"", "MinorMarkerPath", "makes the shape the user's own, and another shape takes its place"},
    {"", "Labels", "a change of the scale or of the format writes numbers over a list that was set"},
    {"TVZSpeedometer", "EnableGradients", "decides whether a colour goes into a gradient or a flat fill"},
    {"TVZSpeedometer", "Design",
     "decides the same of the emblem's fill; and the glass is shown by what ran last"},
    {"TVZSpeedometer", "Parts", "the glass is shown by what ran last, parts or design"},
    {"TVZThermometer", "EnableGradients", "decides whether a colour goes into a gradient or a flat fill"},
    {"TVZThermometer", "Design", "frame and glass are shown by what ran last, parts, design or gradients"},
    {"TVZThermometer", "Parts", "likewise"},
    {"TVZBattery", "EnableGradients", "decides whether a colour goes into a gradient or a flat fill"},
    {"TVZBattery", "Design", "what shines is shown by what ran last, parts, design or gradients"},
    {"TVZBattery", "Parts", "likewise"},
    {"TVZBatteryModern", "EnableGradients", "decides whether a colour goes into a gradient or a flat fill"},
    {"TVZBatteryModern", "Design", "the shadow is shown by what ran last, parts, design or gradients"},
    {"TVZBatteryModern", "Parts", "likewise"},
    {"TVZCompass", "EnableGradients",
     "decides whether a colour goes into a gradient or a flat fill; and shows the ornaments, as the design "
     "does"},
    {"TVZCompass", "Design", "shows numbers and markers, as the parts do, and the ornaments"},
    {"TVZCompass", "Parts", "numbers and markers are shown by what ran last, parts or design"},
    {"TVZTrafficLight", "EnableGradients", "decides whether a colour goes into a gradient or a flat fill"},
    {"TVZCubeLight", "EnableGradients", "decides whether a colour goes into a gradient or a flat fill"},
    {"TVZClock", "EnableGradients", "decides whether a colour goes into a gradient or a flat fill"},
    {"TVZClock", "Design", "the glass is shown by what ran last, parts or design"},
    {"TVZClock", "Parts", "the glass is shown by what ran last, parts or design"},
    {"TVZDigitalClock", "EnableGradients",
     "decides whether a colour goes into a gradient or a flat fill, and shows the glass"},
    {"TVZDigitalClock", "Design", "the glass is shown by what ran last, parts, design or gradients"},
    {"TVZDigitalClock", "Parts", "the glass is shown by what ran last, parts, design or gradients"},
};

bool IsOrdered(std::string_view className, std::string_view name) {
    return std::ranges::any_of(OrderedProps, [&](const TOrdered& row) {
        return (row.Class.empty() || row.Class == className) && row.Name == name;
    });
}

TEST(Registry, OrderOfSettingDoesNotCount) {
    std::mt19937 random(7);
    for (const TClassEntry& entry : Classes()) {
        SCOPED_TRACE(entry.Name);
        std::vector<std::pair<std::string, std::string>> edits;
        const auto model = entry.Create();
        for (const TNamedProp& prop : ListProps(*model))
            if (CanBeSet(prop) && !IsOrdered(entry.Name, prop.Path) && prop.Path != "Visible")
                edits.emplace_back(prop.Path, prop.Path == "Font.Size" ? "11" : SampleFor(prop));
        std::vector<std::uint32_t> first;
        std::string document;
        for (int round = 0; round < 6; ++round) {
            const auto component = entry.Create();
            for (const auto& [name, text] : edits)
                SetPropText(*component, name, text);
            const auto picture = Paint(dynamic_cast<TControl&>(*component));
            if (round == 0) first = picture;
            std::string order;
            for (const auto& edit : edits)
                order += edit.first + ' ';
            EXPECT_TRUE(picture == first) << "round " << round << ": " << order;
            if (const auto* const svg = dynamic_cast<const TVZSVGControl*>(component.get())) {
                const std::string text = svg->GetDocument().WriteText();
                if (round == 0) document = text;
                EXPECT_TRUE(text == document) << order;
            }
            std::shuffle(edits.begin(), edits.end(), random);
        }
    }
}

TEST(Registry, OrderOfSettingCountsWhereItIsSaid) {
    for (const TOrdered& row : OrderedProps) {
        EXPECT_FALSE(row.Reason.empty());
        bool isPublished = false;
        for (const TClassEntry& entry : Classes())
            if (row.Class.empty() || row.Class == entry.Name)
                isPublished = isPublished || FindPublished(*entry.Create(), row.Name);
        EXPECT_TRUE(isPublished) << row.Class << '.' << row.Name << " is published no more";
    }
}

TEST(Registry, TextsOfAnyKindAreDrawnAndWritten) {
    std::string many;
    for (int i = 0; i < 10000; ++i)
        many += char('a' + i % 26);
    const std::string texts[] = {
        many,
        "\u0645\u0642\u064a\u0627\u0633 \u0627\u0644\u0648\u0642\u0648\u062f",
        "\U0001F697\u26FD \U0001F468\u200D\U0001F469\u200D\U0001F467 \U0001F1E9\U0001F1EA",
        "<tspan>&amp;]]>\"'--></text>",
        "a\r\nb\tc\x01\x7f",
        "\xff\xfe\xc3",
        std::string("nul\0inside", 10),
        "e\u0301\u202e\u200b\ufeff",
    };
    ForEachProp([&](TComponent& component, const TNamedProp& prop) {
        const TProp& row = *prop.Ref.Prop;
        const bool isPicture = row.Name == "FormatStr";
        if (row.Type.Kind != TValueKind::Text || isPicture) return;
        for (const std::string& text : texts) {
            row.Set(*prop.Ref.Object, TValue(std::string_view(text)));
            EXPECT_NO_THROW(Paint(dynamic_cast<TControl&>(component)));
            if (const auto* const svg = dynamic_cast<const TVZSVGControl*>(&component)) {
                TSVGDocument copy;
                EXPECT_NO_THROW(copy.LoadFromText(svg->GetDocument().WriteText()));
            }
        }
    });
}

TEST(Registry, PicturesOfAnyTextAreTakenOrRefused) {
    const std::string_view pictures[] = {"0.00", "",   "#,##0.0#;-0;zero", "'Km/h' 0", "0.0e+00", "%", "<&>",
                                         "\xff", "'a", "0;0;0;0",          "0.0.0",    "\u00b0 0"};
    for (const TClassEntry& entry : Classes()) {
        const auto component = entry.Create();
        if (!FindPublished(*component, "FormatStr")) continue;
        SCOPED_TRACE(entry.Name);
        for (const std::string_view picture : pictures) {
            const std::string before = GetPropText(*component, "FormatStr");
            try {
                SetPropText(*component, "FormatStr", picture);
                EXPECT_EQ(GetPropText(*component, "FormatStr"), picture);
            } catch (const EVZError&) {
                EXPECT_EQ(GetPropText(*component, "FormatStr"), before);
            }
            EXPECT_NO_THROW(Paint(dynamic_cast<TControl&>(*component)));
            TSVGDocument copy;
            EXPECT_NO_THROW(
                copy.LoadFromText(dynamic_cast<TVZSVGControl&>(*component).GetDocument().WriteText()));
        }
    }
}

TEST(Registry, NumbersThatAreNoneLeaveFiniteValues) {
    ForEachProp([](TComponent& component, const TNamedProp& prop) {
        const TProp& row = *prop.Ref.Prop;
        const bool isSingle = row.Type.Kind == TValueKind::Single;
        if (!isSingle && row.Type.Kind != TValueKind::Double) return;
        const TValue before = row.Get(*prop.Ref.Object);
        const auto set = [&](double number) {
            row.Set(*prop.Ref.Object, isSingle ? TValue(float(number)) : TValue(number));
        };
        set(std::numeric_limits<double>::quiet_NaN());
        EXPECT_EQ(row.Get(*prop.Ref.Object), before);
        for (const double number : {std::numeric_limits<double>::infinity(),
                                    -std::numeric_limits<double>::infinity(), 3.4e38, -3.4e38, 1e-40}) {
            set(number);
            EXPECT_TRUE(std::isfinite(AsDouble(row.Get(*prop.Ref.Object)))) << number;
        }
        EXPECT_NO_THROW(Paint(dynamic_cast<TControl&>(component)));
    });
}

TEST(Registry, ExtremeWholeNumbersAreHarmless) {
    std::set<void (*)(TPersistent&, const TValue&)>
        seen; // classes share setters, and one picture of each is enough
    ForEachProp([&](TComponent& component, const TNamedProp& prop) {
        const TProp& row = *prop.Ref.Prop;
        if (row.Type.Kind != TValueKind::Integer || !seen.insert(row.Set).second ||
            FindProp(component, prop.Path) == nullptr)
            return;
        for (const TProp& common : component.GetCommonProps())
            if (common.Name == row.Name) return; // bounds of a picture that large are the host's affair
        for (const std::int64_t number : {row.Type.Min, row.Type.Max}) {
            row.Set(*prop.Ref.Object, TValue(number));
            EXPECT_NO_THROW(Paint(dynamic_cast<TControl&>(component))) << number;
        }
    });
}

} // namespace
} // namespace Vz::Test
