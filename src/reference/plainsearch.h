#pragma once

#include "common/astar/asgoalbase.h"
#include "common/astar/astar.h"
#include "common/astar/astarstoragefast.h"
#include "navmesh/astarnavmesh.h"

#include <memory>
#include <vector>

namespace ZUNO::Reference {

/// One search over a mesh, made of the plain parts alone: `AStar` over `AStarStorageFast` and
/// `AStarMapNavMesh`.
/// Lifetime: `map` must outlive it. Thread: one at a time.
class PlainSearch {
public:
    PlainSearch(const Common::SharedPtr<NavMesh::NavMeshContainer>& mesh,
                NavMesh::AStarMapNavMesh& map,
                const Common::SharedPtr<Common::Memory::Allocator>& allocator);

    /// Begins a new search; what the former one found is gone.
    void begin(const NavMesh::SearchEnds& ends);
    /// Advances by at most `budget` expansions. Returns a SearchResult.
    std::int32_t run(std::uint32_t budget) { return mAStar.runSearch(budget); }

    bool isOpen(std::uint32_t node) { return mStorage.isOpen(node); }
    bool isClosed(std::uint32_t node) { return mStorage.isClosed(node); }

    /// Appends the nodes that the found path enters. Returns its cost.
    float getPath(std::vector<std::uint32_t>& nodes);

private:
    NavMesh::AStarMapNavMesh& mMap;
    std::unique_ptr<NavMesh::NMCostFunc> mCost;
    std::unique_ptr<NavMesh::NMHeuristicFunc> mHeuristic;
    Common::Astar::AStarStorageFast mStorage;
    Common::Astar::ASGoalBase mGoal;
    Common::Astar::AStar mAStar;
};

} // namespace ZUNO::Reference
