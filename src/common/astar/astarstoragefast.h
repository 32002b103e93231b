#pragma once

#include "common/astar/astaropenlist.h"
#include "common/astar/astarstorage.h"

#include <cstdint>
#include <memory>

namespace ZUNO::Common::Astar {

/// Keeps records and states in flat arrays indexed by node, taken from the process's general
/// storage and used again by the next search when they are large enough. A new search clears the
/// states alone: two bits per node.
class AStarStorageFast final : public AStarStorage {
public:
    AStarStorageFast(AStarMap* map, const SharedPtr<Memory::Allocator>& allocator)
        : AStarStorage(allocator), mMap(map), mOpenList(allocator), mScratchAllocator(allocator) {}

    AStarNode* popBest() override {
        AStarNode* const best = AStarStorageFast::peekBest();
        if (best != nullptr)
            mOpenList.pop();
        return best;
    }
    AStarNode* peekBest() override { return mOpenList.empty() ? nullptr : mOpenList.top(); }
    void addOpen(std::uint32_t edge, std::uint32_t node, float g, float h) override {
        AStarNode& record = mRecords[node];
        record = {g + h, g, edge};
        mOpenList.push(&record);
        setState(node, OPEN);
    }
    void closeNode(AStarNode* record) override {
        setState(AStarStorageFast::getNodeOfRecord(record), CLOSED);
    }
    void updateClosed(std::uint32_t node, std::uint32_t edge, float g) override {
        if (g < mRecords[node].mG)
            passSavingOn(node, edge, g);
    }
    void updateOpen(std::uint32_t node, std::uint32_t edge, float g) override {
        AStarNode& record = mRecords[node];
        if (!(g < record.mG))
            return;
        setCheaperPath(record, edge, g);
        mOpenList.reposition(&record);
    }
    bool isOpen(std::uint32_t node) override { return (stateOf(node) & 1U) != 0; }
    bool isClosed(std::uint32_t node) override { return (stateOf(node) & 2U) != 0; }
    /// Raises an OutOfMemoryException when the arrays can't be had.
    void initNodes(std::uint32_t nodeCount) override;
    std::uint32_t getNodeOfRecord(AStarNode* record) override {
        return static_cast<std::uint32_t>(record - mRecords.get());
    }
    AStarNode* getRecordOfNode(std::uint32_t node) override {
        return node < mCapacity ? &mRecords[node] : nullptr;
    }
    void reopenBest(AStarNode* record) override {
        mOpenList.pushFront(record);
        setState(AStarStorageFast::getNodeOfRecord(record), OPEN);
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
    static void setCheaperPath(AStarNode& record, std::uint32_t edge, float g) {
        record.mF = record.mF - record.mG + g;
        record.mG = g;
        record.mParentEdge = edge;
    }

    void passSavingOn(std::uint32_t node, std::uint32_t edge, float g);
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
