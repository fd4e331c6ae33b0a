#include "tavro/graphics/PixelStore.h"

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

void TPixelStore::Resize(std::size_t count) {
    if (count <= FCapacity) return;
    void* const pixels = Allocate(count * sizeof(std::uint32_t));
    if (!pixels) throw std::bad_alloc();
    FPixels.reset(static_cast<std::uint32_t*>(pixels));
    FCapacity = count;
}

void TPixelStore::Assign(std::size_t count) {
    if (count > FCapacity)
        Resize(count); // fresh memory is zero
    else if (count > 0)
        std::memset(FPixels.get(), 0, count * sizeof(std::uint32_t));
}

} // namespace Vz
