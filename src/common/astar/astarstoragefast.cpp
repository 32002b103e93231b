#include "common/astar/astarstoragefast.h"

#include <cstring>
#include <new>

namespace ZUNO::Common::Astar {

namespace {

template <typename T>
std::unique_ptr<T[]> makeArray(std::size_t count) {
    std::unique_ptr<T[]> array(new (std::nothrow) T[count]);
    if (!array)
        Memory::throwOutOfMemory();
    return array;
}

} // namespace

void AStarStorageFast::initNodes(std::uint32_t nodeCount) {
    const std::uint32_t room = nodeCount + 1;
    const std::size_t stateBytes = std::size_t{room} / 4 + 1;
    if (mCapacity < room) {
        mCapacity = 0;
        mStates.reset();
        mRecords.reset();
        mStates = makeArray<std::uint8_t>(stateBytes);
        mRecords = makeArray<AStarNode>(room);
        mCapacity = room;
    }
    std::memset(mStates.get(), 0, stateBytes);
    mOpenList.clear();
    mPopped = nullptr;
}

AStarNode* AStarStorageFast::popBest() {
    mPopped = AStarStorageFast::peekBest();
    if (mPopped != nullptr)
        mOpenList.pop();
    return mPopped;
}

void AStarStorageFast::addOpen(std::uint32_t edge, std::uint32_t node, float g, float h) {
    AStarNode& record = mRecords[node];
    if (&record == mPopped && edge == record.mParentEdge && !(g < record.mG || record.mG < g)) {
        mOpenList.putBack();
        mPopped = nullptr;
        return;
    }
    record = {g + h, g, edge};
    mOpenList.push(&record);
    setState(node, OPEN);
}

void AStarStorageFast::closeNode(AStarNode* record) {
    setState(AStarStorageFast::getNodeOfRecord(record), CLOSED);
    mPopped = nullptr;
}

void AStarStorageFast::updateOpen(std::uint32_t node, std::uint32_t edge, float g) {
    AStarNode& record = mRecords[node];
    if (!(g < record.mG))
        return;
    setCheaperPath(record, edge, g);
    mOpenList.reposition(&record);
}

/// The nodes that a saving has reached: to pass it on from there, the latest first, and to undo it
/// unless it was completed.
class AStarStorageFast::SavingLog {
public:
    SavingLog(AStarNode* records, const SharedPtr<Memory::Allocator>& allocator)
        : mRecords(records), mChanges(allocator), mWaiting(allocator) {}
    ~SavingLog() {
        for (; !mChanges.empty(); mChanges.pop_back())
            mRecords[mChanges.back().mNode] = mChanges.back().mFormer;
    }
    SavingLog(const SavingLog&) = delete;
    SavingLog& operator=(const SavingLog&) = delete;

    void setCheaper(std::uint32_t node, std::uint32_t edge, float g) {
        mWaiting.push_back(node);
        mChanges.push_back({node, mRecords[node]});
        setCheaperPath(mRecords[node], edge, g);
    }
    bool isEmpty() const { return mWaiting.empty(); }
    std::uint32_t takeLatest() {
        const std::uint32_t node = mWaiting.back();
        mWaiting.pop_back();
        return node;
    }
    void complete() { mChanges.clear(); }

private:
    struct Change {
        std::uint32_t mNode;
        AStarNode mFormer;
    };

    AStarNode* mRecords;
    std::vector<Change, Memory::STLAllocator<Change>> mChanges;
    EdgeList mWaiting;
};

void AStarStorageFast::updateClosed(std::uint32_t node, std::uint32_t edge, float g) {
    if (!(g < mRecords[node].mG))
        return;
    EdgeList edges(mScratchAllocator);
    SavingLog log(mRecords.get(), mScratchAllocator);
    for (log.setCheaper(node, edge, g); !log.isEmpty();)
        relax(log.takeLatest(), edges, log);
    log.complete();
}

void AStarStorageFast::relax(std::uint32_t node, EdgeList& edges, SavingLog& log) {
    edges.clear();
    mMap->getOutEdges(edges, node);
    for (const std::uint32_t edge : edges) {
        const std::uint32_t end = mMap->getEdgeEndNode(edge);
        const float g = mRecords[node].mG + mGoal->getCost(edge);
        // an open record keeps its place in the open list, whatever it costs now
        if (stateOf(end) != UNVISITED && g < mRecords[end].mG)
            log.setCheaper(end, edge, g);
    }
}

} // namespace ZUNO::Common::Astar
