#include "pathfinder/navmeshinstance.h"

#include "common/debug/logreporter.h"
#include "common/interface.h"
#include "navmesh/interface.h"
#include "navmesh/meshdefects.h"
#include "navmesh/navmeshfiles.h"
#include "pathfinder/raytracer/blockingmapraytracer.h"

#include <algorithm>

namespace ZUNO::Pathfinder {

using Common::SharedPtr;
using Common::String;
using NavMesh::NavMeshContainer;
using Raytracer::BlockingMapRayTracer;

namespace {

/// Reports the first defect and has then heard enough.
class FirstDefectReport : public NavMesh::DefectListener {
public:
    bool onDefect(const char* text) override {
        ZUNO_REPORT("", text);
        return false;
    }
};

bool isFitForWorld(const NavMeshContainer& mesh) {
    FirstDefectReport report;
    return findDefects(mesh, report);
}

void warnOfSingularPlane() {
    if (Common::Debug::LogReporter* const log = Common::getLogReporter(); log != nullptr)
        log->log(
            Common::Debug::Warning,
            "The mesh's plane axes are parallel seen from above: there is no bounding rectangle",
            "ZUNO::Pathfinder::NavMeshInstance::loadNavMesh", __FILE__, __LINE__);
}

} // namespace

NavMeshInstance::NavMeshInstance() : mSearches(mAllocator), mAStarPool(mAllocator) {}

NavMeshInstance::~NavMeshInstance() {
    unloadMesh();
    Common::Memory::destroyObject(mAllocator, mRayTracer);
}

bool NavMeshInstance::loadNavMesh(const String& fileName) {
    unloadMesh();
    SharedPtr<NavMeshContainer> mesh = NavMesh::loadNavMeshXML(fileName);
    if (mesh == nullptr || !isFitForWorld(*mesh)) {
        ZUNO_REPORT("false", "cannot load mediagraph from file: " << fileName);
        return false;
    }
    NavMesh::getAllocator()->compact(); // the document's tree was larger than the mesh
    mAStarMap = Common::Memory::createObject<NavMesh::MeshGraph>(mAllocator, mesh, mAllocator);
    mLocator = Common::Memory::createObject<NavMesh::NodeLocator>(mAllocator, mesh, mAllocator);
    mNavMesh = mesh;
    mPlaneTransform =
        makePlaneTransform(mesh->mXAxis, mesh->mYAxis, mesh->mNormal.getDominantAxis());
    mInversePlaneTransform = invert(mPlaneTransform);
    if (mPlaneTransform.determinant() == 0)
        warnOfSingularPlane();
    return true;
}

void NavMeshInstance::unloadMesh() {
    for (; !mAStarPool.empty(); mAStarPool.pop_back())
        destroyAStar(mAStarPool.back());
    for (auto search = mSearches.begin(); search != mSearches.end(); ++search)
        destroyAStar((*search).mAStar);
    mSearches.clear();
    Common::Memory::destroyObject(mAllocator, mLocator);
    mLocator = nullptr;
    Common::Memory::destroyObject(mAllocator, mAStarMap);
    mAStarMap = nullptr;
    mNavMesh = nullptr;
}

void NavMeshInstance::initRayTracer(const String& fileName, bool loadFromFile) {
    if (mRayTracer != nullptr) {
        ZUNO_REPORT("false", "Raytracer is already initialised, deleting it first");
        Common::Memory::destroyObject(mAllocator, mRayTracer);
        mRayTracer = nullptr;
    }
    mRayTracer = Common::Memory::createObject<BlockingMapRayTracer>(
        mAllocator, mNavMesh, mAllocator, fileName, loadFromFile);
}

Raytracer::RayTracer* NavMeshInstance::findRayTracer() const {
    return mNavMesh != nullptr ? mRayTracer : nullptr;
}

Raytracer::RayTracer* NavMeshInstance::requireRayTracer() const {
    Raytracer::RayTracer* const tracer = findRayTracer();
    ZUNO_CHECK_AS(tracer != nullptr, "mRayTracer", "please call initRayTracer() first");
    return tracer;
}

bool NavMeshInstance::isBlocked(const Vec2& position) {
    Raytracer::RayTracer* const tracer = requireRayTracer();
    return tracer == nullptr || tracer->isBlocked(mPlaneTransform * position);
}

float NavMeshInstance::getGroundHeight(const Vec2& position) {
    Raytracer::RayTracer* const tracer = requireRayTracer();
    return tracer != nullptr ? tracer->getGroundHeight(mPlaneTransform * position)
                             : Raytracer::noGround;
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
    Raytracer::RayTracer* const tracer = findRayTracer();
    if (tracer == nullptr)
        return -1.0F;
    Ray2D ray(mPlaneTransform * start, mPlaneTransform * end);
    tracer->traceRay(ray);
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
