#pragma once

#include "common/memory/allocator.h"

#include <cstddef>
#include <cstdint>

namespace ZUNO::Common::Memory {

/// How a free-list allocator lays its memory out.
///
/// A block is a header word and the payload behind it. The word holds the address of the chunk
/// that the block belongs to, or 0 for a large block, which came from the parent on its own. While
/// a small block is free, the first word of its payload links to the next free one of its class.
/// A chunk is a header and its blocks, back to back. Words have the size of a pointer; with 64-bit
/// pointers payloads are aligned to 16 bytes, with 32-bit ones they follow each other tightly.
struct FreeListLayout {
    static constexpr unsigned int classCount = 64;
    static constexpr std::size_t chunkPayload = 16384;
    static constexpr std::size_t wordSize = sizeof(void*);
    static constexpr std::size_t alignment = sizeof(void*) == 8 ? 16 : 4;
    /// What a large block adds in front of its payload; the header word is the last part of it.
    static constexpr std::size_t largePrefix = sizeof(void*) == 8 ? 16 : 4;
    /// Where the first block's header word lies in a chunk.
    static constexpr std::size_t chunkHeader = sizeof(void*) == 8 ? 24 : 8;

    /// The class that serves requests of `size` bytes; `classCount` and above: a large block.
    static constexpr std::uint64_t classOf(std::uint64_t size) { return size / 4 + 1; }
    /// The distance between neighbouring blocks of a class.
    static constexpr std::size_t stride(unsigned int sizeClass) {
        const std::size_t payload = sizeClass == 1 ? wordSize : std::size_t{4} * sizeClass;
        return (wordSize + payload + alignment - 1) / alignment * alignment;
    }
    static constexpr std::size_t blocksPerChunk(unsigned int sizeClass) {
        return chunkPayload / stride(sizeClass);
    }
    static constexpr std::size_t chunkSize(unsigned int sizeClass) {
        return blocksPerChunk(sizeClass) * stride(sizeClass) + chunkHeader;
    }
};

/// Serves requests below 252 bytes from chunks of about 16 KB of equal blocks: one list step per
/// `allocate` and `free`, the parent asked once per chunk. Larger requests go to the parent one by
/// one. Freed small blocks stay here until `compact` or the end. Not for several threads.
class FreeListAllocator : public Allocator {
public:
    /// `parent`: where chunks and large blocks come from; a null handle is the process heap.
    explicit FreeListAllocator(SharedPtr<Allocator> parent);
    /// Gives every chunk back, whether its blocks are free or not; large blocks are not tracked.
    ~FreeListAllocator() override;

    /// Returns null when the parent yields nothing (a chunk that is refused is reported), when the
    /// size is above `largestRequest`, and when the parent asks here for more while it is asked.
    void* allocate(std::uint64_t size) override;
    void free(void* ptr) override;
    /// Always true: outstanding blocks are not counted.
    bool isClean() override { return true; }
    /// Gives the chunks whose blocks are all free back to the parent; returns their bytes.
    std::uint64_t compact() override;

private:
    struct Block;
    struct Chunk;

    void* askParent(std::uint64_t size);
    // What is rare stays out of line, so that nothing of it is set up for each block.
    [[gnu::noinline]] void* allocateLarge(std::uint64_t size);
    [[gnu::noinline]] void* allocateFromNewChunk(unsigned int sizeClass);
    void refill(unsigned int sizeClass);
    void countBlocksInUse();
    void unlinkBlocksOfUnusedChunks();
    std::uint64_t releaseUnusedChunks();

    Block* mFree[FreeListLayout::classCount] = {};
    Chunk* mChunks = nullptr;
    SharedPtr<Allocator> mParent;
    bool mIsAsking = false; ///< the parent, for memory
};

} // namespace ZUNO::Common::Memory
