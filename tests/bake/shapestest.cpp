// How many nodes uneven ground takes, and how near they lie to it.
#include "hostkit/surface.h"
#include "navmesh/meshdefects.h"
#include "tests/bake/bakedscene.h"
#include "tests/bake/groundprobe.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace ZUNO::Tests {
namespace {

/// Hills of 50 x 50 units, `height` up and down.
Worlds::SceneModel makeHills(double height) {
    Worlds::SceneModel scene;
    scene.begin("ground", "");
    const auto at = [&](int x, int z) {
        const double up = std::sin(0.21 * x + 0.3) * std::cos(0.17 * z) + std::sin(0.11 * (x + z));
        return Worlds::SceneModel::Point{double(x), height / 2 * up, double(z)};
    };
    for (int x = 0; x < 50; ++x)
        for (int z = 0; z < 50; ++z) {
            scene.addFace({at(x, z), at(x, z + 1), at(x + 1, z + 1)});
            scene.addFace({at(x, z), at(x + 1, z + 1), at(x + 1, z)});
        }
    return scene;
}

TEST(NodeShapesTest, AreFewAndLieNearToTheGround) {
    const struct {
        double mHeight; ///< of the hills
        std::size_t mMostNodes;
        double mCellSize;
    } cases[] = {{0, 1, 0.25}, {0.5, 10, 0.25}, {3, 100, 0.25}, {5, 150, 0.25}, {5, 150, 0.17}};
    for (const auto& [height, mostNodes, cellSize] : cases) {
        const Worlds::SceneModel model = makeHills(height);
        Tools::BakeSettings settings;
        settings.mAgents = {{"agent"}};
        settings.mCellSize = cellSize;
        const BakedScene baked(model, settings);
        EXPECT_LE(baked.mMesh->mNodes.size(), mostNodes);
        findOddities(*baked.mMesh, [](const char* text) {
            ADD_FAILURE() << text;
            return false;
        });
        const HostKit::MeshView view(*baked.mMesh);
        for (const auto& place : GroundProbe(model).sample(2000, {0.75, 2.25, 0.5}, 3)) {
            const HostKit::Position point{static_cast<float>(place[0]),
                                          static_cast<float>(place[1]),
                                          static_cast<float>(place[2])};
            const std::uint32_t node = view.findNode(point);
            ASSERT_NE(node, HostKit::NO_NODE) << place[0] << ' ' << place[2];
            EXPECT_NEAR(surfaceAt(view, node, view.planeOf(point)).mY, point.mY, 0.5)
                << place[0] << ' ' << place[2];
        }
    }
}

TEST(NodeShapesTest, DentedPolygonsAreCut) {
    Tools::BakeSettings settings;
    settings.mAgents = {{"agent"}};
    const BakedScene ground(makeHills(0), settings); // for its grid
    const Tools::TileGrid grid(ground.mScene, settings);
    const Tools::CellSettings cells(settings);
    struct Row {
        std::vector<Tools::GridPoint> mCorners;
        std::size_t mNodes;
    };
    for (auto& [corners, nodes] : {Row{{{0, 0, 0}, {40, 0, 20}, {0, 0, 40}, {10, 0, 20}}, 2},
                                   Row{{{40, 0, 30},
                                        {40, 0, 70},
                                        {10, 0, 50},
                                        {0, 0, 30},
                                        {30, 0, 30},
                                        {20, 0, 30},
                                        {40, 0, 0}},
                                       2}}) // goes back at the fifth corner
        for (std::size_t turn = 0; turn < 2 * corners.size(); ++turn) {
            std::vector<Tools::GridPoint> ring = corners;
            std::ranges::rotate(ring, ring.begin() + static_cast<std::ptrdiff_t>(turn / 2));
            if (turn % 2 != 0)
                std::ranges::reverse(ring);
            const Tools::BakedMesh baked({{ring, {0, 0, false, {}}, Tools::Scene::noSurface, 0}},
                                         settings, cells);
            Tools::LoadedMesh mesh;
            baked.fill(*mesh.shared(), grid, ground.mScene, Tools::UpAxis::Y);
            EXPECT_EQ(mesh->mNodes.size(), nodes) << turn;
            findOddities(*mesh, [](const char* text) {
                ADD_FAILURE() << text;
                return false;
            });
        }
}

} // namespace
} // namespace ZUNO::Tests
