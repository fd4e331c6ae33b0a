#pragma once

#include "tavro/graphics/Transform.h"
#include "tavro/instruments/Instrument.h"
#include "tavro/runtime/Props.h"

#include <array>
#include <stdexcept>
#include <string_view>

namespace Vz {

/// The declared defaults that differ from class to class.
struct TInstrumentDefaults {
    TDecoration Decoration = TDecoration::dcNone;
    TVZGPColor DecorationFillColor = 0xFF87CEEB;
    TVZGPColor DecorationStrokeColor = 0xFF000000;
};

namespace Detail {

/// The rows of all properties that an instrument may take over from its bases.
consteval auto InheritedRows() {
    using T = TVZSVGCustomInstrument;
    constexpr TInstrumentDefaults usual;
    return std::array{
        Prop<&T::GetDesign, &T::SetDesign>("Design", TSVGDesign::sdDetailed),
        Prop<&T::GetDecoration, &T::SetDecoration>("Decoration", usual.Decoration),
        ObjectProp<&T::GetDecorationPath, &T::SetDecorationPath, &T::IsDecorationPathStored,
                   &T::ResetDecorationPath>("DecorationPath"),
        Prop<&T::GetDecorationFillColor, &T::SetDecorationFillColor>("DecorationFillColor",
                                                                     usual.DecorationFillColor),
        Prop<&T::GetDecorationStrokeColor, &T::SetDecorationStrokeColor>("DecorationStrokeColor",
                                                                         usual.DecorationStrokeColor),
        Prop<&T::GetEnableGradients, &T::SetEnableGradients>("EnableGradients", true),
        Prop<&T::GetLightColor, &T::SetLightColor>("LightColor", T::DefaultLightColor),
        Prop<&T::GetFormatStr, &T::SetFormatStr, &T::IsFormatStrStored>("FormatStr", T::DefaultFormatStr),
        Prop<&T::GetBuffered, &T::SetBuffered>("Buffered", true),
        Prop<&T::GetStretch, &T::SetStretch>("Stretch", false),
        Prop<&T::GetQuality, &T::SetQuality>("Quality", 1),
        Prop<&T::GetOpacity, &T::SetOpacity, &T::IsOpacityStored>("Opacity", 1.0f),
        ObjectProp<&T::GetTransform, &T::SetTransform, &T::IsTransformStored>("Transform"),
        EventProp<&T::SetOnChange>("OnChange"),
        EventProp<&T::SetOnDrawing>("OnDrawing"),
        EventProp<&T::SetOnDrawn>("OnDrawn"),
    };
}

/// One of these rows, with the class's own default; an unknown name does not compile.
constexpr TProp InheritedRow(std::string_view name, const TInstrumentDefaults& defaults) {
    constexpr auto rows = InheritedRows();
    for (TProp row : rows) {
        if (row.Name != name) continue;
        if (name == "Decoration") row.Default = TValueTraits<TDecoration>::ToValue(defaults.Decoration);
        if (name == "DecorationFillColor")
            row.Default = TValueTraits<TVZGPColor>::ToValue(defaults.DecorationFillColor);
        if (name == "DecorationStrokeColor")
            row.Default = TValueTraits<TVZGPColor>::ToValue(defaults.DecorationStrokeColor);
        return row;
    }
    throw std::logic_error("an instrument inherits no property of that name");
}

} // namespace Detail

/// The table of an instrument: its own rows, then the inherited properties that it publishes too, by name, in
/// the order in which they are given. Decoration stands before DecorationPath, because setting it clears the
/// path.
///     static constexpr auto Rows = Publish({Prop<...>("Max", 240.0f), ...}, {"Design", "LightColor", ...});
template <std::size_t N, std::size_t M>
consteval std::array<TProp, N + M> Publish(const TProp (&own)[N], const std::string_view (&inherited)[M],
                                           TInstrumentDefaults defaults = {}) {
    std::array<TProp, N + M> rows{};
    for (std::size_t i = 0; i < N; ++i)
        rows[i] = own[i];
    for (std::size_t i = 0; i < M; ++i)
        rows[N + i] = Detail::InheritedRow(inherited[i], defaults);
    return rows;
}

} // namespace Vz
