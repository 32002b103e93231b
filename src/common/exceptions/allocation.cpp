// Allocation that catches and throws: functions of common/memory/allocator.h, and what they throw.
#include "common/exceptions/lastresort.h"
#include "common/exceptions/memoryexceptions.h"
#include "common/memory/allocator.h"

#include <cstdlib>

namespace ZUNO::Common::Memory {

void* tryAllocateBytes(const SharedPtr<Allocator>& allocator, std::size_t size) noexcept {
    if (size > largestRequest)
        return nullptr;
    if (allocator == nullptr)
        return std::malloc(size != 0 ? size : 1);
    try {
        return allocator->allocate(size);
    } catch (Exceptions::Exception* exception) {
        delete exception;
    } catch (...) {
        // A host's callback may throw what it likes: to us it is memory that is not there.
    }
    return nullptr;
}

void* allocateBytes(const SharedPtr<Allocator>& allocator, std::size_t count, std::size_t size) {
    if (size != 0 && count > largestRequest / size)
        throwOutOfMemory();
    void* const storage = tryAllocateBytes(allocator, count * size);
    if (storage == nullptr)
        throwOutOfMemory();
    return storage;
}

String MemoryException::getName() const {
    return {"MemoryException", Exceptions::lastResort()};
}

String OutOfMemoryException::getName() const {
    return {"OutOfMemoryException", Exceptions::lastResort()};
}

void throwOutOfMemory() {
    throw new OutOfMemoryException(String("No Memory available", Exceptions::lastResort()));
}

} // namespace ZUNO::Common::Memory
