#include "tavro/svg/filter/GraphInternal.h"

#include "tavro/svg/values/Scan.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

/// Primitives of one filter beyond which no more are run.
constexpr std::size_t MostNodes = 1000;

bool HasOwnArea(const TSVGPlainElement& part) {
    for (const std::string_view name : {"x", "y", "width", "height"})
        if (part.FindAttribute(name)) return true;
    return false;
}

} // namespace

TRect WholePixels(const TRectD& box) {
    constexpr double error = 1e-3;
    if (box.IsEmpty()) return {};
    return PixelBounds({box.Left + error, box.Top + error, std::max(box.Right - error, box.Left + error),
                        std::max(box.Bottom - error, box.Top + error)});
}

// Attributes

double TPartReader::Number(std::string_view name, double byDefault) const {
    const std::string* const text = Text(name);
    return text ? ParseNumber(*text).value_or(byDefault) : byDefault;
}

std::vector<double> TPartReader::Numbers(std::string_view name) const {
    constexpr std::size_t most = 10000;
    std::vector<double> numbers;
    const std::string* const text = Text(name);
    if (!text || !ParseNumbers(*text, numbers, most)) numbers.clear();
    return numbers;
}

std::optional<TPointD> TPartReader::Pair(std::string_view name) const {
    const std::vector<double> n = Numbers(name);
    if (n.empty() || n.size() > 2) return {};
    return TPointD{n.front(), n.back()};
}

double TPartReader::PixelsX(double value) const {
    return LengthX(value) * std::hypot(FPlace.ToPixels.A, FPlace.ToPixels.B);
}

double TPartReader::PixelsY(double value) const {
    return LengthY(value) * std::hypot(FPlace.ToPixels.C, FPlace.ToPixels.D);
}

TPointD TPartReader::Vector(double dx, double dy) const {
    const double x = LengthX(dx);
    const double y = LengthY(dy);
    return {FPlace.ToPixels.A * x + FPlace.ToPixels.C * y, FPlace.ToPixels.B * x + FPlace.ToPixels.D * y};
}

TPointD TPartReader::Shift(double dx, double dy) const {
    return PixelShift(FPlace.ToPixels, LengthX(dx), LengthY(dy));
}

TPointD PixelShift(const TAffine& m, double dx, double dy) {
    const TPointD shift{m.A * dx + m.C * dy, m.B * dx + m.D * dy};
    if (!m.IsAxisAligned()) return shift;
    return {std::ceil(shift.X - 0.5), std::ceil(shift.Y - 0.5)};
}

// The graph

TFilterGraph::TFilterGraph(const TSVGFilter& filter, const TFilterPlace& place)
    : FPlace(place) {
    for (const auto& child : filter.Children())
        if (child->GetTag() == TSVGTag::FilterPart && FNodes.size() < MostNodes)
            AddNode(static_cast<const TSVGPlainElement&>(*child));
    for (std::size_t i = 0; i < FNodes.size(); ++i)
        for (const int input : FNodes[i].Inputs)
            if (input >= 0) FNodes[static_cast<std::size_t>(input)].LastUse = static_cast<int>(i);
}

/// What a name stands for. One that is not known counts as absent: the result before, or the source.
int TFilterGraph::FindInput(const std::string* name) const {
    static constexpr std::string_view names[] = {"SourceGraphic", "SourceAlpha", "FillPaint", "StrokePaint"};
    if (name) {
        const auto at = std::ranges::find(names, Trimmed(*name));
        if (at != std::end(names)) return -1 - static_cast<int>(at - std::begin(names));
        for (std::size_t i = FNodes.size(); i-- > 0;) {
            const std::string* const result = FNodes[i].Part->FindAttribute("result");
            if (result && !result->empty() && *result == *name) return static_cast<int>(i);
        }
    }
    return FNodes.empty() ? TFilterNode::SourceGraphic : static_cast<int>(FNodes.size()) - 1;
}

void TFilterGraph::AddNode(const TSVGPlainElement& part) {
    TFilterNode node;
    node.Primitive = FindPrimitive(part.GetTagName());
    if (!node.Primitive) return;
    node.Part = &part;
    node.Style = part.GetComputedStyle();
    node.Colors = node.Style.ColorInterpolationFilters == TKeyword::LinearRgb ? TFilterColors::Linear
                                                                              : TFilterColors::Srgb;
    if (node.Primitive->Inputs > 0) node.Inputs.push_back(FindInput(part.FindAttribute("in")));
    if (node.Primitive->Inputs > 1) node.Inputs.push_back(FindInput(part.FindAttribute("in2")));
    if (node.Primitive->Inputs < 0)
        for (const auto& child : part.Children())
            if (child->GetTagName() == "feMergeNode" && node.Inputs.size() < MostNodes)
                node.Inputs.push_back(
                    FindInput(static_cast<const TSVGPlainElement&>(*child).FindAttribute("in")));
    PlaceNode(node);
    FNodes.push_back(std::move(node));
}

