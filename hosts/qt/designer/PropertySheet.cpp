#include "hosts/qt/designer/PropertySheet.h"

#include "hosts/qt/VzWidget.h"

#include <QDesignerPropertyEditorInterface>
#include <QExtensionManager>
#include <QMetaProperty>

VzPropertySheet::VzPropertySheet(QDesignerFormEditorInterface& theCore, VzWidget& theWidget,
                                 QDesignerPropertySheetExtension& theBase, QObject* parent)
    : QObject(parent)
    , core(theCore)
    , widget(theWidget)
    , base(theBase) {
    for (int index = 0; index < count(); ++index)
        if (ownRow(index) >= 0) shown.push_back({index, property(index), isChanged(index)});
}

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
    showOthers(index);
    return isReset;
}

void VzPropertySheet::setProperty(int index, const QVariant& value) {
    base.setProperty(index, value);
    if (ownRow(index) >= 0) showOthers(index);
}

/// A setter may change further properties, which the property editor does not see: a maximum lowers the
/// value.
void VzPropertySheet::showOthers(int index) {
    QDesignerPropertyEditorInterface* const editor = core.propertyEditor();
    const bool isShown = editor && editor->object() == &widget;
    for (TShown& row : shown) {
        const QVariant value = property(row.Index);
        const bool isNowChanged = isChanged(row.Index);
        if (isNowChanged == row.IsChanged && value == row.Value) continue;
        row.Value = value;
        row.IsChanged = isNowChanged;
        if (isShown && row.Index != index)
            editor->setPropertyValue(propertyName(row.Index), value, isNowChanged);
    }
}

VzPropertySheetFactory::VzPropertySheetFactory(QDesignerFormEditorInterface& theCore)
    : QExtensionFactory(theCore.extensionManager())
    , core(theCore) {}

void VzPropertySheetFactory::install(QDesignerFormEditorInterface& core) {
    QExtensionManager* const manager = core.extensionManager();
    if (manager->findChild<VzPropertySheetFactory*>(QString(), Qt::FindDirectChildrenOnly)) return;
    manager->registerExtensions(new VzPropertySheetFactory(core), Q_TYPEID(QDesignerPropertySheetExtension));
}

QObject* VzPropertySheetFactory::createExtension(QObject* object, const QString& iid, QObject* parent) const {
    auto* const widget = qobject_cast<VzWidget*>(object);
    if (isAskingOthers || !widget || iid != Q_TYPEID(QDesignerPropertySheetExtension)) return nullptr;
    isAskingOthers = true;
    auto* const base = qt_extension<QDesignerPropertySheetExtension*>(extensionManager(), object);
    isAskingOthers = false;
    return base ? new VzPropertySheet(core, *widget, *base, parent) : nullptr;
}
