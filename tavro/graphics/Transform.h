#pragma once

#include "tavro/graphics/Geometry.h"
#include "tavro/runtime/Events.h"
#include "tavro/runtime/Object.h"

#include <functional>

namespace Vz {

/// A transform that an owner applies to its picture: a matrix, published as its text.
class TVZTransform : public TPersistent {
public:
    const TMatrix& GetMatrix() const { return FMatrix; }
    /// Sets the matrix; figures that are not finite are refused (nothing happens). OnChange follows a change.
    void SetMatrix(const TMatrix& matrix);
    /// Copies the matrix. Raises EInvalidCast where source is no transform.
    void Assign(const TPersistent& source) override;
    /// The matrix as SVG writes it, "matrix(a b c d e f)" (SVG 1.1, 7.6). FromText takes commas, too, and
    /// raises EConvertError for all else.
    std::string ToText() const override;
    void FromText(std::string_view text) override;
    /// The rectangle that the transform refers to, asked of the owner; empty where nobody answers.
    TRectF GetShapeRect();

    /// Raised after each change.
    TNotifyEvent OnChange;
    /// Fills the reference rectangle.
    std::function<void(TObject& sender, TRectF& rect)> OnShapeRect;

private:
    TMatrix FMatrix;
};

} // namespace Vz
