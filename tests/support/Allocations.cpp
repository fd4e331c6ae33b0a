#include "tests/support/Allocations.h"

#include "tests/support/Sanitized.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> Allocations = 0;
std::atomic<std::size_t> AllocatedBytes = 0;

/// Relaxed: a count that ordered the threads would hide their races from the thread sanitizer.
void CountOne(std::size_t size) {
    Allocations.fetch_add(1, std::memory_order_relaxed);
    AllocatedBytes.fetch_add(size, std::memory_order_relaxed);
}

} // namespace

#ifdef TAVRO_SANITIZED

// A sanitizer has allocation functions of its own, which find what ours would hide; it tells of each call.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void*, std::size_t),
                                                         void (*onFree)(const volatile void*));

namespace {

void Count(const volatile void*, std::size_t size) { CountOne(size); }
void Ignore(const volatile void*) {}

[[maybe_unused]] const int Installed = __sanitizer_install_malloc_and_free_hooks(Count, Ignore);

} // namespace

#else

namespace {

void* Allocate(std::size_t size) {
    CountOne(size);
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}

void* AllocateAligned(std::size_t size, std::align_val_t alignment) {
    CountOne(size);
    const auto step = static_cast<std::size_t>(alignment);
    if (void* memory = std::aligned_alloc(step, (size + step) / step * step)) return memory;
    throw std::bad_alloc();
}

} // namespace

// The program's own allocation functions: they count.
void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment) { return AllocateAligned(size, alignment); }
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return AllocateAligned(size, alignment);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }

#endif

namespace Vz::Test {

std::size_t CountAllocations() { return Allocations; }
std::size_t CountAllocatedBytes() { return AllocatedBytes; }

} // namespace Vz::Test
