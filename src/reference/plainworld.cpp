#include "reference/plainworld.h"

#include "common/memory/objectcreation.h"

namespace ZUNO::Reference {

using Common::Memory::createManaged;

PlainWorld::Search::Search(const Common::SharedPtr<NavMesh::NavMeshContainer>& mesh,
                           NavMesh::AStarMapNavMesh* map,
                           const Common::SharedPtr<Common::Memory::Allocator>& allocator)
    : mCostFunc(createManaged<NavMesh::NMCostFunc>(allocator, mesh)),
      mHeuristic(createManaged<NavMesh::NMHeuristicFunc>(allocator, mesh)),
      mStorage(map, allocator), mGoal(mCostFunc.get(), mHeuristic.get(), allocator),
      mAStar(&mStorage, &mGoal, map, allocator), mPath(allocator) {}

PlainWorld::PlainWorld(const Common::SharedPtr<NavMesh::NavMeshContainer>& mesh,
                       const Common::SharedPtr<Common::Memory::Allocator>& allocator)
    : mMesh(mesh), mAllocator(allocator), mMap(mesh), mRayTracer(*mesh),
      mTransform(Pathfinder::makePlaneTransform(mesh->mXAxis, mesh->mYAxis,
                                                mesh->mNormal.getDominantAxis())) {}

std::int32_t PlainWorld::initPathSearch(const Point3& start, const Point3& goal) {
    const std::int32_t startNode = mMesh->findNode(start);
    const std::int32_t goalNode = startNode != -1 ? mMesh->findNode(goal) : -1;
    if (goalNode == -1)
        return -1;
    auto search = std::make_unique<Search>(mMesh, &mMap, mAllocator);
    search->mCostFunc->mEnds = search->mHeuristic->mEnds = {
        start, goal, static_cast<std::uint32_t>(startNode), static_cast<std::uint32_t>(goalNode)};
    search->mGoal.setStartGoal(static_cast<std::uint32_t>(startNode),
                               static_cast<std::uint32_t>(goalNode));
    search->mAStar.initSearch();
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
        search.mState = search.mAStar.runSearch(budget);
    return search.mState;
}

bool PlainWorld::getNextWaypoint(std::int32_t id, Point3& waypoint) {
    Search& search = searchOf(id);
    if (search.mState != Common::Astar::SEARCH_FOUND)
        return false;
    if (!search.mHasPath)
        search.mCost = search.mGoal.getPath(search.mPath);
    search.mHasPath = true;
    if (search.mNextWaypoint == search.mPath.size())
        return false;
    const std::uint32_t end = mMap.getEdgeEndNode(search.mPath[search.mNextWaypoint++]);
    waypoint = mMesh->getNodeCenter(static_cast<std::int32_t>(end));
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
