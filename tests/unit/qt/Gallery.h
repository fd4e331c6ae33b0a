#pragma once

#include "hosts/qt/VzWidget.h"
#include "hosts/qt/gallery/GalleryWindow.h"
#include "hosts/qt/gallery/Inspector.h"
#include "hosts/qt/gallery/PropertyRow.h"
#include "tavro/package/Package.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <stdexcept>

/// A window that is shown and stands still.
class Gallery : public testing::Test {
protected:
    Gallery() {
        Vz::RegisterComponentClasses();
        window.setMoving(false);
        window.show();
        QApplication::processEvents();
    }

    VzWidget& instrument() { return window.selectedCard()->instrument(); }
    PropertyRow& row(const char* name) {
        PropertyRow* const found = window.inspector().row(name);
        if (!found) throw std::runtime_error(name);
        return *found;
    }
    QString path(const char* name) const { return folder.filePath(QLatin1String(name)); }
    static QByteArray content(const QString& file) {
        QFile opened(file);
        return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
    }

    QTemporaryDir folder;
    GalleryWindow window;
};
