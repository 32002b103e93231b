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

    AStarStorage* getStorage() const { return mStorage; }
    AStarGoal* getGoal() const { return mGoal; }
    void setGoal(AStarGoal* goal) { mGoal = goal; }

protected:
    /// The search itself, over whatever types its parts have: a caller that knows them gets code
    /// without virtual calls. `edges.visit(node, f)` calls `f(edge, endNode)` for each edge that
    /// leaves the node, in the map's order.
    template <typename Storage, typename Goal, typename Edges>
    static std::int32_t search(Storage& storage, Goal& goal, Edges& edges, std::uint32_t budget) {
        for (; budget != 0; --budget) {
            AStarNode* const best = storage.popBest();
            if (best == nullptr)
                return SEARCH_NO_PATH;
            if (goal.isGoal(best)) {
                putBack(storage, best); // that is where the path is read from
                return SEARCH_FOUND;
            }
            try {
                expand(storage, goal, edges, best);
            } catch (...) {
                putBack(storage, best);
                throw;
            }
            storage.closeNode(best); // open until here: an edge back to it is harmless
        }
        return SEARCH_RUNNING;
    }

private:
    template <typename Storage, typename Goal, typename Edges>
    static void expand(Storage& storage, Goal& goal, Edges& edges, AStarNode* best) {
        edges.visit(storage.getNodeOfRecord(best), [&](std::uint32_t edge, std::uint32_t end) {
            const float g = goal.getCost(edge) + best->mG;
            if (storage.isOpen(end))
                storage.updateOpen(end, edge, g);
            else if (storage.isClosed(end))
                storage.updateClosed(end, edge, g);
            else
                storage.addOpen(edge, end, g, goal.getHeuristic(end));
        });
    }

    template <typename Storage>
    static void putBack(Storage& storage, AStarNode* best) {
        storage.addOpen(best->mParentEdge, storage.getNodeOfRecord(best), best->mG,
                        best->mF - best->mG);
    }

    AStarStorage* mStorage;
    AStarGoal* mGoal;
    AStarMap* mMap;
    SharedPtr<Memory::Allocator> mAllocator;
    EdgeList mOutEdges;
};

} // namespace ZUNO::Common::Astar
