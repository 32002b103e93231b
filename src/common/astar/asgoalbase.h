#pragma once

#include "common/astar/astargoal.h"
#include "common/astar/searchfunctions.h"

namespace ZUNO::Common::Astar {

/// The goal "reach this one node", with a cost and a heuristic function that stay their maker's.
class ASGoalBase : public AStarGoal {
public:
    ASGoalBase(CostFunc* cost, HeuristicFunc* heuristic,
               const SharedPtr<Memory::Allocator>& allocator)
        : AStarGoal(allocator), mCost(cost), mHeuristic(heuristic) {}

    void setStartGoal(std::uint32_t startNode, std::uint32_t goalNode) {
        mStartNode = startNode;
        mGoalNode = goalNode;
    }

    float getCost(std::uint32_t edge) override { return mCost->getCost(edge); }
    float getHeuristic(std::uint32_t node) override {
        return mHeuristic->estimate(node, mGoalNode);
    }
    bool isGoal(AStarNode* record) override;
    float getPath(EdgeList& edges) override;
    std::uint32_t getStartNode() override { return mStartNode; }
    std::uint32_t getGoalNode() override { return mGoalNode; }

private:
    std::uint32_t mStartNode = noNode;
    std::uint32_t mGoalNode = noNode;
    CostFunc* mCost;
    HeuristicFunc* mHeuristic;
};

} // namespace ZUNO::Common::Astar
