#include "navmesh/meshsearch.h"

#include <algorithm>

namespace ZUNO::NavMesh {

using namespace Common::Astar;

MeshSearch::MeshSearch(const MeshGraph& graph, SearchMemory& memory)
    : mGraph(graph), mMemory(memory), mRecords(graph.nodeCount(), memory.mPool),
      mOpen(memory, mRecords) {
    if (memory.mSteps.size() < graph.mostEdges())
        memory.mSteps.resize(graph.mostEdges());
}

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
    record = {0.0F + length(mGoalPos - mStartPos), 0.0F, noEdge, SearchRecord::OPEN};
    mOpen.push({record.mF, mStart});
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
        expand(best);
    }
    return SEARCH_RUNNING;
}

void MeshSearch::expand(std::uint32_t node) {
    SearchRecord& from = mRecords[node];
    const std::span<const SearchStep> steps = findSteps(node, from.mG);
    mOpen.removeBest(); // from here on nothing can fail
    for (const SearchStep& step : steps)
        take(node, step);
    from.mState = SearchRecord::CLOSED; // open until here: an edge back to it is harmless
}

/// Looks up what lies behind the node's edges, lists those that lead to an unvisited node or are a
/// cheaper way to a visited one, and takes all memory that the expansion may need.
std::span<const SearchStep> MeshSearch::findSteps(std::uint32_t node, float g) {
    const std::span<const MeshGraph::Edge> edges = mGraph.edgesOf(node);
    SearchStep* const begin = mMemory.mSteps.data();
    SearchStep* end = begin;
    for (const MeshGraph::Edge& edge : edges) {
        SearchRecord& record = mRecords.makeRoom(edge.end());
        mGraph.prefetchCentre(edge.end());
        const float through = costOf(node, edge) + g;
        *end = {&edge, &record, through};
        end += through >= record.mG ? 0 : 1; // no branch: it could not be foretold
    }
    mOpen.makeRoom(edges.size());
    for (const SearchStep* step = begin; step != end; ++step)
        if (step->mEnd->mState == SearchRecord::CLOSED)
            mMemory.mWaiting.reserve(std::size_t{mVisited} + edges.size());
    return {begin, end};
}

inline void MeshSearch::take(std::uint32_t node, const SearchStep& step) {
    SearchRecord& end = *step.mEnd;
    const std::uint32_t number = step.mEdge->end();
    const std::uint32_t edge = step.mEdge->idFrom(node);
    if (end.mState == SearchRecord::UNVISITED) {
        const float h = length(mGoalPos - mGraph.centreOf(number));
        end = {step.mG + h, step.mG, edge, SearchRecord::OPEN};
        mOpen.push({end.mF, number});
        ++mVisited;
    } else if (step.mG < end.mG) { // still: a former step may have lowered it
        if (end.mState == SearchRecord::CLOSED) {
            passSavingOn(number, edge, step.mG);
        } else {
            end.setCheaperPath(edge, step.mG);
            mOpen.reposition({end.mF, number});
        }
    }
}

float MeshSearch::measure(std::uint32_t node, const MeshGraph::Edge& edge) const {
    const Point a = node == mStart ? mStartPos : mGraph.centreOf(node);
    const Point b = edge.end() == mGoal ? mGoalPos : mGraph.centreOf(edge.end());
    return length(b - a);
}

void MeshSearch::passSavingOn(std::uint32_t node, std::uint32_t parentEdge, float g) {
    mRecords[node].setCheaperPath(parentEdge, g);
    for (pushWaiting(node); !mMemory.mWaiting.empty();) {
        const std::uint32_t latest = mMemory.mWaiting.back();
        mMemory.mWaiting.pop_back();
        for (const MeshGraph::Edge& edge : mGraph.edgesOf(latest)) {
            const float through = mRecords[latest].mG + costOf(latest, edge);
            SearchRecord& end = mRecords[edge.end()];
            if (end.mState == SearchRecord::UNVISITED || !(through < end.mG))
                continue;
            end.setCheaperPath(edge.idFrom(latest), through);
            if (end.mState >= SearchRecord::OPEN) // it keeps its place, whatever it costs now
                mOpen.updateCost({end.mF, edge.end()});
            pushWaiting(edge.end());
        }
    }
}

/// A node that waits already waits from now on as the latest, and no longer at its former place:
/// had it stayed there too, its cost would not have changed since it had passed its saving on, and
/// there would be nothing left to pass on. So no more nodes wait than were visited, and there is
/// room.
void MeshSearch::pushWaiting(std::uint32_t node) {
    auto& waiting = mMemory.mWaiting;
    if (const auto former = std::find(waiting.begin(), waiting.end(), node);
        former != waiting.end())
        waiting.erase(former);
    waiting.push_back(node);
}

float MeshSearch::getPath(BlockPool::Vector<std::uint32_t>& nodes) {
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
    switch (mRecords[mGraph.numberOf(nodeID)].mState) {
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
