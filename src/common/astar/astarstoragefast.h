#pragma once

#include "common/astar/astaropenlist.h"
#include "common/astar/astarstorage.h"

#include <cstdint>
#include <memory>

namespace ZUNO::Common::Astar {

/// Keeps records and states in flat arrays indexed by node, taken from the process's general
/// storage and used again by the next search when they are large enough. A new search clears the
/// states alone: two bits per node.
class AStarStorageFast : public AStarStorage {
public:
    AStarStorageFast(AStarMap* map, const SharedPtr<Memory::Allocator>& allocator)
        : AStarStorage(allocator), mMap(map), mOpenList(allocator), mScratchAllocator(allocator) {}

    AStarNode* popBest() override;
    AStarNode* peekBest() override;
    void addOpen(std::uint32_t edge, std::uint32_t node, float g, float h) override;
    void closeNode(AStarNode* record) override;
    void updateClosed(std::uint32_t node, std::uint32_t edge, float g) override;
    void updateOpen(std::uint32_t node, std::uint32_t edge, float g) override;
    bool isOpen(std::uint32_t node) override { return (stateOf(node) & 1U) != 0; }
    bool isClosed(std::uint32_t node) override { return (stateOf(node) & 2U) != 0; }
    /// Raises an OutOfMemoryException when the arrays can't be had.
    void initNodes(std::uint32_t nodeCount) override;
    std::uint32_t getNodeOfRecord(AStarNode* record) override;
    AStarNode* getRecordOfNode(std::uint32_t node) override;
    void reopenBest(AStarNode* record) override;

private:
    enum State : unsigned int { UNVISITED = 0, OPEN = 1, CLOSED = 2 };

    /// States are packed four to a byte, the lowest node in the lowest bits.
    unsigned int stateOf(std::uint32_t node) const {
        return (mStates[node / 4] >> (node % 4 * 2)) & 3U;
    }
    void setState(std::uint32_t node, State state);

    /// Passes the record's cost on to the visited nodes behind it that become cheaper by it, and
    /// appends those nodes to `work`.
    void relax(std::uint32_t node, EdgeList& edges, EdgeList& work);

    std::unique_ptr<std::uint8_t[]> mStates;
    std::uint32_t mCapacity = 0; ///< in nodes
    std::unique_ptr<AStarNode[]> mRecords;
    AStarMap* mMap;
    AStarOpenList mOpenList;
    SharedPtr<Memory::Allocator> mScratchAllocator; ///< for the lists that `updateClosed` needs
};

} // namespace ZUNO::Common::Astar
