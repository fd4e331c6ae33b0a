#include "tavro/svg/GraphicsFactory.h"

#include "tavro/runtime/Exceptions.h"
#include "tavro/svg/model/Shapes.h"

#include <cassert>
#include <cmath>
#include <numbers>
#include <utility>

namespace Vz {

namespace {

bool IsFinite(const TMatrix& m) {
    return std::isfinite(m.M11) && std::isfinite(m.M12) && std::isfinite(m.M21) && std::isfinite(m.M22) &&
           std::isfinite(m.M31) && std::isfinite(m.M32);
}

TMatrix TurnStep(const TPointF& center, float angleDeg) {
    return CreateRotationVZMatrix(center, angleDeg * std::numbers::pi_v<float> / 180.0f);
}

void Repeat(TVZPathData& pathData, const TMatrix& step, int count) {
    if (count <= 0 || !IsFinite(step)) return;
    const TAffine affine = TAffine::FromMatrix(step);
    TFigures copy = pathData.GetFigures();
    TFigures all = copy;
    for (int i = 0; i < count; ++i) {
        if (affine != TAffine{}) copy.Transform(affine);
        all.Append(copy);
    }
    pathData.SetFigures(std::move(all));
}

void Repeat(TSVGPath& path, const TMatrix& step, int count) {
    if (!IsFinite(step)) return;
    TSVGPath* current = &path;
    for (int i = 0; i < count; ++i) {
        current = dynamic_cast<TSVGPath*>(&current->CloneBeside());
        if (!current) throw EInvalidCast("the clone of a path is no path");
        current->GetData().ApplyMatrix(step);
    }
}

} // namespace

void TSVGGraphicsFactory::Duplicate(TVZPathData* pathData, const TPointF& center, float angleDeg, int count) {
    assert(pathData);
    Repeat(*pathData, TurnStep(center, angleDeg), count);
}

void TSVGGraphicsFactory::Duplicate(TVZPathData* pathData, float dx, float dy, int count) {
    assert(pathData);
    Repeat(*pathData, CreateTranslateVZMatrix(dx, dy), count);
}

void TSVGGraphicsFactory::Duplicate(TSVGPath* path, const TPointF& center, float angleDeg, int count) {
    assert(path);
    Repeat(*path, TurnStep(center, angleDeg), count);
}

void TSVGGraphicsFactory::Duplicate(TSVGPath* path, float dx, float dy, int count) {
    assert(path);
    Repeat(*path, CreateTranslateVZMatrix(dx, dy), count);
}

} // namespace Vz
