// The world's searches.
#include "common/exceptions/argumentexceptions.h"
#include "pathfinder/navmeshinstance.h"

#include <algorithm>

namespace ZUNO::Pathfinder {

using namespace Common::Astar;
using Common::Memory::createObject;
using Common::Memory::createOwned;
using Common::Memory::destroyObject;

std::int32_t NavMeshInstance::initPathSearch(const Vec3& start, const Vec3& goal) {
    if (!ZUNO_CHECK_AS(mNavMesh != nullptr, "mNavMesh", "there is no mesh to search"))
        return -1;
    const std::int32_t startNode = mLocator->findNode(start);
    if (startNode == -1)
        return -1;
    const std::int32_t goalNode = mLocator->findNode(goal);
    if (goalNode == -1)
        return -1;
    const NavMesh::SearchEnds ends{start, goal, static_cast<std::uint32_t>(startNode),
                                   static_cast<std::uint32_t>(goalNode)};
    reservePool();
    OwnedAStar aStar = takeAStar();
    aStar->setEnds(ends);
    aStar->initSearch();
    PathSearch search(mAllocator);
    search.mAStar = aStar.get();
    const std::uint32_t id = mSearches.insert(search);
    aStar.release(); // the record's from here on
    return static_cast<std::int32_t>(id);
}

std::int32_t NavMeshInstance::runPathSearch(std::int32_t id, std::uint32_t budget) {
    if (!mSearches.isValidID(static_cast<std::uint32_t>(id)))
        throw new Common::Exceptions::ArgumentException(
            "id", " invalid searchID given to runPathSearch: " + Common::String(int{id}));
    PathSearch& search = mSearches[static_cast<std::uint32_t>(id)];
    if (search.mState == SEARCH_RUNNING)
        search.mState = search.mAStar->runSearch(budget);
    return search.mState;
}

bool NavMeshInstance::getNextWaypoint(std::int32_t id, Vec3& waypoint) {
    PathSearch* const search = mSearches.find(static_cast<std::uint32_t>(id));
    if (search == nullptr || search->mState != SEARCH_FOUND)
        return false;
    if (search->mNextWaypoint == -1) {
        search->mPath.clear(); // an earlier attempt may have run out of memory on the way
        search->mCost = search->mAStar->getGoal()->getPath(search->mPath);
        search->mNextWaypoint = 0;
    }
    const auto next = static_cast<std::size_t>(search->mNextWaypoint);
    if (next >= search->mPath.size())
        return false;
    ++search->mNextWaypoint;
    waypoint = mAStarMap->centreOf(mAStarMap->endOf(search->mPath[next]));
    return true;
}

float NavMeshInstance::getPathCost(std::int32_t id) {
    const PathSearch* const search = mSearches.find(static_cast<std::uint32_t>(id));
    return search != nullptr ? search->mCost : 0.0F;
}

Common::Astar::AStarStorage* NavMeshInstance::findSearchStorage(std::int32_t id) {
    const auto slot = static_cast<std::uint32_t>(id);
    return id >= 0 && mSearches.isValidID(slot) ? mSearches[slot].mAStar->getStorage() : nullptr;
}

bool NavMeshInstance::closePathSearch(std::int32_t id) {
    if (id < 0 || !mSearches.isValidID(static_cast<std::uint32_t>(id)))
        return false;
    if (AStar* const aStar = mSearches[static_cast<std::uint32_t>(id)].mAStar; aStar != nullptr)
        mAStarPool.push_back(aStar);
    mSearches.remove(static_cast<std::uint32_t>(id));
    return true;
}

NavMeshInstance::OwnedAStar NavMeshInstance::takeAStar() {
    if (!mAStarPool.empty()) {
        OwnedAStar aStar(mAStarPool.back(), AStarDeleter{this});
        mAStarPool.pop_back();
        return aStar;
    }
    auto storage = createOwned<AStarStorageFast>(mAllocator, mAStarMap, mAllocator);
    auto goal = createOwned<NavMesh::MeshGoal>(mAllocator, *mAStarMap, mAllocator);
    AStar* const aStar =
        createObject<AStar>(mAllocator, storage.get(), goal.get(), mAStarMap, mAllocator);
    storage.release();
    goal.release();
    return {aStar, AStarDeleter{this}};
}

void NavMeshInstance::destroyAStar(AStar* aStar) {
    if (aStar == nullptr)
        return;
    destroyObject(mAllocator, aStar->getGoal());
    destroyObject(mAllocator, aStar->getStorage());
    destroyObject(mAllocator, aStar);
}

void NavMeshInstance::reservePool() {
    const std::size_t searches = mSearches.size() + mAStarPool.size() + 1;
    if (mAStarPool.capacity() < searches)
        mAStarPool.reserve(std::max(searches, 2 * mAStarPool.capacity()));
}

} // namespace ZUNO::Pathfinder
