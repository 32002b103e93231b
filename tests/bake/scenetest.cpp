// Meshes made of the sample scenes, seen as a host sees them.
#include "hostkit/session.h"
#include "navmesh/meshdefects.h"
#include "tests/bake/groundprobe.h"
#include "tests/support/tempfolder.h"
#include "tools/picture/loadedmesh.h"
#include "tools/zunobake/baker.h"

#include <gtest/gtest.h>
#include <iostream>
#include <optional>

namespace ZUNO::Tests {
namespace {

using Pathfinder::Interface;
using Vec3 = Common::Math::Vec3<float>;

Vec3 pointOf(const GroundProbe::Point& place) {
    return {static_cast<float>(place[0]), static_cast<float>(place[1]),
            static_cast<float>(place[2])};
}

struct SampleScene {
    const char* mName;
    Worlds::SceneModel (*mMake)();
    std::size_t mSamples; ///< places
    double mCellSize = 0.25;
    double mCellHeight = 0.125;
    std::size_t mMostLost = 2; ///< of a thousand places

    friend void PrintTo(const SampleScene& scene, std::ostream* out) { *out << scene.mName; }
};

class SceneTest : public testing::TestWithParam<SampleScene> {
protected:
    SceneTest() : mModel(GetParam().mMake()) {
        const std::string scene = mFolder.put("scene.obj", mModel.toObj(GetParam().mName));
        const std::string mesh = mFolder.in("mesh.xml");
        mSettings.mCellSize = GetParam().mCellSize;
        mSettings.mCellHeight = GetParam().mCellHeight;
        mSettings.mAgents = {{"child", 1.25F}, {"adult", 2}};
        Tools::readObj(scene, {}, mScene);
        mBaker.emplace(mScene, mSettings);
        const Tools::BakedMesh baked(Tools::bakeTiles(*mBaker, [](std::size_t, std::size_t) {}),
                                     mSettings, mBaker->cells());
        {
            Tools::LoadedMesh made;
            baked.fill(*made.shared(), mBaker->grid(), mScene, Tools::UpAxis::Y);
            made.save(mesh);
        }
        mMesh.emplace(mesh);
        mSession.emplace(mesh);
    }

    /// A cell more on all sides than the radius in whole cells: a cell that is touched is taken.
    Walker walker() const {
        return {(mBaker->cells().mRadius + 1) * mSettings.mCellSize,
                double{mSettings.mAgents[0].mHeight} + 2 * mSettings.mCellHeight,
                double{mSettings.mClimb}};
    }

    /// Whether there is a path. An end may lie on no node.
    static bool isWay(const Vec3& from, const Vec3& to) {
        const int search = Interface::initPathSearch(from, to);
        const bool isFound =
            search >= 0 && Interface::runPathSearch(search, 0xFFFFFFFF) == Pathfinder::PATH_FOUND;
        if (search >= 0)
            Interface::closePathSearch(search);
        return isFound;
    }

    TempFolder mFolder;
    Worlds::SceneModel mModel;
    Tools::BakeSettings mSettings;
    Tools::Scene mScene;
    std::optional<Tools::TileBaker> mBaker;
    std::optional<Tools::LoadedMesh> mMesh;
    std::optional<HostKit::Session> mSession;
};

TEST_P(SceneTest, MeshIsSoundAndLeadsWhereTheSceneSays) {
    const NavMesh::NavMeshContainer& mesh = **mMesh;
    const auto fail = [](const char* text) {
        ADD_FAILURE() << text;
        return false;
    };
    findDefects(mesh, fail);
    findOddities(mesh, fail);
    for (const auto& [name, from, to, isPossible] : mModel.mJourneys) {
        EXPECT_EQ(isWay(pointOf(from), pointOf(to)), isPossible) << name;
        const bool isUpright = from[0] == to[0] && from[2] == to[2];
        EXPECT_TRUE(!isUpright || mesh.findNode(pointOf(from)) != mesh.findNode(pointOf(to)))
            << name;
    }
    // whoever the class is for is found everywhere on a node, head and feet
    for (std::int32_t id = 0; id < static_cast<std::int32_t>(mesh.mNodes.size()); ++id) {
        const auto& node = mesh.mNodes[static_cast<std::size_t>(id)];
        const auto fitting =
            mesh.getCharactersForHeightClass(static_cast<std::uint32_t>(node.mHeightClass));
        ASSERT_FALSE(fitting.empty());
        const Vec3 head(0, fitting.back()->mPhysicalHeight, 0);
        for (const std::uint32_t corner : node.mPolygon) {
            EXPECT_TRUE(mesh.isPointInNode(mesh.mVertices[corner], id)) << id;
            EXPECT_TRUE(mesh.isPointInNode(mesh.mVertices[corner] + head, id)) << id;
        }
    }
}

TEST_P(SceneTest, WalkableGroundLiesOnNodes) {
    const NavMesh::NavMeshContainer& mesh = **mMesh;
    std::size_t lost = 0;
    for (const auto& place : GroundProbe(mModel).sample(GetParam().mSamples, walker(), 7)) {
        const Vec3 point = pointOf(place);
        const std::int32_t id = mesh.findNode(point);
        if (id < 0) {
            ++lost;
            continue;
        }
        // and it is the floor's own node: none above it, none below
        const auto& corners = mesh.mNodes[static_cast<std::size_t>(id)].mPolygon;
        const auto [low, high] = std::ranges::minmax(
            corners, {}, [&](std::uint32_t corner) { return mesh.mVertices[corner].mY; });
        EXPECT_GE(point.mY, mesh.mVertices[low].mY - 2 * mesh.mCubeSize) << id;
        EXPECT_LE(point.mY, mesh.mVertices[high].mY + mSettings.mClimb) << id;
    }
    std::cout << "on nodes: " << GetParam().mSamples - lost << " of " << GetParam().mSamples
              << '\n';
    EXPECT_LE(lost, GetParam().mSamples * GetParam().mMostLost / 1000);
}

INSTANTIATE_TEST_SUITE_P(
    All, SceneTest,
    testing::Values(SampleScene{"courtyard", Worlds::makeCourtyard, 20000},
                    SampleScene{"bridge", Worlds::makeBridge, 20000},
                    SampleScene{"decimal", Worlds::makeBridge, 20000, 0.3, 0.2},
                    SampleScene{"spiral", Worlds::makeSpiral, 20000, 0.25, 0.125, 5},
                    SampleScene{"maze", [] { return Worlds::makeMaze(40, 1); }, 2000}),
    [](const auto& parameter) { return parameter.param.mName; });

} // namespace
} // namespace ZUNO::Tests
