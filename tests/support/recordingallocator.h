#pragma once

#include "common/memory/allocator.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <map>

namespace ZUNO::Tests {

/// The heap, with a memory of what was asked. What is given back is overwritten first.
class RecordingAllocator : public Common::Memory::Allocator {
public:
    RecordingAllocator() : Allocator("a name of 20 letters") {}
    void* allocate(std::uint64_t size) override {
        if (mIsEmpty)
            return nullptr;
        void* const block = std::malloc(static_cast<std::size_t>(size));
        mSizes[block] = size;
        ++mRequests;
        return block;
    }
    void free(void* ptr) override {
        std::memset(ptr, 0xDD, static_cast<std::size_t>(mSizes[ptr]));
        EXPECT_EQ(mSizes.erase(ptr), 1U);
        std::free(ptr);
    }
    bool isClean() override { return mSizes.empty(); }

    std::map<void*, std::uint64_t> mSizes;
    unsigned int mRequests = 0;
    bool mIsEmpty = false;
};

} // namespace ZUNO::Tests
