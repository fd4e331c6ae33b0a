#pragma once

#include <VzFileWidget.h>

namespace Vz {
class TVZSVGCustomInstrument;
}

/// The widget of an instrument: its file is `artwork`.
class VzInstrumentWidget : public VzFileWidget {
    Q_OBJECT
    Q_PROPERTY(QString artwork READ artwork WRITE setArtwork RESET resetArtwork NOTIFY artworkChanged)
public:
    /// The SVG file that the instrument is drawn from (docs/artwork.md). Default empty: the class's own.
    const QString& artwork() const { return fileName(); }
    /// Whether the instrument is drawn from the artwork named.
    bool isArtworkLoaded() const { return isFileLoaded(); }

public Q_SLOTS:
    /// Loads the file as VzFileWidget does; the properties go over to it as TVZSVGControl::LoadFromFile has
    /// it.
    void setArtwork(const QString& value);
    void resetArtwork() { setArtwork(QString()); }

Q_SIGNALS:
    void artworkChanged(const QString& value);

protected:
    VzInstrumentWidget(std::unique_ptr<Vz::TVZSVGCustomInstrument> component, const TTable& table,
                       QWidget* parent);

    void showNoFile() override;
};
