#pragma once

#include "navmesh/meshsearch.h"

namespace ZUNO::Pathfinder {

/// One open search. Its A* object belongs to the world.
struct PathSearch {
    explicit PathSearch(NavMesh::BlockPool& pool) : mPath(pool) {}

    NavMesh::MeshSearch* mAStar = nullptr;
    /// The nodes that the path enters, by the graph's numbers; filled for the first waypoint.
    NavMesh::BlockPool::Vector<std::uint32_t> mPath;
    std::int32_t mNextWaypoint = -1; ///< the next node to deliver; -1: no path read yet
    float mCost = 0;                 ///< 0 until the path is read
    std::int32_t mState = Common::Astar::SEARCH_RUNNING; ///< the last SearchResult
};

} // namespace ZUNO::Pathfinder
