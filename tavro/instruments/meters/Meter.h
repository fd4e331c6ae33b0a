#pragma once

#include "tavro/instruments/ScaleInstrument.h"

#include <memory>

namespace Vz {

/// Base of the meters whose artwork carries a printed scale: an element "Labels" holds the numbers, which are
/// rewritten from the range and take one font.
class TVZCustomMeter : public TVZCustomScaleInstrument {
public:
    explicit TVZCustomMeter(TCreateKey key);
    ~TVZCustomMeter() override;

    /// Font of the numbers, in artwork units. By default everything is as the artwork has it. Set by copying;
    /// a change is shown at once.
    TSVGFont& GetFont() const { return *FFont; }
    void SetFont(const TSVGFont& value);

    void UpdateNumbers() override { InitializeLabels(); }
    /// Writes the numbers of the scale. A child of their group that is no text raises EInvalidCast.
    virtual void InitializeLabels() = 0;

protected:
    void Construct() override;
    /// Gives "Labels" the font.
    void FontChanged();

private:
    const std::unique_ptr<TSVGFont> FFont;
};

} // namespace Vz
