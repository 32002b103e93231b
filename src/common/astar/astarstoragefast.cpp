#include "common/astar/astarstoragefast.h"

#include <cstring>
#include <new>

namespace ZUNO::Common::Astar {

namespace {

void setCheaperPath(AStarNode& record, std::uint32_t edge, float g) {
    record.mF = record.mF - record.mG + g;
    record.mG = g;
    record.mParentEdge = edge;
}

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
}

AStarNode* AStarStorageFast::popBest() {
    AStarNode* const best = peekBest();
    if (best != nullptr)
        mOpenList.pop();
    return best;
}

AStarNode* AStarStorageFast::peekBest() {
    return mOpenList.empty() ? nullptr : mOpenList.top();
}

void AStarStorageFast::addOpen(std::uint32_t edge, std::uint32_t node, float g, float h) {
    AStarNode& record = mRecords[node];
    record = {g + h, g, edge};
    mOpenList.push(&record);
    setState(node, OPEN);
}

void AStarStorageFast::closeNode(AStarNode* record) {
    setState(getNodeOfRecord(record), CLOSED);
}

void AStarStorageFast::reopenBest(AStarNode* record) {
    mOpenList.pushFront(record);
    setState(getNodeOfRecord(record), OPEN);
}

void AStarStorageFast::updateOpen(std::uint32_t node, std::uint32_t edge, float g) {
    AStarNode& record = mRecords[node];
    if (!(g < record.mG))
        return;
    setCheaperPath(record, edge, g);
    mOpenList.reposition(&record);
}

void AStarStorageFast::updateClosed(std::uint32_t node, std::uint32_t edge, float g) {
    AStarNode& record = mRecords[node];
    if (!(g < record.mG))
        return;
    setCheaperPath(record, edge, g);
    EdgeList edges(mScratchAllocator);
    EdgeList work(mScratchAllocator);
    relax(node, edges, work);
    while (!work.empty()) {
        const std::uint32_t next = work.back();
        work.pop_back();
        relax(next, edges, work);
    }
}

void AStarStorageFast::relax(std::uint32_t node, EdgeList& edges, EdgeList& work) {
    edges.clear();
    mMap->getOutEdges(edges, node);
    for (const std::uint32_t edge : edges) {
        const std::uint32_t end = mMap->getEdgeEndNode(edge);
        AStarNode& record = mRecords[end];
        const float g = mRecords[node].mG + mGoal->getCost(edge);
        // an open record keeps its place in the open list, whatever it costs now
        if (stateOf(end) == UNVISITED || !(g < record.mG))
            continue;
        setCheaperPath(record, edge, g);
        work.push_back(end);
    }
}

std::uint32_t AStarStorageFast::getNodeOfRecord(AStarNode* record) {
    return static_cast<std::uint32_t>(record - mRecords.get());
}

AStarNode* AStarStorageFast::getRecordOfNode(std::uint32_t node) {
    return node < mCapacity ? &mRecords[node] : nullptr;
}

void AStarStorageFast::setState(std::uint32_t node, State state) {
    const unsigned int shift = node % 4 * 2;
    const unsigned int others = mStates[node / 4] & ~(3U << shift);
    mStates[node / 4] =
        static_cast<std::uint8_t>(others | static_cast<unsigned int>(state) << shift);
}

} // namespace ZUNO::Common::Astar
