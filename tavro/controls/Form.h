#pragma once

#include "tavro/controls/Control.h"

namespace Vz {

/// A root that holds other controls and paints nothing itself. Default size 640 x 480.
class TVZForm final : public TCreatable<TVZForm, TControl> {
public:
    static constexpr std::string_view TypeName = "TVZForm";
    using TCreatable::TCreatable;

protected:
    void Construct() override;
};

} // namespace Vz
