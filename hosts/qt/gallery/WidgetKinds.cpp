#include "hosts/qt/gallery/WidgetTable.h"

const WidgetKind* findWidgetKind(const QString& className) {
    const QString name = className.startsWith(u"TVZ") ? QStringLiteral("Vz") + className.mid(3) : className;
    for (const WidgetKind& kind : widgetKinds())
        if (name == QLatin1String(kind.meta->className())) return &kind;
    return nullptr;
}
