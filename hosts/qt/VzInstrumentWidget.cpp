#include "hosts/qt/VzInstrumentWidget.h"

#include "tavro/instruments/Instrument.h"

using namespace Vz;

VzInstrumentWidget::VzInstrumentWidget(std::unique_ptr<TVZSVGCustomInstrument> component, const TTable& table,
                                       QWidget* parent)
    : VzFileWidget(std::move(component), table, parent, "artwork") {}

void VzInstrumentWidget::setArtwork(const QString& value) {
    if (setFile(value)) Q_EMIT artworkChanged(value);
}

void VzInstrumentWidget::showNoFile() {
    auto& instrument = static_cast<TVZSVGCustomInstrument&>(component());
    instrument.LoadSVGResource(instrument.GetSVGResourceName());
}
