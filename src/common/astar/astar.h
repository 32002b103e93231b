#pragma once

#include "common/astar/astarstorage.h"

namespace ZUNO::Common::Astar {

/// An A* search that runs in slices. It owns none of its parts, and can search again and again
/// with them: set a goal, `initSearch`, `runSearch` until it is found or can't be. How a search is
/// sliced does not change its result. One thread at a time; several searches may share one map.
class AStar {
public:
    AStar(AStarStorage* storage, AStarGoal* goal, AStarMap* map,
          const SharedPtr<Memory::Allocator>& allocator)
        : mStorage(storage), mGoal(goal), mMap(map), mAllocator(allocator), mOutEdges(allocator) {}
    virtual ~AStar() = default;
    AStar(const AStar&) = delete;
    AStar& operator=(const AStar&) = delete;

    /// Begins a new search from the goal's start node.
    virtual void initSearch();

    /// Expands at most `budget` nodes. Returns a SearchResult; a budget of 0 does nothing and gives
    /// SEARCH_RUNNING. When a part of the search throws in the middle of an expansion, the node
    /// stays the best open one, and the next call expands it anew: costs that are not negative make
    /// no second difference to the edges that were looked at already.
    virtual std::int32_t runSearch(std::uint32_t budget);

    void setGoal(AStarGoal* goal) { mGoal = goal; }

private:
    void expand(AStarNode* best);
    void putBack(AStarNode* best);

    AStarStorage* mStorage;
    AStarGoal* mGoal;
    AStarMap* mMap;
    SharedPtr<Memory::Allocator> mAllocator;
    EdgeList mOutEdges;
};

} // namespace ZUNO::Common::Astar
