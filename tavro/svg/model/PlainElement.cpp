#include "tavro/svg/model/PlainElement.h"

#include "tavro/svg/model/PictureInternal.h"

#include <algorithm>

namespace Vz {

TSVGPlainElement::TSVGPlainElement(TSVGDocument& document, TSVGTag tag, std::string name)
    : TSVGElement(document, tag)
    , FName(std::move(name)) {}

const std::string* TSVGPlainElement::FindAttribute(std::string_view name) const {
    const auto at =
        std::ranges::find(FAttributes, name, [](const auto& a) { return std::string_view(a.first); });
    return at == FAttributes.end() ? nullptr : &at->second;
}

bool TSVGPlainElement::ReadAttribute(std::string_view name, std::string_view value) {
    const auto at =
        std::ranges::find(FAttributes, name, [](const auto& a) { return std::string_view(a.first); });
    if (at == FAttributes.end())
        FAttributes.emplace_back(name, value);
    else
        at->second = value;
    if (name == "href" && FName == "feImage") {
        FPicture = nullptr;
        if (!value.starts_with('#')) FPicture = TSVGPicture::Read(GetDocument(), value);
        if (const std::string fault = FPicture ? FPicture->Fault() : ""; !fault.empty())
            Refuse(name, value, fault);
    }
    return true;
}

void TSVGPlainElement::WriteAttributes(IAttributeSink& sink) const {
    for (const auto& [name, value] : FAttributes)
        sink.Put(name == "href" ? "xlink:href" : name, value);
}

std::unique_ptr<TSVGElement> TSVGPlainElement::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGPlainElement>(document, GetTag(), FName);
}

void TSVGPlainElement::CopyFrom(const TSVGElement& source) {
    TSVGElement::CopyFrom(source);
    const auto& other = static_cast<const TSVGPlainElement&>(source);
    FText = other.FText;
    FAttributes = other.FAttributes;
    FPicture = other.FPicture;
}

} // namespace Vz
