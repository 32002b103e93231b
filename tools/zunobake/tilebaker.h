#pragma once

#include "tools/zunobake/bakesettings.h"
#include "tools/zunobake/recastfield.h"
#include "tools/zunobake/scene.h"
#include "tools/zunobake/tilegrid.h"

namespace ZUNO::Tools {

/// Makes the walkable polygons of a scene, tile by tile. Tiles may be made by several threads.
class TileBaker {
public:
    TileBaker(const Scene& scene, const BakeSettings& settings);

    const TileGrid& grid() const { return mGrid; }
    const CellSettings& cells() const { return mCells; }

    /// What Recast made of a tile: its polygons, in cells from the tile's corner.
    struct Tile {
        PolyMesh mMesh; ///< null: nothing walkable
        std::vector<TilePolygon> mPolygons;
    };

    /// Raises a std::runtime_error when Recast fails.
    Tile bake(std::size_t tile) const;

private:
    const Scene& mScene;
    const BakeSettings& mSettings;
    CellSettings mCells;
    TileGrid mGrid;
    int mBorder; ///< cells around a tile that are looked at as well
    std::vector<std::vector<int>> mTrianglesOfTiles;
};

} // namespace ZUNO::Tools
