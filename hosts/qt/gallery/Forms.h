#pragma once

#include "tavro/runtime/Component.h"

#include <QString>

#include <memory>
#include <vector>

class InstrumentCard;
class VzWidget;

/// Form files of what the gallery shows.

/// A form with all instruments on it, placed as the cards are.
std::unique_ptr<Vz::TComponent> formOf(const std::vector<InstrumentCard*>& cards);

/// An instrument of a form, as a widget of its own, and its name there; for one without a name its class.
struct LoadedInstrument {
    std::unique_ptr<VzWidget> widget;
    QString name;
};

/// The instruments of a form file, nested ones too, in the file's order; a form file of one instrument gives
/// that. Raises what LoadForm raises, and EReadError for a file without instruments.
std::vector<LoadedInstrument> loadInstruments(const QString& file);

/// A widget's instrument as a picture file, by the file's ending: .png, .pdf, or .svg, which is the live
/// document. Raises EWriteError when it cannot be written, or the ending is another.
void exportPicture(const VzWidget& widget, const QString& file, double scale);
