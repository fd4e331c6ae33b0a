#include "tavro/svg/model/Image.h"

#include "tavro/svg/model/Document.h"
#include "tavro/svg/model/PictureInternal.h"

namespace Vz {

TSVGImage::TSVGImage(TSVGDocument& document)
    : TSVGViewElement(document, TSVGTag::Image) {}

TSVGImage::~TSVGImage() = default;

bool TSVGImage::ReadAttribute(std::string_view name, std::string_view value) {
    if (name != "href") return TSVGViewElement::ReadAttribute(name, value);
    FPicture = nullptr; // first: its pixels count no more
    FPicture = TSVGPicture::Read(GetDocument(), value);
    if (const std::string fault = FPicture->Fault(); !fault.empty()) Refuse(name, value, fault);
    Changed(TSVGChangeKind::Shape);
    return true;
}

std::shared_ptr<const TVZGPBitmap> TSVGImage::GetBitmap() const {
    return FPicture ? FPicture->Bitmap : nullptr;
}

const TSVGDocument* TSVGImage::GetEmbedded() const { return FPicture ? FPicture->Embedded.get() : nullptr; }

void TSVGImage::SetPicture(std::shared_ptr<const TSVGPicture> picture) {
    FPicture = std::move(picture);
    Changed(TSVGChangeKind::Shape);
}

void TSVGImage::WriteAttributes(IAttributeSink& sink) const {
    TSVGViewElement::WriteAttributes(sink);
    if (FPicture && !FPicture->Uri.empty()) sink.Put("xlink:href", FPicture->Uri);
}

std::unique_ptr<TSVGElement> TSVGImage::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGImage>(document);
}

void TSVGImage::CopyFrom(const TSVGElement& source) {
    TSVGViewElement::CopyFrom(source);
    const auto& other = static_cast<const TSVGImage&>(source);
    FPicture = other.FPicture;
}

} // namespace Vz
