// What a world runs against the plain forms, bit for bit.
#include "navmesh/meshsearch.h"
#include "navmesh/nodelocator.h"
#include "tests/support/navmeshlibrary.h"

#include <bit>
#include <cmath>
#include <limits>
#include <memory>
#include <random>

namespace ZUNO::Tests {

using namespace Common;
using namespace NavMesh;
using Math::Vec3;

class FastFormsTest : public NavMeshLibraryTest {
protected:
    static SharedPtr<NavMeshContainer> newMesh() {
        SharedPtr<NavMeshContainer> mesh(
            Memory::createManaged<NavMeshContainer>(NavMesh::getAllocator()));
        mesh->mNormal = {0, 1, 0};
        mesh->mXAxis = {1, 0, 0};
        mesh->mYAxis = {0, 0, 1};
        mesh->mCubeSize = 0.25F;
        mesh->mHeights.push_back(2.5F);
        return mesh;
    }

    static void addPolygon(NavMeshContainer& mesh, const std::vector<Vec3<float>>& corners) {
        auto& node = mesh.mNodes.emplace_back(gObjectAllocator);
        node.mHeightClass = 0;
        for (const Vec3<float>& corner : corners) {
            node.mPolygon.push_back(static_cast<std::uint32_t>(mesh.mVertices.size()));
            node.mNeighbours.push_back(-1);
            mesh.mVertices.push_back(corner);
        }
    }

    /// Points on, beside and between the corners of a mesh, and far from it.
    static std::vector<Vec3<float>> pointsFor(const NavMeshContainer& mesh, std::mt19937& random) {
        constexpr float infinity = std::numeric_limits<float>::infinity();
        std::vector<Vec3<float>> points;
        const auto pick = [&] { return mesh.mVertices[random() % mesh.mVertices.size()]; };
        const auto nudge = [&](float x) {
            return random() % 3 == 0 ? x
                                     : std::nextafter(x, random() % 2 == 0 ? infinity : -infinity);
        };
        const auto part = [&] { return static_cast<float>(random() % 1024) / 1024; };
        for (int i = 0; i < 1500; ++i) {
            const Vec3<float> a = pick();
            const auto& node = mesh.mNodes[random() % mesh.mNodes.size()];
            const std::size_t border = random() % node.mPolygon.size();
            const Vec3<float> b = mesh.mVertices[node.mPolygon[border]];
            const Vec3<float> c =
                mesh.mVertices[node.mPolygon[(border + 1) % node.mPolygon.size()]];
            const float t = part();
            points.push_back(a);
            points.push_back({nudge(a.mX), nudge(a.mY), nudge(a.mZ)});
            points.push_back({b.mX + (c.mX - b.mX) * t, b.mY, b.mZ + (c.mZ - b.mZ) * t});
            const float beyond = t * 9 - 4; // where a sliver may hold points by rounding alone
            points.push_back({b.mX + (c.mX - b.mX) * beyond, b.mY, b.mZ + (c.mZ - b.mZ) * beyond});
            points.push_back({a.mX + (b.mX - a.mX) * t, a.mY, a.mZ + (c.mZ - a.mZ) * part()});
            points.push_back({a.mX + (b.mX - a.mX) * 20, a.mY, a.mZ + (b.mZ - a.mZ) * 20});
        }
        for (const float far : {1e6F, 1e14F, 1e16F, 1e30F, 3e38F, infinity, std::nanf("")})
            for (const float sign : {1.0F, -1.0F}) {
                points.push_back({sign * far, 0, 0});
                points.push_back({0, 0, sign * far});
                points.push_back({sign * far, sign * far, far});
            }
        return points;
    }

