// A host whose memory gives out, of whatever kind.
#include "hostkit/heapmemorycallback.h"
#include "tests/host/hosttest.h"
#include "tests/platform/posix/littlememory.h"

#include <malloc.h>

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

// As a process in 32 bits, or under `ulimit -v`, meets it: wherever the addresses end, the same
// world starts and answers once there are some again.
TEST_F(HostTest, AddressesMayEndAnywhere) {
    mFiles->mFiles["wide"] = Worlds::makeFloor(900, 3).toXML("wide");
    expectWithLittleMemory([&] {
        auto* const heap = new HostKit::HeapMemoryCallback;
        mMemoryCallback = SharedPtr<Common::Callback::MemoryCallback>(heap);
        const auto costs = [] {
            float sum = 0;
            for (float goal = 3; goal < 55; goal += 4) {
                const int search = Interface::initPathSearch({1, 0, 1}, {goal, 0, goal});
                while (Interface::runPathSearch(search, 9) == Pathfinder::PATH_RUNNING) {
                }
                for (Vec3<float> waypoint; Interface::getNextWaypoint(search, waypoint);)
                    sum += waypoint.mX;
            }
            return sum;
        };
        mallopt(M_TRIM_THRESHOLD, 0); // nothing is kept for the next start
        mallopt(M_MMAP_THRESHOLD, 1 << 16);
        limitAddresses(0);
        exhaustHeap(); // what earlier tests left in it
        limitAddresses(RLIM_INFINITY / 2);
        const float right = start("wide") ? costs() : 0;
        Interface::close();
        unsigned int refused = 0;
        for (rlim_t more = 0; more < 4U << 20; more += 32U << 10) {
            float answer = 0;
            limitAddresses(more);
            const bool isEnded =
                !raisedBy([&] { answer = start("wide") ? costs() : 0; }).empty() || answer == 0;
            limitAddresses(RLIM_INFINITY / 2);
            refused += isEnded ? 1 : 0;
            Interface::close();
            if (heap->figures().mBlocks != 0)
                return false;
            if (isEnded) {
                answer = start("wide") ? costs() : 0;
                Interface::close();
            }
            if (answer != right)
                return false;
        }
        return right > 0 && refused > 15 && refused < 125;
    });
}

} // namespace ZUNO::Tests
