#include "navmesh/meshsearch.h"

#include <algorithm>

namespace ZUNO::NavMesh {

using namespace Common::Astar;

MeshSearch::MeshSearch(const MeshGraph& graph, BlockPool& pool,
                       const Common::SharedPtr<Common::Memory::Allocator>& allocator)
    : mGraph(graph), mRecords(graph.nodeCount(), pool, allocator), mOpen(allocator),
      mSteps(graph.mostEdges(), allocator), mWaiting(allocator) {}

void MeshSearch::begin(const SearchEnds& ends) {
    end();
    mStart = mGraph.numberOf(ends.mStartNode);
    mGoal = mGraph.numberOf(ends.mGoalNode);
    mStartPos = ends.mStartPos;
    mGoalPos = ends.mGoalPos;
    mVainTotal = mVainExpansions = mGraph.countVainExpansions(mStart, mGoal);
    mIsCounting = mVainTotal != 0;
    if (!mIsCounting)
        open();
}

void MeshSearch::end() {
    mRecords.clear();
    mOpen.clear();
    mIsCounting = false;
}

void MeshSearch::open() {
    mRecords.clear();
    mOpen.clear();
    mOpen.makeRoom(1);
    SearchRecord& record = mRecords.makeRoom(mStart);
    record = SearchRecord(mStart, noEdge, 0.0F, length(mGoalPos - mStartPos));
    mOpen.push(record);
    mVisited = 1;
}

std::int32_t MeshSearch::run(std::uint32_t budget) {
    if (!mIsCounting)
        return search(budget);
    const bool isOver = budget > mVainExpansions;
    mVainExpansions -= std::min(budget, mVainExpansions);
    return isOver ? SEARCH_NO_PATH : SEARCH_RUNNING;
}

std::int32_t MeshSearch::search(std::uint32_t budget) {
    for (; budget != 0; --budget) {
        if (mOpen.isEmpty())
            return SEARCH_NO_PATH;
        const std::uint32_t best = mOpen.best();
        if (best == mGoal)
            return SEARCH_FOUND; // it stays the best: that is where the path is read from
        prepare(best);
        expand(best);
    }
    return SEARCH_RUNNING;
}

/// Looks up what lies behind the node's edges, and takes all memory that its expansion may need.
void MeshSearch::prepare(std::uint32_t node) {
    const auto edges = mGraph.edgesOf(node);
    mOpen.makeRoom(edges.size() + 1);
    const float g = mRecords[node].mG;
    unsigned int savings = 0;
    Step* step = mSteps.data();
    for (const MeshGraph::Edge& edge : edges) {
        SearchRecord& end = mRecords.makeRoom(edge.end());
        *step = {&end, costOf(node, edge)};
        const bool isClosed = end.state() == SearchRecord::CLOSED;
        const bool isCheaper = step->mCost + g < end.mG;
        savings += static_cast<unsigned int>(isClosed) &
                   static_cast<unsigned int>(isCheaper); // no branch that can't be foretold
        ++step;
    }
    if (savings != 0)
        mWaiting.reserve(std::size_t{mVisited} + edges.size());
}

void MeshSearch::expand(std::uint32_t node) {
    mOpen.removeBest();
    SearchRecord& from = mRecords[node];
    const Step* step = mSteps.data();
    for (const MeshGraph::Edge& edge : mGraph.edgesOf(node)) {
        SearchRecord& end = *step->mEnd;
        const float g = step->mCost + from.mG;
        ++step;
        if (end.state() == SearchRecord::UNVISITED) {
            const float h = length(mGoalPos - mGraph.centreOf(edge.end()));
            end = SearchRecord(edge.end(), edge.idFrom(node), g, h);
            mOpen.push(end);
            ++mVisited;
        } else if (g < end.mG) {
            if (end.state() == SearchRecord::CLOSED) {
                passSavingOn(edge.end(), edge.idFrom(node), g);
            } else {
                end.setCheaperPath(edge.idFrom(node), g);
                mOpen.reposition(end);
            }
        }
    }
    from.setState(SearchRecord::CLOSED); // open until here: an edge back to it is harmless
}

float MeshSearch::measure(std::uint32_t node, const MeshGraph::Edge& edge) const {
    const Point a = node == mStart ? mStartPos : mGraph.centreOf(node);
    const Point b = edge.end() == mGoal ? mGoalPos : mGraph.centreOf(edge.end());
    return length(b - a);
}

void MeshSearch::passSavingOn(std::uint32_t node, std::uint32_t parentEdge, float g) {
    mRecords[node].setCheaperPath(parentEdge, g);
    for (pushWaiting(node); !mWaiting.empty();) {
        const std::uint32_t latest = mWaiting.back();
        mWaiting.pop_back();
        for (const MeshGraph::Edge& edge : mGraph.edgesOf(latest)) {
            const float through = mRecords[latest].mG + costOf(latest, edge);
            SearchRecord& end = mRecords[edge.end()];
            if (end.state() == SearchRecord::UNVISITED || !(through < end.mG))
                continue;
            end.setCheaperPath(edge.idFrom(latest), through);
            mOpen.updateCost(end); // an open record keeps its place, whatever it costs now
            pushWaiting(edge.end());
        }
    }
}

/// A node that waits already waits from now on as the latest, and no longer at its former place:
/// had it stayed there too, its cost would not have changed since it had passed its saving on, and
/// there would be nothing left to pass on. So no more nodes wait than were visited, and there is
/// room.
void MeshSearch::pushWaiting(std::uint32_t node) {
    if (const auto former = std::find(mWaiting.begin(), mWaiting.end(), node);
        former != mWaiting.end())
        mWaiting.erase(former);
    mWaiting.push_back(node);
}

float MeshSearch::getPath(NavMeshContainer::Vector<std::uint32_t>& nodes) {
    std::size_t count = 0;
    const auto forEachFromGoal = [&](auto visitor) {
        for (std::uint32_t node = mGoal; mRecords[node].mParentEdge != noEdge;
             node = NavMeshEdge::nodeOf(mRecords[node].mParentEdge))
            visitor(node);
    };
    forEachFromGoal([&](std::uint32_t) { ++count; });
    nodes.resize(count);
    forEachFromGoal([&](std::uint32_t node) { nodes[--count] = node; });
    return mRecords[mGoal].mF;
}

MeshSearch::NodeState MeshSearch::stateOf(std::uint32_t nodeID) {
    stopCounting();
    switch (mRecords[mGraph.numberOf(nodeID)].state()) {
    case SearchRecord::UNVISITED:
        return NODE_UNVISITED;
    case SearchRecord::CLOSED:
        return NODE_CLOSED;
    default:
        return NODE_OPEN;
    }
}

void MeshSearch::stopCounting() {
    if (!mIsCounting)
        return;
    open();
    search(mVainTotal - mVainExpansions);
    mIsCounting = false;
}

} // namespace ZUNO::NavMesh
