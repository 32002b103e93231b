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
    constexpr std::size_t header = (sizeof(Block) + alignment - 1) / alignment * alignment;
    if (payload > std::numeric_limits<std::uint32_t>::max() - header)
        throwOutOfMemory();
    const std::size_t size = std::max(mNextBlock, payload + header);
    auto* const storage = static_cast<std::byte*>(allocateBytes(mAllocator, size, 1));
    mBlocks = ::new (storage) Block{mBlocks};
    mPosition = storage + header;
    mRemaining = size - header;
    mNextBlock = std::min(mNextBlock * 2, largestBlock);
}

} // namespace ZUNO::Common::Memory
