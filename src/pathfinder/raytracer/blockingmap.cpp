#include "pathfinder/raytracer/blockingmap.h"

#include "common/utility/saturate.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace ZUNO::Pathfinder::Raytracer {

using Common::Utility::truncateToInt;

namespace {

float scaleOf(std::uint32_t cells, float extent) {
    const float scale = extent > 0 ? static_cast<float>(cells - 1) / extent : 0.0F;
    return std::isfinite(scale) ? scale : 0.0F; // the extent of a denormal number has none
}

} // namespace

BlockingMap::~BlockingMap() {
    Common::Memory::releaseBytes(mAllocator, mCells);
}

void BlockingMap::init(const Position& min, const Position& max, std::uint32_t width,
                       std::uint32_t height, const BlockingCell& cell) {
    Common::Memory::releaseBytes(mAllocator, mCells);
    mCells = nullptr;
    mRect = {min, max};
    mColumns = width;
    mRows = height;
    mScaleX = scaleOf(width, max.mX - min.mX);
    mScaleY = scaleOf(height, max.mY - min.mY);
    const std::size_t count = std::size_t{width} * height;
    mCells = static_cast<BlockingCell*>(
        Common::Memory::allocateBytes(mAllocator, count, sizeof(BlockingCell)));
    std::uninitialized_fill_n(mCells, count, cell);
}

BlockingMap::Cell BlockingMap::worldToCell(const Position& position) const {
    return {truncateToInt((position.mX - mRect.mMin.mX) * mScaleX),
            truncateToInt((position.mY - mRect.mMin.mY) * mScaleY)};
}

BlockingMap::Position BlockingMap::cellToWorld(const Cell& cell) const {
    const auto coordinate = [](int index, float scale, float min) {
        return scale != 0 ? static_cast<float>(index) / scale + min : min;
    };
    return {coordinate(cell.mX, mScaleX, mRect.mMin.mX),
            coordinate(cell.mY, mScaleY, mRect.mMin.mY)};
}

BlockingMap::Position BlockingMap::cellSize() const {
    return {mScaleX != 0 ? 1.0F / mScaleX : 0.0F, mScaleY != 0 ? 1.0F / mScaleY : 0.0F};
}

bool BlockingMap::findCellAtWorld(const Position& position, Cell& out) const {
    if (mCells == nullptr || !mRect.contains(position))
        return false;
    // rounding may carry the upper border of a very fine grid one cell too far
    const Cell cell = worldToCell(position);
    out = {std::min(cell.mX, static_cast<int>(mColumns) - 1),
           std::min(cell.mY, static_cast<int>(mRows) - 1)};
    return true;
}

bool BlockingMap::getCellAtWorld(const Position& position, BlockingCell& out) const {
    Cell cell{};
    if (!findCellAtWorld(position, cell))
        return false;
    out = cellAt(cell);
    return true;
}

bool BlockingMap::setCellAtWorld(const Position& position, const BlockingCell& cell) {
    Cell place{};
    if (!findCellAtWorld(position, place))
        return false;
    cellAt(place) = cell;
    return true;
}

bool BlockingMap::getCell(int x, int y, BlockingCell& out) const {
    if (!hasCell({x, y}) || mCells == nullptr)
        return false;
    out = cellAt({x, y});
    return true;
}

} // namespace ZUNO::Pathfinder::Raytracer
