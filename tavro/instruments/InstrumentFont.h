#pragma once

#include "tavro/svg/model/Font.h"

namespace Vz {

/// A font of an instrument that has a size of its own to begin with: a stream writes the size only where it
/// is another one.
class TInstrumentFont final : public TSVGFont {
public:
    /// Makes the size, in artwork units, the font's and its default. Raises OnChange where it is another one.
    void SetDefaultSize(float value);
    bool IsSizeStored() const { return GetSize() != FDefaultSize; }
    std::span<const TProp> GetPropTable() const override;

private:
    float FDefaultSize = 0;
};

} // namespace Vz
