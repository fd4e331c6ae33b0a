#pragma once

#include "tavro/instruments/Publish.h"
#include "tavro/instruments/ScaleInstrument.h"

namespace Vz {

/// The rows of a Scale. The ends stand before the value, so that a stream does not clamp it.
template <const TScale& Scale, TQuantity Quantity = TQuantity::Value> constexpr auto ScaleProps() {
    using T = TVZCustomScaleInstrument;
    return std::array{
        Prop<&T::GetMin, &T::SetMin, &T::IsMinStored>("Min", Scale.Min),
        Prop<&T::GetMax, &T::SetMax, &T::IsMaxStored>("Max", Scale.Max),
        Main(Prop<&T::GetValue, &T::SetValue, &T::IsValueStored>("Value", Scale.Value), Quantity),
    };
}

} // namespace Vz
