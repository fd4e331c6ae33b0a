#include "tavro/svg/filter/GraphInternal.h"

#include <algorithm>
#include <cmath>

namespace Vz {

namespace {

TPartReader ReaderOf(const TFilterGraph& graph, const TFilterNode& node) { return {node, graph.Place()}; }

TVZGPColor FloodColorOf(const TFilterNode& node, const TFilterPlace& place) {
    const TVZGPColor color = place.Enabled ? node.Style.FloodColor : GreyOf(node.Style.FloodColor);
    return WithAlpha(color, static_cast<unsigned>(std::lround(AlphaOf(color) * node.Style.FloodOpacity)));
}

// Blur, offset, shadow

/// The deviations in pixels; one that is negative, or a list of others than one or two numbers, blurs
/// nothing.
TPointD SigmaOf(const TPartReader& reader, double byDefault) {
    const std::optional<TPointD> sigma =
        reader.Text("stdDeviation") ? reader.Pair("stdDeviation") : TPointD{byDefault, byDefault};
    if (!sigma || sigma->X < 0 || sigma->Y < 0) return {};
    return {reader.PixelsX(sigma->X), reader.PixelsY(sigma->Y)};
}

void SurveySigma(const TPointD& sigma, TFilterSurvey& survey) {
    survey.ReachX += BlurReach(sigma.X);
    survey.ReachY += BlurReach(sigma.Y);
    // Turned pixels take a blur that is the same in all directions only.
    if (std::abs(sigma.X - sigma.Y) > 1e-6 * std::abs(sigma.X)) survey.IsTurnable = false;
}

TFilterImage RunBlur(const TFilterGraph& graph, const TFilterNode& node) {
    const TPointD sigma = SigmaOf(ReaderOf(graph, node), 0);
    return Blurred(*graph.Input(node, 0), sigma.X, sigma.Y, graph.Place().Pixels, node.Pixels);
}

void SurveyBlur(const TPartReader& reader, TFilterSurvey& survey) { SurveySigma(SigmaOf(reader, 0), survey); }

TFilterImage RunOffset(const TFilterGraph& graph, const TFilterNode& node) {
    const TPartReader reader = ReaderOf(graph, node);
    const TPointD shift = reader.Shift(reader.Number("dx", 0), reader.Number("dy", 0));
    return Moved(*graph.Input(node, 0), shift.X, shift.Y, node.Pixels);
}

void SurveyShift(const TPartReader& reader, double byDefault, TFilterSurvey& survey) {
    const TPointD shift = reader.Shift(reader.Number("dx", byDefault), reader.Number("dy", byDefault));
    survey.ReachX += std::abs(shift.X) + 1;
    survey.ReachY += std::abs(shift.Y) + 1;
}

void SurveyOffset(const TPartReader& reader, TFilterSurvey& survey) { SurveyShift(reader, 0, survey); }

TFilterImage RunShadow(const TFilterGraph& graph, const TFilterNode& node) {
    constexpr double byDefault = 2;
    const TPartReader reader = ReaderOf(graph, node);
    const TPointD shift = reader.Shift(reader.Number("dx", byDefault), reader.Number("dy", byDefault));
    const TPointD sigma = SigmaOf(reader, byDefault);
    const TShadow shadow{shift.X, shift.Y, sigma.X, sigma.Y, FloodColorOf(node, graph.Place())};
    return WithShadow(*graph.Input(node, 0), shadow, graph.Place().Pixels, node.Pixels);
}

void SurveyShadow(const TPartReader& reader, TFilterSurvey& survey) {
    SurveyShift(reader, 2, survey);
    SurveySigma(SigmaOf(reader, 2), survey);
}

// Colours

TFilterImage RunFlood(const TFilterGraph& graph, const TFilterNode& node) {
    return Flooded(node.Pixels, FloodColorOf(node, graph.Place()), node.Colors);
}

void SurveyUnbounded(const TPartReader&, TFilterSurvey& survey) { survey.IsBounded = false; }

/// What cannot be read, or has a wrong count of values, changes nothing.
TColorMatrix MatrixOf(const TPartReader& reader) {
    static constexpr std::string_view types[] = {"matrix", "saturate", "hueRotate", "luminanceToAlpha"};
    const int type = reader.Word("type", types, 0);
    const std::vector<double> values = reader.Numbers("values");
    if (type == 3) return LuminanceToAlphaColors();
    if (type == 1 && values.size() == 1) return SaturateColors(std::max(values[0], 0.0));
    if (type == 2 && values.size() == 1) return HueRotateColors(values[0]);
    TColorMatrix matrix = IdentityColors();
    if (type == 0 && values.size() == matrix.size())
        std::ranges::transform(values, matrix.begin(), [](double v) { return static_cast<float>(v); });
    return matrix;
}

TFilterImage RunColorMatrix(const TFilterGraph& graph, const TFilterNode& node) {
    return Recoloured(*graph.Input(node, 0), MatrixOf(ReaderOf(graph, node)), node.Pixels);
}

void SurveyColorMatrix(const TPartReader& reader, TFilterSurvey& survey) {
    if (MatrixOf(reader)[19] > 0) survey.IsBounded = false;
}

TTransfer TransferOf(const TPartReader& reader) {
    static constexpr std::string_view types[] = {"identity", "table", "discrete", "linear", "gamma"};
    const auto number = [&](std::string_view name, double byDefault) {
        return static_cast<float>(reader.Number(name, byDefault));
    };
    TTransfer transfer;
    transfer.Kind = static_cast<TTransfer::TKind>(reader.Word("type", types, 0));
    for (const double value : reader.Numbers("tableValues"))
        transfer.Values.push_back(static_cast<float>(value));
    transfer.Slope = number("slope", 1);
    transfer.Intercept = number("intercept", 0);
    transfer.Amplitude = number("amplitude", 1);
    transfer.Exponent = number("exponent", 1);
    transfer.Offset = number("offset", 0);
    return transfer;
}

/// Red, green, blue, alpha; of several functions for one channel the last counts.
TTransfers TransfersOf(const TPartReader& reader) {
    static constexpr std::string_view names[] = {"feFuncR", "feFuncG", "feFuncB", "feFuncA"};
    TTransfers transfers;
    for (const auto& child : reader.Part().Children())
        for (std::size_t i = 0; i < transfers.size(); ++i)
            if (child->GetTagName() == names[i])
                transfers[i] = TransferOf(reader.Child(static_cast<const TSVGPlainElement&>(*child)));
    return transfers;
}

TFilterImage RunTransfer(const TFilterGraph& graph, const TFilterNode& node) {
    return Transferred(*graph.Input(node, 0), TransfersOf(ReaderOf(graph, node)), node.Pixels);
}

void SurveyTransfer(const TPartReader& reader, TFilterSurvey& survey) {
    if (TransfersOf(reader)[3](0) > 0) survey.IsBounded = false;
}

// Several pictures in one

TFilterImage RunMerge(const TFilterGraph& graph, const TFilterNode& node) {
    TFilterImage result(node.Pixels, node.Colors);
    for (std::size_t i = 0; i < node.Inputs.size(); ++i)
        result = Composed(TCompositeOperator::Over, {}, *graph.Input(node, i), result, node.Pixels);
    return result;
}

TFilterImage RunBlend(const TFilterGraph& graph, const TFilterNode& node) {
    static constexpr std::string_view modes[] = {"normal",     "multiply",   "screen",      "overlay",
                                                 "darken",     "lighten",    "color-dodge", "color-burn",
                                                 "hard-light", "soft-light", "difference",  "exclusion",
                                                 "hue",        "saturation", "color",       "luminosity"};
    static_assert(std::size(modes) == static_cast<std::size_t>(TBlendMode::Luminosity) + 1);
    const auto mode = static_cast<TBlendMode>(ReaderOf(graph, node).Word("mode", modes, 0));
    return Blended(mode, *graph.Input(node, 0), *graph.Input(node, 1), node.Pixels);
}

constexpr std::string_view CompositeNames[] = {"over", "in", "out", "atop", "xor", "lighter", "arithmetic"};

TFilterImage RunComposite(const TFilterGraph& graph, const TFilterNode& node) {
    const TPartReader reader = ReaderOf(graph, node);
    const auto op = static_cast<TCompositeOperator>(reader.Word("operator", CompositeNames, 0));
    const auto k = [&](std::string_view name) { return static_cast<float>(reader.Number(name, 0)); };
    return Composed(op, {k("k1"), k("k2"), k("k3"), k("k4")}, *graph.Input(node, 0), *graph.Input(node, 1),
                    node.Pixels);
}

void SurveyComposite(const TPartReader& reader, TFilterSurvey& survey) {
    const int op = reader.Word("operator", CompositeNames, 0);
    if (op == static_cast<int>(TCompositeOperator::Arithmetic) && reader.Number("k4", 0) > 0)
        survey.IsBounded = false;
}

// Neighbourhoods

struct TCounts {
    int X = 0, Y = 0;
};

/// The kernel is as wide as twice the radius, in pixels. Negative radii, none at all and lists of others than
/// one or two numbers change nothing.
TCounts WindowOf(const TPartReader& reader) {
    constexpr double most = 1e6;
    const auto radius = reader.Pair("radius");
    if (!radius || radius->X < 0 || radius->Y < 0) return {};
    return {static_cast<int>(std::lround(std::min(2 * reader.PixelsX(radius->X), most))),
            static_cast<int>(std::lround(std::min(2 * reader.PixelsY(radius->Y), most)))};
}

TFilterImage RunMorphology(const TFilterGraph& graph, const TFilterNode& node) {
    static constexpr std::string_view operators[] = {"erode", "dilate"};
    const TPartReader reader = ReaderOf(graph, node);
    const auto op = static_cast<TMorphology>(reader.Word("operator", operators, 0));
    const TCounts window = WindowOf(reader);
    return Morphed(op, *graph.Input(node, 0), window.X, window.Y, node.Pixels);
}

void SurveyMorphology(const TPartReader& reader, TFilterSurvey& survey) {
    const TCounts window = WindowOf(reader);
    survey.ReachX += window.X / 2 + 1;
    survey.ReachY += window.Y / 2 + 1;
    survey.IsTurnable = false;
}

/// The most weights of a kernel.
constexpr int MostWeights = 4096;

/// Two whole numbers above 0, or nothing.
std::optional<TCounts> OrderOf(const TPartReader& reader) {
    if (!reader.Text("order")) return TCounts{3, 3};
    const auto order = reader.Pair("order");
    const auto usable = [](double v) { return v >= 1 && v <= MostWeights && v == std::floor(v); };
    if (!order || !usable(order->X) || !usable(order->Y) || order->X * order->Y > MostWeights) return {};
    return TCounts{static_cast<int>(order->X), static_cast<int>(order->Y)};
}

/// Nothing where the kernel is in error.
std::optional<TConvolution> ConvolutionOf(const TPartReader& reader) {
    static constexpr std::string_view edges[] = {"duplicate", "wrap", "none"};
    const auto order = OrderOf(reader);
    if (!order) return {};
    TConvolution c;
    c.OrderX = order->X;
    c.OrderY = order->Y;
    float sum = 0;
    for (const double weight : reader.Numbers("kernelMatrix")) {
        c.Kernel.push_back(static_cast<float>(weight));
        sum += c.Kernel.back();
    }
    const double targetX = reader.Number("targetX", c.OrderX / 2);
    const double targetY = reader.Number("targetY", c.OrderY / 2);
    const bool fits = targetX >= 0 && targetX < c.OrderX && targetY >= 0 && targetY < c.OrderY;
    if (static_cast<int>(c.Kernel.size()) != c.OrderX * c.OrderY || !fits) return {};
    c.TargetX = static_cast<int>(targetX);
    c.TargetY = static_cast<int>(targetY);
    // A divisor of 0 counts as none, and the sum of the weights stands for it unless that is 0, too.
    c.Divisor = static_cast<float>(reader.Number("divisor", 0));
    if (std::abs(c.Divisor) < 1e-6f) c.Divisor = std::abs(sum) < 1e-6f ? 1 : sum;
    c.Bias = static_cast<float>(reader.Number("bias", 0));
    c.Edge = static_cast<TEdgeMode>(reader.Word("edgeMode", edges, 0));
    const std::string* const preserve = reader.Text("preserveAlpha");
    c.PreserveAlpha = preserve && *preserve == "true";
    return c;
}

TFilterImage RunConvolution(const TFilterGraph& graph, const TFilterNode& node) {
    const auto convolution = ConvolutionOf(ReaderOf(graph, node));
    if (!convolution) return TFilterImage({}, node.Colors);
    return Convolved(*graph.Input(node, 0), *convolution, graph.Place().Pixels, node.Pixels);
}

void SurveyConvolution(const TPartReader& reader, TFilterSurvey& survey) {
    survey.IsTurnable = false;
    if (const auto order = OrderOf(reader)) {
        survey.ReachX += order->X;
        survey.ReachY += order->Y;
        survey.Cost += order->X * order->Y;
    }
}

double DisplacementScale(const TPartReader& reader) { return reader.Number("scale", 0); }

TFilterImage RunDisplacement(const TFilterGraph& graph, const TFilterNode& node) {
    static constexpr std::string_view channels[] = {"R", "G", "B", "A"};
    const TPartReader reader = ReaderOf(graph, node);
    const double scale = DisplacementScale(reader);
    const TPointD x = reader.Vector(scale, 0);
    const TPointD y = reader.Vector(0, scale);
    const TDisplacement d{{x.X, x.Y},
                          {y.X, y.Y},
                          reader.Word("xChannelSelector", channels, 3),
                          reader.Word("yChannelSelector", channels, 3)};
    // The colour space holds for the map only; the picture stays as it is.
    return Displaced(*graph.InputAsIs(node, 0), *graph.Input(node, 1), d, node.Pixels);
}

void SurveyDisplacement(const TPartReader& reader, TFilterSurvey& survey) {
    const double scale = std::abs(DisplacementScale(reader));
    survey.ReachX += reader.PixelsX(scale) / 2 + 1;
    survey.ReachY += reader.PixelsY(scale) / 2 + 1;
    survey.IsTurnable = false;
}

TFilterImage RunTile(const TFilterGraph& graph, const TFilterNode& node) {
    return Tiled(*graph.Input(node, 0), graph.InputArea(node), node.Pixels);
}

void SurveyFixed(const TPartReader&, TFilterSurvey& survey) { survey.IsBounded = survey.IsTurnable = false; }

// Pictures from nothing

TFilterImage RunImage(const TFilterGraph& graph, const TFilterNode& node) {
    return graph.Painter().Image(*node.Part, node.UserArea, node.Pixels);
}

/// Nothing where no noise comes about.
std::optional<TTurbulence> TurbulenceOf(const TPartReader& reader) {
    static constexpr std::string_view types[] = {"turbulence", "fractalNoise"};
    static constexpr std::string_view stitching[] = {"noStitch", "stitch"};
    const TPointD frequency = reader.Pair("baseFrequency").value_or(TPointD{});
    TTurbulence t;
    t.FrequencyX = frequency.X;
    t.FrequencyY = frequency.Y;
    t.Octaves = static_cast<int>(std::clamp(reader.Number("numOctaves", 1), -1.0, 1000.0));
    t.Seed = std::trunc(reader.Number("seed", 0));
    t.IsFractal = reader.Word("type", types, 0) == 1;
    t.Stitch = reader.Word("stitchTiles", stitching, 0) == 1;
    if (t.FrequencyX < 0 || t.FrequencyY < 0 || t.Octaves < 0) return {};
    return t;
}

TFilterImage RunTurbulence(const TFilterGraph& graph, const TFilterNode& node) {
    auto turbulence = TurbulenceOf(ReaderOf(graph, node));
    if (!turbulence) return TFilterImage({}, node.Colors);
    turbulence->Tile = node.UserArea;
    return Turbulent(*turbulence, graph.Place().ToPixels.Inverse(), node.Colors, node.Pixels);
}

void SurveyTurbulence(const TPartReader& reader, TFilterSurvey& survey) {
    constexpr double costOfOctave = 28;
    survey.IsBounded = false;
    if (const auto t = TurbulenceOf(reader))
        survey.Cost += costOfOctave * std::min(t->Octaves, TTurbulence::MostOctaves);
}

// Light

/// The first light source among the children; nothing where there is none.
std::optional<TLight> LightOf(const TFilterNode& node, const TFilterPlace& place) {
    static constexpr std::string_view names[] = {"feDistantLight", "fePointLight", "feSpotLight"};
    for (const auto& child : node.Part->Children()) {
        const auto at = std::ranges::find(names, child->GetTagName());
        if (at == std::end(names)) continue;
        const TPartReader reader(static_cast<const TSVGPlainElement&>(*child), place);
        const auto point = [&](std::string_view x, std::string_view y, std::string_view z) {
            const double height = reader.Number(z, 0);
            const TPointD in = {reader.LengthX(reader.Number(x, 0)) + (place.BoxUnits ? place.Box.Left : 0),
                                reader.LengthY(reader.Number(y, 0)) + (place.BoxUnits ? place.Box.Top : 0)};
            const TPointD to = place.ToPixels(in);
            // What has no axis is scaled by both (SVG 1.1, 7.10).
            const double up = std::hypot(reader.PixelsX(height), reader.PixelsY(height)) / std::sqrt(2.0);
            return std::array<double, 3>{to.X, to.Y, std::copysign(up, height)};
        };
        TLight light;
        light.Kind = static_cast<TLight::TKind>(at - std::begin(names));
        light.AzimuthDeg = reader.Number("azimuth", 0);
        light.ElevationDeg = reader.Number("elevation", 0);
        light.At = point("x", "y", "z");
        light.Target = point("pointsAtX", "pointsAtY", "pointsAtZ");
        light.SpotExponent = reader.Number("specularExponent", 1);
        if (!(light.SpotExponent > 0)) light.SpotExponent = 1;
        // An angle and its negative are the same cone.
        if (reader.Text("limitingConeAngle"))
            light.ConeDeg = std::abs(reader.Number("limitingConeAngle", -1));
        return light;
    }
    return {};
}

TFilterImage RunLighting(const TFilterGraph& graph, const TFilterNode& node) {
    const TFilterPlace& place = graph.Place();
    const auto light = LightOf(node, place);
    if (!light) return TFilterImage({}, node.Colors);
    const TPartReader reader(node, place);
    TLighting lighting;
    lighting.IsSpecular = node.Part->GetTagName() == "feSpecularLighting";
    lighting.Light = *light;
    lighting.SurfaceScale = reader.Number("surfaceScale", 1);
    const double constant = reader.Number(lighting.IsSpecular ? "specularConstant" : "diffuseConstant", 1);
    lighting.Constant = constant < 0 ? 1 : constant;
    lighting.Exponent = std::clamp(reader.Number("specularExponent", 1), 1.0, 128.0);
    lighting.Color = place.Enabled ? node.Style.LightingColor : GreyOf(node.Style.LightingColor);
    return Lit(*graph.Input(node, 0), lighting, node.Colors, node.Pixels);
}

/// By name, in alphabetical order; costs as measured.
constexpr TPrimitive Primitives[] = {
    // name              inputs whole  cost  run             survey
    {"feBlend", 2, false, 25, RunBlend, nullptr},
    {"feColorMatrix", 1, false, 14, RunColorMatrix, SurveyColorMatrix},
    {"feComponentTransfer", 1, false, 40, RunTransfer, SurveyTransfer},
    {"feComposite", 2, false, 9, RunComposite, SurveyComposite},
    {"feConvolveMatrix", 1, false, 20, RunConvolution, SurveyConvolution},
    {"feDiffuseLighting", 1, false, 25, RunLighting, SurveyFixed},
    {"feDisplacementMap", 2, false, 37, RunDisplacement, SurveyDisplacement},
    {"feDropShadow", 1, false, 53, RunShadow, SurveyShadow},
    {"feFlood", 0, true, 2, RunFlood, SurveyUnbounded},
    {"feGaussianBlur", 1, false, 19, RunBlur, SurveyBlur},
    {"feImage", 0, true, 20, RunImage, SurveyFixed},
    {"feMerge", -1, false, 3, RunMerge, nullptr},
    {"feMorphology", 1, false, 27, RunMorphology, SurveyMorphology},
    {"feOffset", 1, false, 5, RunOffset, SurveyOffset},
    {"feSpecularLighting", 1, false, 40, RunLighting, SurveyFixed},
    {"feTile", 1, true, 3, RunTile, SurveyFixed},
    {"feTurbulence", 0, true, 10, RunTurbulence, SurveyTurbulence},
};
static_assert(std::ranges::is_sorted(Primitives, {}, &TPrimitive::Name));

} // namespace

const TPrimitive* FindPrimitive(std::string_view name) {
    const auto at = std::ranges::lower_bound(Primitives, name, {}, &TPrimitive::Name);
    return at != std::end(Primitives) && at->Name == name ? at : nullptr;
}

} // namespace Vz
