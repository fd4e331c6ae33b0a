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

} // namespace Vz
