#pragma once

#include "tavro/graphics/PathData.h"
#include "tavro/graphics/Transform.h"
#include "tavro/instruments/Instrument.h"
#include "tavro/instruments/Tables.h"
#include "tavro/runtime/Props.h"

#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace Vz {

namespace Detail {

/// The rows of all properties that an instrument may take over from its bases.
consteval auto InheritedRows() {
    using T = TVZSVGCustomInstrument;
    return std::array{
        Prop<&T::GetDesign, &T::SetDesign>("Design", TSVGDesign::sdDetailed),
        Prop<&T::GetDecoration, &T::SetDecoration>("Decoration", TDecoration::dcNone),
        ObjectProp<&T::GetDecorationPath, &T::SetDecorationPath, &T::IsDecorationPathStored,
                   &T::ResetDecorationPath>("DecorationPath"),
        Prop<&T::GetDecorationFillColor, &T::SetDecorationFillColor>("DecorationFillColor", TVZGPColor{}),
        Prop<&T::GetDecorationStrokeColor, &T::SetDecorationStrokeColor>("DecorationStrokeColor",
                                                                         TVZGPColor{}),
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
constexpr TProp InheritedRow(std::string_view name, const TInstrumentSetup& setup) {
    constexpr auto rows = InheritedRows();
    for (TProp row : rows) {
        if (row.Name != name) continue;
        if (name == "Decoration") row.Default = TValueTraits<TDecoration>::ToValue(setup.Decoration);
        if (name == "DecorationFillColor")
            row.Default = TValueTraits<TVZGPColor>::ToValue(setup.DecorationFill);
        if (name == "DecorationStrokeColor")
            row.Default = TValueTraits<TVZGPColor>::ToValue(setup.DecorationStroke);
        return row;
    }
    throw std::logic_error("an instrument inherits no property of that name");
}

/// The row of a colour of the tables.
template <const TInstrumentSetup& Setup, std::size_t I> constexpr TProp ColorRow() {
    using Traits = TValueTraits<TVZGPColor>;
    TProp row;
    row.Name = Setup.Colors[I].Name;
    row.Type = Traits::Type;
    row.Get = [](const TPersistent& object) {
        return Traits::ToValue(TColorAccess::Get(static_cast<const TVZSVGCustomInstrument&>(object), I));
    };
    row.Set = [](TPersistent& object, const TValue& value) {
        TColorAccess::Set(static_cast<TVZSVGCustomInstrument&>(object), I, Traits::FromValue(value));
    };
    row.Default = Traits::ToValue(Setup.Colors[I].Default);
    return row;
}

} // namespace Detail

/// The rows of all colours of the class's tables, in their order.
template <const TInstrumentSetup& Setup> constexpr auto ColorProps() {
    return []<std::size_t... I>(std::index_sequence<I...>) {
        return std::array{Detail::ColorRow<Setup, I>()...};
    }
    (std::make_index_sequence<Setup.Colors.size()>());
}

/// The size, for classes that declare a default of it. consteval, because clang 14 calls Prop with a
/// parameter of the template from nothing else.
template <int Width, int Height> consteval auto SizeProps() {
    using T = TVZSVGCustomInstrument;
    return std::array{Prop<&T::GetWidth, &T::SetWidth>("Width", Width),
                      Prop<&T::GetHeight, &T::SetHeight>("Height", Height)};
}

/// Properties that the class takes over from its bases, by name, with the setup's defaults. Decoration stands
/// before DecorationPath, because setting it clears the path.
template <const TInstrumentSetup& Setup, std::size_t N>
constexpr auto Inherited(const std::string_view (&names)[N]) {
    std::array<TProp, N> rows{};
    for (std::size_t i = 0; i < N; ++i)
        rows[i] = Detail::InheritedRow(names[i], Setup);
    return rows;
}

/// The table of an instrument: its groups of rows, one behind the other.
///     static constexpr auto Rows = Publish(ScaleProps<T>(0, 240, 0), ColorProps<Setup>(),
///                                          Inherited<Setup>({"Design", "LightColor"}));
template <std::size_t... N> constexpr auto Publish(const std::array<TProp, N>&... groups) {
    std::array<TProp, (N + ...)> rows{};
    std::size_t count = 0;
    const auto take = [&](const auto& group) {
        for (const TProp& row : group)
            rows[count++] = row;
    };
    (take(groups), ...);
    return rows;
}

} // namespace Vz
