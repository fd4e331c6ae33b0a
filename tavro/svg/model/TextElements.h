#pragma once

#include "tavro/svg/model/CopyOnWrite.h"
#include "tavro/svg/model/Element.h"

#include <optional>
#include <vector>

namespace Vz {

/// A run of characters between the elements of a text.
class TSVGCharacters final : public TSVGElement {
public:
    explicit TSVGCharacters(TSVGDocument& document)
        : TSVGElement(document, TSVGTag::Characters) {}
    /// As it stands in the document, white space not yet collapsed. UTF-8.
    const std::string& GetText() const { return FText; }
    void SetText(std::string_view text);

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
    void CopyFrom(const TSVGElement& source) override;

private:
    std::string FText;
};

/// An element of text: text, tspan, textPath. Its content is characters and further text elements.
class TSVGCustomText : public TSVGGraphicElement {
public:
    /// A tspan, or a tref, in a document; the derived classes are the other elements.
    explicit TSVGCustomText(TSVGDocument& document, TSVGTag tag = TSVGTag::TSpan)
        : TSVGGraphicElement(document, tag) {}

    /// All characters inside, in order.
    std::string GetText() const;
    /// Replaces the content by these characters. UTF-8.
    void SetText(std::string_view text);

    /// The positions that the element gives its characters (SVG 1.1, 10.4): x, y, dx, dy in this order.
    const std::vector<TSVGLength>& GetPositions(int which) const { return FPlacing->Positions[which]; }
    const std::vector<double>& GetRotations() const { return FPlacing->Rotations; }
    const std::optional<TSVGLength>& GetTextLength() const { return FPlacing->TextLength; }
    bool GetAdjustGlyphs() const { return FPlacing->AdjustGlyphs; }

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
    void CopyFrom(const TSVGElement& source) override;
    void MakeLasting() override;

private:
    /// Where the characters go.
    struct TPlacing {
        std::vector<TSVGLength> Positions[4];
        std::vector<double> Rotations;
        std::optional<TSVGLength> TextLength;
        bool AdjustGlyphs = false;
    };
    TCopyOnWrite<TPlacing> FPlacing;
};

class TSVGText final : public TSVGCustomText {
public:
    explicit TSVGText(TSVGDocument& document)
        : TSVGCustomText(document, TSVGTag::Text) {}

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
};

/// Text that runs along a path.
class TSVGTextPath final : public TSVGCustomText {
public:
    explicit TSVGTextPath(TSVGDocument& document)
        : TSVGCustomText(document, TSVGTag::TextPath) {}

    /// The id of the path that the text runs along.
    const std::string& GetReference() const { return FReference; }
    void SetReference(std::string_view id);
    /// Where the text begins; per cent refer to the path's length. Default 0.
    const TSVGLength& GetStartOffset() const { return FStartOffset; }
    void SetStartOffset(TSVGLength value);

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
    void CopyFrom(const TSVGElement& source) override;

private:
    std::string FReference;
    TSVGLength FStartOffset;
};

} // namespace Vz
