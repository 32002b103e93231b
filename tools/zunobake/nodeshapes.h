#pragma once

#include "tools/zunobake/bakesettings.h"
#include "tools/zunobake/noderings.h"

namespace ZUNO::Tools {

/// Makes the nodes as large as they may be: convex, of one surface type and agent, with a surface
/// that lies as near to the ground as the settings ask for, and spanning no more than a level where
/// floors lie above each other. First neighbours are joined whatever their heights, those that
/// share the longest borders first; what is uneven then is cut where that helps most, and the
/// pieces are joined again where they may be.
void shapeNodes(NodeRings& rings, const CellSettings& cells);

} // namespace ZUNO::Tools
