#include "tavro/svg/model/Font.h"

#include "tavro/runtime/Props.h"
#include "tavro/svg/model/Element.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Vz {

namespace {
constexpr std::array Rows{
    Prop<&TSVGFont::GetFamily, &TSVGFont::SetFamily>("Family", ""),
    Prop<&TSVGFont::GetSize, &TSVGFont::SetSize>("Size", 0.0f),
    Prop<&TSVGFont::GetWeight, &TSVGFont::SetWeight>("Weight", 0),
    Prop<&TSVGFont::GetStyle, &TSVGFont::SetStyle>("Style", TSVGFontStyle::fsArtwork),
};
static_assert(NamesAreUnique(Rows));
} // namespace

TSVGFont::TSVGFont(const TSVGGraphicElement& element) {
    using P = TSVGStyleProperty;
    using K = TStyleValue::TKind;
    const auto own = [&](P property) -> const TStyleValue* {
        const TStyleValue* const value = element.GetStyle().Find(property);
        return value && value->Kind != K::Inherit ? value : nullptr;
    };
    // Sizes and weights may be relative: they are taken as they come out.
    const TStyleValue* const family = own(P::FontFamily);
    const TStyleValue* const style = own(P::FontStyle);
    const TComputedStyle computed = element.GetComputedStyle();
    if (family && family->Text) FFamily = *family->Text;
    if (own(P::FontSize)) SetSize(static_cast<float>(computed.Text->Font.Size));
    if (own(P::FontWeight)) SetWeight(computed.Text->Font.Weight);
    if (style) FStyle = style->Word == TKeyword::Normal ? TSVGFontStyle::fsNormal : TSVGFontStyle::fsItalic;
}

std::span<const TProp> TSVGFont::GetPropTable() const { return Rows; }

template <class T, class U> void TSVGFont::Change(T& field, const U& value) {
    if (field == value) return;
    field = value;
    Raise(OnChange, *this);
}

void TSVGFont::SetFamily(std::string_view value) { Change(FFamily, value); }

void TSVGFont::SetSize(float value) {
    if (std::isfinite(value) && value >= 0) Change(FSize, value);
}

void TSVGFont::SetWeight(std::int32_t value) { Change(FWeight, std::clamp(value, 0, 1000)); }

void TSVGFont::SetStyle(TSVGFontStyle value) { Change(FStyle, value); }

void TSVGFont::Assign(const TPersistent& source) {
    const auto* const font = dynamic_cast<const TSVGFont*>(&source);
    if (!font) return TPersistent::Assign(source);
    if (font->FFamily == FFamily && font->FSize == FSize && font->FWeight == FWeight &&
        font->FStyle == FStyle)
        return;
    FFamily = font->FFamily;
    FSize = font->FSize;
    FWeight = font->FWeight;
    FStyle = font->FStyle;
    Raise(OnChange, *this);
}

} // namespace Vz
