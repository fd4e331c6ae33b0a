// The widget that was written for an instrument of this project's own, and where there is one, Designer's
// plugin with it.

#include "Boiler.h"

#include <VzBoiler.h>

#include <QApplication>
#include <QFile>
#include <QPluginLoader>
#ifdef WITH_DESIGNER
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>
#endif

namespace {

bool fail(const char* what) {
    qCritical("%s", what);
    return false;
}

bool checkWidget(const QString& file) {
    VzBoiler boiler;
    int changes = 0;
    QObject::connect(&boiler, &VzBoiler::levelChanged, [&](double) { ++changes; });
    boiler.setProperty("level", 250);
    if (boiler.level() != 100 || changes != 1) return fail("the property does not work");
    boiler.resize(400, 400);
    const QImage full = boiler.grab().toImage();
    boiler.resetLevel();
    if (boiler.instrument().GetLevel() != 0 || boiler.grab().toImage() == full) return fail("no reset");
    QFile other(file + QStringLiteral(".svg"));
    if (!other.open(QIODevice::WriteOnly)) return fail("cannot write");
    other.write("<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 9 9'><rect id='Mine' width='9' "
                "height='9'/></svg>");
    other.close();
    boiler.setArtwork(other.fileName());
    if (!boiler.instrument().GetDocument().FindElement("Mine")) return fail("no other artwork");
    return full.save(file) || fail("no picture");
}

#ifdef WITH_DESIGNER
bool checkPlugin(const QString& file) {
    QPluginLoader loader(file);
    auto* const collection = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(loader.instance());
    if (!collection) return fail(qPrintable(loader.errorString()));
    const auto widgets = collection->customWidgets();
    if (widgets.size() != 1) return fail("the plugin does not have the one widget");
    const QDesignerCustomWidgetInterface& boiler = *widgets[0];
    if (boiler.name() != QStringLiteral("VzBoiler") || boiler.group() != QStringLiteral("Plant") ||
        boiler.includeFile() != QStringLiteral("VzBoiler.h") || boiler.icon().isNull())
        return fail("the plugin describes another widget");
    return true;
}
#endif

} // namespace

int main(int count, char** arguments) {
    QApplication application(count, arguments);
    if (count < 2 || !checkWidget(QString::fromLocal8Bit(arguments[1]))) return 1;
#ifdef WITH_DESIGNER
    if (count < 3 || !checkPlugin(QString::fromLocal8Bit(arguments[2]))) return 1;
#endif
    return 0;
}
