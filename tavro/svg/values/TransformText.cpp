#include "tavro/svg/values/TransformText.h"

#include "tavro/svg/values/Scan.h"
#include "tavro/svg/values/Types.h"

#include <array>
#include <cmath>
#include <numbers>

namespace Vz {
namespace {

/// At most six figures of one function.
struct TFigures6 {
    std::array<double, 6> Value{};
    std::size_t Count = 0;
    double Or(std::size_t index, double byDefault) const { return index < Count ? Value[index] : byDefault; }
};

constexpr double Radians(double degrees) { return degrees * std::numbers::pi / 180; }

/// The turn by degrees; quarter turns are exact, so that they keep right angles right.
TAffine TurnBy(double degrees) {
    const double turn = std::fmod(degrees, 360);
    if (std::fmod(turn, 90) != 0) return TAffine::Rotation(Radians(turn));
    static constexpr double Sines[] = {0, 1, 0, -1};
    const int quarter = (static_cast<int>(turn / 90) + 4) % 4;
    const double s = Sines[quarter];
    const double c = Sines[(quarter + 1) % 4];
    return {c, s, -s, c, 0, 0};
}

TAffine Matrix(const TFigures6& f) {
    return {f.Value[0], f.Value[1], f.Value[2], f.Value[3], f.Value[4], f.Value[5]};
}
TAffine Translate(const TFigures6& f) { return TAffine::Translation(f.Value[0], f.Or(1, 0)); }
TAffine Scale(const TFigures6& f) { return TAffine::Scaling(f.Value[0], f.Or(1, f.Value[0])); }
TAffine Rotate(const TFigures6& f) {
    const TAffine turn = TurnBy(f.Value[0]);
    if (f.Count == 1) return turn;
    return TAffine::Translation(-f.Value[1], -f.Value[2])
        .Then(turn)
        .Then(TAffine::Translation(f.Value[1], f.Value[2]));
}
TAffine SkewX(const TFigures6& f) { return {1, 0, std::tan(Radians(f.Value[0])), 1, 0, 0}; }
TAffine SkewY(const TFigures6& f) { return {1, std::tan(Radians(f.Value[0])), 0, 1, 0, 0}; }

/// One transform function: the numbers of figures that it takes, and which of them are angles ('a'), lengths
/// ('l') or plain numbers ('n').
struct TRow {
    std::string_view Name;
    std::size_t Least;
    std::size_t Most;
    std::string_view Kinds;
    TAffine (*Make)(const TFigures6&);
};
constexpr TRow Rows[] = {
    {"matrix", 6, 6, "nnnnll", Matrix}, {"translate", 1, 2, "ll", Translate}, {"scale", 1, 2, "nn", Scale},
    {"rotate", 1, 3, "all", Rotate},    {"skewX", 1, 1, "a", SkewX},          {"skewY", 1, 1, "a", SkewY},
};

/// A number with an absolute unit, in user units.
std::optional<double> AbsoluteLength(TScanner& scanner) {
    const auto length = scanner.Length();
    if (!length) return std::nullopt;
    switch (length->GetUnit()) {
    case TSVGUnit::Number:
    case TSVGUnit::Px:
    case TSVGUnit::Cm:
    case TSVGUnit::Mm:
    case TSVGUnit::In:
    case TSVGUnit::Pt:
    case TSVGUnit::Pc:
    case TSVGUnit::Q:
        return length->Resolve(TAxis::Other, {});
    default:
        return std::nullopt;
    }
}

std::optional<double> Figure(TScanner& scanner, char kind) {
    if (kind == 'a') return scanner.Angle();
    return kind == 'l' ? AbsoluteLength(scanner) : scanner.Number();
}

std::optional<TAffine> OneFunction(TScanner& scanner) {
    const auto function = scanner.Function(true);
    if (!function) return std::nullopt;
    for (const TRow& row : Rows) {
        if (!EqualsNoCase(function->Name, row.Name)) continue;
        TFigures6 figures;
        TScanner inside{Trimmed(function->Arguments)};
        while (!inside.AtEnd()) {
            if (figures.Count == row.Most) return std::nullopt;
            const auto value = Figure(inside, row.Kinds[figures.Count]);
            if (!value) return std::nullopt;
            figures.Value[figures.Count++] = *value;
            if (inside.SkipCommaBlanks() && inside.AtEnd()) return std::nullopt;
        }
        const bool halfCentre = row.Make == Rotate && figures.Count == 2;
        if (figures.Count < row.Least || halfCentre) return std::nullopt;
        return row.Make(figures);
    }
    return std::nullopt;
}

} // namespace

std::optional<TAffine> ParseTransform(std::string_view text) {
    TScanner scanner{Trimmed(text)};
    TAffine total;
    if (EqualsNoCase(scanner.Text, "none")) return total;
    while (!scanner.AtEnd()) {
        const auto next = OneFunction(scanner);
        if (!next) return std::nullopt;
        total = next->Then(total);
        if (!total.IsFinite()) return std::nullopt;
        bool comma = false;
        while (scanner.SkipCommaBlanks())
            comma = true;
        if (comma && scanner.AtEnd()) return std::nullopt;
    }
    return total;
}

std::string TransformText(const TAffine& transform) {
    const double figures[] = {transform.A, transform.B, transform.C, transform.D, transform.E, transform.F};
    std::string text;
    for (const double figure : figures) {
        text += text.empty() ? "matrix(" : " ";
        text += NumberText(figure);
    }
    return text + ")";
}

} // namespace Vz
