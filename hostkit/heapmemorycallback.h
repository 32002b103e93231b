#pragma once

#include "common/callback/memorycallback.h"

#include <cstdint>
#include <unordered_map>

namespace ZUNO::HostKit {

/// What a heap was asked for so far.
struct MemoryFigures {
    std::uint64_t mAllocations = 0; ///< calls of `allocateMemory`
    std::uint64_t mRefused = 0;     ///< those that there was no memory for
    std::uint64_t mFrees = 0;       ///< calls of `freeMemory`
    std::uint64_t mBlocks = 0;      ///< outstanding
    std::uint64_t mBytes = 0;       ///< outstanding
    std::uint64_t mPeakBytes = 0;
};

/// Host memory from the C heap, counted.
/// Thread: one at a time, as the library calls it.
class HeapMemoryCallback : public Common::Callback::MemoryCallback {
public:
    /// Null when the heap is exhausted.
    void* allocateMemory(unsigned int size) override;
    void freeMemory(void* ptr) override;

    const MemoryFigures& figures() const { return mFigures; }

private:
    /// Keeps a block's size; false when there is no memory for that.
    bool note(void* block, unsigned int size);

    MemoryFigures mFigures;
    std::unordered_map<void*, unsigned int> mSizes; ///< of the outstanding blocks
};

} // namespace ZUNO::HostKit
