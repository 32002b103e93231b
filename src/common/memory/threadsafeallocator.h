#pragma once

#include "common/memory/allocator.h"
#include "common/platform/mutex.h"

namespace ZUNO::Common::Memory {

/// Puts a lock around `allocate` and `free` of another allocator. `isClean` and `compact` take no
/// lock: call them only while no other thread uses the allocator.
class ThreadSafeAllocator : public Allocator {
public:
    /// `wrapped` must not be null.
    explicit ThreadSafeAllocator(const SharedPtr<Allocator>& wrapped)
        : Allocator("ThreadSafe"), mWrapped(wrapped) {}

    void* allocate(std::uint64_t size) override {
        const Platform::MutexLock lock(mMutex);
        return mWrapped->allocate(size);
    }
    void free(void* ptr) override {
        const Platform::MutexLock lock(mMutex);
        mWrapped->free(ptr);
    }
    bool isClean() override { return mWrapped->isClean(); }
    bool isThreadSafe() override { return true; }
    std::uint64_t compact() override { return mWrapped->compact(); }

private:
    SharedPtr<Allocator> mWrapped;
    Platform::Mutex mMutex;
};

} // namespace ZUNO::Common::Memory
