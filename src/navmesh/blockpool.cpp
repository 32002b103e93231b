#include "navmesh/blockpool.h"

#include <cstdint>
#include <new>

namespace ZUNO::NavMesh {

namespace {

constexpr std::size_t blocksPerChunk = 15;

} // namespace

void BlockPool::clear() {
    mFree = nullptr;
    while (mChunks != nullptr) {
        Link* const next = mChunks->mNext;
        Common::Memory::releaseBytes(mAllocator, mChunks);
        mChunks = next;
    }
}

void* BlockPool::take() {
    if (mFree == nullptr)
        makeBlocks();
    Link* const block = mFree;
    mFree = block->mNext;
    return block;
}

void BlockPool::giveBack(void* block) {
    mFree = ::new (block) Link{mFree};
}

// A chunk begins with its link; the blocks lie at the next multiples of a cache line.
void BlockPool::makeBlocks() {
    constexpr std::size_t alignment = 64;
    void* const chunk = Common::Memory::allocateBytes(
        mAllocator, 1, sizeof(Link) + alignment + blocksPerChunk * blockSize);
    mChunks = ::new (chunk) Link{mChunks};
    auto* const behindLink = static_cast<std::byte*>(chunk) + sizeof(Link);
    const auto misfit = reinterpret_cast<std::uintptr_t>(behindLink) % alignment;
    std::byte* const first = behindLink + (alignment - misfit) % alignment;
    for (std::size_t i = blocksPerChunk; i-- != 0;) // they are taken in ascending order
        giveBack(first + i * blockSize);
}

} // namespace ZUNO::NavMesh
