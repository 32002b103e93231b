#include "reference/plainsearch.h"

#include "common/memory/objectcreation.h"

namespace ZUNO::Reference {

using Common::Memory::createManaged;

PlainSearch::PlainSearch(const Common::SharedPtr<NavMesh::NavMeshContainer>& mesh,
                         NavMesh::AStarMapNavMesh& map,
                         const Common::SharedPtr<Common::Memory::Allocator>& allocator)
    : mMap(map), mCost(createManaged<NavMesh::NMCostFunc>(allocator, mesh)),
      mHeuristic(createManaged<NavMesh::NMHeuristicFunc>(allocator, mesh)),
      mStorage(&map, allocator), mGoal(mCost.get(), mHeuristic.get(), allocator),
      mAStar(&mStorage, &mGoal, &map, allocator) {}

void PlainSearch::begin(const NavMesh::SearchEnds& ends) {
    mCost->mEnds = mHeuristic->mEnds = ends;
    mGoal.setStartGoal(ends.mStartNode, ends.mGoalNode);
    mAStar.initSearch();
}

float PlainSearch::getPath(std::vector<std::uint32_t>& nodes) {
    Common::Astar::EdgeList edges(Common::Memory::processHeap());
    const float cost = mGoal.getPath(edges);
    for (const std::uint32_t edge : edges)
        nodes.push_back(mMap.getEdgeEndNode(edge));
    return cost;
}

} // namespace ZUNO::Reference
