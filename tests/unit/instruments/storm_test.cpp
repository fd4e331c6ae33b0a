// Random settings, good and bad, one after another, on every registered class: nothing may crash, a value
// that is refused stays as it was, and the picture, its document and its form stay whole.

#include "tavro/VZSVGControl.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/FormFile.h"
#include "tavro/runtime/PropAccess.h"
#include "tavro/runtime/PropText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>

namespace Vz::Test {
namespace {

class TStorm {
public:
    explicit TStorm(unsigned seed)
        : FRandom(seed) {}

    /// A text for the property, mostly one that it takes.
    std::string TextFor(const TProp& row) {
        switch (row.Type.Kind) {
        case TValueKind::Boolean:
            return OneOf({"true", "false"});
        case TValueKind::Integer:
            return OneOf({"0", "1", "2", "7", "13", "60", "400", "-1", "-2147483648", "99999999999"});
        case TValueKind::Single:
        case TValueKind::Double:
            return OneOf({"0", "1", "-1", "0.5", "50", "100", "240", "-7.25", "1e-40", "-0", "1e30", "-1e30",
                          "3.4e38", "-3.4e38", "1e300", "nan", "inf", "-inf"});
        case TValueKind::Color:
            return OneOf(
                {"0x00000000", "0x00FFFFFF", "0x80FF0000", "0xFF000000", "0xFFFFFFFF", "0xFF123456"});
        case TValueKind::Enumeration:
            return std::string(row.Type.Members->Members[Below(row.Type.Members->Members.size())]);
        case TValueKind::Set:
            return SetOf(row);
        case TValueKind::DateTime:
            return OneOf({"00:00:00", "15:30:45", "2026-12-31T23:59:59", "1899-12-30", "-5.75", "1e9"});
        case TValueKind::Strings:
            return OneOf({"", "a", "a\\nb\\nc", "\\n\\n", "\u0645\u0642\\n\U0001F697", "<&>\\n\\\\"});
        case TValueKind::TextObject:
            return row.Name == "Transform" ? OneOf({"", "matrix(1 0 0 1 3 4)", "scale(0)", "rotate(30)",
                                                    "matrix(900 0 0 -900 7 7)"})
                                           : OneOf({"", "M1 2L3 4 5 0Z", "M0 0", "M0 0C1 1", "M1e30 0L0 1e30",
                                                    "M0 0A0 0 0 1 1 9 9"});
        default:
            return OneOf({"", "0.00", "0", "#,##0.0;(0);nil", "'km' 0", "0.0.0", "Text", "\xff",
                          "\u0645\u0642\u064a\u0627\u0633", "\U0001F697\u200d", "a\r\n\tb", "<tspan>&amp;"});
        }
    }
    std::size_t Below(std::size_t count) { return FRandom() % count; }

private:
    std::string OneOf(std::initializer_list<const char*> texts) { return texts.begin()[Below(texts.size())]; }
    std::string SetOf(const TProp& row) {
        std::string text;
        for (const std::string_view member : row.Type.Members->Members)
            if (Below(3) != 0) text += (text.empty() ? "" : ", ") + std::string(member);
        return '[' + text + ']';
    }

    std::mt19937 FRandom;
};

/// Sets the property; a text that is refused leaves it as it was. What is not finite goes to the setter
/// itself, because the reading of text refuses it.
void Set(TComponent& component, const TNamedProp& prop, const std::string& text) {
    const TProp& row = *prop.Ref.Prop;
    const bool isSingle = row.Type.Kind == TValueKind::Single;
    const std::string before = GetPropText(prop.Ref);
    if ((isSingle || row.Type.Kind == TValueKind::Double) && text.find_first_of("in") != text.npos) {
        const double number = std::strtod(text.c_str(), nullptr);
        return row.Set(*prop.Ref.Object, isSingle ? TValue(static_cast<float>(number)) : TValue(number));
    }
    try {
        SetPropText(component, prop.Path, text);
    } catch (const EVZError&) {
        EXPECT_EQ(GetPropText(prop.Ref), before) << prop.Path << '=' << text;
    }
}

bool CanBeSet(const TNamedProp& prop) {
    const TValueKind kind = prop.Ref.Prop->Type.Kind;
    if (kind == TValueKind::Event || kind == TValueKind::Object) return false;
    const std::string_view left[] = {"Name", "Left", "Top", "Width", "Height"}; // the size costs only time
    return std::ranges::find(left, prop.Path) == std::end(left);
}

/// True where no float property holds what is no number or has no end.
bool AreNumbersFinite(const std::vector<TNamedProp>& props) {
    for (const TNamedProp& prop : props) {
        const TValueKind kind = prop.Ref.Prop->Type.Kind;
        if (kind != TValueKind::Single && kind != TValueKind::Double) continue;
        if (!std::isfinite(AsDouble(prop.Ref.Prop->Get(*prop.Ref.Object)))) return false;
    }
    return true;
}

/// What must hold whatever was set.
void CheckWhole(TComponent& component) {
    auto& control = dynamic_cast<TControl&>(component);
    THeadlessHost host(control);
    EXPECT_NO_THROW(host.Paint());
    if (const auto* const svg = dynamic_cast<const TVZSVGControl*>(&component)) {
        TSVGDocument copy;
        EXPECT_NO_THROW(copy.LoadFromText(svg->GetDocument().WriteText()));
    }
    std::string form;
    EXPECT_NO_THROW(form = WriteForm(component));
    EXPECT_NO_THROW(ReadForm(form)) << form;
}

TEST(Storm, AnySettingsInAnyOrderLeaveItWhole) {
    RegisterComponentClasses();
    for (const TClassEntry& entry : GetClasses()) {
        TStorm storm(53);
        for (int round = 0; round < 6 && !testing::Test::HasFailure(); ++round) {
            const auto component = entry.Create();
            std::string edits = std::string(entry.Name) + ':';
            const std::vector<TNamedProp> props = ListProps(*component);
            for (int edit = 0; edit < 60; ++edit) {
                const TNamedProp& prop = props[storm.Below(props.size())];
                if (!CanBeSet(prop)) continue;
                const std::string text = storm.TextFor(*prop.Ref.Prop);
                edits += "\n  --set '" + prop.Path + '=' + text + '\'';
                Set(*component, prop, text);
                ASSERT_TRUE(AreNumbersFinite(props)) << edits;
            }
            SCOPED_TRACE(edits);
            CheckWhole(*component);
        }
    }
}

} // namespace
} // namespace Vz::Test
