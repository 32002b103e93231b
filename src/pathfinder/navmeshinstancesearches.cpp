// The world's searches.
#include "common/exceptions/argumentexceptions.h"
#include "pathfinder/navmeshinstance.h"

#include <algorithm>

namespace ZUNO::Pathfinder {

using namespace Common::Astar;
using NavMesh::MeshSearch;

std::int32_t NavMeshInstance::initPathSearch(const Vec3& start, const Vec3& goal) {
    if (!ZUNO_CHECK_AS(mNavMesh != nullptr, "mNavMesh", "there is no mesh to search"))
        return noSearch;
    const std::int32_t startNode = mLocator->findNode(start);
    if (startNode == -1)
        return noSearch;
    const std::int32_t goalNode = mLocator->findNode(goal);
    if (goalNode == -1)
        return noSearch;
    reservePool();
    OwnedAStar aStar = takeAStar();
    aStar->begin(
        {start, goal, static_cast<std::uint32_t>(startNode), static_cast<std::uint32_t>(goalNode)});
    PathSearch search(mSearchMemory.mPool);
    search.mAStar = aStar.get();
    const std::uint32_t id = mSearches.insert(search);
    aStar.release(); // the record's from here on
    return static_cast<std::int32_t>(id);
}

bool NavMeshInstance::isOpen(std::int32_t id) const {
    return mSearches.isValidID(static_cast<std::uint32_t>(id)); // a negative id is far too large
}

PathSearch* NavMeshInstance::findSearch(std::int32_t id) {
    return mSearches.find(static_cast<std::uint32_t>(id));
}

std::int32_t NavMeshInstance::runPathSearch(std::int32_t id, std::uint32_t budget) {
    if (!isOpen(id))
        throw new Common::Exceptions::ArgumentException(
            "id", " invalid searchID given to runPathSearch: " + Common::String(int{id}));
    PathSearch& search = *findSearch(id);
    if (search.mState == SEARCH_RUNNING)
        search.mState = search.mAStar->run(budget);
    return search.mState;
}

bool NavMeshInstance::getNextWaypoint(std::int32_t id, Vec3& waypoint) {
    PathSearch* const search = findSearch(id);
    if (search == nullptr || search->mState != SEARCH_FOUND)
        return false;
    if (search->mNextWaypoint == -1) {
        search->mCost = search->mAStar->getPath(search->mPath);
        search->mNextWaypoint = 0;
    }
    const auto next = static_cast<std::size_t>(search->mNextWaypoint);
    if (next >= search->mPath.size())
        return false;
    ++search->mNextWaypoint;
    waypoint = mAStarMap->centreOf(search->mPath[next]);
    return true;
}

float NavMeshInstance::getPathCost(std::int32_t id) {
    const PathSearch* const search = findSearch(id);
    return search != nullptr ? search->mCost : 0.0F;
}

bool NavMeshInstance::closePathSearch(std::int32_t id) {
    if (!isOpen(id))
        return false;
    MeshSearch* const aStar = findSearch(id)->mAStar;
    aStar->end();
    mAStarPool.push_back(aStar); // there is room
    mSearches.remove(static_cast<std::uint32_t>(id));
    return true;
}

MeshSearch* NavMeshInstance::inspectSearch(std::int32_t id) {
    return isOpen(id) ? findSearch(id)->mAStar : nullptr;
}

NavMeshInstance::OwnedAStar NavMeshInstance::takeAStar() {
    if (mAStarPool.empty())
        return {Common::Memory::createObject<MeshSearch>(mAllocator, *mAStarMap, mSearchMemory),
                {this}};
    OwnedAStar aStar(mAStarPool.back(), {this});
    mAStarPool.pop_back();
    return aStar;
}

void NavMeshInstance::reservePool() {
    const std::size_t searches = mSearches.size() + mAStarPool.size() + 1;
    if (mAStarPool.capacity() < searches)
        mAStarPool.reserve(std::max(searches, 2 * mAStarPool.capacity()));
}

void NavMeshInstance::destroySearches() {
    for (; !mAStarPool.empty(); mAStarPool.pop_back())
        Common::Memory::destroyObject(mAllocator, mAStarPool.back());
    for (auto search = mSearches.begin(); search != mSearches.end(); ++search)
        Common::Memory::destroyObject(mAllocator, (*search).mAStar);
    mSearches.clear();
    mSearchMemory.clear();
}

} // namespace ZUNO::Pathfinder
