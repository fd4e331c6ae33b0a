#include "tavro/instruments/InstrumentFont.h"

#include "tavro/runtime/Props.h"

#include <vector>

namespace Vz {

void TInstrumentFont::SetDefaultSize(float value) {
    SetSize(value);
    FDefaultSize = GetSize();
}

std::span<const TProp> TInstrumentFont::GetPropTable() const {
    static const std::vector<TProp> rows = [] {
        const TSVGFont font;
        const auto base = font.GetPropTable();
        std::vector<TProp> all(base.begin(), base.end());
        for (TProp& row : all) {
            if (row.Name != "Size") continue;
            row.Default = {}; // each instrument's own
            row.Stored = &Detail::TStored<&TInstrumentFont::IsSizeStored>::Is;
        }
        return all;
    }();
    return rows;
}

} // namespace Vz
