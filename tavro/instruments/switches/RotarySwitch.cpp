#include "tavro/instruments/switches/RotarySwitch.h"

#include "tavro/instruments/CircularGaugePublish.h"
#include "tavro/instruments/Editing.h"

namespace Vz {

std::span<const TProp> TVZRotarySwitch::GetPropTable() const {
    using T = TVZRotarySwitch;
    static constexpr auto Rows = PublishGauge<Setup>(Publish(
        std::array{
            Main(Prop<&T::GetChecked, &T::SetChecked>("Checked", false), TQuantity::Switch),
            Prop<&T::GetValue, &T::SetValue, &T::IsDefaultValue>("Value", Setup.Value),
        },
        SizeProps<200, 200>()));
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

} // namespace Vz
