#pragma once

#include "common/memory/allocator.h"

#include <memory>
#include <utility>
#include <vector>

namespace ZUNO::NavMesh {

/// Blocks of one size for the searches of a world, from the world's allocator. What a search gives
/// back serves the next one; the allocator gets all of it when the pool ends.
/// Thread: one at a time, with all that draws from it.
class BlockPool {
public:
    static constexpr std::size_t blockSize = 512;

    explicit BlockPool(const Common::SharedPtr<Common::Memory::Allocator>& allocator)
        : mAllocator(allocator) {}
    ~BlockPool() { clear(); }
    BlockPool(const BlockPool&) = delete;
    BlockPool& operator=(const BlockPool&) = delete;

    /// Returns an aligned block with whatever it held. Throws OutOfMemoryException.
    void* take();
    void giveBack(void* block);
    /// Gives all memory back to the allocator; no block may be in use.
    void clear();

    /// Makes an object in a block, which `destroy` gives back. Throws OutOfMemoryException, and
    /// what the constructor throws.
    template <typename T, typename... Arguments>
    T* create(Arguments&&... arguments) {
        static_assert(sizeof(T) <= blockSize);
        void* const block = take();
        try {
            return ::new (block) T(std::forward<Arguments>(arguments)...);
        } catch (...) {
            giveBack(block);
            throw;
        }
    }
    template <typename T>
    void destroy(T* object) {
        object->~T();
        giveBack(object);
    }

    /// Lets a standard container draw from a pool: a block for what fits one, and the pool's
    /// allocator for more.
    template <typename T>
    class Allocator {
    public:
        using value_type = T;

        Allocator(BlockPool& pool) : mPool(&pool) {}
        template <typename U>
        Allocator(const Allocator<U>& other) : mPool(&other.pool()) {}

        T* allocate(std::size_t count) {
            return static_cast<T*>(count <= perBlock ? mPool->take()
                                                     : Common::Memory::allocateBytes(
                                                           mPool->mAllocator, count, sizeof(T)));
        }
        void deallocate(T* storage, std::size_t count) noexcept {
            if (count <= perBlock)
                mPool->giveBack(storage);
            else
                Common::Memory::releaseBytes(mPool->mAllocator, storage);
        }

        BlockPool& pool() const { return *mPool; }

        template <typename U>
        bool operator==(const Allocator<U>& other) const {
            return mPool == &other.pool();
        }

    private:
        static constexpr std::size_t perBlock = blockSize / sizeof(T);

        BlockPool* mPool;
    };
    template <typename T>
    using Vector = std::vector<T, Allocator<T>>;

private:
    struct Link {
        Link* mNext;
    };
    void makeBlocks();

    Common::SharedPtr<Common::Memory::Allocator> mAllocator;
    Link* mFree = nullptr;
    Link* mChunks = nullptr; ///< what the allocator gave
};

} // namespace ZUNO::NavMesh
