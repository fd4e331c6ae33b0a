// Qt Designer's own editor of forms, with the plugin: what it offers, edits, saves and reads back. The
// program does not link the library: it sees the widgets as Designer does, by their meta objects.

#include <QApplication>
#include <QDesignerComponents>
#include <QDesignerFormEditorInterface>
#include <QDesignerFormWindowCursorInterface>
#include <QDesignerFormWindowInterface>
#include <QDesignerFormWindowManagerInterface>
#include <QDesignerIntegration>
#include <QDesignerObjectInspectorInterface>
#include <QDesignerPropertyEditorInterface>
#include <QDesignerPropertySheetExtension>
#include <QDesignerWidgetBoxInterface>
#include <QDesignerWidgetDataBaseInterface>
#include <QDesignerWidgetFactoryInterface>
#include <QExtensionManager>
#include <QFile>
#include <QFormBuilder>
#include <QMetaProperty>
#include <QPluginLoader>
#include <QTreeWidget>
#include <QUiLoader>
#include <QUndoStack>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <gtest/gtest.h>

#include <QBuffer>
#include <memory>
#include <set>

namespace {

const QStringList& classes() {
    static const QStringList names = QStringLiteral(TAVRO_QT_WIDGETS).split(u' ');
    return names;
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return file.readAll();
}

QString testFile(const char* name) {
    return QStringLiteral(TAVRO_QT_TESTS_DIR "/forms/") + QString::fromLatin1(name);
}

/// The properties of the component, which are all after QWidget's.
std::vector<QMetaProperty> ownProperties(const QObject& widget) {
    std::vector<QMetaProperty> result;
    const QMetaObject& meta = *widget.metaObject();
    for (int row = meta.propertyOffset(); row < meta.propertyCount(); ++row)
        result.push_back(meta.property(row));
    return result;
}

/// A value that the property does not have yet.
QVariant another(const QMetaProperty& property, const QVariant& value) {
    const QString name = QString::fromLatin1(property.name());
    if (property.isFlagType()) return value.toInt() ^ 2;
    if (property.isEnumType()) return value.toInt() == 1 ? 0 : 1;
    switch (property.metaType().id()) {
    case QMetaType::Bool:
        return !value.toBool();
    case QMetaType::Int:
        return value.toInt() + 1;
    case QMetaType::Double:
        return value.toDouble() * 0.5 + 0.25;
    case QMetaType::QColor:
        return QColor(10, 20, 30, 200);
    case QMetaType::QDateTime:
        return QDateTime(QDate(2026, 3, 15), QTime(15, 30, 45));
    case QMetaType::QFont: {
        QFont font(QStringLiteral("Noto Sans"), 14, QFont::Bold);
        font.setItalic(true);
        return font;
    }
    case QMetaType::QStringList:
        return QStringList{QStringLiteral("a & b"), QStringLiteral("\u00b5 \"c\"")};
    default:
        if (name.endsWith(QStringLiteral("Path"))) return QStringLiteral("M0 0L5 5");
        if (name == QStringLiteral("transform")) return QStringLiteral("matrix(1 0 0 1 5 5)");
        return QStringLiteral("0.0 \"m\\s\" \u00fc");
    }
}

/// A form without a window.
QString formOf(const QStringList& widgetClasses) {
    QString text =
        QStringLiteral("<ui version=\"4.0\"><class>Form</class><widget class=\"QWidget\" name=\"Form\">");
    for (const QString& name : widgetClasses)
        text += QStringLiteral("<widget class=\"%1\" name=\"a%1\"/>").arg(name);
    return text + QStringLiteral("</widget></ui>");
}

/// Designer's parts around one form.
class TDesigner : public testing::Test {
protected:
    static void SetUpTestSuite() {
        QDesignerComponents::initializeResources();
        core = QDesignerComponents::createFormEditor(qApp);
        core->setWidgetBox(QDesignerComponents::createWidgetBox(core, nullptr));
        core->setPropertyEditor(QDesignerComponents::createPropertyEditor(core, nullptr));
        core->setObjectInspector(QDesignerComponents::createObjectInspector(core, nullptr));
        new QDesignerIntegration(core, core);
        QDesignerComponents::initializePlugins(core);
    }
    static void TearDownTestSuite() {
        for (QWidget* part : std::initializer_list<QWidget*>{core->widgetBox(), core->objectInspector(),
                                                             core->propertyEditor()})
            delete part;
        delete core;
    }

