#include "common/memory/freelistallocator.h"

#include <cstdlib>

namespace ZUNO::Common::Memory {

using Layout = FreeListLayout;

struct FreeListAllocator::Chunk {
    Chunk* mNext;
    std::uint16_t mBlocks; ///< its blocks; during `compact` those in use
    std::uint16_t mSizeClass;
};

struct FreeListAllocator::Block {
    Chunk* mChunk; ///< null for a large block
    Block* mNext;  ///< lies in the payload, valid while the block is free

    void* payload() { return reinterpret_cast<std::byte*>(this) + Layout::wordSize; }
    static Block* of(void* payload) {
        return reinterpret_cast<Block*>(static_cast<std::byte*>(payload) - Layout::wordSize);
    }
};

FreeListAllocator::FreeListAllocator(SharedPtr<Allocator> parent)
    : Allocator("FreeList"), mParent(std::move(parent)) {
    static_assert(sizeof(Chunk) <= Layout::chunkHeader);
    static_assert(Layout::chunkHeader % alignof(Block) == 0);
    static_assert((Layout::chunkHeader + Layout::wordSize) % Layout::alignment == 0);
    static_assert(sizeof(void*) != 4 ||
                  (Layout::chunkSize(1) == 16392 && Layout::chunkSize(2) == 16388 &&
                   Layout::chunkSize(16) == 16328 && Layout::chunkSize(63) == 16392));
}

FreeListAllocator::~FreeListAllocator() {
    for (Chunk* chunk = mChunks; chunk != nullptr;) {
        Chunk* const next = chunk->mNext;
        releaseBytes(mParent, chunk);
        chunk = next;
    }
}

void* FreeListAllocator::allocate(std::uint64_t size) {
    const std::uint64_t sizeClass = Layout::classOf(size);
    if (sizeClass >= Layout::classCount)
        return allocateLarge(size);
    Block* const block = mFree[sizeClass];
    if (block == nullptr)
        return allocateFromNewChunk(static_cast<unsigned int>(sizeClass));
    mFree[sizeClass] = block->mNext;
    return block->payload();
}

void* FreeListAllocator::allocateFromNewChunk(unsigned int sizeClass) {
    refill(sizeClass);
    Block* const block = mFree[sizeClass];
    if (block == nullptr)
        return nullptr;
    mFree[sizeClass] = block->mNext;
    return block->payload();
}

void FreeListAllocator::free(void* ptr) {
    if (ptr == nullptr)
        return;
    Block* const block = Block::of(ptr);
    if (block->mChunk == nullptr) {
        releaseBytes(mParent, static_cast<std::byte*>(ptr) - Layout::largePrefix);
        return;
    }
    Block*& head = mFree[block->mChunk->mSizeClass];
    block->mNext = head;
    head = block;
}

void* FreeListAllocator::askParent(std::uint64_t size) {
    struct Asking {
        bool& mIsAsking;
        ~Asking() { mIsAsking = false; }
    } const asking{mIsAsking};
    mIsAsking = true;
    return mParent == nullptr ? std::malloc(static_cast<std::size_t>(size))
                              : mParent->allocate(size);
}

void* FreeListAllocator::allocateLarge(std::uint64_t size) {
    // A root of allocators hands on the low 32 bits of a size, so the sum has to fit them.
    if (mIsAsking || size > largestRequest)
        return nullptr;
    auto* const storage = static_cast<std::byte*>(askParent(size + Layout::largePrefix));
    if (storage == nullptr)
        return nullptr;
    void* const payload = storage + Layout::largePrefix;
    Block::of(payload)->mChunk = nullptr;
    return payload;
}

void FreeListAllocator::refill(unsigned int sizeClass) {
    // A parent without memory throws, and the exception's storage and texts are asked for here:
    // to ask the parent again would never end.
    if (mIsAsking)
        return;
    const std::size_t size = Layout::chunkSize(sizeClass);
    auto* const header = static_cast<Chunk*>(askParent(size));
    if (!ZUNO_CHECK(header, "Cannot allocate memory block of size: " << size))
        return;
    const std::size_t count = Layout::blocksPerChunk(sizeClass);
    *header = {mChunks, static_cast<std::uint16_t>(count), static_cast<std::uint16_t>(sizeClass)};
    mChunks = header;
    std::byte* position = reinterpret_cast<std::byte*>(header) + Layout::chunkHeader;
    for (std::size_t i = 0; i < count; ++i, position += Layout::stride(sizeClass)) {
        auto* const block = reinterpret_cast<Block*>(position);
        block->mChunk = header;
        block->mNext = mFree[sizeClass];
        mFree[sizeClass] = block;
    }
}

std::uint64_t FreeListAllocator::compact() {
    countBlocksInUse();
    unlinkBlocksOfUnusedChunks();
    return releaseUnusedChunks();
}

void FreeListAllocator::countBlocksInUse() {
    for (const Block* head : mFree)
        for (const Block* block = head; block != nullptr; block = block->mNext)
            --block->mChunk->mBlocks;
}

void FreeListAllocator::unlinkBlocksOfUnusedChunks() {
    for (Block*& head : mFree)
        for (Block** link = &head; *link != nullptr;) {
            if ((*link)->mChunk->mBlocks == 0)
                *link = (*link)->mNext;
            else
                link = &(*link)->mNext;
        }
}

std::uint64_t FreeListAllocator::releaseUnusedChunks() {
    std::uint64_t released = 0;
    for (Chunk** link = &mChunks; *link != nullptr;) {
        Chunk* const chunk = *link;
        if (chunk->mBlocks == 0) {
            *link = chunk->mNext;
            released += Layout::chunkSize(chunk->mSizeClass);
            releaseBytes(mParent, chunk);
        } else {
            chunk->mBlocks = static_cast<std::uint16_t>(Layout::blocksPerChunk(chunk->mSizeClass));
            link = &chunk->mNext;
        }
    }
    return released;
}

} // namespace ZUNO::Common::Memory
