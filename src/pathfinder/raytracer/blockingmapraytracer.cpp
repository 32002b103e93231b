#include "pathfinder/raytracer/blockingmapraytracer.h"

#include "common/debug/trace.h"
#include "common/exceptions/stateexceptions.h"
#include "common/math/floatrange.h"
#include "common/report/reporttext.h"
#include "navmesh/planegrid.h"
#include "pathfinder/raytracer/rasteriser.h"

#include <algorithm>
#include <cmath>

namespace ZUNO::Pathfinder::Raytracer {

using Common::Math::Rect;
using Common::Math::Vec2;
using NavMesh::NavMeshContainer;
using Ray = Common::Geom::Ray2D<float, float>;

BlockingMapRayTracer::BlockingMapRayTracer(
    const Common::SharedPtr<NavMeshContainer>& navMesh,
    const Common::SharedPtr<Common::Memory::Allocator>& allocator, const Common::String& fileName,
    bool loadFromFile)
    : mBlockingMap(allocator), mBits(allocator), mDistances(allocator), mAllocator(allocator) {
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
    mBits.build(mBlockingMap);
    mDistances.build(mBlockingMap);
    mLastSteps = countLastSteps();
}

bool BlockingMapRayTracer::isBlocked(const Vec2<float>& position) {
    BlockingMap::Cell cell{};
    return !mBlockingMap.findCellAtWorld(position, cell) || mBits.stopsAt(mBits.placeOf(cell));
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
    // the bits are what caches hold of the grid; the cells themselves are 64 times as large
    BlockingMap::Cell first{};
    ray.mHitDistance = noHit;
    if (!mBlockingMap.findCellAtWorld(ray.mStart, first))
        return;
    const float clearance =
        mBits.stopsAt(mBits.placeOf(first)) ? BlockingCell::blocked : BlockingCell::walkable;
    if (!(ray.mLength <= clearance))
        ray.mHitDistance = walk(ray, clearance);
}

float BlockingMapRayTracer::walk(const Ray& ray, float clearance) const {
    const Vec2<float> begin = ray.pointAt(clearance);
    if (!isFinite(begin)) // no length to start from, or an end that is nowhere
        return 0;
    const BlockingMap::Cell from = mBlockingMap.worldToCell(begin);
    const BlockingMap::Cell to = mBlockingMap.worldToCell(ray.mEnd);
    if (!mBlockingMap.hasCell(from))
        return 0;
    BitWalk walk(mBits, from, to);
    const auto offset = [&](BlockedBits::Place place) {
        return mBlockingMap.cellToWorld(mBits.cellOf(place)) - ray.mStart;
    };
    // the grid's border blocks like a wall, but the hit is the last cell before it
    const auto hit = [&] {
        const bool isInside = mBlockingMap.hasCell(mBits.cellOf(walk.place()));
        return length(offset(isInside ? walk.place() : walk.previous()));
    };
    std::uint32_t left = walk.stepCount();
    const std::uint32_t untested = clearance == 0 ? stepsWithinLength(ray, to, left) : 0;
    if (untested != 0) {
        if (advance(walk, untested))
            return hit();
        left -= untested;
    }
    const float limit = ray.mLength * ray.mLength;
    while (!walk.isStopped()) {
        const Vec2<float> reached = offset(walk.place());
        if (!(dot(reached, reached) < limit) || left == 0)
            return noHit;
        walk.advance(1);
        --left;
    }
    return hit();
}

bool BlockingMapRayTracer::advance(BitWalk& walk, std::uint32_t steps) const {
    // among walls most rays end before leaps are worth their preparation
    constexpr std::uint32_t first = 32;
    if (steps <= first)
        return walk.advance(steps);
    if (walk.advance(first))
        return true;
    steps -= first;
    BitWalk::Leap small = walk.oneStep();
    while (small.mSteps < 16)
        small = walk.doubled(small);
    BitWalk::Leap large = small;
    while (large.mSteps < 128)
        large = walk.doubled(large);
    while (steps >= small.mSteps) {
        const std::uint32_t free =
            std::min(mDistances.stepsFrom(mBits.cellOf(walk.place())), steps);
        if (free < small.mSteps) {
            const std::uint32_t stretch = std::min(steps, 2 * small.mSteps);
            if (walk.advance(stretch))
                return true;
            steps -= stretch;
        } else {
            const BitWalk::Leap& leap = free < large.mSteps ? small : large;
            walk.take(leap);
            steps -= leap.mSteps;
        }
    }
    return walk.advance(steps);
}

std::uint32_t BlockingMapRayTracer::stepsWithinLength(const Ray& ray, const BlockingMap::Cell& end,
                                                      std::uint32_t stepCount) const {
    constexpr std::uint32_t fewest = 10;
    const std::uint32_t last = mLastSteps + stepCount / (1U << 16U);
    if (stepCount < fewest || stepCount <= last || mLastSteps == allSteps ||
        !(Common::Math::smallestLength < ray.mLength &&
          ray.mLength < Common::Math::largestCoordinate))
        return 0;
    constexpr int farAway = 1 << 30; // there the end's cell may be one that ints can hold
    const auto isFar = [](int coordinate) { return coordinate > farAway || coordinate < -farAway; };
    const Vec2<float> way = ray.mEnd - ray.mStart;
    const bool isAsLong = dot(way, way) <= ray.mLength * ray.mLength * (1 + 1e-5F);
    return isAsLong && !isFar(end.mX) && !isFar(end.mY) ? stepCount - last : 0;
}

std::uint32_t BlockingMapRayTracer::countLastSteps() const {
    const Vec2<float> size = mBlockingMap.cellSize();
    const Rect& bounds = mBlockingMap.bounds();
    const double largest = std::max({std::abs(bounds.mMin.mX), std::abs(bounds.mMin.mY),
                                     std::abs(bounds.mMax.mX), std::abs(bounds.mMax.mY)});
    const double smaller = std::min(size.mX, size.mY);
    if (smaller == 0 || largest > Common::Math::largestCoordinate)
        return allSteps;
    // How near the ray's length can a cell's lower corner be in the step before the last m of n?
    // It is at most 2 cells per axis from the point (n - m) / n of the way: 1 for truncating start
    // and end, and 1 for the walk. largest / 2^20 covers rounding. The way's length L is at least
    // n - 1 smaller sides of a cell, so that the cell is within it if, for n of 10 or more,
    //     m * 0.9 * smaller > slack + L / 100,000,
    // and of the last term, which is for an L that is rounded, n / 65,536 steps are enough.
    constexpr double twoCells = 2.9; // along their diagonal
    const double slack = twoCells * (std::max(size.mX, size.mY) + largest / (1 << 20));
    const double steps = std::ceil(slack / (0.9 * smaller)) + 1;
    return steps < allSteps ? static_cast<std::uint32_t>(steps) : allSteps;
}

void BlockingMapRayTracer::loadBlockingMap(const Common::String& filename) {
    Common::Debug::ReportText message;
    message << "ZUNO::Pathfinder::Raytracer::BlockingMapRayTracer::BlockingMapRayTracer"
            << " : "
            << "load blockingmap: " << filename.getConstCharPtr();
    Common::Debug::Trace::send(Common::Debug::TRACE_MESSAGE, message.text());
    throw new Common::Exceptions::NotSupportedException("No serialization yet");
}

bool BlockingMapRayTracer::saveBlockingMap(const Common::String&) {
    throw new Common::Exceptions::NotSupportedException("No serialization yet");
}

} // namespace ZUNO::Pathfinder::Raytracer
