/// What hosts make of a straight path: corners that keep off the walls, and places at equal steps.
#pragma once

#include "hostkit/straightpath.h"
#include "hostkit/surface.h"

namespace ZUNO::HostKit {

/// Returns the corners of a path, each but start and goal moved away from the wall that it bends
/// around, by the margin or by as much as leaves the legs on both sides free: half of it, a
/// quarter, nothing. One walks straight from each to the next as on the path itself. Cost: a few
/// straight walks a corner; takes memory for the result.
std::vector<Place> keepOffWalls(const MeshView& view, const StraightPath& path, float margin);

/// Returns places on the ground along a path, `step` apart in the plane, from the start to the
/// goal, which is always the last one; a million at most. None for an empty path; start and goal
/// alone for a step that is not above 0. Cost: linear in the places and the path's nodes; takes
/// memory for the result.
std::vector<Place> placesAlong(const MeshView& view, const StraightPath& path, float step);

} // namespace ZUNO::HostKit
