#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Vz {

/// Memory for the pixels of a picture. Great pictures lie in the system's huge pages where it has them, so
/// that going down their columns does not look up a page for each row.
class TPixelStore {
public:
    /// Makes room for so many pixels, whatever they are. Memory is kept where it suffices. Raises
    /// std::bad_alloc where there is none; then all stays as it was.
    void Resize(std::size_t count);
    /// The same, and sets the pixels to zero.
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
