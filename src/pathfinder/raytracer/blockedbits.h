#pragma once

#include "common/memory/stlallocator.h"
#include "pathfinder/raytracer/blockingmap.h"

#include <vector>

namespace ZUNO::Pathfinder::Raytracer {

/// Which cells of a grid stop a ray: one bit a cell, in a frame of one cell on all sides that stops
/// as well. A walk that moves by one cell at a time can't leave the frame unseen, so that it needs
/// to look at nothing but a bit.
class BlockedBits {
public:
    /// The number of a cell in the grid with its frame, row by row. A row takes a power of two, so
    /// that telling the cell of a place needs no division. A grid has fewer than 2^29 cells; with
    /// the frame, and twice as wide, it still has fewer than 2^32 places.
    using Place = std::uint32_t;

    explicit BlockedBits(const Common::SharedPtr<Common::Memory::Allocator>& allocator)
        : mWords(allocator) {}

    /// Throws an OutOfMemoryException. Cost: one pass over the cells; holds a 32nd of their bytes
    /// at most.
    void build(const BlockingMap& map);

    Place placeOf(const BlockingMap::Cell& cell) const {
        return ((static_cast<Place>(cell.mY) + 1) << mRowBits) + static_cast<Place>(cell.mX) + 1;
    }
    BlockingMap::Cell cellOf(Place place) const {
        return {static_cast<int>(place & (stride() - 1)) - 1,
                static_cast<int>(place >> mRowBits) - 1};
    }
    /// Returns how far apart the places of a cell and the one above it are.
    Place stride() const { return Place{1} << mRowBits; }

    bool stopsAt(Place place) const { return (mWords[place / 32] >> place % 32 & 1U) != 0; }

private:
    unsigned int mRowBits = 0;
    std::vector<std::uint32_t, Common::Memory::STLAllocator<std::uint32_t>> mWords;
};

} // namespace ZUNO::Pathfinder::Raytracer
