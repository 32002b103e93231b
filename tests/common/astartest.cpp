#include "common/astar/astar.h"
#include "common/astar/asgoalbase.h"
#include "common/astar/astarstoragefast.h"
#include "tests/support/foundation.h"
#include "tests/support/naiveastar.h"

#include <random>

namespace ZUNO::Tests {

using namespace Common::Astar;

namespace {

/// A graph whose edge ids number all edges through.
class Graph : public AStarMap {
public:
    explicit Graph(const NaiveAStar::Graph& edges) {
        for (std::uint32_t node = 0; node < edges.size(); ++node) {
            mFirst.push_back(static_cast<std::uint32_t>(mEdges.size()));
            for (const NaiveAStar::Edge& edge : edges[node])
                mEdges.push_back({node, static_cast<std::uint32_t>(edge.mEnd), edge.mCost});
        }
        mFirst.push_back(static_cast<std::uint32_t>(mEdges.size()));
    }
    void getOutEdges(EdgeList& edges, std::uint32_t node) override {
        for (std::uint32_t edge = mFirst[node]; edge < mFirst[node + 1]; ++edge)
            edges.push_back(edge);
    }
    std::uint32_t getEdgeEndNode(std::uint32_t edge) override { return mEdges[edge].mEnd; }
    std::uint32_t getEdgeStartNode(std::uint32_t edge) override { return mEdges[edge].mStart; }
    std::uint32_t getNodeCount() override { return static_cast<std::uint32_t>(mFirst.size() - 1); }
    float costOf(std::uint32_t edge) const { return mEdges[edge].mCost; }

private:
    struct Edge {
        std::uint32_t mStart;
        std::uint32_t mEnd;
        float mCost;
    };
    std::vector<Edge> mEdges;
    std::vector<std::uint32_t> mFirst;
};

struct Costs : CostFunc {
    explicit Costs(const Graph& graph) : mGraph(graph) {}
    float getCost(std::uint32_t edge) override { return mGraph.costOf(edge); }
    const Graph& mGraph;
};

struct Estimates : HeuristicFunc {
    explicit Estimates(const std::vector<float>& estimates) : mEstimates(estimates) {}
    float estimate(std::uint32_t from, std::uint32_t) override { return mEstimates[from]; }
    const std::vector<float>& mEstimates;
};

/// A random graph. Few distinct costs make ties, and inconsistent estimates make cheaper paths
/// into closed nodes.
NaiveAStar::Graph randomGraph(std::mt19937& random, std::size_t nodes, unsigned int costs) {
    NaiveAStar::Graph graph(nodes);
    for (auto& edges : graph)
        for (auto count = random() % 6; count != 0; --count)
            edges.push_back(
                {static_cast<int>(random() % nodes), static_cast<float>(random() % costs) * 0.37F});
    return graph;
}

} // namespace

class AStarTest : public FoundationTest {};

TEST_F(AStarTest, SearchesAsTheModelWhateverTheSlices) {
    std::mt19937 random(11);
    AStarStorageFast* storage = nullptr;
    unsigned int reached = 0;
    for (int round = 0; round < 400; ++round) {
        const std::size_t nodes = 2 + random() % (round % 10 == 0 ? 2000 : 60);
        const NaiveAStar::Graph edges = randomGraph(random, nodes, round % 2 == 0 ? 4 : 1000);
        std::vector<float> estimates(nodes);
        for (float& estimate : estimates)
            estimate = static_cast<float>(random() % (round % 3 == 0 ? 400 : 1)) * 0.11F;
        Graph graph(edges);
        Costs costs(graph);
        Estimates heuristic(estimates);
        storage = new AStarStorageFast(&graph, Common::gObjectAllocator);
        ASGoalBase goal(&costs, &heuristic, Common::gObjectAllocator);
        AStar search(storage, &goal, &graph, Common::gObjectAllocator);
        for (int repeat = 0; repeat < 2; ++repeat) { // the second one reuses the arrays
            const int from = static_cast<int>(random() % nodes);
            const int to = static_cast<int>(random() % nodes);
            goal.setStartGoal(static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to));
            search.initSearch();
            EXPECT_EQ(search.runSearch(0), SEARCH_RUNNING);
            int state = SEARCH_RUNNING;
            unsigned int expansions = 0;
            while (state == SEARCH_RUNNING) {
                state = search.runSearch(1);
                expansions += state == SEARCH_RUNNING ? 1 : 0;
            }
            const NaiveAStar::Result expected = NaiveAStar::search(edges, from, to, [&](int node) {
                return estimates[static_cast<std::size_t>(node)];
            });
            ASSERT_EQ(state, expected.mState) << round;
            ASSERT_EQ(expansions, expected.mExpansions) << round;
            EXPECT_EQ(search.runSearch(0), SEARCH_RUNNING);
            EXPECT_EQ(search.runSearch(7), state) << "it stays ended";
            if (state != SEARCH_FOUND)
                continue;
            ++reached;
            EdgeList path(Common::gObjectAllocator);
            EXPECT_EQ(goal.getPath(path), expected.mCost);
            std::vector<int> entered;
            for (const std::uint32_t edge : path)
                entered.push_back(static_cast<int>(graph.getEdgeEndNode(edge)));
            ASSERT_EQ(entered, expected.mNodes) << round;
            // one large slice gives the same
            search.initSearch();
            EXPECT_EQ(search.runSearch(1000000), SEARCH_FOUND);
            EdgeList again(Common::gObjectAllocator);
            EXPECT_EQ(goal.getPath(again), expected.mCost);
            EXPECT_TRUE(std::ranges::equal(path, again));
        }
        delete storage;
    }
    EXPECT_GT(reached, 200U);
}

TEST_F(AStarTest, PassesSavingsOnThroughClosedNodes) {
    // 0 -> 1 -> 2 closes 2 dearly before 3 offers a cheaper way into 1
    const NaiveAStar::Graph edges = {{{1, 10}, {3, 1}}, {{2, 1}}, {{4, 100}}, {{1, 1}}, {}};
    const std::vector<float> estimates = {0, 0, 0, 50, 0};
    Graph graph(edges);
    Costs costs(graph);
    Estimates heuristic(estimates);
    AStarStorageFast storage(&graph, Common::gObjectAllocator);
    ASGoalBase goal(&costs, &heuristic, Common::gObjectAllocator);
    AStar search(&storage, &goal, &graph, Common::gObjectAllocator);
    goal.setStartGoal(0, 4);
    search.initSearch();
    ASSERT_EQ(search.runSearch(100), SEARCH_FOUND);
    EdgeList path(Common::gObjectAllocator);
    EXPECT_EQ(goal.getPath(path), 103);
    EXPECT_EQ(path.size(), 4U);
}

} // namespace ZUNO::Tests
