// A process whose heap is exhausted.
#include "common/exceptions/memoryexceptions.h"
#include "common/memory/defaultallocator.h"
#include "tests/support/foundation.h"

#include <cstdio>
#include <cstring>
#include <functional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ZUNO::Tests {

using namespace Common;

class ExhaustionTest : public FoundationTest {
protected:
    /// Takes what the heap has, down to the smallest blocks.
    static void exhaustHeap() {
        for (std::size_t size = 1 << 20; size != 0; size = size > 2048 ? size / 2 : size - 16)
            for (void* volatile block = &size; block != nullptr;)
                block = std::malloc(size);
    }

    /// Whether an action succeeds in a process of its own that may take 32 MB more, and not crash.
    static void expectWithLittleMemory(const std::function<bool()>& action) {
#ifdef __SANITIZE_ADDRESS__
        GTEST_SKIP() << "the sanitizer's heap can't be limited";
#endif
        const pid_t child = fork();
        if (child == 0) {
            Debug::setReportHandler([](const char*, const char*, unsigned int) {});
            raisedBy(Memory::throwOutOfMemory); // the unwinder loads what it needs
            std::FILE* const figures = std::fopen("/proc/self/statm", "r");
            unsigned long pages = 0;
            if (std::fscanf(figures, "%lu", &pages) != 1)
                _exit(2);
            std::fclose(figures);
            const rlim_t bytes = pages * static_cast<rlim_t>(getpagesize()) + (32U << 20);
            const rlimit limit{bytes, bytes};
            setrlimit(RLIMIT_AS, &limit);
            _exit(action() ? 0 : 1);
        }
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
};

TEST_F(ExhaustionTest, ExceptionsCanStillBeMade) {
    const auto raise = [](auto action) {
        try {
            action();
        } catch (Memory::OutOfMemoryException* exception) {
            const bool isRight = std::strcmp(exception->getMessage().getConstCharPtr(),
                                             "No Memory available") == 0 &&
                                 exception->getName().getLength() == 20;
            delete exception;
            return isRight;
        }
        return false;
    };
    struct Case {
        bool mHasCallback;
        bool mThrows;
    };
    for (const Case& row : {Case{false, false}, {true, false}, {true, true}})
        expectWithLittleMemory([&] {
            closeLibrary();
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
                isRight = isRight && raise(Memory::throwOutOfMemory) &&
                          raise([&] { const String copy(text.c_str()); });
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
