#include "common/callback/callbackallocator.h"

#include "common/exceptions/exception.h"
#include "common/memory/pendinghandle.h"

namespace ZUNO::Common::Callback {

using Pending = Memory::PendingHandles<SharedPtr<MemoryCallback>>;

CallbackAllocator::CallbackAllocator() : Allocator("Callback"), mCallback(Pending::take(this)) {}

CallbackAllocator::~CallbackAllocator() {
    ZUNO_CHECK_AS(CallbackAllocator::isClean(), "isClean()",
                  "callbackallocator has still an allocationcount of: " << mCount.load());
}

void* CallbackAllocator::allocate(std::uint64_t size) {
    ++mCount;
    const Platform::MutexLock lock(mMutex);
    return mCallback->allocateMemory(static_cast<unsigned int>(size));
}

void CallbackAllocator::free(void* ptr) {
    if (ptr == nullptr)
        return;
    --mCount;
    const Platform::MutexLock lock(mMutex);
    mCallback->freeMemory(ptr);
}

void* CallbackAllocator::operator new(std::size_t size,
                                      const SharedPtr<MemoryCallback>& callback) noexcept {
    void* storage = nullptr;
    try {
        storage = callback->allocateMemory(static_cast<unsigned int>(size));
    } catch (Exceptions::Exception* exception) {
        delete exception;
    } catch (...) {
        // whatever the host throws: there is no memory
    }
    if (storage != nullptr && !Pending::push(storage, size, callback)) {
        callback->freeMemory(storage);
        return nullptr;
    }
    return storage;
}

void CallbackAllocator::operator delete(void* storage,
                                        const SharedPtr<MemoryCallback>& callback) noexcept {
    Pending::drop(storage);
    callback->freeMemory(storage);
}

void CallbackAllocator::operator delete(CallbackAllocator* object,
                                        std::destroying_delete_t) noexcept {
    const SharedPtr<MemoryCallback> callback(object->mCallback);
    object->~CallbackAllocator();
    callback->freeMemory(object);
}

} // namespace ZUNO::Common::Callback
