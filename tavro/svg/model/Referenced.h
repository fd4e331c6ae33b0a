#pragma once

#include "tavro/svg/model/Containers.h"
#include "tavro/svg/model/Units.h"

#include <optional>
#include <string>

namespace Vz {

/// Base of the elements that are drawn only through those that refer to them: their units.
class TSVGReferenced : public TSVGViewElement {
public:
    /// patternUnits, maskUnits, clipPathUnits, markerUnits, filterUnits; nothing where the element says none.
    std::optional<TSVGUnits> GetUnits() const { return FUnits; }

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    TSVGReferenced(TSVGDocument& document, TSVGTag tag)
        : TSVGViewElement(document, tag) {}
    void CopyFrom(const TSVGElement& source) override;
    /// Reads units as userSpaceOnUse, or the other value that the element may have; else refuses them.
    void ReadUnits(std::optional<TSVGUnits>& units, std::string_view name, std::string_view value);

private:
    std::optional<TSVGUnits> FUnits;
};

/// A clipPath.
class TSVGClipPath final : public TSVGReferenced {
public:
    static constexpr TSVGTag Tag = TSVGTag::ClipPath;
    explicit TSVGClipPath(TSVGDocument& document)
        : TSVGReferenced(document, Tag) {}

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
};

/// A marker: what stands on the vertices of shapes. Its width and height are markerWidth and markerHeight.
class TSVGMarker final : public TSVGReferenced {
public:
    static constexpr TSVGTag Tag = TSVGTag::Marker;
    explicit TSVGMarker(TSVGDocument& document)
        : TSVGReferenced(document, Tag) {}

    const TSVGLength& GetRefX() const { return FRefX; }
    const TSVGLength& GetRefY() const { return FRefY; }
    /// Degrees, default 0; nothing: along the path.
    std::optional<double> GetOrient() const { return FOrient; }
    /// Turned about at the start of the path.
    bool GetOrientReverse() const { return FOrientReverse; }

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
    void CopyFrom(const TSVGElement& source) override;

private:
    bool ReadOrient(std::string_view value);

    TSVGLength FRefX, FRefY;
    std::optional<double> FOrient = 0.0;
    bool FOrientReverse = false;
};

/// Base of the elements that work within a rectangle, with content in units of its own.
class TSVGRegion : public TSVGReferenced {
public:
    /// patternContentUnits, maskContentUnits, primitiveUnits; nothing where the element says none.
    std::optional<TSVGUnits> GetContentUnits() const { return FContentUnits; }
    /// x and y; nothing where the element says none.
    const std::optional<TSVGLength>& GetOwnX() const { return FOwnX; }
    const std::optional<TSVGLength>& GetOwnY() const { return FOwnY; }

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    using TSVGReferenced::TSVGReferenced;
    void CopyFrom(const TSVGElement& source) override;
    /// The element that lends what this one does not say: of the same tag, in the document; else null.
    const TSVGElement* FindTemplate() const;

private:
    std::string FReference;
    std::optional<TSVGUnits> FContentUnits;
    std::optional<TSVGLength> FOwnX, FOwnY;
};

/// A mask.
class TSVGMask final : public TSVGRegion {
public:
    static constexpr TSVGTag Tag = TSVGTag::Mask;
    explicit TSVGMask(TSVGDocument& document)
        : TSVGRegion(document, Tag) {}

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
};

/// A filter; its primitives are plain elements below it.
class TSVGFilter final : public TSVGRegion {
public:
    static constexpr TSVGTag Tag = TSVGTag::Filter;
    explicit TSVGFilter(TSVGDocument& document)
        : TSVGRegion(document, Tag) {}

    /// The filter that lends what this one does not say; null where there is none.
    const TSVGFilter* GetTemplate() const { return static_cast<const TSVGFilter*>(FindTemplate()); }

    bool ReadAttribute(std::string_view name, std::string_view value) override;

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
};

/// A pattern: a tile that fills and strokes are painted with.
class TSVGPattern final : public TSVGRegion {
public:
    static constexpr TSVGTag Tag = TSVGTag::Pattern;
    explicit TSVGPattern(TSVGDocument& document)
        : TSVGRegion(document, Tag) {}

    /// The pattern that lends what this one does not say; null where there is none.
    const TSVGPattern* GetTemplate() const { return static_cast<const TSVGPattern*>(FindTemplate()); }
    /// patternTransform; nothing where the pattern does not say it.
    const std::optional<TAffine>& GetPatternTransform() const { return FPatternTransform; }

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
    void CopyFrom(const TSVGElement& source) override;

private:
    std::optional<TAffine> FPatternTransform;
};

} // namespace Vz
