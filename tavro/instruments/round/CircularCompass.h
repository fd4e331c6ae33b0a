#pragma once

#include "tavro/instruments/CircularGauge.h"
#include "tavro/instruments/Heading.h"

namespace Vz {

/// A round compass: its dial, its markers and letters, or its one hand turns to an angle, in degrees, 0 to
/// 360. The dial carries N, E, S, W and a star. While a face turns the hand points up.
class TVZCircularCompass : public TCreatable<TVZCircularCompass, TVZCustomCircularGauge>,
                           public THeading<TVZCircularCompass> {
public:
    static constexpr std::string_view TypeName = "TVZCircularCompass";
    using TCreatable::TCreatable;

    /// What the compass shows, in degrees clockwise, held in 0..360; not-a-number is ignored. Default 0. It
    /// is the gauge's value: a change raises OnChange.
    float GetAngle() const { return GetValue(); }
    using THeading::SetAngle;
    void SetAngle(float value) { SetValue(value); }
    /// What turns: the hand, markers and labels, or the whole dial. Default cmpFaceNRose. The part that
    /// turned until now goes back upright; where the angle is not 0, that and the new part's turning raise
    /// OnChange, so twice.
    TCompassMovablePart GetRotate() const { return FRotate; }
    void SetRotate(TCompassMovablePart value);

    std::span<const TProp> GetPropTable() const override;
    /// Turns what Rotate says; a face by the angle, from how it is drawn.
    void UpdateHands() override;

protected:
    void Construct() override;
    const TGaugeSetup& GetGaugeSetup() const override { return Setup; }
    /// What turns.
    std::string_view GetActiveElementId() const override;
    /// Lays the hand, which the artwork draws to nine o'clock, to twelve.
    void ReadGeometry() override;

private:
    static constexpr TGaugeSetup Setup{
        .Max = 360,
        .MajorMarkers = 4,
        .MinorMarkers = 3,
        .Hands = {THand::ghBig},
        .Labels = "N\r\nE\r\nS\r\nW",
        .Decoration = TDecoration::dcStar,
        .BigHandColor = 0xFFFF0000,
    };

    TCompassMovablePart FRotate = TCompassMovablePart::cmpFaceNRose;
};

} // namespace Vz
