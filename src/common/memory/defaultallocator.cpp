#include "common/memory/defaultallocator.h"

#include <cstdlib>

namespace ZUNO::Common::Memory {

DefaultAllocator::~DefaultAllocator() {
    ZUNO_CHECK_AS(DefaultAllocator::isClean(), "isClean()",
                  "Allocator has '" << mCount.load()
                                    << "' blocks allocated, memory leak or wrong order of "
                                       "Allocator object -> allocated object deletion");
}

void* DefaultAllocator::allocate(std::uint64_t size) {
    ++mCount;
    const auto length = static_cast<std::uint32_t>(size);
    void* const block = std::malloc(length != 0 ? length : 1);
    if (block == nullptr)
        throwOutOfMemory();
    return block;
}

void DefaultAllocator::free(void* ptr) {
    if (ptr == nullptr)
        return;
    --mCount;
    std::free(ptr);
}

} // namespace ZUNO::Common::Memory
