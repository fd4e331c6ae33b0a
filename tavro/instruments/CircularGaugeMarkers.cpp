#include "tavro/instruments/CircularGauge.h"
#include "tavro/instruments/Editing.h"
#include "tavro/instruments/Memo.h"
#include "tavro/runtime/Rounding.h"
#include "tavro/runtime/Strings.h"
#include "tavro/svg/GraphicsFactory.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace Vz {

namespace {

using TSelf = TVZCustomCircularGauge;

/// Centre of the box that markers are drawn in.
constexpr TPointF MarkerCenter{50, 50};

struct TMarkerShape {
    std::string_view Major;
    std::string_view Minor;
};

/// By the ordinal of TMarker; the custom one has no shape of its own.
constexpr TMarkerShape MarkerShapes[] = {
    {"", ""},
    {"m 49.5,0 1,0 0,5 -1,0 z", "m 49.75,0 0.5,0 0,3 -0.5,0 z"},
    {"m 52,2.5 a 2,2 0 0 1 -2,2 2,2 0 0 1 -2,-2 2,2 0 0 1 2,-2 2,2 0 0 1 2,2 z",
     "m 51,2.5 a 1,1 0 0 1 -1,1 1,1 0 0 1 -1,-1 1,1 0 0 1 1,-1 1,1 0 0 1 1,1 z"},
    {"m 50,0 1,2.5 -1,2.5 -1,-2.5 1,-2.5 z", "m 50,0 0.5,1.5 -0.5,1.5 -0.5,-1.5 0.5,-1.5 z"},
    {"m 48,0 4,0 -2,5 -2,-5 z", "m 49,0 2,0 -1,3 -1,-3 z"},
    {"m 50,0 2,5 -4,0 2,-5 z", "m 50,0 1,3 -2,0 1,-3 z"},
    {"m 50,0 2,2.5 -2,2.5 0,-5 z", "m 50,0 1,1.5 -1,1.5 0,-3 z"},
    {"m 50,0 -2,2.5 2,2.5 0,-5 z", "m 50,0 -1,1.5 1,1.5 0,-3 z"},
};
static_assert(std::size(MarkerShapes) == std::size(EnumNames<TSelf::TMarker>::Members));

constexpr std::string_view RomanHours =
    "XII\r\nI\r\nII\r\nIII\r\nIV\r\nV\r\nVI\r\nVII\r\nVIII\r\nIX\r\nX\r\nXI";

/// A marker that is repeated along the scale.
struct TScaleFigures {
    std::shared_ptr<const TFigures> Marker;
    std::int32_t StartAngle; ///< degrees, as StepDeg
    float StepDeg;
    int Copies; ///< beside the first
    friend bool operator==(const TScaleFigures&, const TScaleFigures&) = default;
};

std::unique_ptr<const TVZPathData> Repeated(const TVZPathData& marker, const TScaleFigures& scale) {
    auto figures = std::make_unique<TVZPathData>();
    figures->Assign(marker);
    const double startRadians = scale.StartAngle * std::numbers::pi / 180;
    figures->ApplyMatrix(CreateRotationVZMatrix(MarkerCenter, static_cast<float>(startRadians)));
    TSVGGraphicsFactory::Duplicate(figures.get(), MarkerCenter, scale.StepDeg, scale.Copies);
    return figures;
}

/// How far an angle is from an end of the scale, in degrees. Beyond half a turn it is taken on one side only.
/// Kept.
float AngleDistance(float end, float angle) {
    const float distance = std::abs(end - angle);
    return distance > 180 ? std::abs(angle + 360 - end) : distance;
}

/// Where a label stands on the label circle, in parts of its length: the circle goes round twice and begins
/// an eighth of a turn before twelve o'clock.
double LabelOffset(float angleDeg) {
    const double turn = (angleDeg - 360.0 * std::trunc(angleDeg / 360.0)) / 360.0;
    return turn * 0.5 + 0.0625;
}

} // namespace

