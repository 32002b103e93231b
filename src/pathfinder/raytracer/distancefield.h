#pragma once

#include "common/memory/stlallocator.h"
#include "pathfinder/raytracer/blockingmap.h"

#include <vector>

namespace ZUNO::Pathfinder::Raytracer {

/// For each block of 8 x 8 cells: the king's-move distance, in blocks, to the nearest block with a
/// blocked cell or to the outside. A walk may skip 8 (distance - 1) steps. A byte for 64 cells.
class DistanceField {
public:
    explicit DistanceField(const Common::SharedPtr<Common::Memory::Allocator>& allocator)
        : mDistances(allocator) {}

    /// Throws an OutOfMemoryException. Cost: one pass over the cells.
    void build(const BlockingMap& map);

    /// Returns how many steps from a cell of the grid, each in any of the eight directions, reach
    /// walkable cells alone.
    unsigned int stepsFrom(const BlockingMap::Cell& cell) const {
        const std::size_t column = static_cast<std::uint32_t>(cell.mX) / blockSize;
        const std::size_t row = static_cast<std::uint32_t>(cell.mY) / blockSize;
        const unsigned int distance = mDistances[row * mColumns + column];
        return distance > 1 ? (distance - 1) * blockSize : 0;
    }

private:
    static constexpr unsigned int blockSize = 8;

    std::vector<std::uint8_t, Common::Memory::STLAllocator<std::uint8_t>> mDistances;
    std::size_t mColumns = 0; ///< of blocks
};

} // namespace ZUNO::Pathfinder::Raytracer
