#pragma once

namespace Vz::Test {

/// Fixes what a picture or a text could depend on: the tests' own font and no other, a locale and a time
/// zone. Called first by every program of the tests.
void FixEnvironment();

/// The folder of the tests, without a separator at its end.
const char* TestsFolder();

} // namespace Vz::Test
