// Where exceptions and what belongs to them are stored, also when memory runs out meanwhile.
#include "common/exceptions/exception.h"
#include "common/exceptions/lastresort.h"
#include "common/memory/globalallocators.h"
#include "common/memory/managedstorage.h"

namespace ZUNO::Common::Exceptions {

namespace {

/// True while this thread constructs an exception. When memory runs out meanwhile, that makes an
/// exception of its own, which must do without the allocators that have just refused.
thread_local bool tConstructing = false;

/// Set for the length of the outermost construction.
class Construction {
public:
    Construction() : mOutermost(!tConstructing) { tConstructing = true; }
    ~Construction() {
        if (mOutermost)
            tConstructing = false;
    }
    Construction(const Construction&) = delete;
    Construction& operator=(const Construction&) = delete;

    bool isOutermost() const { return mOutermost; }

private:
    bool mOutermost;
};

Debug::CallStack captureCallStack() {
    const Construction construction;
    Debug::CallStack stack(construction.isOutermost() ? gDebugAllocator : lastResort());
    if (!construction.isOutermost())
        return stack;
    try {
        stack.capture();
    } catch (const Exception* shortage) {
        delete shortage;
        stack.clear();
    }
    return stack;
}

} // namespace

String Exception::keep(const String& text) {
    const Construction construction;
    if (construction.isOutermost()) {
        try {
            return String(text, gObjectAllocator);
        } catch (const Exception* shortage) {
            delete shortage;
        }
    }
    return String(text, lastResort());
}

void* Exception::operator new(std::size_t size) {
    void* storage =
        gObjectAllocator != nullptr ? Memory::acquireStorage(size, gObjectAllocator) : nullptr;
    if (storage == nullptr)
        storage = Memory::acquireStorage(size, lastResort());
    if (storage == nullptr)
        throw std::bad_alloc();
    return storage;
}

void Exception::operator delete(void* storage) noexcept {
    // Runs when building the exception threw. If the handle is still pending, give the storage
    // back; if the constructor had already taken it, leak it (only when the reserve is exhausted).
    if (!Memory::PendingAllocators::isNext(storage))
        return;
    const SharedPtr<Memory::Allocator> allocator = Memory::PendingAllocators::take(storage);
    Memory::releaseBytes(allocator, storage);
}

void Exception::operator delete(Exception* object, std::destroying_delete_t) {
    const SharedPtr<Memory::Allocator> allocator(object->mAllocator);
    void* const storage = dynamic_cast<void*>(object);
    object->~Exception();
    Memory::releaseBytes(allocator, storage);
}

Exception::Exception(const String& message)
    : mAllocator(Memory::PendingAllocators::take(this)), mCallStack(captureCallStack()),
      mMessage(keep(message)) {}

} // namespace ZUNO::Common::Exceptions
