#pragma once

#include "navmesh/navmeshcontainer.h"

#include <functional>

namespace ZUNO::NavMesh {

/// Is called with what is wrong with a mesh and where; returns whether the search for more goes on.
/// Lifetime: of the text, the call.
using DefectListener = std::function<bool(const char* text)>;

/// Looks for what a world could not run with: no nodes, a node without corners, indices out of
/// range, numbers that are not finite, a cube size that is not above 0, more nodes or borders than
/// edge ids can name, a blocking grid of more memory than 32 bits can address, nodes that cover
/// that grid so often that making it would take more than some ten seconds. Returns whether the
/// mesh is free of all that. Throws what the listener throws. Cost: one pass over the mesh.
bool findDefects(const NavMeshContainer& mesh, const DefectListener& listener);

/// Looks for what is merely odd and works as the algorithms say: a normal or axes that are not of
/// length 1 or not at right angles; polygons of fewer than three corners, without area, clockwise
/// or concave in the plane; more or fewer neighbours than corners; a neighbour that does not lead
/// back, is the node itself, or does not share the border; surface types and height classes of
/// characters that don't exist. The mesh must have no defects. Returns whether nothing is odd.
/// Throws what the listener throws. Cost: one pass over the mesh.
bool findOddities(const NavMeshContainer& mesh, const DefectListener& listener);

} // namespace ZUNO::NavMesh
