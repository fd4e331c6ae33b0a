#pragma once

#include <VzFileWidget.h>

/// The widget of the plain control: its file is `source`.
class VzPictureWidget : public VzFileWidget {
    Q_OBJECT
    Q_PROPERTY(QString source READ source WRITE setSource RESET resetSource NOTIFY sourceChanged)
public:
    /// The SVG file that is shown. Default empty: the control shows what a program loads into it.
    const QString& source() const { return fileName(); }
    /// Whether the picture that is seen is the source's.
    bool isSourceLoaded() const { return isFileLoaded(); }

public Q_SLOTS:
    /// Loads the file as VzFileWidget does; an empty name clears the picture.
    void setSource(const QString& value);
    void resetSource() { setSource(QString()); }

Q_SIGNALS:
    void sourceChanged(const QString& value);

protected:
    VzPictureWidget(std::unique_ptr<Vz::TVZSVGControl> component, const TTable& table, QWidget* parent);

    void showNoFile() override;
};
