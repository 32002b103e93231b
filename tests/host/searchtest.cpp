#include "reference/naiveastar.h"
#include "tests/host/hosttest.h"
#include "tests/support/heaprequests.h"

#include <cmath>
#include <random>

namespace ZUNO::Tests {

using Reference::NaiveAStar;

using Worlds::MeshModel;

namespace {

/// What a mesh model says of paths, worked out anew from its corners.
class Model {
public:
    explicit Model(const MeshModel& mesh) : mMesh(mesh) {}

    Vec3<float> corner(std::uint32_t id) const {
        const MeshModel::Corner& c = mMesh.mVertices[id];
        return {static_cast<float>(c.mX) / 4, static_cast<float>(c.mY) / 4,
                static_cast<float>(c.mZ) / 4};
    }

    Vec3<float> centre(int node) const {
        Vec3<float> sum(0, 0, 0);
        const auto& polygon = mMesh.mNodes[static_cast<std::size_t>(node)].mPolygon;
        for (const std::uint32_t id : polygon) {
            sum.mX += corner(id).mX;
            sum.mY += corner(id).mY;
            sum.mZ += corner(id).mZ;
        }
        const auto count = static_cast<float>(polygon.size());
        return {sum.mX / count, sum.mY / count, sum.mZ / count};
    }

    /// The lowest node below the point, by half planes.
    int find(const Vec3<float>& p) const {
        for (std::size_t id = 0; id < mMesh.mNodes.size(); ++id) {
            const auto& node = mMesh.mNodes[id];
            const float height = p.mY - corner(node.mPolygon[0]).mY;
            bool isIn = height >= -2 * mMesh.mCubeSize &&
                        height <= mMesh.mHeights[static_cast<std::size_t>(node.mHeightClass)];
            for (std::size_t i = 0; isIn && i < node.mPolygon.size(); ++i) {
                const Vec3<float> a = corner(node.mPolygon[i]);
                const Vec3<float> b = corner(node.mPolygon[(i + 1) % node.mPolygon.size()]);
                isIn = (b.mX - a.mX) * (p.mZ - a.mZ) - (b.mZ - a.mZ) * (p.mX - a.mX) >= 0;
            }
            if (isIn)
                return static_cast<int>(id);
        }
        return -1;
    }

    NaiveAStar::Result search(const Vec3<float>& from, const Vec3<float>& to) const {
        const int start = find(from);
        const int goal = find(to);
        const auto leaving = [&](int node) { return node == start ? from : centre(node); };
        const auto entering = [&](int node) { return node == goal ? to : centre(node); };
        NaiveAStar::Graph graph(mMesh.mNodes.size());
        for (std::size_t id = 0; id < graph.size(); ++id)
            for (const std::int32_t neighbour : mMesh.mNodes[id].mNeighbours)
                if (neighbour >= 0)
                    graph[id].push_back(
                        {neighbour, distance(leaving(static_cast<int>(id)), entering(neighbour))});
        return NaiveAStar::search(graph, start, goal,
                                  [&](int node) { return distance(leaving(node), to); });
    }

private:
    static float distance(const Vec3<float>& a, const Vec3<float>& b) {
        const float x = b.mX - a.mX;
        const float y = b.mY - a.mY;
        const float z = b.mZ - a.mZ;
        return std::sqrt(x * x + y * y + z * z);
    }

