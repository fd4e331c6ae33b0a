#include "tavro/graphics/Transform.h"

#include "tavro/graphics/PathData.h"
#include "tavro/runtime/Exceptions.h"

#include <gtest/gtest.h>
#include <limits>

namespace Vz {
namespace {

TEST(Transform, TellsChangesOnly) {
    TVZTransform transform;
    int count = 0;
    transform.OnChange = [&](TObject& sender) {
        EXPECT_EQ(&sender, &transform);
        ++count;
    };
    transform.SetMatrix({});
    EXPECT_EQ(count, 0);
    transform.SetMatrix(CreateTranslateVZMatrix(1, 2));
    EXPECT_EQ(count, 1);
    transform.SetMatrix(CreateTranslateVZMatrix(1, 2));
    EXPECT_EQ(count, 1);
}

TEST(Transform, RefusesWhatIsNotFinite) {
    TVZTransform transform;
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()})
        for (float TMatrix::*part :
             {&TMatrix::M11, &TMatrix::M12, &TMatrix::M22, &TMatrix::M31, &TMatrix::M33}) {
            TMatrix matrix = CreateScaleVZMatrix(2, 2);
            matrix.*part = bad;
            transform.SetMatrix(matrix);
            EXPECT_TRUE(IsIdentityMatrix(transform.GetMatrix()));
        }
}

TEST(Transform, AsksItsOwnerForTheRectangle) {
    TVZTransform transform;
    EXPECT_EQ(transform.GetShapeRect(), TRectF{});
    transform.OnShapeRect = [](TObject&, TRectF& rect) { rect = {1, 2, 3, 4}; };
    EXPECT_EQ(transform.GetShapeRect(), (TRectF{1, 2, 3, 4}));
}

TEST(Transform, AssignCopiesTheMatrix) {
    TVZTransform transform, other;
    other.SetMatrix(CreateScaleVZMatrix(3, 4));
    transform.Assign(other);
    EXPECT_EQ(transform.GetMatrix(), CreateScaleVZMatrix(3, 4));
    const TVZPathData path;
    EXPECT_THROW(transform.Assign(path), EInvalidCast);
}

TEST(Transform, TextReadsBack) {
    TVZTransform transform, back;
    EXPECT_EQ(transform.ToText(), "matrix(1 0 0 1 0 0)");
    transform.SetMatrix(CreateRotationVZMatrix({10, 20}, 0.3f));
    back.FromText(transform.ToText());
    EXPECT_EQ(back.GetMatrix(), transform.GetMatrix());
    back.FromText("  matrix ( 1,2 , 3 4\t5,-6.5e0 ) ");
    EXPECT_EQ(back.ToText(), "matrix(1 2 3 4 5 -6.5)");
}

TEST(Transform, OtherTextIsRefused) {
    TVZTransform transform;
    transform.SetMatrix(CreateScaleVZMatrix(3, 4));
    for (const char* text :
         {"", "matrix", "matrix(", "matrix()", "matrix(1 2 3 4 5)", "matrix(1 2 3 4 5 6 7)", "scale(2)",
          "matrix(1 2 3 4 5 6", "matrix(1 2 3 4 5 6) x", "matrix(1 2 3 4 5 1e999)", "matrix(,1 2 3 4 5 6)"})
        EXPECT_THROW(transform.FromText(text), EConvertError) << text;
    EXPECT_EQ(transform.GetMatrix(), CreateScaleVZMatrix(3, 4));
}

} // namespace
} // namespace Vz
