#include "common/memory/allocator.h"

#include "common/memory/managedstorage.h"
#include "common/utility/immortal.h"

#include <cstdlib>

namespace ZUNO::Common::Memory {

const SharedPtr<Allocator>& processHeap() {
    static constinit Utility::Immortal<SharedPtr<Allocator>> none;
    return none.mValue;
}

void releaseBytes(const SharedPtr<Allocator>& allocator, void* storage) noexcept {
    if (allocator == nullptr)
        std::free(storage);
    else
        allocator->free(storage);
}

Allocator::Allocator(const char* name) : mOwner(PendingAllocators::take(this)), mName() {
    constexpr std::size_t maxLength = 14;
    for (std::size_t i = 0; name != nullptr && name[i] != '\0' && i < maxLength; ++i)
        mName[i] = name[i];
}

void* Allocator::operator new(std::size_t size) noexcept {
    return tryAllocateBytes(processHeap(), size);
}

void* Allocator::operator new(std::size_t size, const SharedPtr<Allocator>& parent) noexcept {
    return acquireStorage(size, parent);
}

void Allocator::operator delete(void* storage) noexcept {
    std::free(storage);
}

void Allocator::operator delete(void* storage, const SharedPtr<Allocator>& parent) noexcept {
    abandonStorage(storage, parent);
}

void Allocator::operator delete(Allocator* object, std::destroying_delete_t) noexcept {
    const SharedPtr<Allocator> owner(object->mOwner);
    void* const storage = dynamic_cast<void*>(object);
    object->~Allocator();
    releaseBytes(owner, storage);
}

} // namespace ZUNO::Common::Memory
