#include "tests/host/hosttest.h"

#include <cmath>

namespace ZUNO::Tests {

using Common::Geom::Ray2D;
using Common::Geom::Ray3D;

namespace {

/// A mesh of squares, each given by its lower corner in the plane, its side and its height (with
/// z up), or clockwise for a negative side.
struct Square {
    float mX;
    float mY;
    float mSide;
    float mHeight;
};

std::string meshOf(const std::vector<Square>& squares, const std::string& frame = {}) {
    std::string vertices;
    std::string nodes;
    unsigned int count = 0;
    const auto put = [&](float x, float y, float z) {
        vertices += "<pos>" + std::to_string(x) + "/" + std::to_string(y) + "/" +
                    std::to_string(z) + "</pos>";
        return "<vert_id>" + std::to_string(count++) + "</vert_id>";
    };
    for (const auto& [x, y, side, z] : squares) {
        const float s = std::abs(side);
        std::string ring = put(x, y, z);
        ring += side < 0 ? put(x, y + s, z) : put(x + s, y, z);
        ring += put(x + s, y + s, z);
        ring += side < 0 ? put(x + s, y, z) : put(x, y + s, z);
        nodes +=
            "<node><heightclass>0</heightclass><polygon>" + ring + "</polygon><neighbour/></node>";
    }
    const std::string standard = "<xaxis>1/0/0</xaxis><yaxis>0/1/0</yaxis><cubesize>1</cubesize>";
    return "<a><navmesh><heightmap><height id=\"0\">2</height></heightmap><normal>0/0/1</normal>"
           "<vertices>" +
           vertices + "</vertices><nodes>" + nodes + "</nodes>" +
           (frame.empty() ? standard : frame) + "</navmesh></a>";
}

float traced(Vec2<float> from, Vec2<float> to) {
    Ray2D<float, float> ray(from, to);
    Interface::traceRay(ray);
    return ray.mHitDistance;
}

using Pathfinder::noGround;

} // namespace

class BlockingTest : public HostTest {
protected:
    void load(const std::string& mesh) {
        Interface::close();
        mFiles->mFiles["b"] = mesh;
        ASSERT_TRUE(start("b"));
    }
};

TEST_F(BlockingTest, AnswersOnASquare) {
    load(meshOf({{0, 0, 10, 0.5F}}));
    for (float y = -0.75F; y < 12; y += 0.5F)
        for (float x = -0.75F; x < 12; x += 0.5F) {
            const bool isFree = x >= 0 && y >= 0 && x < 10 && y < 10;
            EXPECT_EQ(Interface::isBlocked({x, y}), !isFree) << x << ' ' << y;
            EXPECT_EQ(Interface::getGroundHeight({x, y}), isFree ? 0.5F : noGround);
        }
    EXPECT_TRUE(Interface::isBlocked({10, 5})) << "the last column stays blocked";
    const float nan = std::nanf("");
    EXPECT_TRUE(Interface::isBlocked({nan, 5}));
    struct Case {
        Vec2<float> mFrom;
        Vec2<float> mTo;
        float mHit;
    };
    const float inf = std::numeric_limits<float>::infinity();
    const Case cases[] = {
        {{5.5F, 5.5F}, {8, 8}, -1},
        {{5.5F, 5.5F}, {20, 5.5F}, 4.5276928F},
        {{5.5F, 5.5F}, {-20, 5.5F}, 5.5226803F},
        {{5.5F, 5.5F}, {-0.5F, 5.5F}, -1}, // still column 0: cells are truncated toward zero
        {{5.5F, 5.5F}, {5.5F, 5.5F}, -1},
        {{-1, 5}, {20, 5}, -1}, // a start outside
        {{10, 5}, {10, 5}, 0},  // no length, in a blocked cell
        {{10, 5}, {0, 5}, 0},   // one unit behind a blocked start there is no grid
        {{5.5F, 5.5F}, {inf, 5.5F}, 0},
        {{5.5F, 5.5F}, {nan, 5.5F}, 0},
        {{nan, 5.5F}, {5.5F, 5.5F}, -1},
        {{5.5F, 5.5F}, {3e38F, 3e38F}, length(Vec2<float>(4.5F, 4.5F))},
        {{5.5F, 5.5F}, {-3e38F, 5.5F}, 5.5226803F},
    };
    for (const Case& row : cases)
        EXPECT_EQ(traced(row.mFrom, row.mTo), row.mHit)
            << row.mFrom.mX << ' ' << row.mFrom.mY << " to " << row.mTo.mX << ' ' << row.mTo.mY;
    Ray3D<float, float> ray({5.5F, 5.5F, 100}, {20, 5.5F, -7});
    ray.mReserved = 8;
    Interface::traceRay(ray);
    EXPECT_EQ(ray.mHitDistance, 4.5276928F) << "seen from above";
    EXPECT_EQ(ray.mReserved, 8);
}

TEST_F(BlockingTest, RasterisesNodesInTheirOrder) {
    load(meshOf({{0, 0, 10, 1}, {4, 4, 2, 7}, {12, 0, -6, 3}, {14, 8, 4, 5}}));
    EXPECT_EQ(Interface::getGroundHeight({5, 5}), 7) << "the later node wins";
    EXPECT_EQ(Interface::getGroundHeight({2, 5}), 1);
    EXPECT_TRUE(Interface::isBlocked({14, 2})) << "a clockwise node marks nothing";
    EXPECT_EQ(Interface::getGroundHeight({15, 9}), 5);
}

TEST_F(BlockingTest, MapsHostPositionsIntoTheMeshsPlane) {
    Vec2<float> min;
    Vec2<float> max;
    load(meshOf({{0, 2, 10, 0}}));
    Interface::getBoundingRectangle(min, max);
    EXPECT_EQ(min, Vec2<float>(0, 2));
    EXPECT_EQ(max, Vec2<float>(10, 12));
    // axes swapped and one turned round: the plane's x is -y
    load(
        meshOf({{0, 2, 10, 0}}, "<xaxis>0/-1/0</xaxis><yaxis>1/0/0</yaxis><cubesize>1</cubesize>"));
    Interface::getBoundingRectangle(min, max);
    EXPECT_EQ(min, Vec2<float>(0, 2));
    EXPECT_EQ(max, Vec2<float>(10, 12));
    EXPECT_FALSE(Interface::isBlocked({5, 5}));
    EXPECT_TRUE(Interface::isBlocked({5, 1}));
    // parallel axes have no inverse
    load(meshOf({{0, 2, 10, 0}}, "<xaxis>1/0/0</xaxis><yaxis>1/0/0</yaxis><cubesize>1</cubesize>"));
    Interface::getBoundingRectangle(min, max);
    EXPECT_EQ(min, Vec2<float>(0, 0));
    EXPECT_EQ(max, Vec2<float>(0, 0));
}

} // namespace ZUNO::Tests
