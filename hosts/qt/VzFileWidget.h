#pragma once

#include <VzWidget.h>

#include <QString>

namespace Vz {
class TVZSVGControl;
}

/// A widget whose component shows an SVG file that one of the widget's properties names, so that a form from
/// Designer can name it. The property is the widget's alone: form files of the library do not know it.
///
/// A name is that of a resource of the library or of the program (Vz::AddResource), else a file of Qt's
/// resources (":/dial.svg", "qrc:/dial.svg"), else a path, from the working directory where it is relative.
class VzFileWidget : public VzWidget {
    Q_OBJECT
public:
    /// Files of more bytes than this are refused.
    static constexpr qint64 MaxBytes = qint64(64) << 20;

    bool isPropertyStored(const char* name) const override;

protected:
    VzFileWidget(std::unique_ptr<Vz::TVZSVGControl> component, const TTable& table, QWidget* parent,
                 const char* fileProperty);

    const QString& fileName() const { return named; }
    bool isFileLoaded() const { return loaded; }
    /// Shows the file, or what is shown without one for an empty name; true where the name is a new one. What
    /// cannot be read, or is no SVG document, is reported by qWarning with the reason and its place in the
    /// file: the picture stays as it was, the name is kept, and the file is tried again when the widget is
    /// shown or the same name is set.
    bool setFile(const QString& name);
    /// Shows what is shown without a file.
    virtual void showNoFile() = 0;

    void showEvent(QShowEvent* event) override;

private:
    void load();

    const char* property;
    QString named;
    bool loaded = false;
};
