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
/// cells under a node one for each border, and one for each cell.
double countMarkingSteps(const NavMeshContainer& mesh);

} // namespace ZUNO::NavMesh
