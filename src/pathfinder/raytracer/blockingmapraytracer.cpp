#include "pathfinder/raytracer/blockingmapraytracer.h"

#include "common/debug/trace.h"
#include "common/exceptions/stateexceptions.h"
#include "navmesh/planegrid.h"
#include "pathfinder/raytracer/gridlinewalker.h"
#include "pathfinder/raytracer/rasteriser.h"

#include <algorithm>
#include <cmath>

namespace ZUNO::Pathfinder::Raytracer {

using Common::Math::Rect;
using Common::Math::Vec2;
using NavMesh::NavMeshContainer;
using Ray = Common::Geom::Ray2D<float, float>;

namespace {

constexpr float noHit = -1.0F;

} // namespace

BlockingMapRayTracer::BlockingMapRayTracer(
    const Common::SharedPtr<NavMeshContainer>& navMesh,
    const Common::SharedPtr<Common::Memory::Allocator>& allocator, const Common::String& fileName,
    bool loadFromFile)
    : mBlockingMap(allocator), mClearances(allocator), mAllocator(allocator) {
    if (loadFromFile)
        loadBlockingMap(fileName);
    build(*navMesh);
}

void BlockingMapRayTracer::build(const NavMeshContainer& mesh) {
    const unsigned int up = mesh.mNormal.getDominantAxis();
    const NavMesh::PlaneGrid grid = NavMesh::measurePlane(mesh);
    mBoundsMin = grid.mBounds.mMin;
    mBoundsMax = grid.mBounds.mMax;
    mBlockingMap.init(mBoundsMin, mBoundsMax, static_cast<std::uint32_t>(grid.mColumns),
                      static_cast<std::uint32_t>(grid.mRows), {noGround, BlockingCell::blocked});
    NavMeshContainer::Vector<Vec2<float>> points(mAllocator);
    points.reserve(mesh.mVertices.size());
    for (const auto& vertex : mesh.mVertices)
        points.push_back(mesh.projectToPlane(vertex));
    Rasteriser rasteriser(mBlockingMap, points, mesh.mCubeSize * 0.5F, mAllocator);
    for (const NavMeshContainer::NavNode& node : mesh.mNodes) {
        const float height = mesh.mVertices[node.mPolygon[0]][up];
        rasteriser.mark(node.mPolygon, {height, BlockingCell::walkable});
    }
    mClearances.build(mBlockingMap);
}

bool BlockingMapRayTracer::isBlocked(const Vec2<float>& position) {
    BlockingCell cell{};
    return !mBlockingMap.getCellAtWorld(position, cell) || cell.isBlocked();
}

float BlockingMapRayTracer::getGroundHeight(const Vec2<float>& position) {
    BlockingCell cell{};
    return mBlockingMap.getCellAtWorld(position, cell) ? cell.mHeight : noGround;
}

void BlockingMapRayTracer::getBoundingRectangle(Vec2<float>& min, Vec2<float>& max) {
    min = mBoundsMin;
    max = mBoundsMax;
}

void BlockingMapRayTracer::traceRay(Ray& ray) {
    ZUNO_CHECK_AS(!(ray.mLength < 0), "ray.mLength >= .0f",
                  "length must be equal or greater than zero");
    BlockingCell first{};
    if (!mBlockingMap.getCellAtWorld(ray.mStart, first) || ray.mLength <= first.mClearance)
        ray.mHitDistance = noHit;
    else
        ray.mHitDistance = walk(ray, first.mClearance);
}

float BlockingMapRayTracer::walk(const Ray& ray, float clearance) const {
    const auto distanceTo = [&](const Vec2<int>& cell) {
        return length(mBlockingMap.cellToWorld(cell) - ray.mStart);
    };
    const Vec2<float> begin = ray.pointAt(clearance);
    if (!isFinite(begin)) // no length to start from, or an end that is nowhere
        return 0;
    Vec2<int> current = mBlockingMap.worldToCell(begin);
    Vec2<int> previous = current;
    bool hasPrevious = false;
    const Vec2<int> end = mBlockingMap.worldToCell(ray.mEnd);
    GridLineWalker walker;
    walker.init(current, end);
    const float limit = ray.mLength * ray.mLength;
    const std::int64_t within = stepsWithinLength(ray, begin, end, walker.stepCount());
    do {
        BlockingCell cell{};
        if (!mBlockingMap.getCell(current.mX, current.mY, cell))
            return hasPrevious ? distanceTo(previous) : 0;
        if (cell.isBlocked())
            return distanceTo(current);
        if (walker.stepsTaken() > within) {
            const Vec2<float> offset = mBlockingMap.cellToWorld(current) - ray.mStart;
            if (!(dot(offset, offset) < limit))
                return noHit;
        } else if (const unsigned int free = mClearances.stepsFrom(current); free != 0) {
            // no cell that is left out is blocked, outside, or too far
            walker.skip(std::min<std::int64_t>(free, within - walker.stepsTaken()), current);
        }
        previous = current;
        hasPrevious = true;
    } while (walker.next(current));
    return noHit;
}

std::int64_t BlockingMapRayTracer::stepsWithinLength(const Ray& ray, const Vec2<float>& begin,
                                                     const Vec2<int>& end,
                                                     std::int64_t stepCount) const {
    constexpr int farAway = 1 << 30; // there the end's cell may be one that ints can hold
    constexpr float longest = 1e18F; // beyond these, squares leave the range of `float`
    constexpr float shortest = 1e-15F;
    const Vec2<float> size = mBlockingMap.cellSize();
    const auto isFar = [](int coordinate) { return coordinate > farAway || coordinate < -farAway; };
    if (size.mX == 0 || size.mY == 0 || isFar(end.mX) || isFar(end.mY) ||
        !(ray.mLength < longest && ray.mLength > shortest))
        return -1;
    // After k of n steps the cell's lower corner is at most 3 cells per axis from the point k/n of
    // the way: up to 1 for each truncated end, 1 for the walk; largest / 2^20 covers rounding. The
    // way begins at the ray's start, or, from a blocked cell, behind it.
    const Rect& bounds = mBlockingMap.bounds();
    const double largest =
        std::max({std::abs(bounds.mMin.mX), std::abs(bounds.mMin.mY), std::abs(bounds.mMax.mX),
                  std::abs(bounds.mMax.mY), std::abs(ray.mStart.mX), std::abs(ray.mStart.mY)});
    constexpr double threeCells = 4.3; // along their diagonal
    const double slack = threeCells * (std::max(size.mX, size.mY) + largest / (1 << 20));
    const auto fromStart = [&](const Vec2<float>& point) {
        const double x = double{point.mX} - ray.mStart.mX;
        const double y = double{point.mY} - ray.mStart.mY;
        return std::sqrt(x * x + y * y);
    };
    const double part = (ray.mLength * (1 - 1e-5) - slack - fromStart(begin)) / fromStart(ray.mEnd);
    if (!(part > 0))
        return -1;
    return static_cast<std::int64_t>(std::min(part, 1.0) * static_cast<double>(stepCount)) - 1;
}

void BlockingMapRayTracer::loadBlockingMap(const Common::String& filename) {
    std::stringstream message;
    message << "ZUNO::Pathfinder::Raytracer::BlockingMapRayTracer::BlockingMapRayTracer"
            << " : "
            << "load blockingmap: " << filename;
    Common::Debug::Trace::send(Common::Debug::TRACE_MESSAGE, message);
    throw new Common::Exceptions::NotSupportedException("No serialization yet");
}

bool BlockingMapRayTracer::saveBlockingMap(const Common::String&) {
    throw new Common::Exceptions::NotSupportedException("No serialization yet");
}

} // namespace ZUNO::Pathfinder::Raytracer
