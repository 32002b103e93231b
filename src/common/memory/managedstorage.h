/// Storage for objects that remember their allocator: what their operators new and delete share.
#pragma once

#include "common/memory/allocator.h"
#include "common/memory/pendinghandle.h"

namespace ZUNO::Common::Memory {

using PendingAllocators = PendingHandles<SharedPtr<Allocator>>;

/// Storage for an object whose constructor then takes the handle; null when there is none.
inline void* acquireStorage(std::size_t size, const SharedPtr<Allocator>& allocator) noexcept {
    void* const storage = tryAllocateBytes(allocator, size);
    if (storage != nullptr && !PendingAllocators::push(storage, size, allocator)) {
        releaseBytes(allocator, storage);
        return nullptr;
    }
    return storage;
}

/// Takes the storage back when the object could not be constructed.
inline void abandonStorage(void* storage, const SharedPtr<Allocator>& allocator) noexcept {
    PendingAllocators::drop(storage);
    releaseBytes(allocator, storage);
}

} // namespace ZUNO::Common::Memory
