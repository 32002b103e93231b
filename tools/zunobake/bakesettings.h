#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ZUNO::Tools {

/// Someone who walks on the mesh. Lengths are in units of the scene.
struct Agent {
    std::string mName;
    float mHeight = 2;
    float mJump = 0;
    float mFall = 0;
};

/// How a mesh is made of a scene. Lengths are in units of the scene, areas in cells.
struct BakeSettings {
    double mCellSize = 0.25; ///< doubles, to keep decimal numbers as they are given
    double mCellHeight = 0.125;
    float mRadius = 0.5F; ///< of every agent
    float mClimb = 0.5F;  ///< the highest step
    float mSlope = 45;    ///< the steepest ground, in degrees
    std::vector<Agent> mAgents;
    int mMinRegion = 64;       ///< islands of fewer cells are left out
    int mMergeRegion = 400;    ///< regions of fewer cells are joined with others
    int mCorners = 6;          ///< of a polygon as it is made
    int mTileSize = 128;       ///< cells along the side of a tile, which is made in one go
    float mHeightError = 0.4F; ///< how far a node's surface may be off the ground
    float mMaxError = 1.1F; ///< how far borders may run beside the cells that they bound, in cells
    std::uint64_t mMaxCells = 8'000'000;
};

/// The settings in whole cells, as the tiles are made with them: heights and the radius are rounded
/// up, the climb down.
struct CellSettings {
    /// Raises a std::runtime_error for settings that can't be worked with, which says why.
    explicit CellSettings(const BakeSettings& settings);

    /// The clearance that Recast must have counted for an agent. It counts up to two cells less
    /// than there are, since both floor and ceiling are rounded, and a cell less where both are
    /// whole cells: so who fits in whole cells always passes, and who is a cell too tall never.
    int clearanceOf(std::size_t agent) const { return mAgentHeights[agent] - 1; }

    int mRadius;
    int mClimb;
    int mReachBelow; ///< how far below a node's plane one still stands on it
    int mLevel;      ///< how much height a node's ground may span where floors lie above each other
    double mHeightError;            ///< how far a node's surface may be off the ground
    std::vector<int> mAgentHeights; ///< from the lowest to the highest, as the settings have them
};

} // namespace ZUNO::Tools
