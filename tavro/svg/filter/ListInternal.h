#pragma once

#include "tavro/svg/css/Style.h"
#include "tavro/svg/filter/OpsInternal.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Vz {

/// One item of the value of the filter property (Filter Effects 1, 6): a reference to a filter element, or a
/// function.
struct TFilterItem {
    enum class TKind : std::uint8_t { Reference, Blur, Shadow, Colors };
    TKind Kind = TKind::Reference;
    std::string Id;        ///< Reference
    double Dx = 0, Dy = 0; ///< Shadow, in user units
    double Sigma = 0;      ///< Blur, Shadow: the deviation in user units
    TVZGPColor Color = 0;  ///< Shadow
    TColorMatrix Matrix{}; ///< Colors
};

/// The items of a value; nothing where some part of it is in error, so that the value does not count. Lengths
/// and currentColor are those of the style.
std::optional<std::vector<TFilterItem>> ParseFilterList(std::string_view text, const TComputedStyle& style,
                                                        const TLengthBasis& basis);

} // namespace Vz
