#pragma once

#include "common/astar/astaropenlist.h"
#include "common/astar/astarstorage.h"

#include <cstdint>
#include <memory>

namespace ZUNO::Common::Astar {

/// Keeps records and states in flat arrays indexed by node, taken from the process's general
/// storage and used again by the next search when they are large enough. A new search clears the
/// states alone: two bits per node. When an operation raises an OutOfMemoryException, all nodes are
/// as they were before it.
class AStarStorageFast final : public AStarStorage {
public:
    AStarStorageFast(AStarMap* map, const SharedPtr<Memory::Allocator>& allocator)
        : AStarStorage(allocator), mMap(map), mOpenList(allocator), mScratchAllocator(allocator) {}

    AStarNode* popBest() override;
    AStarNode* peekBest() override { return mOpenList.empty() ? nullptr : mOpenList.top(); }
    void addOpen(std::uint32_t edge, std::uint32_t node, float g, float h) override;
    void closeNode(AStarNode* record) override;
    void updateClosed(std::uint32_t node, std::uint32_t edge, float g) override;
    void updateOpen(std::uint32_t node, std::uint32_t edge, float g) override;
    bool isOpen(std::uint32_t node) override { return (stateOf(node) & 1U) != 0; }
    bool isClosed(std::uint32_t node) override { return (stateOf(node) & 2U) != 0; }
    /// Throws an OutOfMemoryException when the arrays can't be had; a later call may have them.
    void initNodes(std::uint32_t nodeCount) override;
    std::uint32_t getNodeOfRecord(AStarNode* record) override {
        return static_cast<std::uint32_t>(record - mRecords.get());
    }
    AStarNode* getRecordOfNode(std::uint32_t node) override {
        return node < mCapacity ? &mRecords[node] : nullptr;
    }

private:
    enum State : unsigned int { UNVISITED = 0, OPEN = 1, CLOSED = 2 };

    /// States are packed four to a byte, the lowest node in the lowest bits.
    unsigned int stateOf(std::uint32_t node) const {
        return (mStates[node / 4] >> (node % 4 * 2)) & 3U;
    }
    void setState(std::uint32_t node, State state) {
        const unsigned int shift = node % 4 * 2;
        const unsigned int others = mStates[node / 4] & ~(3U << shift);
        mStates[node / 4] =
            static_cast<std::uint8_t>(others | static_cast<unsigned int>(state) << shift);
    }
    class SavingLog;

    static void setCheaperPath(AStarNode& record, std::uint32_t edge, float g) {
        record.mF = record.mF - record.mG + g;
        record.mG = g;
        record.mParentEdge = edge;
    }
    /// Passes the node's cost on to the visited nodes behind it that become cheaper by it.
    void relax(std::uint32_t node, EdgeList& edges, SavingLog& log);

    std::unique_ptr<std::uint8_t[]> mStates;
    std::uint32_t mCapacity = 0; ///< in nodes
    std::unique_ptr<AStarNode[]> mRecords;
    AStarMap* mMap;
    AStarOpenList mOpenList;
    AStarNode* mPopped = nullptr; ///< what `popBest` gave, until it is closed or put back
    SharedPtr<Memory::Allocator> mScratchAllocator; ///< for the lists that `updateClosed` needs
};

} // namespace ZUNO::Common::Astar
