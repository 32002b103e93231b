#pragma once

#include "common/exceptions/memoryexceptions.h"
#include "hostkit/heapmemorycallback.h"

#include <cstdint>
#include <limits>

namespace ZUNO::Tests {

/// Counted host memory that can be told to fail at the n-th request, or beyond so many bytes.
class CountingMemory : public HostKit::HeapMemoryCallback {
public:
    void* allocateMemory(unsigned int size) override {
        ++mRequests;
        const bool fails = mFailingRequest != 0 && (mFailsOnwards ? mRequests >= mFailingRequest
                                                                  : mRequests == mFailingRequest);
        if (fails && mThrows)
            throw new Common::Memory::OutOfMemoryException("the host has none");
        const bool fits = figures().mBytes + size <= mLimit;
        return !fails && fits ? HeapMemoryCallback::allocateMemory(size) : nullptr;
    }
    void freeMemory(void* ptr) override {
        const std::uint64_t before = figures().mBlocks;
        HeapMemoryCallback::freeMemory(ptr);
        if (figures().mBlocks == before)
            ++mWrongFrees;
    }
    std::uint64_t outstanding() const { return figures().mBlocks; }

    unsigned int mRequests = 0;
    unsigned int mFailingRequest = 0; ///< 0: none
    bool mFailsOnwards = false;       ///< whether the later ones fail too
    bool mThrows = false;
    unsigned int mWrongFrees = 0;
    std::uint64_t mLimit = std::numeric_limits<std::uint64_t>::max(); ///< in bytes
};

} // namespace ZUNO::Tests
