#pragma once

#include "tavro/svg/model/Element.h"

namespace Vz {

struct TSVGPicture;

/// An element that is kept but never drawn: title, desc, and the parts of filters, whose attributes are kept
/// as text.
class TSVGPlainElement final : public TSVGElement {
public:
    TSVGPlainElement(TSVGDocument& document, TSVGTag tag, std::string name);
    std::string_view GetTagName() const override { return FName; }
    /// The text inside (title, desc).
    const std::string& GetText() const { return FText; }
    void SetText(std::string text) { FText = std::move(text); }
    /// An attribute as it was written; null where there is none.
    const std::string* FindAttribute(std::string_view name) const;
    /// The picture that an feImage names by its URI; null where there is none.
    const std::shared_ptr<const TSVGPicture>& GetPicture() const { return FPicture; }

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
    void CopyFrom(const TSVGElement& source) override;

private:
    std::string FName;
    std::string FText;
    std::vector<std::pair<std::string, std::string>> FAttributes;
    std::shared_ptr<const TSVGPicture> FPicture;
};

} // namespace Vz
