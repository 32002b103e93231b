#pragma once

#include "navmesh/navmeshcontainer.h"

#include <functional>
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

/// What neighbours connect.
struct MeshPart {
    std::size_t mNodes = 0;
    double mArea = 0;                          ///< in the plane
    std::int32_t mLargestNode = -1;            ///< by area
    Common::Math::Vec3<float> mPlace{0, 0, 0}; ///< the centre of that node
};
/// Returns the parts of a mesh without defects, by the numbers of `islands`.
std::vector<MeshPart> measureParts(const NavMesh::NavMeshContainer& mesh,
                                   const std::vector<unsigned int>& islands);
/// The part of the largest area; the first of several. There must be one.
std::size_t largestOf(const std::vector<MeshPart>& parts);

/// Lists the parts of a mesh without defects that can't be reached from the largest one: calls with
/// a line for each, and returns whether there are none.
bool findUnreachable(const NavMesh::NavMeshContainer& mesh,
                     const std::function<bool(const char* text)>& listener);

/// Returns the host's position over a point of the mesh's plane: the point in the world without its
/// up component.
Common::Math::Vec2<float> positionAt(const NavMesh::NavMeshContainer& mesh,
                                     const Common::Math::Vec2<float>& point);

} // namespace ZUNO::Tools
