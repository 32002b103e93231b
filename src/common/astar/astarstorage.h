#pragma once

#include "common/astar/astargoal.h"

namespace ZUNO::Common::Astar {

/// The bookkeeping of a search: a record and a state for each node, and the open list.
/// It does not own the goal. `AStar` works with any implementation of these operations; when one of
/// them throws and has then changed nothing, the search can go on (see `AStar::runSearch`).
class AStarStorage {
public:
    explicit AStarStorage(const SharedPtr<Memory::Allocator>& allocator) : mAllocator(allocator) {}
    virtual ~AStarStorage() = default;
    AStarStorage(const AStarStorage&) = delete;
    AStarStorage& operator=(const AStarStorage&) = delete;

    virtual void setGoal(AStarGoal* goal) { mGoal = goal; }
    /// Takes the best open record out of the open list. Returns null when none is open.
    virtual AStarNode* popBest() = 0;
    /// Returns the best open record, which stays open; null when none is.
    virtual AStarNode* peekBest() = 0;
    /// Writes the node's record and opens it. The record that `popBest` gave last, added again
    /// with its own path before it is closed, goes back unchanged: as the one that `peekBest`
    /// yields, even when other open records cost the same.
    virtual void addOpen(std::uint32_t edge, std::uint32_t node, float g, float h) = 0;
    /// Closes a node that `popBest` gave.
    virtual void closeNode(AStarNode* record) = 0;
    /// A path of cost `g` enters the closed node by `edge`: when it is cheaper than the known one,
    /// the saving goes on to every visited node behind it.
    virtual void updateClosed(std::uint32_t node, std::uint32_t edge, float g) = 0;
    /// The same for an open node, which finds its new place in the open list.
    virtual void updateOpen(std::uint32_t node, std::uint32_t edge, float g) = 0;
    virtual bool isOpen(std::uint32_t node) = 0;
    virtual bool isClosed(std::uint32_t node) = 0;
    /// Forgets the former search and makes room for `nodeCount` nodes.
    virtual void initNodes(std::uint32_t nodeCount) = 0;
    virtual std::uint32_t getNodeOfRecord(AStarNode* record) = 0;
    /// Returns null for a node beyond the room.
    virtual AStarNode* getRecordOfNode(std::uint32_t node) = 0;

protected:
    AStarGoal* mGoal = nullptr;
    SharedPtr<Memory::Allocator> mAllocator;
};

} // namespace ZUNO::Common::Astar
