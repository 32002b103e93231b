#include "hostkit/heapmemorycallback.h"

#include <algorithm>
#include <cstdlib>

namespace ZUNO::HostKit {

void* HeapMemoryCallback::allocateMemory(unsigned int size) {
    ++mFigures.mAllocations;
    void* const block = std::malloc(std::max(size, 1U));
    if (block == nullptr)
        return nullptr;
    mSizes[block] = size;
    ++mFigures.mBlocks;
    mFigures.mBytes += size;
    mFigures.mPeakBytes = std::max(mFigures.mPeakBytes, mFigures.mBytes);
    return block;
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
