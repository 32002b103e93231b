#pragma once

#include "tools/zunobake/bakesettings.h"
#include "tools/zunobake/scene.h"

#include <array>
#include <memory>

struct rcPolyMesh;

namespace ZUNO::Tools {

/// A place in cells from the grid's origin: along the plane, and up in cell heights.
struct GridPoint {
    int mX;
    int mY; ///< up
    int mZ;
};

/// A walkable polygon of a tile.
struct TilePolygon {
    std::vector<GridPoint> mCorners;
    int mLowestGround; ///< of the ground on it, in cell heights
    int mHighestGround;
    std::uint16_t mSurface; ///< of the scene's, or Scene::noSurface
    std::uint16_t mAgent;   ///< the tallest that fits, by its place in the settings
};

/// The cells over a scene, in square tiles.
struct TileGrid {
    /// Raises a std::runtime_error when there are more cells than the settings allow.
    TileGrid(const Scene& scene, const BakeSettings& settings);

    std::size_t tileCount() const {
        return static_cast<std::size_t>(mTileColumns) * static_cast<std::size_t>(mTileRows);
    }
    /// The position of a point of the grid along one axis: a multiple of the cell's side.
    float positionOf(int cell, std::size_t axis) const {
        return static_cast<float>((static_cast<double>(mOrigin[axis]) + cell) * mSides[axis]);
    }

    std::array<std::int64_t, 3> mOrigin; ///< the lowest corner, in cells from the scene's zero
    std::array<double, 3> mSides;        ///< of a cell
    int mColumns;
    int mRows;
    int mTileColumns;
    int mTileRows;
};

/// Makes the walkable polygons of a scene, tile by tile. Tiles may be made by several threads.
class TileBaker {
public:
    TileBaker(const Scene& scene, const BakeSettings& settings);
    ~TileBaker();

    const TileGrid& grid() const { return mGrid; }
    const CellSettings& cells() const { return mCells; }

    /// What Recast made of a tile: its polygons, in cells from the tile's corner.
    struct Tile {
        Tile();
        ~Tile();
        Tile(Tile&&) noexcept;
        struct Free {
            void operator()(rcPolyMesh* mesh) const;
        };
        std::unique_ptr<rcPolyMesh, Free> mMesh; ///< null: nothing walkable
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
