#include "tavro/instruments/Instrument.h"

#include "tavro/instruments/Editing.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/Rounding.h"

#include <algorithm>
#include <array>
#include <cassert>
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

// Reading.

bool TVZSVGCustomInstrument::FindColor(const TColorSource& source, TVZGPColor& color) const {
    switch (source.Place) {
    case TColorSource::TPlace::None:
        return false;
    case TColorSource::TPlace::Fill:
    case TColorSource::TPlace::Stroke: {
        auto* const element = Find<TSVGGraphicElement>(source.Id);
        if (!element) return false;
        const bool isFill = source.Place == TColorSource::TPlace::Fill;
        color = isFill ? element->GetBrush().GetColor() : element->GetPen().GetColor();
        return true;
    }
    case TColorSource::TPlace::Stop:
    case TColorSource::TPlace::LastStop: {
        const auto* const gradient = Find<TSVGCustomGradient>(source.Id);
        const std::size_t count = gradient ? gradient->GetStopCount() : 0;
        const std::size_t index = source.Place == TColorSource::TPlace::Stop ? source.Index : count - 1;
        if (index >= count) return false;
        color = StopColor(*gradient, index);
        return true;
    }
    }
    return false;
}

void TVZSVGCustomInstrument::ReadColor(TReadColor& color, const TColorSource& source) {
    if (TVZGPColor read; FindColor(source, read)) color = {read, read};
}

void TVZSVGCustomInstrument::SaveGradients() {
    const TInstrumentSetup& setup = GetSetup();
    const auto save = [this](std::string_view id) {
        if (auto* const gradient = Find<TSVGCustomGradient>(id)) SaveGradientColor(*gradient);
    };
    for (const TColorRow& row : setup.Colors)
        for (const TColorEdit& edit : row.Edits)
            if (edit.Restores()) save(edit.Id);
    for (const TColorEdit& edit : setup.LightEdits)
        if (edit.Restores()) save(edit.Id);
    for (const std::string_view id : setup.SavedGradients)
        save(id);
}

// Setting.

void TVZSVGCustomInstrument::SetColor(std::size_t index, TVZGPColor value) {
    if (!Store(FColors[index].Now, value)) return;
    const TColorRow& row = GetSetup().Colors[index];
    EditDocument([&] {
        for (const TColorEdit& edit : row.Edits) {
            const bool always = edit.When == TColorEdit::TWhen::Always;
            if (always || (edit.When == TColorEdit::TWhen::WithGradients) == FEnableGradients)
                ApplyEdit(edit, value);
        }
        ColorChanged(index);
    });
    if (row.Reach == TReach::Picture) MarkBuffersStale();
    Invalidate();
}

TVZGPColor TVZSVGCustomInstrument::Tinted(const TTint& tint, TVZGPColor color) const {
    constexpr TVZGPColor grey = 0xFF808080;
    // The colour with so much added to its channels, each held in 0..255.
    const auto plus = [&](int red, int green, int blue) {
        const auto held = [](int channel) { return unsigned(std::clamp(channel, 0, 255)); };
        return MakeColor(AlphaOf(color), held(RedOf(color) + red), held(GreenOf(color) + green),
                         held(BlueOf(color) + blue));
    };
    const int lowered = -static_cast<int>(tint.Amount);
    switch (tint.Kind) {
    case TTint::TKind::Same:
        return color;
    case TTint::TKind::Scaled:
        return ScaleColor(color, tint.Amount);
    case TTint::TKind::Lowered:
        return plus(lowered, lowered, lowered);
    case TTint::TKind::PlusHalfLight:
        return plus(RedOf(FLightColor) / 2, GreenOf(FLightColor) / 2, BlueOf(FLightColor) / 2);
    case TTint::TKind::Dodged:
        return DodgeColor(color, grey);
    case TTint::TKind::Burned:
        return BurnColor(color, grey);
    case TTint::TKind::Light:
        return FLightColor;
    case TTint::TKind::Shadow:
        return GetShadowColor();
    case TTint::TKind::Fixed:
        return tint.Value;
    }
    return color;
}

void TVZSVGCustomInstrument::ApplyEdit(const TColorEdit& edit, TVZGPColor color) {
    using W = TColorEdit::TWhat;
    const TVZGPColor tinted = Tinted(edit.Tint, color);
    if (edit.What == W::Fill) return SetElementFill(edit.Id, tinted);
    if (edit.What == W::Stroke) return SetElementStroke(edit.Id, tinted);
    if (edit.What == W::FlatFill) return SetElementFlatFill(edit.Id, tinted);
    auto* const gradient = Find<TSVGCustomGradient>(edit.Id);
    if (!gradient) return;
    EditDocument([&] {
        if (edit.Restores()) RestoreGradientColor(*gradient);
        if (edit.What == W::RecolourAbout)
            ChangeGradientColor(*gradient, tinted, int{edit.Index});
        else if (edit.Restores())
            ChangeGradientColor(*gradient, tinted, edit.What == W::Recolour);
        else
            SetStops(*gradient, edit, tinted);
        GetDocument().Changed();
    });
}

void TVZSVGCustomInstrument::SetStops(TSVGCustomGradient& gradient, const TColorEdit& edit,
                                      TVZGPColor color) {
    // Light and shade are what the stops' opacities make of the colour; with its alpha they would be flat.
    const bool keepsAlpha = edit.Tint.Kind == TTint::TKind::Light || edit.Tint.Kind == TTint::TKind::Shadow;
    for (std::size_t i = 0; i < gradient.GetStopCount(); ++i)
        if (edit.What == TColorEdit::TWhat::EveryStop || i == edit.Index)
            SetStopColor(gradient, i, keepsAlpha ? WithAlpha(color, AlphaOf(StopColor(gradient, i))) : color);
}

void TVZSVGCustomInstrument::RecolourGradient(std::string_view id, TVZGPColor color) {
    ApplyEdit(Rows::Recolour(id), color);
}

void TVZSVGCustomInstrument::DoUpdateLight() {
    for (const TColorEdit& edit : GetSetup().LightEdits)
        ApplyEdit(edit, FLightColor);
}

// Gradients or flat colours.

TVZGPColor TVZSVGCustomInstrument::ColorNamed(std::string_view property) const {
    const auto rows = GetSetup().Colors;
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (rows[i].Name == property) return FColors[i].Now;
    if (property == "DecorationFillColor") return FDecorationFillColor.Now;
    if (property == "DecorationStrokeColor") return FDecorationStrokeColor.Now;
    assert(property == "LightColor" && "a row of Gradients names a colour that the class does not have");
    return FLightColor;
}

void TVZSVGCustomInstrument::DoEnableGradients(bool enable) {
    using W = TGradientRow::TWhat;
    for (const TGradientRow& row : GetSetup().Gradients) {
        if (row.What == W::Shown)
            ShowElement(row.Element, enable);
        else if (row.What == W::ShownInDetail)
            ShowElement(row.Element, enable && FDesign == TSVGDesign::sdDetailed);
        else
            DoEnableGradient(row.Element, row.Gradient, enable, Tinted(row.Tint, ColorNamed(row.Color)),
                             row.What == W::Fill);
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
