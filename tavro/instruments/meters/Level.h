#pragma once

#include "tavro/graphics/Geometry.h"
#include "tavro/instruments/ScaleInstrument.h"

namespace Vz {

/// Base of the instruments whose value squeezes a level upright towards its bottom edge: drawn full, it is
/// empty at Min and full at Max. The scale runs from 0 to 100 unless Min and Max say otherwise. An artwork
/// draws the level without a transform of its own.
class TVZCustomLevel : public TVZCustomScaleInstrument {
public:
    using TVZCustomScaleInstrument::TVZCustomScaleInstrument;

    void DoInitializeGauge() override;
    /// Scales the level to the value, keeping its bottom edge, and invalidates; on a scale of no extent it
    /// stays as it is. Nothing happens where the artwork has no level.
    virtual void UpdateLevel();

protected:
    static constexpr TScale DefaultScale{0, 100, 0};

    void Construct() override;
    void ReadGeometry() override;
    void ShowScale() override { UpdateLevel(); }
    void ShowValue() override { UpdateLevel(); }
    TReach GetScaleReach() const override;

    /// Id of what is scaled. The base's: the active element.
    virtual std::string_view GetLevelId() const { return GetActiveElementId(); }
    /// Told where the level's upper edge now is, y in artwork units. Runs inside a document's update. The
    /// base's does nothing.
    virtual void EdgeMoved(double y) {}

private:
    // The level as the artwork draws it, in artwork units.
    TMatrix FLevelMatrix;
    float FLevelTop = 0;
    float FLevelHeight = 0;
};

} // namespace Vz