/// The filter primitive subregion (Filter Effects 1, 8.3; its default: SVG 1.1, 15.7.3).
void TFilterGraph::PlaceNode(TFilterNode& node) const {
    TRectD area;
    if (!node.Primitive->WholeRegion)
        for (const int input : node.Inputs)
            area.Include(input >= 0 ? Node(input).UserArea : FPlace.Region);
    if (node.Primitive->WholeRegion || node.Inputs.empty()) area = FPlace.Region;
    const auto length = [&](std::string_view name, TAxis axis) -> std::optional<double> {
        const std::string* const text = node.Part->FindAttribute(name);
        TSVGLength value;
        if (!text || !value.Parse(*text)) return {};
        TLengthBasis basis = FPlace.Basis;
        if (FPlace.BoxUnits) basis.ViewWidth = basis.ViewHeight = 1;
        const double resolved = value.Resolve(axis, basis);
        if (!FPlace.BoxUnits) return resolved;
        return resolved * (axis == TAxis::X ? FPlace.Box.Width() : FPlace.Box.Height());
    };
    const double originX = FPlace.BoxUnits ? FPlace.Box.Left : 0;
    const double originY = FPlace.BoxUnits ? FPlace.Box.Top : 0;
    const double width = length("width", TAxis::X).value_or(area.Width());
    const double height = length("height", TAxis::Y).value_or(area.Height());
    if (const auto x = length("x", TAxis::X)) area.Left = originX + *x;
    if (const auto y = length("y", TAxis::Y)) area.Top = originY + *y;
    area.Right = area.Left + width;
    area.Bottom = area.Top + height;
    node.UserArea = area;
    // No extent: the result is transparent.
    if (!(width > 0) || !(height > 0)) return;
    node.Area = FPlace.ToPixels(area);
    node.Pixels = Intersection(WholePixels(node.Area), FPlace.Pixels);
}

TFilterSurvey TFilterGraph::Survey() const {
    constexpr double costOfAny = 12;
    constexpr double costOfInput = 3;
    TFilterSurvey survey;
    for (const TFilterNode& node : FNodes) {
        survey.Cost +=
            node.Primitive->Cost + costOfAny + costOfInput * static_cast<double>(node.Inputs.size());
        if (HasOwnArea(*node.Part)) survey.IsTurnable = false;
        if (node.Primitive->Survey) node.Primitive->Survey(TPartReader(node, FPlace), survey);
        for (const int input : node.Inputs)
            if (input == TFilterNode::FillPaint || input == TFilterNode::StrokePaint)
                survey.IsBounded = false;
    }
    return survey;
}

TRectD TFilterGraph::InputArea(const TFilterNode& node) const {
    const int input = node.Inputs.front();
    return input >= 0 ? Node(input).Area : FPlace.ToPixels(FPlace.Region);
}

TFilterImagePtr TFilterGraph::Special(int input) const {
    TFilterImagePtr& image = FSpecials[-input];
    if (image) return image;
    if (input == TFilterNode::SourceAlpha)
        image = std::make_shared<const TFilterImage>(
            MappedPixels(*FSpecials[1], FSpecials[1]->Box(), [](const TFilterPixel& p) {
                return TFilterPixel{0, 0, 0, p.A};
            }));
    else
        image = std::make_shared<const TFilterImage>(FPainter->Paint(input == TFilterNode::StrokePaint));
    return image;
}

TFilterImagePtr TFilterGraph::InputAsIs(const TFilterNode& node, std::size_t which) const {
    const int input = node.Inputs[which];
    return input >= 0 ? FResults[static_cast<std::size_t>(input)] : Special(input);
}

TFilterImagePtr TFilterGraph::Input(const TFilterNode& node, std::size_t which) const {
    TFilterImagePtr image = InputAsIs(node, which);
    if (image->Colors() == node.Colors) return image;
    return std::make_shared<const TFilterImage>(InColors(*image, node.Colors));
}

TFilterImagePtr TFilterGraph::Run(const TFilterImagePtr& source, const TFilterPainter& painter) {
    if (FNodes.empty()) return std::make_shared<const TFilterImage>();
    FPainter = &painter;
    FResults.assign(FNodes.size(), nullptr);
    FSpecials[1] = Intersection(source->Box(), FPlace.Pixels) == source->Box()
                       ? source
                       : std::make_shared<const TFilterImage>(Cropped(*source, FPlace.Pixels));
    for (std::size_t i = 0; i < FNodes.size(); ++i) {
        const TFilterNode& node = FNodes[i];
        FResults[i] = std::make_shared<const TFilterImage>(
            node.Pixels.IsEmpty() ? TFilterImage({}, node.Colors) : node.Primitive->Run(*this, node));
        for (const int input : node.Inputs)
            if (input >= 0 && Node(input).LastUse <= static_cast<int>(i))
                FResults[static_cast<std::size_t>(input)] = nullptr;
    }
    TFilterImagePtr result = FResults.back();
    FResults.clear();
    std::ranges::fill(FSpecials, nullptr);
    return result;
}

} // namespace Vz
