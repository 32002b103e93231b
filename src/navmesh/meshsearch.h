#pragma once

#include "navmesh/searchopenlist.h"

namespace ZUNO::NavMesh {

/// The search that a world runs: what `Common::Astar::AStar` finds over the plain map, cost and
/// heuristic functions of the same mesh, in the same steps and with the same bits, by other means.
/// Its graph, its records and its open list say how; its costs come out of the same operations, and
/// only edges that leave the start or enter the goal, where the host's points stand for the
/// centres, are measured during the search.
///
/// When what can be reached from the start is known and the goal is not in it, the plain search
/// expands each of these nodes once and finds no path: such a search only counts.
///
/// Owns nothing of the graph or the memory, which must outlive it. For one thread at a time; any
/// number over one graph, and as many as one likes, of one thread, over one memory.
class MeshSearch {
public:
    /// Throws OutOfMemoryException.
    MeshSearch(const MeshGraph& graph, SearchMemory& memory);

    /// Begins a search, whatever the former one was; `ends` names nodes of the mesh. Throws
    /// OutOfMemoryException, and may then be called again.
    void begin(const SearchEnds& ends);

    /// Expands at most `budget` nodes. Returns a SearchResult; a budget of 0 does nothing and gives
    /// SEARCH_RUNNING. Throws OutOfMemoryException; an expansion happens as a whole or not at all,
    /// and the next call goes on with it.
    std::int32_t run(std::uint32_t budget);

    /// Fills `nodes` with the numbers in the graph of the nodes that the found path enters, up to
    /// the goal, and returns its cost. Throws OutOfMemoryException, and `nodes` is then empty. Only
    /// after SEARCH_FOUND.
    float getPath(BlockPool::Vector<std::uint32_t>& nodes);

    /// Ends the search and gives its records back to the pool. Needs no memory.
    void end();

    /// What a search knows of a node, for those who look on.
    enum NodeState { NODE_UNVISITED, NODE_OPEN, NODE_CLOSED };
    /// Returns the state of a node of the mesh. A search that only counts first makes up for what
    /// it did not do, for which it throws OutOfMemoryException.
    NodeState stateOf(std::uint32_t nodeID);

private:
    using Point = NavMeshContainer::Point3;

    void open();
    std::int32_t search(std::uint32_t budget);
    void stopCounting();
    void expand(std::uint32_t node);
    std::span<const SearchStep> findSteps(std::uint32_t node, float g);
    void take(std::uint32_t node, const SearchStep& step);
    void passSavingOn(std::uint32_t node, std::uint32_t parentEdge, float g);
    void pushWaiting(std::uint32_t node);
    float costOf(std::uint32_t node, const MeshGraph::Edge& edge) const {
        const bool isMeasured = node == mStart || edge.end() == mGoal;
        return isMeasured ? measure(node, edge) : edge.length();
    }
    float measure(std::uint32_t node, const MeshGraph::Edge& edge) const;

    const MeshGraph& mGraph;
    SearchMemory& mMemory;
    SearchRecords mRecords;
    SearchOpenList mOpen;
    std::uint32_t mVisited = 0; ///< nodes that were opened
    std::uint32_t mStart = 0;   ///< as all nodes here: the graph's number
    std::uint32_t mGoal = 0;
    Point mStartPos{0, 0, 0};
    Point mGoalPos{0, 0, 0};
    bool mIsCounting = false;
    std::uint32_t mVainExpansions = 0; ///< of a search that counts: those that are left
    std::uint32_t mVainTotal = 0;
};

} // namespace ZUNO::NavMesh
