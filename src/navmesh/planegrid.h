#pragma once

#include "common/math/rect.h"
#include "navmesh/navmeshcontainer.h"

namespace ZUNO::NavMesh {

/// The mesh's extent in its plane, and how many cells of the cube size it takes.
struct PlaneGrid {
    Common::Math::Rect mBounds; ///< of all vertices
    std::int64_t mColumns;
    std::int64_t mRows;
};

PlaneGrid measurePlane(const NavMeshContainer& mesh);

} // namespace ZUNO::NavMesh
