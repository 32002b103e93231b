#include "hostkit/heapmemorycallback.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace ZUNO::HostKit {

void* HeapMemoryCallback::allocateMemory(unsigned int size) {
    ++mFigures.mAllocations;
    void* const block = std::malloc(std::max(size, 1U));
    if (block == nullptr || !note(block, size)) {
        ++mFigures.mRefused;
        std::free(block);
        return nullptr;
    }
    ++mFigures.mBlocks;
    mFigures.mBytes += size;
    mFigures.mPeakBytes = std::max(mFigures.mPeakBytes, mFigures.mBytes);
    return block;
}

bool HeapMemoryCallback::note(void* block, unsigned int size) {
    try {
        mSizes[block] = size;
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

void HeapMemoryCallback::freeMemory(void* ptr) {
    ++mFigures.mFrees;
    const auto place = mSizes.find(ptr);
    if (place == mSizes.end())
        return; // null, or a block that is not ours
    --mFigures.mBlocks;
    mFigures.mBytes -= place->second;
    mSizes.erase(place);
    std::free(ptr);
}

} // namespace ZUNO::HostKit
