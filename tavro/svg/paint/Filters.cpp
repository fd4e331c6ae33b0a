#include "tavro/graphics/raster/Device.h"
#include "tavro/svg/filter/GraphInternal.h"
#include "tavro/svg/filter/ListInternal.h"
#include "tavro/svg/paint/PainterInternal.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <new>

namespace Vz {

namespace {

/// The greatest width and height of a filter's pictures, in pixels; beyond it they are computed coarser.
constexpr double MostPixels = 4096;
/// About the nanoseconds that one filtered element may take, that all of one painting may, and the part of
/// what is left of them that the next one may; beyond it pictures are computed coarser, too.
constexpr double MostCost = 5e8;
constexpr double MostCostOfAll = 1.5e9;
constexpr double MostShare = 1.0 / 3;
/// What a filtered element takes beside its primitives, in nanoseconds a pixel.
constexpr double OwnCost = 30;
/// What it takes however small it is, in nanoseconds.
constexpr double FixedCost = 2e5;
/// From this count of pixels on it is worth while to look where the content lies.
constexpr double ManyPixels = 1 << 20;
constexpr int MostTemplates = 32;

TRectD Grown(const TRectD& box, double x, double y) {
    return box.IsEmpty() ? box : TRectD{box.Left - x, box.Top - y, box.Right + x, box.Bottom + y};
}

TRectD Scaled(const TRectD& box, double factor) {
    return box.IsEmpty() ? box : TAffine::Scaling(factor, factor)(box);
}

double AreaOf(const TRectD& box) { return box.IsEmpty() ? 0 : box.Width() * box.Height(); }

bool IsFiniteBox(const TRectD& box) { return std::isfinite(box.Width()) && std::isfinite(box.Height()); }

/// What the first of a filter and those that it refers to says.
template <class F> auto Along(const TSVGFilter& filter, F get) -> decltype(get(filter)) {
    const TSVGFilter* at = &filter;
    for (int i = 0; at && i < MostTemplates; ++i, at = at->GetTemplate())
        if (auto found = get(*at)) return found;
    return {};
}

const TSVGFilter* ContentOf(const TSVGFilter& filter) {
    return Along(filter, [](const TSVGFilter& f) {
        return std::ranges::any_of(f.Children(),
                                   [](const auto& c) { return c->GetTag() == TSVGTag::FilterPart; })
                   ? &f
                   : nullptr;
    });
}

/// The filter region (Filter Effects 1, 8.2) in the element's units; empty where nothing is painted.
TRectD RegionOf(const TSVGFilter& filter, const TRectD& box, TLengthBasis basis) {
    using U = TSVGUnits;
    const bool boxUnits = Along(filter, [](const auto& f) {
                              return f.GetUnits();
                          }).value_or(U::ObjectBoundingBox) == U::ObjectBoundingBox;
    if (boxUnits) {
        if (box.IsEmpty() || !(box.Width() > 0) || !(box.Height() > 0)) return {};
        basis.ViewWidth = basis.ViewHeight = 1;
    }
    constexpr TSVGLength before{TSVGUnit::Percent, -10};
    constexpr TSVGLength extent{TSVGUnit::Percent, 120};
    const auto length = [&](auto get, const TSVGLength& byDefault, TAxis axis) {
        return Along(filter, get).value_or(byDefault).Resolve(axis, basis);
    };
    const double x = length([](const auto& f) { return f.GetOwnX(); }, before, TAxis::X);
    const double y = length([](const auto& f) { return f.GetOwnY(); }, before, TAxis::Y);
    const double w = length([](const auto& f) { return f.GetWidthLength(); }, extent, TAxis::X);
    const double h = length([](const auto& f) { return f.GetHeightLength(); }, extent, TAxis::Y);
    if (!(w > 0) || !(h > 0)) return {};
    const TRectD region{x, y, x + w, y + h};
    return boxUnits ? TAffine{box.Width(), 0, 0, box.Height(), box.Left, box.Top}(region) : region;
}

/// True where the map keeps right angles and stretches both axes alike.
bool IsConformal(const TAffine& m) {
    const double size = std::abs(m.A) + std::abs(m.B);
    return std::abs(m.A * m.C + m.B * m.D) <= 1e-6 * size * size &&
           std::abs(std::hypot(m.A, m.B) - std::hypot(m.C, m.D)) <= 1e-6 * size;
}

} // namespace

/// One element on its way through the filters that its style names, one stage each.
struct TSVGPainter::TFilterJob {
    using TPaintContent = std::function<void(const TPaintContext&)>;

