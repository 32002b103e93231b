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
    explicit Estimates(std::vector<float> estimates) : mEstimates(std::move(estimates)) {}
    float estimate(std::uint32_t from, std::uint32_t) override { return mEstimates[from]; }
    std::vector<float> mEstimates;
};

/// A search with all its parts, and the model's answer to the same question.
struct Search {
    Search(NaiveAStar::Graph edges, std::vector<float> estimates,
           const Common::SharedPtr<Common::Memory::Allocator>& allocator = Common::gObjectAllocator)
        : mEdges(std::move(edges)), mGraph(mEdges), mEstimates(std::move(estimates)),
          mStorage(&mGraph, allocator), mGoal(&mCosts, &mEstimates, allocator),
          mAStar(&mStorage, &mGoal, &mGraph, allocator), mPath(allocator) {}

    void begin(int from, int to) {
        mGoal.setStartGoal(static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to));
        mAStar.initSearch();
        mExpected = NaiveAStar::search(mEdges, from, to, [&](int node) {
            return mEstimates.estimate(static_cast<std::uint32_t>(node), 0);
        });
    }
    /// Takes one step; false when the search has ended.
    bool step() {
        mState = mAStar.runSearch(1);
        mExpansions += mState == SEARCH_RUNNING ? 1 : 0;
        return mState == SEARCH_RUNNING;
    }
    void expectTheModelsAnswer() {
        ASSERT_EQ(mState, mExpected.mState);
        ASSERT_EQ(mExpansions, mExpected.mExpansions);
        mPath.clear();
        const float cost = mState == SEARCH_FOUND ? mGoal.getPath(mPath) : 0;
        ASSERT_EQ(cost, mExpected.mCost);
        std::vector<int> entered;
        for (const std::uint32_t edge : mPath)
            entered.push_back(static_cast<int>(mGraph.getEdgeEndNode(edge)));
        ASSERT_EQ(entered, mExpected.mNodes);
    }

    NaiveAStar::Graph mEdges;
    Graph mGraph;
    Costs mCosts{mGraph};
    Estimates mEstimates;
    AStarStorageFast mStorage;
    ASGoalBase mGoal;
    AStar mAStar;
    EdgeList mPath;
    int mState = SEARCH_RUNNING;
    unsigned int mExpansions = 0;
    NaiveAStar::Result mExpected{0};
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

/// Estimates below `count` steps; large ones mislead, so that savings go through closed nodes.
std::vector<float> randomEstimates(std::mt19937& random, std::size_t nodes, unsigned int count) {
    std::vector<float> estimates(nodes);
    for (float& estimate : estimates)
        estimate = static_cast<float>(random() % count) * 0.11F;
    return estimates;
}

} // namespace

using AStarTest = FoundationTest;

TEST_F(AStarTest, SearchesAsTheModelWhateverTheSlices) {
    std::mt19937 random(11);
    unsigned int reached = 0;
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        const std::size_t nodes = 2 + random() % (round % 10 == 0 ? 2000 : 60);
        const NaiveAStar::Graph edges = randomGraph(random, nodes, round % 2 == 0 ? 4 : 1000);
        Search search(edges, randomEstimates(random, nodes, round % 3 == 0 ? 400 : 1));
        for (int repeat = 0; repeat < 2; ++repeat) { // the second one reuses the arrays
            search.begin(static_cast<int>(random() % nodes), static_cast<int>(random() % nodes));
            EXPECT_EQ(search.mAStar.runSearch(0), SEARCH_RUNNING);
            search.mExpansions = 0;
            while (search.step()) {
            }
            ASSERT_NO_FATAL_FAILURE(search.expectTheModelsAnswer());
            EXPECT_EQ(search.mAStar.runSearch(0), SEARCH_RUNNING);
            EXPECT_EQ(search.mAStar.runSearch(7), search.mState) << "it stays ended";
            reached += search.mState == SEARCH_FOUND ? 1 : 0;
            // one large slice gives the same
            search.mAStar.initSearch();
            EXPECT_EQ(search.mAStar.runSearch(1000000), search.mState);
            ASSERT_NO_FATAL_FAILURE(search.expectTheModelsAnswer());
        }
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
    // no estimates: the cheapest path, whatever the order
    Search own(randomGraph(random, 40, 1000), std::vector<float>(40, 0.0F));
    MapStorage storage;
    AStar search(&storage, nullptr, &own.mGraph, Common::gObjectAllocator);
    for (int to = 0; to < 40; ++to) {
        own.begin(0, to);
        ASGoalBase goal(&own.mCosts, &own.mEstimates, Common::gObjectAllocator);
        goal.setStartGoal(0, static_cast<std::uint32_t>(to));
        search.setGoal(&goal);
        search.initSearch();
        ASSERT_EQ(search.runSearch(1000), own.mExpected.mState);
        if (own.mExpected.mState != SEARCH_FOUND)
            continue;
        EXPECT_EQ(storage.mLastAdded, goal.getGoalNode()) << "it goes back into the open list";
        EdgeList path(Common::gObjectAllocator);
        EXPECT_EQ(goal.getPath(path), own.mExpected.mCost);
    }
}

TEST_F(AStarTest, GrowsWithItsMap) {
    Search search({}, std::vector<float>(5000, 0.0F));
    for (const int nodes : {3, 5000, 40}) { // a chain
        search.mEdges.assign(static_cast<std::size_t>(nodes), {});
        for (int node = 0; node + 1 < nodes; ++node)
            search.mEdges[static_cast<std::size_t>(node)].push_back({node + 1, 1});
        search.mGraph = Graph(search.mEdges);
        search.begin(0, nodes - 1);
        ASSERT_EQ(search.mAStar.runSearch(6000), SEARCH_FOUND);
        EXPECT_EQ(search.mStorage.peekBest()->mG, static_cast<float>(nodes - 1));
        EXPECT_NE(search.mStorage.getRecordOfNode(static_cast<std::uint32_t>(nodes)), nullptr);
    }
    EXPECT_EQ(search.mStorage.getRecordOfNode(5001), nullptr);
}

// Every request for memory is refused in turn, and the same call made again.
TEST_F(AStarTest, GoesOnAfterARefusedRequestAsIfNothingWere) {
    std::mt19937 random(21);
    for (int round = 0; round < 12; ++round) {
        const NaiveAStar::Graph edges = randomGraph(random, 120, round % 2 == 0 ? 4 : 1000);
        const std::vector<float> estimates = randomEstimates(random, edges.size(), 2700);
        for (unsigned int n = 1, isOver = 0; isOver == 0; ++n) {
            SCOPED_TRACE(std::to_string(round) + ", request " + std::to_string(n));
            Search search(edges, estimates, Common::getAllocator()); // asks the host each time
            mMemory->mRequests = 0;
            mMemory->mFailingRequest = n;
            const auto insist = [](auto step) {
                while (!raisedBy(step).empty()) {
                }
            };
            insist([&] { search.begin(0, 1); });
            for (bool goesOn = true; goesOn;)
                insist([&] { goesOn = search.step(); });
            isOver = mMemory->mRequests < n ? 1 : 0;
            mMemory->mFailingRequest = 0;
            ASSERT_NO_FATAL_FAILURE(search.expectTheModelsAnswer());
        }
    }
    Common::closeLibrary();
    Reports::take(); // the allocator counts what was refused, too
}

} // namespace ZUNO::Tests
