#include "common/astar/astar.h"
#include "common/astar/asgoalbase.h"
#include "common/astar/astarstoragefast.h"
#include "reference/naiveastar.h"
#include "tests/support/foundation.h"

#include <map>
#include <random>
#include <set>

namespace ZUNO::Tests {

using Reference::NaiveAStar;

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

namespace {

/// Somebody else's storage: what is listed, and no more.
class MapStorage : public AStarStorage {
public:
    MapStorage() : AStarStorage(Common::gObjectAllocator) {}
    AStarNode* popBest() override {
        AStarNode* const best = peekBest();
        if (best != nullptr)
            mList.erase(getNodeOfRecord(best));
        return best;
    }
    AStarNode* peekBest() override {
        AStarNode* best = nullptr;
        for (const std::uint32_t node : mList)
            if (best == nullptr || mRecords[node].mF < best->mF)
                best = &mRecords[node];
        return best;
    }
    void addOpen(std::uint32_t edge, std::uint32_t node, float g, float h) override {
        mLastAdded = node;
        mRecords[node] = {g + h, g, edge};
        mList.insert(node);
    }
    void closeNode(AStarNode* record) override { mClosed.insert(getNodeOfRecord(record)); }
    void updateClosed(std::uint32_t, std::uint32_t, float) override {}
    void updateOpen(std::uint32_t node, std::uint32_t edge, float g) override {
        AStarNode& record = mRecords[node];
        if (g < record.mG)
            record = {record.mF - record.mG + g, g, edge};
    }
    bool isOpen(std::uint32_t node) override { return mRecords.contains(node) && !isClosed(node); }
    bool isClosed(std::uint32_t node) override { return mClosed.contains(node); }
    void initNodes(std::uint32_t) override {
        mRecords.clear();
        mList.clear();
        mClosed.clear();
    }
    std::uint32_t getNodeOfRecord(AStarNode* record) override {
        return std::ranges::find_if(mRecords, [=](auto& each) { return &each.second == record; })
            ->first;
    }
    AStarNode* getRecordOfNode(std::uint32_t node) override { return &mRecords[node]; }

    std::uint32_t mLastAdded = noNode;

private:
    std::map<std::uint32_t, AStarNode> mRecords;
    std::set<std::uint32_t> mList;
    std::set<std::uint32_t> mClosed;
};

} // namespace

TEST_F(AStarTest, WorksWithPartsOfOthersAndGoalsSetAnew) {
    std::mt19937 random(3);
    const NaiveAStar::Graph edges = randomGraph(random, 40, 1000);
    const std::vector<float> estimates(40, 0.0F); // the cheapest path, whatever the order
    Graph graph(edges);
    Costs costs(graph);
    Estimates heuristic(estimates);
    MapStorage storage;
    AStar search(&storage, nullptr, &graph, Common::gObjectAllocator);
    for (std::uint32_t to = 0; to < 40; ++to) {
        ASGoalBase goal(&costs, &heuristic, Common::gObjectAllocator);
        goal.setStartGoal(0, to);
        search.setGoal(&goal);
        search.initSearch();
        const int state = search.runSearch(1000);
        const auto expected =
            NaiveAStar::search(edges, 0, static_cast<int>(to), [](int) { return 0.0F; });
        ASSERT_EQ(state, expected.mState);
        if (state != SEARCH_FOUND)
            continue;
        EXPECT_EQ(storage.mLastAdded, to) << "the goal goes back into the open list";
        EdgeList path(Common::gObjectAllocator);
        EXPECT_EQ(goal.getPath(path), expected.mCost);
    }
}

TEST_F(AStarTest, GrowsWithItsMap) {
    std::vector<float> estimates(5000, 0.0F);
    NaiveAStar::Graph edges;
    Graph graph(edges);
    Costs costs(graph);
    Estimates heuristic(estimates);
    AStarStorageFast storage(&graph, Common::gObjectAllocator);
    ASGoalBase goal(&costs, &heuristic, Common::gObjectAllocator);
    AStar search(&storage, &goal, &graph, Common::gObjectAllocator);
    for (const int nodes : {3, 5000, 40}) { // a chain
        edges.assign(static_cast<std::size_t>(nodes), {});
        for (int node = 0; node + 1 < nodes; ++node)
            edges[static_cast<std::size_t>(node)].push_back({node + 1, 1});
        graph = Graph(edges);
        goal.setStartGoal(0, static_cast<std::uint32_t>(nodes - 1));
        search.initSearch();
        ASSERT_EQ(search.runSearch(6000), SEARCH_FOUND);
        EXPECT_EQ(storage.peekBest()->mG, static_cast<float>(nodes - 1));
        EXPECT_NE(storage.getRecordOfNode(static_cast<std::uint32_t>(nodes)), nullptr);
    }
    EXPECT_EQ(storage.getRecordOfNode(5001), nullptr);
}

// Every request for memory is refused in turn, and the same call made again.
TEST_F(AStarTest, GoesOnAfterARefusedRequestAsIfNothingWere) {
    std::mt19937 random(21);
    for (int round = 0; round < 12; ++round) {
        const std::size_t nodes = 120;
        const NaiveAStar::Graph edges = randomGraph(random, nodes, round % 2 == 0 ? 4 : 1000);
        std::vector<float> estimates(nodes); // misleading: savings go through closed nodes
        for (float& estimate : estimates)
            estimate = static_cast<float>(random() % 800) * 0.37F;
        const auto expected = NaiveAStar::search(
            edges, 0, 1, [&](int node) { return estimates[static_cast<std::size_t>(node)]; });
        Graph graph(edges);
        Costs costs(graph);
        Estimates heuristic(estimates);
        const auto counted = Common::getAllocator(); // asks the host for each block
        for (unsigned int n = 1, isOver = 0; isOver == 0; ++n) {
            AStarStorageFast storage(&graph, counted);
            ASGoalBase goal(&costs, &heuristic, counted);
            AStar search(&storage, &goal, &graph, counted);
            goal.setStartGoal(0, 1);
            mMemory->mRequests = 0;
            mMemory->mFailingRequest = n;
            while (!raisedBy([&] { search.initSearch(); }).empty()) {
            }
            int state = SEARCH_RUNNING;
            unsigned int expansions = 0;
            while (state == SEARCH_RUNNING)
                if (raisedBy([&] { state = search.runSearch(1); }).empty())
                    expansions += state == SEARCH_RUNNING ? 1 : 0;
            isOver = mMemory->mRequests < n ? 1 : 0;
            mMemory->mFailingRequest = 0;
            ASSERT_EQ(state, expected.mState) << round << ", request " << n;
            ASSERT_EQ(expansions, expected.mExpansions) << round << ", request " << n;
            EdgeList path(counted);
            const float cost = state == SEARCH_FOUND ? goal.getPath(path) : 0;
            ASSERT_EQ(cost, expected.mCost) << round << ", request " << n;
        }
    }
    Common::closeLibrary();
    Reports::take(); // the allocator counts what was refused, too
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
