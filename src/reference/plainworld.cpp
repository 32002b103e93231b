#include "reference/plainworld.h"

namespace ZUNO::Reference {

PlainWorld::PlainWorld(const Common::SharedPtr<NavMesh::NavMeshContainer>& mesh,
                       const Common::SharedPtr<Common::Memory::Allocator>& allocator)
    : mMesh(mesh), mAllocator(allocator), mMap(mesh), mRayTracer(*mesh),
      mTransform(Pathfinder::makePlaneTransform(mesh->mXAxis, mesh->mYAxis,
                                                mesh->mNormal.getDominantAxis())) {}

std::int32_t PlainWorld::initPathSearch(const Point3& start, const Point3& goal) {
    const std::int32_t startNode = mMesh->findNode(start);
    const std::int32_t goalNode = startNode != -1 ? mMesh->findNode(goal) : -1;
    if (goalNode == -1)
        return Pathfinder::noSearch;
    std::unique_ptr<Search> search(new Search{{mMesh, mMap, mAllocator}});
    search->mSearch.begin(
        {start, goal, static_cast<std::uint32_t>(startNode), static_cast<std::uint32_t>(goalNode)});
    if (mFreeIds.empty()) {
        mSearches.push_back(std::move(search));
        return static_cast<std::int32_t>(mSearches.size() - 1);
    }
    const std::int32_t id = mFreeIds.back();
    mFreeIds.pop_back();
    mSearches[static_cast<std::size_t>(id)] = std::move(search);
    return id;
}

std::int32_t PlainWorld::runPathSearch(std::int32_t id, std::uint32_t budget) {
    Search& search = searchOf(id);
    if (search.mState == Common::Astar::SEARCH_RUNNING)
        search.mState = search.mSearch.run(budget);
    return search.mState;
}

bool PlainWorld::getNextWaypoint(std::int32_t id, Point3& waypoint) {
    Search& search = searchOf(id);
    if (search.mState != Common::Astar::SEARCH_FOUND)
        return false;
    if (!search.mHasPath)
        search.mCost = search.mSearch.getPath(search.mPath);
    search.mHasPath = true;
    if (search.mNextWaypoint == search.mPath.size())
        return false;
    const std::uint32_t node = search.mPath[search.mNextWaypoint++];
    waypoint = mMesh->getNodeCenter(static_cast<std::int32_t>(node));
    return true;
}

float PlainWorld::getPathCost(std::int32_t id) const {
    return searchOf(id).mCost;
}

bool PlainWorld::closePathSearch(std::int32_t id) {
    mSearches[static_cast<std::size_t>(id)] = nullptr;
    mFreeIds.push_back(id);
    return true;
}

void PlainWorld::traceRay(PlainRayTracer::Ray& ray) {
    PlainRayTracer::Ray inPlane(mTransform * ray.mStart, mTransform * ray.mEnd);
    mRayTracer.traceRay(inPlane);
    ray.mHitDistance = inPlane.mHitDistance;
}

} // namespace ZUNO::Reference
