#include "tavro/instruments/Instrument.h"

#include "tavro/runtime/Exceptions.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace Vz {

namespace {

/// Red, green and blue of a colour.
using TChannels = std::array<int, 3>;

TChannels ChannelsOf(TVZGPColor color) { return {RedOf(color), GreenOf(color), BlueOf(color)}; }

bool HasSameHue(TVZGPColor a, TVZGPColor b) { return WithAlpha(a, 0) == WithAlpha(b, 0); }

/// The factor by which brightness changed from one colour to the next: that of the channel that changed most;
/// where several did, blue goes before green and green before red.
float BrightnessStep(TVZGPColor from, TVZGPColor to) {
    const TChannels before = ChannelsOf(from);
    const TChannels after = ChannelsOf(to);
    TChannels change{};
    for (int i = 0; i < 3; ++i)
        change[i] = std::abs(after[i] - before[i]);
    int most = 0;
    for (int i = 1; i < 3; ++i)
        if (change[i] >= change[most]) most = i;
    // From nothing to something is taken as a huge step, which saturates every channel that is not 0. Kept.
    if (before[most] == 0) return 2147483648.0f;
    const double sign = after[most] < before[most] ? -1 : 1;
    return static_cast<float>(sign * (double(change[most]) / before[most]) + 1);
}

/// A colour moved by what separates two others, each channel held in 0..255.
TVZGPColor Shifted(TVZGPColor color, TVZGPColor from, TVZGPColor to) {
    const auto moved = [](int channel, int before, int after) {
        return static_cast<unsigned>(std::clamp(channel + after - before, 0, 255));
    };
    return MakeColor(AlphaOf(to), moved(RedOf(color), RedOf(from), RedOf(to)),
                     moved(GreenOf(color), GreenOf(from), GreenOf(to)),
                     moved(BlueOf(color), BlueOf(from), BlueOf(to)));
}

TVZGPColor StopColor(const TSVGCustomGradient& gradient, std::size_t index) {
    return gradient.GetStop(index).GetStopColor();
}

void SetStopColor(TSVGCustomGradient& gradient, std::size_t index, TVZGPColor color) {
    gradient.GetStop(index).GetStopBrush().SetColor(color);
}

} // namespace

void TVZSVGCustomInstrument::ChangeGradientColor(TSVGCustomGradient& gradient, TVZGPColor color,
                                                 bool forward) {
    const std::size_t count = gradient.GetStopCount();
    if (count == 0) return;
    const auto place = [&](std::size_t i) { return forward ? i : count - 1 - i; };
    const TVZGPColor reference = StopColor(gradient, place(0));
    TVZGPColor before = reference;
    TVZGPColor shaded = color;
    SetStopColor(gradient, place(0), color);
    for (std::size_t i = 1; i < count; ++i) {
        const TVZGPColor own = StopColor(gradient, place(i));
        if (HasSameHue(own, reference))
            shaded = WithAlpha(color, AlphaOf(own));
        else
            shaded = WithAlpha(ScaleColor(shaded, BrightnessStep(before, own)), AlphaOf(own));
        SetStopColor(gradient, place(i), shaded);
        before = own;
    }
}

void TVZSVGCustomInstrument::ChangeGradientColor(TSVGCustomGradient& gradient, TVZGPColor color, int index) {
    const std::size_t count = gradient.GetStopCount();
    if (count == 0) return;
    if (count == 1) return SetStopColor(gradient, 0, color);
    if (index < 0) throw EArgumentOutOfRange("a gradient has no stop " + std::to_string(index));
    const TVZGPColor reference = StopColor(gradient, static_cast<std::size_t>(index));
    for (std::size_t i = 0; i < count; ++i)
        SetStopColor(gradient, i, Shifted(color, reference, StopColor(gradient, i)));
}

void TVZSVGCustomInstrument::SaveGradientColor(TSVGCustomGradient& gradient) {
    for (std::size_t i = 0; i < gradient.GetStopCount(); ++i)
        gradient.GetStop(i).SetSavedColor(StopColor(gradient, i));
}

void TVZSVGCustomInstrument::RestoreGradientColor(TSVGCustomGradient& gradient) {
    for (std::size_t i = 0; i < gradient.GetStopCount(); ++i)
        SetStopColor(gradient, i, gradient.GetStop(i).GetSavedColor());
}

void TVZSVGCustomInstrument::RecolourGradient(std::string_view id, TVZGPColor color) {
    auto* const gradient = Find<TSVGCustomGradient>(id);
    if (!gradient) return;
    EditDocument([&] {
        RestoreGradientColor(*gradient);
        ChangeGradientColor(*gradient, color, true);
        GetDocument().Changed();
    });
}

void TVZSVGCustomInstrument::Recolour(std::initializer_list<std::string_view> gradients,
                                      std::string_view flatElement, TVZGPColor color) {
    if (!FEnableGradients) return SetElementFill(flatElement, color);
    for (const std::string_view id : gradients)
        RecolourGradient(id, color);
}

void TVZSVGCustomInstrument::ReadColors(std::span<const TColorRow> rows) {
    for (const TColorRow& row : rows) {
        if (row.Place == TColorPlace::Fill || row.Place == TColorPlace::Stroke) {
            auto* const element = Find<TSVGGraphicElement>(row.Id);
            if (element && row.Field)
                *row.Field = row.Place == TColorPlace::Fill ? element->GetBrush().GetColor()
                                                            : element->GetPen().GetColor();
            continue;
        }
        auto* const gradient = Find<TSVGCustomGradient>(row.Id);
        if (!gradient) continue;
        if (const std::size_t count = gradient->GetStopCount(); row.Field && count > 0)
            *row.Field = StopColor(*gradient, row.Place == TColorPlace::FirstStop ? 0 : count - 1);
        if (row.Save) SaveGradientColor(*gradient);
    }
}

void TVZSVGCustomInstrument::DoEnableGradient(std::string_view elementId, std::string_view gradientUri,
                                              bool enable, TVZGPColor color, bool fill) {
    auto* const element = Find<TSVGGraphicElement>(elementId);
    if (!element) return;
    TSVGBrush brush = fill ? element->GetBrush() : element->GetPen();
    brush.SetURI(enable ? gradientUri : std::string_view());
    brush.SetKind(enable ? TVZGPBrushKind::URI : TVZGPBrushKind::Solid);
    if (!enable) brush.SetColor(color);
    element->Changed();
}

void TVZSVGCustomInstrument::SwitchGradients(std::span<const TGradientRow> rows, bool enable) {
    for (const TGradientRow& row : rows)
        DoEnableGradient(row.Element, row.Gradient, enable, row.Color, row.Fill);
}

void TVZSVGCustomInstrument::UpdateGradients() {
    EditDocument([this] { DoEnableGradients(FEnableGradients); });
    MarkChanged();
}

void TVZSVGCustomInstrument::UpdateLight() {
    EditDocument([this] {
        DoUpdateLight();
        GetDocument().Changed();
        MarkBuffersStale();
    });
    Invalidate();
}

TVZGPColor TVZSVGCustomInstrument::GetShadowColor() const {
    const auto [red, green, blue] = ChannelsOf(FLightColor);
    const int least = std::min({red, green, blue});
    return MakeColor(AlphaOf(FLightColor), unsigned(red - least), unsigned(green - least),
                     unsigned(blue - least));
}

} // namespace Vz
