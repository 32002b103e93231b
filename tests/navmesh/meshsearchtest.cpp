// The search that a world runs against the plain parts, bit for bit and step by step.
#include "navmesh/meshsearch.h"
#include "common/callback/callbackallocator.h"
#include "reference/plainsearch.h"
#include "tests/support/navmeshlibrary.h"

#include <algorithm>
#include <bit>
#include <memory>
#include <random>

namespace ZUNO::Tests {

using namespace Common;
using namespace NavMesh;
using Math::Vec3;
using Reference::PlainSearch;

class MeshSearchTest : public NavMeshLibraryTest {
protected:
    /// Nodes at random, on a lattice, where ties abound, or anywhere; with one-way, doubled and own
    /// neighbours, fewer than `links` each.
    SharedPtr<NavMeshContainer> makeTangle(unsigned int nodes, bool isLattice, float away,
                                           unsigned int links = 7) {
        SharedPtr<NavMeshContainer> mesh(
            Memory::createManaged<NavMeshContainer>(NavMesh::getAllocator()));
        mesh->mXAxis = {1, 0, 0};
        mesh->mYAxis = {0, 0, 1};
        for (unsigned int id = 0; id < nodes; ++id) {
            const auto coordinate = [&] {
                const auto steps = static_cast<float>(mRandom() % 4096);
                return isLattice ? static_cast<float>(mRandom() % 12) : steps / 256;
            };
            mesh->mVertices.push_back(
                {away + static_cast<float>(id) / 2 + coordinate(), 0, away + coordinate()});
            auto& node = mesh->mNodes.emplace_back(Memory::processHeap());
            node.mPolygon.push_back(id);
            for (auto i = mRandom() % links; i != 0; --i) // near by number: islands come about
                node.mNeighbours.push_back(
                    mRandom() % 4 == 0
                        ? -7
                        : static_cast<int>((id + nodes + mRandom() % (2 * links - 2) + 2 - links) %
                                           nodes));
        }
        return mesh;
    }

    /// Ends anywhere. To a goal far away all estimates are rounded coarsely, so that cheaper ways
    /// turn up late: savings go through closed nodes.
    SearchEnds pickEnds(const NavMeshContainer& mesh) {
        const auto node = [&] {
            return static_cast<std::uint32_t>(mRandom() % mesh.mNodes.size());
        };
        const auto place = [&] { return mesh.mVertices[mRandom() % mesh.mVertices.size()]; };
        const float farAway[] = {0, 1e7F, 1e8F, 1e9F};
        return {place(), place() + Vec3<float>(farAway[mRandom() % 4], 0, 0), node(), node()};
    }

    static MeshSearch::NodeState stateOf(PlainSearch& search, std::uint32_t node) {
        return search.isOpen(node)     ? MeshSearch::NODE_OPEN
               : search.isClosed(node) ? MeshSearch::NODE_CLOSED
                                       : MeshSearch::NODE_UNVISITED;
    }
    static MeshSearch::NodeState stateOf(MeshSearch& search, std::uint32_t node) {
        return search.stateOf(node);
    }

    void expectSameEnd(PlainSearch& plain, MeshSearch& fast, const MeshGraph& graph) {
        std::vector<std::uint32_t> expected;
        const float cost = plain.getPath(expected);
        BlockPool pool(Memory::processHeap());
        BlockPool::Vector<std::uint32_t> nodes(pool);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(fast.getPath(nodes)),
                  std::bit_cast<std::uint32_t>(cost));
        ASSERT_EQ(nodes.size(), expected.size());
        for (std::size_t i = 0; i < nodes.size(); ++i)
            ASSERT_EQ(nodes[i], graph.numberOf(expected[i]));
    }

    /// Slices of any size, with the states of all nodes compared between them.
    void compare(const SharedPtr<NavMeshContainer>& mesh, int searches) {
        const auto count = static_cast<std::uint32_t>(mesh->mNodes.size());
        const MeshGraph graph(mesh, Memory::processHeap());
        SearchMemory memory(Memory::processHeap());
        MeshSearch fast(graph, memory);
        AStarMapNavMesh map(mesh);
        PlainSearch plain(mesh, map, Memory::processHeap());
        for (int i = 0; i < searches; ++i) {
            const SearchEnds ends = pickEnds(*mesh);
            plain.begin(ends);
            fast.begin(ends);
            const bool isAbandoned = i % 10 == 0;
            for (std::int32_t state = 1, slices = 0; state == 1; ++slices) {
                const auto budget =
                    static_cast<std::uint32_t>(mRandom() % 8 == 0 ? 300 : mRandom() % 4);
                state = plain.run(budget);
                ASSERT_EQ(fast.run(budget), state);
                const bool looks = i % 4 == 0 && slices % 64 == 0;
                for (std::uint32_t node = 0; looks && node < count; ++node)
                    ASSERT_EQ(fast.stateOf(node), stateOf(plain, node)) << node;
                if (state == 0)
                    expectSameEnd(plain, fast, graph);
                if (isAbandoned && slices > 5)
                    break;
            }
        }
        std::size_t edges = 0;
        for (const auto& node : mesh->mNodes)
            edges += node.mNeighbours.size();
        EXPECT_LE(graph.getMemoryUsage(), 24 * (mesh->mNodes.size() + 1) + 8 * edges);
    }

    std::mt19937 mRandom{8};
};

