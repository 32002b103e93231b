/// The search over a mesh with all its parts known: what a world runs.
#pragma once

#include "common/astar/asgoalbase.h"
#include "common/astar/astar.h"
#include "common/astar/astarstoragefast.h"
#include "navmesh/meshgraph.h"

namespace ZUNO::NavMesh {

/// The goal of `NMCostFunc` and `NMHeuristicFunc` over a graph that knows the lengths. Only the
/// edges that leave the start or enter the goal, where the host's points stand for the centres,
/// are measured anew.
class MeshGoal final : public Common::Astar::ASGoalBase {
public:
    MeshGoal(const MeshGraph& graph, const Common::SharedPtr<Common::Memory::Allocator>& allocator)
        : ASGoalBase(nullptr, nullptr, allocator), mGraph(graph) {}

    void setEnds(const SearchEnds& ends) {
        mEnds = ends;
        setStartGoal(ends.mStartNode, ends.mGoalNode);
    }

    float getCost(std::uint32_t edge) override {
        const std::uint32_t from = NavMeshEdge::nodeOf(edge);
        const std::uint32_t to = mGraph.endOf(edge);
        if (from != mEnds.mStartNode && to != mEnds.mGoalNode)
            return mGraph.lengthOf(edge);
        return distance(from, to);
    }
    float getHeuristic(std::uint32_t node) override { return distance(node, mEnds.mGoalNode); }

private:
    /// As `SearchEnds::distance`.
    float distance(std::uint32_t from, std::uint32_t to) const {
        const auto& a = from == mEnds.mStartNode ? mEnds.mStartPos : mGraph.centreOf(from);
        const auto& b = to == mEnds.mGoalNode ? mEnds.mGoalPos : mGraph.centreOf(to);
        return length(b - a);
    }

    const MeshGraph& mGraph;
    SearchEnds mEnds;
};

/// An A* search whose parts the compiler sees. It finds what `AStar` finds over the plain map and
/// functions of the same mesh, in the same steps. Owns nothing; serves one search after the other.
class MeshAStar final : public Common::Astar::AStar {
public:
    MeshAStar(Common::Astar::AStarStorageFast* storage, MeshGoal* goal, MeshGraph* graph,
              const Common::SharedPtr<Common::Memory::Allocator>& allocator)
        : AStar(storage, goal, graph, allocator), mFastStorage(*storage), mMeshGoal(*goal),
          mGraph(*graph) {}

    std::int32_t runSearch(std::uint32_t budget) override {
        return search(mFastStorage, mMeshGoal, mGraph, budget);
    }

    /// Sets what the next `initSearch` begins with.
    void setEnds(const SearchEnds& ends) { mMeshGoal.setEnds(ends); }

private:
    Common::Astar::AStarStorageFast& mFastStorage;
    MeshGoal& mMeshGoal;
    const MeshGraph& mGraph;
};

} // namespace ZUNO::NavMesh