    ~TDesigner() override { close(); }

    void close() {
        if (form) core->formWindowManager()->removeFormWindow(form);
        delete form;
        form = nullptr;
    }
    void open(const QString& text) {
        close();
        form = core->formWindowManager()->createFormWindow();
        core->formWindowManager()->setActiveFormWindow(form);
        ASSERT_TRUE(form->setContents(text));
    }
    QWidget& widget(const char* name) {
        auto* const found = form->mainContainer()->findChild<QWidget*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }
    /// Sets a property as the property editor does, with undo.
    void set(QWidget& object, const char* name, const QVariant& value) {
        form->cursor()->setWidgetProperty(&object, QString::fromLatin1(name), value);
    }
    void reset(QWidget& object, const char* name) {
        form->cursor()->resetWidgetProperty(&object, QString::fromLatin1(name));
    }
    QDesignerPropertySheetExtension& sheet(QWidget& object) {
        return *qt_extension<QDesignerPropertySheetExtension*>(core->extensionManager(), &object);
    }
    bool isChanged(QWidget& object, const char* name) {
        return sheet(object).isChanged(sheet(object).indexOf(QString::fromLatin1(name)));
    }

    /// The text beside a property's name in the property editor.
    static QString shownInEditor(const char* name) {
        for (const auto* tree : core->propertyEditor()->findChildren<QTreeWidget*>())
            for (QTreeWidgetItemIterator item(const_cast<QTreeWidget*>(tree)); *item; ++item)
                if ((*item)->text(0) == QString::fromLatin1(name)) return (*item)->text(1);
        return {};
    }

