#pragma once

#include "common/memory/allocator.h"

#include <cstdlib>
#include <limits>

namespace ZUNO::Common::Memory {

/// Lets a standard container draw from an `Allocator` without holding it: for the many small
/// containers of one structure whose owner holds the allocator for all of them. Copies cost
/// nothing, where a handle's count changes under a lock. Null means the process heap.
/// Raises an OutOfMemoryException when there is no memory.
template <typename T>
class BorrowingAllocator {
public:
    using value_type = T;

    explicit BorrowingAllocator(Allocator* allocator) noexcept : mAllocator(allocator) {}
    template <typename U>
    BorrowingAllocator(const BorrowingAllocator<U>& other) noexcept
        : mAllocator(other.allocator()) {}

    T* allocate(std::size_t count) {
        constexpr std::size_t limit = std::numeric_limits<std::uint32_t>::max();
        void* storage = nullptr;
        if (count <= limit / sizeof(T))
            storage = mAllocator != nullptr ? mAllocator->allocate(count * sizeof(T))
                                            : std::malloc(count * sizeof(T));
        if (storage == nullptr)
            throwOutOfMemory();
        return static_cast<T*>(storage);
    }
    void deallocate(T* storage, std::size_t) noexcept {
        if (mAllocator != nullptr)
            mAllocator->free(storage);
        else
            std::free(storage);
    }

    Allocator* allocator() const noexcept { return mAllocator; }

    template <typename U>
    bool operator==(const BorrowingAllocator<U>& other) const noexcept {
        return mAllocator == other.allocator();
    }

private:
    Allocator* mAllocator;
};

} // namespace ZUNO::Common::Memory
