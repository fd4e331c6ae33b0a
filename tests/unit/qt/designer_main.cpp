// Runs the tests of the Designer plugin in fixed surroundings, on Qt's platform without a display, with the
// plugins of the build folder.

#include "tests/support/Environment.h"

#include <QApplication>
#include <QStandardPaths>

#include <gtest/gtest.h>

int main(int count, char** arguments) {
    Vz::Test::FixEnvironment();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_PLUGIN_PATH", TAVRO_PLUGINS_DIR);
    QStandardPaths::setTestModeEnabled(true); // Designer's settings
    testing::InitGoogleTest(&count, arguments);
    QApplication application(count, arguments);
    return RUN_ALL_TESTS();
}
