#pragma once

#include "common/memory/stlallocator.h"
#include "pathfinder/raytracer/blockingmap.h"

#include <vector>

namespace ZUNO::Pathfinder::Raytracer {

/// How far around a cell of a grid everything is walkable, for walks that then need not look at
/// each cell. Kept for blocks of 4 x 4 cells: how many blocks away, in steps of a chess king, the
/// nearest one is that holds a blocked cell or is cut off by the grid's border. A byte for 16
/// cells.
class ClearanceField {
public:
    explicit ClearanceField(const Common::SharedPtr<Common::Memory::Allocator>& allocator)
        : mDistances(allocator) {}

    void build(const BlockingMap& map);

    /// How many steps from a cell of the grid may be taken, each in any of the eight directions,
    /// while all cells are walkable.
    unsigned int stepsFrom(const BlockingMap::Cell& cell) const {
        const std::size_t column = static_cast<std::uint32_t>(cell.mX) / blockSize;
        const std::size_t row = static_cast<std::uint32_t>(cell.mY) / blockSize;
        const unsigned int distance = mDistances[row * mColumns + column];
        return distance > 1 ? (distance - 1) * blockSize : 0;
    }

private:
    static constexpr unsigned int blockSize = 4;

    std::vector<std::uint8_t, Common::Memory::STLAllocator<std::uint8_t>> mDistances;
    std::size_t mColumns = 0; ///< of blocks
};

} // namespace ZUNO::Pathfinder::Raytracer
