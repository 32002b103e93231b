// Characters on their way, pushed about, after goals that move.
#include "hostkit/explain.h"
#include "hostkit/strait.h"
#include "tests/hostkit/walkingworld.h"
#include "tests/support/heaprequests.h"

#include <algorithm>
#include <list>
#include <random>

namespace ZUNO::Tests {

using namespace HostKit;

namespace {

/// Characters that walk to goals, which walk too, and are pushed now and then.
class Crowd {
public:
    Crowd(const MeshView& view, std::size_t size) : mView(view), mPlaces(view, 0) {
        for (std::size_t i = 0; i < size; ++i) {
            mCharacters.emplace_back(view).mCorridor.place(mPlaces.pick(++mSeed));
            search(mCharacters.back(), mPlaces.pick(++mSeed).mPosition);
        }
    }

    void runFrame(unsigned int frame) {
        constexpr float near = 0.5F;
        for (Character& character : mCharacters) {
            Corridor& corridor = character.mCorridor;
            if (corridor.isAtGoal(near)) {
                ++mArrivals;
                search(character, mPlaces.pick(++mSeed).mPosition);
            }
            if (mRandom() % 4 == 0)
                corridor.moveGoal(beside(corridor.goal().mPosition, 0.15F));
            if (corridor.needsSearch())
                search(character, character.mTarget);
            const std::size_t before = heapRequests();
            stepOn(corridor, 0.12F);
            if (mRandom() % 50 == 0)
                corridor.move(beside(corridor.position().mPosition, 3)); // pushed
            if (frame % 8 == 0)
                corridor.shorten();
            mRequests += heapRequests() - before;
            check(character);
        }
    }

    unsigned int mArrivals = 0;
    std::size_t mRequests = 0; ///< for memory, while walking
    int mLongestStay = 0;      ///< in frames

private:
    struct Character {
        explicit Character(const MeshView& view) : mCorridor(view) {}
        Corridor mCorridor;
        Position mTarget{0, 0, 0};
        Position mMark{0, 0, 0}; ///< where it was last found to get on
        int mStay = 0;
    };

    Position beside(const Position& p, float reach) {
        const auto shift = [&] {
            return reach * (static_cast<float>(mRandom() % 2001) / 1000 - 1);
        };
        return {p.mX + shift(), p.mY, p.mZ + shift()};
    }

    /// What a host does: a search from where the character stands, snapped where need be.
    void search(Character& character, const Position& target) {
        character.mTarget = target;
        Corridor& corridor = character.mCorridor;
        const Place from = findNearest(mView, corridor.position().mPosition, 1, 1);
        const Place to = findNearest(mView, target, 1, 1);
        const auto waypoints = WalkingWorld::search(from.mPosition, to.mPosition).mWaypoints;
        std::vector<std::uint32_t> chain;
        ASSERT_TRUE(mChains.find(from.mPosition, to.mPosition, waypoints, chain));
        if (!corridor.follow(chain, to.mPosition)) {
            corridor.place({chain.front(), from.mPosition});
            ASSERT_TRUE(corridor.follow(chain, to.mPosition));
        }
    }

    /// The world finds the character on its node, and it gets on.
    void check(Character& character) {
        const Place& at = character.mCorridor.position();
        const PlanePoint point = mView.planeOf(at.mPosition);
        ASSERT_EQ(settle(mView, at.mNode, point).mNode, at.mNode);
        ASSERT_LT(distance(nearestInNode(mView, at.mNode, point), point), 1e-4);
        ++character.mStay;
        if (distance(point, mView.planeOf(character.mMark)) > 0.3) {
            character.mMark = at.mPosition;
            character.mStay = 0;
        }
        mLongestStay = std::max(mLongestStay, character.mStay);
    }

