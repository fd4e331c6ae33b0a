#pragma once

#include <VzWidget.h>

#include <QString>

namespace Vz {
class TVZSVGControl;
}

/// What the widget of the plain control has beside the control's own properties: the file that it shows,
/// which a form from Designer can name. It is the widget's alone; form files of the library do not know it.
class VzPictureWidget : public VzWidget {
    Q_OBJECT
    Q_PROPERTY(QString source READ source WRITE setSource RESET resetSource NOTIFY sourceChanged)
public:
    /// Files of more bytes than this are refused.
    static constexpr qint64 MaxBytes = qint64(64) << 20;

    /// The SVG file that is shown: its path, from the working directory where it is relative, or a file of
    /// Qt's resources (":/dial.svg", "qrc:/dial.svg"). Default empty: the control shows what a program loads
    /// into it.
    const QString& source() const { return named; }
    bool hasSource() const { return !named.isEmpty(); }
    /// Whether the picture that is seen is the source's.
    bool isSourceLoaded() const { return loaded; }
    bool isPropertyStored(const char* name) const override;

public Q_SLOTS:
    /// Loads the file; an empty name clears the picture. A file that cannot be read, or is no SVG document,
    /// is reported by qWarning with the reason and its place in the file: the picture stays as it was, the
    /// name is kept, and the file is tried again when the widget is shown or the same name is set.
    void setSource(const QString& value);
    void resetSource() { setSource(QString()); }

Q_SIGNALS:
    void sourceChanged(const QString& value);

protected:
    VzPictureWidget(std::unique_ptr<Vz::TVZSVGControl> component, const TTable& table, QWidget* parent);

    void showEvent(QShowEvent* event) override;

private:
    void load();

    QString named;
    bool loaded = false;
};
