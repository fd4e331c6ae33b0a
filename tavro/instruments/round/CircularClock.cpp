#include "tavro/instruments/round/CircularClock.h"

#include "tavro/instruments/CircularGaugePublish.h"
#include "tavro/instruments/Editing.h"

namespace Vz {

std::span<const TProp> TVZCircularClock::GetPropTable() const {
    using T = TVZCircularClock;
    static constexpr auto Rows = PublishGauge<Setup>(Publish(
        std::array{
            Main(Prop<&T::GetTime, &T::SetTime, &T::IsTimeStored>("Time", TDateTime{}), TQuantity::TimeOfDay),
            Prop<&T::GetHands, &T::SetHands, &T::IsHandsStored>("Hands", Setup.Hands),
        },
        SizeProps<200, 200>()));
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

} // namespace Vz