    static void expectSameNodes(const SharedPtr<NavMeshContainer>& mesh, std::mt19937& random) {
        const NodeLocator locator(mesh, gObjectAllocator);
        EXPECT_LE(locator.getMemoryUsage(), 44 * mesh->mNodes.size() + 64);
        for (const Vec3<float>& point : pointsFor(*mesh, random))
            ASSERT_EQ(locator.findNode(point), mesh->findNode(point))
                << point.mX << ' ' << point.mY << ' ' << point.mZ;
    }
};

TEST_F(FastFormsTest, LocatesNodesAsAScanOfAllDoes) {
    std::mt19937 random(3);
    expectSameNodes(load(Worlds::makeHarbour()), random);
    expectSameNodes(load(Worlds::makeFloor(700, 2)), random);
    SharedPtr<NavMeshContainer> turned = load(Worlds::makeFloor(700, 2));
    turned->mXAxis = {0.8F, 0, 0.6F};
    turned->mYAxis = {-0.6F, 0, 0.8F};
    expectSameNodes(turned, random);
    const auto between = [&](float low, float high) {
        return low + (high - low) * static_cast<float>(random() % 4096) / 4096;
    };
    // anything goes: overlaps, slivers, clockwise, crossed and collapsed outlines, at all scales
    for (const float scale : {1.0F, 1e-3F, 1e5F, 1e-20F, 1e-40F, 1e14F, 1e18F})
        for (const float away : {0.0F, 1000.0F, 1e6F, 1e7F}) {
            SCOPED_TRACE(std::to_string(scale) + " " + std::to_string(away));
            const SharedPtr<NavMeshContainer> mesh = newMesh();
            for (int i = 0; i < 120; ++i) {
                std::vector<Vec3<float>> corners;
                const float x = away + between(0, 100);
                const float z = between(0, 100);
                const float width = i % 40 == 0 ? 80.0F : between(0, 6);
                const float depth = i % 7 == 0 ? 1e-4F : (i % 7 == 1 ? 1e-5F : between(0, 6));
                const float height = between(0, 3);
                const auto count = static_cast<unsigned int>(3 + random() % 4);
                for (unsigned int k = 0; k < count; ++k) {
                    const float angle = 6.2831853F * static_cast<float>(k) /
                                        static_cast<float>(count) * (i % 11 == 0 ? -1.0F : 1.0F);
                    corners.push_back(
                        {x + width * std::cos(angle), height, z + depth * std::sin(angle)});
                }
                if (i % 13 == 0)
                    std::swap(corners[0], corners[1]);
                if (i % 17 == 0)
                    corners[1] = corners[0];
                if (i % 19 == 0)
                    corners.assign(corners.size(), corners[0]);
                for (Vec3<float>& corner : corners)
                    corner = {corner.mX * scale, corner.mY, corner.mZ * scale};
                addPolygon(*mesh, corners);
            }
            expectSameNodes(mesh, random);
        }
}

TEST_F(FastFormsTest, SearchesAsThePlainPartsDo) {
    std::mt19937 random(8);
    for (const Worlds::MeshModel& model :
         {Worlds::makeHarbour(), Worlds::makeFloor(400, 6), Worlds::makeFloor(3000, 7)}) {
        const SharedPtr<NavMeshContainer> mesh = load(model);
        AStarMapNavMesh map(mesh);
        Astar::AStarStorageFast storage(&map, gObjectAllocator);
        const std::unique_ptr<NMCostFunc> cost(
            Memory::createManaged<NMCostFunc>(gObjectAllocator, mesh));
        const std::unique_ptr<NMHeuristicFunc> heuristic(
            Memory::createManaged<NMHeuristicFunc>(gObjectAllocator, mesh));
        Astar::ASGoalBase goal(cost.get(), heuristic.get(), gObjectAllocator);
        Astar::AStar plain(&storage, &goal, &map, gObjectAllocator);

        MeshGraph graph(mesh, gObjectAllocator);
        Astar::AStarStorageFast fastStorage(&graph, gObjectAllocator);
        MeshGoal fastGoal(graph, gObjectAllocator);
        MeshAStar fast(&fastStorage, &fastGoal, &graph, gObjectAllocator);
        for (int i = 0; i < 150; ++i) {
            SearchEnds ends;
            ends.mStartNode = static_cast<std::uint32_t>(random() % mesh->mNodes.size());
            ends.mGoalNode = static_cast<std::uint32_t>(random() % mesh->mNodes.size());
            ends.mStartPos = mesh->mVertices[mesh->mNodes[ends.mStartNode].mPolygon[0]];
            ends.mGoalPos = mesh->mVertices[mesh->mNodes[ends.mGoalNode].mPolygon[1]];
            cost->mEnds = heuristic->mEnds = ends;
            goal.setStartGoal(ends.mStartNode, ends.mGoalNode);
            plain.initSearch();
            fast.setEnds(ends);
            fast.initSearch();
            std::int32_t state = 1;
            while (state == 1) { // slice by slice: as many expansions
                state = plain.runSearch(3);
                ASSERT_EQ(fast.runSearch(3), state);
            }
            if (state != 0)
                continue;
            Astar::EdgeList edges(gObjectAllocator);
            Astar::EdgeList fastEdges(gObjectAllocator);
            const float price = goal.getPath(edges);
            ASSERT_EQ(std::bit_cast<std::uint32_t>(fastGoal.getPath(fastEdges)),
                      std::bit_cast<std::uint32_t>(price));
            ASSERT_EQ(fastEdges, edges);
            for (const std::uint32_t edge : edges)
                ASSERT_EQ(graph.endOf(edge), map.getEdgeEndNode(edge));
        }
        EXPECT_LE(graph.getMemoryUsage(), 20 * mesh->mNodes.size() + 8 * 8 * mesh->mNodes.size());
    }
}

} // namespace ZUNO::Tests
