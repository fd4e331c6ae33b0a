#include "tavro/instruments/meters/Thermometer.h"

#include "tavro/instruments/Editing.h"
#include "tavro/instruments/ScalePublish.h"
#include "tavro/runtime/Rounding.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Vz {

namespace {

using namespace Rows;
using TPart = TVZThermometer::TPart;
using TParts = TVZThermometer::TParts;

/// Of the scale's span, how far the mercury goes beyond each end. Not the same at both. Kept.
constexpr double OverrunAbove = 0.1;
constexpr double OverrunBelow = 0.0875;

constexpr TColorRow Colors[] = {
    {"FrameColor",
     0xFFD3D7CF,
     FirstStopOf("linearGradientFrame"),
     {Recolour("linearGradientFrame"), Stop("linearGradientFrameBevel", 0, Lowered(128)),
      Stop("linearGradientFrameBevel", 1, Light), Flat("frameRect")}},
    {"MercuryColor",
     0xFFFF0000,
     FirstStopOf("linearGradientMercury"),
     {Recolour("linearGradientMercury"), Flat("Mercury"), Flat("Bulb")}},
    {"BackfaceColor",
     0xFFFFF1FF,
     FirstStopOf("GradientBackface"),
     {EveryStop("GradientBackface"), Flat("Backface")}},
    {"MarkersColor", 0xFF000000, FillOf("Markers"), {Stroke("Markers")}}, // read here, written there. Kept.
    {"LabelsFillColor", 0xFF000000, FillOf("Labels"), {Fill("Labels")}},
    {"LabelsStrokeColor", 0xFF000000, StrokeOf("Labels"), {Stroke("Labels")}},
};

constexpr TPartRow PartElements[] = {
    {TPart::tpFrame, "Frame"},
    {TPart::tpBackface, "Backface"},
    {TPart::tpBackface, "FrameBevel"},
    {TPart::tpLeftLabels, "textLeft"},
    {TPart::tpRightLabels, "textRight"},
    {TPart::tpLeftMarkers, "MarkersLeftMajor"},
    {TParts{TPart::tpLeftMarkers, TPart::tpLeftMinorMarkers}, "MarkersLeftMinor"},
    {TPart::tpRightMarkers, "MarkersRightMajor"},
    {TParts{TPart::tpRightMarkers, TPart::tpRightMinorMarkers}, "MarkersRightMinor"},
    {TPart::tpMercury, "MercuryGroup"},
    {TPart::tpGlass, "Glass"},
    {TPart::tpPipette, "Pipette"},
};

constexpr std::string_view DetailElements[] = {
    "Frame", "Glass", "FrameBevel", "MercuryHighlight", "BulbHighlight",
};

constexpr TGradientRow Gradients[] = {
    Switch("Backface", "GradientBackface", "BackfaceColor"),
    Switch("Mercury", "linearGradientMercury", "MercuryColor"),
    Switch("Bulb", "linearGradientMercury", "MercuryColor"),
    Switch("frameRect", "linearGradientFrame", "FrameColor"),
    Switch("FrameBevel", "linearGradientFrameBevel", "LightColor", Shadow),
    ShownInDetail("MercuryHighlight"),
    ShownInDetail("BulbHighlight"),
    ShownInDetail("Glass"),
};

constexpr TColorEdit LightEdits[] = {
    EveryStop("linearGradientGlassHighlight", Light), EveryStop("linearGradientGlassHighlightLeft", Light),
    Stop("linearGradientFrameBevel", 1, Light),       EveryStop("linearGradientMercuryHighlight", Light),
    EveryStop("linearGradientBulbHighlight", Light),
};

using K = TArtworkKind;
constexpr TArtworkRow Structure[] = {
    {"Labels"},
    {"textLeft", K::Texts, "Labels"},
    {"textRight", K::Texts, "Labels"},
    {"MarkersLeftMajor", K::Graphic, "Markers"},
    {"MarkersLeftMinor", K::Graphic, "Markers"},
    {"MarkersRightMajor", K::Graphic, "Markers"},
    {"MarkersRightMinor", K::Graphic, "Markers"},
    {"Pipette", K::Graphic, "GlassPipette"},
    {"MercuryGroup", K::Graphic, "GlassPipette"},
    {"Mercury", K::Rect, "MercuryGroup"},
    {"MercuryHighlight", K::Rect, "MercuryGroup"},
    {"Bulb", K::Graphic, "MercuryGroup"},
    {"BulbHighlight", K::Graphic, "MercuryGroup"},
};

constexpr TInstrumentSetup Setup{
    .Artwork = "ThermometerSVG",
    .ActiveElement = "GlassPipette",
    .DecorationElement = {},
    .Width = 75,
    .Parts = TVZThermometer::AllParts.GetMask(),
    .Colors = Colors,
    .PartElements = PartElements,
    .DetailElements = DetailElements,
    .Gradients = Gradients,
    .LightEdits = LightEdits,
    .Structure = Structure,
};

constexpr TScale DefaultScale{0, 120, 0};

using TLength = TSVGBasicShape::TPart;

} // namespace

