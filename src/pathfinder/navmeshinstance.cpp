#include "pathfinder/navmeshinstance.h"

#include "common/debug/logreporter.h"
#include "common/interface.h"
#include "navmesh/interface.h"
#include "navmesh/meshdefects.h"
#include "navmesh/navmeshfiles.h"
#include "pathfinder/raytracer/blockingmapraytracer.h"

#include <algorithm>
#include <utility>

namespace ZUNO::Pathfinder {

using Common::SharedPtr;
using Common::String;
using NavMesh::NavMeshContainer;
using Raytracer::BlockingMapRayTracer;

namespace {

/// Reports the first defect.
bool isFitForWorld(const NavMeshContainer& mesh) {
    return findDefects(mesh, [](const char* text) {
        ZUNO_REPORT("", text);
        return false;
    });
}

void warnOfSingularPlane() {
    if (Common::Debug::LogReporter* const log = Common::getLogReporter(); log != nullptr)
        log->log(
            Common::Debug::Warning,
            "The mesh's plane axes are parallel seen from above: there is no bounding rectangle",
            "ZUNO::Pathfinder::NavMeshInstance::load", __FILE__, __LINE__);
}

} // namespace

NavMeshInstance::NavMeshInstance()
    : mSearchMemory(mAllocator), mSearches(mAllocator), mAStarPool(mAllocator) {}

NavMeshInstance::~NavMeshInstance() {
    destroySearches();
    Common::Memory::destroyObject(mAllocator, mRayTracer);
    Common::Memory::destroyObject(mAllocator, mLocator);
    Common::Memory::destroyObject(mAllocator, mAStarMap);
}

bool NavMeshInstance::load(const String& navMeshFile, const String& blockingMapFile) {
    Ground ground = loadNavMesh(navMeshFile);
    if (ground.mNavMesh == nullptr)
        return false;
    if (mNavMesh == nullptr) { // paths can be searched without a grid
        const SharedPtr<NavMeshContainer> navMesh = ground.mNavMesh;
        replace(ground, nullptr);
        mRayTracer = makeRayTracer(navMesh, blockingMapFile);
        return true;
    }
    if (mRayTracer != nullptr)
        ZUNO_REPORT("false", "Raytracer is already initialised, deleting it first");
    replace(ground, makeRayTracer(ground.mNavMesh, blockingMapFile));
    return true;
}

NavMeshInstance::Ground NavMeshInstance::loadNavMesh(const String& fileName) {
    const SharedPtr<NavMeshContainer> mesh = NavMesh::loadNavMeshXML(fileName);
    if (mesh == nullptr || !isFitForWorld(*mesh)) {
        ZUNO_REPORT("false", "cannot load mediagraph from file: " << fileName);
        return {};
    }
    NavMesh::getAllocator()->compact(); // the document's tree was larger than the mesh
    const Matrix2 planeTransform =
        makePlaneTransform(mesh->mXAxis, mesh->mYAxis, mesh->mNormal.getDominantAxis());
    if (planeTransform.determinant() == 0)
        warnOfSingularPlane();
    return {mesh, Common::Memory::createOwned<NavMesh::MeshGraph>(mAllocator, mesh, mAllocator),
            Common::Memory::createOwned<NavMesh::NodeLocator>(mAllocator, mesh, mAllocator),
            planeTransform};
}

Raytracer::RayTracer* NavMeshInstance::makeRayTracer(const SharedPtr<NavMeshContainer>& navMesh,
                                                     const String& blockingMapFile) {
    const bool isNamed = !blockingMapFile.isEmpty();
    return Common::Memory::createObject<BlockingMapRayTracer>(
        mAllocator, navMesh, mAllocator, isNamed ? blockingMapFile : String("NoBlockingMap"),
        isNamed);
}

void NavMeshInstance::replace(Ground& ground, Raytracer::RayTracer* rayTracer) {
    destroySearches();
    Common::Memory::destroyObject(mAllocator, std::exchange(mRayTracer, rayTracer));
    Common::Memory::destroyObject(mAllocator, std::exchange(mLocator, ground.mLocator.release()));
    Common::Memory::destroyObject(mAllocator, std::exchange(mAStarMap, ground.mAStarMap.release()));
    mNavMesh = ground.mNavMesh;
    mPlaneTransform = ground.mPlaneTransform;
    mInversePlaneTransform = invert(mPlaneTransform);
}

Raytracer::RayTracer* NavMeshInstance::requireRayTracer() const {
    ZUNO_CHECK_AS(mRayTracer != nullptr, "mRayTracer", "please call initRayTracer() first");
    return mRayTracer;
}

bool NavMeshInstance::isBlocked(const Vec2& position) {
    Raytracer::RayTracer* const tracer = requireRayTracer();
    return tracer == nullptr || tracer->isBlocked(mPlaneTransform * position);
}

float NavMeshInstance::getGroundHeight(const Vec2& position) {
    Raytracer::RayTracer* const tracer = requireRayTracer();
    return tracer != nullptr ? tracer->getGroundHeight(mPlaneTransform * position) : noGround;
}

void NavMeshInstance::getBoundingRectangle(Vec2& min, Vec2& max) {
    min = max = {0, 0};
    Raytracer::RayTracer* const tracer = requireRayTracer();
    if (tracer == nullptr)
        return;
    Vec2 low;
    Vec2 high;
    tracer->getBoundingRectangle(low, high);
    low = mInversePlaneTransform * low;
    high = mInversePlaneTransform * high;
    min = {std::min(low.mX, high.mX), std::min(low.mY, high.mY)};
    max = {std::max(low.mX, high.mX), std::max(low.mY, high.mY)};
}

float NavMeshInstance::trace(const Vec2& start, const Vec2& end) const {
    if (mRayTracer == nullptr)
        return noHit;
    Ray2D ray(mPlaneTransform * start, mPlaneTransform * end);
    mRayTracer->traceRay(ray);
    return ray.mHitDistance;
}

void NavMeshInstance::traceRay(Ray2D& ray) {
    ray.mHitDistance = trace(ray.mStart, ray.mEnd);
}

void NavMeshInstance::traceRay(Ray3D& ray) {
    const unsigned int up = mNavMesh != nullptr ? mNavMesh->mNormal.getDominantAxis() : 0;
    ray.mHitDistance = trace(ray.mStart.killComponent(up), ray.mEnd.killComponent(up));
}

bool NavMeshInstance::saveBlockingMap(const String& filename) {
    return BlockingMapRayTracer::saveBlockingMap(filename);
}

} // namespace ZUNO::Pathfinder