// Markers.

std::string TVZCustomCircularGauge::GetMarkerData(TMarker marker, bool minor) const {
    if (marker == TMarker::gmCustom) return (minor ? FMinor : FMajor).Path->GetPathString();
    const TMarkerShape& shape = MarkerShapes[static_cast<std::size_t>(marker)];
    return std::string(minor ? shape.Minor : shape.Major);
}

void TVZCustomCircularGauge::TakeMarkerData(TMarkers& markers) {
    if (markers.Kind == TMarker::gmCustom) return;
    const bool wasRebuilding = std::exchange(FIsRebuilding, true);
    markers.Path->Assign(PathOf(GetMarkerData(markers.Kind, &markers == &FMinor)));
    FIsRebuilding = wasRebuilding;
}

void TVZCustomCircularGauge::InitializeMarkerPaths() {
    TakeMarkerData(FMajor);
    TakeMarkerData(FMinor);
}

void TVZCustomCircularGauge::InitializeMarkers() {
    if (IsUpdating()) return;
    EditDocument([this] {
        // Minor figures stand under the major ones too.
        const std::int64_t minorSteps = std::int64_t{FMajor.Count} * (std::int64_t{FMinor.Count} + 1);
        BuildMarkers("SmallMarkers", *FMinor.Path, FMinor.Count > 0, minorSteps);
        BuildMarkers("BigMarkers", *FMajor.Path, FMajor.Count > 0, FMajor.Count);
    });
}

void TVZCustomCircularGauge::BuildMarkers(std::string_view groupId, const TVZPathData& path, bool show,
                                          std::int64_t divisions) {
    auto* const group = Find<TSVGGroup>(groupId);
    if (!group) return;
    group->RemoveChildren();
    if (!show) return;
    const int count = static_cast<int>(std::min<std::int64_t>(divisions, MaxMarkerFigures));
    const TScaleFigures scale{path.ShareFigures(), FStartAngle, static_cast<float>(GetSpan() / count),
                              IsFullCircle() ? count - 1 : count};
    const auto make = [&] { return Repeated(path, scale); };
    thread_local TMemo<TScaleFigures, std::unique_ptr<const TVZPathData>, 16> known;
    constexpr int mostKnown = 1000;
    auto& marks = group->Add<TSVGPath>();
    if (scale.Copies > mostKnown)
        marks.SetData(make().get());
    else
        marks.SetData(known.Get(scale, make).get());
}

void TVZCustomCircularGauge::SetMajorMarkers(std::int32_t value) {
    if (!Store(FMajor.Count, std::max(value, 0))) return;
    EditDocument([this] {
        InitializeMarkers();
        InitializeNumberLabels();
    });
    MarkChanged();
}

void TVZCustomCircularGauge::SetMinorMarkers(std::int32_t value) {
    if (Store(FMinor.Count, std::max(value, 0))) MarkersChanged();
}

void TVZCustomCircularGauge::SetMarker(TMarkers& markers, TMarker value) {
    if (!Store(markers.Kind, value)) return;
    markers.Path->SetPathString(
        GetMarkerData(value, &markers == &FMinor)); // tells of itself where it changes
    MarkersChanged();
}

void TVZCustomCircularGauge::SetMarkerPath(TMarkers& markers, const TVZPathData& value) {
    if (value.GetFigures() != markers.Path->GetFigures()) markers.Path->Assign(value);
    markers.Kind = TMarker::gmCustom;
}

void TVZCustomCircularGauge::ResetMarkerPath(TMarkers& markers) {
    if (markers.Kind == TMarker::gmCustom) SetMarker(markers, TMarker::gmLine);
}

void TVZCustomCircularGauge::MarkersChanged() {
    if (FIsRebuilding) return;
    InitializeMarkers();
    MarkChanged();
}

