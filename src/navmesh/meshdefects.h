#pragma once

#include "common/report/reporttext.h"
#include "navmesh/navmeshcontainer.h"

namespace ZUNO::NavMesh {

/// Is told of what is wrong with a mesh.
class DefectListener {
public:
    virtual ~DefectListener() = default;
    /// Receives what is wrong and where; returns whether the search for defects goes on.
    virtual bool onDefect(const char* text) = 0;
};

/// Looks for what a world could not run with: no nodes, a node without corners, indices out of
/// range, numbers that are not finite, a cube size that is not above 0, more nodes or borders than
/// edge ids can name, a blocking grid of more memory than 32 bits can address, nodes that cover
/// that grid so often that making it would take more than some ten seconds. Returns whether the
/// mesh is free of all that.
bool findDefects(const NavMeshContainer& mesh, DefectListener& listener);

/// Looks for what is merely odd and works as the algorithms say: a normal or axes that are not of
/// length 1 or not at right angles; polygons of fewer than three
/// corners, without area, clockwise or concave in the plane; more or fewer neighbours than corners;
/// a neighbour that does not lead back, is the node itself, or does not share the border; surface
/// types and height classes of characters that don't exist. Only for a mesh without defects.
bool findOddities(const NavMeshContainer& mesh, DefectListener& listener);

} // namespace ZUNO::NavMesh
