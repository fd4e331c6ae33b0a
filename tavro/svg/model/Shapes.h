#pragma once

#include "tavro/graphics/PathData.h"
#include "tavro/svg/model/CopyOnWrite.h"
#include "tavro/svg/model/Element.h"

#include <array>

namespace Vz {

/// An element that draws one outline.
class TSVGShape : public TSVGGraphicElement {
public:
    /// The outline in the element's units; percentages and relative units refer to the basis.
    virtual TFigures MakeFigures(const TLengthBasis& basis) const = 0;
    /// What the outline is made of: where another element gives the same object it has the same outline. Null
    /// where nobody can know, as the outline depends on the basis or is empty.
    virtual std::shared_ptr<const void> ShareOutline() const { return nullptr; }
    /// The length that the author says the path has (SVG 1.1, 8.4); 0: none.
    double GetPathLength() const { return FPathLength; }

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    using TSVGGraphicElement::TSVGGraphicElement;
    void CopyFrom(const TSVGElement& source) override;

private:
    double FPathLength = 0;
};

/// A path. Its data can be edited in place; each change tells the document.
class TSVGPath final : public TSVGShape {
public:
    explicit TSVGPath(TSVGDocument& document);

    TVZPathData& GetData() { return FData; }
    const TVZPathData& GetData() const { return FData; }
    /// Copies the figures; null clears.
    void SetData(const TVZPathData* data);

    TFigures MakeFigures(const TLengthBasis& basis) const override;
    std::shared_ptr<const void> ShareOutline() const override { return FData.ShareFigures(); }
    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
    void CopyFrom(const TSVGElement& source) override;
    void MakeLasting() override;

private:
    TVZPathData FData;
};

/// A shape whose outline comes from a few lengths: rect, circle, ellipse or line.
class TSVGBasicShape final : public TSVGShape {
public:
    /// The lengths by their names in SVG; which ones count depends on the tag.
    enum class TPart : std::uint8_t { X, Y, Width, Height, RX, RY, CX, CY, R, X1, Y1, X2, Y2, Count };

    TSVGBasicShape(TSVGDocument& document, TSVGTag tag);

    /// A length of the shape; an absent radius of a rect or ellipse ("auto") is negative.
    TSVGLength GetLength(TPart part) const;
    void SetLength(TPart part, TSVGLength value);

    TFigures MakeFigures(const TLengthBasis& basis) const override;
    std::shared_ptr<const void> ShareOutline() const override;
    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
    void CopyFrom(const TSVGElement& source) override;
    void MakeLasting() override;

private:
    TCopyOnWrite<std::array<TSVGLength, 6>> FLengths;
};

/// A polyline or a polygon.
class TSVGPoly final : public TSVGShape {
public:
    TSVGPoly(TSVGDocument& document, TSVGTag tag);
    const std::vector<TPointD>& GetPoints() const { return FPoints; }

    TFigures MakeFigures(const TLengthBasis& basis) const override;
    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
    void CopyFrom(const TSVGElement& source) override;

private:
    std::vector<TPointD> FPoints;
};

} // namespace Vz