int TVZCustomCircularGauge::GetClosestMajorMarker(float angleDeg) const {
    const auto start = static_cast<float>(FStartAngle % 360);
    const auto stop = static_cast<float>(FStopAngle % 360);
    const auto step = static_cast<float>(GetSpan() / FMajor.Count);
    const auto first = static_cast<float>(FStartAngle);
    const float turned = first > angleDeg && stop > angleDeg ? angleDeg + 360 : angleDeg;
    const double index = RoundHalfEven(double((turned - first) / step));
    if (std::isnan(index) || FMajor.Count == 0) return 0;
    if (start == stop) return static_cast<int>(std::clamp(index, -2147483648.0, 2147483647.0));
    if (index >= 0 && index <= FMajor.Count) return static_cast<int>(index);
    return AngleDistance(start, angleDeg) > AngleDistance(stop, angleDeg) ? FMajor.Count : 0;
}

// Labels.

void TVZCustomCircularGauge::SetLabels(const TStrings& value) { FLabels->Assign(value); }

std::string TVZCustomCircularGauge::GetDefaultLabels() const {
    const std::string_view own = GetGaugeSetup().Labels;
    return std::string(own.empty() ? RomanHours : own);
}

bool TVZCustomCircularGauge::IsLabelsStored() const {
    if (!FLabelsAreUsers) return false;
    TStrings own;
    own.SetText(GetDefaultLabels());
    return GetGaugeSetup().Labels.empty() || !FLabels->Equals(own);
}

void TVZCustomCircularGauge::ResetLabels() {
    if (!IsLabelsStored()) return;
    if (GetGaugeSetup().Labels.empty())
        InitializeNumberLabels();
    else
        FLabels->SetText(GetDefaultLabels());
}

double TVZCustomCircularGauge::GetLabelNumber(int index) const {
    const double part = FMajor.Count == 0 ? 0 : double(index) / FMajor.Count;
    return GetMin() + part * (double(GetMax()) - GetMin());
}

int TVZCustomCircularGauge::GetLastLabel() const {
    return std::min(IsFullCircle() ? FMajor.Count - 1 : FMajor.Count, MaxLabels - 1);
}

void TVZCustomCircularGauge::InitializeNumberLabels() {
    if (!GetGaugeSetup().Labels.empty()) return InitializeLabels();
    FLabelsAreUsers = false; // also in a batch, which then ends with numbers
    if (IsUpdating()) return;
    WriteNumbers();
    LabelsChanged();
}

std::vector<std::string> TVZCustomCircularGauge::MakeNumbers() const {
    std::vector<double> numbers;
    for (int i = 0, last = GetLastLabel(); i <= last; ++i)
        numbers.push_back(GetLabelNumber(i));
    return FormatNumbers(numbers);
}

void TVZCustomCircularGauge::WriteNumbers() {
    const bool wasRebuilding = std::exchange(FIsRebuilding, true);
    FLabels->SetItems(MakeNumbers());
    FIsRebuilding = wasRebuilding;
}

void TVZCustomCircularGauge::InitializeLabels() {
    if (IsUpdating()) return;
    auto* const group = Find<TSVGGroup>("MeasurementLabels");
    if (!group) return;
    EditDocument([&] {
        group->RemoveChildren();
        auto angleDeg = static_cast<float>(FStartAngle);
        const double stepDeg = GetSpan() / FMajor.Count;
        for (int i = 0, last = GetLastLabel(); i <= last; ++i) {
            auto& line = group->Add<TSVGText>().Add<TSVGTextPath>();
            line.SetStartOffset({TSVGUnit::Percent, LabelOffset(angleDeg) * 100});
            line.SetReference("TextCircle");
            if (i < FLabels->GetCount()) line.SetText(FLabels->GetItem(i));
            angleDeg = static_cast<float>(angleDeg + stepDeg);
        }
    });
}

void TVZCustomCircularGauge::LabelsChanged() {
    InitializeLabels();
    MarkChanged();
}

} // namespace Vz
