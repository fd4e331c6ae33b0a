#include "PropertySheet.h"

#include <VzWidget.h>

#include <QDesignerFormEditorInterface>
#include <QExtensionManager>
#include <QMetaProperty>

VzPropertySheet::VzPropertySheet(VzWidget& theWidget, QDesignerPropertySheetExtension& theBase,
                                 QObject* parent)
    : QObject(parent)
    , widget(theWidget)
    , base(theBase) {}

/// The row among the meta object's properties if it is the component's, -1 if it is QWidget's or one that the
/// form's author added.
int VzPropertySheet::ownRow(int index) const {
    const int row = widget.metaObject()->indexOfProperty(propertyName(index).toUtf8().constData());
    return row >= VzWidget::staticMetaObject.propertyCount() ? row : -1;
}

bool VzPropertySheet::isChanged(int index) const {
    const int row = ownRow(index);
    return row < 0 ? base.isChanged(index)
                   : widget.isPropertyStored(widget.metaObject()->property(row).name());
}

bool VzPropertySheet::hasReset(int index) const { return ownRow(index) >= 0 || base.hasReset(index); }

bool VzPropertySheet::reset(int index) {
    // Designer's sheet forgets what it keeps beside a text, such as the translator's comment.
    const bool isBaseReset = base.reset(index);
    const int row = ownRow(index);
    if (row < 0) return isBaseReset;
    const bool isReset = widget.metaObject()->property(row).reset(&widget);
    base.setChanged(index, false);
    return isReset;
}

VzPropertySheetFactory::VzPropertySheetFactory(QExtensionManager& manager)
    : QExtensionFactory(&manager) {}

void VzPropertySheetFactory::install(QDesignerFormEditorInterface& core) {
    QExtensionManager* const manager = core.extensionManager();
    // By name: one of another plugin serves these widgets, too.
    const QString name = QStringLiteral("VzPropertySheetFactory");
    if (manager->findChild<QObject*>(name, Qt::FindDirectChildrenOnly)) return;
    auto* const factory = new VzPropertySheetFactory(*manager);
    factory->setObjectName(name);
    manager->registerExtensions(factory, Q_TYPEID(QDesignerPropertySheetExtension));
}

QObject* VzPropertySheetFactory::createExtension(QObject* object, const QString& iid, QObject* parent) const {
    auto* const widget = qobject_cast<VzWidget*>(object);
    if (isAskingOthers || !widget || iid != Q_TYPEID(QDesignerPropertySheetExtension)) return nullptr;
    isAskingOthers = true;
    auto* const base = qt_extension<QDesignerPropertySheetExtension*>(extensionManager(), object);
    isAskingOthers = false;
    return base ? new VzPropertySheet(*widget, *base, parent) : nullptr;
}
