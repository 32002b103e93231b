#pragma once

#include "tools/zunobake/bakesettings.h"
#include "tools/zunobake/tilegrid.h"

#include <vector>

struct rcCompactHeightfield;

namespace ZUNO::Tools {

/// For each span of a field whether its level is an odd one. Ground that hangs together and has
/// other ground above or below some of it is cut into levels, which span no more height than the
/// settings allow; those that touch differ in being odd. All other ground is of one level.
std::vector<bool> findOddLevels(const rcCompactHeightfield& field, const CellSettings& cells);

/// Returns the ground under a polygon of a region: the spans of that region, and where the polygon
/// reaches beyond it those nearest in height. `border` cells lie around the tile in the field.
Ground measureGround(const rcCompactHeightfield& field, int border, unsigned short region,
                     const std::vector<GridPoint>& polygon);

} // namespace ZUNO::Tools
