#pragma once

#include "common/memory/memorymanaged.h"

#include <limits>

namespace ZUNO::Common::Memory {

/// Storage for many small objects of one structure that end together: an allocation is a step of a
/// pointer, and nothing is given back before all of it is. Destructors are not run. Draws blocks
/// that grow with the structure from the allocator it was made in. Not for several threads.
class Arena : public MemoryManaged {
public:
    /// Every allocation is aligned to this.
    static constexpr std::size_t alignment = alignof(void*);

    Arena() = default;
    ~Arena() override;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    /// Throws an OutOfMemoryException when there is no memory.
    void* allocate(std::size_t size) {
        if (size > mRemaining)
            beginBlock(size);
        size = roundUp(size); // what remains is a multiple of the alignment, so it still fits
        std::byte* const storage = mPosition;
        mPosition += size;
        mRemaining -= size;
        return storage;
    }

private:
    static constexpr std::size_t firstBlock = 1024;
    static constexpr std::size_t largestBlock = 65536;

    struct Block {
        Block* mNext;
    };

    static constexpr std::size_t roundUp(std::size_t size) {
        return (size + alignment - 1) / alignment * alignment;
    }
    void beginBlock(std::size_t payload);

    Block* mBlocks = nullptr; ///< the one in use first
    std::byte* mPosition = nullptr;
    std::size_t mRemaining = 0;
    std::size_t mNextBlock = firstBlock;
};

/// Lets a standard container draw from an arena. What the container gives back stays there.
template <typename T>
class ArenaAllocator {
public:
    using value_type = T;
    static_assert(alignof(T) <= Arena::alignment);

    explicit ArenaAllocator(Arena& arena) noexcept : mArena(&arena) {}
    template <typename U>
    ArenaAllocator(const ArenaAllocator<U>& other) noexcept : mArena(other.arena()) {}

    T* allocate(std::size_t count) {
        if (count > std::numeric_limits<std::uint32_t>::max() / sizeof(T))
            throwOutOfMemory();
        return static_cast<T*>(mArena->allocate(count * sizeof(T)));
    }
    void deallocate(T*, std::size_t) noexcept {}

    Arena* arena() const noexcept { return mArena; }

    template <typename U>
    bool operator==(const ArenaAllocator<U>& other) const noexcept {
        return mArena == other.arena();
    }

private:
    Arena* mArena;
};

} // namespace ZUNO::Common::Memory