std::span<const TProp> TVZThermometer::GetPropTable() const {
    using T = TVZThermometer;
    static constexpr auto Rows = Publish(
        ScaleProps<DefaultScale, TQuantity::Temperature>(),
        std::array{Prop<&T::GetParts, &T::SetParts>("Parts", AllParts),
                   ObjectProp<&T::GetFont, &T::SetFont>("Font")},
        ColorProps<Setup>(),
        Inherited<Setup>({"Design", "EnableGradients", "LightColor", "FormatStr", "Stretch", "Buffered",
                          "Quality", "Opacity", "Transform", "OnChange", "OnDrawing", "OnDrawn"}));
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

const TInstrumentSetup& TVZThermometer::GetSetup() const { return Setup; }

void TVZThermometer::Construct() {
    SetDefaultScale(DefaultScale);
    TCreatable::Construct();
}

void TVZThermometer::DoInitializeGauge() {
    TCreatable::DoInitializeGauge();
    ShowScale();
}

// Artwork.

TSVGBasicShape& TVZThermometer::RequireRect(std::string_view id) const {
    if (auto* const rect = FindRect(id)) return *rect;
    throw EReadError("the thermometer's artwork has no rect \"" + std::string(id) + '"');
}

TVZThermometer::TColumn TVZThermometer::ReadColumn(std::string_view id) const {
    const TSVGBasicShape& rect = RequireRect(id);
    const auto& view = GetDocument().GetViewBox();
    const TLengthBasis basis{.ViewHeight = view ? view->Height : double{GetDocument().GetHeight()}};
    const auto whole = [&](TLength length) {
        using TLimits = std::numeric_limits<std::int32_t>;
        const std::int64_t units = RoundHalfEven(rect.GetLength(length).Resolve(TAxis::Y, basis));
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(units, TLimits::min(), TLimits::max()));
    };
    return {whole(TLength::Y), whole(TLength::Height)};
}

void TVZThermometer::ReadGeometry() {
    FMercury = ReadColumn("Mercury");
    FHighlight = ReadColumn("MercuryHighlight");
}

void TVZThermometer::ReplaceContent(const std::function<void()>& load) {
    TCreatable::ReplaceContent([&] {
        TSVGDocument former;
        former.AssignContent(GetDocument());
        load();
        try {
            RequireRect("Mercury");
            RequireRect("MercuryHighlight");
        } catch (...) {
            GetDocument().AssignContent(former);
            SetActiveSVGElement(Find<TSVGGraphicElement>(GetActiveElementId()));
            throw;
        }
    });
    if (!GetFont().IsOpen()) FontChanged(); // the initializing leaves the font out
}

// Scale and mercury.

void TVZThermometer::ShowScale() {
    InitializeThermometer();
    UpdateMercury();
}

void TVZThermometer::InitializeThermometer() {
    InitializeLabels();
    UpdateRange();
}

void TVZThermometer::InitializeLabels() { WriteScale("textLeft", GetMax(), GetMin(), "textRight"); }

void TVZThermometer::UpdateRange() {
    const float span = GetMax() - GetMin(); // in single precision, which is meant
    const auto overrun = [span](double share) {
        return static_cast<double>(RoundHalfEven(double{span} * share));
    };
    FMercuryMax = static_cast<float>(GetMax() + overrun(OverrunAbove));
    FMercuryMin = static_cast<float>(GetMin() - overrun(OverrunBelow));
}

void TVZThermometer::UpdateMercury() {
    TSVGBasicShape* const mercury = FindRect("Mercury");
    if (!mercury) return;
    TSVGBasicShape& highlight = RequireRect("MercuryHighlight");
    const double range = double(FMercuryMax) - FMercuryMin;
    const double level = (double(GetValue()) - FMercuryMin) / range;
    const auto show = [level](TSVGBasicShape& rect, const TColumn& full) {
        const auto set = [&](TLength part, double units) { rect.SetLength(part, {TSVGUnit::Number, units}); };
        set(TLength::Y, full.Top + full.Height * (1 - level));
        set(TLength::Height, std::max(full.Height * level, 0.0)); // less than none is no rect
    };
    if (std::isfinite(level))
        EditDocument([&] {
            show(*mercury, FMercury);
            show(highlight, FHighlight);
        });
    Invalidate();
}

} // namespace Vz
