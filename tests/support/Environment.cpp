#include "tests/support/Environment.h"

#include <cstdlib>

namespace Vz::Test {

void FixEnvironment() {
    setenv("FONTCONFIG_FILE", TAVRO_TESTS_DIR "/fonts/fonts.conf", 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("LANGUAGE", "en", 1);
    setenv("TZ", "UTC", 1);
}

const char* TestsFolder() { return TAVRO_TESTS_DIR; }

} // namespace Vz::Test
