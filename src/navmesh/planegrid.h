#pragma once

#include "common/math/rect.h"
#include "navmesh/navmeshcontainer.h"

namespace ZUNO::NavMesh {

/// What the blocking grid over a mesh will be like. A mesh is checked by these figures before the
/// grid is made, which lies above this library and is held to them there.
struct PlaneGrid {
    /// Bytes of one cell.
    static constexpr std::int64_t bytesPerCell = 8;

    Common::Math::Rect mBounds; ///< of all vertices in the plane
    std::int64_t mColumns;      ///< cells of the cube size
    std::int64_t mRows;
};

/// Returns the extent of the grid over a mesh. Cost: one pass over all vertices.
PlaneGrid measurePlane(const NavMeshContainer& mesh);

/// Returns at most how many steps the nodes take when they are marked in the grid: for each row of
/// cells under a node eight for each border, and one for each cell.
double countMarkingSteps(const NavMeshContainer& mesh);

/// What the grid over a mesh may cost, so that no small file makes a large world: all files of up
/// to 1 MB keep to 192 MB of cells and to about a second of marking. Each 32,768 corners more than
/// such a file holds allow as much again, up to what 32 bits can address and to some ten seconds.
struct GridLimits {
    /// Columns, and rows: what a ray may cross in some milliseconds.
    static constexpr std::int64_t mostInARow = 1 << 20;

    std::size_t mCorners; ///< of all nodes, by which the others are given
    std::int64_t mCells;
    double mMarkingSteps;
};

/// Returns the limits for a mesh. Cost: one pass over its nodes.
GridLimits gridLimitsOf(const NavMeshContainer& mesh);

} // namespace ZUNO::NavMesh
