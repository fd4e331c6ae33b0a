#include "tavro/instruments/meters/Meter.h"

#include "tavro/instruments/Editing.h"

namespace Vz {

TVZCustomMeter::TVZCustomMeter(TCreateKey key)
    : TVZCustomScaleInstrument(key)
    , FFont(std::make_unique<TSVGFont>()) {}

TVZCustomMeter::~TVZCustomMeter() = default;

void TVZCustomMeter::Construct() {
    TVZCustomScaleInstrument::Construct();
    FFont->OnChange = [this](TObject&) { FontChanged(); };
}

void TVZCustomMeter::SetFont(const TSVGFont& value) { FFont->Assign(value); }

void TVZCustomMeter::FontChanged() { ApplyFont("Labels", *FFont); }

} // namespace Vz
