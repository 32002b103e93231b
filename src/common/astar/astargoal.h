#pragma once

#include "common/astar/astarmap.h"
#include "common/astar/astarnode.h"

namespace ZUNO::Common::Astar {

class AStarStorage;

/// What a search starts from, looks for and pays, and how its path is read afterwards.
/// It owns neither the storage nor the map.
class AStarGoal {
public:
    explicit AStarGoal(const SharedPtr<Memory::Allocator>& allocator) : mAllocator(allocator) {}
    virtual ~AStarGoal() = default;
    AStarGoal(const AStarGoal&) = delete;
    AStarGoal& operator=(const AStarGoal&) = delete;

    virtual void setStorage(AStarStorage* storage) { mStorage = storage; }
    virtual void setMap(AStarMap* map) { mMap = map; }
    virtual float getCost(std::uint32_t edge) = 0;
    virtual float getHeuristic(std::uint32_t node) = 0;
    virtual bool isGoal(AStarNode* record) = 0;
    /// Appends the found path's edges from the start to the goal and returns its cost.
    /// Only after `runSearch` returned SEARCH_FOUND.
    virtual float getPath(EdgeList& edges) = 0;
    virtual std::uint32_t getStartNode() = 0;
    virtual std::uint32_t getGoalNode() = 0;

protected:
    AStarStorage* mStorage = nullptr;
    AStarMap* mMap = nullptr;
    SharedPtr<Memory::Allocator> mAllocator;
};

} // namespace ZUNO::Common::Astar
