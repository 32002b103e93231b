#include "tools/zunobake/tilebaker.h"

#include "tools/zunobake/tilework.h"

#include <algorithm>

namespace ZUNO::Tools {

TileBaker::TileBaker(const Scene& scene, const BakeSettings& settings)
    : mScene(scene), mSettings(settings), mCells(settings), mGrid(scene, settings),
      mBorder(mCells.mRadius + 3),
      mTrianglesOfTiles(listTrianglesOfTiles(scene, mGrid, settings.mTileSize, mBorder)) {}

TileBaker::Tile TileBaker::bake(std::size_t tile) const {
    Tile result;
    if (mTrianglesOfTiles[tile].empty())
        return result;
    const int column = static_cast<int>(tile) % mGrid.mTileColumns * mSettings.mTileSize;
    const int row = static_cast<int>(tile) / mGrid.mTileColumns * mSettings.mTileSize;
    const int columns = std::min(mSettings.mTileSize, mGrid.mColumns - column);
    const int rows = std::min(mSettings.mTileSize, mGrid.mRows - row);
    // Recast counts heights up to the next cell: from half a cell lower, so that they are rounded,
    // and lie one cell too high when they are counted from the grid's own
    constexpr int countedHigher = 1;
    const float bottom = mGrid.positionOf(0, 1) - static_cast<float>(mSettings.mCellHeight) / 2;
    const Box bounds = {
        {mGrid.positionOf(column - mBorder, 0), bottom, mGrid.positionOf(row - mBorder, 2)},
        {mGrid.positionOf(column + columns + mBorder, 0), mGrid.positionOf(RC_SPAN_MAX_HEIGHT, 1),
         mGrid.positionOf(row + rows + mBorder, 2)}};

    TileWork work(mScene, mSettings, mCells);
    work.rasterise(mTrianglesOfTiles[tile], bounds, columns + 2 * mBorder, rows + 2 * mBorder);
    work.findWalkable();
    work.divide();
    result.mMesh = work.makePolygons(mBorder);
    if (result.mMesh == nullptr)
        return result;
    result.mPolygons = work.listPolygons(*result.mMesh);
    for (TilePolygon& polygon : result.mPolygons) {
        for (std::vector<GridPoint>* const points : {&polygon.mCorners, &polygon.mGround.mCells})
            for (GridPoint& point : *points)
                point = {point.mX + column, point.mY - countedHigher, point.mZ + row};
        polygon.mGround.mLowest -= countedHigher;
        polygon.mGround.mHighest -= countedHigher;
    }
    return result;
}

} // namespace ZUNO::Tools
