#include "graphics/PixelStore.h"

#include <cstdlib>
#include <cstring>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace Vz {

namespace {

/// Zeroed memory, or null.
void* Allocate(std::size_t bytes) {
#if defined(__linux__)
    constexpr std::size_t hugePage = std::size_t{1} << 21;
    if (bytes >= hugePage) {
        // The last page is filled up where little of it stays unused.
        const std::size_t up = (bytes + hugePage - 1) / hugePage * hugePage;
        const std::size_t size = up - bytes <= bytes / 8 ? up : bytes;
        void* memory = nullptr;
        if (posix_memalign(&memory, hugePage, size) != 0) return nullptr;
        madvise(memory, size / hugePage * hugePage, MADV_HUGEPAGE); // a hint: nothing is lost where it fails
        return std::memset(memory, 0, bytes);
    }
#endif
    return std::calloc(bytes, 1);
}

} // namespace

void TPixelStore::TFree::operator()(std::uint32_t* pixels) const { std::free(pixels); }

void TPixelStore::Assign(std::size_t count) {
    if (count > 0 && count <= FCapacity) {
        std::memset(FPixels.get(), 0, count * sizeof(std::uint32_t));
        return;
    }
    FPixels.reset();
    FCapacity = 0;
    if (count == 0) return;
    FPixels.reset(static_cast<std::uint32_t*>(Allocate(count * sizeof(std::uint32_t))));
    if (!FPixels) throw std::bad_alloc();
    FCapacity = count;
}

} // namespace Vz
