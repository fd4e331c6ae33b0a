#pragma once

#include "tavro/svg/model/Containers.h"

namespace Vz {

class TVZGPBitmap;
struct TSVGPicture;

/// A picture: PNG or SVG by data URI. Files are never opened.
class TSVGImage final : public TSVGViewElement {
public:
    explicit TSVGImage(TSVGDocument& document);
    ~TSVGImage() override;
    /// The decoded PNG; null where there is none.
    std::shared_ptr<const TVZGPBitmap> GetBitmap() const;
    /// The embedded SVG document; null where there is none.
    const TSVGDocument* GetEmbedded() const;
    /// Shows what another element has read. Null: nothing.
    void SetPicture(std::shared_ptr<const TSVGPicture> picture);

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
    void CopyFrom(const TSVGElement& source) override;

private:
    std::shared_ptr<const TSVGPicture> FPicture;
};

} // namespace Vz
