#include "tavro/instruments/round/CircularFuelGauge.h"

#include "tavro/instruments/CircularGaugePublish.h"
#include "tavro/instruments/Editing.h"

namespace Vz {

std::span<const TProp> TVZCircularFuelGauge::GetPropTable() const {
    static constexpr auto Rows =
        PublishGauge<Setup>(GaugeScaleRows<TVZCircularFuelGauge, Setup, TQuantity::Supply>);
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

} // namespace Vz
