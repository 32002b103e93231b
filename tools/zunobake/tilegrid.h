#pragma once

#include "tools/zunobake/bakesettings.h"
#include "tools/zunobake/scene.h"

#include <array>

namespace ZUNO::Tools {

/// A place in cells from the grid's origin: along the plane, and up in cell heights.
struct GridPoint {
    int mX;
    int mY; ///< up
    int mZ;
};

/// The ground under a polygon, in cells and cell heights.
struct Ground {
    int mLowest;
    int mHighest;
    bool mHasFloors = false;       ///< other ground lies above or below some of it
    std::vector<GridPoint> mCells; ///< with the height of each; none when all lie at mLowest
};

/// A walkable polygon of a tile.
struct TilePolygon {
    std::vector<GridPoint> mCorners;
    Ground mGround;
    std::uint16_t mSurface; ///< of the scene's, or Scene::noSurface
    std::uint16_t mAgent;   ///< the tallest that fits, by its place in the settings
};

/// An upright box.
struct Box {
    float mLow[3];
    float mHigh[3];
};

/// The cells over a scene, in square tiles.
struct TileGrid {
    /// Raises a std::runtime_error when there are more cells than the settings allow.
    TileGrid(const Scene& scene, const BakeSettings& settings);

    std::size_t tileCount() const {
        return static_cast<std::size_t>(mTileColumns) * static_cast<std::size_t>(mTileRows);
    }
    std::size_t tileAt(int column, int row) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(mTileColumns) +
               static_cast<std::size_t>(column);
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

/// For each tile the triangles over it, and over `border` cells around it.
std::vector<std::vector<int>> listTrianglesOfTiles(const Scene& scene, const TileGrid& grid,
                                                   int tileSize, int border);

} // namespace ZUNO::Tools
