// A process whose heap is exhausted.
#include "common/memory/defaultallocator.h"
#include "tests/platform/posix/littlememory.h"
#include "tests/support/foundation.h"

#include <cstring>

namespace ZUNO::Tests {

using namespace Common;

using ExhaustionTest = FoundationTest;

TEST_F(ExhaustionTest, ExceptionsCanStillBeMade) {
    struct Case {
        bool mHasCallback;
        bool mThrows;
    };
    for (const Case& row : {Case{false, false}, {true, false}, {true, true}})
        expectWithLittleMemory([&] {
            Common::closeLibrary();
            initLibrary(row.mHasCallback ? mCallback : SharedPtr<Callback::MemoryCallback>());
            const std::string text(5000, 'x');
            mMemory->mFailingRequest = 1;
            mMemory->mFailsOnwards = true;
            mMemory->mThrows = row.mThrows;
            exhaustHeap();
            for (std::size_t size = 250; size != 0; --size) // what the allocator holds
                while (Memory::tryAllocateBytes(gObjectAllocator, size) != nullptr) {
                }
            bool isRight = true;
            for (int i = 0; i < 1000; ++i) // more than the reserve holds
                isRight = isRight && runsOutOfMemory(Memory::throwOutOfMemory) &&
                          runsOutOfMemory([&] { const String copy(text.c_str()); });
            return isRight;
        });
}

TEST_F(ExhaustionTest, ReportsAreCutThen) {
    expectWithLittleMemory([] {
        const std::string text(5000, 'x');
        exhaustHeap();
        Debug::ReportText report;
        report << text.c_str();
        return std::strlen(report.text()) == Debug::ReportText::roomInPlace - 1 &&
               std::strcmp(report.text() + 2044, "...") == 0;
    });
}

TEST_F(ExhaustionTest, TheDefaultAllocatorGivesBlocksBack) {
    expectWithLittleMemory([] {
        Memory::DefaultAllocator allocator;
        for (int i = 0; i < 1000; ++i)
            allocator.free(allocator.allocate(1 << 20)); // raises an exception without the heap
        return allocator.isClean();
    });
}

} // namespace ZUNO::Tests
