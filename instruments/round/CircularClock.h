#pragma once

#include "instruments/CircularGauge.h"

namespace Vz {

/// A round clock with three hands and Roman numerals. It shows the time that it is given.
class TVZCircularClock final : public TCreatable<TVZCircularClock, TVZCustomCircularGauge> {
public:
    static constexpr std::string_view TypeName = "TVZCircularClock";
    using TCreatable::TCreatable;

    std::span<const TProp> GetPropTable() const override;

protected:
    const TGaugeSetup& GetSetup() const override { return Setup; }

private:
    static constexpr TGaugeSetup Setup{
        .Labels = "XII\r\nI\r\nII\r\nIII\r\nIV\r\nV\r\nVI\r\nVII\r\nVIII\r\nIX\r\nX\r\nXI",
        .ShowsTime = true,
    };
};

} // namespace Vz
