#include "tools/zunobake/baker.h"

#include "tools/zunobake/parallel.h"

#include <algorithm>
#include <atomic>
#include <stdexcept>

namespace ZUNO::Tools {

std::vector<TilePolygon> bakeTiles(const TileBaker& baker, const TileListener& listener) {
    const std::size_t count = baker.grid().tileCount();
    std::vector<std::vector<TilePolygon>> tiles(count);
    std::atomic<std::size_t> done = 0;
    forEachInParallel(count, [&](std::size_t tile, std::size_t worker) {
        tiles[tile] = baker.bake(tile).mPolygons;
        ++done;
        if (worker == 0)
            listener(done, count);
    });
    std::vector<TilePolygon> polygons;
    for (std::vector<TilePolygon>& tile : tiles)
        std::move(tile.begin(), tile.end(), std::back_inserter(polygons));
    if (polygons.empty())
        throw std::runtime_error("nothing is walkable: is the up axis the right one, are faces "
                                 "wound counter-clockwise seen from above (--both-sides takes "
                                 "either), and is there room for the agent?");
    return polygons;
}

} // namespace ZUNO::Tools
