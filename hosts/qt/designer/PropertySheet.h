#pragma once

#include <QDesignerPropertySheetExtension>
#include <QExtensionFactory>
#include <QVariant>

class QDesignerFormEditorInterface;
class VzWidget;

/// A widget's properties as Designer edits and saves them: Designer's own sheet, but that a property of the
/// component is changed when the component's rules say that a form has to keep it, whoever touched it, and
/// that a reset gives the declared default.
class VzPropertySheet final : public QObject, public QDesignerPropertySheetExtension {
    Q_OBJECT
    Q_INTERFACES(QDesignerPropertySheetExtension)
public:
    /// `base` is Designer's sheet of the same widget, which lives as long as the widget does.
    VzPropertySheet(VzWidget& widget, QDesignerPropertySheetExtension& base, QObject* parent);

    bool hasReset(int index) const override;
    bool reset(int index) override;
    bool isChanged(int index) const override;

    int count() const override { return base.count(); }
    int indexOf(const QString& name) const override { return base.indexOf(name); }
    QString propertyName(int index) const override { return base.propertyName(index); }
    QString propertyGroup(int index) const override { return base.propertyGroup(index); }
    void setPropertyGroup(int index, const QString& group) override { base.setPropertyGroup(index, group); }
    bool isVisible(int index) const override { return base.isVisible(index); }
    void setVisible(int index, bool visible) override { base.setVisible(index, visible); }
    bool isAttribute(int index) const override { return base.isAttribute(index); }
    void setAttribute(int index, bool attribute) override { base.setAttribute(index, attribute); }
    QVariant property(int index) const override { return base.property(index); }
    void setProperty(int index, const QVariant& value) override { base.setProperty(index, value); }
    void setChanged(int index, bool changed) override { base.setChanged(index, changed); }
    bool isEnabled(int index) const override { return base.isEnabled(index); }

private:
    int ownRow(int index) const;

    VzWidget& widget;
    QDesignerPropertySheetExtension& base;
};

/// Gives each of the library's widgets such a sheet, over the one that the factories before it give.
class VzPropertySheetFactory final : public QExtensionFactory {
    Q_OBJECT
public:
    /// Registers one with the editor, unless it has one.
    static void install(QDesignerFormEditorInterface& core);

protected:
    QObject* createExtension(QObject* object, const QString& iid, QObject* parent) const override;

private:
    explicit VzPropertySheetFactory(QExtensionManager& manager);

    mutable bool isAskingOthers = false;
};
