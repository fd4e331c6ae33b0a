#pragma once

#include <WidgetList.h>

#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

/// What Designer has to know of one widget.
class VzWidgetPlugin final : public QObject, public QDesignerCustomWidgetInterface {
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)
public:
    VzWidgetPlugin(const TVzWidgetClass& widgetClass, QObject* parent);

    QString name() const override;
    /// The page of the widget box, a family of instruments each.
    QString group() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QString includeFile() const override;
    QIcon icon() const override;
    bool isContainer() const override { return false; }
    /// Null, with a warning, when the component cannot be made.
    QWidget* createWidget(QWidget* parent) override;
    /// A widget of the component's own size, and which of its texts are shown to a reader.
    QString domXml() const override;
    bool isInitialized() const override { return isReady; }
    void initialize(QDesignerFormEditorInterface* core) override;

private:
    const TVzWidgetClass& widgetClass;
    bool isReady = false;
};

/// All widgets of the library.
class VzWidgetCollection final : public QObject, public QDesignerCustomWidgetCollectionInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)
public:
    explicit VzWidgetCollection(QObject* parent = nullptr);

    QList<QDesignerCustomWidgetInterface*> customWidgets() const override { return widgets; }

private:
    QList<QDesignerCustomWidgetInterface*> widgets;
};
