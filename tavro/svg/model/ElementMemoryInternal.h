#pragma once

#include <cstddef>

namespace Vz {

/// While it lives, elements that this thread makes lie one behind the other: a document that is copied so is
/// made and walked with few waits for memory. Such memory is given back when all elements in a block are
/// gone.
class TElementBlocks {
public:
    /// `expected` bytes are taken at once; 0: nobody knows.
    explicit TElementBlocks(std::size_t expected);
    ~TElementBlocks();
    TElementBlocks(const TElementBlocks&) = delete;
    TElementBlocks& operator=(const TElementBlocks&) = delete;

    /// Bytes that the elements took so far.
    std::size_t Used() const { return FUsed; }

    /// Memory of an element, in the blocks of this thread where there are any.
    static void* Take(std::size_t size);
    static void Give(void* element) noexcept;

private:
    struct TBlock;
    /// What stands before each element: the block that it lies in; null: it has its memory for itself.
    using THeader = TBlock*;
    THeader* TakePlace(std::size_t size);
    static void Leave(TBlock* block) noexcept;

    TElementBlocks* FOuter;
    TBlock* FBlock = nullptr;
    char* FNext = nullptr;
    std::size_t FLeft = 0;
    std::size_t FExpected;
    std::size_t FUsed = 0;
};

} // namespace Vz
