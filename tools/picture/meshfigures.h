#pragma once

#include "navmesh/navmeshcontainer.h"

#include <vector>

namespace ZUNO::Tools {

/// Returns for each node the number of its island: the nodes that are connected by neighbours, in
/// whichever direction. Islands are numbered by size, the largest first.
std::vector<unsigned int> findIslands(const NavMesh::NavMeshContainer& mesh);

/// What is counted of a mesh.
struct MeshCounts {
    std::size_t mBorders = 0;
    std::size_t mLinks = 0;                ///< borders with a neighbour
    std::vector<std::size_t> mIslandSizes; ///< in nodes, the largest first
};
MeshCounts countMesh(const NavMesh::NavMeshContainer& mesh);

/// Returns the host's position over a point of the mesh's plane: the point in the world without its
/// up component.
Common::Math::Vec2<float> positionAt(const NavMesh::NavMeshContainer& mesh,
                                     const Common::Math::Vec2<float>& point);

} // namespace ZUNO::Tools