    /// A filter element, or a function.
    struct TStage {
        const TFilterItem* Item = nullptr;
        const TSVGFilter* Filter = nullptr;  ///< null: a function
        const TSVGFilter* Content = nullptr; ///< the filter that has the primitives; null: there are none
        TRectD Region;                       ///< of a filter, in the element's units
        TRectD Pixels;                       ///< what the stage makes, in pixels of detail 1
        double Cost = 0;                     ///< about nanoseconds a pixel
    };

    TSVGPainter& Painter;
    const TSVGGraphicElement& Element;
    const TPaintContext& Inner;
    const TPaintContent& Paint;
    TLengthBasis Basis;
    std::vector<TFilterItem> Items;
    std::vector<TStage> Stages;
    TRectD Box;            ///< the element's, in its units
    bool IsTurned = false; ///< pixels are those of the device, though the element's axes are turned
    TAffine ToPixels;      ///< element's units -> pixels of detail 1
    TAffine ToDevice;      ///< pixels of detail 1 -> device
    double Detail = 1;     ///< pixels of the filter to one of detail 1
    std::optional<TRectD> Content;

    TFilterJob(TSVGPainter& painter, const TSVGGraphicElement& element, const TPaintContext& inner,
               const TPaintContent& paint)
        : Painter(painter)
        , Element(element)
        , Inner(inner)
        , Paint(paint)
        , Basis(BasisOf(*inner.Style, inner.ViewWidth, inner.ViewHeight)) {}

    bool FindStages();
    void ChooseGrid(bool turned);
    TFilterPlace PlaceOf(const TStage& stage) const;
    TFilterSurvey SurveyOf(const TStage& stage) const;
    bool CanTurn();
    const TRectD& ContentBox();
    void FindBoxes();
    double FindCost() const;
    double FindDetail(double cost) const;
    void ChooseDetail();
    TRectD ShownBox();
    void Run();

