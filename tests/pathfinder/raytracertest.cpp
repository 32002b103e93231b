// The grid and its rays against the plain forms: each cell looked at, each step taken.
#include "common/memory/objectcreation.h"
#include "navmesh/planegrid.h"
#include "pathfinder/raytracer/blockingmapraytracer.h"
#include "pathfinder/raytracer/gridlinewalker.h"
#include "tests/support/foundation.h"

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace ZUNO::Tests {

using namespace Common;
using namespace Pathfinder::Raytracer;
using Math::Vec2;
using NavMesh::NavMeshContainer;
using Ray = Geom::Ray2D<float, float>;

namespace {

class PlainTracer {
public:
    explicit PlainTracer(const NavMeshContainer& mesh) : mMap(gObjectAllocator) {
        const NavMesh::PlaneGrid grid = NavMesh::measurePlane(mesh);
        mMap.init(grid.mBounds.mMin, grid.mBounds.mMax, static_cast<std::uint32_t>(grid.mColumns),
                  static_cast<std::uint32_t>(grid.mRows), {noGround, BlockingCell::blocked});
        for (const auto& node : mesh.mNodes)
            rasterise(mesh, node);
    }

    BlockingCell cellAt(const Vec2<float>& position) const {
        BlockingCell cell{noGround, BlockingCell::blocked};
        mMap.getCellAtWorld(position, cell);
        return cell;
    }

    float trace(const Ray& ray) const {
        BlockingCell first{};
        if (!mMap.getCellAtWorld(ray.mStart, first) || ray.mLength <= first.mClearance)
            return -1;
        const Vec2<float> begin = ray.pointAt(first.mClearance);
        if (!isFinite(begin))
            return 0;
        const auto offsetOf = [&](const Vec2<int>& cell) {
            return mMap.cellToWorld(cell) - ray.mStart;
        };
        Vec2<int> current = mMap.worldToCell(begin);
        Vec2<int> previous = current;
        bool hasPrevious = false;
        GridLineWalker walker;
        walker.init(current, mMap.worldToCell(ray.mEnd));
        do {
            BlockingCell cell{};
            if (!mMap.getCell(current.mX, current.mY, cell))
                return hasPrevious ? length(offsetOf(previous)) : 0;
            previous = current;
            hasPrevious = true;
            if (cell.isBlocked())
                return length(offsetOf(current));
            if (!(dot(offsetOf(current), offsetOf(current)) < ray.mLength * ray.mLength))
                return -1;
        } while (walker.next(current));
        return -1;
    }

private:
    void rasterise(const NavMeshContainer& mesh, const NavMeshContainer::NavNode& node) {
        Math::Rect rect;
        for (const std::uint32_t corner : node.mPolygon)
            rect.grow(mesh.projectToPlane(mesh.mVertices[corner]));
        const Vec2<int> low = mMap.worldToCell(rect.mMin);
        const Vec2<int> high = mMap.worldToCell(rect.mMax);
        const float half = mesh.mCubeSize * 0.5F;
        for (int y = low.mY; y <= high.mY; ++y)
            for (int x = low.mX; x <= high.mX; ++x) {
                const Vec2<float> centre = mMap.cellToWorld({x, y}) + Vec2<float>(half, half);
                bool isIn = true;
                for (std::size_t i = 0; i < node.mPolygon.size() && isIn; ++i) {
                    const std::size_t before =
                        (i + node.mPolygon.size() - 1) % node.mPolygon.size();
                    isIn = !(-signedArea(mesh.projectToPlane(mesh.mVertices[node.mPolygon[before]]),
                                         mesh.projectToPlane(mesh.mVertices[node.mPolygon[i]]),
                                         centre) > 0);
                }
                if (isIn)
                    mMap.setCellAtWorld(
                        centre, {mesh.mVertices[node.mPolygon[0]].mY, BlockingCell::walkable});
            }
    }

    BlockingMap mMap;
};

} // namespace

class RayTracerTest : public FoundationTest {
protected:
    /// Polygons of any form over a plane of 100 x 60, most of it covered.
    SharedPtr<NavMeshContainer> makeMesh(float scale, float away, float cubeSize) {
        SharedPtr<NavMeshContainer> mesh(Memory::createManaged<NavMeshContainer>(gObjectAllocator));
        mesh->mNormal = {0, 1, 0};
        mesh->mXAxis = {1, 0, 0};
        mesh->mYAxis = {0, 0, 1};
        mesh->mCubeSize = cubeSize * scale;
        for (int i = 0; i < 60; ++i) {
            auto& node = mesh->mNodes.emplace_back(gObjectAllocator);
            const float x = between(0, 100);
            const float z = between(0, 60);
            const float radius = i % 10 == 0 ? 25.0F : between(0, 9);
            const auto count = static_cast<unsigned int>(3 + mRandom() % 5);
            for (unsigned int k = 0; k < count; ++k)
                addCorner(*mesh, node, away + x, z, scale, {radius, i, k, count});
        }
        return mesh;
    }

    struct Corner {
        float mRadius;
        int mPolygon;
        unsigned int mNumber;
        unsigned int mCount;
    };
    void addCorner(NavMeshContainer& mesh, NavMeshContainer::NavNode& node, float x, float z,
                   float scale, const Corner& corner) {
        const float turn = corner.mPolygon % 9 == 8 ? -6.2831853F : 6.2831853F;
        const float angle =
            turn * static_cast<float>(corner.mNumber) / static_cast<float>(corner.mCount);
        const float reach = corner.mRadius * (corner.mPolygon % 7 == 6 ? between(0.2F, 1) : 1.0F);
        node.mPolygon.push_back(static_cast<std::uint32_t>(mesh.mVertices.size()));
        mesh.mVertices.push_back({(x + reach * std::cos(angle)) * scale,
                                  static_cast<float>(corner.mPolygon),
                                  (z + reach * std::sin(angle)) * scale});
    }

    float between(float low, float high) {
        return low + (high - low) * static_cast<float>(mRandom() % 65536) / 65536;
    }

    std::mt19937 mRandom{21};
};

TEST_F(RayTracerTest, MarksAndTracesAsThePlainFormsDo) {
    struct Case {
        float mScale;
        float mAway;
        float mCubeSize;
    };
    for (const auto& [scale, away, cubeSize] :
         {Case{1, 0, 0.5F}, Case{1, 0, 0.07F}, Case{0.3F, 1000, 0.11F}, Case{1, 1e6F, 0.25F},
          Case{1e15F, 0, 1}, Case{1e18F, 0, 1}, Case{1e-20F, 0, 1}, Case{1, 0, 200}}) {
        SCOPED_TRACE(std::to_string(scale) + " " + std::to_string(away) + " " +
                     std::to_string(cubeSize));
        const SharedPtr<NavMeshContainer> mesh = makeMesh(scale, away, cubeSize);
        BlockingMapRayTracer tracer(mesh, gObjectAllocator, "", false);
        const PlainTracer plain(*mesh);
        Vec2<float> low;
        Vec2<float> high;
        tracer.getBoundingRectangle(low, high);
        const auto place = [&](float beyond) {
            const float x = between(-beyond, 1 + beyond);
            const float y = between(-beyond, 1 + beyond);
            return Vec2<float>(low.mX + (high.mX - low.mX) * x, low.mY + (high.mY - low.mY) * y);
        };
        unsigned int hits = 0;
        for (int i = 0; i < 20000; ++i) {
            const Vec2<float> here = place(0.01F);
            const BlockingCell cell = plain.cellAt(here);
            ASSERT_EQ(tracer.isBlocked(here), cell.isBlocked()) << here.mX << ' ' << here.mY;
            ASSERT_EQ(tracer.getGroundHeight(here), cell.mHeight) << here.mX << ' ' << here.mY;
            Ray ray(here, i % 4 == 0 ? here + (place(0) - low) * 0.01F : place(i % 3 == 0 ? 2 : 0));
            if (i % 16 == 1)
                ray.mLength *= between(0, 1.2F); // a length that is not the distance of the ends
            if (i % 512 == 2)
                ray.mEnd.mX = i % 1024 == 2 ? 3e38F : std::numeric_limits<float>::infinity();
            tracer.traceRay(ray);
            const float expected = plain.trace(ray);
            ASSERT_EQ(std::bit_cast<std::uint32_t>(ray.mHitDistance),
                      std::bit_cast<std::uint32_t>(expected))
                << i << ": " << ray.mHitDistance << " for " << expected << " from " << ray.mStart.mX
                << ' ' << ray.mStart.mY << " to " << ray.mEnd.mX << ' ' << ray.mEnd.mY << " length "
                << ray.mLength;
            hits += expected > 0 ? 1 : 0;
        }
        EXPECT_GT(hits, cubeSize < 100 ? 1000U : 0U);
    }
}

} // namespace ZUNO::Tests
