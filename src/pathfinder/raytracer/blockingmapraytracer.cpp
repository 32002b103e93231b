#include "pathfinder/raytracer/blockingmapraytracer.h"

#include "common/debug/trace.h"
#include "common/exceptions/stateexceptions.h"
#include "navmesh/planegrid.h"
#include "pathfinder/raytracer/gridlinewalker.h"

namespace ZUNO::Pathfinder::Raytracer {

using Common::Math::Rect;
using Common::Math::Vec2;
using NavMesh::NavMeshContainer;
using Ray = Common::Geom::Ray2D<float, float>;
using PointList = NavMeshContainer::Vector<Vec2<float>>;

namespace {

constexpr float noHit = -1.0F;

/// Borders count as inside; a clockwise polygon holds nothing.
bool isInPolygon(const PointList& points, const NavMeshContainer::Vector<std::uint32_t>& polygon,
                 const Vec2<float>& q) {
    Vec2<float> start = points[polygon.back()];
    for (const std::uint32_t corner : polygon) {
        const Vec2<float> end = points[corner];
        if (-signedArea(start, end, q) > 0)
            return false;
        start = end;
    }
    return true;
}

/// Marks the cells whose centres the node covers.
void rasterise(BlockingMap& map, const PointList& points,
               const NavMeshContainer::Vector<std::uint32_t>& polygon, const BlockingCell& cell,
               float half) {
    Rect rect;
    for (const std::uint32_t corner : polygon)
        rect.grow(points[corner]);
    const Vec2<int> low = map.worldToCell(rect.mMin);
    const Vec2<int> high = map.worldToCell(rect.mMax);
    for (int y = low.mY; y <= high.mY; ++y)
        for (int x = low.mX; x <= high.mX; ++x) {
            const Vec2<float> centre = map.cellToWorld({x, y}) + Vec2<float>(half, half);
            if (isInPolygon(points, polygon, centre))
                map.setCellAtWorld(centre, cell);
        }
}

} // namespace

BlockingMapRayTracer::BlockingMapRayTracer(
    const Common::SharedPtr<NavMeshContainer>& navMesh,
    const Common::SharedPtr<Common::Memory::Allocator>& allocator, const Common::String& fileName,
    bool loadFromFile)
    : mBlockingMap(allocator), mAllocator(allocator) {
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
    PointList points(mAllocator);
    points.reserve(mesh.mVertices.size());
    for (const auto& vertex : mesh.mVertices)
        points.push_back(mesh.projectToPlane(vertex));
    for (const NavMeshContainer::NavNode& node : mesh.mNodes) {
        const float height = mesh.mVertices[node.mPolygon[0]][up];
        rasterise(mBlockingMap, points, node.mPolygon, {height, BlockingCell::walkable},
                  mesh.mCubeSize * 0.5F);
    }
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
    GridLineWalker walker;
    walker.init(current, mBlockingMap.worldToCell(ray.mEnd));
    const float limit = ray.mLength * ray.mLength;
    do {
        BlockingCell cell{};
        if (!mBlockingMap.getCell(current.mX, current.mY, cell))
            return hasPrevious ? distanceTo(previous) : 0;
        previous = current;
        hasPrevious = true;
        if (cell.isBlocked())
            return distanceTo(current);
        const Vec2<float> offset = mBlockingMap.cellToWorld(current) - ray.mStart;
        if (!(dot(offset, offset) < limit))
            return noHit;
    } while (walker.next(current));
    return noHit;
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
