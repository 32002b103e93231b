#include "common/memory/memorymanaged.h"

#include "common/memory/managedstorage.h"

namespace ZUNO::Common::Memory {

MemoryManaged::MemoryManaged() : mAllocator(PendingAllocators::take(this)) {}

void* MemoryManaged::operator new(std::size_t size,
                                  const SharedPtr<Allocator>& allocator) noexcept {
    return acquireStorage(size, allocator);
}

void MemoryManaged::operator delete(void* storage, const SharedPtr<Allocator>& allocator) noexcept {
    abandonStorage(storage, allocator);
}

void MemoryManaged::operator delete(MemoryManaged* object, std::destroying_delete_t) {
    const SharedPtr<Allocator> allocator(object->mAllocator);
    void* const storage = dynamic_cast<void*>(object);
    object->~MemoryManaged();
    releaseBytes(allocator, storage);
}

} // namespace ZUNO::Common::Memory
