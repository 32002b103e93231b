#pragma once

#include "common/memory/allocator.h"

#include <cstddef>
#include <type_traits>

namespace ZUNO::Common::Memory {

/// Lets a standard container draw from an `Allocator`. A null handle means the process heap.
/// Raises an OutOfMemoryException when there is no memory.
template <typename T>
class STLAllocator {
public:
    using value_type = T;
    using propagate_on_container_move_assignment = std::false_type;

    STLAllocator() noexcept = default;
    STLAllocator(const SharedPtr<Allocator>& allocator) : mAllocator(allocator) {}
    template <typename U>
    STLAllocator(const STLAllocator<U>& other) : mAllocator(other.handle()) {}

    T* allocate(std::size_t count) {
        return static_cast<T*>(allocateBytes(mAllocator, count, sizeof(T)));
    }
    void deallocate(T* storage, std::size_t) noexcept { releaseBytes(mAllocator, storage); }

    const SharedPtr<Allocator>& handle() const { return mAllocator; }

    template <typename U>
    bool operator==(const STLAllocator<U>& other) const {
        return mAllocator == other.handle().get();
    }

private:
    SharedPtr<Allocator> mAllocator;
};

} // namespace ZUNO::Common::Memory
