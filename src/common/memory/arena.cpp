#include "common/memory/arena.h"

#include <algorithm>

namespace ZUNO::Common::Memory {

Arena::~Arena() {
    while (mBlocks != nullptr) {
        Block* const next = mBlocks->mNext;
        releaseBytes(mAllocator, mBlocks);
        mBlocks = next;
    }
}

void Arena::beginBlock(std::size_t payload) {
    constexpr std::size_t header = roundUp(sizeof(Block));
    if (payload > largestRequest - header - alignment)
        throwOutOfMemory();
    const std::size_t size = std::max(mNextBlock, roundUp(payload) + header);
    auto* const storage = static_cast<std::byte*>(allocateBytes(mAllocator, size, 1));
    mBlocks = ::new (storage) Block{mBlocks};
    mPosition = storage + header;
    mRemaining = size - header;
    mNextBlock = std::min(mNextBlock * 2, largestBlock);
}

} // namespace ZUNO::Common::Memory
