#pragma once

#include <QDesignerFormEditorInterface>
#include <QDesignerPropertySheetExtension>
#include <QExtensionFactory>
#include <QVariant>

#include <vector>

class VzWidget;

/// A widget's properties as Designer edits and saves them: Designer's own sheet, but that a property of the
/// component is changed when the component's rules say that a form has to keep it, whoever touched it, and
/// that a reset gives the declared default.
class VzPropertySheet final : public QObject, public QDesignerPropertySheetExtension {
    Q_OBJECT
    Q_INTERFACES(QDesignerPropertySheetExtension)
public:
    /// `base` is Designer's sheet of the same widget, which lives as long as the widget does.
    VzPropertySheet(QDesignerFormEditorInterface& core, VzWidget& widget,
                    QDesignerPropertySheetExtension& base, QObject* parent);

    bool hasReset(int index) const override;
    bool reset(int index) override;
    void setProperty(int index, const QVariant& value) override;
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
    void setChanged(int index, bool changed) override { base.setChanged(index, changed); }
    bool isEnabled(int index) const override { return base.isEnabled(index); }

private:
    /// What the property editor shows of a property of the component.
    struct TShown {
        int Index;
        QVariant Value;
        bool IsChanged;
    };

    int ownRow(int index) const;
    void showOthers(int index);

    QDesignerFormEditorInterface& core;
    VzWidget& widget;
    QDesignerPropertySheetExtension& base;
    std::vector<TShown> shown;
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
    explicit VzPropertySheetFactory(QDesignerFormEditorInterface& core);

    QDesignerFormEditorInterface& core;
    mutable bool isAskingOthers = false;
};
