// Runs the tests of the Qt host in fixed surroundings, on Qt's platform without a display. The scale of the
// screen is QT_SCALE_FACTOR's.

#include "tests/support/Environment.h"

#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int count, char** arguments) {
    Vz::Test::FixEnvironment();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir settings; // dialogs remember where they were
    qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
    testing::InitGoogleTest(&count, arguments);
    QApplication application(count, arguments);
    QApplication::setCursorFlashTime(0); // pictures of a window show the same caret at any time
    return RUN_ALL_TESTS();
}
