#include "tavro/instruments/round/CircularSpeedometer.h"

#include "tavro/instruments/CircularGaugePublish.h"
#include "tavro/instruments/Editing.h"

namespace Vz {

std::span<const TProp> TVZCircularSpeedometer::GetPropTable() const {
    static constexpr auto Rows =
        PublishGauge<Setup>(GaugeScaleRows<TVZCircularSpeedometer, Setup, TQuantity::Speed>);
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

} // namespace Vz
