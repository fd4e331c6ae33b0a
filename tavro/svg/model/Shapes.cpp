#include "tavro/svg/model/Shapes.h"

#include "tavro/svg/model/Document.h"
#include "tavro/svg/values/Scan.h"

#include <algorithm>
#include <cmath>

namespace Vz {

// All shapes

bool TSVGShape::ReadAttribute(std::string_view name, std::string_view value) {
    if (name != "pathLength") return TSVGGraphicElement::ReadAttribute(name, value);
    const auto length = ParseNumber(value);
    if (length && *length >= 0)
        FPathLength = *length;
    else
        Refuse(name, value);
    return true;
}

void TSVGShape::WriteAttributes(IAttributeSink& sink) const {
    TSVGGraphicElement::WriteAttributes(sink);
    if (FPathLength > 0) sink.Put("pathLength", NumberText(FPathLength));
}

void TSVGShape::CopyFrom(const TSVGElement& source) {
    TSVGGraphicElement::CopyFrom(source);
    FPathLength = static_cast<const TSVGShape&>(source).FPathLength;
}

// Path

TSVGPath::TSVGPath(TSVGDocument& document)
    : TSVGShape(document, TSVGTag::Path) {
    FData.OnChange = [this](TObject&) { Changed(TSVGChangeKind::Shape); };
}

void TSVGPath::SetData(const TVZPathData* data) {
    if (data)
        FData.Assign(*data);
    else
        FData.Clear();
}

TFigures TSVGPath::MakeFigures(const TLengthBasis&) const { return FData.GetFigures(); }

bool TSVGPath::ReadAttribute(std::string_view name, std::string_view value) {
    if (name != "d") return TSVGShape::ReadAttribute(name, value);
    if (!FData.SetPathStringTolerant(value) && Trimmed(value) != "none") Refuse(name, value);
    return true;
}

void TSVGPath::WriteAttributes(IAttributeSink& sink) const {
    TSVGShape::WriteAttributes(sink);
    if (!FData.GetFigures().IsEmpty()) sink.Put("d", FData.GetPathString());
}

std::unique_ptr<TSVGElement> TSVGPath::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGPath>(document);
}

void TSVGPath::CopyFrom(const TSVGElement& source) {
    TSVGShape::CopyFrom(source);
    FData.AssignUntold(static_cast<const TSVGPath&>(source).FData);
}

void TSVGPath::MakeLasting() {
    TSVGShape::MakeLasting();
    FData.MakeLasting();
}

// Rect, circle, ellipse, line

namespace {

using TPart = TSVGBasicShape::TPart;

/// The lengths of each shape, in the order in which it keeps them.
struct TPartRow {
    TSVGTag Tag;
    TPart Part;
    std::string_view Name;
};
constexpr TPartRow PartRows[] = {
    {TSVGTag::Rect, TPart::X, "x"},         {TSVGTag::Rect, TPart::Y, "y"},
    {TSVGTag::Rect, TPart::Width, "width"}, {TSVGTag::Rect, TPart::Height, "height"},
    {TSVGTag::Rect, TPart::RX, "rx"},       {TSVGTag::Rect, TPart::RY, "ry"},
    {TSVGTag::Circle, TPart::CX, "cx"},     {TSVGTag::Circle, TPart::CY, "cy"},
    {TSVGTag::Circle, TPart::R, "r"},       {TSVGTag::Ellipse, TPart::CX, "cx"},
    {TSVGTag::Ellipse, TPart::CY, "cy"},    {TSVGTag::Ellipse, TPart::RX, "rx"},
    {TSVGTag::Ellipse, TPart::RY, "ry"},    {TSVGTag::Line, TPart::X1, "x1"},
    {TSVGTag::Line, TPart::Y1, "y1"},       {TSVGTag::Line, TPart::X2, "x2"},
    {TSVGTag::Line, TPart::Y2, "y2"},
};

constexpr TSVGLength AutoRadius{TSVGUnit::Number, -1};

bool IsRadius(TPart part) { return part == TPart::RX || part == TPart::RY; }

TAxis AxisOf(TPart part) {
    switch (part) {
    case TPart::X:
    case TPart::Width:
    case TPart::RX:
    case TPart::CX:
    case TPart::X1:
    case TPart::X2:
        return TAxis::X;
    case TPart::R:
        return TAxis::Other;
    default:
        return TAxis::Y;
    }
}

/// Calls f(slot, row) for each length of the tag's shape.
template <class F> void ForParts(TSVGTag tag, F f) {
    int slot = 0;
    for (const TPartRow& row : PartRows)
        if (row.Tag == tag) f(slot++, row);
}

} // namespace

TSVGBasicShape::TSVGBasicShape(TSVGDocument& document, TSVGTag tag)
    : TSVGShape(document, tag) {
    ForParts(tag, [this](int slot, const TPartRow& row) {
        if (IsRadius(row.Part)) FLengths.Edit()[slot] = AutoRadius;
    });
}

TSVGLength TSVGBasicShape::GetLength(TPart part) const {
    TSVGLength found = IsRadius(part) ? AutoRadius : TSVGLength{};
    ForParts(GetTag(), [&](int slot, const TPartRow& row) {
        if (row.Part == part) found = (*FLengths)[slot];
    });
    return found;
}

void TSVGBasicShape::SetLength(TPart part, TSVGLength value) {
    ForParts(GetTag(), [&](int slot, const TPartRow& row) {
        if (row.Part == part && !((*FLengths)[slot] == value)) {
            FLengths.Edit()[slot] = value;
            Changed(TSVGChangeKind::Shape);
        }
    });
}

