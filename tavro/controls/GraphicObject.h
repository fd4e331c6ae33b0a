#pragma once

#include "tavro/graphics/Geometry.h"

namespace Vz {

/// A control with a transform and an opacity of its own. A child asks its parent for this interface, so that
/// the transforms of nested controls multiply.
class IVZGraphicObject {
public:
    virtual ~IVZGraphicObject() = default;

    /// The object's own transform, followed by those of all parents that offer this interface.
    virtual TMatrix GetAbsoluteMatrix() const = 0;
    /// Changes the caller's matrix by what the object adds of its own; may well leave it as it is.
    virtual void GetMatrix(TMatrix& matrix) const = 0;
    /// 0 (nothing is painted) .. 1.
    virtual float GetOpacity() const = 0;
    virtual void SetOpacity(float value) = 0;
};

} // namespace Vz
