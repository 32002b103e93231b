#pragma once

#include "common/memory/defaultallocator.h"
#include "common/memory/objectcreation.h"
#include "common/platform/mutex.h"

namespace ZUNO::Common::Memory {

/// Puts a lock around `allocate` and `free` of another allocator. `isClean` and `compact` take no
/// lock: call them only while no other thread uses the allocator.
class ThreadSafeAllocator : public Allocator {
public:
    /// A null `wrapped` means the process heap. Throws an OutOfMemoryException when that has no
    /// room for its allocator.
    explicit ThreadSafeAllocator(const SharedPtr<Allocator>& wrapped)
        : Allocator("ThreadSafe"), mWrapped(wrapped) {
        if (mWrapped == nullptr)
            mWrapped = SharedPtr<Allocator>(createManaged<DefaultAllocator>(processHeap()));
    }

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
