#include "tools/zunobake/bakesettings.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace ZUNO::Tools {

namespace {

/// A length in cells. What a number misses a whole one by for being a float is not a part of a
/// cell: 0.6 is three cells of 0.2.
double cellsIn(float length, double side) {
    const double cells = length / side;
    const double whole = std::round(cells);
    return std::abs(cells - whole) <= whole * 1e-6 ? whole : cells;
}

} // namespace

CellSettings::CellSettings(const BakeSettings& settings) {
    constexpr double tallest = 254; // what Recast counts as clearance
    for (const Agent& agent : settings.mAgents) {
        const double height = std::ceil(cellsIn(agent.mHeight, settings.mCellHeight));
        if (height > tallest)
            throw std::runtime_error("agent " + agent.mName +
                                     " is more than 254 cells high: "
                                     "choose a larger --cell-height");
        mAgentHeights.push_back(std::max(static_cast<int>(height), 3));
    }
    const double radius = std::ceil(cellsIn(settings.mRadius, settings.mCellSize));
    if (radius > settings.mTileSize)
        throw std::runtime_error("the radius is wider than a tile: choose a larger --cell-size "
                                 "or --tile");
    mRadius = static_cast<int>(radius);
    mClimb = static_cast<int>(
        std::min(std::floor(cellsIn(settings.mClimb, settings.mCellHeight)), tallest));
    if (mClimb >= mAgentHeights.front())
        throw std::runtime_error("the climb must be lower than every agent");
    // one cell less: cells lie up to one above the ground that they stand for
    mReachBelow = std::max(
        static_cast<int>(std::min(2 * settings.mCellSize / settings.mCellHeight, tallest)) - 1, 0);
    // A node holds what lies a little below its lowest corner. Where floors lie above each other
    // that must not reach the floor below, which is at least an agent's height away.
    mLevel = std::max(mAgentHeights.front() - mReachBelow - 2, mClimb + 1);
    // where there is a step the surface runs half way between what lies above and below
    mHeightError = std::max(settings.mHeightError / settings.mCellHeight, mClimb / 2.0 + 0.5);
}

} // namespace ZUNO::Tools
