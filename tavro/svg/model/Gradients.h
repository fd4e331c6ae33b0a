#pragma once

#include "tavro/svg/model/CopyOnWrite.h"
#include "tavro/svg/model/Element.h"
#include "tavro/svg/model/Units.h"

#include <optional>

namespace Vz {

struct TPaint;
struct TRampStop;
enum class TSpread : std::uint8_t;

/// One stop of a gradient.
class TSVGGradientStop final : public TSVGElement {
public:
    explicit TSVGGradientStop(TSVGDocument& document)
        : TSVGElement(document, TSVGTag::Stop) {}

    /// The stop's brush; its colour is the stop's colour with its opacity as alpha.
    TSVGBrush GetStopBrush() { return {*this, TSVGStyleProperty::StopColor, TSVGStyleProperty::StopOpacity}; }
    /// The same colour after inheritance.
    TVZGPColor GetStopColor() const;
    /// 0..1, default 0; clamped.
    float GetOffset() const { return FOffset; }
    void SetOffset(float value);
    /// A place where code keeps a colour beside the live one (0 at first).
    TVZGPColor GetSavedColor() const { return FSavedColor; }
    void SetSavedColor(TVZGPColor value) { FSavedColor = value; }

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
    void CopyFrom(const TSVGElement& source) override;

private:
    float FOffset = 0;
    TVZGPColor FSavedColor = 0;
};

/// A linear or radial gradient: an ordered list of stops, its own or those of the gradient that it refers to.
class TSVGCustomGradient : public TSVGElement {
public:
    /// The lengths by their names in SVG.
    enum class TPart : std::uint8_t { X1, Y1, X2, Y2, CX, CY, R, FX, FY, FR, Count };

    /// How many stops are its own.
    std::size_t GetStopCount() const;
    /// Its own stop, 0 first. Raises EArgumentOutOfRange.
    TSVGGradientStop& GetStop(std::size_t index) const;

    /// The gradient that lends what this one does not say; null where there is none.
    const TSVGCustomGradient* GetTemplate() const;
    /// A length that the gradient says itself; nothing where it leaves it to its template.
    std::optional<TSVGLength> GetLength(TPart part) const;

    /// The paint of a shape that has this box and length basis; nothing where the gradient paints nothing
    /// (SVG 1.1, 13.2). A gradient of one stop is a colour. `opacity` 0..1 is multiplied in.
    std::optional<TPaint> MakePaint(const TRectD& box, const TLengthBasis& basis, double opacity,
                                    bool enabled) const;

    bool ReadAttribute(std::string_view name, std::string_view value) override;
    void WriteAttributes(IAttributeSink& sink) const override;

protected:
    using TSVGElement::TSVGElement;
    void CopyFrom(const TSVGElement& source) override;
    void MakeLasting() override;

private:
    std::vector<TRampStop> MakeStops(bool enabled) const;

    /// What the gradient says itself, its stops apart.
    struct TOwn {
        std::string Reference;
        std::optional<TSVGLength> Lengths[6];
        std::optional<TSVGUnits> Units;
        std::optional<TSpread> Spread;
        std::optional<TAffine> Transform;
    };
    TCopyOnWrite<TOwn> FOwn;
};

class TSVGLinearGradient final : public TSVGCustomGradient {
public:
    explicit TSVGLinearGradient(TSVGDocument& document)
        : TSVGCustomGradient(document, TSVGTag::LinearGradient) {}

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
};

class TSVGRadialGradient final : public TSVGCustomGradient {
public:
    explicit TSVGRadialGradient(TSVGDocument& document)
        : TSVGCustomGradient(document, TSVGTag::RadialGradient) {}

protected:
    std::unique_ptr<TSVGElement> NewAlike(TSVGDocument& document) const override;
};

} // namespace Vz
