#include "tavro/instruments/meters/Level.h"

#include "tavro/instruments/Editing.h"

#include <cmath>

namespace Vz {

void TVZCustomLevel::Construct() {
    SetDefaultScale(DefaultScale);
    TVZCustomScaleInstrument::Construct();
}

void TVZCustomLevel::ReadGeometry() {
    const auto* const level = Find<TSVGGraphicElement>(GetLevelId());
    if (!level) return;
    const TRectF box = level->GetBounds();
    FLevelMatrix = level->GetMatrix();
    FLevelTop = box.Top;
    FLevelHeight = box.Height();
}

void TVZCustomLevel::DoInitializeGauge() {
    TVZCustomScaleInstrument::DoInitializeGauge();
    UpdateLevel();
}

void TVZCustomLevel::UpdateLevel() {
    auto* const level = Find<TSVGGraphicElement>(GetLevelId());
    if (!level) return;
    const double share = (double(GetValue()) - GetMin()) / (double(GetMax()) - GetMin());
    const float bottom = FLevelTop + FLevelHeight;
    if (std::isfinite(share))
        EditDocument([&] {
            TMatrix matrix = VZMatrixMultiply(CreateTranslateVZMatrix(0, -bottom),
                                              CreateScaleVZMatrix(1, static_cast<float>(share)));
            matrix = VZMatrixMultiply(matrix, CreateTranslateVZMatrix(0, bottom));
            level->SetMatrix(VZMatrixMultiply(matrix, FLevelMatrix));
            EdgeMoved(bottom - FLevelHeight * share);
        });
    Invalidate();
}

TReach TVZCustomLevel::GetScaleReach() const { return TReach::ActiveElement; }

} // namespace Vz
