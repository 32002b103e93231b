// The world's searches.
#include "common/astar/asgoalbase.h"
#include "common/astar/astarstoragefast.h"
#include "common/exceptions/argumentexceptions.h"
#include "pathfinder/navmeshinstance.h"

#include <algorithm>

namespace ZUNO::Pathfinder {

using namespace Common::Astar;
using Common::Memory::createObject;
using Common::Memory::createOwned;
using Common::Memory::destroyObject;

std::int32_t NavMeshInstance::initPathSearch(const Vec3& start, const Vec3& goal) {
    ZUNO_CHECK_AS(mNavMesh != nullptr, "mNavMesh", "there is no mesh to search");
    if (mNavMesh == nullptr)
        return -1;
    const std::int32_t startNode = mNavMesh->findNode(start);
    if (startNode == -1)
        return -1;
    const std::int32_t goalNode = mNavMesh->findNode(goal);
    if (goalNode == -1)
        return -1;
    const NavMesh::SearchEnds ends{start, goal, static_cast<std::uint32_t>(startNode),
                                   static_cast<std::uint32_t>(goalNode)};
    reservePool();
    OwnedAStar aStar = takeAStar(ends);
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
    const std::uint32_t node = mAStarMap->getEdgeEndNode(search->mPath[next]);
    waypoint = mNavMesh->getNodeCenter(static_cast<std::int32_t>(node));
    return true;
}

float NavMeshInstance::getPathCost(std::int32_t id) {
    const PathSearch* const search = mSearches.find(static_cast<std::uint32_t>(id));
    return search != nullptr ? search->mCost : 0.0F;
}

bool NavMeshInstance::closePathSearch(std::int32_t id) {
    if (id < 0 || !mSearches.isValidID(static_cast<std::uint32_t>(id)))
        return false;
    if (AStar* const aStar = mSearches[static_cast<std::uint32_t>(id)].mAStar; aStar != nullptr)
        mAStarPool.push_back(aStar);
    mSearches.remove(static_cast<std::uint32_t>(id));
    return true;
}

NavMeshInstance::OwnedAStar NavMeshInstance::takeAStar(const NavMesh::SearchEnds& ends) {
    if (mAStarPool.empty())
        return makeAStar(ends);
    ASGoalBase* const goal = makeGoal(ends);
    OwnedAStar aStar(mAStarPool.back(), AStarDeleter{this});
    mAStarPool.pop_back();
    destroyGoal(aStar->getGoal());
    aStar->setGoal(goal);
    return aStar;
}

NavMeshInstance::OwnedAStar NavMeshInstance::makeAStar(const NavMesh::SearchEnds& ends) {
    auto storage = createOwned<AStarStorageFast>(mAllocator, mAStarMap, mAllocator);
    ASGoalBase* const goal = makeGoal(ends);
    AStar* aStar = nullptr;
    try {
        aStar = createObject<AStar>(mAllocator, storage.get(), goal, mAStarMap, mAllocator);
    } catch (...) {
        destroyGoal(goal);
        throw;
    }
    storage.release();
    return {aStar, AStarDeleter{this}};
}

void NavMeshInstance::destroyAStar(AStar* aStar) {
    if (aStar == nullptr)
        return;
    destroyGoal(aStar->getGoal());
    destroyObject(mAllocator, aStar->getStorage());
    destroyObject(mAllocator, aStar);
}

ASGoalBase* NavMeshInstance::makeGoal(const NavMesh::SearchEnds& ends) {
    std::unique_ptr<NavMesh::NMHeuristicFunc> heuristic(
        Common::Memory::createManaged<NavMesh::NMHeuristicFunc>(mAllocator, mNavMesh));
    std::unique_ptr<NavMesh::NMCostFunc> cost(
        Common::Memory::createManaged<NavMesh::NMCostFunc>(mAllocator, mNavMesh));
    heuristic->mEnds = ends;
    cost->mEnds = ends;
    auto* const goal =
        createObject<ASGoalBase>(mAllocator, cost.get(), heuristic.get(), mAllocator);
    cost.release();
    heuristic.release();
    goal->setStartGoal(ends.mStartNode, ends.mGoalNode);
    return goal;
}

void NavMeshInstance::destroyGoal(AStarGoal* goal) {
    auto* const base = static_cast<ASGoalBase*>(goal); // every goal here comes from makeGoal
    delete base->getCostFunc();
    delete base->getHeuristicFunc();
    destroyObject(mAllocator, base);
}

void NavMeshInstance::reservePool() {
    const std::size_t searches = mSearches.size() + mAStarPool.size() + 1;
    if (mAStarPool.capacity() < searches)
        mAStarPool.reserve(std::max(searches, 2 * mAStarPool.capacity()));
}

} // namespace ZUNO::Pathfinder
