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
}

void AStarStorageFast::passSavingOn(std::uint32_t node, std::uint32_t edge, float g) {
    setCheaperPath(mRecords[node], edge, g);
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

} // namespace ZUNO::Common::Astar
