#include "tavro/instruments/round/CircularAltimeter.h"

#include "tavro/instruments/CircularGaugePublish.h"
#include "tavro/instruments/Editing.h"

#include <cmath>

namespace Vz {

namespace {

/// Above it the little hand no longer moves.
constexpr float LittleHandLimit = 1000000;

/// The angle, in degrees, of a hand that turns once in `turn` units.
float DecadeAngle(double units, double turn) {
    return static_cast<float>(std::fmod(units, turn) / turn * 360);
}

} // namespace

std::span<const TProp> TVZCircularAltimeter::GetPropTable() const {
    using T = TVZCircularAltimeter;
    static constexpr auto Rows = PublishGauge<Setup>(std::array{
        Main(Prop<&T::GetValue, &T::SetValue, &T::IsDefaultValue>("Value", Setup.Value), TQuantity::Height),
        Prop<&T::GetHands, &T::SetHands, &T::IsHandsStored>("Hands", Setup.Hands),
    });
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

void TVZCircularAltimeter::UpdateHands() {
    const double units = std::trunc(double(GetValue()));
    EditDocument([&] {
        DoUpdateElement("ThinHand", DecadeAngle(units, 1000));
        DoUpdateElement("BigHand", DecadeAngle(units, 10000));
        DoUpdateElement("LittleHand", GetValue() > LittleHandLimit ? 360 : DecadeAngle(units, 100000));
    });
    Invalidate();
}

} // namespace Vz
