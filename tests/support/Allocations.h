#pragma once

#include <cstddef>

namespace Vz::Test {

/// How often this program has asked for memory so far: all its threads, by operator new; under a sanitizer by
/// malloc and its like, too, also in libraries.
std::size_t CountAllocations();
/// The bytes that it asked for, all added up.
std::size_t CountAllocatedBytes();

} // namespace Vz::Test
