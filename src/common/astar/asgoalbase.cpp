#include "common/astar/asgoalbase.h"

#include "common/astar/astarstorage.h"

#include <algorithm>

namespace ZUNO::Common::Astar {

bool ASGoalBase::isGoal(AStarNode* record) {
    return mStorage->getNodeOfRecord(record) == mGoalNode;
}

float ASGoalBase::getPath(EdgeList& edges) {
    const AStarNode* record = mStorage->peekBest();
    const float cost = record->mF;
    while (record->mParentEdge != noEdge) {
        edges.push_back(record->mParentEdge);
        record = mStorage->getRecordOfNode(mMap->getEdgeStartNode(record->mParentEdge));
    }
    std::reverse(edges.begin(), edges.end());
    return cost;
}

} // namespace ZUNO::Common::Astar
