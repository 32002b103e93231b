#pragma once

#include "common/callback/memorycallback.h"
#include "common/memory/allocator.h"
#include "common/platform/mutex.h"

#include <atomic>

namespace ZUNO::Common::Callback {

/// Draws from the host's callback, and lives in the callback's memory itself.
/// Hands on what the callback gives, null included. Only the low 32 bits of a size get through.
/// Reports blocks that are still outstanding when it is destroyed.
/// Thread: several allocators with locks of their own stand over this one, so it has a lock around
/// the callback, which is therefore never entered by two threads at once. It does not count as safe
/// for several threads all the same: what stands over it needs its lock for itself.
class CallbackAllocator : public Memory::Allocator {
public:
    /// Storage from the callback, which the new object then keeps. Null when it yields nothing.
    static void* operator new(std::size_t size, const SharedPtr<MemoryCallback>& callback) noexcept;
    static void operator delete(void* storage, const SharedPtr<MemoryCallback>& callback) noexcept;
    static void operator delete(CallbackAllocator* object, std::destroying_delete_t) noexcept;

    CallbackAllocator();
    ~CallbackAllocator() override;

    void* allocate(std::uint64_t size) override;
    void free(void* ptr) override;
    bool isClean() override { return mCount == 0; }

private:
    std::atomic<std::uint64_t> mCount = 0; ///< `isClean` reads it without the lock
    SharedPtr<MemoryCallback> mCallback;
    Platform::Mutex mMutex;
};

} // namespace ZUNO::Common::Callback
