#include "tools/zunobake/bakesettings.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace ZUNO::Tools {

CellSettings::CellSettings(const BakeSettings& settings) {
    constexpr double tallest = 254; // what Recast counts as clearance
    const auto cellsUp = [&](float length) { return std::ceil(length / settings.mCellHeight); };
    for (const Agent& agent : settings.mAgents) {
        if (cellsUp(agent.mHeight) > tallest)
            throw std::runtime_error("agent " + agent.mName +
                                     " is more than 254 cells high: "
                                     "choose a larger --cell-height");
        mAgentHeights.push_back(std::max(static_cast<int>(cellsUp(agent.mHeight)), 3));
    }
    const double radius = std::ceil(settings.mRadius / settings.mCellSize);
    if (radius > settings.mTileSize)
        throw std::runtime_error("the radius is wider than a tile: choose a larger --cell-size "
                                 "or --tile");
    mRadius = static_cast<int>(radius);
    mClimb =
        static_cast<int>(std::min(std::floor(settings.mClimb / settings.mCellHeight), tallest));
    if (mClimb >= mAgentHeights.front())
        throw std::runtime_error("the climb must be lower than every agent");
    // one cell less: cells lie up to one above the ground that they stand for
    mReachBelow = std::max(
        static_cast<int>(std::min(2 * settings.mCellSize / settings.mCellHeight, tallest)) - 1, 0);
    // A node holds what lies a little below its lowest corner. Where floors lie above each other
    // that must not reach the floor below, which is at least an agent's height away.
    mLevel = std::max(mAgentHeights.front() - mReachBelow - 2, mClimb + 1);
}

} // namespace ZUNO::Tools
