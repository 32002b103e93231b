// What a world runs against the plain forms, bit for bit.
#include "navmesh/nodelocator.h"
#include "reference/comparison.h"
#include "reference/plainworld.h"
#include "tests/support/navmeshlibrary.h"

#include <cmath>

namespace ZUNO::Tests {

using namespace Common;
using namespace NavMesh;
using Reference::Questions;

class FastFormsTest : public NavMeshLibraryTest {
protected:
    SharedPtr<NavMeshContainer> fill(const Questions::Disorder& disorder) {
        SharedPtr<NavMeshContainer> mesh(
            Memory::createManaged<NavMeshContainer>(NavMesh::getAllocator()));
        mQuestions.fill(*mesh, disorder);
        return mesh;
    }

    void expectSameNodes(const SharedPtr<NavMeshContainer>& mesh) {
        const NodeLocator locator(mesh, gObjectAllocator);
        EXPECT_LE(locator.getMemoryUsage(), 24 * mesh->mNodes.size() + 64);
        EXPECT_EQ(Reference::compareLocations(*mesh, locator, mQuestions.pointsAround(*mesh, 1500)),
                  "");
    }

    Questions mQuestions{3};
};

TEST_F(FastFormsTest, LocatesNodesAsAScanOfAllDoes) {
    expectSameNodes(load(Worlds::makeHarbour()));
    expectSameNodes(load(Worlds::makeFloor(700, 2)));
    SharedPtr<NavMeshContainer> turned = load(Worlds::makeFloor(700, 2));
    turned->mXAxis = {0.8F, 0, 0.6F};
    turned->mYAxis = {-0.6F, 0, 0.8F};
    expectSameNodes(turned);
    for (const float scale : {1.0F, 1e-3F, 1e5F, 1e-20F, 1e-40F, 1e14F, 1e18F})
        for (const float away : {0.0F, -1000.0F, 1e6F, 1e7F}) {
            SCOPED_TRACE(std::to_string(scale) + " " + std::to_string(away));
            expectSameNodes(fill({scale, away}));
        }
    expectSameNodes(fill({1, 0, 0.25F, 2000}));
}

// Comparisons that never told of a difference would be worth nothing.
TEST_F(FastFormsTest, AreToldFromThoseOfAnotherMesh) {
    const SharedPtr<NavMeshContainer> mesh = load(Worlds::makeFloor(300, 2));
    const SharedPtr<NavMeshContainer> other = load(Worlds::makeFloor(300, 3));
    const auto points = mQuestions.pointsAround(*mesh, 200);
    EXPECT_TRUE(Reference::compareLocations(*mesh, *other, points).starts_with("node "));
    Reference::PlainWorld plain(mesh, gObjectAllocator);
    Reference::PlainWorld odd(other, gObjectAllocator);
    const auto rays = mQuestions.raysOver({0, 0}, {20, 20}, 2000);
    EXPECT_TRUE(Reference::compareRays(plain, odd, rays).starts_with("blocked "));
    Reference::SearchComparison searches(plain, odd, mQuestions);
    const std::string difference = searches.run(mQuestions.journeysOver(*mesh, 50), 3, 20);
    EXPECT_NE(difference.find(" in search "), std::string::npos);
}

TEST_F(FastFormsTest, BoundsWhatSimpleOutlinesHold) {
    struct Case {
        int mTurns; ///< counter-clockwise, around the middle
        unsigned int mCorners;
        float mDepth;
        bool mIsBounded;
    };
    for (const auto& [turns, corners, depth, isBounded] : {Case{1, 3, 4, true},
                                                           {1, 12, 4, true},
                                                           {1, 4, 1e-3F, true},
                                                           {2, 5, 4, false},
                                                           {2, 12, 4, false},
                                                           {-1, 4, 4, false},
                                                           {1, 4, 0, false},
                                                           {0, 4, 4, false}}) {
        const SharedPtr<NavMeshContainer> mesh = fill({1, 0, 0.25F, 1});
        NavMeshContainer::NavNode& node = mesh->mNodes[0];
        node.mPolygon.clear();
        mesh->mVertices.clear();
        for (unsigned int i = 0; i < corners; ++i) {
            const float angle = 6.2831853F * static_cast<float>(turns) * static_cast<float>(i) /
                                static_cast<float>(corners);
            node.mPolygon.push_back(i);
            mesh->mVertices.push_back({9 + 4 * std::cos(angle), 0, 9 + depth * std::sin(angle)});
        }
        const auto reach = NodeLocator::reachOf(*mesh, node);
        EXPECT_EQ(reach.has_value(), isBounded) << turns << " turns, " << corners << " corners";
        EXPECT_TRUE(depth < 1 || !isBounded || reach->largerExtent() < 8.3);
    }
}

TEST_F(FastFormsTest, TestsPolygonsOfEitherTurn) {
    const SharedPtr<NavMeshContainer> mesh = fill({1, 0, 0.25F, 1});
    mesh->mVertices.clear();
    for (const auto& [x, z] : {std::pair{0.0F, 0.0F}, {4.0F, 0.0F}, {4.0F, 4.0F}})
        mesh->mVertices.push_back({x, 0, z});
    NavMeshContainer::Vector<std::uint32_t> ring(gObjectAllocator);
    ring.assign({0U, 1U, 2U});
    for (const bool isClockwise : {false, true}) {
        const auto holds = [&](float x, float z, bool flag) {
            return isPointInConvexPolygon2D({x, 9, z}, *mesh, ring, flag, mesh->mXAxis,
                                            mesh->mYAxis);
        };
        EXPECT_TRUE(holds(3, 1, isClockwise));
        EXPECT_TRUE(holds(2, 2, isClockwise)) << "on a border";
        EXPECT_FALSE(holds(3, 1, !isClockwise));
        EXPECT_FALSE(holds(1, 3, isClockwise));
        std::reverse(ring.begin(), ring.end());
    }
}

} // namespace ZUNO::Tests
