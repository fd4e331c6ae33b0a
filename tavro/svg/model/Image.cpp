#include "tavro/svg/model/Image.h"

#include "tavro/graphics/Bitmap.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/values/DataUri.h"

namespace Vz {

TSVGImage::TSVGImage(TSVGDocument& document)
    : TSVGViewElement(document, TSVGTag::Image) {}

TSVGImage::~TSVGImage() = default;

bool TSVGImage::ReadAttribute(std::string_view name, std::string_view value) {
    if (name != "href") return TSVGViewElement::ReadAttribute(name, value);
    FHref = value;
    FBitmap = nullptr;
    FEmbedded = nullptr;
    try {
        const auto content = ReadDataUri(value);
        if (!content)
            Refuse(name, value);
        else if (content->starts_with("\x89PNG"))
            FBitmap = DecodePng(*content);
        else if (GetDocument().GetEmbeddingDepth() < TSVGDocument::MaxEmbedding &&
                 content->find("<svg") != std::string::npos) {
            auto embedded = std::make_shared<TSVGDocument>();
            embedded->LoadEmbedded(*content, GetDocument().GetEmbeddingDepth() + 1);
            FEmbedded = std::move(embedded);
        } else
            Refuse(name, value);
    } catch (const EVZError&) {
        Refuse(name, value);
    }
    Changed(TSVGChangeKind::Shape);
    return true;
}

void TSVGImage::WriteAttributes(IAttributeSink& sink) const {
    TSVGViewElement::WriteAttributes(sink);
    if (!FHref.empty()) sink.Put("xlink:href", FHref);
}

std::unique_ptr<TSVGElement> TSVGImage::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGImage>(document);
}

void TSVGImage::CopyFrom(const TSVGElement& source) {
    TSVGViewElement::CopyFrom(source);
    const auto& other = static_cast<const TSVGImage&>(source);
    FHref = other.FHref;
    FBitmap = other.FBitmap;
    FEmbedded = other.FEmbedded;
}

} // namespace Vz
