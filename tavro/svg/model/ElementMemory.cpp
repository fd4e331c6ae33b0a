#include "tavro/svg/model/ElementMemoryInternal.h"

#include <algorithm>
#include <new>

namespace Vz {

/// A block lives as long as an element in it, or the TElementBlocks that fills it.
struct TElementBlocks::TBlock {
    std::size_t Users = 1;
};

namespace {

thread_local TElementBlocks* Open = nullptr;

constexpr std::size_t LeastBlock = 2048;

/// Elements hold nothing of a stricter alignment than a pointer's.
constexpr std::size_t Aligned(std::size_t size) {
    return (size + alignof(void*) - 1) / alignof(void*) * alignof(void*);
}

} // namespace

TElementBlocks::TElementBlocks(std::size_t expected)
    : FOuter(Open)
    , FExpected(expected) {
    Open = this;
}

TElementBlocks::~TElementBlocks() {
    Open = FOuter;
    if (FBlock) Leave(FBlock);
}

void TElementBlocks::Leave(TBlock* block) noexcept {
    if (--block->Users == 0) ::operator delete(block);
}

TElementBlocks::THeader* TElementBlocks::TakePlace(std::size_t size) {
    if (FLeft < size) {
        const std::size_t room = std::max({size, LeastBlock, FExpected - std::min(FExpected, FUsed)});
        auto* const block = new (::operator new(sizeof(TBlock) + room)) TBlock;
        if (FBlock) Leave(FBlock);
        FBlock = block;
        FNext = reinterpret_cast<char*>(block + 1);
        FLeft = room;
    }
    auto* const place = reinterpret_cast<THeader*>(FNext);
    FNext += size;
    FLeft -= size;
    FUsed += size;
    ++FBlock->Users;
    return place;
}

void* TElementBlocks::Take(std::size_t size) {
    size = Aligned(size) + sizeof(THeader);
    auto* const header = Open ? Open->TakePlace(size) : static_cast<THeader*>(::operator new(size));
    *header = Open ? Open->FBlock : nullptr;
    return header + 1;
}

void TElementBlocks::Give(void* element) noexcept {
    if (!element) return;
    auto* const header = static_cast<THeader*>(element) - 1;
    if (*header)
        Leave(*header);
    else
        ::operator delete(header);
}

} // namespace Vz