    const MeshModel& mMesh;
};

struct Request {
    Vec3<float> mStart;
    Vec3<float> mGoal;
    int mSearch = -1;
    int mState = 1;
    unsigned int mExpansions = 0;
};

/// Compares a finished search with the model: every float to the bit.
void expectAsModel(const Model& model, const Request& request) {
    const NaiveAStar::Result expected = model.search(request.mStart, request.mGoal);
    EXPECT_EQ(request.mState, expected.mState);
    EXPECT_EQ(request.mExpansions, expected.mExpansions);
    EXPECT_EQ(Interface::getPathCost(request.mSearch), 0) << "no cost before the first waypoint";
    Vec3<float> waypoint(-1, -1, -1);
    for (const int node : expected.mNodes) {
        ASSERT_TRUE(Interface::getNextWaypoint(request.mSearch, waypoint));
        EXPECT_EQ(waypoint, model.centre(node));
    }
    const Vec3<float> last = waypoint;
    EXPECT_FALSE(Interface::getNextWaypoint(request.mSearch, waypoint));
    EXPECT_EQ(waypoint, last) << "left as it was";
    EXPECT_EQ(Interface::getPathCost(request.mSearch), expected.mCost);
    EXPECT_EQ(Interface::runPathSearch(request.mSearch, 5), expected.mState) << "it stays so";
}

} // namespace

class SearchTest : public HostTest {
protected:
    /// Many searches side by side in random slices, closed and opened again, against the model.
    void compare(const MeshModel& mesh, unsigned int count, unsigned int seed) {
        mFiles->mFiles["mesh"] = mesh.toXML("mesh");
        ASSERT_TRUE(start("mesh"));
        const Model model(mesh);
        std::mt19937 random(seed);
        const auto point = [&] {
            const int node = static_cast<int>(random() % mesh.mNodes.size());
            Vec3<float> p = model.centre(node);
            if (random() % 3 == 0) // off the centre, sometimes off the node, sometimes on a border
                p = p + Vec3<float>(static_cast<float>(random() % 9) / 4 - 1, 0,
                                    static_cast<float>(random() % 9) / 4 - 1);
            return p;
        };
        std::vector<Request> open;
        for (unsigned int opened = 0; opened < count || !open.empty();) {
            if (opened < count && open.size() < 12) {
                Request request{point(), point()};
                ++opened;
                request.mSearch = Interface::initPathSearch(request.mStart, request.mGoal);
                const bool isOnMesh =
                    model.find(request.mStart) >= 0 && model.find(request.mGoal) >= 0;
                ASSERT_EQ(request.mSearch >= 0, isOnMesh);
                if (isOnMesh)
                    open.push_back(request);
                continue;
            }
            const std::size_t place = random() % open.size();
            Request& request = open[place];
            const std::size_t budget = random() % 40;
            for (std::size_t i = 0; i < budget && request.mState == 1; ++i) {
                request.mState = Interface::runPathSearch(request.mSearch, 1);
                request.mExpansions += request.mState == 1 ? 1 : 0;
            }
            const bool isAbandoned = random() % 50 == 0;
            if (request.mState == 1 && !isAbandoned)
                continue;
            if (request.mState != 1)
                expectAsModel(model, request);
            EXPECT_TRUE(Interface::closePathSearch(request.mSearch));
            open.erase(open.begin() + static_cast<std::ptrdiff_t>(place));
        }
    }
};

TEST_F(SearchTest, FindsTheModelsPathsOnTheHarbour) {
    compare(Worlds::makeHarbour(), 150, 1);
}

TEST_F(SearchTest, FindsTheModelsPathsOnAFloorFullOfTies) {
    compare(Worlds::makeFloor(400, 5), 150, 2);
}

TEST_F(SearchTest, TakesAllMemoryFromTheHostInProportionToWhatIsVisited) {
    mFiles->mFiles["large"] = Worlds::makeFloor(20000, 1).toXML("large");
    ASSERT_TRUE(start("large"));
    const auto runMany = [&](std::uint32_t budget) {
        const std::size_t heapBefore = heapRequests();
        const unsigned int before = mMemory->mRequests;
        int opened = 0;
        for (int i = 0; i < 200; ++i) {
            const float x = static_cast<float>(i) + 1;
            const int id = Interface::initPathSearch({x, 0, 1}, {x, 0, 151});
            if (id >= 0) // not in a hole
                Interface::runPathSearch(opened++, budget);
        }
        EXPECT_GT(opened, 100);
        while (opened != 0)
            Interface::closePathSearch(--opened);
        // the host of this test asks the heap once for each request, to count it, and now and then
        // for a larger table of them
        EXPECT_LT(heapRequests() - heapBefore, mMemory->mRequests - before + 10);
        return mMemory->mRequests - before;
    };
    EXPECT_LT(runMany(50), 200U * 12);
    EXPECT_LT(runMany(50), 10U) << "searches that were closed left their memory to these";
    EXPECT_GT(runMany(1000), 200U);
}

TEST_F(SearchTest, HoldsTheRulesOfSearchIds) {
    ASSERT_TRUE(start());
    const auto openOne = [] { return Interface::initPathSearch({1, 0, 1}, {13, 0, 13}); };
    EXPECT_EQ(openOne(), 0);
    EXPECT_EQ(openOne(), 1);
    EXPECT_EQ(openOne(), 2);
    EXPECT_TRUE(Interface::closePathSearch(1));
    EXPECT_FALSE(Interface::closePathSearch(1));
    EXPECT_FALSE(Interface::closePathSearch(-1));
    EXPECT_EQ(openOne(), 1);
    EXPECT_TRUE(Interface::closePathSearch(1));
    EXPECT_TRUE(Interface::closePathSearch(2));
    EXPECT_EQ(openOne(), 2) << "the one freed last comes first";
    EXPECT_EQ(Interface::runPathSearch(0, 0), 1) << "a budget of 0 does nothing";
    for (const int id : {-1, 1, 99})
        EXPECT_EQ(raisedBy([&] { Interface::runPathSearch(id, 10); }),
                  "ArgumentException:  invalid searchID given to runPathSearch: " +
                      std::to_string(id) + " {ArgumentName=id}");
    Stderr reports;
    Vec3<float> waypoint;
    EXPECT_FALSE(Interface::getNextWaypoint(99, waypoint));
    EXPECT_EQ(Interface::getPathCost(1), 0);
    const std::string text = reports.text();
    EXPECT_NE(text.find("isValidID(id)\nError Message: ID '99' points to an invalid item"),
              std::string::npos);
    EXPECT_NE(text.find("ID '1' points to an invalid item"), std::string::npos);
}

TEST_F(SearchTest, PaysForPathsWithinAndBetweenNodes) {
    ASSERT_TRUE(start());
    struct Case {
        Vec3<float> mStart;
        Vec3<float> mGoal;
        std::size_t mWaypoints;
        float mCost;
    };
    const Case cases[] = {
        {{0.5F, 0, 0.5F}, {0.5F, 1, 1.5F}, 0, std::sqrt(2.0F)}, // one node: the straight line
        {{1, 0, 1}, {3, 0, 1}, 1, 2},                           // the goal on the node's centre
        {{1, 0, 1}, {3.5F, 0, 1}, 1, 2.5F + 0.5F},              // and off it
        {{1, 0, 1}, {3, 0, 3}, 2, 4},
    };
    for (const Case& row : cases) {
        const int search = Interface::initPathSearch(row.mStart, row.mGoal);
        ASSERT_EQ(Interface::runPathSearch(search, 100), 0);
        std::size_t count = 0;
        for (Vec3<float> waypoint; Interface::getNextWaypoint(search, waypoint);)
            ++count;
        EXPECT_EQ(count, row.mWaypoints);
        EXPECT_EQ(Interface::getPathCost(search), row.mCost);
        Interface::closePathSearch(search);
    }
    const float huge = std::numeric_limits<float>::infinity();
    const Vec3<float> nowhere[] = {{-1, 0, -1},  {1, 2.1F, 1},          {1, -1.1F, 1},
                                   {huge, 0, 1}, {1, std::nanf(""), 1}, {std::nanf(""), 0, 1}};
    for (const Vec3<float>& point : nowhere) {
        EXPECT_EQ(Interface::initPathSearch(point, {1, 0, 1}), -1);
        EXPECT_EQ(Interface::initPathSearch({1, 0, 1}, point), -1);
    }
    EXPECT_EQ(Interface::initPathSearch({1, 2, 1}, {1, -1, 1}), 0) << "both bounds are inclusive";
}

} // namespace ZUNO::Tests
