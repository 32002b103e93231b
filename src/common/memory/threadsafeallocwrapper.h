#pragma once

#include "common/platform/mutex.h"

#include <cstdint>

namespace ZUNO::Common::Memory {

/// The allocator A with `allocate` and `free` under a lock of its own. `isClean` and `compact` are
/// A's and take no lock: call them only while no other thread uses the allocator.
template <typename A>
class ThreadSafeAllocWrapper : public A {
public:
    using A::A;

    void* allocate(std::uint64_t size) override {
        const Platform::MutexLock lock(mMutex);
        return A::allocate(size);
    }
    void free(void* ptr) override {
        const Platform::MutexLock lock(mMutex);
        A::free(ptr);
    }
    bool isThreadSafe() override { return true; }

private:
    Platform::Mutex mMutex;
};

} // namespace ZUNO::Common::Memory
