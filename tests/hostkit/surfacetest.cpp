// Questions about the ground.
#include "tests/hostkit/walkingworld.h"

namespace ZUNO::Tests {

using namespace HostKit;

namespace {

/// A floor, a ramp up from it, another floor over it, and an islet beside.
Worlds::MeshModel storeys() {
    Worlds::MeshModel model;
    model.mHeights = {2};
    model.addPolygon({{0, 0, 0}, {40, 0, 0}, {40, 0, 40}, {0, 0, 40}}, 0, 0xFFFF);
    model.addPolygon({{40, 0, 0}, {80, 6, 0}, {80, 6, 40}, {40, 0, 40}}, 0, 0xFFFF);
    model.addPolygon({{0, 20, 0}, {40, 20, 0}, {40, 20, 40}, {0, 20, 40}}, 0, 0xFFFF);
    model.addPolygon({{0, 0, 80}, {4, 0, 80}, {4, 0, 84}, {0, 0, 84}}, 0, 0xFFFF);
    model.connect();
    return model;
}

class Surface : public testing::Test {
protected:
    const WalkingWorld mWorld{storeys()};
    const MeshView& mView = mWorld.view();
};

TEST_F(Surface, KnowsTheGroundAndWhatIsNearest) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    struct Row {
        Position mPoint;
        std::uint32_t mNode;
        float mHeight;
        std::uint32_t mNearest; ///< within 2 and 3
        float mDistance;
    };
    for (const Row& row : std::initializer_list<Row>{
             {{5, 0.5F, 5}, 0, 0, 0, 0.5F},
             {{15, 1, 5}, 1, 0.75F, 1, 0.25F}, // half up the ramp
             {{5, 9, 5}, 2, 5, NO_NODE, 0},    // far above the upper floor
             {{5, 3, 5}, 2, 5, 2, 2},          // below it
             {{5, 2, 5}, 0, 0, 0, 2},
             {{-1, 0, 5}, NO_NODE, 0, 0, 1},       // beside it
             {{-3, 0, 5}, NO_NODE, 0, NO_NODE, 0}, // too far beside it
             {{0.5F, -2, 22}, NO_NODE, 0, 3, 2.236068F},
             {{2, 0, 21.5F}, NO_NODE, 0, 3, 1.118034F}, // beside a corner of the islet
             {{nan, 0, 5}, NO_NODE, 0, NO_NODE, 0},
             {{3e38F, 0, 5}, NO_NODE, 0, NO_NODE, 0},
         }) {
        const Place ground = findGround(mView, row.mPoint);
        EXPECT_EQ(ground.mNode, row.mNode) << row.mPoint.mX << ' ' << row.mPoint.mZ;
        EXPECT_FLOAT_EQ(ground.mPosition.mY, row.mHeight);
        const auto nearest = findNearest(mView, row.mPoint, 2, 3);
        EXPECT_EQ(nearest.mNode, row.mNearest) << row.mPoint.mX << ' ' << row.mPoint.mZ;
        EXPECT_NEAR(nearest.mDistance, row.mDistance, 1e-5);
        EXPECT_EQ(mView.findNode(nearest ? nearest.mPosition : Position(99, 0, 0)), row.mNearest);
    }
}

TEST_F(Surface, IsWalkedAlongItsWalls) {
    struct Row {
        Position mFrom;
        Position mTo;
        Position mEnd;
        Position mStraight; ///< the end of a straight walk
        bool mIsReached;
        float mWall; ///< the distance of the end to the nearest wall
    };
    for (const Row& row : std::initializer_list<Row>{
             {{5, 0, 5}, {6, 0, 7}, {6, 0, 7}, {6, 0, 7}, true, 3},
             {{9, 0, 5}, {12, 0, 5}, {12, 0.3F, 5}, {12, 0.3F, 5}, true, 5},   // on to the ramp
             {{5, 0, 1}, {7, 0, -1}, {7, 0, 0}, {6, 0, 0}, false, 0},          // along a wall
             {{9, 0, 9}, {13, 0, 13}, {13, 0.45F, 10}, {10, 0, 10}, false, 0}, // the same, on to
                                                                               // the ramp
             {{1, 0, 1}, {-9, 0, -9}, {0, 0, 0}, {0, 0, 0}, false, 0},         // into a corner
             {{5, 0, 5}, {5, 0, 5}, {5, 0, 5}, {5, 0, 5}, true, 5},
             {{5, 0, 5}, {1, 0, 21}, {1, 0, 10}, {3.75F, 0, 10}, false, 0}, // the islet is out of
                                                                            // reach
             {{5, 0, 5}, {INFINITY, 0, 5}, {5, 0, 5}, {5, 0, 5}, false, 5}, // nowhere
         }) {
        const Place start = findGround(mView, row.mFrom);
        const auto move = moveAlongSurface(mView, start, row.mTo);
        EXPECT_EQ(move.mPlace.mPosition, row.mEnd)
            << move.mPlace.mPosition.mX << ' ' << move.mPlace.mPosition.mZ;
        EXPECT_EQ(move.mIsReached, row.mIsReached);
        const auto straight = walkStraight(mView, start, row.mTo);
        EXPECT_EQ(straight.mPlace.mPosition, row.mStraight)
            << straight.mPlace.mPosition.mX << ' ' << straight.mPlace.mPosition.mZ;
        EXPECT_EQ(straight.mIsReached, row.mIsReached);
        ASSERT_EQ(move.mNodeCount == 0, !isFinite(row.mTo));
        if (move.mNodeCount != 0) {
            EXPECT_EQ(move.mNodes[0], start.mNode);
            EXPECT_EQ(move.mNodes[move.mNodeCount - 1], move.mPlace.mNode);
        }
        EXPECT_FLOAT_EQ(distanceToWall(mView, move.mPlace, 100), row.mWall);
    }
    EXPECT_EQ(distanceToWall(mView, findGround(mView, {5, 0, 5}), 2), 2);
    EXPECT_EQ(between({1, 0}, {1e-20, 0}, 1).mX, 1e-20) << "an end to the bit";
    // beside a node its surface is that of the nearest border
    EXPECT_EQ(surfaceAt(mView, 1, {21, 5}), Position(20, 1.5F, 5));
}

TEST_F(Surface, PicksPlacesByArea) {
    const RandomPlaces places(mView);
    std::vector<int> counts(mView.nodeCount());
    for (std::uint64_t seed = 0; seed < 20000; ++seed) {
        const Place place = places.pick(seed);
        ++counts[place.mNode];
        EXPECT_EQ(findGround(mView, place.mPosition, 0.01F).mNode, place.mNode);
    }
    EXPECT_NEAR(counts[0], 20000 * 100 / 302.1, 400);
    EXPECT_NEAR(counts[1] / static_cast<double>(counts[0]), 1.0112, 0.05);
    const RandomPlaces islet(mView, mView.islandOf(3));
    EXPECT_EQ(islet.pick(1).mNode, 3U);
    EXPECT_EQ(islet.pick(1).mPosition, islet.pick(1).mPosition);
    // one that rises along both axes, with borders along neither, and a level one
    Worlds::MeshModel model = flatMesh({{{{80, 0}, {120, 0}, {120, 40}, {80, 40}}, {}}});
    model.addPolygon({{24, 24, 0}, {56, 80, 24}, {0, 32, 32}}, 0, 0xFFFF);
    const TempFolder folder;
    const MeshView tilted = loadMeshView(folder.put("mesh.xml", model.toXML("")));
    int level = 0;
    for (std::uint64_t seed = 0; seed < 20000; ++seed)
        level += RandomPlaces(tilted).pick(seed).mNode == 0 ? 1 : 0;
    EXPECT_NEAR(level, 20000 / (1 + std::sqrt(3) / 2), 300);
}

} // namespace
} // namespace ZUNO::Tests
