#pragma once

#include "common/memory/allocator.h"

#include <atomic>

namespace ZUNO::Common::Memory {

/// Draws from the process heap. Raises an OutOfMemoryException when the heap yields nothing.
/// Reports blocks that are still outstanding when it is destroyed.
class DefaultAllocator : public Allocator {
public:
    DefaultAllocator() : Allocator("Default") {}
    ~DefaultAllocator() override;

    void* allocate(std::uint64_t size) override;
    void free(void* ptr) override;
    bool isClean() override { return mCount == 0; }

private:
    std::atomic<std::uint64_t> mCount = 0; ///< several locked allocators may share this one
};

} // namespace ZUNO::Common::Memory