TEST_F(MeshSearchTest, GoesThePlainSearchsSteps) {
    compare(load(Worlds::makeHarbour()), 60);
    compare(load(Worlds::makeFloor(400, 6)), 60);
    compare(load(Worlds::makeFloor(3000, 7)), 60);
    for (const float away : {0.0F, 1.0F, 1e7F, 3e38F})
        for (const bool isLattice : {false, true}) {
            compare(makeTangle(40, isLattice, away), 60);
            compare(makeTangle(700, isLattice, away), 40);
            compare(makeTangle(600, isLattice, away, 250), 12); // hundreds open in one expansion
        }
}

// Without a path a search only counts. Who looks on sees the nodes all the same.
TEST_F(MeshSearchTest, CountsWhatItWouldExpandInVain) {
    Worlds::MeshModel twoFloors = Worlds::makeFloor(50, 1);
    const auto first = static_cast<std::int32_t>(twoFloors.mNodes.size());
    Worlds::MeshModel other = Worlds::makeFloor(30, 2);
    for (auto& node : other.mNodes) {
        for (auto& neighbour : node.mNeighbours)
            neighbour += neighbour >= 0 ? first : 0;
        twoFloors.mNodes.push_back(node);
    }
    const SharedPtr<NavMeshContainer> mesh = load(twoFloors);
    for (const bool isOneWay : {false, true}) {
        if (isOneWay)
            mesh->mNodes[static_cast<std::size_t>(first)].mNeighbours[0] = 3;
        const MeshGraph graph(mesh, Memory::processHeap());
        SearchMemory memory(Common::getAllocator());
        MeshSearch fast(graph, memory);
        AStarMapNavMesh map(mesh);
        PlainSearch plain(mesh, map, Memory::processHeap());
        for (const bool goesBack : {false, true})
            for (const std::uint32_t budget : {1U, 7U, 50U, 1000000000U})
                for (const int looksAfter : {0, 3, 1000}) {
                    SearchEnds ends{{0, 0, 0}, {9, 0, 9}, 5, 60};
                    if (goesBack)
                        std::swap(ends.mStartNode, ends.mGoalNode);
                    plain.begin(ends);
                    mMemory->mRequests = 0;
                    fast.begin(ends);
                    const bool isVain =
                        graph.countVainExpansions(graph.numberOf(ends.mStartNode),
                                                  graph.numberOf(ends.mGoalNode)) != 0;
                    EXPECT_EQ(isVain, !isOneWay);
                    EXPECT_TRUE(mMemory->mRequests == 0 || !isVain) << "counting takes no memory";
                    for (std::int32_t state = 1, slices = 0; state == 1; ++slices) {
                        EXPECT_EQ(fast.run(0), 1);
                        state = plain.run(budget);
                        ASSERT_EQ(fast.run(budget), state);
                        for (std::uint32_t node = 0; slices == looksAfter && node < 80; ++node)
                            ASSERT_EQ(fast.stateOf(node), stateOf(plain, node));
                    }
                    EXPECT_EQ(fast.run(3), plain.run(3)) << "it stays ended";
                    fast.end();
                }
    }
}

// An expansion happens as a whole or not at all, whichever request is refused.
TEST_F(MeshSearchTest, GoesOnAfterARefusedRequestAsIfNothingWere) {
    unsigned int refused = 0;
    auto* const memory = new CountingMemory;
    const SharedPtr<Callback::MemoryCallback> callback(memory);
    SharedPtr<Memory::Allocator> host(new (callback) Callback::CallbackAllocator);
    for (const auto& mesh : {load(Worlds::makeFloor(150, 4)), makeTangle(200, false, 0),
                             makeTangle(100, true, 0), makeTangle(150, false, 1e7F, 100)}) {
        const auto count = static_cast<std::uint32_t>(mesh->mNodes.size());
        const MeshGraph graph(mesh, Memory::processHeap());
        AStarMapNavMesh map(mesh);
        PlainSearch plain(mesh, map, Memory::processHeap());
        const auto statesOf = [&](auto& search) {
            std::vector<MeshSearch::NodeState> states;
            for (std::uint32_t node = 0; node < count; ++node)
                states.push_back(stateOf(search, node));
            return states;
        };
        for (int i = 0; i < 150; ++i) {
            const SearchEnds ends = pickEnds(*mesh);
            for (unsigned int n = 1, isOver = 0; isOver == 0; ++n) {
                SearchMemory searchMemory(host);
                MeshSearch fast(graph, searchMemory);
                std::vector<void*> taken; // so that the pool asks for more at another time
                while (taken.size() < static_cast<std::size_t>(i % 15))
                    taken.push_back(searchMemory.mPool.take());
                plain.begin(ends);
                memory->mRequests = 0;
                memory->mFailingRequest = n;
                while (!raisedBy([&] { fast.begin(ends); }).empty())
                    ++refused;
                for (int state = 1; state == 1;) {
                    const auto before = i < 3 ? statesOf(fast) : statesOf(plain);
                    while (!raisedBy([&] { state = fast.run(1); }).empty()) {
                        ++refused;
                        ASSERT_EQ(statesOf(fast), before);
                    }
                    ASSERT_EQ(state, plain.run(1));
                    if (state == 0)
                        expectSameEnd(plain, fast, graph);
                }
                isOver = memory->mRequests < n ? 1 : 0;
                memory->mFailingRequest = 0;
                for (void* const block : taken)
                    searchMemory.mPool.giveBack(block);
            }
        }
    }
    EXPECT_GT(refused, 200U);
    host = nullptr;
    Reports::take(); // it has counted what was refused, too
}

} // namespace ZUNO::Tests