    TAffine Grid() const { return ToPixels.Then(TAffine::Scaling(Detail, Detail)); }
    TAffine GridToDevice() const { return TAffine::Scaling(1 / Detail, 1 / Detail).Then(ToDevice); }
    TRect PixelsOf(const TRectD& box) const { return WholePixels(Scaled(box, Detail)); }
    template <class F> TFilterImage Drawn(const TRect& box, F draw);
    TFilterImage PaintedSource();
    TFilterImage PaintedPaint(bool stroke, const TStage& stage);
    TFilterImage PaintedImage(const TSVGPlainElement& part, const TRectD& area, const TRect& box);
    TFilterImagePtr RunStage(const TStage& stage, const TFilterImagePtr& source);
    TFilterImage RunFunction(const TStage& stage, const TFilterImage& source);
    void Show(const TFilterImage& image);
};

/// Reads the filters; false where none is in force. A reference to what is no filter, or to one that is just
/// being drawn through, is passed over.
bool TSVGPainter::TFilterJob::FindStages() {
    const std::string& text = *Inner.Style->Filter;
    const std::string_view inside = std::string_view(text).substr(std::min<std::size_t>(5, text.size()));
    auto items = ParseFilterList(text, *Inner.Style, Basis);
    if (text.starts_with("url(#") && text.ends_with(')') &&
        Painter.FDocument.FindElement(inside.substr(0, inside.size() - 1)))
        items = std::vector{
            TFilterItem{TFilterItem::TKind::Reference, std::string(inside.substr(0, inside.size() - 1))}};
    if (!items || Element.GetTag() == TSVGTag::ClipPath) return false;
    Items = std::move(*items);
    for (const TFilterItem& item : Items) {
        TStage stage{&item};
        if (item.Kind == TFilterItem::TKind::Reference) {
            stage.Filter = Painter.FindReferenced<TSVGFilter>(std::make_shared<const std::string>(item.Id));
            if (!stage.Filter) continue;
            stage.Content = ContentOf(*stage.Filter);
            if (Box.IsEmpty()) Box = Painter.ObjectBox(Element, Inner);
            stage.Region = RegionOf(*stage.Filter, Box, Basis);
        }
        Stages.push_back(stage);
    }
    return !Stages.empty();
}

/// Pixels lie along the element's axes, in the device's resolution, or else where the device has them. The
/// origin is chosen so that what is not turned stands on whole pixels of the device.
void TSVGPainter::TFilterJob::ChooseGrid(bool turned) {
    const TAffine& m = Inner.Matrix;
    IsTurned = turned;
    ToPixels = m;
    ToDevice = {};
    if (turned) return;
    const double sx = std::hypot(m.A, m.B);
    const double sy = std::hypot(m.C, m.D);
    const TAffine axes{m.A / sx, m.B / sx, m.C / sy, m.D / sy, 0, 0};
    const double x = std::round(m.E);
    const double y = std::round(m.F);
    const TPointD rest = axes.Inverse()(m.E - x, m.F - y);
    ToPixels = {sx, 0, 0, sy, rest.X, rest.Y};
    ToDevice = {axes.A, axes.B, axes.C, axes.D, x, y};
}

TFilterPlace TSVGPainter::TFilterJob::PlaceOf(const TStage& stage) const {
    using U = TSVGUnits;
    TFilterPlace place;
    place.ToPixels = Grid();
    place.Region = stage.Region;
    place.Pixels = PixelsOf(stage.Pixels);
    place.Box = Box.IsEmpty() ? TRectD{0, 0, 0, 0} : Box;
    place.BoxUnits = stage.Filter && Along(*stage.Filter, [](const auto& f) {
                                         return f.GetContentUnits();
                                     }) == U::ObjectBoundingBox;
    place.Basis = Basis;
    place.Enabled = Inner.Enabled;
    return place;
}

TFilterSurvey TSVGPainter::TFilterJob::SurveyOf(const TStage& stage) const {
    if (stage.Content) return TFilterGraph(*stage.Content, PlaceOf(stage)).Survey();
    TFilterSurvey survey;
    if (stage.Filter) return survey;
    constexpr double costOfFunction = 55;
    const TFilterItem& item = *stage.Item;
    const double sx = std::hypot(ToPixels.A, ToPixels.B) * Detail;
    const double sy = std::hypot(ToPixels.C, ToPixels.D) * Detail;
    survey.Cost = costOfFunction;
    survey.ReachX = BlurReach(item.Sigma * sx) + (std::abs(item.Dx) + std::abs(item.Dy)) * sx + 1;
    survey.ReachY = BlurReach(item.Sigma * sy) + (std::abs(item.Dx) + std::abs(item.Dy)) * sy + 1;
    survey.IsTurnable = item.Sigma == 0 || IsConformal(ToPixels);
    return survey;
}

bool TSVGPainter::TFilterJob::CanTurn() {
    ChooseGrid(true);
    const TAffine& m = Inner.Matrix;
    if (m.B == 0 && m.C == 0) return false;
    return IsConformal(m) &&
           std::ranges::all_of(Stages, [this](const TStage& stage) { return SurveyOf(stage).IsTurnable; });
}

/// The box of what is filtered, in pixels of detail 1.
const TRectD& TSVGPainter::TFilterJob::ContentBox() {
    if (!Content) {
        TContentBounds bounds;
        TDeviceSwitch::TTurn turn(Painter.FDevice, bounds);
        const TPaintWork::TFollow follow(Painter.FWork); // the content is painted once more
        TPaintContext context = Inner;
        context.Matrix = ToPixels;
        Paint(context);
        Content = bounds.Box();
    }
    return *Content;
}

/// What each stage makes. A filter makes its region, or where it cannot paint all of that and the region is
/// large only what its input can reach; a function has no region.
void TSVGPainter::TFilterJob::FindBoxes() {
    const TRectD* before = nullptr;
    for (TStage& stage : Stages) {
        const TFilterSurvey survey = SurveyOf(stage);
        stage.Cost = survey.Cost;
        const auto reached = [&] {
            return Grown(before ? *before : ContentBox(), survey.ReachX / Detail, survey.ReachY / Detail);
        };
        if (stage.Filter) {
            stage.Pixels = stage.Region.IsEmpty() ? TRectD{} : ToPixels(stage.Region);
            if (survey.IsBounded && (before || !(AreaOf(stage.Pixels) < ManyPixels)))
                stage.Pixels = Intersection(stage.Pixels, reached());
            if (!stage.Content) stage.Pixels = {};
        } else {
            stage.Pixels = reached();
        }
        before = &stage.Pixels;
    }
}

double TSVGPainter::TFilterJob::FindCost() const {
    double cost = FixedCost;
    for (const TStage& stage : Stages)
        cost += (stage.Cost + OwnCost) * AreaOf(stage.Pixels);
    return cost;
}

double TSVGPainter::TFilterJob::FindDetail(double cost) const {
    double widest = 1;
    for (const TStage& stage : Stages)
        if (!stage.Pixels.IsEmpty()) widest = std::max({widest, stage.Pixels.Width(), stage.Pixels.Height()});
    const double share = std::max(MostCostOfAll - Painter.FWork.FilterCost, 0.0) * MostShare;
    const double most = std::min(MostPixels / (widest + 2), std::sqrt(std::min(MostCost, share) / cost));
    return std::min(Painter.FDevice.IsVector() ? 2.0 : 1.0, most);
}

void TSVGPainter::TFilterJob::ChooseDetail() {
    const double cost = FindCost();
    Detail = FindDetail(cost);
    Painter.FWork.FilterCost += cost * Detail * Detail;
}

/// The device's box around the pixels that Show lays down, which stand on whole pixels of the device, or are
/// carried on by their interpolation.
TRectD TSVGPainter::TFilterJob::ShownBox() {
    const TRectD& result = Stages.back().Pixels;
    const double detail = FindDetail(FindCost());
    if (detail == 1 && ToDevice.IsTranslation()) return ToDevice(result);
    constexpr double reach = 3; // of the rounding to pixels and of the bicubic
    return ToDevice(Grown(result, reach / detail, reach / detail));
}

/// What `draw` paints on a device of the box's pixels; it is given the map from the element's units to them.
template <class F> TFilterImage TSVGPainter::TFilterJob::Drawn(const TRect& box, F draw) {
    if (box.IsEmpty()) return {};
    TVZGPBitmap bitmap(static_cast<unsigned>(box.Width()), static_cast<unsigned>(box.Height()));
    TRasterDevice device(bitmap.GetPixels());
    {
        TDeviceSwitch::TTurn turn(Painter.FDevice, device);
        draw(Grid().Then(TAffine::Translation(-box.Left, -box.Top)));
    }
    return FilterImageOf(bitmap.GetPixels(), box.Left, box.Top);
}

TFilterImage TSVGPainter::TFilterJob::PaintedSource() {
    const TStage& first = Stages.front();
    return Drawn(PixelsOf(first.Filter ? first.Pixels : ContentBox()), [&](const TAffine& matrix) {
        // What context paints refer to lies on the device, too: it is moved along.
        const TAffine move = Inner.Matrix.Inverse().Then(matrix);
        std::deque<TPaintContext> inners;
        std::deque<TContextShape> shapes;
        TPaintContext context = Inner;
        context.Matrix = matrix;
        const TContextShape** link = &context.Context;
        while (*link) {
            inners.push_back(*(*link)->Inner);
            inners.back().Matrix = inners.back().Matrix.Then(move);
            shapes.push_back({(*link)->Element, &inners.back()});
            *link = &shapes.back();
            link = &inners.back().Context;
        }
        TFigures frame;
        if (IsTurned && first.Filter) {
            frame.AddRect(first.Region.Left, first.Region.Top, first.Region.Width(), first.Region.Height());
            const TClipShape clip{{&frame}, matrix};
            Painter.FDevice.PushClip({&clip, 1});
        }
        Paint(context);
        if (IsTurned && first.Filter) Painter.FDevice.PopClip();
    });
}

TFilterImage TSVGPainter::TFilterJob::PaintedPaint(bool stroke, const TStage& stage) {
    const TComputedStyle& style = *Inner.Style;
    return Drawn(PixelsOf(stage.Pixels), [&](const TAffine& matrix) {
        TPaintContext context = Inner;
        context.Matrix = matrix;
        bool stable = true;
        const auto paint = Painter.ResolvePaint(stroke ? style.Stroke : style.Fill,
                                                stroke ? style.StrokeOpacity : style.FillOpacity, Box, style,
                                                context, stable);
        TFigures frame;
        frame.AddRect(stage.Region.Left, stage.Region.Top, stage.Region.Width(), stage.Region.Height());
        if (paint) Painter.FDevice.Draw({&frame}, *paint, matrix);
    });
}

/// What an feImage shows (Filter Effects 1, 9.15): an element of the document as through a use at the
/// subregion's corner, or a picture fitted into the subregion.
TFilterImage TSVGPainter::TFilterJob::PaintedImage(const TSVGPlainElement& part, const TRectD& area,
                                                   const TRect& box) {
    const std::string* const href = part.FindAttribute("href");
    if (!href) return {};
    return Drawn(box, [&](const TAffine& matrix) {
        const TComputedStyle own = part.GetComputedStyle();
        TPaintContext context = Inner;
        context.Style = &own;
        context.Referenced = true;
        context.Context = nullptr;
        ++context.Depth;
        context.Matrix = TAffine::Translation(area.Left, area.Top).Then(matrix);
        if (href->starts_with('#')) {
            const auto* const target =
                dynamic_cast<const TSVGGraphicElement*>(Painter.FDocument.FindElement(href->substr(1)));
            if (!target || !target->GetParent()) return;
            const TComputedStyle style = target->GetParent()->GetComputedStyle();
            context.Style = &style;
            Painter.PaintElement(*target, context);
            return;
        }
        TSVGDocument holder;
        auto& image = holder.Add<TSVGImage>();
        image.SetPicture(part.GetPicture());
        if (const std::string* const ratio = part.FindAttribute("preserveAspectRatio"))
            image.ReadAttribute("preserveAspectRatio", *ratio);
        image.SetWidthLength(TSVGLength{TSVGUnit::Number, area.Width()});
        image.SetHeightLength(TSVGLength{TSVGUnit::Number, area.Height()});
        Painter.PaintImage(image, context);
    });
}

TFilterImagePtr TSVGPainter::TFilterJob::RunStage(const TStage& stage, const TFilterImagePtr& source) {
    if (!stage.Filter)
        return std::make_shared<const TFilterImage>(
            RunFunction(stage, InColors(*source, TFilterColors::Srgb)));
    if (!stage.Content) return std::make_shared<const TFilterImage>();
    const TFollow follow(Painter, stage.Filter);
    const TFilterPainter painter{[&](bool stroke) { return PaintedPaint(stroke, stage); },
                                 [&](const TSVGPlainElement& part, const TRectD& area, const TRect& at) {
                                     return PaintedImage(part, area, at);
                                 }};
    return TFilterGraph(*stage.Content, PlaceOf(stage)).Run(source, painter);
}

/// Functions work on sRGB colours (Filter Effects 1, 13).
TFilterImage TSVGPainter::TFilterJob::RunFunction(const TStage& stage, const TFilterImage& source) {
    const TRect box = PixelsOf(stage.Pixels);
    const TFilterItem& item = *stage.Item;
    const TAffine grid = Grid();
    const double sigmaX = item.Sigma * std::hypot(grid.A, grid.B);
    const double sigmaY = item.Sigma * std::hypot(grid.C, grid.D);
    if (item.Kind == TFilterItem::TKind::Blur) return Blurred(source, sigmaX, sigmaY, box, box);
    if (item.Kind == TFilterItem::TKind::Colors) return Recoloured(source, item.Matrix, box);
    const TPointD shift = PixelShift(grid, item.Dx, item.Dy);
    const TVZGPColor color = Inner.Enabled ? item.Color : GreyOf(item.Color);
    return WithShadow(source, {shift.X, shift.Y, sigmaX, sigmaY, color}, box, box);
}

void TSVGPainter::TFilterJob::Show(const TFilterImage& image) {
    if (image.IsEmpty()) return;
    const TRect& box = image.Box();
    TVZGPBitmap bitmap(static_cast<unsigned>(box.Width()), static_cast<unsigned>(box.Height()));
    WritePixels(image, bitmap.GetPixels());
    const TStage& last = Stages.back();
    TFigures frame;
    const bool clipped = IsTurned && last.Filter;
    if (clipped) {
        frame.AddRect(last.Region.Left, last.Region.Top, last.Region.Width(), last.Region.Height());
        const TClipShape clip{{&frame}, Inner.Matrix};
        Painter.FDevice.PushClip({&clip, 1});
    }
    Painter.FCurrent = Inner.Use ? Inner.Use : &Element;
    // What was computed coarser has no detail that is worth the dearer way.
    const TInterpolation mode = Detail < 1 ? TInterpolation::Bilinear : TInterpolation::Bicubic;
    const TAffine toDevice = TAffine::Translation(box.Left, box.Top).Then(GridToDevice());
    Painter.FDevice.DrawImage(bitmap.GetPixels(), toDevice, 1, mode);
    if (clipped) Painter.FDevice.PopClip();
}

void TSVGPainter::TFilterJob::Run() {
    if (!CanTurn()) ChooseGrid(false);
    FindBoxes();
    const TRectD& result = Stages.back().Pixels;
    if (result.IsEmpty() ||
        !std::ranges::all_of(Stages, [](const TStage& s) { return IsFiniteBox(s.Pixels); }))
        return;
    if (TContentBounds* const bounds = Painter.FDevice.Bounds()) return bounds->Add(ShownBox());
    if (Intersection(WholePixels(Grown(ToDevice(result), 1, 1)), Painter.FDevice.GetClipBounds()).IsEmpty())
        return;
    ChooseDetail();
    if (!GridToDevice().IsFinite()) return;
    auto image = std::make_shared<const TFilterImage>(PaintedSource());
    for (const TStage& stage : Stages)
        image = RunStage(stage, image);
    Show(*image);
}

void TSVGPainter::PaintFiltered(const TSVGGraphicElement& element, const TPaintContext& inner,
                                const std::function<void(const TPaintContext&)>& paint) {
    TFilterJob job(*this, element, inner, paint);
    if (!inner.Matrix.IsFinite() || !inner.Matrix.IsInvertible()) return;
    if (!job.FindStages()) return paint(inner);
    try {
        job.Run();
    } catch (const std::bad_alloc&) {
        // Nothing is painted where the memory does not suffice.
    }
}

} // namespace Vz
