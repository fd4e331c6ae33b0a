#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Vz {

/// Memory for the pixels of a picture. Great pictures lie in the system's huge pages where it has them, so
/// that going down their columns does not look up a page for each row.
class TPixelStore {
public:
    /// Makes room for so many pixels, all zero. Memory is kept where it suffices. Raises std::bad_alloc where
    /// there is none; then the store is empty.
    void Assign(std::size_t count);
    std::uint32_t* Data() const { return FPixels.get(); }

private:
    struct TFree {
        void operator()(std::uint32_t* pixels) const;
    };
    std::unique_ptr<std::uint32_t[], TFree> FPixels;
    std::size_t FCapacity = 0;
};

} // namespace Vz
