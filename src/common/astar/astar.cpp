#include "common/astar/astar.h"

namespace ZUNO::Common::Astar {

void AStar::initSearch() {
    mStorage->initNodes(mMap->getNodeCount());
    mGoal->setStorage(mStorage);
    mGoal->setMap(mMap);
    mStorage->setGoal(mGoal);
    const std::uint32_t start = mGoal->getStartNode();
    mStorage->addOpen(noEdge, start, 0.0F, mGoal->getHeuristic(start));
}

std::int32_t AStar::runSearch(std::uint32_t budget) {
    for (; budget != 0; --budget) {
        AStarNode* const best = mStorage->popBest();
        if (best == nullptr)
            return SEARCH_NO_PATH;
        if (mGoal->isGoal(best)) {
            putBack(best); // that is where the path is read from
            return SEARCH_FOUND;
        }
        try {
            expand(best);
        } catch (...) {
            putBack(best);
            throw;
        }
        mStorage->closeNode(best); // open until here: an edge back to it is harmless
    }
    return SEARCH_RUNNING;
}

void AStar::expand(AStarNode* best) {
    mOutEdges.clear();
    mMap->getOutEdges(mOutEdges, mStorage->getNodeOfRecord(best));
    for (const std::uint32_t edge : mOutEdges) {
        const std::uint32_t end = mMap->getEdgeEndNode(edge);
        const float g = mGoal->getCost(edge) + best->mG;
        if (mStorage->isOpen(end))
            mStorage->updateOpen(end, edge, g);
        else if (mStorage->isClosed(end))
            mStorage->updateClosed(end, edge, g);
        else
            mStorage->addOpen(edge, end, g, mGoal->getHeuristic(end));
    }
}

void AStar::putBack(AStarNode* best) {
    mStorage->addOpen(best->mParentEdge, mStorage->getNodeOfRecord(best), best->mG,
                      best->mF - best->mG);
}

} // namespace ZUNO::Common::Astar
