// Meshes made of the sample scenes, seen as a host sees them.
#include "hostkit/session.h"
#include "navmesh/meshdefects.h"
#include "tests/bake/detourroutes.h"
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
    std::size_t mSamples; ///< places, or pairs of them
    double mCellSize = 0.25;
    double mCellHeight = 0.125;

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

    static constexpr float offMesh = -2;
    static constexpr float noPath = -1;
    static float costOf(const Vec3& from, const Vec3& to) {
        const int search = Interface::initPathSearch(from, to);
        if (search < 0)
            return offMesh;
        const bool isFound = Interface::runPathSearch(search, 0xFFFFFFFF) == 0;
        Vec3 waypoint;
        Interface::getNextWaypoint(search, waypoint);
        const float cost = Interface::getPathCost(search);
        Interface::closePathSearch(search);
        return isFound ? cost : noPath;
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
        const float cost = costOf(pointOf(from), pointOf(to));
        EXPECT_EQ(cost >= 0, isPossible) << name << ": " << cost;
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
    EXPECT_LE(lost, GetParam().mSamples / 200);
}

/// Path costs as parts of the straightened path's length.
class Ratios {
public:
    explicit Ratios(std::vector<double> ratios) : mSorted(std::move(ratios)) {
        std::ranges::sort(mSorted);
    }
    double at(double part) const {
        return mSorted[static_cast<std::size_t>(part * static_cast<double>(mSorted.size() - 1))];
    }
    friend std::ostream& operator<<(std::ostream& out, const Ratios& ratios) {
        out << ratios.mSorted.size() << " paths";
        for (const double part : {0.0, 0.1, 0.5, 0.9, 0.97, 0.99, 1.0})
            out << ", " << part * 100 << " %: " << ratios.at(part);
        return out;
    }

private:
    std::vector<double> mSorted;
};

TEST_P(SceneTest, PathsAreNotMuchLongerThanStraightenedOnes) {
    const DetourRoutes detour(*mBaker, mSettings);
    const NavMesh::NavMeshContainer& mesh = **mMesh;
    constexpr double shortest = 4; // of the ways between any two
    std::vector<double> any;
    std::vector<double> nextButOne;
    const auto compare = [&](std::size_t first, std::size_t last, double least,
                             std::vector<double>& ratios) {
        const Vec3 from = mesh.getNodeCenter(static_cast<std::int32_t>(first));
        const Vec3 to = mesh.getNodeCenter(static_cast<std::int32_t>(last));
        const float cost = costOf(from, to);
        const double length = detour.lengthOf({from.mX, from.mY, from.mZ}, {to.mX, to.mY, to.mZ});
        EXPECT_TRUE(length == DetourRoutes::tooFar || (cost < 0) == (length < 0))
            << first << " to " << last;
        if (cost > 0 && length > least)
            ratios.push_back(double{cost} / length);
    };
    const auto neighboursOf = [&](std::size_t node) -> const auto& {
        return mesh.mNodes[node].mNeighbours;
    };
    std::mt19937 random(3);
    for (std::size_t i = 0; i < GetParam().mSamples / 10; ++i) {
        const std::size_t first = random() % mesh.mNodes.size();
        compare(first, random() % mesh.mNodes.size(), shortest, any);
        for (const std::int32_t neighbour : neighboursOf(first))
            if (neighbour >= 0)
                for (const std::int32_t next : neighboursOf(static_cast<std::size_t>(neighbour)))
                    if (next >= 0)
                        compare(first, static_cast<std::size_t>(next), 0, nextButOne);
    }
    ASSERT_GT(any.size(), GetParam().mSamples / 20);
    const Ratios far(std::move(any));
    const Ratios near(std::move(nextButOne));
    std::cout << "of straightened paths: " << far << "\nto the next but one: " << near << '\n';
    EXPECT_LE(far.at(1), 1.6);
    EXPECT_LE(near.at(0.97), 1.6);
}

INSTANTIATE_TEST_SUITE_P(
    All, SceneTest,
    testing::Values(SampleScene{"courtyard", Worlds::makeCourtyard, 20000},
                    SampleScene{"bridge", Worlds::makeBridge, 20000},
                    SampleScene{"decimal", Worlds::makeBridge, 20000, 0.3, 0.2},
                    SampleScene{"spiral", Worlds::makeSpiral, 20000},
                    SampleScene{"maze", [] { return Worlds::makeMaze(200, 1); }, 2000}),
    [](const auto& parameter) { return parameter.param.mName; });

} // namespace
} // namespace ZUNO::Tests
