#include "Plugin.h"

#include "Icon.h"
#include "PropertySheet.h"

#include <VzWidget.h>

#include <QMetaProperty>
#include <QXmlStreamWriter>

#include <memory>

namespace {

/// Pages of the widget box that are not named after their folder. A folder with a capital letter is a page's
/// name.
constexpr std::pair<const char*, const char*> Pages[] = {
    {"round", "Tavro Round Gauges"},
    {"svg", "SVG"},
};

/// "VzSVGControl" is "SVG Control".
QString spokenName(const char* name) {
    const QString text = QString::fromLatin1(name).mid(2);
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool beginsWord = i > 0 && text[i].isUpper() &&
                                (text[i - 1].isLower() || (i + 1 < text.size() && text[i + 1].isLower()));
        if (beginsWord) result += u' ';
        result += text[i];
    }
    return result;
}

/// "VzSVGControl" on a form is "svgControl".
QString nameOnForm(const char* name) {
    const QString spoken = spokenName(name);
    const QString first = spoken.section(u' ', 0, 0);
    return first.toLower() + spoken.mid(first.size()).remove(u' ');
}

/// A text that is drawn as a path or read as a matrix.
bool isCode(const QString& property) {
    return property.endsWith(QStringLiteral("Path")) || property == QStringLiteral("transform");
}

/// A text that is not shown to a reader, who may want it translated.
bool isForNobody(const QString& property) {
    return isCode(property) || property == QStringLiteral("source") || property == QStringLiteral("artwork");
}

/// Null, with a warning, when the component cannot be made: no exception may get into Designer.
VzWidget* make(const TVzWidgetClass& widgetClass, QWidget* parent) {
    try {
        return widgetClass.Create(parent);
    } catch (const std::exception& error) {
        qWarning("%s: %s", widgetClass.Name, error.what());
        return nullptr;
    }
}

void writeGeometry(QXmlStreamWriter& xml, QSize size) {
    xml.writeStartElement(QStringLiteral("property"));
    xml.writeAttribute(QStringLiteral("name"), QStringLiteral("geometry"));
    xml.writeStartElement(QStringLiteral("rect"));
    const std::pair<const char*, int> numbers[] = {
        {"x", 0}, {"y", 0}, {"width", size.width()}, {"height", size.height()}};
    for (const auto& [name, value] : numbers)
        xml.writeTextElement(QString::fromLatin1(name), QString::number(value));
    xml.writeEndElement();
    xml.writeEndElement();
}

void writeTexts(QXmlStreamWriter& xml, const QMetaObject& meta) {
    for (int row = VzWidget::staticMetaObject.propertyCount(); row < meta.propertyCount(); ++row) {
        if (meta.property(row).metaType().id() != QMetaType::QString) continue;
        const QString name = QString::fromLatin1(meta.property(row).name());
        xml.writeEmptyElement(QStringLiteral("stringpropertyspecification"));
        xml.writeAttribute(QStringLiteral("name"), name);
        xml.writeAttribute(QStringLiteral("type"),
                           isCode(name) ? QStringLiteral("multiline") : QStringLiteral("singleline"));
        if (isForNobody(name)) xml.writeAttribute(QStringLiteral("notr"), QStringLiteral("true"));
    }
}

} // namespace

VzWidgetPlugin::VzWidgetPlugin(const TVzWidgetClass& theClass, QObject* parent)
    : QObject(parent)
    , widgetClass(theClass) {}

QString VzWidgetPlugin::name() const { return QString::fromLatin1(widgetClass.Name); }

QString VzWidgetPlugin::group() const {
    const QString folder = QString::fromLatin1(widgetClass.Folder);
    for (const auto& [name, page] : Pages)
        if (folder == QLatin1String(name)) return QString::fromLatin1(page);
    if (!folder.isEmpty() && !folder[0].isLower()) return folder;
    return QStringLiteral("Tavro ") + folder.left(1).toUpper() + folder.mid(1);
}

QString VzWidgetPlugin::toolTip() const { return spokenName(widgetClass.Name); }

QString VzWidgetPlugin::whatsThis() const {
    return QStringLiteral("Shows a component. What its properties mean stands in %1.")
        .arg(QString::fromLatin1(widgetClass.Header));
}

QString VzWidgetPlugin::includeFile() const { return name() + QStringLiteral(".h"); }

QIcon VzWidgetPlugin::icon() const { return vzWidgetIcon(widgetClass); }

QWidget* VzWidgetPlugin::createWidget(QWidget* parent) { return make(widgetClass, parent); }

QString VzWidgetPlugin::domXml() const {
    const std::unique_ptr<VzWidget> model(make(widgetClass, nullptr));
    if (!model) return QDesignerCustomWidgetInterface::domXml();
    QString text;
    QXmlStreamWriter xml(&text);
    xml.writeStartElement(QStringLiteral("ui"));
    xml.writeAttribute(QStringLiteral("language"), QStringLiteral("c++"));
    xml.writeAttribute(QStringLiteral("displayname"), spokenName(widgetClass.Name));
    xml.writeStartElement(QStringLiteral("widget"));
    xml.writeAttribute(QStringLiteral("class"), name());
    xml.writeAttribute(QStringLiteral("name"), nameOnForm(widgetClass.Name));
    writeGeometry(xml, model->sizeHint());
    xml.writeEndElement();
    xml.writeStartElement(QStringLiteral("customwidgets"));
    xml.writeStartElement(QStringLiteral("customwidget"));
    xml.writeTextElement(QStringLiteral("class"), name());
    xml.writeTextElement(QStringLiteral("extends"), QStringLiteral("QWidget"));
    xml.writeStartElement(QStringLiteral("propertyspecifications"));
    writeTexts(xml, *model->metaObject());
    xml.writeEndDocument();
    return text;
}

void VzWidgetPlugin::initialize(QDesignerFormEditorInterface* core) {
    if (core) VzPropertySheetFactory::install(*core);
    isReady = true;
}

VzWidgetCollection::VzWidgetCollection(QObject* parent)
    : QObject(parent) {
    for (const TVzWidgetClass& widgetClass : designerWidgetClasses())
        widgets << new VzWidgetPlugin(widgetClass, this);
}
