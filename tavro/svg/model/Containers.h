#pragma once

#include "tavro/svg/model/Element.h"

#include <optional>

namespace Vz {

/// An element that draws its children: g, and by their tags defs (never drawn), switch, a.
class TSVGGroup : public TSVGGraphicElement {
public:
    explicit TSVGGroup(TSVGDocument& document, TSVGTag tag = TSVGTag::G);

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
};

/// A view box (SVG 1.1, 7.7).
struct TSVGViewBox {
    double X = 0, Y = 0, Width = 0, Height = 0;
    friend bool operator==(const TSVGViewBox&, const TSVGViewBox&) = default;
};

/// The map from a view box into the area (0, 0, width, height).
TAffine ViewBoxMap(const TSVGViewBox& box, const TSVGPreserveAspectRatio& ratio, double width, double height);
/// Reads a viewBox attribute; nothing where it is none or has no extent.
std::optional<TSVGViewBox> ParseViewBox(std::string_view text);

/// An element with a viewport of its own: svg, symbol, marker and pattern share these attributes.
class TSVGViewElement : public TSVGGroup {
public:
    const std::optional<TSVGViewBox>& GetViewBox() const { return FViewBox; }
    /// One without extent, or with figures that are not finite, is refused (nothing happens).
    void SetViewBox(const std::optional<TSVGViewBox>& value);
    /// Nothing where the element says none.
    const std::optional<TSVGPreserveAspectRatio>& GetOwnAspectRatio() const { return FAspectRatio; }
    /// x, y, width, height; width and height are absent unless given.
    const TSVGLength& GetX() const { return FX; }
    const TSVGLength& GetY() const { return FY; }
    const std::optional<TSVGLength>& GetWidthLength() const { return FWidth; }
    const std::optional<TSVGLength>& GetHeightLength() const { return FHeight; }
    void SetWidthLength(const std::optional<TSVGLength>& value);
    void SetHeightLength(const std::optional<TSVGLength>& value);

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    using TSVGGroup::TSVGGroup;
    void CopyFrom(const TSVGElement& source) override;

private:
    std::optional<TSVGViewBox> FViewBox;
    std::optional<TSVGPreserveAspectRatio> FAspectRatio;
    TSVGLength FX, FY;
    std::optional<TSVGLength> FWidth, FHeight;
};

/// An svg element inside of a document, or a symbol.
class TSVGView final : public TSVGViewElement {
public:
    TSVGView(TSVGDocument& document, TSVGTag tag);

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
};

/// Draws another element of the document in its own place.
class TSVGUse final : public TSVGViewElement {
public:
    explicit TSVGUse(TSVGDocument& document);
    /// The id that it refers to.
    const std::string& GetReference() const { return FReference; }
    void SetReference(std::string_view id);
    /// The referenced element; null where there is none.
    TSVGElement* GetTarget() const;

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
    void CopyFrom(const TSVGElement& source) override;

private:
    std::string FReference;
};

} // namespace Vz
