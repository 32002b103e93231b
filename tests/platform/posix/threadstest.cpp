// What may be used from several threads; run it under the thread sanitizer with `./run test
// threads`.
#include "navmesh/meshsearch.h"
#include "navmesh/nodelocator.h"
#include "tests/support/navmeshlibrary.h"

#include <cstring>
#include <functional>
#include <random>
#include <thread>
#include <vector>

namespace ZUNO::Tests {

using namespace Common;

class ThreadsTest : public NavMeshLibraryTest {
protected:
    static void runInThreads(const std::function<void(unsigned int)>& action) {
        constexpr unsigned int count = 4;
        std::vector<std::thread> threads;
        for (unsigned int i = 0; i < count; ++i)
            threads.emplace_back(action, i);
        for (std::thread& thread : threads)
            thread.join();
    }
};

// Both chains of allocators stand over the host's callback, which counts without a lock of its own.
TEST_F(ThreadsTest, AllocatorsAndTheirHandlesAreShared) {
    runInThreads([&](unsigned int seed) {
        const SharedPtr<Memory::Allocator>& shared =
            seed % 2 == 0 ? gObjectAllocator : NavMesh::getAllocator();
        std::mt19937 random(seed);
        std::vector<std::pair<unsigned char*, std::size_t>> blocks;
        for (int i = 0; i < 4000; ++i) {
            const SharedPtr<Memory::Allocator> handle(shared); // counted under a lock
            if (random() % 2 == 0 || blocks.empty()) {
                const std::size_t size = random() % 400;
                auto* const block = static_cast<unsigned char*>(handle->allocate(size));
                std::memset(block, static_cast<int>(seed), size);
                blocks.emplace_back(block, size);
            } else {
                const auto [block, size] = blocks.back();
                for (std::size_t k = 0; k < size; ++k)
                    ASSERT_EQ(block[k], seed);
                handle->free(block);
                blocks.pop_back();
            }
        }
        for (const auto& [block, size] : blocks)
            shared->free(block);
    });
    EXPECT_EQ(mMemory->mWrongFrees, 0U);
}

TEST_F(ThreadsTest, AMutexIsItsThreadsUntilEachLockIsGivenBack) {
    Platform::Mutex mutex;
    const auto isFree = [&] {
        bool isTaken = false;
        std::thread([&] {
            isTaken = mutex.tryLock();
            if (isTaken)
                mutex.unlock();
        }).join();
        return isTaken;
    };
    mutex.lock();
    EXPECT_TRUE(mutex.tryLock()) << "recursive";
    EXPECT_FALSE(isFree());
    mutex.unlock();
    EXPECT_FALSE(isFree());
    mutex.unlock();
    EXPECT_TRUE(isFree());
}

TEST_F(ThreadsTest, SearchesOfTheirOwnShareOneGraph) {
    const SharedPtr<NavMesh::NavMeshContainer> mesh = load(Worlds::makeFloor(800, 4));
    NavMesh::MeshGraph graph(mesh, gObjectAllocator);
    const NavMesh::NodeLocator locator(mesh, gObjectAllocator);
    const auto search = [&](unsigned int seed) {
        NavMesh::SearchMemory memory(gObjectAllocator);
        NavMesh::MeshSearch aStar(graph, memory);
        std::mt19937 random(seed);
        double sum = 0;
        for (int i = 0; i < 60; ++i) {
            const auto pick = [&] {
                return graph.centreOf(static_cast<std::uint32_t>(random() % mesh->mNodes.size()));
            };
            const auto from = pick();
            const auto to = pick();
            aStar.begin({from, to, static_cast<std::uint32_t>(locator.findNode(from)),
                         static_cast<std::uint32_t>(locator.findNode(to))});
            if (aStar.run(100000) != Astar::SEARCH_FOUND)
                continue;
            NavMesh::BlockPool::Vector<std::uint32_t> path(memory.mPool);
            sum += aStar.getPath(path);
        }
        return sum;
    };
    double alone[4];
    double together[4];
    for (unsigned int i = 0; i < 4; ++i)
        alone[i] = search(i);
    runInThreads([&](unsigned int i) { together[i] = search(i); });
    for (unsigned int i = 0; i < 4; ++i)
        EXPECT_EQ(together[i], alone[i]);
}

} // namespace ZUNO::Tests
