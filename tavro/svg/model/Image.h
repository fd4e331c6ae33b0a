#pragma once

#include "tavro/svg/model/Containers.h"

namespace Vz {

class TVZGPBitmap;

/// A picture: PNG or SVG by data URI. Files are never opened.
class TSVGImage final : public TSVGViewElement {
public:
    explicit TSVGImage(TSVGDocument& document);
    ~TSVGImage() override;
    /// The decoded PNG; null where there is none.
    std::shared_ptr<const TVZGPBitmap> GetBitmap() const { return FBitmap; }
    /// The embedded SVG document; null where there is none.
    const TSVGDocument* GetEmbedded() const { return FEmbedded.get(); }

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
    void CopyFrom(const TSVGElement& source) override;

private:
    std::string FHref;
    std::shared_ptr<const TVZGPBitmap> FBitmap;
    std::shared_ptr<const TSVGDocument> FEmbedded;
};

} // namespace Vz