    static inline QDesignerFormEditorInterface* core = nullptr;
    QDesignerFormWindowInterface* form = nullptr;
};

TEST_F(TDesigner, OffersEveryWidget) {
    const QDesignerWidgetDataBaseInterface& known = *core->widgetDataBase();
    for (const QString& name : classes()) {
        const int row = known.indexOfClassName(name);
        ASSERT_GE(row, 0) << qPrintable(name);
        const QDesignerWidgetDataBaseItemInterface& item = *known.item(row);
        EXPECT_TRUE(item.isCustom()) << qPrintable(name);
        EXPECT_EQ(item.includeFile(), name + QStringLiteral(".h"));
        EXPECT_EQ(item.group(),
                  name == QStringLiteral("VzSVGControl") ? QStringLiteral("SVG") : item.group());
        EXPECT_FALSE(item.group().isEmpty() || item.toolTip().isEmpty() || item.whatsThis().isEmpty());
        for (const int sizePx : {22, 44, 64}) {
            const QImage image = item.icon().pixmap(sizePx, sizePx).toImage();
            EXPECT_EQ(image.size(), QSize(sizePx, sizePx)) << qPrintable(name);
            EXPECT_LT(qAlpha(image.pixel(0, 0)), 128) << qPrintable(name); // a square one has round corners
            EXPECT_GT(qAlpha(image.pixel(sizePx / 2, sizePx / 2)), 0) << qPrintable(name);
        }
    }
}

TEST_F(TDesigner, TheWidgetBoxHasAPageForEachFamily) {
    QStringList found;
    const QDesignerWidgetBoxInterface& box = *core->widgetBox();
    for (int page = 0; page < box.categoryCount(); ++page)
        for (int row = 0; row < box.category(page).widgetCount(); ++row)
            if (box.category(page).widget(row).domXml().contains(QStringLiteral("class=\"Vz")))
                found << box.category(page).name() + u'/' + box.category(page).widget(row).name();
    EXPECT_EQ(found.size(), classes().size());
    EXPECT_TRUE(found.contains(QStringLiteral("SVG/SVG Control"))) << qPrintable(found.join(u' '));
    EXPECT_TRUE(found.contains(QStringLiteral("Tavro Meters/Speedometer")));
}

TEST_F(TDesigner, WhatIsDroppedOnAFormHasTheComponentsSize) {
    QPluginLoader loader(QStringLiteral(TAVRO_PLUGINS_DIR "/designer/tavro_designer.so"));
    auto* const collection = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(loader.instance());
    ASSERT_NE(collection, nullptr) << qPrintable(loader.errorString());
    EXPECT_EQ(collection->customWidgets().size(), classes().size());
    for (QDesignerCustomWidgetInterface* const plugin : collection->customWidgets()) {
        const std::unique_ptr<QWidget> fresh(plugin->createWidget(nullptr));
        EXPECT_GT(fresh->sizeHint().width(), 30);
        EXPECT_TRUE(plugin->domXml().contains(QStringLiteral("<width>%1</width><height>%2</height>")
                                                  .arg(fresh->sizeHint().width())
                                                  .arg(fresh->sizeHint().height())))
            << qPrintable(plugin->domXml());
    }
}

/// A fresh wall clock shows the present time in the artwork's own colours, a fresh dial has neither knob nor
/// glass: these are not the declared defaults, and are saved.
bool isStoredWhenFresh(const QWidget& fresh, const QMetaProperty& property) {
    static const QByteArrayList stored{"VzClock.time", "VzClock.labelsFillColor",
                                       "VzClock.decorationFillColor", "VzRotaryDial.parts"};
    return stored.contains(QByteArray(fresh.metaObject()->className()) + '.' + property.name());
}

TEST_F(TDesigner, AFreshWidgetSavesNothingOfItsComponent) {
    open(formOf(classes()));
    std::set<QString> own, stored;
    for (const QString& name : classes()) {
        QWidget& object = widget(qPrintable(u'a' + name));
        for (const QMetaProperty& property : ownProperties(object)) {
            if (isStoredWhenFresh(object, property)) {
                EXPECT_TRUE(isChanged(object, property.name())) << qPrintable(name) << '.' << property.name();
                stored.insert(QString::fromLatin1(property.name()));
                continue;
            }
            EXPECT_FALSE(isChanged(object, property.name())) << qPrintable(name) << '.' << property.name();
            own.insert(QString::fromLatin1(property.name()));
        }
    }
    for (const QString& name : own) {
        const bool isSaved = form->contents().contains(QStringLiteral("name=\"%1\"").arg(name));
        EXPECT_EQ(isSaved, stored.contains(name)) << qPrintable(name);
    }
}

TEST_F(TDesigner, LoadSetSaveGivesTheExpectedFile) {
    open(QString::fromUtf8(readFile(testFile("before.ui"))));
    QWidget& speed = widget("speedometer");
    set(speed, "maximum", 200);
    set(speed, "value", 87.25);
    set(speed, "needleFillColor", QColor(255, 60, 30, 200));
    set(speed, "design", 1);
    set(speed, "parts", 511 - 64);
    set(speed, "enableGradients", true); // as declared: not saved
    QWidget& clock = widget("clock");
    set(clock, "time", QDateTime(QDate(2026, 3, 15), QTime(15, 30, 45)));
    set(clock, "caption", QStringLiteral("Z\u00fcrich & <Genf>"));
    set(clock, "labels", QStringList{QStringLiteral("12"), QStringLiteral("3"), QStringLiteral("\u00b5")});
    QFont font(QStringLiteral("Noto Sans"));
    font.setBold(true);
    set(clock, "captionFont", font);
    const QByteArray saved = form->contents().toUtf8();
    QFile out(QStringLiteral(TAVRO_QT_TESTS_OUTPUT "/after.ui"));
    ASSERT_TRUE(out.open(QIODevice::WriteOnly) && out.write(saved) == saved.size());
    EXPECT_EQ(saved, readFile(testFile("after.ui"))) << saved.constData();
}

TEST_F(TDesigner, WhatEqualsTheDefaultIsDroppedFromAFile) {
    open(QString::fromUtf8(readFile(testFile("before.ui"))));
    EXPECT_TRUE(isChanged(widget("speedometer"), "minimum"));
    set(widget("speedometer"), "minimum", 0);
    EXPECT_FALSE(isChanged(widget("speedometer"), "minimum"));
    EXPECT_FALSE(form->contents().contains(QStringLiteral("minimum")));
}

TEST_F(TDesigner, ResetGivesTheDeclaredDefaultAndUndoBringsTheValueBack) {
    open(formOf({QStringLiteral("VzSpeedometer")}));
    QWidget& speed = widget("aVzSpeedometer");
    const QVariant format = speed.property("formatStr");
    const QVariant color = speed.property("frameColor");
    set(speed, "maximum", 50);
    set(speed, "formatStr", QStringLiteral("0.00"));
    set(speed, "frameColor", QColor(Qt::red));
    ASSERT_EQ(speed.property("formatStr"), QStringLiteral("0.00"));
    for (const char* name : {"maximum", "formatStr", "frameColor"}) {
        EXPECT_TRUE(sheet(speed).hasReset(sheet(speed).indexOf(QString::fromLatin1(name))));
        EXPECT_TRUE(isChanged(speed, name));
        reset(speed, name);
        EXPECT_FALSE(isChanged(speed, name)) << name;
    }
    EXPECT_EQ(speed.property("maximum"), 240.0);
    EXPECT_EQ(speed.property("formatStr"), format);
    EXPECT_EQ(speed.property("frameColor"), color);
    form->commandHistory()->undo();
    EXPECT_EQ(speed.property("frameColor"), QColor(Qt::red));
    EXPECT_TRUE(isChanged(speed, "frameColor"));
}

TEST_F(TDesigner, EveryResetTakes) {
    for (const QString& name : classes()) {
        open(formOf({name}));
        for (const QMetaProperty& property : ownProperties(widget(qPrintable(u'a' + name)))) {
            open(formOf({name}));
            QWidget& object = widget(qPrintable(u'a' + name));
            if (isStoredWhenFresh(object, property)) continue; // a reset gives the declared default
            const QVariant fresh = property.read(&object);
            set(object, property.name(), another(property, fresh));
            if (property.read(&object) == fresh)
                set(object, property.name(), fresh.toDouble() + 10); // clamped
            EXPECT_FALSE(property.read(&object) == fresh) << qPrintable(name) << '.' << property.name();
            reset(object, property.name());
            EXPECT_FALSE(isChanged(object, property.name())) << qPrintable(name) << '.' << property.name();
            EXPECT_TRUE(property.read(&object) == fresh) << qPrintable(name) << '.' << property.name() << ": "
                                                         << qPrintable(property.read(&object).toString());
        }
    }
}

TEST_F(TDesigner, LabelsAreTheScalesAfterAResetAndAnUndo) {
    open(formOf({QStringLiteral("VzCircularSpeedometer")}));
    QWidget& speed = widget("aVzCircularSpeedometer");
    set(speed, "labels", QStringList{QStringLiteral("low")});
    form->commandHistory()->undo();
    EXPECT_FALSE(isChanged(speed, "labels"));
    set(speed, "maximum", 200);
    set(speed, "labels", QStringList{QStringLiteral("low")});
    EXPECT_TRUE(isChanged(speed, "labels"));
    reset(speed, "labels");
    EXPECT_FALSE(isChanged(speed, "labels"));
    EXPECT_EQ(speed.property("labels").toStringList().back(), QStringLiteral("200"));
}

TEST_F(TDesigner, TheFileOfThePlainControlIsSavedAsItIsNamed) {
    open(formOf({QStringLiteral("VzSVGControl")}));
    QWidget& control = widget("aVzSVGControl");
    EXPECT_FALSE(isChanged(control, "source"));
    set(control, "source", QStringLiteral(TAVRO_QT_TESTS_DIR "/forms/picture.svg"));
    EXPECT_TRUE(isChanged(control, "source"));
    const QString saved = form->contents();
    EXPECT_TRUE(saved.contains(QStringLiteral("<property name=\"source\">")));
    EXPECT_TRUE(saved.contains(QStringLiteral(">" TAVRO_QT_TESTS_DIR "/forms/picture.svg</string>")));
    EXPECT_EQ(control.grab().toImage().pixelColor(control.width() / 2, control.height() / 2),
              QColor(Qt::red));
    // What this machine does not have is not lost.
    open(QString(saved).replace(QStringLiteral("picture.svg"), QStringLiteral("none.svg")));
    EXPECT_TRUE(form->contents().contains(QStringLiteral("forms/none.svg</string>")));
    reset(widget("aVzSVGControl"), "source");
    EXPECT_FALSE(form->contents().contains(QStringLiteral("\"source\"")));
}

TEST_F(TDesigner, TheArtworkOfAnInstrumentIsSavedAsItIsNamed) {
    open(formOf({QStringLiteral("VzSpeedometer")}));
    QWidget& speed = widget("aVzSpeedometer");
    EXPECT_FALSE(isChanged(speed, "artwork"));
    EXPECT_FALSE(form->contents().contains(QStringLiteral("\"artwork\"")));
    const QImage own = speed.grab().toImage();
    set(speed, "artwork", QStringLiteral(TAVRO_QT_TESTS_DIR "/forms/picture.svg"));
    EXPECT_TRUE(isChanged(speed, "artwork"));
    EXPECT_NE(speed.grab().toImage(), own);
    const QString saved = form->contents();
    EXPECT_TRUE(saved.contains(QStringLiteral("<property name=\"artwork\">")));
    EXPECT_TRUE(saved.contains(QStringLiteral(">" TAVRO_QT_TESTS_DIR "/forms/picture.svg</string>")));
    form->commandHistory()->undo();
    EXPECT_FALSE(isChanged(speed, "artwork"));
    EXPECT_EQ(speed.grab().toImage(), own);
    set(speed, "artwork", QStringLiteral(TAVRO_QT_TESTS_DIR "/forms/picture.svg"));
    reset(speed, "artwork");
    EXPECT_FALSE(form->contents().contains(QStringLiteral("\"artwork\"")));
}

TEST_F(TDesigner, TheEditorShowsWhatASetterChangedElsewhere) {
    open(formOf({QStringLiteral("VzSpeedometer")}));
    QWidget& speed = widget("aVzSpeedometer");
    form->clearSelection();
    form->selectWidget(&speed);
    core->propertyEditor()->setObject(&speed);
    ASSERT_EQ(core->propertyEditor()->object(), &speed);
    set(speed, "value", 200);
    EXPECT_EQ(shownInEditor("value"), QStringLiteral("200.000000"));
    set(speed, "maximum", 100);
    const double lowered = speed.property("value").toDouble();
    EXPECT_LT(lowered, 200);
    EXPECT_EQ(shownInEditor("value"), QString::number(lowered, 'f', 6));
}

TEST_F(TDesigner, QtsOwnPropertiesAreLeftToDesigner) {
    open(formOf({QStringLiteral("VzSpeedometer")}));
    QWidget& speed = widget("aVzSpeedometer");
    EXPECT_FALSE(isChanged(speed, "toolTip"));
    set(speed, "toolTip", QStringLiteral("how fast"));
    EXPECT_TRUE(isChanged(speed, "toolTip"));
    EXPECT_TRUE(form->contents().contains(QStringLiteral("how fast")));
    reset(speed, "toolTip");
    EXPECT_FALSE(form->contents().contains(QStringLiteral("how fast")));
}

void expectEqual(const QObject& a, const QObject& b) {
    for (const QMetaProperty& property : ownProperties(a))
        EXPECT_EQ(property.read(&a), b.property(property.name()))
            << a.metaObject()->className() << '.' << property.name() << ": "
            << qPrintable(property.read(&a).toString()) << " and "
            << qPrintable(b.property(property.name()).toString());
}

/// Every property of every widget with another value, saved and read back by Designer and by QUiLoader; the
/// form compiler reads the same file in designer_form_test.cpp.
TEST_F(TDesigner, EveryPropertyOfEveryWidgetGoesThroughAFile) {
    open(formOf(classes()));
    std::map<QString, QByteArray> unchanged;
    for (const QString& name : classes()) {
        QWidget& object = widget(qPrintable(u'a' + name));
        for (const QMetaProperty& property : ownProperties(object)) {
            const QVariant before = property.read(&object);
            property.write(&object, another(property, before));
            if (property.read(&object) == before && before.typeId() == QMetaType::Double)
                property.write(&object, before.toDouble() + 3); // clamped
            if (property.read(&object) == before) unchanged[name] += QByteArray(property.name()) + ' ';
        }
    }
    set(widget("aVzSVGControl"), "source", QStringLiteral(TAVRO_QT_TESTS_DIR "/forms/picture.svg"));
    for (const auto& [name, list] : unchanged)
        ADD_FAILURE() << qPrintable(name) << " kept: " << list.constData();
    const QByteArray saved = form->contents().toUtf8();
    QFile out(QStringLiteral(TAVRO_QT_TESTS_OUTPUT "/all.ui"));
    ASSERT_TRUE(out.open(QIODevice::WriteOnly) && out.write(saved) == saved.size());

    QBuffer buffer;
    buffer.setData(saved);
    ASSERT_TRUE(buffer.open(QIODevice::ReadOnly));
    const std::unique_ptr<QWidget> loaded(QUiLoader().load(&buffer));
    ASSERT_NE(loaded, nullptr);
    for (const QString& name : classes()) {
        const auto* const other = loaded->findChild<QWidget*>(u'a' + name);
        ASSERT_NE(other, nullptr) << qPrintable(name);
        ASSERT_EQ(QString::fromLatin1(other->metaObject()->className()), name);
        expectEqual(widget(qPrintable(u'a' + name)), *other);
    }
    open(QString::fromUtf8(saved));
    EXPECT_EQ(form->contents().toUtf8(), saved);
}

} // namespace
