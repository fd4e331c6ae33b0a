#include "tavro/controls/GraphicControl.h"

#include "tavro/runtime/Props.h"

#include <array>

namespace Vz {

void TVZCustomTransparentGraphicControl::Paint(TVZGPCanvas& canvas) {
    DoPainting(canvas);
    DoPaint(canvas);
    DoPainted(canvas);
}

void TVZCustomTransparentGraphicControl::DoPainting(TVZGPCanvas& canvas) {
    Raise(FOnPainting, *this, canvas);
}

void TVZCustomTransparentGraphicControl::DoPainted(TVZGPCanvas& canvas) { Raise(FOnPainted, *this, canvas); }

std::span<const TProp> TVZCustomTransparentGraphicControl::GetCommonEvents() const {
    using T = TVZCustomTransparentGraphicControl;
    static const auto rows = [] {
        const auto base = ControlEvents();
        std::vector<TProp> all(base.begin(), base.end());
        all.push_back(EventProp<&T::SetOnPainting>("OnPainting"));
        all.push_back(EventProp<&T::SetOnPainted>("OnPainted"));
        return all;
    }();
    return rows;
}

} // namespace Vz
