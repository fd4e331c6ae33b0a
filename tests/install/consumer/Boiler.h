#pragma once

#include <tavro/Vz.Tavro.Instruments.h>

namespace Plant {

/// An instrument of somebody else's, with an artwork of its own: how full a boiler is.
class TBoiler : public Vz::TCreatable<TBoiler, Vz::TVZSVGCustomInstrument> {
public:
    static constexpr std::string_view TypeName = "TBoiler";
    using TCreatable::TCreatable;

    /// In per cent, 0..100, clamped. Default 0.
    double GetLevel() const { return FLevel; }
    void SetLevel(double value);

    std::span<const Vz::TProp> GetPropTable() const override;

protected:
    const Vz::TInstrumentSetup& GetSetup() const override;

private:
    double FLevel = 0;
};

} // namespace Plant
