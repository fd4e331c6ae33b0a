#include "tavro/instruments/round/CircularClock.h"

#include "tavro/instruments/CircularGaugeProps.h"

namespace Vz {

std::span<const TProp> TVZCircularClock::GetPropTable() const {
    using T = TVZCircularClock;
    static constexpr auto Rows = PublishGauge<Setup>(std::array{
        Prop<&T::GetTime, &T::SetTime, &T::IsTimeStored>("Time", TDateTime{}),
        Prop<&T::GetHands, &T::SetHands, &T::IsHandsStored>("Hands", Setup.Hands),
        GaugeSizeRows[0],
        GaugeSizeRows[1],
    });
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

} // namespace Vz
