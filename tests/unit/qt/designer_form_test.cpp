// The form that designer_test.cpp saved, with every property of every widget set, as the form compiler made a
// program of it and as QUiLoader reads it: both give the same widgets. And the small form that lies beside
// this file.

#include "ui_after.h"
#include "ui_all.h"

#include "tavro/VZSVGControl.h"

#include <QFile>
#include <QMetaProperty>
#include <QUiLoader>

#include <gtest/gtest.h>

#include <memory>

namespace {

std::unique_ptr<QWidget> loaded(const char* path) {
    QFile file(QString::fromUtf8(path));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
    return std::unique_ptr<QWidget>(QUiLoader().load(&file));
}

/// How many of the library's widgets are on the one, each as on the other.
int equalWidgets(const QWidget& one, const QWidget& other) {
    int count = 0;
    for (const auto* widget : one.findChildren<QWidget*>()) {
        const QMetaObject& meta = *widget->metaObject();
        if (!QByteArray(meta.className()).startsWith("Vz")) continue;
        ++count;
        const auto* const twin = other.findChild<QWidget*>(widget->objectName());
        EXPECT_NE(twin, nullptr) << qPrintable(widget->objectName());
        if (!twin) continue;
        EXPECT_STREQ(twin->metaObject()->className(), meta.className());
        for (int row = meta.propertyOffset(); row < meta.propertyCount(); ++row)
            EXPECT_EQ(meta.property(row).read(widget), twin->property(meta.property(row).name()))
                << meta.className() << '.' << meta.property(row).name();
    }
    return count;
}

TEST(DesignerForm, CompiledAndLoadedAreEqual) {
    QWidget compiled;
    Ui::Form().setupUi(&compiled);
    const auto read = loaded(TAVRO_QT_TESTS_OUTPUT "/all.ui");
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(equalWidgets(compiled, *read), QStringLiteral(TAVRO_QT_WIDGETS).split(u' ').size());
}

TEST(DesignerForm, ThePlainControlShowsTheFileThatTheFormNames) {
    QWidget compiled;
    Ui::Form().setupUi(&compiled);
    const auto read = loaded(TAVRO_QT_TESTS_OUTPUT "/all.ui");
    for (QWidget* form : {&compiled, read.get()}) {
        auto* const control = form->findChild<VzSVGControl*>();
        ASSERT_NE(control, nullptr);
        EXPECT_EQ(control->source(), QStringLiteral(TAVRO_QT_TESTS_DIR "/forms/picture.svg"));
        EXPECT_TRUE(control->isSourceLoaded());
        EXPECT_NE(control->instrument().GetDocument().FindElement("Red"), nullptr);
    }
}

TEST(DesignerForm, ACompiledFormHasTheValuesThatWereSaved) {
    QWidget window;
    Ui::Panel panel;
    panel.setupUi(&window);
    EXPECT_EQ(panel.speedometer->minimum(), 20);
    EXPECT_EQ(panel.speedometer->maximum(), 200);
    EXPECT_EQ(panel.speedometer->value(), 87.25);
    EXPECT_EQ(panel.speedometer->needleFillColor(), QColor(255, 60, 30, 200));
    EXPECT_EQ(panel.speedometer->design(), VzSpeedometer::sdSimple);
    EXPECT_FALSE(panel.speedometer->parts().testFlag(VzSpeedometer::spLabels));
    EXPECT_EQ(panel.clock->time(), QDateTime(QDate(2026, 3, 15), QTime(15, 30, 45)));
    EXPECT_EQ(panel.clock->caption(), QStringLiteral("Z\u00fcrich & <Genf>"));
    EXPECT_EQ(panel.clock->labels().size(), 3);
    EXPECT_TRUE(panel.clock->captionFont().bold());
    window.show();
    EXPECT_FALSE(window.grab().toImage().isNull());
    EXPECT_EQ(equalWidgets(window, *loaded(TAVRO_QT_TESTS_DIR "/forms/after.ui")), 2);
}

} // namespace
