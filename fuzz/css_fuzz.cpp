// Style texts: whatever the text, as a declaration list, a style sheet, a value of each property, a colour, a
// transform or a length. What is taken is written to a text that reads back to the same text and ends nothing
// but itself.
#include "tavro/svg/css/ColorText.h"
#include "tavro/svg/css/StyleSheet.h"
#include "tavro/svg/values/TransformText.h"

#include <cmath>
#include <cstdlib>

using namespace Vz;

namespace {

void Check(bool holds) {
    if (!holds) std::abort();
}

void CheckReadsBack(TSVGStyleProperty property, const TStyleValue& value) {
    Check(std::isfinite(value.Number));
    const std::string written = StyleValueText(property, value);
    const auto again = ParseStyleValue(property, written);
    Check(again && StyleValueText(property, *again) == written);
    // Between two others it stays one declaration.
    const std::string name(GetStylePropertyName(property));
    const auto list = ParseDeclarations("fill:red;" + name + ":" + written + ";fill:red");
    Check(list.size() == 3 && list[1].Property == property && list[1].Value == *again);
}

void ReadDeclarations(std::string_view text) {
    std::vector<std::string> refused;
    std::string transform;
    for (const TDeclaration& declaration : ParseDeclarations(text, &refused, &transform))
        CheckReadsBack(declaration.Property, declaration.Value);
    if (!transform.empty()) Check(ParseTransform(transform).has_value());
}

void ReadValues(std::string_view text) {
    for (int i = 0; i < static_cast<int>(TSVGStyleProperty::Count); ++i) {
        const auto property = static_cast<TSVGStyleProperty>(i);
        if (const auto value = ParseStyleValue(property, text)) CheckReadsBack(property, *value);
    }
    if (const auto color = ParseColor(text)) Check(ParseColor(ColorText(*color)) == (*color | 0xFF000000u));
    if (const auto transform = ParseTransform(text)) {
        Check(transform->IsFinite());
        // Sums and products may lie beyond what a text may say.
        const std::string written = TransformText(*transform);
        if (const auto again = ParseTransform(written)) Check(TransformText(*again) == written);
    }
    TSVGLength length;
    if (length.Parse(text)) Check(std::isfinite(length.Resolve(TAxis::Other, {})));
    TSVGPreserveAspectRatio ratio;
    if (ratio.Parse(text)) {
        TSVGPreserveAspectRatio again;
        Check(again.Parse(ratio.ToText()) && again == ratio);
    }
}

/// An element of a fixed small tree.
struct TNode final : IStyledElement {
    const char* Type;
    const TNode* Up;
    const TNode* Before;

    TNode(const char* type, const TNode* up, const TNode* before)
        : Type(type)
        , Up(up)
        , Before(before) {}
    std::string_view TypeName() const override { return Type; }
    std::string_view Id() const override { return "a"; }
    std::string_view Classes() const override { return "a b\tc"; }
    std::optional<std::string_view> Attribute(std::string_view name) const override {
        if (name == "x") return "a-b c";
        return std::nullopt;
    }
    const IStyledElement* Parent() const override { return Up; }
    const IStyledElement* Previous() const override { return Before; }
};

void ReadSheet(std::string_view text) {
    static const TNode root{"svg", nullptr, nullptr};
    static const TNode group{"g", &root, nullptr};
    static const TNode first{"a", &group, nullptr};
    static const TNode second{"rect", &group, &first};
    TStyleSheet sheet;
    std::vector<std::string> notes;
    sheet.Add(text, &notes);
    sheet.Add(text);
    std::vector<TStyleSheet::TMatch> matches;
    for (const TNode* node : {&root, &group, &first, &second}) {
        std::int64_t budget = 1'000'000;
        sheet.Match(*node, matches, &budget);
        for (const auto& match : matches)
            Check(match.Declarations && (!match.Declarations->empty() || !match.Transform->empty()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    ReadDeclarations(text);
    ReadValues(text);
    ReadSheet(text);
    return 0;
}
