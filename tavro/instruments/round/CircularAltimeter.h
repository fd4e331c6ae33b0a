#pragma once

#include "tavro/instruments/CircularGauge.h"

#include <limits>

namespace Vz {

/// A round altimeter with three hands that count decades: the thin hand turns once in 1,000 units, the big
/// one in 10,000, the little one in 100,000. Value is in feet, or in whatever the texts say, from 0 up.
class TVZCircularAltimeter : public TCreatable<TVZCircularAltimeter, TVZCustomCircularGauge> {
public:
    static constexpr std::string_view TypeName = "TVZCircularAltimeter";
    using TCreatable::TCreatable;

    std::span<const TProp> GetPropTable() const override;
    /// Fractions of a unit do not count; above 1,000,000 the little hand stays at 360 degrees.
    void UpdateHands() override;

protected:
    const TGaugeSetup& GetGaugeSetup() const override { return Setup; }
    /// The digits of a decade.
    double GetLabelNumber(int index) const override { return index; }

private:
    static constexpr TGaugeSetup Setup{
        .Caption = "Altimeter",
        .DetailText = "Feet",
        .Max = std::numeric_limits<float>::max(),
        .MajorMarkers = 10,
    };
};

} // namespace Vz
