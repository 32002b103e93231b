#include "tools/zunobake/tilegrid.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <stdexcept>

namespace ZUNO::Tools {

namespace {

constexpr int mostLevels = 8191; // what Recast counts up to

/// The box around some of a scene's vertices; there must be one.
Box boundsOf(const Scene& scene, std::span<const int> vertices) {
    Box box{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto at = [&](int vertex) {
            return scene.mVertices[static_cast<std::size_t>(vertex) * 3 + axis];
        };
        box.mLow[axis] = box.mHigh[axis] = at(vertices.front());
        for (const int vertex : vertices) {
            box.mLow[axis] = std::min(box.mLow[axis], at(vertex));
            box.mHigh[axis] = std::max(box.mHigh[axis], at(vertex));
        }
    }
    return box;
}

} // namespace

TileGrid::TileGrid(const Scene& scene, const BakeSettings& settings)
    : mSides{settings.mCellSize, settings.mCellHeight, settings.mCellSize} {
    if (scene.triangleCount() == 0)
        throw std::runtime_error("the scene has no faces");
    const Box bounds = boundsOf(scene, scene.mTriangles);
    std::array<double, 3> counts{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double first = std::floor(bounds.mLow[axis] / mSides[axis]);
        counts[axis] = std::max(std::ceil(bounds.mHigh[axis] / mSides[axis]) - first, 1.0);
        constexpr double farthest = 1e15;
        if (!(std::abs(first) < farthest))
            throw std::runtime_error("the scene lies too far from its zero for such small cells");
        mOrigin[axis] = static_cast<std::int64_t>(first);
    }
    const auto number = [](double value) {
        return value < 1e15 ? std::to_string(static_cast<std::int64_t>(value)) : "over 1e15";
    };
    if (counts[0] * counts[2] > static_cast<double>(settings.mMaxCells))
        throw std::runtime_error("the scene is " + number(counts[0]) + " x " + number(counts[2]) +
                                 " cells, and at most " + std::to_string(settings.mMaxCells) +
                                 " altogether are taken: choose a larger --cell-size, or raise "
                                 "--max-cells");
    if (counts[1] > mostLevels)
        throw std::runtime_error("the scene is " + number(counts[1]) + " cells high, and at most " +
                                 std::to_string(mostLevels) +
                                 " are taken: choose a larger --cell-height");
    mColumns = static_cast<int>(counts[0]);
    mRows = static_cast<int>(counts[2]);
    mTileColumns = (mColumns - 1) / settings.mTileSize + 1;
    mTileRows = (mRows - 1) / settings.mTileSize + 1;
}

std::vector<std::vector<int>> listTrianglesOfTiles(const Scene& scene, const TileGrid& grid,
                                                   int tileSize, int border) {
    const double side = grid.mSides[0];
    const double margin = (border + 1) * side;
    const auto tileOf = [&](double coordinate, std::size_t axis, int count) {
        const double cell = std::floor(coordinate / side) - static_cast<double>(grid.mOrigin[axis]);
        return std::clamp(static_cast<int>(cell / tileSize), 0, count - 1);
    };
    constexpr std::size_t most = 200'000'000;
    std::size_t entries = 0;
    std::vector<std::vector<int>> lists(grid.tileCount());
    for (std::size_t triangle = 0; triangle < scene.triangleCount(); ++triangle) {
        const Box box = boundsOf(scene, std::span(scene.mTriangles).subspan(triangle * 3, 3));
        const int firstColumn = tileOf(box.mLow[0] - margin, 0, grid.mTileColumns);
        const int lastColumn = tileOf(box.mHigh[0] + margin, 0, grid.mTileColumns);
        const int lastRow = tileOf(box.mHigh[2] + margin, 2, grid.mTileRows);
        for (int row = tileOf(box.mLow[2] - margin, 2, grid.mTileRows); row <= lastRow; ++row)
            for (int column = firstColumn; column <= lastColumn; ++column, ++entries)
                lists[grid.tileAt(column, row)].push_back(static_cast<int>(triangle));
        if (entries > most)
            throw std::runtime_error("too many large triangles lie above each other for such small "
                                     "tiles: choose a larger --tile");
    }
    return lists;
}

} // namespace ZUNO::Tools
