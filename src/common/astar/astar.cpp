#include "common/astar/astar.h"

namespace ZUNO::Common::Astar {

namespace {

/// The edges of any map.
struct Edges {
    AStarMap& mMap;
    EdgeList& mList;

    template <typename Visitor>
    void visit(std::uint32_t node, Visitor visitor) {
        mList.clear();
        mMap.getOutEdges(mList, node);
        for (const std::uint32_t edge : mList)
            visitor(edge, mMap.getEdgeEndNode(edge));
    }
};

} // namespace

void AStar::initSearch() {
    mStorage->initNodes(mMap->getNodeCount());
    mGoal->setStorage(mStorage);
    mGoal->setMap(mMap);
    mStorage->setGoal(mGoal);
    const std::uint32_t start = mGoal->getStartNode();
    mStorage->addOpen(noEdge, start, 0.0F, mGoal->getHeuristic(start));
}

std::int32_t AStar::runSearch(std::uint32_t budget) {
    Edges edges{*mMap, mOutEdges};
    return search(*mStorage, *mGoal, edges, budget);
}

} // namespace ZUNO::Common::Astar