    const MeshView& mView;
    RandomPlaces mPlaces;
    ChainFinder mChains{mView};
    std::mt19937 mRandom{1};
    std::uint64_t mSeed = 0;
    std::list<Character> mCharacters;
};

TEST(Corridor, BringsACrowdToItsGoals) {
    const WalkingWorld world(Worlds::makeHarbour());
    Crowd crowd(world.view(), 40);
    unsigned int frame = 0;
    for (; frame < 1000; ++frame) // until all lists have grown
        crowd.runFrame(frame);
    crowd.mRequests = 0;
    for (; frame < 2000; ++frame)
        crowd.runFrame(frame);
    std::cout << crowd.mArrivals << " arrivals, " << crowd.mLongestStay
              << " frames at most in one place\n";
    EXPECT_GT(crowd.mArrivals, 40U);
    EXPECT_LE(crowd.mLongestStay, 60);
    EXPECT_EQ(crowd.mRequests, 0U);
}

/// Three squares in a row, the last two with a way in one direction alone; and one far away.
Worlds::MeshModel oneWay() {
    return flatMesh({{{{0, 0}, {8, 0}, {8, 8}, {0, 8}}, {-1, 1, -1, -1}},
                     {{{8, 0}, {16, 0}, {16, 8}, {8, 8}}, {-1, 2, -1, 0}},
                     {{{16, 0}, {24, 0}, {24, 8}, {16, 8}}, {-1, -1, -1, -1}},
                     {{{40, 0}, {48, 0}, {48, 8}, {40, 8}}, {-1, -1, -1, -1}}});
}

TEST(Corridor, SaysWhenASearchIsNeeded) {
    const WalkingWorld world(oneWay());
    Corridor corridor(world.view());
    EXPECT_FALSE(corridor.needsSearch() || corridor.follow({0, 1}, {3, 0, 1}));
    corridor.move({1, 0, 1}); // it is nowhere
    corridor.moveGoal({1, 0, 1});
    EXPECT_EQ(corridor.nextCorner(0), corridor.position().mPosition);
    EXPECT_FALSE(corridor.hasPath() || corridor.position());
    corridor.place({0, {1, 0, 1}});
    EXPECT_EQ(corridor.nextCorner(0), Position(1, 0, 1));
    EXPECT_FALSE(corridor.follow({1, 2}, {NAN, 0, 1}) || corridor.follow({2}, {5, 0, 1}));
    ASSERT_TRUE(corridor.follow({1}, {3, 0, 1})); // from a node that it stands beside
    EXPECT_EQ(corridor.nodes(), (std::vector<std::uint32_t>{1, 0}));
    EXPECT_EQ(corridor.nextCorner(0), Position(3, 0, 1));
    corridor.moveGoal({3, 0, 1.5F});
    EXPECT_FALSE(corridor.needsSearch() || corridor.isAtGoal(1));
    for (int i = 0; i < 3; ++i) // far about, in all
        corridor.moveGoal({i % 2 == 0 ? 0.5F : 3.5F, 0, 1.5F});
    corridor.moveGoal({3, 0, 1.5F});
    EXPECT_TRUE(corridor.needsSearch() && corridor.hasPath());
    corridor.move({2.5F, 0, 1});
    EXPECT_TRUE(corridor.isAtGoal(1));
    corridor.move({5, 0, 1}); // over the border of no return
    EXPECT_TRUE(corridor.needsSearch());
    EXPECT_FALSE(corridor.hasPath());
    corridor.place({0, {1, 0, 1}});
    ASSERT_TRUE(corridor.follow({0}, {1, 0, 1.5F}));
    corridor.moveGoal({11, 0, 1});
    EXPECT_TRUE(corridor.needsSearch() && corridor.hasPath());
}

TEST(Corridor, IsShortenedWhereOneCanWalk) {
    using Nodes = std::vector<std::uint32_t>;
    for (const auto& [end, chain, goal, nodes] : // end: of node 2, before a gap, or at node 3
         {std::tuple<int, Nodes, Position, Nodes>{6, {0, 1, 3}, {2.25F, 0, 3.75F}, {3, 1, 0}},
          {8, {0, 1, 3, 4}, {3, 0, 4.5F}, {4, 3, 2, 0}}}) {
        const WalkingWorld world(flatMesh({{{{0, 0}, {8, 0}, {8, 8}, {0, 8}}, {1, 2}},
                                           {{{8, 0}, {16, 0}, {16, 8}, {8, 8}}, {0, 3}},
                                           {{{0, 8}, {end, 8}, {end, 16}, {0, 16}}, {0, 3}},
                                           {{{8, 8}, {16, 8}, {16, 16}, {8, 16}}, {1, 2, 4}},
                                           {{{8, 16}, {16, 16}, {16, 24}, {8, 24}}, {3}}}));
        Corridor corridor(world.view());
        corridor.place({0, {0.25F, 0, 1.75F}});
        ASSERT_TRUE(corridor.follow(chain, goal));
        corridor.shorten();
        EXPECT_EQ(corridor.nodes(), nodes);
    }
}

TEST(Explain, SaysWhyThereIsNoPath) {
    const WalkingWorld world(oneWay());
    const MeshView& view = world.view();
    const std::string possible = "A path leads from the start to the goal.";
    const struct {
        Position mStart;
        Position mGoal;
        std::string mText;
        float mNearestReachable; ///< its x
    } rows[] = {
        {{1, 0, 1}, {5, 0, 1}, possible, 5},
        {{5, 0, 1}, {1, 0, 1}, "lead one way only", 4},
        {{1, 0, 1},
         {11, 0, 1},
         "The start (1, 0, 1) stands on node 0 of island 0, which has 3 nodes.\n"
         "The goal (11, 0, 1) stands on node 3 of island 1, which has 1 node.\n"
         "No neighbours connect the two islands. They come nearest at (6, 0, 0) and (10, 0, 0), "
         "4 apart.\n",
         6},
        {{1, 3, 1},
         {1, -2, 1},
         "The goal (1, -2, 1) stands on no node: it is 2 below the ground of node 0, on which one "
         "stands from 0.5 below its first corner to 2 above it.\n"
         "The nearest place is (1, 0, 1) on node 0, 2 away.\n",
         0},
        {{-1, 0, 1},
         {1, 0, NAN},
         "The start (-1, 0, 1) stands on no node: there is no ground above or below it.\n"
         "The nearest place is (0, 0, 1) on node 0, 1 away.\n"
         "The goal (1, 0, nan) stands on no node: it is not finite.\n",
         0},
    };
    for (const auto& row : rows) {
        const std::string text = describe(view, explain(view, row.mStart, row.mGoal));
        EXPECT_NE(text.find(row.mText), std::string::npos) << text;
        const PathResult result = WalkingWorld::search(row.mStart, row.mGoal).mResult;
        EXPECT_EQ(result == PathResult::FOUND, row.mText == possible);
        const Place nearest = findNearestReachable(view, row.mStart, row.mGoal);
        EXPECT_EQ(nearest.mPosition.mX, row.mNearestReachable);
    }
}

TEST(Explain, FindsWhereIslandsComeNearest) {
    Worlds::MeshModel floor = Worlds::makeFloor(300, 3); // whose holes cut off pockets
    for (std::size_t i = 0; i < floor.mNodes.size(); i += 7)
        floor.mNodes[i].mNeighbours.clear();
    for (auto& node : floor.mNodes)
        for (auto& neighbour : node.mNeighbours)
            neighbour = neighbour % 7 == 0 ? -1 : neighbour;
    const WalkingWorld world(floor);
    const MeshView& view = world.view();
    for (std::uint32_t island = 1; island < view.islandSizes().size(); ++island) {
        double nearest = std::numeric_limits<double>::infinity();
        for (std::uint32_t a = 0; a < view.nodeCount(); ++a)
            for (std::uint32_t b = 0; b < view.nodeCount(); ++b)
                if (view.islandOf(a) == island - 1 && view.islandOf(b) == island)
                    for (const std::uint32_t corner : view.cornersOf(a))
                        nearest = std::min(nearest,
                                           distance(view.planeOf(corner),
                                                    nearestInNode(view, b, view.planeOf(corner))));
        EXPECT_NEAR(findStrait(view, island - 1, island).mGap, nearest, 1e-5) << island;
    }
}

} // namespace
} // namespace ZUNO::Tests
