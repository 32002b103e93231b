// A host whose memory gives out, of whatever kind.
#include "tests/host/hosttest.h"
#include "tests/platform/posix/littlememory.h"

namespace ZUNO::Tests {

TEST_F(HostTest, AnExhaustedHeapIsAnExceptionAndNotTheEnd) {
    struct Case {
        bool mHasCallback;
        bool mThrows;
    };
    const SharedPtr<Common::Callback::MemoryCallback> none;
    for (const Case& row : {Case{false, false}, {true, false}, {true, true}})
        expectWithLittleMemory([&] {
            if (!Interface::initWorldRepresentation(
                    "floor", row.mHasCallback ? mMemoryCallback : none, mFileCallback, ""))
                return false;
            const auto openSearch = [] {
                Interface::runPathSearch(Interface::initPathSearch({1, 0, 1}, {13, 0, 13}), 5);
            };
            openSearch();
            mMemory->mFailingRequest = 1;
            mMemory->mFailsOnwards = true;
            mMemory->mThrows = row.mThrows;
            exhaustHeap();
            for (int i = 0; i < 100000 && !runsOutOfMemory(openSearch); ++i) { // what is left
            }
            bool isRight = true;
            for (int i = 0; i < 1000; ++i) // more than any reserve holds
                isRight = isRight && runsOutOfMemory(openSearch);
            return isRight && !Interface::isBlocked({1, 1}) && Interface::closePathSearch(0);
        });
}

} // namespace ZUNO::Tests
