#pragma once

#include "tavro/runtime/Value.h"

#include <cstdint>
#include <string_view>

namespace Vz {

/// The look of an artwork: with its decorative detail, or plain.
enum class TSVGDesign : std::uint8_t { sdDetailed, sdSimple };

template <> struct EnumNames<TSVGDesign> {
    static constexpr std::string_view Name = "TSVGDesign";
    static constexpr std::string_view Members[] = {"sdDetailed", "sdSimple"};
};

/// Where a colour stands in an artwork.
enum class TColorPlace : std::uint8_t { Fill, Stroke, FirstStop, LastStop };

/// What an element of an artwork must be for the code that uses it.
enum class TArtworkKind : std::uint8_t {
    Graphic,  ///< anything that is drawn
    Path,     ///< a path
    Text,     ///< a text
    Texts,    ///< a group whose children are all texts
    Rect,     ///< a rect
    Gradient, ///< a gradient, with stops of its own or borrowed ones
    Stops,    ///< a gradient with stops of its own
};

/// One element that an instrument looks for in its artwork. Texts of the same parent stand in the rows'
/// order.
struct TArtworkRow {
    std::string_view Id;
    TArtworkKind Kind = TArtworkKind::Graphic;
    std::string_view Parent = {}; ///< id of the element that it must lie in, at any depth; empty: anywhere
};

/// A row of a part table: the part, and an element that it shows.
template <class TPart> struct TPartRow {
    TPart Part;
    std::string_view Element;
};

} // namespace Vz
