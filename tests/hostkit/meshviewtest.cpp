// The host's view of a mesh against the mesh itself.
#include "tests/hostkit/walkingworld.h"
#include "tests/support/turnedmesh.h"
#include "tools/picture/loadedmesh.h"
#include "tools/picture/meshfigures.h"

#include <random>

namespace ZUNO::Tests {

using namespace HostKit;

namespace {

TEST(MeshView, FindsTheWorldsNodesAndCentres) {
    const Worlds::MeshModel floor = Worlds::makeFloor(300, 5);
    for (const std::string& document :
         {Worlds::makeHarbour().toXML("harbour"), floor.toXML("floor"), turned(floor)}) {
        const WalkingWorld world(document);
        const Tools::LoadedMesh mesh(world.file());
        const MeshView& view = world.view();
        std::mt19937 random(1);
        const auto number = [&](double low, double high) {
            return static_cast<float>(low +
                                      (high - low) * static_cast<double>(random()) / 4294967296.0);
        };
        std::vector<Position> points{{0, 0, 0},
                                     {std::numeric_limits<float>::quiet_NaN(), 0, 0},
                                     {1e20F, 0, 1e20F},
                                     {3e38F, 3e38F, -3e38F}};
        for (int i = 0; i < 5000; ++i)
            points.emplace_back(number(-5, 125), number(-2, 9), number(-5, 70));
        for (const Position& vertex : mesh->mVertices)
            points.push_back(vertex);
        for (const Position& point : points)
            ASSERT_EQ(static_cast<std::int32_t>(view.findNode(point)), mesh->findNode(point))
                << point.mX << ' ' << point.mY << ' ' << point.mZ;
        for (std::uint32_t vertex = 0; vertex < view.vertexCount(); ++vertex) {
            const auto expected = mesh->projectToPlane(view.positionOf(vertex));
            for (const auto& place : {view.planeOf(vertex), view.planeOf(view.positionOf(vertex))})
                ASSERT_LT(distance(place, {expected.mX, expected.mY}), 1e-4);
        }
        const auto islands = Tools::findIslands(*mesh);
        for (std::uint32_t node = 0; node < view.nodeCount(); ++node) {
            EXPECT_EQ(view.centreOf(node), mesh->getNodeCenter(static_cast<std::int32_t>(node)));
            EXPECT_EQ(view.islandOf(node), islands[node]);
        }
    }
}

TEST(MeshView, TakesLittle) {
    const WalkingWorld world(Worlds::makeFloor(4000, 2));
    EXPECT_LT(world.view().memoryUsage().mBeyond * 5, world.session().memory().mBytes);
}

/// Links of odd neighbours: part of a border, none, a vertex in the middle, only one way.
TEST(MeshView, FindsWhatNeighboursShareByTheirOutlines) {
    Worlds::MeshModel model = flatMesh({
        {{{0, 0}, {8, 0}, {8, 8}, {0, 8}}, {1, -1, 2, 3}}, // 0: neighbours in any order
        {{{8, 2}, {16, 2}, {16, 20}, {8, 20}}, {0}},       // 1: beside it, from 2 to 8
        {{{0, 8}, {4, 8}, {8, 8}, {8, 12}, {0, 12}}, {0}}, // 2: above it, with a vertex more
        {{{40, 0}, {48, 0}, {48, 8}}, {-1}},               // 3: far away, and no way back
    });
    // 4 and 5: side by side on a slope, from 4 to 12, so far off that the text form rounds more
    model.addPolygon({{80, 0, 8000}, {88, 0, 8000}, {88, 16, 8016}, {80, 16, 8016}}, 0, 0xFFFF);
    model.addPolygon({{88, 4, 8004}, {96, 4, 8004}, {96, 12, 8012}, {88, 12, 8012}}, 0, 0xFFFF);
    model.mNodes[4].mNeighbours = {5};
    model.mNodes[5].mNeighbours = {4};
    const WalkingWorld world(model);
    const MeshView& view = world.view();
    std::map<std::uint32_t, std::vector<double>> shared;
    for (const std::uint32_t node : {0U, 4U, 5U})
        for (const MeshView::Link& link : view.linksOf(node)) {
            const auto border = view.borderOf(node, link);
            shared[link.mTarget].push_back(
                border.mLeft == NO_VERTEX
                    ? -1
                    : distance(view.planeOf(border.mLeft), view.planeOf(border.mRight)));
        }
    EXPECT_EQ(shared, (decltype(shared){{1, {1.5}}, {2, {1, 1}}, {3, {-1}}, {4, {2}}, {5, {2}}}));
    std::map<std::uint32_t, double> walls;
    for (std::uint32_t node = 0; node < view.nodeCount(); ++node)
        view.visitWalls(node, [&](const auto& a, const auto& b) { walls[node] += distance(a, b); });
    EXPECT_EQ(walls[0], 2 + 0.5 + 2);
    EXPECT_EQ(walls[1], 2 * 2 + 4.5 + 3);
    EXPECT_EQ(view.islandSizes(), (std::vector<std::uint32_t>{4, 2}));
}

} // namespace
} // namespace ZUNO::Tests
