// The program of the lines that the gallery copied (see copy_test.cpp): every property of every instrument is
// as it was in the gallery.

#include "hosts/qt/VzWidget.h"
#include "tavro/package/Package.h"
#include "tests/support/Environment.h"
#include "tests/unit/qt/Copied.h"

#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

namespace {

TEST(GalleryCopy, TheCompiledLinesGiveTheSameInstruments) {
    QFile file(QStringLiteral(TAVRO_QT_TESTS_OUTPUT "/copied.json"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QJsonArray expected = QJsonDocument::fromJson(file.readAll()).array();
    qsizetype count = 0;
    addCopies([&](const char* name, std::unique_ptr<QWidget> parent) {
        SCOPED_TRACE(name);
        const QJsonObject one = expected[count++].toObject();
        EXPECT_EQ(one[QStringLiteral("name")].toString(), QLatin1String(name));
        const auto* const widget = parent->findChild<VzWidget*>();
        ASSERT_NE(widget, nullptr);
        const QJsonObject was = one[QStringLiteral("values")].toObject();
        const QJsonObject is = valuesOf(widget->component());
        EXPECT_EQ(is.size(), was.size());
        for (const QString& key : was.keys())
            EXPECT_EQ(is[key].toString().toStdString(), was[key].toString().toStdString()) << qPrintable(key);
    });
    EXPECT_EQ(count, expected.size());
    EXPECT_GT(count, 20);
}

} // namespace

int main(int count, char** arguments) {
    Vz::Test::FixEnvironment();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&count, arguments);
    QApplication application(count, arguments);
    return RUN_ALL_TESTS();
}
