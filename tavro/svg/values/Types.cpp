#include "tavro/svg/values/Types.h"

#include "tavro/svg/values/Scan.h"

#include <cmath>
#include <iterator>

namespace Vz {
namespace {

/// Pixels to the inch (CSS Values 3, 5.2).
constexpr double Inch = 96;

/// One unit: its name, and its size where that does not depend on anything (in pixels).
struct TUnitRow {
    TSVGUnit Unit;
    std::string_view Name;
    double Pixels = 0;
};
constexpr TUnitRow Units[] = {
    {TSVGUnit::Number, "", 1},
    {TSVGUnit::Percent, "%"},
    {TSVGUnit::Em, "em"},
    {TSVGUnit::Ex, "ex"},
    {TSVGUnit::Px, "px", 1},
    {TSVGUnit::Cm, "cm", Inch / 2.54},
    {TSVGUnit::Mm, "mm", Inch / 25.4},
    {TSVGUnit::In, "in", Inch},
    {TSVGUnit::Pt, "pt", Inch / 72},
    {TSVGUnit::Pc, "pc", Inch / 6},
    {TSVGUnit::Q, "Q", Inch / 101.6},
    {TSVGUnit::Ch, "ch"},
    {TSVGUnit::Rem, "rem"},
    {TSVGUnit::Vw, "vw"},
    {TSVGUnit::Vh, "vh"},
    {TSVGUnit::Vmin, "vmin"},
    {TSVGUnit::Vmax, "vmax"},
};
static_assert(std::size(Units) == static_cast<std::size_t>(TSVGUnit::Vmax) + 1);

constexpr const TUnitRow& RowOf(TSVGUnit unit) { return Units[static_cast<std::size_t>(unit)]; }

double PercentBasis(TAxis axis, const TLengthBasis& basis) {
    switch (axis) {
    case TAxis::X:
        return basis.ViewWidth;
    case TAxis::Y:
        return basis.ViewHeight;
    default:
        return std::hypot(basis.ViewWidth, basis.ViewHeight) / std::sqrt(2.0);
    }
}

/// One unit in user units.
double UnitSize(TSVGUnit unit, TAxis axis, const TLengthBasis& basis) {
    switch (unit) {
    case TSVGUnit::Percent:
        return PercentBasis(axis, basis) / 100;
    case TSVGUnit::Em:
        return basis.FontSize;
    case TSVGUnit::Ex:
        return basis.XHeight > 0 ? basis.XHeight : basis.FontSize / 2;
    case TSVGUnit::Ch:
        return basis.FontSize / 2;
    case TSVGUnit::Rem:
        return basis.RootFontSize;
    case TSVGUnit::Vw:
        return basis.ViewWidth / 100;
    case TSVGUnit::Vh:
        return basis.ViewHeight / 100;
    case TSVGUnit::Vmin:
        return std::fmin(basis.ViewWidth, basis.ViewHeight) / 100;
    case TSVGUnit::Vmax:
        return std::fmax(basis.ViewWidth, basis.ViewHeight) / 100;
    default:
        return RowOf(unit).Pixels;
    }
}

/// The words of preserveAspectRatio, by TSVGAlign.
constexpr std::string_view AlignNames[] = {"none",     "xMinYMin", "xMidYMin", "xMaxYMin", "xMinYMid",
                                           "xMidYMid", "xMaxYMid", "xMinYMax", "xMidYMax", "xMaxYMax"};

} // namespace

void TSVGLength::SetAsUnit(TSVGUnit unit, float value) {
    if (!std::isfinite(value)) return;
    FUnit = unit;
    FValue = value;
}

bool TSVGLength::IsAbsolute() const {
    switch (FUnit) {
    case TSVGUnit::Number:
    case TSVGUnit::Px:
    case TSVGUnit::Cm:
    case TSVGUnit::Mm:
    case TSVGUnit::In:
    case TSVGUnit::Pt:
    case TSVGUnit::Pc:
    case TSVGUnit::Q:
        return true;
    default:
        return false;
    }
}

double TSVGLength::Resolve(TAxis axis, const TLengthBasis& basis) const {
    return FValue * UnitSize(FUnit, axis, basis);
}

bool TSVGLength::Parse(std::string_view text) {
    TScanner scanner{Trimmed(text)};
    const auto value = scanner.Number();
    if (!value) return false;
    for (const TUnitRow& row : Units) {
        if (!EqualsNoCase(scanner.Text, row.Name)) continue;
        FUnit = row.Unit;
        FValue = *value;
        return true;
    }
    return false;
}

std::string TSVGLength::ToText() const { return NumberText(FValue).append(RowOf(FUnit).Name); }

bool TSVGPreserveAspectRatio::Parse(std::string_view text) {
    TScanner scanner{Trimmed(text)};
    std::string_view word = scanner.Word();
    if (word == "defer") {
        scanner.SkipBlanks();
        word = scanner.Word();
    }
    scanner.SkipBlanks();
    const std::string_view fit = scanner.Word();
    if (!scanner.AtEnd() || !(fit.empty() || fit == "meet" || fit == "slice")) return false;
    for (std::size_t i = 0; i < std::size(AlignNames); ++i) {
        if (word != AlignNames[i]) continue;
        FAlign = static_cast<TSVGAlign>(i);
        FSlice = fit == "slice";
        return true;
    }
    return false;
}

std::string TSVGPreserveAspectRatio::ToText() const {
    const std::string align(AlignNames[static_cast<std::size_t>(FAlign)]);
    return FSlice ? align + " slice" : align;
}

} // namespace Vz
