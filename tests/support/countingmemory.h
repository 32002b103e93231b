#pragma once

#include "common/callback/memorycallback.h"
#include "common/exceptions/memoryexceptions.h"

#include <cstdlib>
#include <set>

namespace ZUNO::Tests {

/// Host memory that counts, and can be told to fail at the n-th request.
class CountingMemory : public Common::Callback::MemoryCallback {
public:
    void* allocateMemory(unsigned int size) override {
        ++mRequests;
        if (mFailingRequest != 0 &&
            (mRequests == mFailingRequest || (mFailsOnwards && mRequests > mFailingRequest))) {
            if (mThrows)
                throw new Common::Memory::OutOfMemoryException("the host has none");
            return nullptr;
        }
        void* const block = std::malloc(size != 0 ? size : 1);
        mBlocks.insert(block);
        return block;
    }
    void freeMemory(void* ptr) override {
        if (mBlocks.erase(ptr) == 0)
            ++mWrongFrees;
        std::free(ptr);
    }

    std::set<void*> mBlocks; ///< outstanding
    unsigned int mRequests = 0;
    unsigned int mFailingRequest = 0; ///< 0: none
    bool mFailsOnwards = false;       ///< whether the later ones fail too
    bool mThrows = false;
    unsigned int mWrongFrees = 0;
};

} // namespace ZUNO::Tests
