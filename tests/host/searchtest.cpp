#include "hostkit/meshfile.h"
#include "reference/comparison.h"
#include "reference/plainworld.h"
#include "tests/host/hosttest.h"
#include "tests/support/heaprequests.h"
#include "tests/support/turnedmesh.h"

#include <cmath>

namespace ZUNO::Tests {

class SearchTest : public HostTest {
protected:
    /// Searches, rays and heights: `width` searches at a time, in slices of up to `budget`.
    void expectThePlainWorldsAnswers(const std::string& document, std::size_t width,
                                     unsigned int budget) {
        mFiles->mFiles["mesh"] = document;
        ASSERT_TRUE(start("mesh"));
        const auto mesh = HostKit::readMesh("mesh", mFileCallback);
        Reference::PlainWorld plain(mesh, Common::Memory::processHeap());
        Interface world;
        Reference::SearchComparison comparison(plain, world, mQuestions);
        EXPECT_EQ(comparison.run(mQuestions.journeysOver(*mesh, 150), width, budget), "");
        EXPECT_GT(comparison.found(), 20U);
        Vec2<float> low;
        Vec2<float> high;
        Interface::getBoundingRectangle(low, high);
        EXPECT_EQ(Reference::compareRays(plain, world, mQuestions.raysOver(low, high, 500)), "");
        Interface::close();
    }

    Reference::Questions mQuestions{3};
};

TEST_F(SearchTest, AnswersAsAWorldOfPlainPartsDoes) {
    expectThePlainWorldsAnswers(Worlds::makeHarbour().toXML("harbour"), 12, 3);
    expectThePlainWorldsAnswers(Worlds::makeFloor(400, 6).toXML("full of ties"), 12, 40);
    expectThePlainWorldsAnswers(Worlds::makeFloor(3000, 7).toXML("large"), 20, 2000);
    expectThePlainWorldsAnswers(turned(Worlds::makeFloor(400, 5)), 1, 40);
    for (const unsigned int polygons : {60U, 600U}) {
        NavMesh::NavMeshContainer mesh;
        mQuestions.fill(mesh, {1, 0, 0.25F, polygons});
        expectThePlainWorldsAnswers(HostKit::textOf(mesh), 7, 50);
    }
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
        EXPECT_EQ(Interface::runPathSearch(search, 5), 0) << "it stays found";
        EXPECT_EQ(Interface::getPathCost(search), 0) << "before the first waypoint";
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
