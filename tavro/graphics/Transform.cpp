#include "tavro/graphics/Transform.h"

#include "tavro/graphics/NumberText.h"
#include "tavro/runtime/Exceptions.h"

#include <algorithm>
#include <cmath>

namespace Vz {
namespace {

bool IsFinite(const TMatrix& m) {
    const float figures[] = {m.M11, m.M12, m.M13, m.M21, m.M22, m.M23, m.M31, m.M32, m.M33};
    return std::all_of(std::begin(figures), std::end(figures), [](float f) { return std::isfinite(f); });
}

} // namespace

void TVZTransform::SetMatrix(const TMatrix& matrix) {
    if (!IsFinite(matrix) || matrix == FMatrix) return;
    FMatrix = matrix;
    Raise(OnChange, *this);
}

void TVZTransform::Assign(const TPersistent& source) {
    const auto* const other = dynamic_cast<const TVZTransform*>(&source);
    if (other == nullptr) return TPersistent::Assign(source);
    SetMatrix(other->FMatrix);
}

std::string TVZTransform::ToText() const {
    std::string text = "matrix(";
    for (const float figure :
         {FMatrix.M11, FMatrix.M12, FMatrix.M21, FMatrix.M22, FMatrix.M31, FMatrix.M32}) {
        if (text.back() != '(') text += ' ';
        AppendNumber(text, figure);
    }
    return text += ')';
}

void TVZTransform::FromText(std::string_view text) {
    const char* p = text.data();
    const char* const end = p + text.size();
    const auto skip = [&p, end](std::string_view passed) {
        while (p != end && passed.find(*p) != std::string_view::npos)
            ++p;
    };
    constexpr std::string_view blanks = " \t\r\n", separators = ", \t\r\n", name = "matrix";
    skip(blanks);
    bool isGood = std::string_view(p, static_cast<std::size_t>(end - p)).starts_with(name);
    if (isGood) p += name.size();
    skip(blanks);
    isGood = isGood && p != end && *p++ == '(';
    double n[6] = {};
    for (double& number : n) {
        skip(&number == n ? blanks : separators);
        const char* const after = isGood ? ScanNumber(p, end, number) : p;
        isGood = after != p && std::isfinite(number);
        p = after;
    }
    skip(blanks);
    isGood = isGood && p != end && *p++ == ')';
    skip(blanks);
    if (!isGood || p != end) throw EConvertError("a transform is written as matrix(a b c d e f)");
    SetMatrix(TAffine{n[0], n[1], n[2], n[3], n[4], n[5]}.ToMatrix());
}

TRectF TVZTransform::GetShapeRect() {
    TRectF rect;
    Raise(OnShapeRect, *this, rect);
    return rect;
}

} // namespace Vz