std::shared_ptr<const void> TSVGBasicShape::ShareOutline() const {
    const bool isAbsolute = std::ranges::all_of(*FLengths, &TSVGLength::IsAbsolute);
    return isAbsolute ? FLengths.Share() : nullptr;
}

TFigures TSVGBasicShape::MakeFigures(const TLengthBasis& basis) const {
    const auto get = [&](TPart part) { return GetLength(part).Resolve(AxisOf(part), basis); };
    // A radius that is absent takes the other one's value (SVG 2, 7.4).
    const auto radii = [&](double& rx, double& ry) {
        const bool hasX = GetLength(TPart::RX).GetValue() >= 0;
        const bool hasY = GetLength(TPart::RY).GetValue() >= 0;
        rx = hasX ? get(TPart::RX) : hasY ? get(TPart::RY) : 0;
        ry = hasY ? get(TPart::RY) : rx;
    };
    TFigures figures;
    double rx = 0;
    double ry = 0;
    switch (GetTag()) {
    case TSVGTag::Rect: {
        const double width = get(TPart::Width);
        const double height = get(TPart::Height);
        radii(rx, ry);
        if (width > 0 && height > 0)
            figures.AddRect(get(TPart::X), get(TPart::Y), width, height, std::min(rx, width / 2),
                            std::min(ry, height / 2));
        break;
    }
    case TSVGTag::Circle:
        rx = get(TPart::R);
        if (rx > 0) figures.AddEllipse(get(TPart::CX), get(TPart::CY), rx, rx);
        break;
    case TSVGTag::Ellipse:
        radii(rx, ry);
        if (rx > 0 && ry > 0) figures.AddEllipse(get(TPart::CX), get(TPart::CY), rx, ry);
        break;
    default:
        figures.MoveTo(get(TPart::X1), get(TPart::Y1));
        figures.LineTo(get(TPart::X2), get(TPart::Y2));
        break;
    }
    return figures;
}

bool TSVGBasicShape::ReadAttribute(std::string_view name, std::string_view value) {
    bool known = false;
    ForParts(GetTag(), [&](int slot, const TPartRow& row) {
        if (row.Name != name) return;
        known = true;
        TSVGLength length;
        if (IsRadius(row.Part) && Trimmed(value) == "auto")
            SetLength(row.Part, AutoRadius);
        else if (length.Parse(value) && (length.GetValue() >= 0 || !IsRadius(row.Part)))
            SetLength(row.Part, length);
        else
            Refuse(name, value);
    });
    return known || TSVGShape::ReadAttribute(name, value);
}

void TSVGBasicShape::WriteAttributes(IAttributeSink& sink) const {
    TSVGShape::WriteAttributes(sink);
    ForParts(GetTag(), [&](int slot, const TPartRow& row) {
        const TSVGLength& length = (*FLengths)[slot];
        if (!(length == (IsRadius(row.Part) ? AutoRadius : TSVGLength{})))
            sink.Put(row.Name, length.ToText());
    });
}

std::unique_ptr<TSVGElement> TSVGBasicShape::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGBasicShape>(document, GetTag());
}

void TSVGBasicShape::CopyFrom(const TSVGElement& source) {
    TSVGShape::CopyFrom(source);
    FLengths = static_cast<const TSVGBasicShape&>(source).FLengths;
}

void TSVGBasicShape::MakeLasting() {
    TSVGShape::MakeLasting();
    FLengths.MakeLasting();
}

// Polyline, polygon

TSVGPoly::TSVGPoly(TSVGDocument& document, TSVGTag tag)
    : TSVGShape(document, tag) {}

TFigures TSVGPoly::MakeFigures(const TLengthBasis&) const {
    TFigures figures;
    if (FPoints.size() < 2) return figures;
    figures.MoveTo(FPoints[0].X, FPoints[0].Y);
    for (std::size_t i = 1; i < FPoints.size(); ++i)
        figures.LineTo(FPoints[i].X, FPoints[i].Y);
    if (GetTag() == TSVGTag::Polygon) figures.Close();
    return figures;
}

bool TSVGPoly::ReadAttribute(std::string_view name, std::string_view value) {
    if (name != "points") return TSVGShape::ReadAttribute(name, value);
    std::vector<double> numbers;
    // What stands before a fault, or before an odd number at the end, is drawn (SVG 1.1, F.2).
    if (!ParseNumbers(value, numbers) || numbers.size() % 2) Refuse(name, value);
    FPoints.clear();
    for (std::size_t i = 0; i + 1 < numbers.size(); i += 2)
        FPoints.push_back({numbers[i], numbers[i + 1]});
    Changed(TSVGChangeKind::Shape);
    return true;
}

void TSVGPoly::WriteAttributes(IAttributeSink& sink) const {
    TSVGShape::WriteAttributes(sink);
    std::string text;
    for (const TPointD& p : FPoints)
        text += (text.empty() ? "" : " ") + NumberText(p.X) + "," + NumberText(p.Y);
    if (!text.empty()) sink.Put("points", text);
}

std::unique_ptr<TSVGElement> TSVGPoly::NewAlike(TSVGDocument& document) const {
    return std::make_unique<TSVGPoly>(document, GetTag());
}

void TSVGPoly::CopyFrom(const TSVGElement& source) {
    TSVGShape::CopyFrom(source);
    FPoints = static_cast<const TSVGPoly&>(source).FPoints;
}

} // namespace Vz
