#include "tavro/instruments/round/CircularCompass.h"

#include "tavro/instruments/CircularGaugePublish.h"
#include "tavro/instruments/Editing.h"

namespace Vz {

std::span<const TProp> TVZCircularCompass::GetPropTable() const {
    using T = TVZCircularCompass;
    constexpr void (T::*setAngle)(float) = &T::SetAngle;
    static constexpr auto Rows = PublishGauge<Setup>(std::array{
        Main(Prop<&T::GetAngle, setAngle>("Angle", 0), TQuantity::Heading),
        Prop<&T::GetRotate, &T::SetRotate>("Rotate", TCompassMovablePart::cmpFaceNRose),
        Prop<&T::GetHands, &T::SetHands, &T::IsHandsStored>("Hands", Setup.Hands),
    });
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

void TVZCircularCompass::Construct() {
    TCreatable::Construct();
    SetBigHandColor(Setup.BigHandColor);
}

std::string_view TVZCircularCompass::GetActiveElementId() const {
    switch (FRotate) {
    case TCompassMovablePart::cmpFace:
        return "MarkersAndLabels";
    case TCompassMovablePart::cmpFaceNRose:
        return "Dial";
    default:
        return TCreatable::GetActiveElementId();
    }
}

void TVZCircularCompass::ReadGeometry() {
    TCreatable::ReadGeometry();
    DoUpdateElement(FValueHandId, 0);
}

void TVZCircularCompass::UpdateHands() {
    const float angleDeg = GetValueAngle();
    EditDocument([&] {
        if (FRotate == TCompassMovablePart::cmpNeedle)
            DoUpdateElement(FValueHandId, angleDeg);
        else
            DoUpdateElement(GetActiveElementId(), angleDeg - 90); // a face is drawn upright, a hand to nine
    });
    Invalidate();
}

void TVZCircularCompass::SetRotate(TCompassMovablePart value) {
    if (value == FRotate) return;
    const float angle = GetAngle();
    SetAngle(0);
    FRotate = value;
    SetActiveSVGElement(Find<TSVGGraphicElement>(GetActiveElementId()));
    MarkBuffersStale();
    SetAngle(angle);
    Invalidate();
}

} // namespace Vz
