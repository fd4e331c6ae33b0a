// Runs the tests of the Qt host in fixed surroundings, on Qt's platform without a display. The scale of the
// screen is QT_SCALE_FACTOR's.

#include "tests/support/Environment.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int count, char** arguments) {
    Vz::Test::FixEnvironment();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&count, arguments);
    QApplication application(count, arguments);
    return RUN_ALL_TESTS();
}
