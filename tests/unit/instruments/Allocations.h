#pragma once

#include <cstddef>

namespace Vz::Test {

/// How often this program has asked for memory so far.
std::size_t CountAllocations();

} // namespace Vz::Test
