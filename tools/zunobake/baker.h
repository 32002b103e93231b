#pragma once

#include "tools/zunobake/bakedmesh.h"

#include <functional>

namespace ZUNO::Tools {

/// Is told how many tiles of all are done; by the thread that calls.
using TileListener = std::function<void(std::size_t done, std::size_t all)>;

/// Makes all tiles, on as many threads as the machine has. Raises a std::runtime_error when
/// Recast fails, or when nothing is walkable.
std::vector<TilePolygon> bakeTiles(const TileBaker& baker, const TileListener& listener);

} // namespace ZUNO::Tools
