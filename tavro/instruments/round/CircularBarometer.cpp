#include "tavro/instruments/round/CircularBarometer.h"

#include "tavro/instruments/CircularGaugePublish.h"
#include "tavro/instruments/Editing.h"

namespace Vz {

std::span<const TProp> TVZCircularBarometer::GetPropTable() const {
    static constexpr auto Rows =
        PublishGauge<Setup>(GaugeScaleRows<TVZCircularBarometer, Setup, TQuantity::Pressure>);
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

} // namespace Vz
