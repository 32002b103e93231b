#pragma once

#include "tools/zunobake/bakesettings.h"
#include "tools/zunobake/tilegrid.h"

#include <vector>

struct rcCompactHeightfield;

namespace ZUNO::Tools {

/// For each height of a field whether its level is an odd one. Ground of one level spans no more
/// than the settings allow, and levels that touch differ in being odd.
std::vector<bool> findOddLevels(const rcCompactHeightfield& field, const CellSettings& cells);

/// Sets a polygon's lowest and highest ground: of its corners, and of the walkable spans in it that
/// their heights are nearest to. `border` cells lie around the tile in the field.
void measureGround(const rcCompactHeightfield& field, int border, TilePolygon& polygon);

} // namespace ZUNO::Tools
